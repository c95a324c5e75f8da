// SPDX-License-Identifier: BSL-1.0

// Compiled patterns: what they match, what they refuse, and that time stays in bounds.

#include <ruvo/texto.hpp>

#include <chrono>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/dice.hpp"
#include "support/rounds.hpp"

namespace texto = ruvo::texto;
using texto::pattern;
using texto::pattern_match;
using texto::pattern_options;

namespace {

constexpr pattern_options plain{}, no_case{.ignore_case = true}, no_accents{.ignore_accents = true},
    neither{.ignore_case = true, .ignore_accents = true}, by_lines{.multi_line = true},
    all_units{.dot_all = true};

/// "0-3 1-2 -": the places of the groups.
std::wstring places(const pattern_match& match) {
  std::wstring out;
  for (std::size_t group = 0; group < match.size(); ++group) {
    if (group) out += L' ';
    if (match.has(group)) out += std::to_wstring(match.begin(group));
    out += L'-';
    if (match.has(group)) out += std::to_wstring(match.end(group));
  }
  return out;
}

std::wstring many_of(const std::wstring& part, std::size_t times) {
  std::wstring made;
  for (std::size_t i = 0; i < times; ++i) made += part;
  return made;
}

std::size_t position_of(const std::wstring& text) {
  try {
    static_cast<void>(pattern(text));
  } catch (const texto::pattern_error& error) {
    return error.position();
  }
  return pattern_match::npos;
}

TEST(pattern_class, searches) {
  const struct {
    const wchar_t* text;
    std::wstring pattern, expected;
    pattern_options how = plain;
  } rows[] = {
      {L"xaby", L"ab", L"1-3"},
      {L"xay", L"b", L""},
      {L"aab", L"a*?b", L"0-3"},
      {L"aaa", L"a??", L"0-0"},
      {L"aaa", L"a{2}", L"0-2"},
      {L"aaa", L"(a{1,2}?)(a*)", L"0-3 0-1 1-3"},
      {L"abab", L"(?:ab){2,}", L"0-4"},
      {L"ac", L"a(b)?c", L"0-2 -"},
      {L"abc", L"a|ab|abc", L"0-1"},
      {L"foobar", L"(?<uno>o+)(?P<dos>b)", L"1-4 1-3 3-4"},
      {L"ab", L"(?:(a)|b)*", L"0-2 0-1"},
      {L"a", L"(|a)*", L"0-0 0-0"},
      {L"aa", L"(|a)+", L"0-0 0-0"},
      {L"b", L"(a*)*", L"0-0 0-0"},
      {L"b", L"(a*)+", L"0-0 0-0"},
      {L"aaaa", L"(a|aa)*?$", L"0-4 3-4"},
      {L"x12-34", L"(\\d+)-(\\d+)", L"1-6 1-3 4-6"},
      {L"año nuevo", L"\\b\\w+\\b", L"0-3"},
      {L"a_ñ9", L"\\w+", L"0-4"},
      {L"a\u00A0b", L"\\s", L"1-2"},
      {L"ab", L"\\Bb", L"1-2"},
      {L"a.b", L"\\.", L"1-2"},
      {L"a-]b", L"[-\\]]+", L"1-3"},
      {L"añ", L"[^a-z]", L"1-2"},
      {L"a\nb", L"a.b", L""},
      {L"a\nb", L"a.b", L"0-3", all_units},
      {L"a\r\nb", L"^b$", L"3-4", by_lines},
      {L"a\r\nb", L"a$", L"0-1", by_lines},
      {L"a\r\n\r\nb", L"^$", L"3-3", by_lines},
      {L"a\nb", L"\\Ab|a\\z", L"", by_lines},
      {L"a\nb", L"b$", L"2-3"},
      {L"ÁRBOL Ñ", L"árbol ñ", L"0-7", no_case},
      {L"Arbol", L"árbol", L"", no_case},
      {L"ARBOL de España", L"Árból.*espana", L"0-15", neither},
      {L"café", L"[aeiou]$", L"3-4", no_accents},
      {L"xÉ", L"[^a-z]", L"1-2", no_accents},
      {L"xÉ", L"[^a-z]", L"", neither},
      {L"\xD83D\xDE00!", L"^.!$", L"0-3"},
      {L"x\xD83D\xDE00", L"[\\u{1F600}-\\u{1F64F}]", L"1-3"},
      {L"x\xD83D\xDE01", L"\\uD83D\\uDE01", L"1-3"},
      {L"\xD83D\xDE00", L"\\uDE00", L""},
      {L"\xDE00", L"[^a]", L"0-1"},
      {L"", L"", L"0-0"},
      {L"\t\x41\xF1", L"\\t\\x41\\u00F1", L"0-3"},
      {L"{}", L"\\{}", L"0-2"},
      {L"ab", L"(a){0}b", L"1-2 -"},
      {L"aaab", L"[ab]*b", L"0-4"},
      {L"key = value", L"^(\\w+)\\s*=\\s*(.*)$", L"0-11 0-3 6-11"},
  };
  for (const auto& r : rows) {
    const pattern made(r.pattern, r.how);
    EXPECT_EQ(places(made.search(r.text)), r.expected) << r.pattern.c_str();
    EXPECT_EQ(made.is_in(r.text), !r.expected.empty()) << r.pattern.c_str();
  }
}

TEST(pattern_class, matches_whole_texts_with_any_alternative) {
  EXPECT_TRUE(pattern(L"a|ab").matches(L"ab"));
  EXPECT_FALSE(pattern(L"a|ab").matches(L"abc"));
  EXPECT_FALSE(pattern(L"a").matches(L"ba"));
  const std::wstring text = L"2024-05";
  const pattern_match found = pattern(L"(?<y>\\d+)-(?<m>\\d+)").match(text);
  EXPECT_EQ(found[L"y"], L"2024");
  EXPECT_EQ(found[2], L"05");
  EXPECT_EQ(found[9], L"");
  EXPECT_THROW(static_cast<void>(found[L"z"]), std::out_of_range);
}

TEST(pattern_class, refuses_with_the_position) {
  const struct {
    const wchar_t* pattern;
    std::size_t position;
  } rows[] = {{L"a(b", 1},
              {L"ab)", 2},
              {L"[a", 0},
              {L"x[]", 2},
              {L"*", 0},
              {L"a**", 2},
              {L"^*", 1},
              {L"a{2", 1},
              {L"a{", 1},
              {L"a{3,2}", 1},
              {L"a{1001}", 1},
              {L"\\", 1},
              {L"(a)\\1", 4},
              {L"\\q", 1},
              {L"(?=a)", 1},
              {L"(?<!a)", 1},
              {L"(?>a)", 1},
              {L"(?<1>a)", 3},
              {L"[b-a]", 1},
              {L"[\\d-a]", 1},
              {L"[[:alpha:]]", 1},
              {L"a++", 2},
              {L"\\x4", 3},
              {L"\\u{110000}", 10},
              {L"(?<a>)(?<a>)", 9},
              {L"(?:a{1000}){1000}", 11},
              {L"a|*", 2},
              {L"\\p{L}", 1}};
  for (const auto& r : rows) EXPECT_EQ(position_of(r.pattern), r.position) << r.pattern;
  EXPECT_EQ(position_of(std::wstring(70'000, L'a')), 65536u);
  EXPECT_EQ(position_of(std::wstring(300, L'(')), 251u);
  EXPECT_EQ(position_of(many_of(L"(?:", 15'000)), 30'003u);
}

TEST(pattern_class, finds_all_and_replaces) {
  const struct {
    const wchar_t *text, *pattern, *with, *expected;
  } rows[] = {
      {L"abxd", L"x*", L"-", L"-a-b--d-"},
      {L"hola", L"(?:)", L".", L".h.o.l.a."},
      {L"a1b22", L"(\\d+)", L"<$1>", L"a<1>b<22>"},
      {L"Pérez, Ana", L"(?<a>\\w+), (\\w+)", L"$2 ${a}$$ $& $0", L"Ana Pérez$ Pérez, Ana Pérez, Ana"},
      {L"ab", L"(a)|b", L"[$1]", L"[a][]"},
      {L"ab", L"(a)", L"$12", L"a2b"},
      {L"aaa", L"a", L"b", L"bbb"},
      {L"aXa", L"y", L"b", L"aXa"},
      {L"\xD83D\xDE00", L"", L"-", L"-\xD83D\xDE00-"},
  };
  for (const auto& r : rows) EXPECT_EQ(pattern(r.pattern).replace(r.text, r.with), r.expected) << r.pattern;
  const auto doubled = [](const pattern_match& m) { return std::to_wstring(2 * std::stoi(m.str())); };
  EXPECT_EQ(pattern(L"\\d+").replace(L"1 y 20", doubled), L"2 y 40");
  for (const wchar_t* const with : {L"a$", L"a$x", L"a$2", L"a${b}", L"a${1"})
    EXPECT_THROW(static_cast<void>(pattern(L"(a)").replace(L"", with)), texto::pattern_error) << with;
  int seen = 0;
  pattern(L"a").for_each(L"aaaa", [&](const pattern_match& m) { return ++seen, m.after().size() > 1; });
  EXPECT_EQ(seen, 3);
}

TEST(pattern_class, splits) {
  using pieces = std::vector<std::wstring>;
  EXPECT_EQ(pattern(L"\\s*;\\s*").split(L"a ; b;;c;"), (pieces{L"a", L"b", L"", L"c", L""}));
  EXPECT_EQ(pattern(L";").split(L"a;b;c", 2), (pieces{L"a", L"b;c"}));
  EXPECT_EQ(pattern(L"").split(L"abc"), (pieces{L"a", L"b", L"c"}));
  EXPECT_EQ(pattern(L";").split(L""), pieces{L""});
  EXPECT_EQ(pattern(L";").split(L"a", 0), pieces{});
}

/// Of the last two searches the room for what was tried is not enough, and all ways are followed at once.
TEST(pattern_class, takes_a_time_that_grows_with_the_text) {
  const auto begin = std::chrono::steady_clock::now();
  const std::wstring many(300'000, L'a'), ways = L"(?:" + many_of(L"(?:a|aa)?", 20) + L"a)*";
  const struct {
    std::wstring pattern;
    std::size_t first, last;
  } rows[] = {
      {L"(?:a+)+b", 0, 0}, {L"(.*)(.*)(.*)b", 0, 0},          {L"(x+x+)+y|a{900}$", 299'100, 300'000},
      {ways + L"b", 0, 0}, {L"(" + ways + L")$", 0, 300'000},
  };
  for (const auto& r : rows) {
    const pattern_match found = pattern(r.pattern).search(many);
    ASSERT_EQ(static_cast<bool>(found), r.last > 0) << r.pattern.c_str();
    if (!found) continue;
    EXPECT_EQ(found.begin(), r.first) << r.pattern.c_str();
    EXPECT_EQ(found.end(), r.last) << r.pattern.c_str();
  }
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
  EXPECT_LT(taken.count(), 300);
}

/// Against the engine of match() and replace(), which the standard engine is held against.
class patterns_of_two_engines : public generated_inputs {
 protected:
  /// A pattern; with `filled`, one that takes at least a character, so that it can be repeated.
  static std::wstring made(dice& chance, int depth, bool filled) {
    static const std::vector<std::wstring> loops = {L"*", L"?", L"*?", L"??", L"{0,2}"};
    static const std::vector<std::wstring> full_loops = {L"+", L"+?", L"{2}", L"{1,3}?", L"{2,}"};
    static const std::vector<std::wstring> units = {L"a",    L"b",   L"ab",  L".",  L"[ab]",
                                                    L"[^a]", L"\\w", L"\\s", L"\\W"};
    static const std::vector<std::wstring> limits = {L"\\b", L"\\B", L"^", L"$"};
    if (depth == 0) return !filled && chance.one_in(5) ? chance.any(limits) : chance.any(units);
    switch (chance.below(4)) {
      case 0:
        return L"(?:" + made(chance, depth - 1, true) + L")" + chance.any(filled ? full_loops : loops);
      case 1:
        return L"(" + made(chance, depth - 1, filled) + L"|" + made(chance, depth - 1, filled) + L")";
      default:
        return made(chance, depth - 1, filled) + made(chance, depth - 1, false);
    }
  }
};

TEST_F(patterns_of_two_engines, agree) {
  dice chance(7);
  for (unsigned i = 0; i < 3000 * rounds(); ++i) {
    const std::wstring text = made(chance, 3, false);
    const pattern own(text);
    for (int each = 0; each < 8; ++each, ++inputs) {
      std::wstring subject(chance.below(10), L' ');
      for (wchar_t& c : subject) c = chance.unit(L"aaabb- \n");
      ASSERT_EQ(own.matches(subject), texto::match(subject, text))
          << text.c_str() << " on " << subject.c_str();
      ASSERT_EQ(own.replace(subject, L"<$&>"), texto::replace_(subject, text, L"<$&>"))
          << text.c_str() << " on " << subject.c_str();
    }
  }
}

}  // namespace
