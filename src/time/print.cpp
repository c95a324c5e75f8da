// SPDX-License-Identifier: BSL-1.0

// A calendar record as text by a format.

#include <cstdlib>

#include "base/civil.hpp"
#include "base/numbers.hpp"
#include "system/locale.hpp"
#include "system/zone_rules.hpp"
#include "time/format.hpp"
#include "time/sink.hpp"

namespace ruvo::calendar {

namespace {

/// At least four digits, so that "%Y%m%d" can be read back.
void year_digits(sink& out, long long year) {
  if (year < 0) out.put(L'-');
  const long long size = std::llabs(year);
  if (size > 9999) {
    std::wstring digits;
    texto::append_integer(digits, size);
    return out.text(digits);
  }
  out.pair(static_cast<int>(size) / 100);
  out.pair(static_cast<int>(size) % 100);
}

int twelve_hours(int hour) { return hour % 12 ? hour % 12 : 12; }

/// The week of the year, the first one beginning with the first day `since_start` days into its week.
int week(int year_day, int since_start) { return (year_day + 7 - since_start) / 7; }

std::wstring half_day(const std::string& locale, bool afternoon) {
  std::wstring name = platform::half_day_name(locale, afternoon);
  return name.empty() ? std::wstring(afternoon ? L"PM" : L"AM") : name;
}

void zone_offset(sink& out, long long seconds) {
  const int minutes = static_cast<int>(std::llabs(seconds) / 60);
  out.put(seconds < 0 ? L'-' : L'+');
  out.pair(minutes / 60);
  out.pair(minutes % 60);
}

struct printer {
  sink& out;
  const std::tm& record;
  long long seconds;
  bool local;
  const std::string& locale;

  void all(std::wstring_view format) {
    const wchar_t* const stop = format.data() + format.size();
    for (const wchar_t* f = format.data(); f != stop; ++f) {
      if (*f != L'%' || f + 1 == stop)
        out.put(*f);
      else
        one(*++f);
    }
  }

  void one(wchar_t conversion) {
    switch (conversion) {
      case L'd':
        return out.pair(record.tm_mday);
      case L'm':
        return out.pair(record.tm_mon + 1);
      case L'Y':
        return year_digits(out, record.tm_year + 1900LL);
      case L'H':
        return out.pair(record.tm_hour);
      case L'M':
        return out.pair(record.tm_min);
      case L'S':
        return out.pair(record.tm_sec);
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
      case L'y':
        return out.pair(((record.tm_year % 100) + 100) % 100);
      case L'e':
        return out.pair(record.tm_mday, L' ');
      case L'I':
        return out.pair(twelve_hours(record.tm_hour));
      case L'j':
        out.put(static_cast<wchar_t>(L'0' + (record.tm_yday + 1) / 100));
        return out.pair((record.tm_yday + 1) % 100);
      case L'U':
        return out.pair(week(record.tm_yday, record.tm_wday));
      case L'W':
        return out.pair(week(record.tm_yday, (record.tm_wday + 6) % 7));
      case L'u':
        return out.put(static_cast<wchar_t>(L'0' + (record.tm_wday + 6) % 7 + 1));
      case L'w':
        return out.put(static_cast<wchar_t>(L'0' + record.tm_wday));
      case L'%':
        return out.put(L'%');
      default:
        return word(conversion);
    }
  }

  void word(wchar_t conversion) {
    switch (conversion) {
      case L'a':
        return out.text(week_day_name(locale, record.tm_wday, true));
      case L'A':
        return out.text(week_day_name(locale, record.tm_wday, false));
      case L'b':
        return out.text(month_name(locale, record.tm_mon, true));
      case L'B':
        return out.text(month_name(locale, record.tm_mon, false));
      case L'p':
        return out.text(half_day(locale, record.tm_hour >= 12));
      case L'z':
        return zone_offset(out, civil::build(record) - seconds);
      case L'Z':
        return out.text(local ? platform::zone_name(record.tm_isdst > 0) : L"UTC");
      default:
        out.put(L'%');
        out.put(conversion);
    }
  }
};

}  // namespace

void print(std::wstring& out, std::wstring_view format, const std::tm& record, long long seconds, bool local,
           const std::string& locale) {
  sink printed(out);
  printer{printed, record, seconds, local, locale}.all(format);
  printed.flush();
}

}  // namespace ruvo::calendar
