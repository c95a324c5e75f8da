// SPDX-License-Identifier: BSL-1.0

// What lies between two calendar values, and the ends of the year, month and week around a day.

#include <ruvo/datetime.hpp>

#include <limits>

#include "base/civil.hpp"
#include "time/fields.hpp"

namespace ruvo {

namespace {

using calendar::fields_of;

long long days_of(const std::tm& fields) {
  return civil::days_from_date(fields.tm_year + 1900LL, fields.tm_mon + 1, fields.tm_mday);
}

/// A day of the year of `fields`; the month counts from 0, as there.
date made(const std::tm& fields, int month, int day, const date& like) {
  return date(static_cast<long>(fields.tm_year + 1900LL), month + 1L, static_cast<long>(day),
              like.get_huso_horario());
}

/// `to` - `from` in whole units, saturated.
int apart(const datetime& from, const datetime& to, long long unit) {
  using limits = std::numeric_limits<long long>;
  const long long a = from.get_lapso();
  const long long b = to.get_lapso();
  if (a < 0 && b > limits::max() + a) return std::numeric_limits<int>::max();
  if (a > 0 && b < limits::min() + a) return std::numeric_limits<int>::min();
  return civil::nearest_int((b - a) / unit);
}

}  // namespace

namespace times {

int diff_hours(const time& from, const time& to) {
  return static_cast<int>((to.in_seconds() - from.in_seconds()) / 3600);
}
int diff_minutes(const time& from, const time& to) {
  return static_cast<int>((to.in_seconds() - from.in_seconds()) / 60);
}

}  // namespace times

namespace datetimes {

int diff_days(const datetime& from, const datetime& to) { return apart(from, to, civil::seconds_per_day); }
int diff_hours(const datetime& from, const datetime& to) { return apart(from, to, 3600); }
int diff_minutes(const datetime& from, const datetime& to) { return apart(from, to, 60); }
int diff_seconds(const datetime& from, const datetime& to) { return apart(from, to, 1); }

}  // namespace datetimes

namespace dates {

date today() { return date(times::LOCAL); }

int diff_days(const date& from, const date& to) {
  return civil::nearest_int(days_of(fields_of(to)) - days_of(fields_of(from)));
}

int diff_months(const date& from, const date& to) {
  const std::tm a = fields_of(from);
  const std::tm b = fields_of(to);
  const long long years = static_cast<long long>(b.tm_year) - a.tm_year;
  const long long months = years * 12 + b.tm_mon - a.tm_mon;
  const bool begun_forwards = months > 0 && b.tm_mday < a.tm_mday;
  const bool begun_backwards = months < 0 && b.tm_mday > a.tm_mday;
  return civil::nearest_int(months - begun_forwards + begun_backwards);
}

date first_day_of_year(const date& day) { return made(fields_of(day), 0, 1, day); }
date last_day_of_year(const date& day) { return made(fields_of(day), 11, 31, day); }

date first_day_of_month(const date& day) {
  const std::tm fields = fields_of(day);
  return made(fields, fields.tm_mon, 1, day);
}
date last_day_of_month(const date& day) {
  const std::tm fields = fields_of(day);
  return made(fields, fields.tm_mon, civil::month_days(fields.tm_year + 1900LL, fields.tm_mon + 1), day);
}

date first_day_of_week(const date& day) {
  const std::tm fields = fields_of(day);
  return made(fields, fields.tm_mon, fields.tm_mday - (fields.tm_wday + 6) % 7, day);
}
date last_day_of_week(const date& day) {
  const std::tm fields = fields_of(day);
  return made(fields, fields.tm_mon, fields.tm_mday + (7 - fields.tm_wday) % 7, day);
}

}  // namespace dates

}  // namespace ruvo
