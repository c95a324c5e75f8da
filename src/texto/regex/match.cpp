// SPDX-License-Identifier: BSL-1.0

// The matcher: backtracking over a stack on the heap, with a memory of what failed.

#include "texto/regex/match.hpp"

#include <algorithm>
#include <new>

#include "base/limits.hpp"
#include "base/unicode.hpp"
#include "texto/regex/fault.hpp"

namespace ruvo::texto::regex {

namespace {

constexpr std::size_t most_entries = 40'000'000;            // of the stack, 8 bytes each
constexpr std::uint64_t most_memo_bits = 64ULL << 20 << 3;  // 64 MiB
constexpr std::uint64_t free_steps = 100'000'000;           // for a text of any length
constexpr std::uint64_t steps_for_unit = 100;               // and these for each unit of it
constexpr std::uint64_t steps_for_fork = 4;                 // and at each unit for each fork
constexpr std::uint64_t most_forks_counted = 100;
constexpr std::uint32_t scanned_in_step = 8;  // a unit that is only looked at costs less than a step
constexpr unsigned tag_bits = 3;

bool is_word(wchar_t c) { return is_word_letter(c) || c == L'_'; }

}  // namespace

matcher::matcher(const program& program, std::wstring_view text)
    : program_(program),
      text_(text.data()),
      size_(static_cast<std::uint32_t>(text.size())),
      finder_(program.prefix) {
  if (text.size() >= ruvo::detail::limits::pattern_positions) fail(fault::space);
  const std::uint64_t forks = std::min<std::uint64_t>(program.forks.size(), most_forks_counted);
  step_limit_ = free_steps + (steps_for_unit + steps_for_fork * forks) * size_;
  const std::uint64_t memo_bits = program.memo_bits * (std::uint64_t{size_} + 1);
  if (memo_bits > 0 && memo_bits <= most_memo_bits) memo_words_ = (memo_bits >> 6) + 1;
  slots_.assign(program.first_turn + program.outer_turn.size(), none);
  restored_at_.assign(slots_.size(), none);
  loops_.resize(program.loops.size());
}

std::wstring_view matcher::group(std::size_t number) const {
  if (number == 0) return {text_ + begin_, end_ - begin_};
  if (2 * number + 1 >= program_.first_turn || slots_[2 * number + 1] == none) return {};
  return {text_ + slots_[2 * number], slots_[2 * number + 1] - slots_[2 * number]};
}

bool matcher::matches_whole() {
  return program_.literal ? std::wstring_view(text_, size_) == program_.prefix : run(0);
}

bool matcher::next() {
  if (!started_) {
    started_ = true;
    return search(0);
  }
  if (begin_ != end_) return search(end_);
  if (end_ == size_) return false;
  not_empty_ = true;
  const bool found = run(static_cast<std::uint32_t>(end_));
  not_empty_ = false;
  return found || search(end_ + 1);
}

bool matcher::search(std::size_t from) {
  for (std::size_t start = next_start(from); start <= size_; start = next_start(start + 1)) {
    if (program_.literal) {
      begin_ = start;
      end_ = start + program_.prefix.size();
      return true;
    }
    if (run(static_cast<std::uint32_t>(start))) return true;
  }
  return false;
}

/// The first place from `from` on where a match can begin, or one behind the end.
std::size_t matcher::next_start(std::size_t from) {
  if (program_.at_begin && from > 0) return none;
  if (!program_.prefix.empty()) return finder_.find({text_, size_}, from);
  while (from < size_ && !program_.first.has(text_[from])) ++from;
  return from < size_ || program_.first.end ? from : none;
}

/// Makes ready for the next run after a match.
void matcher::forget() {
  matched_ = false;
  std::fill(slots_.begin(), slots_.end(), none);
  // What failed behind the match fails for the next one too; at its end lies the way that led to the match.
  const auto at = static_cast<std::uint32_t>(end_);
  for (loop_state& state : loops_)
    if (state.tried_first <= at) state.tried_first = at + 1;
  count(loops_.size());
  if (memo_.empty()) return;
  for (std::uint64_t i = 0, bit = at * std::uint64_t{program_.memo_bits}; i < program_.memo_bits; ++i, ++bit)
    memo_[bit >> 6] &= ~(1ULL << (bit & 63));
}

bool matcher::run(std::uint32_t from) {
  if (matched_) forget();
  start_ = at_ = from;
  pc_ = 0;
  stack_.clear();
  floor_ = 0;
  look_ = none;
  for (;;) {
    count(1);
    const instruction& each = program_.code[pc_];
    if (each.op == opcode::match && accept()) return true;
    if (!step(each) && !fail_back()) return false;
  }
}

bool matcher::accept() {
  if (program_.whole ? at_ != size_ : not_empty_ && at_ == start_) return false;
  begin_ = start_;
  end_ = at_;
  return matched_ = true;
}

void matcher::count(std::uint64_t steps) {
  steps_ += steps;
  if (steps_ > step_limit_) fail(fault::complexity);
}

/// Runs one instruction; false if it does not match here.
bool matcher::step(const instruction& each) {
  switch (each.op) {
    case opcode::character:
      ++pc_;
      return at_ < size_ && static_cast<char16_t>(text_[at_++]) == each.x;
    case opcode::set:
      ++pc_;
      return at_ < size_ && program_.sets[each.x].has(text_[at_++]);
    case opcode::loop:
      return enter_loop(program_.loops[each.x]);
    case opcode::fork:
      return take(program_.forks[each.x]);
    case opcode::jump:
      pc_ = each.x;
      return true;
    case opcode::save:
      ++pc_;
      set_slot(each.x);
      return true;
    case opcode::leave_if_empty:
      pc_ = slots_[each.x] == at_ ? each.y : pc_ + 1;
      return true;
    case opcode::text_begin:
      ++pc_;
      return at_ == 0;
    case opcode::text_end:
      ++pc_;
      return at_ == size_;
    case opcode::word_limit:
      ++pc_;
      return word_limit() != each.negative;
    case opcode::back_reference:
      ++pc_;
      return back_reference(each.x);
    case opcode::look_ahead:
      enter_look(each);
      return true;
    case opcode::look_end:
      return end_look();
    case opcode::match:
      return false;
  }
  return false;
}

/// Goes back to the newest way that was not tried; false if there is none.
bool matcher::fail_back() {
  while (!stack_.empty()) {
    const entry last = pop();
    const std::uint32_t argument = last.code >> tag_bits;
    switch (static_cast<tag>(last.code & ((1u << tag_bits) - 1))) {
      case tag::restore:
        slots_[argument] = last.value;
        break;
      case tag::branch:
        pc_ = argument;
        at_ = last.value;
        return true;
      case tag::loop:
        pc_ = argument;
        if (leave_loop(program_.loops[program_.code[pc_].x], last.value, pop().value)) return true;
        break;
      case tag::look:
        look_ = pop().value;
        break;
      case tag::negative_look:
        look_ = pop().value;
        pc_ = program_.looks[argument].after;
        at_ = last.value;
        return true;
      case tag::operand:
        break;
    }
  }
  return false;
}

matcher::entry matcher::pop() {
  const entry last = stack_.back();
  stack_.pop_back();
  floor_ = stack_.size();  // or lower: then a restore is written twice, which does no harm
  return last;
}

void matcher::push(tag what, std::uint32_t argument, std::uint32_t value) {
  if (stack_.size() == stack_.capacity()) grow_stack();
  stack_.push_back({argument << tag_bits | static_cast<std::uint32_t>(what), value});
  if (what != tag::restore) floor_ = stack_.size();
}

void matcher::grow_stack() {
  if (stack_.size() >= most_entries) fail(fault::stack);
  try {
    stack_.reserve(std::clamp<std::size_t>(2 * stack_.size(), 64, most_entries));
  } catch (const std::bad_alloc&) {
    fail(fault::stack);
  }
}

/// Sets a slot to the position. Between two branches only its first value has to be kept.
void matcher::set_slot(std::uint32_t slot) {
  const std::size_t kept = restored_at_[slot];
  const std::uint32_t code = slot << tag_bits | static_cast<std::uint32_t>(tag::restore);
  if (kept < floor_ || kept >= stack_.size() || stack_[kept].code != code) {
    restored_at_[slot] = static_cast<std::uint32_t>(stack_.size());
    push(tag::restore, slot, slots_[slot]);
  }
  slots_[slot] = at_;
}

bool matcher::can_begin(const first_set& first, std::uint32_t at) const {
  return at < size_ ? first.has(text_[at]) : first.end;
}

bool matcher::take(const fork& first) {
  const fork& met = passed_over(first);
  const bool next = can_begin(met.first_next, at_), other = can_begin(met.first_other, at_);
  if ((!next && !other) || !visit(met)) return false;
  if (next && other) push(tag::branch, met.lazy ? pc_ + 1 : met.other, at_);
  pc_ = other && (met.lazy || !next) ? met.other : pc_ + 1;
  return true;
}

/// Goes on from fork to fork past the alternatives that cannot begin here.
const fork& matcher::passed_over(const fork& first) {
  const fork* met = &first;
  std::uint64_t passed = 0;
  while (met->next_alternative != none &&
         !(can_begin(met->first_next, at_) && (at_ == size_ || can_begin(met->second_next, at_ + 1)))) {
    ++passed;
    pc_ = met->other;
    met = &program_.forks[met->next_alternative];
  }
  count(passed / scanned_in_step);
  return *met;
}

/// Whether the fork is met at this position for the first time. What happens from here on depends on nothing
/// but the position and on how many of the repetitions around see an empty turn so far.
bool matcher::visit(const fork& met) {
  if (met.memo == none || memo_words_ == 0 || (memo_.empty() && !make_memo())) return true;
  std::uint64_t bit = at_ * std::uint64_t{program_.memo_bits} + met.memo;
  for (std::uint32_t turn = met.turn; turn != none && slots_[turn] == at_;
       turn = program_.outer_turn[turn - program_.first_turn])
    ++bit;
  const std::uint64_t mask = 1ULL << (bit & 63);
  const bool fresh = (memo_[bit >> 6] & mask) == 0;
  memo_[bit >> 6] |= mask;
  return fresh;
}

bool matcher::make_memo() {
  try {
    memo_.resize(memo_words_);
  } catch (const std::bad_alloc&) {
    memo_words_ = 0;
  }
  return memo_words_ > 0;
}

bool matcher::enter_loop(const set_loop& loop) {
  const std::uint32_t rest = size_ - at_;
  if (loop.least > rest) return false;
  const std::uint32_t end = run_end(loop, at_ + std::min(loop.greatest, rest));
  if (end - at_ < loop.least) return false;
  const std::uint32_t first = loop.whole_run ? end : at_ + loop.least;
  return loop.lazy ? leave_loop(loop, first, end) : leave_loop(loop, end, first);
}

/// Where the run of characters of the loop's set ends, at most at `limit`.
std::uint32_t matcher::run_end(const set_loop& loop, std::uint32_t limit) {
  loop_state& state = state_of(loop);
  if (at_ >= state.run_begin && at_ <= state.run_end) return std::min(state.run_end, limit);
  const char_set& set = program_.sets[loop.set];
  const bool run_ahead =
      state.run_begin <= state.run_end && at_ < state.run_begin && state.run_begin <= limit;
  const std::uint32_t stop = run_ahead ? state.run_begin : limit;
  std::uint32_t end = at_;
  while (end < stop && set.has(text_[end])) ++end;
  count((end - at_) / scanned_in_step);
  const bool joined = run_ahead && end == stop;
  if (joined) end = state.run_end;
  if (joined || end < limit || limit == size_) {
    state.run_begin = at_;
    state.run_end = end;
  }
  return std::min(end, limit);
}

/// Goes on behind the loop from the first fitting place between `exit` and `last`; the others stay for later.
bool matcher::leave_loop(const set_loop& loop, std::uint32_t exit, std::uint32_t last) {
  const std::uint32_t from = exit;
  const bool found = find_exit(loop, exit, last);
  if (loop.once) remember(loop, std::min(from, exit), std::max(from, exit));
  if (!found) return false;
  if (exit != last) {
    push(tag::operand, 0, last);
    push(tag::loop, pc_, loop.lazy ? exit + 1 : exit - 1);
  }
  at_ = exit;
  ++pc_;
  return true;
}

/// Moves `exit` on to a place where what follows can begin, or to `last` if there is none. What was tried
/// lies together, so that it is passed over at once.
bool matcher::find_exit(const set_loop& loop, std::uint32_t& exit, std::uint32_t last) {
  const loop_state& state = state_of(loop);
  std::uint64_t scanned = 0;
  bool found = false;
  for (;; loop.lazy ? ++exit : --exit) {
    if (loop.once && exit >= state.tried_first && exit <= state.tried_last && !in_empty_turn(loop, exit)) {
      exit = loop.lazy ? std::min(state.tried_last, last) : std::max(state.tried_first, last);
    } else {
      ++scanned;
      found = can_begin(loop.follow, exit);
    }
    if (found || exit == last) break;
  }
  count(scanned / scanned_in_step);
  return found;
}

/// Marks the exits as tried, but not one in a turn that is empty so far: it goes on differently.
void matcher::remember(const set_loop& loop, std::uint32_t first, std::uint32_t last) {
  if (in_empty_turn(loop, first) && first++ == last) return;
  loop_state& state = state_of(loop);
  const bool apart =
      state.tried_first > state.tried_last || first > state.tried_last + 1 || last + 1 < state.tried_first;
  state.tried_first = apart ? first : std::min(first, state.tried_first);
  state.tried_last = apart ? last : std::max(last, state.tried_last);
}

bool matcher::in_empty_turn(const set_loop& loop, std::uint32_t at) const {
  return loop.turn != none && slots_[loop.turn] == at;
}

bool matcher::word_limit() const {
  const bool left = at_ > 0 && is_word(text_[at_ - 1]);
  return left != (at_ < size_ && is_word(text_[at_]));
}

/// A group that took no part is empty.
bool matcher::back_reference(std::uint32_t number) {
  const std::uint32_t begin = slots_[2 * number], end = slots_[2 * number + 1];
  if (end == none) return true;
  const std::uint32_t length = end - begin;
  count(length / scanned_in_step);
  if (length > size_ - at_ || !std::equal(text_ + begin, text_ + end, text_ + at_)) return false;
  at_ += length;
  return true;
}

/// The slots that the body may change are kept below the mark: when the body has matched, its branches go and
/// they remain.
void matcher::enter_look(const instruction& each) {
  const look_body& look = program_.looks[each.x];
  for (const auto& slots : {look.groups, look.turns}) {
    count(slots[1] - slots[0]);
    for (std::uint32_t slot = slots[0]; slot < slots[1]; ++slot) push(tag::restore, slot, slots_[slot]);
  }
  push(tag::operand, 0, look_);
  look_ = static_cast<std::uint32_t>(stack_.size());
  push(each.negative ? tag::negative_look : tag::look, each.x, at_);
  ++pc_;
}

bool matcher::end_look() {
  const entry mark = stack_[look_];
  stack_.resize(look_);
  look_ = pop().value;
  pc_ = program_.looks[mark.code >> tag_bits].after;
  at_ = mark.value;
  return static_cast<tag>(mark.code & ((1u << tag_bits) - 1)) == tag::look;
}

}  // namespace ruvo::texto::regex
