// SPDX-License-Identifier: BSL-1.0
#pragma once

// Keys and paths on their way in: folded to lower case without allocation where they are short.

#include <ruvo/texto/words.hpp>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string_view>

#include "base/ascii.hpp"
#include "base/key_units.hpp"
#include "memory/shared_key.hpp"

namespace ruvo::detail {

/// Whether a folded text may view the units that it was made of, or has to outlive them: writing along a path
/// may replace the entry whose text the path is.
enum class units { viewed, owned };

/// A text folded by `fold` unit for unit; a long one that is folded already is only viewed,
/// unless a copy is asked for.
template <wchar_t (*fold)(wchar_t)>
class folded_text {
 public:
  explicit folded_text(std::wstring_view text, units use = units::viewed) : view_(text) {
    wchar_t* to = small_;
    if (text.size() > sizeof small_ / sizeof *small_) {
      const auto is_folded = [](wchar_t c) { return fold(c) == c; };
      if (use == units::viewed && std::all_of(text.begin(), text.end(), is_folded)) return;
      large_ = std::make_unique<wchar_t[]>(text.size());
      to = large_.get();
    }
    fold_units<fold>(to, text);
    view_ = {to, text.size()};
  }
  folded_text(const folded_text&) = delete;
  folded_text& operator=(const folded_text&) = delete;

  std::wstring_view view() const noexcept { return view_; }

 private:
  std::wstring_view view_;
  std::unique_ptr<wchar_t[]> large_;
  wchar_t small_[64];
};

using folded_key = folded_text<texto::to_lower>;       // A-Z only
using folded_path = folded_text<texto::to_lowercase>;  // accented letters too

/// A folded key with its hash, as the stores look it up.
struct key_view {
  explicit key_view(std::wstring_view folded) noexcept : key_view(folded, hash_of(folded)) {}
  key_view(std::wstring_view folded, std::uint32_t its_hash) noexcept : text(folded), hash(its_hash) {}

  std::wstring_view text;
  std::uint32_t hash;
};

}  // namespace ruvo::detail
