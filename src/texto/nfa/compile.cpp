// SPDX-License-Identifier: BSL-1.0

// From a pattern to its program, in one pass: what an atom became lies together and refers to nothing but
// itself, by distances, so that a repetition can move and copy it. Open groups are kept on a stack of our
// own.

#include <ruvo/texto/words.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/ascii.hpp"
#include "base/unicode.hpp"
#include "base/utf.hpp"
#include "texto/nfa/program.hpp"

namespace ruvo::texto::nfa {

namespace {

using namespace std::string_view_literals;

constexpr std::uint32_t unbounded = 0xFFFFFFFF, greatest_count = 1000;
constexpr std::uint32_t most_groups = 250;  // each takes room for each instruction
constexpr std::size_t longest_pattern = 64 << 10;

using instructions = std::vector<instruction>;

constexpr std::uint32_t distance(std::ptrdiff_t by) {
  return static_cast<std::uint32_t>(static_cast<std::int32_t>(by));
}

/// The units of a pattern, one after the other.
class cursor {
 public:
  explicit cursor(std::wstring_view pattern) : pattern_(pattern) {}

  std::size_t at() const noexcept { return at_; }
  bool is_end() const noexcept { return at_ == pattern_.size(); }
  bool is_at(std::wstring_view text) const noexcept { return pattern_.substr(at_, text.size()) == text; }
  wchar_t peek() const noexcept { return is_end() ? L'\0' : pattern_[at_]; }
  wchar_t take() noexcept { return pattern_[at_++]; }
  bool skip(std::wstring_view text) noexcept {
    if (!is_at(text)) return false;
    at_ += text.size();
    return true;
  }

  /// A whole character.
  char32_t take_character() noexcept {
    const auto unit = static_cast<char16_t>(take());
    if (!is_high_surrogate(unit) || is_end() || !is_low_surrogate(peek())) return unit;
    return joined(unit, static_cast<char16_t>(take()));
  }

  static char32_t joined(char16_t high, char16_t low) noexcept {
    return 0x10000u + ((high & 0x3FFu) << 10) + (low & 0x3FFu);
  }

  [[noreturn]] void fail(const char* reason) const { fail_at(at_, reason); }
  [[noreturn]] void fail_at(std::size_t at, const char* reason) const { throw pattern_error(reason, at); }

 private:
  std::wstring_view pattern_;
  std::size_t at_ = 0;
};

// --- characters

template <std::size_t Size>
void add_ranges(code_set& to, const unit_range (&ranges)[Size]) {
  for (const auto& [first, last] : ranges) to.add(first, last);
}

/// The class of \d, \w, \s or of their capitals.
code_set class_of(wchar_t letter) {
  code_set set;
  const wchar_t small = to_lower(letter);
  if (small != L's') set.add(U'0', U'9');
  if (small == L'w') {
    set.add(U'A', U'Z');
    set.add(U'_');
    set.add(U'a', U'z');
    add_ranges(set, wide_letters);
  }
  if (small == L's') {
    set.add(U'\t', U'\r');
    set.add(U' ');
    add_ranges(set, wide_blanks);
  }
  set.finish(small != letter);
  return set;
}

bool is_class(wchar_t letter) noexcept { return L"dDwWsS"sv.find(letter) != std::wstring_view::npos; }

char32_t read_hex(cursor& in, std::size_t most, bool braces) {
  char32_t value = 0;
  std::size_t digits = 0;
  for (; digits < most && hex_value(in.peek()) >= 0; ++digits)
    value = value * 16 + static_cast<char32_t>(hex_value(in.take()));
  if (digits == 0 || (!braces && digits < most)) in.fail("faltan cifras hexadecimales");
  if (braces && !in.skip(L"}")) in.fail("falta «}»");
  if (value > 0x10FFFF) in.fail("el carácter no existe");
  return value;
}

/// Behind "\u".
char32_t read_unicode(cursor& in) {
  if (in.skip(L"{")) return read_hex(in, 6, true);
  const char32_t first = read_hex(in, 4, false);
  if (!is_high_surrogate(static_cast<char16_t>(first)) || !in.is_at(L"\\u")) return first;
  cursor ahead = in;
  ahead.skip(L"\\u");
  if (ahead.is_at(L"{")) return first;
  const char32_t second = read_hex(ahead, 4, false);
  if (!is_low_surrogate(static_cast<char16_t>(second))) return first;
  in = ahead;
  return cursor::joined(static_cast<char16_t>(first), static_cast<char16_t>(second));
}

/// A character behind a backslash.
char32_t read_escape(cursor& in) {
  if (in.is_end()) in.fail("falta lo que sigue a «\\»");
  constexpr std::wstring_view letters = L"tnrfv0", units = L"\t\n\r\f\v\0"sv;
  const wchar_t c = in.peek();
  if (const std::size_t known = letters.find(c); known != letters.npos) {
    in.take();
    if (c == L'0' && is_digit(in.peek())) in.fail("no se admiten números octales");
    return static_cast<char32_t>(units[known]);
  }
  if (in.skip(L"x")) return read_hex(in, 2, false);
  if (in.skip(L"u")) return read_unicode(in);
  if (is_digit(c)) in.fail("no se admiten referencias a grupos");
  if (is_alnum(c)) in.fail("la letra que sigue a «\\» no significa nada");
  return in.take_character();
}

// --- folding

std::array<std::uint8_t, 256> folding(const pattern_options& how) {
  std::array<std::uint8_t, 256> table{};
  for (unsigned c = 0; c < 256; ++c) {
    auto folded = static_cast<wchar_t>(c);
    if (how.ignore_case) folded = to_lowercase(folded);
    if (how.ignore_accents) folded = limpia_puntuacion(folded, 0);
    table[c] = static_cast<std::uint8_t>(folded);
  }
  return table;
}

// --- the compiler

class compiler {
 public:
  compiler(std::wstring_view pattern, const pattern_options& how) : in_(pattern), how_(how) {
    if (pattern.size() > longest_pattern) in_.fail_at(longest_pattern, too_large);
    made_.fold = folding(how);
    made_.folds = how.ignore_case || how.ignore_accents;
  }

  program compile() {
    levels_.push_back({});
    while (!in_.is_end()) step();
    if (levels_.size() > 1) in_.fail_at(levels_.back().position, "falta «)»");
    close_alternatives(levels_.back());
    add({.op = opcode::match});
    settle();
    return std::move(made_);
  }

 private:
  static constexpr const char* too_large = "el patrón es demasiado grande";

  /// A group that is open, or the whole pattern. Positions in the code.
  struct level {
    std::size_t position = 0;                     // in the pattern, of its bracket
    std::uint32_t group = 0;                      // 0 for one that takes nothing
    std::uint32_t begin = 0;                      // with the instruction that saves where it begins
    std::uint32_t alternative = 0;                // the one being read
    std::uint32_t jumps = none;                   // behind the alternatives before, chained by their x
    std::uint32_t atom = none;                    // the last one, if it can be repeated
    bool can_be_empty = false;                    // an alternative before
    bool empty_before = true, empty_atom = true;  // what stands before the last atom, and that atom itself
  };

  std::uint32_t here() const { return static_cast<std::uint32_t>(made_.code.size()); }

  std::uint32_t add(const instruction& one) {
    if (made_.code.size() >= most_instructions) in_.fail(too_large);
    made_.code.push_back(one);
    return here() - 1;
  }

  /// The next part of the alternative begins.
  void begin_item(bool can_be_repeated, bool can_be_empty) {
    level& open = levels_.back();
    open.empty_before = open.empty_before && open.empty_atom;
    open.empty_atom = can_be_empty;
    open.atom = can_be_repeated ? here() : none;
  }

  void add_assertion(opcode op) {
    begin_item(false, true);
    add({.op = op});
  }

  void add_character(char32_t c) {
    begin_item(true, false);
    add({.op = opcode::character, .x = c < 256 ? made_.fold[c] : c});
  }

  void add_set(code_set set) {
    begin_item(true, false);
    made_.sets.push_back(std::move(set));
    add({.op = opcode::set, .x = static_cast<std::uint32_t>(made_.sets.size() - 1)});
  }

  void step() {
    const wchar_t c = in_.peek();
    if (L"*+?{"sv.find(c) != std::wstring_view::npos) return repeat();
    switch (c) {
      case L'(':
        return open_group();
      case L')':
        return close_group();
      case L'|':
        return next_alternative();
      case L'[':
        return add_set(read_class());
      case L'\\':
        return escape();
      case L'.':
        in_.take();
        return add_set(dot());
      case L'^':
        in_.take();
        return add_assertion(how_.multi_line ? opcode::line_begin : opcode::text_begin);
      case L'$':
        in_.take();
        return add_assertion(how_.multi_line ? opcode::line_end : opcode::text_end);
      default:
        return add_character(in_.take_character());
    }
  }

  void escape() {
    in_.take();
    const wchar_t c = in_.peek();
    constexpr std::wstring_view letters = L"AzbB";
    constexpr opcode assertions[] = {opcode::text_begin, opcode::text_end, opcode::word_limit,
                                     opcode::no_word_limit};
    if (const std::size_t known = in_.is_end() ? letters.npos : letters.find(c); known != letters.npos) {
      in_.take();
      add_assertion(assertions[known]);
    } else if (is_class(c)) {
      in_.take();
      add_set(folded(class_of(c), false));
    } else {
      add_character(read_escape(in_));
    }
  }

  code_set dot() const {
    code_set set;
    if (!how_.dot_all)
      for (const char32_t end : {U'\n', U'\r', U'\u2028', U'\u2029'}) set.add(end);
    set.finish(true);
    return set;
  }

  // --- classes

  /// With what its members are compared as; then all others, if it is negative.
  code_set folded(code_set set, bool negative) const {
    if (made_.folds) {
      const std::vector<code_set::range> members = set.ranges();
      for (const auto& [first, last] : members)
        for (char32_t c = first; c <= last && c < 256; ++c) set.add(made_.fold[c]);
    }
    set.finish(negative);
    return set;
  }

  code_set read_class() {
    const std::size_t begin = in_.at();
    in_.take();
    const bool negative = in_.skip(L"^");
    if (in_.is_at(L"]")) in_.fail("la clase está vacía");
    code_set set;
    while (!in_.skip(L"]")) {
      if (in_.is_end()) in_.fail_at(begin, "falta «]»");
      add_member(set);
    }
    return folded(std::move(set), negative);
  }

  /// A character, a range or a class inside a class.
  void add_member(code_set& set) {
    if (in_.is_at(L"[:") || in_.is_at(L"[=") || in_.is_at(L"[.")) in_.fail("no se admiten clases con nombre");
    const std::size_t position = in_.at();
    char32_t first = 0, last = 0;
    const bool is_single = read_member(set, first);
    if (!in_.is_at(L"-") || in_.is_at(L"-]")) {
      if (is_single) set.add(first);
      return;
    }
    in_.take();
    if (in_.is_end() || !is_single || !read_member(set, last))
      in_.fail_at(position, "el intervalo necesita un carácter a cada lado");
    if (last < first) in_.fail_at(position, "el intervalo está al revés");
    set.add(first, last);
  }

  /// Reads one character, or adds a class such as \d and gives false.
  bool read_member(code_set& set, char32_t& out) {
    if (!in_.skip(L"\\")) {
      out = in_.take_character();
      return true;
    }
    if (is_class(in_.peek())) {
      set.add(class_of(in_.take()));
      return false;
    }
    out = in_.skip(L"b") ? U'\b' : read_escape(in_);
    return true;
  }

  // --- groups and alternatives

  void open_group() {
    level opened{.position = in_.at()};
    in_.take();
    begin_item(false, false);
    if (made_.groups > most_groups) in_.fail(too_large);
    if (!in_.is_at(L"?")) {
      opened.group = made_.groups++;
    } else if (!in_.skip(L"?:")) {
      refuse_look();
      if (!in_.skip(L"?<") && !in_.skip(L"?P<")) in_.fail("esta clase de grupo no se admite");
      opened.group = made_.groups++;
      name_group(opened.group);
    }
    opened.begin = here();
    if (opened.group) add({.op = opcode::save, .x = 2 * opened.group});
    opened.alternative = here();
    if (levels_.size() > most_instructions) in_.fail(too_large);
    levels_.push_back(opened);
  }

  void refuse_look() const {
    for (const std::wstring_view look : {L"?="sv, L"?!"sv, L"?<="sv, L"?<!"sv})
      if (in_.is_at(look)) in_.fail("no se admiten condiciones sobre lo que sigue o precede");
  }

  void name_group(std::uint32_t group) {
    const std::size_t position = in_.at();
    std::wstring name;
    while (is_alnum(in_.peek()) || in_.peek() == L'_') name += in_.take();
    if (name.empty() || is_digit(name[0]) || !in_.skip(L">"))
      in_.fail_at(position, "el nombre del grupo no es correcto");
    for (const auto& known : made_.names)
      if (known.first == name) in_.fail_at(position, "el nombre del grupo está repetido");
    made_.names.emplace_back(std::move(name), group);
  }

  void next_alternative() {
    in_.take();
    level& open = levels_.back();
    add({});  // room
    const auto first = made_.code.begin() + open.alternative;
    std::rotate(first, made_.code.end() - 1, made_.code.end());
    const std::uint32_t jump = add({.op = opcode::jump, .x = open.jumps});
    made_.code[open.alternative] = {.op = opcode::fork,
                                    .x = distance(1),
                                    .y = distance(static_cast<std::ptrdiff_t>(here()) - open.alternative)};
    open.jumps = jump;
    open.alternative = here();
    open.can_be_empty |= open.empty_before && open.empty_atom;
    open.empty_before = open.empty_atom = true;
    open.atom = none;
  }

  /// Whether what stands in the level can be empty.
  bool close_alternatives(level& open) {
    while (open.jumps != none) {
      const std::uint32_t jump = open.jumps;
      open.jumps = made_.code[jump].x;
      made_.code[jump].x = distance(static_cast<std::ptrdiff_t>(here()) - jump);
    }
    return open.can_be_empty || (open.empty_before && open.empty_atom);
  }

  void close_group() {
    if (levels_.size() == 1) in_.fail("sobra «)»");
    in_.take();
    level closed = levels_.back();
    const bool can_be_empty = close_alternatives(closed);
    levels_.pop_back();
    if (closed.group) add({.op = opcode::save, .x = 2 * closed.group + 1});
    levels_.back().empty_atom = can_be_empty;
    levels_.back().atom = closed.begin;
  }

  // --- repetitions

  void repeat() {
    level& open = levels_.back();
    const std::size_t position = in_.at();
    std::uint32_t least = 0, greatest = unbounded;
    read_count(least, greatest);
    if (open.atom == none) in_.fail_at(position, "no hay nada que repetir");
    const bool lazy = in_.skip(L"?");
    if (in_.is_at(L"+")) in_.fail("no se admiten repeticiones posesivas");
    const instructions body(made_.code.begin() + open.atom, made_.code.end());
    made_.code.resize(open.atom);
    const std::size_t turns = greatest == unbounded ? std::max(least, 1u) : greatest;
    if (here() + turns * (body.size() + 1) + 2 > most_instructions) in_.fail_at(position, too_large);
    write_turns(body, least, greatest, lazy);
    open.empty_atom |= least == 0;
    open.atom = none;
  }

  void read_count(std::uint32_t& least, std::uint32_t& greatest) {
    if (in_.skip(L"*")) return;
    if (in_.skip(L"+")) {
      least = 1;
    } else if (in_.skip(L"?")) {
      greatest = 1;
    } else {
      const std::size_t position = in_.at();
      in_.take();
      least = greatest = read_number(position);
      if (in_.skip(L",")) greatest = in_.is_at(L"}") ? unbounded : read_number(position);
      if (!in_.skip(L"}")) in_.fail_at(position, "«{» no empieza una repetición");
      if (greatest < least) in_.fail_at(position, "la repetición está al revés");
    }
  }

  std::uint32_t read_number(std::size_t position) {
    std::uint32_t value = 0;
    if (!is_digit(in_.peek())) in_.fail_at(position, "«{» no empieza una repetición");
    while (is_digit(in_.peek())) {
      value = value * 10 + static_cast<std::uint32_t>(in_.take() - L'0');
      if (value > greatest_count) in_.fail_at(position, "no se admiten más de 1000 repeticiones");
    }
    return value;
  }

  void add_body(const instructions& body) {
    for (const instruction& each : body) add(each);
  }

  void add_fork(std::ptrdiff_t body, std::ptrdiff_t behind, bool lazy) {
    add({.op = opcode::fork, .x = distance(lazy ? behind : body), .y = distance(lazy ? body : behind)});
  }

  void write_turns(const instructions& body, std::uint32_t least, std::uint32_t greatest, bool lazy) {
    if (body.empty()) return;
    const auto size = static_cast<std::ptrdiff_t>(body.size());
    if (greatest == unbounded) {
      for (std::uint32_t turn = 1; turn < least; ++turn) add_body(body);
      return write_endless(body, least == 0, lazy);
    }
    for (std::uint32_t turn = 0; turn < least; ++turn) add_body(body);
    for (std::uint32_t left = greatest - least; left > 0; --left) {
      add_fork(1, left * (size + 1), lazy);
      add_body(body);
    }
  }

  /// body+, or (?:body+)?: so a turn that takes nothing ends the repetition instead of trying others. Where
  /// each turn takes something, body* is shorter.
  void write_endless(const instructions& body, bool optional, bool lazy) {
    const auto size = static_cast<std::ptrdiff_t>(body.size());
    if (optional) add_fork(1, size + 2, lazy);
    add_body(body);
    if (optional && !levels_.back().empty_atom)
      add({.op = opcode::jump, .x = distance(-size - 1)});
    else
      add_fork(-size, 1, lazy);
  }

  /// Distances become places.
  void settle() {
    for (std::uint32_t pc = 0; pc < here(); ++pc) {
      instruction& each = made_.code[pc];
      if (each.op == opcode::fork) each.y += pc;
      if (each.op == opcode::fork || each.op == opcode::jump) each.x += pc;
    }
  }

  cursor in_;
  pattern_options how_;
  program made_;
  std::vector<level> levels_;
};

}  // namespace

program compile(std::wstring_view pattern, const pattern_options& how) {
  program made = compiler(pattern, how).compile();
  analyse(made);
  return made;
}

}  // namespace ruvo::texto::nfa
