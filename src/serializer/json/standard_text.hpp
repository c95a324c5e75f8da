// SPDX-License-Identifier: BSL-1.0
#pragma once

// Texts as standard JSON has them between quotation marks: in UTF-8, or in UTF-16 units.

#include <algorithm>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "base/simd.hpp"
#include "base/utf.hpp"
#include "serializer/json/grammar.hpp"

namespace ruvo::serializer {

/// The most that one unit of a text comes to: \u0000.
constexpr std::size_t most_escaped_units = 6;

/// Writes the units of a text, of `Unit`, as `Out`: char for UTF-8, else the same units. Everything is given
/// in the text that JSON reads as these units; lone surrogates and, if asked, U+2028 and U+2029 as escapes.
template <class Out, class Unit>
class escaped_text {
  static constexpr bool narrow = std::same_as<Out, char>;

 public:
  /// The units [at, stop) of a text that ends at `end`; `at` moves to `stop`, or one behind it where a
  /// surrogate pair lies across. Needs room for most_escaped_units each, and for 8 more.
  static Out* put(Out* to, const Unit*& at, const Unit* stop, const Unit* end, bool separators) noexcept {
    while (true) {
      to = put_plain(to, at, stop);
      if (at >= stop) return to;
      do to = put_other(to, at, end, separators);
      while (narrow && stop > at && !(static_cast<char16_t>(*at) < 0x80));
    }
  }

 private:
  /// Whether the unit stands for itself in one unit of the output.
  static bool is_plain(Unit unit) noexcept {
    const auto c = static_cast<char16_t>(unit);
    if (c < 0x80) return c >= 0x20 && c != u'"' && c != u'\\';
    return !narrow && !texto::is_surrogate(c) && !is_separator(c);
  }
  static bool is_separator(char16_t c) noexcept { return (c & 0xFFFE) == 0x2028; }

#ifdef KESTA_X64
  /// Two bits for each of eight units that is not plain.
  static std::uint32_t find_others(__m128i units) noexcept {
    const auto all = [](int value) { return _mm_set1_epi16(static_cast<short>(value)); };
    const __m128i zero = _mm_setzero_si128();
    __m128i others = _mm_or_si128(_mm_cmpeq_epi16(units, all('"')), _mm_cmpeq_epi16(units, all('\\')));
    if constexpr (narrow) {
      const __m128i beyond = _mm_subs_epu16(_mm_sub_epi16(units, all(0x20)), all(0x5F));
      const __m128i plain = _mm_andnot_si128(others, _mm_cmpeq_epi16(beyond, zero));
      return static_cast<std::uint32_t>(_mm_movemask_epi8(plain)) ^ 0xFFFF;
    }
    others = _mm_or_si128(others, _mm_cmpeq_epi16(_mm_subs_epu16(units, all(0x1F)), zero));
    others = _mm_or_si128(others, _mm_cmpeq_epi16(_mm_and_si128(units, all(0xF800)), all(0xD800)));
    others = _mm_or_si128(others, _mm_cmpeq_epi16(_mm_and_si128(units, all(0xFFFE)), all(0x2028)));
    return static_cast<std::uint32_t>(_mm_movemask_epi8(others));
  }
  static void copy_eight(Out* to, __m128i units) noexcept {
    if constexpr (narrow) {
      _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_packus_epi16(units, units));
    } else {
      texto::store_16(to, units);
    }
  }
#endif

  /// Up to a unit that is not plain.
  static Out* put_plain(Out* to, const Unit*& begin, const Unit* stop) noexcept {
    const Unit* at = begin;  // a local: what is written could alias the other
#ifdef KESTA_X64
    if constexpr (texto::unit_16<Unit>) {
      for (std::ptrdiff_t step = 8; stop - at >= 4; at += step, to += step) {
        step = stop - at >= 8 ? 8 : 4;
        const __m128i units =
            step == 8 ? texto::load_16(at) : _mm_loadl_epi64(reinterpret_cast<const __m128i*>(at));
        copy_eight(to, units);
        const std::uint32_t others = find_others(units) & (step == 8 ? 0xFFFF : 0xFF);
        if (!others) continue;
        const int plain = std::countr_zero(others) / 2;
        begin = at + plain;
        return to + plain;
      }
    }
#endif
    while (at < stop && is_plain(*at)) *to++ = static_cast<Out>(*at++);
    begin = at;
    return to;
  }

  /// One that is not plain, and in UTF-8 those behind it that are not ASCII.
  static Out* put_other(Out* to, const Unit*& at, const Unit* end, bool separators) noexcept {
    const auto c = static_cast<char16_t>(*at++);
    if (c < 0x80) return put_escape(to, c);
    if (is_separator(c) && separators) return put_in_hex(to, c);
    if (!texto::is_surrogate(c)) return put_long(to, c);
    if (!texto::is_high_surrogate(c) || at == end || !texto::is_low_surrogate(*at)) return put_in_hex(to, c);
    const auto low = static_cast<char16_t>(*at++);
    return put_pair(to, c, low);
  }

  static Out* put_escape(Out* to, char16_t c) noexcept {
    const wchar_t letter = letter_of_escape(static_cast<wchar_t>(c));
    if (!letter) return put_in_hex(to, c);
    *to++ = static_cast<Out>('\\');
    *to++ = static_cast<Out>(letter);
    return to;
  }
  static Out* put_in_hex(Out* to, char16_t c) noexcept {
    *to++ = static_cast<Out>('\\');
    *to++ = static_cast<Out>('u');
    for (const int shift : {12, 8, 4, 0}) *to++ = static_cast<Out>("0123456789abcdef"[c >> shift & 15]);
    return to;
  }
  static Out* put_long(Out* to, char16_t c) noexcept {
    if constexpr (!narrow) {
      *to++ = static_cast<Out>(c);
      return to;
    }
    if (c >= 0x800) *to++ = static_cast<Out>(0xE0 | c >> 12);
    *to++ = static_cast<Out>(c < 0x800 ? 0xC0 | c >> 6 : 0x80 | (c >> 6 & 0x3F));
    *to++ = static_cast<Out>(0x80 | (c & 0x3F));
    return to;
  }
  static Out* put_pair(Out* to, char16_t high, char16_t low) noexcept {
    if constexpr (!narrow) {
      *to++ = static_cast<Out>(high);
      *to++ = static_cast<Out>(low);
      return to;
    }
    const char32_t point = 0x10000u + ((high & 0x3FFu) << 10) + (low & 0x3FFu);
    *to++ = static_cast<Out>(0xF0 | point >> 18);
    for (const int shift : {12, 6, 0}) *to++ = static_cast<Out>(0x80 | (point >> shift & 0x3F));
    return to;
  }
};

}  // namespace ruvo::serializer
