#pragma once

// ruvo::time, a time of day.

#include <ruvo/lapse.hpp>

#include <compare>
#include <concepts>
#include <iosfwd>
#include <string>
#include <string_view>

namespace ruvo {

/// A time of day. Its number is hhmmss: 123456 is 12:34:56. Fields out of their range are normalised
/// (25:00:00 is 01:00:00).
///
/// Operations without a result object throw exc::CalendarException. A value made from fields or text lies on
/// 1 January 2000; the day is not compared.
class KESTA_API time : public lapse {
 public:
  static const std::string canonical;        ///< "%H:%M:%S"
  static const std::string sql_format;       ///< "%H:%M:%S"
  static const std::string short_format;     ///< "%R"
  static const std::string long_format;      ///< "%T"
  static const std::string long_utc_format;  ///< "%T %z"
  static const std::string short_12_format;  ///< "%I:%M %p"
  static const std::string long_12_format;   ///< "%I:%M:%S %p"
  static const std::string velda;            ///< "%H%M%S"
  static const std::string url_canonical;    ///< "%H%M%S"

  /// Now.
  time(times::HUSO huso = huso_horario);
  time(long hhmmss, times::HUSO huso = huso_horario);
  template <std::integral T>
  time(T hhmmss, times::HUSO huso = huso_horario) : time(static_cast<long>(hhmmss), huso) {}
  time(long hour, long minute, long second, times::HUSO huso = huso_horario);
  /// From text, as parse(). Narrow text is UTF-8.
  time(const char* text, times::HUSO huso = huso_horario, const std::string& format = canonical);
  time(const wchar_t* text, times::HUSO huso = huso_horario, const std::string& format = canonical);
  time(const std::string& text, times::HUSO huso = huso_horario, const std::string& format = canonical);
  time(const std::wstring& text, times::HUSO huso = huso_horario, const std::string& format = canonical);
  /// The time of day of the instant, in its mode.
  explicit time(const datetime& instant);
  /// The conversion of a var.
  template <std::derived_from<var> V>
  explicit time(const V& value) : time(value.operator time()) {}
  time(const time& other);
  ~time() override;

  time& operator=(const time& other);
  time& operator=(const datetime& instant);
  time& operator=(long hhmmss);
  template <std::integral T>
  time& operator=(T hhmmss) {
    return *this = static_cast<long>(hhmmss);
  }
  /// The conversion of a var.
  template <std::derived_from<var> V>
  time& operator=(const V& value) {
    return *this = value.operator time();
  }
  /// From text in the canonical format.
  time& operator=(const char* text);
  time& operator=(const wchar_t* text);
  time& operator=(const std::string& text);
  time& operator=(const std::wstring& text);

  /// hhmmss.
  operator long() const;
  /// Seconds since midnight.
  long in_seconds() const;
  /// The same amount in minutes and in hours.
  double in_minutes() const { return static_cast<double>(in_seconds()) / 60; }
  double in_hours() const { return static_cast<double>(in_seconds()) / 3600; }
  time& set_in_seconds(long seconds);

  std::wstring to_string(const std::string& format = canonical) const override;
  std::wstring print() const override { return to_string(); }

  int get_hour() const { return get(times::HOURS); }
  int get_minutes() const { return get(times::MINUTES); }
  int get_seconds() const { return get(times::SECONDS); }
  time& set_hour(int hour);
  time& set_minutes(int minutes);
  time& set_seconds(int seconds);

  /// 0 equal, 1 this is later, 2 this is earlier; times of day are compared, not instants.
  /// @quirk Never negative.
  int compare(const time& other) const;
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

  /// Minutes.
  /// @quirk Each calendar type moves by a unit of its own.
  time& operator+=(int minutes);
  time& operator-=(int minutes);
  time& operator++() { return *this += 1; }
  time& operator--() { return *this -= 1; }
  time operator++(int);
  time operator--(int);

 protected:
  void read(std::wstring_view text, std::wstring_view format, const std::string& locale) override;
};

/// Write the canonical format.
KESTA_API std::wostream& operator<<(std::wostream& out, const time& value);
KESTA_API std::ostream& operator<<(std::ostream& out, const time& value);

namespace times {

/// `to` - `from` as times of one day, in whole hours and minutes: fractions are cut.
KESTA_API int diff_hours(const time& from, const time& to);
KESTA_API int diff_minutes(const time& from, const time& to);

}  // namespace times

}  // namespace ruvo
