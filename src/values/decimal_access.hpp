// SPDX-License-Identifier: BSL-1.0
#pragma once

// The library's own access to the inside of a decimal, and what the sources of decimals share.

#include <ruvo/decimal.hpp>
#include <ruvo/exception.hpp>

#include <cstddef>
#include <cstdint>

#include "values/natural.hpp"

namespace ruvo::detail {

/// Why an operation on decimals has no result.
enum class decimal_failure : unsigned char { none, overflow, inexact, division_by_zero, scale };

/// Throws the failure's class.
[[noreturn]] void raise(decimal_failure why);
/// Copies it to `err`; true is success.
bool report(decimal_failure why, exception& err);

/// A coefficient and what makes a number of it, as operations have it before it is known to fit.
struct unfitted {
  natural coefficient;  // up to 10^76
  std::int64_t scale = 0;
  bool negative = false;
};

struct decimal_access {
  static natural coefficient(const ruvo::decimal& value) noexcept { return {value.low_, value.high_}; }
  static bool is_small(const ruvo::decimal& value) noexcept { return value.high_ == 0; }
  static std::uint64_t low(const ruvo::decimal& value) noexcept { return value.low_; }

  /// Without a test.
  static void set(ruvo::decimal& out, const natural& coefficient, int scale, bool negative) noexcept {
    out.low_ = coefficient.low();
    out.high_ = coefficient.high();
    out.scale_ = static_cast<std::uint8_t>(scale);
    out.negative_ = negative && !out.is_zero();
  }
  /// The number as it is, with fewer zeros at its end where that makes it fit.
  static decimal_failure fit(ruvo::decimal& out, unfitted made) noexcept;
  /// The number with `scale` decimals, which is tested.
  static decimal_failure round(ruvo::decimal& out, unfitted made, int scale, rounding how) noexcept;

  /// Room for print().
  static constexpr std::size_t most_units = 48;
  /// Writes decimal::to_string() in ASCII and gives its end.
  static char* print(char* to, const ruvo::decimal& value) noexcept;
};

/// `number` / `by`, rounded; `by` is not 0.
struct rounded_quotient {
  natural whole;
  bool is_exact = true;
};
rounded_quotient divided(const natural& number, const natural& by, bool negative, rounding how) noexcept;

}  // namespace ruvo::detail
