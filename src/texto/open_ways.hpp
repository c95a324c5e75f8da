// SPDX-License-Identifier: BSL-1.0
#pragma once

// What can come first at a place of a compiled pattern: both engines' programs are asked in this way.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace ruvo::texto {

/// The places of a program that are looked at one after the other, each once.
class open_ways {
 public:
  /// Looks at `most` places for one question.
  explicit open_ways(std::size_t most) noexcept : most_(most) {}

  /// What can come first at `pc`: `add(all, pc)` adds what does there, and calls go_on() for the places that
  /// lead on. Everything, where these are too many.
  template <class FirstSet, class Add>
  FirstSet first(std::uint32_t pc, const Add& add) {
    FirstSet all;
    places_.assign(1, pc);
    for (std::size_t i = 0; i < places_.size(); ++i) {
      if (i == most_) {
        all.add_all();
        break;
      }
      add(all, places_[i]);
    }
    return all;
  }
  void go_on(std::uint32_t pc) {
    if (std::find(places_.begin(), places_.end(), pc) == places_.end()) places_.push_back(pc);
  }

 private:
  std::size_t most_;
  std::vector<std::uint32_t> places_;
};

}  // namespace ruvo::texto
