// SPDX-License-Identifier: BSL-1.0

// Separators, names of days and months by the system's locales.

#include "system/locale.hpp"

#include <cstddef>
#include <iterator>

#include "system/win32/win32.hpp"

namespace ruvo::platform {

namespace {

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

}  // namespace

std::wstring decimal_separator() { return locale_text(LOCALE_NAME_USER_DEFAULT, LOCALE_SDECIMAL); }
std::wstring thousands_separator() { return locale_text(LOCALE_NAME_USER_DEFAULT, LOCALE_STHOUSAND); }
std::wstring decimal_separator(std::string_view locale) { return locale_text(locale, LOCALE_SDECIMAL); }
std::wstring thousands_separator(std::string_view locale) { return locale_text(locale, LOCALE_STHOUSAND); }

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
