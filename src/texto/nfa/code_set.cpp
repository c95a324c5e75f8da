// SPDX-License-Identifier: BSL-1.0

// Sets of characters.

#include "texto/nfa/code_set.hpp"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace ruvo::texto::nfa {

namespace {

constexpr char32_t last_code = 0x10FFFF;

/// Sorted, and apart from each other.
std::vector<code_set::range> joined(std::vector<code_set::range> ranges) {
  std::sort(ranges.begin(), ranges.end());
  std::vector<code_set::range> out;
  for (const auto& [first, last] : ranges) {
    if (!out.empty() && first <= out.back().second + 1)
      out.back().second = std::max(out.back().second, last);
    else
      out.push_back({first, last});
  }
  return out;
}

std::vector<code_set::range> complement(const std::vector<code_set::range>& ranges) {
  std::vector<code_set::range> out;
  char32_t next = 0;
  for (const auto& [first, last] : ranges) {
    if (first > next) out.push_back({next, first - 1});
    next = last + 1;
  }
  if (next <= last_code) out.push_back({next, last_code});
  return out;
}

}  // namespace

void code_set::finish(bool inverted) {
  ranges_ = joined(std::move(ranges_));
  if (inverted) ranges_ = complement(ranges_);
  rough_ = {};
  for (const auto& [first, last] : ranges_) {
    for (char32_t c = first; c <= last && c < 256; ++c) rough_.add(c);
    if (last >= 256) rough_.high = true;
  }
}

bool code_set::has_high(char32_t c) const noexcept {
  const auto behind = std::upper_bound(ranges_.begin(), ranges_.end(), c,
                                       [](char32_t value, const range& each) { return value < each.first; });
  return behind != ranges_.begin() && c <= std::prev(behind)->second;
}

}  // namespace ruvo::texto::nfa
