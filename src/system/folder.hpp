// SPDX-License-Identifier: BSL-1.0
#pragma once

// Folders, which may be held open.

#include <string>

#include "system/entry.hpp"
#include "system/handle.hpp"

namespace ruvo::platform {

/// True when the folder is there afterwards.
bool make_folder(const std::wstring& path);
/// True only when this call has made the folder.
bool make_new_folder(const std::wstring& path);
/// Removes an empty folder, or a link to one. False when it was not there or could not be removed.
bool remove_folder(const std::wstring& path);
/// The user's folder for temporary files; empty when the system names none.
std::wstring temporary_folder();

/// A folder held open. What is asked of it is asked of this folder, whatever stands under its name meanwhile.
/// Where the system can, nobody renames or removes it as long as it is held to be worked on.
class held_folder {
 public:
  enum class purpose { listing, work };
  /// Why it is not held.
  enum class outcome { held, missing, link, file, refused };

  /// The folder at a path. A link in its place is followed, or not; those on the way to it are.
  held_folder(const std::wstring& path, bool follows, purpose use);
  /// The folder of that name in another one, to be worked on; a link is not followed. Makes it if it is
  /// wanted and nothing has the name.
  held_folder(const held_folder& parent, const std::wstring& name, bool makes);

  explicit operator bool() const noexcept { return static_cast<bool>(folder_); }
  outcome result() const noexcept { return result_; }
  /// The system's handle; null unless it is held.
  void* get() const noexcept { return folder_.get(); }
  entry_identity identity() const;
  /// Whether the path leads to this folder now.
  bool is_at(const std::wstring& path) const;
  /// Removes what has a name in this folder and is of the kind that was found: a file, an empty folder, or a
  /// link; also what is marked as read-only. True when nothing has the name afterwards.
  bool remove(const std::wstring& name, const entry_kind& found) const;

 private:
  handle folder_;
  outcome result_ = outcome::refused;
};

/// A file of a held folder while it is copied: where the system can, nobody replaces it meanwhile.
class held_file {
 public:
  /// Holds nothing if a link has the name.
  held_file(const held_folder& parent, const std::wstring& name);

  explicit operator bool() const noexcept { return static_cast<bool>(file_); }
  /// Whether the path leads to this file now.
  bool is_at(const std::wstring& path) const;

 private:
  handle file_;
};

/// Removes what is at a path, as held_folder::remove() does; if an identity is given, only what has it.
bool remove_found(const std::wstring& path, const entry_kind& found, const entry_identity* expected);

}  // namespace ruvo::platform
