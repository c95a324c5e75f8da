// SPDX-License-Identifier: BSL-1.0

// Dates as people write them in Spanish.

#include <ruvo/exc.hpp>
#include <ruvo/reading.hpp>
#include <ruvo/written_dates.hpp>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/rounds.hpp"

namespace dates = ruvo::dates;
using field = dates::date_field;
using fault = dates::date_fault;

class written_dates : public generated_inputs {};

TEST_F(written_dates, that_are_read) {
  const struct {
    const wchar_t* text;
    long long number;  // yyyymmddhhmmss
  } rows[] = {
      {L"3/2/2024", 20240203000000},
      {L"03-02-24", 20240203000000},
      {L" 3 . 2 . 68 ", 20680203000000},
      {L"3/2/69", 19690203000000},
      {L"3 de febrero de 2024", 20240203000000},
      {L"3 feb 2024", 20240203000000},
      {L"3-FEB.-24", 20240203000000},
      {L"3 del 2 del 2024", 20240203000000},
      {L"1.º de mayo de 2024", 20240501000000},
      {L"1º de mayo, 2024", 20240501000000},
      {L"Primero de setiembre de 2024", 20240901000000},
      {L"2024-02-03", 20240203000000},
      {L"2024/2/3 7:05", 20240203070500},
      {L"2024-02-03T23:59:59", 20240203235959},
      {L"s\u00C1bado, 3 de febrero de 2024", 20240203000000},
      {L"el sáb. 3/2/2024 a las 10", 20240203100000},
      {L"miercoles 29-2-2012, 10.30 h.", 20120229103000},
      {L"3/2/2024 10 h", 20240203100000},
      {L"3/2/2024 12:15 a. m.", 20240203001500},
      {L"3/2/2024 5pm", 20240203170000},
      {L"31/12/9999", 99991231000000},
  };
  for (const auto& [text, number] : rows) {
    const auto read = dates::parse_date(text);
    ASSERT_TRUE(read) << text << dates::message_of(read);
    const long day = read.year * 10000L + read.month * 100 + read.day;
    EXPECT_EQ(day * 1000000LL + read.hour * 10000 + read.minute * 100 + read.second, number) << text;
    EXPECT_EQ(read.has_time,
              std::wstring(text).find_first_of(L":h") != std::wstring::npos || number % 1000000 != 0)
        << text;
    EXPECT_EQ(read.to_date(), day);
    EXPECT_EQ(read.to_datetime().to_string("%Y%m%d%H%M%S"), std::to_wstring(number));
  }
}

TEST_F(written_dates, whose_wrong_field_is_named) {
  const struct {
    const wchar_t* text;
    field where;
    fault what;
    std::size_t position;
  } rows[] = {
      {L"", field::day, fault::missing, 1},
      {L"29/2/2023", field::day, fault::out_of_range, 1},
      {L"31 de abril de 2024", field::day, fault::out_of_range, 1},
      {L"0/2/2024", field::day, fault::out_of_range, 1},
      {L"120/2/2024", field::day, fault::out_of_range, 1},
      {L"febrero de 2024", field::day, fault::missing, 1},
      {L"2024-02-30", field::day, fault::out_of_range, 9},
      {L"2024-02", field::day, fault::missing, 8},
      {L"3/13/2024", field::month, fault::out_of_range, 3},
      {L"3 de fevrero de 2024", field::month, fault::unknown, 6},
      {L"3 fe 2024", field::month, fault::unknown, 3},
      {L"3", field::month, fault::missing, 2},
      {L"3 de febrero", field::year, fault::missing, 13},
      {L"3/2/", field::year, fault::missing, 5},
      {L"3/2/202", field::year, fault::out_of_range, 5},
      {L"3/2/0000", field::year, fault::out_of_range, 5},
      {L"3/2/x", field::year, fault::unknown, 5},
      {L"domingo, 3/2/2024", field::week_day, fault::contradiction, 1},
      {L"el zabado 3/2/2024", field::week_day, fault::unknown, 4},
      {L"3/2-2024", field::text, fault::unknown, 4},
      {L"3,2,2024", field::text, fault::unknown, 2},
      {L"3/2/2024x", field::text, fault::unknown, 9},
      {L"3/2/2024 y algo", field::text, fault::unknown, 10},
      {L"3/2/2024 10:30Z", field::text, fault::unknown, 15},
      {L"3/2/2024,", field::hour, fault::missing, 10},
      {L"3/2/2024 24:00", field::hour, fault::out_of_range, 10},
      {L"3/2/2024 13:00 pm", field::hour, fault::out_of_range, 10},
      {L"3/2/2024 10", field::minute, fault::missing, 12},
      {L"3/2/2024 10:60", field::minute, fault::out_of_range, 13},
      {L"3/2/2024 10:5", field::minute, fault::out_of_range, 13},
      {L"3/2/2024 10:05:60", field::second, fault::out_of_range, 16},
  };
  for (const auto& [text, where, what, position] : rows) {
    const auto read = dates::parse_date(text);
    EXPECT_EQ(read.field, where) << text;
    EXPECT_EQ(read.fault, what) << text;
    EXPECT_EQ(read.position, position) << text;
    EXPECT_GT(dates::message_of(read).find(L" ("), 0U) << text;  // the position alone says nothing
  }
  EXPECT_EQ(dates::parse_date(L"3/2/2024 10:30", {.takes_time = false}).position, 10U);
  EXPECT_EQ(dates::parse_date(L"3/2/24", {.first_short_year = 1900}).year, 1924);
  try {
    static_cast<void>(dates::parse_date(L"3/13/2024").to_date());
    FAIL();
  } catch (const ruvo::exc::CalendarException& failure) {
    EXPECT_EQ(ruvo::serializer::failure_position(failure), 3U);
    EXPECT_EQ(failure.get_mensaje(), L"El mes no existe (posición 3)");
  }
}

TEST_F(written_dates, in_all_forms) {
  dice chance(22);
  const std::vector<std::wstring> forms = {
      L"%d/%m/%Y", L"%d-%m-%y",     L"%e.%m.%Y",          L"%Y-%m-%d",          L"%d de %B de %Y",
      L"%d %b %Y", L"%A, %d/%m/%Y", L"%a %d de %B de %Y", L"%d-%b-%Y %H:%M:%S", L"%Y-%m-%dT%H:%M:%S"};
  for (unsigned round = 0; round < 1000 * rounds(); ++round, ++inputs) {
    const ruvo::datetime when(1969 + static_cast<int>(chance.below(100)),
                              1 + static_cast<int>(chance.below(12)), 1 + static_cast<int>(chance.below(31)),
                              static_cast<int>(chance.below(24)), 30, 59);
    const std::wstring text = when.format(chance.any(forms), "es_ES");
    const auto read = dates::parse_date(text);
    ASSERT_TRUE(read) << text << dates::message_of(read);
    ASSERT_EQ(read.to_date(), when.operator ruvo::date()) << text;
    if (read.has_time) {
      ASSERT_EQ(read.to_datetime(), when) << text;
    }
  }
}
