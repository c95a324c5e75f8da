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
  /// By position.
  const shared_key* const* keys() const noexcept {
    return reinterpret_cast<const shared_key* const*>(this + 1);
  }
  const std::uint32_t* hashes() const noexcept {
    return reinterpret_cast<const std::uint32_t*>(keys() + size_);
  }
  /// The positions in the order of the keys.
  const std::uint8_t* ranks() const noexcept {
    return reinterpret_cast<const std::uint8_t*>(hashes() + size_);
  }

 private:
  explicit key_shape(std::size_t size) noexcept : size_(size) {}
  ~key_shape() = default;
  void destroy() const noexcept;

  mutable std::atomic<std::uint64_t> uses_{1};
  const std::size_t size_;
  // Behind: keys, hashes, ranks.
};

}  // namespace ruvo::detail
