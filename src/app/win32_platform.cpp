#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>
#include <memory>
#include <utility>

#include "app/platform.hpp"
#include "app/win32.hpp"
#include "base/civil.hpp"

namespace ruvo::platform {

namespace {

constexpr std::size_t longest = static_cast<std::size_t>(std::numeric_limits<int>::max());

std::wstring locale_text(const wchar_t* locale, LCTYPE what) {
  wchar_t buffer[128];
  const int length = GetLocaleInfoEx(locale, what, buffer, static_cast<int>(std::size(buffer)));
  return length > 1 ? std::wstring(buffer, static_cast<std::size_t>(length) - 1) : std::wstring();
}

// "es_ES.UTF-8" as the system writes it, "es-ES". Names that are not ASCII are no names.
std::wstring locale_text(std::string_view locale, LCTYPE what) {
  std::wstring name;
  for (const char c : locale.substr(0, locale.find_first_of(".@"))) {
    if (c <= ' ' || c > '~') return {};
    name += c == '_' ? L'-' : static_cast<wchar_t>(c);
  }
  if (name.empty() || name == L"C" || name == L"POSIX") return {};
  return locale_text(name.c_str(), what);
}

zone::change change_of(const SYSTEMTIME& when) {
  zone::change out;
  out.month = when.wMonth;
  out.week_day = when.wDayOfWeek;
  out.nth = when.wDay;
  out.fixed_day = when.wYear ? when.wDay : 0;
  out.time_of_day = when.wHour * 3600LL + when.wMinute * 60 + when.wSecond;
  if (when.wMilliseconds >= 500) ++out.time_of_day;  // 23:59:59.999 stands for midnight
  return out;
}

zone::rules read_rules(int year) {
  TIME_ZONE_INFORMATION zone{};
  const auto system_year = static_cast<USHORT>(std::clamp(year, 1601, 30827));
  if (!GetTimeZoneInformationForYear(system_year, nullptr, &zone) &&
      GetTimeZoneInformation(&zone) == TIME_ZONE_ID_INVALID)
    return {};
  zone::rules out;
  out.standard = (zone.Bias + (zone.StandardDate.wMonth ? zone.StandardBias : 0)) * 60LL;
  out.daylight = (zone.Bias + zone.DaylightBias) * 60LL;
  out.has_daylight = zone.StandardDate.wMonth && zone.DaylightDate.wMonth;
  if (out.has_daylight) {
    out.daylight_begin = zone::moment(year, change_of(zone.DaylightDate)) + out.standard;
    out.daylight_end = zone::moment(year, change_of(zone.StandardDate)) + out.daylight;
  }
  return out;
}

}  // namespace

std::wstring system_message(unsigned long number) {
  constexpr DWORD user_language = 0x0400;
  constexpr DWORD flags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                          FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK;
  wchar_t* made = nullptr;
  const DWORD length =
      FormatMessageW(flags, nullptr, number, user_language, reinterpret_cast<wchar_t*>(&made), 0, nullptr);
  const std::unique_ptr<wchar_t, decltype(&LocalFree)> owner(made, LocalFree);
  return made ? std::wstring(made, length) : std::wstring();
}

unsigned long last_error() noexcept { return GetLastError(); }
unsigned long thread_id() noexcept { return GetCurrentThreadId(); }
unsigned long process_id() noexcept { return GetCurrentProcessId(); }

std::wstring decimal_separator() { return locale_text(LOCALE_NAME_USER_DEFAULT, LOCALE_SDECIMAL); }
std::wstring thousands_separator() { return locale_text(LOCALE_NAME_USER_DEFAULT, LOCALE_STHOUSAND); }
std::wstring decimal_separator(std::string_view locale) { return locale_text(locale, LOCALE_SDECIMAL); }
std::wstring thousands_separator(std::string_view locale) { return locale_text(locale, LOCALE_STHOUSAND); }

std::wstring from_code_page(std::string_view text, unsigned int page) {
  if (text.empty() || text.size() > longest) return {};
  const int size = static_cast<int>(text.size());
  const int needed = MultiByteToWideChar(page, 0, text.data(), size, nullptr, 0);
  if (needed <= 0) return {};
  std::wstring out(static_cast<std::size_t>(needed), L'\0');
  MultiByteToWideChar(page, 0, text.data(), size, out.data(), needed);
  return out;
}

std::string to_code_page(std::wstring_view text, unsigned int page) {
  if (text.empty() || text.size() > longest) return {};
  const int size = static_cast<int>(text.size());
  const int needed = WideCharToMultiByte(page, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
  if (needed <= 0) return {};
  std::string out(static_cast<std::size_t>(needed), '\0');
  WideCharToMultiByte(page, 0, text.data(), size, out.data(), needed, nullptr, nullptr);
  return out;
}

bool make_guid(guid& out) noexcept {
  GUID made;
  if (FAILED(CoCreateGuid(&made))) return false;
  out.data1 = made.Data1;
  out.data2 = made.Data2;
  out.data3 = made.Data3;
  std::copy(std::begin(made.Data4), std::end(made.Data4), out.data4);
  return true;
}

void init_com() noexcept { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }

long long clock_ticks() noexcept {
  constexpr long long from_1601_to_1970 = 116444736000000000;
  FILETIME now;
  GetSystemTimeAsFileTime(&now);
  return (static_cast<long long>(now.dwHighDateTime) << 32 | now.dwLowDateTime) - from_1601_to_1970;
}

// Asking the system for a year's rules costs microseconds; each thread keeps a few of them for a second.
zone::rules zone_rules(int year) noexcept {
  struct kept {
    zone::rules rules;
    int year;
    unsigned long long until;
  };
  constexpr unsigned places = 4;
  thread_local kept cache[places];
  kept& place = cache[static_cast<unsigned>(year) % places];
  const unsigned long long now = GetTickCount64();
  if (place.year != year || now >= place.until) place = {read_rules(year), year, now + 1000};
  return place.rules;
}

std::wstring zone_name(bool daylight) {
  TIME_ZONE_INFORMATION zone{};
  if (GetTimeZoneInformation(&zone) == TIME_ZONE_ID_INVALID) return {};
  return daylight ? zone.DaylightName : zone.StandardName;
}

bool environment_variable(const std::wstring& name, std::wstring& value) {
  std::wstring out(128, L'\0');
  for (;;) {
    SetLastError(ERROR_SUCCESS);
    const DWORD length = GetEnvironmentVariableW(name.c_str(), out.data(), static_cast<DWORD>(out.size()));
    if (!length && GetLastError() != ERROR_SUCCESS) return false;
    const bool fits = length < out.size();
    out.resize(length);
    if (fits) break;
  }
  value = std::move(out);
  return true;
}

std::wstring month_name(std::string_view locale, int month, bool abbreviated) {
  static_assert(LOCALE_SMONTHNAME12 == LOCALE_SMONTHNAME1 + 11);
  static_assert(LOCALE_SABBREVMONTHNAME12 == LOCALE_SABBREVMONTHNAME1 + 11);
  const LCTYPE first = abbreviated ? LOCALE_SABBREVMONTHNAME1 : LOCALE_SMONTHNAME1;
  return locale_text(locale, first + static_cast<LCTYPE>(month - 1));
}

std::wstring week_day_name(std::string_view locale, int day, bool abbreviated) {
  const LCTYPE monday = abbreviated ? LOCALE_SABBREVDAYNAME1 : LOCALE_SDAYNAME1;
  return locale_text(locale, monday + static_cast<LCTYPE>((day + 6) % 7));
}

std::wstring half_day_name(std::string_view locale, bool afternoon) {
  return locale_text(locale, afternoon ? LOCALE_S2359 : LOCALE_S1159);
}

}  // namespace ruvo::platform
