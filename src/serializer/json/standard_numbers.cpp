// SPDX-License-Identifier: BSL-1.0

// Numbers beyond the common ones: of many digits, with exponents, and those that no value holds.

#include "serializer/json/standard_numbers.hpp"

#include <ruvo/decimal.hpp>
#include <ruvo/exception.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>
#include <system_error>

namespace ruvo::serializer {

namespace {

using form = number_value::form;

/// Digits without zeros at both ends, and the power of ten of the first one.
struct plain_digits {
  std::string digits;  // empty for zero
  std::int64_t exponent = 0;
};

/// Of a number as JSON or std::to_chars() write it, without its sign.
plain_digits digits_of(std::string_view written) {
  plain_digits out;
  std::int64_t point = -1, leading = 0, power = 0;
  for (std::size_t at = 0; at < written.size(); ++at) {
    const char c = written[at];
    if (c == '.') {
      point = static_cast<std::int64_t>(out.digits.size()) + leading;
    } else if (c == 'e' || c == 'E') {
      const std::size_t from = at + (written[at + 1] == '+' ? 2 : 1);
      const auto [end, error] =
          std::from_chars(written.data() + from, written.data() + written.size(), power);
      constexpr std::int64_t most = number_parts::largest_exponent;
      if (error != std::errc()) power = written[from] == '-' ? -most : most;
      power = std::clamp(power, -most, most);
      break;
    } else if (out.digits.empty() && c == '0') {
      ++leading;
    } else {
      out.digits += c;
    }
  }
  if (point < 0) point = static_cast<std::int64_t>(out.digits.size()) + leading;
  out.exponent = power + point - leading - 1;
  while (!out.digits.empty() && out.digits.back() == '0') out.digits.pop_back();
  return out;
}

/// Whether the shortest text that gives the double has the digits that are written.
bool has_the_digits(double value, const plain_digits& own) {
  if (own.digits.empty() || value == 0) return own.digits.empty();
  char text[64];
  const char* const end =
      std::to_chars(text, text + sizeof text, std::fabs(value), std::chars_format::scientific).ptr;
  const plain_digits shortest = digits_of({text, static_cast<std::size_t>(end - text)});
  return own.digits == shortest.digits && own.exponent == shortest.exponent;
}

/// There is no nearest double.
json_number beyond(json_number choice) noexcept {
  return choice == json_number::nearest ? json_number::failure : choice;
}

number_value by(json_number choice, double nearest) noexcept {
  if (choice == json_number::nearest) return {form::real, 0, nearest};
  return {choice == json_number::text ? form::written : form::refused, 0, nearest};
}

/// Without the sign.
number_value real_value(std::string_view written, const json_read_options& options) {
  double value = 0;
  const auto error = std::from_chars(written.data(), written.data() + written.size(), value).ec;
  const bool fits = error == std::errc() && !std::isinf(value);
  if (fits && options.inexact == json_number::nearest) return {form::real, 0, value};
  const plain_digits plain = digits_of(written);
  if (!fits) {
    if (!plain.digits.empty() && plain.exponent > 0) return by(beyond(options.too_large), 0);
    value = 0;
  }
  if (has_the_digits(value, plain)) return {form::real, 0, value};
  return by(options.inexact, value);
}

}  // namespace

number_value uncommon_value(const number_parts& parts, std::string_view written,
                            const json_read_options& options) {
  constexpr std::uint64_t first_beyond = std::uint64_t{1} << 63;
  if (parts.negative) written.remove_prefix(1);
  if (parts.whole && written != "0") {
    std::uint64_t value = 0;
    const auto error = std::from_chars(written.data(), written.data() + written.size(), value).ec;
    if (error == std::errc() && !parts.negative) return {form::natural, static_cast<long long>(value), 0};
    if (error == std::errc() && value == first_beyond)
      return {form::integer, static_cast<long long>(0 - value), 0};
  }
  if (options.decimals) {
    decimal value;
    exception failure;
    if (value.read(written, failure)) return {form::exact, 0, 0};
    return {options.inexact == json_number::text ? form::written : form::refused, 0, 0};
  }
  number_value out = real_value(written, options);
  if (parts.negative) out.real = -out.real;
  return out;
}

number_value uncommon_value(const number_parts& parts, std::wstring_view written,
                            const json_read_options& options) {
  char small[64];
  if (written.size() <= sizeof small) {
    std::transform(written.begin(), written.end(), small, [](wchar_t c) { return static_cast<char>(c); });
    return uncommon_value(parts, std::string_view(small, written.size()), options);
  }
  std::string narrow(written.size(), '\0');
  std::transform(written.begin(), written.end(), narrow.begin(),
                 [](wchar_t c) { return static_cast<char>(c); });
  return uncommon_value(parts, std::string_view(narrow), options);
}

}  // namespace ruvo::serializer
