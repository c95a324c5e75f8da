// SPDX-License-Identifier: BSL-1.0

// Blanks at the ends, capital and small letters, and texts that are integers.

#include <ruvo/texto.hpp>

#include <cstdint>

#include <gtest/gtest.h>

namespace texto = ruvo::texto;

TEST(trim, takes_only_the_blanks_of_ascii) {
  const struct {
    std::wstring text, left, right, both;
  } rows[] = {
      {L"", L"", L"", L""},
      {L" \t\r\n\v\f", L"", L"", L""},
      {L"  a b  ", L"a b  ", L"  a b", L"a b"},
      {L"a", L"a", L"a", L"a"},
      {L"\x00A0x\x3000", L"\x00A0x\x3000", L"\x00A0x\x3000", L"\x00A0x\x3000"},
      {L"\x0120z\x0109", L"\x0120z\x0109", L"\x0120z\x0109", L"\x0120z\x0109"},  // low bytes are blanks
      {std::wstring(L" \0 ", 3), std::wstring(L"\0 ", 2), std::wstring(L" \0", 2), std::wstring(1, L'\0')},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(texto::ltrim_(row.text), row.left);
    EXPECT_EQ(texto::rtrim_(row.text), row.right);
    EXPECT_EQ(texto::trim_(row.text), row.both);
    std::wstring a = row.text, b = row.text, c = row.text;
    EXPECT_EQ(&texto::ltrim(a), &a);
    EXPECT_EQ(&texto::rtrim(b), &b);
    EXPECT_EQ(&texto::trim(c), &c);
    EXPECT_EQ(a, row.left);
    EXPECT_EQ(b, row.right);
    EXPECT_EQ(c, row.both);
  }
}

TEST(letter_case, every_unit_follows_the_tables) {
  std::wstring upper = L"ABCDEFGHIJKLMNOPQRSTUVWXYZÀÁÂÃÄÅÆÇÐÈÉÊËÌÍÎÏÑÒÓÔÕÖÙÚÛÜÝØ";
  std::wstring lower = L"abcdefghijklmnopqrstuvwxyzàáâãäåæçðèéêëìíîïñòóôõöùúûüýø";
  ASSERT_EQ(upper.size(), lower.size());
  std::wstring all, expected_lower, expected_upper;
  for (std::uint32_t unit = 0; unit < 0x10000; ++unit) {
    const auto c = static_cast<wchar_t>(unit);
    const std::size_t in_upper = upper.find(c);
    const std::size_t in_lower = lower.find(c);
    all.push_back(c);
    expected_lower.push_back(in_upper != upper.npos ? lower[in_upper] : c);
    expected_upper.push_back(in_lower != lower.npos ? upper[in_lower] : c);
    ASSERT_EQ(texto::to_lowercase(c), expected_lower.back()) << unit;
    ASSERT_EQ(texto::to_uppercase(c), expected_upper.back()) << unit;
  }
  EXPECT_TRUE(texto::to_lowercase_(all) == expected_lower);
  EXPECT_TRUE(texto::to_uppercase_(all) == expected_upper);
  std::wstring text = L"Ñu";
  EXPECT_EQ(&texto::to_uppercase(text), &text);
  EXPECT_EQ(text, L"ÑU");
  EXPECT_EQ(texto::to_lowercase(text), L"ñu");
}

TEST(checks, integers) {
  const struct {
    const wchar_t* text;
    bool integer, positive;
  } rows[] = {{L"0", true, true},        {L"-12", true, false},  {L"+1", false, false},
              {L"", false, false},       {L"-", false, false},   {L"1-", false, false},
              {L" 1", false, false},     {L"1.0", false, false}, {L"\x0661", false, false},
              {L"\xFF11", false, false}, {L"00012", true, true}};
  for (const auto& row : rows) {
    EXPECT_EQ(texto::is_integer(row.text), row.integer) << row.text;
    EXPECT_EQ(texto::is_integer_positive(row.text), row.positive) << row.text;
  }
  EXPECT_TRUE(texto::is_integer(L"-" + std::wstring(1000000, L'9')));
}
