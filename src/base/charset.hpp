// SPDX-License-Identifier: BSL-1.0
#pragma once

// Text in the encodings of one byte a character that documents and messages come in.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ruvo::texto {

/// The characters of the bytes from 128 on; 0 where there is none.
using upper_half = std::array<char16_t, 128>;

extern const upper_half ascii_half, latin_1_half, latin_9_half, windows_1252_half;

/// Replaces `out` by the characters of the bytes up to the first that is none. How many bytes these are.
std::size_t decode_single_bytes(std::wstring& out, std::string_view bytes, const upper_half& upper);

/// What became of bytes whose encoding was named.
enum class charset_result : std::uint8_t {
  good,
  malformed,  ///< Some bytes are no character and became U+FFFD.
  unknown     ///< The name is none of those below; nothing was decoded.
};

/// Replaces `out` by the text. Names are compared without regard to case: UTF-8, US-ASCII, ISO-8859-1,
/// ISO-8859-15 and Windows-1252 with their usual other names. What says to be ISO-8859-1 is read as
/// Windows-1252, as everybody does: the two differ where the former has control characters, which are the
/// marks and quotes of the latter in messages that lie.
charset_result decode_charset(std::wstring& out, std::string_view bytes, std::wstring_view name);

}  // namespace ruvo::texto
