// SPDX-License-Identifier: BSL-1.0

// The two values that are rows of bytes and of characters.

#include <ruvo/binary.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/memo.hpp>

#include <sstream>
#include <type_traits>

#include <gtest/gtest.h>

using ruvo::binary;
using ruvo::memo;
using bytes = std::vector<unsigned char>;

TEST(binary, is_made_from_everything) {
  std::ostringstream narrow;
  narrow << "h\xE9";
  std::wostringstream wide;
  wide << L"hé";
  const bytes utf_8{0x68, 0xC3, 0xA9};
  const bytes raw{0x68, 0xE9};
  const struct {
    const char* name;
    binary made;
    bytes expected;
  } rows[] = {
      {"default", binary(), {}},
      {"count", binary(2ULL), {0, 0}},
      {"int", binary(0), {}},
      {"bytes", binary(raw), raw},
      {"wide", binary(std::wstring(L"hé")), utf_8},
      {"wide pointer", binary(L"hé"), utf_8},
      {"narrow", binary(std::string("h\xE9\0", 3)), {0x68, 0xE9, 0}},
      {"narrow pointer", binary("h\xE9"), raw},
      {"null", binary(static_cast<const char*>(nullptr)), {}},
      {"wide null", binary(static_cast<const wchar_t*>(nullptr)), {}},
      {"stream", binary(narrow), raw},
      {"wide stream", binary(wide), utf_8},
      {"memo", binary(memo(L"hé")), utf_8},
  };
  for (const auto& row : rows) EXPECT_EQ(row.made.get_store(), row.expected) << row.name;

  binary b;
  EXPECT_EQ((b = raw).get_store(), raw);
  EXPECT_EQ((b = std::wstring(L"hé")).get_store(), utf_8);
  EXPECT_EQ((b = "h\xE9").get_store(), raw);
  EXPECT_EQ((b = L"hé").get_store(), utf_8);
  EXPECT_EQ((b = std::string("h\xE9")).get_store(), raw);
  EXPECT_EQ((b = wide).get_store(), utf_8);
  EXPECT_EQ((b = narrow).get_store(), raw);
  EXPECT_EQ((b = 3).get_store(), bytes(3));
  EXPECT_EQ((b = memo(L"hé")).get_store(), utf_8);
  static_assert(std::is_nothrow_move_constructible_v<binary> && std::is_nothrow_move_assignable_v<binary>);
  static_assert(std::is_same_v<decltype(b = raw), const binary&>);
}

TEST(binary, appends_low_bytes) {
  binary b;
  b += std::wstring(L"hé");
  b += L'\x20AC';
  b += 'a';
  b += static_cast<unsigned char>(7);
  b += 0x1FF;
  EXPECT_EQ(b.get_store(), (bytes{0x68, 0xE9, 0xAC, 'a', 7, 0xFF}));
  std::vector<unsigned char>& store = b;
  store.clear();
  EXPECT_TRUE(b.empty());
}

TEST(binary, works_as_a_vector) {
  binary b("acd");
  EXPECT_EQ(*b.insert(b.cbegin() + 1, 'b'), 'b');
  const bytes more{'e', 'f'};
  b.insert(b.cend(), more.begin(), more.end());
  b.insert(b.cend(), 2, 'g');
  b.insert(b.cend(), {'h', 'i'});
  b.emplace(b.cbegin(), static_cast<unsigned char>('_'));
  EXPECT_EQ(b, binary("_abcdefgghi"));
  b.erase(b.cbegin());
  b.erase(b.cbegin() + 6, b.cend());
  EXPECT_EQ(b, binary("abcdef"));
  EXPECT_EQ(bytes(b.crbegin(), b.crend()), (bytes{'f', 'e', 'd', 'c', 'b', 'a'}));
  *b.begin() = 'A';
  EXPECT_EQ(b.length(), 6u);
  EXPECT_EQ(*b.cbegin(), 'A');
}

TEST(binary, orders_unsigned_bytes) {
  const char* const ordered[] = {"", "\x01", "\x01\x01", "\x7F", "\x80", "\xFF", "\xFF\x01"};
  for (const char* a : ordered) {
    for (const char* b : ordered) {
      EXPECT_EQ(binary(a) < binary(b), std::string(a) < std::string(b));
      EXPECT_EQ(binary(a).compare(b) < 0, std::string(a) < std::string(b));
      EXPECT_EQ(binary(a) == binary(b), std::string(a) == b);
      EXPECT_EQ(binary(a) != binary(b), std::string(a) != b);
    }
  }
}

TEST(binary, shows_text_or_base64) {
  const struct {
    bytes store;
    std::wstring text;
  } rows[] = {
      {{}, L""},
      {{0}, L""},
      {{0, 0}, std::wstring(2, L'\0')},
      {{'a', 9, 10, 13}, L"a\t\n\r"},
      {{0x68, 0xE9, 0xFF, 0x80}, L"h\x00E9\x00FF\x0080"},  // no UTF-8 here
      {{1}, L"AQ=="},
      {{0, 1, 2}, L"AAEC"},
      {{0x41, 0, 0x42, 0}, std::wstring(L"A\0B\0", 4)},
      {{1, 0xD7, 1, 0xE0}, L"\x01\x00D7\x01\x00E0"},
      {{1, 0xD8}, L"Adg="},
      {{1, 0xDF}, L"Ad8="},
      {{0xD8, 1}, L"\x00D8\x01"},  // the high byte comes second
  };
  for (const auto& row : rows) {
    EXPECT_EQ(binary(row.store).to_string(), row.text);
    std::wostringstream out;
    out << binary(row.store);
    EXPECT_EQ(out.str(), row.text);
  }
}

TEST(binary, reads_utf16le) {
  const struct {
    bytes store;
    std::wstring text;
    bool likely;
  } rows[] = {
      {{}, L"", false},
      {{0}, L"", false},
      {{0x41, 0, 0x42, 0}, L"AB", true},
      {{0xAC, 0x20, 0xFF}, L"\x20AC", false},
      {{'a', 0, 'b', 0, 'c', 0, 'd', 0, 1, 1}, L"abcd\x0101", false},  // exactly 0.8
      {{'a', 0, 'b', 0, 'c', 0, 'd', 0, 'e', 0, 1, 1}, L"abcde\x0101", true},
      {{'a', 0, 'b'}, L"a", true},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(binary(row.store).utf16le_to_string(), row.text);
    EXPECT_EQ(binary(row.store).is_likely_utf16le(), row.likely) << row.text;
  }
}

TEST(binary, writes_hex_and_base64) {
  EXPECT_EQ(binary(bytes{0x0A, 0x1F}).getAsHex(), L"0A1F");
  EXPECT_EQ(binary(bytes{0xFB, 0xFF}).getAsB64(true), L"-_8=");
  EXPECT_EQ(binary(bytes{0xFB, 0xFF}).getAsB64(false), L"+/8=");
  EXPECT_EQ(binary(bytes{0xFB, 0xFF}).getAsB64(), L"+/8=");
}

TEST(binary, reads_hex_and_base64_or_nothing) {
  const struct {
    const char* text;
    bool base64;
    bytes store;
  } good[] = {
      {"", false, {}},
      {"0a1F", false, {0x0A, 0x1F}},
      {" 0a\r\n1 F\t", false, {0x0A, 0x1F}},
      {"", true, {}},
      {"-_8=", true, {0xFB, 0xFF}},
      {"+_8", true, {0xFB, 0xFF}},
      {"YW\r\nJj ZA = =", true, {'a', 'b', 'c', 'd'}},
      {"YWJj", true, {'a', 'b', 'c'}},
  };
  const auto check = [](const char* text, bool base64, const bytes& store, unsigned long code) {
    const std::wstring wide = memo(text).to_string();
    for (const bool narrow : {true, false}) {
      binary b("old");
      ruvo::exception error = ruvo::exception::incorrect();
      if (base64) {
        EXPECT_EQ(&(narrow ? b.setAsB64(std::string(text), &error) : b.setAsB64(wide, &error)), &b);
      } else {
        EXPECT_EQ(&(narrow ? b.setAsHex(std::string(text), &error) : b.setAsHex(wide, &error)), &b);
      }
      EXPECT_EQ(b.get_store(), store) << text;
      EXPECT_EQ(error.get_raw_code(), code) << text;
    }
  };
  for (const auto& row : good) check(row.text, row.base64, row.store, 0xEBB80001);
  for (const char* const bad : {"0a1", "0a1g", "0x41"}) check(bad, false, {}, 0xEBB8000A);
  // With nothing to complete, too much and too little of it, more after the end, and what is no digit.
  for (const char* const bad :
       {"YWJj=", "YWI==", "YW=", "YWI=YWI=", "Y", "YW!I", "YW\xC3\xB1I", "====", "YWJj===="})
    check(bad, true, {}, 0xEBB8000A);
  binary b("old");
  EXPECT_TRUE(b.setAsHex(L"x", nullptr).empty());
  EXPECT_TRUE((b = "old", b.setAsB64(L"\x0159YWI", nullptr)).empty());  // low byte alone would be a digit
}

TEST(memo, is_a_text_of_its_own_kind) {
  EXPECT_EQ(memo(L"año").to_string(), L"año");
  EXPECT_EQ(memo("a\xC3\xB1o").to_string(), L"año");
  EXPECT_EQ(memo(std::string("a\xC3\xB1o")).to_string(), L"año");
  EXPECT_EQ(memo(static_cast<const char*>(nullptr)).size(), 0u);
  EXPECT_EQ(memo(static_cast<const wchar_t*>(nullptr)).size(), 0u);
  EXPECT_EQ(memo(binary(bytes{0, 1, 2})).to_string(), L"AAEC");
  memo m;
  m = "a\xC3\xB1o";
  EXPECT_TRUE(m == L"año");
  m = binary("abc");
  EXPECT_TRUE(memo(L"abb") < m && m < memo(L"abd"));
  const binary b = memo(L"é");
  EXPECT_EQ(b.get_store(), (bytes{0xC3, 0xA9}));
  const std::wstring& text = m;
  EXPECT_EQ(text.c_str(), m.c_str());
  static_assert(std::is_nothrow_move_constructible_v<memo> && std::is_nothrow_move_assignable_v<memo>);
  std::wostringstream out;
  out << m;
  EXPECT_EQ(out.str(), L"abc");
}

TEST(memo, has_the_string_operations) {
  memo m(L"abc");
  m.insert(1, L"--");
  m.insert(m.begin(), L'<');
  m.insert(0, {L'_', L'_'});
  EXPECT_EQ(*m.insert(m.begin() + 3, {L'b', L'b'}), L'b');
  m.erase(3, 2);
  EXPECT_TRUE(m == L"__<a--bc");
  m.erase(0, 2);
  m.erase(m.begin());
  EXPECT_TRUE(m == L"a--bc");
  EXPECT_EQ(m.find(L"bc"), 3u);
  EXPECT_EQ(m.find(L'z'), std::wstring::npos);
  EXPECT_EQ(m.find_first_of(L"-b"), 1u);
  EXPECT_EQ(m.find_first_not_of(L"a-"), 3u);
  EXPECT_EQ(m.compare(L"a--bc"), 0);
  EXPECT_GT(m.compare(0, 1, L"A"), 0);
  wchar_t buffer[2];
  EXPECT_EQ(m.copy(buffer, 2, 3), 2u);
  EXPECT_EQ(std::wstring(buffer, 2), L"bc");
  EXPECT_EQ(std::wstring(m.crbegin(), m.crend()), L"cb--a");
  EXPECT_FALSE(m.empty());
}
