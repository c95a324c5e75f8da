// SPDX-License-Identifier: BSL-1.0

// Sets of characters: how they are kept, and how a pattern names them.

#include "texto/regex/set.hpp"

#include <algorithm>
#include <iterator>
#include <string>

#include "base/ascii.hpp"
#include "base/unicode.hpp"
#include "texto/regex/fault.hpp"

namespace ruvo::texto::regex {

using namespace std::string_view_literals;

void rough_set::add(char16_t first, char16_t last) {
  for (unsigned unit = first; unit <= last && unit < 256; ++unit) low[unit >> 6] |= 1ULL << (unit & 63);
  for (unsigned block = std::max<unsigned>(first, 256) >> 10; last >= 256 && block <= last >> 10u; ++block)
    blocks |= 1ULL << block;
}

void rough_set::add(const rough_set& other) {
  for (std::size_t i = 0; i < low.size(); ++i) low[i] |= other.low[i];
  blocks |= other.blocks;
}

bool rough_set::meets(const rough_set& other) const {
  for (std::size_t i = 0; i < low.size(); ++i)
    if ((low[i] & other.low[i]) != 0) return true;
  return (blocks & other.blocks) != 0;
}

void char_set::add(char16_t first, char16_t last) {
  auto at = std::lower_bound(ranges_.begin(), ranges_.end(), first,
                             [](const range& each, char16_t unit) { return each.second < unit; });
  if (at != ranges_.begin() && std::prev(at)->second + 1 == first) --at;
  auto end = at;
  range joined{first, last};
  for (; end != ranges_.end() && end->first <= joined.second + 1; ++end) {
    joined.first = std::min(joined.first, end->first);
    joined.second = std::max(joined.second, end->second);
  }
  if (at == end) {
    ranges_.insert(at, joined);
  } else {
    *at = joined;
    ranges_.erase(at + 1, end);
  }
  rough_.add(first, last);
}

void char_set::add(const char_set& other) {
  for (const auto& [first, last] : other.ranges_) add(first, last);
}

void char_set::invert() {
  const std::vector<range> ranges = std::exchange(ranges_, {});
  rough_ = {};
  unsigned from = 0;
  for (const auto& [first, last] : ranges) {
    if (first > from) add(static_cast<char16_t>(from), static_cast<char16_t>(first - 1));
    from = last + 1u;
  }
  if (from <= 0xFFFF) add(static_cast<char16_t>(from), 0xFFFF);
}

bool char_set::has_high(char16_t unit) const noexcept {
  auto at = std::upper_bound(ranges_.begin(), ranges_.end(), unit,
                             [](char16_t value, const range& each) { return value < each.first; });
  return at != ranges_.begin() && unit <= std::prev(at)->second;
}

namespace {

/// What a class holds beyond ASCII.
enum class wide_part { none, letters, capitals, small_letters, blanks, punctuation, signs, signs_and_blanks };

struct named_class {
  std::wstring_view name, ranges;  // in ASCII: each pair of units is a range
  wide_part wide = wide_part::none;
};

constexpr named_class classes[] = {
    {L"d", L"09"},
    {L"w", L"09AZaz__", wide_part::letters},
    {L"s", L"\t\r  ", wide_part::blanks},
    {L"alnum", L"09AZaz", wide_part::letters},
    {L"alpha", L"AZaz", wide_part::letters},
    {L"blank", L"\t\t  "},
    {L"cntrl", L"\0\x1F\x7F\x7F"sv},
    {L"digit", L"09"},
    {L"graph", L"!~", wide_part::signs},
    {L"lower", L"az", wide_part::small_letters},
    {L"print", L" ~", wide_part::signs_and_blanks},
    {L"punct", L"!/:@[`{~", wide_part::punctuation},
    {L"space", L"\t\r  ", wide_part::blanks},
    {L"upper", L"AZ", wide_part::capitals},
    {L"xdigit", L"09AFaf"},
};

template <std::size_t Size>
void add_all(char_set& set, const unit_range (&ranges)[Size]) {
  for (const auto& [first, last] : ranges) set.add(first, last);
}

/// Of each pair its first unit, or its second.
void add_halves(char_set& set, char16_t offset) {
  for (const auto& [first, last] : wide_pairs)
    for (unsigned unit = first + offset; unit <= last; unit += 2) set.add(static_cast<char16_t>(unit));
}

/// All from U+00A0 on, with or without the blanks.
char_set signs(bool blanks) {
  char_set others;
  others.add(0, 0x9F);
  if (!blanks) add_all(others, wide_blanks);
  others.invert();
  return others;
}

void add(char_set& set, wide_part wide) {
  switch (wide) {
    case wide_part::none:
      return;
    case wide_part::letters:
      return add_all(set, wide_letters);
    case wide_part::capitals:
      add_all(set, wide_capitals);
      return add_halves(set, 0);
    case wide_part::small_letters:
      add_all(set, wide_small_letters);
      return add_halves(set, 1);
    case wide_part::blanks:
      return add_all(set, wide_blanks);
    case wide_part::punctuation:
      return add_all(set, wide_punctuation);
    case wide_part::signs:
    case wide_part::signs_and_blanks:
      return set.add(signs(wide == wide_part::signs_and_blanks));
  }
}

// The POSIX names of the units of ASCII, in their order.
constexpr std::wstring_view unit_names =
    L" NUL SOH STX ETX EOT ENQ ACK alert backspace tab newline vertical-tab form-feed carriage-return SO SI"
    L" DLE DC1 DC2 DC3 DC4 NAK SYN ETB CAN EM SUB ESC IS4 IS3 IS2 IS1"
    L" space exclamation-mark quotation-mark number-sign dollar-sign percent-sign ampersand apostrophe"
    L" left-parenthesis right-parenthesis asterisk plus-sign comma hyphen period slash"
    L" zero one two three four five six seven eight nine colon semicolon"
    L" less-than-sign equals-sign greater-than-sign question-mark"
    L" commercial-at A B C D E F G H I J K L M N O P Q R S T U V W X Y Z"
    L" left-square-bracket backslash right-square-bracket circumflex underscore"
    L" grave-accent a b c d e f g h i j k l m n o p q r s t u v w x y z"
    L" left-curly-bracket vertical-line right-curly-bracket tilde DEL ";
static_assert(std::count(unit_names.begin(), unit_names.end(), L' ') == 128 + 1);

/// The unit of which [.name.] speaks. Each unit is a name of its own, too.
wchar_t named_unit(std::wstring_view name) {
  if (name.size() == 1) return name[0];
  const std::size_t found = unit_names.find(L' ' + std::wstring(name) + L' ');
  if (name.find(L' ') != name.npos || found == unit_names.npos) fail(fault::collate);
  return static_cast<wchar_t>(std::count(unit_names.begin(), unit_names.begin() + found, L' '));
}

void add_class(char_set& set, std::wstring_view name) {
  std::wstring lower(name);
  for (wchar_t& c : lower) c = to_lower(c);
  const auto found = std::find_if(std::begin(classes), std::end(classes),
                                  [&](const named_class& each) { return each.name == lower; });
  if (found == std::end(classes)) fail(fault::ctype);
  for (std::size_t i = 0; i < found->ranges.size(); i += 2)
    set.add(static_cast<char16_t>(found->ranges[i]), static_cast<char16_t>(found->ranges[i + 1]));
  add(set, found->wide);
}

/// Reads the inside of [...]: what was read last decides what a '-' means.
class set_parser {
 public:
  set_parser(std::wstring_view pattern, std::size_t& at) : pattern_(pattern), at_(at) {}

  char_set parse() {
    const bool negative = peek() == L'^';
    if (negative) ++at_;
    while (peek() != L']') item();
    ++at_;
    if (negative) set_.invert();
    return set_;
  }

 private:
  enum class last { none, unit, set };

  wchar_t peek() const {
    if (at_ == pattern_.size()) fail(fault::brack);
    return pattern_[at_];
  }

  void add_unit(wchar_t c) {
    set_.add(static_cast<char16_t>(c));
    last_ = last::unit;
    unit_ = c;
  }

  void item() {
    if (peek() == L'-' && last_ != last::none && pattern_.substr(at_ + 1, 1) != L"]"sv) {
      ++at_;
      return range();
    }
    wchar_t c;
    if (unit(c)) add_unit(c);
  }

  void range() {
    if (last_ == last::set) fail(fault::range);
    const auto first = static_cast<char16_t>(unit_);
    wchar_t c;
    if (!unit(c) || static_cast<char16_t>(c) < first) fail(fault::range);
    set_.add(first, static_cast<char16_t>(c));
    last_ = last::none;
  }

  /// Reads one unit into `c`, or adds a whole class to the set and gives false.
  bool unit(wchar_t& c) {
    c = peek();
    ++at_;
    if (c == L'[' && (peek() == L':' || peek() == L'=' || peek() == L'.')) return named(c);
    if (c != L'\\') return true;
    if (at_ == pattern_.size()) fail(fault::escape);
    if (names_class(pattern_[at_])) {
      set_.add(escaped_class(pattern_[at_++]));
      last_ = last::set;
      return false;
    }
    if (pattern_[at_] == L'b') {
      c = L'\b';
      ++at_;
    } else {
      c = parse_escaped_unit(pattern_, at_);
    }
    return true;
  }

  /// [:alpha:], [=x=] and [.x.]
  bool named(wchar_t& c) {
    const wchar_t mark = pattern_[at_++];
    const std::size_t end = pattern_.find(mark, at_);
    if (end == pattern_.npos || end + 1 >= pattern_.size() || pattern_[end + 1] != L']')
      fail(mark == L':' ? fault::ctype : fault::collate);
    const std::wstring_view name = pattern_.substr(at_, end - at_);
    at_ = end + 2;
    if (mark == L':') {
      add_class(set_, name);
    } else {
      c = named_unit(name);
      if (mark == L'.') return true;
      add_unit(to_lower(c));
      add_unit(to_upper(c));
    }
    last_ = last::set;
    return false;
  }

  std::wstring_view pattern_;
  std::size_t& at_;
  char_set set_;
  last last_ = last::none;
  wchar_t unit_ = 0;
};

wchar_t parse_hex(std::wstring_view pattern, std::size_t& at, std::size_t digits) {
  unsigned value = 0;
  for (std::size_t i = 0; i < digits; ++i, ++at) {
    const int digit = at < pattern.size() ? hex_value(pattern[at]) : -1;
    if (digit < 0) fail(fault::escape);
    value = value * 16 + static_cast<unsigned>(digit);
  }
  return static_cast<wchar_t>(value);
}

}  // namespace

char_set parse_set(std::wstring_view pattern, std::size_t& at) { return set_parser(pattern, at).parse(); }

bool names_class(wchar_t letter) { return L"dDwWsS"sv.find(letter) != std::wstring_view::npos; }

char_set escaped_class(wchar_t letter) {
  char_set set;
  const wchar_t name = to_lower(letter);
  add_class(set, {&name, 1});
  if (is_upper(letter)) set.invert();
  return set;
}

wchar_t parse_escaped_unit(std::wstring_view pattern, std::size_t& at) {
  const wchar_t c = pattern[at++];
  constexpr std::wstring_view letters = L"0fnrtv", units = L"\0\f\n\r\t\v"sv;
  if (const std::size_t known = letters.find(c); known != letters.npos) return units[known];
  if (c == L'x' || c == L'u') return parse_hex(pattern, at, c == L'x' ? 2 : 4);
  if (c == L'c') {
    if (at == pattern.size() || !is_alpha(pattern[at])) fail(fault::escape);
    return static_cast<wchar_t>(pattern[at++] & 31);
  }
  if (is_digit(c) || c == L'B') fail(fault::escape);
  return c;
}

}  // namespace ruvo::texto::regex
