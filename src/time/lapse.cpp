#include <ruvo/exc.hpp>
#include <ruvo/lapse.hpp>

#include <cmath>
#include <limits>

#include "app/current.hpp"
#include "app/platform.hpp"
#include "texto/utf.hpp"
#include "time/format.hpp"

namespace ruvo {

namespace {

/// Throws what a service or an operation told.
[[noreturn]] void raise(const exception& told) {
  if (told.OK()) throw exc::CalendarException();
  if (told.get_rango() == exc::CalendarException().get_rango())
    throw exc::CalendarException(told.get_code(), told.get_mensaje());
  throw exception(told);
}

/// Runs the body and tells its failure; true on failure.
template <class Body>
bool told(exception* err, Body body) {
  try {
    body();
    return false;
  } catch (const exception& error) {
    error.copy_on(err);
  } catch (...) {
    exc::CalendarException().copy_on(err);
  }
  return true;
}

std::tm broken_down(long long seconds, bool local) {
  std::tm out{};
  exception err;
  const context& services = current_context();
  const bool done =
      local ? services.sistem_local_time(&out, seconds, &err) : services.sistem_gmt_time(&out, seconds, &err);
  if (!done) raise(err);
  return out;
}

long long built(std::tm& record, bool local) {
  long long out = 0;
  exception err;
  const context& services = current_context();
  const bool done =
      local ? services.sistem_local_lapse(out, record, &err) : services.sistem_gmt_lapse(out, record, &err);
  if (!done) raise(err);
  return out;
}

int narrow(long long field) {
  if (field < std::numeric_limits<int>::min() || field > std::numeric_limits<int>::max())
    throw exc::CalendarException();
  return static_cast<int>(field);
}

const std::string& named(const std::string& locale) {
  return locale.empty() ? current_context().get_locale() : locale;
}

}  // namespace

lapse::lapse(times::HUSO huso) : lapso_(platform::clock_ticks() / 10000000), huso_(huso) {}
lapse::lapse(const lapse& other) = default;
lapse::~lapse() = default;
lapse& lapse::operator=(const lapse& other) = default;

lapse& lapse::operator=(const long long& seconds) {
  lapso_ = seconds;
  return *this;
}

void lapse::set_lapso(double seconds) noexcept {
  constexpr double limit = 9223372036854775808.0;  // 2^63
  if (std::isnan(seconds))
    lapso_ = -1;
  else if (seconds >= limit)
    lapso_ = std::numeric_limits<long long>::max();
  else if (seconds < -limit)
    lapso_ = std::numeric_limits<long long>::min();
  else
    lapso_ = static_cast<long long>(seconds);
}

std::tm lapse::record() const { return broken_down(lapso_, huso_ == times::LOCAL); }

void lapse::build(long long year, long long month, long long day, long long hour, long long minute,
                  long long second) {
  std::tm fields{};
  fields.tm_year = narrow(year - 1900);
  fields.tm_mon = narrow(month - 1);
  fields.tm_mday = narrow(day);
  fields.tm_hour = narrow(hour);
  fields.tm_min = narrow(minute);
  fields.tm_sec = narrow(second);
  fields.tm_isdst = -1;
  lapso_ = built(fields, huso_ == times::LOCAL);
}

int lapse::get(times::UNITS unit) const {
  if (unit < times::SECONDS || unit > times::YEAR_DAY) return 0;
  const std::tm fields = record();
  switch (unit) {
    case times::SECONDS:
      return fields.tm_sec;
    case times::MINUTES:
      return fields.tm_min;
    case times::HOURS:
      return fields.tm_hour;
    case times::DAYS:
      return fields.tm_mday;
    case times::MONTHS:
      return fields.tm_mon + 1;
    case times::YEARS:
      return narrow(fields.tm_year + 1900LL);
    case times::WEEK_DAY:
      return fields.tm_wday;
    case times::YEAR_DAY:
      return fields.tm_yday;
    default:
      return 0;
  }
}

namespace {

/// The field of a record that a unit moves and sets; null for the others.
int* field_of(std::tm& record, times::UNITS unit) {
  switch (unit) {
    case times::SECONDS:
      return &record.tm_sec;
    case times::MINUTES:
      return &record.tm_min;
    case times::HOURS:
      return &record.tm_hour;
    case times::DAYS:
      return &record.tm_mday;
    case times::MONTHS:
      return &record.tm_mon;
    case times::YEARS:
      return &record.tm_year;
    default:
      return nullptr;
  }
}

}  // namespace

bool lapse::add(int n, times::UNITS unit, exception* err) {
  return told(err, [&] {
    std::tm fields = record();
    int* const field = field_of(fields, unit);
    if (!field) return;
    *field = narrow(static_cast<long long>(*field) + n);
    fields.tm_isdst = -1;
    lapso_ = built(fields, huso_ == times::LOCAL);
  });
}

bool lapse::set(int n, times::UNITS unit, exception* err) {
  return told(err, [&] {
    std::tm fields = record();
    int* const field = field_of(fields, unit);
    if (!field) return;
    const long long first = unit == times::MONTHS ? 1 : unit == times::YEARS ? 1900 : 0;
    *field = narrow(n - first);
    fields.tm_isdst = -1;
    lapso_ = built(fields, huso_ == times::LOCAL);
  });
}

bool lapse::set(int year, int month, int day, int hour, int minute, int second, exception* err) {
  return told(err, [&] { build(year + 1900LL, month + 1LL, day, hour, minute, second); });
}

bool lapse::set(std::tm& record, exception& err) {
  return told(&err, [&] { lapso_ = built(record, huso_ == times::LOCAL); });
}

void lapse::move(int n, times::UNITS unit) {
  exception err;
  if (add(n, unit, &err)) raise(err);
}

void lapse::move_back(int n, times::UNITS unit) {
  if (n == std::numeric_limits<int>::min()) {
    move(1, unit);
    ++n;
  }
  move(-n, unit);
}

void lapse::replace(int n, times::UNITS unit) {
  exception err;
  if (set(n, unit, &err)) raise(err);
}

std::tm lapse::get_model() const { return huso_ == times::LOCAL ? get_local_model() : get_gmt_model(); }

std::tm lapse::get_gmt_model(exception* err) const {
  std::tm out{};
  told(err, [&] { out = broken_down(lapso_, false); });
  return out;
}

std::tm lapse::get_local_model(exception* err) const {
  std::tm out{};
  told(err, [&] { out = broken_down(lapso_, true); });
  return out;
}

bool lapse::gmt(std::tm& record, exception& err) const {
  return told(&err, [&] { record = broken_down(lapso_, false); });
}

bool lapse::locale(std::tm& record, exception& err) const {
  return told(&err, [&] { record = broken_down(lapso_, true); });
}

bool lapse::parse_over(const std::tm& initial, const std::wstring& text, const std::wstring& format,
                       exception& err, const std::string& locale) {
  return !told(&err, [&] {
    calendar::reading out{initial, {}};
    if (!calendar::read(out, text, format, named(locale))) throw exc::CalendarException();
    out.record.tm_isdst = -1;
    if (out.offset)
      lapso_ = built(out.record, false) - *out.offset;
    else
      lapso_ = built(out.record, huso_ == times::LOCAL);
  });
}

bool lapse::parse(const std::wstring& text, const std::wstring& format, exception& err,
                  const std::string& locale) {
  std::tm initial{};
  initial.tm_year = 70;
  initial.tm_mday = 1;
  return parse_over(initial, text, format, err, locale);
}

bool lapse::parse(const std::wstring& text, const std::string& format, exception& err,
                  const std::string& locale) {
  return parse(text, texto::to_utf_16(format), err, locale);
}

bool lapse::parse(const std::string& text, const std::string& format, exception& err,
                  const std::string& locale) {
  return parse(texto::to_utf_16(text), texto::to_utf_16(format), err, locale);
}

void lapse::take(const std::wstring& text, const std::string& format) {
  exception err;
  if (!parse(text, format, err)) raise(err);
}

void lapse::take(const std::string& text, const std::string& format) { take(texto::to_utf_16(text), format); }

std::wstring lapse::format(const std::wstring& pattern, const std::string& locale) const {
  std::wstring out;
  calendar::print(out, pattern, record(), lapso_, huso_ == times::LOCAL, named(locale));
  return out;
}

std::wstring lapse::format(const std::string& pattern, const std::string& locale) const {
  return format(texto::to_utf_16(pattern), locale);
}

std::wstring lapse::to_string(const std::string& pattern) const { return format(pattern); }

std::wstring lapse::month_name(const std::string& locale, bool abbreviated) const {
  return calendar::month_name(named(locale), get(times::MONTHS) - 1, abbreviated);
}

std::wstring lapse::week_day_name(const std::string& locale, bool abbreviated) const {
  return calendar::week_day_name(named(locale), get(times::WEEK_DAY), abbreviated);
}

}  // namespace ruvo
