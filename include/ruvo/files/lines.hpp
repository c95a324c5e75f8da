// SPDX-License-Identifier: BSL-1.0
#pragma once

// Files line by line: adding to the end of one, and reading one of any size, also while it grows.

#include <ruvo/api.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/file.hpp>
#include <ruvo/fwd.hpp>
#include <ruvo/texto/charset.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>

namespace ruvo::files {

// --- adding to the end of a file

// The file is made if it is missing; the folder has to be there. Others may read and write it meanwhile. What
// one call adds is one piece: processes that add to one file at once do not mix their pieces, as long as all
// add by these functions, or by writes that the system itself puts at the end. Of what a full disk took in
// part nothing stays, unless another process holds up the turn for more than 200 milliseconds.
//
// Text is UTF-8 (lone surrogates become U+FFFD), but UTF-16 behind the mark of such a file. Failures:
// exc::fileExpectedFile where a folder stands, exc::fileOsStream when the system refuses. The forms with an
// exception copy the failure to it and give false, the others throw.

/// Adds a text.
KESTA_API bool append_text(const file& path, std::wstring_view text, exception& err);
KESTA_API void append_text(const file& path, std::wstring_view text);
/// Adds a text with CR LF behind it. What stands behind the file's last line end is continued.
KESTA_API bool append_line(const file& path, std::wstring_view line, exception& err);
KESTA_API void append_line(const file& path, std::wstring_view line);
/// Adds bytes as they are.
KESTA_API bool append_bytes(const file& path, std::string_view bytes, exception& err);
KESTA_API void append_bytes(const file& path, std::string_view bytes);

// --- reading by lines

/// What ends a line. What a file has behind its last line end is a line, too, unless it is empty.
enum class line_ends : std::uint8_t {
  lf,        ///< LF, and a CR before it belongs to the end. Other CRs are characters.
  any,       ///< CR LF, LF, and a CR alone.
  plain_lf,  ///< LF alone; a CR before it is a character of the line.
  cr         ///< CR alone.
};

/// How lines are read.
struct line_options {
  line_ends ends = line_ends::lf;  ///< What ends a line.
  /// The encoding where the file has no mark at its start; a mark counts more, and is no part of a line.
  texto::charset encoding = texto::charset::utf_8;
  /// Without a mark, the encoding is what guess_charset() makes of the first 64 KB instead.
  bool guesses = false;
  /// The file goes on to be written: its end is not the last one. See line_reader::state().
  bool follows = false;
  /// A line of more bytes than this is exc::fileStrageFileSize.
  std::size_t longest = std::size_t{1} << 30;
};

/// Reads a file line by line, in pieces of 64 KB; of the file no more than that is in memory, or the longest
/// line. Others may read, write, rename and remove it meanwhile.
///
///     for (const std::wstring& line : ruvo::files::line_reader(path)) ...
///
/// Failures are thrown: exc::fileNotFound, exc::fileExpectedFile for a folder, exc::fileOsStream when the
/// system refuses to read, exc::fileStrageFileSize for a line that is longer than allowed or than memory. A
/// reader belongs to one thread at a time.
class KESTA_API line_reader {
 public:
  /// Why there was no line.
  enum class state : std::uint8_t {
    reading,    ///< There was one.
    at_end,     ///< The end of the file; when it is followed, for now: next() may be called again later.
    truncated,  ///< Followed only. The file has become shorter than what was read: the next call reads from
                ///< its start on. What was kept of an unfinished line is dropped.
    replaced    ///< Followed only. Another file has the name, and the old one was read to its end: the next
                ///< call reads from the new one's start on.
  };

  /// Opens the file.
  explicit line_reader(const file& path, const line_options& how = {});
  line_reader(line_reader&& other) noexcept;
  line_reader& operator=(line_reader&& other) noexcept;
  ~line_reader();

  /// Replaces `line` by the next one, without its end, and uses its memory. False when there is none, and
  /// `line` is empty then.
  ///
  /// Of a file that is followed, what stands behind the last line end is kept back until the line is whole.
  /// When others cut the file and it grows beyond what was read between two calls, nobody notices.
  bool next(std::wstring& line);
  /// The same with the bytes of the line as they are in the file. They stay until the next call.
  bool next_bytes(std::string_view& line);

  /// What the last call of next() found.
  state get_state() const noexcept;
  /// What the file is taken for: by its mark, the guess, or what the options say.
  const texto::charset_guess& get_charset() const noexcept;
  /// How many parts of the lines so far were no characters of the encoding, and became U+FFFD.
  unsigned long long count_replaced() const noexcept;
  /// The number of the last line, from 1 on; it begins anew with another file.
  unsigned long long line_number() const noexcept;
  /// Where the next line begins, in bytes from the start of the file.
  unsigned long long position() const noexcept;

  /// An input iterator over the lines that are left.
  class iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = std::wstring;
    using difference_type = std::ptrdiff_t;
    using pointer = const std::wstring*;
    using reference = const std::wstring&;

    iterator() = default;
    /// The line.
    reference operator*() const noexcept { return from_->line(); }
    pointer operator->() const noexcept { return &from_->line(); }
    /// Reads the next line; at the end the iterator becomes that of end().
    iterator& operator++() {
      if (!from_->step()) from_ = nullptr;
      return *this;
    }
    void operator++(int) { ++*this; }
    /// Whether both are at the end, or of one reader.
    bool operator==(const iterator& other) const noexcept { return from_ == other.from_; }

   private:
    friend class line_reader;
    explicit iterator(line_reader* from) : from_(from) { ++*this; }

    line_reader* from_ = nullptr;
  };

  /// Reads on from where the reader is; the line of an iterator stays until the next one.
  iterator begin() { return iterator(this); }
  iterator end() noexcept { return {}; }

 private:
  class source;

  const std::wstring& line() const noexcept;
  bool step();

  std::unique_ptr<source> source_;
};

/// Calls `take` for each line, until it gives false or the file ends. False with the failure in `err`, which
/// are those of line_reader; what `take` throws comes to the caller.
KESTA_API bool read_lines(const file& path, const std::function<bool(const std::wstring&)>& take,
                          exception& err, const line_options& how = {});

}  // namespace ruvo::files
