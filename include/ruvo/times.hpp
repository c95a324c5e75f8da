// SPDX-License-Identifier: BSL-1.0
#pragma once

// The two selectors of the calendar values: the mode (UTC or local) and the field. The time of day is in
// <ruvo/time.hpp>.

// Macros of others.
#include <ruvo/names_aside.hpp>

/// The selectors of the calendar values, and what lies between two times of day.
namespace ruvo::times {

/// How seconds are broken down into calendar fields: LOCAL by the machine's zone, anything else in UTC.
enum HUSO : int {
  GMT = 0,    ///< UTC
  LOCAL = 1,  ///< the machine's zone, with its daylight saving time
};

/// A calendar field. Any other number names no field, and is taken as such.
enum UNITS : int {
  SECONDS = 1,   ///< 0-59
  MINUTES = 2,   ///< 0-59
  HOURS = 3,     ///< 0-23
  DAYS = 4,      ///< day of the month, 1-31
  MONTHS = 5,    ///< 1-12
  YEARS = 6,     ///< the full year
  WEEK_DAY = 7,  ///< 0 = Sunday
  YEAR_DAY = 8,  ///< day of the year, from 0
};

}  // namespace ruvo::times

#include <ruvo/names_back.hpp>
