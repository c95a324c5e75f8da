// SPDX-License-Identifier: BSL-1.0

// Names to the lines where they stand first.

#include "settings/name_index.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace ruvo::settings {

/// Where the hash can be put; null where all places near it are taken.
name_index::slot* name_index::table::place_for(std::uint32_t hash) noexcept {
  for (std::size_t n = 0; n < most_tries; ++n) {
    slot& each = slots[(hash + n) & (slots.size() - 1)];
    if (each.what >= gone) return &each;
  }
  return nullptr;
}

// From a free slot on, each finds a place that is no farther from its hash than it was: what stands before it
// there stood before it here.
void name_index::table::make_room() {
  constexpr std::size_t fewest = 16;
  if (8 * used < 5 * slots.size()) return;
  table wider{std::vector<slot>(std::max(fewest, 2 * slots.size())), 0, is_crowded};
  const auto is_free = [](const slot& each) { return each.what == none; };
  const auto start = std::find_if(slots.begin(), slots.end(), is_free) - slots.begin();
  for (std::size_t n = 0; n < slots.size(); ++n) {
    const slot& each = slots[(static_cast<std::size_t>(start) + n) & (slots.size() - 1)];
    if (each.what >= gone) continue;
    *wider.place_for(each.hash) = each;
    ++wider.used;
  }
  *this = std::move(wider);
}

void name_index::add(const folded_name& name, std::uint32_t what) {
  if (name.owner() >= tables_.size()) tables_.resize(name.owner() + std::size_t{1});
  table& into = tables_[name.owner()];
  into.make_room();
  slot* const place = into.place_for(name.hash());
  if (!place) {
    crowded_.emplace(std::pair(name.owner(), std::wstring(name.text())), what);
    into.is_crowded = true;
    return;
  }
  if (place->what == none) ++into.used;
  *place = {name.hash(), what};
}

void name_index::erase(const folded_name& name, std::uint32_t what) {
  std::vector<slot>& slots = tables_[name.owner()].slots;
  for (std::size_t n = 0; n < most_tries; ++n) {
    slot& each = slots[(name.hash() + n) & (slots.size() - 1)];
    if (each.what != what) continue;
    each.what = gone;
    return;
  }
  crowded_.erase({name.owner(), std::wstring(name.text())});
}

void name_index::erase_from(std::uint32_t what) noexcept {
  for (table& each : tables_)
    for (slot& one : each.slots)
      if (one.what >= what && one.what < gone) one.what = gone;
  std::erase_if(crowded_, [&](const auto& each) { return each.second >= what; });
}

std::uint32_t name_index::find_crowded(const folded_name& name) const {
  const auto found = crowded_.find({name.owner(), std::wstring(name.text())});
  return found == crowded_.end() ? none : found->second;
}

}  // namespace ruvo::settings
