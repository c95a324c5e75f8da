// Generated documents, cut and mutated: reading at once and character by character must agree in everything.

#include <ruvo/ruvo.hpp>

#include <string>

#include <gtest/gtest.h>

#include "serializer/hostile.hpp"
#include "support/xml_outcome.hpp"

using ruvo::bundle;
using ruvo::list;
using ruvo::xvar;
using ruvo::serializer::xml;

namespace {

class generator : public dice {
 public:
  /// Attributes with characters that are escaped change whenever they are written.
  explicit generator(unsigned seed, bool stable = false) : dice(seed), stable_(stable) {}

  std::wstring document() {
    std::wstring out;
    if (below(3) > 0) out += L"<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
    for (unsigned n = below(2) + 1; n > 0; --n) element(out, 0);
    return out;
  }

  std::wstring mutated(const std::wstring& text) {
    static const std::wstring alphabet = L"<>/!?=\"'\\-[]& \t\n\r;abnAñ\xD83D" + std::wstring(1, L'\0');
    return damaged(*this, text, alphabet, L'>');
  }

  bundle values(int depth = 0) {
    bundle b;
    for (unsigned n = below(5); n > 0; --n) {
      xvar& v = b[name()];
      v = value(depth);
      for (unsigned q = below(3); q > 0; --q) v[name()] = attribute();
    }
    return b;
  }

 private:
  std::wstring name() {
    static const wchar_t* const names[] = {L"a", L"b", L"Ab", L"item", L"n:x", L"un_nombre_largo", L"ñ"};
    return any(names);
  }
  std::wstring text() {
    static const wchar_t* const pieces[] = {
        L"a", L" ", L"texto algo más largo", L"&lt;", L"&&amp;", L"&apos;", L"&amp;", L"\n", L"&qout;",
        L"&", L"=", L"\xD83D\xDE00"};
    std::wstring out;
    for (unsigned n = below(6); n > 0; --n) out += any(pieces);
    return out;
  }
  std::wstring attribute() { return stable_ ? name() : text(); }
  xvar value(int depth) {
    switch (below(depth < 4 ? 6 : 3)) {
      case 0:
        return static_cast<int>(below(1000));
      case 1:
      case 2:
        return L" <" + text() + L"> ";
      case 3: {
        list l;
        for (unsigned n = below(4); n > 0; --n) l.push_back(value(depth + 1));
        return l;
      }
      default:
        return values(depth + 1);
    }
  }
  void blank(std::wstring& out) {
    if (below(4) == 0) out += L" \n\t\r"[below(4)];
  }
  void element(std::wstring& out, int depth) {
    const std::wstring tag = name();
    out += L'<' + tag;
    for (unsigned n = below(3) ? 0 : below(4); n > 0; --n) {
      out += L' ';
      if (below(8) == 0) blank(out);
      out += name() + L"=\"" + attribute() + L'"';
    }
    if (below(8) == 0) {
      out += L"/>";
      return;
    }
    out += L'>';
    blank(out);
    if (depth == 6 || below(3) == 0) {
      out += text();
    } else {
      for (unsigned n = below(5); n > 0; --n) {
        element(out, depth + 1);
        blank(out);
        if (below(12) == 0) out += below(2) ? L"<!-- a - b -->" : L"<![CDATA[ <x> ]]>";
      }
    }
    out += L"</" + tag + L'>';
  }

  bool stable_;
};

using xml_hostile = hostile<xml_ways, generator>;

TEST_F(xml_hostile, both_ways_of_reading_agree) { documents_and_mutations(800); }

TEST_F(xml_hostile, every_prefix) { every_prefix(10); }

TEST_F(xml_hostile, soups_of_tokens) {
  std::vector<std::wstring> tokens = pieces(
      LR"(< > / </ <a <a> </a> <b> </b> /> = " x="" <r> </r> ! <!-- --> - <![CDATA[ ]]> [ ] <? ?> ? t text)"
      LR"( &lt; &&amp; \ ' <> </> <c/> <A> a)");
  for (const wchar_t* const other :
       {L" ", L"\n", L"\t", L"\v", L"\x1F", L" x=\"1\"", L"<a y=\"2\">", L"<c z=\"3\"/>"})
    tokens.push_back(other);
  tokens.push_back(std::wstring(1, L'\0'));
  soups(20000, {L"<a", L"<r><a>", L"<r><a>"}, tokens);
}

std::wstring rewritten(const bundle& in, bool ordered) {
  std::wstring out;
  EXPECT_FALSE(xml(ordered, false).serialize(out, in));
  return out;
}

std::wstring reread(const std::wstring& text, bool ordered) {
  bundle b;
  EXPECT_FALSE(xml(ordered, false).deserialize(b, text)) << testing::PrintToString(text);
  return rewritten(b, ordered);
}

/// Written once, a document stays the same however often it is read and written.
TEST_F(xml_hostile, writing_what_was_read_is_a_fixed_point) {
  generator g(4, true);
  for (unsigned i = 0; i < 1000 * rounds() && !HasFailure(); ++i) {
    for (const bool ordered : {true, false}) {
      ++inputs;
      bundle document;
      xml(ordered, false).deserialize(document, g.document(), nullptr);
      for (const bundle& in : {document, g.values()}) {
        const std::wstring once = reread(rewritten(in, ordered), ordered), twice = reread(once, ordered);
        EXPECT_EQ(reread(twice, ordered), twice) << testing::PrintToString(once);
      }
    }
  }
}

TEST_F(xml_hostile, large_things) {
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

}  // namespace
