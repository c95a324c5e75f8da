// SPDX-License-Identifier: BSL-1.0
#pragma once

// The user's separators, and names in a locale.

#include <string>
#include <string_view>

namespace ruvo::platform {

/// The user's separators as the system has them; may be empty.
std::wstring decimal_separator();
std::wstring thousands_separator();
/// Those of a locale ("es_ES" or "es-ES"); empty when it is not known.
std::wstring decimal_separator(std::string_view locale);
std::wstring thousands_separator(std::string_view locale);

/// Names in a locale ("es_ES" or "es-ES"); empty when the locale is not known. Months count from 1, days of
/// the week from 0 = Sunday.
std::wstring month_name(std::string_view locale, int month, bool abbreviated);
std::wstring week_day_name(std::string_view locale, int day, bool abbreviated);
/// "AM" or "PM" in the locale; empty when the locale is not known or has none.
std::wstring half_day_name(std::string_view locale, bool afternoon);

}  // namespace ruvo::platform
