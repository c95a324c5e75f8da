#pragma once

// Local time by the rules of one year.

#include <ctime>

namespace ruvo::zone {

/// What to add to local time to have UTC, in seconds, and when daylight time rules, in seconds since 1970. In
/// the southern half of the world it ends before it begins.
struct rules {
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
struct change {
  int month = 0;  // 0 = never
  int week_day = 0;
  int nth = 0;
  int fixed_day = 0;  // 0 = by week day
  long long time_of_day = 0;
};

/// The change as seconds since 1970, read as if local time were UTC.
long long moment(long long year, const change& what);

/// Every field; false when the year does not fit.
bool break_down(long long seconds, std::tm& out);
/// Fields out of their range are normalised. Of the two instants that a repeated hour names the first is
/// taken; a skipped hour is moved on by the length of the gap.
long long build(const std::tm& fields);

}  // namespace ruvo::zone
