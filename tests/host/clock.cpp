// SPDX-License-Identifier: BSL-1.0
#include "system/clock.hpp"

#include <chrono>
#include <ratio>

namespace ruvo::platform {

long long clock_ticks() noexcept {
  using ticks = std::chrono::duration<long long, std::ratio<1, 10000000>>;
  return std::chrono::duration_cast<ticks>(std::chrono::system_clock::now().time_since_epoch()).count();
}

unsigned long long steady_milliseconds() noexcept {
  using namespace std::chrono;
  return static_cast<unsigned long long>(
      duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

}  // namespace ruvo::platform
