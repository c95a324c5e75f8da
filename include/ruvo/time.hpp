// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::time, a time of day. The selectors of all calendar values are in <ruvo/times.hpp>.

#include <ruvo/lapse.hpp>

#include <compare>
#include <concepts>
#include <iosfwd>
#include <string>
#include <string_view>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo {

/// A time of day. Its number is hhmmss: 123456 is 12:34:56. Fields out of their range are normalised
/// (25:00:00 is 01:00:00).
///
/// Operations without a result object throw exc::CalendarException (see ruvo::lapse). A value made from
/// fields or text lies on 1 January 2000; the day is not compared.
class KESTA_API time : public lapse {
 public:
  static const std::string canonical;        ///< `%H:%M:%S`
  static const std::string sql_format;       ///< `%H:%M:%S`
  static const std::string short_format;     ///< `%R`
  static const std::string long_format;      ///< `%T`
  static const std::string long_utc_format;  ///< `%T %z`
  static const std::string short_12_format;  ///< `%I:%M %p`
  static const std::string long_12_format;   ///< `%I:%M:%S %p`
  static const std::string velda;            ///< `%H%M%S`
  static const std::string url_canonical;    ///< `%H%M%S`

  /// The present time of day in the mode: without an argument that of UTC.
  time(times::HUSO huso = huso_horario);
  /// From a number hhmmss; throws exc::CalendarException for one that a long does not hold.
  time(long hhmmss, times::HUSO huso = huso_horario);
  template <std::integral T>
  time(T hhmmss, times::HUSO huso = huso_horario) : time(detail::packed_number(hhmmss), huso) {}
  /// From fields.
  time(long hour, long minute, long second, times::HUSO huso = huso_horario);
  /// From text that fits the format, as parse(). Narrow text is UTF-8.
  time(const char* text, times::HUSO huso = huso_horario, const std::string& format = canonical);
  time(const wchar_t* text, times::HUSO huso = huso_horario, const std::string& format = canonical);
  time(const std::string& text, times::HUSO huso = huso_horario, const std::string& format = canonical);
  time(const std::wstring& text, times::HUSO huso = huso_horario, const std::string& format = canonical);
  /// The instant and its mode: the day stays underneath.
  explicit time(const datetime& instant);
  /// The conversion of a var.
  template <std::derived_from<var> V>
  explicit time(const V& value) : time(value.operator time()) {}
  time(const time& other);
  time(time&& other) noexcept;
  ~time() override;

  time& operator=(const time& other);

  /// The instant and its mode: the day stays underneath.
  time& operator=(const datetime& instant);
  /// From a number hhmmss; the mode stays.
  time& operator=(long hhmmss);
  template <std::integral T>
  time& operator=(T hhmmss) {
    return *this = detail::packed_number(hhmmss);
  }
  /// The conversion of a var.
  template <std::derived_from<var> V>
  time& operator=(const V& value) {
    return *this = value.operator time();
  }
  /// From text in the canonical format; the mode stays. Narrow text is UTF-8.
  time& operator=(const char* text);
  time& operator=(const wchar_t* text);
  time& operator=(const std::string& text);
  time& operator=(const std::wstring& text);

  /// The number hhmmss.
  /// @quirk Expressions with a time reckon with this number, whose parts are fields. What `+` and `-` would
  /// make of it is no time and no number of seconds, so they are refused.
  operator long() const;
  /// Seconds since midnight, 0 to 86399.
  long in_seconds() const;
  /// Minutes since midnight, with their fraction.
  double in_minutes() const { return static_cast<double>(in_seconds()) / 60; }
  /// Hours since midnight, with their fraction.
  double in_hours() const { return static_cast<double>(in_seconds()) / 3600; }
  /// So many seconds after midnight; normalises (86400 is midnight again).
  time& set_in_seconds(long seconds);

  /// lapse::format() in the locale of the thread's context.
  std::wstring to_string(std::string format = canonical) const override;
  /// The text in the canonical format.
  std::wstring print() const override { return to_string(); }

  /// Fields in the value's mode: hours are 0 to 23.
  int get_hour() const { return get(times::HOURS); }
  int get_minutes() const { return get(times::MINUTES); }
  int get_seconds() const { return get(times::SECONDS); }
  /// Replace a field and normalise: 60 minutes are the next hour.
  time& set_hour(int hour);
  time& set_minutes(int minutes);
  time& set_seconds(int seconds);

  /// 0 equal, 1 this is later, 2 this is earlier; times of day are compared, not instants.
  /// @quirk Never negative.
  int compare(const time& other) const;

  /// Compare times of day, each in its own mode, by their numbers hhmmss.
  bool operator==(const time& other) const { return compare(other) == 0; }
  std::strong_ordering operator<=>(const time& other) const;
  template <std::integral T>
  bool operator==(T hhmmss) const {
    return *this == static_cast<long>(hhmmss);
  }
  template <std::integral T>
  std::strong_ordering operator<=>(T hhmmss) const {
    return *this <=> static_cast<long>(hhmmss);
  }
  bool operator==(long hhmmss) const;
  std::strong_ordering operator<=>(long hhmmss) const;

  /// Move by minutes, around midnight if need be.
  /// @quirk Each calendar type moves by a unit of its own.
  time& operator+=(int minutes);
  time& operator-=(int minutes);
  time& operator++() { return *this += 1; }
  time& operator--() { return *this -= 1; }
  time operator++(int);
  time operator--(int);

 protected:
  /// As lapse::read(), but on 1 January 2000 where the format has no day.
  void read(std::wstring_view text, std::wstring_view format, const std::string& locale) override;
};

/// Write the canonical format, as UTF-8 to a narrow stream.
KESTA_API std::wostream& operator<<(std::wostream& out, const time& value);
KESTA_API std::ostream& operator<<(std::ostream& out, const time& value);

namespace times {

/// `to` - `from` as times of one day, in whole hours and minutes: fractions are cut.
KESTA_API int diff_hours(const time& from, const time& to);
KESTA_API int diff_minutes(const time& from, const time& to);

}  // namespace times

}  // namespace ruvo

#include <ruvo/names_back.hpp>
