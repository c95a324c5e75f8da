// SPDX-License-Identifier: BSL-1.0
#pragma once

// Files and folders for the time being: made under names that nobody can guess, and removed at the end.

#include <ruvo/api.hpp>
#include <ruvo/file.hpp>

#include <string>

namespace ruvo::files {

/// An empty file, made where nothing had its name. The destructor removes it, whatever has become of it and
/// without a word where the system refuses; keep() lets it stay. The file is not open, so that it can be
/// written by any means, and no process that is started inherits it.
///
/// Names are the prefix, 26 random letters and digits, a point and the extension. A prefix or an extension
/// that no name may have (fault_of_name()) throws exc::fileUnsafePath; where no file can be made, and in a
/// folder that is not there, exc::fileOsStream is thrown.
class KESTA_API temporary_file {
 public:
  /// In a folder; without one in the user's folder for temporary files, which throws exc::fileNotFound when
  /// the system names none.
  explicit temporary_file(const file& folder = {}, const std::wstring& prefix = L"tmp-",
                          const std::wstring& extension = L"tmp");
  temporary_file(temporary_file&& other) noexcept;
  temporary_file& operator=(temporary_file&& other) noexcept;
  ~temporary_file();

  /// Where it is; empty after keep().
  const file& path() const noexcept { return path_; }
  /// Lets the file stay, and gives its path.
  file keep() noexcept;

 private:
  void remove() noexcept;

  file path_;
};

/// The same of a folder, which is removed with all that is in it, also what is marked as read-only; of links,
/// the links. What is open then stays, and so do the folders around it.
class KESTA_API temporary_folder {
 public:
  /// As that of temporary_file; exc::fileUnCreateFolder is thrown where no folder can be made.
  explicit temporary_folder(const file& folder = {}, const std::wstring& prefix = L"tmp-");
  temporary_folder(temporary_folder&& other) noexcept;
  temporary_folder& operator=(temporary_folder&& other) noexcept;
  ~temporary_folder();

  /// Where it is; empty after keep().
  const file& path() const noexcept { return path_; }
  /// Lets the folder stay, and gives its path.
  file keep() noexcept;

 private:
  void remove() noexcept;

  file path_;
};

}  // namespace ruvo::files
