// Generated documents, cut and mutated: reading at once and character by character must agree in everything.

#include <ruvo/bundle.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/list.hpp>
#include <ruvo/serializer.hpp>
#include <ruvo/texto.hpp>

#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "support/json_outcome.hpp"
#include "support/rounds.hpp"

using ruvo::bundle;
using ruvo::serializer::json;

using json_outcome::outcome;

namespace {

class generator {
 public:
  explicit generator(unsigned seed) : random_(seed) {}

  std::wstring document() {
    std::wstring out;
    container(out, 0, below(8) == 0);
    return out;
  }

  std::wstring mutated(std::wstring text) {
    static const std::wstring alphabet = L"{}[]\",:\\-.0123eEtrufalsnN \t\nxñ\xD83D";
    for (unsigned n = below(4) + 1; n > 0 && !text.empty(); --n) {
      const std::size_t at = below(static_cast<unsigned>(text.size()));
      switch (below(5)) {
        case 0:
          text[at] = alphabet[below(static_cast<unsigned>(alphabet.size()))];
          break;
        case 1:
          text.erase(at, below(3) + 1);
          break;
        case 2:
          text.insert(at, 1, alphabet[below(static_cast<unsigned>(alphabet.size()))]);
          break;
        case 3:
          text.insert(at, text.substr(below(static_cast<unsigned>(text.size())), below(20)));
          break;
        default:
          text.resize(at);
      }
    }
    return text;
  }

 private:
  unsigned below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }

  void blank(std::wstring& out) {
    if (below(6) == 0) out += L" \n\t\r"[below(4)];
  }
  void string(std::wstring& out, unsigned longest) {
    static const wchar_t* const pieces[] = {L"a",   L"Key", L"ñ",       L"\\\"",         L"\\\\",
                                            L"\\n", L"\\t", L"\\u00e1", L"\xD83D\xDE00", L" "};
    out += L'"';
    for (unsigned n = below(longest); n > 0; --n) out += pieces[below(10)];
    out += L'"';
  }
  void value(std::wstring& out, int depth) {
    switch (below(depth < 5 ? 9U : 7U)) {
      case 0:
        out += L"null";
        break;
      case 1:
        out += below(2) ? L"true" : L"False";
        break;
      case 2:
      case 3:
        out += std::to_wstring(static_cast<long long>(random_()) >> below(63));
        break;
      case 4:
        out += std::to_wstring(below(100000)) + L"." + std::to_wstring(random_() >> below(63));
        break;
      case 5:
      case 6:
        string(out, 12);
        break;
      default:
        container(out, depth + 1, below(2) == 0);
    }
  }
  void container(std::wstring& out, int depth, bool is_array) {
    out += is_array ? L'[' : L'{';
    for (unsigned n = below(7); n > 0; --n) {
      blank(out);
      if (!is_array) {
        string(out, 4);
        blank(out);
        out += L':';
        blank(out);
      }
      value(out, depth);
      blank(out);
      if (n > 1) out += L',';
    }
    out += is_array ? L']' : L'}';
  }

  std::mt19937_64 random_;
};

class json_hostile : public generated_inputs {
 protected:
  /// Reads the text in both ways.
  void both_ways_agree(const std::wstring& text) {
    ++inputs;
    const outcome fast = json_outcome::read_at_once(json_, text),
                  slow = json_outcome::read_by_character(text);
    ASSERT_EQ(fast.store, slow.store) << testing::PrintToString(text);
    ASSERT_EQ(fast.report, slow.report) << testing::PrintToString(text);
  }

 private:
  json json_;
};

TEST_F(json_hostile, both_ways_of_reading_agree) {
  for (unsigned round = 0; round < rounds(); ++round) {
    generator g(20261121 + round);
    for (int i = 0; i < 4000 && !HasFatalFailure(); ++i) {
      const std::wstring text = g.document();
      both_ways_agree(text);
      for (int m = 0; m < 8; ++m) both_ways_agree(g.mutated(text));
    }
  }
}

TEST_F(json_hostile, soups_of_tokens) {
  static const wchar_t* const tokens[] = {L"{",
                                          L"}",
                                          L"[",
                                          L"]",
                                          L",",
                                          L":",
                                          L"\"",
                                          L"\"\"",
                                          L"\"a\"",
                                          L"1",
                                          L"-",
                                          L".5",
                                          L"1.5",
                                          L"true",
                                          L"fals",
                                          L"null",
                                          L"nil",
                                          L" ",
                                          L"\"k\":",
                                          L"\"\":",
                                          L"\\",
                                          L"{\"o\":",
                                          L"[{",
                                          L"},{",
                                          L"]}",
                                          L"\"\\\"\"",
                                          L"N",
                                          L"\"a:b\":",
                                          L"9999999999999999999",
                                          L"{\"\":",
                                          L"T",
                                          L"\"x\","};
  std::mt19937 random(5);
  for (unsigned i = 0; i < 60000 * rounds() && !HasFatalFailure(); ++i) {
    std::wstring text = random() % 4 == 0 ? L"[" : L"{\"o\":{";
    for (unsigned n = random() % 25; n > 0; --n) text += tokens[random() % (sizeof tokens / sizeof *tokens)];
    both_ways_agree(text);
  }
}

TEST_F(json_hostile, every_prefix) {
  generator g(3);
  for (int i = 0; i < 60 && !HasFatalFailure(); ++i) {
    const std::wstring text = g.document();
    for (std::size_t n = 0; n <= text.size(); ++n) both_ways_agree(text.substr(0, n));
  }
}

TEST_F(json_hostile, a_real_document_cut_and_mutated) {
  std::ifstream in(KESTA_DATA_DIR "/pedido.json", std::ios::binary);
  const std::wstring text = ruvo::texto::to_utf_16(std::string{std::istreambuf_iterator<char>(in), {}});
  ASSERT_GT(text.size(), 1000U);
  generator g(6);
  for (std::size_t n = 0; n < text.size() && !HasFatalFailure(); ++n) {
    both_ways_agree(text.substr(0, n));
    both_ways_agree(g.mutated(g.mutated(text)));
  }
}

TEST_F(json_hostile, what_was_read_is_written_and_read_again) {
  generator g(4);
  json ordered, positional(false, false, true);
  for (unsigned i = 0; i < 4000 * rounds(); ++i) {
    ++inputs;
    const std::wstring text = i % 2 == 0 ? g.document() : g.mutated(g.document());
    bundle first;
    try {
      ordered.deserialize(first, text);
    } catch (const std::logic_error&) {
      continue;
    }
    std::wstring once, twice;
    ASSERT_FALSE(ordered.serialize(once, first));
    bundle second;
    ordered.deserialize(second, once);
    ASSERT_FALSE(ordered.serialize(twice, second));
    bundle third;
    ordered.deserialize(third, twice);
    std::wstring thrice;
    ASSERT_FALSE(positional.serialize(thrice, third));
    bundle fourth;
    ordered.deserialize(fourth, thrice);
    ASSERT_EQ(third.to_string(), fourth.to_string()) << i;
  }
}

TEST_F(json_hostile, large_things) {
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

}  // namespace
