// SPDX-License-Identifier: BSL-1.0
#pragma once

// When the clocks of the user's zone change.

#include <string>

namespace ruvo::platform {

/// What to add to local time to have UTC, in seconds, and when daylight time rules, in seconds since 1970. In
/// the southern half of the world it ends before it begins.
struct zone_rules {
  long long standard = 0;
  long long daylight = 0;
  bool has_daylight = false;
  long long daylight_begin = 0;
  long long daylight_end = 0;

  bool is_daylight(long long seconds) const {
    if (!has_daylight) return false;
    if (daylight_begin < daylight_end) return seconds >= daylight_begin && seconds < daylight_end;
    return seconds >= daylight_begin || seconds < daylight_end;
  }
};

/// A moment of a year at which the clock changes, as the wall clock shows it: on a fixed day, or on the n-th
/// (5 = last) week day of the month.
struct clock_change {
  int month = 0;  // 0 = never
  int week_day = 0;
  int nth = 0;
  int fixed_day = 0;  // 0 = by week day
  long long time_of_day = 0;
};

/// The change as seconds since 1970, read as if local time were UTC.
long long moment_of(long long year, const clock_change& what);

/// The rules of the user's zone for a local year.
zone_rules zone_rules_of(int year) noexcept;
/// The zone's name for standard or daylight time.
std::wstring zone_name(bool daylight);

}  // namespace ruvo::platform
