// SPDX-License-Identifier: BSL-1.0

// What can come first at each place of a program.

#include <cstddef>
#include <cstdint>

#include "texto/open_ways.hpp"
#include "texto/regex/compile.hpp"

namespace ruvo::texto::regex {

namespace {

class analyser {
 public:
  explicit analyser(program& made) : program_(made) {}

  /// From the end, so that most forks are known where others ask for them.
  void run() {
    for (auto pc = static_cast<std::uint32_t>(program_.code.size()); pc-- > 0; known_ = pc) {
      const instruction& each = program_.code[pc];
      if (each.op == opcode::loop) fill_in(program_.loops[each.x], pc);
      if (each.op == opcode::fork) fill_in(program_.forks[each.x], pc);
    }
    program_.first = first(0);
    find_prefix();
  }

 private:
  void fill_in(set_loop& loop, std::uint32_t pc) {
    loop.follow = first(pc + 1);
    loop.whole_run = loop.greatest == unbounded && !loop.follow.meets(program_.sets[loop.set].rough());
  }

  void fill_in(fork& made, std::uint32_t pc) {
    made.first_next = first(pc + 1);
    made.first_other = first(made.other);
    const instruction& other = program_.code[made.other];
    if (made.other < pc || other.op != opcode::fork) return;
    made.next_alternative = other.x;
    made.second_next = second(pc + 1);
  }

  /// What can follow on the first unit, where that is a single one.
  first_set second(std::uint32_t pc) {
    while (program_.code[pc].op == opcode::save) ++pc;
    const opcode op = program_.code[pc].op;
    if (op == opcode::character || op == opcode::set) return first(pc + 1);
    first_set all;
    all.add_all();
    return all;
  }

  first_set first(std::uint32_t pc) {
    return ways_.first<first_set>(pc, [this](first_set& all, std::uint32_t at) { add_first(all, at); });
  }

  void add_first(first_set& all, std::uint32_t pc) {
    const instruction& each = program_.code[pc];
    switch (each.op) {
      case opcode::character:
        return all.add(static_cast<char16_t>(each.x), static_cast<char16_t>(each.x));
      case opcode::set:
        return all.add(program_.sets[each.x].rough());
      case opcode::loop:
        all.add(program_.sets[program_.loops[each.x].set].rough());
        if (program_.loops[each.x].least == 0) ways_.go_on(pc + 1);
        return;
      case opcode::fork:
        return add_fork(all, pc, program_.forks[each.x]);
      case opcode::leave_if_empty:
        ways_.go_on(each.y);
        return ways_.go_on(pc + 1);
      case opcode::jump:
        return ways_.go_on(each.x);
      case opcode::look_ahead:
        return ways_.go_on(program_.looks[each.x].after);
      case opcode::save:
      case opcode::text_begin:
      case opcode::word_limit:
        return ways_.go_on(pc + 1);
      case opcode::text_end:
        all.end = true;
        return;
      case opcode::match:
        if (!program_.whole) return all.add_all();
        all.end = true;
        return;
      case opcode::back_reference:
      case opcode::look_end:
        return all.add_all();
    }
  }

  void add_fork(first_set& all, std::uint32_t pc, const fork& each) {
    if (pc < known_) {
      ways_.go_on(each.other);
      return ways_.go_on(pc + 1);
    }
    for (const first_set* way : {&each.first_next, &each.first_other}) {
      all.add(*way);
      all.end |= way->end;
    }
  }

  void find_prefix() {
    const auto first = program_.code.begin();
    auto at = first;
    program_.at_begin = at->op == opcode::text_begin;
    for (; at->op == opcode::character || at->op == opcode::save; ++at)
      if (at->op == opcode::character) program_.prefix.push_back(static_cast<wchar_t>(at->x));
    const auto characters = static_cast<std::size_t>(at - first);
    program_.literal = at->op == opcode::match && characters == program_.prefix.size() && characters > 0;
  }

  static constexpr std::size_t most_ways = 48;

  program& program_;
  open_ways ways_{most_ways};
  std::uint32_t known_ = none;  // the forks from here on are filled in
};

}  // namespace

void first_set::add_all() {
  add(0, 0xFFFF);
  end = true;
}

void analyse(program& made) { analyser(made).run(); }

}  // namespace ruvo::texto::regex
