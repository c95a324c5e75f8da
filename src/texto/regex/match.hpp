// SPDX-License-Identifier: BSL-1.0
#pragma once

// Running a program on a text.

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "base/find.hpp"
#include "texto/regex/compile.hpp"

namespace ruvo::texto::regex {

/// Finds the matches of a program in a text, from its beginning to its end.
class matcher {
 public:
  matcher(const program& program, std::wstring_view text);

  /// For a program compiled with Options::whole.
  bool matches_whole();

  /// The next match: after an empty one, one that is not empty is tried at the same place.
  bool next();

  std::size_t begin() const { return begin_; }
  std::size_t end() const { return end_; }
  /// A group of the last match; empty if it took no part.
  std::wstring_view group(std::size_t number) const;

 private:
  enum class tag : std::uint8_t { branch, loop, restore, look, negative_look, operand };

  /// On the stack: where to try next (branch, loop), or what to restore on the way back.
  struct entry {
    std::uint32_t code;   // a tag in the low 3 bits, above it an instruction or a slot
    std::uint32_t value;  // a position, or what the slot held
  };

  /// What is known of a loop: ends of runs do not depend on the way that led there.
  struct loop_state {
    std::uint32_t run_begin = 1, run_end = 0;  // all units between are in the set, the one at the end not
    std::uint32_t tried_first = 1, tried_last = 0;  // exits that were tried and failed, or are being tried
  };

  std::size_t next_start(std::size_t from);
  bool search(std::size_t from);
  void forget();

  bool run(std::uint32_t from);
  bool step(const instruction& each);
  bool fail_back();
  bool accept();
  void count(std::uint64_t steps);

  entry pop();
  void push(tag what, std::uint32_t argument, std::uint32_t value);
  void grow_stack();
  void set_slot(std::uint32_t slot);

  bool can_begin(const first_set& first, std::uint32_t at) const;
  bool take(const fork& first);
  const fork& passed_over(const fork& first);
  bool visit(const fork& met);
  bool make_memo();

  loop_state& state_of(const set_loop& loop) { return loops_[loop.number]; }
  const loop_state& state_of(const set_loop& loop) const { return loops_[loop.number]; }
  bool enter_loop(const set_loop& loop);
  std::uint32_t run_end(const set_loop& loop, std::uint32_t limit);
  bool leave_loop(const set_loop& loop, std::uint32_t exit, std::uint32_t last);
  bool find_exit(const set_loop& loop, std::uint32_t& exit, std::uint32_t last);
  void remember(const set_loop& loop, std::uint32_t first, std::uint32_t last);
  bool in_empty_turn(const set_loop& loop, std::uint32_t at) const;

  bool word_limit() const;
  bool back_reference(std::uint32_t number);
  void enter_look(const instruction& each);
  bool end_look();

  const program& program_;
  const wchar_t* text_;
  std::uint32_t size_;
  finder finder_;  // of the prefix

  std::uint32_t pc_ = 0, at_ = 0, start_ = 0;
  bool not_empty_ = false;
  bool matched_ = false;  // the last run
  std::vector<std::uint32_t> slots_;
  std::vector<std::uint32_t> restored_at_;  // for each slot where the stack may hold its last restore
  std::vector<entry> stack_;
  std::size_t floor_ = 0;  // a restore from here on is newer than any branch
  std::uint32_t look_ = none;
  std::vector<loop_state> loops_;
  std::vector<std::uint64_t> memo_;
  std::uint64_t steps_ = 0, step_limit_;
  std::uint64_t memo_words_ = 0;  // 0: nothing is remembered

  std::size_t begin_ = 0, end_ = 0;
  bool started_ = false;
};

}  // namespace ruvo::texto::regex
