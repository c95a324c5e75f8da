#pragma once

// Patterns of the ECMAScript grammar on texts of any length: a pattern becomes a program of small
// instructions, and the matcher runs it with a stack in the heap.
//
// What keeps the work in bounds: a loop over a set of characters is one instruction with at most one entry on
// the stack; a branch is only taken if the next character can begin it; alternatives share what they begin
// with; and what failed once at a place is not tried there again (see Matcher). What is left over ends at a
// limit of steps or of memory, with std::regex_error.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/find.hpp"
#include "texto/regex/ast.hpp"

namespace ruvo::texto::regex {

/// The units that can come first, or more than those: never fewer.
struct FirstSet {
  std::array<std::uint64_t, 4> low{};
  std::uint64_t blocks = 0;  // with units from 256 on, as in CharSet
  bool end = false;          // the end of the text

  void add_all();
  bool has(wchar_t c) const noexcept {
    const auto unit = static_cast<char16_t>(c);
    return unit < 256 ? (low[unit >> 6] >> (unit & 63) & 1) != 0
                      : (blocks >> (unit >> CharSet::block_bits) & 1) != 0;
  }
};

enum class Op : std::uint8_t {
  character,       // x: the unit
  set,             // x: index of the set
  loop,            // x: index of the loop
  split,           // x: index of the split; the body of a loop or an alternative follows
  jump,            // x: target
  save,            // x: the slot that takes the position
  leave_if_empty,  // x: slot with the place where this turn of a loop began, y: target behind the loop
  text_begin,
  text_end,
  word_limit,      // negative
  back_reference,  // x: group
  look_ahead,      // negative; x: index of the look-ahead
  look_end,
  match,
};

struct Instruction {
  Op op;
  bool negative = false;
  std::uint32_t x = 0, y = 0;
};

inline constexpr std::uint32_t none = 0xFFFFFFFF;

/// One character of a set, again and again.
struct Loop {
  std::uint32_t number = 0, set = 0, least = 0, greatest = 0;
  bool lazy = false;
  bool whole_run = false;     // what follows can only begin where the run of such characters ends
  bool once = true;           // an exit that failed fails for ever
  std::uint32_t turn = none;  // slot of the enclosing loop that has to notice an empty turn
  FirstSet follow{};
};

/// Two ways to go on: the next instruction, or `other`.
struct Split {
  std::uint32_t other = 0;
  bool lazy = false;                      // `other` is tried first
  std::uint32_t turn = none;              // as in Loop
  std::uint32_t memo = none;              // number of its first bit among those of a position
  std::uint32_t next_alternative = none;  // the split at `other`, if it lies further on
  FirstSet first_next{}, first_other{};
};

struct LookAhead {
  std::uint32_t after = 0;                         // what follows on the body
  std::array<std::uint32_t, 2> groups{}, turns{};  // slots that the body changes: first, past the last
};

struct Program {
  std::vector<Instruction> code;
  std::vector<CharSet> sets;
  std::vector<Loop> loops;
  std::vector<Split> splits;
  std::vector<LookAhead> looks;
  std::vector<std::uint32_t>
      outer_turn;                // for each slot of a turn, from first_turn, that of the loop around it
  std::uint32_t first_turn = 0;  // the slots before are ends of groups: first, past the last
  std::uint32_t memo_bits = 0;   // for each position; 0: nothing can be remembered
  FirstSet first;
  bool whole = false;     // a match is the whole text
  bool at_begin = false;  // matches only at the beginning of the text
  std::wstring prefix;    // each match begins with it
  bool literal = false;   // a match is the prefix, nothing else
};

struct Options {
  bool whole = false;   // the match must be the whole text
  bool groups = false;  // the ends of the groups are asked for
};

/// Throws std::regex_error.
Program compile(std::wstring_view pattern, Options options);

/// Finds the matches of a program in a text, from its beginning to its end.
class Matcher {
 public:
  Matcher(const Program& program, std::wstring_view text);

  /// For a program compiled with Options::whole.
  bool matches_whole();

  /// The next match: after an empty one, one that is not empty is tried at the same place.
  bool next();

  std::size_t begin() const { return begin_; }
  std::size_t end() const { return end_; }
  /// A group of the last match; empty if it took no part.
  std::wstring_view group(std::size_t number) const;

 private:
  enum class Tag : std::uint8_t { branch, loop, restore, look, negative_look, operand };

  /// On the stack: where to try next (branch, loop), or what to restore on the way back.
  struct Entry {
    std::uint32_t code;   // a tag in the low 3 bits, above it an instruction or a slot
    std::uint32_t value;  // a position, or what the slot held
  };

  /// What is known of a loop: ends of runs do not depend on the way that led there.
  struct LoopState {
    std::uint32_t run_begin = 1, run_end = 0;  // all units between are in the set, the one at the end not
    std::uint32_t tried_first = 1, tried_last = 0;  // exits that were tried and failed, or are being tried
  };

  std::size_t next_start(std::size_t from);
  bool search(std::size_t from);
  void forget();

  bool run(std::uint32_t from);
  bool step(const Instruction& each);
  bool fail_back();
  bool accept();
  void count(std::uint64_t steps);

  Entry pop();
  void push(Tag tag, std::uint32_t argument, std::uint32_t value);
  void grow_stack();
  void set_slot(std::uint32_t slot);

  bool can_begin(const FirstSet& first, std::uint32_t at) const;
  bool split(const Split& first);
  const Split& passed_over(const Split& first);
  bool visit(const Split& split);
  bool make_memo();

  LoopState& state_of(const Loop& loop) { return loops_[loop.number]; }
  const LoopState& state_of(const Loop& loop) const { return loops_[loop.number]; }
  bool enter_loop(const Loop& loop);
  std::uint32_t run_end(const Loop& loop, std::uint32_t limit);
  bool leave_loop(const Loop& loop, std::uint32_t exit, std::uint32_t last);
  bool find_exit(const Loop& loop, std::uint32_t& exit, std::uint32_t last);
  void remember(const Loop& loop, std::uint32_t first, std::uint32_t last);
  bool in_empty_turn(const Loop& loop, std::uint32_t at) const;

  bool word_limit() const;
  bool back_reference(std::uint32_t number);
  void enter_look(const Instruction& each);
  bool end_look();

  const Program& program_;
  const wchar_t* text_;
  std::uint32_t size_;
  finder finder_;  // of the prefix

  std::uint32_t pc_ = 0, at_ = 0, start_ = 0;
  bool not_empty_ = false;
  bool matched_ = false;  // the last run
  std::vector<std::uint32_t> slots_;
  std::vector<std::uint32_t> restored_at_;  // for each slot where the stack may hold its last restore
  std::vector<Entry> stack_;
  std::size_t floor_ = 0;  // a restore from here on is newer than any branch
  std::uint32_t look_ = none;
  std::vector<LoopState> loops_;
  std::vector<std::uint64_t> memo_;
  std::uint64_t steps_ = 0, step_limit_, memo_from_;

  std::size_t begin_ = 0, end_ = 0;
  bool started_ = false;
};

}  // namespace ruvo::texto::regex
