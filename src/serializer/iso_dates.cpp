// SPDX-License-Identifier: BSL-1.0

// Dates and times in ISO 8601, from the calendar's fields.

#include "serializer/iso_dates.hpp"

#include <ruvo/datetime.hpp>
#include <ruvo/times.hpp>

#include <charconv>
#include <cstdlib>
#include <ctime>

#include "base/civil.hpp"
#include "time/fields.hpp"
#include "values/cell.hpp"

namespace ruvo::serializer {

using detail::cell;
using detail::kind;

namespace {

char* put_pair(char* to, long long number) noexcept {
  *to++ = static_cast<char>('0' + number / 10 % 10);
  *to++ = static_cast<char>('0' + number % 10);
  return to;
}

char* put_day(char* to, const std::tm& fields) noexcept {
  const long long year = fields.tm_year + 1900LL, size = std::llabs(year);
  if (year < 0) *to++ = '-';
  to = size > 9999 ? std::to_chars(to, to + 20, size).ptr : put_pair(put_pair(to, size / 100), size);
  *to++ = '-';
  to = put_pair(to, fields.tm_mon + 1);
  *to++ = '-';
  return put_pair(to, fields.tm_mday);
}

char* put_hour(char* to, const std::tm& fields) noexcept {
  to = put_pair(to, fields.tm_hour);
  *to++ = ':';
  to = put_pair(to, fields.tm_min);
  *to++ = ':';
  return put_pair(to, fields.tm_sec);
}

char* put_offset(char* to, long long seconds) noexcept {
  *to++ = seconds < 0 ? '-' : '+';
  to = put_pair(to, std::llabs(seconds) / 3600);
  *to++ = ':';
  return put_pair(to, std::llabs(seconds) / 60 % 60);
}

char* put_utc(char* to) noexcept {
  *to++ = 'Z';
  return to;
}

std::tm fields_in(times::HUSO mode, long long seconds) {
  return calendar::fields_of(datetime(seconds, mode));
}

char* print_instant(char* to, long long seconds, bool is_local) {
  std::tm fields = fields_in(is_local ? times::LOCAL : times::GMT, seconds);
  const long long ahead = civil::build(fields) - seconds;
  const bool has_form = ahead % 60 == 0 && std::llabs(ahead) < civil::seconds_per_day;
  if (!has_form) fields = fields_in(times::GMT, seconds);
  to = put_day(to, fields);
  *to++ = 'T';
  to = put_hour(to, fields);
  return is_local && has_form ? put_offset(to, ahead) : put_utc(to);
}

}  // namespace

char* print_iso(char* to, const var& value, bool in_utc) {
  const long long seconds = cell::integer(value);
  if (seconds == -1) return to;
  const auto mode = static_cast<times::HUSO>(cell::mode(value));
  const bool is_local = mode == times::LOCAL && !in_utc;
  switch (cell::kind_of(value)) {
    case kind::date:
      return put_day(to, fields_in(mode, seconds));
    case kind::time:
      to = put_hour(to, fields_in(is_local ? times::LOCAL : times::GMT, seconds));
      return is_local ? to : put_utc(to);
    default:
      return print_instant(to, seconds, is_local);
  }
}

}  // namespace ruvo::serializer
