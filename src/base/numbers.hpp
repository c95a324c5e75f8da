// SPDX-License-Identifier: BSL-1.0
#pragma once

// Numbers to and from text, in the classic locale and without streams.

#include <cstddef>
#include <string>
#include <string_view>

namespace ruvo::texto {

/// Room for any integer, and for any number that print_fixed() takes.
constexpr std::size_t most_number_units = 32;
constexpr int most_short_decimals = 9;

/// The first double that is beyond long long.
constexpr double two_to_63 = 9223372036854775808.0;

/// Truncated towards zero; what 64 bits do not hold becomes the nearest number that they do, NaN becomes 0.
long long truncated(double value) noexcept;

/// The answer of functions that take only a range of numbers.
inline constexpr wchar_t unsupported_number[] = L"Número no soportado";

/// Write a number at `to` and return its end.
wchar_t* print_integer(wchar_t* to, long long value) noexcept;
wchar_t* print_unsigned(wchar_t* to, unsigned long long value) noexcept;
/// As append_fixed(); null for NaN, from 2^63 on, and for more than most_short_decimals.
wchar_t* print_fixed(wchar_t* to, double value, int decimals = 6) noexcept;

/// Room for any number that print_any_fixed() takes: sign, 309 digits, point and decimals.
constexpr std::size_t most_fixed_units = 320;
/// As append_fixed() with six decimals, for any number, but slower than print_fixed().
wchar_t* print_any_fixed(wchar_t* to, double value) noexcept;

/// Room for print_shortest(), which writes beyond the end that it gives.
constexpr std::size_t most_shortest_units = 48;
/// Writes the fewest digits that read back to the same double, of those the nearest to it, and gives their
/// end. There is always a point or an exponent in it: fixed notation from 1e-4 up to below 1e16 (`0.0001`,
/// `-12.5`, `100000.0`), else one digit before the point, if there is one, and the exponent (`1e16`,
/// `5e-324`). Zero keeps its sign. Not for NaN and infinities.
char* print_shortest(char* to, double value) noexcept;

/// Room for print_exact().
constexpr std::size_t most_exact_units = 400;  // of 5e-324 there are 326
/// Fixed notation with as many digits behind the point as reading back takes, and no point without them. Not
/// for NaN and infinities.
char* print_exact(char* to, double value) noexcept;
char* print_exact(char* to, float value) noexcept;

void append_integer(std::wstring& out, long long value);
void append_unsigned(std::wstring& out, unsigned long long value);

/// Fixed notation with `decimals` (0 or more) digits after the point, correctly rounded; no point without
/// digits after it; NaN and infinities as "nan" and "inf".
void append_fixed(std::wstring& out, double value, int decimals = 6);

/// Reads a base-ten 64-bit integer at the start of `text`: blanks, a sign, digits; what follows is ignored.
/// Throws std::invalid_argument ("invalid stoll argument") without a digit and std::out_of_range
/// ("stoll argument out of range") beyond 64 bits.
long long read_integer(std::wstring_view text);

/// Reads a number in fixed notation (sign, digits, point, digits) at the start of `text`; what follows is
/// ignored. Throws std::invalid_argument ("invalid stod argument") without a digit and std::out_of_range
/// ("stod argument out of range") beyond the range of double.
double read_double(std::wstring_view text);

/// What quotient() takes.
constexpr int most_quotient_digits = 19, most_quotient_decimals = 22;
/// `digits` / 10^`decimals`, correctly rounded.
double quotient(unsigned long long digits, int decimals) noexcept;

/// Whole text: optional sign, digits, and optionally a point with optional digits.
bool is_plain_number(std::wstring_view text);

/// Whole text: optional '-', one or more digits.
bool is_plain_integer(std::wstring_view text);

/// `text` without the blanks (ASCII) at its ends.
std::wstring_view trimmed(std::wstring_view text);

}  // namespace ruvo::texto
