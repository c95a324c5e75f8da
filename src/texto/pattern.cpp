// SPDX-License-Identifier: BSL-1.0

// Matching and replacing by patterns, over the pattern engine.

#include <ruvo/texto.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/ascii.hpp"
#include "texto/regex/regex.hpp"

namespace ruvo::texto {

namespace {

/// What a match is replaced by: pieces of text, each followed by a part of the match or of what is around it.
class replacement {
 public:
  explicit replacement(std::wstring_view with) {
    std::size_t from = 0;
    for (std::size_t at; (at = with.find(L'$', from)) != with.npos;) {
      const std::wstring_view text = with.substr(from, at - from);
      from = at + 1;
      const part_kind part = read(with, from);
      pieces_.push_back(
          {part == part_kind::text ? with.substr(at - text.size(), text.size() + 1) : text, part, group_});
    }
    pieces_.push_back({with.substr(from), part_kind::text, 0});
  }

  bool groups() const { return groups_; }

  /// `before` begins at the end of the match before.
  void append(std::wstring& out, const regex::matcher& match, std::wstring_view before,
              std::wstring_view after) const {
    for (const piece& each : pieces_) {
      out += each.text;
      switch (each.part) {
        case part_kind::text:
          break;
        case part_kind::group:
          out += match.group(each.group);
          break;
        case part_kind::before:
          out += before;
          break;
        case part_kind::after:
          out += after;
          break;
      }
    }
  }

 private:
  enum class part_kind { text, group, before, after };

  struct piece {
    std::wstring_view text;
    part_kind part;
    std::size_t group;
  };

  /// Reads what follows a '$'. Text: the '$' stands for itself.
  part_kind read(std::wstring_view with, std::size_t& at) {
    group_ = 0;
    const wchar_t c = at < with.size() ? with[at] : L'\0';
    if (is_digit(c)) return read_group(with, at);
    if (c != L'$' && c != L'&' && c != L'`' && c != L'\'') return part_kind::text;
    ++at;
    if (c == L'&') return part_kind::group;
    return c == L'$' ? part_kind::text : c == L'`' ? part_kind::before : part_kind::after;
  }

  /// One or two digits.
  part_kind read_group(std::wstring_view with, std::size_t& at) {
    for (int digits = 0; digits < 2 && at < with.size() && is_digit(with[at]); ++digits)
      group_ = group_ * 10 + static_cast<std::size_t>(with[at++] - L'0');
    groups_ |= group_ > 0;
    return part_kind::group;
  }

  std::vector<piece> pieces_;
  std::size_t group_ = 0;
  bool groups_ = false;
};

/// The text with each match replaced.
std::wstring replaced(regex::matcher& match, std::wstring_view text, const replacement& with) {
  std::wstring out;
  out.reserve(text.size());
  std::size_t last = 0;
  do {
    const std::wstring_view before = text.substr(last, match.begin() - last);
    out += before;
    last = match.end();
    with.append(out, match, before, text.substr(last));
  } while (match.next());
  out += text.substr(last);
  return out;
}

}  // namespace

bool match(wide_view text, std::wstring pattern) {
  const regex::program program = regex::compile(pattern, {.whole = true});
  return regex::matcher(program, text).matches_whole();
}
bool match(const std::wstring& text, std::wstring pattern) {
  return match(std::wstring_view(text), std::move(pattern));
}

std::wstring& replace(std::wstring& text, std::wstring pattern, std::wstring with) {
  const replacement wanted(with);
  const regex::program program = regex::compile(pattern, {.groups = wanted.groups()});
  if (program.literal && with.find(L'$') == with.npos) return std_replace(text, program.prefix, with, true);
  regex::matcher match(program, text);
  if (match.next()) text = replaced(match, text, wanted);
  return text;
}

std::wstring replace_(wide_view text, std::wstring pattern, std::wstring with) {
  std::wstring copy(text);
  replace(copy, std::move(pattern), std::move(with));
  return copy;
}
std::wstring replace_(const std::wstring& text, std::wstring pattern, std::wstring with) {
  return replace_(std::wstring_view(text), std::move(pattern), std::move(with));
}

}  // namespace ruvo::texto
