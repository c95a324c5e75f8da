// SPDX-License-Identifier: BSL-1.0

// The day kept as a number of days, with its closed formulas.

#include <ruvo/datetime.hpp>
#include <ruvo/velda.hpp>

#include <cmath>
#include <cstdint>

#include "base/civil.hpp"

namespace ruvo::velda {

namespace {

constexpr long long no_instant = -1;

int day_number(int year, int month, int day) {
  const double x = year + (month - 2.85) / 12;
  const double a = std::floor(std::floor(367 * x) - std::floor(x) * 1.75 + day);
  const double b = std::floor(std::floor(x / 100) * 0.75);
  return civil::nearest_int(static_cast<long long>(std::floor(a - b) + 1721115));
}

struct fields {
  int year, month, day;
};

/// The formula keeps what it rounds in 16 bits.
int floor_16(double value) {
  return static_cast<std::int16_t>(static_cast<std::uint16_t>(static_cast<long long>(std::floor(value))));
}

fields fields_of(int number) {
  constexpr int start = 1721119;  // the day before 0000-03-01
  const long long n = static_cast<long long>(number) - start;
  const int c = floor_16((static_cast<double>(n) - 0.2) / 36524.25);
  const long long k = n + c - c / 4;
  const int y = floor_16((static_cast<double>(k) - 0.2) / 365.25);
  const double r = static_cast<double>(k) - std::floor(y * 365.25);
  const int m = floor_16((r - 0.5) / 30.6);
  return {y + (m > 9), m > 9 ? m - 9 : m + 3, floor_16(r - m * 30.6 + 0.5)};
}

/// 0 = Sunday.
int week_day(int number) {
  const long long n = number + 1LL;
  return static_cast<int>(n - 7 * civil::floor_div(n, 7));
}

int year_day(const fields& at) {
  return static_cast<int>(civil::days_from_date(at.year, at.month, at.day) -
                          civil::days_from_date(at.year, 1, 1));
}

/// The field that a unit moves and sets; null for the others.
int* field_of(fields& all, times::UNITS unit) {
  switch (unit) {
    case times::DAYS:
      return &all.day;
    case times::MONTHS:
      return &all.month;
    case times::YEARS:
      return &all.year;
    default:
      return nullptr;
  }
}

date moved(const date& from, int days) {
  return date(from).set_day_number(civil::nearest_int(static_cast<long long>(from.get_day_number()) + days));
}

}  // namespace

date::date(times::HUSO huso) : ruvo::date(huso) { count(); }
date::date(long yyyymmdd, times::HUSO huso)
    : date(yyyymmdd / 10000, yyyymmdd / 100 % 100, yyyymmdd % 100, huso) {}
date::date(long year, long month, long day, times::HUSO huso) : ruvo::date(as_it_is(), no_instant, huso) {
  set(civil::nearest_int(year), civil::nearest_int(month), civil::nearest_int(day));
}
date::date(const char* text, times::HUSO huso, const std::string& format) : ruvo::date(text, huso, format) {
  count();
}
date::date(const wchar_t* text, times::HUSO huso, const std::string& format)
    : ruvo::date(text, huso, format) {
  count();
}
date::date(const std::string& text, times::HUSO huso, const std::string& format)
    : ruvo::date(text, huso, format) {
  count();
}
date::date(const std::wstring& text, times::HUSO huso, const std::string& format)
    : ruvo::date(text, huso, format) {
  count();
}
date::date(const date& other, times::HUSO huso) : ruvo::date(other), number_(other.number_) {
  set_huso_horario(huso);
  const std::tm at = other.get_model();
  if (at.tm_mday != 0) follow(civil::nearest_int(at.tm_year + 1900LL), at.tm_mon + 1, at.tm_mday);
}
date::date(const date& other) = default;
date::date(date&& other) noexcept = default;
date::~date() = default;
date& date::operator=(const date& other) = default;
date& date::operator=(const ruvo::date& day) {
  ruvo::date::operator=(day);
  count();
  return *this;
}
date& date::operator=(const datetime& instant) { return *this = ruvo::date(instant); }
date& date::operator=(long yyyymmdd) {
  set(civil::nearest_int(yyyymmdd / 10000), static_cast<int>(yyyymmdd / 100 % 100),
      static_cast<int>(yyyymmdd % 100));
  return *this;
}
date& date::operator=(const char* text) { return *this = std::string(text ? text : ""); }
date& date::operator=(const wchar_t* text) { return *this = std::wstring(text ? text : L""); }
date& date::operator=(const std::string& text) {
  ruvo::date::operator=(text);
  return *this;
}
date& date::operator=(const std::wstring& text) {
  ruvo::date::operator=(text);
  return *this;
}

/// Puts the instant on a day. One that the context cannot build is left out: the number is what counts.
void date::follow(int year, int month, int day) noexcept {
  try {
    fix(year, month, day);
  } catch (...) {
  }
}

/// The number of the day of the instant.
void date::count() {
  const std::tm at = record();
  number_ = day_number(civil::nearest_int(at.tm_year + 1900LL), at.tm_mon + 1, at.tm_mday);
}

date& date::set_day_number(int number) {
  number_ = number;
  const fields at = fields_of(number);
  follow(at.year, at.month, at.day);
  return *this;
}

int date::set(int year, int month, int day) {
  number_ = day_number(year, month, day);
  follow(year, month, day);
  return number_;
}

void date::get(int& year, int& month, int& day) const {
  const fields at = fields_of(number_);
  year = at.year;
  month = at.month;
  day = at.day;
}

int date::get(times::UNITS unit) const {
  fields at = fields_of(number_);
  if (const int* const field = field_of(at, unit)) return *field;
  if (unit == times::WEEK_DAY) return week_day(number_);
  if (unit == times::YEAR_DAY) return year_day(at);
  return ruvo::date::get(unit);
}

bool date::set(int n, times::UNITS unit, exception*) {
  fields at = fields_of(number_);
  int* const field = field_of(at, unit);
  if (!field) return false;
  *field = n;
  set(at.year, at.month, at.day);
  return false;
}

bool date::add(int n, times::UNITS unit, exception*) {
  fields at = fields_of(number_);
  if (int* const field = field_of(at, unit)) *field = civil::nearest_int(static_cast<long long>(*field) + n);
  set(at.year, at.month, at.day);
  return false;
}

date& date::set_day(int day) {
  set(day, times::DAYS);
  return *this;
}
date& date::set_month(int month) {
  set(month, times::MONTHS);
  return *this;
}
date& date::set_year(int year) {
  set(year, times::YEARS);
  return *this;
}

int date::get_month_days() const {
  const fields at = fields_of(number_);
  return civil::month_days(at.year, at.month);
}

date date::get_last_day(long year, long month) {
  const long long months = civil::nearest_int(month);
  const long long years = civil::floor_div(months - 1, 12);
  const int in_year = static_cast<int>(months - years * 12);
  const int full_year = civil::nearest_int(civil::nearest_int(year) + years);
  return date(static_cast<long>(full_year), static_cast<long>(in_year),
              static_cast<long>(civil::month_days(full_year, in_year)));
}

void date::read(std::wstring_view text, std::wstring_view format, const std::string& locale) {
  date parsed(*this);
  parsed.ruvo::date::read(text, format, locale);
  parsed.count();
  *this = parsed;
}

namespace dates {

int diff_days(const date& from, const date& to) {
  return civil::nearest_int(static_cast<long long>(to.get_day_number()) - from.get_day_number() + 1);
}

date first_day_of_year(const date& day) { return moved(day, -day.get(times::YEAR_DAY)); }
date last_day_of_year(const date& day) {
  return moved(day, 364 + civil::is_leap(day.get_year()) - day.get(times::YEAR_DAY));
}
date first_day_of_month(const date& day) { return moved(day, 1 - day.get_day()); }
date last_day_of_month(const date& day) { return moved(day, day.get_month_days() - day.get_day()); }
date first_day_of_week(const date& day) { return moved(day, -((day.get_week_day() + 6) % 7)); }
date last_day_of_week(const date& day) { return moved(day, (7 - day.get_week_day()) % 7); }

}  // namespace dates

}  // namespace ruvo::velda
