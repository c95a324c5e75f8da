// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::file, a path, and what the file system knows of it. Reading, writing and copying are in
// <ruvo/files.hpp>.

#include <ruvo/api.hpp>
#include <ruvo/datetime.hpp>
#include <ruvo/fwd.hpp>

#include <cstddef>
#include <string>

namespace ruvo {

/// A path as text, kept in one form: `\` between the components, no "." component at the start, and neither a
/// separator nor `\.` at the end. The root of a drive keeps its separator (`C:\`). ".." components stay,
/// except at the top of an absolute path, where they lead nowhere.
///
/// Narrow text is UTF-8, and a null pointer an empty text.
///
/// The file system is asked by get_extension() and by what stands from time_stamp() on. It is given paths of
/// any length, and each component as it is ("a." is not "a", "nul" is a file). A path that is empty or holds
/// a NUL, or ":" behind its drive, leads to nothing.
class KESTA_API file {
 public:
  /// The empty path.
  file();
  file(std::nullptr_t) : file() {}
  /// From a path in any form, with `\` or `/` between its components.
  file(const char* path);
  file(const wchar_t* path);
  file(const std::string& path);
  file(const std::wstring& path);
  /// A name, or a relative path, inside a folder.
  file(const file& folder, const std::wstring& name);
  file(const file& other);
  file(file&& other) noexcept;
  virtual ~file();
  file& operator=(const file& other);
  file& operator=(file&& other) noexcept;

  /// Becomes another path, brought into the one form.
  file& operator=(const char* path);
  file& operator=(const wchar_t* path);
  file& operator=(const std::string& path);
  file& operator=(const std::wstring& path);

  /// Becomes another path, brought into the one form.
  void set_path(const char* path);
  void set_path(const wchar_t* path);
  void set_path(const std::string& path);
  void set_path(const std::wstring& path);

  /// Whether there is no path.
  bool empty() const noexcept { return path_.empty(); }
  /// The text of the path; valid until the path changes.
  const wchar_t* c_str() const noexcept { return path_.c_str(); }
  operator const std::wstring&() const noexcept { return path_; }

  /// The folder that holds this path: a root is its own parent, and that of a single relative name is empty.
  file get_parent() const;
  /// `C:\`, `C:`, `\` or `\\server\share`; empty for a relative path.
  file get_root() const;
  /// Whether the path is nothing but its root.
  bool is_root() const;
  /// The last component with its extension; empty for a root.
  std::wstring get_name() const;
  /// get_name() cut before its last "."; whole when it has none.
  std::wstring get_simple_name() const;
  /// Empty for a directory, otherwise what follows the last "." of the whole path.
  /// @quirk The whole path is searched (`C:\datos.v1\leeme` gives `v1\leeme`), and a path without "." is
  /// given whole.
  std::wstring get_extension() const;
  /// A new path, this one with the name's extension replaced or added; `extension` comes without the dot.
  /// @quirk A path that is nothing but its root has no name and is lost: `C:\` gives ".md".
  [[nodiscard]] file change_extension(const std::wstring& extension) const;
  /// The part of the path below `base`, without regard to the case of A-Z; the whole path when it is not
  /// below it, and empty when both are the same.
  file crop(const file& base) const;
  /// Appends a name or a relative path; separators at its start do not count, but for an empty path.
  file& operator+=(const char* name);
  file& operator+=(const wchar_t* name);
  file& operator+=(const std::string& name);
  file& operator+=(const std::wstring& name);
  /// Moves to the parent.
  file& operator--();
  /// The path with `/` between the components.
  std::wstring unix_path() const;
  std::wstring serialize_path() const { return unix_path(); }

  /// When the file was last modified, in UTC and the canonical format of ruvo::datetime. Throws
  /// exc::fileNotFound.
  std::wstring time_stamp() const;
  /// That of files::get_mimetype().
  std::wstring get_mimetype() const;

  /// Whether a file, a folder or a link is there.
  bool exists() const;
  /// Whether it is a folder, or a link made for one. An entry of a listing answers from what the listing
  /// found.
  virtual bool is_directory() const;
  /// Whether it is a file, or a link made for one. An entry of a listing answers from what the listing found.
  virtual bool is_file() const;
  /// A file whose extension is exe, com, bat or cmd.
  bool is_executable() const;
  /// Whether the file or folder is marked as hidden.
  bool is_hidden() const;
  /// Whether the rights allow to read the file, or to list the folder, no matter who has it open. False for a
  /// path that leads to nothing.
  bool can_be_read() const;
  /// Whether the rights allow to write the file, or to add files to the folder, no matter who has it open.
  /// False for a file that is marked as read-only, and for a path that leads to nothing.
  bool can_be_write() const;
  /// Whether somebody, this process counted, has the file open; false for a folder.
  bool is_locked() const;

  /// The last number of the owner's security identifier; 0 when the system does not know it. Throws
  /// exc::fileNotFound.
  unsigned long get_owner() const;
  /// The same of the owner's group.
  unsigned long get_owner_group() const;
  /// In bytes; an entry of a listing answers from what the listing found. Throws exc::fileNotFound, and
  /// exc::fileExpectedFile for a folder.
  virtual unsigned long long size() const;
  unsigned long long length() const { return size(); }
  /// When the content was last changed, in UTC and whole seconds, rounded down. Throws exc::fileNotFound.
  datetime last_modified() const;
  /// When the content was last read, as far as the file system keeps that; likewise.
  datetime last_access() const;
  /// When content, name, attributes or rights were last changed; where the file system does not keep that,
  /// the time of the last modification. Likewise.
  datetime last_status_changed() const;

  /// Make the folder, and with mkdirs() those above it that are missing. True when it is there afterwards,
  /// also if it was before; on failure exc::fileUnCreateFolder is copied to `*err`, unless that is null.
  bool mkdir(exception* err) const;
  bool mkdirs(exception* err) const;
  [[nodiscard]] bool mkdir() const { return mkdir(nullptr); }
  [[nodiscard]] bool mkdirs() const { return mkdirs(nullptr); }
  /// Removes the file or the empty folder; of a link, the link. Throws exc::fileNotFound, and
  /// exc::fileUnDeleted when the system refuses, as it does for files marked as read-only.
  void erase() const;

  /// Compare the texts.
  bool operator==(const file& other) const noexcept { return path_ == other.path_; }
  bool operator<(const file& other) const noexcept { return path_ < other.path_; }

 private:
  std::wstring path_;
};

}  // namespace ruvo
