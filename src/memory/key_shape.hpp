// SPDX-License-Identifier: BSL-1.0
#pragma once

// The keys of bundles that have the same ones in the same order, made once for all of them. A share of them
// may be given back by another thread than the one that made them.

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "memory/shared_key.hpp"

namespace ruvo::detail {

class key_shape {
 public:
  /// As many keys as one byte counts. Positions of these are bytes.
  static constexpr std::size_t most_keys = 127;

  /// Of keys of which no two are alike, retaining each. The share is the caller's. Throws std::bad_alloc.
  static const key_shape* make(const shared_key* const* keys, std::size_t size);

  key_shape(const key_shape&) = delete;
  key_shape& operator=(const key_shape&) = delete;

  void retain(std::uint64_t shares = 1) const noexcept { uses_.fetch_add(shares, std::memory_order_relaxed); }
  void release(std::uint64_t shares = 1) const noexcept {
    if (uses_.fetch_sub(shares, std::memory_order_acq_rel) == shares) destroy();
  }

  std::size_t size() const noexcept { return size_; }
  /// By position, as the hashes.
  const shared_key* const* keys() const noexcept {
    return reinterpret_cast<const shared_key* const*>(hashes() + words_before_keys(size_));
  }
  // What look-up and iteration read is found without reading the size here, which who asks knows.
  const std::uint32_t* hashes() const noexcept { return reinterpret_cast<const std::uint32_t*>(this + 1); }
  /// The positions in the order of the keys. `size` is size().
  const std::uint8_t* ranks(std::size_t size) const noexcept {
    return reinterpret_cast<const std::uint8_t*>(hashes() + size);
  }

 private:
  explicit key_shape(std::size_t size) noexcept : size_(size) {}
  ~key_shape() = default;
  /// Units of a hash, in which hashes and ranks lie, and what keeps the keys aligned.
  static constexpr std::size_t words_before_keys(std::size_t size) noexcept {
    return (size + (size + 3) / 4 + 1) / 2 * 2;
  }
  void destroy() const noexcept;

  mutable std::atomic<std::uint64_t> uses_{1};
  const std::size_t size_;
  // Behind: hashes, ranks, keys.
};

}  // namespace ruvo::detail
