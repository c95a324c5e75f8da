// Calendar values on a thread whose services are not the default ones.

#include <ruvo/fake_context.hpp>
#include <ruvo/ruvo.hpp>

#include <gtest/gtest.h>

namespace times = ruvo::times;

namespace {

class failing_context : public ruvo::fake_context {
 public:
  bool failing = true;

  bool sistem_gmt_time(std::tm* record, long long seconds, ruvo::exception* err) const override {
    return failing ? refuse(err) : fake_context::sistem_gmt_time(record, seconds, err);
  }
  bool sistem_gmt_lapse(long long& seconds, std::tm& record, ruvo::exception* err) const override {
    return failing ? refuse(err) : fake_context::sistem_gmt_lapse(seconds, record, err);
  }

 private:
  static bool refuse(ruvo::exception* err) {
    ruvo::exc::CalendarException(7, L"parado").copy_on(err);
    return false;
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

TEST(services, the_day_count_needs_none) {
  failing_context fake;
  fake.failing = false;
  const ruvo::thread_scope scope(fake);
  ruvo::velda::date day(2024, 2, 28);
  const long long before = day.get_lapso();
  fake.failing = true;
  EXPECT_NO_THROW(day.add(1, times::DAYS));
  EXPECT_EQ(day.get_day_number(), 2460370);
  EXPECT_EQ(day.get_month_days(), 29);
  EXPECT_EQ(ruvo::velda::dates::last_day_of_week(day).get_day(), 3);
  EXPECT_EQ(day.get_lapso(), before);  // the instant could not follow
}

}  // namespace
