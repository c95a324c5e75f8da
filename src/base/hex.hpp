// SPDX-License-Identifier: BSL-1.0
#pragma once

// Hexadecimal digits of bytes, over narrow and wide text.

#include <cstddef>

namespace ruvo::texto {

/// Writes two lower-case digits for the low byte of each character.
void hex_encode_to(wchar_t* out, const char* bytes, std::size_t count) noexcept;
void hex_encode_to(wchar_t* out, const wchar_t* units, std::size_t count) noexcept;

/// Reads `count` pairs of digits of either case; false at a character that is none.
bool hex_decode_to(char* out, const char* digits, std::size_t count) noexcept;
bool hex_decode_to(wchar_t* out, const wchar_t* digits, std::size_t count) noexcept;

// In the static library only, for its fuzzers: the vectors of the target's 16-bit units where wide characters
// have 32.
void hex_encode_to(char16_t* out, const char* bytes, std::size_t count) noexcept;
void hex_encode_to(char16_t* out, const char16_t* units, std::size_t count) noexcept;
bool hex_decode_to(char16_t* out, const char16_t* digits, std::size_t count) noexcept;

}  // namespace ruvo::texto
