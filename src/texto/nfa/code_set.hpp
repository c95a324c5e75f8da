// SPDX-License-Identifier: BSL-1.0
#pragma once

// Sets of characters.

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace ruvo::texto::nfa {

/// Characters below U+0100 one by one, and all from there on together.
struct rough_set {
  std::array<std::uint64_t, 4> low{};
  bool high = false;

  void add(const rough_set& other) noexcept {
    for (std::size_t i = 0; i < low.size(); ++i) low[i] |= other.low[i];
    high |= other.high;
  }
  void add(char32_t c) noexcept {
    if (c < 256)
      low[c >> 6] |= std::uint64_t{1} << (c & 63);
    else
      high = true;
  }
  bool has(char32_t c) const noexcept { return c < 256 ? (low[c >> 6] >> (c & 63) & 1) != 0 : high; }
  bool meets(const rough_set& other) const noexcept {
    for (std::size_t i = 0; i < low.size(); ++i)
      if ((low[i] & other.low[i]) != 0) return true;
    return high && other.high;
  }
};

/// A set of code points, surrogates that stand alone among them. It is filled, then finished.
class code_set {
 public:
  using range = std::pair<char32_t, char32_t>;  // first and last

  void add(char32_t first, char32_t last) { ranges_.push_back({first, last}); }
  void add(char32_t c) { add(c, c); }
  void add(const code_set& other) {
    ranges_.insert(ranges_.end(), other.ranges_.begin(), other.ranges_.end());
  }
  /// Brings the ranges in order, and with `inverted` takes all that was not added.
  void finish(bool inverted = false);

  const std::vector<range>& ranges() const noexcept { return ranges_; }
  const rough_set& rough() const noexcept { return rough_; }
  bool has(char32_t c) const noexcept {
    return c < 256 ? (rough_.low[c >> 6] >> (c & 63) & 1) != 0 : rough_.high && has_high(c);
  }

 private:
  bool has_high(char32_t c) const noexcept;

  std::vector<range> ranges_;
  rough_set rough_;
};

}  // namespace ruvo::texto::nfa
