// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::date, a day of the calendar.

#include <ruvo/lapse.hpp>

#include <compare>
#include <concepts>
#include <iosfwd>
#include <string>
#include <string_view>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo {

/// A day. Its number is yyyymmdd: 20240229 is 29 February 2024. Fields out of their range are normalised
/// (32 January is 1 February).
///
/// Operations without a result object throw exc::CalendarException (see ruvo::lapse).
/// @quirk The instant kept is 04:04:04 of the day in the value's mode, so that small shifts stay in the day.
class KESTA_API date : public lapse {
 public:
  static const std::string canonical;           ///< `%d-%m-%Y`
  static const std::string short_format;        ///< `%d-%m-%Y`
  static const std::string sql_format;          ///< `%Y-%m-%d`
  static const std::string short_month_format;  ///< `%d-%b-%Y`
  static const std::string long_month_format;   ///< `%d-%B-%Y`
  static const std::string velda;               ///< `%Y%m%d`

  /// The present day in the mode: without an argument that of UTC, which in Spain is yesterday's until one or
  /// two in the morning. dates::today() is the day on the user's calendar.
  date(times::HUSO huso = huso_horario);
  /// From a number yyyymmdd; throws exc::CalendarException for one that a long does not hold.
  date(long yyyymmdd, times::HUSO huso = huso_horario);
  template <std::integral T>
  date(T yyyymmdd, times::HUSO huso = huso_horario) : date(detail::packed_number(yyyymmdd), huso) {}
  /// From fields: months count from 1.
  date(long year, long month, long day, times::HUSO huso = huso_horario);
  /// From text that fits the format, as parse(). Narrow text is UTF-8.
  date(const char* text, times::HUSO huso = huso_horario, const std::string& format = canonical);
  date(const wchar_t* text, times::HUSO huso = huso_horario, const std::string& format = canonical);
  date(const std::string& text, times::HUSO huso = huso_horario, const std::string& format = canonical);
  date(const std::wstring& text, times::HUSO huso = huso_horario, const std::string& format = canonical);
  /// The day of the instant, in its mode.
  explicit date(const datetime& instant);
  /// The conversion of a var.
  template <std::derived_from<var> V>
  explicit date(const V& value) : date(value.operator date()) {}
  date(const date& other);
  date(date&& other) noexcept;
  ~date() override;

  date& operator=(const date& other);

  /// The day and the mode of the instant.
  date& operator=(const datetime& instant);
  /// From a number yyyymmdd; the mode stays.
  date& operator=(long yyyymmdd);
  template <std::integral T>
  date& operator=(T yyyymmdd) {
    return *this = detail::packed_number(yyyymmdd);
  }
  /// The conversion of a var.
  template <std::derived_from<var> V>
  date& operator=(const V& value) {
    return *this = value.operator date();
  }
  /// From text in the canonical format; the mode stays. Narrow text is UTF-8.
  date& operator=(const char* text);
  date& operator=(const wchar_t* text);
  date& operator=(const std::string& text);
  date& operator=(const std::wstring& text);

  /// The number yyyymmdd.
  /// @quirk Expressions with a date reckon with this number, whose parts are fields: `day / 10000` is the
  /// year. What `+` and `-` would make of it is no date and no number of days, so they are refused.
  operator long() const;

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
  /// The number of days of the month.
  int get_month_days() const;
  /// Replace a field and normalise: day 31 in a month of 30 days gives the first day of the next one.
  date& set_day(int day);
  date& set_month(int month);
  date& set_year(int year);
  /// Puts the instant back to 04:04:04 of its day.
  date& reset_time();

  /// Names in a locale, as lapse::parse() takes it.
  std::wstring get_month_name(const std::string& locale = {}) const;
  std::wstring get_month_name_abbreviated(const std::string& locale = {}) const;
  std::wstring get_week_day_name(const std::string& locale = {}) const;
  std::wstring get_week_day_name_abbreviated(const std::string& locale = {}) const;

  /// The last day of the month, in the default mode.
  static date get_last_day(long year, long month);

  /// 0 equal, 1 this is later, 2 this is earlier; days are compared, not instants.
  /// @quirk Never negative.
  int compare(const date& other) const;

  /// Compare days, each in its own mode, by their numbers yyyymmdd.
  bool operator==(const date& other) const { return compare(other) == 0; }
  std::strong_ordering operator<=>(const date& other) const;
  template <std::integral T>
  bool operator==(T yyyymmdd) const {
    return *this == static_cast<long>(yyyymmdd);
  }
  template <std::integral T>
  std::strong_ordering operator<=>(T yyyymmdd) const {
    return *this <=> static_cast<long>(yyyymmdd);
  }
  bool operator==(long yyyymmdd) const;
  std::strong_ordering operator<=>(long yyyymmdd) const;

  /// Move by days of the calendar.
  date& operator+=(int days);
  date& operator-=(int days);
  date& operator++() { return *this += 1; }
  date& operator--() { return *this -= 1; }
  date operator++(int);
  date operator--(int);

 protected:
  /// The mark of the constructor that takes an instant as it is.
  struct as_it_is {
    explicit as_it_is() = default;
  };
  /// The instant so many seconds after 1970, whatever its time of day. It asks the context nothing.
  date(as_it_is, long long seconds, times::HUSO huso) noexcept;

  /// Sets the instant that stands for a day; normalises.
  void fix(long long year, long long month, long long day);
  /// As lapse::read(); of what was read the day is kept.
  void read(std::wstring_view text, std::wstring_view format, const std::string& locale) override;
};

/// Write the canonical format, as UTF-8 to a narrow stream.
KESTA_API std::wostream& operator<<(std::wostream& out, const date& value);
KESTA_API std::ostream& operator<<(std::ostream& out, const date& value);

/// What lies between two days, and the ends of the year, month and week around one.
///
/// They throw exc::CalendarException for what cannot be broken down into fields.
namespace dates {

/// The present day in local time, and with this mode.
KESTA_API date today();

/// `to` - `from`, in days of the calendar and in whole months: a month has passed when its day comes round
/// again, so 31 January to 29 February are 0 and to 2 March are 1. Each day is read in its own mode.
KESTA_API int diff_days(const date& from, const date& to);
KESTA_API int diff_months(const date& from, const date& to);

/// Days of the year, month and week that `day` lies in, in its mode. Weeks begin on Monday (ISO 8601).
KESTA_API date first_day_of_year(const date& day);
KESTA_API date last_day_of_year(const date& day);
KESTA_API date first_day_of_month(const date& day);
KESTA_API date last_day_of_month(const date& day);
KESTA_API date first_day_of_week(const date& day);
KESTA_API date last_day_of_week(const date& day);

}  // namespace dates

}  // namespace ruvo

#include <ruvo/names_back.hpp>
