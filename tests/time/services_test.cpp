// SPDX-License-Identifier: BSL-1.0

// Calendar values on a thread whose services are not the default ones.

#include <ruvo/fake_context.hpp>
#include <ruvo/ruvo.hpp>

#include <functional>
#include <stdexcept>
#include <typeinfo>

#include <gtest/gtest.h>

namespace times = ruvo::times;

namespace {

class failing_context : public ruvo::fake_context {
 public:
  enum { works, reports, throws_own, throws_foreign } manner = reports;

  bool sistem_gmt_time(std::tm* record, long long seconds, ruvo::exception* err) const override {
    return ready(err) && fake_context::sistem_gmt_time(record, seconds, err);
  }
  bool sistem_gmt_lapse(long long& seconds, std::tm& record, ruvo::exception* err) const override {
    return ready(err) && fake_context::sistem_gmt_lapse(seconds, record, err);
  }
  long long get_system_ticks() const override {
    if (manner != reports) ready(nullptr);
    return fake_context::get_system_ticks();
  }

 private:
  bool ready(ruvo::exception* err) const {
    if (manner == throws_own) throw ruvo::exc::NullPointer();
    if (manner == throws_foreign) throw std::runtime_error("parado");
    if (manner == reports) ruvo::exc::CalendarException(7, L"parado").copy_on(err);
    return manner == works;
  }
};

TEST(services, the_clock_is_that_of_the_context) {
  ruvo::fake_context fake;
  fake.clock = 1709211909;
  fake.milliseconds = 999;
  fake.zone_offset = 3600;
  const ruvo::thread_scope scope(fake);
  EXPECT_EQ(ruvo::datetime().get_lapso(), 1709211909);
  EXPECT_EQ(ruvo::date(), 20240229);
  EXPECT_EQ(ruvo::time(times::LOCAL), 140509);
  EXPECT_EQ(ruvo::velda::date().get_day_number(), 2460370);
}

TEST(services, their_failures_come_through) {
  failing_context fake;
  const ruvo::thread_scope scope(fake);
  ruvo::datetime value(1709211909LL);
  const ruvo::lapse& instant = value;
  try {
    instant.get(times::DAYS);
    FAIL();
  } catch (const ruvo::exc::CalendarException& error) {
    EXPECT_EQ(error.get_code(), 7u);
    EXPECT_EQ(error.get_mensaje(), L"parado");
  }
  ruvo::exception err;
  EXPECT_EQ(value.get_gmt_model(&err).tm_mday, 0);
  EXPECT_EQ(err.get_code(), 7u);
  err.clear();
  EXPECT_TRUE(value.add(1, times::DAYS, &err));
  EXPECT_EQ(err.get_code(), 7u);
  err.clear();
  EXPECT_FALSE(value.parse(L"29-02-2024", "%d-%m-%Y", err));
  EXPECT_EQ(err.get_code(), 7u);
  EXPECT_EQ(value.get_lapso(), 1709211909);
  EXPECT_THROW(ruvo::date(20240229), ruvo::exc::CalendarException);
  EXPECT_THROW(value.to_string(), ruvo::exc::CalendarException);
}

TEST(services, a_failure_that_an_override_reports_is_the_one_that_is_thrown) {
  struct working_days : ruvo::date {
    using date::date;
    bool add(int n, times::UNITS unit, ruvo::exception* err) override {
      if (!date::add(n, unit, err)) return false;
      if (err) *err = ruvo::exc::BadArgument(L"calendario laboral");
      return true;
    }
  };
  failing_context fake;
  fake.manner = failing_context::works;
  const ruvo::thread_scope scope(fake);
  working_days day(20240229);
  fake.manner = failing_context::throws_own;
  EXPECT_THROW(static_cast<ruvo::date&>(day) += 1, ruvo::exc::BadArgument);
}

TEST(services, what_they_throw_is_a_failure_of_the_library) {
  failing_context fake;
  fake.manner = failing_context::works;
  const ruvo::thread_scope scope(fake);
  ruvo::datetime value(1709211909LL);
  ruvo::date day(20240229);
  ruvo::time hour(100000);
  ruvo::exception err;
  const auto raise = [&err](bool failed) {
    if (failed) err.raise();
  };
  std::tm record{};
  const std::function<void()> operations[] = {
      [] { ruvo::datetime(); },
      [] { ruvo::velda::date(); },
      [] { ruvo::date(20240229); },
      [] { ruvo::date(L"29-02-2024"); },
      [&] { value.get(times::DAYS); },
      [&] { value.to_string(); },
      [&] { value += 1; },
      [&] { static_cast<void>(static_cast<long>(day)); },
      [&] { day.set_day(1); },
      [&] { ruvo::datetime(day, hour); },
      [&] { ruvo::dates::diff_days(day, day); },
      [&] { ruvo::times::diff_hours(hour, hour); },
      [&] { raise(value.add(1, times::DAYS, &err)); },
      [&] { raise(value.gmt(record, err)); },
      [&] { raise(!value.parse(L"29-02-2024", "%d-%m-%Y", err)); },
  };
  for (const auto manner : {failing_context::throws_own, failing_context::throws_foreign}) {
    for (const auto& operation : operations) {
      fake.manner = manner;
      const auto number = &operation - operations;
      try {
        operation();
        ADD_FAILURE() << "none of " << number;
      } catch (const ruvo::exception& error) {
        const bool own = manner == failing_context::throws_own;
        EXPECT_EQ(typeid(error), own ? typeid(ruvo::exc::NullPointer) : typeid(ruvo::exc::CalendarException))
            << number;
        EXPECT_EQ(error.get_detail(), own ? L"" : L"parado") << number;
      }
      EXPECT_EQ(ruvo::var(day).to_string(), L"1709179444");  // the text of a value is there all the same
    }
  }
}

TEST(services, the_day_count_needs_none) {
  failing_context fake;
  const ruvo::thread_scope scope(fake);
  for (const auto manner : {failing_context::reports, failing_context::throws_own}) {
    fake.manner = manner;
    ruvo::velda::date day(20240228L);
    EXPECT_TRUE(day.is_null());
    fake.manner = failing_context::works;
    day = 20240228L;
    const long long before = day.get_lapso();
    fake.manner = manner;
    EXPECT_NO_THROW(day.add(1, times::DAYS));
    EXPECT_EQ(day.get_day_number(), 2460370);
    EXPECT_EQ(day.get_month_days(), 29);
    EXPECT_EQ(ruvo::velda::dates::last_day_of_week(day).get_day(), 3);
    EXPECT_EQ(ruvo::velda::date(day, times::LOCAL).get_day_number(), 2460370);
    EXPECT_EQ(ruvo::velda::date::get_last_day(2024, 2).get_day_number(), 2460370);
    EXPECT_EQ(day.get_lapso(), before);  // the instant could not follow
  }
}

}  // namespace
