#pragma once

// What a thread keeps to make values cheap: freed small blocks for the next value, and the keys seen lately.
//
// The system's heap takes about fifty times as long as a list of free blocks, and documents repeat their
// keys. Blocks and keys may be released by another thread than the one that made them.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ruvo::detail {

/// A key, shared by all entries that carry it.
struct shared_key : std::wstring {
  shared_key(std::wstring_view text, std::uint32_t its_hash) : std::wstring(text), hash(its_hash) {}

  mutable std::atomic<std::uint32_t> uses{1};
  const std::uint32_t hash;
};

void release(const shared_key* key) noexcept;
inline void retain(const shared_key* key) noexcept { key->uses.fetch_add(1, std::memory_order_relaxed); }

class thread_cache {
  static constexpr std::size_t step = 16, classes = 64, largest = step * classes;

 public:
  /// The calling thread's cache, or null when it can have none (the library is being unloaded).
  static thread_cache* local() noexcept;

  ~thread_cache();

  /// The true size of a block of `size` bytes, whoever made it.
  static constexpr std::size_t rounded(std::size_t size) noexcept { return (size + step - 1) / step * step; }

  /// A block of at least `size` (not 0) bytes, aligned for any scalar. Throws std::bad_alloc.
  void* take(std::size_t size);
  void give(void* block, std::size_t size) noexcept;

  /// The key with this text, retained for the caller.
  const shared_key* key(std::wstring_view text, std::uint32_t hash);

 private:
  struct free_block {
    free_block* next;
  };
  static constexpr std::size_t most_bytes = std::size_t{1} << 20;  // kept for later
  static constexpr std::size_t key_slots = 512, longest_key = 64;

  free_block* free_[classes] = {};
  std::size_t free_bytes_ = 0;
  const shared_key* keys_[key_slots] = {};
};

/// thread_cache::take and give for the calling thread.
void* take_block(std::size_t size);
void give_block(void* block, std::size_t size) noexcept;

template <class T, class... Args>
T* make(Args&&... args) {
  void* const block = take_block(sizeof(T));
  try {
    return new (block) T(static_cast<Args&&>(args)...);
  } catch (...) {
    give_block(block, sizeof(T));
    throw;
  }
}

template <class T>
void unmake(T* object) noexcept {
  object->~T();
  give_block(object, sizeof(T));
}

/// A spread-out number for a folded key.
std::uint32_t hash_of(std::wstring_view key) noexcept;

}  // namespace ruvo::detail
