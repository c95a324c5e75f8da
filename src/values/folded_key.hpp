#pragma once

// Keys and paths on their way in: folded to lower case without allocation where they are short.

#include <ruvo/texto/words.hpp>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

#include "texto/ascii.hpp"
#include "values/thread_cache.hpp"

namespace ruvo::detail {

/// Whether a folded text may view the units that it was made of, or has to outlive them: who writes along a
/// path may replace the entry that the path is the text of.
enum class units { viewed, owned };

/// A text folded by `fold` unit for unit; a long one that is folded already is only viewed, unless told.
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
    copy(to, text);
    view_ = {to, text.size()};
  }
  folded_text(const folded_text&) = delete;
  folded_text& operator=(const folded_text&) = delete;

  std::wstring_view view() const noexcept { return view_; }

 private:
  /// All foldings agree on ASCII.
  static wchar_t fold_unit(wchar_t c) noexcept {
    return static_cast<char16_t>(c) < 0x80 ? texto::to_lower(c) : fold(c);
  }
  /// Four ASCII units at a time, the others one by one.
  static void copy(wchar_t* to, std::wstring_view text) noexcept {
    std::size_t at = 0;
    if constexpr (sizeof(wchar_t) == 2) {
      constexpr std::uint64_t lanes = 0x0001000100010001;
      for (; at + 4 <= text.size(); at += 4) {
        std::uint64_t word;
        std::memcpy(&word, text.data() + at, sizeof word);
        if ((word & 0xFF80 * lanes) != 0) {
          for (std::size_t n = at; n < at + 4; ++n) to[n] = fold_unit(text[n]);
          continue;
        }
        const std::uint64_t from_a = word + (0x80 - 'A') * lanes, beyond_z = word + (0x80 - 'Z' - 1) * lanes;
        word |= (from_a & ~beyond_z & 0x80 * lanes) >> 2;
        std::memcpy(to + at, &word, sizeof word);
      }
    }
    for (; at < text.size(); ++at) to[at] = fold_unit(text[at]);
  }

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
