// SPDX-License-Identifier: BSL-1.0

// From the tree of a pattern to its program.

#include "texto/regex/compile.hpp"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "texto/regex/fault.hpp"
#include "texto/regex/parse.hpp"

namespace ruvo::texto::regex {

namespace {

// More of these in each other than a person writes, and nothing is remembered: each needs bits of its own.
constexpr std::uint32_t deepest_turns = 64;

/// The opcodes of the first kinds of nodes, which are one instruction.
constexpr opcode plain[] = {opcode::character, opcode::set,        opcode::text_begin,
                            opcode::text_end,  opcode::word_limit, opcode::back_reference};

/// Walks the tree with a stack of tasks, so that deep nesting costs no stack of the thread. A counted
/// repetition of more than one set is written out.
class emitter {
 public:
  /// Without `groups` there are none in the tree.
  emitter(ast tree, bool whole, bool groups) : tree_(std::move(tree)), groups_(groups) {
    program_.whole = whole;
    program_.first_turn = groups ? 2 * tree_.groups : 0;
  }

  program emit() {
    tasks_.push_back({step::node, tree_.root});
    while (!tasks_.empty()) {
      const task next = tasks_.back();
      tasks_.pop_back();
      if (++work_ > 4 * max_parts) fail(fault::space);
      run(next);
    }
    add({.op = opcode::match});
    program_.sets = std::move(tree_.sets);
    return std::move(program_);
  }

 private:
  enum class step : std::uint8_t { node, nodes, alternative, group_end, look_end, turn, repeat };

  struct task {
    step what;
    std::uint32_t index = none;  // of the node
    std::uint32_t count = 0;     // of turns written
    std::uint32_t at = none;     // an instruction to complete
    std::uint32_t slot = none;
  };

  std::uint32_t here() const { return static_cast<std::uint32_t>(program_.code.size()); }

  std::uint32_t add(const instruction& made) {
    if (program_.code.size() >= max_parts) fail(fault::space);
    program_.code.push_back(made);
    return here() - 1;
  }

  std::uint32_t add_fork(bool lazy) {
    fork made{.lazy = lazy, .turn = turn_};
    if (can_remember() && turns_ <= deepest_turns) {
      made.memo = program_.memo_bits;
      program_.memo_bits += 1 + turns_;
    }
    program_.forks.push_back(made);
    return add({.op = opcode::fork, .x = static_cast<std::uint32_t>(program_.forks.size() - 1)});
  }

  /// Elsewhere what follows depends on more than the position, or may be asked for again after it matched.
  bool can_remember() const { return looks_ == 0 && !tree_.back_references; }

  std::uint32_t& other(std::uint32_t at) { return program_.forks[program_.code[at].x].other; }

  void run(const task& next) {
    switch (next.what) {
      case step::node:
        return write(next.index);
      case step::nodes:
        if (tree_[next.index].next != none) tasks_.push_back({step::nodes, tree_[next.index].next});
        return write(next.index);
      case step::alternative:
        return next_alternative(next);
      case step::group_end:
        add({.op = opcode::save, .x = 2 * tree_[next.index].a + 1});
        return;
      case step::look_end:
        return end_look(next);
      case step::turn:
        return end_turn(next);
      case step::repeat:
        return repeat(next);
    }
  }

  void write(std::uint32_t index) {
    const node& each = tree_[index];
    switch (each.kind) {
      case node_kind::empty:
        return;
      case node_kind::group:
        return write_group(index);
      case node_kind::look_ahead:
        return write_look(index);
      case node_kind::sequence:
        tasks_.push_back({step::nodes, each.child});
        return;
      case node_kind::alternatives:
        return write_alternative(each.child, none);
      case node_kind::repeat:
        return write_repeat(index);
      default:
        add({.op = plain[static_cast<std::size_t>(each.kind)], .negative = each.negative, .x = each.a});
    }
  }

  void write_group(std::uint32_t index) {
    add({.op = opcode::save, .x = 2 * tree_[index].a});
    tasks_.push_back({step::group_end, index});
    tasks_.push_back({step::node, tree_[index].child});
  }

  void write_look(std::uint32_t index) {
    const node& each = tree_[index];
    look_body body{.turns = {next_slot(), 0}};
    if (groups_) body.groups = {2 * each.a, 2 * each.b};
    program_.looks.push_back(body);
    const auto number = static_cast<std::uint32_t>(program_.looks.size() - 1);
    const std::uint32_t at = add({.op = opcode::look_ahead, .negative = each.negative, .x = number});
    ++looks_;
    tasks_.push_back({.what = step::look_end, .at = at});
    tasks_.push_back({step::node, each.child});
  }

  void end_look(const task& next) {
    --looks_;
    add({.op = opcode::look_end});
    look_body& body = program_.looks[program_.code[next.at].x];
    body.after = here();
    body.turns[1] = next_slot();
  }

  /// The jumps behind the alternatives are chained through their x until the end is known.
  void write_alternative(std::uint32_t index, std::uint32_t jumps) {
    const bool last = tree_[index].next == none;
    const std::uint32_t way = last ? none : add_fork(false);
    tasks_.push_back({step::alternative, index, 0, jumps, way});
    tasks_.push_back({step::node, index});
  }

  void next_alternative(const task& next) {
    if (next.slot == none) return complete_jumps(next.at);
    const std::uint32_t jump = add({.op = opcode::jump, .x = next.at});
    other(next.slot) = here();
    write_alternative(tree_[next.index].next, jump);
  }

  void complete_jumps(std::uint32_t jump) {
    while (jump != none) jump = std::exchange(program_.code[jump].x, here());
  }

  std::uint32_t next_slot() const {
    return program_.first_turn + static_cast<std::uint32_t>(program_.outer_turn.size());
  }

  void write_repeat(std::uint32_t index) {
    const node& each = tree_[index];
    const node& body = tree_[each.child];
    if (body.is_unit()) return write_loop(each, body);
    if (body.kind != node_kind::empty) repeat({step::repeat, index});
  }

  void write_loop(const node& each, const node& body) {
    std::uint32_t set = body.a;
    if (body.kind == node_kind::character) {
      char_set unit;
      unit.add(static_cast<char16_t>(body.a));
      set = tree_.add(std::move(unit));
    }
    const auto number = static_cast<std::uint32_t>(program_.loops.size());
    program_.loops.push_back({.number = number,
                              .set = set,
                              .least = each.a,
                              .greatest = each.b,
                              .lazy = each.lazy,
                              .once = can_remember(),
                              .turn = turn_});
    add({.op = opcode::loop, .x = number});
  }

  /// One more turn, or what follows the last one. `at` chains the forks that go behind the repetition.
  void repeat(task next) {
    const node& each = tree_[next.index];
    const bool endless = each.b == unbounded;
    if (endless && next.count + 1 >= each.a) return write_endless(next.index);
    if (next.count == each.b) return complete_forks(next.at);
    if (next.count >= each.a) {
      const std::uint32_t way = add_fork(each.lazy);
      other(way) = std::exchange(next.at, way);
    }
    ++next.count;
    tasks_.push_back(next);
    tasks_.push_back({step::node, each.child});
  }

  void complete_forks(std::uint32_t way) {
    while (way != none) way = std::exchange(other(way), here());
  }

  /// The last, endless turn: body* or, if one turn is still due, body+.
  void write_endless(std::uint32_t index) {
    const node& each = tree_[index];
    task end{.what = step::turn, .index = index, .at = here()};
    if (each.a == 0) add_fork(each.lazy);
    if (tree_[each.child].can_be_empty) {
      end.slot = next_slot();
      program_.outer_turn.push_back(turn_);
      add({.op = opcode::save, .x = end.slot});
      turn_ = end.slot;
      ++turns_;
    }
    tasks_.push_back(end);
    tasks_.push_back({step::node, each.child});
  }

  void end_turn(const task& next) {
    const node& each = tree_[next.index];
    std::uint32_t leave = none;
    if (next.slot != none) {
      leave = add({.op = opcode::leave_if_empty, .x = next.slot});
      turn_ = program_.outer_turn[next.slot - program_.first_turn];
      --turns_;
    }
    if (each.a == 0) {
      add({.op = opcode::jump, .x = next.at});
      other(next.at) = here();
    } else {
      other(add_fork(!each.lazy)) = next.at;  // the way back is the other one
    }
    if (leave != none) program_.code[leave].y = here();
  }

  ast tree_;
  bool groups_;
  program program_;
  std::vector<task> tasks_;
  std::size_t work_ = 0;
  std::uint32_t looks_ = 0;    // look-aheads around what is being written
  std::uint32_t turn_ = none;  // slot of the innermost repetition around it whose turns can be empty
  std::uint32_t turns_ = 0;    // number of such repetitions around it
};

}  // namespace

program compile(std::wstring_view pattern, options wanted) {
  program made;
  if (!pattern.empty() && pattern.find_first_of(L"^$\\.*+?()[{|") == pattern.npos) {
    made.prefix = pattern;
    made.literal = true;
    return made;
  }
  ast tree = parse(pattern);
  const bool groups = wanted.groups || tree.back_references;
  reduce(tree, groups);
  made = emitter(std::move(tree), wanted.whole, groups).emit();
  analyse(made);
  return made;
}

}  // namespace ruvo::texto::regex
