// SPDX-License-Identifier: BSL-1.0

// Values of header fields, and what a transport asks of a message.

#include <ruvo/header_fields.hpp>
#include <ruvo/ruvo.hpp>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "net/failures.hpp"

using ruvo::bundle;
using ruvo::exception;
using ruvo::http::header_value;

namespace {

std::wstring shown_value(const header_value& of) {
  std::wstring out = of.value;
  for (const auto& [name, value] : of.parameters) out += L"|" + name + L"=" + value;
  return out;
}

std::wstring shown_header(const std::wstring& text) {
  header_value read{.value = L"old", .parameters = {}};
  exception failure;
  const bool is_read = ruvo::http::read_header(read, text, failure);
  if (!is_read) {
    EXPECT_EQ(shown_value(read), L"old");
  }
  return is_read ? shown_value(read) : shown_failure(failure);
}

}  // namespace

TEST(header_fields, read) {
  const struct {
    const wchar_t *text, *expected;
  } rows[] = {
      {L"text/html; charset=\"utf-8\" ;q=0.5", L"text/html|charset=utf-8|q=0.5"},
      {L"a;b=\"x;y, \\\"\\\\z\"", L"a|b=x;y, \"\\z"},
      {L"W/\"a;b\", c;d=e", L"W/\"a;b\", c|d=e"},
      {L"a;; b=c;", L"a|b=c"},
      // RFC 8187, 3.2.3, and RFC 2231, 3 and 4.1
      {L"foo/bar; title*=iso-8859-1'en'%A3%20rates", L"foo/bar|title=£ rates"},
      {L"foo/bar; title*=UTF-8''%c2%a3%20and%20%e2%82%ac%20rates", L"foo/bar|title=£ and € rates"},
      {L"a; b=\"EURO\"; b*=utf-8''%e2%82%ac", L"a|b=€"},
      {L"a; t*0*=us-ascii'en'This%20is%20even%20more%20; t*1*=%2A%2A%2Afun%2A%2A%2A%20; t*2=\"isn't it!\"",
       L"a|t=This is even more ***fun*** isn't it!"},
      {L"a; t*2=c; t*0*=UTF-8''%C3; t*1*=%B1", L"a|t=ñc"},
      {L"a; b*=windows-1252''%80; c*=iso-8859-15''%A4", L"a|b=€|c=€"},
      {L"", L"BadFormat 1"},
      {L"; a=b", L"BadFormat 1"},
      {L"a; b", L"BadFormat 5"},
      {L"a; b=", L"BadFormat 6"},
      {L"a; b =c", L"BadFormat 5"},
      {L"a; b=\"c", L"BadFormat 8"},
      {L"a; b=c; B=d", L"BadFormat 9"},
      {L"a\r\nb: c", L"BadFormat 2"},
      {L"a; b=\"c\n\"", L"BadFormat 8"},
      {L"a; b*=UTF-8''%0D%0A", L"BadFormat 4"},
      {L"a; b*=UTF-8''%C3", L"BadFormat 4"},
      {L"a; b*=koi8-r''%C3", L"BadFormat 4"},
      {L"a; b*=UTF-8''%4", L"BadFormat 4"},
      {L"a; b*=''c", L"BadFormat 4"},
      {L"a; b*1=c", L"BadFormat 4"},
      {L"a; b*0=c; b*0=d", L"BadFormat 11"},
      {L"a; b*01=c", L"BadFormat 4"},
      {L"a; *=c", L"BadFormat 4"},
  };
  for (const auto& [text, expected] : rows) EXPECT_EQ(shown_header(text), expected) << text;
  EXPECT_EQ(shown_header(std::wstring(65537, L'a')), L"BadFormat 65537");
  EXPECT_EQ(header_value({.value = L"a", .parameters = {{L"Q", L"1"}}}).get(L"q"), L"1");
}

TEST(header_fields, lists) {
  std::vector<header_value> read;
  exception failure;
  ASSERT_TRUE(ruvo::http::read_header_list(read, L", text/html;q=\"0,5\" ,,W/\"x,y\"; a=b,", failure));
  ASSERT_EQ(read.size(), 2u);
  EXPECT_EQ(shown_value(read[0]) + L" " + shown_value(read[1]), L"text/html|q=0,5 W/\"x,y\"|a=b");
  std::wstring text;
  EXPECT_TRUE(ruvo::http::write_header_list(text, read, failure));
  EXPECT_EQ(text, L"text/html; q=\"0,5\", W/\"x,y\"; a=b");
  EXPECT_FALSE(ruvo::http::write_header_list(text, {{.value = L"a, b", .parameters = {}}}, failure));
  EXPECT_FALSE(ruvo::http::read_header_list(read, L"a, b;c", failure));
  EXPECT_EQ(shown_failure(failure), L"BadFormat 7");
}

TEST(header_fields, written) {
  const struct {
    header_value in;
    const wchar_t* expected;
  } rows[] = {
      {{L"text/html", {{L"charset", L"utf-8"}, {L"t", L"a \"b\\"}, {L"e", L""}}},
       L"text/html; charset=utf-8; t=\"a \\\"b\\\\\"; e=\"\""},
      {{L"a", {{L"title", L"£ and € rates"}}}, L"a; title*=UTF-8''%C2%A3%20and%20%E2%82%AC%20rates"},
      {{L"", {}}, L"BadArgument "},
      {{L"a;b", {}}, L"BadArgument a;b"},
      {{L"a\"", {}}, L"BadArgument a\""},
      {{L"a\r\nb", {}}, L"BadArgument a\r\nb"},
      {{L"a", {{L"b c", L"d"}}}, L"BadArgument b c"},
      {{L"a", {{L"b*", L"d"}}}, L"BadArgument b*"},
      {{L"a", {{L"b", L"d"}, {L"B", L"d"}}}, L"BadArgument B"},
      {{L"a", {{L"b", L"d\r\n"}}}, L"BadArgument b"},
      {{L"a", {{L"b", std::wstring(1, L'\0')}}}, L"BadArgument b"},
      {{L"a", {{L"b", L"\x85"}}}, L"BadArgument b"},
  };
  for (const auto& [in, expected] : rows) {
    std::wstring out = L"old";
    exception failure;
    EXPECT_EQ(ruvo::http::write_header(out, in, failure) ? out : shown_failure(failure), expected);
  }
}

TEST(header_fields, content_disposition) {
  const struct {
    const wchar_t *name, *text;
  } rows[] = {
      {L"plan.pdf", L"attachment; filename=plan.pdf"},
      {L"plan b.pdf", L"attachment; filename=\"plan b.pdf\""},
      {L"año €.pdf", L"attachment; filename=\"a_o _.pdf\"; filename*=UTF-8''a%C3%B1o%20%E2%82%AC.pdf"},
      {L"50%20.pdf", L"attachment; filename=50_20.pdf; filename*=UTF-8''50%2520.pdf"},
      {L"a\"b", L"attachment; filename=a_b; filename*=UTF-8''a%22b"},
      {L"", L"attachment"},
  };
  for (const auto& [name, text] : rows) {
    std::wstring out, type, back = L"old";
    exception failure;
    EXPECT_TRUE(ruvo::http::write_content_disposition(out, L"attachment", name, failure));
    EXPECT_EQ(out, text);
    EXPECT_TRUE(ruvo::http::read_content_disposition(type, back, text, failure));
    EXPECT_EQ(type + back, std::wstring(L"attachment") + name);
  }
  const struct {
    const wchar_t *text, *name;
  } foreign[] = {
      {L"attachment; filename=my plan.pdf; x", L"my plan.pdf"},
      {L"attachment; FileName=\"../../etc/passwd\"", L"passwd"},
      {L"attachment; filename*=UTF-8''..%5c..%5Cx.exe", L"x.exe"},
      {L"attachment; filename=a; filename*=koi8-r''%C3", L"a"},
      {L"attachment; filename*=UTF-8''a%0D%0Ab", L"a  b"},
      {L"inline", L""},
  };
  std::wstring type, name;
  exception failure;
  for (const auto& [text, expected] : foreign) {
    EXPECT_TRUE(ruvo::http::read_content_disposition(type, name, text, failure));
    EXPECT_EQ(name, expected) << text;
  }
  EXPECT_FALSE(ruvo::http::read_content_disposition(type, name, L"a b; filename=x", failure));
  EXPECT_FALSE(ruvo::http::write_content_disposition(name, L"attachment", L"a\nb", failure));
  EXPECT_EQ(shown_failure(failure), L"BadArgument filename");
}

TEST(header_fields, bundles) {
  ruvo::serializer::http_headers headers;
  bundle read = {{L"Charset", L"old"}};
  exception failure;
  std::wstring text;
  EXPECT_FALSE(headers.deserialize(read, L"text/html; charset=\"x y\"; q=0.5", &failure));
  EXPECT_EQ(read.get_string(L"__value__") + read.get_string(L"charset"), L"text/htmlx y");
  EXPECT_FALSE(headers.serialize(text, read, &failure));
  EXPECT_EQ(text, L"text/html; charset=\"x y\"; q=0.5");
  EXPECT_TRUE(headers.deserialize(read, L"a; __VALUE__=b", &failure));
  EXPECT_TRUE(headers.serialize(text, {{L"__value__", L"a"}, {L"q", ruvo::list{1}}}, &failure));
  EXPECT_EQ(shown_failure(failure), L"BadArgument q");
}

TEST(http_check, finds_what_breaks_the_wire) {
  const struct {
    std::wstring name, value;
    bool is_good;
  } rows[] = {{L"X-A", L"a\tñ", true},
              {L"X-A", L"", true},
              {L"X-A", L"a\r\nB: c", false},
              {L"X-A", L"a\nb", false},
              {L"X-A", std::wstring(L"a\0b", 3), false},
              {L"X-A", L"\x7F", false},
              {L"X-A", L"\x85", false},
              {L"", L"a", false},
              {L"X A", L"a", false},
              {L"X:A", L"a", false},
              {L"X-ñ", L"a", false},
              {L"X-A\r\nB", L"c", false}};
  exception failure;
  for (const auto& [name, value, is_good] : rows) {
    ruvo::http::request request(L"http://h/", L"body\r\n");
    ruvo::http::response answer;
    request[name] = answer[name] = value;
    EXPECT_EQ(ruvo::http::check(request, failure), is_good) << name << L": " << value;
    EXPECT_EQ(ruvo::http::check(answer, failure), is_good);
    if (!is_good) {
      EXPECT_EQ(shown_failure(failure), L"BadArgument " + name);
    }
  }
  for (const wchar_t* url : {L"http://h/ HTTP/1.1\r\nX: y", L"/a b", L"/\x7F", L"/ñ"}) {
    EXPECT_FALSE(ruvo::http::check(ruvo::http::request(url, L""), failure));
    EXPECT_EQ(shown_failure(failure), L"BadArgument URL");
  }
  EXPECT_FALSE(ruvo::http::check(ruvo::http::response().add_set_cookie(L"a=b\r\n"), failure));
  EXPECT_EQ(shown_failure(failure), L"BadArgument Set-Cookie");
}

TEST(http_bodies, may_be_bytes) {
  const std::string bytes("\x00\xFF\xC3\xB1\x00", 5);
  ruvo::http::request request(L"http://h/", L"ñ");
  EXPECT_EQ(request.get_body_bytes(), ruvo::binary("ñ"));
  EXPECT_FALSE(request.has_body_bytes());
  const ruvo::http::request text = request;
  request.set_body_bytes(bytes);
  EXPECT_TRUE(request.has_body_bytes() && request.get_body().empty() && !(request == text));
  EXPECT_EQ(ruvo::http::request(request).get_body_bytes(), ruvo::binary(bytes));
  EXPECT_EQ(request.set_body(L"ñ"), text);

  ruvo::http::response answer;
  answer += L"a";
  answer.append_body_bytes(std::string_view(bytes).substr(0, 3))
      .append_body_bytes(std::string_view(bytes).substr(3));
  answer += L"ñ";
  answer += "z";
  EXPECT_EQ(answer.get_body_bytes(), ruvo::binary("a" + bytes + "ñz"));
  EXPECT_EQ(answer.length(), 0u);
  const struct {
    const wchar_t *type, *text;
    std::string bytes;
  } rows[] = {{L"text/plain", L"ñ€", "ñ€"},
              {L"text/plain; charset=\"ISO-8859-15\"", L"ñ€", "\xF1\xA4"},
              {L"text/plain;charset=windows-1252", L"ñ€", "\xF1\x80"},
              {L"text/plain", L"BadFormat 0", "\xF1"},
              {L"text/plain; charset=koi8-r", L"BadArgument koi8-r", "a"}};
  for (const auto& [type, expected, body] : rows) {
    std::wstring out;
    exception failure;
    answer.set_body_bytes(body)[L"Content-Type"] = type;
    EXPECT_EQ(ruvo::http::body_text(out, answer, failure) ? out : shown_failure(failure), expected) << type;
  }
}
