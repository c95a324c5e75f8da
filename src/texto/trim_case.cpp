#include <ruvo/texto.hpp>

#include <algorithm>
#include <utility>

#include "texto/ascii.hpp"
#include "texto/numbers.hpp"
#include "texto/utf.hpp"

#if defined(__SSE2__) || defined(_M_X64)
#  define KESTA_SSE2
#  include <emmintrin.h>
#endif

namespace ruvo::texto {

namespace {

/// Units at the start of the text that are blanks.
std::size_t leading(const std::wstring& text) {
  const auto first = std::find_if_not(text.begin(), text.end(), is_space);
  return static_cast<std::size_t>(first - text.begin());
}

/// Units up to the last one that is not a blank.
std::size_t kept(const std::wstring& text) {
  const auto last = std::find_if_not(text.rbegin(), text.rend(), is_space);
  return static_cast<std::size_t>(text.rend() - last);
}

// The accented capitals are U+00C0 to U+00DD without the multiplication sign; their small letters lie 32
// above, as those of A-Z do.
bool is_accented_upper(wchar_t c) { return c >= 0xC0 && c <= 0xDD && c != 0xD7; }
bool is_accented_lower(wchar_t c) { return c >= 0xE0 && c <= 0xFD && c != 0xF7; }

struct ToLower {
  static constexpr short letter = 'A', accented = 0xC0, sign = 0xD7, distance = 32;
  static wchar_t map(wchar_t c) { return to_lowercase(c); }
};
struct ToUpper {
  static constexpr short letter = 'a', accented = 0xE0, sign = 0xF7, distance = -32;
  static wchar_t map(wchar_t c) { return to_uppercase(c); }
};

#ifdef KESTA_SSE2
/// All bits of each unit that lies in `count` units from `first` on.
__m128i in_range(__m128i units, short first, short count) {
  const __m128i from_lowest = _mm_sub_epi16(units, _mm_set1_epi16(static_cast<short>(first - 32768)));
  return _mm_cmplt_epi16(from_lowest, _mm_set1_epi16(static_cast<short>(count - 32768)));
}

/// Eight units.
template <class Case>
__m128i mapped(__m128i units) {
  const __m128i letters = in_range(units, Case::letter, 26);
  const __m128i accented = _mm_andnot_si128(_mm_cmpeq_epi16(units, _mm_set1_epi16(Case::sign)),
                                            in_range(units, Case::accented, 30));
  const __m128i changes = _mm_and_si128(_mm_or_si128(letters, accented), _mm_set1_epi16(Case::distance));
  return _mm_add_epi16(units, changes);
}
#endif

/// Changes the case of every unit.
template <class Case>
std::wstring& map_units(std::wstring& text) {
  wchar_t* const units = text.data();
  const std::size_t size = text.size();
  std::size_t at = 0;
#ifdef KESTA_SSE2
  if (sizeof(wchar_t) == 2 && size >= 8) {
    const auto block = [units](std::size_t first) { return reinterpret_cast<__m128i*>(units + first); };
    // The last block overlaps the one before it: read what it holds before that one is written.
    const __m128i last = _mm_loadu_si128(block(size - 8));
    for (; at + 8 < size; at += 8) _mm_storeu_si128(block(at), mapped<Case>(_mm_loadu_si128(block(at))));
    _mm_storeu_si128(block(size - 8), mapped<Case>(last));
    return text;
  }
#endif
  for (; at < size; ++at) units[at] = Case::map(units[at]);
  return text;
}

}  // namespace

std::wstring& ltrim(std::wstring& text) { return text.erase(0, leading(text)); }
std::wstring ltrim_(const std::wstring& text) { return text.substr(leading(text)); }

std::wstring& rtrim(std::wstring& text) {
  text.resize(kept(text));
  return text;
}
std::wstring rtrim_(const std::wstring& text) { return text.substr(0, kept(text)); }

std::wstring& trim(std::wstring& text) { return ltrim(rtrim(text)); }
std::wstring trim_(const std::wstring& text) { return std::wstring(trimmed(text)); }

std::wstring safe_non_empty(const std::wstring& a, const std::wstring& b) { return a.empty() ? b : a; }
std::wstring safe_non_empty(const std::string& a, const std::string& b) {
  return to_utf_16(a.empty() ? b : a);
}

wchar_t to_lowercase(wchar_t c) { return is_accented_upper(c) ? static_cast<wchar_t>(c + 32) : to_lower(c); }
wchar_t to_uppercase(wchar_t c) { return is_accented_lower(c) ? static_cast<wchar_t>(c - 32) : to_upper(c); }

std::wstring& to_lowercase(std::wstring& text) { return map_units<ToLower>(text); }
std::wstring to_lowercase_(const std::wstring& text) {
  std::wstring copy = text;
  return std::move(to_lowercase(copy));
}

std::wstring& to_uppercase(std::wstring& text) { return map_units<ToUpper>(text); }
std::wstring to_uppercase_(const std::wstring& text) {
  std::wstring copy = text;
  return std::move(to_uppercase(copy));
}

}  // namespace ruvo::texto
