// SPDX-License-Identifier: BSL-1.0
#pragma once

// From offsets in a text to lines and columns.

#include <ruvo/reading.hpp>

#include <algorithm>
#include <string_view>

#include "base/utf.hpp"

namespace ruvo::serializer {

using texto::is_high_surrogate;
using texto::is_low_surrogate;
using texto::is_surrogate;

/// Walks once through a text, from place to place.
class place_walker {
 public:
  explicit place_walker(std::wstring_view text) noexcept : text_(text) {}

  /// The place of the unit at `offset`, which must not be below that of the call before.
  text_place at(std::size_t offset) noexcept {
    offset = std::min(offset, text_.size());
    while (at_ < offset) {
      const std::size_t next = at_ + width();
      if (next > offset) break;  // the second half of a pair or of CRLF
      const bool ends_line = text_[at_] == L'\n' || text_[at_] == L'\r';
      place_ = ends_line ? text_place{place_.line + 1, 1} : text_place{place_.line, place_.column + 1};
      at_ = next;
    }
    return place_;
  }

 private:
  /// Units of the character at at_.
  std::size_t width() const noexcept {
    if (at_ + 1 == text_.size()) return 1;
    const wchar_t c = text_[at_], next = text_[at_ + 1];
    return (c == L'\r' && next == L'\n') || (is_high_surrogate(c) && is_low_surrogate(next)) ? 2 : 1;
  }

  std::wstring_view text_;
  std::size_t at_ = 0;
  text_place place_;
};

}  // namespace ruvo::serializer
