// SPDX-License-Identifier: BSL-1.0

// The calendar itself: every day of two centuries against counting, and the arithmetic of the three types.

#include <ruvo/datetime.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/velda.hpp>

#include <cmath>
#include <ctime>
#include <limits>
#include <sstream>

#include <gtest/gtest.h>

#include "time/counter.hpp"

using ruvo::date;
using ruvo::datetime;
using test::counter;
namespace times = ruvo::times;

namespace {

constexpr long long day_seconds = 86400;

TEST(calendar, every_day_of_two_centuries) {
  counter expected{1900, 1, 1, 1, 0};  // a Monday
  datetime instant(1900, 1, 1, 23, 59, 58);
  ASSERT_EQ(instant.get_lapso(), -2208988800LL + day_seconds - 2);
  for (; expected.year < 2101; expected.next()) {
    const std::tm record = instant.get_model();
    ASSERT_EQ(record.tm_year + 1900, expected.year);
    ASSERT_EQ(record.tm_mon + 1, expected.month) << expected.year;
    ASSERT_EQ(record.tm_mday, expected.day) << expected.year << '-' << expected.month;
    ASSERT_EQ(record.tm_wday, expected.week_day) << expected.year << '-' << expected.month;
    ASSERT_EQ(instant.get(times::YEAR_DAY), expected.year_day);
    ASSERT_EQ(record.tm_yday, expected.year_day) << expected.year << '-' << expected.month;
    ASSERT_EQ(record.tm_hour * 10000 + record.tm_min * 100 + record.tm_sec, 235958);

    const date day(expected.year, expected.month, expected.day);
    ASSERT_EQ(static_cast<long>(day), expected.number());
    ASSERT_EQ(day.get_lapso(), instant.get_lapso() - 86398 + 4 * 3600 + 4 * 60 + 4);
    ASSERT_EQ(day.get_month_days(), expected.length());
    instant.hack_lapso() += day_seconds;
  }
}

TEST(calendar, far_years_keep_their_fields) {
  for (const long year : {-400L, -1L, 0L, 1L, 4L, 100L, 1582L, 9999L, 20000L}) {
    for (const long month : {1L, 2L, 3L, 12L}) {
      const datetime instant(year, month, 28, 1, 2, 3);
      EXPECT_EQ(instant.get_year(), year);
      EXPECT_EQ(instant.get_month(), month);
      EXPECT_EQ(instant.get_day(), 28);
      EXPECT_EQ(instant.get_hour(), 1);
    }
  }
}

TEST(calendar, years_beyond_the_record_fail) {
  datetime far;
  far.set_lapso(9000000000000000000LL);
  EXPECT_THROW(far.get_year(), ruvo::exc::CalendarException);
  ruvo::exception err;
  EXPECT_TRUE(far.add(1, times::DAYS, &err));
  EXPECT_EQ(err.get_raw_code(), 0xEBB90BB9ul);
  EXPECT_EQ(err.get_mensaje(), L"Error indeterminado de calendario");
  EXPECT_EQ(far.get_lapso(), 9000000000000000000LL);
  EXPECT_TRUE(far.add(1, times::DAYS));
  EXPECT_THROW(far += 1, ruvo::exc::CalendarException);
  EXPECT_THROW(datetime(date(20240229), ruvo::time(far)), ruvo::exc::CalendarException);
}

TEST(calendar, the_ends_of_the_numbers) {
  for (const long long seconds :
       {std::numeric_limits<long long>::min(), std::numeric_limits<long long>::max()}) {
    for (const times::HUSO huso : {times::GMT, times::LOCAL}) {
      datetime far(0LL, huso);
      far.set_lapso(seconds);
      EXPECT_THROW(far.get_year(), ruvo::exc::CalendarException);
    }
  }
  constexpr int greatest = std::numeric_limits<int>::max();
  EXPECT_TRUE((date(20240101) -= -greatest - 1) == ((date(20240101) += greatest) += 1));
  EXPECT_EQ(datetime(date::get_last_day(greatest, 12)).to_string("%F"), L"2147483647-12-31");
  EXPECT_EQ(datetime(date::get_last_day(2024, greatest)).to_string("%F"), L"178958994-07-31");
  for (const long far : {std::numeric_limits<long>::min(), std::numeric_limits<long>::max()}) {
    if (far == greatest) continue;
    EXPECT_THROW(date::get_last_day(far, 12), ruvo::exc::CalendarException);
    EXPECT_THROW(date::get_last_day(2024, far), ruvo::exc::CalendarException);
    EXPECT_NO_THROW(ruvo::velda::date::get_last_day(far, far));
  }
}

TEST(calendar, numbers) {
  EXPECT_EQ(date(20240229).to_string(), L"29-02-2024");
  if (sizeof(long) == 4) {
    EXPECT_THROW(date(20240229000000LL), ruvo::exc::CalendarException);
  }
  EXPECT_EQ(static_cast<long>(date(2024, 1, 32)), 20240201);
  EXPECT_EQ(static_cast<long>(ruvo::time(123456)), 123456);
  EXPECT_EQ(ruvo::time(123456).in_seconds(), 45296);
  EXPECT_DOUBLE_EQ(ruvo::time(123000).in_minutes(), 750);
  EXPECT_DOUBLE_EQ(ruvo::time(123000).in_hours(), 12.5);
  EXPECT_EQ(static_cast<long>(ruvo::time().set_in_seconds(45296)), 123456);
  EXPECT_EQ(static_cast<long>(ruvo::time(250000)), 10000);
  EXPECT_EQ(static_cast<double>(datetime(86399.9)), 86399.0);
  EXPECT_EQ(datetime(-86399.9).get_lapso(), -86399);
  EXPECT_EQ(datetime(20240229, 123456).to_string(), L"29-02-2024 12:34:56");
  EXPECT_EQ(datetime(20240229).to_string(), L"29-02-2024 00:00:00");
  EXPECT_EQ(datetime(5LL).get_seconds(), 5);
  EXPECT_TRUE(datetime(5LL) == 5);
}

TEST(calendar, null_and_empty) {
  ruvo::lapse value;
  EXPECT_FALSE(value.empty());
  value.set_lapso(std::nan(""));
  EXPECT_TRUE(value.is_null());
  EXPECT_TRUE(value.empty());
  value = 0;
  EXPECT_FALSE(value.is_null());
  EXPECT_TRUE(value.empty());
  EXPECT_FALSE(ruvo::time(0).empty());  // midnight is a value
  for (const int unit : {0, 9, -1}) EXPECT_EQ(value.get(static_cast<times::UNITS>(unit)), 0);
}

TEST(calendar, a_day_lies_at_four_past_four) {
  const datetime built = date(20240229);
  EXPECT_EQ(built.to_string(), L"29-02-2024 04:04:04");
  const datetime late(2024, 2, 29, 23, 59, 59);
  EXPECT_EQ(static_cast<datetime>(static_cast<date>(late)), built);
  EXPECT_EQ(static_cast<long>(static_cast<ruvo::time>(late)), 235959);
  EXPECT_EQ(datetime(date(20240229), ruvo::time(123456)).to_string(), L"29-02-2024 12:34:56");
  date moved(20240229);
  moved.add(30, times::HOURS);
  EXPECT_EQ(moved, 20240301);
  EXPECT_EQ(datetime(moved).get_hour(), 10);
  EXPECT_EQ(datetime(moved.reset_time()).get_hour(), 4);
}

TEST(calendar, each_type_moves_by_its_own_unit) {
  date day(2024, 1, 31);
  EXPECT_EQ(day += 1, 20240201);
  EXPECT_EQ(day--, 20240201);
  EXPECT_EQ(--day, 20240130);
  EXPECT_EQ(day += 366, 20250130);
  ruvo::time hour(10, 0, 0);
  EXPECT_EQ(hour += 1, 100100);
  EXPECT_EQ(hour -= 2, 95900);
  datetime instant(2024, 2, 29, 23, 30, 0);
  EXPECT_EQ((++instant).to_string(), L"01-03-2024 00:30:00");
  EXPECT_EQ((instant -= 1).to_string(), L"29-02-2024 23:30:00");
}

TEST(calendar, fields_are_moved_and_set_with_carry) {
  struct row {
    const char* name;
    bool set;
    int n;
    times::UNITS unit;
    const wchar_t* expected;
  };
  constexpr int greatest = std::numeric_limits<int>::max(), least = std::numeric_limits<int>::min();
  const row rows[] = {
      {"31 January and a month", false, 1, times::MONTHS, L"02-03-2024 10:20:30"},
      {"a year back in months", false, -13, times::MONTHS, L"31-12-2022 10:20:30"},
      {"a year", false, 1, times::YEARS, L"31-01-2025 10:20:30"},
      {"a second too many", false, 86400, times::SECONDS, L"01-02-2024 10:20:30"},
      {"minutes back", false, -21, times::MINUTES, L"31-01-2024 09:59:30"},
      {"week day moves nothing", false, 3, times::WEEK_DAY, L"31-01-2024 10:20:30"},
      {"as many seconds as there are", false, greatest, times::SECONDS, L"18-02-2092 13:34:37"},
      {"as many seconds back", false, least, times::SECONDS, L"13-01-1956 07:06:22"},
      {"as many minutes", false, greatest, times::MINUTES, L"23-02-6107 12:27:30"},
      {"as many hours", false, greatest, times::HOURS, L"09-11-247007 17:20:30"},
      {"as many days", false, greatest, times::DAYS, L"10-08-5881634 10:20:30"},
      {"as many months", false, greatest, times::MONTHS, L"31-08-178958994 10:20:30"},
      {"as low a month", true, least, times::MONTHS, L"01-05--178954947 10:20:30"},
      {"set month counts from one", true, 12, times::MONTHS, L"31-12-2024 10:20:30"},
      {"set month with a short one", true, 2, times::MONTHS, L"02-03-2024 10:20:30"},
      {"set year is full", true, 1999, times::YEARS, L"31-01-1999 10:20:30"},
      {"set day beyond", true, 32, times::DAYS, L"01-02-2024 10:20:30"},
      {"set day of the year changes nothing", true, 1, times::YEAR_DAY, L"31-01-2024 10:20:30"},
  };
  for (const row& r : rows) {
    datetime value(2024, 1, 31, 10, 20, 30);
    ruvo::exception err;
    EXPECT_FALSE(r.set ? value.set(r.n, r.unit, &err) : value.add(r.n, r.unit, &err)) << r.name;
    EXPECT_TRUE(err.OK()) << r.name;
    EXPECT_EQ(value.to_string(), r.expected) << r.name;
  }
  EXPECT_EQ(date(2024, 5, 6).set_day(7).set_month(8).set_year(2023), 20230807);
  EXPECT_EQ(ruvo::time(1, 2, 3).set_hour(4).set_minutes(5).set_seconds(6), 40506);
}

TEST(calendar, comparing) {
  const date early(20240228), late(20240229);
  EXPECT_EQ(early.compare(late), 2);
  EXPECT_EQ(late.compare(early), 1);
  EXPECT_EQ(late.compare(late), 0);
  EXPECT_TRUE(early < late && late >= early && early != late && late == 20240229 && 20240228 < late);
  EXPECT_TRUE(ruvo::time(100000) > 95959);
  const datetime noon(2024, 2, 29, 12, 0, 0);
  EXPECT_EQ(noon.compare(late), 0);  // by that part only
  EXPECT_EQ(noon.compare(early), 1);
  EXPECT_EQ(noon.compare(ruvo::time(120001)), 2);
  EXPECT_EQ(noon.compare(datetime(2024, 2, 29, 12, 0, 1)), 2);
  EXPECT_TRUE(noon == late && late == noon && noon == ruvo::time(120000));
  ruvo::time other_day(12, 0, 0);
  other_day += 1440;
  EXPECT_EQ(other_day, ruvo::time(120000));
  EXPECT_TRUE(datetime(5LL) < 5.5 && 4.5 < datetime(5LL) && datetime(5ULL) == 5);
  EXPECT_FALSE(datetime(5LL) == 5.5);
  EXPECT_FALSE(datetime(-1LL) == std::numeric_limits<double>::quiet_NaN());
}

TEST(calendar, streams_write_the_canonical_text) {
  std::wostringstream out;
  out << date(20240229) << L'|' << ruvo::time(10203) << L'|' << datetime(0LL);
  EXPECT_EQ(out.str(), L"29-02-2024|01:02:03|01-01-1970 00:00:00");
}

// Every hour of some years, in the machine's zone whichever it is.
TEST(local_time, comes_back_from_its_fields) {
  for (const int year : {1969, 1999, 2020, 2024, 2037}) {
    for (int hour = 0; hour < 366 * 24; ++hour) {
      datetime instant(datetime(year, 1, 1, 0, 30, 0).get_lapso() + hour * 3600LL, times::LOCAL);
      const std::tm record = instant.get_local_model();
      const datetime built(record.tm_year + 1900, record.tm_mon + 1, record.tm_mday, record.tm_hour,
                           record.tm_min, record.tm_sec, times::LOCAL);
      const long long difference = instant.get_lapso() - built.get_lapso();
      // The second of two instants that a repeated hour names is built as the first.
      ASSERT_TRUE(difference == 0 || (difference > 0 && difference <= 2 * 3600)) << instant;
      ASSERT_EQ(built.to_string(), instant.to_string());
      if (difference == 0) continue;
      EXPECT_NE(built.get_local_model().tm_isdst, record.tm_isdst) << instant;
    }
  }
}

// The hours that the clock changes skip and repeat, where the machine has the clock of central Europe.
TEST(local_time, skipped_and_repeated_hours) {
  const auto hour_at = [](long long seconds) { return datetime(seconds, times::LOCAL).get_hour(); };
  const long long winter = datetime(2024, 1, 1).get_lapso();
  const long long summer = datetime(2024, 7, 1).get_lapso();
  if (hour_at(winter) != 1 || hour_at(summer) != 2) GTEST_SKIP() << "another zone";

  const datetime before(2024, 3, 31, 1, 59, 59, times::LOCAL);
  const datetime skipped(2024, 3, 31, 2, 30, 0, times::LOCAL);
  const datetime after(2024, 3, 31, 3, 30, 0, times::LOCAL);
  EXPECT_EQ(before.format(L"%T %z"), L"01:59:59 +0100");
  EXPECT_EQ(skipped.format(L"%T %z"), L"03:30:00 +0200");
  EXPECT_EQ(skipped, after);
  datetime back(2024, 3, 31, 3, 0, 0, times::LOCAL);
  EXPECT_EQ((--back).format(L"%T %z"), L"01:00:00 +0100");
  EXPECT_EQ((--back).format(L"%T %z"), L"00:00:00 +0100");
  back = after;
  back.add(-31, times::MINUTES);
  EXPECT_EQ(back.format(L"%T %z"), L"01:59:00 +0100");
  EXPECT_EQ((++back).format(L"%T %z"), L"03:59:00 +0200");

  datetime repeated(2024, 10, 27, 2, 30, 0, times::LOCAL);
  EXPECT_EQ(repeated.format(L"%T %z"), L"02:30:00 +0200");
  repeated.hack_lapso() += 3600;
  EXPECT_EQ(repeated.format(L"%T %z"), L"02:30:00 +0100");
  datetime ahead(repeated);
  ahead.add(1, times::MINUTES);
  EXPECT_EQ(ahead.format(L"%T %z"), L"02:31:00 +0200");  // the first of the two
  repeated.add(1, times::DAYS);                          // by the fields
  EXPECT_EQ(repeated.format(L"%d %T %z"), L"28 02:30:00 +0100");
}

TEST(local_time, a_day_keeps_its_fields_through_clock_changes) {
  date day(2024, 1, 1, times::LOCAL);
  counter expected{2024, 1, 1, 1, 0};
  for (; expected.year < 2025; expected.next(), ++day) {
    ASSERT_EQ(day, expected.number());
    ASSERT_EQ(datetime(day).to_string("%H%M%S"), L"040404");
  }
}

}  // namespace
