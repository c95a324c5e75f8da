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

/// Reads the entries of a folder in the order in which the system has them, but not "." and "..".
class folder_reader {
 public:
  explicit folder_reader(const std::wstring& path);
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
/// Removes a file, an empty folder, or a link to either; one that is marked as read-only too. True when
/// nothing is there afterwards.
bool remove_entry(const std::wstring& path, bool is_folder);

}  // namespace ruvo::platform
