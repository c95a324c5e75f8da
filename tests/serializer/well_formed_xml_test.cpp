// SPDX-License-Identifier: BSL-1.0

// The strict reader of XML: what it takes, and where it refuses what it does not take.

#include <ruvo/ruvo.hpp>

#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "serializer/reads.hpp"
#include "support/dice.hpp"
#include "support/wide_bytes.hpp"
#include "support/xml_outcome.hpp"

using ruvo::bundle;
using ruvo::serializer::failure_position;
using ruvo::serializer::read_well_formed_xml;
using ruvo::serializer::xml_read_options;

namespace {

template <class Text, class... Options>
reading_outcome read(const Text& text, const Options&... options) {
  reading_outcome o;
  o.failed = read_well_formed_xml(o.store, text, &o.error, options...);
  return o;
}

template <class Text>
Text repeated(const Text& piece, int count) {
  Text out;
  for (; count > 0; --count) out += piece;
  return out;
}

xml_read_options with_mixed_text() {
  xml_read_options o;
  o.mixed_text = true;
  return o;
}
/// What the document type declares has an effect.
xml_read_options declared() {
  xml_read_options o;
  o.entities = o.declared_attributes = true;
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
template <class... Options>
void expect_not_well_formed(std::wstring text, const Options&... options) {
  const std::size_t where = text.find(L'¦');
  ASSERT_NE(where, text.npos);
  text.erase(where, 1);
  SCOPED_TRACE(testing::PrintToString(text));
  const reading_outcome o = read(text, options...);
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
  for (const std::wstring& text : rows) expect_not_well_formed(text);
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
    expect_not_well_formed(L"<!DOCTYPE r [<!" + text + L">]><r/>");
}

// --- options

TEST(well_formed_xml, text_beside_elements) {
  struct {
    const wchar_t *text, *store;
  } const rows[] = {
      {L"<p>See <b>one</b> <i>two</i>, and\n<b>three</b></p>",
       L"[{\"#text\":\"See \"},{\"b\":\"one\"},{\"#text\":\" \"},{\"i\":\"two\"},{\"#text\":\", "
       L"and\n\"},{\"b\":\"three\"}]"},
      {L"<p><b/> <b/>\t<c/>x</p>",
       L"[{\"b\":\"\"},{\"#text\":\" \"},{\"b\":\"\"},{\"#text\":\"\t\"},{\"c\":\"\"},{\"#text\":\"x\"}]"},
      {L"<p> <b> x </b> <a/> </p>", L"{\"a\":\"\", \"b\":\"x\"}"},
      {L"<p> <b/> <a/> <b/> </p>", L"[{\"b\":\"\"},{\"a\":\"\"},{\"b\":\"\"}]"},
      {L"<p><b/>&#32;<a/></p>", L"[{\"b\":\"\"},{\"#text\":\" \"},{\"a\":\"\"}]"},
      {L"<p><b/><![CDATA[ ]]></p>", L"[{\"b\":\"\"},{\"#text\":\" \"}]"},
      {L"<p>1<!-- -->2<b>\n<c/>3</b>4</p>",
       L"[{\"#text\":\"12\"},{\"b\":[{\"#text\":\"\n\"},{\"c\":\"\"},{\"#text\":\"3\"}]},{\"#text\":\"4\"}]"},
      {L"<p> <a> <b/> </a> <c/>x</p>",
       L"[{\"#text\":\" \"},{\"a\":{\"b\":\"\"}},{\"#text\":\" \"},{\"c\":\"\"},{\"#text\":\"x\"}]"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(read(std::wstring(row.text), with_mixed_text()).store.at(L"p").to_string(), row.store)
        << testing::PrintToString(row.text);
}

TEST(well_formed_xml, what_a_document_declares) {
  struct {
    const char* name;
    std::wstring type, element;
    const wchar_t *store, *qualities;
  } const rows[] = {
      {"text", L"<!ENTITY e 'a&lt;b'>", L"<r>1&e;2</r>", L"\"1a<b2\"", L""},
      {"elements", L"<!ENTITY e 'x<a>1</a><b>&f;</b>'><!ENTITY f '2'>", L"<r>&e;</r>",
       L"{\"a\":\"1\", \"b\":\"2\"}", L""},
      {"the first declaration counts", L"<!ENTITY e '1'><!ENTITY e '2'>", L"<r>&e;</r>", L"\"1\"", L""},
      {"markup in two steps", L"<!ENTITY e '&#60;a>&#38;lt;&#38;#38;amp;&#60;/a>'>", L"<r>&e;</r>",
       L"{\"a\":\"<&amp;\"}", L""},
      {"the five stay what they are", L"<!ENTITY lt '&#38;#60;'><!ENTITY amp 'x'>", L"<r>&lt;&amp;</r>",
       L"\"<&\"", L""},
      {"line ends", L"<!ENTITY e '1\r\n2\r3&#13;&#10;4&#38;#13;5'>", L"<r a='&e;'>&e;</r>",
       L"\"1\n2\n3\r\n4\r5\"", L"a=1 2 3  4\r5"},
      {"brackets of two texts", L"<!ENTITY e '>'><!ENTITY f ']]'>", L"<r>]]&e;&f;></r>", L"\"]]>]]>\"", L""},
      {"nothing", L"<!ENTITY e ''>", L"<r a='&e;&e;'>&e;</r>", L"\"\"", L"a="},
      {"marks in attributes", L"<!ENTITY e '\"&f;'><!ENTITY f \"'\">", L"<r a='&e;' b=\"&e;\"/>", L"\"\"",
       L"a=\"'; b=\"'"},
      {"parameter entities",
       L"<!ENTITY % p '&#37;q;<!-- -->'><!ENTITY % q \"<!ENTITY e '1'>\">%p;<!ENTITY e '2'>", L"<r>&e;</r>",
       L"\"1\"", L""},
      {"defaults",
       L"<!ENTITY e 'x'><!ATTLIST r a CDATA ' &e; ' b ID #IMPLIED c CDATA #FIXED '3' a CDATA '2'>",
       L"<r c='4'/>", L"\"\"", L"a= x ; c=4"},
      {"defaults of other elements", L"<!ATTLIST a x CDATA '1'><!ATTLIST R x CDATA '1'>", L"<r><a/></r>",
       L"{\"a\":\"\"}", L""},
      {"defaults ignore case, too", L"<!ATTLIST r x CDATA '1' Y CDATA '2' y CDATA '3'>", L"<r X='4'/>",
       L"\"\"", L"X=4; Y=2"},
      {"tokens", L"<!ATTLIST r a NMTOKENS '  1  2 ' b (x|y) #IMPLIED c CDATA #IMPLIED>",
       L"<r b=' x&#32; ' c='  1 '/>", L"\"\"", L"a=1 2; b=x; c=  1 "},
      {"behind what is not read", L"<!ENTITY e '1'>%p;<!ENTITY f '2'><!ATTLIST r x CDATA '1'>", L"<r>&e;</r>",
       L"\"1\"", L""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const reading_outcome o = read(L"<!DOCTYPE r [" + row.type + L"]>" + row.element, declared());
    ASSERT_FALSE(o.failed) << testing::PrintToString(o.error.get_mensaje());
    const ruvo::xvar& root = o.store.at(L"r");
    EXPECT_EQ(o.store.to_string(), L"{\"r\":" + std::wstring(row.store) + L"}");
    EXPECT_EQ(qualities_of(root), row.qualities);
  }
  EXPECT_FALSE(
      read(std::wstring(L"<?xml version='1.0' standalone='yes'?><!DOCTYPE r [%p;<!ENTITY e '1'>]><r>&e;</r>"),
           declared())
          .failed);
}

/// The document type in brackets, then the root.
TEST(well_formed_xml, declarations_that_bring_what_can_not_stand) {
  for (const wchar_t* const text : {L"<!ENTITY e '&e;'>]><r>¦&e;</r>",
                                    L"<!ENTITY e '&f;'><!ENTITY f 'x&e;'>]><r a='¦&e;'/>",
                                    L"<!ENTITY e '<a>'>]><r>¦&e;</a></r>",
                                    L"<!ENTITY e '</r>'>]><r>¦&e;",
                                    L"<!ENTITY e '<a></a'>]><r>¦&e;></r>",
                                    L"<!ENTITY e '<!--'>]><r>¦&e;--></r>",
                                    L"<!ENTITY e '&#38;'>]><r>¦&e;lt;</r>",
                                    L"<!ENTITY e '<'>]><r a='¦&e;'/>",
                                    L"<!ENTITY e '&#60;'>]><r a='¦&e;'/>",
                                    L"<!ENTITY e SYSTEM 'x'>]><r>¦&e;</r>",
                                    L"<!ENTITY e SYSTEM 'x' NDATA n>]><r>¦&e;</r>",
                                    L"<!ENTITY e '1'>]><r>¦&E;</r>",
                                    L"%p;<!ENTITY e '1'>]><r>¦&e;</r>",
                                    L"<!ENTITY % e '1'>]><r>¦&e;</r>",
                                    L"<!ATTLIST r a CDATA '¦&e;'><!ENTITY e '1'>]><r/>",
                                    L"<!ENTITY e '<'><!ATTLIST r a CDATA '¦&e;'>]><r/>",
                                    L"<!ENTITY % p '<!ENTITY'>¦%p; e '1'>]><r/>",
                                    L"<!ENTITY % p ']><r/>'>¦%p;",
                                    L"<!ENTITY % p '&#37;p;'>¦%p;]><r/>",
                                    L"<!ENTITY % p '<![INCLUDE[]]>'>¦%p;]><r/>",
                                    L"<!ENTITY % p \"<!ENTITY e '&#37;p;'>\">¦%p;]><r/>",
                                    L"<!ENTITY e '<?xml version=\"1.0\"?>'>]><r>¦&e;</r>",
                                    L"<!ENTITY e ']]>'>]><r>¦&e;</r>",
                                    L"<!ENTITY e '<a x=\"1\" x=\"2\"/>'>]><r>¦&e;</r>"})
    expect_not_well_formed(std::wstring(L"<!DOCTYPE r [") + text, declared());
  EXPECT_EQ(
      read(std::wstring(L"<!DOCTYPE r [<!ENTITY e '<a></b>'>]><r>&e;</r>"), declared()).error.get_code(), 2U);
  const std::wstring standalone =
      L"<?xml version='1.0' standalone='yes'?><!DOCTYPE r [<!ENTITY % p \"<!ENTITY e '1'><!ATTLIST r a "
      L"CDATA '&e;'>\">%p;]><r>";
  EXPECT_FALSE(read(standalone + L"</r>", declared()).failed);
  expect_not_well_formed(standalone + L"¦&e;</r>", declared());
}

TEST(well_formed_xml, limits) {
  using limits = ruvo::serializer::xml_limits;
  constexpr auto none = static_cast<std::size_t>(-1);
  struct {
    std::size_t limits::*limit;
    std::size_t most;
    const wchar_t *text, *name;
  } const rows[] = {
      {&limits::depth, 2, L"<r><a/><a>¦<b/></a></r>", L"profundidad"},
      {&limits::units, 7, L"<r></r>¦ ", L"tamaño"},
      {&limits::elements, 3, L"<r><a/><a>¦<b/></a></r>", L"elementos"},
      {&limits::elements, 3, L"<r><a/>1¦<b/></r>", L"elementos"},
      {&limits::elements, 3, L"<r> <b/> 1¦</r>", L"elementos"},
      {&limits::attributes, 2, L"<r a='' b='' ¦c=''/>", L"atributos"},
      {&limits::attributes, 1, L"<!DOCTYPE r [<!ATTLIST r b CDATA ''>]>¦<r a=''/>", L"atributos"},
      {&limits::bytes, 500, L"<r><a/>¦<b/></r>", L"memoria"},
      {&limits::bytes, 450, L"<r x='' ¦yyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyy=''/>", L"memoria"},
      {&limits::growth, 3, L"<!DOCTYPE r [<!ENTITY e '12'>]><r>&e;¦&e;</r>", L"crecimiento"},
      {&limits::growth, 9, L"<!DOCTYPE r [<!ENTITY e '&f;'><!ENTITY f '12'>]><r>&e;<a x='¦&e;'/></r>",
       L"crecimiento"},
      {&limits::growth, 5, L"<!DOCTYPE r [<!ATTLIST a x CDATA '12'>]><r><a/>¦<a/></r>", L"crecimiento"},
      {&limits::growth, 11, L"<!DOCTYPE r [<!ENTITY % p '<!-- -->'>%p;¦%p;]><r/>", L"crecimiento"},
  };
  for (const auto& row : rows) {
    xml_read_options how = declared();
    how.mixed_text = true;
    how.limits = {none, none, none, none, none, none};
    std::wstring text = row.text;
    text.erase(text.find(L'¦'), 1);
    EXPECT_FALSE(read(text, how).failed) << testing::PrintToString(text);
    how.limits.*row.limit = row.most;
    expect_not_well_formed(row.text, how);
    const reading_outcome o = read(text, how);
    EXPECT_EQ(o.error.get_code(), 6U) << testing::PrintToString(text);
    EXPECT_EQ(o.error.get_detail(), row.name);
    if (row.limit == &limits::units) continue;  // which are bytes there
    EXPECT_EQ(failure_position(read(ruvo::texto::to_utf_8(text), how).error), failure_position(o.error));
  }
  const std::string deep = repeated(std::string("<r>"), 513) + repeated(std::string("</r>"), 513);
  EXPECT_EQ(failure_position(read(deep).error), 512U * 3 + 1);
  EXPECT_FALSE(read(deep.substr(3, deep.size() - 7)).failed);
  // A thousand million of three characters each, if it were all expanded.
  std::wstring laughs = L"<!DOCTYPE r [<!ENTITY a0 'lol'>";
  for (int n = 1; n < 10; ++n)
    laughs += L"<!ENTITY a" + std::to_wstring(n) + L" '" +
              repeated(L"&a" + std::to_wstring(n - 1) + L";", 10) + L"'>";
  EXPECT_EQ(read(laughs + L"]><r>&a9;</r>", declared()).error.get_code(), 6U);
}

// --- bytes

TEST(well_formed_xml, bytes) {
  const auto in = [](const char* encoding, const std::string& element) {
    return "<?xml version='1.0' encoding='" + std::string(encoding) + "'?>" + element;
  };
  const auto wide = [](const std::string& text, bool low_first) {
    return wide_bytes(ruvo::texto::to_utf_16(text), low_first);
  };
  const std::string mark = "\xEF\xBB\xBF", utf_8 = "<\xC3\xB1 x='\xE2\x82\xAC'>\xF0\x9F\x98\x80</\xC3\xB1>";
  const std::string rows[] = {utf_8,
                              mark + utf_8,
                              in("utf-8", utf_8),
                              mark + in("UTF8", utf_8),
                              wide(mark + utf_8, true),
                              wide(mark + utf_8, false),
                              wide(mark + in("UTF-16", utf_8), true),
                              wide(mark + in("UTF-16BE", utf_8), false),
                              wide(in("utf-16le", utf_8), true),
                              wide(in("utf-16", utf_8), false),
                              in("ISO-8859-15", "<\xF1 x='\xA4'>&#x1F600;</\xF1>"),
                              in("Latin9", "<\xF1 x='\xA4'>&#x1F600;</\xF1>"),
                              in("Windows-1252", "<\xF1 x='\x80'>&#x1F600;</\xF1>"),
                              in("cp1252", "<\xF1 x='\x80'>&#x1F600;</\xF1>"),
                              in("iso-8859-1", "<\xF1 x='&#8364;'>&#x1F600;</\xF1>"),
                              in("latin1", "<\xF1 x='&#8364;'>&#x1F600;</\xF1>")};
  for (const std::string& row : rows) {
    const reading_outcome o = read(row);
    ASSERT_FALSE(o.failed) << row;
    EXPECT_EQ(o.store.to_string(), L"{\"ñ\":\"\xD83D\xDE00\"}") << row;
    EXPECT_EQ(qualities_of(o.store.at(L"ñ")), L"x=\x20AC") << row;
  }
  EXPECT_EQ(read(in("US-ASCII", "<r/>")).store.to_string(), L"{\"r\":\"\"}");
  EXPECT_EQ(read(in("iso-8859-15", "<r>\xA4\xA5\xA6\xA8\xB4\xB8\xBC\xBD\xBE\xFF</r>")).store.at(L"r"),
            L"\x20AC\xA5\x160\x161\x17D\x17E\x152\x153\x178\xFF");
  EXPECT_EQ(read(in("iso-8859-1", "<r>\x80\x9F\xA4\xFF</r>")).store.at(L"r"), L"\x80\x9F\xA4\xFF");
  EXPECT_EQ(read(in("windows-1252", "<r>\x82\x91\x99\x9F\xA4\xFF</r>")).store.at(L"r"),
            L"\x201A\x2018\x2122\x178\xA4\xFF");
  EXPECT_FALSE(read(std::u8string(u8"<?xml version='1.0' encoding='x'?><r>ñ</r>")).failed);
}

TEST(well_formed_xml, bytes_refused) {
  using namespace std::string_literals;
  const std::string declaration = "<?xml version='1.0' encoding='";
  struct {
    std::string bytes;
    unsigned code, position, line, column;
  } const rows[] = {
      // What is wrong as text is found in characters
      {"<r>\n\xC3\xB1\xE2\x82\xAC\xF0\x9F\x98\x80&</r>", 1, 15, 2, 5},
      {"\xFF\xFE<\0r\0>\0\n\0\x3D\xD8\0\xDE&\0<\0"s, 1, 17, 2, 3},
      {declaration + "latin1'?>\n<\xF1>\xF1\x01", 1, 45, 2, 5},
      {declaration + "utf-8'?>\n<r></s>", 2, 45, 2, 6},
      // Malformed
      {"\xEF\xBB\xBF<r>\xEF\xBF\xBD\xC3</r>", 1, 10, 1, 6},
      {"<r>\xC0\x80</r>", 1, 4, 1, 4},
      {"<r>\xED\xA0\x80</r>", 1, 4, 1, 4},
      {"<r>\xF4\x90\x80\x80</r>", 1, 4, 1, 4},
      {"<r x='\xE2\x82'/>", 1, 7, 1, 7},
      {"<r/>\xE2\x82", 1, 5, 1, 5},
      {"<\xFF", 1, 2, 1, 2},
      {"\xFE\xFF\0<\0r\0/\0>\0"s, 1, 11, 1, 6},
      {"\xFE\xFF\0<\0r\0>\xDC\0"s, 1, 9, 1, 5},
      {declaration + "us-ascii'?><r>\xF1</r>", 1, 45, 1, 45},
      {declaration + "windows-1252'?><r>\x81</r>", 1, 49, 1, 49},
      {"<\0r\0/\0>\0"s, 5, 1, 1, 1},
      {"", 1, 1, 1, 1},
      // Not understood
      {declaration + "ISO-8859-2'?><r/>", 5, 31, 1, 31},
      {"<?xml version='1.0'\nencoding='x'?><r/>", 5, 31, 2, 11},
      {"\0\0\xFE\xFF\0\0\0<"s, 5, 1, 1, 1},
      {"\xFF\xFE\0\0<\0\0\0"s, 5, 1, 1, 1},
      {"\0\0\0<"s, 5, 1, 1, 1},
      {"<\0\0\0"s, 5, 1, 1, 1},
      {"\x4C\x6F\xA7\x94", 5, 1, 1, 1},
      // Not what the bytes are
      {"\xEF\xBB\xBF" + declaration + "latin1'?><r/>", 5, 34, 1, 32},
      {declaration + "UTF-16'?><r/>", 5, 31, 1, 31},
      {"<\0?\0x\0m\0l\0 \0v\0e\0r\0s\0i\0o\0n\0=\0'\0"
       "1\0.\0"
       "0\0'\0?\0>\0<\0r\0/\0>\0"s,
       5, 1, 1, 1},
      {"\0<\0?\0x\0m\0l\0 \0?"s, 1, 13, 1, 7},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.bytes));
    const reading_outcome o = read(row.bytes);
    EXPECT_TRUE(o.failed);
    EXPECT_EQ(o.error.get_code(), row.code);
    EXPECT_EQ(failure_position(o.error), row.position);
    const auto place = ruvo::serializer::position_in_xml(row.bytes, row.position);
    EXPECT_EQ(place.line, row.line);
    EXPECT_EQ(place.column, row.column);
  }
}

TEST(well_formed_xml, names_keep_their_spelling) {
  const bundle out = read(std::wstring(L"<Order userId='1'><Line/><lineNo/><LINE/></Order>")).store;
  EXPECT_EQ(out.spelling(0), L"Order");
  EXPECT_EQ(qualities_of(out.at(L"order")), L"userId=1");
  std::wstring rows;
  for (const ruvo::xvar& row : out.get_list(L"order")) {
    bundle fields;
    fields = row;
    rows += fields.spelling(0) + L' ';
  }
  EXPECT_EQ(rows, L"Line lineNo LINE ");
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
