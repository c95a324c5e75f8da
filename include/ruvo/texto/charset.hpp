// SPDX-License-Identifier: BSL-1.0
#pragma once

// Bytes of others as text: which encoding they are in, as far as that can be seen, and what in them was no
// character.

#include <ruvo/api.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ruvo::texto {

/// How bytes stand for characters.
enum class charset : std::uint8_t {
  utf_8,        ///< ASCII is UTF-8, too.
  utf_16_le,    ///< Two bytes a unit, the low one first.
  utf_16_be,    ///< Two bytes a unit, the high one first.
  windows_1252  ///< One byte a character, the letters of Western Europe. ISO-8859-1 but for 80 to 9F.
};

/// How sure a guess is.
enum class certainty : std::uint8_t {
  certain,  ///< A mark says so, or all bytes are ASCII.
  likely,   ///< All bytes fit, and they would hardly do so by chance.
  doubtful  ///< Some bytes do not fit, or control characters are among them; perhaps they are no text.
};

/// What bytes seem to be.
struct charset_guess {
  charset what = charset::utf_8;            ///< The encoding.
  certainty how_sure = certainty::certain;  ///< How far that is to be believed.
  std::size_t mark = 0;  ///< Bytes of the byte order mark in front, which is no part of the text.
};

/// Guesses by these rules, in this order:
/// - A byte order mark (EF BB BF, FF FE, FE FF) decides.
/// - Bytes without a NUL that are well-formed UTF-8 are UTF-8.
/// - Bytes with NULs are UTF-16 where these stand in the high halves of units, and all units are characters.
/// - Of what is left, bytes with more well-formed long characters of UTF-8 than malformed parts are damaged
///   UTF-8, others Windows-1252; both are doubtful where some bytes are no characters.
/// UTF-16 without a mark and without a single blank, digit, line end or other character of Latin-1 is not
/// recognised. If the bytes are not the whole text, a last character that is cut off is no fault.
KESTA_API charset_guess guess_charset(std::string_view bytes, bool is_whole = true) noexcept;

/// A text, and what it was made of.
struct decoded_text {
  std::wstring text;                ///< Without the mark.
  charset_guess from;               ///< The guess, or the encoding that was asked for, which is certain.
  std::size_t replaced = 0;         ///< How many parts were no characters and became U+FFFD.
  std::vector<std::size_t> places;  ///< Where the first 100 of them begin, in bytes from the first one on.
};

/// The text of bytes in the encoding that guess_charset() gives, or in this one, whose mark is no part of the
/// text. Malformed parts of UTF-8, half surrogate pairs, an odd last byte of UTF-16 and the five bytes that
/// are nothing in Windows-1252 become U+FFFD each, and are counted.
KESTA_API decoded_text decode(std::string_view bytes);
KESTA_API decoded_text decode(std::string_view bytes, charset as);

/// Appends the text of bytes in an encoding, in which a mark is a character like others; gives how many parts
/// became U+FFFD. For a text that is kept and emptied, line by line.
KESTA_API std::size_t append_decoded(std::wstring& out, std::string_view bytes, charset as);

/// "UTF-8", "UTF-16LE", "UTF-16BE", "windows-1252": the names that documents have for them.
KESTA_API std::wstring_view name_of(charset what) noexcept;

}  // namespace ruvo::texto
