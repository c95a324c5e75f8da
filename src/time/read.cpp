// SPDX-License-Identifier: BSL-1.0

// A calendar record from text by a format.

#include "base/ascii.hpp"
#include "base/civil.hpp"
#include "base/numbers.hpp"
#include "system/locale.hpp"
#include "system/zone_rules.hpp"
#include "time/format.hpp"

namespace ruvo::calendar {

namespace {

/// Lower case of the letters that names of months and days have in Latin script.
wchar_t fold(wchar_t c) {
  const bool accented = c >= L'\u00C0' && c <= L'\u00DE' && c != L'\u00D7';
  return accented ? static_cast<wchar_t>(c + 32) : texto::to_lower(c);
}

bool begins_with_name(std::wstring_view text, std::wstring_view name) {
  if (name.empty() || text.size() < name.size()) return false;
  for (std::size_t i = 0; i < name.size(); ++i)
    if (fold(text[i]) != fold(name[i])) return false;
  return true;
}

using name_of = std::wstring (*)(const std::string& locale, int index, bool abbreviated);

enum part : unsigned { year_part = 1, day_part = 2, hour_part = 4 };

/// A conversion that is a number of the record.
struct plain_field {
  int std::tm::*field;
  int digits, low, high;
  int base;  // what the record counts from
  unsigned part;
};

constexpr plain_field day_field{&std::tm::tm_mday, 2, 1, 31, 0, day_part};
constexpr plain_field month_field{&std::tm::tm_mon, 2, 1, 12, 1, day_part};
constexpr plain_field year_field{&std::tm::tm_year, 4, 0, 9999, 1900, year_part};
constexpr plain_field hour_field{&std::tm::tm_hour, 2, 0, 23, 0, hour_part};
constexpr plain_field minute_field{&std::tm::tm_min, 2, 0, 59, 0, 0};
constexpr plain_field second_field{&std::tm::tm_sec, 2, 0, 59, 0, 0};

const plain_field* plain_field_of(wchar_t conversion) {
  switch (conversion) {
    case L'd':
      return &day_field;
    case L'm':
      return &month_field;
    case L'Y':
      return &year_field;
    case L'H':
      return &hour_field;
    case L'M':
      return &minute_field;
    case L'S':
      return &second_field;
    default:
      return nullptr;
  }
}

/// One function per kind of field; each takes its part off the front of the text, or is false.
struct reader {
  reading& out;
  const wchar_t* at;
  const wchar_t* end;
  const std::string& locale;

  std::optional<int> hour_of_half, year_day, week_day, sunday_week, monday_week;
  bool afternoon = false;
  unsigned parts = 0;  // those that were read

  bool all(std::wstring_view format) {
    const wchar_t* const stop = format.data() + format.size();
    for (const wchar_t* f = format.data(); f != stop; ++f) {
      if (*f == L'%' && f + 1 != stop) {
        const plain_field* const plain = plain_field_of(*++f);
        if (!(plain ? take(*plain) : one(*f))) return false;
      } else if (texto::is_space(*f)) {
        skip_blanks();
      } else if (!unit(*f)) {
        return false;
      }
    }
    return true;
  }

  void skip_blanks() {
    while (at != end && texto::is_space(*at)) ++at;
  }

  bool unit(wchar_t expected) {
    if (at == end || *at != expected) return false;
    ++at;
    return true;
  }

  bool prefix(std::wstring_view name) {
    if (!begins_with_name({at, static_cast<std::size_t>(end - at)}, name)) return false;
    at += name.size();
    return true;
  }

  /// Up to so many digits.
  template <int digits>
  bool number(int& value, int low, int high) {
    if (!all_digits<digits>(value) && !leading_digits<digits>(value)) return false;
    return value >= low && value <= high;
  }

  /// The usual case: as many digits as there may be, read without a branch for each.
  template <int digits>
  bool all_digits(int& value) {
    if (end - at < digits) return false;
    unsigned sum = 0;
    bool all = true;
    for (int i = 0; i < digits; ++i) {
      all &= texto::is_digit(at[i]);
      sum = sum * 10 + static_cast<char16_t>(at[i]) - L'0';
    }
    if (!all) return false;
    at += digits;
    value = static_cast<int>(sum);
    return true;
  }

  template <int digits>
  bool leading_digits(int& value) {
    const wchar_t* const first = at;
    value = 0;
    for (int i = 0; i < digits && at != end && texto::is_digit(*at); ++i) value = value * 10 + (*at++ - L'0');
    return at != first;
  }

  /// Exactly two digits.
  bool pair(int& value, int high) {
    const wchar_t* const first = at;
    return number<2>(value, 0, high) && at - first == 2;
  }

  template <int digits>
  bool number(std::optional<int>& value, int low, int high) {
    return number<digits>(value.emplace(), low, high);
  }

  bool take(const plain_field& what) {
    int value = 0;
    if (!(what.digits == 2 ? number<2>(value, what.low, what.high) : number<4>(value, what.low, what.high)))
      return false;
    out.record.*what.field = value - what.base;
    parts |= what.part;
    return true;
  }

  bool one(wchar_t conversion) {
    switch (conversion) {
      case L'e':
        skip_blanks();
        return take(day_field);
      case L'y':
        return short_year();
      case L'I':
        return number<2>(hour_of_half, 1, 12);
      case L'F':
        return all(L"%Y-%m-%d");
      case L'R':
        return all(L"%H:%M");
      case L'T':
      case L'X':
        return all(L"%H:%M:%S");
      case L'c':
        return all(L"%a %b %e %H:%M:%S %Y");
      case L'x':
        return all(L"%m/%d/%y");
      default:
        return seldom(conversion);
    }
  }

  bool seldom(wchar_t conversion) {
    switch (conversion) {
      case L'j':
        if (!number<3>(year_day, 1, 366)) return false;
        --*year_day;
        return true;
      case L'U':
        return number<2>(sunday_week, 0, 53);
      case L'W':
        return number<2>(monday_week, 0, 53);
      case L'w':
        return number<1>(week_day, 0, 6);
      case L'u':
        if (!number<1>(week_day, 1, 7)) return false;
        *week_day %= 7;
        return true;
      case L'a':
      case L'A':
        return name(week_day.emplace(), week_day_name, 7);
      case L'b':
      case L'B':
        parts |= day_part;
        return name(out.record.tm_mon, month_name, 12);
      case L'p':
        return half_day();
      case L'z':
        return zone_offset();
      case L'Z':
        return zone_name();
      case L'%':
        return unit(L'%');
      default:
        return false;
    }
  }

  bool short_year() {
    int& year = out.record.tm_year;
    if (!number<2>(year, 0, 99)) return false;
    if (year < 69) year += 100;
    parts |= year_part;
    return true;
  }

  /// The longest name, full or abbreviated, that the text begins with.
  bool name(int& index, name_of names, int count) {
    const wchar_t* const first = at;
    const wchar_t* longest = at;
    for (int i = 0; i < count; ++i) {
      for (const bool abbreviated : {false, true}) {
        at = first;
        if (!prefix(names(locale, i, abbreviated)) || at <= longest) continue;
        longest = at;
        index = i;
      }
    }
    at = longest;
    return longest != first;
  }

  bool half_day() {
    for (const bool candidate : {false, true}) {
      if (!prefix(platform::half_day_name(locale, candidate)) && !prefix(candidate ? L"PM" : L"AM")) continue;
      afternoon = candidate;
      return true;
    }
    return false;
  }

  bool zone_offset() {
    if (unit(L'Z')) {
      out.offset = 0;
      return true;
    }
    const bool west = at != end && *at == L'-';
    int hours = 0;
    int minutes = 0;
    if (!unit(west ? L'-' : L'+') || !pair(hours, 23)) return false;
    unit(L':');
    if (!pair(minutes, 59)) return false;
    const long long seconds = hours * 3600LL + minutes * 60;
    out.offset = west ? -seconds : seconds;
    return true;
  }

  /// A name of UTC, or one of the zone's own names, which add nothing to the record; the longest,
  /// as the zone's may begin with "GMT".
  bool zone_name() {
    const wchar_t* const first = at;
    const wchar_t* longest = at;
    bool is_utc = false;
    const auto attempt = [&](std::wstring_view name, bool of_utc) {
      at = first;
      if (!prefix(name) || at <= longest) return;
      longest = at;
      is_utc = of_utc;
    };
    for (const std::wstring_view utc : {L"UTC", L"GMT", L"Z"}) attempt(utc, true);
    for (const bool daylight : {false, true}) attempt(platform::zone_name(daylight), false);
    at = longest;
    if (is_utc) out.offset = 0;
    return longest != first;
  }

  /// Puts together what was read; false when the parts contradict each other or name no day.
  bool finish() {
    std::tm& record = out.record;
    if (hour_of_half && !(parts & hour_part)) record.tm_hour = *hour_of_half % 12 + (afternoon ? 12 : 0);
    const bool has_year = parts & year_part;
    const bool has_day = parts & day_part;
    if (!has_day && !day_of_year()) return false;
    const long long year = record.tm_year + 1900LL;
    if (record.tm_mday > civil::month_days(year, record.tm_mon + 1)) return false;
    const bool whole = has_year && (has_day || year_day);
    if (!whole || !(week_day || year_day)) return true;
    const long long days = civil::days_from_date(year, record.tm_mon + 1, record.tm_mday);
    if (week_day && civil::week_day(days) != *week_day) return false;
    return !year_day || civil::date_from_days(days).year_day == *year_day;
  }

  /// Month and day from the day of the year, or from a week and its day.
  bool day_of_year() {
    std::tm& record = out.record;
    const long long year = record.tm_year + 1900LL;
    const long long first = civil::days_from_date(year, 1, 1);
    long long day = 0;
    if (year_day) {
      day = *year_day;
    } else if (week_day && (sunday_week || monday_week)) {
      const int shift = sunday_week ? 0 : 6;  // the days of the week counted from its first one
      const int in_week = (*week_day + shift) % 7;
      const int first_in_week = (civil::week_day(first) + shift) % 7;
      day = (sunday_week ? *sunday_week : *monday_week) * 7 + in_week - (first_in_week + 6) % 7 - 1;
    } else {
      return true;
    }
    const civil::date_fields date = civil::date_from_days(first + day);
    record.tm_mon = date.month - 1;
    record.tm_mday = date.day;
    return date.year == year;
  }
};

}  // namespace

bool read(reading& out, std::wstring_view text, std::wstring_view format, const std::string& locale) {
  text = texto::trimmed(text);
  reader work{out, text.data(), text.data() + text.size(), locale, {}, {}, {}, {}, {}};
  if (!work.all(format)) return false;
  work.skip_blanks();
  return work.at == work.end && work.finish();
}

}  // namespace ruvo::calendar
