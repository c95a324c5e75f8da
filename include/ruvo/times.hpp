#pragma once

// The two selectors of the calendar values.

namespace ruvo::times {

/// How seconds are broken down into calendar fields: LOCAL by the machine's zone, anything else in UTC.
enum HUSO : int { GMT = 0, LOCAL = 1 };

/// A calendar field. Any other number names no field, and is taken as such.
enum UNITS : int {
  SECONDS = 1,
  MINUTES = 2,
  HOURS = 3,
  DAYS = 4,      ///< day of the month
  MONTHS = 5,    ///< 1-12
  YEARS = 6,     ///< the full year
  WEEK_DAY = 7,  ///< 0 = Sunday
  YEAR_DAY = 8,  ///< from 0
};

}  // namespace ruvo::times
