// SPDX-License-Identifier: BSL-1.0

// Differences between calendar values against counting, and the ends of periods.

#include <ruvo/datetime.hpp>
#include <ruvo/exc.hpp>

#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "time/counter.hpp"

using ruvo::date;
using ruvo::datetime;
namespace times = ruvo::times;

namespace {

TEST(differences, days_are_counted_days) {
  std::vector<long> days;
  for (test::counter day{1950, 1, 1, 0, 0}; day.year < 2051; day.next()) days.push_back(day.number());
  std::mt19937 random(4711);
  std::uniform_int_distribution<std::size_t> any(0, days.size() - 1);
  for (int i = 0; i < 5000; ++i) {
    const std::size_t a = any(random), b = any(random);
    const date from(days[a], i % 2 ? times::LOCAL : times::GMT);
    const date to(days[b], i % 3 ? times::LOCAL : times::GMT);
    ASSERT_EQ(ruvo::dates::diff_days(from, to), static_cast<int>(b) - static_cast<int>(a))
        << days[a] << ' ' << days[b];
    ASSERT_EQ(ruvo::dates::diff_months(from, to), -ruvo::dates::diff_months(to, from));
  }
}

TEST(differences, months_are_whole) {
  struct row {
    long from, to;
    int months;
  };
  const row rows[] = {
      {20240115, 20240115, 0}, {20240115, 20240214, 0},  {20240115, 20240215, 1},    {20240131, 20240229, 0},
      {20240131, 20240302, 1}, {20231231, 20240101, 0},  {20231231, 20241231, 12},   {20231231, 20241230, 11},
      {20240101, 20231231, 0}, {20240131, 20231231, -1}, {19000101, 20240101, 1488},
  };
  for (const row& r : rows) {
    EXPECT_EQ(ruvo::dates::diff_months(date(r.from), date(r.to)), r.months) << r.from << ' ' << r.to;
    EXPECT_EQ(ruvo::dates::diff_months(date(r.to), date(r.from)), -r.months) << r.from << ' ' << r.to;
  }
}

TEST(differences, times_of_day) {
  const ruvo::time morning(10, 0, 30), evening(21, 59, 29);
  EXPECT_EQ(times::diff_hours(morning, evening), 11);
  EXPECT_EQ(times::diff_minutes(morning, evening), 718);
  EXPECT_EQ(times::diff_hours(evening, morning), -11);
  EXPECT_EQ(times::diff_minutes(evening, morning), -718);
  ruvo::time next_day = morning;
  next_day += 24 * 60;
  EXPECT_EQ(times::diff_minutes(morning, next_day), 0);  // the day does not count
}

TEST(differences, instants_are_cut_and_saturated) {
  const datetime from(2024, 2, 28, 12, 0, 0), to(2024, 3, 1, 11, 59, 59);
  EXPECT_EQ(ruvo::datetimes::diff_days(from, to), 1);
  EXPECT_EQ(ruvo::datetimes::diff_hours(from, to), 47);
  EXPECT_EQ(ruvo::datetimes::diff_minutes(from, to), 48 * 60 - 1);
  EXPECT_EQ(ruvo::datetimes::diff_seconds(from, to), 48 * 3600 - 1);
  EXPECT_EQ(ruvo::datetimes::diff_days(to, from), -1);
  EXPECT_EQ(ruvo::datetimes::diff_hours(to, from), -47);

  constexpr int low = std::numeric_limits<int>::min(), high = std::numeric_limits<int>::max();
  const datetime first(std::numeric_limits<long long>::min()), last(std::numeric_limits<long long>::max());
  EXPECT_EQ(ruvo::datetimes::diff_seconds(datetime(0LL), datetime(3000000000LL)), high);
  EXPECT_EQ(ruvo::datetimes::diff_minutes(datetime(0LL), datetime(3000000000LL)), 50000000);
  EXPECT_EQ(ruvo::datetimes::diff_days(first, last), high);
  EXPECT_EQ(ruvo::datetimes::diff_days(last, first), low);
  EXPECT_THROW(ruvo::dates::diff_days(date(datetime(0LL)), static_cast<date>(last)),
               ruvo::exc::CalendarException);
}

TEST(periods, first_and_last_days) {
  struct row {
    long day, year, year_end, month, month_end, monday, sunday;
  };
  const row rows[] = {
      {20240229, 20240101, 20241231, 20240201, 20240229, 20240226, 20240303},
      {20240303, 20240101, 20241231, 20240301, 20240331, 20240226, 20240303},  // a Sunday
      {20240304, 20240101, 20241231, 20240301, 20240331, 20240304, 20240310},  // a Monday
      {20230101, 20230101, 20231231, 20230101, 20230131, 20221226, 20230101},
      {20241231, 20240101, 20241231, 20241201, 20241231, 20241230, 20250105},
      {19000215, 19000101, 19001231, 19000201, 19000228, 19000212, 19000218},
  };
  for (const times::HUSO huso : {times::GMT, times::LOCAL}) {
    for (const row& r : rows) {
      const date day(r.day, huso);
      EXPECT_EQ(ruvo::dates::first_day_of_year(day), r.year) << r.day;
      EXPECT_EQ(ruvo::dates::last_day_of_year(day), r.year_end) << r.day;
      EXPECT_EQ(ruvo::dates::first_day_of_month(day), r.month) << r.day;
      EXPECT_EQ(ruvo::dates::last_day_of_month(day), r.month_end) << r.day;
      EXPECT_EQ(ruvo::dates::first_day_of_week(day), r.monday) << r.day;
      EXPECT_EQ(ruvo::dates::last_day_of_week(day), r.sunday) << r.day;
      EXPECT_EQ(ruvo::dates::last_day_of_week(day).to_string("%T"), L"04:04:04");
      EXPECT_EQ(ruvo::dates::last_day_of_week(day).get_huso_horario(), huso);
    }
  }
}

TEST(values, own_text_goes_with_copies) {
  date day(20240229);
  EXPECT_TRUE(day.get_text().empty());
  day.set_text(L"vencimiento");
  date copy(day), assigned;
  assigned = day;
  EXPECT_EQ(copy.get_text(), L"vencimiento");
  EXPECT_EQ(assigned.get_text(), L"vencimiento");
  EXPECT_EQ(copy, date(20240229));
  copy += 1;
  copy = L"01-01-2024";
  EXPECT_EQ(copy.get_text(), L"vencimiento");
}

TEST(values, print_their_canonical_text) {
  const datetime instant(2024, 2, 29, 10, 11, 12);
  const date day(instant);
  const ruvo::time hour(instant);
  const auto print = [](const ruvo::lapse& value) { return value.print(); };
  EXPECT_EQ(print(instant), L"29-02-2024 10:11:12");
  EXPECT_EQ(print(ruvo::lapse(instant)), L"29-02-2024 10:11:12");
  EXPECT_EQ(print(day), L"29-02-2024");
  EXPECT_EQ(print(hour), L"10:11:12");
}

}  // namespace
