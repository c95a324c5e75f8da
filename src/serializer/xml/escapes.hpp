// SPDX-License-Identifier: BSL-1.0
#pragma once

// Texts as a conforming reader of XML gives them back.

#include <array>
#include <cstddef>
#include <string_view>

#include "base/utf.hpp"
#include "memory/text_sink.hpp"
#include "serializer/scan.hpp"
#include "serializer/xml/grammar.hpp"

namespace ruvo::serializer {

/// Whether some text must not hold the unit as it is: markup, blanks but the common one, surrogates, and what
/// XML does not have.
constexpr bool needs_care(wchar_t c) noexcept {
  constexpr auto ascii = [] {
    std::array<bool, 0x80> made{};
    for (int n = 0; n < 0x80; ++n)
      made[static_cast<std::size_t>(n)] = n < 0x20 || is_markup(static_cast<wchar_t>(n));
    return made;
  }();
  const auto unit = static_cast<char16_t>(c);
  return unit < 0x80 ? ascii[unit] : unit >= 0xD800 && (unit < 0xE000 || unit >= 0xFFFE);
}

/// The first unit of [at, end) that needs_care(), or end.
template <class Unit>
inline const Unit* find_care(const Unit* at, const Unit* end) noexcept {
#ifdef KESTA_X64
  if constexpr (texto::unit_16<Unit>) {
    const __m128i amp = _mm_set1_epi16('&'), less = _mm_set1_epi16('<'), quote = _mm_set1_epi16('"');
    const __m128i but_one = _mm_set1_epi16(~1), but_two = _mm_set1_epi16(~2);
    const __m128i controls = _mm_set1_epi16(0x1F), zero = _mm_setzero_si128();
    const __m128i surrogate = _mm_set1_epi16(static_cast<short>(0xD800)),
                  high_bits = _mm_set1_epi16(static_cast<short>(0xF800)),
                  last = _mm_set1_epi16(static_cast<short>(0xFFFE));
    const auto hits = [=](__m128i units) {
      const __m128i ands = _mm_cmpeq_epi16(_mm_and_si128(units, but_one), amp);
      const __m128i angles = _mm_cmpeq_epi16(_mm_and_si128(units, but_two), less);
      const __m128i markup = _mm_or_si128(_mm_or_si128(ands, angles), _mm_cmpeq_epi16(units, quote));
      const __m128i control = _mm_cmpeq_epi16(_mm_subs_epu16(units, controls), zero);
      const __m128i pairs = _mm_cmpeq_epi16(_mm_and_si128(units, high_bits), surrogate);
      const __m128i beyond = _mm_cmpeq_epi16(_mm_and_si128(units, last), last);
      return _mm_or_si128(_mm_or_si128(markup, control), _mm_or_si128(pairs, beyond));
    };
    const bool has_eight = end - at >= 8;
    if (find_in_eights(at, end, hits)) return at;
    if (at != end && has_eight) {  // the last eight, of which nothing is found in the first
      const Unit* last_eight = end - 8;
      return find_in_eights(last_eight, end, hits) ? last_eight : end;
    }
  }
#endif
  while (at != end && !needs_care(static_cast<wchar_t>(*at))) ++at;
  return at;
}

/// Where a text stands.
enum class xml_place : unsigned char { element, attribute, cdata };

/// Writes texts into a sink. `forbidden(unit)` is called for a character that XML does not have, and what it
/// gives is written.
template <class Forbidden>
class xml_escapes {
 public:
  xml_escapes(detail::text_sink& out, Forbidden forbidden) : out_(out), forbidden_(forbidden) {}

  void attribute(std::wstring_view text) { run<xml_place::attribute>(text); }
  /// The text of an element, or a part of it, where nothing happens to blanks at its ends.
  void inside(std::wstring_view text) { run<xml_place::element>(text); }
  /// The whole text of an element: blanks at its ends would pass for indentation.
  void element(std::wstring_view text) {
    if (text.empty()) return;
    const bool begins = is_blank(text.front()), ends = text.size() > 1 && is_blank(text.back());
    if (begins) reference(text.front());
    inside(text.substr(begins, text.size() - begins - ends));
    if (ends) reference(text.back());
  }
  void cdata(std::wstring_view text) {
    out_.put_literal(L"<![CDATA[");
    run<xml_place::cdata>(text);
    out_.put_literal(L"]]>");
  }

 private:
  template <xml_place place>
  void run(std::wstring_view text) {
    const wchar_t* const begin = text.data();
    const wchar_t* const end = begin + text.size();
    for (const wchar_t* at = begin; at != end;) {
      const wchar_t* const stop = find_care(at, end);
      out_.put(between(at, stop));
      if (stop == end) return;
      at = stop + character<place>(begin, stop, end);
    }
  }

  /// How many units were written.
  template <xml_place place>
  std::size_t character(const wchar_t* begin, const wchar_t* at, const wchar_t* end) {
    const wchar_t c = *at;
    if (is_markup(c)) {
      markup<place>(begin, at);
    } else if (is_blank(c)) {
      blank<place>(c);
    } else if (texto::is_high_surrogate(c) && end - at > 1 && texto::is_low_surrogate(at[1])) {
      out_.put({at, 2});
      return 2;
    } else {
      out_.put(forbidden_(c));
    }
    return 1;
  }
  template <xml_place place>
  void markup(const wchar_t* begin, const wchar_t* at) {
    if constexpr (place == xml_place::cdata) {
      if (*at == L'>' && at - begin >= 2 && at[-1] == L']' && at[-2] == L']')
        out_.put_literal(L"]]><![CDATA[");
      return out_.put(*at);
    }
    switch (*at) {
      case L'<':
        return out_.put_literal(L"&lt;");
      case L'>':
        return out_.put_literal(L"&gt;");
      case L'&':
        return out_.put_literal(L"&amp;");
      case L'"':
        if (place == xml_place::attribute) return out_.put_literal(L"&quot;");
        [[fallthrough]];
      default:
        return out_.put(*at);
    }
  }
  template <xml_place place>
  void blank(wchar_t c) {
    if (place == xml_place::cdata && c == L'\r') {
      out_.put_literal(L"]]>&#13;<![CDATA[");
    } else if (place == xml_place::attribute || c == L'\r') {
      reference(c);
    } else {
      out_.put(c);
    }
  }
  void reference(wchar_t blank) {
    switch (blank) {
      case L'\t':
        return out_.put_literal(L"&#9;");
      case L'\n':
        return out_.put_literal(L"&#10;");
      case L'\r':
        return out_.put_literal(L"&#13;");
      default:
        return out_.put_literal(L"&#32;");
    }
  }

  detail::text_sink& out_;
  Forbidden forbidden_;
};

}  // namespace ruvo::serializer
