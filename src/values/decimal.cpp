// SPDX-License-Identifier: BSL-1.0

// The arithmetic of decimals: exact, or rounded once.

#include <ruvo/decimal.hpp>
#include <ruvo/exc.hpp>

#include <algorithm>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "values/decimal_access.hpp"
#include "values/natural.hpp"

namespace ruvo {

using detail::decimal_access;
using detail::decimal_failure;
using detail::natural;
using detail::power_of_ten;
using detail::unfitted;

namespace {

constexpr int most_digits = decimal::most_digits;

bool is_scale(int scale) noexcept { return scale >= 0 && scale <= decimal::most_digits; }

bool is_too_long(const natural& coefficient) noexcept { return coefficient >= power_of_ten(most_digits); }

/// The sum of two numbers with signs.
unfitted sum(unfitted a, const unfitted& b) noexcept {
  if (a.negative == b.negative) {
    a.coefficient += b.coefficient;
    return a;
  }
  if (a.coefficient >= b.coefficient) {
    a.coefficient -= b.coefficient;
    return a;
  }
  unfitted out = b;
  out.coefficient -= a.coefficient;
  return out;
}

/// With as many decimals, which is more.
unfitted widened(const decimal& value, int scale) noexcept {
  unfitted out{decimal_access::coefficient(value), scale, value.is_negative()};
  static_cast<void>(out.coefficient.multiply(power_of_ten(scale - value.get_scale())));  // below 10^76
  return out;
}

unfitted product(const decimal& a, const decimal& b) noexcept {
  unfitted out{decimal_access::coefficient(a), a.get_scale() + b.get_scale(),
               a.is_negative() != b.is_negative()};
  static_cast<void>(out.coefficient.multiply(decimal_access::coefficient(b)));  // below 10^76
  return out;
}

/// Whether two small coefficients have a small product, which is the first one then.
bool multiplies(std::uint64_t& a, std::uint64_t b) noexcept {
  constexpr std::uint64_t half = std::uint64_t{1} << 32;
  if ((a >= half || b >= half) && a != 0 && b > std::numeric_limits<std::uint64_t>::max() / a) return false;
  a *= b;
  return true;
}

/// Whether a quotient that is not exact becomes its neighbour away from zero. What remains compares with what
/// is missing as `to_half` says.
bool goes_away(std::strong_ordering to_half, bool is_odd, bool negative, rounding how) noexcept {
  switch (how) {
    case rounding::half_up:
      return to_half >= 0;
    case rounding::half_even:
      return to_half > 0 || (to_half == 0 && is_odd);
    case rounding::half_down:
      return to_half > 0;
    case rounding::up:
      return true;
    case rounding::floor:
      return negative;
    case rounding::ceiling:
      return !negative;
    case rounding::down:
    case rounding::none:
      break;
  }
  return false;
}

/// A quotient of small coefficients, which nearly all are; natural has the others.
struct small_fraction {
  std::uint64_t number, by;

  /// Times 10^`power`; false, with nothing of use in it, where 64 bits do not hold it.
  bool shift(int power) noexcept {
    constexpr int most = 19;
    const int digits = power < 0 ? -power : power;
    return digits <= most && multiplies(power < 0 ? by : number, power_of_ten(digits).low());
  }

  decimal_failure round(decimal& to, int scale, bool negative, rounding how) const noexcept {
    const std::uint64_t whole = number / by, rest = number % by;
    if (rest != 0 && how == rounding::none) return decimal_failure::inexact;
    const bool away = rest != 0 && goes_away(rest <=> by - rest, whole % 2 != 0, negative, how);
    decimal_access::set(to, whole + (away ? 1 : 0), scale, negative);
    return decimal_failure::none;
  }
};

/// Gives the coefficients with as many decimals, where both are small then.
bool meet_small(const decimal& a, const decimal& b, std::uint64_t& of_a, std::uint64_t& of_b) noexcept {
  if (!decimal_access::is_small(a) || !decimal_access::is_small(b)) return false;
  small_fraction both{decimal_access::low(a), decimal_access::low(b)};
  if (a.get_scale() != b.get_scale() && !both.shift(b.get_scale() - a.get_scale())) return false;
  of_a = both.number;
  of_b = both.by;
  return true;
}

decimal_failure add(decimal& to, const decimal& other) noexcept {
  const int scale = std::max(to.get_scale(), other.get_scale());
  std::uint64_t a = 0, b = 0;
  if (meet_small(to, other, a, b)) {
    const bool alike = to.is_negative() == other.is_negative();
    if (!alike || a + b >= a) {
      const bool from_other = !alike && a < b;
      decimal_access::set(to,
                          alike        ? a + b
                          : from_other ? b - a
                                       : a - b,
                          scale, from_other ? other.is_negative() : to.is_negative());
      return decimal_failure::none;
    }
  }
  return decimal_access::fit(to, sum(widened(to, scale), widened(other, scale)));
}

decimal_failure multiply(decimal& to, const decimal& by) noexcept {
  const int scale = to.get_scale() + by.get_scale();
  if (decimal_access::is_small(to) && decimal_access::is_small(by) && is_scale(scale)) {
    std::uint64_t coefficient = decimal_access::low(to);
    if (multiplies(coefficient, decimal_access::low(by))) {
      decimal_access::set(to, coefficient, scale, to.is_negative() != by.is_negative());
      return decimal_failure::none;
    }
  }
  return decimal_access::fit(to, product(to, by));
}

decimal_failure multiply(decimal& to, const decimal& by, int scale, rounding how) noexcept {
  if (is_scale(scale) && decimal_access::is_small(to) && decimal_access::is_small(by)) {
    small_fraction made{decimal_access::low(to), 1};
    if (multiplies(made.number, decimal_access::low(by)) &&
        made.shift(scale - to.get_scale() - by.get_scale()))
      return made.round(to, scale, to.is_negative() != by.is_negative(), how);
  }
  return decimal_access::round(to, product(to, by), scale, how);
}

decimal_failure divide(decimal& to, const decimal& by, int scale, rounding how) noexcept {
  if (!is_scale(scale)) return decimal_failure::scale;
  if (by.is_zero()) return decimal_failure::division_by_zero;
  const bool negative = to.is_negative() != by.is_negative();
  const int power = scale + by.get_scale() - to.get_scale();
  if (decimal_access::is_small(to) && decimal_access::is_small(by)) {
    small_fraction made{decimal_access::low(to), decimal_access::low(by)};
    if (made.shift(power)) return made.round(to, scale, negative, how);
  }
  natural number = decimal_access::coefficient(to), divisor = decimal_access::coefficient(by);
  if (power < 0) {
    static_cast<void>(divisor.multiply(power_of_ten(-power)));  // below 10^76
  } else if (!number.multiply(power_of_ten(power))) {
    return decimal_failure::overflow;  // beyond 2^256, divided by less than 10^38
  }
  const detail::rounded_quotient quotient = detail::divided(number, divisor, negative, how);
  if (is_too_long(quotient.whole)) return decimal_failure::overflow;
  if (!quotient.is_exact && how == rounding::none) return decimal_failure::inexact;
  decimal_access::set(to, quotient.whole, scale, negative);
  return decimal_failure::none;
}

decimal_failure round(decimal& to, int scale, rounding how) noexcept {
  if (scale == to.get_scale()) return decimal_failure::none;
  if (is_scale(scale) && decimal_access::is_small(to)) {
    small_fraction made{decimal_access::low(to), 1};
    if (made.shift(scale - to.get_scale())) return made.round(to, scale, to.is_negative(), how);
  }
  return decimal_access::round(to, {decimal_access::coefficient(to), to.get_scale(), to.is_negative()}, scale,
                               how);
}

/// Takes zeros from the end of up to `most` decimals; how many these were.
int take_zeros(natural& coefficient, int most) noexcept {
  int taken = 0;
  for (; taken < most; ++taken) {
    natural shorter = coefficient;
    if (shorter.divide(10) != 0) break;
    coefficient = shorter;
  }
  return taken;
}

template <class Act>
decimal result(decimal of, Act act) {
  const decimal_failure why = act(of);
  if (why != decimal_failure::none) detail::raise(why);
  return of;
}

template <class Act>
bool changed(decimal& value, exception& err, Act act) {
  decimal made = value;
  if (!detail::report(act(made), err)) return false;
  value = made;
  return true;
}

}  // namespace

// --- what the sources of decimals share

namespace detail {

void raise(decimal_failure why) {
  switch (why) {
    case decimal_failure::overflow:
      throw exc::decimalOverflow();
    case decimal_failure::inexact:
      throw exc::decimalInexact();
    case decimal_failure::division_by_zero:
      throw exc::decimalDivisionByZero();
    default:
      throw exc::BadArgument(L"scale");
  }
}

bool report(decimal_failure why, exception& err) {
  if (why == decimal_failure::none) return true;
  try {
    raise(why);
  } catch (const exception& failure) {
    failure.copy_on(err);
  }
  return false;
}

rounded_quotient divided(const natural& number, const natural& by, bool negative, rounding how) noexcept {
  natural::quotient exact = number.divided(by);
  if (exact.rest.is_zero()) return {exact.whole, true};
  natural missing = by;
  missing -= exact.rest;
  if (goes_away(exact.rest <=> missing, exact.whole.is_odd(), negative, how)) exact.whole += natural(1);
  return {exact.whole, false};
}

decimal_failure decimal_access::fit(ruvo::decimal& out, unfitted made) noexcept {
  if (made.scale > most_digits)
    made.scale -= take_zeros(made.coefficient, static_cast<int>(made.scale) - most_digits);
  while (made.scale > 0 && is_too_long(made.coefficient)) {
    if (take_zeros(made.coefficient, 1) == 0) break;
    --made.scale;
  }
  const bool fits = made.scale <= most_digits && !is_too_long(made.coefficient);
  if (fits) {
    set(out, made.coefficient, static_cast<int>(made.scale), made.negative);
    return decimal_failure::none;
  }
  // Of 10^76 and 76 decimals at the most: whether there are too many digits before the point.
  const natural before = made.coefficient.divided(power_of_ten(static_cast<int>(made.scale))).whole;
  return is_too_long(before) ? decimal_failure::overflow : decimal_failure::inexact;
}

decimal_failure decimal_access::round(ruvo::decimal& out, unfitted made, int scale, rounding how) noexcept {
  if (!is_scale(scale)) return decimal_failure::scale;
  bool is_exact = true;
  if (scale < made.scale) {
    constexpr std::int64_t most = 76;
    // Products are below 10^76: where more digits go, less than a half unit remains, and 1 says as much.
    const std::int64_t digits = made.scale - scale;
    if (digits > most && !made.coefficient.is_zero()) made.coefficient = natural(1);
    const rounded_quotient quotient =
        divided(made.coefficient, power_of_ten(static_cast<int>(std::min(digits, most))), made.negative, how);
    made.coefficient = quotient.whole;
    is_exact = quotient.is_exact;
  } else if (!made.coefficient.multiply(power_of_ten(scale - static_cast<int>(made.scale)))) {
    return decimal_failure::overflow;
  }
  if (is_too_long(made.coefficient)) return decimal_failure::overflow;
  if (!is_exact && how == rounding::none) return decimal_failure::inexact;
  set(out, made.coefficient, scale, made.negative);
  return decimal_failure::none;
}

}  // namespace detail

// --- questions

void decimal::set_scale(int scale) {
  if (!is_scale(scale)) detail::raise(decimal_failure::scale);
  scale_ = static_cast<std::uint8_t>(scale);
}

int decimal::count_digits() const noexcept {
  const natural own(low_, high_);
  int digits = 1;
  while (own >= power_of_ten(digits)) ++digits;
  return digits;
}

bool decimal::is_whole() const noexcept { return trimmed().scale_ == 0; }

decimal decimal::trimmed() const noexcept {
  decimal out = *this;
  if (high_ == 0) {
    for (; out.scale_ > 0 && out.low_ % 10 == 0; --out.scale_) out.low_ /= 10;
    return out;
  }
  natural coefficient(low_, high_);
  const int taken = take_zeros(coefficient, scale_);
  decimal_access::set(out, coefficient, scale_ - taken, negative_);
  return out;
}

decimal decimal::abs() const noexcept {
  decimal out = *this;
  out.negative_ = false;
  return out;
}

decimal decimal::operator-() const noexcept {
  decimal out = *this;
  out.negative_ = !negative_ && !is_zero();
  return out;
}

std::size_t decimal::hash() const noexcept {
  const decimal plain = trimmed();
  std::uint64_t mixed = plain.low_ ^ plain.high_ * 0x9E3779B97F4A7C15u;
  mixed ^= std::uint64_t{plain.scale_} << 57 ^ std::uint64_t{plain.negative_} << 56;
  mixed = (mixed ^ mixed >> 30) * 0xBF58476D1CE4E5B9u;
  mixed = (mixed ^ mixed >> 27) * 0x94D049BB133111EBu;
  return static_cast<std::size_t>(mixed ^ mixed >> 31);
}

int decimal::compare(const decimal& other) const noexcept {
  if (negative_ != other.negative_) return negative_ ? -1 : 1;
  std::strong_ordering order = std::strong_ordering::equal;
  if (scale_ == other.scale_) {
    order = high_ != other.high_ ? high_ <=> other.high_ : low_ <=> other.low_;
  } else {
    const int scale = std::max(scale_, other.scale_);
    std::uint64_t own = 0, others = 0;
    order = meet_small(*this, other, own, others)
                ? own <=> others
                : widened(*this, scale).coefficient <=> widened(other, scale).coefficient;
  }
  if (order == 0) return 0;
  return (order < 0) == negative_ ? 1 : -1;
}

// --- arithmetic

decimal& decimal::operator+=(const decimal& other) {
  return *this = result(*this, [&](decimal& to) { return ruvo::add(to, other); });
}
decimal& decimal::operator-=(const decimal& other) { return *this += -other; }
decimal& decimal::operator*=(const decimal& other) {
  return *this = result(*this, [&](decimal& to) { return ruvo::multiply(to, other); });
}
decimal decimal::rounded(int scale, rounding how) const {
  return result(*this, [&](decimal& to) { return ruvo::round(to, scale, how); });
}
decimal decimal::multiplied(const decimal& by, int scale, rounding how) const {
  return result(*this, [&](decimal& to) { return ruvo::multiply(to, by, scale, how); });
}
decimal decimal::divided(const decimal& by, int scale, rounding how) const {
  return result(*this, [&](decimal& to) { return ruvo::divide(to, by, scale, how); });
}

bool decimal::add(const decimal& other, exception& err) {
  return changed(*this, err, [&](decimal& to) { return ruvo::add(to, other); });
}
bool decimal::subtract(const decimal& other, exception& err) { return add(-other, err); }
bool decimal::multiply(const decimal& by, exception& err) {
  return changed(*this, err, [&](decimal& to) { return ruvo::multiply(to, by); });
}
bool decimal::multiply(const decimal& by, int scale, rounding how, exception& err) {
  return changed(*this, err, [&](decimal& to) { return ruvo::multiply(to, by, scale, how); });
}
bool decimal::divide(const decimal& by, int scale, rounding how, exception& err) {
  return changed(*this, err, [&](decimal& to) { return ruvo::divide(to, by, scale, how); });
}
bool decimal::round(int scale, rounding how, exception& err) {
  return changed(*this, err, [&](decimal& to) { return ruvo::round(to, scale, how); });
}

}  // namespace ruvo
