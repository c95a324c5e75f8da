#pragma once

// Exact arithmetic of the proleptic Gregorian calendar, with floor division throughout.

#include <ctime>
#include <limits>

namespace ruvo::civil {

constexpr long long seconds_per_day = 86400;

constexpr long long floor_div(long long a, long long b) { return a / b - (a % b < 0); }

constexpr bool is_leap(long long year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

/// Days of a month counted from 1.
constexpr int month_days(long long year, int month) {
  return month == 2 ? 28 + is_leap(year) : 30 + ((month + (month >> 3)) & 1);
}

/// Days from 1970-01-01 to a date with month 1-12; the day may be any.
/// Years are taken to begin in March, so that the leap day is the last one: the months then begin at day
/// (153 m + 2) / 5 of the year.
constexpr long long days_from_date(long long year, int month, long long day) {
  const long long y = year - (month < 3);
  const int m = month < 3 ? month + 9 : month - 3;
  const long long century = floor_div(y, 100);
  return y * 365 + floor_div(y, 4) - century + floor_div(century, 4) + (153 * m + 2) / 5 + day - 719469;
}

struct date_fields {
  long long year;
  int month;     // 1-12
  int day;       // 1-31
  int year_day;  // from 0
};

constexpr date_fields date_from_days(long long days) {
  const long long shifted = days + 719468;  // from 0000-03-01
  const long long era = floor_div(shifted, 146097);
  const unsigned in_era = static_cast<unsigned>(shifted - era * 146097);
  const unsigned century = (4 * in_era + 3) / 146097;
  const unsigned in_century = in_era - century * 146097 / 4;
  const unsigned year_of_century = (4 * in_century + 3) / 1461;
  const unsigned from_march = in_century - year_of_century * 1461 / 4;
  const unsigned m = (5 * from_march + 2) / 153;
  const int day = static_cast<int>(from_march - (153 * m + 2) / 5 + 1);
  const bool next_year = m > 9;
  const int month = static_cast<int>(next_year ? m - 9 : m + 3);
  const long long year = era * 400 + century * 100 + year_of_century + next_year;
  const int year_day =
      static_cast<int>(from_march) + (next_year ? -306 : 59 + static_cast<int>(is_leap(year)));
  return {year, month, day, year_day};
}

/// 0 = Sunday.
constexpr int week_day(long long days) { return static_cast<int>(days + 4 - 7 * floor_div(days + 4, 7)); }

/// Fills every field, with tm_isdst 0; false when the year does not fit.
inline bool break_down(long long seconds, std::tm& out) {
  const long long days = floor_div(seconds, seconds_per_day);
  const int rest = static_cast<int>(seconds - days * seconds_per_day);
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
  const long long months = fields.tm_mon;
  const long long years = floor_div(months, 12);
  const long long days = days_from_date(fields.tm_year + 1900LL + years,
                                        static_cast<int>(months - years * 12) + 1, fields.tm_mday);
  return days * seconds_per_day + fields.tm_hour * 3600LL + fields.tm_min * 60LL + fields.tm_sec;
}

}  // namespace ruvo::civil
