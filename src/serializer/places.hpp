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

/// Units of the character at the beginning of what is left of a text.
inline std::size_t character_width(std::wstring_view rest) noexcept {
  return rest.size() > 1 && is_high_surrogate(rest[0]) && is_low_surrogate(rest[1]) ? 2 : 1;
}
/// In UTF-8 a byte with what continues it, whatever byte it is, but for the end of a line.
inline std::size_t character_width(std::string_view rest) noexcept {
  std::size_t width = 1;
  if (rest[0] == '\r' || rest[0] == '\n') return width;
  while (width < rest.size() && (static_cast<unsigned char>(rest[width]) & 0xC0) == 0x80) ++width;
  return width;
}

/// Walks once through a text, from place to place.
template <class Unit>
class basic_place_walker {
 public:
  explicit basic_place_walker(std::basic_string_view<Unit> text) noexcept : text_(text) {}

  /// The place of the unit at `offset`, which must not be below that of the call before.
  text_place at(std::size_t offset) noexcept {
    offset = std::min(offset, text_.size());
    while (at_ < offset) {
      const std::size_t next = at_ + width();
      if (next > offset) break;  // the second half of a pair or of CRLF
      const bool ends_line = text_[at_] == Unit('\n') || text_[at_] == Unit('\r');
      place_ = ends_line ? text_place{place_.line + 1, 1} : text_place{place_.line, place_.column + 1};
      at_ = next;
    }
    return place_;
  }

 private:
  /// Units of the character at at_.
  std::size_t width() const noexcept {
    const std::basic_string_view<Unit> rest = text_.substr(at_);
    return rest.size() > 1 && rest[0] == Unit('\r') && rest[1] == Unit('\n') ? 2 : character_width(rest);
  }

  std::basic_string_view<Unit> text_;
  std::size_t at_ = 0;
  text_place place_;
};

using place_walker = basic_place_walker<wchar_t>;

}  // namespace ruvo::serializer
