// SPDX-License-Identifier: BSL-1.0
#pragma once

// A calendar that only knows how to go on to the next day.

namespace test {

struct counter {
  int year, month, day, week_day, year_day;

  static bool leap(int year) { return year % 400 == 0 || (year % 4 == 0 && year % 100 != 0); }
  int length() const {
    static const int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && leap(year) ? 29 : lengths[month - 1];
  }
  long number() const { return year * 10000L + month * 100 + day; }
  void next() {
    week_day = (week_day + 1) % 7;
    ++year_day;
    if (++day <= length()) return;
    day = 1;
    if (++month <= 12) return;
    month = 1;
    year_day = 0;
    ++year;
  }
};

}  // namespace test
