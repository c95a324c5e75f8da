// SPDX-License-Identifier: BSL-1.0

// The instant under the calendar values: its fields, by the services of the context, and its text.

#include <ruvo/datetime.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/lapse.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <exception>
#include <limits>
#include <utility>

#include "base/civil.hpp"
#include "base/numbers.hpp"
#include "base/services.hpp"
#include "base/utf.hpp"
#include "exc/detail.hpp"
#include "time/fields.hpp"
#include "time/format.hpp"

namespace ruvo {

long detail::packed_number(long long number) {
  if (!std::in_range<long>(number)) throw not_in_calendar(L"número", number);
  return static_cast<long>(number);
}

long detail::packed_number(unsigned long long number) {
  return packed_number(
      static_cast<long long>(std::min<unsigned long long>(number, std::numeric_limits<long long>::max())));
}

namespace {

/// A place for a failure that keeps the object thrown too, so that it can be thrown again as its own class:
/// if it is still what the place says, and no override of an operation has put another failure there.
struct caught : exception {
  std::exception_ptr thrown;
  exception as_thrown;

  bool is_as_thrown() const {
    return thrown && *this == as_thrown && get_mensaje() == as_thrown.get_mensaje();
  }
};

// Bodies and services are passed by reference: what they capture was just written, and is slow to copy.

/// Runs the body and copies its failure to `*err`, unless that is null; true is success.
template <class Body>
bool is_done(exception* err, const Body& body) {
  try {
    body();
    return true;
  } catch (const exception& error) {
    error.copy_on(err);
    if (auto* const place = dynamic_cast<caught*>(err)) {
      place->thrown = std::current_exception();
      place->as_thrown = error;
    }
  } catch (...) {
    detail::about(exc::CalendarException(), detail::in_flight).copy_on(err);
  }
  return false;
}

/// Throws the failure of an operation or a service.
[[noreturn]] void raise(const exception& failure) {
  if (failure.OK()) throw exc::CalendarException();
  failure.raise();
}

[[noreturn]] void raise(const caught& failure) {
  if (failure.is_as_thrown()) std::rethrow_exception(failure.thrown);
  raise(static_cast<const exception&>(failure));
}

// The calendar asks the services of a context here and nowhere else.

/// The answer of a service. Its exceptions that are no failures of the library become one.
template <class Service>
auto answer(const Service& ask) {
  try {
    return ask();
  } catch (const exception&) {
    throw;
  } catch (...) {
    throw detail::about(exc::CalendarException(), detail::in_flight);
  }
}

template <class Service>
void demand_with_place(const Service& ask) {
  exception err;
  if (!answer([&] { return ask(&err); })) raise(err);
}

/// Asks a service that returns whether it could; throws its failure. It is asked without a place for that
/// first: making one takes as long as an answer.
template <class Service>
void demand(const Service& ask) {
  if (!answer([&] { return ask(nullptr); })) demand_with_place(ask);
}

void ask_to_break_down(long long seconds, bool local, std::tm& out) {
  const context& user = current_context();
  demand([&](exception* err) { return services::break_down(user, seconds, local, out, err); });
}

long long ask_to_build(std::tm& record, bool local) {
  const context& user = current_context();
  long long out = 0;
  demand([&](exception* err) { return services::build(user, record, local, out, err); });
  return out;
}

// What the default services answer for UTC is taken directly, in half the time.

bool is_answered_directly(bool local) { return !local && services::are_default(); }

/// False where a service has to be asked, and nothing is written.
bool break_down_directly(long long seconds, bool local, std::tm& out) {
  return is_answered_directly(local) && civil::break_down(seconds, out);
}

void break_down(long long seconds, bool local, std::tm& out) {
  if (!break_down_directly(seconds, local, out)) [[unlikely]]
    ask_to_break_down(seconds, local, out);
}

inline long long built(std::tm& record, bool local) {
  if (!is_answered_directly(local)) [[unlikely]]
    return ask_to_build(record, local);
  return civil::build(record);
}

long long present_seconds() {
  return answer([] { return services::ticks(current_context()); }) / 10000000;
}

/// What a record has for a field that it counts from `first`.
int narrow(long long field, int first = 0) {
  using limits = std::numeric_limits<int>;
  if (field < limits::min() + static_cast<long long>(first) ||
      field > limits::max() + static_cast<long long>(first))
    throw detail::not_in_calendar(L"campo", field);
  return static_cast<int>(field - first);
}

const std::string& named(const context& user, const std::string& locale) {
  return locale.empty() ? services::locale(user) : locale;
}

/// A narrow text in UTF-16. Short ones in ASCII, as formats are, take no memory.
class widened {
 public:
  explicit widened(const std::string& text) {
    if (text.size() <= size && take_ascii(text)) {
      view_ = {short_, text.size()};
    } else {
      long_ = texto::to_utf_16(text);
      view_ = long_;
    }
  }
  widened(const widened&) = delete;
  widened& operator=(const widened&) = delete;

  operator std::wstring_view() const { return view_; }

 private:
  static constexpr std::size_t size = 48;

  /// Copies the text; false when it is not ASCII.
  bool take_ascii(const std::string& text) {
    unsigned char all = 0;
    wchar_t* to = short_;
    for (const char c : text) {
      const auto unit = static_cast<unsigned char>(c);
      all |= unit;
      *to++ = unit;
    }
    return all < 0x80;
  }

  wchar_t short_[size];
  std::wstring long_;
  std::wstring_view view_;
};

}  // namespace

const times::HUSO lapse::huso_horario;

lapse::lapse(times::HUSO huso) : lapso_(present_seconds()), huso_(huso) {}
lapse::lapse(const lapse& other) = default;
lapse::lapse(lapse&& other) noexcept = default;
lapse::~lapse() = default;
lapse& lapse::operator=(const lapse& other) = default;

lapse& lapse::operator=(const long long& seconds) {
  lapso_ = seconds;
  return *this;
}

void lapse::set_lapso(double seconds) noexcept {
  lapso_ = std::isnan(seconds) ? -1 : texto::truncated(seconds);
}

std::tm lapse::record() const {
  std::tm out{};
  break_down(lapso_, huso_ == times::LOCAL, out);
  return out;
}

void lapse::build(long long year, long long month, long long day, long long hour, long long minute,
                  long long second) {
  std::tm fields{};
  fields.tm_year = narrow(year, 1900);
  fields.tm_mon = narrow(month, 1);
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

/// A field of a record that a unit moves and sets. So many of it make so many of the field above it.
struct movable {
  int std::tm::*field;
  int first;  // what the record counts from
  int size = 0;
  int std::tm::*above = nullptr;
  int above_size = 0;
};

constexpr movable movables[] = {
    {&std::tm::tm_sec, 0, 60, &std::tm::tm_min, 1},   {&std::tm::tm_min, 0, 60, &std::tm::tm_hour, 1},
    {&std::tm::tm_hour, 0, 24, &std::tm::tm_mday, 1}, {&std::tm::tm_mday, 0, 146097, &std::tm::tm_year, 400},
    {&std::tm::tm_mon, 1, 12, &std::tm::tm_year, 1},  {&std::tm::tm_year, 1900},
};

/// Null for a unit that moves nothing.
const movable* movable_of(times::UNITS unit) {
  return unit < times::SECONDS || unit > times::YEARS ? nullptr : &movables[unit - times::SECONDS];
}

/// Gives the field a value; of one that it cannot hold, a part goes to the field above.
void put(std::tm& record, const movable& at, long long value) {
  const bool fits = value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max();
  if (!fits && at.above) {
    record.*at.above = narrow(record.*at.above + value / at.size * at.above_size);
    value %= at.size;
  }
  record.*at.field = narrow(value);
  record.tm_isdst = -1;
}

/// How far behind the local time that it was built from an instant lies: the clock skips that time.
long long skipped(const std::tm& wanted, long long seconds) {
  std::tm found{};
  break_down(seconds, true, found);
  return std::max(civil::build(found) - civil::build(wanted), 0LL);
}

}  // namespace

bool lapse::add(int n, times::UNITS unit, exception* err) {
  return !is_done(err, [&] {
    const movable* const moved = movable_of(unit);
    std::tm fields = record();
    if (!moved) return;
    put(fields, *moved, static_cast<long long>(fields.*moved->field) + n);
    const bool local = huso_ == times::LOCAL;
    const std::tm wanted = fields;  // the service may change them
    const long long seconds = built(fields, local);
    lapso_ = seconds - (local && n < 0 ? skipped(wanted, seconds) : 0);
  });
}

bool lapse::set(int n, times::UNITS unit, exception* err) {
  return !is_done(err, [&] {
    const movable* const replaced = movable_of(unit);
    std::tm fields = record();
    if (!replaced) return;
    put(fields, *replaced, static_cast<long long>(n) - replaced->first);
    lapso_ = built(fields, huso_ == times::LOCAL);
  });
}

bool lapse::set(int year, int month, int day, int hour, int minute, int second, exception* err) {
  return !is_done(err, [&] { build(year + 1900LL, month + 1LL, day, hour, minute, second); });
}

bool lapse::set(std::tm& record, exception& err) {
  return !is_done(&err, [&] { lapso_ = built(record, huso_ == times::LOCAL); });
}

void lapse::move(int n, times::UNITS unit) {
  caught err;
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
  caught err;
  if (set(n, unit, &err)) raise(err);
}

std::tm lapse::get_model() const {
  std::tm out{};
  const bool local = huso_ == times::LOCAL;
  if (break_down_directly(lapso_, local, out)) return out;
  return local ? get_local_model() : get_gmt_model();
}

std::tm lapse::get_gmt_model(exception* err) const {
  std::tm out{};
  if (!is_done(err, [&] { break_down(lapso_, false, out); })) out = {};
  return out;
}

std::tm lapse::get_local_model(exception* err) const {
  std::tm out{};
  if (!is_done(err, [&] { break_down(lapso_, true, out); })) out = {};
  return out;
}

bool lapse::gmt(std::tm& record, exception& err) const {
  return !is_done(&err, [&] { break_down(lapso_, false, record); });
}

bool lapse::locale(std::tm& record, exception& err) const {
  return !is_done(&err, [&] { break_down(lapso_, true, record); });
}

void lapse::read_over(int year, std::wstring_view text, std::wstring_view format, const std::string& locale) {
  const context& user = current_context();
  calendar::reading out;
  out.record.tm_year = year - 1900;
  out.record.tm_mday = 1;
  if (!calendar::read(out, text, format, named(user, locale))) {
    throw detail::about(exc::CalendarException(), [&] {
      return L"texto " + detail::quoted(text) + L", formato " + detail::quoted(format);
    });
  }
  out.record.tm_isdst = -1;
  if (out.offset)
    lapso_ = built(out.record, false) - *out.offset;
  else
    lapso_ = built(out.record, huso_ == times::LOCAL);
}

void lapse::read(std::wstring_view text, std::wstring_view format, const std::string& locale) {
  constexpr int year = 1970;
  read_over(year, text, format, locale);
}

bool lapse::parse(const std::wstring& text, const std::wstring& format, exception& err,
                  const std::string& locale) {
  return is_done(&err, [&] { read(text, format, locale); });
}

bool lapse::parse(const std::wstring& text, const std::string& format, exception& err,
                  const std::string& locale) {
  return is_done(&err, [&] { read(text, widened(format), locale); });
}

bool lapse::parse(const std::string& text, const std::string& format, exception& err,
                  const std::string& locale) {
  return is_done(&err, [&] { read(widened(text), widened(format), locale); });
}

void lapse::take(const std::wstring& text, const std::string& format) { read(text, widened(format), {}); }

void lapse::take(const std::string& text, const std::string& format) {
  read(widened(text), widened(format), {});
}

std::wstring lapse::print_by(std::wstring_view pattern, const std::string& locale) const {
  const context& user = current_context();
  const bool local = huso_ == times::LOCAL;
  std::tm fields{};
  break_down(lapso_, local, fields);
  std::wstring out;
  calendar::print(out, pattern, fields, lapso_, local, named(user, locale));
  return out;
}

std::wstring lapse::format(const std::wstring& pattern, const std::string& locale) const {
  return print_by(pattern, locale);
}

std::wstring lapse::format(const std::string& pattern, const std::string& locale) const {
  return print_by(widened(pattern), locale);
}

std::wstring lapse::to_string(std::string pattern) const { return format(pattern); }
std::wstring lapse::print() const { return to_string(datetime::canonical); }

std::wstring lapse::month_name(const std::string& locale, bool abbreviated) const {
  return calendar::month_name(named(current_context(), locale), get(times::MONTHS) - 1, abbreviated);
}

std::wstring lapse::week_day_name(const std::string& locale, bool abbreviated) const {
  return calendar::week_day_name(named(current_context(), locale), get(times::WEEK_DAY), abbreviated);
}

namespace calendar {

std::tm fields_of(const lapse& value) {
  std::tm fields = value.get_model();
  if (fields.tm_mday == 0) break_down(value.get_lapso(), value.get_huso_horario() == times::LOCAL, fields);
  return fields;
}

}  // namespace calendar

}  // namespace ruvo
