// SPDX-License-Identifier: BSL-1.0
#pragma once

// What the lines of a text mean in a dialect, and the ways in which a value can be written in it.

#include <ruvo/ini.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ruvo::settings {

/// No place, line, section.
inline constexpr std::uint32_t none = 0xFFFFFFFF;

constexpr bool is_line_end(wchar_t c) noexcept { return c == L'\n' || c == L'\r'; }

enum class line_kind : std::uint8_t {
  blank,
  comment,
  header,  // of a section
  entry,   // a key
  more,    // of the value above
  other
};

/// What a line is, and where its parts stand, counted from its beginning. The value is as it is written, with
/// quotation marks and all.
struct line_shape {
  line_kind kind = line_kind::blank;
  bool is_loose = false;      // whether lines around it have a say in what it is
  bool is_bare = false;       // a key with nothing between it and a value
  std::uint32_t indent = 0;   // blanks before all else
  std::uint32_t content = 0;  // without the line end
  std::uint32_t size = 0;     // with it, and with the lines in which it goes on
  std::uint32_t name = 0, name_size = 0, value = 0, value_size = 0;
};

class grammar {
 public:
  explicit grammar(const ini_dialect& dialect);

  const ini_dialect& dialect() const noexcept { return dialect_; }

  /// The line at the beginning of the text, which is not empty. `entry_indent` is the indentation of the key
  /// before it in its section, if there is one.
  line_shape line_at(std::wstring_view text, std::uint32_t entry_indent) const {
    line_shape made;
    read_line(made, text, entry_indent);
    return made;
  }
  /// The same where the shape is to be, which is still empty.
  void read_line(line_shape& made, std::wstring_view text, std::uint32_t entry_indent) const;

  /// The name that is written so.
  std::wstring name_of(std::wstring_view written) const;
  /// Whether the name that is written so is what stands there.
  bool is_plain(std::wstring_view written) const noexcept {
    return keeps_backslashes_ || written.find(L'\\') == written.npos;
  }
  std::wstring written_name(const std::wstring& name) const;

  /// The value that is written so; of several lines, the first line's.
  std::wstring value_of(std::wstring_view written) const;
  /// The ways in which a value of one line may be written where `old` stands, the nearest first. Not all of
  /// them read back as the value.
  std::vector<std::wstring> ways_to_write(const std::wstring& value, std::wstring_view old) const;

  wchar_t comment_start() const noexcept;  ///< 0 where there are no comments.
  bool begins_inline_comment(wchar_t c) const noexcept { return is(c, inline_comment); }
  /// Blanks and a separator as between the key and the value of that line; "=" where there is none.
  std::wstring gap_like(std::wstring_view line, const line_shape& shape) const;

 private:
  enum role : std::uint8_t { whole_comment = 1, inline_comment = 2, separator = 4, quote = 8, blank = 16 };

  bool is(wchar_t c, std::uint8_t which) const noexcept {
    return static_cast<char16_t>(c) < roles_.size() && (roles_[static_cast<char16_t>(c)] & which) != 0;
  }
  void give_role(const std::wstring& characters, role which);

  std::size_t skip_blanks(std::wstring_view text, std::size_t at, std::size_t end) const noexcept;
  std::size_t without_blanks(std::wstring_view text, std::size_t from, std::size_t end) const noexcept;
  std::size_t inline_end(std::wstring_view text, std::size_t from, std::size_t end) const noexcept;
  std::size_t skip_gap(std::wstring_view text, std::size_t at, std::size_t end) const noexcept;
  std::size_t behind_escape(std::wstring_view text, std::size_t at, std::size_t end) const noexcept;
  std::size_t logical_end(std::wstring_view text, std::size_t end) const noexcept;
  std::size_t behind_prefix(std::wstring_view text, std::size_t at, std::size_t end) const noexcept;
  std::size_t name_end(std::wstring_view text, std::size_t at, std::size_t end) const noexcept;
  std::size_t closing(std::wstring_view text, std::size_t from, std::size_t end) const noexcept;

  void read_shape(line_shape& made, std::wstring_view text, std::uint32_t entry_indent) const;
  bool read_header(line_shape& made, std::wstring_view line) const;
  void read_entry(line_shape& made, std::wstring_view text) const;
  void read_value(line_shape& made, std::wstring_view text, std::size_t at) const;
  bool read_quoted(line_shape& made, std::wstring_view text, std::size_t at) const;
  bool is_quoted(std::wstring_view written) const noexcept;
  bool is_broken(std::wstring_view written) const noexcept;

  const ini_dialect dialect_;
  bool keeps_backslashes_ = false;  // those in names
  bool closes_first_ = false;  // whether the next quotation mark ends a quoted value, not that of the line
  std::array<std::uint8_t, 128> roles_{};
};

/// The lines of a text, one after the other.
class line_splitter {
 public:
  /// Both are to outlive it.
  line_splitter(const grammar& rules, std::wstring_view text) noexcept : rules_(rules), text_(text) {}

  /// False behind the last line.
  bool next(line_shape& out);
  /// Where the line stands that next() gave.
  std::size_t begin() const noexcept { return begin_; }

 private:
  const grammar& rules_;
  const std::wstring_view text_;
  std::size_t begin_ = 0, end_ = 0;
  std::uint32_t entry_indent_ = none;  // of the entry before, in its section
};

}  // namespace ruvo::settings
