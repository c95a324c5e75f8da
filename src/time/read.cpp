#include "app/platform.hpp"
#include "texto/ascii.hpp"
#include "texto/numbers.hpp"
#include "time/civil.hpp"
#include "time/format.hpp"

namespace ruvo::calendar {

namespace {

/// Lower case of the letters that names of months and days have in Latin script.
wchar_t fold(wchar_t c) {
  const bool accented = c >= L'\u00C0' && c <= L'\u00DE' && c != L'\u00D7';
  return accented ? static_cast<wchar_t>(c + 32) : texto::to_lower(c);
}

bool starts_with(std::wstring_view text, std::wstring_view name) {
  if (name.empty() || text.size() < name.size()) return false;
  for (std::size_t i = 0; i < name.size(); ++i)
    if (fold(text[i]) != fold(name[i])) return false;
  return true;
}

using name_of = std::wstring (*)(const std::string& locale, int index, bool abbreviated);

/// One function per kind of field; each takes its part off the front of the text, or is false.
struct reader {
  reading& out;
  std::wstring_view text;
  const std::string& locale;

  std::optional<int> hour_of_half, year_day, week_day, sunday_week, monday_week;
  bool afternoon = false;
  bool has_year = false, has_month_or_day = false;

  bool all(std::wstring_view format) {
    for (std::size_t i = 0; i < format.size(); ++i) {
      if (format[i] == L'%' && i + 1 < format.size()) {
        if (!one(format[++i])) return false;
      } else if (texto::is_space(format[i])) {
        skip_blanks();
      } else if (!unit(format[i])) {
        return false;
      }
    }
    return true;
  }

  void skip_blanks() {
    while (!text.empty() && texto::is_space(text.front())) text.remove_prefix(1);
  }

  bool unit(wchar_t expected) {
    if (text.empty() || text.front() != expected) return false;
    text.remove_prefix(1);
    return true;
  }

  bool number(int& value, int digits, int low, int high) {
    int read = 0;
    int sum = 0;
    while (read < digits && !text.empty() && texto::is_digit(text.front())) {
      sum = sum * 10 + (text.front() - L'0');
      text.remove_prefix(1);
      ++read;
    }
    value = sum;
    return read > 0 && sum >= low && sum <= high;
  }

  /// Exactly two digits.
  bool pair(int& value, int high) {
    const std::size_t before = text.size();
    return number(value, 2, 0, high) && before - text.size() == 2;
  }

  bool number(std::optional<int>& value, int digits, int low, int high) {
    return number(value.emplace(), digits, low, high);
  }

  bool one(wchar_t conversion) {
    std::tm& record = out.record;
    switch (conversion) {
      case L'e':
        skip_blanks();
        [[fallthrough]];
      case L'd':
        has_month_or_day = true;
        return number(record.tm_mday, 2, 1, 31);
      case L'm':
        has_month_or_day = true;
        if (!number(record.tm_mon, 2, 1, 12)) return false;
        --record.tm_mon;
        return true;
      case L'Y':
        has_year = true;
        if (!number(record.tm_year, 4, 0, 9999)) return false;
        record.tm_year -= 1900;
        return true;
      case L'y':
        has_year = true;
        if (!number(record.tm_year, 2, 0, 99)) return false;
        if (record.tm_year < 69) record.tm_year += 100;
        return true;
      case L'H':
        hour_of_half.reset();
        return number(record.tm_hour, 2, 0, 23);
      case L'I':
        return number(hour_of_half, 2, 1, 12);
      case L'M':
        return number(record.tm_min, 2, 0, 59);
      case L'S':
        return number(record.tm_sec, 2, 0, 59);
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
        if (!number(year_day, 3, 1, 366)) return false;
        --*year_day;
        return true;
      case L'U':
        return number(sunday_week, 2, 0, 53);
      case L'W':
        return number(monday_week, 2, 0, 53);
      case L'w':
        return number(week_day, 1, 0, 6);
      case L'u':
        if (!number(week_day, 1, 1, 7)) return false;
        *week_day %= 7;
        return true;
      case L'a':
      case L'A':
        return name(week_day.emplace(), week_day_name, 7);
      case L'b':
      case L'B':
        has_month_or_day = true;
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

  /// The longest name, full or abbreviated, that the text begins with.
  bool name(int& index, name_of names, int count) {
    std::size_t longest = 0;
    for (int i = 0; i < count; ++i) {
      for (const bool abbreviated : {false, true}) {
        const std::wstring candidate = names(locale, i, abbreviated);
        if (candidate.size() <= longest || !starts_with(text, candidate)) continue;
        longest = candidate.size();
        index = i;
      }
    }
    text.remove_prefix(longest);
    return longest > 0;
  }

  bool half_day() {
    for (const bool candidate : {false, true}) {
      for (const std::wstring& name :
           {platform::half_day_name(locale, candidate), std::wstring(candidate ? L"PM" : L"AM")}) {
        if (!starts_with(text, name)) continue;
        text.remove_prefix(name.size());
        afternoon = candidate;
        return true;
      }
    }
    return false;
  }

  bool zone_offset() {
    if (unit(L'Z')) {
      out.offset = 0;
      return true;
    }
    const bool west = !text.empty() && text.front() == L'-';
    int hours = 0;
    int minutes = 0;
    if (!unit(west ? L'-' : L'+') || !pair(hours, 23)) return false;
    unit(L':');
    if (!pair(minutes, 59)) return false;
    const long long seconds = hours * 3600LL + minutes * 60;
    out.offset = west ? -seconds : seconds;
    return true;
  }

  /// A name of UTC, or one of the zone's own names, which tell nothing that the record does not.
  bool zone_name() {
    for (const std::wstring_view utc : {L"UTC", L"GMT", L"Z"}) {
      if (!starts_with(text, utc)) continue;
      text.remove_prefix(utc.size());
      out.offset = 0;
      return true;
    }
    for (const bool daylight : {false, true}) {
      const std::wstring own = platform::zone_name(daylight);
      if (!starts_with(text, own)) continue;
      text.remove_prefix(own.size());
      return true;
    }
    return false;
  }

  /// Puts together what was read; false when the parts contradict each other or name no day.
  bool finish() {
    std::tm& record = out.record;
    if (hour_of_half) record.tm_hour = *hour_of_half % 12 + (afternoon ? 12 : 0);
    if (has_year && !has_month_or_day && !day_of_year()) return false;
    const long long year = record.tm_year + 1900LL;
    if (record.tm_mday > civil::month_days(year, record.tm_mon + 1)) return false;
    const long long days = civil::days_from_date(year, record.tm_mon + 1, record.tm_mday);
    const bool whole = has_year && (has_month_or_day || year_day);
    if (whole && week_day && civil::week_day(days) != *week_day) return false;
    return !whole || !year_day || civil::date_from_days(days).year_day == *year_day;
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
  reader work{out, text, locale, {}, {}, {}, {}, {}};
  if (!work.all(format)) return false;
  work.skip_blanks();
  return work.text.empty() && work.finish();
}

}  // namespace ruvo::calendar
