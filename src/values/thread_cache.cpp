#include "values/thread_cache.hpp"

#include <memory>
#include <new>
#include <stdexcept>

#include "app/thread_slot.hpp"
#include "values/key_units.hpp"
#include "values/limits.hpp"

namespace ruvo::detail {

namespace {

std::atomic<std::size_t> allowed_to_all{0};

void* plain_block(std::size_t size) {
  if (size > limits::block) throw std::length_error("value too long");
  return ::operator new(thread_cache::rounded(size));
}

}  // namespace

std::uint32_t hash_of(std::wstring_view key) noexcept { return hash_units(key); }

void release(const shared_key* key) noexcept {
  if (key->uses.fetch_sub(1, std::memory_order_acq_rel) == 1) delete key;
}

thread_cache* thread_cache::local() noexcept {
  if (void* known = platform::thread_pointer()) return static_cast<thread_cache*>(known);
  return platform::keeps_thread_pointer() ? made_local() : nullptr;
}

thread_cache* thread_cache::made_local() noexcept {
  std::unique_ptr<thread_cache> made(new (std::nothrow) thread_cache);
  if (!made || !platform::set_thread_pointer(made.get())) return nullptr;
  return made.release();
}

thread_cache::~thread_cache() {
  for (free_block* block : free_) {
    while (block) {
      free_block* const next = block->next;
      ::operator delete(block);
      block = next;
    }
  }
  for (const shared_key* key : keys_) {
    if (key) release(key);
  }
  allowed_to_all.fetch_sub(allowance_, std::memory_order_relaxed);
}

bool thread_cache::widen_allowance() noexcept {
  if (allowance_ + allowance_step > most_bytes) return false;
  if (allowed_to_all.fetch_add(allowance_step, std::memory_order_relaxed) + allowance_step >
      most_bytes_of_all) {
    allowed_to_all.fetch_sub(allowance_step, std::memory_order_relaxed);
    return false;
  }
  allowance_ += allowance_step;
  return true;
}

void* thread_cache::take(std::size_t size) {
  const std::size_t bytes = rounded(size);
  if (size > largest) return plain_block(size);
  free_block*& first = list_of(bytes);
  free_block* const block = first;
  if (!block) return ::operator new(bytes);
  first = block->next;
  expect_use(first);  // the next block of this size, which lies anywhere
  free_bytes_ -= bytes;
  return block;
}

void thread_cache::give(void* memory, std::size_t size) noexcept {
  const std::size_t bytes = rounded(size);
  if (bytes > largest || (free_bytes_ + bytes > allowance_ && !widen_allowance())) {
    ::operator delete(memory);
    return;
  }
  free_block*& first = list_of(bytes);
  first = new (memory) free_block{first};
  free_bytes_ += bytes;
}

const shared_key* thread_cache::key(std::wstring_view text, std::uint32_t hash) {
  const shared_key*& slot = keys_[hash % key_slots];
  if (slot && slot->hash == hash && *slot == text) {
    retain(slot);
    return slot;
  }
  auto* const made = new shared_key(text, hash);
  if (text.size() <= longest_key) {
    if (slot) release(slot);
    slot = made;
    retain(made);
  }
  return made;
}

#ifdef KESTA_PLAIN_HEAP  // for checkers that must see every block

void* take_block(std::size_t size) { return plain_block(size); }

void give_block(void* block, std::size_t) noexcept { ::operator delete(block); }

#else

void* take_block(std::size_t size) {
  thread_cache* const cache = thread_cache::local();
  return cache ? cache->take(size) : plain_block(size);
}

void give_block(void* block, std::size_t size) noexcept {
  if (thread_cache* const cache = thread_cache::local()) {
    cache->give(block, size);
  } else {
    ::operator delete(block);
  }
}

#endif

}  // namespace ruvo::detail

void ruvo::platform::release_thread_pointer(void* value) noexcept {
  delete static_cast<ruvo::detail::thread_cache*>(value);
}
