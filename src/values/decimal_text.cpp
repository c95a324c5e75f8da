// SPDX-License-Identifier: BSL-1.0

// Decimals from and to texts, and from and to doubles, whose way leads over texts.

#include <ruvo/decimal.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/exception.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <ostream>
#include <string>
#include <string_view>
#include <system_error>

#include "base/ascii.hpp"
#include "base/numbers.hpp"
#include "base/services.hpp"
#include "texto/amounts.hpp"
#include "values/decimal_access.hpp"
#include "values/natural.hpp"

namespace ruvo {

using detail::decimal_access;
using detail::decimal_failure;
using detail::natural;

namespace {

/// The digits of a number as they come. Zeros wait for a digit behind them, since those at the end need not
/// fit.
class digit_counter {
 public:
  void take(unsigned int digit) noexcept {
    if (digit == 0) {
      if (digits_ > 0) ++zeros_;
      return;
    }
    for (; zeros_ > 0 && digits_ <= decimal::most_digits; --zeros_) push(0);
    digits_ += zeros_;
    zeros_ = 0;
    push(digit);
  }

  /// The number of which `decimals` digits stood behind the point, times a power of ten.
  decimal_failure result(decimal& out, bool negative, std::int64_t decimals,
                         std::int64_t exponent) const noexcept {
    if (digits_ == 0) {
      decimal_access::set(
          out, natural(),
          static_cast<int>(std::clamp<std::int64_t>(decimals - exponent, 0, decimal::most_digits)), false);
      return decimal_failure::none;
    }
    std::int64_t scale = std::max<std::int64_t>(decimals - exponent, 0);
    std::int64_t zeros = zeros_ + scale - (decimals - exponent);  // that the written scale asks for
    const std::int64_t before = digits_ + zeros - scale;          // the point
    const std::int64_t most = decimal::most_digits;
    const std::int64_t surplus =
        std::clamp<std::int64_t>(std::max(scale - most, digits_ + zeros - most), 0, std::min(zeros, scale));
    scale -= surplus;
    zeros -= surplus;
    if (digits_ + zeros > most || scale > most)
      return before > most ? decimal_failure::overflow : decimal_failure::inexact;
    natural coefficient(head_);
    if (digits_ > most_in_part) {
      static_cast<void>(coefficient.multiply(detail::power_of_ten(static_cast<int>(digits_ - most_in_part))));
      coefficient += natural(tail_);
    }
    static_cast<void>(coefficient.multiply(detail::power_of_ten(static_cast<int>(zeros))));
    decimal_access::set(out, coefficient, static_cast<int>(scale), negative);
    return decimal_failure::none;
  }

 private:
  static constexpr std::int64_t most_in_part = 19;

  void push(unsigned int digit) noexcept {
    if (digits_ < 2 * most_in_part) {
      std::uint64_t& part = digits_ < most_in_part ? head_ : tail_;
      part = part * 10 + digit;
    }
    ++digits_;
  }

  std::uint64_t head_ = 0, tail_ = 0;    // the first digits and those behind them
  std::int64_t digits_ = 0, zeros_ = 0;  // from the first digit that is not 0
};

/// A number at the beginning of a text, and what is wrong.
template <class Unit>
class number_reader {
 public:
  using view = std::basic_string_view<Unit>;

  explicit number_reader(view text) noexcept : text_(text) {}

  /// In C form. `at()` is where it stopped: at the end, or where the text can't go on.
  bool read() noexcept {
    sign();
    const std::size_t before = digits();
    std::size_t behind = 0;
    if (is_at(Unit('.'))) {
      ++at_;
      behind = digits();
      decimals_ = static_cast<std::int64_t>(behind);
    }
    if (before + behind == 0) return false;
    if (is_at(Unit('e')) || is_at(Unit('E'))) {
      ++at_;
      if (!exponent()) return false;
    }
    return at_ == text_.size();
  }

  /// With the separators of a place.
  bool read_local(Unit point, Unit thousands) noexcept {
    sign();
    const std::size_t first = at_;
    std::size_t group = digits();
    if (group == 0) return false;
    const bool may_be_grouped = group <= 3 && text_[first] != Unit('0');  // 0.123 is no number of thousands
    const bool is_grouped = may_be_grouped && thousands != point && is_at(thousands);
    while (is_grouped && is_at(thousands)) {
      ++at_;
      group = digits(3);
      if (group != 3) return false;
    }
    if (is_at(point)) {
      ++at_;
      const std::size_t behind = digits();
      if (behind == 0) return false;
      decimals_ = static_cast<std::int64_t>(behind);
    }
    return at_ == text_.size();
  }

  std::size_t at() const noexcept { return at_; }
  decimal_failure result(decimal& out) const noexcept {
    return digits_.result(out, negative_, decimals_, exponent_);
  }

 private:
  bool is_at(Unit unit) const noexcept { return at_ < text_.size() && text_[at_] == unit; }
  void sign() noexcept {
    negative_ = is_at(Unit('-'));
    if (negative_ || is_at(Unit('+'))) ++at_;
  }
  std::size_t digits(std::size_t most = std::numeric_limits<std::size_t>::max()) noexcept {
    const std::size_t first = at_;
    for (; at_ < text_.size() && at_ - first < most && texto::is_digit(static_cast<wchar_t>(text_[at_]));
         ++at_)
      digits_.take(static_cast<unsigned int>(text_[at_] - Unit('0')));
    return at_ - first;
  }
  bool exponent() noexcept {
    const bool below = is_at(Unit('-'));
    if (below || is_at(Unit('+'))) ++at_;
    const std::size_t first = at_;
    for (; at_ < text_.size() && texto::is_digit(static_cast<wchar_t>(text_[at_])); ++at_) {
      if (exponent_ < most_exponent) exponent_ = exponent_ * 10 + static_cast<int>(text_[at_] - Unit('0'));
    }
    if (below) exponent_ = -exponent_;
    return at_ > first;
  }

  static constexpr std::int64_t most_exponent = std::int64_t{1} << 56;  // beyond the digits of any text

  view text_;
  std::size_t at_ = 0;
  digit_counter digits_;
  std::int64_t decimals_ = 0, exponent_ = 0;
  bool negative_ = false;
};

template <class Unit, class Read>
bool read_into(decimal& out, std::basic_string_view<Unit> text, exception& err, Read read) {
  number_reader<Unit> reader(text);
  if (!read(reader)) {
    exc::decimalBadText(reader.at() + 1).copy_on(err);
    return false;
  }
  decimal made;
  if (!detail::report(reader.result(made), err)) return false;
  out = made;
  return true;
}

template <class Unit>
void read_or_throw(decimal& out, std::basic_string_view<Unit> text) {
  exception failure;
  if (!out.read(text, failure)) failure.raise();
}

template <class Real>
void read_real(decimal& out, Real value) {
  if (!std::isfinite(value)) throw exc::BadArgument(std::isnan(value) ? L"NaN" : L"inf");
  // Other notations have all digits of large doubles, not only those that it takes to read them back.
  char text[texto::most_shortest_units];
  const char* const end =
      std::to_chars(std::begin(text), std::end(text), value, std::chars_format::scientific).ptr;
  read_or_throw(out, std::string_view(text, end));
}

/// The digits of a coefficient, at least `fewest`.
char* print_digits(char* to, natural coefficient, int fewest) noexcept {
  char digits[2 * decimal::most_digits];
  char* const end = std::end(digits);
  char* at = end;
  while (coefficient.high() != 0) {
    constexpr std::uint32_t group = 1'000'000'000;
    std::uint32_t part = coefficient.divide(group);
    for (int n = 0; n < 9; ++n, part /= 10) *--at = static_cast<char>('0' + part % 10);
  }
  for (std::uint64_t rest = coefficient.low(); rest != 0; rest /= 10)
    *--at = static_cast<char>('0' + rest % 10);
  while (end - at < fewest) *--at = '0';
  return std::copy(at, end, to);
}

}  // namespace

// --- from text and doubles

decimal::decimal(std::wstring_view text) { read_or_throw(*this, text); }
decimal::decimal(std::string_view text) { read_or_throw(*this, text); }
void decimal::set_float(float value) { read_real(*this, value); }
void decimal::set_double(double value) { read_real(*this, value); }

bool decimal::read(std::wstring_view text, exception& err) {
  return read_into(*this, text, err, [](auto& reader) { return reader.read(); });
}
bool decimal::read(std::string_view text, exception& err) {
  return read_into(*this, text, err, [](auto& reader) { return reader.read(); });
}
bool decimal::read_local(std::wstring_view text, exception& err) {
  const services::separators marks = services::of_this_thread();
  return read_into(*this, text, err,
                   [&marks](auto& reader) { return reader.read_local(marks.decimal, marks.thousands); });
}

// --- to text and numbers

char* detail::decimal_access::print(char* to, const ruvo::decimal& value) noexcept {
  if (value.negative_) *to++ = '-';
  to = print_digits(to, coefficient(value), value.scale_ + 1);
  if (value.scale_ == 0) return to;
  char* const point = to - value.scale_;
  std::copy_backward(point, to, to + 1);
  *point = '.';
  return to + 1;
}

std::wstring decimal::to_string() const {
  char text[decimal_access::most_units];
  return {text, decimal_access::print(text, *this)};
}

std::wstring decimal::format() const { return texto::punctuated(to_string()); }
std::wstring decimal::format(int scale, rounding how) const { return rounded(scale, how).format(); }

std::wostream& operator<<(std::wostream& out, const decimal& value) { return out << value.to_string(); }
std::ostream& operator<<(std::ostream& out, const decimal& value) {
  char text[decimal_access::most_units];
  return out << std::string_view(text, decimal_access::print(text, value));
}

decimal::operator double() const noexcept {
  constexpr std::uint64_t first_beyond = 10'000'000'000'000'000'000u;
  static_assert(texto::most_quotient_digits == 19);
  if (high_ == 0 && low_ < first_beyond && scale_ <= texto::most_quotient_decimals) {
    const double value = texto::quotient(low_, scale_);
    return negative_ ? -value : value;
  }
  char text[decimal_access::most_units];
  double value = 0;
  std::from_chars(text, decimal_access::print(text, *this), value);
  return value;
}

decimal::operator long long() const {
  const decimal whole = trimmed();
  if (whole.scale_ != 0) detail::raise(decimal_failure::inexact);
  constexpr std::uint64_t most = std::numeric_limits<long long>::max();
  if (whole.high_ != 0 || whole.low_ > most + (negative_ ? 1 : 0)) detail::raise(decimal_failure::overflow);
  return static_cast<long long>(negative_ ? 0 - whole.low_ : whole.low_);
}

// --- in words

std::wstring detail::amount_in_words(const ruvo::decimal& amount) {
  const ruvo::decimal exact = amount.abs().trimmed();
  if (exact.get_scale() > 2) raise(decimal_failure::inexact);
  const std::wstring figures = exact.to_string();
  const auto decimals = static_cast<std::size_t>(exact.get_scale());
  const std::wstring_view whole(figures.data(), figures.size() - decimals - (decimals > 0 ? 1 : 0));
  unsigned int cents = 0;
  for (std::size_t n = 0; n < 2; ++n)
    cents = cents * 10 + (n < decimals ? figures[figures.size() - decimals + n] - L'0' : 0);
  return texto::amount_in_words(amount.is_negative(), whole, cents);
}

}  // namespace ruvo
