#pragma once

// Keys and paths on their way in: folded to lower case without allocation where they are short.

#include <ruvo/texto.hpp>

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "texto/ascii.hpp"
#include "values/thread_cache.hpp"

namespace ruvo::detail {

/// Whether all units are ASCII without capitals, which every folding leaves alone. Four units at a time.
inline bool is_plain_lower(std::wstring_view text) noexcept {
  std::size_t at = 0;
  if constexpr (sizeof(wchar_t) == 2) {
    constexpr std::uint64_t lanes = 0x0001000100010001;
    const auto differs = [&text](std::size_t from) {
      std::uint64_t word;
      std::memcpy(&word, text.data() + from, sizeof word);
      const std::uint64_t from_a = word + (0x80 - 'A') * lanes, beyond_z = word + (0x80 - 'Z' - 1) * lanes;
      return ((word & 0xFF80 * lanes) | (from_a & ~beyond_z & 0x80 * lanes)) != 0;
    };
    for (; at + 4 <= text.size(); at += 4) {
      if (differs(at)) return false;
    }
    if (at > 0) return at == text.size() || !differs(text.size() - 4);
  }
  for (; at < text.size(); ++at) {
    if (static_cast<char16_t>(text[at]) >= 0x80 || texto::is_upper(text[at])) return false;
  }
  return true;
}

/// A text folded by `fold` unit for unit; texts that are folded already are only viewed.
template <wchar_t (*fold)(wchar_t)>
class folded_text {
 public:
  explicit folded_text(std::wstring_view text) : view_(text) {
    if (!is_plain_lower(text)) copy(text);
  }
  folded_text(const folded_text&) = delete;
  folded_text& operator=(const folded_text&) = delete;

  std::wstring_view view() const noexcept { return view_; }

 private:
  void copy(std::wstring_view text) {
    wchar_t* to = small_;
    if (text.size() > sizeof small_ / sizeof *small_) {
      large_.resize(text.size());
      to = large_.data();
    }
    for (std::size_t at = 0; at < text.size(); ++at) to[at] = fold(text[at]);
    view_ = {to, text.size()};
  }

  std::wstring_view view_;
  wchar_t small_[64];
  std::wstring large_;
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
