// SPDX-License-Identifier: BSL-1.0

// The table of a large bundle's entries by hash.

#include "values/entry_index.hpp"

#include <utility>

namespace ruvo::detail {

namespace {

std::uint32_t hash_of_entry(const bundle::entry* item) noexcept {
  return static_cast<const shared_key*>(&item->first)->hash;
}

}  // namespace

void entry_index::rebuild(std::size_t count, const std::vector<entry*>& all) {
  const std::size_t places = count + count / 2 + count / 4 + 8;  // a fifth or more stays free
  std::vector<std::uint16_t> tags(places);
  std::vector<entry*> items(places);
  tags_ = std::move(tags);
  items_ = std::move(items);
  room_ = places / 5 * 4;
  is_incomplete_ = false;
  for (entry* const item : all) add(item);
}

void entry_index::add(entry* item) noexcept {
  const std::uint32_t hash = hash_of_entry(item);
  std::size_t at = place_of(hash);
  for (std::size_t steps = 0; tags_[at] != 0; at = behind(at)) {
    if (++steps > farthest) {
      is_incomplete_ = true;
      return;
    }
  }
  tags_[at] = tag_of(hash);
  items_[at] = item;
}

void entry_index::remove(const entry* item) noexcept {
  std::size_t gap = place_of(hash_of_entry(item));
  for (std::size_t steps = 0; items_[gap] != item; gap = behind(gap))
    if (tags_[gap] == 0 || ++steps > farthest) return;
  // What stands behind moves up, unless it stands before its own place then.
  for (std::size_t at = behind(gap); tags_[at] != 0; at = behind(at)) {
    if (distance(place_of(hash_of_entry(items_[at])), at) < distance(gap, at)) continue;
    tags_[gap] = tags_[at];
    items_[gap] = items_[at];
    gap = at;
  }
  tags_[gap] = 0;
  items_[gap] = nullptr;
}

bundle::entry* entry_index::find(const key_view& key) const noexcept {
  if (tags_.empty()) return nullptr;
  const std::uint16_t tag = tag_of(key.hash);
  std::size_t at = place_of(key.hash);
  for (std::size_t steps = 0; tags_[at] != 0 && steps <= farthest; at = behind(at), ++steps)
    if (tags_[at] == tag && same_units<wchar_t>(items_[at]->first, key.text)) return items_[at];
  return nullptr;
}

}  // namespace ruvo::detail
