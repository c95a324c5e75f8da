// SPDX-License-Identifier: BSL-1.0

// Names of months and days, of English and of the system's locales.

#include <array>
#include <cstddef>

#include "system/locale.hpp"
#include "time/format.hpp"

namespace ruvo::calendar {

namespace {

constexpr std::size_t abbreviation = 3;

constexpr std::array<std::wstring_view, 12> months = {L"January",   L"February", L"March",    L"April",
                                                      L"May",       L"June",     L"July",     L"August",
                                                      L"September", L"October",  L"November", L"December"};
constexpr std::array<std::wstring_view, 7> days = {L"Sunday",   L"Monday", L"Tuesday", L"Wednesday",
                                                   L"Thursday", L"Friday", L"Saturday"};

std::wstring english(std::wstring_view name, bool abbreviated) {
  return std::wstring(abbreviated ? name.substr(0, abbreviation) : name);
}

}  // namespace

std::wstring month_name(const std::string& locale, int month, bool abbreviated) {
  if (month < 0 || month >= 12) return {};
  std::wstring name = platform::month_name(locale, month + 1, abbreviated);
  return name.empty() ? english(months[static_cast<std::size_t>(month)], abbreviated) : name;
}

std::wstring week_day_name(const std::string& locale, int day, bool abbreviated) {
  if (day < 0 || day >= 7) return {};
  std::wstring name = platform::week_day_name(locale, day, abbreviated);
  return name.empty() ? english(days[static_cast<std::size_t>(day)], abbreviated) : name;
}

}  // namespace ruvo::calendar
