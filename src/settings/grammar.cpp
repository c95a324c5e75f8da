// SPDX-License-Identifier: BSL-1.0

// What the lines of a text mean in a dialect.

#include "settings/grammar.hpp"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/simd.hpp"
#include "settings/escapes.hpp"

namespace ruvo::settings {

namespace {

std::size_t line_end(std::wstring_view text, std::size_t at) noexcept {
#ifdef KESTA_X64
  if constexpr (texto::unit_16<wchar_t>) {
    const __m128i line_feed = _mm_set1_epi16(L'\n'), carriage_return = _mm_set1_epi16(L'\r');
    for (; text.size() - at >= 8; at += 8) {
      const __m128i units = texto::load_16(text.data() + at);
      const __m128i ends =
          _mm_or_si128(_mm_cmpeq_epi16(units, line_feed), _mm_cmpeq_epi16(units, carriage_return));
      const auto found = static_cast<unsigned>(_mm_movemask_epi8(ends));
      if (found) return at + static_cast<std::size_t>(std::countr_zero(found)) / 2;
    }
  }
#endif
  const wchar_t* const units = text.data();
  while (at < text.size() && !is_line_end(units[at])) ++at;
  return at;
}

std::size_t behind_line_end(std::wstring_view text, std::size_t at) noexcept {
  if (at == text.size()) return at;
  return at + (text[at] == L'\r' && at + 1 < text.size() && text[at + 1] == L'\n' ? 2 : 1);
}

std::uint32_t offset(std::size_t at) noexcept { return static_cast<std::uint32_t>(at); }

bool is_printable(const std::wstring& value) {
  return std::none_of(value.begin(), value.end(), [](wchar_t c) { return is_unprintable(c); });
}

}  // namespace

grammar::grammar(const ini_dialect& dialect) : dialect_(dialect) {
  keeps_backslashes_ =
      dialect.escapes != ini_escapes::everywhere && dialect.continuation != ini_continuation::backslash;
  closes_first_ = !dialect.inline_comments.empty() || dialect.escapes == ini_escapes::quoted ||
                  dialect.continuation == ini_continuation::quoted;
  give_role(dialect.comment_starts, whole_comment);
  give_role(dialect.inline_comments, inline_comment);
  give_role(dialect.separators, separator);
  give_role(dialect.quotes, quote);
  give_role(L" \t\v\f", blank);
}

void grammar::give_role(const std::wstring& characters, role which) {
  for (const wchar_t c : characters) {
    const auto unit = static_cast<char16_t>(c);
    if (unit < roles_.size() && !is_line_end(c))
      roles_[unit] = static_cast<std::uint8_t>(roles_[unit] | which);
  }
}

// --- within a line

std::size_t grammar::skip_blanks(std::wstring_view text, std::size_t at, std::size_t end) const noexcept {
  const wchar_t* const units = text.data();
  while (at < end && is(units[at], blank)) ++at;
  return at;
}

/// The end of the text without the blanks before it.
std::size_t grammar::without_blanks(std::wstring_view text, std::size_t from,
                                    std::size_t end) const noexcept {
  const wchar_t* const units = text.data();
  while (end > from && is(units[end - 1], blank)) --end;
  return end;
}

/// Where a comment begins behind a blank, or the end.
std::size_t grammar::inline_end(std::wstring_view text, std::size_t from, std::size_t end) const noexcept {
  if (dialect_.inline_comments.empty()) return end;
  for (std::size_t at = std::max<std::size_t>(from, 1); at < end; ++at)
    if (is(text[at], inline_comment) && is(text[at - 1], blank)) return at;
  return end;
}

/// Behind blanks, and line ends that are no part of the text.
std::size_t grammar::skip_gap(std::wstring_view text, std::size_t at, std::size_t end) const noexcept {
  for (;;) {
    at = skip_blanks(text, at, end);
    const bool goes_on = dialect_.continuation == ini_continuation::backslash && at + 1 < end &&
                         text[at] == L'\\' && is_line_end(text[at + 1]);
    if (!goes_on) return at;
    at = behind_line_end(text, at + 1);
  }
}

/// Behind a "\" and what it stands before.
std::size_t grammar::behind_escape(std::wstring_view text, std::size_t at, std::size_t end) const noexcept {
  if (at + 1 >= end) return end;
  if (is_line_end(text[at + 1])) return std::min(skip_blanks(text, behind_line_end(text, at + 1), end), end);
  return at + 2;
}

/// The end of the last line in which the line that ends there goes on.
std::size_t grammar::logical_end(std::wstring_view text, std::size_t end) const noexcept {
  if (dialect_.continuation != ini_continuation::backslash) return end;
  for (std::size_t from = 0; end < text.size();) {
    std::size_t first = end;
    while (first > from && text[first - 1] == L'\\') --first;
    if ((end - first) % 2 == 0) break;
    from = behind_line_end(text, end);
    end = line_end(text, from);
  }
  return end;
}

std::size_t grammar::behind_prefix(std::wstring_view text, std::size_t at, std::size_t end) const noexcept {
  const std::size_t behind = at + dialect_.key_prefix.size();
  if (dialect_.key_prefix.empty() || behind >= end || !text.substr(at).starts_with(dialect_.key_prefix) ||
      !is(text[behind], blank))
    return at;
  const std::size_t name = skip_blanks(text, behind, end);
  return name < end && !is(text[name], separator) ? name : at;
}

std::size_t grammar::name_end(std::wstring_view text, std::size_t at, std::size_t end) const noexcept {
  const bool is_escaped = dialect_.escapes == ini_escapes::everywhere;
  const auto stops = static_cast<std::uint8_t>(dialect_.blank_separates ? separator | blank : separator);
  const wchar_t* const units = text.data();
  while (at < end && !is(units[at], stops))
    at = is_escaped && units[at] == L'\\' ? behind_escape(text, at, end) : at + 1;
  return at;
}

/// Where the quoted value that begins there ends, npos where it does not.
std::size_t grammar::closing(std::wstring_view text, std::size_t from, std::size_t end) const noexcept {
  const wchar_t mark = text[from];
  const bool is_escaped = dialect_.escapes == ini_escapes::quoted && mark == L'"';
  for (std::size_t at = from + 1; at < end; ++at) {
    if (text[at] == mark) return at;
    if (is_escaped && text[at] == L'\\') ++at;
  }
  return std::wstring_view::npos;
}

// --- lines

// A CR at the end goes together with an LF that may come to stand behind it.
void grammar::read_line(line_shape& made, std::wstring_view text, std::uint32_t entry_indent) const {
  read_shape(made, text, entry_indent);
  if (made.size == made.content + 1 && text[made.content] == L'\r') made.is_loose = true;
}

void grammar::read_shape(line_shape& made, std::wstring_view text, std::uint32_t entry_indent) const {
  const std::size_t end = line_end(text, 0), first = skip_blanks(text, 0, end);
  made.indent = offset(first);
  made.content = offset(end);
  made.size = offset(behind_line_end(text, end));
  if (first == end) return;
  if (is(text[first], whole_comment)) {
    made.kind = line_kind::comment;
    return;
  }
  const bool is_indented = dialect_.continuation == ini_continuation::indented;
  if (is_indented && entry_indent != none && first > entry_indent) {
    made.kind = line_kind::more;
    made.value = offset(first);
    made.value_size = offset(without_blanks(text, first, inline_end(text, first, end)) - first);
    return;
  }
  made.is_loose = is_indented && first > 0;
  if (dialect_.has_sections && text[first] == L'[' && read_header(made, text.substr(0, end))) return;
  read_entry(made, text);
}

bool grammar::read_header(line_shape& made, std::wstring_view line) const {
  const std::size_t open = made.indent;
  const std::size_t close = line.substr(0, inline_end(line, open, line.size())).rfind(L']');
  if (close == line.npos || close <= open) return false;
  const std::size_t name = skip_blanks(line, open + 1, close);
  made.kind = line_kind::header;
  made.name = offset(name);
  made.name_size = offset(without_blanks(line, name, close) - name);
  return true;
}

void grammar::read_entry(line_shape& made, std::wstring_view text) const {
  const std::size_t end = logical_end(text, made.content);
  made.content = offset(end);
  made.size = offset(behind_line_end(text, end));
  const std::size_t name = behind_prefix(text, made.indent, end);
  const std::size_t cut = inline_end(text, name, end);  // of what may be no more than a key
  std::size_t at = name_end(text, name, cut);
  const std::size_t behind_name = without_blanks(text, name, at);
  made.kind = line_kind::other;
  const std::wstring_view written = text.substr(name, behind_name - name);
  if (written.empty() || (!is_plain(written) && name_of(written).empty())) return;
  if (dialect_.blank_separates) at = skip_gap(text, at, cut);
  const bool is_separated = at < cut && is(text[at], separator);
  if (!is_separated && at == cut && !dialect_.bare_keys) return;
  made.kind = line_kind::entry;
  made.name = offset(name);
  made.name_size = offset(behind_name - name);
  made.value = made.name + made.name_size;
  made.is_bare = !is_separated && (!dialect_.blank_separates || at == behind_name);
  if (!made.is_bare) read_value(made, text, skip_gap(text, is_separated ? at + 1 : at, end));
}

void grammar::read_value(line_shape& made, std::wstring_view text, std::size_t at) const {
  made.value = offset(at);
  if (at < made.content && is(text[at], quote) && closes_first_) {
    if (read_quoted(made, text, at)) return;
    if (dialect_.continuation == ini_continuation::quoted) made.is_loose = true;
  }
  std::size_t end = inline_end(text, at, made.content);
  if (!dialect_.keeps_last_blanks) end = without_blanks(text, at, end);
  made.value_size = offset(end - at);
}

/// Behind the closing mark there may be a comment only.
bool grammar::read_quoted(line_shape& made, std::wstring_view text, std::size_t at) const {
  const bool goes_on = dialect_.continuation == ini_continuation::quoted;
  const std::size_t close = closing(text, at, goes_on ? text.size() : made.content);
  if (close == text.npos) return false;
  const std::size_t end = goes_on ? line_end(text, close) : made.content;
  const std::size_t rest = skip_blanks(text, close + 1, end);
  if (rest < end && !is(text[rest], inline_comment)) return false;
  made.value_size = offset(close + 1 - at);
  made.content = offset(end);
  made.size = offset(behind_line_end(text, end));
  return true;
}

bool line_splitter::next(line_shape& out) {
  begin_ = end_;
  if (begin_ == text_.size()) return false;
  out = {};
  rules_.read_line(out, text_.substr(begin_), entry_indent_);
  if (out.kind == line_kind::header) entry_indent_ = none;
  if (out.kind == line_kind::entry) entry_indent_ = out.indent;
  end_ += out.size;
  return true;
}

// --- names and values

/// Whether it goes over several lines that a "\" joins.
bool grammar::is_broken(std::wstring_view written) const noexcept {
  return dialect_.continuation == ini_continuation::backslash &&
         std::any_of(written.begin(), written.end(), is_line_end);
}

std::wstring grammar::name_of(std::wstring_view written) const {
  if (is_plain(written)) return std::wstring(written);
  if (is_broken(written)) return name_of(joined(written));
  return dialect_.escapes == ini_escapes::everywhere ? unescaped(written) : std::wstring(written);
}

std::wstring grammar::written_name(const std::wstring& name) const {
  return dialect_.escapes == ini_escapes::everywhere ? escaped_name(name) : name;
}

bool grammar::is_quoted(std::wstring_view written) const noexcept {
  if (written.size() < 2 || !is(written[0], quote) || written.back() != written[0]) return false;
  return !closes_first_ || closing(written, 0, written.size()) == written.size() - 1;
}

std::wstring grammar::value_of(std::wstring_view written) const {
  if (is_broken(written)) return value_of(joined(written));
  if (is_quoted(written)) {
    const std::wstring_view inner = written.substr(1, written.size() - 2);
    if (dialect_.escapes == ini_escapes::quoted && written[0] == L'"') return unescaped_quoted(inner);
    return with_line_feeds(inner);
  }
  return name_of(written);
}

std::vector<std::wstring> grammar::ways_to_write(const std::wstring& value, std::wstring_view old) const {
  if (dialect_.escapes == ini_escapes::everywhere) return {escaped_value(value)};
  std::vector<std::wstring> ways;
  const bool is_bare = is_printable(value);
  const auto add_quoted = [&](wchar_t mark) {
    if (dialect_.escapes == ini_escapes::quoted && mark == L'"') {
      if (can_be_quoted(value)) ways.push_back(mark + escaped_quoted(value) + mark);
    } else if (is_bare) {
      ways.push_back(mark + value + mark);
    }
  };
  if (is_quoted(old)) add_quoted(old[0]);
  // What begins with a mark would go on to the next one, wherever that is.
  if (is_bare && (value.empty() || !closes_first_ || !is(value[0], quote))) ways.push_back(value);
  for (const wchar_t mark : dialect_.quotes)
    if (is(mark, quote)) add_quoted(mark);
  return ways;
}

wchar_t grammar::comment_start() const noexcept {
  for (const wchar_t c : dialect_.comment_starts)
    if (is(c, whole_comment)) return c;
  return 0;
}

std::wstring grammar::gap_like(std::wstring_view line, const line_shape& shape) const {
  const std::size_t from = shape.name + shape.name_size;
  const std::wstring_view gap = line.substr(from, shape.value - from);
  const auto is_separator = [this](wchar_t c) { return is(c, separator); };
  const auto found = std::find_if(gap.begin(), gap.end(), is_separator);
  if (found == gap.end()) return {dialect_.separators.empty() ? L'=' : dialect_.separators[0]};
  const bool before = is(gap.front(), blank);
  const bool behind = found + 1 == gap.end() ? before && shape.value_size == 0 : is(found[1], blank);
  return (before ? L" " : L"") + std::wstring(1, *found) + (behind ? L" " : L"");
}

}  // namespace ruvo::settings
