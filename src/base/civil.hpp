// SPDX-License-Identifier: BSL-1.0
#pragma once

// Exact arithmetic of the proleptic Gregorian calendar, with floor division throughout.

#include <algorithm>
#include <ctime>
#include <limits>

namespace ruvo::civil {

constexpr long long seconds_per_day = 86400;

constexpr long long floor_div(long long a, long long b) { return a / b - (a % b < 0); }

/// The number, or the nearest that an int holds.
constexpr int nearest_int(long long number) {
  using limits = std::numeric_limits<int>;
  return static_cast<int>(std::clamp<long long>(number, limits::min(), limits::max()));
}

constexpr bool is_leap(long long year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

/// Days of a month counted from 1.
constexpr int month_days(long long year, int month) {
  return month == 2 ? 28 + is_leap(year) : 30 + ((month + (month >> 3)) & 1);
}

// Years are taken to begin in March, so that the leap day is the last one: the months then begin at day
// (153 m + 2) / 5 of the year. The divisions are those of unsigned numbers, which are the quickest: counted
// from a distant year, nothing is negative.
constexpr unsigned long long distant_eras = 800000000;  // of 400 years: more than 64 bits of seconds reach
constexpr unsigned long long distant_years = distant_eras * 400;
constexpr unsigned long long distant_days = distant_eras * 146097 + 719468;  // until 1970-01-01

/// Days from 1970-01-01 to a date with month 1-12; the day may be any.
constexpr long long days_from_date(long long year, int month, long long day) {
  const bool next_year = month < 3;
  const unsigned m = static_cast<unsigned>(next_year ? month + 9 : month - 3);
  const unsigned long long y = static_cast<unsigned long long>(year) + distant_years - next_year;
  const unsigned long long century = y / 100;
  const unsigned long long first = y * 365 + y / 4 - century + century / 4 + (153 * m + 2) / 5;
  return static_cast<long long>(first - distant_days - 1) + day;
}

struct date_fields {
  long long year;
  int month;     // 1-12
  int day;       // 1-31
  int year_day;  // from 0
};

constexpr date_fields date_from_days(long long days) {
  const unsigned long long n = 4 * (static_cast<unsigned long long>(days) + distant_days) + 3;
  const unsigned long long century = n / 146097;
  const unsigned in_century = static_cast<unsigned>(n - century * 146097) | 3;  // in quarters of a day
  // Division by multiplication: the upper half of a product is the quotient, the lower one the rest as a
  // fraction. A day is a 1461st of four years, and 2141 / 65536 of a month, with what makes each day of the
  // months of 30 and 31 days come out right.
  constexpr unsigned long long per_year = 0x100000000 / 1461 + 1;
  constexpr unsigned per_day = 2141, offset = 1305;
  const unsigned long long years = in_century * per_year;
  const auto year_of_century = static_cast<unsigned>(years >> 32);
  const unsigned from_march = static_cast<unsigned>(years) / static_cast<unsigned>(per_year) / 4;
  const unsigned months = from_march * per_day + offset;
  const unsigned m = months >> 16;
  const int day = static_cast<int>((months & 0xFFFF) / per_day + 1);
  const bool next_year = m > 9;
  const int month = static_cast<int>(next_year ? m - 9 : m + 3);
  const auto year = static_cast<long long>(century * 100 + year_of_century - distant_years) + next_year;
  const bool leap = year_of_century % 4 == 0 && (year_of_century != 0 || century % 4 == 0);
  const int year_day = static_cast<int>(from_march) + (next_year ? -306 : 59 + static_cast<int>(leap));
  return {year, month, day, year_day};
}

/// 0 = Sunday.
constexpr int week_day(long long days) {
  constexpr int before_first = 3;  // 1 March of a year that 400 divides is a Wednesday
  return static_cast<int>((static_cast<unsigned long long>(days) + distant_days + before_first) % 7);
}

/// False for instants whose year, in whatever zone, no record holds: half the range reaches farther than
/// that.
constexpr bool has_record(long long seconds) {
  constexpr long long farthest = std::numeric_limits<long long>::max() / 2;
  return seconds >= -farthest && seconds <= farthest;
}

/// Fills every field, with tm_isdst 0; false when the year does not fit.
inline bool break_down(long long seconds, std::tm& out) {
  if (!has_record(seconds)) return false;
  const unsigned long long since = static_cast<unsigned long long>(seconds) + distant_days * seconds_per_day;
  const auto days = static_cast<long long>(since / seconds_per_day - distant_days);
  const int rest = static_cast<int>(since % seconds_per_day);
  const date_fields date = date_from_days(days);
  const long long year = date.year - 1900;
  if (year < std::numeric_limits<int>::min() || year > std::numeric_limits<int>::max()) return false;
  out.tm_sec = rest % 60;
  out.tm_min = rest / 60 % 60;
  out.tm_hour = rest / 3600;
  out.tm_mday = date.day;
  out.tm_mon = date.month - 1;
  out.tm_year = static_cast<int>(year);
  out.tm_wday = week_day(days);
  out.tm_yday = date.year_day;
  out.tm_isdst = 0;
  return true;
}

/// Seconds since 1970 of the fields, whatever their size.
constexpr long long build(const std::tm& fields) {
  long long month = fields.tm_mon;
  long long years = 0;
  if (month < 0 || month > 11) {
    years = floor_div(month, 12);
    month -= years * 12;
  }
  const long long days =
      days_from_date(fields.tm_year + 1900LL + years, static_cast<int>(month) + 1, fields.tm_mday);
  return days * seconds_per_day + fields.tm_hour * 3600LL + fields.tm_min * 60LL + fields.tm_sec;
}

}  // namespace ruvo::civil
