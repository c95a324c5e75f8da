#pragma once

// Numbers to and from text, in the classic locale and without streams.

#include <string>
#include <string_view>

namespace ruvo::texto {

void append_integer(std::wstring& out, long long value);
void append_unsigned(std::wstring& out, unsigned long long value);

/// Fixed notation with six digits after the point, correctly rounded; NaN and infinities as "nan" and "inf".
void append_fixed(std::wstring& out, double value);

/// Reads a base-ten 64-bit integer at the start of `text`: blanks, a sign, digits; what follows is ignored.
/// Throws std::invalid_argument ("invalid stoll argument") without a digit and std::out_of_range
/// ("stoll argument out of range") beyond 64 bits.
long long read_integer(std::wstring_view text);

/// Reads a number in fixed notation (sign, digits, point, digits) at the start of `text`; what follows is
/// ignored. Throws std::invalid_argument ("invalid stod argument") without a digit and std::out_of_range
/// ("stod argument out of range") beyond the range of double.
double read_double(std::wstring_view text);

/// Whole text: optional sign, digits, and optionally a point with optional digits.
bool is_plain_number(std::wstring_view text);

/// Whole text: optional '-', one or more digits.
bool is_plain_integer(std::wstring_view text);

/// `text` without the blanks (ASCII) at its ends.
std::wstring_view trimmed(std::wstring_view text);

}  // namespace ruvo::texto
