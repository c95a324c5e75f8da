// SPDX-License-Identifier: BSL-1.0

// Reading standard JSON: tables of what is taken and what is refused, and where; objects that repeat, or
// nearly.

#include <ruvo/ruvo.hpp>

#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

#include <gtest/gtest.h>

using namespace ruvo::serializer;
using ruvo::bundle;
using ruvo::list;
using ruvo::xvar;

namespace {

/// What reading gave: the number and the position of the failure, or a value.
struct read_outcome {
  unsigned long code = 0;
  std::uint64_t position = 0;
  xvar value = {};
};

template <class Text>
read_outcome read_standard(const Text& text, const json_read_options& options = {}) {
  read_outcome out;
  out.value = L"before";
  ruvo::exception failure;
  if (read_standard_json(out.value, text, &failure, options)) {
    EXPECT_EQ(out.value.to_string(), L"before");
    out.code = failure.get_raw_code() & 0xFFFF;
    out.position = failure_position(failure);
    EXPECT_NE(failure.get_mensaje().find(std::to_wstring(out.position)), std::wstring::npos);
  } else {
    EXPECT_EQ(failure.get_raw_code(), ruvo::exception().get_raw_code());
  }
  return out;
}

bundle as_bundle(const xvar& value) { return bundle{{L"it", value}}.get_bundle(L"it"); }

std::string utf8(std::wstring_view text) { return ruvo::texto::to_utf_8(std::wstring(text)); }

/// The failure is at the character behind the ¦, in both encodings.
void expect_refused(const std::wstring& marked, unsigned long code, const json_read_options& options = {}) {
  const std::size_t mark = marked.find(L'¦');
  const std::wstring before = marked.substr(0, mark), text = before + marked.substr(mark + 1);
  const read_outcome wide = read_standard(text, options);
  EXPECT_EQ(wide.code, code) << testing::PrintToString(marked);
  EXPECT_EQ(wide.position, mark + 1) << testing::PrintToString(marked);
  const read_outcome narrow = read_standard(utf8(text), options);
  EXPECT_EQ(narrow.code, code) << testing::PrintToString(marked);
  EXPECT_EQ(narrow.position, utf8(before).size() + 1) << testing::PrintToString(marked);
}

/// The value that both encodings give.
xvar value_of(const std::wstring& text, const json_read_options& options = {}) {
  const read_outcome wide = read_standard(text, options), narrow = read_standard(utf8(text), options);
  EXPECT_EQ(wide.code, 0u) << testing::PrintToString(text);
  EXPECT_EQ(narrow.code, 0u) << testing::PrintToString(text);
  EXPECT_EQ(wide.value.to_string(), narrow.value.to_string());
  EXPECT_EQ(wide.value.get_type(), narrow.value.get_type());
  return narrow.value;
}

TEST(standard_json, refuses_at_the_first_unit_that_cannot_stand_there) {
  const std::vector<std::wstring> rows = {
      L"¦",          L" \r\n\t¦",     L"¦]",           L"¦,",
      L"[¦,1]",      L"[1,¦]",        L"[1,¦,2]",      L"[1 ¦2]",
      L"[1¦}",       L"{\"a\":1¦]",   L"{¦,}",         L"{\"a\":1,¦}",
      L"{\"a\"¦,1}", L"{\"a\":¦}",    L"{¦a:1}",       L"{\"a\":1 ¦\"b\":2}",
      L"{¦1:1}",     L"{¦'a':1}",     L"{\"a\" ¦1}",   L"[¦",
      L"{¦",         L"{\"a\"¦",      L"{\"a\":¦",     L"{\"a\":1¦",
      L"{\"a\":1,¦", L"[1,¦",         L"1¦]",          L"{}¦{}",
      L"1 ¦1",       L"tru¦",         L"tru¦x",        L"¦True",
      L"nu¦1l",      L"¦NaN",         L"¦Infinity",    L"-¦Infinity",
      L"¦+1",        L"0¦1",          L"-0¦1",         L"-¦",
      L"-¦a",        L"1.¦",          L"1.¦e5",        L"¦.5",
      L"1e¦",        L"1e+¦",         L"1e¦.",         L"1.5¦.",
      L"0¦x10",      L"1¦_000",       L"\"a¦",         L"\"a\\¦",
      L"\"\\¦x\"",   L"\"\\¦U0041\"", L"\"\\u12¦G4\"", L"\"\\u12¦",
      L"\"\\u¦\"",   L"\"ñ日😀¦\t\"",  L"\"¦\n\"",      L"\"sixteen units and more¦\r\"",
      L"¦\xFEFF{}",  L"¦\xA0[]",      L"[1]¦\f",       L"¦// a\n1",
      L"1¦/**/"};
  for (const std::wstring& marked : rows) expect_refused(marked, 6001);
  expect_refused(L"{\"a\":{\"b\":[1,{\"c\":true¦1}]}}", 6001);
}

TEST(standard_json, refuses_bytes_that_are_not_utf_8_at_the_first_of_them) {
  for (const char* const bytes :
       {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xC3", "\xC3(", "\xE0\x80\x80", "\xE0\x9F\xBF", "\xE2\x82",
        "\xED\xA0\x80", "\xED\xBF\xBF", "\xEF\xBF", "\xF0\x80\x80\x80", "\xF0\x8F\xBF\xBF", "\xF0\x9F\x98",
        "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFE", "\xFF"}) {
    for (const std::string before : {"\"", "\"a", "{\"ñ", "[\"ñandú, ñandú, ñandú y más "}) {
      for (const std::string behind : {"", "\"", "aaaaaaaaaaaaaaaaaaaa\"]"}) {
        const read_outcome out = read_standard(before + bytes + behind);
        EXPECT_EQ(out.code, 6008u) << before << testing::PrintToString(bytes) << behind;
        EXPECT_EQ(out.position, before.size() + 1) << before << testing::PrintToString(bytes) << behind;
      }
    }
  }
  const read_outcome outside = read_standard("[\xC3\xB1]");
  EXPECT_EQ(outside.code, 6001u);
  EXPECT_EQ(outside.position, 2u);
  for (const std::wstring text :
       {L"\"a\xD83D\"", L"\"a\xDE00\"", L"\"a\xD83D", L"\"a\xDE00\xD83D\"", L"\"a\xD83D\\uDE00\""}) {
    const read_outcome lone = read_standard(text);
    EXPECT_EQ(lone.code, 6001u) << testing::PrintToString(text);
    EXPECT_EQ(lone.position, 3u) << testing::PrintToString(text);
  }
}

TEST(standard_json, gives_numbers_the_type_that_holds_them) {
  const auto number = [](const std::wstring& text) { return value_of(text); };
  for (const auto& [text, value] :
       std::vector<std::pair<std::wstring, long long>>{{L"0", 0},
                                                       {L"-1", -1},
                                                       {L" 12 ", 12},
                                                       {L"9007199254740993", 9007199254740993},
                                                       {L"9223372036854775807", INT64_MAX},
                                                       {L"-9223372036854775808", INT64_MIN}}) {
    EXPECT_TRUE(number(text).instanceof (typeid(long long))) << testing::PrintToString(text);
    EXPECT_EQ(static_cast<long long>(number(text)), value);
  }
  for (const auto& [text, value] : std::vector<std::pair<std::wstring, unsigned long long>>{
           {L"9223372036854775808", std::uint64_t{1} << 63}, {L"18446744073709551615", UINT64_MAX}}) {
    EXPECT_TRUE(number(text).instanceof (typeid(unsigned long long)));
    EXPECT_EQ(static_cast<unsigned long long>(number(text)), value);
  }
  for (const auto& [text, value] : std::vector<std::pair<std::wstring, double>>{
           {L"1.0", 1},
           {L"1e3", 1000},
           {L"1E-3", 0.001},
           {L"0.1", 0.1},
           {L"-0", -0.0},
           {L"-0.0e5", -0.0},
           {L"0e99999999999999999999", 0},
           {L"1e-99999999999999999999", 0},
           {L"-1e-400", -0.0},
           {L"18446744073709551616", 18446744073709551616.0},
           {L"-9223372036854775809", -9223372036854775808.0},
           {L"5e-324", 5e-324},
           {L"2.4703282292062327e-324", 0},
           {L"2.4703282292062328e-324", 5e-324},
           {L"2.2250738585072011e-308", 2.2250738585072011e-308},
           {L"1.7976931348623158e308", 1.7976931348623157e308},
           {L"123456789012345678901234567890e-30", 0.12345678901234568},
           {L"0.1234567890123456789", 0.12345678901234568},
           {L"9007199254740993.0", 9007199254740992},
           {L"1" + std::wstring(400, L'0') + L"e-400", 1},
           {L"0." + std::wstring(400, L'0') + L"1e401", 1}}) {
    const xvar read = number(text);
    EXPECT_TRUE(read.instanceof (typeid(double))) << testing::PrintToString(text);
    EXPECT_EQ(static_cast<double>(read), value) << testing::PrintToString(text);
    EXPECT_EQ(std::signbit(static_cast<double>(read)), std::signbit(value)) << testing::PrintToString(text);
  }
}

TEST(standard_json, does_with_other_numbers_what_the_options_say) {
  json_read_options options;
  for (const wchar_t* const text :
       {L"1e309", L"-1.8e308", L"2.5E+9223372036854775807", L"1e99999999999999999999"}) {
    for (const json_number choice : {json_number::failure, json_number::nearest}) {
      options.too_large = choice;
      expect_refused(std::wstring(L"[¦") + text + L"]", 6006, options);
    }
    options.too_large = json_number::text;
    EXPECT_EQ(value_of(text, options).to_string(), text);
  }
  for (const wchar_t* const text : {L"0.10000000000000001", L"9007199254740993.0", L"18446744073709551617",
                                    L"-9223372036854775809", L"4.9e-324", L"1e-400", L"-1e-400"}) {
    EXPECT_TRUE(value_of(text).instanceof (typeid(double)));
    options.inexact = json_number::failure;
    expect_refused(std::wstring(L"[¦") + text + L"]", 6006, options);
    options.inexact = json_number::text;
    EXPECT_TRUE(value_of(text, options).instanceof (typeid(std::wstring)));
    EXPECT_EQ(value_of(text, options).to_string(), text);
  }
  options.inexact = json_number::failure;
  for (const wchar_t* const text : {L"0.1", L"-0.10", L"1.0", L"100e-2", L"0.0e7", L"-0", L"5e-324", L"1E22",
                                    L"100000000000000000000", L"0.30000000000000004"})
    EXPECT_TRUE(value_of(text, options).instanceof (typeid(double))) << testing::PrintToString(text);
}

TEST(standard_json, says_what_strings_say) {
  using namespace std::string_literals;
  for (const auto& [text, value] : std::vector<std::pair<std::wstring, std::wstring>>{
           {L"\"\"", L""},
           {L"\"\\\"\\\\\\/\\b\\f\\n\\r\\t\"", L"\"\\/\b\f\n\r\t"},
           {L"\"\\u0000a\\u001F\"", L"\0a\x1F"s},
           {L"\"\\u00e9\\u00E9é\"", L"ééé"},
           {L"\"\\uD83D\\ude00\xD83D\xDE00\"", L"\xD83D\xDE00\xD83D\xDE00"},
           {L"\"\\ud83d\"", L"\xD83D"},
           {L"\"\\ude00\\ud83d x\"", L"\xDE00\xD83D x"},
           {L"\"\x7F\x2028/\"", L"\x7F\x2028/"},
           {L"\"1234567\"", L"1234567"},
           {L"\"12345678\"", L"12345678"},
           {L"\"sixteen units, 16\"", L"sixteen units, 16"},
           {L"\"más de dieciséis, 日本語 y 한국어\\n\"", L"más de dieciséis, 日本語 y 한국어\n"}}) {
    EXPECT_EQ(value_of(text).to_string(), value) << testing::PrintToString(text);
    EXPECT_TRUE(value_of(text).instanceof (typeid(std::wstring)));
    EXPECT_EQ(value_of(L"{" + text + L":1}").to_string(), bundle({{value, 1}}).to_string());
  }
  std::wstring long_text(100000, L'a');
  EXPECT_EQ(value_of(L"\"" + long_text + L"\"").to_string(), long_text);
  long_text[60000] = L'ñ';
  EXPECT_EQ(value_of(L"[\"" + long_text + L"\"]").to_string(), L"[\"" + long_text + L"\"]");
}

TEST(standard_json, reads_what_the_target_can_hold) {
  const char* const document = "{\"b\":[1,null,true,{}],\"A\":\"x\"}";
  bundle object{{L"before", 1}};
  list elements{1};
  ruvo::exception failure;
  EXPECT_FALSE(read_standard_json(object, document));
  EXPECT_EQ(object.to_string(), L"{\"a\":\"x\", \"b\":[1,,1,{}]}");
  EXPECT_EQ(object.spelling(1), L"A");
  EXPECT_FALSE(read_standard_json(elements, u8"[\"ñ\", -1]", &failure));
  EXPECT_EQ(elements.to_string(), L"[\"ñ\",-1]");
  for (const char* const other : {" [1]", " 1", " \"a\"", " null", " tru"}) {
    EXPECT_TRUE(read_standard_json(object, other, &failure)) << other;
    EXPECT_THROW(failure.raise(), ruvo::exc::jsonWrongRoot);
    EXPECT_EQ(failure_position(failure), 2u);
  }
  EXPECT_TRUE(read_standard_json(elements, L"{}", &failure));
  EXPECT_THROW(failure.raise(), ruvo::exc::jsonWrongRoot);
  EXPECT_EQ(object.size(), 2u);
  EXPECT_EQ(elements.size(), 2u);
}

TEST(standard_json, takes_a_text_out_of_what_it_replaces) {
  bundle out{{L"inside", L"{\"a\":\"a text that takes a block\"}"}};
  const std::wstring& inside = out.hack_string_on(L"inside");
  EXPECT_FALSE(read_standard_json(out, inside));
  EXPECT_EQ(out.to_string(), L"{\"a\":\"a text that takes a block\"}");
}

TEST(standard_json, passes_over_a_byte_order_mark_if_allowed) {
  const json_read_options options{.byte_order_mark = true};
  EXPECT_EQ(value_of(L"\xFEFF 1", options).to_string(), L"1");
  EXPECT_EQ(value_of(L"1", options).to_string(), L"1");
  expect_refused(L"\xFEFF¦\xFEFF", 6001, options);
  expect_refused(L"\xFEFF¦", 6001, options);
  EXPECT_EQ(read_standard("\xEF\xBB", options).position, 1u);
}

// --- limits

TEST(standard_json, takes_what_the_limits_allow_and_nothing_more) {
  const struct {
    std::size_t json_limits::*limit;
    std::size_t at;
    std::wstring allowed, refused;
  } rows[] = {
      {&json_limits::depth, 2, L"[[],{}]", L"[[],{\"a\":¦[]}]"},
      {&json_limits::depth, 0, L"1", L"¦[]"},
      {&json_limits::units, 3, L"[1]", L"[1]¦ "},
      {&json_limits::members, 2, L"{\"a\":{\"a\":1,\"b\":2},\"b\":2}", L"{\"a\":1,\"b\":2,¦\"c\":3}"},
      {&json_limits::members, 0, L"{}", L"{¦\"a\":3}"},
      {&json_limits::elements, 4, L"[1,{\"a\":2}]", L"[1,{\"a\":2},¦3]"},
      {&json_limits::elements, 2, L"[[]]", L"[[],¦[]]"},
      {&json_limits::bytes, 1000, L"[\"1234567\"]", L"[¦\"" + std::wstring(600, L'a') + L"\"]"},
  };
  for (const auto& row : rows) {
    json_read_options options;
    options.limits.*row.limit = row.at;
    value_of(row.allowed, options);
    expect_refused(row.refused, 6005, options);
  }
  json_read_options options;
  options.limits.members = 300;
  std::wstring many = L"{";
  for (int n = 0; n < 300; ++n) many += (n > 0 ? L",\"k" : L"\"k") + std::to_wstring(n) + L"\":1";
  value_of(many + L"}", options);
  expect_refused(many + L",¦\"z\":1}", 6005, options);
}

TEST(standard_json, estimates_the_memory_of_values) {
  json_read_options options;
  options.limits.bytes = 1 << 20;
  for (const std::string element : {"0", "[]", "{}", "{\"a\":1}", "\"a text in a block\""}) {
    std::string text = "[";
    while (text.size() < (4u << 20)) text += element + ",";
    const read_outcome out = read_standard(text + "0]", options);
    EXPECT_EQ(out.code, 6005u) << element;
    EXPECT_LT(out.position, (1u << 20)) << element;
  }
}

// --- names

TEST(standard_json, refuses_names_that_are_one_key) {
  for (const wchar_t* const marked :
       {L"{\"a\":1,¦\"a\":2}", L"{\"name\":1,\"b\":[],¦\"NAME\":2}", L"[{\"a\":1},{\"a\":1,¦\"\\u0061\":2}]",
        L"{\"\":1,¦\"\":2}", L"{\"a\":{\"a\":{\"b\":1,\"a\":1,¦\"B\":2}}}"})
    expect_refused(marked, 6004);
  ruvo::exception failure;
  bundle out;
  EXPECT_TRUE(read_standard_json(out, "{\"Ñu\":1,\"otro\":2,\"ÑU\":3}", &failure));
  EXPECT_THROW(failure.raise(), ruvo::exc::jsonTwinName);
  EXPECT_EQ(failure.get_detail(), L"ÑU");
  json_read_options options;
  const std::wstring text =
      L"{\"a\":1,\"Long\":{\"x\":[1]},\"b\":2,\"long\":{\"y\":2},\"A\":3,\"LONG\":[3],\"c\":4}";
  options.twins = json_twins::first;
  EXPECT_EQ(value_of(text, options).to_string(), L"{\"a\":1, \"b\":2, \"c\":4, \"long\":{\"x\":[1]}}");
  options.twins = json_twins::last;
  EXPECT_FALSE(read_standard_json(out, text, nullptr, options));
  EXPECT_EQ(out.to_string(), L"{\"a\":3, \"b\":2, \"c\":4, \"long\":[3]}");
  EXPECT_EQ(out.spelling(0), L"a");
  EXPECT_EQ(out.spelling(1), L"Long");
}

/// Objects that follow each other with the same names, some of them, others, many: whatever the reader
/// remembers of those before, each has its own.
TEST(standard_json, knows_objects_that_repeat_from_those_that_nearly_do) {
  unsigned state = 1;
  const auto below = [&state](unsigned limit) {
    return (state = state * 1664525 + 1013904223) / 65536 % limit;
  };
  for (const unsigned different : {3u, 20u, 200u, 3000u}) {
    std::wstring text = L"[";
    list expected;
    for (int n = 0; n < 60; ++n) {
      bundle object;
      std::wstring written;
      for (unsigned more = below(different); more > 0; --more) {
        const std::wstring name = L"aName" + std::to_wstring(below(3) == 0 ? below(different) : more);
        if (object.count(name) > 0) continue;
        written += (object.empty() ? L"\"" : L",\"") + name + L"\":";
        if (below(4) == 0) {
          object[name] = bundle{{L"inside", bundle{{name, static_cast<long long>(more)}}}};
          written += L"{\"inside\":{\"" + name + L"\":" + std::to_wstring(more) + L"}}";
        } else {
          object[name] = static_cast<long long>(more);
          written += std::to_wstring(more);
        }
      }
      text += (n > 0 ? L",{" : L"{") + written + L"}";
      expected.push_back(object);
    }
    text += L"]";
    for (int turn = 0; turn < 2; ++turn) {
      list out;
      ASSERT_FALSE(read_standard_json(out, text));
      ASSERT_EQ(out.to_string(), expected.to_string());
      const bundle first = as_bundle(out[5]), wanted = as_bundle(expected[5]);
      for (std::size_t n = 0; n < first.size(); ++n) ASSERT_EQ(first.spelling(n), wanted.spelling(n));
    }
  }
}

TEST(standard_json, counts_places_in_utf_8_in_characters) {
  const std::string text = "ñ\r\n日😀a\n\xFF\x80z";
  const struct {
    std::uint64_t position;
    text_place place;
  } rows[] = {{0, {1, 1}},  {1, {1, 1}},  {2, {1, 1}},  {3, {1, 2}},  {4, {1, 2}},
              {5, {2, 1}},  {7, {2, 1}},  {8, {2, 2}},  {11, {2, 2}}, {12, {2, 3}},
              {13, {2, 4}}, {14, {3, 1}}, {16, {3, 2}}, {17, {3, 3}}, {99, {3, 3}}};
  for (const auto& row : rows) {
    const text_place place = position_of(text, row.position);
    EXPECT_TRUE(place == row.place) << row.position << ": " << place.line << ':' << place.column;
  }
}

}  // namespace
