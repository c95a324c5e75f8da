#pragma once

// ruvo::texto, free functions over text: trimming, case, encodings.
//
// A function whose name ends in `_` returns a new text; its twin without `_` changes its argument in place
// and returns it. Both give the same text. Character classes are those of the "C" locale: no unit above 127
// is a blank, a digit or a letter, unless a function says so. All functions are reentrant.

#include <ruvo/api.hpp>

#include <string>

namespace ruvo::texto {

// Trimming and blanks

KESTA_API std::wstring& ltrim(std::wstring& text);
KESTA_API std::wstring ltrim_(const std::wstring& text);
KESTA_API std::wstring& rtrim(std::wstring& text);
KESTA_API std::wstring rtrim_(const std::wstring& text);
KESTA_API std::wstring& trim(std::wstring& text);
KESTA_API std::wstring trim_(const std::wstring& text);

/// `a` unless it is empty, else `b`. The narrow form converts from UTF-8.
KESTA_API std::wstring safe_non_empty(const std::wstring& a, const std::wstring& b);
KESTA_API std::wstring safe_non_empty(const std::string& a, const std::string& b);

// Case: A-Z and the accented capitals U+00C0 to U+00DD (without U+00D7), with their small letters

KESTA_API wchar_t to_lowercase(wchar_t c);
KESTA_API std::wstring& to_lowercase(std::wstring& text);
KESTA_API std::wstring to_lowercase_(const std::wstring& text);
KESTA_API wchar_t to_uppercase(wchar_t c);
KESTA_API std::wstring& to_uppercase(std::wstring& text);
KESTA_API std::wstring to_uppercase_(const std::wstring& text);

// Comparison and tests

/// Whether `text` begins with, ends with or holds `part`; an empty part always does. Case-sensitive.
KESTA_API bool starts_with(const std::wstring& text, const std::wstring& part);
KESTA_API bool ends_with(const std::wstring& text, const std::wstring& part);
KESTA_API bool contains(const std::wstring& text, const std::wstring& part);

/// Whole text: an optional '-' and digits, as many as there are.
KESTA_API bool is_integer(const std::wstring& text);
/// Whole text: digits only.
KESTA_API bool is_integer_positive(const std::wstring& text);

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
