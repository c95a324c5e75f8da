// SPDX-License-Identifier: BSL-1.0
#pragma once

// Names of XML, with and without a prefix.

#include <cstddef>
#include <string_view>

#include "base/utf.hpp"
#include "serializer/xml/grammar.hpp"

namespace ruvo::serializer {

/// A name and the length of its prefix, 0 without one.
struct xml_name {
  std::wstring_view text;
  std::size_t prefix = 0;

  std::wstring_view prefix_text() const noexcept { return text.substr(0, prefix); }
};

/// How many units of the text stand at `at` for a character that may stand there in a name, at its beginning
/// or behind it; 0 when it may not. A colon is such a character.
constexpr std::size_t name_units(std::wstring_view text, std::size_t at, bool begins) noexcept {
  constexpr char16_t last_high = 0xDB7F;  // of U+EFFFF
  const wchar_t c = text[at];
  if (begins ? starts_name(c) : continues_name(c)) return 1;
  const bool is_pair = texto::is_high_surrogate(c) && static_cast<char16_t>(c) <= last_high &&
                       at + 1 < text.size() && texto::is_low_surrogate(text[at + 1]);
  return is_pair ? 2 : 0;
}

/// Goes through a text as through a name, with at most one colon if it is `qualified`.
class name_walk {
 public:
  name_walk(std::wstring_view text, bool qualified) noexcept : text_(text), qualified_(qualified) {}

  bool at_end() const noexcept { return at_ == text_.size(); }
  std::size_t at() const noexcept { return at_; }
  /// How many units are right at the present place; 0 if what stands there has no place in a name.
  std::size_t right() const noexcept {
    if (qualified_ && text_[at_] == L':') return prefix_ == 0 && !begins_ && at_ + 1 < text_.size() ? 1 : 0;
    return name_units(text_, at_, begins_);
  }
  /// Behind that many units, which `are_right` or are written in another way.
  void pass(std::size_t units, bool are_right) noexcept {
    begins_ = are_right && qualified_ && text_[at_] == L':';
    if (begins_) prefix_ = at_;
    at_ += units;
  }
  /// Where the colon stands that was passed, or 0.
  std::size_t prefix() const noexcept { return prefix_; }

 private:
  std::wstring_view text_;
  bool qualified_, begins_ = true;
  std::size_t at_ = 0, prefix_ = 0;
};

/// Whether the text is a name, which `out` then is.
inline bool read_name(std::wstring_view text, bool qualified, xml_name& out) noexcept {
  name_walk walk(text, qualified);
  while (!walk.at_end()) {
    const std::size_t units = walk.right();
    if (units == 0) return false;
    walk.pass(units, true);
  }
  out = {text, walk.prefix()};
  return !text.empty();
}

}  // namespace ruvo::serializer
