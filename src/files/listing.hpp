// SPDX-License-Identifier: BSL-1.0
#pragma once

// Listing a folder, and what a listing knows of the entries that it passes on.

#include <ruvo/files/tree.hpp>

#include <memory>
#include <string>
#include <utility>

#include "system/folder.hpp"

namespace ruvo::files {

/// An entry that knows its kind and its size.
class listed_file final : public file {
 public:
  /// Takes the place of the former entry.
  void set(const std::wstring& path, const platform::entry_facts& found);
  const platform::entry_facts& found() const noexcept { return *found_; }

  bool is_directory() const override { return found_->is_folder; }
  bool is_file() const override { return !found_->is_folder; }
  unsigned long long size() const override;

 private:
  const platform::entry_facts* found_ = nullptr;
};

/// A folder to be listed that is held open already, which services that have a listing of their own take for
/// a path like others. Null when it could not be held: then there is nothing to be listed.
class held_place final : public file {
 public:
  held_place(const file& path, std::shared_ptr<const platform::held_folder> folder)
      : file(path), folder_(std::move(folder)) {}
  const std::shared_ptr<const platform::held_folder>& folder() const noexcept { return folder_; }

 private:
  std::shared_ptr<const platform::held_folder> folder_;
};

/// The `directory_list` service of contexts that have none of their own.
bool list_folder(const file& folder, exception& err, fileFilter* filter, fileCallback* callback,
                 std::vector<file>* out);

/// What a path in a folder begins with.
std::wstring prefix_of(const file& folder);

/// What the listing found, or else the system now; of an entry that a service made, what the entry says.
/// False when there is nothing.
bool look_at(const file& entry, platform::entry_facts& out);

}  // namespace ruvo::files
