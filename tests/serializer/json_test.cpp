// SPDX-License-Identifier: BSL-1.0

// The reader and the writers of JSON.

#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "serializer/reads.hpp"
#include "support/dice.hpp"
#include "support/json_outcome.hpp"
#include "support/rounds.hpp"

using ruvo::bundle;
using ruvo::list;
using ruvo::xvar;
using ruvo::serializer::json;

namespace {

reading_outcome read_json(const std::wstring& text) {
  reading_outcome o;
  o.failed = json().deserialize(o.store, text, &o.error);
  return o;
}

std::wstring written_json(const bundle& b, bool ordered = true, bool tabulated = false, bool escaped = true) {
  std::wstring text;
  ruvo::exception error = ruvo::exc::NotImplemented();
  EXPECT_FALSE(json(ordered, tabulated, escaped).serialize(text, b, &error));
  EXPECT_EQ(error.get_code(), 3U);
  return text;
}

TEST(json_reader, reads) {
  struct {
    const char* name;
    const wchar_t *text, *store;
  } const rows[] = {
      {"members", L"{\"B\":2,\"a\":1.5}", L"{\"a\":1.500000, \"b\":2}"},
      {"white space", L" \r\n{ \"a\" :\t1 , \"b\" : [ 1 , 2 ] } ", L"{\"a\":1, \"b\":[1,2]}"},
      {"array on top", L"[1.5,2]", L"{\"__json_array__\":[1.500000,2]}"},
      {"arrays in arrays", L"[[],[1,[2]],{}]", L"{\"__json_array__\":[[],[1,[2]],{}]}"},
      {"second array is ignored", L"[1][2]", L"{\"__json_array__\":[1]}"},
      {"words in any case", L"{\"x\":TrUe,\"y\":FALSE,\"z\":nUlL}", L"{\"x\":1, \"y\":0, \"z\":\"\"}"},
      {"upper N is ignored", L"{\"x\":Null}", L"{}"},
      {"exponents are not read", L"{\"a\":1e5,\"b\":2E+3}", L"{\"a\":1, \"b\":2}"},
      {"brackets are not matched", L"{\"a\":[1,2},\"b\":{\"c\":3]}", L"{\"a\":[1,2], \"b\":{\"c\":3}}"},
      {"last of a repeated key", L"{\"a\":{\"x\":1},\"A\":{\"y\":2}}", L"{\"a\":{\"y\":2}}"},
      {"colon ends a key", L"{\"a:b\":1}", L"{}"},
      {"empty key on top", L"{\"\":1}", L"{\"\":1}"},
      {"escapes", L"{\"a\":\"q\\\"b\\\\c\\nd\\te\\u0041\\/\"}", L"{\"a\":\"q\\\"b\\c\nd\\te\\u0041\\/\"}"},
      {"looked at afresh", L"{\"a\":\"x\\\\ny\\\\\\\\z\"}", L"{\"a\":\"x\ny\\z\"}"},
      {"minus inside a number", L"{\"o\":{\"a\":1-2},\"l\":[1-2]}", L"{\"l\":[1.000000], \"o\":{\"a\":1}}"},
      {"two points", L"{\"o\":{\"a\":1.2.3}}", L"{\"o\":{\"a\":1.200000}}"},
      {"cut inside a string", L"{\"a\":1,\"b\":\"x", L"{\"a\":1}"},
      {"cut inside a number", L"{\"a\":1,\"b\":23", L"{\"a\":1}"},
      {"cut inside containers", L"{\"a\":[1,{\"b\":2", L"{\"a\":[1,{}]}"},
      {"after an empty object", L"{}\"a\":1,", L"{\"a\":1}"},
      {"missing value", L"{\"o\":{\"a\":,\"b\":1}}", L"{\"o\":{\"a\":\"b\"}}"},
      {"bracket as a value", L"{\"o\":{\"a\":]\"b\":1}", L"{\"b\":1, \"o\":{}}"},
      {"quote or bracket behind a number on top", L"{\"a\":1\"b\":2{\"c\":3,\"d\":4}",
       L"{\"\":2, \"a\":1, \"c\":3, \"d\":4}"},
      {"integer limits", L"{\"a\":-9223372036854775808,\"b\":9223372036854775807}",
       L"{\"a\":-9223372036854775808, \"b\":9223372036854775807}"},
      {"nothing", L"", L"{}"},
      {"no brackets", L"hello", L"{}"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const reading_outcome o = read_json(row.text);
    EXPECT_FALSE(o.failed);
    EXPECT_EQ(o.store.to_string(), row.store);
    EXPECT_EQ(o.error.get_code(), 3U);
  }
}

TEST(json_reader, kinds_of_numbers) {
  const bundle b = read_json(L"{\"a\":1.0,\"b\":2,\"c\":[3,4.0],\"d\":0.1}").store;
  EXPECT_TRUE(b[L"a"].instanceof (typeid(double)));
  EXPECT_TRUE(b[L"b"].instanceof (typeid(long long)));
  EXPECT_TRUE(b.get_list(L"c")[0].instanceof (typeid(long long)));
  EXPECT_TRUE(b.get_list(L"c")[1].instanceof (typeid(double)));
  EXPECT_EQ(static_cast<double>(b[L"d"]), 0.1);
}

class numbers_of_json : public generated_inputs {};

/// Against the standard library, in both readers: numbers of few and many digits, and those that lie half-way
/// between two doubles, or next to it.
TEST_F(numbers_of_json, are_the_nearest_doubles) {
  dice random(20261122);
  json dialect;
  for (unsigned round = 0; round < 20000 * rounds() && !HasFailure(); ++round) {
    const unsigned decimals = random.below(19);
    std::string digits;
    if (random.below(2) == 0) {
      for (unsigned n = decimals + 1 + random.below(20 - decimals); n > 0; --n)
        digits += "0123456789"[random.below(10)];
    } else {
      unsigned long long half_way = (1ULL << 53) + random.below(1U << 30) * 2 + 1;
      for (unsigned n = random.below(5); n < 5; ++n) half_way *= 5;
      digits = std::string(decimals, '0') + std::to_string(half_way + random.below(3) - 1);
    }
    digits.insert(digits.size() - decimals, decimals > 0 ? "." : ".0");
    double expected = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), expected);
    const std::size_t zeros = std::min(digits.find_first_not_of('0'), digits.find('.') - 1);
    const std::wstring text =
        L"[" + std::wstring(digits.begin() + static_cast<std::ptrdiff_t>(zeros), digits.end()) + L"]";
    bundle b;
    list l;
    ASSERT_FALSE(dialect.deserialize(b, text) || ruvo::serializer::read_standard_json(l, text));
    EXPECT_EQ(static_cast<double>(b.get_list(L"__json_array__")[0]), expected) << digits;
    EXPECT_EQ(static_cast<double>(l[0]), expected) << digits;
    ++inputs;
  }
}

TEST(json_reader, reports_and_goes_on) {
  const std::wstring empty_key = L"Asignación de un elemento con una clave vacía cerca del caracter:";
  const std::wstring unknown = L"El valor recibido es desconocido cerca del carcter:";
  struct {
    const char* name;
    std::wstring text;
    unsigned long raw;
    std::wstring message, store;
  } const rows[] = {
      {"unknown word", L"{\"x\":nil}", 0xEBB91773, unknown + L"9 en el nudo:0", L"{}"},
      {"unknown word spoils the rest", L"{\"a\":1,\"x\":[trap],\"b\":2}", 0xEBB91773,
       unknown + L"24 en el nudo:1", L"{\"a\":1, \"x\":[]}"},
      {"empty key", L"{\"o\":{\"\":\"v\"}}", 0xEBB91772, empty_key + L"12 en el nudo:1", L"{\"o\":{}}"},
      {"the last one wins", L"{\"o\":{\"\":1,\"\":2,\"a\":3},\"b\":4}", 0xEBB91772,
       empty_key + L"16 en el nudo:1", L"{\"b\":4, \"o\":{\"a\":3}}"},
      {"container under an empty key", L"{\"o\":{\"\":{\"a\":1}},\"b\":2}", 0xEBB91772,
       empty_key + L"10 en el nudo:1", L"{\"b\":2, \"o\":{\"a\":1}}"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const reading_outcome o = read_json(row.text);
    EXPECT_TRUE(o.failed);
    EXPECT_EQ(o.error.get_raw_code(), row.raw);
    EXPECT_EQ(o.error.get_rango(), 6U);
    EXPECT_EQ(o.error.get_mensaje(), row.message);
    EXPECT_EQ(o.store.to_string(), row.store);
  }
}

TEST(json_reader, a_bad_number_leaves_and_the_reader_is_usable_again) {
  struct {
    const wchar_t* text;
    const char* what;
  } const rows[] = {{L"{\"o\":{\"a\":1,\"b\":-}}", "invalid stoll argument"},
                    {L"{\"a\":[1,-]}", "invalid stod argument"},
                    {L"{\"a\":[-.]}", "invalid stod argument"},
                    {L"{\"a\":-,}", "invalid stod argument"},
                    {L"{\"a\":9223372036854775808}", "stoll argument out of range"},
                    {L"{\"a\":{\"\":1,\"b\":-}}", "invalid stoll argument"}};
  json j;
  for (const auto& row : rows) {
    bundle b;
    ruvo::exception error;
    try {
      j.deserialize(b, row.text, &error);
      FAIL() << row.what;
    } catch (const std::logic_error& e) {
      EXPECT_STREQ(e.what(), row.what);
    }
    EXPECT_EQ(error.WRONG(), std::wstring(row.text).find(L"\"\":") != std::wstring::npos);
    bundle again;
    EXPECT_FALSE(j.deserialize(again, L"{\"z\":1}", nullptr));
    EXPECT_EQ(again.to_string(), L"{\"z\":1}");
  }
  bundle b;
  EXPECT_THROW((void)j.deserialize(b, L"{\"a\":1,\"b\":" + std::wstring(10000, L'7') + L"}"),
               std::out_of_range);
  EXPECT_EQ(b.to_string(), L"{\"a\":1}");
  const std::wstring zeros = L"{\"a\":0." + std::wstring(10000, L'0') + L"7}";
  EXPECT_FALSE(j.deserialize(b, zeros));
  EXPECT_EQ(b.get_double(L"a", '.', 5), 0.0);
}

TEST(json_reader, large_things) {
  std::wstring text = L"{";
  for (int i = 0; i < 200000; ++i)
    text += L"\"k" + std::to_wstring((i * 7919LL) % 200003) + L"\":" + std::to_wstring(i) + L",";
  text += L"\"nul\":\"a";
  text.push_back(L'\0');
  text += L"b\",\"lone\":\"\xDC00\"}";
  bundle b;
  json j;
  ASSERT_FALSE(j.deserialize(b, text));
  EXPECT_EQ(b.size(), 200002U);
  EXPECT_EQ(b.get_long(L"k7919"), 1);
  EXPECT_EQ(b[199999]->second, b[std::wstring(L"k") + std::to_wstring((199999 * 7919LL) % 200003)]);
  EXPECT_EQ(b.get_string(L"nul").size(), 3U);
  EXPECT_EQ(b.get_string(L"lone"), L"\xDC00");
  const std::wstring unknown = L"{\"x\":nothing" + std::wstring(3000000, L'z');
  ruvo::exception error;
  EXPECT_TRUE(j.deserialize(b, unknown, &error));
  EXPECT_TRUE(error.get_mensaje().ends_with(L":3000012 en el nudo:0"))
      << testing::PrintToString(error.get_mensaje());
}

std::wstring dictionary(int names) {
  std::wstring text = L"{\"o\":{";
  for (int n = 0; n < names; ++n) text += L"\"id" + std::to_wstring(n) + L"\":" + std::to_wstring(n) + L",";
  return text + L"\"ID7\":[{\"a\":1}],\"Id7\":{\"a\":2}},\"x\":3}";
}

/// The text with something unusual in the middle.
void expect_both_ways(json_ways& ways, const std::wstring& text, std::size_t at,
                      const std::wstring& unusual) {
  const std::wstring all = text.substr(0, at) + unusual + text.substr(at), cut = text.substr(0, at) + unusual;
  for (const std::wstring& one : {all, cut})
    ASSERT_EQ(ways.at_once(one), ways.by_character(one)) << testing::PrintToString(one);
}

TEST(json_reader, goes_on_by_character_from_anywhere) {
  const std::wstring texts[] = {
      L"{\"a\":{\"b\":[1,{\"c\":-2.5,\"D\":\"x\\\"\\\\n\"}],\"B\":null,\"e\":{}},\"f\":[[],[true,1.5]],\"A\":"
      L"1}",
      L"[{\"id\":1,\"geo\":{\"x\":1}},{\"id\":2,\"geo\":{\"x\":2}},{\"id\":3,\"ID\":{\"x\":3,\"y\":[ ]}}, 4 "
      L"]",
      L"{\"" + std::wstring(70, L'k') +
          L"\":{\"a\":1,\"a\":2},\"b\":[FALSE,TrUe],\"c\":12345678901234567890.5} \"d\":1,"};
  json_ways ways;
  for (const std::wstring& text : texts) {
    for (std::size_t at = 0; at <= text.size() && !HasFatalFailure(); ++at) {
      for (const wchar_t* const unusual :
           {L"", L"\"", L":", L"\"\":0,", L"\"q\" \"r\":", L"{", L"]", L"tru", L"-", L"#"})
        expect_both_ways(ways, text, at, unusual);
    }
  }
  for (const int names : {126, 127, 128, 140}) {
    const std::wstring text = dictionary(names);
    for (std::size_t at = text.size() - 60; at <= text.size() && !HasFatalFailure(); ++at)
      expect_both_ways(ways, text, at, L"\"\":0,");
  }
}

TEST(json_reader, adds_to_what_is_there) {
  for (const wchar_t* const unusual : {L"", L"\"o\":{\"\":0},"}) {
    bundle b = {{L"Old", 1}, {L"List", list{1}}};
    b[L"old"][L"quality"] = 1;
    const bool failed =
        json().deserialize(b, L"{\"NEW\":[2],\"OLD\":2," + std::wstring(unusual) + L"\"new\":{},\"list\":3}");
    EXPECT_EQ(failed, *unusual != L'\0');
    b.erase(L"o");
    EXPECT_EQ(written_json(b, false), L"{\"old\":2,\"list\":3,\"new\":{}}");
    EXPECT_EQ(b.spelling(2), L"NEW");
    EXPECT_EQ(b[L"old"].get_qualities().size(), 1U);
  }
}

TEST(json_reader, takes_escapes_at_every_distance) {
  for (std::size_t n = 0; n < 300; ++n) {
    const std::wstring x(n % 20, L'x'), y(n / 20 + 1, L'y');
    const std::wstring text = L"{\"k\":\"" + x + L"\\\"" + y + L"\\n" + x + L"\\\\" + y + L"\\t" + x + L"\"}";
    ASSERT_EQ(read_json(text).store.get_string(L"k"), x + L"\"" + y + L"\n" + x + L"\\" + y + L"\\t" + x);
  }
}

TEST(json_reader, names_have_no_escapes) {
  const std::wstring text = L"{\"a\\u0041\":1}";
  bundle b;
  ASSERT_FALSE(ruvo::serializer::read_standard_json(b, text));  // which keeps the name for the next text
  EXPECT_EQ(read_json(text).store.to_string(), L"{\"a\\u0041\":1}");
  ASSERT_FALSE(ruvo::serializer::read_standard_json(b, text));
  EXPECT_EQ(b.to_string(), L"{\"aa\":1}");
}

TEST(json_writer, scalars) {
  ruvo::date far_day;
  far_day.set_lapso(std::numeric_limits<long long>::max());
  struct {
    const char* name;
    xvar value;
    const wchar_t *text, *unescaped;
  } const rows[] = {
      {"null", xvar(), L"\"\"", L"\"\""},
      {"bool", true, L"true", L"true"},
      {"short", short{-1}, L"-1", L"-1"},
      {"double", 1.5, L"1.500000", L"1.500000"},
      {"wchar_t", L'"', L"\"\\\"\"", L"\"\"\""},
      {"text", L"\u20AC\xD83D\xDE00 \xD83D", L"\"\u20AC\xD83D\xDE00 \xD83D\"",
       L"\"\u20AC\xD83D\xDE00 \xD83D\""},
      {"escapes", L"\b\t\n\f\r\"\\/\x01\x7F\x85", L"\"\\b\\t\\n\\f\\r\\\"\\\\/  \x85\"",
       L"\"\b\t\n\f\r\"\\/\x01\x7F\x85\""},
      {"NUL", std::wstring(1, L'\0'), L"\" \"", nullptr},
      {"memo", ruvo::memo(L"a\"b"), L"\"a\\\"b\"", L"\"a\"b\""},
      {"date", ruvo::date(20240229L), L"20240229", L"20240229"},
      {"time", ruvo::time(10203L), L"\"010203\"", L"\"010203\""},
      {"datetime", ruvo::datetime(86400.0), L"86400.000000", L"86400.000000"},
      {"far date", far_day, L"9223372036854775807", nullptr},
      {"far time", ruvo::time(ruvo::datetime(-1LL << 62)), L"\"-4611686018427387904\"", nullptr},
      {"binary", ruvo::binary(std::string("\xFB\xFF", 2)), L"\"+/8=\"", L"\"+/8=\""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    bundle b;
    b[L"k"] = row.value;
    EXPECT_EQ(written_json(b), L"{\"k\":" + std::wstring(row.text) + L"}");
    if (row.unescaped) {
      EXPECT_EQ(written_json(b, true, false, false), L"{\"k\":" + std::wstring(row.unescaped) + L"}");
    }
  }
}

TEST(json_writer, every_code_unit_is_escaped_or_kept) {
  for (unsigned c = 0; c < 0x10000; ++c) {
    bundle b;
    // at each distance from a block's start
    b[L"k"] = std::wstring(c % 19, L'x') + static_cast<wchar_t>(c) + std::wstring(c % 11, L'y');
    std::wstring expected(1, static_cast<wchar_t>(c));
    const std::wstring named = L"\b\t\n\f\r\"\\", names = L"btnfr\"\\";
    if (const auto at = named.find(expected); at != std::wstring::npos) {
      expected = L"\\" + names.substr(at, 1);
    } else if (c < 32 || c == 127) {
      expected = L" ";
    }
    ASSERT_EQ(written_json(b),
              L"{\"k\":\"" + std::wstring(c % 19, L'x') + expected + std::wstring(c % 11, L'y') + L"\"}");
  }
}

TEST(json_writer, layouts) {
  bundle b;
  b[L"b"] = 1;
  b[L"a"];
  EXPECT_EQ(written_json(b), L"{\"a\":\"\",\"b\":1}");
  EXPECT_EQ(written_json(b, false), L"{\"b\":1,\"a\":\"\"}");
  EXPECT_EQ(written_json(b, false, false, false), L"{\"a\":\"\",\"b\":1}");  // by key all the same
  bundle with_list;
  with_list[L"a"] = list{1, 2};
  EXPECT_EQ(written_json(with_list, true, true), L"{\n\"a\":[\n1,\n2]\n\n}");
  json again(true, true, true);
  std::wstring text;
  bundle nested;
  nested.hack(L"o.k") = 1;
  again.serialize(text, nested);
  EXPECT_EQ(text, L"{\n\"o\":{\n\t\"k\":1\n}\n}");
  again.serialize(text, nested);  // the writer's first push is behind it
  EXPECT_EQ(text, L"{\n\t\"o\":{\n\t\t\"k\":1\n\t}\n}");
}

TEST(json_writer, array_document) {
  EXPECT_EQ(written_json(read_json(L"[1,2]").store), L"[1,2]");
  EXPECT_EQ(written_json({{L"__json_array__", list{1}}, {L"a", 2}, {L"z", 3}}), L"[1]");
  bundle b;
  b[L"__json_array__"] = 5;
  std::wstring text;
  ruvo::exception error;
  EXPECT_TRUE(json().serialize(text, b, &error));
  EXPECT_EQ(error.get_raw_code(), 0xEBB80004UL);
}

/// A writer that users could write: keys in capitals, numbers in words, bundles counted.
class my_writer : public ruvo::serializer::json_ordered_writer {
 public:
  int bundles = 0;

  std::wstring raw_value(const xvar& value) override {
    return value.is_number() ? L"\"number\"" : json_ordered_writer::raw_value(value);
  }
  std::wstring& raw_key(std::wstring& key) override { return key = L"K" + key; }
  bool raw_bundle(std::wostringstream& out, const xvar& value, ruvo::exception& result) override {
    ++bundles;
    return json_ordered_writer::raw_bundle(out, value, result);
  }
};

struct null_writer : ruvo::serializer::json_writer {
  null_writer() : json_writer(false) {}
  bool raw_bundle(std::wostringstream&, const xvar&, ruvo::exception&) override { return false; }
};

TEST(json_writer, derived_writers_are_asked_for_everything) {
  EXPECT_EQ(null_writer().raw_value(xvar()), L"null");
  my_writer writer;
  std::wstring text;
  EXPECT_FALSE(
      writer.write(text, read_json(L"{\"a\":1,\"b\":[{\"c\":2},\"x\"],\"d\":{}}").store, nullptr, 0));
  EXPECT_EQ(text, L"{\"Ka\":\"number\",\"Kb\":[{\"Kc\":\"number\"},\"x\"],\"Kd\":{}}");
  EXPECT_EQ(writer.bundles, 3);
}

TEST(json, pretty_print) {
  struct {
    const wchar_t *text, *pretty;
  } const rows[] = {{L"{\"a\":[1,2]}", L"{\n    \"a\": [\n        1,\n        2\n    ]\n}"},
                    {L"\"a{\\\",:\"", L"\"a{\\\",:\""},
                    {L"]}x", L"\n]\n}x"},
                    {L"", L""}};
  for (const auto& row : rows) {
    EXPECT_EQ(json::printJsonFormateado(row.text), row.pretty);
    EXPECT_EQ(json::printJsonFormateado(row.text, 2), row.pretty);
  }
  EXPECT_EQ(json::printJsonFormateado(L"[[1]]", 1), L"[\n    [\n    1\n    ]\n]");
}

}  // namespace
