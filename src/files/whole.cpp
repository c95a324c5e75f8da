// SPDX-License-Identifier: BSL-1.0

// Whole files, read and replaced.

#include <ruvo/binary.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/files/whole.hpp>
#include <ruvo/memo.hpp>

#include <algorithm>
#include <functional>
#include <mutex>
#include <new>
#include <optional>
#include <set>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "base/immortal.hpp"
#include "base/numbers.hpp"
#include "base/utf.hpp"
#include "exc/detail.hpp"
#include "files/names.hpp"
#include "files/pieces.hpp"
#include "files/stand_in.hpp"
#include "system/file.hpp"
#include "system/folder.hpp"
#include "system/process.hpp"

namespace ruvo::files {

using detail::succeeds;

namespace {

constexpr std::string_view utf_8_mark = "\xEF\xBB\xBF", utf_16_mark = "\xFF\xFE";

/// Content that is too much for memory is a failure of the library's own too.
template <class Failure, class Body>
auto within_memory(const file& path, Body body) {
  try {
    return body();
  } catch (const std::bad_alloc&) {
  } catch (const std::length_error&) {
  }
  throw Failure(path);
}

void expect_file(const file& path) {
  platform::entry_facts found;
  const bool is_there = platform::read_facts(path, platform::links::keep, found);
  if (!is_there && platform::is_missing(path)) throw exc::fileNotFound(path);
  if (is_there && found.is_folder) throw exc::fileExpectedFile(path);
}

template <class Bytes>
Bytes read_bytes(const file& path) {
  file_reader in(path);
  Bytes out(in.left(), typename Bytes::value_type());
  in.read(out.data(), out.size());
  return out;
}

/// How many bytes at the end of `text` may be the beginning of a character.
std::size_t open_end(std::string_view text) {
  for (std::size_t count = 1; count <= std::min<std::size_t>(3, text.size()); ++count) {
    const auto byte = static_cast<unsigned char>(text[text.size() - count]);
    if (byte >= 0xC0) return count;
    if (byte < 0x80) return 0;
  }
  return 0;
}

/// Gives a file in pieces small enough to stay in the processor's cache while they are converted.
class piecewise {
 public:
  explicit piecewise(file_reader& in) : in_(in), buffer_(std::min(std::size_t{1} << 17, in.left())) {
    next();
  }

  std::string_view piece() const noexcept { return {buffer_.data() + skipped_, filled_ - skipped_}; }
  bool is_last() const noexcept { return in_.left() == 0; }
  void skip(std::size_t count) noexcept { skipped_ += count; }
  /// Goes on with what follows; the last `kept` bytes stay in front of it.
  void next(std::size_t kept = 0) {
    std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(filled_ - kept),
              buffer_.begin() + static_cast<std::ptrdiff_t>(filled_), buffer_.begin());
    const std::size_t count = std::min(buffer_.size() - kept, in_.left());
    in_.read(buffer_.data() + kept, count);
    filled_ = kept + count;
    skipped_ = 0;
  }

 private:
  file_reader& in_;
  std::vector<char> buffer_;
  std::size_t filled_ = 0, skipped_ = 0;
};

std::wstring from_utf_8(piecewise& in, std::size_t most) {
  std::wstring out;
  out.reserve(most);
  for (;;) {
    const std::string_view piece = in.piece();
    const std::size_t kept = in.is_last() ? 0 : open_end(piece);
    texto::append_utf_16(out, piece.substr(0, piece.size() - kept));
    if (in.is_last()) return out;
    in.next(kept);
  }
}

// Only the last piece can be of odd size.
std::wstring from_utf_16(piecewise& in, std::size_t most) {
  std::wstring out;
  out.reserve(most / 2);
  for (;;) {
    const std::string_view piece = in.piece();
    for (std::size_t i = 0; i + 1 < piece.size(); i += 2) {
      out += static_cast<wchar_t>(static_cast<unsigned char>(piece[i]) |
                                  static_cast<unsigned char>(piece[i + 1]) << 8);
    }
    if (in.is_last()) return out;
    in.next();
  }
}

std::wstring read_text(const file& path) {
  file_reader bytes(path);
  const std::size_t size = bytes.left();
  piecewise in(bytes);
  if (in.piece().starts_with(utf_16_mark)) {
    in.skip(utf_16_mark.size());
    return from_utf_16(in, size);
  }
  if (in.piece().starts_with(utf_8_mark)) in.skip(utf_8_mark.size());
  return from_utf_8(in, size);
}

/// The numbers of this process's stand-ins.
class numbers_in_use {
 public:
  unsigned take() {
    const std::lock_guard lock(guard_);
    taken_.insert(++last_);
    return last_;
  }
  void give_back(unsigned number) noexcept {
    const std::lock_guard lock(guard_);
    taken_.erase(number);
  }
  bool contains(unsigned long long number) {
    const std::lock_guard lock(guard_);
    return taken_.contains(number);
  }

 private:
  std::mutex guard_;
  std::set<unsigned long long> taken_;
  unsigned last_ = 0;
};

numbers_in_use& stand_ins() { return immortal<numbers_in_use>(); }

/// Whether the folder of a path is the one that is held.
bool is_folder_of(const platform::held_folder& folder, const file& path) {
  const file above = path.get_parent();
  return folder.is_at(above.empty() ? file(L".") : above);
}

/// A new file beside a target: it takes the target's place, or goes away. Both are in the folder that is
/// held, if one is.
class stand_in {
 public:
  stand_in(const file& target, bool replaces, const platform::held_folder* folder = nullptr)
      : target_(target), replaces_(replaces), folder_(folder) {}
  stand_in(const stand_in&) = delete;
  stand_in& operator=(const stand_in&) = delete;
  ~stand_in() {
    discard();
    if (number_) stand_ins().give_back(number_);
  }

  /// Makes the file, which may then be written.
  platform::open_file& open() {
    expect_folder();
    constexpr int attempts = 100;
    for (int i = 0; i < attempts; ++i) {
      file path = free_name();
      out_.emplace(path, platform::open_file::to_create, replaces_ ? target_ : file());
      if (*out_) {
        path_ = std::move(path);
        expect(!folder_ || out_->is_in(*folder_, path_.get_name()));
        is_there_ = folder_ != nullptr;
        return *out_;
      }
      if (!path.exists()) break;
    }
    throw exc::fileOsStream(target_);
  }
  platform::open_file& out() noexcept { return *out_; }

  void expect(bool done) const {
    if (!done) throw exc::fileOsStream(target_);
  }
  /// Throws when something else has taken the place of the folder that is held.
  void expect_folder() const { expect(!folder_ || is_folder_of(*folder_, target_)); }
  void close() {
    expect(out_->close());
    out_.reset();
  }

  void fill(std::string_view content) {
    expect(open().write(content));
    expect(out_->flush() && out_->keep());
    close();
  }

  void fill(const std::function<void(const put_piece&)>& produce) {
    open();
    produce([this](std::string_view piece) { expect(out_->write(piece)); });
    expect(out_->flush() && out_->keep());
    close();
  }

  // The name is taken first, so that what is discarded after a failure is never somebody else's.
  void copy(const file& from) {
    expect(open().keep());
    close();
    if (!platform::copy_content(from, path_)) throw exc::fileOsStream(target_);
    platform::entry_facts wanted, made;
    if (!platform::read_facts(from, platform::links::follow, wanted) ||
        !platform::read_facts(path_, platform::links::follow, made) || wanted.size != made.size)
      throw exc::fileStrageFileSize(target_);
  }

  file settle() {
    if (replaces_ && !platform::copy_attributes(target_, path_)) throw exc::fileOsStream(target_);
    constexpr int attempts = 1000;
    for (int i = 0; i < attempts; ++i) {
      file place = replaces_ ? target_ : autorename(target_);
      const platform::renaming result = platform::rename_file(path_, place, replaces_);
      if (result == platform::renaming::refused) break;
      if (result == platform::renaming::taken) continue;
      path_ = file();
      return place;
    }
    throw exc::fileOsStream(target_);
  }

 private:
  void discard() noexcept {
    out_.reset();
    if (path_.empty()) return;
    try {
      if (is_there_)
        folder_->remove(path_.get_name(), {});
      else
        platform::remove_file(path_, true);
    } catch (const std::bad_alloc&) {
      // The file stays.
    }
  }

  file free_name() {
    for (;;) {
      if (number_) stand_ins().give_back(number_);
      number_ = stand_ins().take();
      std::wstring name = L"~";
      texto::append_unsigned(name, platform::process_id());
      name += L'_';
      texto::append_unsigned(name, number_);
      file path = sibling(target_, name + L".tmp");
      if (!path.exists()) return path;
    }
  }

  const file& target_;
  const bool replaces_;
  const platform::held_folder* const folder_;
  bool is_there_ = false;  // the new file, in the folder that is held
  file path_;
  std::optional<platform::open_file> out_;
  unsigned number_ = 0;
};

/// Takes digits from the start of a text; false when there are none, or too many.
bool take_number(std::wstring_view& text, unsigned long long& out) {
  const std::size_t count = std::min(text.find_first_not_of(L"0123456789"), text.size());
  out = 0;
  for (const wchar_t digit : text.substr(0, count)) out = out * 10 + static_cast<unsigned>(digit - L'0');
  text.remove_prefix(count);
  return count && count < 19;
}

bool read_name(std::wstring_view name, unsigned long long& process, unsigned long long& number) {
  if (!name.starts_with(L'~')) return false;
  name.remove_prefix(1);
  if (!take_number(name, process) || !name.starts_with(L'_')) return false;
  name.remove_prefix(1);
  return take_number(name, number) && name == L".tmp";
}

void expect_writable(const file& path, bool overwrite) {
  platform::entry_facts found;
  if (!platform::read_facts(path, platform::links::follow, found)) return;
  if (found.is_folder) throw exc::fileExpectedFile(path);
  if (found.read_only && overwrite) throw exc::fileOsStream(path);
}

file write_bytes(std::string_view content, const file& path, bool overwrite) {
  expect_writable(path, overwrite);
  stand_in made(path, overwrite);
  made.fill(content);
  return made.settle();
}

file write_content(const std::wstring& text, const file& path, bool overwrite) {
  return write_bytes(texto::to_utf_8(text), path, overwrite);
}

file write_content(const memo& text, const file& path, bool overwrite) {
  return write_content(text.to_string(), path, overwrite);
}

file write_content(const binary& bytes, const file& path, bool overwrite) {
  return write_bytes({reinterpret_cast<const char*>(bytes.get_store().data()), bytes.size()}, path,
                     overwrite);
}

file write_content(const std::function<void(const put_piece&)>& produce, const file& path, bool overwrite) {
  expect_writable(path, overwrite);
  stand_in made(path, overwrite);
  made.fill(produce);
  return made.settle();
}

template <class Content>
file write_whole(const Content& content, const file& path, bool overwrite) {
  return within_memory<exc::fileOsStream>(path, [&] { return write_content(content, path, overwrite); });
}

template <class Content>
bool write_or_report(const Content& content, const file& path, exception& err, file* written,
                     bool overwrite) {
  return succeeds(err, [&] {
    file made = write_whole(content, path, overwrite);
    if (written) *written = std::move(made);
  });
}

template <class Read>
auto read_whole(const file& path, Read read) {
  return within_memory<exc::fileStrageFileSize>(path, read);
}

}  // namespace

platform::open_file open_to_read(const file& path) {
  platform::open_file opened(path, platform::open_file::to_read);
  if (opened) return opened;
  expect_file(path);
  throw exc::fileOsStream(path);
}

file_reader::file_reader(const file& path) : path_(path), in_(open_to_read(path)) {
  unsigned long long size = 0;
  if (!in_.size(size)) throw exc::fileOsStream(path);
  if (size > std::string().max_size()) throw exc::fileStrageFileSize(path);
  left_ = static_cast<std::size_t>(size);
}

void file_reader::read(void* to, std::size_t count) {
  char* at = static_cast<char*>(to);
  left_ -= count;
  while (count) {
    std::size_t got = 0;
    if (!in_.read(at, count, got)) throw exc::fileOsStream(path_);
    if (!got) throw exc::fileStrageFileSize(path_);
    at += got;
    count -= got;
  }
}

void file_reader::read_at(unsigned long long offset, void* to, std::size_t count) {
  char* at = static_cast<char*>(to);
  while (count) {
    std::size_t got = 0;
    if (!in_.read_at(offset, at, count, got)) throw exc::fileOsStream(path_);
    if (!got) throw exc::fileStrageFileSize(path_);
    at += got;
    offset += got;
    count -= got;
  }
}

struct file_writer::body {
  body(const file& target, const platform::held_folder* folder) : path(target), made(path, true, folder) {}
  file path;
  stand_in made;
};

file_writer::file_writer(const file& path, const platform::held_folder* folder)
    : body_(std::make_unique<body>(path, folder)) {
  expect_writable(body_->path, true);
  body_->made.open();
}
file_writer::file_writer(file_writer&&) noexcept = default;
file_writer& file_writer::operator=(file_writer&&) noexcept = default;
file_writer::~file_writer() = default;

void file_writer::write_at(unsigned long long offset, std::string_view piece) {
  body_->made.expect(body_->made.out().write_at(offset, piece));
}
void file_writer::cut(unsigned long long size) { body_->made.expect(body_->made.out().cut(size)); }

void file_writer::settle(const platform::new_file_facts* facts) {
  stand_in& made = body_->made;
  made.expect_folder();
  made.expect((facts || made.out().flush()) && made.out().keep());
  if (facts) made.expect(made.out().set_facts(*facts));
  made.close();
  made.settle();
}

bool read(std::wstring& out, const file& path, exception& err) {
  return succeeds(err, [&] { read_whole(path, [&] { out = read_text(path); }); });
}
bool read(memo& out, const file& path, exception& err) {
  return succeeds(err, [&] { read_whole(path, [&] { out = read_text(path); }); });
}
bool read(std::string& out, const file& path, exception& err) {
  return succeeds(err, [&] { read_whole(path, [&] { out = read_bytes<std::string>(path); }); });
}
bool read(binary& out, const file& path, exception& err) {
  return succeeds(err, [&] { out = read(path); });
}
binary read(const file& path) {
  return read_whole(path, [&] {
    binary out;
    static_cast<std::vector<unsigned char>&>(out) = read_bytes<std::vector<unsigned char>>(path);
    return out;
  });
}

bool write(const std::wstring& content, const file& path, exception& err, file* written, bool overwrite) {
  return write_or_report(content, path, err, written, overwrite);
}
bool write(const memo& content, const file& path, exception& err, file* written, bool overwrite) {
  return write_or_report(content, path, err, written, overwrite);
}
bool write(const binary& content, const file& path, exception& err, file* written, bool overwrite) {
  return write_or_report(content, path, err, written, overwrite);
}
file write(const std::wstring& content, const file& path, bool overwrite) {
  return write_whole(content, path, overwrite);
}
file write(const memo& content, const file& path, bool overwrite) {
  return write_whole(content, path, overwrite);
}
file write(const binary& content, const file& path, bool overwrite) {
  return write_whole(content, path, overwrite);
}

file write_pieces(const file& path, const std::function<void(const put_piece&)>& produce, bool overwrite) {
  return write_whole(produce, path, overwrite);
}

file copy_file(const file& from, file to) {
  expect_file(from);
  if (to.is_directory()) to = file(to, from.get_name());
  expect_writable(to, true);
  stand_in made(to, true);
  made.copy(from);
  return made.settle();
}

void copy_held(const file& from, const file& to, const platform::held_folder* source,
               const platform::held_folder& target) {
  expect_file(from);
  expect_writable(to, true);
  // A file that is replaced just then is copied again; under a system that cannot keep it from that.
  constexpr int attempts = 8;
  for (int i = 0; i < attempts && is_folder_of(target, to); ++i) {
    std::optional<platform::held_file> held;
    if (source && !held.emplace(*source, from.get_name())) break;
    stand_in made(to, true);
    made.copy(from);
    if (held && !held->is_at(from)) continue;
    made.settle();
    return;
  }
  throw exc::fileOsStream(to);
}

bool is_stand_in(const std::wstring& name) {
  unsigned long long process, number;
  return read_name(name, process, number);
}

bool is_being_written(const file& path) {
  unsigned long long process, number;
  if (!read_name(path.get_name(), process, number)) return false;
  return process == platform::process_id() ? stand_ins().contains(number) : platform::is_held(path);
}

bool is_locked(file path) { return path.is_locked(); }

}  // namespace ruvo::files
