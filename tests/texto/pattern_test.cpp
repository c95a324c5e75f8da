#include <ruvo/texto.hpp>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <random>
#include <regex>
#include <string>

#include <gtest/gtest.h>

namespace texto = ruvo::texto;
namespace codes = std::regex_constants;

namespace {

/// Random patterns over a, b, c, of the kinds that the standard engine gets right: no loop around what can be
/// empty (unless `empty_turns`), no reference to a group that may have taken no part, no assertion on what is
/// left of it inside a look-ahead.
class pattern_generator {
 public:
  explicit pattern_generator(std::uint32_t seed, bool empty_turns = false)
      : random_(seed), empty_turns_(empty_turns) {}

  std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(random_() % limit); }
  const wchar_t* one_of(std::initializer_list<const wchar_t*> all) {
    return all.begin()[below(static_cast<std::uint32_t>(all.size()))];
  }

  std::wstring text(std::uint32_t longest) {
    std::wstring made(below(longest + 1), L' ');
    for (wchar_t& c : made) c = L"aaabbc- "[below(8)];
    return made;
  }

  std::wstring pattern(int depth) {
    groups_ = 0;
    sure_.clear();
    in_look_ = false;
    optional_ = 0;
    bool can_be_empty;
    return alternatives(depth, can_be_empty);
  }

  std::wstring format() {
    std::wstring made;
    for (std::uint32_t i = below(4); i > 0; --i)
      made += one_of({L"$&", L"$1", L"[$2]", L"$03", L"$$", L"$`", L"$'", L"x", L"$", L"$x", L"$12", L"-"});
    return made;
  }

 private:
  std::wstring alternatives(int depth, bool& can_be_empty) {
    const bool several = below(3) == 0;
    optional_ += several;
    std::wstring made = sequence(depth, can_be_empty);
    for (std::uint32_t i = several ? 1 + below(2) : 0; i > 0; --i) {
      bool empty;
      made += L'|' + sequence(depth, empty);
      can_be_empty |= empty;
    }
    optional_ -= several;
    return made;
  }

  std::wstring sequence(int depth, bool& can_be_empty) {
    std::wstring made;
    can_be_empty = true;
    for (std::uint32_t i = below(8) == 0 ? 0 : 1 + below(3); i > 0; --i) {
      bool empty;
      made += term(depth, empty);
      can_be_empty &= empty;
    }
    return made;
  }

  std::wstring term(int depth, bool& can_be_empty) {
    can_be_empty = true;
    if (!in_look_ && below(12) == 0) return one_of({L"^", L"$", L"\\b", L"\\B"});
    if (depth > 0 && !in_look_ && below(14) == 0) return look(depth);
    if (!sure_.empty() && below(8) == 0)
      return L"\\" + std::to_wstring(sure_[below(static_cast<std::uint32_t>(sure_.size()))]) + L"(?:)";
    optional_ += 1;  // a quantifier may follow
    std::wstring made = atom(depth, can_be_empty);
    optional_ -= 1;
    if (below(2) == 0 || (can_be_empty && !empty_turns_)) {
      if (made.back() == L')' && made[1] != L'?' && optional_ == 0) sure_.push_back(closed_);
      return made;
    }
    const std::wstring quantifier = one_of(
        {L"*", L"+", L"?", L"*?", L"+?", L"??", L"{2}", L"{0,2}", L"{1,3}?", L"{2,}", L"{1,}?", L"{0}"});
    can_be_empty |= std::wstring(L"*?").find(quantifier[0]) != std::wstring::npos || quantifier[1] == L'0';
    return made + quantifier;
  }

  std::wstring look(int depth) {
    in_look_ = true;
    optional_ += 1;
    bool empty;
    const int groups = groups_;
    std::wstring body;
    // Without groups: the standard engine keeps what a look-ahead that failed has set.
    do {
      groups_ = groups;
      body = alternatives(depth - 1, empty);
    } while (groups_ != groups || empty);
    optional_ -= 1;
    in_look_ = false;
    return (below(2) == 0 ? L"(?=" : L"(?!") + body + L")";
  }

  std::wstring atom(int depth, bool& can_be_empty) {
    can_be_empty = false;
    if (depth == 0 || below(3) > 0)
      return one_of(
          {L"a", L"a", L"b", L"c", L"ab", L".", L"[ab]", L"[^a]", L"\\w", L"\\s", L"[a-b-]", L"\\W"});
    if (below(3) == 0) return L"(?:" + alternatives(depth - 1, can_be_empty) + L")";
    const int number = ++groups_;
    std::wstring made = L"(" + alternatives(depth - 1, can_be_empty) + L")";
    closed_ = number;
    return made;
  }

  std::mt19937 random_;
  bool empty_turns_;
  int groups_ = 0, closed_ = 0, optional_ = 0;
  bool in_look_ = false;
  std::vector<int> sure_;  // groups that took part whenever what follows is reached
};

std::optional<codes::error_type> error_of(const std::wstring& pattern, const std::wstring& text = L"a") {
  try {
    static_cast<void>(texto::replace_(text, pattern, L""));
    return {};
  } catch (const std::regex_error& error) {
    return error.code();
  }
}

/// After an empty match the standard engine forgets what is left of it: \\b and ^ are then wrong.
bool forgets_the_left(const std::wstring& pattern, const std::wregex& standard, const std::wstring& text) {
  if (pattern.find(L'^') == pattern.npos && pattern.find(L"\\b") == pattern.npos &&
      pattern.find(L"\\B") == pattern.npos)
    return false;
  for (std::wsregex_iterator each(text.begin(), text.end(), standard), end; each != end; ++each)
    if (each->length() == 0) return true;
  return false;
}

std::wstring repeated(const std::wstring& part, std::size_t times) {
  std::wstring made;
  made.reserve(part.size() * times);
  for (std::size_t i = 0; i < times; ++i) made += part;
  return made;
}

}  // namespace

TEST(pattern, agrees_with_the_standard_engine_on_short_texts) {
  pattern_generator make(20240517);
  int compared = 0;
  for (int i = 0; i < 6000; ++i) {
    const std::wstring pattern = make.pattern(3);
    const std::wregex standard(pattern);
    for (int j = 0; j < 4; ++j) {
      const std::wstring text = make.text(12), with = make.format();
      const auto what =
          testing::PrintToString(pattern) + testing::PrintToString(text) + testing::PrintToString(with);
      ASSERT_EQ(texto::match(text, pattern), std::regex_match(text, standard)) << what;
      if (forgets_the_left(pattern, standard, text)) continue;
      ++compared;
      ASSERT_EQ(texto::replace_(text, pattern, with), std::regex_replace(text, standard, with)) << what;
    }
  }
  EXPECT_GT(compared, 15'000);
}

TEST(pattern, alternatives_that_begin_alike_are_tried_in_their_order) {
  pattern_generator make(41);
  for (int i = 0; i < 4000; ++i) {
    std::wstring pattern = L"(?:";
    for (std::uint32_t j = 2 + make.below(6); j > 0; --j) {
      for (std::uint32_t k = make.below(4); k > 0; --k)
        pattern += make.one_of({L"a", L"a", L"a", L"b", L"b", L"b?", L"[ab]", L"(b)", L"(?:a|ab)"});
      pattern += j > 1 ? L"|" : L")";
    }
    pattern += make.one_of({L"", L"b", L"c", L"(a*)"});
    const std::wregex standard(pattern);
    const std::wstring text = make.text(12);
    ASSERT_EQ(texto::replace_(text, pattern, L"<$&$1$2>"), std::regex_replace(text, standard, L"<$&$1$2>"))
        << testing::PrintToString(pattern) << testing::PrintToString(text);
  }
}

TEST(pattern, many_alternatives_on_long_texts) {
  std::mt19937 random(7);
  const auto letter = [&random] { return static_cast<wchar_t>(L'a' + random() % 26); };
  std::wstring words = L"\\d", pairs = L"ax", groups = L"(ax)", letters(1'000'000, L' ');
  for (int i = 0; i < 200; ++i) words += {L'|', letter(), letter(), letter(), letter(), letter()};
  for (int i = 0; i < 100; ++i) {
    const std::wstring end = {static_cast<wchar_t>(L'b' + i % 25), static_cast<wchar_t>(L'b' + i / 25)};
    pairs += L"|a" + end;
    groups += L"|(a" + end + L")";
  }
  std::generate(letters.begin(), letters.end(), letter);
  const std::wstring as(3'000'000, L'a'), fewer(400'000, L'a');
  EXPECT_EQ(error_of(words, letters), std::nullopt);
  EXPECT_TRUE(texto::replace_(as + L"aze", pairs, L"") == as);
  EXPECT_TRUE(texto::replace_(as + L"aze", groups, L"") == as);
  EXPECT_TRUE(texto::replace_(fewer + L"ax", groups, L"[$1]") == fewer + L"[ax]");
}

// Around what can be empty engines differ in the groups they report; whether the text matches is certain.
TEST(pattern, loops_with_empty_turns_end_and_match_the_same_texts) {
  pattern_generator make(77, true);
  for (int i = 0; i < 4000; ++i) {
    const std::wstring pattern = make.pattern(1);
    const std::wregex standard(pattern);
    for (int j = 0; j < 4; ++j) {
      const std::wstring text = make.text(8);
      ASSERT_EQ(texto::match(text, pattern), std::regex_match(text, standard))
          << testing::PrintToString(pattern) << testing::PrintToString(text);
    }
  }
}

TEST(pattern, escapes_and_sets) {
  const struct {
    std::wstring pattern, text;
    bool matches;
  } rows[] = {
      {L"\\t\\n\\v\\f\\r\\0", std::wstring(L"\t\n\v\f\r\0", 6), true},
      {L"\\x41\\u00f1\\cJ\\cj", L"Añ\n\n", true},
      {L"\\-\\_\\a\\/\\.", L"-_a/.", true},
      {L"[\\b]", L"\b", true},
      {L"[\\w-]+", L"a-b", true},
      {L"[-a]+", L"a-", true},
      {L"[a-b-c]+", L"ab-c", true},
      {L"[--/]+", L"-./", true},
      {L"[+--]+", L"+,-", true},
      {L"[^]", L"\n", true},
      {L"[]", L"a", false},
      {L"[\\D]", L"1", false},
      {L"[^\\D]", L"1", true},
      {L"[[:ALPHA:][:digit:]]+", L"aZ09", true},
      {L"[[:w:]]+", L"a_9", true},
      {L"[^[:space:]]", L" ", false},
      {L"[[=a=]]+", L"aA", true},
      {L"[[.hyphen.]x[.z.]]+", L"-xz", true},
      {L"[[.space.]-[.a.]]+", L" Aa", true},
      {L"]}", L"]}", true},
      {L".", L"\n", false},
      {L".", L"\r", false},
      {L".", L"\x2028", false},
      {L".", L"\x2029", false},
      {L"[à-ü]+\\W", L"éñ€", true},
      {L"\\w+\\s\\w+", L"Años\x00A0ŻŁÓ", true},
      {L"[[:upper:]][[:lower:]]+", L"Álvarez", true},
      {L"(a{0}b){2}", L"bb", true},
      {L"a**?{2}", L"aaa", true},
  };
  for (const auto& row : rows)
    EXPECT_EQ(texto::match(row.text, row.pattern), row.matches) << testing::PrintToString(row.pattern);
}

TEST(pattern, classes_of_ascii_are_the_standard_ones) {
  for (const wchar_t* name : {L"alnum", L"alpha", L"cntrl", L"digit", L"graph", L"lower", L"punct", L"space",
                              L"upper", L"xdigit"}) {
    const std::wstring pattern = std::wstring(L"[[:") + name + L":]]";
    const std::wregex standard(pattern);
    for (unsigned unit = 0; unit < 128; ++unit) {
      const std::wstring text(1, static_cast<wchar_t>(unit));
      ASSERT_EQ(texto::match(text, pattern), std::regex_match(text, standard)) << name << unit;
    }
  }
}

TEST(pattern, classes_beyond_ascii) {
  const std::wstring capitals = L"ÀÑÞĀŸŽΑΏЀЯЁ", small = L"ßàñÿāžſαώяё", blanks = L"\x00A0\x1680\x2007\x3000",
                     marks = L"¡¿«»·×–…", caseless = L"ªºµƀ", others = L"\x0080€中\xD83D\xDE00",
                     digits = L"٣３";
  const std::wstring letters = capitals + small + caseless;
  const struct {
    const wchar_t* pattern;
    std::wstring in;
  } rows[] = {{L"\\w", letters},
              {L"[[:alpha:]]", letters},
              {L"[[:alnum:]]", letters},
              {L"[[:upper:]]", capitals},
              {L"[[:lower:]]", small},
              {L"\\s", blanks},
              {L"[[:space:]]", blanks},
              {L"[[:punct:]]", marks},
              {L"[[:graph:]]", letters + marks + others.substr(1) + digits},
              {L"[[:print:]]", letters + marks + others.substr(1) + digits + blanks},
              {L"\\d", L""},
              {L"[[:cntrl:]]", L""}};
  for (const auto& row : rows) {
    for (const wchar_t c : letters + blanks + marks + others + digits) {
      const std::wstring text(1, c);
      EXPECT_EQ(texto::match(text, row.pattern), row.in.find(c) != row.in.npos)
          << testing::PrintToString(row.pattern) << testing::PrintToString(text);
    }
  }
  EXPECT_EQ(texto::replace_(L"año _nuevo, ÁGIL", L"\\b\\w", L"<$&>"), L"<a>ño <_>nuevo, <Á>GIL");
}

TEST(pattern, groups_and_references) {
  const struct {
    std::wstring text, pattern, with, expected;
  } rows[] = {
      {L"ab", L"(?:(a)|b)*", L"<$1>", L"<a><>"},      // a group keeps what it had in an earlier turn
      {L"ba", L"(a)?b", L"<$1>", L"<>a"},             //
      {L"bb", L"(a)?b\\1", L"x", L"xx"},              // no part: empty
      {L"abab", L"(a)(b)\\1\\2", L"$2$1", L"ba"},     //
      {L"aXbX", L"(?=(\\w))\\1X", L"$1", L"ab"},      // groups of a look-ahead remain
      {L"ab", L"(?!(b))a", L"[$1]", L"[]b"},          // but not those of a negative one
      {L"aab", L"(?:(?=(a+))a)+b", L"$1", L"a"},      //
      {L"aXab", L"(?=(a))aX|ab", L"[$1]", L"[a][]"},  //
      {L"aaa", L"^a", L"b", L"baa"},                  //
      {L"a\nb", L"^b|a$", L"x", L"a\nb"},             // not line by line
      {L"abc", L"", L"-", L"-a-b-c-"},                //
      {L"baac", L"a*", L"<$&>", L"<>b<aa><>c<>"},     //
      {L"1-2", L"(\\d)-(\\d)", L"$2$$$1$10$00$`$'|$", L"2$11-2|$"},
      {L"aaab", L"((?:a|)*?)*b", L"x", L"x"},
      {L"", L"x*", L"y", L"y"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(texto::replace_(row.text, row.pattern, row.with), row.expected)
        << testing::PrintToString(row.pattern);
}

TEST(pattern, bad_patterns_throw_the_fitting_error) {
  const struct {
    codes::error_type error;
    std::vector<std::wstring> patterns;
  } rows[] = {
      {codes::error_paren, {L"(", L")", L"(a", L"a)", L"(?", L"(?<a>b)", L"(?=a"}},
      {codes::error_badrepeat, {L"*a", L"a|+", L"(?:?)", L"^*", L"\\b+", L"(?=a)*", L"{1}"}},
      {codes::error_brace, {L"a{", L"a{1", L"a{1,", L"a{1,2"}},
      {codes::error_badbrace, {L"a{}", L"a{,2}", L"a{2,1}", L"a{x}", L"a{1x}"}},
      {codes::error_brack, {L"[", L"[a", L"[[", L"[a-"}},
      {codes::error_range, {L"[b-a]", L"[a-\\d]", L"[\\d-a]", L"[[:alpha:]-z]"}},
      {codes::error_ctype, {L"[[:nada:]]", L"[[:alpha"}},
      {codes::error_collate, {L"[[.nada.]]", L"[[=nada=]]"}},
      {codes::error_escape, {L"\\", L"[\\", L"\\x4", L"\\u004g", L"\\c", L"[\\1]"}},
      {codes::error_backref, {L"\\1", L"(a)\\2", L"(a\\1)", L"\\1(a)"}},
  };
  for (const auto& row : rows)
    for (const std::wstring& pattern : row.patterns) {
      EXPECT_THROW(std::wregex{pattern}, std::regex_error) << testing::PrintToString(pattern);
      EXPECT_EQ(error_of(pattern), row.error) << testing::PrintToString(pattern);
      EXPECT_THROW(texto::match(L"", pattern), std::regex_error);
    }
  EXPECT_EQ(error_of(L"a{99999999999}"),
            codes::error_badbrace);  // numbers of which the standard engine makes nonsense
  EXPECT_EQ(error_of(L"(a)\\99999999999999999999"), codes::error_backref);
  EXPECT_EQ(error_of(L"\\c1"), codes::error_escape);
}

TEST(pattern, random_characters_are_a_pattern_or_an_error_of_both) {
  std::mt19937 random(5);
  int good = 0;
  for (int i = 0; i < 20'000; ++i) {
    std::wstring pattern(1 + random() % 8, L' ');
    for (wchar_t& c : pattern) c = L"ab1(()))?:=!*+{},|[]-^$.\\\\dw"[random() % 28];
    std::optional<std::wregex> standard;
    try {
      standard.emplace(pattern);
    } catch (const std::regex_error&) {
    }
    ASSERT_EQ(!error_of(pattern), standard.has_value()) << testing::PrintToString(pattern);
    good += standard.has_value();
  }
  EXPECT_GT(good, 2000);
}

TEST(pattern, texts_of_ten_megabytes) {
  const std::size_t size = 10'000'000;
  const std::wstring as(size, L'a'), opening(size, L'<'), tags = repeated(L"<b>a", size / 4);
  EXPECT_FALSE(texto::match(as, L"(a|b)*c"));
  EXPECT_TRUE(texto::match(as + L"c", L"(a|b)*c"));
  EXPECT_FALSE(texto::match(as, L"(?:ab|a)*c"));
  EXPECT_TRUE(texto::match(as, L"[\\w\\W]+"));
  EXPECT_TRUE(texto::match(as, L"(?:(?=(a))\\1)*"));
  EXPECT_TRUE(texto::replace_(tags, L"<[^>]*>", L"") == std::wstring(size / 4, L'a'));
  EXPECT_TRUE(texto::replace_(tags, L"<(.*?)>", L"$1") == repeated(L"ba", size / 4));
  EXPECT_TRUE(texto::replace_(opening, L"<[^>]*>", L"") == opening);
  EXPECT_TRUE(texto::replace_(as, L".*?x", L"") == as);
  EXPECT_EQ(texto::replace_(as + L"x", L".*?x", L"y"), L"y");
  EXPECT_EQ(texto::replace_(as, L"(a)*", L"[$1]"), L"[a][]");
  EXPECT_EQ(texto::replace_(as + L"b", L"(a|ab)*?b$", L"[$1]"), L"[a]");
}

TEST(pattern, what_would_take_for_ever_ends_soon) {
  const std::wstring as(100'000, L'a');
  const std::wstring patterns[] = {
      L"(a+)+b",     L"(a*)*b",    L"(a|aa)*c", L"(?:a?){30}a{30}b", L"(.*)(.*)(.*)(.*)(.*)x",
      L"(?:a+a+)+b", L"((a*)*)*b", L"(a|a)*?b", L"(?:(?:a|b?)+)+c"};
  for (const std::wstring& pattern : patterns) {
    EXPECT_FALSE(texto::match(as, pattern)) << testing::PrintToString(pattern);
    EXPECT_TRUE(texto::replace_(as, pattern, L"") == as) << testing::PrintToString(pattern);
  }
  // References and look-aheads keep what failed from being remembered: a bound ends them.
  EXPECT_EQ(error_of(L"(a+)+\\1b", as), codes::error_complexity);
  EXPECT_EQ(error_of(L"(?=(a+)+b)", as), codes::error_complexity);
  EXPECT_EQ(error_of(L"(?:(a)|(aa)|\\1.)*$x", std::wstring(300'000, L'a')), codes::error_complexity);
}

TEST(pattern, bombs) {
  const std::size_t deep = 100'000;
  for (const wchar_t* part : {L"(", L"(?:", L"(?="}) {  // answered or refused
    const auto error = error_of(repeated(part, deep) + L"a" + repeated(L")", deep));
    EXPECT_TRUE(error == codes::error_space || error == codes::error_stack || !error);
  }
  EXPECT_TRUE(texto::match(L"a", repeated(L"(", 20'000) + L"a" + repeated(L")", 20'000)));
  EXPECT_TRUE(texto::match(L"aa", repeated(L"(?:", 500) + L"a" + repeated(L")*", 500)));
  EXPECT_FALSE(texto::match(L"b", repeated(L"(?=", 20'000) + L"a" + repeated(L")", 20'000)));
  EXPECT_TRUE(texto::match(std::wstring(1'000'000, L'a'), L"a{1000000}"));
  EXPECT_TRUE(texto::match(std::wstring(1'000'000, L'a'), L"(a{1000}){1000}"));
  EXPECT_EQ(error_of(L"((ab){1000}){1000}"), codes::error_space);
  EXPECT_EQ(error_of(L"((((ab|){100}){100}){100}){100}"), codes::error_space);
  EXPECT_EQ(error_of(L"((){1000000}){1000000}"), codes::error_space);
  EXPECT_EQ(error_of(std::wstring(1'000'000, L'*')), codes::error_badrepeat);
  EXPECT_EQ(error_of(repeated(L"a|", 1'000'000)), codes::error_space);
  EXPECT_EQ(texto::replace_(L"xx", std::wstring(1'000'000, L'x'), L""), L"xx");
}
