// SPDX-License-Identifier: BSL-1.0

// Generated trees, written in every way that XML has, and cut.

#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/dice.hpp"
#include "support/rounds.hpp"
#include "support/well_formed_promises.hpp"
#include "support/wide_bytes.hpp"
#include "support/xml_outcome.hpp"

using ruvo::bundle;
using ruvo::list;
using ruvo::xvar;
using ruvo::serializer::read_well_formed_xml;
using ruvo::serializer::write_well_formed_xml;

namespace {

struct node {
  std::wstring name, text;
  std::vector<std::pair<std::wstring, std::wstring>> attributes;
  std::vector<node> children;
};

xvar value_by_model(const node& n);

/// A bundle, or from the first repetition on a list of what was there, by key, and all that follows.
xvar children_of(const std::vector<node>& children) {
  bundle members;
  std::size_t n = 0;
  for (; n < children.size() && members.count(children[n].name) == 0; ++n)
    members[children[n].name] = value_by_model(children[n]);
  if (n == children.size()) return members;
  list items;
  for (const auto& [key, value] : members) {
    bundle item;
    item[key] = value;
    items.push_back(item);
  }
  for (; n < children.size(); ++n) {
    bundle item;
    item[children[n].name] = value_by_model(children[n]);
    items.push_back(item);
  }
  return items;
}

xvar value_by_model(const node& n) {
  xvar value = n.children.empty() ? xvar(n.text) : children_of(n.children);
  for (const auto& [name, text] : n.attributes) value[name] = text;
  return value;
}

std::wstring expected(const node& root) {
  bundle document;
  document[root.name] = value_by_model(root);
  return xml_outcome::text_of(document);
}

/// Makes trees. A text is a row of characters, each of them one or two units.
class tree_source : public dice {
 public:
  using dice::dice;

  node element(int depth = 0) {
    node n;
    n.name = name();
    for (unsigned count = one_in(2) ? below(4) : 0; count > 0; --count) {
      const std::wstring its_name = name();
      if (std::none_of(n.attributes.begin(), n.attributes.end(),
                       [&](const auto& other) { return other.first == its_name; }))
        n.attributes.emplace_back(its_name, text());
    }
    if (depth < 5 && !one_in(3))
      for (unsigned count = below(5); count > 0; --count) n.children.push_back(element(depth + 1));
    if (n.children.empty()) n.text = text();
    return n;
  }

 private:
  std::wstring name() {
    static const wchar_t* const names[] = {L"a", L"A",  L"b",           L"ab", L"n:x", L"un-nombre.largo",
                                           L"ñ", L"_1", L"\xD83D\xDE00"};
    return any(names);
  }
  std::wstring text() {
    static const std::vector<std::wstring>
        blanks = {L" ", L"\n", L"\r", L"\t", L"texto algo más largo"},
        parts = pieces(L"a < > & ' \" ] ]]> &lt; -- ?> \xFFFD \xD83D\xDE00 \xDBFF\xDFFD");
    std::wstring out;
    for (unsigned count = below(7); count > 0; --count) out += any(one_in(4) ? blanks : parts);
    return out;
  }
};

/// Writes a tree in one of the ways in which XML can say it.
class xml_source : public dice {
 public:
  explicit xml_source(unsigned seed, bool has_entities = false) : dice(seed), has_entities_(has_entities) {}

  std::wstring document(const node& root) {
    static const wchar_t* const declarations[] = {L"", L"\xFEFF", L"<?xml version='1.0'?>",
                                                  L"<?xml\tversion = \"1.0\" encoding='UTF-16'\n?>"};
    static const wchar_t* const types[] = {
        L"",
        L"<!DOCTYPE r>",
        L"<!DOCTYPE r SYSTEM \"'\" [ <!ENTITY a '>\"]'><!-- ]>' --> ] >",
        L"<!DOCTYPE r[<!ELEMENT r ((a, b?)+|c)*>%p;<!ENTITY % e '&a;&#65;'>]>",
        L"<!DOCTYPE r PUBLIC '-//x' ''[<!ATTLIST r a (x|1) '&lt;'><!ELEMENT a (#PCDATA|b)*>]>",
        L"<!DOCTYPE r[<!ATTLIST r b NOTATION (n) #IMPLIED>]>",
        L"<!DOCTYPE r[<!NOTATION n PUBLIC 'n' ><!ENTITY e SYSTEM '' NDATA n>]>"};
    static const wchar_t* const line_ends[] = {L"\n", L"\r", L"\r\n"};
    line_end_ = any(line_ends);
    entities_.clear();
    out_.clear();
    around();
    element(root);
    const std::wstring its_element = std::exchange(out_, any(declarations));
    around();
    out_ += has_entities_ ? L"<!DOCTYPE r [" + entities_ + L"]>" : any(types);
    out_ += its_element;
    root_end_ = out_.size();
    around();
    return out_;
  }
  /// Where the root element of the last document ends.
  std::size_t root_end() const { return root_end_; }

 private:
  static bool is_blank(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\n' || c == L'\r'; }

  void blanks(unsigned least) {
    static const wchar_t* const kinds[] = {L" ", L"\t", L"\n", L"\r", L"\r\n"};
    for (unsigned count = one_in(4) ? least + below(3) : least; count > 0; --count) out_ += any(kinds);
  }
  /// What may stand anywhere between tags and means nothing.
  void section() {
    static const wchar_t* const sections[] = {L"<!-- </a> - ]]> & ' -->", L"<!---->", L"<?p <a> & ?>",
                                              L"<?p?>"};
    if (one_in(6)) out_ += any(sections);
  }
  void around() {
    blanks(0);
    section();
    blanks(0);
  }

  /// What was written from a place on becomes the text of an entity, now and then.
  void replace_from(std::size_t place) {
    if (!has_entities_ || !one_in(4)) return;
    const std::wstring its_name = L"e" + std::to_wstring(entities_.size());
    std::wstring text;
    for (const wchar_t c : std::wstring_view(out_).substr(place)) {
      const bool as_it_is = c != L'&' && c != L'%' && c != L'"';
      text += as_it_is ? std::wstring(1, c) : c == L'&' ? L"&#38;" : c == L'%' ? L"&#37;" : L"&#34;";
    }
    entities_ += L"<!ENTITY " + its_name + L" \"" + text + L"\">";
    out_.replace(place, out_.npos, L"&" + its_name + L";");
  }

  void element(const node& n) {
    out_ += L'<' + n.name;
    for (const auto& [name, value] : n.attributes) attribute(name, value);
    blanks(0);
    if (n.children.empty() && n.text.empty() && one_in(2)) {
      out_ += L"/>";
      return;
    }
    out_ += L'>';
    around();
    const std::size_t place = out_.size();
    if (n.children.empty()) text(n.text);
    replace_from(place);
    for (const node& child : n.children) {
      if (one_in(8)) text(L"lost");
      const std::size_t before = out_.size();
      element(child);
      replace_from(before);
      around();
    }
    out_ += L"</" + n.name;
    blanks(0);
    out_ += L'>';
  }

  void attribute(const std::wstring& name, const std::wstring& value) {
    blanks(1);
    out_ += name;
    blanks(0);
    out_ += L'=';
    blanks(0);
    const wchar_t quote = one_in(2) ? L'"' : L'\'';
    out_ += quote;
    for (std::size_t n = 0; n < value.size();) {
      const std::wstring one = character_at(value, n);
      const bool literal =
          one[0] != quote && one[0] != L'<' && one[0] != L'&' && (one == L" " || !is_blank(one[0]));
      if (literal && !one_in(8)) {
        out_ += one;
      } else {
        out_ += reference(one);
      }
      n += one.size();
    }
    out_ += quote;
  }

  void text(const std::wstring& value) {
    std::size_t first = 0, last = value.size();
    while (first < last && is_blank(value[first])) ++first;
    while (last > first && is_blank(value[last - 1])) --last;
    for (std::size_t n = 0; n < value.size();) {
      const std::wstring one = character_at(value, n);
      text_character(one, n >= first && n < last);
      if (n >= first && n + one.size() < last) section();
      n += one.size();
    }
  }
  void text_character(const std::wstring& one, bool literal) {
    const wchar_t c = one[0];
    literal = literal && c != L'<' && c != L'&' && c != L'\r' && !(c == L'>' && out_.ends_with(L"]]"));
    if (literal && !one_in(8)) {
      out_ += c == L'\n' ? line_end_ : one;
    } else if (c != L'\r' && one_in(2)) {
      out_ += L"<![CDATA[" + (c == L'\n' ? line_end_ : one) + L"]]>";
    } else {
      out_ += reference(one);
    }
  }

  static std::wstring character_at(const std::wstring& text, std::size_t n) {
    const auto unit = static_cast<char16_t>(text[n]);
    return text.substr(n, unit >= 0xD800 && unit < 0xDC00 ? 2 : 1);
  }
  std::wstring reference(const std::wstring& one) {
    static const std::wstring signs = L"<>&'\"";
    static const wchar_t* const names[] = {L"&lt;", L"&gt;", L"&amp;", L"&apos;", L"&quot;"};
    const std::size_t sign = signs.find(one[0]);
    if (sign != signs.npos && one_in(2)) return names[sign];
    unsigned long code = static_cast<char16_t>(one[0]);
    if (one.size() == 2) code = 0x10000 + (code - 0xD800) * 0x400 + static_cast<char16_t>(one[1]) - 0xDC00;
    std::wostringstream out;
    if (one_in(2)) {
      out << L"&#" << std::wstring(below(3), L'0') << code << L';';
    } else {
      out << L"&#x" << std::hex << (one_in(2) ? std::uppercase : std::nouppercase) << code << L';';
    }
    return out.str();
  }

  bool has_entities_;
  std::wstring out_, line_end_, entities_;
  std::size_t root_end_ = 0;
};

/// What was read is written so that it is read again, to the letters of its names.
void expect_written(const bundle& document, int way, const std::wstring& wanted) {
  ruvo::serializer::xml_write_options options;
  options.namespaces = false;
  options.indent = way % 2 - 1;
  options.cdata = way > 1;
  std::string bytes;
  bundle again;
  ASSERT_FALSE(write_well_formed_xml(bytes, document, nullptr, options));
  ASSERT_FALSE(read_well_formed_xml(again, ruvo::texto::to_utf_16(bytes))) << bytes;
  ASSERT_EQ(xml_outcome::text_of(again), wanted) << bytes;
  ASSERT_EQ(again.spelling(0), document.spelling(0));
}

class well_formed_xml_generated : public generated_inputs {};

TEST_F(well_formed_xml_generated, however_it_is_written_the_tree_is_read) {
  tree_source trees(20261124);
  xml_source plain(20261125), declaring(20261126, true);
  ruvo::serializer::xml_read_options options;
  options.entities = true;
  for (unsigned round = 0; round < 400 * rounds() && !HasFailure(); ++round) {
    const node root = trees.element();
    const std::wstring wanted = expected(root);
    for (int way = 0; way < 4; ++way) {
      ++inputs;
      const std::wstring text = (way % 2 ? declaring : plain).document(root);
      const std::string utf_8 = ruvo::texto::to_utf_8(text);
      bundle out;
      ruvo::exception error;
      ASSERT_FALSE(read_well_formed_xml(out, text, &error, options))
          << testing::PrintToString(error.get_mensaje()) << testing::PrintToString(text);
      ASSERT_EQ(xml_outcome::text_of(out), wanted) << testing::PrintToString(text);
      expect_written(out, way, wanted);
      ASSERT_FALSE(read_well_formed_xml(out, std::u8string(utf_8.begin(), utf_8.end()), nullptr, options));
      ASSERT_EQ(xml_outcome::text_of(out), wanted) << testing::PrintToString(text);
      if (text.find(L"UTF-8") != text.npos) continue;
      const std::wstring marked = (text[0] == 0xFEFF ? L"" : L"\xFEFF") + text;
      ASSERT_FALSE(read_well_formed_xml(out, wide_bytes(marked, way < 2), nullptr, options));
      ASSERT_EQ(xml_outcome::text_of(out), wanted) << testing::PrintToString(text);
    }
  }
}

TEST_F(well_formed_xml_generated, no_part_of_a_document_is_one) {
  tree_source trees(20261127);
  xml_source writer(20261128);
  for (unsigned round = 0; round < 15 * rounds() && !HasFailure(); ++round) {
    const std::wstring text = writer.document(trees.element());
    for (std::size_t size = 0; size < writer.root_end(); ++size) {
      ++inputs;
      const bool in_pair = size > 0 && static_cast<char16_t>(text[size - 1]) - 0xD800U < 0x400;
      ASSERT_EQ(well_formed_promises::refused_at(text.substr(0, size)), in_pair ? size : size + 1)
          << testing::PrintToString(text.substr(0, size));
    }
  }
}

}  // namespace
