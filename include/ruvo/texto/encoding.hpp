// SPDX-License-Identifier: BSL-1.0
#pragma once

// UTF-8, Base64, hexadecimal and the encodings of the web and of mail.

#include <ruvo/api.hpp>
#include <ruvo/texto/exact_view.hpp>
#include <ruvo/wider.hpp>

#include <iosfwd>
#include <limits>
#include <locale>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// Free functions over text.
///
/// A function whose name ends in `_` returns a new text; its twin without `_` changes its argument in place
/// and returns it. Both give the same text. Character classes are those of the "C" locale: no unit above 127
/// is a blank, a digit or a letter, unless a function says so. All functions are reentrant.
namespace ruvo::texto {

// --- UTF-8 and UTF-16

/// From UTF-8 to UTF-16. Never fails: each maximal malformed part becomes U+FFFD.
KESTA_API std::wstring to_utf_16(const std::string& text);
/// From UTF-16 to UTF-8. Never fails: each lone surrogate becomes U+FFFD.
KESTA_API std::string to_utf_8(const std::wstring& text);
// NOLINTBEGIN(readability-redundant-declaration): the library's ground floor declares them, too
/// The same behind what `out` holds, for a text that is kept and emptied: one with enough room is filled
/// without new memory. Where there is no memory, a part may have been appended.
KESTA_API void append_utf_16(std::wstring& out, std::string_view text);
KESTA_API void append_utf_8(std::string& out, std::wstring_view text);
// NOLINTEND(readability-redundant-declaration)
/// The same of views.
inline std::wstring to_utf_16(narrow_view text) {
  std::wstring out;
  append_utf_16(out, text);
  return out;
}
inline std::string to_utf_8(wide_view text) {
  std::string out;
  append_utf_8(out, text);
  return out;
}
/// Removes the bytes EF BB BF at the start of `text`, if they are there.
KESTA_API void remove_win_bom(std::string& text);

// --- UTF-8 and the system's ANSI code page; for UTF-8 and UTF-16 there are to_utf_8 and to_utf_16

/// From the ANSI code page to UTF-8. A text of more than 2^31 - 1 bytes gives an empty one.
/// @quirk The locale is not consulted; the page is that of the system.
KESTA_API std::string to_utf8(const std::string& text, const std::locale& locale);
/// From UTF-8 to the ANSI code page; what the page does not hold becomes its default character.
/// @quirk The locale is not consulted; the page is that of the system.
KESTA_API std::string from_utf8(const std::string& text, const std::locale& locale);

/// The text that a wide string stream holds; empty for a stream over anything but a std::wstringbuf.
KESTA_API std::wstring stream_to_string(const std::wostream& stream);

// --- Base64, RFC 4648, with the standard or the URL-safe alphabet

/// Replaces `out` by the encoding of `in`, padded with '=' in both alphabets. `out` may be `in`. This and the
/// next use the memory of `out` where that is enough.
/// @quirk The wide form encodes the low 8 bits of every unit only: it serves bytes held in wide text.
KESTA_API void base64_encode(std::wstring& out, const std::wstring& in, bool url_safe);
KESTA_API void base64_encode(std::string& out, const std::string& in, bool url_safe);
/// Replaces `out` by the bytes that `in` holds in either alphabet; the wide form gives one unit per byte.
/// Ends at the first '='; every other character outside the alphabets is skipped, and so is a last digit that
/// makes no byte. `out` may be `in`.
KESTA_API void base64_decode(std::string& out, const std::string& in);
KESTA_API void base64_decode(std::wstring& out, const std::wstring& in);
/// Replaces `out` by the first `count` bytes in the standard alphabet; all of them when `count` is negative
/// or larger than their number.
KESTA_API void set_binary_data(std::string& out, const std::vector<unsigned char>& bytes, long count);
/// Throws std::length_error for less than all bytes, when a long does not hold their number.
template <ruvo::detail::wider_than_ulong Count>
void set_binary_data(std::string& out, const std::vector<unsigned char>& bytes, Count count) {
  const auto wide = static_cast<unsigned long long>(count);
  const bool all = wide >= bytes.size();  // negative numbers too
  if (!all && wide > (std::numeric_limits<long>::max)()) throw std::length_error("count beyond 31 bits");
  set_binary_data(out, bytes, all ? -1L : static_cast<long>(wide));
}
/// Replaces `bytes` by those that `text` holds, as base64_decode reads it.
KESTA_API void get_binary_data(std::string text, std::vector<unsigned char>& bytes);

// --- hexadecimal

/// The code of a character, in two lower-case digits.
/// @quirk Only the low 8 bits of a wide character are written: these forms serve bytes held in wide text.
KESTA_API std::wstring char_to_hex(char c);
KESTA_API std::wstring char_to_hex(unsigned char c);
KESTA_API std::wstring char_to_hex(wchar_t c);
/// The codes of all characters or bytes in a row, two lower-case digits each.
/// @quirk Only the low 8 bits of a wide character are written.
KESTA_API std::wstring string_to_hex(const std::wstring& text);
KESTA_API std::wstring string_to_hex(const std::string& text);
KESTA_API std::wstring string_to_hex(wide_view text);
KESTA_API std::wstring string_to_hex(narrow_view text);
KESTA_API std::wstring bytes_to_hexString(const unsigned char* bytes, unsigned long count);
/// Throws std::length_error beyond what an unsigned long holds.
template <ruvo::detail::wider_than_ulong Count>
std::wstring bytes_to_hexString(const unsigned char* bytes, Count count) {
  return bytes_to_hexString(bytes, ruvo::detail::checked_ulong(count));
}
/// The characters, one a byte, that pairs of digits of either case stand for; an odd last digit is ignored.
/// Throws std::invalid_argument ("invalid hex digit").
KESTA_API std::wstring hex_to_string(const std::wstring& hex);
KESTA_API std::string hex_to_string(const std::string& hex);
KESTA_API std::wstring hex_to_string(wide_view hex);
KESTA_API std::string hex_to_string(narrow_view hex);
/// Both into a text that is kept: they replace `out` by the digits, or by what they stand for, and use its
/// memory where that is enough. `out` may be `in`. Decoding throws as above; `out` is empty then.
KESTA_API void hex_encode(std::wstring& out, const std::wstring& in);
KESTA_API void hex_encode(std::wstring& out, const std::string& in);
KESTA_API void hex_decode(std::wstring& out, const std::wstring& in);
KESTA_API void hex_decode(std::string& out, const std::string& in);
/// The value of a digit, 0 to 15. Throws std::invalid_argument ("invalid hex digit").
KESTA_API int hex_char_to_int(wchar_t digit);
/// The decimal digits of a hexadecimal number of any length, without leading zeros; "0" for an empty text. No
/// sign and no prefix: throws std::invalid_argument ("Carácter hexadecimal no válido", in UTF-8) for anything
/// but digits. The time grows with the square of the length.
KESTA_API std::string hex_to_dec(const std::string& hex);
KESTA_API std::string hex_to_dec(narrow_view hex);

// --- the web and mail

/// Percent-encoding of the text's UTF-8, RFC 3986: letters, digits and `-._~` stay, every other byte becomes
/// `%` and two upper-case digits. For a part of an address, not for a whole one: its "/" and "?" do not stay.
[[nodiscard]] KESTA_API std::wstring web_encode(std::wstring text);
[[nodiscard]] inline std::wstring web_encode(wide_view text) { return web_encode(std::wstring(text)); }
/// What web_encode() made the text of, also of small digits and of characters that need no encoding. A "+" is
/// a "+": in the query of a form, where it is a blank, take http::fields (<ruvo/forms.hpp>). Throws
/// std::invalid_argument ("invalid percent-encoding") for a "%" without two digits behind it, and for bytes
/// that are no UTF-8.
[[nodiscard]] KESTA_API std::wstring web_decode(const std::wstring& text);
[[nodiscard]] KESTA_API std::wstring web_decode(wide_view text);
/// The UTF-8 text as "Q" encoded words of a mail header, RFC 2047: `=?UTF-8?Q?...?=`, each of at most 75
/// characters, ending between characters and joined by CRLF and a blank. What stands before the first word is
/// not counted: behind a field's name its line may pass the 76 characters of section 2 by that name. Literal
/// are only the characters that are safe in a phrase: letters, digits and `!*+-/`, with `_` for a blank.
/// A text of printable ASCII without `=?` needs no encoding and comes back as it is, in one line; that fits
/// unstructured fields like Subject, while a name with `,`, `<` or `@` before an address wants quotes.
/// Malformed parts become U+FFFD.
KESTA_API std::string q_encoded(const std::string& text);
KESTA_API std::string q_encoded(narrow_view text);

}  // namespace ruvo::texto
