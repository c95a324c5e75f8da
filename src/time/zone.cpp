// SPDX-License-Identifier: BSL-1.0

// Local time by a year's rules, both ways.

#include "time/zone.hpp"

#include <algorithm>

#include "base/civil.hpp"
#include "system/zone_rules.hpp"

namespace ruvo::zone {

namespace {

int year_of(long long local_seconds) {
  const long long days = civil::floor_div(local_seconds, civil::seconds_per_day);
  return civil::nearest_int(civil::date_from_days(days).year);
}

}  // namespace

bool break_down(long long seconds, std::tm& out) {
  if (!civil::has_record(seconds)) return false;
  const platform::zone_rules today =
      platform::zone_rules_of(year_of(seconds - platform::zone_rules_of(year_of(seconds)).standard));
  const bool daylight = today.is_daylight(seconds);
  if (!civil::break_down(seconds - (daylight ? today.daylight : today.standard), out)) return false;
  out.tm_isdst = daylight;
  return true;
}

long long build(const std::tm& fields) {
  const long long wall = civil::build(fields);
  const platform::zone_rules year = platform::zone_rules_of(year_of(wall));
  const long long standard = wall + year.standard;
  const long long daylight = wall + year.daylight;
  const bool is_standard = !year.is_daylight(standard);
  const bool is_daylight = year.is_daylight(daylight);
  if (is_standard == is_daylight)  // a repeated or a skipped hour
    return is_standard ? std::min(standard, daylight) : std::max(standard, daylight);
  return is_standard ? standard : daylight;
}

}  // namespace ruvo::zone
