// SPDX-License-Identifier: BSL-1.0
#pragma once

// The lines of a text of settings, with an index of their names. What is changed becomes new text behind the
// old one; the lines, which are chained in their order, say where theirs stands. What a line is made of but
// its name is read anew whenever it matters: to keep that of each line would cost more than to read some
// again. The keys of a section are indexed when they are first asked for: most programs ask for few.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "settings/grammar.hpp"
#include "settings/name_index.hpp"
#include "settings/text_encoding.hpp"

namespace ruvo::settings {

/// Throws exc::BadArgument with the name and the reason.
[[noreturn]] void refuse(const std::wstring& name, const std::wstring& reason);
/// Throws exc::BadFormat with the position of what stands at the offset.
[[noreturn]] void refuse_at(std::size_t offset);

/// A part of the line that has the shape.
inline std::wstring_view name_in(std::wstring_view line, const line_shape& shape) noexcept {
  return line.substr(shape.name, shape.name_size);
}
inline std::wstring_view value_in(std::wstring_view line, const line_shape& shape) noexcept {
  return line.substr(shape.value, shape.value_size);
}

/// A value that goes over several lines.
struct joined_value {
  explicit joined_value(std::wstring first) : text(std::move(first)) {}
  /// Of a line that follows; `written` matters of one that is part of the value.
  void add(line_kind kind, std::wstring_view written);

  std::wstring text;
  std::size_t breaks = 1;  // before what follows
};

struct kept_line {
  static constexpr std::uint8_t long_name = 0xFF;

  std::uint32_t begin = 0, size = 0;  // in the text
  std::uint32_t previous = none, next = none;
  std::uint32_t section = none;  // of a header and an entry; none where it is not seen
  line_kind kind = line_kind::blank;
  std::uint8_t name = 0, name_size = long_name;  // of a header and an entry, if both are small
  // What the index says, of lines of the same name: the first knows the last.
  mutable bool is_first = false;
  mutable std::uint32_t twin = none, last_twin = none;
};

struct kept_section {
  std::uint32_t header = none;  // the first; the top may have none
  std::uint32_t tail = none;    // behind which a key is added; none for the beginning
  mutable late_index keys{};
};

/// What a document consists of.
struct document_parts {
  std::shared_ptr<const grammar> grammar_{};
  std::wstring text_{};  // of all lines, and of what they were before
  std::vector<kept_line> lines_{};
  std::uint32_t first_ = none, last_ = none;
  std::vector<kept_section> sections_ = std::vector<kept_section>(1);
  name_index headers_{};
  std::size_t live_ = 0;  // units that lines use
  bool is_fragile_ = false;
};

class document : document_parts {
 public:
  static constexpr std::uint32_t top = 0;  // the section without a name

  explicit document(std::shared_ptr<const grammar> rules);
  document(const document& other) : document(other, std::lock_guard(other.indexing_)) {}
  document(document&& other) noexcept : document_parts(std::move(other)) {}
  document& operator=(document other) noexcept {
    static_cast<document_parts&>(*this) = std::move(other);
    return *this;
  }
  ~document() = default;

  const grammar& rules() const noexcept { return *grammar_; }
  const std::shared_ptr<const grammar>& shared_rules() const noexcept { return grammar_; }

  /// Takes a text in place of all lines.
  void parse(std::wstring text);
  std::wstring text() const;
  /// The text in as few parts as it stands in.
  std::vector<std::wstring_view> parts() const;

  /// The number of a section, or the first line of a key; none where it is missing.
  std::uint32_t find_section(std::wstring_view name) const;
  std::uint32_t find(std::wstring_view section, std::wstring_view key) const;

  /// The numbers of the sections but the first, and the first lines of the keys in one.
  std::vector<std::uint32_t> sections() const;
  std::vector<std::uint32_t> keys(std::uint32_t section) const;
  std::wstring section_name(std::uint32_t section) const;
  std::wstring name_of(std::uint32_t line) const { return grammar_->name_of(written_name(line)); }
  /// The lines of the key that count, of all those that follow its first.
  std::vector<std::uint32_t> counting(std::uint32_t first) const;
  std::uint32_t last_counting(std::uint32_t first) const noexcept;
  std::wstring value_of(std::uint32_t line) const;
  std::wstring comment_above(std::uint32_t line) const;
  /// The first line of a key or, without one, of a section.
  std::uint32_t find_line(std::wstring_view section, std::wstring_view key) const;
  /// Where the line begins in the text.
  std::size_t offset_of(std::uint32_t line) const;
  /// The first line that means nothing, or none.
  std::uint32_t first_other() const noexcept;

  /// Makes a change, all of it or, where it throws, none. Only set(), erase_key() and set_comment().
  template <class Change>
  void try_to(const Change& change) {
    before_ = {text_.size(), live_, lines_.size(), sections_.size(), first_, last_, is_fragile_, {}, {}};
    try {
      change();
      before_ = {};
    } catch (...) {
      roll_back();
      throw;
    }
  }

  // Changes. What cannot be is refused before anything is changed. Those that are not tried leave half a
  // change where memory is short.

  void set(const std::wstring& section, const std::wstring& key, const std::vector<std::wstring>& values,
           const text_encoding& bytes);
  /// Adds a section at the end, and gives its number.
  std::uint32_t add_section(const std::wstring& name, const text_encoding& bytes);
  void erase_key(std::uint32_t first);
  void erase_section(std::uint32_t section);
  void rename_key(std::uint32_t first, const std::wstring& name, const text_encoding& bytes);
  void rename_section(std::uint32_t section, const std::wstring& name, const text_encoding& bytes);
  void set_comment(std::uint32_t line, const std::wstring& text, const text_encoding& bytes);

  /// Whether a change may give other lines another meaning. It is to be tried on a copy then, which is kept
  /// if it reads_alike().
  bool is_fragile() const noexcept { return is_fragile_; }
  /// Whether the text is read as the lines have it.
  bool reads_alike() const;
  /// Drops text that no line uses any more, if it is much. Changes the numbers of lines.
  void tidy();

 private:
  struct old_section {
    std::uint32_t id, header, tail;
  };
  /// What a change that fails puts back.
  struct state_before {
    std::size_t units = 0, live = 0, lines = 0, sections = 0;
    std::uint32_t first = none, last = none;
    bool is_fragile = false;
    std::vector<std::pair<std::uint32_t, kept_line>> old_lines{};
    std::vector<old_section> old_sections{};
  };

  std::wstring_view view(std::uint32_t n) const noexcept {
    return std::wstring_view(text_).substr(lines_[n].begin, lines_[n].size);
  }
  line_shape shape(std::uint32_t n) const { return rules().line_at(view(n), indent_before(lines_[n].kind)); }
  /// What has line_at() read a line of that kind again as such.
  static std::uint32_t indent_before(line_kind kind) noexcept { return kind == line_kind::more ? 0 : none; }
  std::wstring_view written_name(std::uint32_t n) const {
    const kept_line& line = lines_[n];
    if (line.name_size == kept_line::long_name) return name_in(view(n), shape(n));
    return view(n).substr(line.name, line.name_size);
  }
  std::wstring_view written_value(std::uint32_t n) const { return value_in(view(n), shape(n)); }
  bool is(std::uint32_t n, line_kind kind) const noexcept { return n != none && lines_[n].kind == kind; }

  document(const document& other, const std::lock_guard<std::mutex>& /*no index is being made*/)
      : document_parts(other) {}

  // --- the index

  /// Where the keys that follow belong.
  struct reading {
    std::uint32_t section = top;
    bool is_first_part = true;  // of the section
  };

  void read_lines();
  void index_all();
  static void keep_name(kept_line& line, const line_shape& shape) noexcept;
  void take(std::uint32_t n, const line_shape& shape, reading& at);
  std::uint32_t take_header(std::uint32_t n, std::wstring_view written);
  void take_entry(std::uint32_t n, std::uint32_t section);
  void append_twin(std::uint32_t first, std::uint32_t n) const noexcept;
  /// Calls use(n) for the lines behind the headers of the section, up to the next ones.
  template <class Use>
  void each_line_of(std::uint32_t section, const Use& use) const;
  const name_index& keys_of(std::uint32_t section) const;
  std::unique_ptr<name_index> index_keys(std::uint32_t section) const;
  /// Adds the line's name, or the line to those of its name.
  void add_key(name_index& to, std::uint32_t n) const;
  folded_name key_name(std::wstring_view key) const;
  folded_name header_name(std::wstring_view name) const;
  std::uint32_t find_in(const name_index& names, const folded_name& name) const;
  std::uint32_t find_key(std::uint32_t section, std::wstring_view key) const;
  bool is_named(std::uint32_t n, const folded_name& name) const;
  /// The last line of an entry's value.
  std::uint32_t end_of(std::uint32_t n) const noexcept;

  // --- what is to be written

  /// An entry with its line end, and the further lines of its value.
  struct new_lines {
    std::wstring line{};
    std::vector<std::wstring> more{};
  };
  bool is_read_as(const new_lines& made, std::wstring_view name, std::wstring_view value) const;
  /// The value between what stands before and behind it.
  new_lines write_value(const std::wstring& head, std::wstring tail, std::wstring_view old,
                        const std::wstring& key, const std::wstring& value, const text_encoding& bytes) const;
  new_lines new_entry(std::uint32_t section, const std::wstring& key, const std::wstring& value,
                      const text_encoding& bytes) const;
  new_lines changed_entry(std::uint32_t n, const std::wstring& value, const text_encoding& bytes) const;
  std::wstring header_line(const std::wstring& head, const std::wstring& name, const std::wstring& tail,
                           const text_encoding& bytes) const;
  std::vector<std::wstring> comment_lines(std::uint32_t above, const std::wstring& text,
                                          const text_encoding& bytes) const;
  std::wstring line_end_near(std::uint32_t n) const;
  /// Behind which line a key of the section is added; none for the beginning.
  std::uint32_t place_in(std::uint32_t section) const noexcept;
  std::uint32_t place_at_top() const noexcept;

  // --- lines

  /// To be changed, and put back if the change fails.
  kept_line& edit_line(std::uint32_t n);
  kept_section& edit_section(std::uint32_t id);
  void roll_back() noexcept;

  void put(kept_line& into, const std::wstring& text, std::uint32_t entry_indent);
  void rewrite(std::uint32_t n, const std::wstring& text);
  /// Gives the line an end, if it has none, so that another one can follow.
  void end_line(std::uint32_t n);
  std::uint32_t insert(std::uint32_t after, const std::wstring& text, std::uint32_t entry_indent = none);
  void insert_more(std::uint32_t n, const new_lines& made);
  std::uint32_t insert_entry(std::uint32_t after, const new_lines& made, std::uint32_t section);
  std::uint32_t insert_header(const std::wstring& text);
  void change_values(std::uint32_t first, const std::vector<std::wstring>& values,
                     const text_encoding& bytes);
  void unlink(std::uint32_t n);
  void unlink_more(std::uint32_t n);
  void unlink_entry(std::uint32_t n);
  void unlink_chunk(std::uint32_t header);

  mutable std::mutex indexing_{};
  state_before before_{};
};

}  // namespace ruvo::settings
