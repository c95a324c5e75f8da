// SPDX-License-Identifier: BSL-1.0
#pragma once

// Names to the lines where they stand first, in constant time; in logarithmic time where somebody made many
// names for one place.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/key_units.hpp"
#include "settings/grammar.hpp"
#include "values/folded_key.hpp"

namespace ruvo::settings {

class folded_name {
 public:
  folded_name(std::wstring_view name, bool is_exact)
      : folded_(is_exact ? std::wstring_view() : name),
        text_(is_exact ? name : folded_.view()),
        hash_(spread(detail::hash_units(text_))) {}

  std::wstring_view text() const noexcept { return text_; }
  std::uint32_t hash() const noexcept { return hash_; }

 private:
  /// Names that are numbered have hashes whose low bits are numbered, too.
  static std::uint32_t spread(std::uint32_t hash) noexcept {
    hash *= 0x9E3779B1;
    return hash ^ hash >> 15;
  }

  const detail::folded_path folded_;
  const std::wstring_view text_;
  const std::uint32_t hash_;
};

class name_index {
 public:
  name_index() = default;
  /// With room for so many names.
  explicit name_index(std::size_t names);

  /// What was added under the name, or none. `is_it` compares the name with that of what has its hash.
  template <class IsIt>
  std::uint32_t find(const folded_name& name, const IsIt& is_it) const {
    for (std::size_t n = 0; n < most_tries && !slots_.empty(); ++n) {
      const slot& each = slots_[(name.hash() + n) & (slots_.size() - 1)];
      if (each.what == none) break;
      if (each.what != gone && each.hash == name.hash() && is_it(each.what)) return each.what;
    }
    return crowded_.empty() ? none : find_crowded(name);
  }
  /// The name is not there yet.
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

  static std::size_t slots_for(std::size_t names) noexcept;
  void make_room();
  slot* place_for(std::uint32_t hash) noexcept;
  std::uint32_t find_crowded(const folded_name& name) const;

  std::vector<slot> slots_{};                        // a power of two, of which some are free
  std::size_t used_ = 0;                             // those of which something was removed included
  std::map<std::wstring, std::uint32_t> crowded_{};  // without a slot near their hash
};

/// An index that is made when it is first asked for, maybe by one of several threads that only read.
class late_index {
 public:
  late_index() = default;
  /// The other one is neither made nor changed meanwhile.
  late_index(const late_index& other) {
    if (const name_index* const made = other.get()) put(std::make_unique<name_index>(*made));
  }
  late_index(late_index&& other) noexcept : made_(other.made_.exchange(nullptr)) {}
  late_index& operator=(late_index other) noexcept {
    delete made_.exchange(other.made_.exchange(nullptr));
    return *this;
  }
  ~late_index() { delete get(); }

  /// Null before it is made.
  name_index* get() const noexcept { return made_.load(std::memory_order_acquire); }
  void put(std::unique_ptr<name_index> made) noexcept {
    made_.store(made.release(), std::memory_order_release);
  }

 private:
  std::atomic<name_index*> made_ = nullptr;
};

}  // namespace ruvo::settings
