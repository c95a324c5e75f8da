// SPDX-License-Identifier: BSL-1.0

// Names to the lines where they stand first.

#include "settings/name_index.hpp"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>

namespace ruvo::settings {

void name_index::clear(std::size_t names) {
  slots_.assign(std::bit_ceil(2 * (names + most_tries)), {});
  used_ = 0;
  crowded_.clear();
}

void name_index::add(const folded_name& name, std::uint32_t what) {
  for (std::size_t n = 0; n < most_tries; ++n) {
    slot& each = slots_[(name.hash() + n) & (slots_.size() - 1)];
    if (each.what < gone) continue;
    if (each.what == none) ++used_;
    each = {name.hash(), what};
    return;
  }
  crowded_.emplace(std::pair(name.owner(), std::wstring(name.text())), what);
}

void name_index::erase(const folded_name& name, std::uint32_t what) {
  for (std::size_t n = 0; n < most_tries; ++n) {
    slot& each = slots_[(name.hash() + n) & (slots_.size() - 1)];
    if (each.what == what && each.hash == name.hash()) {
      each.what = gone;
      return;
    }
  }
  crowded_.erase({name.owner(), std::wstring(name.text())});
}

}  // namespace ruvo::settings
