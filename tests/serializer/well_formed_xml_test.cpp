// SPDX-License-Identifier: BSL-1.0

// The strict reader of XML: what it takes, and where it refuses what it does not take.

#include <ruvo/ruvo.hpp>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "serializer/reads.hpp"
#include "support/dice.hpp"
#include "support/xml_outcome.hpp"

using ruvo::bundle;
using ruvo::serializer::failure_position;
using ruvo::serializer::read_well_formed_xml;

namespace {

reading_outcome read(const std::wstring& text) {
  reading_outcome o;
  o.failed = read_well_formed_xml(o.store, text, &o.error);
  return o;
}

TEST(well_formed_xml, accepted) {
  struct {
    const char* name;
    std::wstring text;
    const wchar_t* store;
  } const rows[] = {
      {"lists in lists", L"<r><i><x/><x>1</x></i><i>2</i></r>",
       L"{\"r\":[{\"i\":[{\"x\":\"\"},{\"x\":\"1\"}]},{\"i\":\"2\"}]}"},
      {"blanks at the ends", L"<r> \t\r\n 1  2\r\n </r>", L"{\"r\":\"1  2\"}"},
      {"nothing but blanks", L"<r> \n </r>", L"{\"r\":\"\"}"},
      {"blanks that are meant", L"<r> &#32;<![CDATA[ 1 ]]>&#x20; </r>", L"{\"r\":\"  1  \"}"},
      {"blanks around empty sections", L"<r> <![CDATA[]]> 1 <![CDATA[]]> <![CDATA[]]></r>", L"{\"r\":\"1\"}"},
      {"blanks around what is meant", L"<r> <![CDATA[]]> 1 <!-- --> 2 <?p?> </r>", L"{\"r\":\"1  2\"}"},
      {"declaration", L"<?xml version='1.0'\r\nencoding = \"ISO-8859-1\" standalone='no' ?><r/>",
       L"{\"r\":\"\"}"},
      {"byte order mark", L"\xFEFF<?xml version=\"1.1\"?><r/>", L"{\"r\":\"\"}"},
      {"around the root", L"\n<!----><?p?>\t<r/> <!--<a>--><?xmlx a?b?>\n", L"{\"r\":\"\"}"},
      {"inside text", L"<r>1<!-- </r> - > ]]> & -->2<?php echo '<r>' ? ?>3</r>", L"{\"r\":\"123\"}"},
      {"CDATA", L"<r><![CDATA[<a>&lt;</a>]] >]>]]]]><![CDATA[>]]></r>", L"{\"r\":\"<a>&lt;</a>]] >]>]]>\"}"},
      {"entities", L"<r>&lt;&gt;&amp;&apos;&quot;&amp;lt;</r>", L"{\"r\":\"<>&'\\\"&lt;\"}"},
      {"references", L"<r>&#65;&#x41;&#x00000000000000000000e1;&#xFFFD;&#128512;&#x10ffff;</r>",
       L"{\"r\":\"AAá\xFFFD\xD83D\xDE00\xDBFF\xDFFF\"}"},
      {"lines' ends", L"<r>1\r\n2\r3\n4\r\r\n5&#13;&#xD;\n6<![CDATA[\r\n]]></r>",
       L"{\"r\":\"1\n2\n3\n4\n\n5\r\r\n6\n\"}"},
      {"brackets and signs", L"<r>]] > ]> > \" ' ]&#93;></r>", L"{\"r\":\"]] > ]> > \\\" ' ]]>\"}"},
      {"names", L"<_:é.-\xB7·1><\xD83D\xDE00/><:/></_:é.-\xB7·1>",
       L"{\"_:é.-\xB7·1\":{\":\":\"\", \"\xD83D\xDE00\":\"\"}}"},
      {"external document type", L"<!DOCTYPE r SYSTEM 'a>\"b' ><r/>", L"{\"r\":\"\"}"},
      {"public document type", L"<!-- --><!DOCTYPE\nr PUBLIC \"-//x\" 'u' [ ] ><?p?><r/>", L"{\"r\":\"\"}"},
      {"internal subset",
       L"<!DOCTYPE r[<!ENTITY a ']>\"'> %p; <!-- ]> ' --><?p ]> \"?>\n<!ATTLIST r x CDATA \"&lt;>'\">]><r/>",
       L"{\"r\":\"\"}"},
      {"element declarations",
       L"<!DOCTYPE r[<!ELEMENT a EMPTY><!ELEMENT\tb ANY ><!ELEMENT c (#PCDATA)><!ELEMENT c ( #PCDATA )*>"
       L"<!ELEMENT d (#PCDATA|a | b)*><!ELEMENT e (a)><!ELEMENT f ( ( a? , b* ,\n(c|d+ | e))+, ((f)) "
       L")?>]><r/>",
       L"{\"r\":\"\"}"},
      {"attribute declarations",
       L"<!DOCTYPE r[<!ATTLIST r><!ATTLIST r ><!ATTLIST r a ID #REQUIRED b IDREF #IMPLIED\nc IDREFS '&#x41;' "
       L"d "
       L"ENTITY #FIXED\t\"'%p;\" e ENTITIES '' f NMTOKEN '' g NMTOKENS '' h NOTATION ( n | m ) 'n' i ( 1|-a| "
       L".b "
       L") '1' >]><r/>",
       L"{\"r\":\"\"}"},
      {"entities and notations",
       L"<!DOCTYPE r[<!ENTITY a '&b;&#60;\"<'><!ENTITY % a \"\" ><!ENTITY b SYSTEM '%&'><!ENTITY % b PUBLIC "
       L"'' ''>"
       L"<!ENTITY c PUBLIC \"-'()+,./:=?;!*#@$_%\r\n\" '' NDATA n ><!NOTATION n SYSTEM ''><!NOTATION m "
       L"PUBLIC 'm'>"
       L"<!NOTATION o PUBLIC 'm' \"\xF1\">]><r/>",
       L"{\"r\":\"\"}"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const reading_outcome o = read(row.text);
    EXPECT_FALSE(o.failed) << testing::PrintToString(o.error.get_mensaje());
    EXPECT_EQ(o.error.get_code(), 3U);
    EXPECT_EQ(o.store.to_string(), row.store);
  }
}

TEST(well_formed_xml, attributes) {
  struct {
    const char* name;
    const wchar_t *tag, *qualities;
  } const rows[] = {
      {"both marks", L"<r x='\"1\"' y=\"'2'\"/>", L"x=\"1\"; y='2'"},
      {"blanks", L"<r\tx\n=\r'1'\r\n y= '' />", L"x=1; y="},
      {"blanks in values", L"<r x=' \t\n\r\n\r1&#9;&#10;&#xd; '/>", L"x=     1\t\n\r "},
      {"references", L"<r x='&lt;&amp;&quot;&apos;>]]>\\&#x1F600;\xD83D\xDE00'/>",
       L"x=<&\"'>]]>\\\xD83D\xDE00\xD83D\xDE00"},
      {"names that ignore case", L"<r x='1' X='2' y='3'/>", L"x=2; y=3"},
      {"prefixes", L"<r xmlns='u' xml:space='preserve' n:x='1' :='2'/>",
       L":=2; n:x=1; xml:space=preserve; xmlns=u"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const reading_outcome o = read(row.tag);
    EXPECT_FALSE(o.failed);
    EXPECT_EQ(qualities_of(o.store.at(L"r")), row.qualities);
  }
  const reading_outcome o = read(L"<r x='1'><a y='2'>t</a><a z='3'><b/></a></r>");
  EXPECT_EQ(qualities_of(o.store.at(L"r")), L"x=1");
  EXPECT_EQ(xml_outcome::text_of(o.store), xml_outcome::text_of([] {
              bundle b;
              ruvo::serializer::xml(true, false)
                  .deserialize(b, L"<r x=\"1\"><a y=\"2\">t</a><a z=\"3\"><b/></a></r>", nullptr);
              return b;
            }()));
}

/// The failure is at the character behind ¦.
void expect_refused(std::wstring text) {
  const std::size_t where = text.find(L'¦');
  ASSERT_NE(where, text.npos);
  text.erase(where, 1);
  SCOPED_TRACE(testing::PrintToString(text));
  const reading_outcome o = read(text);
  EXPECT_TRUE(o.failed);
  EXPECT_EQ(failure_position(o.error), where + 1);
  EXPECT_EQ(o.error.get_rango(), 7U);
  EXPECT_TRUE(o.store.empty());
}

TEST(well_formed_xml, refused) {
  const std::wstring rows[] = {
      // The document
      L"¦", L" ¦", L"\xFEFF¦", L"¦text", L"<!-- -->¦", L"<r/>¦<r/>", L"<r/>¦x", L"<r></r>¦&#32;",
      L"¦&#32;<r/>", L"<r/>¦<![CDATA[]]>", L"<!¦[CDATA[]]><r/>", L"<r>¦", L"<r><a>1</a>¦", L"<r>1¦",
      L"<r>\xFEFF</r>¦\xFEFF", L"\xFEFF¦\xFEFF<r/>",
      // Tags
      L"<¦", L"<¦>", L"<¦ r/>", L"<¦1/>", L"<¦-a/>", L"<¦.a/>", L"<¦\xB7/>", L"<r¦;/>", L"<r¦\xD7/>",
      L"<r¦\xDB80\xDC00/>", L"<¦/r>", L"<r/¦ >", L"<r¦<a/>", L"<r ¦<a/>", L"<r></¦ r>", L"<r></¦>",
      L"<r></r¦/>", L"<r></r ¦x='1'>", L"<r><a></a></¦ab></r>", L"<R></¦r>", L"<r><a></¦r></a>",
      L"<n:r></¦r>", L"<r></¦rr>", L"<rr></¦r>",
      // Attributes
      L"<r x¦/>", L"<r x ¦/>", L"<r x=¦/>", L"<r x=¦1/>", L"<r ¦='1'/>", L"<r ¦1x='1'/>", L"<r x='1'¦y='2'/>",
      L"<r x='1¦<'/>", L"<r x='&¦'/>", L"<r x='1¦", L"<r x='1\"/>¦", L"<r x='1' ¦x='1'/>",
      L"<r x='1' y='2' X='3' ¦X='4'/>", L"<r x='1' X='3' ¦x='4'/>", L"<r x='1'¦", L"<r x='¦\x01'/>",
      L"<r x='1'/¦x>",
      // Text and references
      L"<r>a]¦]]></r>", L"<r>¦]]></r>", L"<r>&¦ </r>", L"<r>&¦", L"<r>&a¦ ;</r>", L"<r>¦&a;</r>",
      L"<r>¦&nbsp;</r>", L"<r>¦&LT;</r>", L"<r>&lt¦</r>", L"<r>&#¦;</r>", L"<r>&#¦a;</r>", L"<r>&#x¦;</r>",
      L"<r>&#x¦g;</r>", L"<r>&#¦X41;</r>", L"<r>&#65¦a;</r>", L"<r>&#¦-1;</r>", L"<r>¦&#0;</r>",
      L"<r>¦&#8;</r>", L"<r>¦&#x1F;</r>", L"<r>¦&#xD800;</r>", L"<r>¦&#57343;</r>", L"<r>¦&#xFFFE;</r>",
      L"<r>¦&#xFFFF;</r>", L"<r>¦&#x110000;</r>", L"<r>¦&#4294967361;</r>", L"<r>¦&#x10000000000000041;</r>",
      L"<r>¦&quote;</r>", L"<r>¦&qout;</r>",
      // Characters
      L"<r>1¦\x01</r>", L"<r>¦\x1F</r>", L"<r>¦\xFFFE</r>", L"<r>¦\xFFFF</r>", L"<r>¦\xD83D</r>",
      L"<r>¦\xDE00\xD83D</r>", L"<r>\xD83D\xDE00¦\xDE00</r>", L"<r>1¦\xD83D", L"<r>¦\v</r>", L"¦\f<r/>",
      L"<r/>¦\xA0", L"<r><!--¦\x01--></r>", L"<r><?p ¦\xD83D?></r>", L"<r><![CDATA[¦\x02]]></r>",
      L"<!DOCTYPE r [<!ENTITY a '¦\x02'>]><r/>",
      // Sections
      L"<r><!--¦", L"<r><!-¦ --></r>", L"<r><!-- --¦ --></r>", L"<r><!-- --¦-></r>", L"<r><!--></r>¦",
      L"<r><!---></r>¦", L"<r><!¦r></r>", L"<r><![¦cdata[]]></r>", L"<r><![CDATA[]]¦", L"<r><![CDATA[ ]] >¦",
      L"<r><![CDATA¦></r>", L"<r><?¦?></r>", L"<r><?¦ p?></r>", L"<r><?p¦></r>", L"<r><?p ?¦",
      L"<r><?p?¦p?></r>", L"<r><?p¦=?></r>", L"<r><?¦xml version='1.0'?></r>", L"<?¦XML?><r/>",
      L"<r/><?¦xMl ?>",
      // The declaration
      L" <?¦xml version='1.0'?><r/>", L"<?¦xml?><r/>", L"<?xml ¦?><r/>", L"<?xml ¦encoding='UTF-8'?><r/>",
      L"<?xml version¦?><r/>", L"<?xml version=¦1.0?><r/>", L"<?xml version='¦2.0'?><r/>",
      L"<?xml version='¦1.'?><r/>", L"<?xml version='¦'?><r/>", L"<?xml version='¦1.0a'?><r/>",
      L"<?xml version='1.0'¦encoding='a'?><r/>", L"<?xml version='1.0' encoding='¦'?><r/>",
      L"<?xml version='1.0' encoding='¦8'?><r/>", L"<?xml version='1.0' encoding='¦a b'?><r/>",
      L"<?xml version='1.0' standalone='¦si'?><r/>", L"<?xml version='1.0' ¦version='1.0'?><r/>",
      L"<?xml version='1.0' standalone='no' ¦encoding='a'?><r/>", L"<?xml version='1.0'¦><r/>",
      L"<?xml version='1.0' ?¦ ><r/>",
      // The document type
      L"<!DOCTYPE¦><r/>", L"<!DOCTYPE ¦><r/>", L"<!¦doctype r><r/>", L"<!DOCTYPE r¦", L"<!DOCTYPE r>¦",
      L"<!DOCTYPE r ¦x><r/>", L"<!DOCTYPE r SYSTEM¦'a'><r/>", L"<!DOCTYPE r SYSTEM ¦><r/>",
      L"<!DOCTYPE r PUBLIC 'a'¦><r/>", L"<!DOCTYPE r PUBLIC 'a'¦'b'><r/>", L"<!DOCTYPE r><!¦DOCTYPE r><r/>",
      L"<r/>¦<!DOCTYPE r>", L"<r><!¦DOCTYPE r></r>", L"<!DOCTYPE r [<!ENTITY a 'b'¦<>]><r/>",
      L"<!DOCTYPE r [¦x]><r/>", L"<!DOCTYPE r [%¦;]><r/>", L"<!DOCTYPE r [%a¦ ]><r/>",
      L"<!DOCTYPE r [<¦a/>]><r/>", L"<!DOCTYPE r [<!¦[INCLUDE[]]>]><r/>",
      L"<!DOCTYPE r [<!ENTITY a \"'>]><r/>¦", L"<!DOCTYPE r []¦[]><r/>", L"<!DOCTYPE r PUBLIC '¦{}' 'u'><r/>",
      L"<!DOCTYPE r PUBLIC '¦\t' 'u'><r/>", L"<!DOCTYPE r P¦ 'u'><r/>",
      L"<!DOCTYPE r [<?¦xml version='1.0'?>]><r/>", L"<!DOCTYPE r [%¦ p;]><r/>",
      L"<!DOCTYPE r [<!ENTITY a 'b'>]><r>¦&a;</r>", L"<!DOCTYPE r [<!ENTITY lt '<'>]><r>&lt;&a¦",
      L"<!DOCTYPE r [<!ENTITY x SYSTEM 'file:///x'>]><r x='¦&x;'/>"};
  for (const std::wstring& text : rows) expect_refused(text);
}

/// Within a document type; with two blanks between them.
TEST(well_formed_xml, declarations_refused) {
  for (const std::wstring& text : ruvo::texto::split(
           L"¦FOO x  E¦  ELEMENT¦  ELEMENT¦S a ANY  ELEMENT a¦(b)  ELEMENT a ¦  ELEMENT a EMPTY¦S  "
           L"ELEMENT a (¦)  ELEMENT a (b,¦)  ELEMENT a (b,c¦|d)  ELEMENT a ((b|c),d¦|e)  ELEMENT a (b ¦?)  "
           L"ELEMENT a (b?¦?)  ELEMENT a (b ¦c)  ELEMENT a (b)¦)  ELEMENT a ((b)¦  ELEMENT a (b,¦#PCDATA)  "
           L"ELEMENT a (#PCDATA)¦+  ELEMENT a (#PCDATA|b)¦  ELEMENT a (#PCDATA¦,b)*  "
           L"ELEMENT a (#PCDATA|b¦?)*  ELEMENT a (¦%p;)  ELEMENT a ANY ¦-- b --  ATTLIST¦  ATTLIST a b ¦'<'  "
           L"ATTLIST a b CDATA¦  ATTLIST a b CDATA ¦  ATTLIST a b CDATA '¦<'  ATTLIST a b CDATA '¦&c;'  "
           L"ATTLIST a b IDREFS¦X ''  ATTLIST a b ENTIT¦ ''  ATTLIST a b (¦) ''  ATTLIST a b (c|¦) ''  "
           L"ATTLIST a b (c)¦'c'  ATTLIST a b NOTATION¦(n) ''  ATTLIST a b NOTATION (¦1) ''  "
           L"ATTLIST a b CDATA #FIXED¦''  ATTLIST a b CDATA ''¦c CDATA ''  ATTLIST a b CDATA #I¦D  "
           L"ENTITY a¦  ENTITY a ¦  ENTITY a ¦b  ENTITY %¦a; ''  ENTITY a '1¦%'  ENTITY % a '¦%b;'  "
           L"ENTITY a '&¦'  ENTITY a '&b¦'  ENTITY a '¦&#0;'  ENTITY a '' ¦'b'  ENTITY a SYSTEM 'b'¦NDATA c  "
           L"ENTITY % a SYSTEM 'b' ¦NDATA c  ENTITY a PUBLIC 'b'¦  NOTATION a ¦  NOTATION a ¦'b'  "
           L"NOTATION a PUBLIC 'b'¦'c'  NOTATION a PUBLIC 'b' ¦c",
           L"  "))
    expect_refused(L"<!DOCTYPE r [<!" + text + L">]><r/>");
}

TEST(well_formed_xml, failures_say_what_and_leave_the_rest) {
  const std::wstring wrong_end = L"<r>\r\n <a><b>1</b></r>", unknown = L"<r><a x='&b;'/></r>";
  bundle out = {{L"k", 1}};
  ruvo::exception error;
  EXPECT_TRUE(read_well_formed_xml(out, wrong_end, &error));
  EXPECT_EQ(error.get_raw_code(), 0xEBB91B5AU);
  EXPECT_EQ(error.get_mensaje(), L"Lectura incorrecta cerca del caracter:20 en el nudo:2");
  const auto place = ruvo::serializer::position_of(wrong_end, failure_position(error));
  EXPECT_EQ(place.line, 2U);
  EXPECT_EQ(place.column, 15U);
  EXPECT_TRUE(read_well_formed_xml(out, unknown, &error));
  EXPECT_EQ(error.get_raw_code(), 0xEBB91B59U);
  EXPECT_EQ(error.get_mensaje(), L"Lectura incorrecta cerca del caracter:10 en el nudo:2");
  EXPECT_TRUE(read_well_formed_xml(out, unknown));
  EXPECT_EQ(out.to_string(), L"{\"k\":1}");

  EXPECT_FALSE(read_well_formed_xml(out, L"<r><a>2</a></r>", &error));
  EXPECT_TRUE(error.WRONG()) << "success leaves it alone";
  EXPECT_EQ(out.to_string(), L"{\"r\":{\"a\":\"2\"}}");
}

TEST(well_formed_xml, any_depth_and_any_width) {
  constexpr int many = 100000;
  std::wstring deep, back;
  for (int n = 0; n < many; ++n) {
    deep += n % 3 ? L"<a>" : L"<a x='1'><b/>";
    back += L"</a>";
  }
  EXPECT_FALSE(read(deep + L"t" + back).failed);
  const reading_outcome cut = read(deep + L"t" + back.substr(0, back.size() - 2));
  EXPECT_EQ(failure_position(cut.error), deep.size() + back.size());

  std::wstring wide = L"<r";
  for (int n = 0; n < many; ++n) wide += L" k" + std::to_wstring(n) + L"=''";
  for (int n = 0; n < many; ++n) wide += L" K" + std::to_wstring(n) + L"='1'";
  wide += L'>';
  for (int n = 0; n < many; ++n) wide += L"<k" + std::to_wstring(n * 7919LL % 100003) + L"/>";
  for (int n = 0; n < many; ++n) wide += L"<k0/>";
  const reading_outcome o = read(wide + L"</r>");
  ASSERT_FALSE(o.failed);
  EXPECT_EQ(o.store.get_list(L"r").size(), 200000U);
  EXPECT_EQ(o.store.at(L"r").size(), 100000U);
  EXPECT_EQ(o.store.at(L"r").get_quality(L"k7").to_string(), L"1");

  // What never ends must not be looked through again and again.
  std::vector<std::wstring> repeated = pieces(
      L"<a ] ]] - -- <!-- <!----> <![CDATA[ <![CDATA[]]> <?p <?p?> &amp; & &#x0 a \xD83D\xDE00 <a>1</a> %p; "
      L"(a, (");
  for (const wchar_t* const other :
       {L"<a ", L"<a x='", L" ", L"\r", L"' ", L"<!ELEMENT a (b)>", L"<!ENTITY a '"})
    repeated.push_back(other);
  for (const std::wstring& piece : repeated) {
    for (const wchar_t* const begin : {L"", L"<r>", L"<r x='", L"<r><![CDATA[", L"<r><!--", L"<!DOCTYPE r [",
                                       L"<!DOCTYPE r [<!ELEMENT r (", L"<!DOCTYPE r [<!ENTITY r '"}) {
      std::wstring text = begin;
      for (int n = 0; n < many / 4; ++n) text += piece;
      EXPECT_TRUE(read(text).failed);
    }
  }
}

// --- the page

TEST(well_formed_xml, the_page) {
  for (const auto& [given, result] : page_rows(L"Well-formed documents"))
    EXPECT_EQ(read(given).store.to_string(), result) << testing::PrintToString(given);
  for (const auto& [given, result] : page_rows(L"Documents that are not well-formed")) {
    const ruvo::exception error = read(given).error;
    const auto place = ruvo::serializer::position_of(given, failure_position(error));
    EXPECT_EQ(std::to_wstring(error.get_rango() * 1000 + error.get_code()) + L' ' +
                  std::to_wstring(place.line) + L':' + std::to_wstring(place.column),
              result)
        << testing::PrintToString(given);
  }
}

}  // namespace
