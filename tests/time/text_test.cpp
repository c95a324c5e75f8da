// SPDX-License-Identifier: BSL-1.0

// Printing and reading calendar text.

#include <ruvo/datetime.hpp>
#include <ruvo/exc.hpp>

#include <string>
#include <vector>

#include <gtest/gtest.h>

using ruvo::date;
using ruvo::datetime;
namespace times = ruvo::times;

namespace {

TEST(printing, every_conversion) {
  const datetime morning(2024, 2, 9, 0, 5, 7);      // a Friday
  const datetime evening(2023, 12, 31, 23, 59, 0);  // a Sunday
  const wchar_t* const rows[][3] = {
      {L"%a %A", L"Fri Friday", L"Sun Sunday"},
      {L"%b %B", L"Feb February", L"Dec December"},
      {L"%c", L"Fri Feb  9 00:05:07 2024", L"Sun Dec 31 23:59:00 2023"},
      {L"%d|%e", L"09| 9", L"31|31"},
      {L"%F", L"2024-02-09", L"2023-12-31"},
      {L"%H %I %p", L"00 12 AM", L"23 11 PM"},
      {L"%j", L"040", L"365"},
      {L"%m %M", L"02 05", L"12 59"},
      {L"%R %T %X", L"00:05 00:05:07 00:05:07", L"23:59 23:59:00 23:59:00"},
      {L"%u %w", L"5 5", L"7 0"},
      {L"%U %W", L"05 06", L"53 52"},
      {L"%x %y %Y", L"02/09/24 24 2024", L"12/31/23 23 2023"},
      {L"%z %Z", L"+0000 UTC", L"+0000 UTC"},
      {L"100%% %Q %", L"100% %Q %", L"100% %Q %"},
      {L"", L"", L""},
  };
  for (const auto& [format, in_the_morning, in_the_evening] : rows) {
    EXPECT_EQ(morning.format(format), in_the_morning) << format;
    EXPECT_EQ(evening.format(format), in_the_evening) << format;
  }
  EXPECT_EQ(date(5, 3, 1).to_string(date::velda), L"00050301");
}

TEST(printing, format_constants) {
  const struct {
    const char* value;
    std::vector<const std::string*> names;
  } rows[] = {{"%d-%m-%Y", {&date::canonical, &date::short_format}},
              {"%Y-%m-%d", {&date::sql_format}},
              {"%d-%b-%Y", {&date::short_month_format}},
              {"%d-%B-%Y", {&date::long_month_format}},
              {"%Y%m%d", {&date::velda}},
              {"%H:%M:%S", {&ruvo::time::canonical, &ruvo::time::sql_format}},
              {"%R", {&ruvo::time::short_format}},
              {"%T", {&ruvo::time::long_format}},
              {"%T %z", {&ruvo::time::long_utc_format}},
              {"%I:%M %p", {&ruvo::time::short_12_format}},
              {"%I:%M:%S %p", {&ruvo::time::long_12_format}},
              {"%H%M%S", {&ruvo::time::velda, &ruvo::time::url_canonical}},
              {"%d-%m-%Y %H:%M:%S", {&datetime::canonical, &datetime::iso_long_format}},
              {"%Y-%m-%d %H:%M:%S", {&datetime::sql_format}},
              {"%d-%B-%Y %H:%M:%S %z", {&datetime::long_utc_format}}};
  for (const auto& row : rows)
    for (const std::string* name : row.names) EXPECT_EQ(*name, row.value);
  const datetime value(2024, 2, 9, 13, 5, 7);
  EXPECT_EQ(date(value).to_string(), L"09-02-2024");
  EXPECT_EQ(ruvo::time(value).to_string(), L"13:05:07");
  EXPECT_EQ(value.to_string(), L"09-02-2024 13:05:07");
}

TEST(printing, formats_of_any_length_and_type) {
  const datetime value(2024, 2, 9, 13, 5, 7);
  for (const std::size_t count : {1, 15, 16, 17, 31, 32, 33, 500}) {
    std::wstring format, expected;
    for (std::size_t i = 0; i < count; ++i) {
      format += L"%Y%B%d ";
      expected += L"2024February09 ";
    }
    ASSERT_EQ(value.format(format), expected) << count;
    ASSERT_EQ(value.format(std::string(format.begin(), format.end())), expected) << count;
    datetime back;
    ruvo::exception err;
    ASSERT_TRUE(back.parse(expected, std::string(format.begin(), format.end()), err)) << count;
  }
  const std::string narrow = "día %d €";
  EXPECT_EQ(value.format(narrow), L"día 09 €");
  ruvo::exception err;
  datetime back;
  EXPECT_TRUE(back.parse("día 10 €", narrow, err));
  EXPECT_EQ(back.get_day(), 10);
  EXPECT_EQ(datetime(12345, 1, 2).to_string(), L"02-01-12345 00:00:00");
  EXPECT_EQ(datetime(-45, 1, 2).to_string(), L"02-01--0045 00:00:00");
}

TEST(reading, texts_that_fit) {
  const struct {
    const wchar_t* text;
    const char* format;
    const wchar_t* expected;
  } rows[] = {
      {L"29-02-2024 23:59:58", "%d-%m-%Y %H:%M:%S", L"29-02-2024 23:59:58"},
      {L"  29-02-2024\t", "%d-%m-%Y", L"29-02-2024 00:00:00"},
      {L"20240229101112", "%Y%m%d%H%M%S", L"29-02-2024 10:11:12"},
      {L"1-2-2024", "%d-%m-%Y", L"01-02-2024 00:00:00"},
      {L"2024-02-29   10:11", "%F %R", L"29-02-2024 10:11:00"},
      {L"31/ 3", "%d/%e", L"03-01-1970 00:00:00"},
      {L"29 february 2024", "%d %b %Y", L"29-02-2024 00:00:00"},
      {L"29 FEB 2024", "%d %B %Y", L"29-02-2024 00:00:00"},
      {L"Thursday, 29 Feb 2024", "%A, %d %b %Y", L"29-02-2024 00:00:00"},
      {L"Thu Feb 29 10:11:12 2024", "%c", L"29-02-2024 10:11:12"},
      {L"02/29/24 10:11:12", "%x %X", L"29-02-2024 10:11:12"},
      {L"68 69", "%y %y", L"01-01-1969 00:00:00"},
      {L"68", "%y", L"01-01-2068 00:00:00"},
      {L"12:30 am", "%I:%M %p", L"01-01-1970 00:30:00"},
      {L"PM 12:30", "%p %I:%M", L"01-01-1970 12:30:00"},
      {L"13 01 PM", "%H %I %p", L"01-01-1970 13:00:00"},
      {L"03 PM 13", "%I %p %H", L"01-01-1970 13:00:00"},
      {L"11 PM", "%I %p", L"01-01-1970 23:00:00"},
      {L"2024 366", "%Y %j", L"31-12-2024 00:00:00"},
      {L"2023 52 7", "%Y %W %u", L"31-12-2023 00:00:00"},
      {L"2024 05 5", "%Y %U %w", L"09-02-2024 00:00:00"},
      {L"060", "%j", L"01-03-1970 00:00:00"},
      {L"05 5", "%U %w", L"06-02-1970 00:00:00"},
      {L"Sun 10", "%a %H", L"01-01-1970 10:00:00"},
      {L"Sun 01-02", "%a %d-%m", L"01-02-1970 00:00:00"},
      {L"01-01-1970 01:00 +0130", "%d-%m-%Y %H:%M %z", L"31-12-1969 23:30:00"},
      {L"01-01-1970 01:00 -01:30", "%d-%m-%Y %H:%M %z", L"01-01-1970 02:30:00"},
      {L"10:00Z", "%R%z", L"01-01-1970 10:00:00"},
      {L"10:00 GMT", "%R %Z", L"01-01-1970 10:00:00"},
      {L"100%", "%H0%%", L"01-01-1970 10:00:00"},
      {L"01-01-0001", "%d-%m-%Y", L"01-01-0001 00:00:00"},
  };
  for (const auto& r : rows) {
    datetime value(1);
    ruvo::exception err;
    EXPECT_TRUE(value.parse(r.text, r.format, err)) << r.text << L" as " << r.format;
    EXPECT_TRUE(err.OK());
    EXPECT_EQ(value.to_string(), r.expected) << r.text << L" as " << r.format;
  }
}

TEST(reading, texts_that_do_not_fit) {
  const struct {
    const char* format;
    std::vector<const wchar_t*> texts;
  } rows[] = {
      {"%d", {L""}},
      {"%d-%m-%Y",
       {L"31-02-2024", L"29-02-2023", L"29-02-1900", L"00-01-2024", L"01-13-2024", L"01-01-2024x",
        L"01-01-20245", L"01-01-2024 10:00", L"01-01", L"01/01/2024", L"-1-01-2024", L"٠١-01-2024"}},
      {"%R", {L"25:00", L"24:00", L"10:60"}},
      {"%T", {L"10:00:60"}},
      {"%I %p", {L"13 PM", L"0 AM", L"10 XM"}},
      {"%Y %j", {L"2023 366", L"2023 000"}},
      {"%j", {L"366"}},
      {"%Y %W %u", {L"2023 54 1"}},
      {"%Y %u", {L"2023 8"}},
      {"%A %d-%m-%Y", {L"Friday 29-02-2024"}},
      {"%d %b %Y", {L"29 Foo 2024"}},
      {"%R %z", {L"10:00 +2500", L"10:00 +0160", L"10:00 0100"}},
      {"%R %Z", {L"10:00 Nowhere"}},
      {"%Q", {L"10"}},
      {"%d %m", {L"10"}},
  };
  for (const auto& row : rows) {
    for (const wchar_t* const text : row.texts) {
      datetime value(7LL);
      ruvo::exception err;
      EXPECT_FALSE(value.parse(text, row.format, err)) << text << L" as " << row.format;
      EXPECT_EQ(err.get_raw_code(), 0xEBB90BB9ul) << text;
      EXPECT_EQ(value.get_lapso(), 7) << text;
    }
  }
}

TEST(reading, constructors_and_assignments) {
  EXPECT_EQ(date("29-02-2024"), 20240229);
  EXPECT_EQ(date(L"2024-02-29", times::GMT, date::sql_format), 20240229);
  EXPECT_EQ(date(std::string("20240229"), times::LOCAL, date::velda), 20240229);
  EXPECT_EQ(datetime(date(L"29-02-2024")).get_hour(), 4);
  EXPECT_EQ(ruvo::time(std::wstring(L"10:11:12")), 101112);
  EXPECT_EQ(ruvo::time("101112", times::LOCAL, ruvo::time::velda), 101112);
  datetime value(0);
  value = L"29-02-2024 10:11:12";
  EXPECT_EQ(value.to_string(datetime::sql_format), L"2024-02-29 10:11:12");
  EXPECT_THROW(date("31-02-2024"), ruvo::exc::CalendarException);
  EXPECT_THROW(ruvo::time("25:00:00"), ruvo::exc::CalendarException);
  EXPECT_THROW(value = "29-02-2024", ruvo::exc::CalendarException);
  EXPECT_EQ(value.to_string(datetime::sql_format), L"2024-02-29 10:11:12");
}

// What every full format prints is read back as the same instant, in both modes.
TEST(reading, takes_back_what_was_printed) {
  const char* const formats[] = {
      "%d-%m-%Y %H:%M:%S", "%Y-%m-%d %H:%M:%S", "%d-%B-%Y %H:%M:%S %z", "%c",           "%F %T",
      "%j/%Y %I:%M:%S %p", "%Y %U %a %T",       "%A %e %b %Y %T",       "%y%m%d%H%M%S", "%F %T %Z"};
  for (const times::HUSO huso : {times::GMT, times::LOCAL}) {
    for (long long seconds = 0; seconds < 2000000000; seconds += 7654321) {
      const datetime value(seconds, huso);
      for (const char* const format : formats) {
        if (seconds == 0 && huso == times::LOCAL) continue;  // may lie in 1969, outside %y's years
        datetime back(1, huso);
        ruvo::exception err;
        ASSERT_TRUE(back.parse(value.to_string(format), format, err)) << value.to_string(format).c_str();
        ASSERT_EQ(back.to_string(), value.to_string()) << format;
      }
    }
  }
}

// Single changes to good texts are read to a text that prints alike, or refused; nothing else happens.
TEST(reading, survives_damaged_texts) {
  const std::wstring good = L"29-02-2024 23:59:58 +0130";
  const std::wstring units = L"0123456789-+: %ZzA\xE9\xD800";
  int taken = 0;
  for (std::size_t at = 0; at < good.size(); ++at) {
    for (const wchar_t unit : units + L'\0') {
      std::wstring text = good;
      text[at] = unit;
      datetime value(7LL);
      ruvo::exception err;
      if (value.parse(text, "%d-%m-%Y %H:%M:%S %z", err)) {
        ++taken;
        EXPECT_TRUE(err.OK());
      } else {
        EXPECT_EQ(value.get_lapso(), 7);
      }
    }
    datetime value(7LL);
    ruvo::exception err;
    EXPECT_FALSE(value.parse(good.substr(0, at), "%d-%m-%Y %H:%M:%S %z", err)) << at;
  }
  EXPECT_GT(taken, 30);
}

TEST(names, in_locales) {
  const date day(2024, 2, 28);  // a Wednesday
  for (const char* const locale : {"", "C", "POSIX", "not_A_locale", "\xC3\xB1"}) {
    EXPECT_EQ(day.get_month_name(locale), L"February") << locale;
    EXPECT_EQ(day.get_week_day_name_abbreviated(locale), L"Wed") << locale;
  }
  for (const char* const locale : {"es_ES", "es-ES", "es_ES.UTF-8"}) {
    EXPECT_EQ(day.get_month_name(locale), L"febrero") << locale;
    EXPECT_EQ(day.get_week_day_name(locale), L"miércoles") << locale;
    EXPECT_FALSE(day.get_month_name_abbreviated(locale).empty());
  }
  EXPECT_EQ(datetime(day).get_week_day_name("es_ES"), L"miércoles");

  const std::wstring text = day.format(L"%A, %d de %B de %Y", "es_ES");
  EXPECT_EQ(text, L"miércoles, 28 de febrero de 2024");
  date back(20000101);
  ruvo::exception err;
  EXPECT_TRUE(back.parse(std::wstring(L"MIÉRCOLES, 28 de Febrero de 2024"),
                         std::wstring(L"%A, %d de %B de %Y"), err, "es_ES"));
  EXPECT_EQ(back, day);
}

TEST(names, every_month_and_day_is_read_back) {
  for (const char* const locale : {"C", "es_ES", "de_DE", "fr_FR", "ca_ES"}) {
    date day(2024, 1, 1);
    for (int i = 0; i < 366; i += 5, day += 5) {
      for (const wchar_t* const format : {L"%A %d %B %Y", L"%a %d %b %Y"}) {
        date back(20000101);
        ruvo::exception err;
        ASSERT_TRUE(back.parse(day.format(format, locale), format, err, locale))
            << day.format(format, locale).c_str();
        ASSERT_EQ(back, day);
      }
    }
  }
}

}  // namespace
