// SPDX-License-Identifier: BSL-1.0
#pragma once

// UTF-8 to and from UTF-16. Malformed input never fails: each maximal malformed part of a UTF-8 text and each
// lone surrogate becomes U+FFFD.

#include <ruvo/api.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace ruvo::texto {

std::wstring to_utf_16(std::string_view text);
std::string to_utf_8(std::wstring_view text);
/// How many bytes append_utf_8() adds.
std::size_t utf_8_size(std::wstring_view text) noexcept;

/// A part of a UTF-8 text that is no character.
struct malformed_part {
  std::size_t at, size;  // in bytes
};
/// The first one that begins at or behind `from`, which is where a character begins; {npos, 0} for none.
malformed_part find_malformed(std::string_view text, std::size_t from) noexcept;

/// Of surrogate pairs, the first unit is high and the second one low.
template <class Unit>
constexpr bool is_high_surrogate(Unit unit) noexcept {
  return (static_cast<char16_t>(unit) & 0xFC00) == 0xD800;
}
template <class Unit>
constexpr bool is_low_surrogate(Unit unit) noexcept {
  return (static_cast<char16_t>(unit) & 0xFC00) == 0xDC00;
}
template <class Unit>
constexpr bool is_surrogate(Unit unit) noexcept {
  return (static_cast<char16_t>(unit) & 0xF800) == 0xD800;
}

// Public, too, in a header of a room above. NOLINTBEGIN(readability-redundant-declaration)
KESTA_API void append_utf_16(std::wstring& out, std::string_view text);
KESTA_API void append_utf_8(std::string& out, std::wstring_view text);
// NOLINTEND(readability-redundant-declaration)

// In the static library only, for its fuzzers: the vectors of the target's 16-bit units where wide characters
// have 32.
void append_utf_16(std::u16string& out, std::string_view text);
void append_utf_8(std::string& out, std::u16string_view text);

}  // namespace ruvo::texto
