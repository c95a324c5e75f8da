// SPDX-License-Identifier: BSL-1.0

// Names to the lines where they stand first.

#include "settings/name_index.hpp"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace ruvo::settings {

name_index::name_index(std::size_t names) : slots_(slots_for(names)) {}

/// Five eighths of them are used before there are more.
std::size_t name_index::slots_for(std::size_t names) noexcept {
  constexpr std::size_t fewest = 16;
  return std::bit_ceil(std::max(fewest, names + names * 5 / 8));
}

/// Where the hash can be put; null where all places near it are taken.
name_index::slot* name_index::place_for(std::uint32_t hash) noexcept {
  for (std::size_t n = 0; n < most_tries; ++n) {
    slot& each = slots_[(hash + n) & (slots_.size() - 1)];
    if (each.what >= gone) return &each;
  }
  return nullptr;
}

// From a free slot on, each finds a place that is no farther from its hash than it was: what stands before it
// there stood before it here.
void name_index::make_room() {
  if (8 * used_ < 5 * slots_.size()) return;
  name_index wider(used_ + used_ / 2);
  const auto is_free = [](const slot& each) { return each.what == none; };
  const auto start = std::find_if(slots_.begin(), slots_.end(), is_free) - slots_.begin();
  for (std::size_t n = 0; n < slots_.size(); ++n) {
    const slot& each = slots_[(static_cast<std::size_t>(start) + n) & (slots_.size() - 1)];
    if (each.what >= gone) continue;
    *wider.place_for(each.hash) = each;
    ++wider.used_;
  }
  slots_ = std::move(wider.slots_);
  used_ = wider.used_;
}

void name_index::add(const folded_name& name, std::uint32_t what) {
  make_room();
  slot* const place = place_for(name.hash());
  if (!place) {
    crowded_.emplace(std::wstring(name.text()), what);
    return;
  }
  if (place->what == none) ++used_;
  *place = {name.hash(), what};
}

void name_index::erase(const folded_name& name, std::uint32_t what) {
  for (std::size_t n = 0; n < most_tries; ++n) {
    slot& each = slots_[(name.hash() + n) & (slots_.size() - 1)];
    if (each.what != what) continue;
    each.what = gone;
    return;
  }
  crowded_.erase(std::wstring(name.text()));
}

void name_index::erase_from(std::uint32_t what) noexcept {
  for (slot& each : slots_)
    if (each.what >= what && each.what < gone) each.what = gone;
  std::erase_if(crowded_, [&](const auto& each) { return each.second >= what; });
}

std::uint32_t name_index::find_crowded(const folded_name& name) const {
  const auto found = crowded_.find(std::wstring(name.text()));
  return found == crowded_.end() ? none : found->second;
}

}  // namespace ruvo::settings
