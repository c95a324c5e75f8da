// SPDX-License-Identifier: BSL-1.0

// Decimals: arithmetic against vectors, texts, values and documents that keep every digit, shares of sums.

#include <ruvo/ruvo.hpp>

#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

using ruvo::decimal;
using ruvo::rounding;
namespace exc = ruvo::exc;

namespace {

decimal operator""_d(const char* text, std::size_t size) { return decimal(std::string_view(text, size)); }

const std::string nines(38, '9');

/// What an operation gives: the number, or the class of the failure.
template <class Operation>
std::string given(Operation operation) {
  try {
    return ruvo::texto::to_utf_8(decimal(operation()).to_string());
  } catch (const exc::decimalOverflow&) {
    return "overflow";
  } catch (const exc::decimalInexact&) {
    return "inexact";
  } catch (const exc::decimalDivisionByZero&) {
    return "zero";
  } catch (const exc::decimalBadText& failure) {
    return "text " + std::to_string(ruvo::serializer::failure_position(failure));
  } catch (const exc::BadArgument&) {
    return "argument";
  }
}

std::string joined(const std::vector<decimal>& numbers) {
  std::string out;
  for (const decimal& number : numbers) out += ruvo::texto::to_utf_8(number.to_string()) + ' ';
  return out;
}

class english_app : public ruvo::kesta::app {
 public:
  english_app() : app(nullptr) {}
  wchar_t get_decimal_separator() const override { return L'.'; }
  wchar_t get_thousands_separator() const override { return L','; }
};

}  // namespace

TEST(decimal, adds_and_multiplies_exactly_or_says_so) {
  const struct {
    std::string a, b, sum, product;
  } rows[] = {
      {"1.10", "2.2", "3.30", "2.420"},
      {"-0.01", "0.01", "0.00", "-0.0001"},
      {"0", "-5", "-5", "0"},
      {"18446744073709551615", "1", "18446744073709551616", "18446744073709551615"},
      {"18446744073709551615", "0.01", "18446744073709551615.01", "184467440737095516.15"},
      {"4294967296", "4294967296", "8589934592", "18446744073709551616"},
      {"-18446744073709551616", "0.5", "-18446744073709551615.5", "-9223372036854775808.0"},
      {nines, "0", nines, "0"},
      {nines, "1", "overflow", nines},
      {nines, "0.1", "inexact", "9999999999999999999999999999999999999.9"},
      {nines, "-0.00", nines, "0.00"},
      {nines, nines, "overflow", "overflow"},
      {"1e37", "1.000", "10000000000000000000000000000000000001", "10000000000000000000000000000000000000"},
      {"1e-20", "1e-20", "0.00000000000000000002", "inexact"},
      {"25e-20", "4e-20", "0.00000000000000000029", "0.00000000000000000000000000000000000001"},
  };
  for (const auto& row : rows) {
    const decimal a(row.a), b(row.b);
    EXPECT_EQ(given([&] { return a + b; }), row.sum) << row.a << " + " << row.b;
    EXPECT_EQ(given([&] { return b + a; }), row.sum) << row.b << " + " << row.a;
    EXPECT_EQ(given([&] { return a - -b; }), row.sum) << row.a << " - -" << row.b;
    EXPECT_EQ(given([&] { return a * b; }), row.product) << row.a << " * " << row.b;
  }
}

TEST(decimal, rounds_once_to_the_neighbour_that_is_asked_for) {
  using enum rounding;
  const struct {
    const char* number;
    std::vector<const char*> rounded;  // to one decimal: half_up half_even half_down down up floor ceiling
  } rows[] = {
      {"2.25", {"2.3", "2.2", "2.2", "2.2", "2.3", "2.2", "2.3"}},
      {"-2.25", {"-2.3", "-2.2", "-2.2", "-2.2", "-2.3", "-2.3", "-2.2"}},
      {"2.35", {"2.4", "2.4", "2.3", "2.3", "2.4", "2.3", "2.4"}},
      {"2.2500001", {"2.3", "2.3", "2.3", "2.2", "2.3", "2.2", "2.3"}},
      {"-0.04", {"0.0", "0.0", "0.0", "0.0", "-0.1", "-0.1", "0.0"}},
      {"3", {"3.0", "3.0", "3.0", "3.0", "3.0", "3.0", "3.0"}},
      {"12345678901234567890123456789.95",
       {"12345678901234567890123456790.0", "12345678901234567890123456790.0",
        "12345678901234567890123456789.9", "12345678901234567890123456789.9",
        "12345678901234567890123456790.0", "12345678901234567890123456789.9",
        "12345678901234567890123456790.0"}},
  };
  for (const auto& row : rows) {
    const decimal number(row.number);
    std::size_t n = 0;
    for (const rounding how : {half_up, half_even, half_down, down, up, floor, ceiling}) {
      const char* const expected = row.rounded[n++];
      EXPECT_EQ(given([&] { return number.rounded(1, how); }), expected) << row.number << ' ' << n;
      EXPECT_EQ(given([&] { return (number * 4).divided(4, 1, how); }), expected) << row.number << ' ' << n;
      EXPECT_EQ(given([&] { return number.multiplied(1, 1, how); }), expected) << row.number << ' ' << n;
    }
  }
  EXPECT_EQ(given([] { return "2.25"_d.rounded(1, none); }), "inexact");
  EXPECT_EQ(given([] { return "2.20"_d.rounded(1, none); }), "2.2");
  EXPECT_EQ(given([] { return "1e-20"_d.multiplied("1e-20"_d, 1); }), "0.0");
  EXPECT_EQ(given([] { return decimal(1).divided(3, 38); }), "0." + std::string(38, '3'));
  EXPECT_EQ(given([] { return decimal(1).divided(3, 2, none); }), "inexact");
  EXPECT_EQ(given([] { return decimal(1).divided(8, 3, none); }), "0.125");
  EXPECT_EQ(given([] { return decimal(1).divided(0, 2); }), "zero");
  EXPECT_EQ(given([] { return decimal(1).divided("1e-38"_d, 1); }), "overflow");
  EXPECT_EQ(given([] { return decimal(nines).divided("1e-38"_d, 38); }), "overflow");
  EXPECT_EQ(given([] { return decimal(nines).rounded(1); }), "overflow");
  // The first estimate of this quotient is one too large after its correction, too.
  EXPECT_EQ(given([] {
              return "2596148428662950904457933577256960"_d.divided("604462909807314587353089"_d, 0, down);
            }),
            "4294967294");
  for (const int scale : {-1, 39}) {
    EXPECT_EQ(given([&] { return decimal(1).rounded(scale); }), "argument");
    EXPECT_EQ(given([&] { return decimal(1, scale); }), "argument");
  }
}

TEST(decimal, a_failure_leaves_the_number_and_is_reported) {
  decimal number = "2.25"_d;
  ruvo::exception failure;
  EXPECT_FALSE(number.round(1, rounding::none, failure));
  EXPECT_THROW(failure.raise(), exc::decimalInexact);
  EXPECT_FALSE(number.divide(0, 1, rounding::up, failure));
  EXPECT_THROW(failure.raise(), exc::decimalDivisionByZero);
  EXPECT_FALSE(number.add(decimal(nines), failure));
  EXPECT_FALSE(number.read(L"2,25", failure));
  EXPECT_EQ(number.to_string(), L"2.25");
  EXPECT_TRUE(number.subtract("0.25"_d, failure) && number.multiply(3, failure) &&
              number.multiply("0.5"_d, 1, rounding::up, failure));
  EXPECT_EQ(number.to_string(), L"3.0");
}

TEST(decimal, equal_numbers_are_equal_whatever_their_scale) {
  const std::hash<decimal> hash;
  const std::vector<decimal> ascending = {decimal("-" + nines), -1, "-0.5"_d, 0, "1e-38"_d, "0.5"_d, 1,
                                          decimal(nines)};
  for (std::size_t a = 0; a < ascending.size(); ++a) {
    for (std::size_t b = 0; b < ascending.size(); ++b) {
      EXPECT_EQ(ascending[a] <=> ascending[b], a <=> b) << a << ' ' << b;
      EXPECT_EQ(ascending[a] == ascending[b], a == b);
    }
  }
  for (const auto& [a, b] : {std::pair("1", "1.00"), {"0", "0.000"}, {"-12.5", "-12.50"}, {"1e37", "1e37"}}) {
    const decimal one(a), other(b);
    EXPECT_EQ(one, other);
    EXPECT_EQ(hash(one), hash(other));
    EXPECT_EQ(ruvo::var(one), ruvo::var(other));
  }
  EXPECT_NE(hash(1), hash(-1));
  EXPECT_EQ("100.50"_d.trimmed().to_string(), L"100.5");
  EXPECT_EQ(decimal(100).trimmed().to_string(), L"100");
  EXPECT_EQ(("0.001"_d).count_digits(), 1);
  EXPECT_EQ(decimal(nines).count_digits(), 38);
}

TEST(decimal, reads_what_is_written_and_says_where_it_cannot) {
  const struct {
    std::string text, read;
  } rows[] = {
      {"-1234.56", "-1234.56"},
      {"+007.50", "7.50"},
      {".5", "0.5"},
      {"5.", "5"},
      {"-0.00", "0.00"},
      {"1.50e1", "15.0"},
      {"15e-1", "1.5"},
      {"1e37", "1" + std::string(37, '0')},
      {"0e99", "0"},
      {"1e38", "overflow"},
      {"1e-39", "inexact"},
      {"10e-39", "0." + std::string(37, '0') + "1"},
      {nines + ".0", nines},
      {nines + ".5", "inexact"},
      {nines + "9", "overflow"},
      {"", "text 1"},
      {"-", "text 2"},
      {".", "text 2"},
      {"1e", "text 3"},
      {"1,5", "text 2"},
      {" 1", "text 1"},
      {"1 ", "text 2"},
      {"1.2.3", "text 4"},
      {"0x1", "text 2"},
      {"NaN", "text 1"},
      {"1e99999999999999999999", "overflow"},
      {"1e-99999999999999999999", "inexact"},
      {std::string(60, '0') + "1.5", "1.5"},
      {"0." + std::string(60, '0'), "0." + std::string(38, '0')},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(given([&] { return decimal(row.text); }), row.read) << row.text;
    EXPECT_EQ(given([&] { return decimal(ruvo::texto::to_utf_16(row.text)); }), row.read) << row.text;
  }
  EXPECT_EQ(given([] { return decimal(2.675); }), "2.675");
  EXPECT_EQ(given([] { return decimal(0.1f); }), "0.1");
  EXPECT_EQ(given([] { return decimal(-1e22); }), "-1" + std::string(22, '0'));
  EXPECT_EQ(given([] { return decimal(1e300); }), "overflow");
  EXPECT_EQ(given([] { return decimal(std::numeric_limits<double>::quiet_NaN()); }), "argument");
  EXPECT_EQ(static_cast<double>("-2.675"_d), -2.675);
  EXPECT_EQ(static_cast<double>("0.1234567890123456789012345"_d), 0.1234567890123456789012345);
  EXPECT_EQ(static_cast<long long>("-9223372036854775808.00"_d), std::numeric_limits<long long>::min());
  EXPECT_THROW(static_cast<void>(static_cast<long long>("9223372036854775808"_d)), exc::decimalOverflow);
  EXPECT_THROW(static_cast<void>(static_cast<long long>("1.5"_d)), exc::decimalInexact);
}

TEST(decimal, reads_and_writes_with_the_separators_of_the_thread) {
  EXPECT_EQ("-1234567.891"_d.format(), L"-1.234.567,891");
  EXPECT_EQ("2.675"_d.format(2), L"2,68");
  EXPECT_EQ("0.5"_d.format(0, rounding::half_even), L"0");
  const struct {
    const wchar_t* text;
    std::string read;
  } rows[] = {{L"-1.234,56", "-1234.56"}, {L"1234,5", "1234.5"},    {L"12.345.678", "12345678"},
              {L"1.23", "text 5"},        {L"1234.567", "text 5"},  {L"1.2345", "text 6"},
              {L"1,", "text 3"},          {L",5", "text 1"},        {L"1.234,5.6", "text 8"},
              {L"1,5e3", "text 4"},       {L"1,234,567", "text 6"}, {L"0.123", "text 2"}};
  for (const auto& row : rows) {
    EXPECT_EQ(given([&] {
                decimal read;
                ruvo::exception failure;
                if (!read.read_local(row.text, failure)) failure.raise();
                return read;
              }),
              row.read);
  }
  english_app app;
  const ruvo::thread_scope scope(app);
  decimal read;
  ruvo::exception failure;
  EXPECT_TRUE(read.read_local(L"-1,234.56", failure));
  EXPECT_EQ(read.format(), L"-1,234.56");
}

TEST(decimal, amounts_in_words) {
  using ruvo::texto::cifras_letras;
  for (const double amount : {0.0, 1.0, -21030.5, 1000000.01, 2002000.21, -0.01, 999999999999999.0})
    EXPECT_EQ(cifras_letras(decimal(amount)), cifras_letras(amount));
  EXPECT_EQ(cifras_letras(decimal(nines)).substr(0, 56),
            L"Noventa y Nueve Sextillones Novecientos Noventa y Nueve ");
  EXPECT_EQ(cifras_letras("1000000000000000001000000.500"_d),
            L"Un Cuatrillón Un Millón con Cincuenta Céntimos");
  EXPECT_THROW(cifras_letras("0.001"_d), exc::decimalInexact);
}

TEST(decimal, a_value_keeps_every_digit) {
  const decimal amount = "123456789012345678901234567.890"_d;
  ruvo::bundle order;
  order[L"total"] = amount;
  const ruvo::xvar& held = order[L"total"];
  EXPECT_TRUE(held.is_number() && held.is_decimal() && held.is_primitive() && !held.is_integer());
  EXPECT_TRUE(held.can_be_number() && !held.can_be_boolean());
  EXPECT_EQ(decimal(held).to_string(), amount.to_string());
  EXPECT_EQ(held.to_string(), amount.to_string());
  EXPECT_EQ(order.get_double(L"total"), 123456789012345678901234567.890);
  EXPECT_EQ(static_cast<long long>(held), std::numeric_limits<long long>::max());
  EXPECT_EQ(static_cast<int>(ruvo::var("-7.9"_d)), -7);
  EXPECT_EQ(static_cast<unsigned long long>(ruvo::var("18446744073709551615.9"_d)), ~0ULL);
  EXPECT_EQ(ruvo::bundle(order).to_string(), L"{\"total\":123456789012345678901234567.890}");

  std::string json;
  ASSERT_FALSE(ruvo::serializer::write_standard_json(json, order));
  EXPECT_EQ(json, "{\"total\":123456789012345678901234567.890}");
  ruvo::serializer::json_read_options options;
  options.decimals = true;
  ruvo::bundle read;
  ASSERT_FALSE(ruvo::serializer::read_standard_json(read, json, nullptr, options));
  EXPECT_EQ(read[L"total"].to_string(), amount.to_string());
  std::wstring own;
  ruvo::serializer::json house;
  ASSERT_FALSE(house.serialize(own, order, nullptr));
  read.clear();
  ASSERT_FALSE(house.deserialize(read, own, nullptr));
  EXPECT_EQ(decimal(read[L"total"]).to_string(), amount.to_string());
  std::wstring xml;
  ASSERT_FALSE(ruvo::serializer::write_well_formed_xml(xml, order, nullptr));
  EXPECT_NE(xml.find(L">123456789012345678901234567.890<"), xml.npos) << ruvo::texto::to_utf_8(xml);
}

TEST(decimal, values_of_other_kinds_convert_exactly_or_throw) {
  const struct {
    ruvo::var value;
    const wchar_t* number;
  } rows[] = {{-7, L"-7"},  {~0ULL, L"18446744073709551615"}, {2.675, L"2.675"}, {0.1f, L"0.1"},
              {true, L"1"}, {L" 12.50 ", L"12.50"},           {short{3}, L"3"},  {"1e3", L"1000"}};
  for (const auto& row : rows) EXPECT_EQ(decimal(row.value).to_string(), row.number);
  EXPECT_THROW(static_cast<void>(decimal(ruvo::var(L"12,50"))), exc::decimalBadText);
  EXPECT_THROW(static_cast<void>(decimal(ruvo::var(ruvo::date(20240229)))), std::bad_cast);
  EXPECT_THROW(static_cast<void>(decimal(ruvo::var())), exc::NullValue);
}

TEST(decimal, json_numbers_become_decimals_by_option) {
  using namespace ruvo::serializer;
  json_read_options options;
  options.decimals = true;
  const std::string text = "[1, 1.50, -0.1e-2, 18446744073709551616, 1E2]";
  ruvo::list whole;
  ASSERT_FALSE(read_standard_json(whole, text, nullptr, options));
  EXPECT_EQ(whole.to_string(), L"[1,1.50,-0.001,18446744073709551616,100]");
  EXPECT_TRUE(whole[0].is_integer());
  json_values pieces(options);
  ruvo::xvar value;
  for (const char c : text) ASSERT_FALSE(pieces.feed(std::string_view(&c, 1)));
  ASSERT_FALSE(pieces.finish());
  ASSERT_TRUE(pieces.next(value));
  EXPECT_EQ(value, ruvo::xvar(whole));
  for (const char* const beyond : {"[1e400]", "[1e-39]", "[-0.123456789012345678901234567890123456789]"}) {
    ruvo::exception failure;
    EXPECT_TRUE(read_standard_json(whole, std::string_view(beyond), &failure, options));
    EXPECT_THROW(failure.raise(), exc::jsonBadNumber);
    json_read_options as_text = options;
    as_text.inexact = json_number::text;
    ASSERT_FALSE(read_standard_json(whole, std::string_view(beyond), &failure, as_text));
    EXPECT_TRUE(whole[0].is_charsquence());
  }
}

TEST(shares, add_up_to_the_total) {
  EXPECT_EQ(joined(ruvo::distribute(100, {1, 1, 1})), "33.34 33.33 33.33 ");
  EXPECT_EQ(joined(ruvo::distribute(-100, {1, 1, 1})), "-33.34 -33.33 -33.33 ");
  EXPECT_EQ(joined(ruvo::distribute(10, {50, 30, 20})), "5.00 3.00 2.00 ");
  EXPECT_EQ(joined(ruvo::distribute("0.05"_d, {"0.7"_d, "0.2"_d, "0.1"_d})), "0.04 0.01 0.00 ");
  EXPECT_EQ(joined(ruvo::distribute(10, {3, -1, 1}, 0)), "10 -3 3 ");
  EXPECT_EQ(joined(ruvo::distribute(0, {1, -1})), "0.00 0.00 ");
  EXPECT_EQ(joined(ruvo::rounded_to_total({"0.333"_d, "0.333"_d, "0.334"_d}, 1)), "0.33 0.33 0.34 ");
  EXPECT_EQ(joined(ruvo::rounded_to_total({"1.005"_d, "-1.005"_d}, 0)), "1.01 -1.01 ");
  EXPECT_EQ(given([] { return ruvo::percentage("0.50"_d, 21); }), "0.11");
  const decimal least = "1e-38"_d, many = decimal("0." + nines);
  EXPECT_EQ(ruvo::percentage(100, many, 38), many);
  EXPECT_EQ(ruvo::percentage(least, least, 0), 0);
  EXPECT_EQ(ruvo::percentage(least, least, 38, rounding::up), least);
  EXPECT_EQ(given([&] { return ruvo::percentage(least, least, 38, rounding::none); }), "inexact");
  EXPECT_EQ(given([] { return ruvo::distribute(1, {1, -1}).front(); }), "argument");
  EXPECT_EQ(given([] { return ruvo::distribute("0.001"_d, {1}).front(); }), "inexact");
  const std::string zeros(35, '0');  // the sum has one digit too many, a zero
  EXPECT_EQ(
      given([&] {
        return ruvo::distribute(100, {decimal("25" + zeros + ".5"), decimal("75" + zeros + ".5")}).front();
      }),
      "overflow");
}

TEST(vat, bases_and_quotas_of_lines_add_up_to_those_of_their_rate) {
  const std::vector<ruvo::vat::line> lines = {{"10.05"_d, 21},  {"0.33"_d, 10}, {"7.77"_d, "21.00"_d},
                                              {"-10.05"_d, 21}, {"0.33"_d, 10}, {"5.005"_d, 0}};
  for (const auto prices : {ruvo::vat::prices::without_tax, ruvo::vat::prices::with_tax}) {
    const ruvo::vat::summary sums = ruvo::vat::sum_up(lines, prices);
    ASSERT_EQ(sums.rates.size(), 3u);
    decimal base, quota;
    for (const auto& rate : sums.rates) {
      decimal bases, quotas;
      for (std::size_t n = 0; n < lines.size(); ++n) {
        if (lines[n].percent != rate.percent) continue;
        bases += sums.bases[n], quotas += sums.quotas[n];
      }
      EXPECT_EQ(bases, rate.base);
      EXPECT_EQ(quotas, rate.quota);
      EXPECT_EQ(rate.base + rate.quota, rate.total);
      base += rate.base, quota += rate.quota;
    }
    EXPECT_EQ(sums.base, base);
    EXPECT_EQ(sums.quota, quota);
    EXPECT_EQ(sums.total, base + quota);
    EXPECT_EQ(sums.total.to_string(), prices == ruvo::vat::prices::with_tax ? L"13.44" : L"15.14");
    EXPECT_EQ(sums.rates[0].quota.to_string(), prices == ruvo::vat::prices::with_tax ? L"1.35" : L"1.63");
  }
  EXPECT_THROW(ruvo::vat::sum_up({{1, -100}}, ruvo::vat::prices::with_tax), exc::BadArgument);
  const std::string large(34, '9');  // there is no room for eight decimals more
  const std::vector<ruvo::vat::line> rich = {{decimal(large + ".99"), 21}, {"0.33"_d, 21}};
  EXPECT_EQ(joined(ruvo::vat::sum_up(rich).quotas), "21" + std::string(32, '0') + ".00 0.07 ");
  EXPECT_EQ(joined(ruvo::vat::sum_up(rich, ruvo::vat::prices::with_tax).bases),
            "8264462809917355371900826446280991.73 0.27 ");
}
