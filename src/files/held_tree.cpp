// SPDX-License-Identifier: BSL-1.0

// The way from the top of a tree to a folder, opened step by step.

#include "files/held_tree.hpp"

#include <algorithm>

#include "base/ascii.hpp"
#include "files/listing.hpp"

namespace ruvo::files {

namespace {

/// So many of the innermost folders stay open; deeper ones are in turn reached from these.
constexpr std::size_t most_levels = 32;

bool starts_folded(std::wstring_view text, std::wstring_view start) {
  return text.size() >= start.size() &&
         std::ranges::equal(text.substr(0, start.size()), start, {}, texto::to_lower, texto::to_lower);
}

bool leads_up(std::wstring_view path) {
  for (;;) {
    const std::size_t end = std::min(path.find(L'\\'), path.size());
    if (path.substr(0, end) == L"..") return true;
    if (end == path.size()) return false;
    path.remove_prefix(end + 1);
  }
}

}  // namespace

bool place_below(const file& folder, const std::wstring& path, std::wstring& place) {
  place.clear();
  if (folder.empty()) return false;
  if (path == static_cast<const std::wstring&>(folder)) return true;
  std::wstring prefix = prefix_of(folder);
  if (prefix == L".\\" && !path.starts_with(prefix)) prefix.clear();  // paths do not keep it
  if (!starts_folded(path, prefix)) return false;
  place = path.substr(prefix.size());
  return file(place).get_root().empty() && !leads_up(place);
}

held_tree::held_tree(const file& top, bool follows)
    : top_(top), top_folder_(std::make_shared<held_folder>(top, follows, held_folder::purpose::work)) {
  is_held_ = static_cast<bool>(*top_folder_);
  if (is_held_) identity_ = top_folder_->identity();
}

bool held_tree::covers(const file& path) const {
  std::wstring place;
  return place_below(top_, path, place);
}

void held_tree::release() {
  levels_.clear();
  place_.clear();
  top_folder_.reset();
}

/// Keeps the folders that are on the way to a place.
void held_tree::leave_for(std::wstring_view place) {
  const auto is_on_the_way = [&](std::size_t end) {
    return place.size() >= end && (place.size() == end || place[end] == L'\\') &&
           place.substr(0, end) == std::wstring_view(place_).substr(0, end);
  };
  while (!levels_.empty() && !is_on_the_way(levels_.back().end)) levels_.pop_back();
}

std::shared_ptr<const held_folder> held_tree::reach(const file& folder, bool makes) {
  std::wstring place;
  culprit_ = top_;
  reason_ = top_folder_ ? top_folder_->result() : held_folder::outcome::missing;
  if (reason_ != held_folder::outcome::held) return nullptr;
  if (!place_below(top_, folder, place)) {
    reason_ = held_folder::outcome::missing;
    return nullptr;
  }
  leave_for(place);
  place_ = place;
  std::shared_ptr<const held_folder> at = levels_.empty() ? top_folder_ : levels_.back().folder;
  std::size_t end = levels_.empty() ? 0 : levels_.back().end;
  while (end < place.size()) {
    const std::size_t begin = end ? end + 1 : 0;
    end = std::min(place.find(L'\\', begin), place.size());
    at = std::make_shared<held_folder>(*at, place.substr(begin, end - begin), makes);
    reason_ = at->result();
    if (reason_ != held_folder::outcome::held) {
      culprit_ = prefix_of(top_) + place.substr(0, end);
      return nullptr;
    }
    if (levels_.size() == most_levels) levels_.erase(levels_.begin());
    levels_.push_back({end, at});
  }
  return at;
}

}  // namespace ruvo::files
