// SPDX-License-Identifier: BSL-1.0

// Forms, both ways.

#include <ruvo/forms.hpp>
#include <ruvo/ruvo.hpp>

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "net/failures.hpp"
#include "support/dice.hpp"

using ruvo::bundle;
using ruvo::exception;
using ruvo::list;
using ruvo::http::form_part;

namespace {

/// "name=value|name=value", or the failure.
std::wstring shown_form(const std::wstring& text, const ruvo::http::form_options& options = {}) {
  ruvo::http::fields all{{L"old", L"1"}}, of_bytes = all;
  exception failure, other;
  const bool is_read = ruvo::http::read_form(all, std::wstring_view(text), failure, options);
  const std::string bytes = ruvo::texto::to_utf_8(text);
  EXPECT_EQ(ruvo::http::read_form(of_bytes, std::string_view(bytes), other, options), is_read);
  EXPECT_EQ(of_bytes, all);
  if (!is_read) {
    EXPECT_EQ(all, (ruvo::http::fields{{L"old", L"1"}}));
  }
  if (!is_read) return shown_failure(failure);
  std::wstring out;
  for (const auto& [name, value] : all) out.append(out.empty() ? L"" : L"|").append(name + L"=" + value);
  return out;
}

std::string hostile_bytes(dice& random) {
  std::string out;
  for (unsigned n = random.below(30); n > 0; --n) out += "\r\n--a\0=\"\xFF"[random.below(9)];
  return out;
}

}  // namespace

TEST(forms, read) {
  const struct {
    const wchar_t *text, *strict, *lenient;
  } rows[] = {
      {L"", L"", nullptr},
      {L"a=1&b=2&a=3", L"a=1|b=2|a=3", nullptr},
      {L"a", L"a=", nullptr},
      {L"=x&=&&a==b", L"=x|=|a==b", nullptr},
      {L"a+b=c%2Bd%20e", L"a b=c+d e", nullptr},
      {L"userName=1&USERNAME=2", L"userName=1|USERNAME=2", nullptr},
      {L"a%c3%B1o=%E2%82%AC", L"año=€", nullptr},
      {L"a=1&b=%4&c", L"BadFormat 7", L"a=1|b=%4|c="},
      {L"a%=1", L"BadFormat 2", L"a%=1"},
      {L"a=b%C3x", L"BadFormat 4", L"a=b\xFFFDx"},
  };
  for (const auto& [text, strict, lenient] : rows) {
    EXPECT_EQ(shown_form(text), strict) << text;
    EXPECT_EQ(shown_form(text, {.lenient = true}), lenient ? lenient : strict) << text;
  }
  EXPECT_EQ(shown_form(L"a=1&b=2", {.fields = 1}), L"BadFormat 5");
  EXPECT_EQ(shown_form(L"a=1&b=2", {.units = 6}), L"BadFormat 7");
  EXPECT_EQ(shown_form(L"a=1&b=2", {.fields = 2, .units = 7}), L"a=1|b=2");
}

TEST(forms, fields_are_exact_ordered_and_repeat) {
  ruvo::http::fields all{{L"a", L"1"}, {L"A", L"2"}, {L"a", L"ñ &=%+~*\r\n"}};
  EXPECT_EQ(all.form_text(), L"a=1&A=2&a=%C3%B1+%26%3D%25%2B%7E*%0D%0A");
  EXPECT_EQ(all.get(L"a"), L"1");
  EXPECT_EQ(all.get(L"b", L"none"), L"none");
  EXPECT_EQ(all.find(L"b"), nullptr);
  EXPECT_EQ(all.get_all(L"a").size(), 2u);
  EXPECT_EQ(all.count(L"A"), 1u);
  EXPECT_THROW(all[3], ruvo::exc::MissingElement);
  all.set(all[2].name, all[2].value).set(L"b", L"4");
  EXPECT_EQ(all, (ruvo::http::fields{{L"a", L"ñ &=%+~*\r\n"}, {L"A", L"2"}, {L"b", L"4"}}));
  EXPECT_EQ(all.erase(all[0].name), 1u);
  EXPECT_EQ(all.size(), 2u);
}

TEST(forms, bundles) {
  ruvo::serializer::http_forms forms;
  exception failure;
  std::wstring text = L"old";
  const bundle in = {{L"userName", L"Añil & Cía."},
                     {L"tag", list{L"a", 2, ruvo::xvar()}},
                     {L"none", list()},
                     {L"empty", ruvo::xvar()}};
  EXPECT_FALSE(forms.serialize(text, in, &failure));
  EXPECT_EQ(text, L"userName=A%C3%B1il+%26+C%C3%ADa.&tag=a&tag=2&tag=&empty=");
  bundle out = {{L"USERNAME", 1}, {L"other", 2}};
  EXPECT_FALSE(forms.deserialize(out, text, &failure));
  std::wstring again;
  out.erase(L"other");
  EXPECT_FALSE(forms.serialize(again, out));
  EXPECT_EQ(again, text);

  const std::pair<const wchar_t*, bundle> refused[] = {{L"b", {{L"b", bundle{{L"c", 1}}}}},
                                                       {L"l", {{L"l", list{1, list{1}}}}},
                                                       {L"x", {{L"x", ruvo::binary("ab")}}}};
  for (const auto& [key, bad] : refused) {
    EXPECT_TRUE(forms.serialize(text, bad, &failure));
    EXPECT_EQ(shown_failure(failure), L"BadArgument " + std::wstring(key));
  }
  EXPECT_EQ(text, again);
  EXPECT_TRUE(forms.deserialize(out, L"new=1&a=1&A=2", &failure));
  EXPECT_EQ(shown_failure(failure), L"BadArgument A");
  EXPECT_TRUE(forms.deserialize(out, L"new=1&a=%", &failure));
  EXPECT_EQ(shown_failure(failure), L"BadFormat 9");
  EXPECT_EQ(out.count(L"new"), 0u);
}

TEST(multipart_forms, there_and_back) {
  dice random{20261122};
  const std::wstring units = L"aZ0 ñ€%\\;=:'";
  const auto text = [&] {
    std::wstring made = L"n";
    for (unsigned n = random.below(8); n > 0; --n)
      made += units[random.below(static_cast<unsigned>(units.size()))];
    return made;
  };
  for (unsigned n = 0; n < 300; ++n) {
    std::vector<form_part> parts(random.below(4)), read;
    for (form_part& part : parts) {
      part = {.name = text(), .content = hostile_bytes(random)};
      if (!random.one_in(2)) continue;
      part.is_file = true;
      part.filename = text();
      std::erase(part.filename, L'\\');
      part.content_type = L"image/png";
    }
    std::string body;
    std::wstring type;
    exception failure;
    ASSERT_TRUE(ruvo::http::write_multipart(body, type, parts, failure));
    ASSERT_TRUE(ruvo::http::read_multipart(read, type, body, failure)) << shown_failure(failure);
    ASSERT_EQ(read, parts) << body;
  }
}

TEST(multipart_forms, written_as_browsers_do) {
  std::string body;
  std::wstring type = L"old";
  exception failure;
  ASSERT_TRUE(ruvo::http::write_multipart(
      body, type,
      {{.name = L"a\"\r\nñ", .content = "1"}, {.name = L"f", .filename = L"ñ.txt", .is_file = true}},
      failure));
  const std::string boundary = ruvo::texto::to_utf_8(type.substr(type.find(L'=') + 1));
  EXPECT_EQ(type.find_first_of(L"\" '"), type.find(L' '));
  EXPECT_EQ(body, "--" + boundary +
                      "\r\nContent-Disposition: form-data; name=\"a%22%0D%0Añ\"\r\n\r\n1\r\n--" + boundary +
                      "\r\nContent-Disposition: form-data; name=\"f\"; filename=\"ñ.txt\"\r\n"
                      "Content-Type: application/octet-stream\r\n\r\n\r\n--" +
                      boundary + "--\r\n");
  const form_part bad[] = {{.name = std::wstring(L"n\0", 2)},
                           {.name = L"n\x85"},
                           {.name = L"n", .filename = L"\x01", .is_file = true},
                           {.name = L"n", .content_type = L"a\r\nb"}};
  for (const form_part& part : bad) {
    EXPECT_FALSE(ruvo::http::write_multipart(body, type, {part}, failure));
    EXPECT_EQ(shown_failure(failure).substr(0, 13), L"BadArgument n");
  }
  EXPECT_NE(type, L"old");
}

TEST(multipart_forms, read) {
  const std::string head = "--b\r\nContent-Disposition: form-data; ", end = "\r\n--b--";
  const struct {
    std::string body;
    std::wstring expected;  // name|content|file name|type of the first, or the failure
  } rows[] = {
      {"junk\r\n" + head + "name=\"a\"\r\n\r\n1" + end + "junk", L"a|1|-|"},
      {head + "name=a; filename=\"C:\\dir\\x.txt\"\r\ncontent-type: a/b\r\n\r\n1" + end, L"a|1|x.txt|a/b"},
      {head + "name=\"a\\\"b\"; filename=\"../\"\r\n\r\n1" + end, L"a\"b|1||"},
      {head + "name=\"a\\\"; filename=\"x\"\r\n\r\n\r\n1" + end, L"a\\|\r\n1|x|"},
      {head + "name=\"%22\xF1\"\r\n\r\n" + end, L"%22ñ||-|"},
      {head + "name=\"a\"\r\n\r\n\r\n--c" + end, L"a|\r\n--c|-|"},
      {head + "filename*=UTF-8''%C3%B1; name=\"a\"\r\n\r\n" + end, L"a||ñ|"},
      {"--b--", L""},
      {"", L"BadFormat 1"},
      {"--b\r\n\r\n1" + end, L"BadFormat 6"},
      {"--b\r\nContent-Disposition: attachment; name=\"a\"\r\n\r\n1" + end, L"BadFormat 6"},
      {head + "name=\"a\"\r\n\r\n1", L"BadFormat 6"},
      {head + "name=\"a\"\r\nbad line\r\n\r\n1" + end, L"BadFormat 6"},
      {head + "name=\"a\"\r\n\r\n1\r\n--bx", L"BadFormat 56"},
  };
  for (const auto& [body, expected] : rows) {
    std::vector<form_part> read;
    exception failure;
    std::wstring shown;
    if (!ruvo::http::read_multipart(read, L"Multipart/Form-Data; boundary=b", body, failure)) {
      shown = shown_failure(failure);
    } else if (!read.empty()) {
      shown = read[0].name + L'|' + ruvo::texto::to_utf_16(read[0].content) + L'|' +
              (read[0].is_file ? read[0].filename : L"-") + L'|' + read[0].content_type;
    }
    EXPECT_EQ(shown, expected) << body;
  }
  std::vector<form_part> read;
  exception failure;
  for (const wchar_t* type :
       {L"multipart/form-data", L"text/plain; boundary=b", L"multipart/form-data; boundary="}) {
    EXPECT_FALSE(ruvo::http::read_multipart(read, type, rows[0].body, failure));
    EXPECT_EQ(shown_failure(failure), L"BadArgument Content-Type");
  }
  const std::string two = head + "name=a\r\n\r\n1\r\n" + head + "name=b\r\n\r\n2" + end;
  const ruvo::http::multipart_limits limits[] = {
      {.parts = 1}, {.header_bytes = 37}, {.bytes = two.size() - 1}, {}};
  for (const auto& most : limits) {
    const bool is_last = &most == limits + 3;
    EXPECT_EQ(ruvo::http::read_multipart(read, L"multipart/form-data; boundary=b", two, failure, most),
              is_last);
  }
  EXPECT_EQ(read.size(), 2u);
}
