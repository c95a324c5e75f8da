// Generated documents, cut and mutated: reading at once and character by character must agree in everything.

#include <ruvo/ruvo.hpp>

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "serializer/hostile.hpp"
#include "serializer/json_source.hpp"
#include "support/json_outcome.hpp"

using ruvo::bundle;
using ruvo::serializer::json;

namespace {

struct generator : json_source {
  using json_source::json_source;

  std::wstring document() { return text_of(parts(true)); }
  std::wstring mutated(const std::wstring& text) {
    return damaged(*this, text, L"{}[]\",:\\-.0123eEtrufalsnN \t\n!~xñ\xD83D", L'"');
  }
};

using json_hostile = hostile<json_ways, generator>;

TEST_F(json_hostile, both_ways_of_reading_agree) { documents_and_mutations(4000); }

TEST_F(json_hostile, every_prefix) { every_prefix(60); }

TEST_F(json_hostile, soups_of_tokens) {
  std::vector<std::wstring> tokens = pieces(
      LR"({ } [ ] , : " "" "a" 1 - .5 1.5 true fals False TRUE null nil "k": "": \ {"o": [{ },{ ]} "\"" N "a:b":)"
      LR"( 9999999999999999999 {"": T "x",)");
  tokens.push_back(L" ");
  soups(60000, {L"[", L"{\"o\":{", L"{\"o\":{"}, tokens);
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
      ordered.deserialize(first, text, nullptr);
    } catch (const std::logic_error&) {
      continue;
    }
    std::wstring once, twice;
    ASSERT_FALSE(ordered.serialize(once, first));
    bundle second;
    ordered.deserialize(second, once, nullptr);
    ASSERT_FALSE(ordered.serialize(twice, second));
    bundle third;
    ordered.deserialize(third, twice, nullptr);
    std::wstring thrice;
    ASSERT_FALSE(positional.serialize(thrice, third));
    bundle fourth;
    ordered.deserialize(fourth, thrice, nullptr);
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
