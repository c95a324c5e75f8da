// SPDX-License-Identifier: BSL-1.0
#pragma once

// Dates and times as ISO 8601 writes them.

#include <ruvo/var.hpp>

#include <cstddef>

namespace ruvo::serializer {

/// Room for what print_iso() writes.
constexpr std::size_t most_iso_units = 48;

/// Writes a date, time or datetime at `to` and returns the end: `2024-02-29`, `09:30:05Z`,
/// `2024-02-29T09:30:05Z`. A date is the day in its own mode. In local time a time of day has no Z, and an
/// instant has the difference to UTC; all in UTC where `in_utc` says so, an instant also where that
/// difference is no number of minutes. Years beyond 0 to 9999 have a sign or more digits. A null value writes
/// nothing. Throws exc::CalendarException.
char* print_iso(char* to, const var& value, bool in_utc);

}  // namespace ruvo::serializer
