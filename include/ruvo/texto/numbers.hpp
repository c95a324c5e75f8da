// SPDX-License-Identifier: BSL-1.0
#pragma once

// Numbers as text: formatting, tests of form, amounts in words.

#include <ruvo/api.hpp>
#include <ruvo/texto/exact_view.hpp>

#include <string>

namespace ruvo::texto {

/// Fixed notation with that many decimals (0 when negative), exactly rounded with ties to even, in groups of
/// three digits. The separators are those of the calling thread's application, ',' and '.' on a thread
/// without one. A negative number that rounds to zero keeps its sign ("-0"). "nan", "inf", "-inf".
KESTA_API std::wstring format(double value, short decimals);
/// The same without decimals.
/// @quirk A double takes this form too when no decimals are given, and loses its own: format(1234.56) gives
/// "1.234".
KESTA_API std::wstring format(long value);

/// Decimal digits of the absolute value; 1 for 0.
KESTA_API int calculate_length_number(int number);
/// The number right-aligned in at least `width` units.
/// @quirk The fill stands before the sign: width 3, number -5, fill '0' give "0-5".
KESTA_API std::wstring fill_number(int width, int number, wchar_t fill);

/// A size in bytes with three decimals after a point and the greatest unit of "b", "kb", "Mb", "Gb", "Tb",
/// "Pb", "Eb" (powers of 1024) that it reaches: "1.500 kb". No separators of the thread.
KESTA_API std::wstring format_file_size(unsigned long long bytes);

/// Roman numeral below 1000000, empty for 0; "Número no soportado" from there on.
/// @quirk Additive, four is "IIII"; from 5000 on the letters stand for their thousandfold too ("V", "X").
KESTA_API std::wstring to_roman(unsigned int number);

/// The amount in Spanish words, each with an upper-case initial but "y" and "con": "Veintiún Mil Treinta y
/// Uno con Cincuenta Céntimos", "Menos Cien", "Un Millón", "Dos Mil Millones".
///
/// The amount is rounded as format() does with two decimals, so that figures and words agree; "Cero", without
/// the sign that format() keeps, when nothing remains. Twenty-one to twenty-nine are one word. The last
/// number keeps its long form ("Uno"), for no noun is known; the others are shortened ("Un", "Veintiún").
/// "Número no soportado" from 10^15 on and for NaN.
/// @quirk Good Spanish has precedence over one word for each figure: "Mil", not "Uno Mil"; "Un", "Veintiún",
/// "Millón" and "Billón" where the language has them; "Millones" once, behind the thousands of them ("Dos Mil
/// Dos Millones").
KESTA_API std::wstring cifras_letras(double amount);

/// Whole text: digits in groups of three separated by points and decimals after a comma, or with both
/// exchanged, without sign; or an optional '-', a digit, and then digits and points, or digits and commas.
/// @quirk The second form is loose: "-1.2.3" and "1.." are numbers, while "-1.234,5" is none.
KESTA_API bool is_number(const std::wstring& text);
KESTA_API bool is_number(wide_view text);
/// Whole text: an optional '-' and digits, as many as there are.
KESTA_API bool is_integer(const std::wstring& text);
KESTA_API bool is_integer(wide_view text);
/// Whole text: digits only.
KESTA_API bool is_integer_positive(const std::wstring& text);
KESTA_API bool is_integer_positive(wide_view text);

/// Whole text: ASCII letters, digits, '_', '-' and '+', then words of letters, digits, '_' and '-' after a
/// point each; '@'; a word of letters, digits and '-', words of letters and digits after a point each, the
/// last with two letters or more and nothing else. Narrower than RFC 5321 allows.
KESTA_API bool is_email(const std::wstring& text);
KESTA_API bool is_email(wide_view text);

}  // namespace ruvo::texto
