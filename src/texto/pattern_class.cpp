// SPDX-License-Identifier: BSL-1.0

// Patterns that are compiled once, over their programs.

#include <ruvo/texto/pattern.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "base/ascii.hpp"
#include "texto/nfa/matcher.hpp"
#include "texto/nfa/program.hpp"

namespace ruvo::texto {

namespace {

std::size_t group_of(const nfa::program& made, std::wstring_view name) noexcept {
  for (const auto& [known, group] : made.names)
    if (known == name) return group;
  return 0;
}

/// What matches are replaced by: texts, each with a group behind it.
class match_replacement {
 public:
  match_replacement(std::wstring_view with, const nfa::program& made) : with_(with), made_(made) {
    std::size_t from = 0;
    for (std::size_t at; (at = with.find(L'$', from)) != with.npos;) {
      const std::wstring_view before = with.substr(from, at - from);
      from = at + 1;
      if (from < with.size() && with[from] == L'$') {
        parts_.push_back({with.substr(at - before.size(), before.size() + 1), no_group});
        ++from;
      } else {
        const std::size_t group = read_group(from);
        parts_.push_back({before, group});
      }
    }
    parts_.push_back({with.substr(from), no_group});
  }

  void append(std::wstring& out, std::wstring_view text, const std::vector<std::uint32_t>& slots) const {
    for (const part& each : parts_) {
      out += each.text;
      if (each.group == no_group || slots[2 * each.group] == nfa::none) continue;
      out += text.substr(slots[2 * each.group], slots[2 * each.group + 1] - slots[2 * each.group]);
    }
  }

 private:
  static constexpr std::size_t no_group = pattern_match::npos;

  struct part {
    std::wstring_view text;
    std::size_t group;
  };

  [[noreturn]] static void fail(const char* reason, std::size_t at) { throw pattern_error(reason, at); }

  /// Reads the group that a '$' in front of `at` speaks of.
  std::size_t read_group(std::size_t& at) const {
    const std::size_t begin = at - 1;
    const wchar_t c = at < with_.size() ? with_[at] : L'\0';
    if (c == L'&') {
      ++at;
      return 0;
    }
    if (c == L'{') return read_name(at);
    if (!is_digit(c)) fail("lo que sigue a «$» no significa nada", begin);
    std::size_t group = static_cast<std::size_t>(with_[at++] - L'0');
    if (at < with_.size() && is_digit(with_[at])) {
      const std::size_t longer = 10 * group + static_cast<std::size_t>(with_[at] - L'0');
      if (longer < made_.groups) {
        group = longer;
        ++at;
      }
    }
    if (group >= made_.groups) fail("la sustitución pide un grupo que no existe", begin);
    return group;
  }

  std::size_t read_name(std::size_t& at) const {
    const std::size_t begin = at - 1, end = with_.find(L'}', at);
    if (end == with_.npos) fail("falta «}»", begin);
    const std::size_t group = group_of(made_, with_.substr(at + 1, end - at - 1));
    if (group == 0) fail("la sustitución pide un grupo que no existe", begin);
    at = end + 1;
    return group;
  }

  std::wstring_view with_;
  const nfa::program& made_;
  std::vector<part> parts_;
};

/// The text, each match replaced by what `append` appends for it.
template <class Append>
std::wstring with_matches_replaced(const nfa::program& made, std::wstring_view text, Append append) {
  nfa::matcher match(made, text);
  std::wstring out;
  std::size_t done = 0;
  while (match.next()) {
    if (out.empty()) out.reserve(text.size());
    out += text.substr(done, match.begin() - done);
    append(out, match);
    done = match.end();
  }
  out += text.substr(done);
  return out;
}

}  // namespace

// --- errors

pattern_error::pattern_error(const std::string& reason, std::size_t position)
    : std::invalid_argument(reason + " (posición " + std::to_string(position) + ")"), position_(position) {}
pattern_error::pattern_error(const pattern_error& other) noexcept = default;
pattern_error& pattern_error::operator=(const pattern_error& other) noexcept = default;
pattern_error::~pattern_error() = default;

// --- matches

pattern_match::pattern_match() = default;
pattern_match::pattern_match(const pattern_match& other) = default;
pattern_match::pattern_match(pattern_match&& other) noexcept = default;
pattern_match& pattern_match::operator=(const pattern_match& other) = default;
pattern_match& pattern_match::operator=(pattern_match&& other) noexcept = default;
pattern_match::~pattern_match() = default;

std::wstring_view pattern_match::operator[](std::wstring_view name) const {
  if (slots_.empty()) return {};
  const std::size_t group = group_of(*program_, name);
  if (group == 0) throw std::out_of_range("invalid group name");
  return (*this)[group];
}

// --- patterns

pattern::pattern(std::wstring_view text, const pattern_options& how)
    : program_(std::make_shared<const nfa::program>(nfa::compile(text, how))) {}
pattern::pattern(const pattern& other) = default;
pattern::pattern(pattern&& other) noexcept = default;
pattern& pattern::operator=(const pattern& other) = default;
pattern& pattern::operator=(pattern&& other) noexcept = default;
pattern::~pattern() = default;

bool pattern::matches(std::wstring_view text) const { return nfa::matcher(*program_, text).match_whole(); }
bool pattern::is_in(std::wstring_view text) const { return nfa::matcher(*program_, text).search(0); }

pattern_match pattern::found(const nfa::matcher& by, std::wstring_view text) const {
  pattern_match out;
  out.text_ = text;
  out.slots_.reserve(by.slots().size());
  for (std::size_t i = 0; i < by.slots().size(); i += 2) {
    const bool took_part = by.slots()[i + 1] != nfa::none;
    for (const std::size_t at : {i, i + 1})
      out.slots_.push_back(took_part ? by.slots()[at] : pattern_match::npos);
  }
  out.program_ = program_;
  return out;
}

pattern_match pattern::match(std::wstring_view text) const {
  nfa::matcher by(*program_, text);
  return by.match_whole() ? found(by, text) : pattern_match();
}

pattern_match pattern::search(std::wstring_view text, std::size_t from) const {
  nfa::matcher by(*program_, text);
  return by.search(from) ? found(by, text) : pattern_match();
}

std::vector<pattern_match> pattern::search_all(std::wstring_view text) const {
  std::vector<pattern_match> out;
  nfa::matcher by(*program_, text);
  while (by.next()) out.push_back(found(by, text));
  return out;
}

void pattern::for_each(std::wstring_view text, const std::function<bool(const pattern_match&)>& take) const {
  nfa::matcher by(*program_, text);
  while (by.next() && take(found(by, text))) {
  }
}

std::wstring pattern::replace(std::wstring_view text, std::wstring_view with) const {
  const match_replacement wanted(with, *program_);
  return with_matches_replaced(*program_, text, [&](std::wstring& out, const nfa::matcher& match) {
    wanted.append(out, text, match.slots());
  });
}

std::wstring pattern::replace(std::wstring_view text,
                              const std::function<std::wstring(const pattern_match&)>& with) const {
  return with_matches_replaced(*program_, text, [&](std::wstring& out, const nfa::matcher& match) {
    out += with(found(match, text));
  });
}

std::vector<std::wstring> pattern::split(std::wstring_view text, std::size_t most) const {
  std::vector<std::wstring> out;
  if (most == 0) return out;
  nfa::matcher match(*program_, text);
  std::size_t done = 0;
  while (out.size() + 1 < most && match.next()) {
    const bool is_at_an_end = match.begin() == 0 || match.begin() == text.size();
    if (match.begin() == match.end() && is_at_an_end) continue;
    out.emplace_back(text.substr(done, match.begin() - done));
    done = match.end();
  }
  out.emplace_back(text.substr(done));
  return out;
}

std::size_t pattern::groups() const noexcept { return program_->groups; }
std::size_t pattern::group(std::wstring_view name) const noexcept { return group_of(*program_, name); }

}  // namespace ruvo::texto
