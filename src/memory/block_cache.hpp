// SPDX-License-Identifier: BSL-1.0
#pragma once

// Blocks of memory for values: freed small ones are kept for the next value of the same thread, since the
// system's heap takes about fifty times as long as a list of free blocks. Those of large documents come from
// chunks instead, in the order of the document. A block may be released by another thread than the one that
// took it.

#include <cstddef>
#include <new>
#include <utility>

#include "memory/chunks.hpp"

namespace ruvo::detail {

/// The free blocks of one thread. Sizes are rounded up in steps of 16 bytes to 1 KB, as small values come in
/// all sizes and waste counts there, and in steps of 128 bytes to 16 KB, so that few lists do.
class block_cache {
 public:
  block_cache() = default;
  block_cache(const block_cache&) = delete;
  block_cache& operator=(const block_cache&) = delete;
  ~block_cache();

  /// A block of at least `size` (not 0) bytes, aligned for any scalar. Throws std::bad_alloc, and
  /// std::length_error beyond `limits::block`.
  void* take(std::size_t size);
  /// A block that no chunk holds.
  void give(void* block, std::size_t size) noexcept;
  /// A block that a chunk holds.
  void give_in_chunk(void* block) noexcept {
    chunk* const of = chunk::of(block);
    if (of != pending_) {
      settle();
      pending_ = of;
    }
    ++pending_blocks_;
    if (releases_ == 0) settle();
  }

  /// The true size of a block of `size` bytes, whoever made it.
  static constexpr std::size_t rounded(std::size_t size) noexcept {
    const std::size_t unit = size <= largest_small ? step : coarse_step;
    return (size + unit - 1) / unit * unit;
  }

 private:
  struct free_block {
    free_block* next;
  };

  static constexpr std::size_t step = 16, small_classes = 64, coarse_step = 128, coarse_classes = 120;
  static constexpr std::size_t largest_small = step * small_classes;
  static constexpr std::size_t largest = largest_small + coarse_step * coarse_classes;
  // What may be kept for later: by one thread, by all, and how much a thread asks for at a time.
  static constexpr std::size_t most_bytes = std::size_t{8} << 20, most_bytes_of_all = std::size_t{32} << 20;
  static constexpr std::size_t allowance_step = std::size_t{64} << 10;

  /// The list for blocks of a rounded size.
  free_block*& list_of(std::size_t bytes) noexcept {
    return free_[bytes <= largest_small ? bytes / step - 1
                                        : small_classes + (bytes - largest_small) / coarse_step - 1];
  }
  bool widen_allowance() noexcept;
  void settle() noexcept {
    if (pending_) pending_->release(pending_blocks_);
    pending_ = nullptr;
    pending_blocks_ = 0;
  }

  friend class document_blocks;
  friend class release_of_many;

  free_block* free_[small_classes + coarse_classes] = {};
  std::size_t free_bytes_ = 0, allowance_ = 0;
  chunk_line line_;
  unsigned documents_ = 0, releases_ = 0;  // objects of the two classes below
  chunk* pending_ = nullptr;               // where the blocks lay that were released last, as yet uncounted
  std::size_t pending_blocks_ = 0;
};

/// While one lives, the blocks that the calling thread takes come from chunks: for what is made together, is
/// large, and will mostly go together, as one value that outlives its document keeps a whole chunk.
class document_blocks {
 public:
  document_blocks() noexcept;
  /// For what is made of a text; does nothing where that is small.
  explicit document_blocks(std::size_t units) noexcept : document_blocks() {
    if (units < fewest_units) end();
  }
  document_blocks(const document_blocks&) = delete;
  document_blocks& operator=(const document_blocks&) = delete;
  ~document_blocks() { end(); }

 private:
  void end() noexcept {
    if (cache_) --std::exchange(cache_, nullptr)->documents_;
  }

  static constexpr std::size_t fewest_units = 32000;

  block_cache* cache_;
};

/// While one lives, releases of the calling thread that lie in one chunk are counted together.
class release_of_many {
 public:
  release_of_many() noexcept;
  release_of_many(const release_of_many&) = delete;
  release_of_many& operator=(const release_of_many&) = delete;
  ~release_of_many() {
    if (cache_ && --cache_->releases_ == 0) cache_->settle();
  }

 private:
  block_cache* cache_;
};

/// block_cache::take and give for the calling thread; from the heap where it can have no cache.
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

}  // namespace ruvo::detail
