// SPDX-License-Identifier: BSL-1.0
#pragma once

// What a field of HTTP or mail may have for a name and for a value, and quoted strings: the one place that
// decides it. Nothing is ever cleaned up: who makes a field refuses what does not pass.

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "base/wire/ascii_set.hpp"

namespace ruvo::wire {

/// RFC 9110, 5.6.2, and RFC 2045, 5.1, without "{" and "}", which only the latter has: not empty, of bytes or
/// UTF-16 units.
template <class Unit>
constexpr bool is_token(std::basic_string_view<Unit> text) noexcept {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](Unit c) { return token_set.has(c); });
}
inline constexpr bool is_token(std::wstring_view text) noexcept { return is_token<wchar_t>(text); }
inline constexpr bool is_token(std::string_view text) noexcept { return is_token<char>(text); }

/// The name of a field: a token. RFC 5322 has more of them, which nobody uses and HTTP refuses.
constexpr bool is_field_name(std::wstring_view name) noexcept { return is_token(name); }
constexpr bool is_field_name(std::string_view name) noexcept { return is_token(name); }

/// Whether a unit may stand in a field's value: TAB, and what is no control character. U+0080 to U+009F are
/// controls, too: some readers end a line at U+0085, and in narrow text that is no UTF-8 so do others.
constexpr bool is_field_unit(wchar_t c) noexcept {
  const auto code = static_cast<char16_t>(c);
  return code < 0x7F ? code >= 0x20 || code == '\t' : code >= 0xA0;
}
/// The same of bytes, of which those from 128 on are parts of characters.
constexpr bool is_field_unit(char c) noexcept {
  const auto code = static_cast<unsigned char>(c);
  return code < 0x7F ? code >= 0x20 || code == '\t' : code >= 0x80;
}

/// Whether a text can be a field's value: neither CR, LF and NUL nor another control character but TAB.
/// It may be empty, and go beyond ASCII.
constexpr bool is_field_value(std::wstring_view text) noexcept {
  return std::all_of(text.begin(), text.end(), [](wchar_t c) { return is_field_unit(c); });
}
constexpr bool is_field_value(std::string_view text) noexcept {
  return std::all_of(text.begin(), text.end(), [](char c) { return is_field_unit(c); });
}

/// Without the blanks and TABs at its ends, which are no part of a value.
constexpr std::wstring_view trimmed_value(std::wstring_view text) noexcept {
  constexpr std::wstring_view blanks = L" \t";
  text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
  return text.substr(0, text.find_last_not_of(blanks) + 1);
}

/// Whether two names are one: A-Z are a-z.
bool is_same_name(std::wstring_view a, std::wstring_view b) noexcept;

/// Appends the text as a quoted string, RFC 9110 5.6.4. False, and nothing is appended, if it is no field
/// value. RFC 5322 differs in two things that are the caller's: its strings may be folded, and text beyond
/// ASCII stands in them only where RFC 6532 is understood.
bool append_quoted(std::wstring& out, std::wstring_view text);
/// The text as a token where it is one, otherwise quoted.
bool append_word(std::wstring& out, std::wstring_view text);

/// Reads the quoted string that begins at `at` of unfolded text, replaces `out` by what it says and moves
/// `at` behind it. False if none begins there, or if it does not end or holds a control character: `at` is
/// then where reading ended, and `out` what was read.
bool read_quoted(std::wstring& out, std::wstring_view text, std::size_t& at);

}  // namespace ruvo::wire
