// SPDX-License-Identifier: BSL-1.0
#pragma once

// Base64 (RFC 4648) over bytes and over wide text.

#include <cstddef>
#include <string>
#include <string_view>

namespace ruvo::texto {

constexpr std::size_t base64_size(std::size_t bytes) noexcept { return (bytes + 2) / 3 * 4; }

/// Room for what so many characters decode to.
constexpr std::size_t base64_room(std::size_t characters) noexcept {
  return characters / 4 * 3 + characters % 4;
}

/// Writes base64_size(count) characters, '=' included.
void base64_encode_to(char* out, const unsigned char* bytes, std::size_t count, bool url_safe) noexcept;
void base64_encode_to(wchar_t* out, const unsigned char* bytes, std::size_t count, bool url_safe) noexcept;
/// The same over the low bytes of the units.
void base64_encode_to(wchar_t* out, const wchar_t* units, std::size_t count, bool url_safe) noexcept;

/// Decodes either alphabet up to the first '='; skips everything else. Writes at most 3/4 of the input's
/// size; gives the end of what it wrote.
char* base64_decode_to(char* out, std::string_view text) noexcept;
wchar_t* base64_decode_to(wchar_t* out, std::wstring_view text) noexcept;

/// As base64_decode_to, but only for well-formed text: beside the alphabets only blanks, and '=' at the end
/// where it completes a group of four. Null if the text is malformed.
unsigned char* base64_read(unsigned char* out, std::string_view text) noexcept;
unsigned char* base64_read(unsigned char* out, std::wstring_view text) noexcept;

// In the static library only, for its fuzzers: the vectors of the target's 16-bit units where wide characters
// have 32.
void base64_encode_to(char16_t* out, const unsigned char* bytes, std::size_t count, bool url_safe) noexcept;
void base64_encode_to(char16_t* out, const char16_t* units, std::size_t count, bool url_safe) noexcept;
char16_t* base64_decode_to(char16_t* out, std::u16string_view text) noexcept;
unsigned char* base64_read(unsigned char* out, std::u16string_view text) noexcept;

}  // namespace ruvo::texto
