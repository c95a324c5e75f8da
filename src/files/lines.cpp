// SPDX-License-Identifier: BSL-1.0

// Files read line by line.

#include <ruvo/exc.hpp>
#include <ruvo/files/lines.hpp>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "files/pieces.hpp"
#include "system/file.hpp"

namespace ruvo::files {

namespace {

constexpr std::size_t piece = 64 << 10;  // bytes

/// Whether the bytes may become a byte order mark when more follow.
bool may_become_mark(std::string_view bytes) noexcept {
  return bytes.empty() || bytes == "\xEF" || bytes == "\xEF\xBB" || bytes == "\xFF" || bytes == "\xFE";
}

}  // namespace

/// The file and what was read of it: buffer_[begin_, end_) are bytes of lines that were not given yet, and up
/// to scanned_ no line ends in them.
class line_reader::source {
 public:
  source(const file& path, const line_options& how)
      : path_(path), how_(how), in_(open_to_read(path_)), buffer_(piece) {}

  bool next(std::string_view& out) {
    out = {};
    state_ = state::reading;
    for (;;) {
      if (is_started_ && find_line(out)) break;
      if (fill()) continue;
      if (can_start()) {
        start();
      } else if (how_.follows ? !look_around(out) : !take_rest(out)) {
        return false;
      } else if (!out.empty()) {
        break;
      }
    }
    ++number_;
    return true;
  }

  bool next(std::wstring& out) {
    std::string_view bytes;
    out.clear();
    if (!next(bytes)) return false;
    within_memory([&] { replaced_ += texto::append_decoded(out, bytes, charset_.what); });
    return true;
  }

  state get_state() const noexcept { return state_; }
  const texto::charset_guess& get_charset() const noexcept { return charset_; }
  unsigned long long count_replaced() const noexcept { return replaced_; }
  unsigned long long line_number() const noexcept { return number_; }
  unsigned long long position() const noexcept { return read_ - (end_ - begin_); }

  bool step() { return next(kept_line_); }
  const std::wstring& line() const noexcept { return kept_line_; }

 private:
  bool is_wide() const noexcept {
    return charset_.what == texto::charset::utf_16_le || charset_.what == texto::charset::utf_16_be;
  }
  std::size_t unit_size() const noexcept { return is_wide() ? 2 : 1; }
  std::string_view kept() const noexcept { return {buffer_.data() + begin_, end_ - begin_}; }

  template <class Work>
  void within_memory(Work work) {
    try {
      return work();
    } catch (const std::bad_alloc&) {
    } catch (const std::length_error&) {
    }
    throw exc::fileStrageFileSize(path_);
  }

  void expect_length(std::size_t line) const {
    if (line > how_.longest) throw exc::fileStrageFileSize(path_);
  }

  // --- bytes

  /// Reads some more bytes; false at the end of the file.
  bool fill() {
    make_room();
    std::size_t got = 0;
    if (!in_.read(buffer_.data() + end_, std::min(piece, buffer_.size() - end_), got))
      throw exc::fileOsStream(path_);
    end_ += got;
    read_ += got;
    if (!is_started_ && got && !(how_.guesses && end_ < piece) && !may_become_mark(kept())) start();
    return got > 0;
  }

  /// What was kept goes to the front; a buffer that is half full of one line grows.
  void make_room() {
    if (begin_ > 0) {
      std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
      end_ -= begin_;
      scanned_ -= begin_;
      begin_ = 0;
    }
    constexpr std::size_t most_end = 3;  // a CR in two bytes and an odd byte, of the end of a line perhaps
    if (is_started_ && end_ > most_end) expect_length(end_ - most_end);
    if (buffer_.size() - end_ < piece / 2) within_memory([this] { buffer_.resize(2 * buffer_.size()); });
  }

  /// Whether the encoding can be decided for at the end of the file, and is not yet.
  bool can_start() const noexcept {
    return !is_started_ && end_ > begin_ && !(how_.follows && may_become_mark(kept()));
  }

  /// Decides for the encoding.
  void start() {
    const texto::charset_guess guess = texto::guess_charset(kept(), false);
    charset_ = guess.mark || how_.guesses ? guess : texto::charset_guess{.what = how_.encoding};
    begin_ = scanned_ = guess.mark;
    is_started_ = true;
  }

  /// From the start of another content.
  void start_anew(state why) noexcept {
    begin_ = scanned_ = end_ = 0;
    read_ = number_ = 0;
    is_started_ = is_behind_cr_ = false;
    state_ = why;
  }

  // --- lines

  bool is_unit(std::size_t at, char c) const noexcept {
    if (!is_wide()) return buffer_[at] == c;
    const std::size_t low = charset_.what == texto::charset::utf_16_le ? 0 : 1;
    return buffer_[at + low] == c && buffer_[at + 1 - low] == '\0';
  }

  /// The first place from scanned_ on where a line ends; end_, or the odd byte there, for none.
  std::size_t find_end() const noexcept {
    const char* const from = buffer_.data() + scanned_;
    if (!is_wide() && how_.ends != line_ends::any) {
      const void* const found = std::memchr(from, how_.ends == line_ends::cr ? '\r' : '\n', end_ - scanned_);
      return found ? static_cast<std::size_t>(static_cast<const char*>(found) - buffer_.data()) : end_;
    }
    const std::size_t unit = unit_size();
    std::size_t at = scanned_;
    for (; at + unit <= end_; at += unit) {
      if (how_.ends != line_ends::cr && is_unit(at, '\n')) break;
      if ((how_.ends == line_ends::cr || how_.ends == line_ends::any) && is_unit(at, '\r')) break;
    }
    return at;
  }

  /// A line whose end is in the buffer.
  bool find_line(std::string_view& out) {
    const std::size_t unit = unit_size();
    if (is_behind_cr_) {  // its LF may have come in the meantime
      if (end_ - begin_ < unit) return false;
      is_behind_cr_ = false;
      if (is_unit(begin_, '\n')) scanned_ = begin_ += unit;
    }
    const std::size_t found = find_end();
    scanned_ = found;
    if (end_ - found < unit) return false;
    std::size_t end = found;
    if (how_.ends == line_ends::lf && end - begin_ >= unit && is_unit(end - unit, '\r')) end -= unit;
    expect_length(end - begin_);
    out = {buffer_.data() + begin_, end - begin_};
    is_behind_cr_ = how_.ends == line_ends::any && is_unit(found, '\r');
    begin_ = scanned_ = found + unit;
    return true;
  }

  /// What stands behind the last line end; false when nothing does.
  bool take_rest(std::string_view& out) {
    expect_length(end_ - begin_);
    out = kept();
    begin_ = scanned_ = end_;
    if (out.empty()) state_ = state::at_end;
    return !out.empty();
  }

  // --- files that others write

  /// At the end of the file for now: true when there is more of it, or a rest of a file that is no more.
  bool look_around(std::string_view& out) {
    unsigned long long size = 0;
    if (!in_.size(size)) throw exc::fileOsStream(path_);
    if (size < read_) {
      if (!in_.rewind()) throw exc::fileOsStream(path_);
      start_anew(state::truncated);
      return false;
    }
    state_ = state::at_end;
    if (in_.is_at(path_)) return false;
    platform::open_file other(path_, platform::open_file::to_read);
    if (!other) return false;  // the name is free for the moment
    state_ = state::reading;
    if (fill() || take_rest(out)) return true;
    in_ = std::move(other);
    start_anew(state::replaced);
    return false;
  }

  file path_;
  line_options how_;
  platform::open_file in_;
  std::vector<char> buffer_;
  std::size_t begin_ = 0, scanned_ = 0, end_ = 0;
  unsigned long long read_ = 0, number_ = 0, replaced_ = 0;
  std::wstring kept_line_;  // of the iterators
  texto::charset_guess charset_;
  state state_ = state::reading;
  bool is_started_ = false;    // the encoding is known
  bool is_behind_cr_ = false;  // an LF that comes next belongs to the line before
};

line_reader::line_reader(const file& path, const line_options& how)
    : source_(std::make_unique<source>(path, how)) {}
line_reader::line_reader(line_reader&& other) noexcept = default;
line_reader& line_reader::operator=(line_reader&& other) noexcept = default;
line_reader::~line_reader() = default;

bool line_reader::next(std::wstring& line) { return source_->next(line); }
bool line_reader::next_bytes(std::string_view& line) { return source_->next(line); }
line_reader::state line_reader::get_state() const noexcept { return source_->get_state(); }
const texto::charset_guess& line_reader::get_charset() const noexcept { return source_->get_charset(); }
unsigned long long line_reader::count_replaced() const noexcept { return source_->count_replaced(); }
unsigned long long line_reader::line_number() const noexcept { return source_->line_number(); }
unsigned long long line_reader::position() const noexcept { return source_->position(); }

const std::wstring& line_reader::line() const noexcept { return source_->line(); }
bool line_reader::step() { return source_->step(); }

bool read_lines(const file& path, const std::function<bool(const std::wstring&)>& take, exception& err,
                const line_options& how) {
  std::wstring line;
  std::optional<line_reader> in;
  exception failure;
  const auto is_next = [&] {  // what `take` throws may be of the same class
    try {
      if (!in) in.emplace(path, how);
      return in->next(line);
    } catch (const exc::FileException& thrown) {
      thrown.copy_on(failure);
      return false;
    }
  };
  while (is_next() && take(line)) {
  }
  if (failure.WRONG()) failure.copy_on(err);
  return failure.OK();
}

}  // namespace ruvo::files
