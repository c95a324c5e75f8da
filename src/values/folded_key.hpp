#pragma once

// Keys and paths on their way in: folded to lower case without allocation where they are short.

#include <ruvo/texto.hpp>

#include <string>
#include <string_view>

#include "texto/ascii.hpp"
#include "values/thread_cache.hpp"

namespace ruvo::detail {

/// A text folded by `fold` unit for unit; texts that are folded already are only viewed.
template <wchar_t (*fold)(wchar_t)>
class folded_text {
 public:
  explicit folded_text(std::wstring_view text) : view_(text) {
    std::size_t at = 0;
    while (at < text.size() && fold(text[at]) == text[at]) ++at;
    if (at < text.size()) copy(text, at);
  }
  folded_text(const folded_text&) = delete;
  folded_text& operator=(const folded_text&) = delete;

  std::wstring_view view() const noexcept { return view_; }

 private:
  void copy(std::wstring_view text, std::size_t from) {
    wchar_t* to = small_;
    if (text.size() > sizeof small_ / sizeof *small_) {
      large_.resize(text.size());
      to = large_.data();
    }
    text.copy(to, from);
    for (std::size_t at = from; at < text.size(); ++at) to[at] = fold(text[at]);
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
