// SPDX-License-Identifier: BSL-1.0
#pragma once

// The sums behind control characters, over text that has only what they take.

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "base/ascii.hpp"

namespace ruvo::texto {

inline bool is_digit_char(char c) { return is_digit(unit_of(c)); }
inline bool is_alpha_char(char c) { return is_alpha(unit_of(c)); }
inline bool are_digits(std::string_view text) { return std::all_of(text.begin(), text.end(), is_digit_char); }
inline char upper(char c) { return static_cast<char>(to_upper(unit_of(c))); }

/// The number of up to nine digits.
inline unsigned long number_of(std::string_view digits) {
  unsigned long number = 0;
  for (const char digit : digits) number = number * 10 + static_cast<unsigned long>(digit - '0');
  return number;
}

/// Writes a number below 100 in two digits.
inline void put_pair(char* to, int number) {
  to[0] = static_cast<char>('0' + number / 10);
  to[1] = static_cast<char>('0' + number % 10);
}

/// The letter that controls the number of a DNI or NIE.
inline char dni_letter(unsigned long number) { return "TRWAGMYFPDXBNJZSQVHLCKE"[number % 23]; }

/// The remainder modulo 97 of the number that goes on with `text`, of digits and letters, A being 10 and Z 35
/// in either case.
inline int remainder_97(int remainder, std::string_view text) {
  for (const char c : text) {
    remainder = is_digit_char(c) ? remainder * 10 + (c - '0') : remainder * 100 + (upper(c) - 'A' + 10);
    remainder %= 97;
  }
  return remainder;
}

/// The sum by Luhn modulo 10 of digits, of which the last counts once (ISO/IEC 7812-1).
inline unsigned luhn_remainder(std::string_view digits) {
  unsigned long long sum = 0;
  bool doubled = false;
  for (auto at = digits.rbegin(); at != digits.rend(); ++at, doubled = !doubled) {
    const unsigned digit = static_cast<unsigned>(*at - '0') * (doubled ? 2 : 1);
    sum += digit > 9 ? digit - 9 : digit;
  }
  return static_cast<unsigned>(sum % 10);
}

}  // namespace ruvo::texto
