// SPDX-License-Identifier: BSL-1.0
#pragma once

// Numbers of standard JSON: their grammar, and the value that holds them.

#include <ruvo/standard_json.hpp>

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/ascii.hpp"
#include "base/numbers.hpp"

namespace ruvo::serializer {

/// A number of a text, and what holds it.
struct number_value {
  enum class form { integer, natural, real, written, refused };  // natural: beyond long long only

  form kind = form::integer;
  long long integer = 0;  // of a natural number too
  double real = 0;
};

/// A number as its digits stand in a text.
struct number_parts {
  static constexpr int most_digits = 19;  // which any 64 bits hold

  bool negative = false, whole = true;  // without fraction and exponent
  std::uint64_t digits = 0;             // the first most_digits, without zeros in front
  std::ptrdiff_t count = 0;             // of all digits, without zeros in front
  std::ptrdiff_t decimals = 0;          // behind the point
  std::int64_t exponent = 0;            // as it is written, but for the digits beyond largest_exponent

  static constexpr std::int64_t largest_exponent = 1'000'000'000'000'000;
};

/// Takes the number that begins at `at`, up to the first unit that is no part of it; null where that unit has
/// to be another one, and `at` is there.
template <class Unit>
const Unit* take_number(const Unit*& at, const Unit* end, number_parts& parts) noexcept;

/// The value of a number, whose text is given in ASCII units.
template <class Unit>
number_value value_of(const number_parts& parts, std::basic_string_view<Unit> written,
                      const json_read_options& options);

// --- in the header: what most numbers are

template <class Unit>
inline bool is_digit_unit(Unit c) noexcept {
  return c >= Unit('0') && c <= Unit('9');
}

namespace numbers {

template <class Unit>
inline const Unit* take_digits(const Unit* at, const Unit* end, number_parts& parts) noexcept {
  for (; at != end && is_digit_unit(*at); ++at) {
    const auto digit = static_cast<std::uint64_t>(*at - Unit('0'));
    if (parts.count < number_parts::most_digits) parts.digits = parts.digits * 10 + digit;
    if (parts.digits != 0) ++parts.count;
  }
  return at;
}

template <class Unit>
inline bool take_exponent(const Unit*& at, const Unit* end, number_parts& parts) noexcept {
  ++at;
  const bool below = at != end && *at == Unit('-');
  if (at != end && (below || *at == Unit('+'))) ++at;
  if (at == end || !is_digit_unit(*at)) return false;
  std::int64_t exponent = 0;
  for (; at != end && is_digit_unit(*at); ++at) {
    if (exponent < number_parts::largest_exponent)
      exponent = exponent * 10 + static_cast<std::int64_t>(*at - Unit('0'));
  }
  parts.exponent = below ? -exponent : exponent;
  return true;
}

}  // namespace numbers

template <class Unit>
inline const Unit* take_number(const Unit*& at, const Unit* end, number_parts& parts) noexcept {
  parts.negative = *at == Unit('-');
  if (parts.negative) ++at;
  if (at == end || !is_digit_unit(*at)) return nullptr;
  if (*at == Unit('0')) {
    ++at;
  } else {
    at = numbers::take_digits(at, end, parts);
  }
  if (at != end && *at == Unit('.')) {
    parts.whole = false;
    const Unit* const first = ++at;
    at = numbers::take_digits(at, end, parts);
    parts.decimals = at - first;
    if (parts.decimals == 0) return nullptr;
  }
  if (at != end && (*at == Unit('e') || *at == Unit('E'))) {
    parts.whole = false;
    if (!numbers::take_exponent(at, end, parts)) return nullptr;
  }
  return at;
}

/// The value of what is written in units of any width. Throws std::bad_alloc.
number_value uncommon_value(const number_parts& parts, std::string_view written,
                            const json_read_options& options);
number_value uncommon_value(const number_parts& parts, std::wstring_view written,
                            const json_read_options& options);

template <class Unit>
inline number_value value_of(const number_parts& parts, std::basic_string_view<Unit> written,
                             const json_read_options& options) {
  using form = number_value::form;
  constexpr std::uint64_t first_beyond = std::uint64_t{1} << 63;
  if (parts.whole && parts.digits < first_beyond && parts.count <= number_parts::most_digits &&
      (parts.digits != 0 || !parts.negative)) {
    const auto value = static_cast<long long>(parts.digits);
    return {form::integer, parts.negative ? -value : value, 0};
  }
  if (options.inexact == json_number::nearest && !parts.whole && parts.exponent == 0 && parts.count <= 18 &&
      parts.decimals <= 18) {
    const double value = texto::quotient(parts.digits, static_cast<int>(parts.decimals));
    return {form::real, 0, parts.negative ? -value : value};
  }
  return uncommon_value(parts, written, options);
}

}  // namespace ruvo::serializer
