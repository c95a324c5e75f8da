// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::datetime, an instant read as day and time.

#include <ruvo/date.hpp>
#include <ruvo/lapse.hpp>
#include <ruvo/time.hpp>

#include <compare>
#include <concepts>
#include <iosfwd>
#include <string>
#include <type_traits>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo {

/// An instant. Its number is the seconds since 1970-01-01 00:00:00 UTC. Fields out of their range are
/// normalised.
///
/// Operations without a result object throw exc::CalendarException (see ruvo::lapse).
class KESTA_API datetime : public lapse {
 public:
  static const std::string canonical;        ///< `%d-%m-%Y %H:%M:%S`
  static const std::string iso_long_format;  ///< `%d-%m-%Y %H:%M:%S` @quirk Day first, not the ISO layout.
  static const std::string sql_format;       ///< `%Y-%m-%d %H:%M:%S`
  static const std::string long_utc_format;  ///< `%d-%B-%Y %H:%M:%S %z`

  /// Now. The mode says how the instant is read as fields: without an argument in UTC.
  datetime(times::HUSO huso = huso_horario);
  /// From seconds since 1970; fractions are cut.
  datetime(double seconds, times::HUSO huso = huso_horario);
  /// From seconds since 1970.
  datetime(long long seconds, times::HUSO huso = huso_horario);
  /// The first instant of a day, yyyymmdd.
  datetime(long yyyymmdd, times::HUSO huso = huso_horario);
  /// As `long long`, seconds, for integers of 64 bits; as `long`, a day, for the shorter ones.
  /// @quirk Assigning an integer of any size means seconds.
  template <std::integral T>
  datetime(T yyyymmdd, times::HUSO huso = huso_horario)
      : datetime(static_cast<std::conditional_t<sizeof(T) < sizeof(long long), long, long long>>(yyyymmdd),
                 huso) {}
  /// From the numbers of a day and a time of day.
  datetime(long yyyymmdd, long hhmmss, times::HUSO huso = huso_horario);
  /// From fields: months count from 1; 00:00:00 where only a day is given.
  datetime(long year, long month, long day, times::HUSO huso = huso_horario);
  datetime(long year, long month, long day, long hour, long minute, long second,
           times::HUSO huso = huso_horario);
  /// The fields of both, read in their own modes, as fields in `huso`. Throws where one of them, or the two
  /// together, have no calendar form.
  datetime(const date& day, const time& hour, times::HUSO huso = huso_horario);
  /// The instant and the mode of the value.
  datetime(const date& value);
  datetime(const time& value);
  /// The conversion of a var.
  template <std::derived_from<var> V>
  explicit datetime(const V& value) : datetime(value.operator datetime()) {}
  datetime(const datetime& other);
  datetime(datetime&& other) noexcept;
  ~datetime() override;

  datetime& operator=(const datetime& other);

  /// The instant and the mode of the value.
  datetime& operator=(const date& value);
  datetime& operator=(const time& value);
  /// Seconds since 1970; fractions are cut. The mode stays.
  datetime& operator=(double seconds);
  template <std::integral T>
  datetime& operator=(T seconds) {
    set_lapso(seconds);
    return *this;
  }
  /// The conversion of a var.
  template <std::derived_from<var> V>
  datetime& operator=(const V& value) {
    return *this = value.operator datetime();
  }
  /// From text in the canonical format; the mode stays. Narrow text is UTF-8.
  datetime& operator=(const char* text);
  datetime& operator=(const wchar_t* text);
  datetime& operator=(const std::string& text);
  datetime& operator=(const std::wstring& text);

  /// Seconds since 1970.
  operator double() const { return static_cast<double>(get_lapso()); }
  /// The day, in the same mode.
  operator date() const;
  /// The time of day, in the same mode.
  operator time() const;

  /// lapse::format() in the locale of the thread's context.
  std::wstring to_string(std::string format = canonical) const override;
  /// The text in the canonical format.
  std::wstring print() const override { return to_string(); }

  /// Fields in the value's mode: days and months count from 1, years are full.
  int get_day() const { return get(times::DAYS); }
  int get_month() const { return get(times::MONTHS); }
  int get_year() const { return get(times::YEARS); }
  /// 0 = Sunday.
  int get_week_day() const { return get(times::WEEK_DAY); }
  /// Fields in the value's mode: hours are 0 to 23.
  int get_hour() const { return get(times::HOURS); }
  int get_minutes() const { return get(times::MINUTES); }
  int get_seconds() const { return get(times::SECONDS); }
  /// Replace a field and normalise: day 31 in a month of 30 days gives the first day of the next one.
  datetime& set_day(int day);
  datetime& set_month(int month);
  datetime& set_year(int year);
  /// Replace a field and normalise: 60 minutes are the next hour.
  datetime& set_hour(int hour);
  datetime& set_minutes(int minutes);
  datetime& set_seconds(int seconds);

  /// Names in a locale, as lapse::parse() takes it.
  std::wstring get_month_name(const std::string& locale = {}) const;
  std::wstring get_month_name_abbreviated(const std::string& locale = {}) const;
  std::wstring get_week_day_name(const std::string& locale = {}) const;
  std::wstring get_week_day_name_abbreviated(const std::string& locale = {}) const;

  /// 0 equal, 1 this is later, 2 this is earlier. Instants are compared; with a date or a time only that
  /// part.
  /// @quirk Never negative.
  int compare(const datetime& other) const;
  int compare(const date& day) const;
  int compare(const time& hour) const;

  /// Compare instants; with a date only the days, with a time only the times of day.
  bool operator==(const datetime& other) const { return compare(other) == 0; }
  bool operator==(const date& day) const { return compare(day) == 0; }
  bool operator==(const time& hour) const { return compare(hour) == 0; }
  std::strong_ordering operator<=>(const datetime& other) const;
  std::strong_ordering operator<=>(const date& day) const;
  std::strong_ordering operator<=>(const time& hour) const;
  /// Against seconds since 1970.
  template <std::integral T>
  bool operator==(T seconds) const {
    return get_lapso() == static_cast<long long>(seconds);
  }
  template <std::integral T>
  std::strong_ordering operator<=>(T seconds) const {
    return get_lapso() <=> static_cast<long long>(seconds);
  }
  bool operator==(double seconds) const { return static_cast<double>(get_lapso()) == seconds; }
  std::partial_ordering operator<=>(double seconds) const {
    return static_cast<double>(get_lapso()) <=> seconds;
  }

  /// Move by hours.
  /// @quirk Each calendar type moves by a unit of its own.
  datetime& operator+=(int hours);
  datetime& operator-=(int hours);
  datetime& operator++() { return *this += 1; }
  datetime& operator--() { return *this -= 1; }
  datetime operator++(int);
  datetime operator--(int);
};

/// Write the canonical format, as UTF-8 to a narrow stream.
KESTA_API std::wostream& operator<<(std::wostream& out, const datetime& value);
KESTA_API std::ostream& operator<<(std::ostream& out, const datetime& value);

/// What lies between two instants.
namespace datetimes {

/// `to` - `from` as instants, in whole days of 24 hours, hours, minutes and seconds: fractions are cut, and
/// what an int cannot hold becomes the nearest that it can.
KESTA_API int diff_days(const datetime& from, const datetime& to);
KESTA_API int diff_hours(const datetime& from, const datetime& to);
KESTA_API int diff_minutes(const datetime& from, const datetime& to);
KESTA_API int diff_seconds(const datetime& from, const datetime& to);

}  // namespace datetimes

}  // namespace ruvo

#include <ruvo/names_back.hpp>
