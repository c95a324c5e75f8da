// SPDX-License-Identifier: BSL-1.0

// The moment of a clock change in a year.

#include "system/zone_rules.hpp"

#include "base/civil.hpp"

namespace ruvo::platform {

long long moment_of(long long year, const clock_change& what) {
  int day = what.fixed_day;
  if (!day) {
    const int first = civil::week_day(civil::days_from_date(year, what.month, 1));
    day = 1 + (what.week_day - first + 7) % 7 + (what.nth - 1) * 7;
    while (day > civil::month_days(year, what.month)) day -= 7;
  }
  return civil::days_from_date(year, what.month, day) * civil::seconds_per_day + what.time_of_day;
}

}  // namespace ruvo::platform
