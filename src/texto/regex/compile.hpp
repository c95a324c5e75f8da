// SPDX-License-Identifier: BSL-1.0
#pragma once

// The program that a pattern becomes.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "texto/regex/ast.hpp"
#include "texto/regex/set.hpp"

namespace ruvo::texto::regex {

enum class opcode : std::uint8_t {
  character,       // x: the unit
  set,             // x: index of the set
  loop,            // x: index of the loop
  fork,            // x: index of the fork; the body of a repetition or an alternative follows
  jump,            // x: target
  save,            // x: the slot that takes the position
  leave_if_empty,  // x: slot with the place where this turn of a repetition began, y: target behind it
  text_begin,
  text_end,
  word_limit,      // negative
  back_reference,  // x: group
  look_ahead,      // negative; x: index of the look-ahead
  look_end,
  match,
};

struct instruction {
  opcode op;
  bool negative = false;
  std::uint32_t x = 0, y = 0;
};

/// What can come first.
struct first_set : rough_set {
  bool end = false;  // the end of the text

  void add_all();
};

/// One character of a set, again and again.
struct set_loop {
  std::uint32_t number = 0, set = 0, least = 0, greatest = 0;
  bool lazy = false;
  bool whole_run = false;     // what follows can only begin where the run of such characters ends
  bool once = true;           // an exit that failed fails for ever
  std::uint32_t turn = none;  // slot of the enclosing repetition that has to notice an empty turn
  first_set follow{};
};

/// Two ways to go on: the next instruction, or `other`.
struct fork {
  std::uint32_t other = 0;
  bool lazy = false;                      // `other` is tried first
  std::uint32_t turn = none;              // as in set_loop
  std::uint32_t memo = none;              // number of its first bit among those of a position
  std::uint32_t next_alternative = none;  // the fork at `other`, if it lies further on
  first_set first_next{}, first_other{};
  first_set second_next{};  // what can follow on the first unit of the next instruction; for alternatives
};

struct look_body {
  std::uint32_t after = 0;                         // what follows on the body
  std::array<std::uint32_t, 2> groups{}, turns{};  // slots that the body changes: first, past the last
};

struct program {
  std::vector<instruction> code;
  std::vector<char_set> sets;
  std::vector<set_loop> loops;
  std::vector<fork> forks;
  std::vector<look_body> looks;
  std::vector<std::uint32_t>
      outer_turn;                // for each slot of a turn, from first_turn, that of the one around it
  std::uint32_t first_turn = 0;  // the slots before are ends of groups: first, past the last
  std::uint32_t memo_bits = 0;   // for each position; 0: nothing can be remembered
  first_set first;
  bool whole = false;     // a match is the whole text
  bool at_begin = false;  // matches only at the beginning of the text
  std::wstring prefix;    // each match begins with it
  bool literal = false;   // a match is the prefix, nothing else
};

struct options {
  bool whole = false;   // the match must be the whole text
  bool groups = false;  // the ends of the groups are asked for
};

/// Throws std::regex_error.
program compile(std::wstring_view pattern, options wanted);

/// Fills in what can be known beforehand of each place in a program: what can come first there.
void analyse(program& made);

}  // namespace ruvo::texto::regex
