// SPDX-License-Identifier: BSL-1.0
#pragma once

// How log lines are made.

#include <cstddef>
#include <string>
#include <string_view>

namespace ruvo::reg {

/// An instant in local time, and its day as yyyymmdd.
struct moment {
  unsigned long year, month, day, hour, minute, second, millisecond;

  long number() const noexcept { return static_cast<long>(year * 10000 + month * 100 + day); }
};

/// From 100-nanosecond ticks since 1970, by the calendar of the thread's context.
moment moment_of(long long ticks);
moment present_moment();

void append_stamp(std::wstring& out, const moment& when);
/// "LEVEL: first: second", with a space for each control character and for each end of line.
void append_entry(std::wstring& out, long level, std::wstring_view first, std::wstring_view second);
void append_clean(std::wstring& out, std::wstring_view text);

/// The name of the log of a day given as yyyymmdd, and the way back: 0 for a name that is not one, or whose
/// day is none.
std::wstring name_of_day(long day);
long day_of_name(std::wstring_view name) noexcept;
/// The day that lies `days` days before, both as yyyymmdd.
long days_before(const moment& when, int days);

}  // namespace ruvo::reg
