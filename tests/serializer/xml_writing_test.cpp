// SPDX-License-Identifier: BSL-1.0

// The writer of well-formed XML: what it writes by which option, what it refuses and where, and the page.

#include <ruvo/ruvo.hpp>

#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "serializer/reads.hpp"
#include "support/xml_outcome.hpp"

using ruvo::bundle;
using ruvo::list;
using ruvo::xvar;
using ruvo::serializer::write_well_formed_xml;
using ruvo::serializer::xml_rows;
using ruvo::serializer::xml_write_options;

namespace {

using change = void (*)(xml_write_options&);

/// Without a declaration, inside an element r, but for what `how` changes.
xml_write_options options_for(change how) {
  xml_write_options options;
  options.declaration = false;
  options.root = L"r";
  if (how) how(options);
  return options;
}

std::wstring as_xml(const xvar& value, change how = nullptr) {
  std::wstring text;
  ruvo::exception error;
  EXPECT_FALSE(write_well_formed_xml(text, value, &error, options_for(how)))
      << testing::PrintToString(error.get_mensaje());
  return text;
}

xvar with_qualities(xvar value, std::vector<std::pair<const wchar_t*, ruvo::var>> qualities) {
  for (const auto& [name, quality] : qualities) value[name] = quality;
  return value;
}
xvar row(const wchar_t* name, const xvar& value) { return bundle{{name, value}}; }

const xvar three_rows = bundle{{L"Ls", list{bundle{{L"a", 1}, {L"b", 2}}, 3, list{4, list()}}}};
const xvar mixed =
    bundle{{L"p", list{row(L"#text", L"1 "), row(L"b", list{row(L"c", 1)}), row(L"#text", L" ")}}};
const xvar blank = bundle{{L"p", list{row(L"#text", L"\n "), row(L"b", 1)}}};

TEST(xml_writing, values) {
  struct {
    const char* name;
    xvar value;
    const wchar_t* text;
  } const rows[] = {
      {"bool", true, L"true"},
      {"character", L'<', L"&lt;"},
      {"integers", std::numeric_limits<long long>::min(), L"-9223372036854775808"},
      {"unsigned", std::numeric_limits<unsigned long long>::max(), L"18446744073709551615"},
      {"double", 0.1, L"0.1"},
      {"float", 0.1F, L"0.1"},
      {"whole", -3.0, L"-3"},
      {"large", 1e22, L"10000000000000000000000"},
      {"small", 5e-10, L"0.0000000005"},
      {"infinite", -std::numeric_limits<double>::infinity(), L"-INF"},
      {"no number", std::numeric_limits<double>::quiet_NaN(), L"NaN"},
      {"date", ruvo::date(2024, 2, 29, ruvo::times::LOCAL), L"2024-02-29"},
      {"time", ruvo::time(9, 30, 5, ruvo::times::GMT), L"09:30:05Z"},
      {"local time", ruvo::time(9, 30, 5, ruvo::times::LOCAL), L"09:30:05"},
      {"instant", ruvo::datetime(20240229L, 93005L, ruvo::times::GMT), L"2024-02-29T09:30:05Z"},
      {"late", ruvo::datetime(253402300800LL, ruvo::times::GMT), L"10000-01-01T00:00:00Z"},
      {"early", ruvo::datetime(-62198755200LL, ruvo::times::GMT), L"-0001-01-01T00:00:00Z"},
      {"bytes", ruvo::binary("\x01\x02\xff"), L"AQL/"},
      {"memo", ruvo::memo(L"a&b"), L"a&amp;b"},
      {"blanks", L" \n a \t", L"&#32;\n a &#9;"},
      {"one blank", L"\n", L"&#10;"},
      {"line ends", L"a\r\nb\rc\td", L"a&#13;\nb&#13;c\td"},
      {"markup", L"12345678 <>&'\" ]]> 9", L"12345678 &lt;&gt;&amp;'\" ]]&gt; 9"},
      {"beyond ASCII", L"ñ\x85\x2028\xD7FF\xE000\xFFFD\xD83D\xDE00\xDBFF\xDFFF.",
       L"ñ\x85\x2028\xD7FF\xE000\xFFFD\xD83D\xDE00\xDBFF\xDFFF."},
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(r.name);
    EXPECT_EQ(as_xml(r.value), L"<r>" + std::wstring(r.text) + L"</r>");
  }
  for (const xvar& empty : {xvar(), xvar(L""), xvar(bundle()), xvar(list()), xvar(ruvo::binary()),
                            xvar(ruvo::memo()), xvar(ruvo::datetime(-1LL, ruvo::times::GMT))})
    EXPECT_EQ(as_xml(empty), L"<r/>");
}

TEST(xml_writing, options) {
  struct {
    const char* name;
    xvar value;
    change how;
    const wchar_t* text;
  } const rows[] = {
      {"spelling", bundle{{L"Bb", 1}, {L"aA", 2}}, nullptr, L"<r><Bb>1</Bb><aA>2</aA></r>"},
      {"folded and sorted", bundle{{L"Bb", with_qualities(1, {{L"X", L"Y"}})}, {L"aA", 2}},
       [](xml_write_options& o) { o.folded = o.sorted = true; }, L"<r><aa>2</aa><bb x=\"Y\">1</bb></r>"},
      {"rows", three_rows, nullptr,
       L"<r><Ls><item><a>1</a><b>2</b></item><item>3</item><item><item>4</item><item/></item></Ls></r>"},
      {"repeated rows", three_rows, [](xml_write_options& o) { o.rows = xml_rows::repeated; },
       L"<r><Ls><a>1</a><b>2</b></Ls><Ls>3</Ls><Ls><item>4</item><item/></Ls></r>"},
      {"repeated rows with qualities", bundle{{L"l", with_qualities(list{1}, {{L"q", 2}})}},
       [](xml_write_options& o) { o.rows = xml_rows::repeated; }, L"<r><l q=\"2\"><item>1</item></l></r>"},
      {"rows that are members", bundle{{L"l", list{row(L"a", 1), row(L"a", 2)}}}, nullptr,
       L"<r><l><a>1</a><a>2</a></l></r>"},
      {"rows that are not", bundle{{L"l", list{row(L"a", 1), row(L"a", 2)}}},
       [](xml_write_options& o) { o.rows = xml_rows::items, o.item = L"i"; },
       L"<r><l><i><a>1</a></i><i><a>2</a></i></l></r>"},
      {"members with qualities", list{with_qualities(row(L"a", 1), {{L"q", 2}})}, nullptr,
       L"<r><item q=\"2\"><a>1</a></item></r>"},
      {"the root's qualities", with_qualities(1, {{L"q", L"\"'<>&\t\r\n "}}), nullptr,
       L"<r q=\"&quot;'&lt;&gt;&amp;&#9;&#13;&#10; \">1</r>"},
      {"other qualities",
       with_qualities(1,
                      {{L"__a__", 1}, {L"__a", true}, {L"b", ruvo::binary("\x1")}, {L"n", {}}, {L"____", 2}}),
       nullptr, L"<r ____=\"2\" __a=\"true\" b=\"AQ==\" n=\"\">1</r>"},
      {"a list as a quality", with_qualities(1, {{L"q", static_cast<ruvo::var>(xvar(list{1, L"a"}))}}),
       nullptr, L"<r q=\"[1,&quot;a&quot;]\">1</r>"},
      {"only member", bundle{{L"A", list{row(L"b", 1), row(L"b", 2)}}},
       [](xml_write_options& o) { o.root.clear(); }, L"<A><b>1</b><b>2</b></A>"},
      {"sections", list{L"a]]>b<\r", L"plain "}, [](xml_write_options& o) { o.cdata = true; },
       L"<r><item><![CDATA[a]]]]><![CDATA[>b<]]>&#13;<![CDATA[]]></item><item>plain&#32;</item></r>"},
      {"escaped names",
       bundle{{L"a b", with_qualities(1, {{L"1:", 2}})},
              {L"_x0041", 3},
              {L"_xg", 4},
              {L"\xD83D\xDE00\xDC00", 5}},
       [](xml_write_options& o) { o.names = ruvo::serializer::xml_names::escaped; },
       L"<r><a_x0020_b _x0031__x003A_=\"2\">1</a_x0020_b><_x005F_x0041>3</_x005F_x0041><_xg>4</_xg>"
       L"<\xD83D\xDE00_xDC00_>5</\xD83D\xDE00_xDC00_></r>"},
      {"replaced characters", with_qualities(L"\x1\xFFFE\xD800", {{L"q", L"\xDC00\xD800"}}),
       [](xml_write_options& o) { o.characters = ruvo::serializer::xml_characters::replaced; },
       L"<r q=\"\xFFFD\xFFFD\">\xFFFD\xFFFD\xFFFD</r>"},
      {"text beside elements", mixed, nullptr, L"<r><p>1 <b><c>1</c></b> </p></r>"},
      {"blanks beside elements", blank, nullptr, L"<r><p>&#10;&#32;<b>1</b></p></r>"},
      {"text beside no elements", list{row(L"#text", L" a ")}, nullptr, L"<r>&#32;a&#32;</r>"},
      {"indented", bundle{{L"a", bundle{{L"b", L" "}, {L"c", list()}}}, {L"p", mixed}},
       [](xml_write_options& o) { o.indent = 2; },
       L"<r>\n  <a>\n    <b>&#32;</b>\n    <c/>\n  </a>\n  <p>\n    <p>1 <b><c>1</c></b> </p>\n  "
       L"</p>\n</r>\n"},
      {"prefixes",
       with_qualities(bundle{{L"p:a", with_qualities(1, {{L"xml:lang", L"es"}})},
                             {L"b", with_qualities(2, {{L"__schema__", L"p"}})}},
                      {{L"xmlns:p", L"u"}, {L"xmlns", L""}, {L"p:x", 1}, {L"x", 2}}),
       nullptr,
       L"<r p:x=\"1\" x=\"2\" xmlns=\"\" xmlns:p=\"u\"><p:a xml:lang=\"es\">1</p:a><p:b>2</p:b></r>"},
      {"prefixes as they come", bundle{{L"p:a:b", 1}, {L":", 2}},
       [](xml_write_options& o) { o.namespaces = false; }, L"<r><p:a:b>1</p:a:b><:>2</:></r>"},
      {"UTC", ruvo::datetime(0LL, ruvo::times::LOCAL),
       [](xml_write_options& o) { o.dates = ruvo::serializer::xml_dates::utc; },
       L"<r>1970-01-01T00:00:00Z</r>"},
      {"declaration", 1, [](xml_write_options& o) { o.declaration = true; },
       L"<?xml version=\"1.0\"?><r>1</r>"},
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(r.name);
    EXPECT_EQ(as_xml(r.value, r.how), r.text);
  }
}

TEST(xml_writing, local_time_is_read_back_to_the_instant) {
  for (const long long seconds : {0LL, 1709199005LL, 1720000000LL, -1000000000LL}) {
    const std::wstring text = as_xml(ruvo::datetime(seconds, ruvo::times::LOCAL));
    ruvo::datetime read(0LL, ruvo::times::GMT);
    ruvo::exception error;
    std::wstring inside = text.substr(3, text.size() - 7);
    if (inside.back() != L'Z') inside.erase(inside.size() - 3, 1);  // the colon, which %z does not know
    ASSERT_TRUE(
        read.parse(inside, inside.back() == L'Z' ? L"%Y-%m-%dT%H:%M:%SZ" : L"%Y-%m-%dT%H:%M:%S%z", error))
        << testing::PrintToString(text);
    EXPECT_EQ(read.get_lapso(), seconds);
  }
}

TEST(xml_writing, refused) {
  struct {
    const char* name;
    xvar value;
    change how;
    unsigned long code;
    const wchar_t *path, *detail;
  } const rows[] = {
      {"name", bundle{{L"a", list{1, bundle{{L"b c", 1}, {L"d", 2}}}}}, nullptr, 7007, L"a[1].b c",
       L"\"b c\""},
      {"empty name", bundle{{L"", 1}},
       [](xml_write_options& o) { o.names = ruvo::serializer::xml_names::escaped; }, 7007, L"", L"\"\""},
      {"name of a quality", bundle{{L"a", with_qualities(1, {{L"b<", 1}})}}, nullptr, 7007, L"a@b<",
       L"\"b<\""},
      {"name of the root", 1, [](xml_write_options& o) { o.root = L"-"; }, 7007, L"-", L"\"-\""},
      {"name of rows", bundle{{L"a", list{1}}}, [](xml_write_options& o) { o.item = L"1"; }, 7007, L"a",
       L"\"1\""},
      {"two colons", bundle{{L"a:b:c", 1}}, nullptr, 7007, L"a:b:c", L"\"a:b:c\""},
      {"nothing before the colon", bundle{{L":a", 1}}, nullptr, 7007, L":a", L"\":a\""},
      {"beyond the names", bundle{{L"\xDB80\xDC00", 1}}, nullptr, 7007, L"\xDB80\xDC00", L"\"\xDB80\xDC00\""},
      {"prefix of a prefix", bundle{{L"p:a", with_qualities(1, {{L"__schema__", L"p"}, {L"xmlns:p", L"u"}})}},
       nullptr, 7007, L"p:a", L"\"p:p:a\""},
      {"text beside elements that is none", bundle{{L"#text", 1}}, nullptr, 7007, L"#text", L"\"#text\""},
      {"control", bundle{{L"A", list{row(L"b", 1), row(L"b", L"\x1")}}}, nullptr, 7008, L"A[1].b", L"U+0001"},
      {"lone surrogate", with_qualities(1, {{L"q", L"x\xDC00"}}), nullptr, 7008, L"r@q", L"U+DC00"},
      {"no character", bundle{{L"a", L"12345678\xFFFF"}}, [](xml_write_options& o) { o.cdata = true; }, 7008,
       L"a", L"U+FFFF"},
      {"prefix", bundle{{L"a", with_qualities(1, {{L"xmlns:p", L"u"}})}, {L"p:b", 1}}, nullptr, 7009, L"p:b",
       L"\"p:b\""},
      {"prefix of a quality", bundle{{L"a", with_qualities(1, {{L"p:b", 1}})}}, nullptr, 7009, L"a@p:b",
       L"\"p:b\""},
      {"xmlns as a prefix", bundle{{L"xmlns:a", 1}}, nullptr, 7009, L"xmlns:a", L"\"xmlns:a\""},
      {"a namespace that is no text", with_qualities(1, {{L"xmlns:p", 1}}), nullptr, 7009, L"r@xmlns:p",
       L"\"xmlns:p\""},
      {"no namespace", with_qualities(1, {{L"xmlns:p", L""}}), nullptr, 7009, L"r@xmlns:p", L"\"xmlns:p\""},
      {"another xml", with_qualities(1, {{L"xmlns:xml", L"u"}}), nullptr, 7009, L"r@xmlns:xml",
       L"\"xmlns:xml\""},
      {"xml by another name", with_qualities(1, {{L"xmlns", L"http://www.w3.org/XML/1998/namespace"}}),
       nullptr, 7009, L"r@xmlns", L"\"xmlns\""},
      {"the namespace of declarations", with_qualities(1, {{L"xmlns:p", L"http://www.w3.org/2000/xmlns/"}}),
       nullptr, 7009, L"r@xmlns:p", L"\"xmlns:p\""},
      {"one meaning twice",
       with_qualities(1, {{L"p:a", 1}, {L"q:a", 2}, {L"xmlns:p", L"u"}, {L"xmlns:q", L"u"}}), nullptr, 7009,
       L"r@q:a", L"\"q:a\""},
      {"two roots", bundle{{L"a", 1}, {L"b", 2}}, [](xml_write_options& o) { o.root.clear(); }, 7010, nullptr,
       L"miembros: 2"},
      {"rows as roots", three_rows,
       [](xml_write_options& o) {
         o.root.clear();
         o.rows = xml_rows::repeated;
       },
       7010, nullptr, L"miembros: 1"},
      {"no bundle", 1, [](xml_write_options& o) { o.root.clear(); }, 7010, nullptr, L""},
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(r.name);
    ruvo::exception error;
    std::wstring wide = L"before";
    std::string narrow = "before";
    std::u8string utf_8 = u8"before";
    ASSERT_TRUE(write_well_formed_xml(wide, r.value, &error, options_for(r.how)));
    EXPECT_EQ(error.get_rango() * 1000 + error.get_code(), r.code);
    if (r.path) {
      EXPECT_TRUE(error.get_mensaje().ends_with(L": " + std::wstring(r.path)))
          << testing::PrintToString(error.get_mensaje());
    }
    EXPECT_EQ(error.get_detail(), r.detail);
    EXPECT_TRUE(write_well_formed_xml(narrow, r.value, nullptr, options_for(r.how)));
    EXPECT_TRUE(write_well_formed_xml(utf_8, r.value, nullptr, options_for(r.how)));
    EXPECT_TRUE(wide == L"before" && narrow == "before" && utf_8 == u8"before");
  }
}

TEST(xml_writing, bytes) {
  const bundle value{{L"ñ", L"€\xD83D\xDE00"}};
  std::string bytes;
  std::u8string text;
  ASSERT_FALSE(write_well_formed_xml(text, value));
  EXPECT_TRUE(text == u8"<?xml version=\"1.0\" encoding=\"UTF-8\"?><ñ>€\U0001F600</ñ>");
  ASSERT_FALSE(write_well_formed_xml(bytes, value));
  EXPECT_TRUE(bytes == std::string(text.begin(), text.end()));
  for (const bool big : {false, true}) {
    xml_write_options options;
    options.bytes = big ? ruvo::serializer::xml_bytes::utf_16_be : ruvo::serializer::xml_bytes::utf_16_le;
    ASSERT_FALSE(write_well_formed_xml(bytes, value, nullptr, options));
    std::string expected;
    for (const wchar_t c :
         L"\xFEFF<?xml version=\"1.0\" encoding=\"UTF-16\"?><ñ>€\xD83D\xDE00</ñ>" + std::wstring()) {
      const char low = static_cast<char>(c & 0xFF), high = static_cast<char>(c >> 8);
      expected += {big ? high : low, big ? low : high};
    }
    EXPECT_TRUE(bytes == expected);
  }
}

TEST(xml_writing, a_target_inside_the_value) {
  bundle value;
  std::wstring& inside = value.hack_string_on(L"a");
  inside = L"long enough for a block of its own";
  ASSERT_FALSE(write_well_formed_xml(inside, value));
  EXPECT_EQ(inside, L"<?xml version=\"1.0\"?><a>long enough for a block of its own</a>");
}

TEST(xml_writing, names_come_back) {
  for (const std::wstring name :
       {L"", L"a", L" ", L"_x0041_", L"_x0041 ", L"_X0041_x0042_", L"x0020_", L"a:b:c", L"1_x", L"\xD83D"}) {
    for (const bool qualified : {false, true})
      EXPECT_EQ(ruvo::serializer::unescaped_xml_name(ruvo::serializer::escaped_xml_name(name, qualified)),
                name);
  }
  EXPECT_EQ(ruvo::serializer::unescaped_xml_name(L"_x00e1_x_x00"), L"áx_x00");
}

TEST(xml_page, written_for_others) {
  for (const page_row& r : page_rows(L"What is written for others")) {
    bundle value;
    ASSERT_FALSE(ruvo::serializer::json().deserialize(value, r.given));
    EXPECT_EQ(as_xml(value), r.result);
  }
}

}  // namespace
