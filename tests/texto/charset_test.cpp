// SPDX-License-Identifier: BSL-1.0

// Which encoding bytes are in, and what became of them.

#include <ruvo/texto/charset.hpp>

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace texto = ruvo::texto;
using namespace std::string_literals;
using texto::certainty;
using texto::charset;

namespace {

std::string wide_bytes(const std::wstring& text, bool low_first) {
  std::string out;
  for (const wchar_t c : text) {
    const auto low = static_cast<char>(c & 0xFF), high = static_cast<char>(static_cast<char16_t>(c) >> 8);
    out += low_first ? low : high;
    out += low_first ? high : low;
  }
  return out;
}

TEST(charset, is_guessed_with_what_was_replaced) {
  const struct {
    std::string bytes;
    charset what;
    certainty how_sure;
    std::size_t mark;
    std::wstring text;
    std::vector<std::size_t> places = {};
  } rows[] = {
      {"", charset::utf_8, certainty::certain, 0, L""},
      {"hola\r\n", charset::utf_8, certainty::certain, 0, L"hola\r\n"},
      {"a\x01", charset::utf_8, certainty::doubtful, 0, L"a\x01"},
      {"\xEF\xBB\xBF"
       "a\xFF",
       charset::utf_8,
       certainty::certain,
       3,
       L"a\xFFFD",
       {4}},
      {"a\xC3\xB1o", charset::utf_8, certainty::likely, 0, L"año"},
      {"\xEF\xBF\xBD", charset::utf_8, certainty::likely, 0, L"\xFFFD"},
      {"a\xF1o", charset::windows_1252, certainty::likely, 0, L"año"},
      {"\x80 \x93\xE9\x94", charset::windows_1252, certainty::likely, 0, L"€ “é”"},
      {"\xE9\x81x", charset::windows_1252, certainty::doubtful, 0, L"é\xFFFDx", {1}},
      {"\xC3\xB1\xC3\xA1 \xE2\x82 \xFF!", charset::windows_1252, certainty::likely, 0, L"Ã±Ã¡ â‚ ÿ!"},
      {"\xC3\xB1\xC3\xA1\xC3\xA9 \xE2\x82 \xFF!",
       charset::utf_8,
       certainty::doubtful,
       0,
       L"ñáé \xFFFD \xFFFD!",
       {7, 10}},
      {wide_bytes(L"\xFEFF"
                  L"año",
                  true),
       charset::utf_16_le, certainty::certain, 2, L"año"},
      {wide_bytes(L"\xFEFF"
                  L"año",
                  false),
       charset::utf_16_be, certainty::certain, 2, L"año"},
      {wide_bytes(L"año 2024\n", true), charset::utf_16_le, certainty::likely, 0, L"año 2024\n"},
      {wide_bytes(L"αβγ δ\xD83D\xDE00\n", false), charset::utf_16_be, certainty::likely, 0,
       L"αβγ δ\xD83D\xDE00\n"},
      {wide_bytes(L"\xFEFF"
                  L"a\xDC00"
                  L"b",
                  true) +
           "c",
       charset::utf_16_le,
       certainty::certain,
       2,
       L"a\xFFFD"
       L"b\xFFFD",
       {4, 8}},
      {"\0\1\2\3\0\0\0"s, charset::utf_8, certainty::doubtful, 0, L"\0\1\2\3\0\0\0"s},
  };
  for (const auto& r : rows) {
    const texto::decoded_text made = texto::decode(r.bytes);
    const std::string shown = testing::PrintToString(r.bytes);
    EXPECT_EQ(made.from.what, r.what) << shown;
    EXPECT_EQ(made.from.how_sure, r.how_sure) << shown;
    EXPECT_EQ(made.from.mark, r.mark) << shown;
    EXPECT_EQ(made.text, r.text) << shown;
    EXPECT_EQ(made.places, r.places) << shown;
    EXPECT_EQ(made.replaced, r.places.size()) << shown;
  }
}

TEST(charset, of_a_piece_may_end_inside_a_character) {
  for (const std::string& bytes : {"\xC3\xB1\xC3"s, "a\xE2\x82"s, "a\xF0\x9F\x98"s}) {
    EXPECT_EQ(texto::guess_charset(bytes, false).what, charset::utf_8);
    EXPECT_EQ(texto::guess_charset(bytes, false).how_sure, certainty::likely);
  }
  EXPECT_EQ(texto::guess_charset("a\xE2\x82").what, charset::windows_1252);
}

TEST(charset, that_is_named_is_taken) {
  EXPECT_EQ(texto::decode("a\xC3\xB1", charset::windows_1252).text, L"aÃ±");
  EXPECT_EQ(texto::decode("\xEF\xBB\xBF"
                          "a",
                          charset::utf_8)
                .text,
            L"a");
  const texto::decoded_text many = texto::decode(std::string(1000, '\xFF'), charset::utf_8);
  EXPECT_EQ(many.replaced, 1000u);
  EXPECT_EQ(many.places.size(), 100u);
  std::wstring kept = L"x";
  EXPECT_EQ(texto::append_decoded(kept,
                                  "\xFF"
                                  "a\xE2\x82",
                                  charset::utf_8),
            2u);
  EXPECT_EQ(kept,
            L"x\xFFFD"
            L"a\xFFFD");
  EXPECT_EQ(texto::name_of(charset::utf_16_be), L"UTF-16BE");
}

}  // namespace
