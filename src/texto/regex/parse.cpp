// SPDX-License-Identifier: BSL-1.0

// From the text of a pattern to its tree.

#include "texto/regex/parse.hpp"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "base/ascii.hpp"
#include "texto/regex/fault.hpp"

namespace ruvo::texto::regex {

namespace {

constexpr std::uint32_t greatest_count = 0x7FFFFFFF;

/// Nested brackets are kept on a stack of our own, so that no pattern runs out of the thread's.
class parser {
 public:
  explicit parser(std::wstring_view pattern) : pattern_(pattern) {}

  ast parse() {
    open_.push_back({});
    while (at_ < pattern_.size()) step();
    if (open_.size() > 1) fail(fault::paren);
    tree_.root = close_alternatives();
    tree_.groups = static_cast<std::uint32_t>(closed_.size());
    return std::move(tree_);
  }

 private:
  struct chain {
    std::uint32_t first = none, last = none;
  };

  /// A bracket whose end is not reached yet.
  struct open_bracket {
    node made;  // empty for (?:
    chain alternatives, items;
  };

  bool at(std::wstring_view text) const { return pattern_.substr(at_, text.size()) == text; }

  bool skip(std::wstring_view text) {
    if (!at(text)) return false;
    at_ += text.size();
    return true;
  }

  std::uint32_t add(node made) {
    if (tree_.nodes.size() >= max_parts) fail(fault::space);
    made.can_be_empty = can_be_empty(made);
    tree_.nodes.push_back(made);
    return static_cast<std::uint32_t>(tree_.nodes.size() - 1);
  }

  bool can_be_empty(const node& made) const {
    if (made.kind == node_kind::group) return tree_[made.child].can_be_empty;
    if (made.kind == node_kind::repeat) return made.a == 0 || tree_[made.child].can_be_empty;
    if (made.kind == node_kind::sequence) return !any_child(made, false);
    if (made.kind == node_kind::alternatives) return any_child(made, true);
    return !made.is_unit();
  }

  /// Whether there is a child of which it is or is not true that it can be empty.
  bool any_child(const node& made, bool can_be_empty) const {
    for (std::uint32_t i = made.child; i != none; i = tree_[i].next)
      if (tree_[i].can_be_empty == can_be_empty) return true;
    return false;
  }

  std::uint32_t add_set(char_set set) {
    return add({.kind = node_kind::set, .a = tree_.add(std::move(set))});
  }

  std::uint32_t add_character(wchar_t c) {
    return add({.kind = node_kind::character, .a = static_cast<char16_t>(c)});
  }

  void append(chain& to, std::uint32_t made) {
    (to.first == none ? to.first : tree_[to.last].next) = made;
    to.last = made;
  }

  void step() {
    switch (const wchar_t c = pattern_[at_++]; c) {
      case L'(':
        return begin_bracket();
      case L')':
        return end_bracket();
      case L'|':
        return append(open_.back().alternatives, close_sequence());
      case L'^':
        return assertion({.kind = node_kind::text_begin});
      case L'$':
        return assertion({.kind = node_kind::text_end});
      case L'*':
      case L'+':
      case L'?':
      case L'{':
        fail(fault::badrepeat);
      case L'[':
        return atom(add_set(parse_set(pattern_, at_)));
      case L'.':
        return atom(add_set(any()));
      case L'\\':
        return escape();
      default:
        return atom(add_character(c));
    }
  }

  static char_set any() {
    char_set set;
    for (const char16_t end : {u'\n', u'\r', u'\u2028', u'\u2029'}) set.add(end);
    set.invert();
    return set;
  }

  void assertion(const node& made) { append(open_.back().items, add(made)); }

  void atom(std::uint32_t made) { append(open_.back().items, quantified(made)); }

  void escape() {
    if (at_ == pattern_.size()) fail(fault::escape);
    const wchar_t c = pattern_[at_];
    if (c == L'b' || c == L'B') {
      ++at_;
      assertion({.kind = node_kind::word_limit, .negative = c == L'B'});
    } else if (names_class(c)) {
      ++at_;
      atom(add_set(escaped_class(c)));
    } else if (is_digit(c) && c != L'0') {
      back_reference();
    } else {
      atom(add_character(parse_escaped_unit(pattern_, at_)));
    }
  }

  void back_reference() {
    const std::uint32_t group = number(fault::backref);
    if (group >= closed_.size() || !closed_[group]) fail(fault::backref);
    tree_.back_references = true;
    atom(add({.kind = node_kind::back_reference, .a = group}));
  }

  std::uint32_t number(fault error) {
    std::uint64_t value = 0;
    if (at_ == pattern_.size() || !is_digit(pattern_[at_])) fail(error);
    for (; at_ < pattern_.size() && is_digit(pattern_[at_]); ++at_) {
      value = value * 10 + static_cast<unsigned>(pattern_[at_] - L'0');
      if (value > greatest_count) fail(error);
    }
    return static_cast<std::uint32_t>(value);
  }

  std::uint32_t groups_so_far() const { return static_cast<std::uint32_t>(closed_.size()); }

  void begin_bracket() {
    open_bracket opened;
    opened.made.a = groups_so_far();
    if (skip(L"?=") || skip(L"?!")) {
      opened.made.kind = node_kind::look_ahead;
      opened.made.negative = pattern_[at_ - 1] == L'!';
    } else if (!skip(L"?:")) {
      if (at(L"?")) fail(fault::paren);
      opened.made.kind = node_kind::group;
      closed_.push_back(false);
    }
    if (open_.size() >= max_parts) fail(fault::stack);
    open_.push_back(opened);
  }

  void end_bracket() {
    if (open_.size() == 1) fail(fault::paren);
    const std::uint32_t body = close_alternatives();
    node made = open_.back().made;
    open_.pop_back();
    if (made.kind == node_kind::empty) return atom(body);
    made.child = body;
    if (made.kind == node_kind::look_ahead) {
      made.b = groups_so_far();
      return assertion(made);
    }
    closed_[made.a] = true;
    atom(add(made));
  }

  /// What stands between two '|'.
  std::uint32_t close_sequence() {
    const chain items = std::exchange(open_.back().items, {});
    if (items.first == none) return add({});
    if (items.first == items.last) return items.first;
    return add({.kind = node_kind::sequence, .child = items.first});
  }

  std::uint32_t close_alternatives() {
    chain all = open_.back().alternatives;
    const std::uint32_t last = close_sequence();
    if (all.first == none) return last;
    append(all, last);
    return add({.kind = node_kind::alternatives, .child = all.first});
  }

  /// `body` with the quantifiers that follow it; more than one may.
  std::uint32_t quantified(std::uint32_t body) {
    node made{.kind = node_kind::repeat};
    while (quantifier(made.a, made.b)) {
      made.lazy = skip(L"?");
      made.child = body;
      body = add(made);
    }
    return body;
  }

  bool quantifier(std::uint32_t& least, std::uint32_t& greatest) {
    least = at(L"+") ? 1 : 0;
    greatest = at(L"?") ? 1 : unbounded;
    if (skip(L"*") || skip(L"+") || skip(L"?")) return true;
    if (!skip(L"{")) return false;
    least = greatest = count();
    if (skip(L",")) greatest = at(L"}") ? unbounded : count();
    if (at_ == pattern_.size()) fail(fault::brace);
    if (!skip(L"}") || greatest < least) fail(fault::badbrace);
    return true;
  }

  std::uint32_t count() { return number(at_ == pattern_.size() ? fault::brace : fault::badbrace); }

  std::wstring_view pattern_;
  std::size_t at_ = 0;
  ast tree_;
  std::vector<open_bracket> open_;
  std::vector<bool> closed_{true};  // for each group whether its end was read; 0 is no group to refer to
};

}  // namespace

ast parse(std::wstring_view pattern) { return parser(pattern).parse(); }

}  // namespace ruvo::texto::regex
