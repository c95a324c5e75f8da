// SPDX-License-Identifier: BSL-1.0

// The chunks of the process: those with memory that nobody uses, and those without.

#include "memory/chunks.hpp"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <new>

#include "system/pages.hpp"

namespace ruvo::detail {

/// Behind chunk_region. A thread comes here once for 64 KB.
class chunk_stock {
 public:
  chunk* take() noexcept {
    const std::lock_guard lock(mutex_);
    if (chunk* const spare = spare_) {
      spare_ = spare->next;
      --spares_;
      ++used_;
      return spare;
    }
    return take_fresh();
  }

  void give(chunk* empty) noexcept {
    const std::lock_guard lock(mutex_);
    --used_;
    if (spares_ < most_spares && !is_closing_) {
      empty->next = spare_;
      spare_ = empty;
      ++spares_;
      return;
    }
    give_back(empty);
    if (is_closing_ && used_ == 0) release();
  }

  /// The library is being unloaded: the addresses are released with the last chunk.
  void close() noexcept {
    const std::lock_guard lock(mutex_);
    is_closing_ = true;
    if (used_ == 0) release();
  }

 private:
  static constexpr std::size_t chunks = chunk_region::addresses / chunk::bytes, word_bits = 64;
  static constexpr std::size_t most_spares = (std::size_t{64} << 20) / chunk::bytes;

  char* first() const noexcept {
    return reinterpret_cast<char*>(chunk_region::first_.load(std::memory_order_relaxed));
  }

  bool has_addresses() noexcept {
    if (chunk_region::first_.load(std::memory_order_relaxed) != chunk_region::nowhere) return true;
    if (is_refused_ || is_closing_) return false;
    void* const got = platform::reserve_addresses(chunk_region::addresses);
    is_refused_ = !got;
    if (got) chunk_region::first_.store(reinterpret_cast<std::uintptr_t>(got), std::memory_order_relaxed);
    return got != nullptr;
  }

  chunk* take_fresh() noexcept {
    if (!has_addresses()) return nullptr;
    while (first_open_ < chunks / word_bits && ~in_use_[first_open_] == 0) ++first_open_;
    if (first_open_ == chunks / word_bits) return nullptr;
    std::uint64_t& word = in_use_[first_open_];
    const auto bit = static_cast<std::size_t>(std::countr_one(word));
    char* const at = first() + (first_open_ * word_bits + bit) * chunk::bytes;
    if (!platform::commit_pages(at, chunk::bytes)) return nullptr;
    word |= std::uint64_t{1} << bit;
    ++used_;
    return new (at) chunk;
  }

  void give_back(chunk* empty) noexcept {
    const auto n = static_cast<std::size_t>(reinterpret_cast<char*>(empty) - first()) / chunk::bytes;
    platform::decommit_pages(empty, chunk::bytes);
    in_use_[n / word_bits] &= ~(std::uint64_t{1} << n % word_bits);
    if (n / word_bits < first_open_) first_open_ = n / word_bits;
  }

  void release() noexcept {
    if (chunk_region::first_.load(std::memory_order_relaxed) == chunk_region::nowhere) return;
    platform::release_addresses(first(), chunk_region::addresses);
    chunk_region::first_.store(chunk_region::nowhere, std::memory_order_relaxed);
    spare_ = nullptr;
    spares_ = 0;
  }

  std::mutex mutex_;
  std::uint64_t in_use_[chunks / word_bits] = {};  // the chunks that have memory
  std::size_t first_open_ = 0;                     // no word before it has a bit to spare
  chunk* spare_ = nullptr;
  std::size_t spares_ = 0, used_ = 0;
  bool is_refused_ = false, is_closing_ = false;
};

namespace {

// Never destroyed: values may be released when other static objects have gone.
chunk_stock& stock() noexcept {
  alignas(chunk_stock) static std::byte room[sizeof(chunk_stock)];
  static chunk_stock* const made = new (room) chunk_stock;
  return *made;
}

struct closer {
  constexpr closer() noexcept = default;
  closer(const closer&) = delete;
  closer& operator=(const closer&) = delete;
  ~closer() { stock().close(); }
};
const closer at_unload;

}  // namespace

chunk* chunk_region::take() noexcept { return stock().take(); }
void chunk_region::give(chunk* empty) noexcept { stock().give(empty); }

void chunk::release(std::size_t blocks) noexcept {
  if (live.fetch_sub(blocks, std::memory_order_acq_rel) == blocks) chunk_region::give(this);
}

bool chunk_line::open_next() noexcept {
  chunk* const made = chunk_region::take();
  if (!made) return false;
  close();
  made->live.store(chunk::open, std::memory_order_relaxed);
  chunk_ = made;
  at_ = made->first();
  end_ = made->end();
  return true;
}

void chunk_line::close() noexcept {
  if (!chunk_) return;
  chunk_->release(chunk::open - taken_);
  chunk_ = nullptr;
  at_ = end_ = nullptr;
  taken_ = 0;
}

void chunk_line::rewind() noexcept {
  if (!chunk_ || chunk_->live.load(std::memory_order_acquire) != chunk::open - taken_) return;
  chunk_->live.store(chunk::open, std::memory_order_relaxed);
  at_ = chunk_->first();
  taken_ = 0;
}

}  // namespace ruvo::detail
