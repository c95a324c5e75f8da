// SPDX-License-Identifier: BSL-1.0
#pragma once

// Files opened, copied, renamed and removed.

#include <cstddef>
#include <string>
#include <string_view>

#include "system/handle.hpp"

namespace ruvo::platform {

class held_folder;

/// What a new file is to have beside its content.
struct new_file_facts {
  long long modified = 0;  // seconds since 1970-01-01 00:00:00 UTC
  bool read_only = false, hidden = false;
};

/// A file opened to be read, or a new one to be written, which nobody else may write or remove meanwhile, and
/// which where the system can vanishes with the process until it is kept. One that is only held goes when it
/// is closed.
class open_file {
 public:
  enum mode { to_read, to_create, to_hold };

  /// A new file has the rights of the one at `like`, and is encrypted if that one is.
  open_file(const std::wstring& path, mode how, const std::wstring& like = {});

  explicit operator bool() const noexcept { return static_cast<bool>(file_); }
  bool size(unsigned long long& out) const noexcept;
  /// Whether the path leads to this file now.
  bool is_at(const std::wstring& path) const;
  /// False when a new file of that name was made in another folder than the one that is held, since it had
  /// taken its place. Where a held folder keeps its place, nobody is asked.
  bool is_in(const held_folder& folder, const std::wstring& name) const;
  /// The next read begins with the file's first byte.
  bool rewind() noexcept;
  /// Reads up to `room` bytes; none at the end of the file.
  bool read(void* to, std::size_t room, std::size_t& got) noexcept;
  /// False when not all was written.
  bool write(std::string_view bytes) noexcept;
  /// The same at a place in the file. Where the calls above go on after one of these is not said.
  bool read_at(unsigned long long offset, void* to, std::size_t room, std::size_t& got) noexcept;
  bool write_at(unsigned long long offset, std::string_view bytes) noexcept;
  /// Ends the file there.
  bool cut(unsigned long long size) noexcept;
  /// Of a new file that was written and is kept.
  bool set_facts(const new_file_facts& facts) noexcept;
  /// A new file stays from now on. Until then it goes with this object, where the system can do that.
  bool keep() noexcept;
  /// Waits until the disk has all.
  bool flush() noexcept;
  bool close() noexcept;

 private:
  handle file_;
  [[maybe_unused]] bool is_marked_ = false;  // to be deleted when it is closed
};

/// Copies the content of a file, its attributes and its time of modification to another file.
bool copy_content(const std::wstring& from, const std::wstring& to);
/// Hides `to` if `from` is hidden, and the like, beside what `to` is already; where nothing stands at `from`,
/// nothing happens. False when `from` is encrypted and `to` cannot be.
bool copy_attributes(const std::wstring& from, const std::wstring& to);

enum class renaming { done, taken, refused };
/// Renames a file within its folder in one step that others see whole, and that is on the disk afterwards.
/// `taken` only when `replace` is false.
renaming rename_file(const std::wstring& from, const std::wstring& to, bool replace);

/// Removes a file, or a link to one; not a folder. What is marked as read-only stays unless that too is to
/// go. False when it was not there or could not be removed.
bool remove_file(const std::wstring& path, bool even_read_only = false);

}  // namespace ruvo::platform
