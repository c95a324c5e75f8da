// SPDX-License-Identifier: BSL-1.0
#pragma once

// Running a program on a text. Mostly by trying one way after the other, with a bit for each place and
// instruction that was tried in vain, so that nothing is tried twice; where that takes too much room, by
// following all ways at once. Neither calls itself.

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "base/find.hpp"
#include "texto/nfa/program.hpp"

namespace ruvo::texto::nfa {

/// Threads of the second way: instructions in the order of their priority, with what their groups took.
class thread_list {
 public:
  void prepare(std::size_t instructions, std::size_t slots);
  void clear() noexcept { size_ = 0; }
  bool empty() const noexcept { return size_ == 0; }
  std::size_t size() const noexcept { return size_; }
  std::uint32_t operator[](std::size_t at) const noexcept { return order_[at]; }
  bool has(std::uint32_t pc) const noexcept { return place_[pc] < size_ && order_[place_[pc]] == pc; }
  std::uint32_t* slots_of(std::uint32_t pc) noexcept { return slots_.data() + pc * width_; }
  void add(std::uint32_t pc) noexcept {
    place_[pc] = static_cast<std::uint32_t>(size_);
    order_[size_++] = pc;
  }

 private:
  std::size_t size_ = 0, width_ = 0;
  std::vector<std::uint32_t> order_, place_, slots_;
};

/// Finds the matches of a program in one text.
class matcher {
 public:
  /// Throws std::length_error for a text beyond the library's limits.
  matcher(const program& made, std::wstring_view text);

  bool match_whole();
  /// The first match from a place on; one right there is not empty if that is asked for.
  bool search(std::size_t from, bool not_empty = false);
  /// The match behind the last one: at the end of an empty one, one that is not.
  bool next();

  /// First and last, for each group; none for one that took no part.
  const std::vector<std::uint32_t>& slots() const noexcept { return slots_; }
  std::size_t begin() const noexcept { return slots_[0]; }
  std::size_t end() const noexcept { return slots_[1]; }

 private:
  enum class outcome : std::uint8_t { found, failed, too_large };

  /// On the stack: an instruction and the place to try it at, or a slot and what it held.
  struct entry {
    std::uint32_t code, value;
  };

  char32_t character(std::uint32_t at, std::uint32_t& next) const noexcept {
    const auto unit = static_cast<char16_t>(text_[at]);
    next = at + 1;
    if (unit < 256) return program_.fold[unit];
    return (unit & 0xFC00) == 0xD800 ? pair_at(at, next) : unit;
  }
  char32_t pair_at(std::uint32_t at, std::uint32_t& next) const noexcept;
  bool fits(const instruction& unit, char32_t c) const noexcept {
    return unit.op == opcode::character ? c == unit.x : program_.sets[unit.x].has(c);
  }
  bool holds(opcode assertion, std::uint32_t at) const noexcept;
  bool is_line_begin(std::uint32_t at) const noexcept;
  bool is_line_end(std::uint32_t at) const noexcept;
  bool is_word(std::uint32_t at) const noexcept;
  bool accepts(std::uint32_t start, std::uint32_t at) const noexcept;
  std::uint32_t next_start(std::uint32_t from);
  bool is_found(std::uint32_t begin, std::uint32_t end);

  // --- one way after the other
  outcome try_at(std::uint32_t start);
  outcome run(std::uint32_t start);
  bool follow(std::uint32_t pc, std::uint32_t at);
  bool take(const instruction& fork, std::uint32_t& pc, std::uint32_t& at);
  bool pass_run(const instruction& fork, const instruction& body, std::uint32_t& at);
  bool can_begin(const first_set& first, std::uint32_t at) const noexcept;
  bool is_fresh(std::uint32_t memo, std::uint32_t at);
  void save(std::uint32_t slot, std::uint32_t at);
  void push(std::uint32_t code, std::uint32_t value);
  void forget(std::uint32_t base);

  // --- all ways at once
  bool run_all(std::uint32_t first);
  void add_thread(thread_list& to, std::uint32_t pc, std::uint32_t at, const std::uint32_t* slots);
  bool step_all(std::uint32_t at, char32_t c, std::uint32_t next, bool is_end);

  const program& program_;
  const wchar_t* text_;
  std::uint32_t size_;
  finder finder_;
  std::vector<std::uint32_t> slots_;
  bool whole_ = false;
  bool not_empty_ = false;
  std::uint32_t from_ = 0;

  std::vector<entry> stack_;
  std::vector<std::uint64_t> visited_;
  std::uint32_t base_ = 0;      // the place of the first bits
  std::size_t used_words_ = 0;  // of visited_, from which on all is zero
  std::uint32_t start_ = 0;
  bool is_full_ = false;
  bool is_started_ = false;

  thread_list now_, later_;
  std::vector<std::uint32_t> trial_;  // slots of the thread that is being added
};

}  // namespace ruvo::texto::nfa
