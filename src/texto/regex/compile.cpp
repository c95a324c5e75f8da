#include <algorithm>
#include <cstddef>
#include <utility>

#include "texto/regex/match.hpp"

namespace ruvo::texto::regex {

namespace codes = std::regex_constants;

void FirstSet::add_all() {
  low.fill(~0ULL);
  blocks = ~0ULL;
  end = true;
}

namespace {

// More of these in each other than a person writes, and nothing is remembered: each needs bits of its own.
constexpr std::uint32_t deepest_turns = 64;

/// Walks the tree with a stack of tasks, so that deep nesting costs no stack of the thread. A counted
/// repetition of more than one set is written out.
class Emitter {
 public:
  Emitter(Ast ast, Options options) : ast_(std::move(ast)), groups_(options.groups || ast_.back_references) {
    program_.whole = options.whole;
    program_.first_turn = groups_ ? 2 * ast_.groups : 0;
  }

  Program emit() {
    tasks_.push_back({Task::Kind::node, ast_.root});
    while (!tasks_.empty()) {
      const Task task = tasks_.back();
      tasks_.pop_back();
      if (++work_ > 4 * max_parts) fail(codes::error_space);
      run(task);
    }
    add({.op = Op::match});
    program_.sets = std::move(ast_.sets);
    return std::move(program_);
  }

 private:
  struct Task {
    enum class Kind : std::uint8_t { node, nodes, alternative, group_end, look_end, turn, repeat };
    Kind kind;
    std::int32_t node = -1;
    std::uint32_t count = 0;  // of turns written
    std::uint32_t at = none;  // an instruction to complete
    std::uint32_t slot = none;
  };

  const Node& node(std::int32_t index) const { return ast_.nodes[static_cast<std::size_t>(index)]; }
  std::uint32_t here() const { return static_cast<std::uint32_t>(program_.code.size()); }

  std::uint32_t add(const Instruction& instruction) {
    if (program_.code.size() >= max_parts) fail(codes::error_space);
    program_.code.push_back(instruction);
    return here() - 1;
  }

  std::uint32_t add_split(bool lazy) {
    Split made{.lazy = lazy, .turn = turn_};
    if (looks_ == 0 && !ast_.back_references && turns_ <= deepest_turns) {
      made.memo = program_.memo_bits;
      program_.memo_bits += 1 + turns_;
    }
    program_.splits.push_back(made);
    return add({.op = Op::split, .x = static_cast<std::uint32_t>(program_.splits.size() - 1)});
  }

  std::uint32_t& other(std::uint32_t split) { return program_.splits[program_.code[split].x].other; }

  void run(const Task& task) {
    switch (task.kind) {
      case Task::Kind::node:
        return write(task.node);
      case Task::Kind::nodes:
        if (node(task.node).next >= 0) tasks_.push_back({Task::Kind::nodes, node(task.node).next});
        return write(task.node);
      case Task::Kind::alternative:
        return next_alternative(task);
      case Task::Kind::group_end:
        add({.op = Op::save, .x = 2 * node(task.node).a + 1});
        return;
      case Task::Kind::look_end:
        return end_look(task);
      case Task::Kind::turn:
        return end_turn(task);
      case Task::Kind::repeat:
        return repeat(task);
    }
  }

  void write(std::int32_t index) {
    const Node& each = node(index);
    switch (each.kind) {
      case Kind::empty:
        return;
      case Kind::character:
        add({.op = Op::character, .x = each.a});
        return;
      case Kind::set:
        add({.op = Op::set, .x = each.a});
        return;
      case Kind::text_begin:
        add({.op = Op::text_begin});
        return;
      case Kind::text_end:
        add({.op = Op::text_end});
        return;
      case Kind::word_limit:
        add({.op = Op::word_limit, .negative = each.negative});
        return;
      case Kind::back_reference:
        add({.op = Op::back_reference, .x = each.a});
        return;
      case Kind::group:
        return write_group(index);
      case Kind::look_ahead:
        return write_look(index);
      case Kind::sequence:
        tasks_.push_back({Task::Kind::nodes, each.child});
        return;
      case Kind::alternatives:
        return write_alternative(each.child, none);
      case Kind::repeat:
        return write_repeat(index);
    }
  }

  void write_group(std::int32_t index) {
    add({.op = Op::save, .x = 2 * node(index).a});
    tasks_.push_back({Task::Kind::group_end, index});
    tasks_.push_back({Task::Kind::node, node(index).child});
  }

  void write_look(std::int32_t index) {
    LookAhead look{.turns = {next_slot(), 0}};
    if (groups_) {
      look.groups[0] = 2 * node(index).a;
      look.groups[1] = 2 * node(index).b;
    }
    program_.looks.push_back(look);
    const auto number = static_cast<std::uint32_t>(program_.looks.size() - 1);
    const std::uint32_t at = add({.op = Op::look_ahead, .negative = node(index).negative, .x = number});
    ++looks_;
    tasks_.push_back({.kind = Task::Kind::look_end, .at = at});
    tasks_.push_back({Task::Kind::node, node(index).child});
  }

  void end_look(const Task& task) {
    --looks_;
    add({.op = Op::look_end});
    LookAhead& look = program_.looks[program_.code[task.at].x];
    look.after = here();
    look.turns[1] = next_slot();
  }

  /// The jumps behind the alternatives are chained through their x until the end is known.
  void write_alternative(std::int32_t index, std::uint32_t jumps) {
    const bool last = node(index).next < 0;
    const std::uint32_t split = last ? none : add_split(false);
    tasks_.push_back({Task::Kind::alternative, index, 0, jumps, split});
    tasks_.push_back({Task::Kind::node, index});
  }

  void next_alternative(const Task& task) {
    if (task.slot == none) return complete_jumps(task.at);
    const std::uint32_t jump = add({.op = Op::jump, .x = task.at});
    other(task.slot) = here();
    write_alternative(node(task.node).next, jump);
  }

  void complete_jumps(std::uint32_t jump) {
    while (jump != none) jump = std::exchange(program_.code[jump].x, here());
  }

  std::uint32_t next_slot() const {
    return program_.first_turn + static_cast<std::uint32_t>(program_.outer_turn.size());
  }

  void write_repeat(std::int32_t index) {
    const Node& each = node(index);
    const Node& body = node(each.child);
    if (body.kind == Kind::character || body.kind == Kind::set) return write_loop(each, body);
    if (body.kind != Kind::empty) repeat({Task::Kind::repeat, index});
  }

  void write_loop(const Node& each, const Node& body) {
    std::uint32_t set = body.a;
    if (body.kind == Kind::character) {
      set = static_cast<std::uint32_t>(ast_.sets.size());
      ast_.sets.emplace_back().add(static_cast<char16_t>(body.a), static_cast<char16_t>(body.a));
    }
    program_.loops.push_back({.number = static_cast<std::uint32_t>(program_.loops.size()),
                              .set = set,
                              .least = each.a,
                              .greatest = each.b,
                              .lazy = each.lazy,
                              .once = looks_ == 0 && !ast_.back_references,
                              .turn = turn_});
    add({.op = Op::loop, .x = static_cast<std::uint32_t>(program_.loops.size() - 1)});
  }

  /// One more turn, or what follows the last one. `at` chains the splits that go behind the loop.
  void repeat(Task task) {
    const Node& each = node(task.node);
    const bool endless = each.b == unbounded;
    if (endless && task.count + 1 >= each.a) return write_endless(task.node);
    if (task.count == each.b) return complete_splits(task.at);
    if (task.count >= each.a) {
      const std::uint32_t split = add_split(each.lazy);
      other(split) = std::exchange(task.at, split);
    }
    ++task.count;
    tasks_.push_back(task);
    tasks_.push_back({Task::Kind::node, each.child});
  }

  void complete_splits(std::uint32_t split) {
    while (split != none) split = std::exchange(other(split), here());
  }

  /// The last, endless turn: body* or, if one turn is still due, body+.
  void write_endless(std::int32_t index) {
    const Node& each = node(index);
    Task end{.kind = Task::Kind::turn, .node = index, .at = here()};
    if (each.a == 0) add_split(each.lazy);
    if (node(each.child).can_be_empty) {
      end.slot = next_slot();
      program_.outer_turn.push_back(turn_);
      add({.op = Op::save, .x = end.slot});
      turn_ = end.slot;
      ++turns_;
    }
    tasks_.push_back(end);
    tasks_.push_back({Task::Kind::node, each.child});
  }

  void end_turn(const Task& task) {
    const Node& each = node(task.node);
    std::uint32_t leave = none;
    if (task.slot != none) {
      leave = add({.op = Op::leave_if_empty, .x = task.slot});
      turn_ = program_.outer_turn[task.slot - program_.first_turn];
      --turns_;
    }
    if (each.a == 0) {
      add({.op = Op::jump, .x = task.at});
      other(task.at) = here();
    } else {
      other(add_split(!each.lazy)) = task.at;  // the way back is the other one
    }
    if (leave != none) program_.code[leave].y = here();
  }

  Ast ast_;
  bool groups_;
  Program program_;
  std::vector<Task> tasks_;
  std::size_t work_ = 0;
  std::uint32_t looks_ = 0;    // look-aheads around what is being written
  std::uint32_t turn_ = none;  // slot of the innermost loop around it whose turns can be empty
  std::uint32_t turns_ = 0;    // number of such loops around it
};

/// Fills in what can be known beforehand of each place in a program.
class Analyser {
 public:
  Analyser(Program& program, bool whole) : program_(program), whole_(whole) {}

  /// From the end, so that most splits are known where others ask for them.
  void run() {
    for (auto pc = static_cast<std::uint32_t>(program_.code.size()); pc-- > 0;) {
      const Instruction& each = program_.code[pc];
      if (each.op == Op::loop) analyse(program_.loops[each.x], pc);
      if (each.op == Op::split) {
        Split& split = program_.splits[each.x];
        split.first_next = first(pc + 1);
        split.first_other = first(split.other);
        const Instruction& other = program_.code[split.other];
        if (split.other > pc && other.op == Op::split) split.next_alternative = other.x;
      }
      known_ = pc;
    }
    program_.first = first(0);
    find_prefix();
  }

 private:
  void analyse(Loop& loop, std::uint32_t pc) {
    const CharSet& set = program_.sets[loop.set];
    loop.follow = first(pc + 1);
    bool apart = (loop.follow.blocks & set.blocks()) == 0;
    for (std::size_t i = 0; i < set.low().size(); ++i) apart &= (loop.follow.low[i] & set.low()[i]) == 0;
    loop.whole_run = apart && loop.greatest == unbounded;
  }

  FirstSet first(std::uint32_t pc) {
    FirstSet all;
    ways_.assign(1, pc);
    for (std::size_t i = 0; i < ways_.size(); ++i) {
      if (i == most_ways) {
        all.add_all();
        break;
      }
      add_first(all, ways_[i]);
    }
    return all;
  }

  void go_on(std::uint32_t pc) {
    if (std::find(ways_.begin(), ways_.end(), pc) == ways_.end()) ways_.push_back(pc);
  }

  void add_first(FirstSet& all, std::uint32_t pc) {
    const Instruction& each = program_.code[pc];
    switch (each.op) {
      case Op::character:
        return add_unit(all, each.x);
      case Op::set:
        return add_set(all, each.x);
      case Op::loop:
        add_set(all, program_.loops[each.x].set);
        if (program_.loops[each.x].least == 0) go_on(pc + 1);
        return;
      case Op::split:
        if (pc >= known_) return add_split(all, program_.splits[each.x]);
        go_on(program_.splits[each.x].other);
        return go_on(pc + 1);
      case Op::leave_if_empty:
        go_on(each.y);
        return go_on(pc + 1);
      case Op::jump:
        return go_on(each.x);
      case Op::look_ahead:
        return go_on(program_.looks[each.x].after);
      case Op::save:
      case Op::text_begin:
      case Op::word_limit:
        return go_on(pc + 1);
      case Op::text_end:
        all.end = true;
        return;
      case Op::match:
        if (whole_) {
          all.end = true;
          return;
        }
        [[fallthrough]];
      case Op::back_reference:
      case Op::look_end:
        return all.add_all();
    }
  }

  static void add_unit(FirstSet& all, std::uint32_t unit) {
    if (unit < 256) {
      all.low[unit >> 6] |= 1ULL << (unit & 63);
    } else {
      all.blocks |= 1ULL << (unit >> CharSet::block_bits);
    }
  }

  void add_set(FirstSet& all, std::uint32_t index) {
    const CharSet& set = program_.sets[index];
    for (std::size_t i = 0; i < all.low.size(); ++i) all.low[i] |= set.low()[i];
    all.blocks |= set.blocks();
  }

  static void add_split(FirstSet& all, const Split& split) {
    for (const FirstSet* each : {&split.first_next, &split.first_other}) {
      for (std::size_t i = 0; i < all.low.size(); ++i) all.low[i] |= each->low[i];
      all.blocks |= each->blocks;
      all.end |= each->end;
    }
  }

  void find_prefix() {
    const auto first = program_.code.begin();
    auto at = first;
    program_.at_begin = at->op == Op::text_begin;
    for (; at->op == Op::character || at->op == Op::save; ++at)
      if (at->op == Op::character) program_.prefix.push_back(static_cast<wchar_t>(at->x));
    const auto characters = static_cast<std::size_t>(at - first);
    program_.literal = at->op == Op::match && characters == program_.prefix.size() && characters > 0;
  }

  static constexpr std::size_t most_ways = 48;

  Program& program_;
  bool whole_;
  std::vector<std::uint32_t> ways_;
  std::uint32_t known_ = none;  // the splits from here on are filled in
};

}  // namespace

Program compile(std::wstring_view pattern, Options options) {
  if (!pattern.empty() && pattern.find_first_of(L"^$\\.*+?()[{|") == pattern.npos) {
    Program literal;
    literal.prefix = pattern;
    literal.literal = true;
    return literal;
  }
  Ast ast = parse(pattern);
  factor(ast, options.groups || ast.back_references);
  Program program = Emitter(std::move(ast), options).emit();
  Analyser(program, options.whole).run();
  return program;
}

}  // namespace ruvo::texto::regex
