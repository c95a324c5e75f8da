// SPDX-License-Identifier: BSL-1.0
#include "system/zone_rules.hpp"

namespace ruvo::platform {

// The clock changes at 1:00 UTC on the last Sundays of March and October.
zone_rules zone_rules_of(int year) noexcept {
  constexpr long long hour = 3600;
  zone_rules out;
  out.standard = -hour;
  out.daylight = -2 * hour;
  out.has_daylight = true;
  out.daylight_begin = moment_of(year, {3, 0, 5, 0, 1 * hour});
  out.daylight_end = moment_of(year, {10, 0, 5, 0, 1 * hour});
  return out;
}

// Some zones have names that begin with one of UTC.
std::wstring zone_name(bool daylight) { return daylight ? L"GMT+2" : L"GMT+1"; }

}  // namespace ruvo::platform
