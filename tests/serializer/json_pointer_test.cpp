// SPDX-License-Identifier: BSL-1.0

// JSON Pointer: its texts, look-up and writing.

#include <ruvo/ruvo.hpp>

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

using ruvo::bundle;
using ruvo::list;
using ruvo::xvar;
using ruvo::serializer::erase;
using ruvo::serializer::find;
using ruvo::serializer::json_pointer;
using ruvo::serializer::read_json_pointer;
using ruvo::serializer::set;
using ruvo::serializer::write_standard_json;

namespace {

std::wstring json_of(const bundle& value) {
  std::wstring out;
  EXPECT_FALSE(write_standard_json(out, value));
  return out;
}

TEST(json_pointer, finds_the_examples_of_its_definition) {
  bundle document{{L"foo", list{L"bar", L"baz"}},
                  {L"", 0},
                  {L"a/b", 1},
                  {L"c%d", 2},
                  {L"e^f", 3},
                  {L"g|h", 4},
                  {L"i\\j", 5},
                  {L"k\"l", 6},
                  {L" ", 7},
                  {L"m~n", 8}};
  const struct {
    const wchar_t *text, *fragment, *found;
  } rows[] = {{L"/foo", L"#/foo", L"[\"bar\",\"baz\"]"},
              {L"/foo/0", L"#/foo/0", L"bar"},
              {L"/", L"#/", L"0"},
              {L"/a~1b", L"#/a~1b", L"1"},
              {L"/c%d", L"#/c%25d", L"2"},
              {L"/e^f", L"#/e%5Ef", L"3"},
              {L"/g|h", L"#/g%7Ch", L"4"},
              {L"/i\\j", L"#/i%5Cj", L"5"},
              {L"/k\"l", L"#/k%22l", L"6"},
              {L"/ ", L"#/%20", L"7"},
              {L"/m~0n", L"#/m~0n", L"8"}};
  const xvar whole(document);
  for (const auto& row : rows) {
    const json_pointer pointer(row.text);
    EXPECT_EQ(pointer, json_pointer(row.fragment));
    EXPECT_EQ(pointer.to_string(), row.text);
    EXPECT_EQ(pointer.to_fragment(), row.fragment);
    ASSERT_TRUE(find(document, pointer)) << row.fragment;
    EXPECT_EQ(find(document, pointer)->to_string(), row.found);
    EXPECT_EQ(find(whole, pointer)->to_string(), row.found);
  }
  EXPECT_EQ(find(whole, L""), &whole);
  EXPECT_EQ(find(document, "#"), nullptr);
  for (const wchar_t* nothing : {L"/FOO", L"/foo/-", L"/foo/2", L"/foo/00", L"/foo/1x",
                                 L"/foo/99999999999999999999", L"/foo/0/x", L"/x/0", L"/foo/"})
    EXPECT_EQ(find(document, nothing), nullptr) << nothing;
}

TEST(json_pointer, reports_where_a_text_is_none) {
  const struct {
    const wchar_t* text;
    std::uint64_t position;
  } rows[] = {{L"foo", 1},   {L"/m~n", 3},        {L"/a/~", 4},     {L"#/%zz", 3},
              {L"#/a%4", 4}, {L"#/%C3%B1%C3", 3}, {L"#/ab%7E2", 5}, {L"#x", 2}};
  for (const auto& row : rows) {
    json_pointer pointer(L"/as/before");
    ruvo::exception failure;
    EXPECT_TRUE(read_json_pointer(pointer, row.text, &failure)) << row.text;
    EXPECT_EQ(ruvo::serializer::failure_position(failure), row.position) << row.text;
    EXPECT_EQ(pointer.to_string(), L"/as/before");
    EXPECT_THROW(json_pointer{row.text}, ruvo::exc::jsonBadPointer);
  }
  EXPECT_EQ((json_pointer(L"#/\xF1%C3%B1%2fo") /= L"~/").to_string(), L"/\xF1\xF1/o/~0~1");
}

TEST(json_pointer, writes_and_makes_what_is_missing) {
  bundle order;
  const struct {
    const wchar_t* pointer;
    xvar value;
    std::wstring outcome;  // the order, or why it stays as it is
  } rows[] = {
      {L"/lines/0/skuCode", L"A", L"{\"lines\":[{\"skuCode\":\"A\"}]}"},
      {L"/lines/-", xvar(), L"{\"lines\":[{\"skuCode\":\"A\"},null]}"},
      {L"/lines/1/5", 1, L"{\"lines\":[{\"skuCode\":\"A\"},{\"5\":1}]}"},
      {L"/lines/0", list{1}, L"{\"lines\":[[1],{\"5\":1}]}"},
      {L"/lines/2", 2, L"{\"lines\":[[1],{\"5\":1},2]}"},
      {L"/lines/4", 2, L"la lista no tiene la posición «4»."},
      {L"/lines/x/y", 2, L"la lista no tiene la posición «x»."},
      {L"/lines/2/x", 2, L"delante de «x» no hay un objeto ni una lista."},
      {L"/Lines", 2, L"«Lines» se escribe «lines»."},
      {L"", 2, L"el valor no es un objeto."},
      {L"", bundle{{L"userName", list()}}, L"{\"userName\":[]}"},
      {L"/username/0", 2, L"«username» se escribe «userName»."},
  };
  for (const auto& row : rows) {
    const std::wstring before = json_of(order);
    ruvo::exception failure;
    if (row.outcome[0] == L'{') {
      EXPECT_FALSE(set(order, row.pointer, row.value, &failure));
      EXPECT_EQ(json_of(order), row.outcome);
    } else {
      EXPECT_TRUE(set(order, row.pointer, row.value, &failure));
      EXPECT_EQ(failure.get_mensaje(),
                L"El puntero JSON «" + std::wstring(row.pointer) + L"» no se puede seguir: " + row.outcome);
      EXPECT_THROW(failure.raise(), ruvo::exc::jsonNoPlace);
      EXPECT_EQ(json_of(order), before);
    }
  }
}

TEST(json_pointer, writes_a_value_into_itself_and_with_its_qualities) {
  xvar document(list{1});
  document[L"old"] = 1;
  EXPECT_FALSE(set(document, L"/0", document));
  EXPECT_EQ(document.to_string(), L"[[1]{\"atributos\":\"old\":1}]");
  EXPECT_FALSE(set(document, L"", *find(document, L"/0/0")));
  EXPECT_EQ(document, xvar(1));
  EXPECT_TRUE(document.empty());
}

TEST(json_pointer, erases_what_it_finds) {
  bundle document{{L"q", list{1, 2, 3}}, {L"Z", bundle{{L"a", 1}}}};
  EXPECT_FALSE(erase(document, L"/q/1"));
  EXPECT_FALSE(erase(document, L"/Z/a"));
  EXPECT_EQ(json_of(document), L"{\"q\":[1,3],\"Z\":{}}");
  for (const wchar_t* nothing : {L"", L"/z", L"/q/-", L"/q/2", L"/q/0/0"})
    EXPECT_TRUE(erase(document, nothing)) << nothing;
  EXPECT_FALSE(erase(document, L"/Z"));
  EXPECT_EQ(json_of(document), L"{\"q\":[1,3]}");
}

}  // namespace
