// SPDX-License-Identifier: BSL-1.0
#pragma once

// Natural numbers below 2^256, which hold the product of any two coefficients of decimals. In limbs of 32
// bits, whose products fit in what every compiler has.

#include <algorithm>
#include <array>
#include <bit>
#include <compare>
#include <cstddef>
#include <cstdint>

namespace ruvo::detail {

class natural {
 public:
  struct quotient;

  constexpr natural() noexcept = default;
  constexpr natural(std::uint64_t low, std::uint64_t high = 0) noexcept
      : limbs_{half(low), half(low >> 32), half(high), half(high >> 32)} {}

  constexpr std::uint64_t low() const noexcept { return limbs_[0] | std::uint64_t{limbs_[1]} << 32; }
  constexpr std::uint64_t high() const noexcept { return limbs_[2] | std::uint64_t{limbs_[3]} << 32; }
  constexpr bool is_zero() const noexcept { return used() == 0; }
  constexpr bool is_odd() const noexcept { return limbs_[0] & 1; }

  constexpr bool operator==(const natural&) const noexcept = default;
  constexpr std::strong_ordering operator<=>(const natural& other) const noexcept {
    for (std::size_t n = count; n-- > 0;)
      if (limbs_[n] != other.limbs_[n]) return limbs_[n] <=> other.limbs_[n];
    return std::strong_ordering::equal;
  }

  /// The sum has to fit.
  constexpr natural& operator+=(const natural& other) noexcept {
    std::uint64_t carry = 0;
    for (std::size_t n = 0; n < count; ++n) {
      carry += std::uint64_t{limbs_[n]} + other.limbs_[n];
      limbs_[n] = half(carry);
      carry >>= 32;
    }
    return *this;
  }
  /// Of a number that is not greater.
  constexpr natural& operator-=(const natural& other) noexcept {
    std::uint64_t borrow = 0;
    for (std::size_t n = 0; n < count; ++n) {
      const std::uint64_t difference = std::uint64_t{limbs_[n]} - other.limbs_[n] - borrow;
      limbs_[n] = half(difference);
      borrow = difference >> 63;
    }
    return *this;
  }

  /// False, with nothing of use in it, when the product does not fit.
  constexpr bool multiply(const natural& by) noexcept {
    std::array<std::uint32_t, 2 * count> product{};
    const std::size_t own = used(), others = by.used();
    for (std::size_t n = 0; n < own; ++n) {
      std::uint64_t carry = 0;
      for (std::size_t m = 0; m < others; ++m) {
        carry += std::uint64_t{limbs_[n]} * by.limbs_[m] + product[n + m];
        product[n + m] = half(carry);
        carry >>= 32;
      }
      product[n + others] = half(carry);
    }
    std::copy_n(product.begin(), count, limbs_.begin());
    return std::all_of(product.begin() + count, product.end(), [](std::uint32_t limb) { return limb == 0; });
  }

  /// Divides by a number that is not 0, and gives the remainder.
  constexpr std::uint32_t divide(std::uint32_t by) noexcept {
    std::uint64_t rest = 0;
    for (std::size_t n = used(); n-- > 0;) {
      rest = rest << 32 | limbs_[n];
      limbs_[n] = half(rest / by);
      rest %= by;
    }
    return half(rest);
  }

  /// By a number that is not 0.
  quotient divided(const natural& by) const noexcept;

 private:
  static constexpr std::size_t count = 8;

  static constexpr std::uint32_t half(std::uint64_t value) noexcept {
    return static_cast<std::uint32_t>(value);
  }
  constexpr std::size_t used() const noexcept {
    std::size_t n = count;
    while (n > 0 && limbs_[n - 1] == 0) --n;
    return n;
  }

  std::array<std::uint32_t, count> limbs_{};  // the lowest first
};

struct natural::quotient {
  natural whole, rest;
};

/// As people do it (Knuth, The Art of Computer Programming, 4.3.1 D): each digit is estimated by the first
/// ones, which are shifted so that the estimate is at most two too large.
inline natural::quotient natural::divided(const natural& by) const noexcept {
  const std::size_t digits = by.used();
  if (digits == 1) {
    quotient out{*this, {}};
    out.rest = natural(out.whole.divide(by.limbs_[0]));
    return out;
  }
  if (*this < by) return {{}, *this};

  const int shift = std::countl_zero(by.limbs_[digits - 1]);
  const auto shifted = [shift](std::uint32_t upper, std::uint32_t lower) {
    return half((std::uint64_t{upper} << 32 | lower) << shift >> 32);
  };
  std::array<std::uint32_t, count> divisor{};
  std::array<std::uint32_t, count + 1> rest{};
  for (std::size_t n = 0; n < count; ++n) {
    divisor[n] = shifted(by.limbs_[n], n > 0 ? by.limbs_[n - 1] : 0);
    rest[n] = shifted(limbs_[n], n > 0 ? limbs_[n - 1] : 0);
  }
  rest.back() = shifted(0, limbs_[count - 1]);

  quotient out;
  for (std::size_t place = used() - digits + 1; place-- > 0;) {
    constexpr std::uint64_t base = std::uint64_t{1} << 32;
    const std::uint64_t upper = std::uint64_t{rest[place + digits]} << 32 | rest[place + digits - 1];
    std::uint64_t digit = upper / divisor[digits - 1], left = upper % divisor[digits - 1];
    while (digit >= base || digit * divisor[digits - 2] > (left << 32 | rest[place + digits - 2])) {
      --digit;
      left += divisor[digits - 1];
      if (left >= base) break;
    }
    std::uint64_t carry = 0, borrow = 0;
    for (std::size_t n = 0; n <= digits; ++n) {
      carry += n < digits ? digit * divisor[n] : 0;
      const std::uint64_t difference = std::uint64_t{rest[place + n]} - half(carry) - borrow;
      rest[place + n] = half(difference);
      borrow = difference >> 63;
      carry >>= 32;
    }
    if (borrow != 0) {  // one too large
      --digit;
      std::uint64_t sum = 0;
      for (std::size_t n = 0; n <= digits; ++n) {
        sum += std::uint64_t{rest[place + n]} + (n < digits ? divisor[n] : 0);
        rest[place + n] = half(sum);
        sum >>= 32;
      }
    }
    out.whole.limbs_[place] = half(digit);
  }
  for (std::size_t n = 0; n < digits; ++n)
    out.rest.limbs_[n] = half((std::uint64_t{rest[n + 1]} << 32 | rest[n]) >> shift);
  return out;
}

/// 10^0 to 10^76, the last one that is below 2^256 with the double of it.
inline constexpr auto powers_of_ten = [] {
  std::array<natural, 77> powers{natural(1)};
  for (std::size_t n = 1; n != powers.size(); ++n) {
    powers[n] = powers[n - 1];
    powers[n].multiply(natural(10));
  }
  return powers;
}();

constexpr const natural& power_of_ten(int n) noexcept { return powers_of_ten[static_cast<std::size_t>(n)]; }

}  // namespace ruvo::detail
