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

#if defined(__SSE2__) || defined(_M_X64)
#  include <xmmintrin.h>
#endif

namespace ruvo::detail {

/// Begins to fetch the memory at an address, valid or not, that will be used soon.
inline void expect_use([[maybe_unused]] const void* address) noexcept {
#if defined(__SSE2__) || defined(_M_X64)
  _mm_prefetch(static_cast<const char*>(address), _MM_HINT_T0);
#endif
}

/// A key, shared by all entries that carry it.
struct shared_key : std::wstring {
  shared_key(std::wstring_view text, std::uint32_t its_hash) : std::wstring(text), hash(its_hash) {}

  mutable std::atomic<std::uint64_t> uses{1};
  const std::uint32_t hash;
};

void release(const shared_key* key) noexcept;
inline void retain(const shared_key* key) noexcept { key->uses.fetch_add(1, std::memory_order_relaxed); }

class thread_cache {
  static constexpr std::size_t step = 16, small_classes = 64, coarse_step = 128, coarse_classes = 120;
  static constexpr std::size_t largest_small = step * small_classes;
  static constexpr std::size_t largest = largest_small + coarse_step * coarse_classes;

 public:
  /// The calling thread's cache, or null when it can have none: the library is being unloaded, or the thread
  /// has ended but for what the program does at its end.
  static thread_cache* local() noexcept;

  ~thread_cache();

  /// The true size of a block of `size` bytes, whoever made it.
  static constexpr std::size_t rounded(std::size_t size) noexcept {
    const std::size_t unit = size <= largest_small ? step : coarse_step;
    return (size + unit - 1) / unit * unit;
  }

  /// A block of at least `size` (not 0) bytes, aligned for any scalar. Throws std::bad_alloc, and
  /// std::length_error beyond `limits::block`.
  void* take(std::size_t size);
  void give(void* block, std::size_t size) noexcept;

  /// The key with this text, retained for the caller.
  const shared_key* key(std::wstring_view text, std::uint32_t hash);

 private:
  struct free_block {
    free_block* next;
  };
  // What may be kept for later: by one thread, by all, and how much a thread asks for at a time.
  static constexpr std::size_t most_bytes = std::size_t{8} << 20, most_bytes_of_all = std::size_t{32} << 20;
  static constexpr std::size_t allowance_step = std::size_t{64} << 10;
  static constexpr std::size_t key_slots = 512, longest_key = 64;

  /// The list for blocks of a rounded size.
  free_block*& list_of(std::size_t bytes) noexcept {
    return free_[bytes <= largest_small ? bytes / step - 1
                                        : small_classes + (bytes - largest_small) / coarse_step - 1];
  }

  free_block* free_[small_classes + coarse_classes] = {};
  static thread_cache* made_local() noexcept;
  bool widen_allowance() noexcept;

  std::size_t free_bytes_ = 0, allowance_ = 0;
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
