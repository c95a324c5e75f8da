// SPDX-License-Identifier: BSL-1.0

// Objects kept by thread until they are collected.

#include <ruvo/memory_collector.hpp>

#include <map>
#include <mutex>
#include <unordered_set>
#include <utility>
#include <vector>

#include "base/numbers.hpp"

namespace ruvo {

namespace {

using kept = std::unique_ptr<void, memory_collector::deleter>;

/// First in, first out.
void release(std::vector<kept>& objects) noexcept {
  for (kept& object : objects) object.reset();
}

}  // namespace

struct memory_collector::state {
  mutable std::mutex guard;
  std::map<unsigned long, std::vector<kept>> threads;
  std::unordered_set<void*> held;  // the objects of all threads
};

memory_collector::memory_collector() : state_(std::make_unique<state>()) {}

// The destructors of objects may bring more objects.
memory_collector::~memory_collector() {
  while (!state_->threads.empty()) collect(state_->threads.begin()->first);
}

void memory_collector::add(unsigned long thread_id, void* object, deleter release_object) {
  kept owned(object, release_object);
  if (!owned) return;
  const std::lock_guard lock(state_->guard);
  const auto [noted, fresh] = state_->held.insert(object);
  if (!fresh) {
    static_cast<void>(owned.release());
    return;
  }
  try {
    state_->threads[thread_id].push_back(std::move(owned));
  } catch (...) {
    state_->held.erase(noted);
    std::erase_if(state_->threads, [](const auto& each) { return each.second.empty(); });
    throw;
  }
}

std::size_t memory_collector::collect(unsigned long thread_id) noexcept {
  std::vector<kept> objects;
  {
    const std::lock_guard lock(state_->guard);
    if (const auto found = state_->threads.find(thread_id); found != state_->threads.end()) {
      objects = std::move(found->second);
      state_->threads.erase(found);
      for (const kept& object : objects) state_->held.erase(object.get());
    }
  }
  release(objects);
  return objects.size();
}

std::size_t memory_collector::size(unsigned long thread_id) const {
  const std::lock_guard lock(state_->guard);
  const auto found = state_->threads.find(thread_id);
  return found == state_->threads.end() ? 0 : found->second.size();
}

memory_collector::operator std::wstring() const {
  std::wstring out;
  const std::lock_guard lock(state_->guard);
  for (const auto& [thread, objects] : state_->threads) {
    texto::append_unsigned(out, thread);
    out += L": ";
    texto::append_unsigned(out, objects.size());
    out += L"\r\n";
  }
  return out;
}

}  // namespace ruvo
