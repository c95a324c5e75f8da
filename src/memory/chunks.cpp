// SPDX-License-Identifier: BSL-1.0

// The chunks of the process: those with memory that nobody uses, and those without.

#include "memory/chunks.hpp"

#include <ruvo/heap.hpp>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <mutex>
#include <new>

#include "system/pages.hpp"
#include "system/process.hpp"

namespace ruvo::detail {

/// Behind chunk_region. A thread comes here once for 64 KB. The system gives memory, and takes it back, by
/// the span of chunks, as each call takes about as long as reading a chunk full of values.
class chunk_stock {
 public:
  chunk* take() noexcept {
    const auto lock = locked();
    if (!lock) return nullptr;
    if (spares_ == 0 && !commit_span()) return nullptr;
    const std::size_t n = first_of(spans_with_spares_, first_spare_);
    const auto bit = static_cast<std::size_t>(std::countr_zero(spare_[n]));
    spare_[n] = static_cast<mask>(spare_[n] & (spare_[n] - 1));
    if (spare_[n] == 0) clear(spans_with_spares_, n);
    --spares_;
    if (++used_ > peak_) note_peak();
    return new (address(n) + bit * chunk::bytes) chunk;
  }

  void give(chunk* empty) noexcept {
    const auto lock = locked();
    if (!lock) return;
    const auto at = static_cast<std::size_t>(reinterpret_cast<char*>(empty) - first()) / chunk::bytes;
    const std::size_t n = at / in_span;
    spare_[n] = static_cast<mask>(spare_[n] | 1u << at % in_span);
    set(spans_with_spares_, n);
    first_spare_ = std::min(first_spare_, n / word_bits);
    ++spares_;
    --used_;
    if (spare_[n] == whole && has_too_many()) decommit_span(n);
    if (is_closing_ && used_ == 0) release();
  }

  /// New memory costs as much as reading into it. So 64 MB are kept for good, and as much as was in use at
  /// the most, up to `most_kept`, until `patience` documents have come and gone with less: from then on what
  /// these needed.
  void count_document() noexcept {
    const auto lock = locked();
    if (!lock || recent_ <= most_spares) return;
    if (documents_ == 0) peak_ = used_;
    if (documents_++ < patience) return;
    keep(peak_);
    for (std::size_t n = spans; n-- > 0 && has_too_many();)
      if (spare_[n] == whole) decommit_span(n);
  }

  /// All that can be given back now; the number of bytes.
  std::size_t give_back() noexcept {
    const auto lock = locked();
    if (!lock) return 0;
    const std::size_t before = spares_;
    keep(used_);
    for (std::size_t n = spans; n-- > 0 && spares_ > 0;)
      if (spare_[n] == whole) decommit_span(n);
    return (before - spares_) * chunk::bytes;
  }

  /// The library is being unloaded: the addresses are released with the last chunk.
  void close() noexcept {
    const auto lock = locked();
    if (!lock) return;
    is_closing_ = true;
    if (used_ == 0) release();
  }

 private:
  /// Not locked where the process ends: its other threads are gone, and one of them may have had the mutex.
  std::unique_lock<std::mutex> locked() noexcept {
    std::unique_lock lock(mutex_, std::try_to_lock);
    if (!lock && !platform::is_process_ending()) lock.lock();
    return lock;
  }

  using mask = std::uint16_t;
  static constexpr std::size_t in_span = 16, span_bytes = in_span * chunk::bytes;
  static constexpr mask whole = 0xFFFF;
  static constexpr std::size_t spans = chunk_region::addresses / span_bytes, word_bits = 64;
  static constexpr std::size_t most_spares = (std::size_t{64} << 20) / chunk::bytes;
  static constexpr std::size_t most_kept = (std::size_t{512} << 20) / chunk::bytes;
  using bits = std::uint64_t[spans / word_bits];
  static constexpr unsigned patience = 8;

  /// The first bit that is set, from the word `from` on, which moves up to it; `spans` when there is none.
  static std::size_t first_of(const bits& in, std::size_t& from) noexcept {
    for (; from < spans / word_bits; ++from) {
      if (in[from] != 0) return from * word_bits + static_cast<std::size_t>(std::countr_zero(in[from]));
    }
    return spans;
  }
  static void set(bits& in, std::size_t n) noexcept {
    in[n / word_bits] |= std::uint64_t{1} << n % word_bits;
  }
  static void clear(bits& in, std::size_t n) noexcept {
    in[n / word_bits] &= ~(std::uint64_t{1} << n % word_bits);
  }

  char* first() const noexcept {
    return reinterpret_cast<char*>(chunk_region::first.load(std::memory_order_relaxed));
  }
  char* address(std::size_t span) const noexcept { return first() + span * span_bytes; }

  bool has_addresses() noexcept {
    if (chunk_region::first.load(std::memory_order_relaxed) != chunk_region::nowhere) return true;
    if (is_refused_ || is_closing_) return false;
    void* const got = platform::reserve_addresses(chunk_region::addresses);
    is_refused_ = !got;
    if (!got) return false;
    chunk_region::first.store(reinterpret_cast<std::uintptr_t>(got), std::memory_order_relaxed);
    std::fill(std::begin(spans_without_memory_), std::end(spans_without_memory_), ~std::uint64_t{0});
    return true;
  }

  bool commit_span() noexcept {
    if (!has_addresses()) return false;
    const std::size_t n = first_of(spans_without_memory_, first_without_memory_);
    if (n == spans || !platform::commit_pages(address(n), span_bytes)) return false;
    clear(spans_without_memory_, n);
    set(spans_with_spares_, n);
    first_spare_ = std::min(first_spare_, n / word_bits);
    spare_[n] = whole;
    spares_ += in_span;
    return true;
  }

  void decommit_span(std::size_t n) noexcept {
    platform::decommit_pages(address(n), span_bytes);
    set(spans_without_memory_, n);
    first_without_memory_ = std::min(first_without_memory_, n / word_bits);
    clear(spans_with_spares_, n);
    spare_[n] = 0;
    spares_ -= in_span;
  }

  void note_peak() noexcept {
    peak_ = used_;
    if (peak_ >= recent_) keep(peak_);
  }

  void keep(std::size_t chunks) noexcept {
    documents_ = 0;
    recent_ = std::min(chunks, most_kept);
    chunk_region::keeps_more.store(recent_ > most_spares, std::memory_order_relaxed);
  }

  bool has_too_many() const noexcept { return spares_ > most_spares && spares_ + used_ > recent_; }

  void release() noexcept {
    if (chunk_region::first.load(std::memory_order_relaxed) == chunk_region::nowhere) return;
    platform::release_addresses(first(), chunk_region::addresses);
    chunk_region::first.store(chunk_region::nowhere, std::memory_order_relaxed);
    spares_ = 0;
  }

  std::mutex mutex_;
  mask spare_[spans] = {};  // the chunks of each span that have memory and are free
  bits spans_with_spares_ = {}, spans_without_memory_ = {};
  std::size_t first_spare_ = 0, first_without_memory_ = 0;  // no word before them has a bit
  std::size_t spares_ = 0, used_ = 0;
  // The most that was used since documents are counted, and what is kept for the largest one that counts.
  std::size_t peak_ = 0, recent_ = 0;
  unsigned documents_ = 0;  // since that one
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
void chunk_region::count_document() noexcept { stock().count_document(); }

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

namespace ruvo {

std::size_t give_back_memory() noexcept { return detail::stock().give_back(); }

}  // namespace ruvo
