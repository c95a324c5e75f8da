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
        hash_(detail::hash_units(text_) + owner * 0x9E3779B9u) {}

  std::wstring_view text() const noexcept { return text_; }
  std::uint32_t owner() const noexcept { return owner_; }
  std::uint32_t hash() const noexcept { return hash_; }

 private:
  const detail::folded_path folded_;
  const std::wstring_view text_;
  const std::uint32_t owner_, hash_;
};

class name_index {
 public:
  /// Forgets all, and has room for so many names.
  void clear(std::size_t names);
  /// Whether it has to be made anew, with more room.
  bool is_full() const noexcept { return 8 * used_ >= 5 * slots_.size(); }

  /// What was added under the name, or none. `is_it` compares the name with that of what has its hash.
  template <class IsIt>
  std::uint32_t find(const folded_name& name, const IsIt& is_it) const {
    for (std::size_t n = 0; n < most_tries; ++n) {
      const slot& each = slots_[(name.hash() + n) & (slots_.size() - 1)];
      if (each.what == none) return none;
      if (each.what != gone && each.hash == name.hash() && is_it(each.what)) return each.what;
    }
    if (crowded_.empty()) return none;
    const auto found = crowded_.find({name.owner(), std::wstring(name.text())});
    return found == crowded_.end() ? none : found->second;
  }
  /// The name is not there yet, and there is room.
  void add(const folded_name& name, std::uint32_t what);
  /// Removes what was added under the name.
  void erase(const folded_name& name, std::uint32_t what);

 private:
  static constexpr std::uint32_t gone = none - 1;
  static constexpr std::size_t most_tries = 24;
  struct slot {
    std::uint32_t hash = 0, what = none;
  };

  std::vector<slot> slots_;  // a power of two
  std::size_t used_ = 0;     // those of which something was removed included
  std::map<std::pair<std::uint32_t, std::wstring>, std::uint32_t> crowded_;  // without a slot near their hash
};

}  // namespace ruvo::settings
