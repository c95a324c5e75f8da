// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::velda::date, a day kept as a number of days.

#include <ruvo/date.hpp>

#include <concepts>
#include <string>
#include <string_view>

// Macros of others.
#include <ruvo/names_aside.hpp>

/// Days kept as a number of days.
namespace ruvo::velda {

/// A day as a continuous count of days: 2460370 is 29 February 2024. The fields are reckoned from the number
/// and the number from fields by closed formulas, which never fail and need no context.
///
/// What ruvo::date and ruvo::lapse offer beyond the members below (texts, comparisons, the conversion to a
/// number) works on the instant, which is kept in step: 04:04:04 of the day that was last set. Only the
/// instant needs the context: where that refuses, the instant stays as it was, null in a new value, and the
/// day is still right. Changing the instant itself, by set_lapso() for instance, leaves the number.
/// @quirk Number and fields are each other's inverse from 2000-03-01 to 2100-02-28, and in these hundred
/// years moved by multiples of 400. A day set between them reads as the next one, and add() and the set_
/// functions, which read and set, move it on at every call.
class KESTA_API date : public ruvo::date {
 public:
  /// The present day in the mode, as that of ruvo::date: without an argument that of UTC. Throws as that
  /// does.
  date(times::HUSO huso = huso_horario);
  /// From a number yyyymmdd. It never fails, but for exc::CalendarException where a long does not hold it.
  date(long yyyymmdd, times::HUSO huso = huso_horario);
  template <std::integral T>
  date(T yyyymmdd, times::HUSO huso = huso_horario) : date(detail::packed_number(yyyymmdd), huso) {}
  /// From fields, as set(). It never fails.
  date(long year, long month, long day, times::HUSO huso = huso_horario);
  /// From text that fits the format, as parse(). Narrow text is UTF-8. Throws exc::CalendarException.
  date(const char* text, times::HUSO huso = huso_horario, const std::string& format = canonical);
  date(const wchar_t* text, times::HUSO huso = huso_horario, const std::string& format = canonical);
  date(const std::string& text, times::HUSO huso = huso_horario, const std::string& format = canonical);
  date(const std::wstring& text, times::HUSO huso = huso_horario, const std::string& format = canonical);
  /// The same day in another mode. It fails only for lack of memory.
  date(const date& other, times::HUSO huso);
  date(const date& other);
  date(date&& other) noexcept;
  ~date() override;
  date& operator=(const date& other);

  /// The day and the mode of the value. Throw as ruvo::date does for what has no calendar form.
  date& operator=(const ruvo::date& day);
  date& operator=(const datetime& instant);
  /// The conversion of a var.
  template <std::derived_from<var> V>
  date& operator=(const V& value) {
    return *this = value.operator ruvo::date();
  }
  /// From a number yyyymmdd; the mode stays.
  date& operator=(long yyyymmdd);
  template <std::integral T>
  date& operator=(T yyyymmdd) {
    return *this = detail::packed_number(yyyymmdd);
  }
  /// From text in the canonical format; the mode stays. Narrow text is UTF-8. Throws exc::CalendarException.
  date& operator=(const char* text);
  date& operator=(const wchar_t* text);
  date& operator=(const std::string& text);
  date& operator=(const std::wstring& text);

  /// The count of days: the Julian day number at noon of the day, from 2000-03-01 to 2100-02-28.
  int get_day_number() const noexcept { return number_; }
  /// Sets the number; the instant becomes that of the day that it reads as.
  date& set_day_number(int number);

  /// Sets the number, and gives it. Days and months beyond their range are absorbed (32 January is 1
  /// February); the number saturates.
  int set(int year, int month, int day);
  /// The fields that the number reads as.
  void get(int& year, int& month, int& day) const;

  /// DAYS, MONTHS, YEARS, WEEK_DAY and YEAR_DAY are those of the number; the others are of the instant.
  int get(times::UNITS unit) const override;
  /// Replaces DAYS, MONTHS or YEARS; other units change nothing. False: it cannot fail.
  bool set(int n, times::UNITS unit, exception* err = nullptr) override;
  /// Moves DAYS, MONTHS or YEARS by n.
  /// @quirk False always. Other units move nothing, but the day is still read and set.
  bool add(int n, times::UNITS unit, exception* err = nullptr) override;

  /// Replace a field, as set().
  date& set_day(int day);
  date& set_month(int month);
  date& set_year(int year);
  /// The number of days of the month that the number reads as.
  int get_month_days() const;
  /// The last day of the month, set as such, in the default mode.
  static date get_last_day(long year, long month);

 protected:
  /// As ruvo::date::read(); the number becomes that of the day.
  void read(std::wstring_view text, std::wstring_view format, const std::string& locale) override;

 private:
  void follow(int year, int month, int day) noexcept;
  void count();

  int number_ = 0;
};

/// What lies between two such days, and the ends of the year, month and week around one.
namespace dates {

/// The days from `from` to `to`.
/// @quirk Counts both ends, so a day and itself are 1 apart.
KESTA_API int diff_days(const date& from, const date& to);

/// Days of the year, month and week that `day` lies in, in its mode, reckoned by numbers: they read as what
/// they are named, and diff_days() between first and last is the length. Weeks begin on Monday.
KESTA_API date first_day_of_year(const date& day);
KESTA_API date last_day_of_year(const date& day);
KESTA_API date first_day_of_month(const date& day);
KESTA_API date last_day_of_month(const date& day);
KESTA_API date first_day_of_week(const date& day);
KESTA_API date last_day_of_week(const date& day);

}  // namespace dates

}  // namespace ruvo::velda

#include <ruvo/names_back.hpp>
