// SPDX-License-Identifier: BSL-1.0

// The check of JSON texts: tables of single departures, and generated documents whose outcome is known or
// follows from the grammar.

#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "serializer/json_source.hpp"
#include "support/rounds.hpp"

using ruvo::serializer::check_json;
using ruvo::serializer::json_finding;
using rule = ruvo::serializer::json_rule;

namespace {

struct found {
  rule departure;
  std::size_t line, column;
  bool operator==(const found&) const = default;
};

std::ostream& operator<<(std::ostream& out, const found& f) {
  return out << static_cast<int>(f.departure) << '@' << f.line << ':' << f.column;
}

std::vector<found> check(std::wstring_view text, bool duplicates = false) {
  std::vector<found> out;
  for (const json_finding& finding : check_json(text, 100, duplicates)) {
    EXPECT_FALSE(finding.what.empty());
    out.push_back({finding.rule, finding.line, finding.column});
  }
  return out;
}

struct row {
  std::wstring text;
  std::vector<found> expected;
};

void expect_rows(const std::vector<row>& rows, bool duplicates = false) {
  for (const row& r : rows)
    EXPECT_EQ(check(r.text, duplicates), r.expected) << testing::PrintToString(r.text);
}

/// Each departure is at the character behind a ¦.
TEST(json_check, departures_of_one_kind) {
  const struct {
    rule departure;
    std::vector<std::wstring> texts;
  } rows[] = {
      {rule::no_value, {L"¦", L" \r\n ¦"}},
      {rule::byte_order_mark, {L"¦\xFEFF{}"}},
      {rule::blank,
       {L"1¦\xFEFF",
        L"[¦\xA0"
        L"1¦\v,¦\f2¦\x2028]¦\x85"}},
      {rule::trailing_text, {L"{} ¦{}", L"1\n¦,,,true,tru", L"[]¦]"}},
      {rule::unexpected, {L"¦]1", L"¦,1", L"{\"a\":¦:1}", L"{\"a\":1¦:2}", L"[1¦:2]"}},
      {rule::comment, {L"[1 ¦/*/ ]", L"¦// a\n[1, ¦/* \xD83D\xDE00 * / */ 2] ¦//"}},
      {rule::literal, {L"¦/"}},
      {rule::trailing_comma, {L"[1¦,]", L"{\"a\":1 ¦, }"}},
      {rule::missing_value,
       {L"[¦,1]", L"[1,¦,2]", L"{\"a\":¦}", L"{\"a\":¦,\"b\":2}", L"{\"a\":1,¦,\"b\":2}"}},
      {rule::missing_colon, {L"{\"a\"¦}", L"{\"a\"¦,\"b\":1}", L"{\"a\" ¦1}", L"{\"a\" ¦[1]}"}},
      {rule::bad_name, {L"{¦:1}", L"{¦[1],\"a\":1}", L"{¦1:1,¦null:2}"}},
      {rule::quotes, {L"{¦'a':1}", L"[¦'a\\'b', ¦'c\n]"}},
      {rule::missing_comma, {L"[1 ¦2]", L"{\"a\":1 ¦\"b\":2}", L"{\"a\":1 ¦2}", L"[1¦[2]¦\"a\"¦{}]"}},
      {rule::wrong_bracket, {L"[1¦}", L"{\"a\":1¦]", L"{\"a\":[1¦}", L"[{¦]"}},
      {rule::unclosed, {L"[¦", L"[1,\n¦", L"{\"a\":[[[¦"}},
      {rule::unclosed_string, {L"[¦\"abc", L"¦\"\\", L"¦\"\\\""}},
      {rule::control_character, {L"\"a¦\tb¦\n\""}},
      {rule::escape, {LR"("¦\a¦\'¦\U0041¦\ ")", LR"(["¦\u","¦\u12","¦\u00G0","¦\u+123"])"}},
      {rule::lone_surrogate,
       {LR"("¦\ud83d ¦\udc00¦\udc01¦\ud83d\ud83d\ude00")", L"\"¦\xD83D\xD83D\xDE00¦\xDE00¦\\ude00\"",
        L"\"¦\xD83D¦\\ude00\""}},
  };
  for (const auto& row : rows) {
    for (std::wstring text : row.texts) {
      std::vector<std::size_t> marks;
      for (std::size_t at; (at = text.find(L'¦')) != text.npos; text.erase(at, 1)) marks.push_back(at + 1);
      std::vector<found> expected;
      for (const std::size_t position : marks) {
        const auto place = ruvo::serializer::position_of(text, position);
        expected.push_back({row.departure, place.line, place.column});
      }
      EXPECT_EQ(check(text), expected) << testing::PrintToString(text);
    }
  }
}

TEST(json_check, clean_texts_and_departures_of_several_kinds) {
  expect_rows({
      {L" \t\r\n1\r\n", {}},
      {L"\"\"", {}},
      {L"null", {}},
      {L"\xFEFF", {{rule::byte_order_mark, 1, 1}, {rule::no_value, 1, 2}}},
      {L"{\"a\":{\"b\":[{},[],[[]]]}}", {}},
      {L"[,]", {{rule::missing_value, 1, 2}, {rule::trailing_comma, 1, 2}}},
      {L"{,}", {{rule::missing_value, 1, 2}, {rule::trailing_comma, 1, 2}}},
      {L"{a:1}", {{rule::literal, 1, 2}, {rule::bad_name, 1, 2}}},
      {LR"("\"\\\/\b\f\n\r\t\u00e1\uD83d\uDE00")", {}},
      {L"\"\x7F\x85\x2028\xFEFF\xFFFF\xD83D\xDE00\"", {}},
      {std::wstring(L"\"\0\"", 3), {{rule::control_character, 1, 2}}},
      {L"\"\\\xD83D\xDE00\\\n\"",
       {{rule::escape, 1, 2}, {rule::escape, 1, 4}, {rule::control_character, 1, 5}}},
      {L"\"\\u00", {{rule::unclosed_string, 1, 1}, {rule::escape, 1, 2}}},
  });
}

TEST(json_check, words_and_numbers) {
  for (const wchar_t* const good :
       {L"0", L"-0", L"10", L"0.0", L"-1.5e+10", L"1E5", L"0e-0", L"123456789012345678901", L"1e99999"})
    EXPECT_TRUE(check(good).empty()) << testing::PrintToString(good);
  for (const wchar_t* const bad :
       {L"00", L"01", L"-01.5", L"+1", L".5", L"-.5", L"-", L"1.", L"1.e5", L"1e", L"1e+", L"1.2.3", L"0x1F",
        L"1-2", L"1a", L"-Infinity", L"--1", L"1\xFF11", L"1'000"})
    EXPECT_EQ(check(bad), (std::vector<found>{{rule::number, 1, 1}})) << testing::PrintToString(bad);
  for (const wchar_t* const bad : {L"True", L"FALSE", L"nul", L"nulls", L"NaN", L"Infinity", L"undefined",
                                   L"t", L"\x01", L"\xD83D", L"ñ", L"\\n", L"\x200B"})
    EXPECT_EQ(check(bad), (std::vector<found>{{rule::literal, 1, 1}})) << testing::PrintToString(bad);
}

TEST(json_check, duplicate_names_are_compared_as_they_read) {
  expect_rows(
      {{L"{\"a\":{\"a\":1},\"A\":2}", {}},
       {LR"({"a":1,"\u0061":2,"b":{"c":1,"c":2},"a":3})",
        {{rule::duplicate_name, 1, 8}, {rule::duplicate_name, 1, 30}, {rule::duplicate_name, 1, 37}}},
       {LR"({"":1,"":2,"\n":3,"\u000A":4})", {{rule::duplicate_name, 1, 7}, {rule::duplicate_name, 1, 19}}}},
      true);
  EXPECT_TRUE(check(L"{\"a\":1,\"a\":2}").empty());
}

TEST(json_check, the_sentence_names_what_is_wrong) {
  const auto first = [](std::wstring_view text) { return check_json(text, 1, true).at(0).what; };
  EXPECT_EQ(first(L"[01]"), L"El número «01» no es correcto: sobran ceros a la izquierda.");
  EXPECT_EQ(first(L"[True]"), L"«True» no es un valor: sólo hay true, false y null.");
  EXPECT_EQ(first(L"[1,\xA0 2]"), L"U+00A0 no es un blanco de JSON.");
  EXPECT_EQ(first(L"{\"a\":\n [[1]"), L"El texto acaba sin cerrar la lista de la línea 2, columna 2.");
  EXPECT_EQ(first(std::wstring(1000, L'x')).size(),
            std::wstring(L"«» no es un valor: sólo hay true, false y null.").size() + 25);
}

TEST(json_check, any_depth_and_bounded_findings_in_linear_time) {
  constexpr std::size_t depth = 100000;
  std::wstring deep;
  for (std::size_t n = 0; n < depth; ++n) deep += n % 2 ? L"{\"a\":" : L"[";
  EXPECT_EQ(check_json(deep).size(), 1U);
  std::wstring closed = deep + L"1";
  for (std::size_t n = depth; n-- > 0;) closed += n % 2 ? L'}' : L']';
  EXPECT_TRUE(check_json(closed, 100, true).empty());
  for (const wchar_t* const part :
       {L",", L":", L"]", L"\"\\", L"'", L"/*", L"\xFEFF", L"[}", L"{\"a\"", L"\\u", L"1 "}) {
    std::wstring text = L"[";
    while (text.size() < 100000) text += part;
    EXPECT_LE(check_json(text).size(), 100U);
    const auto all = check_json(text, text.size());
    EXPECT_TRUE(std::is_sorted(all.begin(), all.end(),
                               [](const auto& a, const auto& b) { return a.position < b.position; }));
  }
  EXPECT_TRUE(check_json(L"[", 0).empty());
}

TEST(json_check, notes_hide_no_error) {
  const auto all = check_json(L"[\"\xD800\", \"\xD800\", x, y, \"\xD800\"]", 1);
  ASSERT_EQ(all.size(), 2U);
  EXPECT_EQ(all[0].rule, rule::lone_surrogate);
  EXPECT_EQ(all[1].rule, rule::literal);
  EXPECT_EQ(all[1].position, 12U);
  EXPECT_TRUE(check_json(L"\"\xD800\" x", 0).empty());
  EXPECT_EQ(check_json(L"[x, \"\xD800\"]", 1).size(), 1U);
}

// --- generated documents

/// The grammar as replacements: strings and other scalars by signs, then the innermost containers, until one
/// value is left.
bool is_grammatical(const std::wstring& text) {
  static const std::wregex string(LR"("(?:[^"\\\x00-\x1f]|\\(?:["\\/bfnrt]|u[0-9a-fA-F]{4}))*")"),
      scalar(L"-?(?:0|[1-9][0-9]*)(?:\\.[0-9]+)?(?:[eE][+-]?[0-9]+)?|true|false|null"), blank(L"[ \t\r\n]+"),
      container(L"\\[(?:[#§](?:,[#§])*)?\\]|\\{(?:§:[#§](?:,§:[#§])*)?\\}");
  std::wstring left = std::regex_replace(text, string, L"§");
  left = std::regex_replace(std::regex_replace(left, scalar, L"#"), blank, L"");
  for (std::size_t before = 0; before != left.size(); left = std::regex_replace(left, container, L"#"))
    before = left.size();
  return left == L"#" || left == L"§";
}

/// One change at a part, the offset in it at which the first finding is, and what that finding is.
struct change {
  const wchar_t* kinds;  // of the parts that it may be made at
  const wchar_t* put;    // instead of the first `drop` units from `from` on
  std::size_t from, drop, at;
  rule expected;
};

constexpr change changes[] = {
    {L",", L" ", 0, 1, 1, rule::missing_comma},
    {L",", L",,", 0, 1, 1, rule::missing_value},
    {L",", L"\xA0,", 0, 1, 0, rule::blank},
    {L":", L" ", 0, 1, 1, rule::missing_colon},
    {L":", L",", 0, 1, 0, rule::missing_colon},
    {L":", L"::", 0, 1, 1, rule::unexpected},
    {L":", L":/**/", 0, 1, 1, rule::comment},
    {L"}", L"]", 0, 1, 0, rule::wrong_bracket},
    {L"]", L"}", 0, 1, 0, rule::wrong_bracket},
    {L"n", L"+", 0, 0, 0, rule::number},
    {L"n", L"-0", 0, 0, 0, rule::number},
    {L"l", L"N", 0, 1, 0, rule::literal},
    {L"s", L"\\q", 1, 0, 1, rule::escape},
    {L"s", L"a\x1F", 1, 0, 2, rule::control_character},
    {L"s", L"\\uD83D", 1, 0, 1, rule::lone_surrogate},
    {L"s", L"\\u12g", 1, 0, 1, rule::escape},
};

class json_check_generated : public generated_inputs {
 protected:
  /// Makes the change at the part; a missing sign is reported at what follows.
  void try_change(std::vector<json_part> parts, std::size_t n, const change& c) {
    ++inputs;
    std::size_t offset = c.at;
    for (std::size_t p = 0; p < n; ++p) offset += parts[p].text.size();
    parts[n].text.replace(c.from, c.drop, c.put);
    if (parts[n].text == L" ")
      for (std::size_t p = n + 1; parts[p].kind == L' '; ++p) offset += parts[p].text.size();
    const std::wstring text = text_of(parts);
    const auto all = check_json(text);
    ASSERT_FALSE(all.empty()) << testing::PrintToString(text);
    EXPECT_EQ(static_cast<int>(all[0].rule), static_cast<int>(c.expected)) << testing::PrintToString(text);
    EXPECT_EQ(all[0].position, offset + 1) << testing::PrintToString(text);
    const auto place = ruvo::serializer::position_of(text, offset + 1);
    EXPECT_EQ(all[0].line, place.line);
    EXPECT_EQ(all[0].column, place.column);
  }

  /// The check and the grammar agree.
  void agree(const std::wstring& text) {
    ++inputs;
    const auto all = check_json(text);
    const bool clean = std::all_of(all.begin(), all.end(), [](const auto& f) { return is_note(f.rule); });
    EXPECT_EQ(clean, is_grammatical(text)) << testing::PrintToString(text);
  }
};

TEST_F(json_check_generated, documents_are_clean_and_single_changes_are_found) {
  json_source g(20261122);
  for (unsigned round = 0; round < 600 * rounds() && !HasFailure(); ++round) {
    const std::vector<json_part> parts = g.parts();
    ASSERT_TRUE(check_json(text_of(parts)).empty()) << testing::PrintToString(text_of(parts));
    for (std::size_t n = 0; n < parts.size(); ++n) {
      for (const change& c : changes)
        if (parts[n].kind == c.kinds[0]) try_change(parts, n, c);
    }
  }
}

TEST_F(json_check_generated, the_grammar_accepts_exactly_what_has_no_departure) {
  json_source g(20261123);
  for (unsigned round = 0; round < 300 * rounds() && !HasFailure(); ++round) {
    const std::wstring text = text_of(g.parts());
    for (int m = 0; m < 10; ++m) {
      std::wstring other = text;
      for (unsigned n = g.below(3) + 1; n > 0 && !other.empty(); --n) {
        const std::size_t at = g.below(other.size());
        const std::size_t drop = g.below(3);
        other.erase(at, drop);
        if (g.below(2))
          other.insert(at, 1, g.unit(L"{}[]\",:\\-+.0123eEtrufalsn /*'\t\n\x01\xD83D\xDE00\xA0\xFEFF"));
      }
      agree(other);
    }
  }
}

}  // namespace
