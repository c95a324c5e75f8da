// SPDX-License-Identifier: BSL-1.0
#pragma once

// Patterns that are compiled once: where they match, what their groups took, replacing and splitting. One
// search takes a time that grows with the text alone, whatever the pattern and the text are.

#include <ruvo/api.hpp>

#include <concepts>
#include <cstddef>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace ruvo::texto {

namespace nfa {
struct program;
class matcher;
}  // namespace nfa

/// How a pattern is compared with a text.
struct pattern_options {
  bool ignore_case = false;  ///< Letters that to_lowercase() makes alike are alike, ranges and classes too.
  bool ignore_accents = false;  ///< So are those that limpia_puntuacion() makes alike: ñ is n, Ü is U.
  bool multi_line = false;      ///< `^` and `$` are also the ends of lines: LF, CR, CR LF, U+2028, U+2029.
  bool dot_all = false;         ///< `.` is also what ends a line.
};

/// A pattern or a replacement that is malformed, or asks for what there is not. what() is the reason in
/// Spanish, in UTF-8, with the position.
class KESTA_API pattern_error : public std::invalid_argument {
 public:
  /// The reason, in UTF-8, and the place in the pattern.
  pattern_error(const std::string& reason, std::size_t position);
  pattern_error(const pattern_error& other) noexcept;
  pattern_error& operator=(const pattern_error& other) noexcept;
  ~pattern_error() override;

  /// Where in the pattern, or in the replacement, from 0 on.
  std::size_t position() const noexcept { return position_; }

 private:
  std::size_t position_;
};

/// A place where a pattern matches, and what its groups took of it. The text has to outlive it.
class KESTA_API pattern_match {
 public:
  /// No match.
  pattern_match();
  pattern_match(const pattern_match& other);
  pattern_match(pattern_match&& other) noexcept;
  pattern_match& operator=(const pattern_match& other);
  pattern_match& operator=(pattern_match&& other) noexcept;
  ~pattern_match();

  /// Whether there is a match.
  explicit operator bool() const noexcept { return !slots_.empty(); }
  /// The number of groups, the whole match as number 0 counted; 0 without a match.
  std::size_t size() const noexcept { return slots_.size() / 2; }
  /// Whether the group took part in the match.
  bool has(std::size_t group) const noexcept { return group < size() && slots_[2 * group] != npos; }
  /// The first unit of a group and the one behind its last; npos for one that took no part.
  std::size_t begin(std::size_t group = 0) const noexcept { return has(group) ? slots_[2 * group] : npos; }
  std::size_t end(std::size_t group = 0) const noexcept { return has(group) ? slots_[2 * group + 1] : npos; }
  /// What a group took; empty for one that took no part, or is none.
  template <std::integral Number>
  std::wstring_view operator[](Number number) const noexcept {
    const auto group = static_cast<std::size_t>(number);
    return has(group) ? text_.substr(begin(group), end(group) - begin(group)) : std::wstring_view();
  }
  /// The same by the group's name. Throws std::out_of_range where the pattern has none of that name.
  std::wstring_view operator[](std::wstring_view name) const;
  /// What was matched.
  std::wstring str() const { return std::wstring((*this)[0]); }
  /// What stands in front of the match, and behind it.
  std::wstring_view before() const noexcept { return text_.substr(0, slots_.empty() ? 0 : slots_[0]); }
  std::wstring_view after() const noexcept { return slots_.empty() ? text_ : text_.substr(slots_[1]); }

  static constexpr std::size_t npos = std::wstring_view::npos;  ///< No place.

 private:
  friend class pattern;

  std::wstring_view text_;
  std::vector<std::size_t> slots_;
  std::shared_ptr<const nfa::program> program_;
};

/// A pattern, compiled. Copies share what it became; threads may use one at once.
///
/// Among several matches that begin at the same place, the first one counts in the order of Perl:
/// alternatives from the left, greedy repetitions as long as possible, lazy ones as short as possible. A
/// character beyond U+FFFF is one character.
///
/// - `.` is a character, but LF, CR, U+2028, U+2029.
/// - `[a-zñ]` and `[^0-9]` are a character that is, or is not, in the class.
/// - `\d`, `\w`, `\s` are a digit 0 to 9, a letter (see match()), digit or `_`, a blank; `\D`, `\W`, `\S` all
///   others.
/// - `\t \n \r \f \v \0 \x41 \u00F1 \u{1F600}` are characters by their numbers.
/// - `^` and `$` are the ends of the text, or of lines; `\A` and `\z` those of the text; `\b` is a limit of a
///   word, `\B` none.
/// - `( )` is a group, `(?: )` one that takes nothing, `(?<name> )` and `(?P<name> )` have a name as well.
/// - `a|b` are alternatives.
/// - `* + ? {2} {2,} {2,5}` repeat what stands before, lazily with a `?` behind; counts go to 1,000.
///
/// A backslash makes each sign that is no letter and no digit stand for itself. Refused by pattern_error are
/// references to groups, conditions on what follows or precedes, atomic groups and possessive repetitions,
/// `[:alpha:]`, empty classes, a `{` that begins no count, unknown escapes, repetitions of what is repeated
/// already or takes nothing by itself, and patterns of more than 250 groups or some 10,000 instructions, for
/// which each turn of a counted repetition counts.
class KESTA_API pattern {
 public:
  /// Compiles it. Throws pattern_error.
  explicit pattern(std::wstring_view text, const pattern_options& how = {});
  pattern(const pattern& other);
  pattern(pattern&& other) noexcept;
  pattern& operator=(const pattern& other);
  pattern& operator=(pattern&& other) noexcept;
  ~pattern();

  /// Whether it matches the whole text, or somewhere in it.
  bool matches(std::wstring_view text) const;
  bool is_in(std::wstring_view text) const;

  /// The match with the whole text.
  pattern_match match(std::wstring_view text) const;
  /// The first match that begins at or behind `from`. What stands before `from` is still seen by `^` and
  /// `\b`.
  pattern_match search(std::wstring_view text, std::size_t from = 0) const;
  /// All matches, each behind the one before; at the end of an empty one, one that is not empty may begin.
  std::vector<pattern_match> search_all(std::wstring_view text) const;
  /// The same one by one, until `take` gives false.
  void for_each(std::wstring_view text, const std::function<bool(const pattern_match&)>& take) const;

  /// A text that goes away while the match would still look into it.
  template <std::same_as<std::wstring> Text>
  pattern_match match(Text&& text) const = delete;
  template <std::same_as<std::wstring> Text>
  pattern_match search(Text&& text, std::size_t from = 0) const = delete;
  template <std::same_as<std::wstring> Text>
  std::vector<pattern_match> search_all(Text&& text) const = delete;

  /// The text with each match replaced. In `with`, `$&` is the match, `$1` to `$99` and `${name}` its groups,
  /// `$$` a dollar sign. A `$` before anything else, and a group that the pattern has not, throw
  /// pattern_error.
  std::wstring replace(std::wstring_view text, std::wstring_view with) const;
  /// With what a function makes of each match.
  std::wstring replace(std::wstring_view text,
                       const std::function<std::wstring(const pattern_match&)>& with) const;

  /// What stands between the matches, `most` pieces at most, the last of which is then all that is left.
  /// Empty pieces count, also at the ends, but not where an empty match stands at an end of the text.
  std::vector<std::wstring> split(std::wstring_view text, std::size_t most = std::wstring_view::npos) const;

  /// The number of groups, the whole match as number 0 counted.
  std::size_t groups() const noexcept;
  /// The number of the group of that name; 0 for none.
  std::size_t group(std::wstring_view name) const noexcept;

 private:
  pattern_match found(const nfa::matcher& by, std::wstring_view text) const;

  std::shared_ptr<const nfa::program> program_;
};

}  // namespace ruvo::texto
