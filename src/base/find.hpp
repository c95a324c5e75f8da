// SPDX-License-Identifier: BSL-1.0
#pragma once

// Finding a literal text in linear time whatever the texts are; where units have 16 bits, eight positions at
// a time.

#include <algorithm>
#include <bit>
#include <cstdint>
#include <string_view>
#include <vector>

#include "base/simd.hpp"

namespace ruvo::texto {

/// Where the unit stands first in [at, end), which is short as a rule; `end` where it does not.
inline const wchar_t* find_unit(const wchar_t* at, const wchar_t* end, wchar_t unit) noexcept {
#ifdef KESTA_X64
  if constexpr (unit_16<wchar_t>) {
    const __m128i wanted = _mm_set1_epi16(static_cast<short>(unit));
    for (; end - at >= 8; at += 8) {
      const auto hits = static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi16(load_16(at), wanted)));
      if (hits != 0) return at + std::countr_zero(hits) / 2;
    }
  }
#endif
  while (at != end && *at != unit) ++at;
  return at;
}

/// A text to be found, not empty, that outlives this object. Candidates are the places where its first and
/// last units stand. Where too many of them turn out to be wrong, as in a text that repeats itself, the
/// search goes on with a table of the part's borders, which looks at no unit of the text twice.
template <class Unit>
class basic_finder {
 public:
  using view = std::basic_string_view<Unit>;
  static constexpr std::size_t npos = view::npos;

  explicit basic_finder(view part) noexcept : part_(part) {}

  /// The first place at or behind `from` where the part stands in the text, or npos. A finder goes through
  /// one text, from the left to the right.
  std::size_t find(view text, std::size_t from) {
    if (from > text.size() || text.size() - from < part_.size()) return npos;
    const Unit* const found = find_by_ends(text, text.data() + from);
    return found ? static_cast<std::size_t>(found - text.data()) : npos;
  }

 private:
  const Unit* find_by_ends(view text, const Unit* at) {
    const auto behind = static_cast<std::ptrdiff_t>(part_.size()) - 1;
    const Unit first = part_.front(), last = part_.back();
    const Unit* const stop = text.data() + text.size() - behind;  // no candidate from here on
#ifdef KESTA_X64
    if constexpr (unit_16<Unit>) {
      const __m128i firsts = _mm_set1_epi16(static_cast<short>(first));
      const __m128i lasts = _mm_set1_epi16(static_cast<short>(last));
      for (; stop - at >= 8; at += 8) {
        const __m128i heads = load_16(at);
        const __m128i tails = load_16(at + behind);
        const __m128i both = _mm_and_si128(_mm_cmpeq_epi16(heads, firsts), _mm_cmpeq_epi16(tails, lasts));
        for (auto hits = static_cast<std::uint32_t>(_mm_movemask_epi8(both)); hits != 0;) {
          const int lane = std::countr_zero(hits) / 2;
          if (stands_at(at + lane)) return at + lane;
          if (gives_up(at - text.data())) return find_by_borders(at + lane + 1, text);
          hits &= ~(3u << 2 * lane);
        }
      }
    }
#endif
    for (; at != stop; ++at) {
      if (*at != first || at[behind] != last) continue;
      if (stands_at(at)) return at;
      if (gives_up(at - text.data())) return find_by_borders(at + 1, text);
    }
    return nullptr;
  }

  /// The ends are known to stand there.
  bool stands_at(const Unit* at) noexcept {
    for (std::size_t i = 1; i + 1 < part_.size(); ++i) {
      if (part_[i] == at[i]) continue;
      in_vain_ += static_cast<std::ptrdiff_t>(i);
      return false;
    }
    return true;
  }

  /// More than four units compared in vain for each unit of the text.
  bool gives_up(std::ptrdiff_t units) const noexcept { return in_vain_ > 4 * units + 4096; }

  const Unit* find_by_borders(const Unit* at, view text) {
    if (borders_.empty()) make_borders();
    std::size_t matched = 0;
    for (const Unit* const end = text.data() + text.size(); at != end; ++at) {
      while (matched > 0 && part_[matched] != *at) matched = borders_[matched - 1];
      if (part_[matched] == *at) ++matched;
      if (matched == part_.size()) return at + 1 - matched;
    }
    return nullptr;
  }

  /// For each beginning of the part, the length of its longest proper beginning that is also its end.
  void make_borders() {
    borders_.assign(part_.size(), 0);
    for (std::size_t at = 1, matched = 0; at < part_.size(); ++at) {
      while (matched > 0 && part_[matched] != part_[at]) matched = borders_[matched - 1];
      if (part_[matched] == part_[at]) ++matched;
      borders_[at] = matched;
    }
  }

  view part_;
  std::ptrdiff_t in_vain_ = 0;  // units compared where the part turned out not to stand
  std::vector<std::size_t> borders_;
};

using finder = basic_finder<wchar_t>;

}  // namespace ruvo::texto
