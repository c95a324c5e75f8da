#include <ruvo/texto.hpp>

#include <cstdint>
#include <random>

#include <gtest/gtest.h>

namespace texto = ruvo::texto;

namespace {

void put(std::wstring& out, char32_t point) {
  if (point >= 0x10000) {
    out.push_back(static_cast<wchar_t>(0xD800 + ((point - 0x10000) >> 10)));
    point = 0xDC00 + ((point - 0x10000) & 0x3FF);
  }
  out.push_back(static_cast<wchar_t>(point));
}

/// How many of the bytes at `at` are a beginning of some well-formed sequence; `point` gets a complete one.
/// Slow and plain: it tries every code point's encoding by its definition.
std::size_t well_formed_prefix(const std::string& text, std::size_t at, char32_t& point, bool& complete) {
  static const struct {
    unsigned char first, last, second_from, second_to;
    std::size_t length;
  } forms[] = {{0x00, 0x7F, 0, 0, 1},       {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
               {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3},
               {0xF0, 0xF0, 0x90, 0xBF, 4}, {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4}};
  complete = false;
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[at + i]); };
  for (const auto& form : forms) {
    if (byte(0) < form.first || byte(0) > form.last) continue;
    std::size_t n = 1;
    point = form.length == 1 ? byte(0) : byte(0) & (0x7Fu >> form.length);
    while (n < form.length && at + n < text.size()) {
      const unsigned char from = n == 1 ? form.second_from : 0x80;
      const unsigned char to = n == 1 ? form.second_to : 0xBF;
      if (byte(n) < from || byte(n) > to) return n;
      point = point * 64 + (byte(n) & 0x3F);
      ++n;
    }
    complete = n == form.length;
    return n;
  }
  return 0;
}

std::wstring reference_utf_16(const std::string& text) {
  std::wstring out;
  for (std::size_t at = 0; at < text.size();) {
    char32_t point = 0;
    bool complete = false;
    const std::size_t n = well_formed_prefix(text, at, point, complete);
    put(out, complete ? point : 0xFFFD);
    at += n ? n : 1;
  }
  return out;
}

std::string reference_utf_8(const std::wstring& text) {
  std::string out;
  const auto put_byte = [&out](char32_t byte) { out.push_back(static_cast<char>(byte)); };
  const auto unit = [&text](std::size_t i) -> char32_t {
    return i < text.size() ? static_cast<char16_t>(text[i]) : 0u;
  };
  for (std::size_t at = 0; at < text.size(); ++at) {
    char32_t point = unit(at);
    if (point >= 0xD800 && point < 0xDC00 && unit(at + 1) >= 0xDC00 && unit(at + 1) < 0xE000) {
      point = 0x10000 + (point - 0xD800) * 0x400 + unit(++at) - 0xDC00;
    } else if (point >= 0xD800 && point < 0xE000) {
      point = 0xFFFD;
    }
    int shift = point < 0x80 ? 0 : point < 0x800 ? 6 : point < 0x10000 ? 12 : 18;
    const char32_t marks[] = {0, 0xC0, 0xE0, 0xF0};
    put_byte(marks[shift / 6] | point >> shift);
    while ((shift -= 6) >= 0) put_byte(0x80 | (point >> shift & 0x3F));
  }
  return out;
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
  std::string bytes;
  for (char32_t point = 0; point < 0x110000; ++point) {
    if (point >= 0xD800 && point < 0xE000) continue;
    put(all, point);
  }
  bytes = texto::to_utf_8(all);
  EXPECT_EQ(bytes.size(), 0x80u + 0x780 * 2 + (0xF800 - 0x800) * 3 + 0x100000 * 4);
  EXPECT_TRUE(texto::to_utf_16(bytes) == all);
  EXPECT_TRUE(reference_utf_16(bytes) == all);
}

TEST(utf, lone_surrogates) {
  const struct {
    std::wstring text;
    std::string bytes;
  } rows[] = {
      {L"\xD83D\xDE00", "\xF0\x9F\x98\x80"},
      {L"\xDE00\xD83D", "\xEF\xBF\xBD\xEF\xBF\xBD"},
      {L"\xDE00\xDE00", "\xEF\xBF\xBD\xEF\xBF\xBD"},
      {L"\xD83D\xD83D\xDE00", "\xEF\xBF\xBD\xF0\x9F\x98\x80"},
      {L"a\xD83D", "a\xEF\xBF\xBD"},
      {std::wstring(L"a\0b", 3), std::string("a\0b", 3)},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(texto::to_utf_8(row.text), row.bytes);
    EXPECT_EQ(reference_utf_8(row.text), row.bytes);
  }
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
  for (const auto& row : rows) {
    EXPECT_EQ(texto::to_utf_16(row.bytes), row.text);
    EXPECT_EQ(reference_utf_16(row.bytes), row.text);
  }
}

TEST(utf, every_byte_pair_and_triple_of_interest_agrees_with_the_reference) {
  for (unsigned a = 0; a < 256; ++a)
    for (unsigned b = 0; b < 256; ++b) {
      const std::string pair{static_cast<char>(a), static_cast<char>(b)};
      ASSERT_EQ(texto::to_utf_16(pair), reference_utf_16(pair)) << a << ' ' << b;
    }
  for (unsigned a = 0xE0; a < 0xF8; ++a)
    for (unsigned b = 0; b < 256; ++b)
      for (const unsigned c : {0x00, 0x41, 0x7F, 0x80, 0xBF, 0xC0, 0xE1, 0xF4, 0xFF}) {
        const std::string three{static_cast<char>(a), static_cast<char>(b), static_cast<char>(c)};
        ASSERT_EQ(texto::to_utf_16(three), reference_utf_16(three)) << a << ' ' << b << ' ' << c;
      }
}

/// Both ways, over runs long enough for every way through the converters, and over texts longer than the
/// pieces in which results are made.
TEST(utf, random_runs_agree_with_the_reference) {
  std::mt19937 random(1977);
  for (int round = 0; round < 4000; ++round) {
    const std::size_t size = round % 50 ? random() % 150 : 1000 + random() % 3000;
    std::wstring text;
    while (text.size() < size) put_run(text, random);
    const std::string bytes = texto::to_utf_8(text);
    ASSERT_TRUE(bytes == reference_utf_8(text)) << round;
    ASSERT_TRUE(texto::to_utf_16(bytes) == reference_utf_16(bytes)) << round;

    std::string damaged = bytes;
    for (std::size_t i = 0; i < damaged.size(); i += 1 + random() % 60)
      damaged[i] = static_cast<char>(random());
    ASSERT_TRUE(texto::to_utf_16(damaged) == reference_utf_16(damaged)) << round;
  }
}

TEST(utf, characters_across_the_pieces_of_a_long_text) {
  for (const std::wstring& part : {std::wstring(L"ñ"), std::wstring(L"€"), std::wstring(L"\xD83D\xDE00"),
                                   std::wstring(L"\xD83D"), std::wstring(L"\xDE00")})
    for (std::size_t before = 1000; before < 1030; ++before) {
      std::wstring text(before, L'a');
      for (int i = 0; i < 600; ++i) text += part;
      const std::string bytes = texto::to_utf_8(text);
      ASSERT_TRUE(bytes == reference_utf_8(text)) << before;
      ASSERT_TRUE(texto::to_utf_16(bytes) == reference_utf_16(bytes)) << before;
      const std::string cut = bytes.substr(0, bytes.size() - 1);
      ASSERT_TRUE(texto::to_utf_16(cut) == reference_utf_16(cut)) << before;
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
