#pragma once

// The parsed form of a pattern, and the sets of characters in it.

#include <array>
#include <cstddef>
#include <cstdint>
#include <regex>
#include <string_view>
#include <utility>
#include <vector>

namespace ruvo::texto::regex {

/// Patterns and programs of more parts than this are refused with error_space.
inline constexpr std::size_t max_parts = 100'000;
inline constexpr std::uint32_t unbounded = 0xFFFFFFFF;

[[noreturn]] void fail(std::regex_constants::error_type code);

/// A set of UTF-16 units.
class CharSet {
 public:
  void add(char16_t first, char16_t last);
  void add(const CharSet& other);
  void invert();

  bool has(wchar_t c) const noexcept {
    const auto unit = static_cast<char16_t>(c);
    return unit < 256 ? (low_[unit >> 6] >> (unit & 63) & 1) != 0 : has_high(unit);
  }
  /// One bit for each unit below 256.
  const std::array<std::uint64_t, 4>& low() const noexcept { return low_; }
  /// One bit for each block of 1024 units that holds one of the set from 256 on.
  std::uint64_t blocks() const noexcept;
  static constexpr unsigned block_bits = 10;

 private:
  using Range = std::pair<char16_t, char16_t>;

  bool has_high(char16_t unit) const noexcept;

  std::vector<Range> ranges_;  // sorted, apart from each other
  std::array<std::uint64_t, 4> low_{};
};

enum class Kind : std::uint8_t {
  empty,
  character,       // a: the unit
  set,             // a: index of the set
  text_begin,      //
  text_end,        //
  word_limit,      // negative: not at a limit
  back_reference,  // a: group
  group,           // a: number of the group
  look_ahead,      // negative; a, b: the groups inside, first and past the last
  sequence,
  alternatives,
  repeat,  // a, b: least and greatest number of times; lazy
};

struct Node {
  Kind kind = Kind::empty;
  bool negative = false;
  bool lazy = false;
  bool can_be_empty = true;
  std::uint32_t a = 0, b = 0;
  std::int32_t child = -1, next = -1;  // the first child; the sibling that follows
};

struct Ast {
  std::vector<Node> nodes;
  std::vector<CharSet> sets;
  std::int32_t root = -1;
  std::uint32_t groups = 1;  // with the whole match as group 0
  bool back_references = false;
};

/// Parses without recursion. Throws std::regex_error.
Ast parse(std::wstring_view pattern);
/// Makes alternatives quicker to match: single units become a set, and those that begin with the same
/// character share it. They match the same, with the same groups; unless `groups` are asked for, there are
/// none in the tree any more.
void factor(Ast& ast, bool groups);

/// Parses a set after its '['; `at` moves behind the ']'.
CharSet parse_set(std::wstring_view pattern, std::size_t& at);
/// The set of \d \D \w \W \s \S, by its letter.
CharSet escaped_class(wchar_t letter);
/// Parses an escape for one unit, `at` behind the backslash: \n, \x41, \u00F1, \cJ, \. ...
wchar_t parse_escaped_unit(std::wstring_view pattern, std::size_t& at);

}  // namespace ruvo::texto::regex
