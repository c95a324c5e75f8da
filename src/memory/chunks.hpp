// SPDX-License-Identifier: BSL-1.0
#pragma once

// Memory for documents. Blocks that are taken one after the other lie one behind the other, so that whoever
// walks through the values afterwards reads memory in order. A chunk knows how many of its blocks live and
// nothing else of them: it is free when none does, and until then what is released in it stays.

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace ruvo::detail {

/// The beginning of a chunk; its blocks lie behind it.
struct alignas(16) chunk {
  static constexpr std::size_t bytes = 65536;

  static chunk* of(void* block) noexcept {
    return reinterpret_cast<chunk*>(reinterpret_cast<std::uintptr_t>(block) & ~(bytes - 1));
  }
  char* first() noexcept { return reinterpret_cast<char*>(this + 1); }
  char* end() noexcept { return reinterpret_cast<char*>(this) + bytes; }

  /// On any thread, as the blocks may be anywhere; the last one gives the chunk back.
  void release(std::size_t blocks) noexcept;

  std::atomic<std::size_t> live{0};  // blocks, and `open` while a thread takes some

  static constexpr std::size_t open = std::size_t{1} << 32;
};

/// All chunks of the process. They lie in one range of addresses, by which their blocks are known.
class chunk_region {
 public:
  static bool holds(const void* block) noexcept {
    return reinterpret_cast<std::uintptr_t>(block) - first.load(std::memory_order_relaxed) < addresses;
  }
  /// An empty chunk, or null when the system has no memory or no addresses for it.
  static chunk* take() noexcept;
  static void give(chunk* empty) noexcept;
  /// A document begins, of whatever size: what a large one has left is kept for so many others.
  static void begin_document() noexcept {
    if (keeps_more.load(std::memory_order_relaxed)) count_document();
  }

 private:
  static void count_document() noexcept;

  static constexpr std::size_t addresses = std::size_t{16} << 30;

  // No block lies there, nor as much behind it.
  static constexpr std::uintptr_t nowhere = std::uintptr_t{1} << (8 * sizeof(std::uintptr_t) - 1);

  static inline std::atomic<std::uintptr_t> first{nowhere};
  static inline std::atomic<bool> keeps_more{false};  // than is kept for good

  friend class chunk_stock;
};

/// Where one thread takes blocks from chunks, one behind the other.
class chunk_line {
 public:
  chunk_line() = default;
  chunk_line(const chunk_line&) = delete;
  chunk_line& operator=(const chunk_line&) = delete;
  ~chunk_line() { close(); }

  /// Of at most a quarter of a chunk; null when there is no memory for it.
  void* take(std::size_t size) noexcept {
    const std::size_t bytes = (size + step - 1) / step * step;
    if (static_cast<std::size_t>(end_ - at_) < bytes && !open_next()) return nullptr;
    void* const block = at_;
    at_ += bytes;
    ++taken_;
    return block;
  }
  /// Begins anew where all that was taken from the open chunk is released.
  void rewind() noexcept;

 private:
  static constexpr std::size_t step = 16;

  bool open_next() noexcept;
  void close() noexcept;

  chunk* chunk_ = nullptr;
  char *at_ = nullptr, *end_ = nullptr;
  std::size_t taken_ = 0;  // blocks of the open chunk
};

}  // namespace ruvo::detail
