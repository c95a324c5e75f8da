// SPDX-License-Identifier: BSL-1.0
#pragma once

// What the characters of JSON mean to all that reads, checks, writes or prints it. The reader is lenient and
// the check is strict; where they differ, both stand here.

#include <ruvo/var.hpp>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "base/ascii.hpp"
#include "base/numbers.hpp"
#include "serializer/scan.hpp"
#include "values/cell.hpp"

namespace ruvo::serializer {

/// The key of an array that is the whole document.
inline constexpr const wchar_t* array_key = L"__json_array__";

// --- what stands between values

/// Whether the unit is one of { } [ ] : , and the quotation mark.
constexpr bool is_json_sign(wchar_t c) noexcept {
  return std::wstring_view(L"{}[]:,\"").find(c) != std::wstring_view::npos;
}

/// What the reader passes over between values: all below the quotation mark and from the tilde on.
constexpr bool is_meaningless(wchar_t c) noexcept { return c < L'"' || c >= L'~'; }

inline const wchar_t* skip_meaningless(const wchar_t* at, const wchar_t* end) noexcept {
  while (at != end && is_meaningless(*at)) ++at;
  return at;
}

// --- words

struct json_word {
  std::wstring_view text;
  detail::kind kind;
  bool value;
};
inline constexpr json_word json_true = {L"true", detail::kind::boolean, true},
                           json_false = {L"false", detail::kind::boolean, false},
                           json_null = {L"null", detail::kind::null, false};

/// The word that begins with the letter, or null.
constexpr const json_word* find_word(wchar_t letter) noexcept {
  for (const json_word* const word : {&json_true, &json_false, &json_null})
    if (word->text.front() == letter) return word;
  return nullptr;
}

// --- numbers

/// Whether the reader takes the unit as a part of a number, in whatever order.
constexpr bool is_number_part(wchar_t c) noexcept { return texto::is_digit(c) || c == L'-' || c == L'.'; }

/// Whether a number is a double: inside an object the point decides, elsewhere the whole text does.
inline bool is_double(std::wstring_view text, bool in_object) {
  return in_object ? text.find(L'.') != std::wstring_view::npos : !texto::is_plain_integer(text);
}

/// Throws as the conversions of base/numbers.hpp do.
inline var number_of_json(std::wstring_view text, bool in_object) {
  if (is_double(text, in_object)) return texto::read_double(text);
  return texto::read_integer(text);
}

// --- strings

/// Whether the unit is written in another way: control characters (0-31 and 127), quote and backslash.
constexpr bool is_escaped(wchar_t c) noexcept { return c < 32 || c == L'"' || c == L'\\' || c == 127; }

/// The first unit of [at, end) that is_escaped(), or end.
template <class Unit>
inline const Unit* find_escaped(const Unit* at, const Unit* end) noexcept {
#ifdef KESTA_X64
  if constexpr (texto::unit_16<Unit>) {
    const __m128i quote = _mm_set1_epi16('"'), backslash = _mm_set1_epi16('\\'), del = _mm_set1_epi16(127);
    const __m128i last_control = _mm_set1_epi16(31), zero = _mm_setzero_si128();
    const auto hits = [=](__m128i units) {
      const __m128i controls = _mm_cmpeq_epi16(_mm_subs_epu16(units, last_control), zero);
      const __m128i marks = _mm_or_si128(_mm_cmpeq_epi16(units, quote), _mm_cmpeq_epi16(units, backslash));
      return _mm_or_si128(_mm_or_si128(controls, marks), _mm_cmpeq_epi16(units, del));
    };
    if (find_in_eights(at, end, hits)) return at;
  }
#endif
  while (at != end && !is_escaped(*at)) ++at;
  return at;
}

/// The closing quote of a string whose first character is `at`, or end; whether there is a backslash before.
inline const wchar_t* find_closing_quote(const wchar_t* at, const wchar_t* end, bool& escaped) noexcept {
  while ((at = find_either(at, end, L'"', L'\\')) != end && *at == L'\\') {
    escaped = true;
    if (end - at < 2) return end;
    at += 2;
  }
  return at;
}

/// The letters behind a backslash, but for `u`, and what they stand for.
inline constexpr std::wstring_view escape_letters = L"\"\\/bfnrt", escape_meanings = L"\"\\/\b\f\n\r\t";

/// What a letter behind a backslash stands for, or zero.
constexpr wchar_t meaning_of_escape(wchar_t letter) noexcept {
  const std::size_t at = escape_letters.find(letter);
  return at == std::wstring_view::npos ? L'\0' : escape_meanings[at];
}

constexpr std::array<wchar_t, 128> letters_by_meaning() noexcept {
  std::array<wchar_t, 128> of{};
  for (std::size_t n = 0; n < escape_letters.size(); ++n)
    of[static_cast<std::size_t>(escape_meanings[n])] = escape_letters[n];
  return of;
}
/// The letter of each ASCII unit, or zero. Not inside the function: gcc would fill it at every call.
inline constexpr auto letters_of_escapes = letters_by_meaning();

/// The letter for a unit, or zero.
constexpr wchar_t letter_of_escape(wchar_t meant) noexcept {
  const auto at = static_cast<std::size_t>(meant);
  return at < letters_of_escapes.size() ? letters_of_escapes[at] : L'\0';
}

/// The unit that the four hexadecimal digits at the beginning stand for, or -1.
inline int hex_unit(std::wstring_view digits) noexcept {
  if (digits.size() < 4) return -1;
  int unit = 0;
  for (const wchar_t c : digits.substr(0, 4)) {
    const int value = texto::hex_value(c);
    if (value < 0) return -1;
    unit = unit * 16 + value;
  }
  return unit;
}

/// What the inside of a string says; escapes that there are not stay as they stand.
inline std::wstring decoded(std::wstring_view inside) {
  std::wstring out;
  for (std::size_t at = 0; at < inside.size(); ++at) {
    if (inside[at] != L'\\' || at + 1 == inside.size()) {
      out += inside[at];
      continue;
    }
    const wchar_t c = inside[++at];
    const int unit = c == L'u' ? hex_unit(inside.substr(at + 1)) : -1;
    if (unit >= 0) {
      out += static_cast<wchar_t>(unit);
      at += 4;
    } else if (const wchar_t meant = meaning_of_escape(c)) {
      out += meant;
    } else {
      out += {L'\\', c};
    }
  }
  return out;
}

/// Copies what is before a backslash, or the end; `at` moves there.
inline wchar_t* copy_to_backslash(wchar_t* to, const wchar_t*& at, const wchar_t* end) noexcept {
#ifdef KESTA_X64
  if constexpr (texto::unit_16<wchar_t>) {
    for (; end - at >= 8; at += 8, to += 8) {
      const __m128i units = texto::load_16(at);
      texto::store_16(to, units);
      const auto marks =
          static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi16(units, _mm_set1_epi16(L'\\'))));
      if (!marks) continue;
      const int plain = std::countr_zero(marks) / 2;
      at += plain;
      return to + plain;
    }
  }
#endif
  while (at != end && *at != L'\\') *to++ = *at++;
  return to;
}

/// The same as the reader understands it, no longer than the text, of `to`, whose end is returned: only \",
/// \\ and \n, and the character behind a dropped backslash is looked at afresh.
inline wchar_t* unescape(wchar_t* to, std::wstring_view text) noexcept {
  const wchar_t *at = text.data(), *const end = at + text.size();
  while (true) {
    to = copy_to_backslash(to, at, end);
    if (end - at < 2) break;
    const wchar_t next = at[1];
    if (next == L'n') {
      *to++ = L'\n';
      at += 2;
    } else if (next == L'\\') {
      ++at;
    } else {
      if (next != L'"') *to++ = L'\\';
      *to++ = next;
      at += 2;
    }
  }
  if (at != end) *to++ = *at;
  return to;
}

}  // namespace ruvo::serializer
