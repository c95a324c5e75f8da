// SPDX-License-Identifier: BSL-1.0
#pragma once

// Dates and times as ISO 8601 writes them.

#include <ruvo/datetime.hpp>
#include <ruvo/times.hpp>
#include <ruvo/var.hpp>

#include <cstddef>
#include <cstdlib>
#include <ctime>

#include "base/civil.hpp"
#include "base/numbers.hpp"
#include "time/fields.hpp"
#include "values/cell.hpp"

namespace ruvo::serializer {

/// Room for what print_iso() writes.
constexpr std::size_t most_iso_units = 48;

namespace iso {

inline wchar_t* pair(wchar_t* to, long long number) noexcept {
  *to++ = static_cast<wchar_t>(L'0' + number / 10 % 10);
  *to++ = static_cast<wchar_t>(L'0' + number % 10);
  return to;
}

/// Years have four digits at least.
inline wchar_t* day(wchar_t* to, const std::tm& fields) noexcept {
  const long long year = fields.tm_year + 1900LL, size = std::llabs(year);
  if (year < 0) *to++ = L'-';
  to = size > 9999 ? texto::print_integer(to, size) : pair(pair(to, size / 100), size);
  *to++ = L'-';
  to = pair(to, fields.tm_mon + 1);
  *to++ = L'-';
  return pair(to, fields.tm_mday);
}

inline wchar_t* hour(wchar_t* to, const std::tm& fields) noexcept {
  to = pair(to, fields.tm_hour);
  *to++ = L':';
  to = pair(to, fields.tm_min);
  *to++ = L':';
  return pair(to, fields.tm_sec);
}

}  // namespace iso

/// Writes a value that is_lapse() at `to` and returns the end: `2024-02-29`, `09:30:05Z`,
/// `2024-02-29T09:30:05Z`. A date is the day in its own mode. In local time a time of day has no Z, and an
/// instant has the difference to UTC; all in UTC where `in_utc` says so, an instant also where that
/// difference is no number of minutes. A null value writes nothing. Throws exc::CalendarException.
inline wchar_t* print_iso(wchar_t* to, const var& value, bool in_utc) {
  using detail::cell;
  const long long seconds = cell::integer(value);
  if (seconds == -1) return to;
  const detail::kind kind = cell::kind_of(value);
  const auto mode = static_cast<times::HUSO>(cell::mode(value));
  if (kind == detail::kind::date) return iso::day(to, calendar::fields_of(datetime(seconds, mode)));
  bool is_local = mode == times::LOCAL && !in_utc;
  std::tm fields = calendar::fields_of(datetime(seconds, is_local ? mode : times::GMT));
  const long long ahead = civil::build(fields) - seconds;
  if (kind == detail::kind::datetime) {
    if (ahead % 60 != 0) fields = calendar::fields_of(datetime(seconds, times::GMT));
    is_local = is_local && ahead % 60 == 0;
    to = iso::day(to, fields);
    *to++ = L'T';
  }
  to = iso::hour(to, fields);
  if (is_local && kind == detail::kind::time) return to;
  *to++ = !is_local ? L'Z' : ahead < 0 ? L'-' : L'+';
  if (!is_local) return to;
  to = iso::pair(to, std::llabs(ahead) / 3600);
  *to++ = L':';
  return iso::pair(to, std::llabs(ahead) / 60 % 60);
}

}  // namespace ruvo::serializer
