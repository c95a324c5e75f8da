// SPDX-License-Identifier: BSL-1.0

// A day of the calendar.

#include <ruvo/date.hpp>
#include <ruvo/datetime.hpp>

#include <ostream>
#include <utility>

#include "base/civil.hpp"
#include "base/utf.hpp"

namespace ruvo {

const std::string date::canonical = "%d-%m-%Y";
const std::string date::short_format = "%d-%m-%Y";
const std::string date::sql_format = "%Y-%m-%d";
const std::string date::short_month_format = "%d-%b-%Y";
const std::string date::long_month_format = "%d-%B-%Y";
const std::string date::velda = "%Y%m%d";

date::date(times::HUSO huso) : lapse(huso) { reset_time(); }
date::date(long yyyymmdd, times::HUSO huso) : lapse(0, huso) { *this = yyyymmdd; }
date::date(long year, long month, long day, times::HUSO huso) : lapse(0, huso) { fix(year, month, day); }
date::date(const char* text, times::HUSO huso, const std::string& format)
    : date(std::string(text ? text : ""), huso, format) {}
date::date(const wchar_t* text, times::HUSO huso, const std::string& format)
    : date(std::wstring(text ? text : L""), huso, format) {}
date::date(const std::string& text, times::HUSO huso, const std::string& format) : lapse(0, huso) {
  take(text, format);
}
date::date(const std::wstring& text, times::HUSO huso, const std::string& format) : lapse(0, huso) {
  take(text, format);
}
date::date(const datetime& instant) : lapse(instant) { reset_time(); }
date::date(as_it_is, long long seconds, times::HUSO huso) noexcept : lapse(seconds, huso) {}
date::date(const date& other) = default;
date::date(date&& other) noexcept = default;
date::~date() = default;

date& date::operator=(const date& other) = default;
date& date::operator=(const datetime& instant) { return *this = date(instant); }
date& date::operator=(long yyyymmdd) {
  fix(yyyymmdd / 10000, yyyymmdd / 100 % 100, yyyymmdd % 100);
  return *this;
}
date& date::operator=(const char* text) { return *this = std::string(text ? text : ""); }
date& date::operator=(const wchar_t* text) { return *this = std::wstring(text ? text : L""); }
date& date::operator=(const std::string& text) {
  take(text, canonical);
  return *this;
}
date& date::operator=(const std::wstring& text) {
  take(text, canonical);
  return *this;
}

date::operator long() const {
  const std::tm fields = record();
  return static_cast<long>((fields.tm_year + 1900LL) * 10000 + (fields.tm_mon + 1) * 100 + fields.tm_mday);
}

void date::read(std::wstring_view text, std::wstring_view format, const std::string& locale) {
  date parsed(*this);
  parsed.lapse::read(text, format, locale);
  parsed.reset_time();
  *this = parsed;
}

std::wstring date::to_string(std::string format) const { return lapse::to_string(std::move(format)); }

int date::get_month_days() const {
  const std::tm fields = record();
  return civil::month_days(fields.tm_year + 1900LL, fields.tm_mon + 1);
}

date& date::set_day(int day) {
  replace(day, times::DAYS);
  return reset_time();
}

date& date::set_month(int month) {
  replace(month, times::MONTHS);
  return reset_time();
}

date& date::set_year(int year) {
  replace(year, times::YEARS);
  return reset_time();
}

void date::fix(long long year, long long month, long long day) {
  constexpr int hour = 4, minute = 4, second = 4;
  build(year, month, day, hour, minute, second);
}

date& date::reset_time() {
  const std::tm fields = record();
  fix(fields.tm_year + 1900LL, fields.tm_mon + 1LL, fields.tm_mday);
  return *this;
}

std::wstring date::get_month_name(const std::string& locale) const { return month_name(locale, false); }
std::wstring date::get_month_name_abbreviated(const std::string& locale) const {
  return month_name(locale, true);
}
std::wstring date::get_week_day_name(const std::string& locale) const { return week_day_name(locale, false); }
std::wstring date::get_week_day_name_abbreviated(const std::string& locale) const {
  return week_day_name(locale, true);
}

date date::get_last_day(long year, long month) {
  date out(year, month, 1L);
  return out.set_day(out.get_month_days());
}

int date::compare(const date& other) const {
  const std::strong_ordering order = *this <=> other;
  return order == 0 ? 0 : order > 0 ? 1 : 2;
}

std::strong_ordering date::operator<=>(const date& other) const {
  return static_cast<long>(*this) <=> static_cast<long>(other);
}
bool date::operator==(long yyyymmdd) const { return static_cast<long>(*this) == yyyymmdd; }
std::strong_ordering date::operator<=>(long yyyymmdd) const { return static_cast<long>(*this) <=> yyyymmdd; }

date& date::operator+=(int days) {
  move(days, times::DAYS);
  return *this;
}
date& date::operator-=(int days) {
  move_back(days, times::DAYS);
  return *this;
}
date date::operator++(int) {
  date before(*this);
  *this += 1;
  return before;
}
date date::operator--(int) {
  date before(*this);
  *this -= 1;
  return before;
}

std::wostream& operator<<(std::wostream& out, const date& value) { return out << value.to_string(); }
std::ostream& operator<<(std::ostream& out, const date& value) {
  return out << texto::to_utf_8(value.to_string());
}

}  // namespace ruvo
