// SPDX-License-Identifier: BSL-1.0

// Percent-encoding.

#include "base/wire/percent.hpp"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>

#include "base/ascii.hpp"
#include "base/utf.hpp"

namespace ruvo::wire {

namespace {

template <class Text>
void append_percent_to(Text& out, std::string_view bytes, const ascii_set& stay, plus_sign plus) {
  using unit = typename Text::value_type;
  constexpr std::string_view digits = "0123456789ABCDEF";
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (stay.has(byte)) {
      out.push_back(static_cast<unit>(byte));
    } else if (plus == plus_sign::blank && byte == ' ') {
      out.push_back(static_cast<unit>('+'));
    } else {
      out.push_back(static_cast<unit>('%'));
      out.push_back(static_cast<unit>(digits[byte >> 4]));
      out.push_back(static_cast<unit>(digits[byte & 15]));
    }
  }
}

template <class Unit>
int hex_digit(Unit unit) noexcept {
  return static_cast<std::make_unsigned_t<Unit>>(unit) < 128 ? texto::hex_value(static_cast<wchar_t>(unit))
                                                             : -1;
}

/// The byte of the escape at the beginning, or -1.
template <class Unit>
int escaped_byte(std::basic_string_view<Unit> text) noexcept {
  if (text.size() < 3 || text[0] != Unit{'%'}) return -1;
  const int high = hex_digit(text[1]), low = hex_digit(text[2]);
  return high < 0 || low < 0 ? -1 : high * 16 + low;
}

void append_units(std::string& out, std::string_view bytes) { out += bytes; }
void append_units(std::string& out, std::wstring_view text) { texto::append_utf_8(out, text); }

/// Where the next "%" or "+" that stands for something else is, or the end.
template <class Unit>
std::size_t next_escape(std::basic_string_view<Unit> text, std::size_t from, plus_sign plus) noexcept {
  constexpr Unit both[] = {Unit{'%'}, Unit{'+'}};
  const std::size_t found = text.find_first_of(both, from, plus == plus_sign::blank ? 2 : 1);
  return std::min(found, text.size());
}

template <class Unit>
percent_faults decode(std::string& out, std::basic_string_view<Unit> text, plus_sign plus) {
  percent_faults faults;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t plain = next_escape(text, at, plus);
    append_units(out, text.substr(at, plain - at));
    at = plain;
    if (at == text.size()) break;
    const int byte = escaped_byte(text.substr(at));
    if (text[at] == Unit{'+'}) {
      out.push_back(' ');
      ++at;
    } else if (byte < 0) {
      faults.broken = std::min(faults.broken, at);
      out.push_back('%');
      ++at;
    } else {
      out.push_back(static_cast<char>(byte));
      at += 3;
    }
  }
  return faults;
}

/// The place in the text of a byte that decoding gives. Decoding again up to there is only done for a fault.
template <class Unit>
std::size_t place_of_byte(std::basic_string_view<Unit> text, std::size_t byte, plus_sign plus) {
  std::size_t at = 0;
  for (std::string unit; at < text.size();) {
    const bool pair = sizeof(Unit) > 1 && texto::is_high_surrogate(text[at]) && at + 1 < text.size() &&
                      texto::is_low_surrogate(text[at + 1]);
    const std::size_t size = escaped_byte(text.substr(at)) >= 0 ? 3 : pair ? 2 : 1;
    unit.clear();
    decode(unit, text.substr(at, size), plus);
    if (byte < unit.size()) break;
    byte -= unit.size();
    at += size;
  }
  return at;
}

std::size_t first_half_pair(std::wstring_view text) noexcept {
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (!texto::is_surrogate(text[at])) continue;
    if (!texto::is_high_surrogate(text[at]) || at + 1 == text.size() ||
        !texto::is_low_surrogate(text[at + 1]))
      return at;
    ++at;
  }
  return text.npos;
}

template <class Unit>
percent_faults decode_text(std::wstring& out, std::basic_string_view<Unit> text, plus_sign plus) {
  std::string bytes;
  percent_faults faults = decode(bytes, text, plus);
  const std::size_t bad = first_not_utf_8(bytes);
  if (bad != bytes.npos) faults.not_utf_8 = place_of_byte(text, bad, plus);
  // On its way to the bytes, half a pair became U+FFFD.
  if constexpr (sizeof(Unit) > 1) faults.not_utf_8 = std::min(faults.not_utf_8, first_half_pair(text));
  texto::append_utf_16(out, bytes);
  return faults;
}

}  // namespace

void append_percent(std::string& out, std::string_view bytes, const ascii_set& stay, plus_sign plus) {
  append_percent_to(out, bytes, stay, plus);
}
void append_percent(std::wstring& out, std::string_view bytes, const ascii_set& stay, plus_sign plus) {
  append_percent_to(out, bytes, stay, plus);
}
void append_percent(std::wstring& out, std::wstring_view text, const ascii_set& stay, plus_sign plus) {
  append_percent_to(out, texto::to_utf_8(text), stay, plus);
}

percent_faults percent_bytes(std::string& out, std::string_view text, plus_sign plus) {
  return decode(out, text, plus);
}
percent_faults percent_bytes(std::string& out, std::wstring_view text, plus_sign plus) {
  return decode(out, text, plus);
}
percent_faults percent_text(std::wstring& out, std::wstring_view text, plus_sign plus) {
  return decode_text(out, text, plus);
}
percent_faults percent_text(std::wstring& out, std::string_view text, plus_sign plus) {
  return decode_text(out, text, plus);
}

std::size_t first_not_utf_8(std::string_view bytes) {
  std::string good;  // what is malformed comes back as another character
  texto::append_utf_8(good, texto::to_utf_16(bytes));
  if (good == bytes) return bytes.npos;
  std::size_t at = 0;
  const std::size_t both = std::min(good.size(), bytes.size());
  while (at < both && good[at] == bytes[at]) ++at;
  while (at < both && (static_cast<unsigned char>(good[at]) & 0xC0) == 0x80) --at;
  return at;
}

}  // namespace ruvo::wire
