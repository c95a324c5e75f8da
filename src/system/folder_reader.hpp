// SPDX-License-Identifier: BSL-1.0
#pragma once

// The entries of a folder.

#include <memory>
#include <string>

#include "system/folder.hpp"

namespace ruvo::platform {

struct found_entry : entry_facts {
  std::wstring name;
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

}  // namespace ruvo::platform
