#include <algorithm>
#include <iterator>
#include <string>

#include "base/ascii.hpp"
#include "base/unicode.hpp"
#include "texto/regex/ast.hpp"

namespace ruvo::texto::regex {

using namespace std::string_view_literals;
namespace codes = std::regex_constants;

void CharSet::add(char16_t first, char16_t last) {
  auto at = std::lower_bound(ranges_.begin(), ranges_.end(), first,
                             [](const Range& range, char16_t unit) { return range.second < unit; });
  if (at != ranges_.begin() && std::prev(at)->second + 1 == first) --at;
  auto end = at;
  Range joined{first, last};
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
  for (unsigned unit = first; unit <= last && unit < 256; ++unit) low_[unit >> 6] |= 1ULL << (unit & 63);
}

void CharSet::add(const CharSet& other) {
  for (const auto& [first, last] : other.ranges_) add(first, last);
}

void CharSet::invert() {
  const std::vector<Range> ranges = std::exchange(ranges_, {});
  low_ = {};
  unsigned from = 0;
  for (const auto& [first, last] : ranges) {
    if (first > from) add(static_cast<char16_t>(from), static_cast<char16_t>(first - 1));
    from = last + 1u;
  }
  if (from <= 0xFFFF) add(static_cast<char16_t>(from), 0xFFFF);
}

std::uint64_t CharSet::blocks() const noexcept {
  std::uint64_t blocks = 0;
  for (const auto& [first, last] : ranges_)
    for (unsigned block = first >> block_bits; last >= 256 && block <= last >> block_bits; ++block)
      blocks |= 1ULL << block;
  return blocks;
}

bool CharSet::has_high(char16_t unit) const noexcept {
  auto at = std::upper_bound(ranges_.begin(), ranges_.end(), unit,
                             [](char16_t value, const Range& range) { return value < range.first; });
  return at != ranges_.begin() && unit <= std::prev(at)->second;
}

namespace {

/// What a class holds beyond ASCII.
enum class Wide { none, letters, capitals, small_letters, blanks, punctuation, signs, signs_and_blanks };

struct NamedClass {
  std::wstring_view name, ranges;  // in ASCII: each pair of units is a range
  Wide wide = Wide::none;
};

constexpr NamedClass classes[] = {
    {L"d", L"09"},
    {L"w", L"09AZaz__", Wide::letters},
    {L"s", L"\t\r  ", Wide::blanks},
    {L"alnum", L"09AZaz", Wide::letters},
    {L"alpha", L"AZaz", Wide::letters},
    {L"blank", L"\t\t  "},
    {L"cntrl", L"\0\x1F\x7F\x7F"sv},
    {L"digit", L"09"},
    {L"graph", L"!~", Wide::signs},
    {L"lower", L"az", Wide::small_letters},
    {L"print", L" ~", Wide::signs_and_blanks},
    {L"punct", L"!/:@[`{~", Wide::punctuation},
    {L"space", L"\t\r  ", Wide::blanks},
    {L"upper", L"AZ", Wide::capitals},
    {L"xdigit", L"09AFaf"},
};

template <std::size_t Size>
void add_all(CharSet& set, const unit_range (&ranges)[Size]) {
  for (const auto& [first, last] : ranges) set.add(first, last);
}

/// Of each pair its first unit, or its second.
void add_halves(CharSet& set, char16_t offset) {
  for (const auto& [first, last] : wide_pairs)
    for (unsigned unit = first + offset; unit <= last; unit += 2)
      set.add(static_cast<char16_t>(unit), static_cast<char16_t>(unit));
}

/// All from U+00A0 on, with or without the blanks.
CharSet signs(bool blanks) {
  CharSet others;
  others.add(0, 0x9F);
  if (!blanks) add_all(others, wide_blanks);
  others.invert();
  return others;
}

void add_wide(CharSet& set, Wide wide) {
  switch (wide) {
    case Wide::none:
      return;
    case Wide::letters:
      return add_all(set, wide_letters);
    case Wide::capitals:
      add_all(set, wide_capitals);
      return add_halves(set, 0);
    case Wide::small_letters:
      add_all(set, wide_small_letters);
      return add_halves(set, 1);
    case Wide::blanks:
      return add_all(set, wide_blanks);
    case Wide::punctuation:
      return add_all(set, wide_punctuation);
    case Wide::signs:
    case Wide::signs_and_blanks:
      return set.add(signs(wide == Wide::signs_and_blanks));
  }
}

// POSIX names of the characters that are no letters, in the order of their codes; letters are their own
// names.
constexpr std::wstring_view low_names[] = {
    L"NUL",
    L"SOH",
    L"STX",
    L"ETX",
    L"EOT",
    L"ENQ",
    L"ACK",
    L"alert",  //
    L"backspace",
    L"tab",
    L"newline",
    L"vertical-tab",
    L"form-feed",
    L"carriage-return",  //
    L"SO",
    L"SI",
    L"DLE",
    L"DC1",
    L"DC2",
    L"DC3",
    L"DC4",
    L"NAK",
    L"SYN",
    L"ETB",
    L"CAN",
    L"EM",  //
    L"SUB",
    L"ESC",
    L"IS4",
    L"IS3",
    L"IS2",
    L"IS1",
    L"space",
    L"exclamation-mark",  //
    L"quotation-mark",
    L"number-sign",
    L"dollar-sign",
    L"percent-sign",
    L"ampersand",  //
    L"apostrophe",
    L"left-parenthesis",
    L"right-parenthesis",
    L"asterisk",
    L"plus-sign",  //
    L"comma",
    L"hyphen",
    L"period",
    L"slash",
    L"zero",
    L"one",
    L"two",
    L"three",
    L"four",  //
    L"five",
    L"six",
    L"seven",
    L"eight",
    L"nine",
    L"colon",
    L"semicolon",
    L"less-than-sign",  //
    L"equals-sign",
    L"greater-than-sign",
    L"question-mark",
    L"commercial-at",
};
static_assert(std::size(low_names) == 65);

struct NamedUnit {
  std::wstring_view name;
  wchar_t unit;
};

constexpr NamedUnit high_names[] = {
    {L"left-square-bracket", L'['},  {L"backslash", L'\\'},
    {L"right-square-bracket", L']'}, {L"circumflex", L'^'},
    {L"underscore", L'_'},           {L"grave-accent", L'`'},
    {L"left-curly-bracket", L'{'},   {L"vertical-line", L'|'},
    {L"right-curly-bracket", L'}'},  {L"tilde", L'~'},
    {L"DEL", wchar_t{0x7F}},
};

wchar_t named_unit(std::wstring_view name) {
  if (name.size() == 1) return name[0];
  const auto low = std::find(std::begin(low_names), std::end(low_names), name);
  if (low != std::end(low_names)) return static_cast<wchar_t>(low - std::begin(low_names));
  for (const NamedUnit& high : high_names)
    if (high.name == name) return high.unit;
  fail(codes::error_collate);
}

void add_class(CharSet& set, std::wstring_view name) {
  std::wstring lower(name);
  for (wchar_t& c : lower) c = to_lower(c);
  const auto found = std::find_if(std::begin(classes), std::end(classes),
                                  [&](const NamedClass& each) { return each.name == lower; });
  if (found == std::end(classes)) fail(codes::error_ctype);
  for (std::size_t i = 0; i < found->ranges.size(); i += 2)
    set.add(static_cast<char16_t>(found->ranges[i]), static_cast<char16_t>(found->ranges[i + 1]));
  add_wide(set, found->wide);
}

/// Reads the inside of [...]: what was read last decides what a '-' means.
class SetParser {
 public:
  SetParser(std::wstring_view pattern, std::size_t& at) : pattern_(pattern), at_(at) {}

  CharSet parse() {
    const bool negative = peek() == L'^';
    if (negative) ++at_;
    while (peek() != L']') item();
    ++at_;
    if (negative) set_.invert();
    return set_;
  }

 private:
  enum class Last { none, unit, set };

  wchar_t peek() const {
    if (at_ == pattern_.size()) fail(codes::error_brack);
    return pattern_[at_];
  }

  void add_unit(wchar_t c) {
    set_.add(static_cast<char16_t>(c), static_cast<char16_t>(c));
    last_ = Last::unit;
    unit_ = c;
  }

  void item() {
    if (peek() == L'-' && last_ != Last::none && pattern_.substr(at_ + 1, 1) != L"]"sv) {
      ++at_;
      return range();
    }
    wchar_t c;
    if (unit(c)) add_unit(c);
  }

  void range() {
    if (last_ == Last::set) fail(codes::error_range);
    const auto first = static_cast<char16_t>(unit_);
    wchar_t c;
    if (!unit(c) || static_cast<char16_t>(c) < first) fail(codes::error_range);
    set_.add(first, static_cast<char16_t>(c));
    last_ = Last::none;
  }

  /// Reads one unit into `c`, or adds a whole class to the set and gives false.
  bool unit(wchar_t& c) {
    c = peek();
    ++at_;
    if (c == L'[' && (peek() == L':' || peek() == L'=' || peek() == L'.')) return named(c);
    if (c != L'\\') return true;
    if (at_ == pattern_.size()) fail(codes::error_escape);
    if (L"dDwWsS"sv.find(pattern_[at_]) != std::wstring_view::npos) {
      set_.add(escaped_class(pattern_[at_++]));
      last_ = Last::set;
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
      fail(mark == L':' ? codes::error_ctype : codes::error_collate);
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
    last_ = Last::set;
    return false;
  }

  std::wstring_view pattern_;
  std::size_t& at_;
  CharSet set_;
  Last last_ = Last::none;
  wchar_t unit_ = 0;
};

wchar_t parse_hex(std::wstring_view pattern, std::size_t& at, std::size_t digits) {
  unsigned value = 0;
  for (std::size_t i = 0; i < digits; ++i, ++at) {
    const int digit = at < pattern.size() ? hex_value(pattern[at]) : -1;
    if (digit < 0) fail(codes::error_escape);
    value = value * 16 + static_cast<unsigned>(digit);
  }
  return static_cast<wchar_t>(value);
}

}  // namespace

CharSet parse_set(std::wstring_view pattern, std::size_t& at) { return SetParser(pattern, at).parse(); }

CharSet escaped_class(wchar_t letter) {
  CharSet set;
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
    if (at == pattern.size() || !is_alpha(pattern[at])) fail(codes::error_escape);
    return static_cast<wchar_t>(pattern[at++] & 31);
  }
  if (is_digit(c) || c == L'B') fail(codes::error_escape);
  return c;
}

}  // namespace ruvo::texto::regex
