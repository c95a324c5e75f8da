// SPDX-License-Identifier: BSL-1.0

// SQL, HTML, JSON in texts and bundles, and stored memos.

#include <ruvo/ruvo.hpp>

#include <numeric>
#include <regex>

#include <gtest/gtest.h>

#include "support/dice.hpp"

namespace texto = ruvo::texto;

namespace {

dice chance(4);

std::wstring without(const std::wstring& text, const wchar_t* pattern) {
  return std::regex_replace(text, std::wregex(pattern), L"");
}

std::wstring in_place(std::wstring& (*change)(std::wstring&), std::wstring text) {
  EXPECT_EQ(&change(text), &text);
  return text;
}

std::wstring solid(std::wstring text) {
  std::erase_if(text, [](wchar_t c) { return c == L' ' || c == L'\n'; });
  return text;
}

}  // namespace

TEST(sql, doubles_and_halves_quotes) {
  for (int round = 0; round < 1000; ++round) {
    const std::wstring text = chance.joined({L"'", L"a", L"\""}, 12), escaped = texto::escaped_to_sql_(text);
    ASSERT_EQ(escaped, std::regex_replace(text, std::wregex(L"'"), L"''"));
    ASSERT_EQ(texto::escaped_from_sql_(escaped), text);
    ASSERT_EQ(texto::escaped_from_sql_(text), std::regex_replace(text, std::wregex(L"''"), L"'"));
    ASSERT_EQ(in_place(texto::escaped_to_sql, text), escaped);
    ASSERT_EQ(in_place(texto::escaped_from_sql, escaped), text);
  }
}

TEST(html, entities) {
  const std::wstring plain = L"áéíóúÁÉÍÓÚñÑüÜçÇ";
  const std::wstring escaped =
      L"&aacute;&eacute;&iacute;&oacute;&uacute;&Aacute;&Eacute;&Iacute;&Oacute;&Uacute;"
      L"&ntilde;&Ntilde;&uuml;&Uuml;&ccedil;&Ccedil;";
  EXPECT_EQ(in_place(texto::escaped_to_html, plain), escaped);
  EXPECT_EQ(in_place(texto::escaped_from_html, escaped), plain);
  std::wstring others;
  for (unsigned unit = 0; unit < 0x10000; ++unit) {
    const auto c = static_cast<wchar_t>(unit);
    if (!texto::contains(plain, {c})) others += c;
  }
  EXPECT_TRUE(in_place(texto::escaped_to_html, others) == others);
  EXPECT_EQ(in_place(texto::escaped_from_html, L"&&eacute;&EACUTE;&eacute&amp;"), L"&é&EACUTE;&eacute&amp;");
}

TEST(html, tags_agree_with_the_pattern) {
  const std::wregex tag(L"<[^>]*>");
  std::vector<std::wstring> tags = pieces(L"< > / a <br/> </br> &eacute; &eacute");
  tags.push_back(L"\n");
  for (int round = 0; round < 10000; ++round) {
    const std::wstring text = chance.joined(tags, 9);
    ASSERT_EQ(texto::is_html(text), std::regex_search(text, tag)) << text;
    std::wstring expected = std::regex_replace(text, std::wregex(L"&eacute;"), L"é");
    expected = std::regex_replace(expected, std::wregex(L"<br/>"), L"\r\n");
    expected = std::regex_replace(expected, std::wregex(L"</br>"), L"\r\n");
    expected = std::regex_replace(expected, tag, L"");
    ASSERT_EQ(texto::to_plain_(text), expected) << text;
    ASSERT_EQ(in_place(texto::to_plain, text), expected) << text;
  }
  const std::wstring open(5000000, L'<');
  EXPECT_FALSE(texto::is_html(open));
  EXPECT_TRUE(texto::to_plain_(open) == open);
  EXPECT_EQ(texto::to_plain_(open + L">" + L"<<"), L"<<");
}

TEST(html, document_tags_agree_with_the_patterns) {
  const std::vector<std::wstring> parts = pieces(L"< </ / > html HtMl body Body <body> a");
  for (int round = 0; round < 10000; ++round) {
    const std::wstring text = chance.joined(parts, 10);
    const std::wstring html = without(text, L"</?(H|h)(T|t)(M|m)(L|l)/?>");
    const std::wstring expected = without(html, L"</?(B|b)(O|o)(D|d)(Y|y)/?>");
    unsigned long long body = 0;
    ASSERT_EQ(texto::remove_html_and_body_tags_(text, &body), expected) << text;
    ASSERT_EQ(body, text.find(L"<body>")) << text;
    std::wstring changed = text;
    ASSERT_EQ(texto::remove_html_and_body_tags(changed), body);
    ASSERT_EQ(changed, expected) << text;
  }
  EXPECT_EQ(texto::remove_html_and_body_tags_(L"<html><body class=\"x\">a</body></html>"),
            L"<body class=\"x\">a");
}

TEST(json, escapes) {
  EXPECT_EQ(in_place(texto::escaped_to_json, L"\ta\r\n\"\\\b"), L"\\ta\\r\\n\"\\\b");

  ruvo::bundle values;
  values[L"text"] = L"a\tb";
  values[L"text"][L"quality"] = L"a\tb";
  values[L"long"] = std::wstring(100, L'\n');
  values[L"number"] = 7;
  values[L"memo"] = ruvo::memo(L"\r\n");
  std::wstring& held = values.hack_string_on(L"held") = L"\t";
  values.hack_bundle_on(L"inner")[L"text"] = L"\t";
  values.hack_list_on(L"list").push_back(L"\t");
  values.hack_list_on(L"list").on_back_list().push_back(L"\n");
  texto::escaped_to_json(values, false);
  EXPECT_EQ(values.get_string(L"text"), L"a\\tb");
  EXPECT_EQ(values[L"text"][L"quality"], L"a\tb");
  EXPECT_EQ(values.get_string(L"long").size(), 200u);
  EXPECT_EQ(values.get_long(L"number"), 7);
  EXPECT_EQ(values.get_memo(L"memo", {}), ruvo::memo(L"\\r\\n"));
  EXPECT_EQ(held, L"\\t");
  EXPECT_EQ(values.get_string(L"inner.text"), L"\t");
  texto::escaped_to_json(values, true);
  EXPECT_EQ(values.get_string(L"inner.text"), L"\\t");
  EXPECT_EQ(values.get_list(L"list").to_string(), L"[\"\\t\",[\"\\n\"]]");
}

TEST(json, escapes_in_deep_nesting) {
  ruvo::bundle values;
  ruvo::list* inner = &values.hack_list_on(L"list");
  for (int level = 0; level < 100000; ++level) inner = &inner->on_back_list();
  inner->push_back(L"\t");
  texto::escaped_to_json(values, true);
  EXPECT_EQ(inner->front(), L"\\t");
}

TEST(json, print) {
  const struct {
    const wchar_t *text, *printed;
  } rows[] = {
      {L"", L""},
      {L" \n", L""},
      {L"{\"a\":[1,{\"b\":null} , [ ] ],\"c\":{\n}}",
       L"{\n  \"a\": [\n    1,\n    {\n      \"b\": null\n    },\n    []\n  ],\n  \"c\": {}\n}"},
      {L"\"a{[\\\",: \\\\\"  , \"", L"\"a{[\\\",: \\\\\",\n\""},
      {L"{}\r\n{} 1", L"{}\n{}\n1"},
      {L"]}x", L"]\n}x"},
      {L"[a  b:,]", L"[\n  a b:,\n]"},
      {L"[\"open \\", L"[\n  \"open \\"},
  };
  for (const auto& row : rows) EXPECT_EQ(texto::print_json(row.text), row.printed);
}

TEST(json, print_goes_any_depth) {
  const std::wstring deep = std::wstring(100000, L'[') + std::wstring(100000, L']');
  const std::wstring printed = texto::print_json(deep);
  EXPECT_TRUE(solid(printed) == deep);
  EXPECT_LT(printed.size(), deep.size() * 42);
  EXPECT_NE(printed.find(L"[\n" + std::wstring(40, L' ') + L"[\n"), printed.npos);
}

TEST(memo, decodes) {
  ruvo::binary all(256ULL);
  std::iota(all.begin(), all.end(), static_cast<unsigned char>(0));
  ruvo::binary out("before");
  for (const bool url : {false, true}) {
    texto::decodifica_memo(out, all.getAsB64(url));
    EXPECT_EQ(out, all);
  }
  texto::decodifica_memo(out, L"not * Base64");
  EXPECT_TRUE(out.empty());
}

TEST(memo, decodes_documents) {
  const auto stored = [](const std::string& document) { return ruvo::binary(document).getAsB64(false); };
  const struct {
    std::wstring memo, read;
  } rows[] = {
      {stored("{\"a\":\"\xC3\xB1\"}"), L"{\"a\":\"ñ\"}"},
      {stored("\xEF\xBB\xBF {\"a\":1}"), L"{\"a\":1}"},
      {L" {\"a\":\"ñ\"}", L"{\"a\":\"ñ\"}"},
      {L"\xFEFF{\"a\":1}", L"{\"a\":1}"},
      {L"\xFEFF" + stored("{\"a\":1}"), L"{\"a\":1}"},
      {L"[1,2]", L"{\"__json_array__\":[1,2]}"},
      {stored("a text {\"a\":1}"), L"{}"},
      {L"{\"a\":1,\"b\":nope}", L"{}"},
      {L"{\"a\":99999999999999999999}", L"{}"},
      {stored(std::string("\0\xFF", 2)), L"{}"},
      {L"***", L"{}"},
      {L"", L"{}"},
  };
  for (const auto& row : rows) {
    ruvo::bundle out{{L"before", 1}};
    texto::decodifica_memo(out, row.memo);
    EXPECT_EQ(out.to_string(), row.read) << row.memo;
  }
}
