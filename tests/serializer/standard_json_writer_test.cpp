// SPDX-License-Identifier: BSL-1.0

// Standard JSON on its way out: what each kind of value becomes, the options, and what has no form.

#include <ruvo/ruvo.hpp>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "support/dice.hpp"
#include "support/rounds.hpp"

using ruvo::binary;
using ruvo::bundle;
using ruvo::date;
using ruvo::datetime;
using ruvo::list;
using ruvo::memo;
using ruvo::xvar;
using ruvo::serializer::json_dates;
using ruvo::serializer::json_qualities;
using ruvo::serializer::json_write_options;
using ruvo::serializer::write_standard_json;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

/// The text, which all three targets agree about; for a failure its message behind an exclamation mark.
template <class Value>
std::wstring written(const Value& value, const json_write_options& options = {}) {
  std::wstring wide = L"before";
  std::string narrow = "before";
  std::u8string bytes = u8"before";
  ruvo::exception failure;
  const bool failed = write_standard_json(wide, value, &failure, options);
  EXPECT_EQ(write_standard_json(narrow, value, nullptr, options), failed);
  EXPECT_EQ(write_standard_json(bytes, value, nullptr, options), failed);
  EXPECT_EQ(ruvo::texto::to_utf_16(narrow), wide);
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), narrow);
  EXPECT_EQ(failure.WRONG(), failed);
  if (!failed) return wide;
  EXPECT_EQ(wide, L"before");
  EXPECT_EQ(failure.get_raw_code(), 0xE0000000 | 3001 << 16 | 6009);
  EXPECT_THROW(failure.raise(), ruvo::exc::jsonUnwritable);
  return L'!' + failure.get_mensaje();
}

std::wstring refused(const std::wstring& pointer, const std::wstring& reason) {
  return L"!No se puede escribir como JSON el valor de «" + pointer + L"»: " + reason;
}

template <class Value>
xvar qualified(const Value& value, const wchar_t* name, const xvar& quality) {
  xvar made(value);
  made[name] = quality;
  return made;
}

json_write_options with(json_qualities qualities) {
  json_write_options options;
  options.qualities = qualities;
  return options;
}

TEST(standard_json_writer, writes_each_kind_of_value) {
  using ruvo::times::LOCAL;
  const struct {
    xvar value;
    std::wstring text;
  } rows[] = {
      {xvar(), L"null"},
      {true, L"true"},
      {false, L"false"},
      {static_cast<short>(-7), L"-7"},
      {std::numeric_limits<long long>::min(), L"-9223372036854775808"},
      {std::numeric_limits<unsigned long long>::max(), L"18446744073709551615"},
      {1.0, L"1.0"},
      {-0.0, L"-0.0"},
      {0.1f, L"0.10000000149011612"},
      {L'ñ', L"\"ñ\""},
      {L'\0', L"\"\\u0000\""},
      {memo(L"a/\\"), L"\"a/\\\\\""},
      {binary("\x01\x02\xff"), L"\"AQL/\""},
      {binary(), L"\"\""},
      {xvar(ruvo::color(1, 2, 3)), L"\"#010203\""},
      {L"\b\t\n\f\r\x01\x1f\x7f\"", L"\"\\b\\t\\n\\f\\r\\u0001\\u001f\x7f\\\"\""},
      {L"\xD83D\xDE00 \xD83D \xDE00 \xD83D", L"\"\xD83D\xDE00 \\ud83d \\ude00 \\ud83d\""},
      {L"\x2028\x2029", L"\"\x2028\x2029\""},
      {list(), L"[]"},
      {bundle(), L"{}"},
      {list{1, list(), bundle{{L"a", L"b"}}}, L"[1,[],{\"a\":\"b\"}]"},
      {date(2024, 2, 29), L"\"2024-02-29\""},
      {ruvo::time(9, 30, 5), L"\"09:30:05Z\""},
      {ruvo::time(9, 30, 5, LOCAL), L"\"09:30:05\""},
      {datetime(20240229L, 93005L), L"\"2024-02-29T09:30:05Z\""},
      {datetime(-62167219200LL), L"\"0000-01-01T00:00:00Z\""},
      {datetime(253402300799LL), L"\"9999-12-31T23:59:59Z\""},
      {datetime(-1LL), L"null"},
      {ruvo::velda::date(20240229), L"\"2024-02-29\""},
  };
  for (const auto& row : rows) EXPECT_EQ(written(row.value), row.text);
}

TEST(standard_json_writer, knows_the_offset_of_local_time) {
  const datetime local(20240229L, 93005L, ruvo::times::LOCAL);
  const long ahead = static_cast<long>(datetime(20240229L, 93005L).get_lapso() - local.get_lapso()) / 60;
  const auto two = [](long n) { return std::to_wstring(n / 10) + std::to_wstring(n % 10); };
  const std::wstring offset =
      (ahead < 0 ? L"-" : L"+") + two(std::abs(ahead) / 60) + L":" + two(std::abs(ahead) % 60);
  EXPECT_EQ(written(xvar(local)), L"\"2024-02-29T09:30:05" + offset + L"\"");
  json_write_options utc;
  utc.dates = json_dates::utc;
  const datetime same(local.get_lapso());
  EXPECT_EQ(written(list{local, date(2024, 2, 29, ruvo::times::LOCAL)}, utc),
            written(list{same, date(2024, 2, 29)}));
}

TEST(standard_json_writer, lays_out_as_it_is_asked) {
  bundle order{{L"skuCode", L"\x2028"}, {L"Id", list{1, list(), bundle()}}};
  EXPECT_EQ(written(order), L"{\"skuCode\":\"\x2028\",\"Id\":[1,[],{}]}");
  json_write_options options;
  options.indent = 2;
  EXPECT_EQ(written(order, options),
            L"{\n  \"skuCode\": \"\x2028\",\n  \"Id\": [\n    1,\n    [],\n    {}\n  ]\n}");
  options = {};
  options.sorted = options.folded = options.line_separators = true;
  EXPECT_EQ(written(order, options), L"{\"id\":[1,[],{}],\"skucode\":\"\\u2028\"}");
  std::wstring& part = order.hack_string_on(L"skucode");
  EXPECT_FALSE(write_standard_json(part, order));
  EXPECT_EQ(part, L"{\"skuCode\":\"\x2028\",\"Id\":[1,[],{}]}");
}

TEST(standard_json_writer, has_three_ways_with_qualities) {
  const list all{qualified(L"x", L"Lang", L"es"), qualified(bundle{{L"a", 1}}, L"Id", list{7}),
                 qualified(bundle(), L"n", xvar()), qualified(list{1}, L"k", bundle{{L"b", 2}})};
  EXPECT_EQ(written(all), L"[\"x\",{\"a\":1},{},[1]]");
  EXPECT_EQ(written(all, with(json_qualities::failure)), refused(L"/0", L"tiene cualidades."));
  json_write_options options = with(json_qualities::members);
  EXPECT_EQ(written(all, options),
            L"[{\"@Lang\":\"es\",\"#text\":\"x\"},{\"@Id\":[7],\"a\":1},{\"@n\":null},"
            L"{\"@k\":{\"b\":2},\"#text\":[1]}]");
  options.folded = true;
  options.indent = 0;
  EXPECT_EQ(written(all[0], options), L"{\n\"@lang\": \"es\",\n\"#text\": \"x\"\n}");

  const xvar twins = qualified(bundle{{L"@id", 1}}, L"ID", 2);
  const std::wstring reason = L"una cualidad y un miembro darían el mismo nombre.";
  EXPECT_EQ(written(twins, with(json_qualities::members)), L"{\"@ID\":2,\"@id\":1}");
  EXPECT_EQ(written(list{twins}, options), refused(L"/0", reason));
  bundle by_path;
  by_path.putOn(L"@Ñ", 1);
  EXPECT_EQ(written(qualified(by_path, L"Ñ", 2), with(json_qualities::members)), refused(L"", reason));
}

TEST(standard_json_writer, names_what_has_no_form) {
  const std::wstring no_number = L"el número no es finito.";
  const bundle inside{{L"Z", 1}, {L"A/b~", list{bundle{{L"x", -infinity}}}}, {L"m", 2}};
  json_write_options sorted;
  sorted.sorted = sorted.folded = true;
  EXPECT_EQ(written(inside), refused(L"/A~1b~0/0/x", no_number));
  EXPECT_EQ(written(inside, sorted), refused(L"/a~1b~0/0/x", no_number));
  EXPECT_EQ(written(xvar(std::nan(""))), refused(L"", no_number));
  const json_write_options members = with(json_qualities::members);
  EXPECT_EQ(written(list{qualified(infinity, L"k", 1)}, members), refused(L"/0/#text", no_number));
  EXPECT_EQ(written(list{qualified(1, L"k", list{infinity})}, members), refused(L"/0/@k/0", no_number));
  EXPECT_EQ(written(qualified(list{infinity}, L"k", 1), members), refused(L"/#text/0", no_number));

  EXPECT_EQ(written(list{datetime(253402300800LL)}),
            refused(L"/0", L"ISO 8601 solo tiene los años de 0 a 9999."));
  EXPECT_EQ(written(list{datetime(std::numeric_limits<long long>::max())}),
            refused(L"/0", L"no tiene forma en el calendario."));
  bundle alike;
  alike.putOn(L"Ñu", 1);
  alike[L"Ñu"] = 2;
  EXPECT_EQ(written(alike), refused(L"/Ñu", L"hay dos miembros que se escriben igual."));

  xvar deep(infinity);
  for (int n = 0; n < 500; ++n) deep = xvar(list{deep});
  ruvo::exception failure;
  std::string out;
  ASSERT_TRUE(write_standard_json(out, deep, &failure));
  EXPECT_EQ(failure.get_detail().size(), 1000U);
  EXPECT_EQ(failure.get_mensaje().size(), refused(L"", no_number).size() - 1 + 201);
}

TEST(standard_json_writer, writes_the_shortest_double) {
  const struct {
    double value;
    const wchar_t* text;
  } rows[] = {{1e15, L"1000000000000000.0"},
              {9007199254740993.0, L"9007199254740992.0"},
              {1e16, L"1e16"},
              {-1.5e300, L"-1.5e300"},
              {0.0001, L"0.0001"},
              {0.00012345, L"0.00012345"},
              {0.00001, L"1e-5"},
              {5e-324, L"5e-324"},
              {1.0 / 3, L"0.3333333333333333"},
              {9.95, L"9.95"},
              {100000.5, L"100000.5"},
              {2.2250738585072014e-308, L"2.2250738585072014e-308"},
              {1.7976931348623157e308, L"1.7976931348623157e308"},
              {123456789012345.6, L"123456789012345.6"}};
  for (const auto& row : rows) EXPECT_EQ(written(xvar(row.value)), row.text);
}

class standard_json_doubles : public generated_inputs {};

TEST_F(standard_json_doubles, read_back_to_the_same_bits) {
  dice throws(11);
  for (unsigned n = 0; n < 20000 * rounds(); ++n, ++inputs) {
    double value = std::bit_cast<double>(static_cast<std::uint64_t>(throws.number()));
    if (throws.one_in(2))
      value = std::ldexp(throws.below(100000000), static_cast<int>(throws.below(80)) - 60);
    if (!std::isfinite(value)) continue;
    std::string text;
    ASSERT_FALSE(write_standard_json(text, xvar(value)));
    EXPECT_EQ(std::bit_cast<std::uint64_t>(std::strtod(text.c_str(), nullptr)),
              std::bit_cast<std::uint64_t>(value))
        << text;
    EXPECT_NE(text.find_first_of(".e"), text.npos);
  }
}

/// Texts of all lengths about those of vectors, and of pieces, with something to escape anywhere.
TEST(standard_json_writer, escapes_at_every_place) {
  for (const std::size_t size : {1, 3, 4, 7, 8, 9, 15, 16, 17, 1023, 1024, 1025, 2049}) {
    for (std::size_t at = size > 40 ? size - 40 : 0; at < size; ++at) {
      for (const std::wstring mark : {L"\"", L"é", L"日", L"\xD83D\xDE00", L"\xDE00"}) {
        std::wstring text(size, L'x');
        text.replace(at, 1, mark);
        const std::wstring shown = mark == L"\"" ? L"\\\"" : mark == L"\xDE00" ? L"\\ude00" : mark;
        ASSERT_EQ(written(xvar(text)),
                  L'"' + std::wstring(at, L'x') + shown + std::wstring(size - at - 1, L'x') + L'"');
      }
    }
  }
}

}  // namespace
