// SPDX-License-Identifier: BSL-1.0
#pragma once

// A folder and those below it, held open one by one as they are worked on.

#include <ruvo/file.hpp>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "system/folder.hpp"

namespace ruvo::files {

using platform::held_folder;

/// The rest of a path below a folder, which a listing of it gave, without its separator; true if it is there
/// or is the folder itself.
bool place_below(const file& folder, const std::wstring& path, std::wstring& place);

/// Reaches the folders of a tree from its top, through folders that are held, so that a link that has taken
/// the place of one leads nowhere. Between two folders near to each other only what differs is opened again.
class held_tree {
 public:
  /// The top is a path that the caller named. It is followed if it is a link, or is not.
  held_tree(const file& top, bool follows);

  /// Whether a path is that of the top, or lies below it.
  bool covers(const file& path) const;
  /// A folder of the tree; null, with the reason, when it cannot be held. Makes it if that is wanted.
  std::shared_ptr<const held_folder> reach(const file& folder, bool makes = false);
  /// Why the last folder was not reached, and which one on the way it was.
  held_folder::outcome reason() const noexcept { return reason_; }
  const file& culprit() const noexcept { return culprit_; }

  const file& top() const noexcept { return top_; }
  /// What distinguishes the top from all other folders; null when it was never held.
  const platform::entry_identity* identity() const noexcept { return is_held_ ? &identity_ : nullptr; }
  /// Lets go of all folders. The top cannot be reached any more.
  void release();

 private:
  struct level {
    std::size_t end;  // of the folder's part of place_
    std::shared_ptr<const held_folder> folder;
  };
  void leave_for(std::wstring_view place);

  file top_;
  std::shared_ptr<const held_folder> top_folder_;
  platform::entry_identity identity_;
  bool is_held_ = false;
  std::wstring place_;  // the deepest folder's, below the top
  std::vector<level> levels_;
  held_folder::outcome reason_ = held_folder::outcome::held;
  file culprit_;
};

}  // namespace ruvo::files
