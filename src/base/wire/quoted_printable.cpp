// SPDX-License-Identifier: BSL-1.0

// Quoted-printable, written and read.

#include "base/wire/quoted_printable.hpp"

#include <algorithm>

#include "base/ascii.hpp"

namespace ruvo::wire {

namespace {

constexpr std::size_t longest_quoted_line = 76;
constexpr std::string_view blanks = " \t";

constexpr bool is_literal(char c) noexcept { return c > ' ' && c <= '~' && c != '='; }

/// How many bytes the character has that begins with this one.
constexpr std::size_t character_size(char first) noexcept {
  const auto byte = static_cast<unsigned char>(first);
  if (byte >= 0xF0) return 4;
  if (byte >= 0xE0) return 3;
  return byte >= 0xC0 ? 2 : 1;
}

int hex_at(std::string_view text, std::size_t at) noexcept {
  return at < text.size() ? texto::hex_value(texto::unit_of(text[at])) : -1;
}

/// The line that begins at `from`, which is moved behind it; `end` becomes what ends the line.
std::string_view next_line(std::string_view text, std::size_t& from, std::string_view& end) noexcept {
  const std::size_t feed = text.find('\n', from);
  std::string_view line = text.substr(from, feed == text.npos ? feed : feed - from);
  const bool both = feed != text.npos && line.ends_with('\r');
  if (both) line.remove_suffix(1);
  end = feed == text.npos ? std::string_view() : text.substr(both ? feed - 1 : feed, both ? 2 : 1);
  from = feed == text.npos ? text.size() : feed + 1;
  return line;
}

/// False if anything in the line was wrong.
bool read_line(std::string& out, std::string_view line) {
  bool good = true;
  for (std::size_t at = 0; at < line.size(); ++at) {
    const char c = line[at];
    const int high = c == '=' ? hex_at(line, at + 1) : -1, low = high < 0 ? -1 : hex_at(line, at + 2);
    if (low >= 0) {
      out.push_back(static_cast<char>(high << 4 | low));
      at += 2;
    } else {
      good = good && c != '=' && (c == '\t' || !texto::is_control(texto::unit_of(c)));
      out.push_back(c);
    }
  }
  return good;
}

}  // namespace

/// Ends the line softly where so much does not fit into it, with the "=" that a soft end takes.
void quoted_printable_writer::make_room(std::string& out, std::size_t size) {
  if (column_ + size < longest_quoted_line) return;
  out.append("=\r\n");
  column_ = 0;
}

void quoted_printable_writer::put_encoded(std::string& out, char c) {
  const auto byte = static_cast<unsigned char>(c);
  constexpr std::size_t size = 3;
  make_room(out, size * character_size(c));
  out.append({'=', "0123456789ABCDEF"[byte >> 4], "0123456789ABCDEF"[byte & 15]});
  column_ += size;
}

void quoted_printable_writer::put_byte(std::string& out, char c) {
  if (!is_literal(c) && blanks.find(c) == blanks.npos) return put_encoded(out, c);
  make_room(out, 1);
  if (column_ == 0 && (c == '-' || c == '.')) return put_encoded(out, c);
  out.push_back(c);
  ++column_;
}

/// Appends what was held back, in the midst of a line.
void quoted_printable_writer::release(std::string& out) {
  if (held_ == '\r') put_encoded(out, held_);
  if (held_ == ' ' || held_ == '\t') put_byte(out, held_);
  held_ = 0;
}

void quoted_printable_writer::put(std::string& out, std::string_view text) {
  for (const char c : text) {
    if (c == '\n') {
      if (held_ != '\r') finish(out);
      held_ = 0;
      out.append("\r\n");
      column_ = 0;
      continue;
    }
    // A blank before a CR may be the last of its line; if it is not, it is encoded without need.
    if (c == '\r' && held_ != '\r') finish(out);
    release(out);
    if (c == '\r' || c == ' ' || c == '\t') {
      held_ = c;
    } else {
      put_byte(out, c);
    }
  }
}

void quoted_printable_writer::finish(std::string& out) {
  if (held_ != 0) put_encoded(out, held_);
  held_ = 0;
}

std::size_t quoted_printable_size(std::string_view text) noexcept {
  const auto encoded = std::count_if(
      text.begin(), text.end(), [](char c) { return !is_literal(c) && c != ' ' && c != '\n' && c != '\r'; });
  return text.size() + 2 * static_cast<std::size_t>(encoded);
}

bool read_quoted_printable(std::string& out, std::string_view text) {
  bool good = true;
  out.reserve(out.size() + text.size());
  for (std::size_t from = 0; from < text.size();) {
    std::string_view end;
    std::string_view line = next_line(text, from, end);
    line = line.substr(0, line.find_last_not_of(blanks) + 1);
    const bool soft = line.ends_with('=');
    if (soft) line.remove_suffix(1);
    good = read_line(out, line) && good;
    if (!soft) out.append(end);
  }
  return good;
}

}  // namespace ruvo::wire
