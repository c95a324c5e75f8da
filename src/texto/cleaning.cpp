// SPDX-License-Identifier: BSL-1.0

// Accents, typographic characters and what else is cleaned out of a text.

#include <ruvo/texto.hpp>

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "base/ascii.hpp"

namespace ruvo::texto {

namespace {

// The plain letters of U+00C0 to U+00DF; 32 above stand the small ones. A point: no plain letter.
constexpr std::wstring_view plain_capitals = L"AAAAAAACEEEEIIIIDNOOOOO..UUUUY..";
static_assert(plain_capitals.size() == 32);

/// The plain letter of an accented one, else the unit itself.
constexpr wchar_t plain_letter(wchar_t c) {
  if (c < 0xC0 || c > 0xFF) return c;
  const wchar_t letter = plain_capitals[(c - 0xC0) & 31];
  if (letter == L'.') return c;
  return c < 0xE0 ? letter : to_lower(letter);
}

/// The units from `first` to `last` are replaced by `with`.
struct typographic_range {
  wchar_t first, last;
  std::wstring_view with;
};

constexpr typographic_range specials[] = {
    {0x00A0, 0x00A0, L" "},    // no-break space
    {0x00AB, 0x00AB, L"\""},   // opening guillemet
    {0x00AD, 0x00AD, L""},     // soft hyphen
    {0x00B4, 0x00B4, L"'"},    // acute accent that stands alone
    {0x00BB, 0x00BB, L"\""},   // closing guillemet
    {0x02BC, 0x02BC, L"'"},    // modifier letter apostrophe
    {0x2000, 0x200A, L" "},    // spaces of fixed widths
    {0x200B, 0x200B, L""},     // zero width space
    {0x200E, 0x200F, L""},     // marks of direction
    {0x2010, 0x2015, L"-"},    // hyphens and dashes
    {0x2018, 0x201B, L"'"},    // single quotes
    {0x201C, 0x201F, L"\""},   // double quotes
    {0x2024, 0x2024, L"."},    // leaders
    {0x2025, 0x2025, L".."},   //
    {0x2026, 0x2026, L"..."},  // ellipsis
    {0x2028, 0x2029, L"\n"},   // line and paragraph separators
    {0x202A, 0x202E, L""},     // embeddings and overrides of direction
    {0x202F, 0x202F, L" "},    // narrow no-break space
    {0x2032, 0x2032, L"'"},    // prime
    {0x2033, 0x2033, L"\""},   // double prime
    {0x2039, 0x203A, L"'"},    // single guillemets
    {0x2044, 0x2044, L"/"},    // fraction slash
    {0x205F, 0x205F, L" "},    // mathematical space
    {0x2060, 0x2060, L""},     // word joiner
    {0x2066, 0x2069, L""},     // isolates of direction
    {0x2212, 0x2212, L"-"},    // minus sign
    {0x3000, 0x3000, L" "},    // ideographic space
    {0xFEFF, 0xFEFF, L""},     // byte order mark
};

constexpr bool is_below(const typographic_range& row, wchar_t c) {
  return static_cast<char16_t>(row.last) < static_cast<char16_t>(c);
}

/// The row that holds `c`, or null.
const typographic_range* find_special(wchar_t c) {
  const typographic_range* row = std::lower_bound(std::begin(specials), std::end(specials), c, is_below);
  const bool found =
      row != std::end(specials) && static_cast<char16_t>(row->first) <= static_cast<char16_t>(c);
  return found ? row : nullptr;
}

bool is_typographic(wchar_t c) { return static_cast<char16_t>(c) >= 0xA0 && find_special(c) != nullptr; }

}  // namespace

std::wstring clear(std::wstring text) {
  std::erase_if(text, [](wchar_t c) { return c == L'\t' || c == L'\n' || c == L'\r'; });
  return text;
}

wchar_t limpia_puntuacion(wchar_t c, wchar_t r) {
  const wchar_t letter = plain_letter(c);
  return is_alnum(letter) || r == 0 ? letter : r;
}

std::wstring& limpia_puntuacion(std::wstring& text, wchar_t) {
  std::transform(text.begin(), text.end(), text.begin(), plain_letter);
  return text;
}
std::wstring limpia_puntuacion_(wide_view text, wchar_t r) {
  std::wstring copy(text);
  return std::move(limpia_puntuacion(copy, r));
}
std::wstring limpia_puntuacion_(const std::wstring& text, wchar_t r) {
  return limpia_puntuacion_(std::wstring_view(text), r);
}

std::wstring& limpia_caracteres_especiales(std::wstring& text) {
  const auto first = std::find_if(text.begin(), text.end(), is_typographic);
  if (first == text.end()) return text;
  std::wstring out(text.begin(), first);
  out.reserve(text.size());
  for (auto at = first; at != text.end(); ++at) {
    if (is_typographic(*at))
      out += find_special(*at)->with;
    else
      out.push_back(*at);
  }
  return text = std::move(out);
}

}  // namespace ruvo::texto
