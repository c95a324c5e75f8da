// SPDX-License-Identifier: BSL-1.0
#pragma once

// The dates of HTTP and of mail.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ruvo::wire {

/// What a date says of its writer's zone.
enum class zone_of_writer : std::uint8_t {
  known,
  unstated,  ///< "-0000", or none: the time is UTC's.
  foreign    ///< A name that says nothing, which RFC 5322 has for "-0000" in its 4.3.
};

/// An instant and the zone that its writer was in.
struct zoned_instant {
  long long seconds = 0;  ///< Since 1970-01-01 00:00:00 UTC.
  int minutes_east = 0;   ///< Of UTC; 0 where the zone is not known.
  zone_of_writer zone = zone_of_writer::known;
};

/// RFC 9110, 5.6.7: "Sun, 06 Nov 1994 08:49:37 GMT". Empty for an instant outside of the years 0 to 9999.
std::wstring http_date(long long seconds);
/// Reads the three forms of RFC 9110: the one above, "Sunday, 06-Nov-94 08:49:37 GMT", whose year is the last
/// one of these two digits that is at most 50 years after `now`, and "Sun Nov  6 08:49:37 1994". Seconds
/// since 1970; nothing for anything else. Names are compared without regard to case, and which day of the
/// week it says is not compared with the date. A leap second is the second behind it.
std::optional<long long> read_http_date(std::wstring_view text, long long now);

/// RFC 5322, 3.3: "Sun, 06 Nov 1994 09:49:37 +0100". Empty as above, and for a zone of 100 hours or more.
std::wstring mail_date(const zoned_instant& when);
/// Reads dates of RFC 5322, also in the obsolete forms of its 4.3: years of two or three digits, names of
/// zones, comments in "()"; the day of the week, seconds and, as some have it, the zone may be left out.
std::optional<zoned_instant> read_mail_date(std::wstring_view text);

/// The number of a month, 1 to 12, whose English name begins with these three letters; 0 for none.
int month_number(std::wstring_view name) noexcept;

/// Seconds since 1970 of a date of the calendar, or nothing for one that it does not have. A second of 60 is
/// a leap second.
std::optional<long long> seconds_of(long long year, int month, int day, int hour, int minute, int second);

}  // namespace ruvo::wire
