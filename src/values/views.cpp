// SPDX-License-Identifier: BSL-1.0

// What values hold, without copies, and the order in which people sort them.

#include <ruvo/decimal.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/views.hpp>

#include <algorithm>
#include <cmath>
#include <compare>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "base/numbers.hpp"
#include "values/cell.hpp"
#include "values/decimal_access.hpp"
#include "values/kinds.hpp"
#include "values/natural.hpp"

namespace ruvo {

using detail::cell;
using detail::decimal_access;
using detail::family;
using detail::kind;
using detail::natural;

namespace {

/// The object of a cell of this kind, or null.
template <class Object>
Object* held_as(const var& value, kind k) noexcept {
  return cell::kind_of(value) == k ? cell::pointer<Object>(value) : nullptr;
}

}  // namespace

bool is_bundle(const var& value) noexcept { return cell::kind_of(value) == kind::bundle; }
bool is_list(const var& value) noexcept { return cell::kind_of(value) == kind::list; }

const bundle* as_bundle(const var& value) noexcept { return held_as<const bundle>(value, kind::bundle); }
bundle* as_bundle(var& value) noexcept { return held_as<bundle>(value, kind::bundle); }
const list* as_list(const var& value) noexcept { return held_as<const list>(value, kind::list); }
list* as_list(var& value) noexcept { return held_as<list>(value, kind::list); }
const binary* as_binary(const var& value) noexcept { return held_as<const binary>(value, kind::binary); }
const memo* as_memo(const var& value) noexcept { return held_as<const memo>(value, kind::memo); }

std::optional<std::wstring_view> as_text(const var& value) noexcept {
  if (cell::is_text(value)) return cell::text(value);
  if (const memo* const held = as_memo(value)) return std::wstring_view(held->to_string());
  return std::nullopt;
}

// --- order

namespace {

/// Values of one rank are compared with each other, others by their ranks.
enum class rank { nothing, truth, number, day, hour, instant, text, other };

rank rank_of(const var& value) noexcept {
  switch (detail::family_of(value)) {
    case family::nothing:
      return rank::nothing;
    case family::truth:
      return rank::truth;
    case family::integer:
    case family::real:
    case family::exact:
      return rank::number;
    case family::date:
      return rank::day;
    case family::time:
      return rank::hour;
    case family::datetime:
      return rank::instant;
    case family::text:
      return rank::text;
    default:
      return cell::kind_of(value) == kind::memo ? rank::text : rank::other;
  }
}

std::weak_ordering weak(std::partial_ordering order) noexcept {
  if (order < 0) return std::weak_ordering::less;
  return order > 0 ? std::weak_ordering::greater : std::weak_ordering::equivalent;
}

/// Two doubles, NaN behind all others.
std::weak_ordering order_of_reals(double a, double b) noexcept {
  if (std::isnan(a) || std::isnan(b)) return std::isnan(a) <=> std::isnan(b);
  return weak(a <=> b);
}

/// An integer: its size in 64 bits, and whether it is below 0.
struct whole {
  explicit whole(const var& value) noexcept
      : negative(cell::kind_of(value) != kind::uxlong && cell::integer(value) < 0),
        bits(static_cast<unsigned long long>(cell::integer(value))) {}
  double real() const noexcept {
    return negative ? static_cast<double>(static_cast<long long>(bits)) : static_cast<double>(bits);
  }

  bool negative;
  unsigned long long bits;  // of two negative numbers the greater one has the greater bits
};

std::weak_ordering order_of_wholes(const whole& a, const whole& b) noexcept {
  if (a.negative != b.negative) return a.negative ? std::weak_ordering::less : std::weak_ordering::greater;
  return a.bits <=> b.bits;
}

/// Exactly, where a double does not hold every integer: by the parts before the point, then by that behind.
std::weak_ordering order_of_mixed(const whole& a, double b) noexcept {
  if (std::isnan(b) || b >= 2 * texto::two_to_63) return std::weak_ordering::less;
  if (b < -texto::two_to_63) return std::weak_ordering::greater;
  const double cut = std::trunc(b);
  const var integer = b < 0 ? var(static_cast<long long>(cut)) : var(static_cast<unsigned long long>(cut));
  const std::weak_ordering order = order_of_wholes(a, whole(integer));
  return order != 0 ? order : weak(cut <=> b);
}

std::weak_ordering reversed(std::weak_ordering order) noexcept { return 0 <=> order; }

bool is_exact(const var& value) noexcept { return detail::family_of(value) == family::exact; }

/// Twice the number, so many times; the product has to fit.
natural shifted(natural number, int by) noexcept {
  constexpr int most = 63;
  for (; by > 0; by -= most)
    static_cast<void>(number.multiply(natural(std::uint64_t{1} << std::min(by, most))));
  return number;
}

/// Exactly: the nearest doubles, which keep the order, and of equal ones the integers that both numbers are
/// of a common unit. These are of one size, and that is below 2^181.
std::weak_ordering order_of_exact(const decimal& a, double b) noexcept {
  const auto nearest = static_cast<double>(a);
  if (nearest != b || b == 0) return order_of_reals(nearest, b);
  constexpr int digits = std::numeric_limits<double>::digits;
  int power = 0;
  const auto bits = static_cast<std::uint64_t>(std::ldexp(std::frexp(std::fabs(b), &power), digits));
  power -= digits;
  natural of_b = shifted(natural(bits), power);
  static_cast<void>(of_b.multiply(detail::power_of_ten(a.get_scale())));
  const auto order = shifted(decimal_access::coefficient(a), -power) <=> of_b;
  return b < 0 ? reversed(order) : order;
}

/// An exact decimal and any number.
std::weak_ordering order_of_exact(const decimal& a, const var& b) noexcept {
  if (is_exact(b)) return a <=> *cell::pointer<const decimal>(b);
  if (b.is_decimal()) return order_of_exact(a, cell::real(b));
  if (cell::kind_of(b) == kind::uxlong) return a <=> static_cast<unsigned long long>(cell::integer(b));
  return a <=> cell::integer(b);
}

std::weak_ordering order_of_numbers(const var& a, const var& b) noexcept {
  if (is_exact(a)) return order_of_exact(*cell::pointer<const decimal>(a), b);
  if (is_exact(b)) return reversed(order_of_exact(*cell::pointer<const decimal>(b), a));
  if (a.is_decimal() && b.is_decimal()) return order_of_reals(cell::real(a), cell::real(b));
  if (b.is_decimal()) return order_of_mixed(whole(a), cell::real(b));
  if (a.is_decimal()) return reversed(order_of_mixed(whole(b), cell::real(a)));
  return order_of_wholes(whole(a), whole(b));
}

std::weak_ordering order_of_texts(const var& a, const var& b) {
  return cell::with_text(a, [&](std::wstring_view one) {
    return cell::with_text(b, [&](std::wstring_view other) { return std::weak_ordering(one <=> other); });
  });
}

/// By the numbers hhmmss; by their seconds where the calendar has no form for one of them.
std::weak_ordering order_of_hours(const var& a, const var& b) {
  try {
    return static_cast<long>(a) <=> static_cast<long>(b);
  } catch (const exception&) {
    return cell::integer(a) <=> cell::integer(b);
  }
}

}  // namespace

std::weak_ordering natural_order(const var& a, const var& b) {
  const rank of = rank_of(a);
  if (of != rank_of(b)) return of <=> rank_of(b);
  switch (of) {
    case rank::nothing:
      return std::weak_ordering::equivalent;
    case rank::number:
      return order_of_numbers(a, b);
    case rank::day:
      return detail::date_number(a) <=> detail::date_number(b);
    case rank::hour:
      return order_of_hours(a, b);
    case rank::truth:
    case rank::instant:
      return cell::integer(a) <=> cell::integer(b);
    default:
      return order_of_texts(a, b);
  }
}

}  // namespace ruvo
