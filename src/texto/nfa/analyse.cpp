// SPDX-License-Identifier: BSL-1.0

// What is known of a program before it meets a text.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/utf.hpp"
#include "texto/nfa/program.hpp"
#include "texto/open_ways.hpp"

namespace ruvo::texto::nfa {

namespace {

constexpr std::size_t most_ways = 64;  // looked at for one place

class program_analyser {
 public:
  explicit program_analyser(program& made) : program_(made) {}

  void run() {
    for (instruction& each : program_.code) {
      if (each.op != opcode::fork) continue;
      each.facts = static_cast<std::uint32_t>(program_.forks.size());
      program_.forks.push_back({});
      program_.forks.back().x = first(each.x);
      program_.forks.back().y = first(each.y);
    }
    for (std::uint32_t pc = 0; pc < program_.code.size(); ++pc) find_run(pc);
    number_memos();
    program_.first = first(0);
    program_.at_begin = program_.code[0].op == opcode::text_begin;
    find_prefix();
  }

 private:
  first_set first(std::uint32_t pc) {
    return ways_.first<first_set>(pc, [this](first_set& all, std::uint32_t at) { add_first(all, at); });
  }

  void add_first(first_set& all, std::uint32_t pc) {
    const instruction& each = program_.code[pc];
    switch (each.op) {
      case opcode::character:
      case opcode::set:
        return all.add(rough(each));
      case opcode::fork:
        ways_.go_on(each.x);
        return ways_.go_on(each.y);
      case opcode::jump:
        return ways_.go_on(each.x);
      case opcode::save:
        return ways_.go_on(pc + 1);
      case opcode::match:
        all.match = true;
        return;
      default:
        all.asserts = true;
        return ways_.go_on(pc + 1);
    }
  }

  rough_set rough(const instruction& unit) const {
    if (unit.op == opcode::set) return program_.sets[unit.x].rough();
    rough_set one;
    one.add(static_cast<char32_t>(unit.x));
    return one;
  }

  /// A greedy repetition of one character, behind which no such character can come: what it took is never
  /// given back.
  void find_run(std::uint32_t pc) {
    const instruction& each = program_.code[pc];
    if (each.op != opcode::fork) return;
    const std::uint32_t body = each.x;
    const opcode op = program_.code[body].op;
    if (op != opcode::character && op != opcode::set) return;
    const instruction& behind = program_.code[body + 1];
    if (body + 1 != pc && !(behind.op == opcode::jump && behind.x == pc)) return;
    fork_facts& facts = program_.forks[each.facts];
    if (!facts.y.asserts && !facts.y.meets(rough(program_.code[body]))) facts.run = body;
  }

  /// Forks, and what several instructions lead to: a place of the text may be met there more than once.
  void number_memos() {
    std::vector<std::uint8_t> ways(program_.code.size() + 1);
    for (std::uint32_t pc = 0; pc < program_.code.size(); ++pc) {
      const instruction& each = program_.code[pc];
      const bool leads_away = each.op == opcode::fork || each.op == opcode::jump;
      const std::uint32_t target = leads_away ? each.x : pc + 1;
      ways[target] = static_cast<std::uint8_t>(std::min(ways[target] + 1, 2));
      if (each.op == opcode::fork) ways[each.y] = static_cast<std::uint8_t>(std::min(ways[each.y] + 1, 2));
    }
    for (std::uint32_t pc = 0; pc < program_.code.size(); ++pc) {
      instruction& each = program_.code[pc];
      if (each.op == opcode::fork || ways[pc] > 1) each.memo = program_.memos++;
    }
  }

  /// Whether it stands wherever its units do, and nothing else is compared as this character.
  bool is_itself(char32_t c) const {
    if (c < 0x10000 && is_surrogate(c)) return false;
    return !program_.folds || c >= 256 || std::count(program_.fold.begin(), program_.fold.end(), c) == 1;
  }

  void find_prefix() {
    auto at = program_.code.begin();
    for (; at->op == opcode::character && is_itself(at->x); ++at) append(program_.prefix, at->x);
    program_.literal = at->op == opcode::match && !program_.prefix.empty();
  }

  static void append(std::wstring& out, char32_t c) {
    if (c >= 0x10000) {
      out += static_cast<wchar_t>(0xD7C0 + (c >> 10));
      c = 0xDC00 + (c & 0x3FF);
    }
    out += static_cast<wchar_t>(c);
  }

  program& program_;
  open_ways ways_{most_ways};
};

}  // namespace

void analyse(program& made) { program_analyser(made).run(); }

}  // namespace ruvo::texto::nfa
