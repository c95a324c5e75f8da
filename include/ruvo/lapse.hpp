// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::lapse, the instant under the calendar values.

#include <ruvo/api.hpp>
#include <ruvo/fences.hpp>
#include <ruvo/fwd.hpp>
#include <ruvo/times.hpp>

#include <concepts>
#include <ctime>
#include <string>
#include <string_view>
#include <type_traits>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo {

namespace detail {

/// The number of a date or a time of day; throws exc::CalendarException when a long does not hold it.
KESTA_API long packed_number(long long number);
KESTA_API long packed_number(unsigned long long number);
template <std::integral T>
long packed_number(T number) {
  if constexpr (std::is_signed_v<T>)
    return packed_number(static_cast<long long>(number));
  else
    return packed_number(static_cast<unsigned long long>(number));
}

}  // namespace detail

/// An instant, as seconds since 1970-01-01 00:00:00 UTC in the proleptic Gregorian calendar, with the mode in
/// which it is broken down into calendar fields. -1 second stands for "no value".
///
/// Every breaking down and building goes through the services of the calling thread's context, so two threads
/// may read the same instant differently. What a service throws comes through, thrown or copied, when it is a
/// ruvo::exception, and becomes exc::CalendarException otherwise. A null pointer in place of a text is an
/// empty text.
class KESTA_API lapse {
 public:
  /// The default mode.
  static const times::HUSO huso_horario = times::GMT;

  /// The current instant, in whole seconds, by the clock of the thread's context.
  lapse(times::HUSO huso = huso_horario);
  lapse(const lapse& other);
  lapse(lapse&& other) noexcept;
  virtual ~lapse();
  lapse& operator=(const lapse& other);
  /// The seconds; the mode stays.
  lapse& operator=(const long long& seconds);

  /// One field in the value's mode, as times::UNITS counts it; 0 for any other unit. Throws
  /// exc::CalendarException for an instant that cannot be broken down.
  virtual int get(times::UNITS unit) const;
  int operator[](times::UNITS unit) const { return get(unit); }
  /// Moves SECONDS to YEARS by n and normalises (31 January plus a month is 2 or 3 March); other units change
  /// nothing. True on failure (exc::CalendarException), also when `err` is null; the value is then unchanged.
  ///
  /// The field is moved, not the instant, and the context builds an instant from the fields. Of local times
  /// that the clock skips, a move ahead leads behind them, by their length, and a move back before them:
  /// where a service builds a later instant than the fields say, that much is taken off it.
  /// @quirk True is failure, while parse() gives false.
  /// @quirk A month after 31 January comes 2 or 3 March, no last day of February.
  /// @quirk Of local times that the clock repeats the first is meant, so a move ahead from the second time,
  /// even by 0, may go back.
  virtual bool add(int n, times::UNITS unit, exception* err = nullptr);
  /// Replaces SECONDS to YEARS by n, in the sense of get(), and normalises; other units change nothing. Local
  /// times that the clock skips become those behind them, and of repeated ones the first is meant. True on
  /// failure, as add().
  /// @quirk True is failure.
  virtual bool set(int n, times::UNITS unit, exception* err = nullptr);

  /// The calendar record (month from 0, year from 1900): get_model() in the value's mode, the others in UTC
  /// and in local time. All zero on failure (exc::CalendarException), which is copied to `*err` if given.
  virtual std::tm get_model() const;
  std::tm get_gmt_model(exception* err = nullptr) const;
  std::tm get_local_model(exception* err = nullptr) const;
  /// Fill the record: gmt() in UTC, locale() in local time. True on failure (exc::CalendarException).
  /// @quirk True is failure.
  bool gmt(std::tm& record, exception& err) const;
  bool locale(std::tm& record, exception& err) const;

  /// Reads `text`, which must fit `format` to its end (blanks around it do not count). False on failure
  /// (exc::CalendarException, raw 0xE0000000 | 3001 << 16 | 3001); the value is then unchanged.
  ///
  /// Formats hold the conversions `a A b B c d e F H I j m M p R S T u U w W x X y Y z Z %`. Fields must be
  /// in their range, days exist in their month, and the day of the week or of the year agrees with the date.
  /// A blank in the format stands for any number of blanks. Fields that the format lacks are those of
  /// 1970-01-01 00:00:00. Names are read in any case and in `locale` ("es_ES", "es-ES"; English for "C" and
  /// names the system does not know); an empty one means the locale of the thread's context. `y` means 1969
  /// to 2068; `H` has precedence over `I`; `z` sets the instant whatever the mode.
  bool parse(const std::wstring& text, const std::wstring& format, exception& err,
             const std::string& locale = {});
  bool parse(const std::wstring& text, const std::string& format, exception& err,
             const std::string& locale = {});
  bool parse(const std::string& text, const std::string& format, exception& err,
             const std::string& locale = {});

  /// The record written by `format`, with the conversions and the locale of parse(); others are written as
  /// they stand. Throws exc::CalendarException for an instant that cannot be broken down.
  std::wstring format(const std::wstring& format, const std::string& locale = {}) const;
  std::wstring format(const std::string& format, const std::string& locale = {}) const;
  /// format() in the locale of the thread's context. Narrow formats are UTF-8.
  virtual std::wstring to_string(std::string format) const;
  /// The canonical text of the type; day and time for an instant that is no more than that.
  virtual std::wstring print() const;

  /// Seconds since 1970.
  long long get_lapso() const noexcept { return lapso_; }
  /// Sets the seconds since 1970; the mode stays.
  void set_lapso(const long long& seconds) noexcept { lapso_ = seconds; }
  /// The same; fractions are cut, what 64 bits do not hold becomes the nearest that they can, and what is not
  /// a number becomes null.
  void set_lapso(double seconds) noexcept;
  /// Sets the seconds since 1970; the mode stays.
  template <std::integral T>
  void set_lapso(T seconds) noexcept {
    lapso_ = static_cast<long long>(seconds);
  }
  /// The seconds since 1970 in their place, to be changed there.
  long long& hack_lapso() noexcept { return lapso_; }
  /// get_lapso() by another name.
  long long get_lapse_in_seconds() const noexcept { return lapso_; }
  /// set_lapso() by another name.
  void set_lapse_in_seconds(long long seconds) noexcept { lapso_ = seconds; }

  /// The mode in which the value is broken down into fields.
  times::HUSO get_huso_horario() const noexcept { return huso_; }
  /// Changes the mode; the instant stays, so its fields may change.
  void set_huso_horario(times::HUSO huso) noexcept { huso_ = huso; }

  /// @quirk 1969-12-31 23:59:59 UTC is the null value.
  bool is_null() const noexcept { return lapso_ == -1; }
  /// Null, or 1970-01-01 00:00:00 UTC.
  /// @quirk The first second of 1970 counts as empty, though it is a date.
  bool empty() const noexcept { return lapso_ == 0 || lapso_ == -1; }

  /// A text of the caller's own that copies take along; empty at first. It takes no part in comparisons, and
  /// a var does not keep it.
  const std::wstring& get_text() const noexcept { return text_; }
  void set_text(const std::wstring& text) { text_ = text; }

 protected:
  /// The instant that many seconds after 1970-01-01 00:00:00 UTC.
  lapse(long long seconds, times::HUSO huso) noexcept : lapso_(seconds), huso_(huso) {}

  /// From fields as a calendar record has them (year from 1900, month from 0), normalised. True on failure.
  bool set(int year, int month, int day, int hour, int minute, int second, exception* err);
  bool set(std::tm& record, exception& err);

  // For the calendar classes; these throw exc::CalendarException. Years are full, months count from 1.

  /// The calendar record (month from 0, year from 1900) in the value's mode. Throws exc::CalendarException.
  std::tm record() const;
  /// Sets the instant from fields in the value's mode, normalised: years are full, months count from 1.
  /// Throws exc::CalendarException.
  void build(long long year, long long month, long long day, long long hour, long long minute,
             long long second);
  /// add(), and with move_back() its reverse, which throw exc::CalendarException.
  void move(int n, times::UNITS unit);
  void move_back(int n, times::UNITS unit);
  /// set() of one field, which throws exc::CalendarException.
  void replace(int n, times::UNITS unit);
  /// What parse() does; throws exc::CalendarException.
  virtual void read(std::wstring_view text, std::wstring_view format, const std::string& locale);
  /// As lapse::read(), with the fields of the first second of `year` for those that the format lacks.
  void read_over(int year, std::wstring_view text, std::wstring_view format, const std::string& locale);
  /// read() in the locale of the thread's context. Narrow text is UTF-8.
  void take(const std::wstring& text, const std::string& format);
  void take(const std::string& text, const std::string& format);
  /// The names of the month and of the day of the week in a locale; empty means that of the context.
  std::wstring month_name(const std::string& locale, bool abbreviated) const;
  std::wstring week_day_name(const std::string& locale, bool abbreviated) const;

 private:
  std::wstring print_by(std::wstring_view pattern, const std::string& locale) const;

  std::wstring text_;
  long long lapso_;
  times::HUSO huso_;
};

}  // namespace ruvo

#include <ruvo/names_back.hpp>
