#include "app/registry.hpp"

#include <atomic>
#include <map>
#include <mutex>

#include "app/immortal.hpp"
#include "app/platform.hpp"

namespace ruvo::registry {

namespace {

struct table {
  std::mutex guard;
  std::map<unsigned long, application*> threads;
};

// Counts the changes of the table; changed under its guard only. Each thread keeps what it found last
// together with the count at that time.
constinit std::atomic<unsigned long long> changes{1};

struct answer {
  unsigned long long at_change;
  application* app;
};
constinit thread_local answer last{0, nullptr};

void changed() noexcept { changes.fetch_add(1, std::memory_order_release); }

}  // namespace

application* find() noexcept {
  answer& mine = last;
  if (mine.at_change == changes.load(std::memory_order_acquire)) return mine.app;
  table& all = immortal<table>();
  const std::lock_guard lock(all.guard);
  const auto found = all.threads.find(platform::thread_id());
  mine = {changes.load(std::memory_order_relaxed), found == all.threads.end() ? nullptr : found->second};
  return mine.app;
}

bool add(unsigned long thread, application& app) {
  table& all = immortal<table>();
  const std::lock_guard lock(all.guard);
  const bool added = all.threads.emplace(thread, &app).second;
  if (added) changed();
  return added;
}

bool remove(unsigned long thread) noexcept {
  table& all = immortal<table>();
  const std::lock_guard lock(all.guard);
  const bool removed = all.threads.erase(thread) > 0;
  if (removed) changed();
  return removed;
}

void remove_all(const application& app) noexcept {
  table& all = immortal<table>();
  const std::lock_guard lock(all.guard);
  if (std::erase_if(all.threads, [&](const auto& entry) { return entry.second == &app; })) changed();
}

}  // namespace ruvo::registry
