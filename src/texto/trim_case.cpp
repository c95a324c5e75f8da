// SPDX-License-Identifier: BSL-1.0

// Blanks at the ends of a text, and the case of its letters.

#include <ruvo/texto.hpp>

#include <algorithm>
#include <utility>

#include "base/ascii.hpp"
#include "base/numbers.hpp"
#include "base/utf.hpp"
#include "texto/case_units.hpp"

namespace ruvo::texto {

namespace {

/// Units at the start of the text that are blanks.
std::size_t leading(std::wstring_view text) {
  const auto first = std::find_if_not(text.begin(), text.end(), is_space);
  return static_cast<std::size_t>(first - text.begin());
}

/// Units up to the last one that is not a blank.
std::size_t kept(std::wstring_view text) {
  const auto last = std::find_if_not(text.rbegin(), text.rend(), is_space);
  return static_cast<std::size_t>(text.rend() - last);
}

// The accented capitals are U+00C0 to U+00DD without the multiplication sign; their small letters lie 32
// above, as those of A-Z do.
bool is_accented_upper(wchar_t c) { return c >= 0xC0 && c <= 0xDD && c != 0xD7; }
bool is_accented_lower(wchar_t c) { return c >= 0xE0 && c <= 0xFD && c != 0xF7; }

}  // namespace

std::wstring& ltrim(std::wstring& text) { return text.erase(0, leading(text)); }
std::wstring ltrim_(wide_view text) { return std::wstring(text.substr(leading(text))); }
std::wstring ltrim_(const std::wstring& text) { return ltrim_(std::wstring_view(text)); }

std::wstring& rtrim(std::wstring& text) {
  text.resize(kept(text));
  return text;
}
std::wstring rtrim_(wide_view text) { return std::wstring(text.substr(0, kept(text))); }
std::wstring rtrim_(const std::wstring& text) { return rtrim_(std::wstring_view(text)); }

std::wstring& trim(std::wstring& text) { return ltrim(rtrim(text)); }
std::wstring trim_(wide_view text) { return std::wstring(trimmed(text)); }
std::wstring trim_(const std::wstring& text) { return trim_(std::wstring_view(text)); }

std::wstring safe_non_empty(const std::wstring& a, const std::wstring& b) { return a.empty() ? b : a; }
std::wstring safe_non_empty(const std::string& a, const std::string& b) {
  return to_utf_16(a.empty() ? b : a);
}

wchar_t to_lowercase(wchar_t c) { return is_accented_upper(c) ? static_cast<wchar_t>(c + 32) : to_lower(c); }
wchar_t to_uppercase(wchar_t c) { return is_accented_lower(c) ? static_cast<wchar_t>(c - 32) : to_upper(c); }

std::wstring& to_lowercase(std::wstring& text) {
  letter_case::map_units<letter_case::to_small>(text.data(), text.size());
  return text;
}
std::wstring to_lowercase_(wide_view text) {
  std::wstring copy(text);
  return std::move(to_lowercase(copy));
}
std::wstring to_lowercase_(const std::wstring& text) { return to_lowercase_(std::wstring_view(text)); }

std::wstring& to_uppercase(std::wstring& text) {
  letter_case::map_units<letter_case::to_capital>(text.data(), text.size());
  return text;
}
std::wstring to_uppercase_(wide_view text) {
  std::wstring copy(text);
  return std::move(to_uppercase(copy));
}
std::wstring to_uppercase_(const std::wstring& text) { return to_uppercase_(std::wstring_view(text)); }

}  // namespace ruvo::texto
