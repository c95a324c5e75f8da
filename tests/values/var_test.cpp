// SPDX-License-Identifier: BSL-1.0

// The kinds of a value, their copies, conversions and order.

#include <ruvo/ruvo.hpp>

#include <cmath>
#include <exception>
#include <limits>
#include <random>
#include <sstream>
#include <stdexcept>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

using ruvo::var;

namespace {

static_assert(std::is_nothrow_move_constructible_v<var> && std::is_nothrow_move_assignable_v<var>);
static_assert(std::has_virtual_destructor_v<var>);

struct kind_row {
  const char* name;
  var value;
  const std::type_info* type;
  std::wstring text;
  const char* predicates;  // p(rimitive) n(umber) i(nteger) d(ecimal) c(harsequence) l(apse) N(umeric text)
                           // B(oolean text)
};

/// Beyond every calendar record.
template <class T>
T far_away() {
  T value;
  value.set_lapso(std::numeric_limits<long long>::max());
  return value;
}

std::vector<kind_row> kinds() {
  return {
      {"null", var(), nullptr, L"", ""},
      {"bool", var(true), &typeid(bool), L"1", "pNB"},
      {"wchar_t", var(L'x'), &typeid(wchar_t), L"x", ""},
      {"short", var(short{-3}), &typeid(short), L"-3", "niN"},
      {"unsigned short", var(static_cast<unsigned short>(65535)), &typeid(unsigned short), L"65535", "pniN"},
      {"int", var(1), &typeid(int), L"1", "pniNB"},
      {"unsigned int", var(4000000000U), &typeid(unsigned int), L"4000000000", "pniN"},
      {"long", var(-5L), &typeid(long), L"-5", "pniN"},
      {"unsigned long", var(0UL), &typeid(unsigned long), L"0", "pniNB"},
      {"int64", var(std::numeric_limits<long long>::min()), &typeid(long long), L"-9223372036854775808",
       "pniN"},
      {"uint64", var(std::numeric_limits<unsigned long long>::max()), &typeid(unsigned long long),
       L"18446744073709551615", "pniN"},
      {"float", var(0.5F), &typeid(float), L"0.500000", "pndN"},
      {"double", var(1.5), &typeid(double), L"1.500000", "pndN"},
      {"one with a point", var(1.0), &typeid(double), L"1.000000", "pndN"},
      {"nan", var(std::numeric_limits<double>::quiet_NaN()), &typeid(double), L"nan", "pnd"},
      {"empty text", var(L""), &typeid(std::wstring), L"", "pc"},
      {"small text", var(L"verdad"), &typeid(std::wstring), L"verdad", "pc"},
      {"truth word", var(L" SI "), &typeid(std::wstring), L" SI ", "pcB"},
      {"long text", var(L"correctamente"), &typeid(std::wstring), L"correctamente", "pc"},
      {"number text", var(std::wstring(L"  +12345678.25 ")), &typeid(std::wstring), L"  +12345678.25 ",
       "pcN"},
      {"narrow text", var("\xC3\xB1"), &typeid(std::wstring), L"\u00F1", "pc"},
      {"UTF-8 text", var(u8"\u00F1u"), &typeid(std::wstring), L"\u00F1u", "pc"},
      {"UTF-8 string", var(std::u8string(u8"no\0", 3)), &typeid(std::wstring), std::wstring(L"no\0", 3),
       "pc"},
      {"binary", var(ruvo::binary(L"12")), &typeid(ruvo::binary), L"12", "cN"},
      {"memo", var(ruvo::memo(L"no")), &typeid(ruvo::memo), L"no", "cB"},
      {"date", var(ruvo::date(20240229L)), &typeid(ruvo::date), L"29-02-2024", "l"},
      {"time", var(ruvo::time(123456L)), &typeid(ruvo::time), L"12:34:56", "l"},
      {"datetime", var(ruvo::datetime(0.0)), &typeid(ruvo::datetime), L"01-01-1970 00:00:00", "l"},
      {"far date", var(far_away<ruvo::date>()), &typeid(ruvo::date), L"9223372036854775807", "l"},
      {"far time", var(far_away<ruvo::time>()), &typeid(ruvo::time), L"9223372036854775807", "l"},
      {"far datetime", var(far_away<ruvo::datetime>()), &typeid(ruvo::datetime), L"9223372036854775807", "l"},
      {"list", var(ruvo::xvar(ruvo::list{1, L"a"})), &typeid(ruvo::list), L"[1,\"a\"]", ""},
      {"bundle", var(ruvo::xvar(ruvo::bundle())), &typeid(ruvo::bundle), L"{}", ""},
  };
}

std::string predicates_of(const var& v) {
  std::string all;
  if (v.is_primitive()) all += 'p';
  if (v.is_number()) all += 'n';
  if (v.is_integer()) all += 'i';
  if (v.is_decimal()) all += 'd';
  if (v.is_charsquence()) all += 'c';
  if (v.is_lapse()) all += 'l';
  if (v.can_be_number()) all += 'N';
  if (v.can_be_boolean()) all += 'B';
  return all;
}

TEST(var, kinds) {
  for (const kind_row& row : kinds()) {
    SCOPED_TRACE(row.name);
    EXPECT_TRUE(row.type ? row.value.get_type() && *row.value.get_type() == *row.type
                         : !row.value.get_type());
    EXPECT_EQ(row.value.to_string(), row.text);
    EXPECT_EQ(predicates_of(row.value), row.predicates);
    EXPECT_EQ(row.value.empty(), row.value.to_string().empty());
    EXPECT_EQ(row.value.is_null(), !row.type);
    EXPECT_EQ(!row.value, !row.type);
    std::wostringstream out;
    out << row.value;
    EXPECT_EQ(out.str(), row.type ? row.text : L"null");
  }
}

TEST(var, every_kind_copies_moves_and_assigns_over_every_other) {
  const auto all = kinds();
  for (const kind_row& a : all) {
    for (const kind_row& b : all) {
      SCOPED_TRACE(std::string(a.name) + " <- " + b.name);
      var target(a.value);
      target = b.value;
      EXPECT_TRUE(target == b.value);
      EXPECT_EQ(target.to_string(), b.text);
      var source(b.value);
      target = a.value;
      target = std::move(source);
      EXPECT_EQ(target.to_string(), b.text);
      EXPECT_TRUE(source.is_null());
      EXPECT_EQ(a.value == b.value, &a == &b);
      EXPECT_EQ(a.value < b.value, a.value.to_string() < b.value.to_string());
    }
  }
}

TEST(var, a_value_may_be_assigned_from_its_own_inside) {
  ruvo::xvar v = ruvo::list{ruvo::xvar(ruvo::list{L"a text that takes a block"})};
  ruvo::list inner;
  inner = v;
  v = var(inner[0]);
  EXPECT_EQ(v.to_string(), L"[\"a text that takes a block\"]");
  ruvo::bundle b;
  b.hack_bundle_on(L"a.b")[L"c"] = 7;
  b = b.get_bundle(L"a.b");
  EXPECT_EQ(b.to_string(), L"{\"c\":7}");
}

template <class T>
std::string outcome(const var& v) {
  try {
    std::ostringstream out;
    out << static_cast<T>(v);
    return out.str();
  } catch (const std::bad_cast&) {
    return "bad_cast";
  } catch (const std::out_of_range&) {
    return "out_of_range";
  } catch (const std::exception_ptr& empty) {
    return empty ? "exception" : "null";
  }
}

TEST(var, conversions_to_numbers) {
  struct {
    const char* name;
    var value;
    const char *as_short, *as_long, *as_ullong, *as_double, *as_bool;
  } const rows[] = {
      {"null", var(), "null", "null", "null", "null", "null"},
      {"bool", var(true), "1", "1", "1", "1", "1"},
      {"wchar_t", var(L'A'), "65", "65", "65", "bad_cast", "bad_cast"},
      {"two", var(2), "2", "2", "2", "2", "bad_cast"},
      {"one with a point", var(1.0), "1", "1", "1", "1", "bad_cast"},
      {"minus one", var(-1), "-1", "-1", "18446744073709551615", "-1", "bad_cast"},
      {"cut to the width", var(65537), "1", "65537", "65537", "65537", "bad_cast"},
      {"truncated", var(-2.9), "-2", "-2", "18446744073709551614", "-2.9", "bad_cast"},
      {"beyond 64 bits", var(1e300), "-1", sizeof(long) == 4 ? "-1" : "9223372036854775807",
       "18446744073709551615", "1e+300", "bad_cast"},
      {"beyond 63 bits", var(1e19), "-1", sizeof(long) == 4 ? "-1" : "9223372036854775807",
       "10000000000000000000", "1e+19", "bad_cast"},
      {"not a number", var(std::nan("")), "0", "0", "0", "nan", "bad_cast"},
      {"blanks", var(L" 42 "), "42", "42", "42", "42", "bad_cast"},
      {"not a number text", var(L"4x"), "0", "0", "0", "0", "bad_cast"},
      {"read to the point", var(L"12.75"), "12", "12", "12", "12.75", "bad_cast"},
      {"huge text", var(L"9223372036854775808"), "out_of_range", "out_of_range", "out_of_range",
       "9.22337e+18", "bad_cast"},
      {"empty text", var(L""), "0", "0", "0", "0", "0"},
      {"truth word", var(L" Verdadero"), "0", "0", "0", "0", "1"},
      {"date", var(ruvo::date(20240229L)), "-10395", "20240229", "20240229", "2.02402e+07", "bad_cast"},
      {"time", var(ruvo::time(123456L)), "-7616", "123456", "123456", "123456", "bad_cast"},
      {"datetime", var(ruvo::datetime(86400.0)), "bad_cast", "bad_cast", "bad_cast", "86400", "bad_cast"},
      {"binary", var(ruvo::binary(L"1")), "bad_cast", "bad_cast", "bad_cast", "bad_cast", "bad_cast"},
      {"list", var(ruvo::xvar(ruvo::list())), "bad_cast", "bad_cast", "bad_cast", "bad_cast", "bad_cast"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(outcome<short>(row.value), row.as_short);
    EXPECT_EQ(outcome<long>(row.value), row.as_long);
    EXPECT_EQ(outcome<unsigned long long>(row.value), row.as_ullong);
    EXPECT_EQ(outcome<double>(row.value), row.as_double);
    EXPECT_EQ(outcome<bool>(row.value), row.as_bool);
  }
  for (const wchar_t* word : {L"true", L"1", L"Si", L"VERDADERO", L"correcto"})
    EXPECT_EQ(outcome<bool>(var(word)), "1") << word;
  for (const wchar_t* word : {L"false", L"0", L"No", L"FALSO", L"incorrecto"})
    EXPECT_EQ(outcome<bool>(var(word)), "0") << word;
}

TEST(var, conversions_to_texts_dates_and_buffers) {
  EXPECT_EQ(static_cast<wchar_t>(var(L"zeta")), L'z');
  EXPECT_EQ(static_cast<wchar_t>(var(L"")), L'\0');
  EXPECT_THROW((void)static_cast<wchar_t>(var(65)), std::bad_cast);
  EXPECT_EQ(static_cast<std::wstring>(var(1.25)), L"1.250000");
  const ruvo::binary from_text = var(L"\u00F1");
  EXPECT_EQ(from_text.size(), 2U);
  const ruvo::memo from_number = var(12);
  EXPECT_EQ(from_number.to_string(), L"12");

  const ruvo::date leap = var(L" 20240229 ");
  EXPECT_EQ(leap.to_string(ruvo::date::canonical), L"29-02-2024");
  const ruvo::date written = var(L"01-12-1999");
  EXPECT_EQ(static_cast<long>(written), 19991201L);
  const ruvo::date of_instant = var(ruvo::datetime(86399.0));
  EXPECT_EQ(static_cast<long>(of_instant), 19700101L);
  const ruvo::time noon = var(120000);
  EXPECT_EQ(noon.to_string(ruvo::time::canonical), L"12:00:00");
  const ruvo::datetime second = var(L"02-01-1970 00:00:01");
  EXPECT_EQ(second.get_lapso(), 86401);
  const ruvo::datetime local = var(ruvo::datetime(0.0, ruvo::times::LOCAL));
  EXPECT_EQ(local.get_huso_horario(), ruvo::times::LOCAL);
  EXPECT_THROW((void)var(L"31-02-2024").operator ruvo::date(), ruvo::exception);
  for (const var& other : {var(1.5), var(true), var(L'1')}) {
    EXPECT_EQ(outcome<ruvo::date>(other), "bad_cast");
    EXPECT_EQ(outcome<ruvo::time>(other), "bad_cast");
    EXPECT_EQ(outcome<ruvo::datetime>(other), "bad_cast");
  }
}

TEST(var, numbers_may_lie_at_a_text) {
  for (const wchar_t* const number : {L"12", L"-3", L"+7.25", L"7.", L" 1\t"})
    EXPECT_TRUE(var(number).can_be_number()) << number;
  for (const wchar_t* const other : {L"1e5", L".5", L"", L"--1", L"1.2.3", L"1 2", L"\u0661", L"\xA0+1"})
    EXPECT_FALSE(var(other).can_be_number()) << other;
}

TEST(var, fixed_text_is_correctly_rounded) {
  std::mt19937_64 random(20261121);
  for (int i = 0; i < 200000; ++i) {
    const auto exponent = static_cast<int>(random() % 400) - 40;
    const double value = std::ldexp(static_cast<double>(static_cast<long long>(random())), exponent - 63);
    char expected[400];
    std::snprintf(expected, sizeof expected, "%.6f", value);
    const std::wstring text = var(value).to_string();
    ASSERT_EQ(std::string(text.begin(), text.end()), expected);
  }
}

TEST(var, equality_is_by_type_and_text) {
  EXPECT_FALSE(var(1) == var(1L));
  EXPECT_TRUE(var(1) == var(1));
  EXPECT_TRUE(var() == var());
  EXPECT_TRUE(var(1e-9) == var(0.0));
  EXPECT_FALSE(var(-0.0) == var(0.0));
  EXPECT_TRUE(var(10) < var(9));
  EXPECT_FALSE(var(2) < var(L"10"));
  EXPECT_TRUE(var(7) == 7);
  EXPECT_TRUE(var(L"x") == L"x");
  EXPECT_TRUE(var(L"x") != std::wstring(L"y"));
  EXPECT_TRUE(var(3).instanceof (typeid(int)));
  EXPECT_FALSE(var().instanceof (typeid(var)));
  EXPECT_EQ(*static_cast<const std::type_info*>(var()), typeid(var));
}

}  // namespace
