// SPDX-License-Identifier: BSL-1.0

// Base64, hexadecimal, addresses of the web, words of mail headers, code pages.

#include <ruvo/texto.hpp>

#include <cstdint>
#include <iostream>
#include <random>
#include <sstream>
#include <stdexcept>

#include <gtest/gtest.h>

#include "support/encoded_words.hpp"

namespace texto = ruvo::texto;

namespace {

std::string encoded(const std::string& bytes, bool url_safe = false) {
  std::string out = "old";
  out.reserve(100);  // enough for some of them
  texto::base64_encode(out, bytes, url_safe);
  return out;
}

std::string decoded(const std::string& text) {
  std::string out = "old";
  out.reserve(100);  // enough for some of them
  texto::base64_decode(out, text);
  return out;
}

std::wstring widened(const std::string& bytes) {
  std::wstring text;
  for (const char c : bytes) text.push_back(static_cast<wchar_t>(static_cast<unsigned char>(c)));
  return text;
}

/// What the digits before the first '=' stand for, four by four.
std::string plainly_decoded(const std::wstring& text) {
  const std::wstring known = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/-_";
  std::string found, bytes;
  for (const wchar_t c : text.substr(0, text.find(L'=')))
    if (known.find(c) != known.npos) found.push_back(static_cast<char>(c));
  for (std::size_t at = 0; at < found.size(); at += 4) bytes += decoded(found.substr(at, 4));
  return bytes;
}

}  // namespace

TEST(base64, known_vectors) {
  const std::pair<const char*, const char*> rows[] = {
      {"", ""},
      {"f", "Zg=="},
      {"fo", "Zm8="},
      {"foo", "Zm9v"},
      {"foob", "Zm9vYg=="},
      {"fooba", "Zm9vYmE="},
      {"foobar", "Zm9vYmFy"},
      {"ab", "YWI="},
  };
  for (const auto& [bytes, text] : rows) {
    EXPECT_EQ(encoded(bytes), text);
    EXPECT_EQ(decoded(text), bytes);
  }
  EXPECT_EQ(encoded("\xFB\xFF"), "+/8=");
  EXPECT_EQ(encoded("\xFB\xFF", true), "-_8=");
}

/// Every byte and every unit in a long run of digits, where vectors must not take it for a digit.
TEST(base64, every_character_among_digits) {
  const std::string run(48, 'Q');
  for (std::uint32_t unit = 0; unit < 0x10000; ++unit) {
    const std::size_t at = unit % run.size();
    const std::wstring text =
        widened(run.substr(0, at)) + static_cast<wchar_t>(unit) + widened(run.substr(at));
    std::wstring out;
    texto::base64_decode(out, text);
    ASSERT_EQ(out, widened(plainly_decoded(text))) << unit;
    if (unit < 256) {
      std::string narrow = run;
      narrow.insert(at, 1, static_cast<char>(unit));
      ASSERT_EQ(decoded(narrow), plainly_decoded(text)) << unit;
    }
  }
}

TEST(base64, binary_data) {
  const std::vector<unsigned char> bytes = {0xFB, 0xFF, 'a', 0};
  const std::pair<long, std::string> rows[] = {{-1, "+/9hAA=="}, {4, "+/9hAA=="}, {5, "+/9hAA=="},
                                               {3, "+/9h"},      {1, "+w=="},     {0, ""}};
  for (const auto& [count, text] : rows) {
    std::string out = "old";
    texto::set_binary_data(out, bytes, count);
    EXPECT_EQ(out, text) << count;
  }
  std::vector<unsigned char> back = {1};
  texto::get_binary_data("-_ 9hAA==", back);
  EXPECT_EQ(back, bytes);
  texto::get_binary_data("", back);
  EXPECT_TRUE(back.empty());
}

TEST(hex, every_byte_both_ways) {
  std::string all;
  for (int i = 0; i < 256; ++i) all.push_back(static_cast<char>(i));
  const std::wstring hex = texto::string_to_hex(all);
  ASSERT_EQ(hex.size(), 512u);
  EXPECT_EQ(hex.substr(0, 34), L"000102030405060708090a0b0c0d0e0f10");
  EXPECT_EQ(hex.substr(508), L"feff");
  EXPECT_EQ(texto::bytes_to_hexString(reinterpret_cast<const unsigned char*>(all.data()), 256), hex);
  EXPECT_EQ(texto::string_to_hex(widened(all)), hex);
  EXPECT_EQ(texto::hex_to_string(hex), widened(all));
  EXPECT_EQ(texto::hex_to_string(texto::to_utf_8(texto::to_uppercase_(hex))), all);
  std::wstring kept;
  for (int turn = 0; turn < 2; ++turn) {  // into new memory, then into its own
    texto::hex_encode(kept, all);
    EXPECT_EQ(kept, hex);
    texto::hex_decode(kept, kept);
    EXPECT_EQ(kept, widened(all));
  }
  EXPECT_THROW(texto::hex_decode(kept, L"414g"), std::invalid_argument);
  EXPECT_EQ(kept, L"");
}

TEST(hex, corners) {
  EXPECT_EQ(texto::char_to_hex('\xF1'), L"f1");
  EXPECT_EQ(texto::char_to_hex(static_cast<unsigned char>(9)), L"09");
  EXPECT_EQ(texto::char_to_hex(L'\x20AC'), L"ac");
  EXPECT_EQ(texto::hex_to_string(L"414"), L"A");
  EXPECT_EQ(texto::hex_to_string(std::string()), "");
  EXPECT_THROW(texto::hex_to_string(L"4g"), std::invalid_argument);
  EXPECT_THROW(texto::hex_to_string("\xB1\xB1"), std::invalid_argument);
  for (std::uint32_t unit = 0; unit < 0x10000; ++unit) {
    const std::size_t value =
        std::wstring(L"0123456789abcdef").find(texto::to_lowercase(static_cast<wchar_t>(unit)));
    if (value != std::wstring::npos) {
      ASSERT_EQ(texto::hex_char_to_int(static_cast<wchar_t>(unit)), static_cast<int>(value));
    } else {
      ASSERT_THROW(texto::hex_char_to_int(static_cast<wchar_t>(unit)), std::invalid_argument) << unit;
    }
  }
}

TEST(hex, every_bad_character_is_found_anywhere) {
  const std::string digits = "0123456789abcdefABCDEF";
  for (std::uint32_t unit = 0; unit < 0x10000; ++unit) {
    std::wstring wide(80, L'1');
    wide[unit % wide.size()] = static_cast<wchar_t>(unit);
    const bool good = unit < 128 && unit && digits.find(static_cast<char>(unit)) != std::string::npos;
    if (good) {
      ASSERT_EQ(texto::string_to_hex(texto::hex_to_string(wide)), texto::to_lowercase_(wide));
    } else {
      ASSERT_THROW(texto::hex_to_string(wide), std::invalid_argument) << unit;
    }
    if (unit > 255 || good) continue;
    std::string narrow(80, '1');
    narrow[unit % narrow.size()] = static_cast<char>(unit);
    ASSERT_THROW(texto::hex_to_string(narrow), std::invalid_argument) << unit;
  }
}

TEST(hex, to_decimal) {
  const std::pair<std::string, std::string> rows[] = {
      {"", "0"},
      {"0", "0"},
      {"0000000000000000000000000", "0"},
      {"fF", "255"},
      {"000000000000000000000000000ff", "255"},
      {"3B9ACA00", "1000000000"},
      {"3b9ac9ff", "999999999"},
      {"DE0B6B3A7640000", "1000000000000000000"},
      {"ffffffffffffffff", "18446744073709551615"},
      {"100000000000000000000000000000000", "340282366920938463463374607431768211456"},
  };
  for (const auto& [hex, decimal] : rows) EXPECT_EQ(texto::hex_to_dec(hex), decimal) << hex;
  for (const std::string bad : {"g", "-1", "0x1F", " 1", "1 ", "\xC3\xB1", "123456789abcdefg"}) {
    try {
      texto::hex_to_dec(bad);
      ADD_FAILURE() << bad;
    } catch (const std::invalid_argument& e) {
      EXPECT_STREQ(e.what(), "Carácter hexadecimal no válido");
    }
  }
}

/// Checked by remainders: those of the decimal text are those of the hexadecimal one.
TEST(hex, long_numbers_to_decimal) {
  std::mt19937 random(10);
  for (const std::size_t size : {17u, 100u, 1001u, 5000u}) {
    std::string hex(size, '1');
    for (char& c : hex) c = "0123456789abcdef"[random() % 16];
    const std::string decimal = texto::hex_to_dec(hex);
    for (const unsigned long long modulus : {4294967291u, 999999937u, 1000003u}) {
      unsigned long long from_hex = 0, from_decimal = 0;
      for (const char c : hex) {
        from_hex = (from_hex * 16 + static_cast<unsigned>(texto::hex_char_to_int(static_cast<wchar_t>(c)))) %
                   modulus;
      }
      for (const char c : decimal)
        from_decimal = (from_decimal * 10 + static_cast<unsigned>(c - '0')) % modulus;
      ASSERT_EQ(from_hex, from_decimal) << size;
    }
  }
}

TEST(web, every_unit_comes_back) {
  const std::wstring unreserved = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
  for (std::uint32_t unit = 0; unit < 0x10000; ++unit) {
    const std::wstring text(1, static_cast<wchar_t>(unit));
    const std::wstring address = texto::web_encode(text);
    const bool stays = unreserved.find(text) != std::wstring::npos;
    std::wstring hex;
    for (std::size_t i = 0; !stays && i < address.size(); i += 3) {
      ASSERT_EQ(address[i], L'%') << unit;
      hex += address.substr(i + 1, 2);
    }
    ASSERT_EQ(stays ? address : texto::hex_to_string(hex), stays ? text : widened(texto::to_utf_8(text)))
        << unit;
    const bool half = unit >= 0xD800 && unit < 0xE000;
    ASSERT_EQ(texto::web_decode(address), half ? L"\xFFFD" : text) << unit;
  }
}

TEST(web, decodes_what_others_write) {
  EXPECT_EQ(texto::web_decode(L"a+b%2b%c3%B1 ñ/\xD83D\xDE00%F0%9F%98%80%00"),
            std::wstring(L"a+b+ñ ñ/\xD83D\xDE00\xD83D\xDE00") + L'\0');
  for (const wchar_t* bad : {L"%", L"a%4", L"%zz", L"%C3", L"%C3ñ", L"%ED%A0%80", L"\xD83D"})
    EXPECT_THROW(static_cast<void>(texto::web_decode(bad)), std::invalid_argument) << bad;
}

TEST(mail, q_encoded) {
  const std::pair<std::string, std::string> rows[] = {
      {"", ""},
      {"Factura 12/2024 (pagada), \"ok\" = 3?", "Factura 12/2024 (pagada), \"ok\" = 3?"},
      {"Señor Pérez_1", "=?UTF-8?Q?Se=C3=B1or_P=C3=A9rez=5F1?="},
      {"=?x?=", "=?UTF-8?Q?=3D=3Fx=3F=3D?="},
      {"a\r\nBcc: b", "=?UTF-8?Q?a=0D=0ABcc=3A_b?="},
      {"\xC3", "=?UTF-8?Q?=EF=BF=BD?="},
      {"ñ" + std::string(57, 'a'), "=?UTF-8?Q?=C3=B1" + std::string(57, 'a') + "?="},
      {"ñ" + std::string(58, 'a'), "=?UTF-8?Q?=C3=B1" + std::string(57, 'a') + "?=\r\n =?UTF-8?Q?a?="},
  };
  for (const auto& [text, header] : rows) EXPECT_EQ(texto::q_encoded(text), header);
}

TEST(mail, random_texts_come_back) {
  std::mt19937 random(2047);
  const char* const parts[] = {"a", " ", "ñ", "€", "\xF0\x9F\x98\x80", "=", "?=", "_", ",", "word", "\r\n"};
  for (int round = 0; round < 1000; ++round) {
    std::string text = "é";
    for (auto left = random() % 80; left; --left) text += parts[random() % std::size(parts)];
    ASSERT_EQ(decoded_words(texto::q_encoded(text)), texto::to_utf_16(text));
  }
}

TEST(ansi_code_page, ascii_stays_and_the_rest_comes_back_where_the_page_holds_it) {
  const std::locale locale;
  std::string ascii;
  for (char c = 0; c < 127; ++c) ascii.push_back(c);
  EXPECT_EQ(texto::to_utf8(ascii, locale), ascii);
  EXPECT_EQ(texto::from_utf8(ascii, locale), ascii);
  EXPECT_EQ(texto::to_utf8("", locale), "");
  const std::string ansi = texto::from_utf8("año", locale);
  if (ansi.find('?') == std::string::npos) {
    EXPECT_EQ(texto::to_utf8(ansi, locale), "año");
  }
  if (ansi.size() == 3) {
    EXPECT_EQ(ansi, "a\xF1o");
  }
}

TEST(streams, text_of_a_wide_stream) {
  std::wostringstream out;
  EXPECT_EQ(texto::stream_to_string(out), L"");
  out << L"año " << 12;
  EXPECT_EQ(texto::stream_to_string(out), L"año 12");
  std::wstringstream both(L"texto");
  EXPECT_EQ(texto::stream_to_string(both), L"texto");
  std::wostream over(both.rdbuf());
  EXPECT_EQ(texto::stream_to_string(over), L"texto");
  std::wostream none(nullptr);
  EXPECT_EQ(texto::stream_to_string(none), L"");
  EXPECT_EQ(texto::stream_to_string(std::wclog), L"");
}
