// SPDX-License-Identifier: BSL-1.0

// Characters that are written as others behind a "\".

#include "settings/escapes.hpp"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "base/ascii.hpp"
#include "settings/grammar.hpp"

namespace ruvo::settings {

namespace {

/// The character that a letter stands for, 0 where it is itself.
constexpr wchar_t control_of(wchar_t letter) noexcept {
  return letter == L'n'   ? L'\n'
         : letter == L't' ? L'\t'
         : letter == L'r' ? L'\r'
         : letter == L'f' ? L'\f'
                          : 0;
}
constexpr wchar_t letter_of(wchar_t control) noexcept {
  return control == L'\n'   ? L'n'
         : control == L'\t' ? L't'
         : control == L'\r' ? L'r'
         : control == L'\f' ? L'f'
                            : 0;
}

void append_code(std::wstring& out, wchar_t c) {
  constexpr wchar_t digits[] = L"0123456789ABCDEF";
  out += L"\\u";
  for (int shift = 12; shift >= 0; shift -= 4) out.push_back(digits[static_cast<char16_t>(c) >> shift & 0xF]);
}

/// Appends what a `\u....` stands for. Whether there are four digits.
bool append_unit(std::wstring& out, std::wstring_view digits) {
  int unit = 0;
  if (digits.size() < 4) return false;
  for (const wchar_t c : digits.substr(0, 4)) {
    if (texto::hex_value(c) < 0) return false;
    unit = unit << 4 | texto::hex_value(c);
  }
  out.push_back(static_cast<wchar_t>(unit));
  return true;
}

std::size_t behind_break(std::wstring_view text, std::size_t at) {
  if (text[at] == L'\r' && at + 1 < text.size() && text[at + 1] == L'\n') ++at;
  ++at;
  while (at < text.size() && !is_line_end(text[at]) && texto::is_space(text[at])) ++at;
  return at;
}

void append_escaped(std::wstring& out, wchar_t c) {
  if (c == L'\\') {
    out += L"\\\\";
  } else if (const wchar_t letter = letter_of(c)) {
    out += {L'\\', letter};
  } else if (static_cast<char16_t>(c) >= 127 || is_unprintable(c)) {
    append_code(out, c);
  } else {
    out.push_back(c);
  }
}

}  // namespace

bool is_unprintable(wchar_t c) noexcept { return texto::is_control(c) && c != L'\t'; }

std::wstring joined(std::wstring_view written) {
  std::wstring out;
  out.reserve(written.size());
  for (std::size_t at = 0; at < written.size();) {
    if (written[at] == L'\\' && at + 1 < written.size() && is_line_end(written[at + 1]))
      at = behind_break(written, at + 1);
    else
      out.push_back(written[at++]);
  }
  return out;
}

std::wstring unescaped(std::wstring_view written) {
  std::wstring out;
  out.reserve(written.size());
  for (std::size_t at = 0; at < written.size();) {
    const wchar_t c = written[at++];
    if (c != L'\\') {
      out.push_back(c);
      continue;
    }
    if (at == written.size()) break;
    const wchar_t next = written[at++];
    if (next == L'u' && append_unit(out, written.substr(at)))
      at += 4;
    else
      out.push_back(control_of(next) ? control_of(next) : next);
  }
  return out;
}

std::wstring escaped_name(std::wstring_view name) {
  std::wstring out;
  for (const wchar_t c : name) {
    if (c == L' ' || c == L'=' || c == L':' || c == L'#' || c == L'!' || c == L';') out.push_back(L'\\');
    append_escaped(out, c);
  }
  return out;
}

std::wstring escaped_value(std::wstring_view value) {
  std::wstring out = value.starts_with(L' ') ? L"\\" : L"";
  for (const wchar_t c : value) append_escaped(out, c);
  return out;
}

std::wstring unescaped_quoted(std::wstring_view written) {
  const std::wstring text = with_line_feeds(written);
  std::wstring out;
  out.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    const wchar_t next = text[at] == L'\\' && at + 1 < text.size() ? text[at + 1] : L'\0';
    const bool is_letter = next == L'n' || next == L'r' || next == L't';
    if (is_letter || next == L'"' || next == L'\\') ++at;
    out.push_back(is_letter ? control_of(next) : text[at]);
  }
  return out;
}

std::wstring escaped_quoted(std::wstring_view value) {
  std::wstring out;
  for (const wchar_t c : value) {
    if (c == L'"' || c == L'\\') out.push_back(L'\\');
    if (is_line_end(c))
      out += {L'\\', letter_of(c)};
    else
      out.push_back(c);
  }
  return out;
}

bool can_be_quoted(std::wstring_view value) {
  return std::none_of(value.begin(), value.end(),
                      [](wchar_t c) { return is_unprintable(c) && !is_line_end(c); });
}

std::wstring with_line_feeds(std::wstring_view text) {
  std::wstring out;
  out.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != L'\r')
      out.push_back(text[at]);
    else if (at + 1 == text.size() || text[at + 1] != L'\n')
      out.push_back(L'\n');
  }
  return out;
}

}  // namespace ruvo::settings
