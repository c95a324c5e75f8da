#pragma once

// Finding the next interesting unit of a text; where units have 16 bits, eight at a time.

#include <bit>
#include <cstdint>

#include "base/simd.hpp"

namespace ruvo::serializer {

/// The first unit of [at, end) that is `a` or `b`, or end.
template <class Unit>
inline const Unit* find_either(const Unit* at, const Unit* end, Unit a, Unit b) noexcept {
#ifdef KESTA_X64
  if constexpr (texto::unit_16<Unit>) {
    const __m128i all_a = _mm_set1_epi16(static_cast<short>(a)),
                  all_b = _mm_set1_epi16(static_cast<short>(b));
    for (; end - at >= 8; at += 8) {
      const __m128i units = texto::load_16(at);
      const __m128i hits = _mm_or_si128(_mm_cmpeq_epi16(units, all_a), _mm_cmpeq_epi16(units, all_b));
      const auto mask = static_cast<std::uint32_t>(_mm_movemask_epi8(hits));
      if (mask) return at + std::countr_zero(mask) / 2;
    }
  }
#endif
  while (at != end && *at != a && *at != b) ++at;
  return at;
}

/// Whether JSON writes the unit in another way: control characters (0-31 and 127), quote and backslash.
constexpr bool is_escaped(wchar_t c) noexcept { return c < 32 || c == L'"' || c == L'\\' || c == 127; }

/// The first unit of [at, end) that is_escaped(), or end.
template <class Unit>
inline const Unit* find_escaped(const Unit* at, const Unit* end) noexcept {
#ifdef KESTA_X64
  if constexpr (texto::unit_16<Unit>) {
    const __m128i quote = _mm_set1_epi16('"'), backslash = _mm_set1_epi16('\\'), del = _mm_set1_epi16(127);
    const __m128i last_control = _mm_set1_epi16(31), zero = _mm_setzero_si128();
    for (; end - at >= 8; at += 8) {
      const __m128i units = texto::load_16(at);
      __m128i hits = _mm_cmpeq_epi16(_mm_subs_epu16(units, last_control), zero);
      hits = _mm_or_si128(hits, _mm_cmpeq_epi16(units, quote));
      hits = _mm_or_si128(hits, _mm_cmpeq_epi16(units, backslash));
      hits = _mm_or_si128(hits, _mm_cmpeq_epi16(units, del));
      const auto mask = static_cast<std::uint32_t>(_mm_movemask_epi8(hits));
      if (mask) return at + std::countr_zero(mask) / 2;
    }
  }
#endif
  while (at != end && !is_escaped(*at)) ++at;
  return at;
}

/// What XML calls white space.
constexpr bool is_xml_blank(wchar_t c) noexcept {
  return c == L' ' || c == L'\t' || c == L'\n' || c == L'\r';
}

/// Whether XML writes the unit in another way: & ' < > and the quotation mark.
constexpr bool is_markup(wchar_t c) noexcept { return (c & ~1) == L'&' || (c & ~2) == L'<' || c == L'"'; }

/// The first unit of [at, end) that is_markup(), or end.
template <class Unit>
inline const Unit* find_markup(const Unit* at, const Unit* end) noexcept {
#ifdef KESTA_X64
  if constexpr (texto::unit_16<Unit>) {
    static_assert((L'&' | 1) == L'\'' && (L'<' | 2) == L'>');
    const __m128i amp = _mm_set1_epi16('&'), less = _mm_set1_epi16('<'), quote = _mm_set1_epi16('"');
    const __m128i but_one = _mm_set1_epi16(~1), but_two = _mm_set1_epi16(~2);
    for (; end - at >= 8; at += 8) {
      const __m128i units = texto::load_16(at);
      __m128i hits = _mm_cmpeq_epi16(_mm_and_si128(units, but_one), amp);
      hits = _mm_or_si128(hits, _mm_cmpeq_epi16(_mm_and_si128(units, but_two), less));
      hits = _mm_or_si128(hits, _mm_cmpeq_epi16(units, quote));
      const auto mask = static_cast<std::uint32_t>(_mm_movemask_epi8(hits));
      if (mask) return at + std::countr_zero(mask) / 2;
    }
  }
#endif
  while (at != end && !is_markup(*at)) ++at;
  return at;
}

}  // namespace ruvo::serializer
