// SPDX-License-Identifier: BSL-1.0
#pragma once

// Character classes of the "C" locale. Every unit above 127 is in none of them and has no other case; the C
// library's own functions are undefined there.

#include <algorithm>
#include <string_view>

namespace ruvo::texto {

/// A byte as a unit of the same number.
constexpr wchar_t unit_of(char c) noexcept { return static_cast<wchar_t>(static_cast<unsigned char>(c)); }

/// A text that may be null: null is empty.
constexpr std::wstring_view view_of(const wchar_t* text) noexcept {
  return text ? std::wstring_view(text) : std::wstring_view();
}

constexpr bool is_space(wchar_t c) noexcept { return c == L' ' || (c >= L'\t' && c <= L'\r'); }
constexpr bool is_digit(wchar_t c) noexcept { return c >= L'0' && c <= L'9'; }
constexpr bool is_upper(wchar_t c) noexcept { return c >= L'A' && c <= L'Z'; }
constexpr bool is_lower(wchar_t c) noexcept { return c >= L'a' && c <= L'z'; }
constexpr bool is_alpha(wchar_t c) noexcept { return is_upper(c) || is_lower(c); }
constexpr bool is_alnum(wchar_t c) noexcept { return is_alpha(c) || is_digit(c); }
constexpr bool is_control(wchar_t c) noexcept { return static_cast<char16_t>(c) < 32 || c == 127; }

constexpr wchar_t to_lower(wchar_t c) noexcept { return is_upper(c) ? static_cast<wchar_t>(c + 32) : c; }
constexpr wchar_t to_upper(wchar_t c) noexcept { return is_lower(c) ? static_cast<wchar_t>(c - 32) : c; }

/// Whether a path begins with a drive, "C:".
constexpr bool has_drive(std::wstring_view path) noexcept {
  return path.size() >= 2 && is_alpha(path[0]) && path[1] == L':';
}

/// The order of the units, with A-Z as a-z.
inline bool before_in_lower_case(std::wstring_view a, std::wstring_view b) noexcept {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](wchar_t x, wchar_t y) {
    return static_cast<char16_t>(to_lower(x)) < static_cast<char16_t>(to_lower(y));
  });
}

/// The value of a hexadecimal digit of either case, or -1.
constexpr int hex_value(wchar_t c) noexcept {
  if (is_digit(c)) return c - L'0';
  if (c >= L'A' && c <= L'F') return c - L'A' + 10;
  if (c >= L'a' && c <= L'f') return c - L'a' + 10;
  return -1;
}

}  // namespace ruvo::texto
