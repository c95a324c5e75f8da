// SPDX-License-Identifier: BSL-1.0

// Standard JSON in pieces: wherever a text is cut, the events, the failures and their places are those of the
// whole, and its verdict is that of the reader of whole texts.

#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "serializer/json_source.hpp"
#include "support/rounds.hpp"

using namespace ruvo::serializer;
using ruvo::xvar;

namespace {

/// Writes down what it is called for.
class recorder : public ijson_events {
 public:
  void on_null() override { log += L"null "; }
  void on_boolean(bool value) override { log += value ? L"true " : L"false "; }
  void on_integer(long long value) override { log += L"i" + std::to_wstring(value) + L" "; }
  void on_unsigned(unsigned long long value) override { log += L"u" + std::to_wstring(value) + L" "; }
  void on_double(double value) override { log += L"d" + std::to_wstring(value) + L" "; }
  void on_number(std::wstring_view written) override { log.append(L"#").append(written).append(L" "); }
  void on_text(std::wstring_view value) override { log.append(L"\"").append(value).append(L"\" "); }
  void on_name(std::wstring_view name) override { log.append(name).append(L": "); }
  void on_open_object() override { log += L"{ "; }
  void on_close_object() override { log += L"} "; }
  void on_open_list() override { log += L"[ "; }
  void on_close_list() override { log += L"] "; }

  std::wstring log;
};

struct result {
  std::wstring log;
  unsigned long code = 0;
  std::uint64_t position = 0;
  text_place place;
  bool operator==(const result&) const = default;
};

std::ostream& operator<<(std::ostream& out, const result& r) {
  return out << testing::PrintToString(r.log) << r.code << '@' << r.position << '=' << r.place.line << ':'
             << r.place.column;
}

/// Cut at the given places.
template <class View>
result in_pieces(View text, std::vector<std::size_t> cuts, const json_read_options& options = {},
                 bool many = false) {
  recorder events;
  standard_json_reader reader(events, options, many);
  ruvo::exception failure;
  cuts.push_back(text.size());
  std::size_t from = 0;
  bool failed = false;
  for (const std::size_t to : cuts) {
    failed = failed || reader.feed(text.substr(from, to - from), &failure);
    from = to;
  }
  failed = failed || reader.finish(&failure);
  result out{std::move(events.log), 0, reader.position(), reader.place()};
  if (failed) {
    out.code = failure.get_raw_code() & 0xFFFF;
    EXPECT_EQ(out.position, failure_position(failure));
    EXPECT_EQ(out.place, position_of(text, out.position)) << testing::PrintToString(text);
  }
  return out;
}

/// The whole by events and by the reader of wholes, then cut into units and everywhere in two.
template <class View>
void expect_same_however_cut(View text, const json_read_options& options = {}) {
  const result whole = in_pieces(text, {}, options);
  xvar value;
  ruvo::exception failure;
  json_read_options all = options;
  all.twins = json_twins::last;
  EXPECT_EQ(read_standard_json(value, text, &failure, all), whole.code != 0) << testing::PrintToString(text);
  const unsigned long code = failure_position(failure) == 0 ? 0 : failure.get_raw_code() & 0xFFFF;
  EXPECT_EQ(code, whole.code) << testing::PrintToString(text);
  EXPECT_EQ(failure_position(failure), whole.position) << testing::PrintToString(text);
  std::vector<std::size_t> all_cuts;
  for (std::size_t cut = 0; cut <= text.size(); ++cut) {
    EXPECT_EQ(in_pieces(text, {cut}, options), whole) << cut << " of " << testing::PrintToString(text);
    all_cuts.push_back(cut);
  }
  EXPECT_EQ(in_pieces(text, all_cuts, options), whole) << testing::PrintToString(text);
}

void expect_same_in_both(const std::wstring& text, const json_read_options& options = {}) {
  expect_same_however_cut(std::wstring_view(text), options);
  expect_same_however_cut(std::string_view(ruvo::texto::to_utf_8(text)), options);
}

TEST(standard_json_pieces, are_cut_anywhere) {
  for (const wchar_t* const text : {L" {\"a\\u00e9\xD83D\xDE00ñ\" : [ -12.5e+3 , true,false , "
                                    L"null,\"\\ud83d\\ude00\\n日\"], \"\": {} }\r\n",
                                    L"-0",
                                    L"18446744073709551615",
                                    L"[1,\r\n 2.5.3]",
                                    L"[tru]",
                                    L"{\"a\":1,}",
                                    L"\"abc\\u12g4\"",
                                    L"\"\\ud83dx\\x\"",
                                    L"[1,2",
                                    L"\"a",
                                    L"12e",
                                    L"nul",
                                    L"[\"ñ\t\"]",
                                    L"[[[[[]]]],{\"x\":{}}] 1",
                                    L"\n\r\n\n  x",
                                    L"",
                                    L"  ",
                                    L"1 ",
                                    L"01",
                                    L"{\"a\"\n:\n\"b\"\n}"})
    expect_same_in_both(text);
  for (const wchar_t* const text : {L"\"a\xD83D\"", L"\"\xDE00\"", L"\"\xD83D", L"\"\r\xD83D\\ude00\""})
    expect_same_however_cut(std::wstring_view(text));
  for (const char* const text : {"\"\xE2\x82\"", "\"\xE2\x82", "\"\xF0\x9F\x98\x80\xC3\"", "[\r\n\"\x80\"]",
                                 "\r\n\x80", "\"\xED\xA0\x80\""})
    expect_same_however_cut(std::string_view(text));
}

TEST(standard_json_pieces, keep_the_options) {
  const json_read_options mark{.byte_order_mark = true};
  for (const wchar_t* const text : {L"\xFEFF[1]", L"[1]", L"\xFEFF", L"\xFEFF\xFEFF 1", L""})
    expect_same_in_both(text, mark);
  for (const char* const text : {"\xEF\xBB", "\xEF\xBB[]", "\xEF[]"})
    expect_same_however_cut(std::string_view(text), mark);
  const json_read_options text_numbers{.too_large = json_number::text, .inexact = json_number::text};
  expect_same_in_both(L"[1e400,0.10000000000000001,5]", text_numbers);
  for (const auto& [limit, at] :
       std::vector<std::pair<std::size_t json_limits::*, std::size_t>>{{&json_limits::depth, 1},
                                                                       {&json_limits::depth, 2},
                                                                       {&json_limits::elements, 4},
                                                                       {&json_limits::elements, 6},
                                                                       {&json_limits::members, 0},
                                                                       {&json_limits::members, 1}}) {
    json_read_options options;
    options.limits.*limit = at;
    expect_same_in_both(L"[1, \"dos\",{\"a\":[true] , \"b\":{}}, 1.5]", options);
  }
  json_read_options options;
  options.limits.units = 4;
  EXPECT_EQ(in_pieces(std::string_view("[1,2,x"), {2, 3}, options), (result{L"[ i1 ", 6005, 5, {1, 5}}));
  EXPECT_EQ(in_pieces(std::string_view("[x,2,3"), {2, 3}, options).code, 6001u);
  EXPECT_EQ(in_pieces(std::string_view("[12]"), {2, 3}, options).code, 0u);
  options.limits.units = 1000;
  options.limits.bytes = 100;
  for (const std::string open : {"[\"", "[1"}) {
    const result cut = in_pieces(std::string_view(open + std::string(500, '1')), {200, 300, 400}, options);
    EXPECT_EQ(cut.code, 6005u);
    EXPECT_EQ(cut.position, 2u);
  }
}

TEST(standard_json_pieces, of_two_encodings_leave_nothing_behind) {
  json_values values;
  ruvo::exception failure;
  xvar value;
  EXPECT_FALSE(values.feed(std::string_view()));
  EXPECT_FALSE(values.feed(L"[1,"));
  EXPECT_TRUE(values.feed(std::string_view("2"), &failure));
  EXPECT_TRUE(values.feed(L"2]"));
  EXPECT_TRUE(values.finish());
  EXPECT_EQ(values.position(), 0u);
  values.reset();
  EXPECT_FALSE(values.feed(std::string_view("[2]")) || values.finish() || !values.next(value));
  EXPECT_EQ(value.to_string(), L"[2]");
}

TEST(standard_json_pieces, of_many_values_have_limits_for_each) {
  json_read_options options;
  options.limits.units = 3;
  for (const std::size_t step : {std::size_t{1}, std::size_t{5}}) {
    json_values values(options);
    const std::string_view text = "123\n4\n56\n";
    for (std::size_t at = 0; at < text.size(); at += step) EXPECT_FALSE(values.feed(text.substr(at, step)));
    EXPECT_FALSE(values.finish());
    xvar value;
    std::wstring all;
    while (values.next(value)) all += value.to_string() + L' ';
    EXPECT_EQ(all, L"123 4 56 ");
  }
  options = {};
  options.limits.bytes = 4096;
  std::string names = "{\"" + std::string(3000, 'a') + "\":1}";
  EXPECT_TRUE(json_values(options).feed(names));
}

TEST(standard_json_pieces, begin_anew_after_a_text) {
  recorder events;
  standard_json_reader reader(events);
  ruvo::exception failure;
  EXPECT_FALSE(reader.feed(std::string_view("[1")));
  EXPECT_TRUE(reader.feed(L"]", &failure));
  EXPECT_THROW(failure.raise(), ruvo::exc::BadArgument);
  EXPECT_TRUE(reader.feed(u8"]"));  // as a failure stays until the reader is reset
  reader.reset();
  EXPECT_FALSE(reader.feed(L"[\nx]") && reader.finish() && !reader.feed(L"[1]"));
  EXPECT_EQ(reader.place(), (text_place{2, 1}));
  EXPECT_TRUE(reader.feed(L"1"));
  reader.reset();
  EXPECT_EQ(reader.position(), 0u);
  EXPECT_FALSE(reader.feed("2"));
  EXPECT_FALSE(reader.finish());
  EXPECT_EQ(events.log, L"[ [ i2 ");
}

TEST(standard_json_pieces, let_through_what_a_handler_throws) {
  struct : ijson_events {
    void on_null() override { throw ruvo::exc::jsonBadFormated(1); }
    void on_boolean(bool) override { throw std::length_error("mine"); }
  } events;
  standard_json_reader reader(events);
  EXPECT_THROW(static_cast<void>(reader.feed("[null")), ruvo::exc::jsonBadFormated);
  EXPECT_THROW(static_cast<void>(reader.feed("[true")), std::length_error);
  EXPECT_FALSE(reader.feed("[]"));
  EXPECT_FALSE(reader.finish());
}

TEST(standard_json_pieces, hold_many_values) {
  const json_read_options options;
  const auto many = [&](std::string_view text) { return in_pieces(text, {}, options, true); };
  EXPECT_EQ(many("").code, 0u);
  EXPECT_EQ(many(" \n").code, 0u);
  EXPECT_EQ(many("1\n2 \"a\"\r\n\r\n{}\t[]\ntrue").log, L"i1 i2 \"a\" { } [ ] true ");
  for (const std::string_view text :
       {"{}[]", "1\"a\"", "\"a\"1", "truefalse", "1,2", "[1]\n]", "1\n[", "\x1E{}"}) {
    const result whole = many(text);
    EXPECT_EQ(whole.code, 6001u) << text;
    for (std::size_t cut = 0; cut <= text.size(); ++cut)
      EXPECT_EQ(in_pieces(text, {cut}, options, true), whole) << text;
  }
  json_read_options limited;
  limited.limits.units = 6;
  limited.limits.elements = 2;
  std::string text;
  for (int n = 0; n < 100; ++n) text += "[123]\n";
  EXPECT_EQ(in_pieces(std::string_view(text), {}, limited, true).code, 0u);
  const result beyond = in_pieces(std::string_view(text + " [123]"), {3, 14, 602}, limited, true);
  EXPECT_EQ(beyond.code, 6005u);
  EXPECT_EQ(beyond.position, 606u);
}

TEST(standard_json_pieces, make_one_value_after_another) {
  const std::string text =
      "{\"Id\":1,\"name\":\"ñandú y más\"}\n{\"Id\":2,\"Name\":[18446744073709551615,1.5]}\n\n7";
  for (std::size_t step = 1; step <= text.size(); ++step) {
    json_values values;
    std::wstring read;
    xvar value = L"before";
    for (std::size_t at = 0; at < text.size(); at += step) {
      ASSERT_FALSE(values.feed(std::string_view(text).substr(at, step)));
      while (values.next(value)) read += value.to_string() + L";";
    }
    ASSERT_FALSE(values.finish());
    ASSERT_EQ(read,
              L"{\"id\":1, \"name\":\"ñandú y más\"};{\"id\":2, \"name\":[18446744073709551615,1.500000]};");
    ASSERT_TRUE(values.next(value));
    ASSERT_EQ(static_cast<long long>(value), 7);
    ASSERT_FALSE(values.next(value));
  }
  json_values values;
  ruvo::exception failure;
  xvar value;
  EXPECT_TRUE(values.feed("[1]\n{\"a\":1,\n\"A\":2} 3", &failure));
  EXPECT_THROW(failure.raise(), ruvo::exc::jsonTwinName);
  EXPECT_EQ(values.position(), 13u);
  EXPECT_EQ(values.place(), (text_place{3, 1}));
  EXPECT_TRUE(values.next(value));
  EXPECT_EQ(value.to_string(), L"[1]");
  EXPECT_TRUE(values.finish());
  EXPECT_FALSE(values.next(value));
  values.reset();
  EXPECT_FALSE(values.feed(L"[2] "));
  EXPECT_TRUE(values.next(value));
  EXPECT_EQ(value.to_string(), L"[2]");
}

class standard_json_generated : public generated_inputs {};

/// Documents, some of them with a unit too many, too few or another one, in pieces of random sizes; and what
/// the check of JSON finds in them.
TEST_F(standard_json_generated, has_one_verdict_in_all_ways) {
  json_source source(77);
  for (unsigned round = 0; round < 3000 * rounds(); ++round, ++inputs) {
    std::wstring text;
    for (const json_part& part : source.parts()) text += part.text;
    if (!text.empty() && source.one_in(2)) {
      const std::size_t at = source.below(text.size());
      const wchar_t unit = source.unit(L"{}[]:,\"\\0123456789eE+-.tfnu \t\n\x1\x7Fñ\x2028");
      if (source.one_in(3)) {
        text.insert(at, 1, unit);
      } else if (source.one_in(2)) {
        text[at] = unit;
      } else {
        text.erase(at, 1);
      }
    }
    std::vector<std::size_t> cuts;
    for (unsigned n = source.below(6); n > 0; --n) cuts.push_back(source.below(text.size() + 1));
    std::sort(cuts.begin(), cuts.end());
    const result whole = in_pieces(std::wstring_view(text), {});
    ASSERT_EQ(in_pieces(std::wstring_view(text), cuts), whole) << testing::PrintToString(text);
    xvar value, narrow;
    ruvo::exception failure;
    const json_read_options options{.twins = json_twins::first};
    ASSERT_EQ(read_standard_json(value, text, &failure, options), whole.code != 0);
    ASSERT_EQ(failure_position(failure), whole.position) << testing::PrintToString(text);
    const auto findings = check_json(text, 1);
    const bool clean =
        std::all_of(findings.begin(), findings.end(), [](const auto& f) { return is_note(f.rule); });
    const std::string bytes = ruvo::texto::to_utf_8(text);
    if (ruvo::texto::to_utf_16(bytes) != text) continue;  // half a pair
    // The check does not ask whether a value holds a number.
    ASSERT_TRUE(whole.code == 6006 || clean == (whole.code == 0)) << testing::PrintToString(text);
    ASSERT_EQ(read_standard_json(narrow, bytes, nullptr, options), whole.code != 0);
    ASSERT_EQ(narrow.to_string(), value.to_string());
  }
}

TEST(standard_json_serializer, adds_to_what_is_there) {
  standard_json json({}, {.indent = -1});
  ruvo::bundle out{{L"Kept", 1}, {L"Changed", 2}};
  out[L"changed"][L"quality"] = 3;
  EXPECT_FALSE(json.deserialize(out, L"{\"CHANGED\":[1],\"newOne\":{\"a\":null}}"));
  EXPECT_EQ(out.to_string(), L"{\"changed\":[1], \"kept\":1, \"newone\":{\"a\":\"\"}}");
  EXPECT_TRUE(out[L"changed"].has_quality(L"quality"));
  EXPECT_EQ(out.spelling(1), L"Changed");
  EXPECT_EQ(out.spelling(2), L"newOne");
  const std::wstring before = out.to_string();
  for (const wchar_t* const text : {L"1", L"{\"z\":1,", L"{\"z\":1,\"Z\":1}"})
    EXPECT_TRUE(json.deserialize(out, text));
  EXPECT_EQ(out.to_string(), before);
  ruvo::bundle whole;
  std::wstring text;
  EXPECT_FALSE(json.deserialize(whole, L"[1,{\"aB\":\"x\"}]"));
  EXPECT_TRUE(whole.has(L"__json_array__"));
  EXPECT_FALSE(json.serialize(text, whole));
  EXPECT_EQ(text, L"[1,{\"aB\":\"x\"}]");
  EXPECT_FALSE(json.serialize(text, ruvo::bundle{{L"aB", 1.5}}));
  EXPECT_EQ(text, L"{\"aB\":1.5}");
}

}  // namespace
