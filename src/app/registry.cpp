// SPDX-License-Identifier: BSL-1.0

// The table of threads and their applications, with a copy that is read without a lock.

#include "app/registry.hpp"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <mutex>
#include <new>

#include "base/immortal.hpp"
#include "system/process.hpp"

namespace ruvo::registry {

namespace {

/// What serves a thread: the application that it is checked in to, or else the one that it was lent.
struct entry {
  application* own = nullptr;
  loan lent;

  application* in_force() const noexcept { return own ? own : lent.app; }
};

// The complete table, which writers change under a lock.
struct table {
  std::mutex guard;
  std::map<unsigned long, entry> threads;
  std::map<const application*, unsigned long long> living;  // with the number that their loans carry
  unsigned long long loans = 0;

  bool is_good(const loan& of) const noexcept {
    const auto found = living.find(of.app);
    return found != living.end() && found->second == of.number;
  }
};

// Readers look into a copy that needs no lock: small buckets of slots, chosen by the thread's id. The threads
// that find their bucket full are counted there, and look into the table.
//
// A slot's tag holds the id (0 = free) and the number of times that the slot changed hands. A reader that
// finds the same tag before and after reading the application has read the one that belongs to the tag.
struct slot {
  std::atomic<std::uint64_t> tag{0};
  std::atomic<application*> app{nullptr};

  bool holds(std::uint32_t id) const noexcept {
    return static_cast<std::uint32_t>(tag.load(std::memory_order_relaxed)) == id;
  }
  void take(std::uint32_t id, application* owner) noexcept {
    app.store(owner, std::memory_order_release);
    tag.store(next_hand() | id, std::memory_order_release);
  }
  void leave() noexcept { tag.store(next_hand(), std::memory_order_release); }

 private:
  std::uint64_t next_hand() const noexcept { return ((tag.load(std::memory_order_relaxed) >> 32) + 1) << 32; }
};

struct alignas(64) bucket {
  std::array<slot, 4> slots;
  std::atomic<std::size_t> beyond{0};  // registered threads that have no slot
};

constexpr unsigned bucket_bits = 8;
constinit std::array<bucket, 1u << bucket_bits> buckets;

bucket& bucket_of(std::uint32_t id) noexcept { return buckets[id * 0x9E3779B1u >> (32 - bucket_bits)]; }

slot* slot_of(bucket& in, std::uint32_t id) noexcept {
  for (slot& one : in.slots)
    if (one.holds(id)) return &one;
  return nullptr;
}

void publish(std::uint32_t id, application* app) noexcept {
  if (!id) return;  // no thread has it
  bucket& in = bucket_of(id);
  if (slot* const free = slot_of(in, 0))
    free->take(id, app);
  else
    in.beyond.fetch_add(1, std::memory_order_release);
}

// The tag stays: a reader that meets the change may get the old application or the new one.
void republish(std::uint32_t id, application* app) noexcept {
  if (slot* const taken = id ? slot_of(bucket_of(id), id) : nullptr)
    taken->app.store(app, std::memory_order_release);
}

void withdraw(std::uint32_t id) noexcept {
  if (!id) return;
  bucket& in = bucket_of(id);
  if (slot* const taken = slot_of(in, id))
    taken->leave();
  else
    in.beyond.fetch_sub(1, std::memory_order_release);
}

application* find_in_table(unsigned long id) noexcept {
  table& all = immortal<table>();
  const std::lock_guard lock(all.guard);
  const auto found = all.threads.find(id);
  return found == all.threads.end() ? nullptr : found->second.in_force();
}

using threads = std::map<unsigned long, entry>;

// Called under the lock. Gives the next one; an entry without any application goes.
threads::iterator change(table& all, threads::iterator at, const entry& to) noexcept {
  const auto id = static_cast<std::uint32_t>(at->first);
  const bool was_published = at->second.in_force() != nullptr;
  application* const now = to.in_force();
  at->second = to;
  if (now)
    was_published ? republish(id, now) : publish(id, now);
  else if (was_published)
    withdraw(id);
  return now ? std::next(at) : all.threads.erase(at);
}

void drop_threads(table& all, const application& app) noexcept {
  for (auto at = all.threads.begin(); at != all.threads.end();) {
    entry left = at->second;
    if (left.own == &app) left.own = nullptr;
    if (left.lent.app == &app) left.lent = {};
    at = change(all, at, left);
  }
}

/// Lends to the calling thread; gives what was lent to it before.
loan lend(const loan& of) noexcept {
  const unsigned long id = platform::thread_id();
  table& all = immortal<table>();
  const std::lock_guard lock(all.guard);
  loan before;
  try {
    const auto at = all.threads.try_emplace(id).first;
    before = at->second.lent;
    change(all, at, {at->second.own, all.is_good(of) ? of : loan()});
  } catch (const std::bad_alloc&) {  // no entry was made, so none was there
  }
  return before;
}

}  // namespace

application* find() noexcept {
  const auto id = static_cast<std::uint32_t>(platform::thread_id());
  const bucket& in = bucket_of(id);
  for (const slot& one : in.slots) {
    const std::uint64_t tag = one.tag.load(std::memory_order_acquire);
    if (static_cast<std::uint32_t>(tag) != id) continue;
    application* const app = one.app.load(std::memory_order_acquire);
    if (one.tag.load(std::memory_order_relaxed) == tag) return app;
  }
  return in.beyond.load(std::memory_order_acquire) ? find_in_table(id) : nullptr;
}

bool add(unsigned long thread, application& app) {
  table& all = immortal<table>();
  const std::lock_guard lock(all.guard);
  const auto at = all.threads.try_emplace(thread).first;
  if (at->second.own) return false;
  change(all, at, {&app, at->second.lent});
  return true;
}

bool remove(unsigned long thread) noexcept {
  table& all = immortal<table>();
  const std::lock_guard lock(all.guard);
  const auto at = all.threads.find(thread);
  if (at == all.threads.end() || !at->second.own) return false;
  change(all, at, {nullptr, at->second.lent});
  return true;
}

void remove_all(const application& app) noexcept {
  table& all = immortal<table>();
  const std::lock_guard lock(all.guard);
  drop_threads(all, app);
  if (const auto found = all.living.find(&app); found != all.living.end()) found->second = ++all.loans;
}

void enroll(const application& app) {
  table& all = immortal<table>();
  const std::lock_guard lock(all.guard);
  all.living[&app] = ++all.loans;
}

void strike(const application& app) noexcept {
  table& all = immortal<table>();
  const std::lock_guard lock(all.guard);
  drop_threads(all, app);
  all.living.erase(&app);
}

loan current_loan() noexcept {
  application* const app = find();
  if (!app) return {};
  table& all = immortal<table>();
  const std::lock_guard lock(all.guard);
  const auto found = all.living.find(app);
  return found == all.living.end() ? loan() : loan{app, found->second};
}

borrowed::borrowed(const loan& of) noexcept : before_(lend(of)) {}
borrowed::~borrowed() { lend(before_); }

}  // namespace ruvo::registry
