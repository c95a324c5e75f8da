// SPDX-License-Identifier: BSL-1.0

// A time of day.

#include <ruvo/datetime.hpp>
#include <ruvo/time.hpp>

#include <ctime>
#include <ostream>
#include <utility>

#include "base/utf.hpp"

namespace ruvo {

namespace {

// The day of a time made from fields: one on which no zone changes its clock.
constexpr int fixed_year = 2000;

}  // namespace

const std::string time::canonical = "%H:%M:%S";
const std::string time::sql_format = "%H:%M:%S";
const std::string time::short_format = "%R";
const std::string time::long_format = "%T";
const std::string time::long_utc_format = "%T %z";
const std::string time::short_12_format = "%I:%M %p";
const std::string time::long_12_format = "%I:%M:%S %p";
const std::string time::velda = "%H%M%S";
const std::string time::url_canonical = "%H%M%S";

time::time(times::HUSO huso) : lapse(huso) {}
time::time(long hhmmss, times::HUSO huso) : lapse(0, huso) { *this = hhmmss; }
time::time(long hour, long minute, long second, times::HUSO huso) : lapse(0, huso) {
  build(fixed_year, 1, 1, hour, minute, second);
}
time::time(const char* text, times::HUSO huso, const std::string& format)
    : time(std::string(text ? text : ""), huso, format) {}
time::time(const wchar_t* text, times::HUSO huso, const std::string& format)
    : time(std::wstring(text ? text : L""), huso, format) {}
time::time(const std::string& text, times::HUSO huso, const std::string& format) : lapse(0, huso) {
  take(text, format);
}
time::time(const std::wstring& text, times::HUSO huso, const std::string& format) : lapse(0, huso) {
  take(text, format);
}
time::time(const datetime& instant) : lapse(instant) {}
time::time(const time& other) = default;
time::time(time&& other) noexcept = default;
time::~time() = default;

time& time::operator=(const time& other) = default;
time& time::operator=(const datetime& instant) { return *this = time(instant); }
time& time::operator=(long hhmmss) {
  build(fixed_year, 1, 1, hhmmss / 10000, hhmmss / 100 % 100, hhmmss % 100);
  return *this;
}
time& time::operator=(const char* text) { return *this = std::string(text ? text : ""); }
time& time::operator=(const wchar_t* text) { return *this = std::wstring(text ? text : L""); }
time& time::operator=(const std::string& text) {
  take(text, canonical);
  return *this;
}
time& time::operator=(const std::wstring& text) {
  take(text, canonical);
  return *this;
}

time::operator long() const {
  const std::tm fields = record();
  return fields.tm_hour * 10000L + fields.tm_min * 100 + fields.tm_sec;
}

long time::in_seconds() const {
  const std::tm fields = record();
  return fields.tm_hour * 3600L + fields.tm_min * 60 + fields.tm_sec;
}

time& time::set_in_seconds(long seconds) {
  build(fixed_year, 1, 1, seconds / 3600, seconds % 3600 / 60, seconds % 60);
  return *this;
}

void time::read(std::wstring_view text, std::wstring_view format, const std::string& locale) {
  read_over(fixed_year, text, format, locale);
}

std::wstring time::to_string(std::string format) const { return lapse::to_string(std::move(format)); }

time& time::set_hour(int hour) {
  replace(hour, times::HOURS);
  return *this;
}
time& time::set_minutes(int minutes) {
  replace(minutes, times::MINUTES);
  return *this;
}
time& time::set_seconds(int seconds) {
  replace(seconds, times::SECONDS);
  return *this;
}

int time::compare(const time& other) const {
  const std::strong_ordering order = *this <=> other;
  return order == 0 ? 0 : order > 0 ? 1 : 2;
}

std::strong_ordering time::operator<=>(const time& other) const {
  return static_cast<long>(*this) <=> static_cast<long>(other);
}
bool time::operator==(long hhmmss) const { return static_cast<long>(*this) == hhmmss; }
std::strong_ordering time::operator<=>(long hhmmss) const { return static_cast<long>(*this) <=> hhmmss; }

time& time::operator+=(int minutes) {
  move(minutes, times::MINUTES);
  return *this;
}
time& time::operator-=(int minutes) {
  move_back(minutes, times::MINUTES);
  return *this;
}
time time::operator++(int) {
  time before(*this);
  *this += 1;
  return before;
}
time time::operator--(int) {
  time before(*this);
  *this -= 1;
  return before;
}

std::wostream& operator<<(std::wostream& out, const time& value) { return out << value.to_string(); }
std::ostream& operator<<(std::ostream& out, const time& value) {
  return out << texto::to_utf_8(value.to_string());
}

}  // namespace ruvo
