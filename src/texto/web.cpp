// SPDX-License-Identifier: BSL-1.0

// Percent-encoding, and encoded words of mail headers.

#include <ruvo/texto.hpp>

#include <cstddef>
#include <stdexcept>
#include <string_view>

#include "base/ascii.hpp"
#include "base/utf.hpp"
#include "base/wire/ascii_set.hpp"
#include "base/wire/percent.hpp"

namespace ruvo::texto {

namespace {

void append_escaped(std::string& out, char c) {
  const auto byte = static_cast<unsigned char>(c);
  out.push_back('=');
  out.push_back("0123456789ABCDEF"[byte >> 4]);
  out.push_back("0123456789ABCDEF"[byte & 15]);
}

bool is_one_of(char c, std::string_view marks) noexcept { return marks.find(c) != marks.npos; }
bool is_safe_in_phrase(char c) noexcept { return is_alnum(static_cast<wchar_t>(c)) || is_one_of(c, "!*+-/"); }

bool is_plain_header(std::string_view text) noexcept {
  for (const char c : text)
    if (c < ' ' || c > '~') return false;
  return text.find("=?") == text.npos;
}

/// How many bytes the character takes that begins well-formed UTF-8.
std::size_t character_size(std::string_view text) noexcept {
  std::size_t size = 1;
  while (size < text.size() && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80) ++size;
  return size;
}

std::string q_character(std::string_view bytes) {
  std::string out;
  for (const char c : bytes) {
    if (c == ' ') {
      out.push_back('_');
    } else if (is_safe_in_phrase(c)) {
      out.push_back(c);
    } else {
      append_escaped(out, c);
    }
  }
  return out;
}

}  // namespace

std::wstring web_encode(std::wstring text) {
  std::wstring out;
  wire::append_percent(out, std::wstring_view(text), wire::unreserved_set);
  return out;
}

std::wstring web_decode(wide_view text) {
  std::wstring out;
  if (!wire::percent_text(out, text).good()) throw std::invalid_argument("invalid percent-encoding");
  return out;
}
std::wstring web_decode(const std::wstring& text) { return web_decode(std::wstring_view(text)); }

std::string q_encoded(narrow_view text) {
  if (is_plain_header(text)) return std::string(text);
  constexpr std::string_view begin = "=?UTF-8?Q?";
  constexpr std::string_view end = "?=";
  constexpr std::size_t longest_word = 75;
  const std::string good = to_utf_8(std::wstring_view(to_utf_16(text)));
  std::string out(begin);
  std::size_t word = begin.size() + end.size();
  for (std::string_view rest = good; !rest.empty();) {
    const std::size_t size = character_size(rest);
    const std::string character = q_character(rest.substr(0, size));
    if (word + character.size() > longest_word) {
      out.append(end).append("\r\n ").append(begin);
      word = begin.size() + end.size();
    }
    out += character;
    word += character.size();
    rest.remove_prefix(size);
  }
  out.append(end);
  return out;
}
std::string q_encoded(const std::string& text) { return q_encoded(std::string_view(text)); }

}  // namespace ruvo::texto
