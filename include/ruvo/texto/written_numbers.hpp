// SPDX-License-Identifier: BSL-1.0
#pragma once

// Numbers as people write them: "1.234,56", "(12,30)", "12,5 %", "1.234 €".

#include <ruvo/api.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace ruvo::texto {

/// What is wrong with a number that was written.
enum class number_fault {
  none,       ///< Nothing.
  empty,      ///< There is nothing but blanks.
  character,  ///< A character that cannot stand there.
  digits,     ///< Digits are missing: there are none, or none on a side of a separator ("5.", ",5").
  separator,  ///< A separator that is not in force, or not in its place.
  grouping,   ///< Thousands that are not in groups of three, the first being of one to three without a zero
              ///< first.
  sign,       ///< A second sign, one apart from the number, a bracket without the other.
  unit,       ///< A second unit, or one where none is taken.
  too_large,  ///< Beyond what a double holds.
};

/// How a number is read.
struct number_options {
  /// The separators in force; 0 is that of the calling thread's application, ',' and '.' on a thread without
  /// one. Where only one of them is given and the application's other one is the same, that is the opposite,
  /// ',' or '.'. A blank stands for blanks of every width, two that are the same for no groups at all.
  wchar_t decimal = 0;
  wchar_t thousands = 0;
  /// Whether also what is not written by the rules is taken: see parse_number().
  bool lenient = false;
  /// Whether a percent sign or a currency may stand beside the number.
  bool takes_units = true;
};

/// What parse_number() read.
struct parsed_number {
  number_fault fault = number_fault::none;  ///< The rest is of use only where there is none.
  /// The first character that is wrong, counted from 1 in units of the text; 0 without a fault and for an
  /// empty text.
  std::size_t position = 0;
  /// Whether the one separator could have been meant as the other, as in "1.234", and those in force decided.
  /// Only when reading leniently: strictly, they always do.
  bool is_ambiguous = false;
  /// The nearest double. A percentage is as it is written: 12.5 of "12,5 %".
  double value = 0;
  /// The number exactly, as C has it: an optional '-', digits without zeros before them that say nothing, and
  /// with all the decimals that were written a point and these: "-1234.50". Zero has no sign.
  std::wstring plain{};
  /// "%", "‰", "€", "$", "£", "¥" or a code of three capitals; empty without one.
  std::wstring unit{};

  /// Whether a number was read.
  explicit operator bool() const noexcept { return fault == number_fault::none; }
};

/// Reads the whole text as a number. Blanks around it do not count. Linear in its length.
///
/// A number is digits, in groups of three between separators of thousands or without any, and possibly a
/// decimal separator and decimals, with a digit at least on either side. '-', U+2212 or '+' stands directly
/// before it, or it stands in round brackets, which make it negative. Beside it there may be one unit: behind
/// it % or ‰, before or behind it €, $, £, ¥ or three capitals, with a blank between or not.
///
/// Leniently, '.' and ',' are each taken for what they have to be: the last of both is the decimal separator,
/// one that comes twice separates thousands, one that does not stand before exactly three digits separates
/// decimals, and so does "0.123". Only where this leaves a choice, in "1.234", the separators in force
/// decide, the decimal one where '.' or ',' is neither, and the result says so. Thousands may be separated by
/// blanks and apostrophes, too. Digits may be missing on one side of the decimal separator, a minus stand
/// behind the number, apart from it, or be an en dash, a code be in small letters, and "euro" and "euros" are
/// "EUR". Groups have three digits in any case, and there are no exponents.
[[nodiscard]] KESTA_API parsed_number parse_number(std::wstring_view text,
                                                   const number_options& options = {});

/// What is wrong and where, in Spanish, for people; empty when nothing is.
KESTA_API std::wstring message_of(const parsed_number& number);

}  // namespace ruvo::texto
