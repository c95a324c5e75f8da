// SPDX-License-Identifier: BSL-1.0

// UTF-8 and UTF-16 against a plain way.

#include <ruvo/texto.hpp>

#include <random>

#include <gtest/gtest.h>

#include "support/plain_utf.hpp"

namespace texto = ruvo::texto;

namespace {

void put(std::wstring& out, char32_t point) {
  if (point >= 0x10000) {
    out.push_back(static_cast<wchar_t>(0xD800 + ((point - 0x10000) >> 10)));
    point = 0xDC00 + ((point - 0x10000) & 0x3FF);
  }
  out.push_back(static_cast<wchar_t>(point));
}

/// A run of characters of one kind: of one to four bytes, or of lone surrogates.
void put_run(std::wstring& out, std::mt19937& random) {
  static const struct {
    char32_t from, to;
  } kinds[] = {{0, 0x80},         {0x80, 0x800},       {0x800, 0xD800},
               {0xE000, 0x10000}, {0x10000, 0x110000}, {0xD800, 0xE000}};
  const auto& kind = kinds[random() % std::size(kinds)];
  for (auto left = random() % 3 ? random() % 4 : random() % 40; left; --left)
    put(out, kind.from + random() % (kind.to - kind.from));
}

}  // namespace

TEST(utf, every_code_point_comes_back) {
  std::wstring all;
  for (char32_t point = 0; point < 0x110000; ++point)
    if (point < 0xD800 || point >= 0xE000) put(all, point);
  const std::string bytes = texto::to_utf_8(all);
  EXPECT_EQ(bytes.size(), 0x80u + 0x780 * 2 + (0xF800 - 0x800) * 3 + 0x100000 * 4);
  EXPECT_TRUE(texto::to_utf_16(bytes) == all);
}

TEST(utf, malformed_parts_are_maximal) {
  const struct {
    std::string bytes;
    std::wstring text;
  } rows[] = {
      {"\xF0\x9F\x98", L"\xFFFD"},                        // cut short: one part
      {"\xE2\x82z", L"\xFFFDz"},                          // broken off by an ASCII character
      {"\xC0\xAF", L"\xFFFD\xFFFD"},                      // overlong: no part of it begins anything
      {"\xE0\x80\xAF", L"\xFFFD\xFFFD\xFFFD"},            // overlong
      {"\xED\xA0\x80", L"\xFFFD\xFFFD\xFFFD"},            // a surrogate
      {"\xF4\x90\x80\x80", L"\xFFFD\xFFFD\xFFFD\xFFFD"},  // beyond U+10FFFF
      {"\xF1\x80\x80\xE1\x80\xC2"
       "bc",
       L"\xFFFD\xFFFD\xFFFD"
       L"bc"},
  };
  for (const auto& row : rows) EXPECT_EQ(texto::to_utf_16(row.bytes), row.text);
}

TEST(utf, every_byte_pair_and_triple_of_interest_agrees_with_a_plain_way) {
  for (unsigned a = 0; a < 256; ++a) {
    for (unsigned b = 0; b < 256; ++b) {
      const std::string pair{static_cast<char>(a), static_cast<char>(b)};
      ASSERT_EQ(texto::to_utf_16(pair), plain::utf_16<wchar_t>(pair)) << a << ' ' << b;
    }
  }
  for (unsigned a = 0xE0; a < 0xF8; ++a) {
    for (unsigned b = 0; b < 256; ++b) {
      for (const unsigned c : {0x00, 0x41, 0x7F, 0x80, 0xBF, 0xC0, 0xE1, 0xF4, 0xFF}) {
        const std::string three{static_cast<char>(a), static_cast<char>(b), static_cast<char>(c)};
        ASSERT_EQ(texto::to_utf_16(three), plain::utf_16<wchar_t>(three)) << a << ' ' << b << ' ' << c;
      }
    }
  }
}

/// Both ways, over runs long enough for every way through the converters, and over texts longer than the
/// pieces in which results are made.
TEST(utf, random_runs_agree_with_a_plain_way) {
  std::mt19937 random(1977);
  std::wstring kept;
  std::string kept_bytes;
  for (int round = 0; round < 4000; ++round) {
    const std::size_t size = round % 50 ? random() % 150 : 1000 + random() % 3000;
    std::wstring text;
    while (text.size() < size) put_run(text, random);
    const std::string bytes = texto::to_utf_8(text);
    ASSERT_TRUE(bytes == plain::utf_8<wchar_t>(text)) << round;
    ASSERT_TRUE(texto::to_utf_16(bytes) == plain::utf_16<wchar_t>(bytes)) << round;

    std::string damaged = bytes;
    for (std::size_t i = 0; i < damaged.size(); i += 1 + random() % 60)
      damaged[i] = static_cast<char>(random());
    const std::wstring repaired = plain::utf_16<wchar_t>(damaged);
    ASSERT_TRUE(texto::to_utf_16(damaged) == repaired) << round;
    kept.resize(round % 3);
    texto::append_utf_16(kept, damaged);
    ASSERT_TRUE(kept.substr(round % 3) == repaired) << round;
    kept_bytes.clear();
    texto::append_utf_8(kept_bytes, text);
    ASSERT_TRUE(kept_bytes == bytes) << round;
  }
}

TEST(utf, removes_the_mark) {
  for (const auto& [text, left] : {std::pair<std::string, std::string>{"\xEF\xBB\xBFhola", "hola"},
                                   {"\xEF\xBB\xBF", ""},
                                   {"\xEF\xBB", "\xEF\xBB"},
                                   {"hola", "hola"},
                                   {"\xEF\xBB\xBF\xEF\xBB\xBF", "\xEF\xBB\xBF"}}) {
    std::string changed = text;
    texto::remove_win_bom(changed);
    EXPECT_EQ(changed, left);
  }
}
