// SPDX-License-Identifier: BSL-1.0
#pragma once

// Finding the next interesting unit of a text; where units have 16 bits, eight at a time.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/simd.hpp"

namespace ruvo::serializer {

inline std::wstring_view between(const wchar_t* first, const wchar_t* last) noexcept {
  return {first, static_cast<std::size_t>(last - first)};
}

/// What JSON and XML both call a blank.
constexpr bool is_blank(wchar_t c) noexcept { return c == L' ' || c == L'\t' || c == L'\n' || c == L'\r'; }

inline const wchar_t* skip_blanks(const wchar_t* at, const wchar_t* end) noexcept {
  while (at != end && is_blank(*at)) ++at;
  return at;
}

#ifdef KESTA_X64
/// Moves `at` to the first unit that `hits` marks, eight units at a time; false when fewer than eight are
/// left, and `at` is the first of them.
template <texto::unit_16 Unit, class Hits>
inline bool find_in_eights(const Unit*& at, const Unit* end, Hits hits) noexcept {
  for (; end - at >= 8; at += 8) {
    const auto mask = static_cast<std::uint32_t>(_mm_movemask_epi8(hits(texto::load_16(at))));
    if (mask) {
      at += std::countr_zero(mask) / 2;
      return true;
    }
  }
  return false;
}
#endif

/// The first unit of [at, end) that is `a` or `b`, or end.
template <class Unit>
inline const Unit* find_either(const Unit* at, const Unit* end, Unit a, Unit b) noexcept {
#ifdef KESTA_X64
  if constexpr (texto::unit_16<Unit>) {
    const __m128i all_a = _mm_set1_epi16(static_cast<short>(a)),
                  all_b = _mm_set1_epi16(static_cast<short>(b));
    const auto hits = [=](__m128i units) {
      return _mm_or_si128(_mm_cmpeq_epi16(units, all_a), _mm_cmpeq_epi16(units, all_b));
    };
    if (find_in_eights(at, end, hits)) return at;
  }
#endif
  while (at != end && *at != a && *at != b) ++at;
  return at;
}

}  // namespace ruvo::serializer
