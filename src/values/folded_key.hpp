// SPDX-License-Identifier: BSL-1.0
#pragma once

// Keys and paths on their way in: folded to lower case without allocation where they are short.

#include <ruvo/texto/exact_view.hpp>
#include <ruvo/texto/words.hpp>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "base/ascii.hpp"
#include "base/key_units.hpp"
#include "base/utf.hpp"
#include "memory/shared_key.hpp"

namespace ruvo::detail {

/// Whether a folded text may view the units that it was made of, or has to outlive them: writing along a path
/// may replace the entry whose text the path is.
enum class units { viewed, owned };

/// A text folded by `fold` unit for unit; one that is folded already is only viewed, unless a copy is asked
/// for. It takes a reference, as a view that is copied just after it was made has to wait for its parts.
template <wchar_t (*fold)(wchar_t)>
class folded_text {
 public:
  explicit folded_text(const std::wstring_view& text, units use = units::viewed)
      : view_(text), written_(text) {
    wchar_t* to = small_;
    if (text.size() > sizeof small_ / sizeof *small_) {
      const auto is_folded = [](wchar_t c) { return fold(c) == c; };
      if (use == units::viewed && std::all_of(text.begin(), text.end(), is_folded)) return;
      large_ = std::make_unique<wchar_t[]>(text.size());
      to = large_.get();
    }
    const bool is_changed = fold_units<fold>(to, text);
    // What was just written is slow to read in other pieces.
    if (!is_changed && use == units::viewed) return;
    view_ = {to, text.size()};
    if (!is_changed) {
      written_ = view_;
    } else if (use == units::owned) {
      original_ = std::make_unique<wchar_t[]>(text.size());
      std::copy(text.begin(), text.end(), original_.get());
      written_ = {original_.get(), text.size()};
    }
  }
  folded_text(const folded_text&) = delete;
  folded_text& operator=(const folded_text&) = delete;

  std::wstring_view view() const noexcept { return view_; }
  /// The text before; the same view where folding changed nothing.
  std::wstring_view written() const noexcept { return written_; }

 private:
  std::wstring_view view_, written_;
  std::unique_ptr<wchar_t[]> large_, original_;
  wchar_t small_[64];
};

using folded_key = folded_text<texto::to_lower>;       // A-Z only
using folded_path = folded_text<texto::to_lowercase>;  // accented letters too

/// The text that a view shows, for what needs one of its own.
inline std::wstring owned_text(texto::either_view text) {
  return text.is_narrow() ? texto::to_utf_16(text.narrow()) : std::wstring(text.wide());
}

/// A folded key with its hash, as the stores look it up, and its spelling, which an entry that is made for it
/// remembers.
struct key_view {
  explicit key_view(std::wstring_view folded) noexcept : key_view(folded, folded) {}
  explicit key_view(const folded_key& key) noexcept : key_view(key.view(), key.written()) {}
  key_view(std::wstring_view folded, std::wstring_view written) noexcept
      : text(folded), spelling(written), hash(hash_of(folded)) {}
  explicit key_view(const shared_key& key) noexcept : text(key), spelling(key.spelling()), hash(key.hash) {}

  std::wstring_view text, spelling;
  std::uint32_t hash;
};

}  // namespace ruvo::detail
