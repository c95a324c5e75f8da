#include "app/registry.hpp"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>

#include "app/immortal.hpp"
#include "app/platform.hpp"

namespace ruvo::registry {

namespace {

// The truth, which writers change under a lock.
struct table {
  std::mutex guard;
  std::map<unsigned long, application*> threads;
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
  return found == all.threads.end() ? nullptr : found->second;
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
  const bool added = all.threads.emplace(thread, &app).second;
  if (added) publish(static_cast<std::uint32_t>(thread), &app);
  return added;
}

bool remove(unsigned long thread) noexcept {
  table& all = immortal<table>();
  const std::lock_guard lock(all.guard);
  const bool removed = all.threads.erase(thread) > 0;
  if (removed) withdraw(static_cast<std::uint32_t>(thread));
  return removed;
}

void remove_all(const application& app) noexcept {
  table& all = immortal<table>();
  const std::lock_guard lock(all.guard);
  std::erase_if(all.threads, [&](const auto& entry) {
    if (entry.second != &app) return false;
    withdraw(static_cast<std::uint32_t>(entry.first));
    return true;
  });
}

}  // namespace ruvo::registry
