// SPDX-License-Identifier: BSL-1.0
#pragma once

// The parsed form of a pattern.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "texto/regex/set.hpp"

namespace ruvo::texto::regex {

/// Patterns and programs of more parts than this are refused with fault::space.
inline constexpr std::size_t max_parts = 100'000;
inline constexpr std::uint32_t unbounded = 0xFFFFFFFF;
inline constexpr std::uint32_t none = 0xFFFFFFFF;

enum class node_kind : std::uint8_t {
  character,       // a: the unit
  set,             // a: index of the set
  text_begin,      //
  text_end,        //
  word_limit,      // negative: not at a limit
  back_reference,  // a: group
  empty,
  group,       // a: number of the group
  look_ahead,  // negative; a, b: the groups inside, first and past the last
  sequence,
  alternatives,
  repeat,  // a, b: least and greatest number of times; lazy
};

struct node {
  node_kind kind = node_kind::empty;
  bool negative = false;
  bool lazy = false;
  bool can_be_empty = true;
  std::uint32_t a = 0, b = 0;
  std::uint32_t child = none, next = none;  // the first child; the sibling that follows

  bool is_unit() const { return kind == node_kind::character || kind == node_kind::set; }
};

struct ast {
  std::vector<node> nodes;  // children before their parents
  std::vector<char_set> sets;
  std::uint32_t root = none;
  std::uint32_t groups = 1;  // with the whole match as group 0
  bool back_references = false;

  node& operator[](std::uint32_t index) { return nodes[index]; }
  const node& operator[](std::uint32_t index) const { return nodes[index]; }
  std::uint32_t add(char_set set);
};

/// Takes out what costs steps and changes no match: alternatives of single units become a set, and unless
/// `groups` are kept, each gives way to its body, so that a loop around a set is seen as one.
void reduce(ast& tree, bool groups);

}  // namespace ruvo::texto::regex
