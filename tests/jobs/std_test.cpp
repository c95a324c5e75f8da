// SPDX-License-Identifier: BSL-1.0

// Values in the standard library: hashes, orders, moves, formats, dates, paths, codes, places, futures.

#include <ruvo/ruvo.hpp>
#include <ruvo/std.hpp>

#include <atomic>
#include <chrono>
#include <compare>
#include <concepts>
#include <filesystem>
#include <functional>
#include <future>
#include <limits>
#include <ratio>
#include <string>
#include <system_error>
#include <thread>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

#if __has_include(<fmt/format.h>)
#  if !defined(FMT_HEADER_ONLY)
#    define FMT_HEADER_ONLY
#  endif
#  include <ruvo/fmt.hpp>
#endif
#if defined(__cpp_lib_jthread)
#  include <stop_token>
#endif

#include <gtest/gtest.h>

using ruvo::date;
using ruvo::datetime;
using ruvo::times::GMT;
using ruvo::times::LOCAL;

namespace {

// --- what the compiler knows

template <class... Types>
constexpr bool move_without_throwing = (std::is_nothrow_move_constructible_v<Types> && ...);
static_assert(
    move_without_throwing<ruvo::var, ruvo::xvar, ruvo::list, ruvo::bundle, ruvo::binary, ruvo::memo,
                          ruvo::lapse, date, ruvo::time, datetime, ruvo::velda::date, ruvo::color, ruvo::file,
                          ruvo::exception, ruvo::exc::fileNotFound, ruvo::exc::NullValue>);
static_assert(move_without_throwing<ruvo::smtp::address, ruvo::http::fields, ruvo::serializer::json_pointer>);

template <class... Types>
constexpr bool have_an_order = (std::three_way_comparable<Types> && ...) &&
                               (std::totally_ordered<Types> && ...);
static_assert(have_an_order<ruvo::var, ruvo::xvar, ruvo::list, ruvo::bundle, ruvo::binary, ruvo::memo, date,
                            ruvo::time, datetime, ruvo::file, ruvo::smtp::address>);

template <class Instant, class Step>
concept can_move = requires(Instant& instant, Step step) {
  instant += step;
};
static_assert(can_move<datetime, std::chrono::weeks> && can_move<date, std::chrono::weeks>);
static_assert(!can_move<datetime, std::chrono::months> && !can_move<datetime, std::chrono::milliseconds>);
static_assert(!can_move<date, std::chrono::hours> && !can_move<date, std::chrono::months>);

// --- hashes and orders

template <class Type>
void are_equal_and_hash_alike(const Type& a, const Type& b) {
  EXPECT_TRUE(a == b);
  EXPECT_EQ(std::hash<Type>()(a), std::hash<Type>()(b));
}

TEST(hash, is_that_of_all_that_is_equal) {
  are_equal_and_hash_alike<ruvo::var>(1.0000001, 1.0);
  are_equal_and_hash_alike<ruvo::var>(ruvo::decimal("1.50"), ruvo::decimal("1.5"));
  EXPECT_TRUE(ruvo::var(ruvo::decimal("1.50")) <= ruvo::var(ruvo::decimal("1.5")));
  are_equal_and_hash_alike<ruvo::var>(L"a", "a");
  ruvo::xvar qualified = 5;
  qualified["unit"] = L"kg";
  are_equal_and_hash_alike<ruvo::xvar>(qualified, 5);
  are_equal_and_hash_alike<ruvo::list>({1}, {1U});
  are_equal_and_hash_alike<ruvo::bundle>({{L"A", 1}, {L"b", 2}}, {{L"B", 2}, {L"a", 1L}});
  are_equal_and_hash_alike<ruvo::binary>("ab", L"ab");
  are_equal_and_hash_alike<ruvo::memo>("ab", L"ab");
  are_equal_and_hash_alike<date>(date(datetime(86399LL)), date(1970, 1, 1, GMT));
  are_equal_and_hash_alike<ruvo::time>(ruvo::time(datetime(90000LL)), ruvo::time(1, 0, 0, GMT));
  are_equal_and_hash_alike<datetime>(datetime(5LL, LOCAL), datetime(5LL));
  are_equal_and_hash_alike<ruvo::velda::date>({2024, 2, 29}, 20240229L);
  are_equal_and_hash_alike<ruvo::color>(L"#FF0000", ruvo::color(255, 0, 0));
  are_equal_and_hash_alike<ruvo::file>(L"a/b/", L"a\\b");
  are_equal_and_hash_alike<ruvo::exception>(ruvo::exc::BadFormat(), ruvo::exception(0xEBB8000A, L""));
  are_equal_and_hash_alike<ruvo::smtp::address>({L"Ana", L"A@Example.com"}, {L"", L"a@example.com"});
  std::unordered_set<ruvo::var> seen{1, 1L, L"1", ruvo::var(), true, 1};
  EXPECT_EQ(seen.size(), 5U);
}

TEST(order, is_that_of_less) {
  EXPECT_TRUE((ruvo::var(10) <=> ruvo::var(9)) == std::partial_ordering::less) << "texts";
  EXPECT_TRUE((ruvo::var(1) <=> ruvo::var(1L)) == std::partial_ordering::unordered);
  EXPECT_TRUE(ruvo::var(2) >= ruvo::xvar(2));
  EXPECT_TRUE(ruvo::list{1} <= ruvo::list{1U});
  EXPECT_TRUE((ruvo::bundle{{L"b", 1}} > ruvo::bundle{{L"a", 9}}));
  EXPECT_TRUE(ruvo::binary("\xFF") > ruvo::binary("a"));
  EXPECT_TRUE(ruvo::memo("a") <= ruvo::memo("b"));
  EXPECT_TRUE(ruvo::file(L"a/b") >= ruvo::file(L"a\\b"));
  EXPECT_TRUE(ruvo::smtp::address(L"", L"B@c") > ruvo::smtp::address(L"x", L"a@c"));
}

// --- std::chrono, std::filesystem

TEST(chrono, goes_both_ways) {
  using namespace std::chrono;
  EXPECT_EQ(ruvo::to_sys_seconds(datetime(1709199005LL, LOCAL)), sys_days(2024y / 2 / 29) + 9h + 30min + 5s);
  EXPECT_EQ(ruvo::to_datetime(sys_days(2024y / 2 / 29) + 5500ms), datetime(2024, 2, 29, 0, 0, 5, GMT));
  EXPECT_EQ(ruvo::to_datetime(sys_seconds() - 1ms).get_lapso(), -1);
  EXPECT_EQ(ruvo::to_year_month_day(date(2024, 2, 29, GMT)), 2024y / 2 / 29);
  EXPECT_EQ(ruvo::to_date(2024y / February / last), date(2024, 2, 29, GMT));
  EXPECT_THROW(ruvo::to_date(2023y / 2 / 29), ruvo::exc::CalendarException);
  EXPECT_THROW(ruvo::to_year_month_day(date(40000, 1, 1, GMT)), ruvo::exc::CalendarException);
  EXPECT_EQ(ruvo::to_seconds(ruvo::time(93005, GMT)), 9h + 30min + 5s);
  EXPECT_EQ(ruvo::to_time(25h + 1s), ruvo::time(10001, GMT));
}

TEST(chrono, moves_dates_and_times) {
  using namespace std::chrono_literals;
  datetime when(2024, 2, 28, 23, 59, 59, GMT);
  EXPECT_EQ(when + 1s, datetime(2024, 2, 29, 0, 0, 0, GMT));
  EXPECT_EQ((when -= std::chrono::days(28)), datetime(2024, 1, 31, 23, 59, 59, GMT));
  const long long most = std::numeric_limits<long long>::max();
  for (const long long from : {most, -most}) {
    datetime far(from);
    const std::chrono::seconds step(from > 0 ? 1 : -2);
    EXPECT_THROW(far += step, ruvo::exc::CalendarException);
    EXPECT_THROW(far -= -step, ruvo::exc::CalendarException);
    EXPECT_EQ((far -= step).get_lapso(), from - step.count());
  }
  datetime now(0LL);
  const std::chrono::duration<long long, std::ratio<86400>> ages((std::numeric_limits<long long>::max)());
  EXPECT_THROW(now += ages, ruvo::exc::CalendarException);
  EXPECT_THROW(now -= ages, ruvo::exc::CalendarException);
  date day(2024, 2, 28, GMT);
  EXPECT_EQ(day += std::chrono::weeks(1), date(2024, 3, 6, GMT));
  EXPECT_EQ(day -= std::chrono::days(6), date(2024, 2, 29, GMT));
  if (sizeof(std::chrono::days::rep) > sizeof(int)) {
    EXPECT_THROW(day += (std::chrono::days::max)(), ruvo::exc::CalendarException);
  }
  ruvo::time hour(233000, GMT);
  EXPECT_EQ(hour += 45min, ruvo::time(1500, GMT));
  EXPECT_EQ(hour -= 49h, ruvo::time(231500, GMT));
}

TEST(path, goes_both_ways) {
  const ruvo::file path(L"año\\datos.txt");
  EXPECT_EQ(ruvo::to_file(ruvo::to_path(path)), path);
  EXPECT_EQ(ruvo::to_file(std::filesystem::path("a") / "b"), ruvo::file(L"a\\b"));
}

// --- std::error_code, std::source_location

TEST(error_code, says_what_the_failure_is) {
  const std::error_code code = make_error_code(ruvo::exc::fileNotFound(L"x.txt"));
  EXPECT_EQ(code.value(), ruvo::error_value(L"fileNotFound"));
  EXPECT_EQ(static_cast<unsigned>(code.value()), 0xEBB903E9U);
  EXPECT_STREQ(code.category().name(), "kesta");
  EXPECT_EQ(code.message(), "Archivo o directorio no encontrado");
  EXPECT_TRUE(code == std::errc::no_such_file_or_directory);
  EXPECT_FALSE(make_error_code(ruvo::exc::BadFormat()) == std::errc::invalid_argument);
  EXPECT_EQ(make_error_code(ruvo::exc::BadArgument(L"n")), std::errc::invalid_argument);
  EXPECT_FALSE(make_error_code(ruvo::exception()));
  EXPECT_EQ(std::error_code(7, ruvo::error_category()).message(), "Error desconocido");
}

TEST(located, adds_the_place_of_the_call) {
  const std::wstring place = L"[std_test.cpp:" + std::to_wstring(__LINE__ + 1) + L"]";
  EXPECT_EQ(ruvo::located(L"sin cliente") + ruvo::located(L""), L"sin cliente " + place + place);
  try {
    throw ruvo::located(ruvo::exc::fileNotFound(L"x.txt"));
  } catch (const ruvo::exc::fileNotFound& failure) {
    EXPECT_TRUE(failure.get_detail().starts_with(L"x.txt [std_test.cpp:"));
  }
}

// --- std::future, std::stop_token

#if defined(__cpp_lib_jthread)

ruvo::xvar until_stopped(const ruvo::xvar&, const ruvo::task::stoppable_steps& steps) {
  while (steps(1)) std::this_thread::yield();
  steps.advance(2);
  return L"never";
}

TEST(future_call, gives_the_result_or_what_was_thrown) {
  std::atomic<int> reported = 0;
  ruvo::task::future_call half(
      [](const ruvo::xvar& input, const ruvo::task::stoppable_steps& steps) -> ruvo::xvar {
        steps(input);
        const long number = input;
        if (number % 2 != 0) throw ruvo::exc::BadArgument(L"impar");
        return number / 2;
      },
      [&](const ruvo::xvar& progress) { reported += static_cast<int>(progress); });
  EXPECT_EQ(half.start(8).get(), 4L);
  EXPECT_THROW(half.start(3).get(), ruvo::exc::BadArgument);
  EXPECT_THROW(half.start({}).get(), ruvo::exc::ThreadException) << "null is no number";
  EXPECT_EQ(reported, 11);
}

TEST(future_call, ends_by_a_stop_token_and_by_its_destructor) {
  std::stop_source stop;
  std::future<ruvo::xvar> abandoned;
  {
    ruvo::task::future_call task(until_stopped);
    std::future<ruvo::xvar> result = task.start({}, stop.get_token());
    stop.request_stop();
    EXPECT_THROW(result.get(), ruvo::exc::ProcessCanceled);
    EXPECT_THROW(task.start({}, stop.get_token()).get(), ruvo::exc::ProcessCanceled) << "stopped before";
    abandoned = task.start({});
  }
  EXPECT_THROW(abandoned.get(), ruvo::exc::ProcessCanceled);
}

#endif

// --- formats

template <class Format>
void writes_values(Format format) {
  EXPECT_EQ(format("{:>6}|{}", ruvo::var(12.5), ruvo::xvar(L"ñ")), "12.500000|\xC3\xB1");
  EXPECT_EQ(format("{:*^5}|{}", ruvo::xvar(7), ruvo::bundle{{L"a", ruvo::list{1}}}), "**7**|{\"a\":[1]}");
  EXPECT_EQ(format("{:%d/%m/%Y}|{}", date(2024, 2, 29, GMT), ruvo::time(93005, GMT)), "29/02/2024|09:30:05");
  EXPECT_EQ(format("{}|{}", ruvo::file(L"a/b"), ruvo::exc::fileNotFound(L"x")),
            "a\\b|Archivo o directorio no encontrado: x");
}

#if defined(KESTA_HAS_FORMAT)
TEST(std_format, writes_values) {
  writes_values(
      [](const char* how, const auto&... what) { return std::vformat(how, std::make_format_args(what...)); });
  EXPECT_EQ(std::format(L"{:%H:%M}", ruvo::time(93005, GMT)), L"09:30");
}
#endif
#if defined(FMT_VERSION)
TEST(fmt, writes_values) {
  writes_values([](const char* how, const auto&... what) { return fmt::format(fmt::runtime(how), what...); });
  EXPECT_EQ(fmt::format(L"{:%H:%M}", ruvo::time(93005, GMT)), L"09:30");
}
#endif

}  // namespace
