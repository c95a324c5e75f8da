#pragma once

// ruvo::file, a path.

#include <ruvo/api.hpp>
#include <ruvo/datetime.hpp>
#include <ruvo/fwd.hpp>

#include <cstddef>
#include <string>

namespace ruvo {

/// A path as text, kept in one form: "\" between the components, no "." component at the start, and neither
/// a separator nor "\." at the end. The root of a drive keeps its separator ("C:\"). ".." components stay,
/// except at the top of an absolute path, where they lead nowhere.
///
/// Narrow text is UTF-8, and a null pointer an empty text.
///
/// The file system is asked by get_extension() and by what stands from time_stamp() on. It is given paths of
/// any length, and each component as it is ("a." is not "a", "nul" is a file). A path that is empty or holds
/// a NUL, or ":" behind its drive, leads to nothing.
class KESTA_API file {
 public:
  file();
  file(std::nullptr_t) : file() {}
  file(const char* path);
  file(const wchar_t* path);
  file(const std::string& path);
  file(const std::wstring& path);
  /// A name inside a folder.
  file(const file& folder, const std::wstring& name);
  file(const file& other);
  file(file&& other) noexcept;
  virtual ~file();
  file& operator=(const file& other);
  file& operator=(file&& other) noexcept;
  file& operator=(const char* path);
  file& operator=(const wchar_t* path);
  file& operator=(const std::string& path);
  file& operator=(const std::wstring& path);

  void set_path(const char* path);
  void set_path(const wchar_t* path);
  void set_path(const std::string& path);
  void set_path(const std::wstring& path);

  bool empty() const noexcept { return path_.empty(); }
  const wchar_t* c_str() const noexcept { return path_.c_str(); }
  operator const std::wstring&() const noexcept { return path_; }

  /// The folder that holds this path: a root is its own parent, and that of a single relative name is empty.
  file get_parent() const;
  /// "C:\", "C:", "\" or "\\server\share"; empty for a relative path.
  file get_root() const;
  bool is_root() const;
  /// The last component with its extension; empty for a root.
  std::wstring get_name() const;
  /// get_name() cut before its last "."; whole when it has none.
  std::wstring get_simple_name() const;
  /// Empty for a directory, otherwise what follows the last "." of the whole path.
  /// @quirk The whole path is searched ("C:\datos.v1\leeme" gives "v1\leeme"), and a path without "." is
  /// given whole.
  std::wstring get_extension() const;
  /// This path with the name's extension replaced or added; `extension` comes without the dot.
  file change_extension(const std::wstring& extension) const;
  /// The part of the path below `base`, without regard to the case of A-Z; the whole path when it is not
  /// below it, and empty when both are the same.
  file crop(const file& base) const;
  /// Appends components.
  file& operator+=(const char* name);
  file& operator+=(const wchar_t* name);
  file& operator+=(const std::string& name);
  file& operator+=(const std::wstring& name);
  /// Moves to the parent.
  file& operator--();
  /// The path with "/" between the components.
  std::wstring unix_path() const;
  std::wstring serialize_path() const { return unix_path(); }

  /// When the file was last modified, in UTC and the canonical format of ruvo::datetime. Throws
  /// exc::fileNotFound.
  std::wstring time_stamp() const;
  /// That of files::get_mimetype().
  std::wstring get_mimetype() const;

  // False for a path that leads to nothing. What is virtual an entry of a listing answers from what the
  // listing found.

  bool exists() const;
  virtual bool is_directory() const;
  virtual bool is_file() const;
  /// A file whose extension is exe, com, bat or cmd.
  bool is_executable() const;
  bool is_hidden() const;
  /// Whether the rights allow it, whoever has the file open; for a folder, to list it and to add files to it.
  /// A file that is marked as read-only cannot be written.
  bool can_be_read() const;
  bool can_be_write() const;
  /// Whether somebody, this process counted, has the file open; false for a folder.
  bool is_locked() const;

  // These throw exc::fileNotFound for a path that leads to nothing.

  /// The last numbers of the security identifiers; 0 when the system does not tell.
  unsigned long get_owner() const;
  unsigned long get_owner_group() const;
  /// In bytes. Throws exc::fileExpectedFile for a folder.
  virtual unsigned long long size() const;
  unsigned long long length() const { return size(); }
  /// In whole seconds, rounded down. The status changes with content, name, attributes and rights; where the
  /// file system does not keep that time it is that of the last modification.
  datetime last_modified() const;
  datetime last_access() const;
  datetime last_status_changed() const;

  /// Make the folder, and with mkdirs() those above it that are missing. True when it is there afterwards,
  /// also if it was before; on failure exc::fileUnCreateFolder is copied to `*err`, unless that is null.
  bool mkdir(exception* err = nullptr) const;
  bool mkdirs(exception* err = nullptr) const;
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
