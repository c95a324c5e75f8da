// SPDX-License-Identifier: BSL-1.0

// Running a program on a text.

#include "texto/nfa/matcher.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "base/limits.hpp"
#include "base/unicode.hpp"
#include "base/utf.hpp"

namespace ruvo::texto::nfa {

namespace {

constexpr std::size_t most_words = 1 << 17;     // of visited instructions, 1 MB
constexpr std::size_t most_entries = 1 << 20;   // of the stack, 8 MB
constexpr std::uint32_t restores = 0x80000000;  // an entry of the stack that restores a slot

bool ends_line(wchar_t c) noexcept {
  const auto unit = static_cast<char16_t>(c);
  return unit == '\n' || unit == '\r' || unit == 0x2028 || unit == 0x2029;
}

}  // namespace

void thread_list::prepare(std::size_t instructions, std::size_t slots) {
  order_.resize(instructions);
  place_.resize(instructions);
  slots_.resize(instructions * slots);
  width_ = slots;
}

matcher::matcher(const program& made, std::wstring_view text)
    : program_(made),
      text_(text.data()),
      size_(static_cast<std::uint32_t>(text.size())),
      finder_(made.prefix),
      slots_(2 * made.groups, none) {
  if (text.size() >= ruvo::detail::limits::pattern_positions) throw std::length_error("text beyond 32 bits");
}

// --- starting

bool matcher::match_whole() {
  whole_ = true;
  from_ = 0;
  forget(0);
  const outcome found = try_at(0);
  return found == outcome::too_large ? run_all(0) : found == outcome::found;
}

bool matcher::search(std::size_t from, bool not_empty) {
  if (from > size_) return false;
  is_started_ = true;
  not_empty_ = not_empty;
  from_ = static_cast<std::uint32_t>(from);
  forget(from_);
  for (std::uint32_t start = next_start(from_); start != none; start = next_start(start + 1)) {
    if (program_.literal) return is_found(start, start + static_cast<std::uint32_t>(program_.prefix.size()));
    const outcome found = try_at(start);
    if (found == outcome::found) return true;
    if (found == outcome::too_large) return run_all(start);
  }
  return false;
}

bool matcher::next() {
  if (!is_started_) return search(0);
  const std::size_t last = end();
  return begin() != last ? search(last) : last < size_ && search(last, true);
}

/// The first place from `from` on where a match may begin, none without one.
std::uint32_t matcher::next_start(std::uint32_t from) {
  if (from > size_ || (program_.at_begin && from > 0)) return none;
  if (!program_.prefix.empty()) {
    const std::size_t found = finder_.find({text_, size_}, from);
    return found == std::wstring_view::npos ? none : static_cast<std::uint32_t>(found);
  }
  const bool is_inside =
      from > 0 && from < size_ && is_low_surrogate(text_[from]) && is_high_surrogate(text_[from - 1]);
  for (std::uint32_t at = from + static_cast<std::uint32_t>(is_inside), next = at; at < size_; at = next)
    if (program_.first.match || program_.first.has(character(at, next))) return at;
  return program_.first.match ? size_ : none;
}

/// Notes the ends of the match; true.
bool matcher::is_found(std::uint32_t begin, std::uint32_t end) {
  slots_[0] = begin;
  slots_[1] = end;
  return true;
}

bool matcher::accepts(std::uint32_t start, std::uint32_t at) const noexcept {
  return whole_ ? at == size_ : !not_empty_ || at != start || at != from_;
}

// --- what a text has at a place

char32_t matcher::pair_at(std::uint32_t at, std::uint32_t& next) const noexcept {
  const auto high = static_cast<char16_t>(text_[at]);
  if (next == size_ || !is_low_surrogate(text_[next])) return high;
  const auto low = static_cast<char16_t>(text_[next++]);
  return 0x10000u + ((high & 0x3FFu) << 10) + (low & 0x3FFu);
}

bool matcher::is_word(std::uint32_t at) const noexcept {
  return at < size_ && (is_word_letter(text_[at]) || text_[at] == L'_');
}

/// Between CR and LF no line begins or ends.
bool matcher::is_line_begin(std::uint32_t at) const noexcept {
  if (at == 0) return true;
  const bool is_between = text_[at - 1] == L'\r' && at < size_ && text_[at] == L'\n';
  return ends_line(text_[at - 1]) && !is_between;
}
bool matcher::is_line_end(std::uint32_t at) const noexcept {
  if (at == size_) return true;
  const bool is_between = text_[at] == L'\n' && at > 0 && text_[at - 1] == L'\r';
  return ends_line(text_[at]) && !is_between;
}

bool matcher::holds(opcode assertion, std::uint32_t at) const noexcept {
  switch (assertion) {
    case opcode::text_begin:
      return at == 0;
    case opcode::text_end:
      return at == size_;
    case opcode::line_begin:
      return is_line_begin(at);
    case opcode::line_end:
      return is_line_end(at);
    default:
      return ((at > 0 && is_word(at - 1)) != is_word(at)) == (assertion == opcode::word_limit);
  }
}

bool matcher::can_begin(const first_set& first, std::uint32_t at) const noexcept {
  std::uint32_t next;
  return first.match || (at < size_ && first.has(character(at, next)));
}

// --- one way after the other

/// Tries to match from a place on. Bits of places far behind give room to new ones.
matcher::outcome matcher::try_at(std::uint32_t start) {
  const outcome found = run(start);
  const std::size_t window = most_words * 64 / std::max(program_.memos, 1u);
  if (found != outcome::too_large || start - base_ < window / 2) return found;
  forget(start);
  return run(start);
}

void matcher::forget(std::uint32_t base) {
  std::fill_n(visited_.begin(), used_words_, 0);
  used_words_ = 0;
  base_ = base;
}

matcher::outcome matcher::run(std::uint32_t start) {
  std::fill(slots_.begin(), slots_.end(), none);
  start_ = start;
  is_full_ = false;
  stack_.assign(1, {0, start});
  while (!stack_.empty()) {
    const entry last = stack_.back();
    stack_.pop_back();
    if (last.code & restores) {
      slots_[last.code & ~restores] = last.value;
    } else if (follow(last.code, last.value)) {
      return outcome::found;
    } else if (is_full_) {
      return outcome::too_large;
    }
  }
  return outcome::failed;
}

/// Goes on until the match, or until nothing fits; false then.
bool matcher::follow(std::uint32_t pc, std::uint32_t at) {
  for (;;) {
    const instruction& each = program_.code[pc];
    if (each.memo != none && !is_fresh(each.memo, at)) return false;
    switch (each.op) {
      case opcode::character:
      case opcode::set:
        if (at == size_ || !fits(each, character(at, at))) return false;
        ++pc;
        break;
      case opcode::fork:
        if (!take(each, pc, at)) return false;
        break;
      case opcode::jump:
        pc = each.x;
        break;
      case opcode::save:
        save(each.x, at);
        ++pc;
        break;
      case opcode::match:
        return accepts(start_, at) && is_found(start_, at);
      default:
        if (!holds(each.op, at)) return false;
        ++pc;
    }
  }
}

bool matcher::take(const instruction& fork, std::uint32_t& pc, std::uint32_t& at) {
  const fork_facts& facts = program_.forks[fork.facts];
  if (facts.run != none) {
    pc = fork.y;
    return pass_run(fork, program_.code[facts.run], at);
  }
  const bool first = can_begin(facts.x, at), second = can_begin(facts.y, at);
  if (first && second) push(fork.y, at);
  pc = first ? fork.x : fork.y;
  return first || second;
}

/// Passes over all characters that the body takes. Where the run was passed before, what follows has failed.
bool matcher::pass_run(const instruction& fork, const instruction& body, std::uint32_t& at) {
  std::uint32_t next;
  while (at < size_ && fits(body, character(at, next))) {
    at = next;
    if (!is_fresh(fork.memo, at)) return false;
  }
  return true;
}

/// Whether an instruction is met at a place for the first time. False, too, when there is no room to note it.
bool matcher::is_fresh(std::uint32_t memo, std::uint32_t at) {
  const std::uint64_t bit = std::uint64_t{at - base_} * program_.memos + memo;
  const std::uint64_t word = bit >> 6, mask = std::uint64_t{1} << (bit & 63);
  if (word >= visited_.size()) {
    if (word >= most_words) {
      is_full_ = true;
      return false;
    }
    visited_.resize(std::min(std::max<std::size_t>(word + 1, 2 * visited_.size()), most_words));
  }
  used_words_ = std::max<std::size_t>(used_words_, word + 1);
  const bool fresh = (visited_[word] & mask) == 0;
  visited_[word] |= mask;
  return fresh;
}

/// Without other ways to go back to, nobody will ask for the old value.
void matcher::save(std::uint32_t slot, std::uint32_t at) {
  if (!stack_.empty()) push(slot | restores, slots_[slot]);
  slots_[slot] = at;
}

void matcher::push(std::uint32_t code, std::uint32_t value) {
  if (stack_.size() == most_entries) {
    is_full_ = true;
  } else {
    stack_.push_back({code, value});
  }
}

// --- all ways at once

/// The first match from a place on.
bool matcher::run_all(std::uint32_t first) {
  now_.prepare(program_.code.size(), slots_.size());
  later_.prepare(program_.code.size(), slots_.size());
  now_.clear();
  bool found = false;
  std::vector<std::uint32_t> blank(slots_.size(), none);
  for (std::uint32_t at = first, next = at; at != none; at = next) {
    if (now_.empty()) {
      if (found || (whole_ && at != first)) break;
      at = whole_ ? at : next_start(at);
      if (at == none) break;
    }
    if (!found && (at == first || !(whole_ || program_.at_begin))) {
      blank[0] = at;
      add_thread(now_, 0, at, blank.data());
    }
    const bool is_end = at == size_;
    const char32_t c = is_end ? 0 : character(at, next);
    found |= step_all(at, c, next, is_end);
    std::swap(now_, later_);
    if (is_end) break;
  }
  return found;
}

/// Takes all threads over one character. True when one of them matches here; those behind it end then.
bool matcher::step_all(std::uint32_t at, char32_t c, std::uint32_t next, bool is_end) {
  later_.clear();
  for (std::size_t i = 0; i < now_.size(); ++i) {
    const std::uint32_t pc = now_[i];
    const instruction& each = program_.code[pc];
    const std::uint32_t* const slots = now_.slots_of(pc);
    if (each.op == opcode::match && accepts(slots[0], at)) {
      std::copy(slots, slots + slots_.size(), slots_.begin());
      return is_found(slots[0], at);
    }
    const bool takes = each.op == opcode::character || each.op == opcode::set;
    if (takes && !is_end && fits(each, c)) add_thread(later_, pc + 1, next, slots);
  }
  return false;
}

/// Adds an instruction with all that it leads to without taking a character.
void matcher::add_thread(thread_list& to, std::uint32_t pc, std::uint32_t at, const std::uint32_t* slots) {
  trial_.assign(slots, slots + slots_.size());
  stack_.assign(1, {pc, 0});
  while (!stack_.empty()) {
    const entry last = stack_.back();
    stack_.pop_back();
    if (last.code & restores) {
      trial_[last.code & ~restores] = last.value;
      continue;
    }
    for (pc = last.code; !to.has(pc);) {
      to.add(pc);
      const instruction& each = program_.code[pc];
      if (each.op == opcode::character || each.op == opcode::set || each.op == opcode::match) {
        std::copy(trial_.begin(), trial_.end(), to.slots_of(pc));
        break;
      }
      const bool leads_away = each.op == opcode::fork || each.op == opcode::jump;
      if (each.op == opcode::fork) stack_.push_back({each.y, 0});
      if (each.op == opcode::save) {
        stack_.push_back({each.x | restores, trial_[each.x]});
        trial_[each.x] = at;
      } else if (!leads_away && !holds(each.op, at)) {
        break;
      }
      pc = leads_away ? each.x : pc + 1;
    }
  }
}

}  // namespace ruvo::texto::nfa
