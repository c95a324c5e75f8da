// SPDX-License-Identifier: BSL-1.0

// The day count: its two formulas against other statements of them, and the days that they disagree on.

#include <ruvo/ruvo.hpp>

#include <functional>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "time/counter.hpp"

namespace times = ruvo::times;
namespace velda = ruvo::velda;

namespace {

int floor_div(long long a, long long b) { return static_cast<int>(a / b - (a % b < 0)); }

/// The number of a day, in whole numbers: x is a count of 1200ths, and what is 1.75 or 0.75 in it of
/// quarters.
int restated(int year, int month, int day) {
  const long long x = 1200LL * year + 100LL * month - 285;
  const int a = floor_div(4LL * floor_div(367 * x, 1200) - 7LL * floor_div(x, 1200) + 4LL * day, 4);
  const int b = floor_div(3LL * floor_div(x, 120000), 4);
  return a - b + 1721115;
}

int number_of(int year, int month, int day) { return velda::date(year, month, day).get_day_number(); }

long fields_of(const velda::date& value) {
  int year = 0, month = 0, day = 0;
  value.get(year, month, day);
  return year * 10000L + month * 100 + day;
}

constexpr int first_number = 2415021;  // 1 January 1900
constexpr long exact_from = 20000301, exact_to = 21000228;

TEST(velda, numbers_read_as_the_days_of_the_calendar) {
  test::counter expected{1900, 1, 1, 1, 0};
  velda::date value;
  for (int number = first_number; expected.year < 2200; expected.next(), ++number) {
    value.set_day_number(number);
    ASSERT_EQ(fields_of(value), expected.number());
    ASSERT_EQ(value.get_week_day(), expected.week_day) << expected.number();
    ASSERT_EQ(value.get(times::YEAR_DAY), expected.year_day) << expected.number();
    ASSERT_EQ(value.get_month_days(), expected.length()) << expected.number();
    ASSERT_EQ(static_cast<long>(value), expected.number());
  }
}

TEST(velda, setting_follows_the_formula) {
  test::counter day{1900, 1, 1, 1, 0};
  velda::date value;
  for (int number = first_number; day.year < 2200; day.next(), ++number) {
    ASSERT_EQ(value.set(day.year, day.month, day.day), restated(day.year, day.month, day.day));
    const bool exact = day.number() >= exact_from && day.number() <= exact_to;
    ASSERT_EQ(value.get_day_number(), exact ? number : number + 1) << day.number();
    ASSERT_EQ(static_cast<long>(value), day.number());  // the instant is that of the day set
  }
  std::mt19937 random(20240229);
  std::uniform_int_distribution<int> year(-4000, 12000), month(-50, 50), days(-5000, 5000);
  for (int i = 0; i < 20000; ++i) {
    const int y = year(random), m = month(random), d = days(random);
    ASSERT_EQ(value.set(y, m, d), restated(y, m, d)) << y << '-' << m << '-' << d;
  }
}

TEST(velda, anchors) {
  EXPECT_EQ(number_of(2024, 3, 1), 2460371);
  EXPECT_EQ(number_of(2024, 2, 29), 2460370);
  EXPECT_EQ(number_of(1999, 12, 31), 2451545);
  EXPECT_EQ(number_of(2000, 2, 29), 2451605);
  EXPECT_EQ(number_of(2000, 3, 1), 2451605);
  EXPECT_EQ(fields_of(velda::date(2024, 2, 29)), 20240229);
  EXPECT_EQ(fields_of(velda::date(1999, 12, 31)), 20000101);
  // Far away the 16 bits of the formula show.
  EXPECT_EQ(fields_of(velda::date().set_day_number(13700000)), -32739 * 10000 - 4173 * 100 + 13121);
}

TEST(velda, moving_carries) {
  struct row {
    const char* name;
    long from;
    int n;
    times::UNITS unit;
    long expected;
  };
  const row rows[] = {
      {"over the end of a year", 20231231, 1, times::DAYS, 20240101},
      {"over a leap day", 20240228, 2, times::DAYS, 20240301},
      {"back over the end of a year", 20240101, -1, times::DAYS, 20231231},
      {"a month", 20240115, 1, times::MONTHS, 20240215},
      {"over December", 20241115, 2, times::MONTHS, 20250115},
      {"the 31st of a short month", 20240331, 1, times::MONTHS, 20240501},
      {"a year", 20240630, 10, times::YEARS, 20340630},
      {"by hours, not at all", 20240630, 48, times::HOURS, 20240630},
      {"by hours, before 2000", 19950615, 0, times::HOURS, 19950617},
      {"by no days, before 2000", 19950615, 0, times::DAYS, 19950617},
  };
  for (const row& r : rows) {
    velda::date value(r.from);
    ruvo::exception err;
    EXPECT_FALSE(value.add(r.n, r.unit, &err)) << r.name;
    EXPECT_TRUE(err.OK()) << r.name;
    EXPECT_EQ(fields_of(value), r.expected) << r.name;
  }
}

TEST(velda, setting_a_field) {
  velda::date value(2024, 2, 29);
  EXPECT_EQ(fields_of(value.set_day(1).set_month(7).set_year(2031)), 20310701);
  EXPECT_FALSE(value.set(32, times::DAYS));
  EXPECT_EQ(fields_of(value), 20310801);
  EXPECT_FALSE(value.set(5, times::HOURS));
  EXPECT_EQ(fields_of(value), 20310801);
  EXPECT_EQ(value.get(times::HOURS), 4);
}

TEST(velda, assigning_keeps_the_mode) {
  velda::date value(times::LOCAL);
  const std::function<void()> assignments[] = {
      [&] { value = 20240229; },
      [&] { value = 20240229L; },
      [&] { value = "29-02-2024"; },
      [&] { value = L"29-02-2024"; },
      [&] { value = std::string("29-02-2024"); },
      [&] { value = std::wstring(L"29-02-2024"); },
      [&] { value = ruvo::date(20240229, times::LOCAL); },
      [&] { value = ruvo::datetime(2024, 2, 29, 23, 0, 0, times::LOCAL); },
      [&] { value = ruvo::xvar(ruvo::date(20240229, times::LOCAL)); },
  };
  for (const auto& assign : assignments) {
    value.set(1, 1, 1);
    assign();
    EXPECT_EQ(value.get_day_number(), 2460370);
    EXPECT_EQ(static_cast<long>(value), 20240229);
    EXPECT_EQ(value.get_huso_horario(), times::LOCAL);
  }
  EXPECT_THROW(value = "31-02-2024", ruvo::exc::CalendarException);
  EXPECT_EQ(value.get_day_number(), 2460370);
}

// Through the types above it the number moves as well.
TEST(velda, used_as_what_it_derives_from) {
  velda::date value(2023, 12, 31);
  ruvo::date& day = value;
  day += 1;
  EXPECT_EQ(value.get_day_number(), number_of(2024, 1, 1));
  --day;
  day.set_month(11);
  EXPECT_EQ(day.get_day(), 1);
  EXPECT_EQ(value.get_day_number(), number_of(2023, 12, 1));
  ruvo::lapse& instant = value;
  EXPECT_EQ(instant.get(times::MONTHS), 12);
  ruvo::exception err;
  EXPECT_TRUE(instant.parse(L"29/02/2024", "%d/%m/%Y", err));
  EXPECT_EQ(value.get_day_number(), 2460370);
  EXPECT_EQ(day.to_string(), L"29-02-2024");
  EXPECT_FALSE(instant.parse(L"30/02/2024", "%d/%m/%Y", err));
  EXPECT_EQ(value.get_day_number(), 2460370);
}

TEST(velda, construction) {
  for (const velda::date& value :
       {velda::date(20240229), velda::date("29-02-2024"), velda::date(L"29-02-2024"),
        velda::date(std::string("20240229"), times::LOCAL, velda::date::velda),
        velda::date(std::wstring(L"2024-02-29"), times::GMT, velda::date::sql_format),
        velda::date(velda::date(20240229), times::LOCAL), velda::date(2024, 1, 60)}) {
    EXPECT_EQ(value.get_day_number(), 2460370);
    EXPECT_EQ(value.to_string("%F %T"), L"2024-02-29 04:04:04");
  }
  EXPECT_EQ(velda::date(velda::date(20240229), times::LOCAL).get_huso_horario(), times::LOCAL);
  EXPECT_EQ(velda::date(velda::date(20240229, times::LOCAL)).get_huso_horario(), times::LOCAL);
  EXPECT_EQ(static_cast<long>(velda::date()), static_cast<long>(ruvo::date()));
  EXPECT_THROW(velda::date("31-02-2024"), ruvo::exc::CalendarException);
  EXPECT_EQ(velda::date::get_last_day(2023, 12).get_day_number(), number_of(2023, 12, 31));
  EXPECT_EQ(velda::date::get_last_day(2024, 14).get_day_number(), number_of(2025, 2, 28));
}

TEST(velda, both_ends_count) {
  const velda::date a(2024, 2, 28), b(2024, 3, 1);
  EXPECT_EQ(velda::dates::diff_days(a, a), 1);
  EXPECT_EQ(velda::dates::diff_days(a, b), 3);
  EXPECT_EQ(velda::dates::diff_days(b, a), -1);
}

TEST(velda, first_and_last_days) {
  test::counter expected{1900, 1, 1, 1, 0};
  velda::date day;
  for (int number = first_number; expected.year < 2200; expected.next(), ++number) {
    day.set_day_number(number);
    const velda::date month = velda::dates::first_day_of_month(day);
    const velda::date year = velda::dates::first_day_of_year(day);
    const velda::date monday = velda::dates::first_day_of_week(day);
    ASSERT_EQ(number - month.get_day_number(), expected.day - 1);
    ASSERT_EQ(number - year.get_day_number(), expected.year_day);
    ASSERT_EQ(velda::dates::diff_days(month, velda::dates::last_day_of_month(day)), expected.length());
    ASSERT_EQ(velda::dates::diff_days(year, velda::dates::last_day_of_year(day)),
              365 + test::counter::leap(expected.year));
    ASSERT_EQ(monday.get_week_day(), 1);
    ASSERT_LT(number - monday.get_day_number(), 7);
    ASSERT_GE(number, monday.get_day_number());
    ASSERT_EQ(velda::dates::diff_days(monday, velda::dates::last_day_of_week(day)), 7);
  }
}

// Nothing overflows, whatever the number.
TEST(velda, survives_any_number) {
  constexpr int low = std::numeric_limits<int>::min(), high = std::numeric_limits<int>::max();
  for (const int n : {low, low + 1, -1721119, -1, 0, 1, 1721119, 12000000, 13700000, high - 1, high}) {
    velda::date value(2024, 2, 29);
    value.set_day_number(n);
    EXPECT_EQ(value.get_day_number(), n);
    EXPECT_EQ(fields_of(value), fields_of(velda::date(value)));
    EXPECT_FALSE(value.add(n, times::DAYS) || value.add(n, times::MONTHS) || value.add(n, times::YEARS));
    value.set(n, n, n);
    EXPECT_NO_THROW(velda::dates::last_day_of_week(value));
    EXPECT_NO_THROW(velda::dates::last_day_of_year(value));
    EXPECT_NO_THROW(value.get(times::YEAR_DAY));
  }
  velda::date value;
  EXPECT_EQ(value.set(high, high, high), high);
  EXPECT_EQ(value.set(low, low, low), low);
}

}  // namespace
