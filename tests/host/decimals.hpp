// SPDX-License-Identifier: BSL-1.0
#pragma once

// What libc++ lacks up to version 19: decimals from characters. The library asks for nothing else that it
// lacks.

#include <charconv>

#if defined(_LIBCPP_VERSION) && _LIBCPP_VERSION < 200000

namespace std {

from_chars_result from_chars(const char* first, const char* last, double& value,
                             chars_format format = chars_format::general);

}  // namespace std

#endif
