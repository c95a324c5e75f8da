// SPDX-License-Identifier: BSL-1.0
#pragma once

// Sets of characters: [a-z], \w, the dot.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace ruvo::texto::regex {

/// The units of a set, or more than those but never fewer: exact below 256, beyond it blocks of 1024.
struct rough_set {
  std::array<std::uint64_t, 4> low{};  // a bit for each unit
  std::uint64_t blocks = 0;            // a bit for each block that holds a unit from 256 on

  void add(char16_t first, char16_t last);
  void add(const rough_set& other);
  bool meets(const rough_set& other) const;

  bool has(wchar_t c) const noexcept {
    const auto unit = static_cast<char16_t>(c);
    return unit < 256 ? (low[unit >> 6] >> (unit & 63) & 1) != 0 : (blocks >> (unit >> 10) & 1) != 0;
  }
};

/// A set of UTF-16 units.
class char_set {
 public:
  void add(char16_t first, char16_t last);
  void add(char16_t unit) { add(unit, unit); }
  void add(const char_set& other);
  void invert();

  bool has(wchar_t c) const noexcept {
    const auto unit = static_cast<char16_t>(c);
    return unit < 256 ? rough_.has(c) : has_high(unit);
  }
  const rough_set& rough() const noexcept { return rough_; }

 private:
  using range = std::pair<char16_t, char16_t>;

  bool has_high(char16_t unit) const noexcept;

  std::vector<range> ranges_;  // sorted, apart from each other
  rough_set rough_;
};

/// Parses a set after its '['; `at` moves behind the ']'.
char_set parse_set(std::wstring_view pattern, std::size_t& at);
/// The set of \d \D \w \W \s \S, by its letter.
char_set escaped_class(wchar_t letter);
/// Whether escaped_class() has a set for it.
bool names_class(wchar_t letter);
/// Parses an escape for one unit, `at` behind the backslash: \n, \x41, \u00F1, \cJ, \. ...
wchar_t parse_escaped_unit(std::wstring_view pattern, std::size_t& at);

}  // namespace ruvo::texto::regex
