// SPDX-License-Identifier: BSL-1.0
#pragma once

// The case of all letters of a text, on units of any width.

#include <ruvo/texto/words.hpp>

#include <cstddef>

#include "base/simd.hpp"

namespace ruvo::texto::letter_case {

// Both cases lie 32 apart, those of A-Z and those of the accented letters.

struct to_small {
  static constexpr short letter = 'A', accented = 0xC0, sign = 0xD7, distance = 32;
  static wchar_t map(wchar_t c) { return to_lowercase(c); }
};
struct to_capital {
  static constexpr short letter = 'a', accented = 0xE0, sign = 0xF7, distance = -32;
  static wchar_t map(wchar_t c) { return to_uppercase(c); }
};

#ifdef KESTA_X64
/// All bits of each unit that lies in `count` units from `first` on.
inline __m128i in_range(__m128i units, short first, short count) noexcept {
  const __m128i from_lowest = _mm_sub_epi16(units, _mm_set1_epi16(static_cast<short>(first - 32768)));
  return _mm_cmplt_epi16(from_lowest, _mm_set1_epi16(static_cast<short>(count - 32768)));
}

/// Eight units.
template <class Case>
__m128i mapped(__m128i units) noexcept {
  const __m128i letters = in_range(units, Case::letter, 26);
  const __m128i accented = _mm_andnot_si128(_mm_cmpeq_epi16(units, _mm_set1_epi16(Case::sign)),
                                            in_range(units, Case::accented, 30));
  const __m128i changes = _mm_and_si128(_mm_or_si128(letters, accented), _mm_set1_epi16(Case::distance));
  return _mm_add_epi16(units, changes);
}
#endif

/// Changes every unit to the case.
template <class Case, class Unit>
void map_units(Unit* units, std::size_t size) {
  std::size_t at = 0;
#ifdef KESTA_X64
  if constexpr (unit_16<Unit>) {
    if (size >= 8) {
      // The last block overlaps the one before it: read what it holds before that one is written.
      const __m128i last = load_16(units + size - 8);
      for (; at + 8 < size; at += 8) store_16(units + at, mapped<Case>(load_16(units + at)));
      store_16(units + size - 8, mapped<Case>(last));
      return;
    }
  }
#endif
  for (; at < size; ++at) units[at] = static_cast<Unit>(Case::map(static_cast<wchar_t>(units[at])));
}

}  // namespace ruvo::texto::letter_case
