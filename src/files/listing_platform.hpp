#pragma once

// What listings and tree operations ask the system. None of these throws for a refusal of the system; the
// results say so. Paths are those that ruvo::file holds, of any length.

#include <memory>
#include <string>

namespace ruvo::platform {

/// What a folder knows of an entry.
struct found_facts {
  bool is_folder = false;
  bool is_link = false;         // leads elsewhere: a symbolic link, a junction, a mounted volume
  unsigned long long size = 0;  // of a file
};

struct found_entry : found_facts {
  std::wstring name;
};

/// What tells a file or folder from all others.
struct entry_identity {
  unsigned long long volume = 0, index = 0;
  bool operator==(const entry_identity&) const = default;
};

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
  held_folder(const held_folder&) = delete;
  held_folder& operator=(const held_folder&) = delete;
  ~held_folder();

  explicit operator bool() const noexcept { return result_ == outcome::held; }
  outcome result() const noexcept { return result_; }
  void* handle() const noexcept { return handle_; }
  entry_identity identity() const;
  /// Whether the path leads to this folder now.
  bool is_at(const std::wstring& path) const;
  /// Removes what has a name in this folder and is of the kind that was found: a file, an empty folder, or a
  /// link; also what is marked as read-only. True when nothing has the name afterwards.
  bool remove(const std::wstring& name, const found_facts& found) const;

 private:
  void* handle_ = nullptr;
  outcome result_ = outcome::refused;
};

/// A file of a held folder while it is copied: where the system can, nobody replaces it meanwhile.
class held_file {
 public:
  /// Holds nothing if a link has the name.
  held_file(const held_folder& parent, const std::wstring& name);
  held_file(const held_file&) = delete;
  held_file& operator=(const held_file&) = delete;
  ~held_file();

  explicit operator bool() const noexcept { return handle_ != nullptr; }
  /// Whether the path leads to this file now.
  bool is_at(const std::wstring& path) const;

 private:
  void* handle_ = nullptr;
};

/// Reads the entries of a folder, which has to be held meanwhile, in the order in which the system has them,
/// but not "." and "..". One at a time for one held folder.
class folder_reader {
 public:
  explicit folder_reader(const held_folder& folder);
  folder_reader(const folder_reader&) = delete;
  folder_reader& operator=(const folder_reader&) = delete;
  ~folder_reader();

  /// False when there is none left, or the system refuses to go on.
  bool next(found_entry& out);
  /// Whether there were entries that it could not read.
  bool failed() const noexcept;

 private:
  struct state;
  std::unique_ptr<state> state_;
};

/// What stands at the path, links not followed; false when there is nothing.
bool look_at(const std::wstring& path, found_facts& out);
/// Whether a path, which need not exist, is a folder or lies below it, under whatever name.
bool is_inside(const std::wstring& path, const std::wstring& folder);
/// Removes what is at a path, as held_folder::remove() does; if an identity is given, only what has it.
bool remove_entry(const std::wstring& path, const found_facts& found, const entry_identity* expected);

}  // namespace ruvo::platform
