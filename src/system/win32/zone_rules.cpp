// SPDX-License-Identifier: BSL-1.0

// The rules of the user's zone for a year, kept for a second.

#include "system/zone_rules.hpp"

#include <algorithm>

#include "system/win32/win32.hpp"

namespace ruvo::platform {

namespace {

clock_change change_of(const SYSTEMTIME& when) {
  clock_change out;
  out.month = when.wMonth;
  out.week_day = when.wDayOfWeek;
  out.nth = when.wDay;
  out.fixed_day = when.wYear ? when.wDay : 0;
  out.time_of_day = when.wHour * 3600LL + when.wMinute * 60 + when.wSecond;
  if (when.wMilliseconds >= 500) ++out.time_of_day;  // 23:59:59.999 stands for midnight
  return out;
}

zone_rules read_rules(int year) {
  TIME_ZONE_INFORMATION zone{};
  const auto system_year = static_cast<USHORT>(std::clamp(year, 1601, 30827));
  if (!GetTimeZoneInformationForYear(system_year, nullptr, &zone) &&
      GetTimeZoneInformation(&zone) == TIME_ZONE_ID_INVALID)
    return {};
  zone_rules out;
  out.standard = (zone.Bias + (zone.StandardDate.wMonth ? zone.StandardBias : 0)) * 60LL;
  out.daylight = (zone.Bias + zone.DaylightBias) * 60LL;
  out.has_daylight = zone.StandardDate.wMonth && zone.DaylightDate.wMonth;
  if (out.has_daylight) {
    out.daylight_begin = moment_of(year, change_of(zone.DaylightDate)) + out.standard;
    out.daylight_end = moment_of(year, change_of(zone.StandardDate)) + out.daylight;
  }
  return out;
}

}  // namespace

// Asking the system for a year's rules costs microseconds; each thread keeps a few of them for a second.
zone_rules zone_rules_of(int year) noexcept {
  struct kept {
    zone_rules rules;
    int year;
    unsigned long long until;
  };
  constexpr unsigned places = 4;
  thread_local kept cache[places];
  kept& place = cache[static_cast<unsigned>(year) % places];
  const unsigned long long now = GetTickCount64();
  if (place.year != year || now >= place.until) place = {read_rules(year), year, now + 1000};
  return place.rules;
}

std::wstring zone_name(bool daylight) {
  TIME_ZONE_INFORMATION zone{};
  if (GetTimeZoneInformation(&zone) == TIME_ZONE_ID_INVALID) return {};
  return daylight ? zone.DaylightName : zone.StandardName;
}

}  // namespace ruvo::platform
