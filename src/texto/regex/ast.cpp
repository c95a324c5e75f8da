// Alternatives with fewer ways to try: what many of them begin with is matched once.

#include "texto/regex/ast.hpp"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <vector>

namespace ruvo::texto::regex {

namespace {

constexpr std::uint32_t no_unit = 0xFFFFFFFF;

/// Visits each node once, those it adds too, so that long common beginnings cost no depth of calls.
class Factoring {
 public:
  explicit Factoring(Ast& ast) : ast_(ast) {}

  void run(bool groups) {
    for (std::int32_t i = 0; i < static_cast<std::int32_t>(ast_.nodes.size()); ++i) {
      if (!groups && node(i).kind == Kind::group) {
        const std::int32_t next = node(i).next;
        node(i) = Node(node(node(i).child));
        node(i).next = next;
      }
      if (node(i).kind == Kind::alternatives) simplify(i);
    }
  }

 private:
  using Children = std::vector<std::int32_t>;

  Node& node(std::int32_t index) { return ast_.nodes[static_cast<std::size_t>(index)]; }

  std::int32_t add(const Node& made) {
    ast_.nodes.push_back(made);
    return static_cast<std::int32_t>(ast_.nodes.size()) - 1;
  }

  void simplify(std::int32_t index) {
    Children children;
    for (std::int32_t i = node(index).child; i >= 0; i = node(i).next) children.push_back(i);
    const auto is_unit = [this](std::int32_t i) {
      return node(i).kind == Kind::character || node(i).kind == Kind::set;
    };
    if (std::all_of(children.begin(), children.end(), is_unit)) return make_set(index);
    sort(children);
    factor(children);
    node(index).child = linked(children);
  }

  /// a|[bc]|\d is one set.
  void make_set(std::int32_t index) {
    CharSet all;
    for (std::int32_t i = node(index).child; i >= 0; i = node(i).next) {
      const auto value = static_cast<char16_t>(node(i).a);
      node(i).kind == Kind::set ? all.add(ast_.sets[node(i).a]) : all.add(value, value);
    }
    node(index) = {.kind = Kind::set,
                   .can_be_empty = false,
                   .a = static_cast<std::uint32_t>(ast_.sets.size()),
                   .next = node(index).next};
    ast_.sets.push_back(std::move(all));
  }

  /// The character that an alternative begins with, if it begins with one.
  std::uint32_t first_unit(std::int32_t index) {
    if (node(index).kind == Kind::sequence) index = node(index).child;
    return node(index).kind == Kind::character ? node(index).a : no_unit;
  }

  /// Moves those with the same first character together. Only one character fits, so the order among
  /// different ones means nothing; any other alternative stays where it is.
  void sort(Children& children) {
    const auto has_unit = [this](std::int32_t i) { return first_unit(i) != no_unit; };
    for (auto first = children.begin(); first != children.end();) {
      first = std::find_if(first, children.end(), has_unit);
      const auto last = std::find_if_not(first, children.end(), has_unit);
      std::stable_sort(first, last,
                       [this](std::int32_t a, std::int32_t b) { return first_unit(a) < first_unit(b); });
      first = last;
    }
  }

  /// ab|ac|d is a(?:b|c)|d.
  void factor(Children& children) {
    auto to = children.begin();
    for (auto first = children.begin(), last = first; first != children.end(); first = last) {
      const std::uint32_t unit = first_unit(*first);
      while (++last != children.end() && unit != no_unit && first_unit(*last) == unit) {
      }
      *to++ = last - first > 1 ? together(unit, {first, last}) : *first;
    }
    children.erase(to, children.end());
  }

  std::int32_t together(std::uint32_t unit, Children children) {
    bool can_be_empty = false;
    for (std::int32_t& child : children) {
      child = rest(child);
      can_be_empty |= node(child).can_be_empty;
    }
    const std::int32_t rests =
        add({.kind = Kind::alternatives, .can_be_empty = can_be_empty, .child = linked(children)});
    const std::int32_t head = add({.kind = Kind::character, .can_be_empty = false, .a = unit, .next = rests});
    return add({.kind = Kind::sequence, .can_be_empty = false, .child = head});
  }

  /// What follows the first character of an alternative.
  std::int32_t rest(std::int32_t index) {
    if (node(index).kind == Kind::character) return add({});
    const std::int32_t second = node(node(index).child).next;
    if (node(second).next < 0) return second;
    node(index).child = second;
    bool& can_be_empty = node(index).can_be_empty = true;
    for (std::int32_t i = second; i >= 0 && can_be_empty; i = node(i).next)
      can_be_empty = node(i).can_be_empty;
    return index;
  }

  std::int32_t linked(const Children& children) {
    std::int32_t next = -1;
    for (auto at = children.rbegin(); at != children.rend(); ++at) {
      node(*at).next = next;
      next = *at;
    }
    return next;
  }

  Ast& ast_;
};

}  // namespace

void factor(Ast& ast, bool groups) { Factoring(ast).run(groups); }

}  // namespace ruvo::texto::regex
