// SPDX-License-Identifier: BSL-1.0
#pragma once

// UTF-8 and UTF-16 the plain way, one code point after the other.

#include <cstddef>
#include <string>
#include <string_view>

namespace plain {

/// One code point or U+FFFD for a maximal malformed part, by the table of well-formed sequences.
inline char32_t next_point(std::string_view text, std::size_t& at) {
  const auto byte = [&](std::size_t i) -> unsigned {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
  };
  const unsigned lead = byte(at);
  ++at;
  if (lead < 0x80) return lead;
  struct form {
    unsigned first, last, low, high;
    int tail;
  };
  static constexpr form forms[] = {
      {0xC2, 0xDF, 0x80, 0xBF, 1}, {0xE0, 0xE0, 0xA0, 0xBF, 2}, {0xE1, 0xEC, 0x80, 0xBF, 2},
      {0xED, 0xED, 0x80, 0x9F, 2}, {0xEE, 0xEF, 0x80, 0xBF, 2}, {0xF0, 0xF0, 0x90, 0xBF, 3},
      {0xF1, 0xF3, 0x80, 0xBF, 3}, {0xF4, 0xF4, 0x80, 0x8F, 3},
  };
  for (const form& f : forms) {
    if (lead < f.first || lead > f.last) continue;
    char32_t point = lead & (0x3Fu >> f.tail);
    for (int i = 0; i < f.tail; ++i) {
      const unsigned low = i ? 0x80 : f.low, high = i ? 0xBF : f.high;
      if (byte(at) < low || byte(at) > high) return 0xFFFD;
      point = point << 6 | (byte(at++) & 0x3F);
    }
    return point;
  }
  return 0xFFFD;
}

template <class Unit>
std::basic_string<Unit> utf_16(std::string_view text) {
  std::basic_string<Unit> out;
  for (std::size_t at = 0; at < text.size();) {
    const char32_t point = next_point(text, at);
    if (point < 0x10000) {
      out += static_cast<Unit>(point);
    } else {
      out += static_cast<Unit>(0xD800 + ((point - 0x10000) >> 10));
      out += static_cast<Unit>(0xDC00 + ((point - 0x10000) & 0x3FF));
    }
  }
  return out;
}

template <class Unit>
std::string utf_8(std::basic_string_view<Unit> text) {
  std::string out;
  for (std::size_t at = 0; at < text.size(); ++at) {
    char32_t point = static_cast<char16_t>(text[at]);
    if (point >= 0xD800 && point < 0xE000) {
      const char32_t low = at + 1 < text.size() ? static_cast<char16_t>(text[at + 1]) : 0;
      const bool pair = point < 0xDC00 && low >= 0xDC00 && low < 0xE000;
      point = pair ? 0x10000 + ((point - 0xD800) << 10) + (low - 0xDC00) : 0xFFFD;
      if (pair) ++at;
    }
    const int tail = point < 0x80 ? 0 : point < 0x800 ? 1 : point < 0x10000 ? 2 : 3;
    static constexpr unsigned marks[] = {0, 0xC0, 0xE0, 0xF0};
    out += static_cast<char>(marks[tail] | point >> 6 * tail);
    for (int i = tail; i-- > 0;) out += static_cast<char>(0x80 | (point >> 6 * i & 0x3F));
  }
  return out;
}

}  // namespace plain
