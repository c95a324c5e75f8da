// SPDX-License-Identifier: BSL-1.0
#pragma once

// Numbers of standard JSON: their grammar, and the value that holds them.

#include <ruvo/standard_json.hpp>

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/numbers.hpp"
#include "serializer/json/digits.hpp"

namespace ruvo::serializer {

/// A number of a text, and what holds it.
struct number_value {
  // natural: beyond long long only; exact: a decimal, which is made of the text again
  enum class form { integer, natural, real, exact, written, refused };

  form kind = form::integer;
  long long integer = 0;  // of a natural number too
  double real = 0;
};

/// A number as its digits stand in a text.
struct number_parts {
  static constexpr std::ptrdiff_t most_digits = 19;  // which any 64 bits hold
  static constexpr std::int64_t largest_exponent = 1'000'000'000'000'000;

  bool negative = false, whole = true;  // without fraction and exponent
  std::uint64_t digits = 0;             // all of them, modulo 2^64
  std::ptrdiff_t count = 0;             // of them, zeros in front included
  std::ptrdiff_t decimals = 0;          // those behind the point
  std::int64_t exponent = 0;            // as it is written, but for the digits beyond largest_exponent
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

namespace numbers {

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
  const Unit* const first = at;
  at = *at == Unit('0') ? at + 1 : take_digits(at, end, parts.digits);
  parts.count = at - first;
  if (at != end && *at == Unit('.')) {
    parts.whole = false;
    const Unit* const point = at++;
    at = take_digits(at, end, parts.digits);
    parts.decimals = at - point - 1;
    parts.count += parts.decimals;
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
  if (options.inexact == json_number::nearest && !options.decimals && !parts.whole && parts.exponent == 0 &&
      parts.count <= texto::most_quotient_digits) {
    const double value = texto::quotient(parts.digits, static_cast<int>(parts.decimals));
    return {form::real, 0, parts.negative ? -value : value};
  }
  return uncommon_value(parts, written, options);
}

}  // namespace ruvo::serializer
