// SPDX-License-Identifier: BSL-1.0

// Replacing, splitting, masks and the fixed patterns.

#include <ruvo/texto.hpp>

#include <regex>

#include <gtest/gtest.h>

#include "support/dice.hpp"

namespace texto = ruvo::texto;

namespace {

dice chance(4);

/// The plain loop over find.
std::wstring replaced(const std::wstring& text, const std::wstring& from, const std::wstring& to) {
  std::wstring made;
  std::size_t read = 0;
  for (std::size_t at; (at = text.find(from, read)) != text.npos; read = at + from.size())
    made += text.substr(read, at - read) + to;
  return made + text.substr(read);
}

}  // namespace

TEST(replace, is_literal) {
  std::wstring text = L"1.5*(2)$";
  EXPECT_EQ(texto::safe_replace(text, L".", L"$&"), L"1$&5*(2)$");
  EXPECT_EQ(texto::safe_replace(text, L"*(", L"\\"), L"1$&5\\2)$");
  EXPECT_EQ(texto::safe_replace(text, L"", L"x"), L"1$&5\\2)$");
  EXPECT_EQ(texto::replace(text, L'$', L'*'), L"1*&5\\2)*");
  EXPECT_EQ(texto::safe_replace(text, L'*', L'.'), L"1.&5\\2).");
  EXPECT_EQ(texto::safe_replace(text, L'.', L'\0'), std::wstring(L"1\0&5\\2)\0", 8));
}

TEST(replace, texts_that_repeat_themselves_take_linear_time) {
  const std::wstring run(3000, L'a'), part = run + L"b" + run;
  std::wstring text;
  for (int n = 0; n < 40; ++n)
    text += std::wstring(chance.below(4) * 20000, L'a') + (n % 3 == 0 ? part : L"b");
  std::wstring made = text;
  EXPECT_TRUE(texto::std_replace(made, part, L"<>", true) == replaced(text, part, L"<>"));
  EXPECT_NE(made, text);
  std::wstring large(5000000, L'a');
  texto::std_replace(large, std::wstring(500000, L'a') + L"b" + std::wstring(500000, L'a'), L"", true);
  EXPECT_EQ(large.size(), 5000000u);
  EXPECT_EQ(texto::safe_replace(large, L"a", L"''").size(), 10000000u);
}

TEST(split, edges) {
  const struct {
    const wchar_t *text, *separator;
    std::vector<std::wstring> expected;
  } rows[] = {
      {L"", L",", {L""}},
      {L",", L",", {L""}},
      {L",a,,b,", L",", {L"", L"a", L"", L"b"}},
      {L"abc", L"", {L"abc"}},
      {L"", L"", {L""}},
      {L"a\\b\\c", L"\\", {L"a", L"b", L"c"}},
      {L"1\\d2", L"\\d", {L"1", L"2"}},
      {L"aaa", L"aa", {L"", L"a"}},
      {L"a", L"abc", {L"a"}},
  };
  for (const auto& row : rows) EXPECT_EQ(texto::split(row.text, row.separator), row.expected) << row.text;
  std::vector<std::wstring> out{L"x", L"a b"};
  texto::split_on(out, out[1], L" ");
  EXPECT_EQ(out, (std::vector<std::wstring>{L"x", L"a b", L"a", L"b"}));
  EXPECT_EQ(texto::split(std::wstring(5000000, L','), L",").size(), 5000000u);
}

TEST(mask, modes_without_wildcards) {
  const struct {
    const wchar_t *text, *mask;
    std::wstring modes;  // in which the mask matches
  } rows[] = {{L"abc", L"abc", L"0123459"}, {L"abc", L"ab", L"1359"}, {L"abc", L"bc", L"2359"},
              {L"abcd", L"bc", L"359"},     {L"abc", L"B", L""},      {L"", L"", L"0123459"},
              {L"abc", L"", L"12359"},      {L"", L"a", L""}};
  for (const auto& row : rows) {
    for (const wchar_t mode : std::wstring(L"0123459")) {
      EXPECT_EQ(texto::match_mask(row.text, row.mask, mode - L'0'), texto::contains(row.modes, {mode}))
          << row.text << L" " << row.mask << L" " << std::wstring(1, mode);
    }
  }
  const std::wstring large(5000000, L'a');
  for (const wchar_t* const mask : {L"ab*", L"ab**", L"*", L"a*b*", L"*?b", L"??"})
    EXPECT_TRUE(texto::match_mask(L"ab", mask, 0)) << mask;
  for (const wchar_t* const mask : {L"ab?", L"a*a", L"?", L"*b?", L"b*"})
    EXPECT_FALSE(texto::match_mask(L"ab", mask, 0)) << mask;
  EXPECT_FALSE(texto::match_mask(large, L"a*a*a*a*b", 0));
  EXPECT_TRUE(texto::match_mask(large + L"b", L"a*a*a*a*b", 0));
}

TEST(patterns, fixed_ones_give_the_same_answers) {
  const std::wregex quoted(L"([\"'])(.*?)([\"'])"), star(L"\\*"), question(L"\\?");
  const std::wregex special(L"[-[\\]{}()*+?.,\\^$|#\\s]");
  for (int round = 0; round < 10000; ++round) {
    const std::wstring text = chance.joined({L"a", L"\"", L"'", L" ", L"\n", L"\r"}, 12);
    std::wsmatch hit;
    const bool expected = std::regex_search(text, hit, quoted);
    bool found = !expected;
    ASSERT_EQ(texto::content(text, &found), expected ? hit.str(2) : text) << text;
    ASSERT_EQ(found, expected) << text;
    const std::wstring mask = chance.joined(pieces(L"a * ? % _"), 8);
    ASSERT_EQ(texto::mask_to_sql(mask),
              std::regex_replace(std::regex_replace(mask, star, L"%"), question, L"_"));
  }
  std::wstring ascii;
  for (wchar_t c = 1; c < 128; ++c) ascii += c;
  EXPECT_EQ(texto::escape_regex_pattern(ascii), std::regex_replace(ascii, special, L"\\$&"));
  EXPECT_EQ(texto::escape_regex_pattern(L"a\x00A0ñ\x3000"), L"a\\\x00A0ñ\\\x3000");
  EXPECT_EQ(texto::content(L"name=x"), L"name=x");
}
