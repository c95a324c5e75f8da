// SPDX-License-Identifier: BSL-1.0

// The system's clocks.

#include "system/clock.hpp"

#include "system/win32/win32.hpp"

namespace ruvo::platform {

long long clock_ticks() noexcept {
  constexpr long long from_1601_to_1970 = 116444736000000000;
  FILETIME now;
  GetSystemTimeAsFileTime(&now);
  return (static_cast<long long>(now.dwHighDateTime) << 32 | now.dwLowDateTime) - from_1601_to_1970;
}

unsigned long long steady_milliseconds() noexcept { return GetTickCount64(); }

}  // namespace ruvo::platform
