// SPDX-License-Identifier: BSL-1.0
#pragma once

// What the characters of XML mean to all that reads or writes it. One reader is lenient, the other one
// strict; where they differ, both stand here.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

#include "base/ascii.hpp"
#include "serializer/scan.hpp"

namespace ruvo::serializer {

// --- markup

/// A character that markup takes: the name that XML gives it, and how this library writes it.
struct xml_entity {
  wchar_t meant;
  std::wstring_view name, own;
};
inline constexpr xml_entity xml_entities[] = {{L'"', L"quot", L"&qout;"},
                                              {L'\'', L"apos", L"&apos;"},
                                              {L'<', L"lt", L"&lt;"},
                                              {L'>', L"gt", L"&gt;"},
                                              {L'&', L"amp", L"&&amp;"}};

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
    const auto hits = [=](__m128i units) {
      const __m128i ands = _mm_cmpeq_epi16(_mm_and_si128(units, but_one), amp);
      const __m128i angles = _mm_cmpeq_epi16(_mm_and_si128(units, but_two), less);
      return _mm_or_si128(_mm_or_si128(ands, angles), _mm_cmpeq_epi16(units, quote));
    };
    if (find_in_eights(at, end, hits)) return at;
  }
#endif
  while (at != end && !is_markup(*at)) ++at;
  return at;
}

/// The text with what this library writes for markup resolved, of `out`. None of those forms can begin inside
/// another or come out of a replacement, so that one walk replaces all of them.
inline void unescape_markup(std::wstring& out, std::wstring_view text) {
  out.clear();
  while (!text.empty()) {
    const std::size_t plain = std::min(text.find(L'&'), text.size());
    out += text.substr(0, plain);
    text.remove_prefix(plain);
    if (text.empty()) return;
    const auto* const found = std::find_if(std::begin(xml_entities), std::end(xml_entities),
                                           [&](const xml_entity& e) { return text.starts_with(e.own); });
    const bool known = found != std::end(xml_entities);
    out += known ? found->meant : text.front();
    text.remove_prefix(known ? found->own.size() : 1);
  }
}

/// Whether the unit means something to the lenient reader inside the name of a tag.
constexpr bool ends_tag_name(wchar_t c) noexcept {
  return is_blank(c) || c == L'<' || c == L'>' || c == L'/' || c == L'!';
}

// --- what XML 1.0 allows

struct unit_range {
  char16_t first, last;
};

template <std::size_t count>
constexpr bool is_in(const unit_range (&ranges)[count], wchar_t c) noexcept {
  const auto unit = static_cast<char16_t>(c);
  for (const unit_range& r : ranges)
    if (unit <= r.last) return unit >= r.first;
  return false;
}

// Of names (section 2.3), below U+10000.
inline constexpr unit_range name_starts[] = {
    {':', ':'},       {'A', 'Z'},       {'_', '_'},       {'a', 'z'},       {0xC0, 0xD6},
    {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},   {0x37F, 0x1FFF},  {0x200C, 0x200D},
    {0x2070, 0x218F}, {0x2C00, 0x2FEF}, {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}};
inline constexpr unit_range name_others[] = {
    {'-', '.'}, {'0', '9'}, {0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}};

constexpr bool starts_name(wchar_t c) noexcept { return is_in(name_starts, c); }

/// Whether an ASCII character continues a name.
inline constexpr auto names_go_on_with = [] {
  std::array<bool, 128> of{};
  for (wchar_t c = 0; c < 128; ++c) of[static_cast<std::size_t>(c)] = starts_name(c) || is_in(name_others, c);
  return of;
}();

constexpr bool continues_name(wchar_t c) noexcept {
  const auto unit = static_cast<char16_t>(c);
  return unit < 128 ? names_go_on_with[unit] : is_in(name_starts, c) || is_in(name_others, c);
}

/// The characters of public identifiers (section 2.3).
constexpr bool is_public(wchar_t c) noexcept {
  return texto::is_alnum(c) ||
         std::wstring_view(L" \r\n-'()+,./:=?;!*#@$_%").find(c) != std::wstring_view::npos;
}

/// Whether every document may hold the character, which is no surrogate.
constexpr bool is_allowed(wchar_t c) noexcept {
  const auto unit = static_cast<char16_t>(c);
  return unit >= 0x20 ? unit < 0xFFFE : is_blank(c);
}

constexpr bool stands_for_itself(wchar_t c) noexcept {
  const auto unit = static_cast<char16_t>(c);
  return unit >= 0x20 && unit < 0xD800 && c != L'<' && c != L'&';
}

/// The first unit of [at, end) that is `stop` or does not stand for itself, or end.
template <class Unit>
inline const Unit* find_special(const Unit* at, const Unit* end, Unit stop) noexcept {
#ifdef KESTA_X64
  if constexpr (texto::unit_16<Unit>) {
    const __m128i amp = _mm_set1_epi16('&'), less = _mm_set1_epi16('<'), blank = _mm_set1_epi16(0x20),
                  others = _mm_set1_epi16(static_cast<short>(0xD800 - 0x20 - 0x8000)),
                  half = _mm_set1_epi16(static_cast<short>(0x8000)),
                  stops = _mm_set1_epi16(static_cast<short>(stop));
    const auto hits = [=](__m128i units) {
      // With the sign turned over: what is less than a blank comes out above what is beyond the surrogates.
      const __m128i from_blank = _mm_xor_si128(_mm_sub_epi16(units, blank), half);
      const __m128i beyond =
          _mm_or_si128(_mm_cmpgt_epi16(from_blank, others), _mm_cmpeq_epi16(from_blank, others));
      const __m128i marks = _mm_or_si128(_mm_cmpeq_epi16(units, amp), _mm_cmpeq_epi16(units, less));
      return _mm_or_si128(_mm_or_si128(marks, beyond), _mm_cmpeq_epi16(units, stops));
    };
    if (find_in_eights(at, end, hits)) return at;
  }
#endif
  while (at != end && *at != stop && stands_for_itself(static_cast<wchar_t>(*at))) ++at;
  return at;
}

/// xml in any case, which no processing instruction may be called.
constexpr bool is_reserved(std::wstring_view name) noexcept {
  return name.size() == 3 && texto::to_lower(name[0]) == L'x' && texto::to_lower(name[1]) == L'm' &&
         texto::to_lower(name[2]) == L'l';
}

inline constexpr std::uint32_t beyond_unicode = 0x110000;

}  // namespace ruvo::serializer
