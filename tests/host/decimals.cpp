// SPDX-License-Identifier: BSL-1.0

// Decimals from characters by the C library, for a standard library without them.

#include "decimals.hpp"

#if defined(_LIBCPP_VERSION) && _LIBCPP_VERSION < 200000

#  include <cerrno>
#  include <charconv>
#  include <cmath>
#  include <cstdlib>
#  include <string>
#  include <string_view>
#  include <system_error>

/// Of numbers without signs but '-' and without names; the program keeps the locale "C".
std::from_chars_result std::from_chars(const char* first, const char* last, double& value,
                                       chars_format format) {
  const std::string_view units = format == chars_format::fixed ? "-.0123456789" : "-+.0123456789eE";
  const char* end = first;
  while (end != last && units.find(*end) != units.npos) ++end;
  const std::string text(first, end);
  char* behind = nullptr;
  errno = 0;
  const double read = std::strtod(text.c_str(), &behind);
  if (behind == text.c_str() || text.front() == '+') return {first, errc::invalid_argument};
  const char* const stop = first + (behind - text.c_str());
  if (errno == ERANGE && (read == 0 || std::isinf(read))) return {stop, errc::result_out_of_range};
  value = read;
  return {stop, errc()};
}

#endif
