// SPDX-License-Identifier: BSL-1.0
#pragma once

// The entries of a large bundle by the hashes of their keys.

#include <ruvo/bundle.hpp>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "values/folded_key.hpp"

namespace ruvo::detail {

/// A table of places, where an entry stands at or behind the place of its hash. It is no farther away than
/// `farthest`, so that keys that were made to have the same hash cost no more than others: an entry for which
/// there is no place is left out.
class entry_index {
 public:
  using entry = bundle::entry;

  /// Makes room for `count` entries in all; where that is a new table, it gets those in `all`. Nothing
  /// changes when it throws.
  void reserve(std::size_t count, const std::vector<entry*>& all) {
    if (count > room_) rebuild(count, all);
  }
  /// Needs room.
  void add(entry* item) noexcept;
  void remove(const entry* item) noexcept;
  /// Null where there is none, or where it was left out.
  entry* find(const key_view& key) const noexcept;
  /// Whether entries were left out.
  bool is_incomplete() const noexcept { return is_incomplete_; }

 private:
  static constexpr std::size_t farthest = 200;

  void rebuild(std::size_t count, const std::vector<entry*>& all);
  std::size_t place_of(std::uint32_t hash) const noexcept {
    return static_cast<std::size_t>(static_cast<std::uint64_t>(hash) * tags_.size() >> 32);
  }
  std::size_t behind(std::size_t place) const noexcept { return place + 1 == tags_.size() ? 0 : place + 1; }
  /// How far a place is behind another one.
  std::size_t distance(std::size_t from, std::size_t to) const noexcept {
    return to >= from ? to - from : to + tags_.size() - from;
  }
  static std::uint16_t tag_of(std::uint32_t hash) noexcept { return static_cast<std::uint16_t>(hash | 1); }

  std::vector<std::uint16_t> tags_;  // 0 where there is no entry
  std::vector<entry*> items_;
  std::size_t room_ = 0;
  bool is_incomplete_ = false;
};

}  // namespace ruvo::detail
