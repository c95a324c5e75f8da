// SPDX-License-Identifier: BSL-1.0

// What may be taken out of the tree of a pattern before it is compiled.

#include "texto/regex/ast.hpp"

#include <cstddef>
#include <cstdint>
#include <utility>

namespace ruvo::texto::regex {

namespace {

void put_in_place(node& old, node made) {
  made.next = old.next;
  old = made;
}

bool all_units(const ast& tree, std::uint32_t first) {
  for (std::uint32_t i = first; i != none; i = tree[i].next)
    if (!tree[i].is_unit()) return false;
  return true;
}

/// a|[bc]|\d as one set.
node united(ast& tree, std::uint32_t first) {
  char_set all;
  for (std::uint32_t i = first; i != none; i = tree[i].next) {
    const node& each = tree[i];
    each.kind == node_kind::set ? all.add(tree.sets[each.a]) : all.add(static_cast<char16_t>(each.a));
  }
  return {.kind = node_kind::set, .can_be_empty = false, .a = tree.add(std::move(all))};
}

}  // namespace

std::uint32_t ast::add(char_set set) {
  sets.push_back(std::move(set));
  return static_cast<std::uint32_t>(sets.size() - 1);
}

void reduce(ast& tree, bool groups) {
  for (node& each : tree.nodes) {
    if (!groups && each.kind == node_kind::group) put_in_place(each, tree[each.child]);
    if (each.kind == node_kind::alternatives && all_units(tree, each.child))
      put_in_place(each, united(tree, each.child));
  }
}

}  // namespace ruvo::texto::regex
