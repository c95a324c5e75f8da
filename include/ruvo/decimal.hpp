// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::decimal, exact decimal numbers: sums of money, rates, quantities.
//
//   ruvo::decimal price(L"19.99");
//   ruvo::decimal quota = (3 * price).multiplied(ruvo::decimal(L"0.21"), 2, ruvo::rounding::half_up);
//   quota.format();  // "12,59"

#include <ruvo/api.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/fences.hpp>
#include <ruvo/fwd.hpp>

#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ruvo {

/// Which neighbour a number becomes that has more decimals than its place.
enum class rounding : std::int32_t {
  half_up,    ///< The nearest one; of a half the one away from zero: 2.5 gives 3, -2.5 gives -3.
  half_even,  ///< The nearest one; of a half the one whose last digit is even: 2.5 gives 2, 3.5 gives 4.
  half_down,  ///< The nearest one; of a half the one towards zero: 2.5 gives 2, -2.5 gives -2.
  down,       ///< The one towards zero: digits are cut off.
  up,         ///< The one away from zero.
  floor,      ///< The lower one.
  ceiling,    ///< The upper one.
  none        ///< No other number: what is not exact is a failure.
};

namespace detail {

struct decimal_access;  // the library's own access to a decimal's inside

/// An integer that is meant as a number: neither bool nor a character.
template <class Number>
concept is_whole_number = std::integral<Number> && !std::same_as<Number, bool> && !is_character<Number>;

}  // namespace detail

/// A number of up to 38 digits, `coefficient / 10^scale`, of which no operation loses one without a word.
///
/// The scale, 0 to 38, is the number of decimals that are written: 1.50 has two. It takes no part in
/// comparisons and in the hash: 1.5 == 1.50. Sums and differences have the greater scale of the two, products
/// the sum of both; where this many decimals do not fit, zeros at the end go. There is no negative zero, no
/// infinity and no NaN.
///
/// What does not fit is a failure: exc::decimalOverflow (17001) of a number beyond 38 digits before the
/// point, exc::decimalInexact (17002) of one that has digits behind them which do not fit,
/// exc::decimalDivisionByZero (17003); exc::BadArgument of a scale outside of 0 to 38. Operators and what is
/// named after a result
/// (`rounded`) throw it; what is named after an action (`round`) changes this object, where true is success,
/// and on failure leaves it as it was and copies the failure to `err`.
///
/// A value of 24 bytes that owns nothing. Each operation takes constant time.
class KESTA_API decimal {
 public:
  static constexpr int most_digits = 38;  ///< Before and behind the point together, and behind it.

  /// 0.
  constexpr decimal() noexcept = default;
  /// The integer, exactly.
  template <detail::is_whole_number Number>
  constexpr decimal(Number value) noexcept
      : low_(static_cast<std::uint64_t>(value)), negative_(std::cmp_less(value, 0)) {
    if (negative_) low_ = 0 - low_;
  }
  /// `coefficient` / 10^`scale`: `decimal(1999, 2)` is 19.99. Throws exc::BadArgument for a scale outside of
  /// 0 to 38.
  template <detail::is_whole_number Number>
  explicit decimal(Number coefficient, int scale) : decimal(coefficient) {
    set_scale(scale);
  }
  /// The number with the fewest digits that reads back to the same float or double: 2.675 gives 2.675,
  /// although the nearest double lies below it. Throws exc::BadArgument for NaN and infinities, and
  /// exc::decimalOverflow or exc::decimalInexact where these digits do not fit.
  template <std::same_as<float> Real>
  explicit decimal(Real value) {
    set_float(value);
  }
  template <std::same_as<double> Real>
  explicit decimal(Real value) {
    set_double(value);
  }
  /// As read(), whose failure it throws.
  explicit decimal(std::wstring_view text);
  explicit decimal(std::string_view text);

  // --- questions

  /// The number of decimals, 0 to 38.
  int get_scale() const noexcept { return scale_; }
  /// Digits without zeros in front; 1 for 0 and for 0.001.
  int count_digits() const noexcept;
  bool is_zero() const noexcept { return (low_ | high_) == 0; }
  bool is_negative() const noexcept { return negative_; }
  /// Whether there is nothing but zeros behind the point.
  bool is_whole() const noexcept;

  /// The same number as far as possible without zeros at the end of its decimals: 1.50 gives 1.5, 2.00
  /// gives 2.
  decimal trimmed() const noexcept;
  /// The number without its sign.
  decimal abs() const noexcept;

  // --- arithmetic

  /// The number with the other sign, and the same number.
  decimal operator-() const noexcept;
  decimal operator+() const noexcept { return *this; }
  /// Exact; what does not fit fails as described above.
  decimal& operator+=(const decimal& other);
  decimal& operator-=(const decimal& other);
  decimal& operator*=(const decimal& other);
  friend decimal operator+(decimal a, const decimal& b) { return a += b; }
  friend decimal operator-(decimal a, const decimal& b) { return a -= b; }
  friend decimal operator*(decimal a, const decimal& b) { return a *= b; }

  /// With exactly `scale` decimals: zeros are added, digits are rounded off. The result of each of the three
  /// is rounded once, from all of its digits.
  decimal rounded(int scale, rounding how = rounding::half_up) const;
  decimal multiplied(const decimal& by, int scale, rounding how = rounding::half_up) const;
  /// There is no operator for it, since few quotients end.
  decimal divided(const decimal& by, int scale, rounding how = rounding::half_up) const;

  /// As the operators and functions above.
  bool add(const decimal& other, exception& err);
  bool subtract(const decimal& other, exception& err);
  bool multiply(const decimal& by, exception& err);
  bool multiply(const decimal& by, int scale, rounding how, exception& err);
  bool divide(const decimal& by, int scale, rounding how, exception& err);
  bool round(int scale, rounding how, exception& err);

  // --- comparison

  /// By value: 1.0 == 1.00.
  friend bool operator==(const decimal& a, const decimal& b) noexcept { return a.compare(b) == 0; }
  friend std::weak_ordering operator<=>(const decimal& a, const decimal& b) noexcept {
    return a.compare(b) <=> 0;
  }
  /// The same for numbers that are equal.
  std::size_t hash() const noexcept;

  // --- conversions

  /// The nearest double.
  explicit operator double() const noexcept;
  /// Throws exc::decimalInexact where there are digits but 0 behind the point, exc::decimalOverflow beyond 64
  /// bits.
  explicit operator long long() const;

  // --- text

  /// Takes `-1234.56`: a sign, digits with one point anywhere before, between or behind them, and an exponent
  /// (`1.5e3`), of which all but the digits may be missing. No blanks and no separators. The decimals that
  /// are written are the scale; where they do not fit, zeros at the end go.
  ///
  /// True is success; a failure leaves the number as it was and is copied to `err`: exc::decimalBadText
  /// (17004) at the position (serializer::failure_position()) of what cannot stand there, of the end where
  /// something is missing; exc::decimalOverflow or exc::decimalInexact where the digits do not fit. Linear
  /// time.
  bool read(std::wstring_view text, exception& err);
  bool read(std::string_view text, exception& err);
  /// The same of a text as format() writes it, with the separators of the calling thread's application: a
  /// sign, digits, all or none in groups of three, and the decimal separator with decimals. No exponent.
  bool read_local(std::wstring_view text, exception& err);

  /// The number as read() takes it, with all decimals of its scale and without an exponent: "-1234.50".
  std::wstring to_string() const;
  /// In groups of three digits, with the separators of the calling thread's application as in
  /// texto::format(): "-1.234,50".
  std::wstring format() const;
  /// As rounded(scale, how).format().
  std::wstring format(int scale, rounding how = rounding::half_up) const;

 private:
  friend struct detail::decimal_access;

  void set_scale(int scale);
  void set_float(float value);
  void set_double(double value);
  int compare(const decimal& other) const noexcept;

  std::uint64_t low_ = 0, high_ = 0;  // the coefficient, below 10^38
  std::uint8_t scale_ = 0;
  bool negative_ = false;  // never of 0
};

/// Writes to_string(), in ASCII to a narrow stream.
KESTA_API std::wostream& operator<<(std::wostream& out, const decimal& value);
KESTA_API std::ostream& operator<<(std::ostream& out, const decimal& value);

// --- shares of sums

/// `percent` hundredths of the amount, rounded once, from all of their digits: `percentage(100, 21)`
/// is 21.00.
KESTA_API decimal percentage(const decimal& amount, const decimal& percent, int scale = 2,
                             rounding how = rounding::half_up);

/// Divides a total in proportion to the weights into shares of `scale` decimals, whose sum is the total: each
/// share is rounded down, and what remains goes, a unit of the last decimal each, to the shares that lost
/// most by it, of equal ones to the first (the method of the largest remainder). A discount of 10 over lines
/// of 50, 30 and 20 gives 5.00, 3.00 and 2.00. The shares of a negative total are those of the positive one
/// with the other sign. Weights may be negative, as those of credits are.
///
/// Throws exc::decimalInexact when the total has more decimals than `scale`; exc::BadArgument when the
/// weights add up to 0 and the total does not; exc::decimalOverflow when weights written with the same
/// decimals have more than 38 digits. n log n for n weights.
KESTA_API std::vector<decimal> distribute(const decimal& total, const std::vector<decimal>& weights,
                                          int scale = 2);

/// Rounds each number to `scale` decimals so that the sum of all is the total: down, with the remainder
/// as distribute() gives it. Where the total is the sum of all, rounded in any way, no number moves by a unit
/// of the last decimal or more. Throws as distribute().
KESTA_API std::vector<decimal> rounded_to_total(const std::vector<decimal>& numbers, const decimal& total,
                                                int scale = 2);

/// Value-added tax: what an invoice's lines come to, by rate and in all.
namespace vat {

/// A line of an invoice.
struct line {
  decimal amount;   ///< Without or with the tax, as vat::prices says.
  decimal percent;  ///< 21 for a rate of 21 %.
};

/// Whether the amounts of lines include the tax.
enum class prices : std::int32_t {
  without_tax,  ///< The tax is added: amounts are bases.
  with_tax      ///< The tax is inside: base and quota add up to the amount.
};

/// What the lines of one rate come to. `base + quota == total`.
struct of_rate {
  decimal percent;  ///< The rate.
  decimal base;     ///< Without the tax.
  decimal quota;    ///< The tax.
  decimal total;    ///< With the tax.
};

/// What all lines come to. The sums of `rates`, and of `bases` and `quotas`, are exactly `base`, `quota` and
/// `total`.
struct summary {
  std::vector<of_rate> rates;   ///< In the order in which the rates come first.
  std::vector<decimal> bases;   ///< Of each line.
  std::vector<decimal> quotas;  ///< Of each line.
  decimal base, quota, total;   ///< Of all lines.
};

/// Adds up an invoice. Base and quota are rounded once for each rate: `without_tax`, the base is the sum of
/// the amounts and the quota its percentage; `with_tax`, the total is the sum of the amounts, the base what
/// the rate leaves of it, and the quota the rest. Bases and quotas of lines are rounded to these by
/// rounded_to_total(), with eight decimals more of what is calculated, or as many as there is room for beside
/// the largest. Rates that are equal by value are one. n log n for n lines, of any number of rates. Throws
/// exc::BadArgument for amounts with a tax of -100 % or less, and the failures of decimals, as where a sum of
/// a rate has no room for its digits and `scale` decimals.
KESTA_API summary sum_up(const std::vector<line>& lines, prices of = prices::without_tax, int scale = 2,
                         rounding how = rounding::half_up);

}  // namespace vat

namespace texto {

/// The amount in Spanish words as cifras_letras(double) has them, from all digits, up to "Sextillones".
/// Throws exc::decimalInexact for an amount with more than two decimals, unless they are zeros: round it
/// before. A template, so that what converts to double and decimal keeps to the former.
template <std::same_as<decimal> Decimal>
std::wstring cifras_letras(const Decimal& amount);

}  // namespace texto

namespace detail {

KESTA_API std::wstring amount_in_words(const ruvo::decimal& amount);

}  // namespace detail

template <std::same_as<decimal> Decimal>
std::wstring texto::cifras_letras(const Decimal& amount) {
  return detail::amount_in_words(amount);
}

}  // namespace ruvo

/// The same for numbers that are equal.
template <>
struct std::hash<ruvo::decimal> {
  std::size_t operator()(const ruvo::decimal& value) const noexcept { return value.hash(); }
};
