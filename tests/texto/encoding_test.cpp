#include <ruvo/texto.hpp>

#include <random>
#include <stdexcept>

#include <gtest/gtest.h>

namespace texto = ruvo::texto;

namespace {

std::string encoded(const std::string& bytes, bool url_safe = false) {
  std::string out = "old";
  texto::base64_encode(out, bytes, url_safe);
  return out;
}

std::string decoded(const std::string& text) {
  std::string out = "old";
  texto::base64_decode(out, text);
  return out;
}

std::wstring widened(const std::string& bytes) {
  std::wstring text;
  for (const char c : bytes) text.push_back(static_cast<wchar_t>(static_cast<unsigned char>(c)));
  return text;
}

}  // namespace

TEST(Base64, KnownVectors) {
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

TEST(Base64, DecoderSkipsWhatIsNotItsOwn) {
  const std::pair<std::string, std::string> rows[] = {
      {"YWI", "ab"},
      {"YW", "a"},
      {"Y", ""},
      {"YWJj=ZGVm", "abc"},
      {"=YWI=", ""},
      {"Y\r\n W.I=", "ab"},
      {"-_8", "\xFB\xFF"},
      {"+/8", "\xFB\xFF"},
      {"\xC3Y\xB1WI", "ab"},
      {std::string("Y\0WI", 4), "ab"},
  };
  for (const auto& [text, bytes] : rows) {
    EXPECT_EQ(decoded(text), bytes) << text;
    std::wstring wide;
    texto::base64_decode(wide, widened(text));
    EXPECT_EQ(wide, widened(bytes)) << text;
  }
  std::wstring wide;
  texto::base64_decode(wide, L"\x0159YWI");  // the low byte alone would be a digit
  EXPECT_EQ(wide, L"ab");
}

TEST(Base64, RandomBytesComeBack) {
  std::mt19937 random(7);
  for (int round = 0; round < 2000; ++round) {
    std::string bytes(random() % 70, '\0');
    for (char& c : bytes) c = static_cast<char>(random());
    const bool url_safe = round & 1;
    const std::string text = encoded(bytes, url_safe);
    ASSERT_EQ(text.size(), (bytes.size() + 2) / 3 * 4);
    ASSERT_EQ(text.find_first_of(url_safe ? "+/" : "-_"), std::string::npos);
    ASSERT_EQ(decoded(text), bytes);

    std::wstring wide = widened(bytes);
    for (wchar_t& c : wide) c = static_cast<wchar_t>(c | (random() & 0xFF) << 8);
    texto::base64_encode(wide, wide, url_safe);  // only the low bytes count; in place
    ASSERT_EQ(wide, widened(text));
    texto::base64_decode(wide, wide);
    ASSERT_EQ(wide, widened(bytes));
  }
}

TEST(Hex, EveryByteBothWays) {
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
}

TEST(Hex, Corners) {
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
