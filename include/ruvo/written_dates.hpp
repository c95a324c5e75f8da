// SPDX-License-Identifier: BSL-1.0
#pragma once

// Dates as people write them in Spanish: "3/2/2024", "sábado, 3 de febrero de 2024 a las 10:30".
//
//   const auto read = ruvo::dates::parse_date(typed);
//   if (!read) show(ruvo::dates::message_of(read), read.position);

#include <ruvo/api.hpp>
#include <ruvo/date.hpp>
#include <ruvo/datetime.hpp>
#include <ruvo/lapse.hpp>
#include <ruvo/times.hpp>

#include <cstddef>
#include <string>
#include <string_view>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo::dates {

/// Which part of a date is wrong.
enum class date_field {
  none,      ///< None.
  week_day,  ///< The name of the day.
  day,       ///< The day of the month.
  month,     ///< The month.
  year,      ///< The year.
  hour,      ///< The hour.
  minute,    ///< The minutes.
  second,    ///< The seconds.
  text,      ///< Text that is no part of a date, or a separator.
};

/// What is wrong with it.
enum class date_fault {
  none,           ///< Nothing.
  missing,        ///< It is not there.
  unknown,        ///< There is something else in its place.
  out_of_range,   ///< There is none with that number: 13 of a month, 29 of February 2023.
  contradiction,  ///< The day of the week is that of another date.
};

/// How a date is read.
struct date_options {
  /// The first of the hundred years that two digits stand for: 69 is 1969 and 68 is 2068, as in
  /// lapse::parse().
  int first_short_year = 1969;
  /// Whether a time may stand behind the date.
  bool takes_time = true;
};

/// What parse_date() read.
struct parsed_date {
  date_field field = date_field::none;  ///< The first that is wrong; the numbers are of use where none is.
  date_fault fault = date_fault::none;  ///< What is wrong with it.
  /// Where the field stands or should stand, counted from 1 in units of the text; 0 where nothing is wrong.
  std::size_t position = 0;
  int year = 0, month = 0, day = 0;      ///< Full years; months and days count from 1.
  bool has_time = false;                 ///< Whether a time stands behind the date.
  int hour = 0, minute = 0, second = 0;  ///< 0 to 23, 0 to 59.

  /// Whether a date was read.
  explicit operator bool() const noexcept { return fault == date_fault::none; }
  /// The day, and the instant that the fields name in the mode. A wrong date throws exc::CalendarException
  /// with the message and the position (serializer::failure_position()).
  KESTA_API date to_date(times::HUSO huso = lapse::huso_horario) const;
  KESTA_API datetime to_datetime(times::HUSO huso = lapse::huso_horario) const;
};

/// Reads the whole text as a date of the years 1 to 9999. Linear in its length; depends on no locale.
///
/// The date is day, month and year, the month a number or its Spanish name, whole or cut to three letters or
/// more, with "/", "-", ".", "de", "del" or blanks between them, before the year also ",", if the month is a
/// name, and the same sign twice where all are numbers: "3/2/2024", "03-02-24", "3 feb. 2024", "3 febrero,
/// 2024", "1.º de mayo de 2024", "primero de mayo de 2024". Or it is a year of four digits, month and day:
/// "2024-02-03". The day of the week may stand before it, "el" before
/// that; it has to be right. A time of day may stand behind, also behind ",", "a las" or "T": "10:30",
/// "10.30 h", "10:30:15", "10 h", "5 p. m.". Case and accents do not count.
[[nodiscard]] KESTA_API parsed_date parse_date(std::wstring_view text, const date_options& options = {});

/// What is wrong, in Spanish, for people: "Falta el mes (posición 3)". Empty when nothing is.
KESTA_API std::wstring message_of(const parsed_date& found);

}  // namespace ruvo::dates

#include <ruvo/names_back.hpp>
