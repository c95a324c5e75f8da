#pragma once

// UTF-8, Base64, hexadecimal and the encodings of the web and of mail.

#include <ruvo/api.hpp>

#include <string>

namespace ruvo::texto {

// UTF-8 and UTF-16. Never fail: each maximal malformed part of a UTF-8 text and each lone surrogate becomes
// U+FFFD.

KESTA_API std::wstring to_utf_16(const std::string& text);
KESTA_API std::string to_utf_8(const std::wstring& text);
/// Removes the bytes EF BB BF at the start of `text`, if they are there.
KESTA_API void remove_win_bom(std::string& text);

// Base64, RFC 4648, with the standard or the URL-safe alphabet

/// Replaces `out` by the encoding of `in`, padded with '=' in both alphabets. `out` may be `in`.
/// @quirk The wide form encodes the low 8 bits of every unit only: it serves bytes held in wide text.
KESTA_API void base64_encode(std::wstring& out, const std::wstring& in, bool url_safe);
KESTA_API void base64_encode(std::string& out, const std::string& in, bool url_safe);
/// Replaces `out` by the bytes that `in` holds in either alphabet; the wide form gives one unit per byte.
/// Ends at the first '='; every other character outside the alphabets is skipped. `out` may be `in`.
KESTA_API void base64_decode(std::string& out, const std::string& in);
KESTA_API void base64_decode(std::wstring& out, const std::wstring& in);

// Hexadecimal, two lower-case digits for a character

/// @quirk Only the low 8 bits of a wide character are written: these forms serve bytes held in wide text.
KESTA_API std::wstring char_to_hex(char c);
KESTA_API std::wstring char_to_hex(unsigned char c);
KESTA_API std::wstring char_to_hex(wchar_t c);
/// The codes of all characters in a row.
KESTA_API std::wstring string_to_hex(const std::wstring& text);
KESTA_API std::wstring string_to_hex(const std::string& text);
KESTA_API std::wstring bytes_to_hexString(const unsigned char* bytes, unsigned long count);
/// Reads pairs of digits of either case; an odd last digit is ignored. Throws std::invalid_argument ("invalid
/// hex digit").
KESTA_API std::wstring hex_to_string(const std::wstring& hex);
KESTA_API std::string hex_to_string(const std::string& hex);
/// 0 to 15. Throws std::invalid_argument ("invalid hex digit").
KESTA_API int hex_char_to_int(wchar_t digit);

}  // namespace ruvo::texto
