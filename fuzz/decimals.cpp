// SPDX-License-Identifier: BSL-1.0

// Decimals: what is read is written so that it reads back, in both widths and with separators; what does not
// fit is said; operations undo each other.

#include <ruvo/decimal.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/reading.hpp>

#include <cmath>
#include <string_view>

#include "fuzz.hpp"

using ruvo::decimal;

namespace {

void check(const decimal& number) {
  ruvo::exception failure;
  decimal twin;
  FUZZ_CHECK(twin.read(number.to_string(), failure) && twin == number);
  FUZZ_CHECK(twin.get_scale() == number.get_scale() && twin.hash() == number.trimmed().hash());
  FUZZ_CHECK(twin.read_local(number.format(), failure) && twin == number);
  FUZZ_CHECK(!number.is_zero() || !number.is_negative());
  try {
    const decimal nearest(static_cast<double>(number));
    if (twin.divide(nearest, 15, ruvo::rounding::half_even, failure))
      FUZZ_CHECK((twin - 1).abs() <= decimal(3, 15));
  } catch (const ruvo::exc::DecimalException&) {  // the shortest text of the double has digits beyond
  }
}

/// Two numbers, as far as the results fit.
void calculate(const decimal& a, const decimal& b) {
  ruvo::exception failure;
  decimal number = a;
  if (number.add(b, failure)) FUZZ_CHECK(number.subtract(b, failure) && number == a);
  number = a;
  if (!b.is_zero() && number.multiply(b, failure) &&
      number.divide(b, a.get_scale(), ruvo::rounding::none, failure))
    FUZZ_CHECK(number == a);
  number = a;
  for (const auto how : {ruvo::rounding::floor, ruvo::rounding::ceiling}) {
    number = a;
    if (!number.round(b.get_scale(), how, failure)) continue;
    FUZZ_CHECK(how == ruvo::rounding::floor ? number <= a : number >= a);
    decimal apart = number;
    if (apart.subtract(a, failure)) FUZZ_CHECK(apart.abs() < decimal(1, b.get_scale()));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes = fuzz::narrow(data, size);
  const std::size_t half = bytes.find(' ');
  const std::string first = bytes.substr(0, half);
  decimal a, b, wide, local;
  ruvo::exception failure, wide_failure;
  const bool read = a.read(first, failure);
  FUZZ_CHECK(wide.read(std::wstring(first.begin(), first.end()), wide_failure) == read);
  FUZZ_CHECK(failure == wide_failure &&
             ruvo::serializer::failure_position(failure) == ruvo::serializer::failure_position(wide_failure));
  if (local.read_local(fuzz::wide(data, size), failure)) check(local);
  if (!read) return 0;
  FUZZ_CHECK(a == wide);
  check(a);
  if (half != first.npos && b.read(std::string_view(bytes).substr(half + 1), failure)) calculate(a, b);
  return 0;
}
