#pragma once

// ruvo::file, a path.

#include <ruvo/api.hpp>
#include <ruvo/fwd.hpp>

#include <cstddef>
#include <string>

namespace ruvo {

/// A path as text, kept in one form: "\" between the components, no "." component at the start, and neither
/// a separator nor "\." at the end. The root of a drive keeps its separator ("C:\"). ".." components stay,
/// except at the top of an absolute path, where they lead nowhere.
///
/// Narrow text is UTF-8, and a null pointer an empty text. The file system is asked only by exists(),
/// is_directory(), is_file() and get_extension().
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

  bool exists() const;
  bool is_directory() const;
  bool is_file() const;

  /// Compare the texts.
  bool operator==(const file& other) const noexcept { return path_ == other.path_; }
  bool operator<(const file& other) const noexcept { return path_ < other.path_; }

 private:
  std::wstring path_;
};

}  // namespace ruvo
