#include <algorithm>
#include <cstddef>

#include "base/ascii.hpp"
#include "texto/regex/ast.hpp"

namespace ruvo::texto::regex {

namespace codes = std::regex_constants;

void fail(codes::error_type code) { throw std::regex_error(code); }

namespace {

constexpr std::uint32_t greatest_count = 0x7FFFFFFF;

/// Nested brackets are kept on a stack of our own, so that no pattern runs out of the thread's.
class Parser {
 public:
  explicit Parser(std::wstring_view pattern) : pattern_(pattern) {}

  Ast parse() {
    open_.push_back({});
    while (at_ < pattern_.size()) step();
    if (open_.size() > 1) fail(codes::error_paren);
    ast_.root = close_alternatives();
    ast_.groups = static_cast<std::uint32_t>(closed_.size());
    return std::move(ast_);
  }

 private:
  struct List {
    std::int32_t first = -1, last = -1;
  };

  /// A bracket whose end is not reached yet.
  struct Open {
    Node node;  // Kind::empty for (?:
    List alternatives, items;
  };

  bool at(std::wstring_view text) const { return pattern_.substr(at_, text.size()) == text; }

  bool skip(std::wstring_view text) {
    if (!at(text)) return false;
    at_ += text.size();
    return true;
  }

  std::int32_t add(const Node& node) {
    if (ast_.nodes.size() >= max_parts) fail(codes::error_space);
    ast_.nodes.push_back(node);
    return static_cast<std::int32_t>(ast_.nodes.size()) - 1;
  }

  std::int32_t add_set(CharSet set) {
    ast_.sets.push_back(std::move(set));
    return add(
        {.kind = Kind::set, .can_be_empty = false, .a = static_cast<std::uint32_t>(ast_.sets.size() - 1)});
  }

  std::int32_t add_character(wchar_t c) {
    return add({.kind = Kind::character, .can_be_empty = false, .a = static_cast<char16_t>(c)});
  }

  void append(List& list, std::int32_t node) {
    (list.first < 0 ? list.first : ast_.nodes[static_cast<std::size_t>(list.last)].next) = node;
    list.last = node;
  }

  Node& node(std::int32_t index) { return ast_.nodes[static_cast<std::size_t>(index)]; }

  void step() {
    switch (const wchar_t c = pattern_[at_++]; c) {
      case L'(':
        return open_bracket();
      case L')':
        return close_bracket();
      case L'|':
        return append(open_.back().alternatives, close_sequence());
      case L'^':
        return assertion({.kind = Kind::text_begin});
      case L'$':
        return assertion({.kind = Kind::text_end});
      case L'*':
      case L'+':
      case L'?':
      case L'{':
        fail(codes::error_badrepeat);
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

  static CharSet any() {
    CharSet set;
    for (const char16_t end : {u'\n', u'\r', u'\u2028', u'\u2029'}) set.add(end, end);
    set.invert();
    return set;
  }

  void assertion(const Node& made) { append(open_.back().items, add(made)); }

  void atom(std::int32_t made) { append(open_.back().items, quantified(made)); }

  void escape() {
    if (at_ == pattern_.size()) fail(codes::error_escape);
    const wchar_t c = pattern_[at_];
    if (c == L'b' || c == L'B') {
      ++at_;
      assertion({.kind = Kind::word_limit, .negative = c == L'B'});
    } else if (std::wstring_view(L"dDwWsS").find(c) != std::wstring_view::npos) {
      ++at_;
      atom(add_set(escaped_class(c)));
    } else if (is_digit(c) && c != L'0') {
      back_reference();
    } else {
      atom(add_character(parse_escaped_unit(pattern_, at_)));
    }
  }

  void back_reference() {
    const std::uint32_t group = number(codes::error_backref);
    if (group >= closed_.size() || !closed_[group]) fail(codes::error_backref);
    ast_.back_references = true;
    atom(add({.kind = Kind::back_reference, .a = group}));
  }

  std::uint32_t number(codes::error_type error) {
    std::uint64_t value = 0;
    if (at_ == pattern_.size() || !is_digit(pattern_[at_])) fail(error);
    for (; at_ < pattern_.size() && is_digit(pattern_[at_]); ++at_) {
      value = value * 10 + static_cast<unsigned>(pattern_[at_] - L'0');
      if (value > greatest_count) fail(error);
    }
    return static_cast<std::uint32_t>(value);
  }

  void open_bracket() {
    Open made;
    if (skip(L"?=") || skip(L"?!")) {
      made.node = {.kind = Kind::look_ahead,
                   .negative = pattern_[at_ - 1] == L'!',
                   .a = static_cast<std::uint32_t>(closed_.size())};
    } else if (!skip(L"?:")) {
      if (at(L"?")) fail(codes::error_paren);
      made.node = {.kind = Kind::group, .a = static_cast<std::uint32_t>(closed_.size())};
      closed_.push_back(false);
    }
    if (open_.size() >= max_parts) fail(codes::error_stack);
    open_.push_back(made);
  }

  void close_bracket() {
    if (open_.size() == 1) fail(codes::error_paren);
    const std::int32_t body = close_alternatives();
    Node made = open_.back().node;
    open_.pop_back();
    if (made.kind == Kind::empty) return atom(body);
    made.child = body;
    if (made.kind == Kind::look_ahead) {
      made.b = static_cast<std::uint32_t>(closed_.size());
      return assertion(made);
    }
    closed_[made.a] = true;
    made.can_be_empty = node(body).can_be_empty;
    atom(add(made));
  }

  /// What stands between two '|'.
  std::int32_t close_sequence() {
    const List items = std::exchange(open_.back().items, {});
    if (items.first < 0) return add({});
    if (items.first == items.last) return items.first;
    bool can_be_empty = true;
    for (std::int32_t i = items.first; i >= 0; i = node(i).next) can_be_empty &= node(i).can_be_empty;
    return add({.kind = Kind::sequence, .can_be_empty = can_be_empty, .child = items.first});
  }

  std::int32_t close_alternatives() {
    List all = open_.back().alternatives;
    const std::int32_t last = close_sequence();
    if (all.first < 0) return last;
    append(all, last);
    bool can_be_empty = false;
    for (std::int32_t i = all.first; i >= 0; i = node(i).next) can_be_empty |= node(i).can_be_empty;
    return add({.kind = Kind::alternatives, .can_be_empty = can_be_empty, .child = all.first});
  }

  /// `body` with the quantifiers that follow it; more than one may.
  std::int32_t quantified(std::int32_t body) {
    Node made{.kind = Kind::repeat};
    while (quantifier(made.a, made.b)) {
      made.lazy = skip(L"?");
      made.can_be_empty = made.a == 0 || node(body).can_be_empty;
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
    if (at_ == pattern_.size()) fail(codes::error_brace);
    if (!skip(L"}") || greatest < least) fail(codes::error_badbrace);
    return true;
  }

  std::uint32_t count() {
    return number(at_ == pattern_.size() ? codes::error_brace : codes::error_badbrace);
  }

  std::wstring_view pattern_;
  std::size_t at_ = 0;
  Ast ast_;
  std::vector<Open> open_;
  std::vector<bool> closed_{true};  // for each group whether its end was read; 0 is no group to refer to
};

}  // namespace

Ast parse(std::wstring_view pattern) { return Parser(pattern).parse(); }

}  // namespace ruvo::texto::regex
