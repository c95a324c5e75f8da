#include <cstdlib>

#include "app/platform.hpp"
#include "texto/numbers.hpp"
#include "time/civil.hpp"
#include "time/format.hpp"

namespace ruvo::calendar {

namespace {

void two_digits(std::wstring& out, int value, wchar_t pad = L'0') {
  out += value < 10 ? pad : static_cast<wchar_t>(L'0' + value / 10);
  out += static_cast<wchar_t>(L'0' + value % 10);
}

/// At least four digits, so that "%Y%m%d" can be read back.
void year_digits(std::wstring& out, long long year) {
  if (year < 0) out += L'-';
  const long long size = std::llabs(year);
  if (size > 9999) return texto::append_integer(out, size);
  two_digits(out, static_cast<int>(size / 100));
  two_digits(out, static_cast<int>(size % 100));
}

int twelve_hours(int hour) { return hour % 12 ? hour % 12 : 12; }

/// The week of the year, the first one beginning with the first day `since_start` days into its week.
int week(int year_day, int since_start) { return (year_day + 7 - since_start) / 7; }

std::wstring half_day(const std::string& locale, bool afternoon) {
  std::wstring name = platform::half_day_name(locale, afternoon);
  return name.empty() ? std::wstring(afternoon ? L"PM" : L"AM") : name;
}

void zone_offset(std::wstring& out, long long seconds) {
  const int minutes = static_cast<int>(std::llabs(seconds) / 60);
  out += seconds < 0 ? L'-' : L'+';
  two_digits(out, minutes / 60);
  two_digits(out, minutes % 60);
}

struct printer {
  std::wstring& out;
  const std::tm& record;
  long long seconds;
  bool local;
  const std::string& locale;

  void all(std::wstring_view format) {
    for (std::size_t i = 0; i < format.size(); ++i) {
      if (format[i] != L'%' || i + 1 == format.size())
        out += format[i];
      else
        one(format[++i]);
    }
  }

  void one(wchar_t conversion) {
    switch (conversion) {
      case L'd':
        return two_digits(out, record.tm_mday);
      case L'm':
        return two_digits(out, record.tm_mon + 1);
      case L'Y':
        return year_digits(out, record.tm_year + 1900LL);
      case L'H':
        return two_digits(out, record.tm_hour);
      case L'M':
        return two_digits(out, record.tm_min);
      case L'S':
        return two_digits(out, record.tm_sec);
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
        return two_digits(out, ((record.tm_year % 100) + 100) % 100);
      case L'e':
        return two_digits(out, record.tm_mday, L' ');
      case L'I':
        return two_digits(out, twelve_hours(record.tm_hour));
      case L'j':
        out += static_cast<wchar_t>(L'0' + (record.tm_yday + 1) / 100);
        return two_digits(out, (record.tm_yday + 1) % 100);
      case L'U':
        return two_digits(out, week(record.tm_yday, record.tm_wday));
      case L'W':
        return two_digits(out, week(record.tm_yday, (record.tm_wday + 6) % 7));
      case L'u':
        out += static_cast<wchar_t>(L'0' + (record.tm_wday + 6) % 7 + 1);
        return;
      case L'w':
        out += static_cast<wchar_t>(L'0' + record.tm_wday);
        return;
      case L'%':
        out += L'%';
        return;
      default:
        return word(conversion);
    }
  }

  void word(wchar_t conversion) {
    switch (conversion) {
      case L'a':
        out += week_day_name(locale, record.tm_wday, true);
        return;
      case L'A':
        out += week_day_name(locale, record.tm_wday, false);
        return;
      case L'b':
        out += month_name(locale, record.tm_mon, true);
        return;
      case L'B':
        out += month_name(locale, record.tm_mon, false);
        return;
      case L'p':
        out += half_day(locale, record.tm_hour >= 12);
        return;
      case L'z':
        return zone_offset(out, civil::build(record) - seconds);
      case L'Z':
        out += local ? platform::zone_name(record.tm_isdst > 0) : L"UTC";
        return;
      default:
        (out += L'%') += conversion;
    }
  }
};

}  // namespace

void print(std::wstring& out, std::wstring_view format, const std::tm& record, long long seconds, bool local,
           const std::string& locale) {
  out.reserve(out.size() + 2 * format.size());  // as long as the usual formats print
  printer{out, record, seconds, local, locale}.all(format);
}

}  // namespace ruvo::calendar
