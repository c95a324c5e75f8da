// SPDX-License-Identifier: BSL-1.0

// The lenient reader and the writers of XML, and the tables of docs/XML.md.

#include <ruvo/ruvo.hpp>

#include <memory>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "serializer/reads.hpp"
#include "support/xml_outcome.hpp"

using ruvo::bundle;
using ruvo::list;
using ruvo::xvar;
using ruvo::serializer::xml;

namespace {

const std::wstring declaration = L"<?xml version=\"1.0\" encoding=\"UTF-8\"?>";

reading_outcome read_dialect(const std::wstring& text) {
  reading_outcome o;
  o.failed = xml(true, false).deserialize(o.store, text, &o.error);
  return o;
}

/// Without the declaration.
std::wstring written_dialect(const bundle& b, bool ordered = true, bool tabulated = false) {
  std::wstring text;
  ruvo::exception error = ruvo::exc::NotImplemented();
  EXPECT_FALSE(xml(ordered, tabulated).serialize(text, b, &error));
  EXPECT_EQ(error.get_code(), 3U);
  EXPECT_TRUE(text.starts_with(declaration));
  return text.substr(declaration.size());
}

TEST(xml_reader, reads) {
  struct {
    const char* name;
    const wchar_t *text, *store;
  } const rows[] = {
      {"after a repetition all is listed", L"<r><b>1</b><a>2</a><B>3</B><c>4</c></r>",
       L"{\"r\":[{\"a\":\"2\"},{\"b\":\"1\"},{\"b\":\"3\"},{\"c\":\"4\"}]}"},
      {"repetition of containers", L"<r><a><x>1</x></a><a><x>2</x><x>3</x></a></r>",
       L"{\"r\":[{\"a\":{\"x\":\"1\"}},{\"a\":[{\"x\":\"2\"},{\"x\":\"3\"}]}]}"},
      {"comment beside text", L"<a>1<!-- x --></a>", L"{\"a\":\"1\"}"},
      {"more marks than two", L"<!-- x ---><a>1<![CDATA[ ]]]></a>", L"{\"a\":\"1\"}"},
      {"a single > in a comment", L"<!-- a -> b > <x>1</x> --><a>1</a>", L"{\"a\":\"1\"}"},
      {"blanks around text", L"<a> \t\r\n 1 2\n</a>", L"{\"a\":\"1 2\"}"},
      {"line breaks in tags", L"<\n a\n>1</a\n>", L"{\"a\":\"1\"}"},
      {"entities", L"<a>&lt;b&gt; &apos;&qout;&&amp;lt;</a>", L"{\"a\":\"<b> '\\\"&lt;\"}"},
      {"empty outermost element", L"<a/><b>1</b>", L"{\"a\":\"\", \"b\":\"1\"}"},
      {"line break before an attribute", L"<a\nx=\"1\">2</a>", L"{\"ax=\"1\"\":\"2\"}"},
      {"nameless", L"<r><>1</r><a>2</a>", L"{\"a\":\"2\", \"r\":\"1\"}"},
      {"nothing open", L"<>1</a></b><c>2</c>", L"{\"c\":\"2\"}"},
      {"end tag too many", L"<r><a>1</a></x></r><b>2</b>", L"{\"b\":\"2\", \"r\":{\"a\":\"1\"}}"},
      {"wrong order of ends", L"<r><a><b>1</b></r><c>2</c>", L"{\"r\":{\"a\":{\"b\":\"1\", \"c\":\"2\"}}}"},
      {"cut inside text", L"<a>1</a><b>2", L"{\"a\":\"1\", \"b\":\"\"}"},
      {"cut inside an end tag", L"<a>1</a", L"{\"a\":\"1\"}"},
      {"cut inside a start tag", L"<r><a>1</a><b", L"{\"r\":{\"a\":\"1\"}}"},
      {"cut inside an attribute", L"<a x=\"1", L"{\"a\":\"\"}"},
      {"nothing", L"", L"{}"},
      {"no tags", L"hello > you", L"{}"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const reading_outcome o = read_dialect(row.text);
    EXPECT_EQ(o.store.to_string(), row.store);
  }
}

TEST(xml_reader, attributes_become_qualities) {
  struct {
    const char* name;
    const wchar_t *text, *qualities;
  } const rows[] = {
      {"quotes in the middle", L"<a x=1\"2\">t</a>", L"x=12"},
      {"single quotes", L"<a x='1'>t</a><b y=\"2\">", L"x='1'>t</a><by=2"},
      {"backslashes", L"<a x=\"1\\\\2\\n\">t</a>", L"x=12n"},
      {"blanks in names", L"<a x y=\"1\">t</a>", L"xy=1"},
      {"no name", L"<a =\"1\">t</a>", L"=1"},
      {"empty element", L"<a x=\"1\"/>", L"x=1"},
      {"of an element with children", L"<a x=\"1\"><b>2</b></a>", L"x=1"},
      {"on top a fresh start", L"<a x=\"1\">t</a><a y=\"2\">t</a>", L"y=2"},
      {"namespaces", L"<a xmlns:n=\"u\">t</a>", L"xmlns:n=u"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const reading_outcome o = read_dialect(row.text);
    EXPECT_FALSE(o.failed);
    EXPECT_EQ(o.error.get_code(), 3U);
    EXPECT_EQ(qualities_of(o.store.at(L"a")), row.qualities);
  }
  const list items = read_dialect(L"<r><a x=\"1\">t</a><a x=\"2\"><b/></a></r>").store.get_list(L"r");
  for (unsigned long n = 0; n < 2; ++n) {
    bundle one;
    one = items.at(n);
    EXPECT_EQ(qualities_of(one.at(L"a")), L"x=" + std::to_wstring(n + 1));
  }
}

TEST(xml_reader, failures) {
  const std::wstring read_wrongly = L"Lectura incorrecta cerca del caracter:",
                     inside_a_tag =
                         L"Creación de un nodo con un elemento que tiene un valor asignado, para una clave "
                         L"vacía cerca del caracter:";
  const struct {
    const char* name;
    const wchar_t* text;
    unsigned code;
    std::wstring message, store;
  } rows[] = {
      {"end tag without a name", L"<a>1</>", 7002, read_wrongly + L"7 en el nudo:0", L"{\"a\":\"1\"}"},
      {"namespace in the opening tag only", L"<n:a>1</a>", 7002, read_wrongly + L"10 en el nudo:0",
       L"{\"n:a\":\"1\"}"},
      {"element inside a tag", L"<r><a x=\"1\"<b>2</a></r>", 7004, inside_a_tag + L"14 en el nudo:1",
       L"{\"r\":{\"a\":\"2\"}}"},
      {"empty element inside a tag", L"<r><a x=\"1\"<b/>2</a></r>", 7004, inside_a_tag + L"15 en el nudo:1",
       L"{\"r\":{\"a\":\"\"}}"},
      {"the last of two", L"<a>1</b><c>2</d>", 7002, read_wrongly + L"16 en el nudo:0",
       L"{\"a\":\"1\", \"c\":\"2\"}"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const reading_outcome o = read_dialect(row.text);
    EXPECT_TRUE(o.failed);
    EXPECT_EQ(o.error.get_rango() * 1000 + o.error.get_code(), row.code);
    EXPECT_EQ(o.error.get_mensaje(), row.message);
    EXPECT_EQ(o.store.to_string(), row.store);
  }
  EXPECT_TRUE(xml(true, false).deserialize(*std::make_unique<bundle>(), L"<a>1</b>"));
}

/// Makes some names empty.
struct refusing_reader : ruvo::serializer::xml_reader {
  std::wstring& raw_key(std::wstring& key) override {
    if (key == L"no") key.clear();
    return key;
  }
};

TEST(xml_reader, fed_by_hand) {
  refusing_reader reader;
  bundle b;
  ruvo::exception error;
  reader.reset();
  reader.set_store(b);
  for (const wchar_t c : std::wstring(L"<r><no>1</no><no/><a>2</a></r>")) reader.next_character(c, error);
  EXPECT_EQ(error.get_rango() * 1000 + error.get_code(), 7003U);
  EXPECT_EQ(error.get_mensaje(),
            L"Solicitud de un nuevo elemento, para una clave vacía cerca del caracter:18 en el nudo:0");
  EXPECT_EQ(reader.raw_value(L" &lt;1&&amp; "), L"<1&");
  EXPECT_EQ(reader.raw_value(5), L"5");

  ruvo::serializer::xml_reader storeless;
  ruvo::exception none;
  for (const wchar_t c : std::wstring(L"<a x=\"1\">t</a><b/>")) storeless.next_character(c, none);
  EXPECT_TRUE(none.WRONG());
}

TEST(xml_reader, adds_to_what_is_there) {
  bundle b = {{L"a", 1}, {L"b", 2}};
  b[L"a"][L"q"] = 3;
  xml x(true, false);
  ruvo::exception error;
  EXPECT_FALSE(x.deserialize(b, L"<a>x</a><c>y</c>", &error));
  EXPECT_TRUE(error.OK());
  EXPECT_EQ(b.to_string(), L"{\"a\":\"x\", \"b\":2, \"c\":\"y\"}");
  EXPECT_FALSE(b[L"a"].is_qualified());
  EXPECT_TRUE(x.deserialize(b, L"<r><a x=\"", &error) == false && x.deserialize(b, L"<d>z</d>") == false);
  EXPECT_EQ(b.get_string(L"d"), L"z");
}

TEST(xml_reader, large_things) {
  constexpr int many = 100000;
  std::wstring attributes = L"<a";
  for (int i = 0; i < many; ++i)
    attributes += L" k" + std::to_wstring(i * 7919LL % 100003) + L"=\"" + std::to_wstring(i) + L'"';
  bundle b;
  xml x(true, false);
  ASSERT_FALSE(x.deserialize(b, attributes + L">t</a>"));
  EXPECT_EQ(b[L"a"].size(), 100000U);
  EXPECT_EQ(static_cast<const xvar&>(b[L"a"]).get_quality(L"K7919").to_string(), L"1");

  std::wstring children = L"<r>";
  for (int i = 0; i < many; ++i)
    children += L"<k" + std::to_wstring(i) + L">x</k" + std::to_wstring(i) + L'>';
  for (int i = 0; i < many; ++i) children += L"<k0/>";
  ASSERT_FALSE(x.deserialize(b, children + L"</r>"));
  EXPECT_EQ(b.get_list(L"r").size(), 200000U);

  // What never ends must not be looked through again and again.
  for (const wchar_t* const piece :
       {L"<", L"<a", L"<a ", L"<a x", L"<a x=", L"<a x=\"", L"<a x=\"1\"", L"<!",  L"<!-",       L"<![",
        L"]", L"<?", L"</",  L"</a",  L"<a>&",  L"&",       L"<a\n",       L"<a!", L"<a x=\"\\", L"="}) {
    std::wstring text = L"<r>";
    for (int i = 0; i < many; ++i) text += piece;
    bundle ignored;
    x.deserialize(ignored, text, nullptr);
    x.deserialize(ignored, L"<r y=\"2\" " + text, nullptr);
  }
}

TEST(xml_writer, writes) {
  xvar qualified = L"t";
  qualified[L"y"] = 2;
  qualified[L"X"] = L" <\"1\"> ";
  qualified[L"__hidden"] = 3;
  xvar prefixed = 1;
  prefixed[L"__schema__"] = L"ns";
  prefixed[L"y"];
  prefixed[L"z"] = L"";
  xvar infixed = 1;
  infixed[L"__schema__"] = L"x><admin>1</admin><y";
  xvar bundle_item = bundle{{L"k", 1}};
  bundle_item[L"lost"] = 1;
  struct {
    const char* name;
    bundle in;
    const wchar_t* text;
  } const rows[] = {
      {"nothing", {}, L""},
      {"kinds",
       {{L"a", xvar()},
        {L"b", true},
        {L"c", 1.5},
        {L"d", -7LL},
        {L"e", 18446744073709551615ULL},
        {L"f", L'<'}},
       L"<a></a><b>1</b><c>1.500000</c><d>-7</d><e>18446744073709551615</e><f><</f>"},
      {"no calendar form", {{L"a", ruvo::datetime(1LL << 62)}}, L"<a>4611686018427387904</a>"},
      {"escapes", {{L"a", L" \t&<>\"'x&amp; \n"}}, L"<a>&&amp;&lt;&gt;&qout;&apos;x&&amp;amp;</a>"},
      {"memo and binary",
       {{L"a", ruvo::memo(L" <m> ")}, {L"b", ruvo::binary(L" <b> ")}},
       L"<a>&lt;m&gt;</a><b>&lt;b&gt;</b>"},
      {"lists in lists",
       {{L"k", list{list{1, list{}}, xvar()}}},
       L"<k><item><item>1</item><item></item></item><item></item></k>"},
      {"list of bundles",
       {{L"k", list{bundle{{L"a", 1}}, bundle_item, bundle()}}},
       L"<k><a>1</a><k>1</k></k>"},
      {"qualities", {{L"a", qualified}}, L"<a X=\"&lt;&qout;1&qout;&gt;\" y=\"2\">t</a>"},
      {"of an item", {{L"k", list{qualified}}}, L"<k><item X=\"&lt;&qout;1&qout;&gt;\" y=\"2\">t</item></k>"},
      {"schema", {{L"a", prefixed}}, L"<ns:a y=\"\" z=\"\">1</a>"},
      {"schema that is no name", {{L"a", infixed}}, L"<a>1</a>"},
      {"keys as they stand", {{L"a b<", 1}, {L"", 2}}, L"<>2</><a b<>1</a b<>"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(written_dialect(row.in), row.text);
  }
  EXPECT_EQ(written_dialect({{L"b", 1}, {L"a", bundle{{L"d", 2}, {L"c", 3}}}}, false),
            L"<b>1</b><a><d>2</d><c>3</c></a>");
}

TEST(xml_writer, tabulated) {
  const bundle in = {{L"a", 1},
                     {L"b", bundle{{L"c", 2}, {L"d", list{3, list{4}}}}},
                     {L"e", list{bundle{{L"f", 5}}, bundle{{L"g", 6}}}}};
  std::wstring text;
  xml x(true, true);
  x.serialize(text, in);
  EXPECT_EQ(text, declaration +
                      L"\n"
                      L"<a>1</a>\n"
                      L"<b>\n"
                      L"\t<c>2</c>\n"
                      L"\t<d>\n"
                      L"\t\t<item>3</item>\n"
                      L"\t\t<item>\t\t\t<item>4</item>\n"
                      L"</item>\n"
                      L"\t</d>\n"
                      L"</b>\n"
                      L"<e>\n"
                      L"\t\t<f>5</f>\n"
                      L"\t\t\t<g>6</g>\n"
                      L"\t</e>\n");
  x.serialize(text, {{L"a", 1}});
  EXPECT_EQ(text, declaration + L"\n\t<a>1</a>\n");  // the first push of a writer's life only
  xml bounded(true, true);
  bounded.limit_indentation(1);
  bounded.serialize(text, {{L"a", bundle{{L"b", bundle{{L"c", 1}}}, {L"d", 2}}}});
  EXPECT_EQ(text, declaration + L"\n<a>\n\t<b>\n\t<c>1</c>\n\t</b>\n\t<d>2</d>\n</a>\n");
}

/// Writes in its own way what the base classes leave to it.
struct shouting_writer : ruvo::serializer::xml_ordered_writer {
  std::wstring raw_value(const xvar& value) override { return xml_ordered_writer::raw_value(value) + L"!"; }
  std::wstring& raw_key(std::wstring& key) override { return key += L'_'; }
  bool raw_bundle(std::wostringstream& out, const bundle& in, ruvo::exception& result) override {
    out << L"(" << in.size() << L")";
    return xml_ordered_writer::raw_bundle(out, in, result);
  }
  std::wstring pieces() {
    std::wostringstream out;
    ruvo::exception result;
    xvar value;
    value[L"q"] = L"<";
    create_open_tag(out, L"n", value.get_qualities());
    EXPECT_FALSE(raw_list(out, list{1}, result));
    create_close_tag(out, L"n");
    return out.str() + raw_attribute(L" \" ");
  }
};

TEST(xml_writer, derived_writers_are_asked) {
  shouting_writer writer;
  std::wstring text;
  EXPECT_FALSE(writer.write(text, {{L"a", bundle{{L"b", 1}}}, {L"c", list{2, bundle{{L"d", 3}}, list{}}}},
                            nullptr, 0));
  EXPECT_EQ(text, declaration +
                      L"(2)<a_>(1)<b_>1!</b_></a_>"
                      L"<c_><item>2!</item>(1)<d_>3!</d_><item></item></c_>");
  EXPECT_EQ(writer.pieces(), L"<n q=\"&lt;\"><item>1!</item></n>&qout;");
}

TEST(xml, there_and_back) {
  const std::wstring text =
      L"<pedido fecha=\"21-11-2026\" numero=\"7\"><cliente nif=\"00000000T\">Pe&apos;a &&amp; Hijos</cliente>"
      L"<lineas><linea n=\"1\"><precio>1.5</precio></linea><linea n=\"2\"><precio>2</precio></linea></lineas>"
      L"</pedido>";
  const reading_outcome o = read_dialect(text);
  EXPECT_FALSE(o.failed);
  EXPECT_EQ(o.store.get_string(L"pedido.cliente"), L"Pe'a & Hijos");
  EXPECT_EQ(written_dialect(o.store), text);
  EXPECT_EQ(written_dialect(o.store, false), text);
  EXPECT_EQ(written_dialect(read_dialect(declaration + text).store), text);
  EXPECT_EQ(xml_outcome::text_of(read_dialect(written_dialect(o.store, true, true)).store),
            xml_outcome::text_of(o.store));
}

// --- the page

TEST(xml_page, reading) {
  for (const wchar_t* const section : {L"What is read", L"What is lost", L"Where XML is read otherwise"})
    for (const page_row& r : page_rows(section)) EXPECT_EQ(read_dialect(r.given).store.to_string(), r.result);
}

TEST(xml_page, attributes) {
  for (const page_row& r : page_rows(L"Attributes"))
    EXPECT_EQ(qualities_of(read_dialect(r.given).store.at(L"a")), r.result);
}

TEST(xml_page, failures) {
  for (const page_row& r : page_rows(L"What is refused")) {
    const ruvo::exception error = read_dialect(r.given).error;
    EXPECT_EQ(std::to_wstring(error.get_rango() * 1000 + error.get_code()) + L' ' + error.get_mensaje(),
              r.result);
  }
}

TEST(xml_page, writing) {
  for (const page_row& r : page_rows(L"What is written")) {
    bundle b;
    EXPECT_FALSE(ruvo::serializer::json().deserialize(b, r.given));
    EXPECT_EQ(written_dialect(b), r.result);
  }
  for (const page_row& r : page_rows(L"There and back"))
    EXPECT_EQ(written_dialect(read_dialect(r.given).store), r.result);
}

}  // namespace
