// SPDX-License-Identifier: BSL-1.0

// HTTP messages: the header table that both share, then requests and responses.

#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <chrono>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

#include "support/dice.hpp"
#include "support/held.hpp"

namespace {

using ruvo::xvar;
using ruvo::http::request;
using ruvo::http::response;

const std::wstring default_request_headers = L"Accept: */*\r\nContent-Type: text/plain;charset=UTF-8\r\n";
const std::wstring default_response_headers = L"Accept: */*\r\nContent-Type: text/plain\r\n";

// --- the status

TEST(status, success_is_a_number_of_zero_in_any_range) {
  const auto with_status = [](unsigned long raw) {
    response answer;
    answer.set_exception(ruvo::exception(raw, L"x"));
    return answer;
  };
  for (const unsigned long raw : {0xEBB80000ul, 0xEBB803E8ul, 0xEBB9FDE8ul, 0ul})
    EXPECT_TRUE(with_status(raw).OK() && !with_status(raw).WRONG()) << std::hex << raw;
  for (const unsigned long raw : {0xEBB80001ul, 0xEBB903E9ul, 0xEBB803E7ul, 0x8000FFFFul})
    EXPECT_TRUE(!with_status(raw).OK() && with_status(raw).WRONG()) << std::hex << raw;
}

TEST(status, is_a_copy_that_can_be_read_and_written) {
  response answer;
  EXPECT_EQ(answer.get_exception().get_raw_code(), 0xEBB80000u);
  EXPECT_EQ(answer.get_exception().get_mensaje(), L"OK");
  answer.set_exception(ruvo::exc::RunTime(L"sin línea"));
  response copy(answer);
  *answer.status_ptr() = ruvo::exception::correct();
  const ruvo::exception& reference = answer;
  const ruvo::exception* const pointer = answer;
  EXPECT_EQ(&reference, answer.status_ptr());
  EXPECT_EQ(pointer, answer.status_ptr());
  EXPECT_EQ(reference.get_mensaje(), L"CORRECTO");
  copy.set_exception(*copy.status_ptr());
  EXPECT_EQ(copy.get_exception().get_mensaje(), L"sin línea");
  answer = copy;
  EXPECT_TRUE(answer.WRONG());
}

// --- the header table, the same for both classes

template <class Message>
class message_headers : public testing::Test {};
using messages = testing::Types<request, response>;
TYPED_TEST_SUITE(message_headers, messages);

TYPED_TEST(message_headers, names_ignore_case_wide_and_narrow) {
  TypeParam m;
  const TypeParam& c = m;
  EXPECT_EQ(m.size(), 2u);
  EXPECT_EQ(m.find(L"content-type")->first + c.find("CONTENT-TYPE")->first, L"Content-TypeContent-Type");
  m.at("accept") += L", x";
  EXPECT_EQ(c.at(std::wstring(L"aCCept")), L"*/*, x");
  EXPECT_EQ(m.cbegin()->second, L"*/*, x");
  EXPECT_TRUE(m.find("no") == m.end() && c.find(L"no") == c.cend());
  EXPECT_THROW(static_cast<void>(m.at("no")), std::out_of_range);
  EXPECT_THROW(static_cast<void>(c.at(L"no")), std::out_of_range);

  const std::string narrow = "\xC3\x91-\xF0\x9F\x98\x80-name";  // "Ñ-😀-name"
  EXPECT_EQ(m[narrow], L"");
  EXPECT_EQ(m.count(L"Ñ-\xD83D\xDE00-NAME"), 1u);
  EXPECT_EQ(m.count(L"ñ-\xD83D\xDE00-name"), 0u);  // A-Z only
  EXPECT_EQ(m.count("\xFF"), 0u);
  m[L"\xFFFD"] = L"x";
  EXPECT_EQ(m.count("\xFF"), 1u);

  const std::string length_64(64, 'n'), length_65(65, 'n');
  m[length_64] = L"64";
  m[length_65] = L"65";
  EXPECT_EQ(m.at(std::wstring(64, L'N')) + m.at(std::wstring(65, L'N')), L"6465");

  const wchar_t* const none = nullptr;
  const char* const no_narrow = nullptr;
  m[none] = L"nameless";
  EXPECT_EQ(m.at(no_narrow), L"nameless");
  EXPECT_EQ(m.begin()->first, L"");
  m.clear();
  EXPECT_TRUE(m.empty() && c.begin() == c.end() && m.begin() == m.end());
  EXPECT_GT(m.max_size(), 1000u);
}

TYPED_TEST(message_headers, table_is_a_map_by_lowered_names) {
  dice random(20);
  const std::wstring letters = L"aAbBzZ@[`{_-0éÉ\xFFFF";
  TypeParam m;
  m.clear();
  std::map<std::wstring, std::pair<std::wstring, std::wstring>> model;  // by lowered name: spelling, value
  for (int i = 0; i < 20000; ++i) {
    std::wstring name, lowered;
    for (auto n = random.below(4); n > 0; --n) name += random.unit(letters);
    for (const wchar_t c : name) lowered += c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c + 32) : c;
    const std::string narrow = ruvo::texto::to_utf_8(name);
    const auto known = model.find(lowered);
    ASSERT_EQ(i % 2 ? m.count(name) : m.count(narrow), known == model.end() ? 0u : 1u);
    if (random.one_in(3)) {
      ASSERT_EQ(i % 2 ? m.erase(name) : m.erase(narrow), model.erase(lowered));
    } else {
      const std::wstring value = std::to_wstring(i);
      (i % 2 ? m[name] : m[narrow]) = value;
      model.try_emplace(lowered, name, L"").first->second.second = value;
    }
  }
  auto at = m.begin();
  for (const auto& [lowered, entry] : model) {
    ASSERT_TRUE(at != m.end());
    EXPECT_EQ(at->first, entry.first);
    EXPECT_EQ(at->second, entry.second);
    ++at;
  }
  EXPECT_TRUE(at == m.end());
}

// --- values

TYPED_TEST(message_headers, copies_are_deep_and_moves_leave_an_empty_message) {
  TypeParam m;
  m[L"X"] = L"1";
  m.set_body(L"body");
  TypeParam copy(m), other;
  other = m;
  m[L"X"] = L"2";
  m.set_body(L"");
  EXPECT_TRUE(copy == other);
  EXPECT_EQ(copy.at(L"x") + copy.get_body(), L"1body");
  const TypeParam& same = copy;
  copy = same;
  EXPECT_TRUE(copy == other);

  TypeParam moved(std::move(copy));
  EXPECT_TRUE(moved == other);
  EXPECT_EQ(copy.to_string(), L"\r\n\r\n\r\n");
  EXPECT_TRUE(copy.find(L"x") == copy.end() && copy.begin() == copy.end() && copy.erase("x") == 0);
  copy.clear();
  copy[L"X"] = L"1";
  copy = std::move(moved);
  EXPECT_TRUE(copy == other);
  static_assert(std::is_nothrow_move_constructible_v<TypeParam> &&
                std::is_nothrow_move_assignable_v<TypeParam>);
}

TYPED_TEST(message_headers, equality_is_exact) {
  TypeParam a, b;
  a[L"X"] = b[L"X"] = L"1";
  EXPECT_TRUE(a == b);
  b[L"X"] = L"2";
  EXPECT_FALSE(a == b);
  b.erase(L"X");
  EXPECT_FALSE(a == b);
  b[L"x"] = L"1";  // another spelling
  EXPECT_FALSE(a == b);
  b.erase(L"X");
  b[L"X"] = L"1";
  EXPECT_TRUE(a == b);
  b.set_body(L"1");
  EXPECT_FALSE(a == b);
}

TYPED_TEST(message_headers, travels_in_an_xvar) {
  TypeParam m;
  m[L"X"] = L"1";
  m.set_body(L"body");
  expect_held(m, [](const TypeParam& message) { return message.to_string(); });
  TypeParam back;
  using other_message = std::conditional_t<std::is_same_v<TypeParam, request>, response, request>;
  EXPECT_THROW(back = xvar(other_message()), std::bad_cast);
}

/// With a NUL for each '#'.
std::wstring with_nuls(std::wstring text) {
  std::replace(text.begin(), text.end(), L'#', L'\0');
  return text;
}

TYPED_TEST(message_headers, text_form) {
  const std::wstring headers =
      std::is_same_v<TypeParam, request> ? default_request_headers : default_response_headers;
  struct row {
    std::wstring name, value, body, text;
  };
  for (const row& r : {
           row{L"a", L"", L"", L"a: \r\n" + headers + L"\r\n\r\n"},
           row{L"Zeta", L"é€\xD83D\xDE00", L"una\r\n\r\ndos",
               headers + L"Zeta: é€\xD83D\xDE00\r\n\r\nuna\r\n\r\ndos\r\n"},
           row{with_nuls(L"b#c"), with_nuls(L"#"), with_nuls(L"#x"),
               with_nuls(L"Accept: */*\r\nb#c: #" + headers.substr(11) + L"\r\n#x\r\n")},
           row{L"X", L"1\r\nY: 2", L"", headers + L"X: 1\r\nY: 2\r\n\r\n\r\n"},  // as it is
       }) {
    TypeParam m;
    m[r.name] = r.value;
    m.set_body(r.body);
    EXPECT_EQ(m.to_string(), r.text);
    for (const std::ios_base::openmode mode : {std::ios_base::out, std::ios_base::out | std::ios_base::in}) {
      std::wstringstream stream(mode);
      stream << m;
      EXPECT_EQ(stream.str(), r.text);
    }
  }
  TypeParam bare;
  bare.clear();
  EXPECT_EQ(bare.set_body(L"body").to_string(), L"\r\n\r\nbody\r\n");
}

// --- requests

TEST(request, construction_and_fields) {
  EXPECT_EQ(request().to_string(), default_request_headers + L"\r\n\r\n");
  const request wide(L"http://h/ñ", L"€"), narrow("http://h/\xC3\xB1", "\xE2\x82\xAC");
  EXPECT_TRUE(wide == narrow);
  EXPECT_EQ(wide.get_sslCertPath(), L"");
  request r;
  const request& back = r.set_url(L"https://h").set_body(L"b").set_sslCertPath(L"C:\\c.pem");
  EXPECT_EQ(&back, &r);
  r.set_url(r.get_url()).set_body(back.get_body()).set_sslCertPath(r.get_sslCertPath());
  EXPECT_EQ(back.get_url() + back.get_body() + back.get_sslCertPath(), L"https://hbC:\\c.pem");
  r.get_url() += L"/p";
  EXPECT_FALSE(request(L"https://h", L"b") == r);
  EXPECT_TRUE(request(L"https://h/p", L"b") == r);  // whatever the certificate
  request copy;
  copy = xvar(r);
  EXPECT_EQ(copy.get_sslCertPath(), L"C:\\c.pem");
}

TEST(request, is_secure) {
  for (const wchar_t* const url : {L"https://h", L"HTTPS://h", L"wss:", L"as.s:x", L"h/s:80"})
    EXPECT_TRUE(request(url, L"").is_secure()) << url;
  for (const wchar_t* const url : {L"http://h", L"ws://h", L"http://s:80", L"s:", L":s", L"", L"https"})
    EXPECT_FALSE(request(url, L"").is_secure()) << url;
}

// --- responses

TEST(response, body_grows) {
  response r;
  EXPECT_EQ(r.to_string(), default_response_headers + L"\r\n\r\n");
  r += L"uno ";
  r += std::wstring(L"d\0s", 3);
  r += "\xE2\x82\xAC\xF0\x9F\x98\x80";
  r += std::string("\xFF\0", 2);
  r += static_cast<const char*>(nullptr);
  r += static_cast<const wchar_t*>(nullptr);
  const std::wstring expected = with_nuls(L"uno d#s\x20AC\xD83D\xDE00\xFFFD#");
  EXPECT_EQ(r.get_body(), expected);
  EXPECT_EQ(r.get_body(), expected);  // reading takes nothing away
  EXPECT_EQ(r.length(), expected.size());
  r += r.get_body();
  EXPECT_EQ(r.length(), 2 * expected.size());
  r.set_body(L"new");
  r += L"er";
  EXPECT_EQ(r.get_body(), L"newer");
  response copy;
  copy = r;
  copy += L"!";
  EXPECT_EQ(r.get_body() + copy.get_body(), L"newernewer!");
}

TEST(response, takes_the_rest_of_a_stream) {
  response r;
  r.set_body(L"0");
  std::wistringstream in(L"first \r\n last \n" + std::wstring(5000, L'x') + L" ");
  std::wstring first;
  in >> first >> r;
  EXPECT_EQ(r.get_body(), L"0 \r\n last \n" + std::wstring(5000, L'x') + L" ");
  EXPECT_TRUE(in.eof() && !in.fail());
  EXPECT_FALSE(in >> r);
  EXPECT_EQ(r.length(), 5012u);
  std::wistringstream empty(L"");
  EXPECT_TRUE(static_cast<bool>(empty >> r));
}

TEST(response, content_type) {
  response r;
  EXPECT_EQ(r.get_content_type(), L"text/plain");
  r.clear();
  EXPECT_TRUE(r.get_content_type().empty());
  EXPECT_EQ(r.to_string(), L"Content-Type: \r\n\r\n\r\n");
}

TEST(response, status_travels_but_takes_no_part_in_comparisons) {
  response r;
  r.set_exception(ruvo::exc::RunTime(L"fallo"));
  const response fresh;
  EXPECT_TRUE(r == fresh);
  response back;
  back = xvar(r);
  EXPECT_EQ(back.get_exception().get_mensaje(), L"fallo");
  back = xvar(fresh);
  EXPECT_TRUE(back.OK());
}

TEST(response, emptied_ones_are_cleared_at_once) {
  const auto clear_many = [] {
    response r, moved(std::move(r));
    for (int n = 0; n < 1000; ++n) r.clear();
    EXPECT_TRUE(r.empty() && !moved.empty());
  };
  std::thread other(clear_many);
  clear_many();
  other.join();
}

TEST(response, many_small_pieces_take_linear_time) {
  const auto seconds = [](std::size_t total) {
    const auto start = std::chrono::steady_clock::now();
    response r;
    while (r.length() < total) {
      r += L"ocho más";
      r += "m\xC3\xA1s";
      r += std::wstring(5, L'x');
    }
    EXPECT_LT(r.length(), total + 17);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  };
  const double tenth = seconds(1 << 20), all = seconds(10 << 20);
  EXPECT_LT(all, 60 * tenth + 1.0);  // copying the body for each piece would take a hundredfold
}

}  // namespace
