// SPDX-License-Identifier: BSL-1.0

// Sums of money divided without losing a cent, and the tax of an invoice.

#include <ruvo/decimal.hpp>
#include <ruvo/exc.hpp>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <map>
#include <numeric>
#include <utility>
#include <vector>

#include "values/decimal_access.hpp"
#include "values/natural.hpp"

namespace ruvo {

using detail::decimal_access;
using detail::decimal_failure;
using detail::natural;
using detail::unfitted;

namespace {

constexpr decimal hundred = 100;

decimal sum_of(const std::vector<decimal>& numbers) {
  decimal sum;
  for (const decimal& number : numbers) sum += number;
  return sum;
}

/// Gives `units` of the last decimal to the shares, in the order of what they lost by rounding down: all of
/// them as many, and the first ones the rest.
template <class LostMore>
void give(std::vector<decimal>& shares, const decimal& units, int scale, LostMore lost_more) {
  const decimal count = shares.size();
  const decimal each = units.divided(count, 0, rounding::floor);
  const auto more = static_cast<long long>(units - each * count);  // who get one more
  std::vector<std::size_t> order(shares.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), lost_more);
  const decimal unit(1, scale);
  for (std::size_t n = 0; n < order.size(); ++n)
    shares[order[n]] += (each + (static_cast<long long>(n) < more ? 1 : 0)) * unit;
}

/// How many units of the last decimal the total has more than its shares.
decimal units_left(const decimal& total, const std::vector<decimal>& shares, int scale) {
  const decimal left = (total - sum_of(shares)).rounded(scale, rounding::none);
  decimal units;
  decimal_access::set(units, decimal_access::coefficient(left), 0, left.is_negative());
  return units;
}

/// Weights with the same decimals.
std::vector<decimal> aligned(const std::vector<decimal>& weights) {
  int scale = 0;
  for (const decimal& weight : weights) scale = std::max(scale, weight.trimmed().get_scale());
  std::vector<decimal> out;
  out.reserve(weights.size());
  for (const decimal& weight : weights) out.push_back(weight.rounded(scale, rounding::none));
  return out;
}

/// The share of a weight, rounded down, and what it lost by that: in parts of the last decimal, of which
/// `sum` make one.
struct share {
  decimal rounded;
  natural lost;
};

share share_of(const decimal& total, const decimal& weight, const natural& sum, int scale) {
  natural product = decimal_access::coefficient(total);
  static_cast<void>(product.multiply(decimal_access::coefficient(weight)));  // below 10^76
  natural::quotient parts = product.divided(sum);
  if (weight.is_negative() && !parts.rest.is_zero()) {
    parts.whole += natural(1);
    natural lost = sum;
    lost -= parts.rest;
    parts.rest = lost;
  }
  share out{{}, parts.rest};
  const decimal_failure why =
      decimal_access::round(out.rounded, {parts.whole, scale, weight.is_negative()}, scale, rounding::none);
  if (why != decimal_failure::none) detail::raise(why);
  return out;
}

}  // namespace

decimal percentage(const decimal& amount, const decimal& percent, int scale, rounding how) {
  unfitted exact{decimal_access::coefficient(amount), amount.get_scale() + percent.get_scale() + 2,
                 amount.is_negative() != percent.is_negative()};
  static_cast<void>(exact.coefficient.multiply(decimal_access::coefficient(percent)));  // below 10^76
  decimal out;
  const decimal_failure why = decimal_access::round(out, exact, scale, how);
  if (why != decimal_failure::none) detail::raise(why);
  return out;
}

std::vector<decimal> distribute(const decimal& total, const std::vector<decimal>& weights, int scale) {
  const decimal exact = total.rounded(scale, rounding::none);
  std::vector<decimal> own = aligned(weights);
  // With their decimals, which a sum of too many digits loses; it is refused.
  const decimal sum = sum_of(own).rounded(own.empty() ? 0 : own.front().get_scale(), rounding::none);
  if (sum.is_zero()) {
    if (!total.is_zero()) throw exc::BadArgument(L"weights");
    return std::vector<decimal>(weights.size(), decimal(0, scale));
  }
  if (sum.is_negative()) std::ranges::transform(own, own.begin(), std::negate<>());

  std::vector<decimal> shares;
  std::vector<natural> lost;
  for (const decimal& weight : own) {
    const share made = share_of(exact.abs(), weight, decimal_access::coefficient(sum), scale);
    shares.push_back(made.rounded);
    lost.push_back(made.lost);
  }
  give(shares, units_left(exact.abs(), shares, scale), scale,
       [&lost](std::size_t a, std::size_t b) { return lost[a] > lost[b]; });
  if (total.is_negative()) std::ranges::transform(shares, shares.begin(), std::negate<>());
  return shares;
}

std::vector<decimal> rounded_to_total(const std::vector<decimal>& numbers, const decimal& total, int scale) {
  const decimal exact = total.rounded(scale, rounding::none);
  if (numbers.empty() && !total.is_zero()) throw exc::BadArgument(L"numbers");
  std::vector<decimal> shares, lost;
  for (const decimal& number : numbers) {
    shares.push_back(number.rounded(scale, rounding::floor));
    lost.push_back(number - shares.back());
  }
  if (!shares.empty()) {
    give(shares, units_left(exact, shares, scale), scale,
         [&lost](std::size_t a, std::size_t b) { return lost[a] > lost[b]; });
  }
  return shares;
}

// --- value-added tax

namespace vat {

namespace {

/// The lines of one rate, by their number.
struct group {
  decimal percent;
  std::vector<std::size_t> lines;
};

std::vector<group> by_rate(const std::vector<line>& lines) {
  std::vector<group> out;
  std::map<decimal, std::size_t> places;
  for (std::size_t n = 0; n < lines.size(); ++n) {
    const auto [found, is_new] = places.try_emplace(lines[n].percent, out.size());
    if (is_new) out.push_back({lines[n].percent, {}});
    out[found->second].lines.push_back(n);
  }
  return out;
}

class adder {
 public:
  adder(const std::vector<line>& lines, prices of, int scale, rounding how)
      : lines_(lines), of_(of), scale_(scale), how_(how) {
    made_.bases.resize(lines.size());
    made_.quotas.resize(lines.size());
    made_.base = made_.quota = made_.total = decimal(0, scale);
  }

  summary take() {
    for (const group& each : by_rate(lines_)) add(each);
    return std::move(made_);
  }

 private:
  void add(const group& rate) {
    std::vector<decimal> amounts;
    for (const std::size_t n : rate.lines) amounts.push_back(lines_[n].amount);
    const decimal sum = sum_of(amounts).rounded(scale_, how_);
    of_rate made{rate.percent, sum, {}, sum};
    if (of_ == prices::without_tax) {
      made.quota = percentage(sum, rate.percent, scale_, how_);
      made.total = made.base + made.quota;
    } else {
      made.base = without_tax(sum, rate.percent, scale_, how_);
      made.quota = made.total - made.base;
    }
    divide(rate, amounts, made);
    made_.base += made.base;
    made_.quota += made.quota;
    made_.total += made.total;
    made_.rates.push_back(made);
  }

  /// Among the lines: what is given, and of what is calculated, quota or base, the exact number.
  void divide(const group& rate, const std::vector<decimal>& amounts, const of_rate& made) {
    const bool adds = of_ == prices::without_tax;
    const auto calculate = adds ? percentage : without_tax;
    // Eight decimals more, to compare by what lines lose when they are rounded, or as many as there is room
    // for.
    const decimal largest = std::ranges::max(amounts, {}, &decimal::abs);
    constexpr int most = decimal::most_digits;
    const int room = most - calculate(largest, rate.percent, 0, rounding::up).count_digits();
    const int precise = std::clamp(room, scale_, std::min(scale_ + 8, most));
    std::vector<decimal> exact;
    exact.reserve(amounts.size());
    for (const decimal& amount : amounts)
      exact.push_back(calculate(amount, rate.percent, precise, rounding::half_even));
    const auto given = rounded_to_total(amounts, adds ? made.base : made.total, scale_);
    const auto calculated = rounded_to_total(exact, adds ? made.quota : made.base, scale_);
    for (std::size_t n = 0; n < rate.lines.size(); ++n) {
      made_.bases[rate.lines[n]] = adds ? given[n] : calculated[n];
      made_.quotas[rate.lines[n]] = adds ? calculated[n] : given[n] - calculated[n];
    }
  }

  static decimal without_tax(const decimal& amount, const decimal& percent, int scale, rounding how) {
    const decimal with = hundred + percent;
    if (with <= 0) throw exc::BadArgument(L"percent");
    decimal factor;  // a hundredth of it, which has room: it or the rate has two digits before the point
    decimal_access::set(factor, decimal_access::coefficient(with), with.get_scale() + 2, false);
    return amount.divided(factor, scale, how);
  }

  const std::vector<line>& lines_;
  const prices of_;
  const int scale_;
  const rounding how_;
  summary made_;
};

}  // namespace

summary sum_up(const std::vector<line>& lines, prices of, int scale, rounding how) {
  return adder(lines, of, scale, how).take();
}

}  // namespace vat

}  // namespace ruvo
