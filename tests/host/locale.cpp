// SPDX-License-Identifier: BSL-1.0

// The system's services for the build that runs on the host under its checkers: what the tests need of them,
// from the standard library alone, in a world of fixed settings (Central European Time, Spanish and English
// names, '.' and ',' as separators, code page 1252).

#include "system/locale.hpp"

namespace ruvo::platform {

namespace {

struct language {
  std::string_view names[2];
  const wchar_t* months[12];
  const wchar_t* days[7];  // from Sunday
  bool has_halves;
};

constexpr language languages[] = {
    {{"es_ES", "es-ES"},
     {L"enero", L"febrero", L"marzo", L"abril", L"mayo", L"junio", L"julio", L"agosto", L"septiembre",
      L"octubre", L"noviembre", L"diciembre"},
     {L"domingo", L"lunes", L"martes", L"miércoles", L"jueves", L"viernes", L"sábado"},
     false},
    {{"en_US", "en-US"},
     {L"January", L"February", L"March", L"April", L"May", L"June", L"July", L"August", L"September",
      L"October", L"November", L"December"},
     {L"Sunday", L"Monday", L"Tuesday", L"Wednesday", L"Thursday", L"Friday", L"Saturday"},
     true},
};

const language* find(std::string_view locale) {
  locale = locale.substr(0, locale.find_first_of(".@"));
  for (const language& one : languages)
    if (locale == one.names[0] || locale == one.names[1]) return &one;
  return nullptr;
}

std::wstring shortened(const wchar_t* name, bool abbreviated) {
  return std::wstring(name).substr(0, abbreviated ? 3 : std::wstring::npos);
}

}  // namespace

std::wstring decimal_separator() { return L"."; }
std::wstring thousands_separator() { return L","; }

std::wstring decimal_separator(std::string_view locale) {
  const language* const found = find(locale);
  return !found ? L"" : found == languages ? L"," : L".";
}

std::wstring thousands_separator(std::string_view locale) {
  const language* const found = find(locale);
  return !found ? L"" : found == languages ? L"." : L",";
}

std::wstring month_name(std::string_view locale, int month, bool abbreviated) {
  const language* const found = find(locale);
  return found ? shortened(found->months[month - 1], abbreviated) : std::wstring();
}

std::wstring week_day_name(std::string_view locale, int day, bool abbreviated) {
  const language* const found = find(locale);
  return found ? shortened(found->days[day], abbreviated) : std::wstring();
}

std::wstring half_day_name(std::string_view locale, bool afternoon) {
  const language* const found = find(locale);
  return found && found->has_halves ? afternoon ? L"PM" : L"AM" : L"";
}

}  // namespace ruvo::platform
