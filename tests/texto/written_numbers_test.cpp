// SPDX-License-Identifier: BSL-1.0

// Numbers as people write them, read strictly and leniently.

#include <ruvo/texto/written_numbers.hpp>

#include <string>

#include <gtest/gtest.h>

#include "support/rounds.hpp"

namespace texto = ruvo::texto;
using texto::number_fault;

namespace {

constexpr texto::number_options spanish{L',', L'.'}, english{L'.', L','}, french{L',', L'\u202F'},
    ungrouped{L',', L','};

texto::number_options leniently(texto::number_options options) {
  options.lenient = true;
  return options;
}

}  // namespace

class written_numbers : public generated_inputs {};

TEST_F(written_numbers, that_are_read) {
  const struct {
    const wchar_t* text;
    texto::number_options options;
    const wchar_t* plain;
    const wchar_t* unit;
    bool is_ambiguous = false;
  } rows[] = {
      {L"1.234,56", {}, L"1234.56", L""},  // a thread without application has ',' and '.'
      {L"1,234.56", english, L"1234.56", L""},
      {L"1.234", spanish, L"1234", L""},
      {L"1.234", english, L"1.234", L""},
      {L"1.234", {L'.'}, L"1.234", L""},  // the other separator is then the opposite
      {L"(12,30)", spanish, L"-12.30", L""},
      {L"12,5 %", spanish, L"12.5", L"%"},
      {L"1.234 €", spanish, L"1234", L"€"},
      {L"-EUR 1.234,5", spanish, L"-1234.5", L"EUR"},
      {L"(5 €)", spanish, L"-5", L"€"},
      {L"\u00A0\u221212‰ ", spanish, L"-12", L"‰"},
      {L"+007,50", spanish, L"7.50", L""},
      {L"-0,00", spanish, L"0.00", L""},
      {L"1 234\u00A0567,8", french, L"1234567.8", L""},
      {L"1234567,8", ungrouped, L"1234567.8", L""},
      {L"12345678901234567890123,45", spanish, L"12345678901234567890123.45", L""},
      {L"1,234.56", leniently(spanish), L"1234.56", L""},
      {L"1.234", leniently(spanish), L"1234", L"", true},
      {L"1,234", leniently(spanish), L"1.234", L"", true},
      {L"1.234", leniently(french), L"1.234", L"", true},
      {L"0.123", leniently(spanish), L"0.123", L""},
      {L"1234.567", leniently(spanish), L"1234.567", L""},
      {L"12.50", leniently(spanish), L"12.50", L""},
      {L"1,234,567", leniently(spanish), L"1234567", L""},
      {L"1 234.567", leniently(spanish), L"1234.567", L""},
      {L"1’234’567.5", leniently(spanish), L"1234567.5", L""},
      {L",5-", leniently(spanish), L"-0.5", L""},
      {L"5,", leniently(spanish), L"5", L""},
      {L"– 5 euros", leniently(spanish), L"-5", L"EUR"},
      {L"usd12", leniently(spanish), L"12", L"USD"},
  };
  for (const auto& row : rows) {
    const auto read = texto::parse_number(row.text, row.options);
    EXPECT_TRUE(read) << row.text << texto::message_of(read);
    EXPECT_EQ(read.plain, row.plain) << row.text;
    EXPECT_EQ(read.unit, row.unit) << row.text;
    EXPECT_EQ(read.value, std::stod(row.plain)) << row.text;
    EXPECT_EQ(read.is_ambiguous, row.is_ambiguous) << row.text;
    EXPECT_EQ(read.position, 0U);
  }
}

TEST_F(written_numbers, that_are_wrong) {
  texto::number_options bare = spanish;
  bare.takes_units = false;
  const struct {
    const wchar_t* text;
    texto::number_options options;
    number_fault what;
    std::size_t position;
  } rows[] = {
      {L" ", spanish, number_fault::empty, 0},
      {L"€", spanish, number_fault::digits, 1},
      {L"12a", spanish, number_fault::character, 3},
      {L"1 234", spanish, number_fault::character, 3},
      {L"1e5", spanish, number_fault::character, 2},
      {L"\uFF11", spanish, number_fault::character, 1},
      {L"5,", spanish, number_fault::digits, 2},
      {L",5", spanish, number_fault::digits, 1},
      {L",", leniently(spanish), number_fault::digits, 1},
      {L"1,234.56", spanish, number_fault::separator, 6},
      {L"1,2,3", spanish, number_fault::separator, 4},
      {L"1.234", ungrouped, number_fault::separator, 2},
      {L"1.23", spanish, number_fault::grouping, 3},
      {L"12.5", spanish, number_fault::grouping, 4},
      {L"1234.567", spanish, number_fault::grouping, 1},
      {L"0.123", spanish, number_fault::grouping, 1},
      {L"1..234", spanish, number_fault::digits, 3},
      {L"5.", spanish, number_fault::digits, 2},
      {L".5", spanish, number_fault::digits, 1},
      {L"1.234.,5", spanish, number_fault::digits, 7},
      {L"1,23.456,7", leniently(spanish), number_fault::separator, 5},
      {L"1.23.456", leniently(spanish), number_fault::grouping, 3},
      {L"12'", leniently(spanish), number_fault::digits, 3},
      {L"1 234'567", leniently(spanish), number_fault::separator, 6},
      {L"- 5", spanish, number_fault::sign, 1},
      {L"5-", spanish, number_fault::sign, 2},
      {L"--5", spanish, number_fault::sign, 2},
      {L"(-5)", spanish, number_fault::sign, 2},
      {L"(5", spanish, number_fault::sign, 1},
      {L"5)", spanish, number_fault::sign, 2},
      {L"5 % %", spanish, number_fault::unit, 5},
      {L"5 €", bare, number_fault::unit, 3},
      {L"5 eur", spanish, number_fault::character, 3},
  };
  for (const auto& row : rows) {
    const auto read = texto::parse_number(row.text, row.options);
    EXPECT_EQ(read.fault, row.what) << row.text;
    EXPECT_EQ(read.position, row.position) << row.text;
    EXPECT_TRUE(read.plain.empty() && !texto::message_of(read).empty());
  }
  const auto large = texto::parse_number(L" 1" + std::wstring(400, L'0'), spanish);
  EXPECT_EQ(large.fault, number_fault::too_large);
  EXPECT_EQ(large.position, 2U);
}

TEST_F(written_numbers, of_any_size_in_all_forms) {
  dice chance(21);
  constexpr texto::number_options choices[] = {spanish, english, french};
  const auto digits = [&chance](std::size_t count) {
    std::wstring out;
    while (out.size() < count) out += chance.unit(L"0123456789");
    return out;
  };
  for (unsigned round = 0; round < 2000 * rounds(); ++round, ++inputs) {
    const std::wstring whole = chance.unit(L"123456789") + digits(chance.below(20)),
                       decimals = digits(chance.below(6));
    const texto::number_options& options = chance.any(choices);
    std::wstring text = whole;
    const bool is_grouped = chance.one_in(2);
    for (std::size_t at = whole.size(); is_grouped && at > 3; at -= 3)
      text.insert(at - 3, 1, options.thousands);
    if (!decimals.empty()) text.append(1, options.decimal).append(decimals);
    const bool is_negative = chance.one_in(2);
    const std::wstring unit = pieces(L"- % € EUR $")[chance.below(5)];
    if (unit == L"€" && chance.one_in(2)) {
      text = unit + text;
    } else if (unit != L"-") {
      text += (chance.one_in(2) ? L" " : L"") + unit;
    }
    if (is_negative) text = chance.one_in(2) ? L"(" + text + L")" : L"-" + text;
    const std::wstring plain =
        (is_negative ? L"-" : L"") + whole + (decimals.empty() ? L"" : L"." + decimals);
    for (const bool lenient : {false, true}) {
      const auto read = texto::parse_number(text, lenient ? leniently(options) : options);
      ASSERT_EQ(read.plain, plain) << text << texto::message_of(read);
      ASSERT_EQ(read.value, std::stod(plain)) << text;
      ASSERT_EQ(read.unit, unit == L"-" ? L"" : unit) << text;
    }
  }
}
