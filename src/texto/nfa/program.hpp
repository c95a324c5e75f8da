// SPDX-License-Identifier: BSL-1.0
#pragma once

// What a pattern becomes: instructions that a text is run through, and what is known of them beforehand.

#include <ruvo/texto/pattern.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "texto/nfa/code_set.hpp"

namespace ruvo::texto::nfa {

inline constexpr std::uint32_t none = 0xFFFFFFFF;
inline constexpr std::size_t most_instructions = 10'000;

enum class opcode : std::uint8_t {
  character,  // x: the code point, folded
  set,        // x: index of the set
  fork,       // x: what is tried first, y: what is tried then
  jump,       // x: target
  save,       // x: the slot that takes the position
  text_begin,
  text_end,
  line_begin,
  line_end,
  word_limit,
  no_word_limit,
  match,
};

struct instruction {
  opcode op = opcode::match;
  std::uint32_t x = 0, y = 0;
  std::uint32_t facts = none;  // of a fork
  std::uint32_t memo = none;   // its number among those whose visits are remembered
};

/// What can come next.
struct first_set : rough_set {
  bool match = false;    // nothing has to
  bool asserts = false;  // something is asked of the place before

  void add_all() noexcept {
    low.fill(~std::uint64_t{0});
    high = match = asserts = true;
  }
};

struct fork_facts {
  first_set x, y;
  std::uint32_t run = none;  // its body, one character that what follows cannot begin with: never given back
};

struct program {
  std::vector<instruction> code;
  std::vector<code_set> sets;
  std::vector<fork_facts> forks;
  std::uint32_t groups = 1;  // with the whole match
  std::uint32_t memos = 0;
  std::vector<std::pair<std::wstring, std::size_t>> names;

  std::array<std::uint8_t, 256> fold{};  // what characters are compared as
  bool folds = false;
  first_set first;
  bool at_begin = false;  // matches at the start of the text alone
  std::wstring prefix;    // each match begins with it
  bool literal = false;   // and is nothing else
};

/// Throws pattern_error.
program compile(std::wstring_view pattern, const pattern_options& how);

/// Fills in what is known beforehand of a program that is written.
void analyse(program& made);

}  // namespace ruvo::texto::nfa
