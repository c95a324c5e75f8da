// SPDX-License-Identifier: BSL-1.0
#pragma once

// Names to the lines where they stand first, in constant time; in logarithmic time where somebody made many
// names for one place.

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/key_units.hpp"
#include "settings/grammar.hpp"
#include "values/folded_key.hpp"

namespace ruvo::settings {

/// A name and what it belongs to: a section, or the document.
class folded_name {
 public:
  folded_name(std::uint32_t owner, std::wstring_view name, bool is_exact)
      : folded_(is_exact ? std::wstring_view() : name),
        text_(is_exact ? name : folded_.view()),
        owner_(owner),
        hash_(spread(detail::hash_units(text_))) {}

  std::wstring_view text() const noexcept { return text_; }
  std::uint32_t owner() const noexcept { return owner_; }
  std::uint32_t hash() const noexcept { return hash_; }

 private:
  /// Names that are numbered have hashes whose low bits are numbered, too.
  static std::uint32_t spread(std::uint32_t hash) noexcept {
    hash *= 0x9E3779B1;
    return hash ^ hash >> 15;
  }

  const detail::folded_path folded_;
  const std::wstring_view text_;
  const std::uint32_t owner_, hash_;
};

/// A table for each owner: names that are used together stand together, and stay in the processor's cache.
class name_index {
 public:
  /// What was added under the name, or none. `is_it` compares the name with that of what has its hash.
  template <class IsIt>
  std::uint32_t find(const folded_name& name, const IsIt& is_it) const {
    if (name.owner() >= tables_.size()) return none;
    const auto& [slots, used, is_crowded] = tables_[name.owner()];
    for (std::size_t n = 0; n < most_tries && !slots.empty(); ++n) {
      const slot& each = slots[(name.hash() + n) & (slots.size() - 1)];
      if (each.what == none) break;
      if (each.what != gone && each.hash == name.hash() && is_it(each.what)) return each.what;
    }
    return is_crowded ? find_crowded(name) : none;
  }
  /// The name is not there yet. Owners are numbered without gaps.
  void add(const folded_name& name, std::uint32_t what);
  /// Removes what was added under the name.
  void erase(const folded_name& name, std::uint32_t what);
  /// Removes what was added from the number on.
  void erase_from(std::uint32_t what) noexcept;

 private:
  static constexpr std::uint32_t gone = none - 1;
  static constexpr std::size_t most_tries = 128;  // more than usual names ever need
  struct slot {
    std::uint32_t hash = 0, what = none;
  };
  struct table {
    std::vector<slot> slots{};  // a power of two, of which some are free
    std::size_t used = 0;       // those of which something was removed included
    bool is_crowded = false;    // some of its names have no slot

    void make_room();
    slot* place_for(std::uint32_t hash) noexcept;
  };

  std::uint32_t find_crowded(const folded_name& name) const;

  std::vector<table> tables_;
  std::map<std::pair<std::uint32_t, std::wstring>, std::uint32_t> crowded_;  // without a slot near their hash
};

}  // namespace ruvo::settings
