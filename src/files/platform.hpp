#pragma once

// What paths and whole files ask the system. None of these throws for a refusal of the system; the results
// say so. Paths are those that ruvo::file holds, of any length; one that is empty or holds a NUL names
// nothing, nor does one with ":" behind its drive.

#include <cstddef>
#include <string>
#include <string_view>

namespace ruvo::platform {

enum class entry_kind { none, file, folder };

/// What stands at the path; `none` also when the system does not tell.
entry_kind kind_of(const std::wstring& path);

struct entry_facts {
  entry_kind kind = entry_kind::none;
  bool read_only = false;
  bool hidden = false;
  unsigned long long size = 0;                        // of a file
  long long modified = 0, accessed = 0, changed = 0;  // seconds since 1970-01-01 00:00:00 UTC
};
/// False when there is nothing, or the system does not tell.
bool read_facts(const std::wstring& path, entry_facts& out);

struct owner_numbers {
  unsigned long user = 0, group = 0;
};
bool read_owner(const std::wstring& path, owner_numbers& out);

/// Whether the rights allow it, whoever else has the file open.
bool may_read(const std::wstring& path);
bool may_write(const std::wstring& path);
/// Whether somebody, this process counted, has the file open.
bool is_held(const std::wstring& path);

/// True when the folder is there afterwards.
bool make_folder(const std::wstring& path);
/// Removes a file or an empty folder; a link itself, not what it leads to.
bool erase_entry(const std::wstring& path);
/// The user's folder for temporary files; empty when the system names none.
std::wstring temporary_folder();

/// A file opened to be read, or a new one to be written, which nobody else may write or erase meanwhile, and
/// which where the system can vanishes with the process until it is kept.
class open_file {
 public:
  enum mode { to_read, to_create };

  /// A new file has the rights of the one at `like`, and is encrypted if that one is.
  open_file(const std::wstring& path, mode how, const std::wstring& like = {});
  open_file(const open_file&) = delete;
  open_file& operator=(const open_file&) = delete;
  ~open_file();

  explicit operator bool() const noexcept { return handle_ != nullptr; }
  bool size(unsigned long long& out) const noexcept;
  /// Reads up to `room` bytes; none at the end of the file.
  bool read(void* to, std::size_t room, std::size_t& got) noexcept;
  /// False when not all was written.
  bool write(std::string_view bytes) noexcept;
  /// A new file stays from now on. Until then it goes with this object, where the system can do that.
  bool keep() noexcept;
  /// Waits until the disk has all.
  bool flush() noexcept;
  bool close() noexcept;

 private:
  void* handle_;
  [[maybe_unused]] bool is_marked_ = false;  // to be deleted when it is closed
};

enum class creation { done, taken, refused };

/// Copies the content of a file, its attributes and its time of modification to another file.
bool copy_content(const std::wstring& from, const std::wstring& to);
/// Hides `to` if `from` is hidden, and the like, beside what `to` is already; where nothing stands at `from`,
/// nothing happens. False when `from` is encrypted and `to` cannot be.
bool copy_attributes(const std::wstring& from, const std::wstring& to);
/// Renames a file within its folder in one step that others see whole, and that is on the disk afterwards.
/// `taken` only when `replace` is false.
creation rename_file(const std::wstring& from, const std::wstring& to, bool replace);
/// Removes a file, even one that is marked as read-only.
void discard_file(const std::wstring& path);

}  // namespace ruvo::platform
