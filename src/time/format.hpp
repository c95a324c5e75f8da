// SPDX-License-Identifier: BSL-1.0
#pragma once

// Calendar records to and from text. The conversions are those that ruvo::lapse lists; the locale is a name,
// "" and "C" meaning English.

#include <ctime>
#include <optional>
#include <string>
#include <string_view>

namespace ruvo::calendar {

/// The name of a month from 0, or of a day of the week from 0 = Sunday.
std::wstring month_name(const std::string& locale, int month, bool abbreviated);
std::wstring week_day_name(const std::string& locale, int day, bool abbreviated);

/// Appends the record of the instant `seconds`; the two give the offset of the zone.
void print(std::wstring& out, std::wstring_view format, const std::tm& record, long long seconds, bool local,
           const std::string& locale);

struct reading {
  std::tm record{};                 // what the text leaves out stays
  std::optional<long long> offset;  // what the record is ahead of UTC, in seconds, when the text says it
};

/// Whether the text fits the format; `out` is only of use then.
bool read(reading& out, std::wstring_view text, std::wstring_view format, const std::string& locale);

}  // namespace ruvo::calendar
