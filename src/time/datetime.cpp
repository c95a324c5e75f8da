// SPDX-License-Identifier: BSL-1.0

// A day with a time of day.

#include <ruvo/datetime.hpp>

#include <ctime>
#include <ostream>
#include <utility>

#include "base/utf.hpp"
#include "time/fields.hpp"

namespace ruvo {

const std::string datetime::canonical = "%d-%m-%Y %H:%M:%S";
const std::string datetime::iso_long_format = "%d-%m-%Y %H:%M:%S";
const std::string datetime::sql_format = "%Y-%m-%d %H:%M:%S";
const std::string datetime::long_utc_format = "%d-%B-%Y %H:%M:%S %z";

datetime::datetime(times::HUSO huso) : lapse(huso) {}
datetime::datetime(double seconds, times::HUSO huso) : lapse(0, huso) { set_lapso(seconds); }
datetime::datetime(long long seconds, times::HUSO huso) : lapse(seconds, huso) {}
datetime::datetime(long yyyymmdd, times::HUSO huso) : datetime(yyyymmdd, 0L, huso) {}
datetime::datetime(long yyyymmdd, long hhmmss, times::HUSO huso)
    : datetime(yyyymmdd / 10000, yyyymmdd / 100 % 100, yyyymmdd % 100, hhmmss / 10000, hhmmss / 100 % 100,
               hhmmss % 100, huso) {}
datetime::datetime(long year, long month, long day, times::HUSO huso)
    : datetime(year, month, day, 0, 0, 0, huso) {}
datetime::datetime(long year, long month, long day, long hour, long minute, long second, times::HUSO huso)
    : lapse(0, huso) {
  build(year, month, day, hour, minute, second);
}
datetime::datetime(const date& day, const time& hour, times::HUSO huso) : lapse(0, huso) {
  const std::tm left = calendar::fields_of(day);
  const std::tm right = calendar::fields_of(hour);
  build(left.tm_year + 1900LL, left.tm_mon + 1LL, left.tm_mday, right.tm_hour, right.tm_min, right.tm_sec);
}
datetime::datetime(const date& value) : lapse(value) {}
datetime::datetime(const time& value) : lapse(value) {}
datetime::datetime(const datetime& other) = default;
datetime::datetime(datetime&& other) noexcept = default;
datetime::~datetime() = default;

datetime& datetime::operator=(const datetime& other) = default;
datetime& datetime::operator=(const date& value) { return *this = datetime(value); }
datetime& datetime::operator=(const time& value) { return *this = datetime(value); }
datetime& datetime::operator=(double seconds) {
  set_lapso(seconds);
  return *this;
}
datetime& datetime::operator=(const char* text) { return *this = std::string(text ? text : ""); }
datetime& datetime::operator=(const wchar_t* text) { return *this = std::wstring(text ? text : L""); }
datetime& datetime::operator=(const std::string& text) {
  take(text, canonical);
  return *this;
}
datetime& datetime::operator=(const std::wstring& text) {
  take(text, canonical);
  return *this;
}

datetime::operator date() const { return date(*this); }
datetime::operator time() const { return time(*this); }

std::wstring datetime::to_string(std::string format) const { return lapse::to_string(std::move(format)); }

datetime& datetime::set_day(int day) {
  replace(day, times::DAYS);
  return *this;
}
datetime& datetime::set_month(int month) {
  replace(month, times::MONTHS);
  return *this;
}
datetime& datetime::set_year(int year) {
  replace(year, times::YEARS);
  return *this;
}
datetime& datetime::set_hour(int hour) {
  replace(hour, times::HOURS);
  return *this;
}
datetime& datetime::set_minutes(int minutes) {
  replace(minutes, times::MINUTES);
  return *this;
}
datetime& datetime::set_seconds(int seconds) {
  replace(seconds, times::SECONDS);
  return *this;
}

std::wstring datetime::get_month_name(const std::string& locale) const { return month_name(locale, false); }
std::wstring datetime::get_month_name_abbreviated(const std::string& locale) const {
  return month_name(locale, true);
}
std::wstring datetime::get_week_day_name(const std::string& locale) const {
  return week_day_name(locale, false);
}
std::wstring datetime::get_week_day_name_abbreviated(const std::string& locale) const {
  return week_day_name(locale, true);
}

int datetime::compare(const datetime& other) const {
  if (get_lapso() == other.get_lapso()) return 0;
  return get_lapso() > other.get_lapso() ? 1 : 2;
}
int datetime::compare(const date& day) const { return static_cast<date>(*this).compare(day); }
int datetime::compare(const time& hour) const { return static_cast<time>(*this).compare(hour); }

std::strong_ordering datetime::operator<=>(const datetime& other) const {
  return get_lapso() <=> other.get_lapso();
}
std::strong_ordering datetime::operator<=>(const date& day) const { return static_cast<date>(*this) <=> day; }
std::strong_ordering datetime::operator<=>(const time& hour) const {
  return static_cast<time>(*this) <=> hour;
}

datetime& datetime::operator+=(int hours) {
  move(hours, times::HOURS);
  return *this;
}
datetime& datetime::operator-=(int hours) {
  move_back(hours, times::HOURS);
  return *this;
}
datetime datetime::operator++(int) {
  datetime before(*this);
  *this += 1;
  return before;
}
datetime datetime::operator--(int) {
  datetime before(*this);
  *this -= 1;
  return before;
}

std::wostream& operator<<(std::wostream& out, const datetime& value) { return out << value.to_string(); }
std::ostream& operator<<(std::ostream& out, const datetime& value) {
  return out << texto::to_utf_8(value.to_string());
}

}  // namespace ruvo
