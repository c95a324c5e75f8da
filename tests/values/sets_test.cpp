// SPDX-License-Identifier: BSL-1.0

// Sets of values and of texts, and notes.

#include <ruvo/fake_context.hpp>
#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <deque>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/rounds.hpp"

namespace {

using ruvo::annotation;
using ruvo::bundle;
using ruvo::cap_set;
using ruvo::datetime;
using ruvo::list;
using ruvo::smart_string_set;
using ruvo::xvar;
namespace serializer = ruvo::serializer;

using shown = std::vector<std::wstring>;  // the elements, as a list shows them

template <class Set>
shown elements(const Set& of) {
  shown out;
  for (const auto& each : of) out.push_back(list{each}.to_string());
  return out;
}

const std::vector<xvar> values = {5,
                                  5LL,
                                  10u,
                                  L"5",
                                  L"10",
                                  -7,
                                  2.5,
                                  2.5000001,
                                  true,
                                  1,
                                  18446744073709551615ULL,
                                  xvar(),
                                  L"",
                                  L"un texto que no cabe",
                                  L"UN texto que no cabe",
                                  ruvo::memo(L"un texto que no cabe"),
                                  L'x',
                                  ruvo::date(2024, 2, 29, ruvo::times::GMT),
                                  list{1, L"a"},
                                  bundle{{L"k", 1}},
                                  L"ñ",
                                  L"Ñ"};

class sets : public generated_inputs {};

TEST_F(sets, agree_with_a_plain_set) {
  dice chance(3);
  ruvo::set tried;
  std::map<std::pair<std::wstring, bool>, std::wstring> model;  // text, whether it is one; as it is shown
  for (; inputs < 20000ULL * rounds(); ++inputs) {
    const xvar& value = chance.any(values);
    const std::pair key(value.to_string(), value.instanceof (typeid(std::wstring)));
    ASSERT_EQ(tried.contains(value), model.count(key) > 0);
    if (chance.one_in(2)) {
      const auto [where, is_new] = chance.one_in(2) ? tried.insert(value) : tried.insert(xvar(value));
      ASSERT_EQ(is_new, model.emplace(key, list{value}.to_string()).second);
      ASSERT_TRUE(where == tried.find(value));
    } else {
      ASSERT_EQ(tried.erase(value), model.erase(key));
    }
    if (!chance.one_in(20)) continue;
    shown wanted;
    for (const auto& [each, text] : model) wanted.push_back(text);
    ASSERT_EQ(elements(tried), wanted);
    const list as_list(tried);
    ASSERT_TRUE(ruvo::set(as_list) == tried && ruvo::set(xvar(tried)) == tried);
    ASSERT_EQ(tried.to_string(), as_list.to_string());
  }
}

TEST_F(sets, of_the_newest_agree_with_a_plain_queue) {
  dice chance(4);
  for (const auto kind : {cap_set::letters::exact, cap_set::letters::any_case}) {
    cap_set tried(6, kind);
    std::deque<xvar> model;
    for (int n = 0; n < 10000; ++n, ++inputs) {
      const xvar& value = chance.any(values);
      const auto is_same = [&, any_case = kind == cap_set::letters::any_case](const xvar& other) {
        const auto text = [any_case](const xvar& v) {
          const std::wstring as_shown = list{v}.to_string();
          return any_case ? ruvo::texto::to_lowercase_(as_shown) : as_shown;
        };
        return text(value) == text(other);
      };
      const auto found = std::find_if(model.begin(), model.end(), is_same);
      const bool was_there = found != model.end();
      ASSERT_EQ(tried.contains(value), was_there);
      if (was_there) model.erase(found);
      if (chance.one_in(5)) {
        ASSERT_EQ(tried.erase(value), was_there);
      } else {
        ASSERT_EQ(tried.insert(value), !was_there);
        model.push_front(value);
        if (model.size() > tried.capacity()) model.pop_back();
      }
      if (chance.one_in(100)) tried.set_capacity(chance.below(10));
      if (model.size() > tried.capacity()) model.resize(tried.capacity());
      if (chance.one_in(50)) tried = cap_set(tried);  // whose places are its own
      ASSERT_EQ(elements(tried), elements(model));
    }
    cap_set same(tried.capacity(), kind);
    same = xvar(tried);
    EXPECT_TRUE(same == tried && !(same < tried));
  }
}

/// Without case and accents, ñ behind all that begins with n.
std::wstring plain(std::wstring text) {
  std::wstring out;
  for (const wchar_t c : ruvo::texto::to_lowercase(text)) {
    if (c == L'\u00F1') {
      out += L"n\x7F";
    } else if (c != L'\u0301') {
      out += ruvo::texto::limpia_puntuacion(c, 0);
    }
  }
  return out;
}

TEST_F(sets, of_texts_agree_with_plain_letters) {
  dice chance(6);
  smart_string_set tried;
  std::map<std::wstring, std::wstring> model;
  for (; inputs < 20000ULL * rounds(); ++inputs) {
    std::wstring text;
    for (unsigned n = chance.below(4); n > 0; --n) {
      text += chance.unit(L"nN\u00F1\u00D1aA\u00E1\u00C4oz1");
      if (chance.one_in(8)) text += L'\u0301';
    }
    ASSERT_EQ(tried.contains(text), model.count(plain(text)) > 0);
    if (chance.one_in(2)) {
      ASSERT_EQ(tried.insert(text).second, model.emplace(plain(text), text).second);
    } else {
      ASSERT_EQ(tried.erase(text), model.erase(plain(text)));
    }
    if (!chance.one_in(20)) continue;
    shown wanted;
    for (const auto& [each, first] : model) wanted.push_back(list{first}.to_string());
    ASSERT_EQ(elements(tried), wanted);
    ASSERT_TRUE(smart_string_set(list(tried)) == tried);
  }
}

TEST(smart_string_set, letters) {
  const struct {
    const wchar_t *a, *b;
    bool same;
  } rows[] = {{L"Jos\u00E9", L"JOSE\u0301", true},
              {L"a\u00F1o", L"ano", false},
              {L"A\u00D1O", L"an\u0303o", true},
              {L"ping\u00FCino", L"PINGUINO", true},
              {L"\u00E7", L"C", true},
              {L"n\u0301", L"N", true},
              {L"\u0141", L"l", false},
              {L"", L"\u0301", false},
              {L"a b", L"ab", false}};
  for (const auto& row : rows) {
    smart_string_set one{row.a};
    EXPECT_EQ(one.contains(row.b), row.same) << testing::PrintToString(row.a);
    EXPECT_EQ(one == smart_string_set{row.b}, row.same);
    one.insert(row.b);
    EXPECT_EQ(one.size(), row.same ? 1U : 2U);
  }
  smart_string_set all;
  all = list{L"zeta", 7, L"\u00F1u", L"nz", L"oca", xvar()};
  EXPECT_EQ(all.to_string(), L"[\"\",\"7\",\"nz\",\"\u00F1u\",\"oca\",\"zeta\"]");
}

TEST(set, operations_and_explanations) {
  xvar qualified = 5;
  qualified[L"unit"] = L"m";
  ruvo::set a{qualified, L"x", L"y"}, b{5LL, L"y", L"z"}, all = a, both = a, less = a;
  EXPECT_EQ(elements(all |= b).size() + elements(both &= b).size(), 6U);
  EXPECT_EQ((less -= b).to_string(), L"[\"x\"]");
  EXPECT_EQ(all.find(5)->at(L"unit"), L"m");
  EXPECT_TRUE(!(a == b) && !(a < a) && (b < a) != (a < b));
  EXPECT_TRUE((a |= a).size() == 3 && (a &= a).size() == 3 && (a -= a).empty());
  b.erase(b.insert(L"a").first);
  b.insert(*b.begin());
  b.erase(*b.begin());
  EXPECT_EQ(b.to_string(), L"[\"y\",\"z\"]");
  cap_set own(2);
  own.insert(1);
  own.insert(2);
  own.insert(*std::next(own.begin()));
  EXPECT_EQ(own.to_string() + own.explain(2), L"[1,2]Está en el lugar 2 de 2.");
  own.erase(*own.begin());
  own.insert(own);
  EXPECT_EQ(own.to_string(), L"[[2],2]");
  ruvo::fake_context fake;
  const ruvo::thread_scope scope(fake);
  cap_set moments, rows;
  for (const long long day : {45, 30, 45}) {
    const datetime local(day * 86400 + 84600, ruvo::times::LOCAL);
    moments.insert(local);
    rows.insert(list{local});
  }
  fake.zone_offset = 3600;  // the 31st of January is now the first of February, before the 16th
  for (const long long day : {45, 30}) EXPECT_TRUE(moments.contains(datetime(day * 86400 + 84600)));
  rows.set_capacity(1);
  EXPECT_EQ(rows.to_string(), L"[[16-02-1970 00:30:00]]");
  EXPECT_EQ(all.explain(5U), L"Está como un número entero.");
  EXPECT_EQ(all.explain(L"5"), L"No está como un texto; sí como un número entero.");
  EXPECT_EQ(ruvo::set{L"5"}.explain(5), L"No está como un número entero; sí como un texto.");
  EXPECT_EQ(all.explain(6), L"No está.");
  std::wostringstream out;
  out << all << cap_set() << smart_string_set{L"a"};
  EXPECT_EQ(out.str(), all.to_string() + L"[][\"a\"]");
}

/// Writes a bundle and reads it in each of the formats.
std::vector<bundle> there_and_back(const bundle& value) {
  std::vector<bundle> out(4);
  std::wstring json, dialect, xml, well_formed;
  EXPECT_FALSE(serializer::write_standard_json(json, value) || serializer::read_standard_json(out[0], json));
  EXPECT_FALSE(serializer::json(true, false, true).serialize(dialect, value) ||
               serializer::json().deserialize(out[1], dialect));
  EXPECT_FALSE(serializer::xml(true, false).serialize(xml, value) ||
               serializer::xml(true, false).deserialize(out[2], xml));
  std::string bytes;
  EXPECT_FALSE(serializer::write_well_formed_xml(bytes, bundle{{L"r", value}}));
  bundle root;
  EXPECT_FALSE(serializer::read_well_formed_xml(root, bytes));
  out[3] = root[L"r"];
  return out;
}

TEST(set, goes_through_all_formats) {
  const std::vector<ruvo::set> all = {
      {}, {L"uno"}, {L"uno", L"dos tres"}, {bundle{{L"k", L"v"}}}, {bundle{{L"item", L"v"}}}};
  for (const ruvo::set& each : all) {
    cap_set newest(5);
    for (const xvar& value : each) newest.insert(value);
    smart_string_set texts;
    texts = xvar(each);
    const bundle stored{{L"set", each}, {L"newest", newest}, {L"texts", texts}, {L"other", 1}};
    for (bundle& read : there_and_back(stored)) {
      cap_set newest_read(5);
      newest_read = read[L"newest"];
      EXPECT_TRUE(ruvo::set(read[L"set"]) == each) << testing::PrintToString(read.to_string());
      EXPECT_TRUE(newest_read == newest && smart_string_set(read[L"texts"]) == texts);
    }
  }
}

// --- notes

struct thing : ruvo::annotable {};

TEST(annotation, goes_through_all_formats) {
  thing noted;
  const datetime local(1795340000LL, ruvo::times::LOCAL);
  for (int n = 0; n < 3; ++n) {
    bundle stored{{L"annotations", L"old"}};
    noted.write_annotations(stored);
    EXPECT_EQ(stored.count(L"annotations"), n > 0 ? 1U : 0U);
    for (bundle& read : there_and_back({{L"x", stored}, {L"other", 1}})) {
      bundle inner;
      inner = read[L"x"];
      thing again;
      again.annotate(L"old", L"note");
      again.read_annotations(inner);
      EXPECT_TRUE(again.get_annotations() == noted.get_annotations())
          << testing::PrintToString(read.to_string());
    }
    noted.annotate(annotation(L"ana", L"una nota\ncon \"comillas\" <y más>", local))[L"Clase"] = L"aviso";
    noted.annotate(noted.get_annotations().front()).set_author(L"eva").set_date(datetime(-1LL));
  }
  EXPECT_EQ(noted.remove_annotations_if([](const annotation& each) { return each.get_author() == L"ana"; }),
            3U);
  EXPECT_TRUE(noted.is_annotated() && noted.get_annotations().size() == 3);
  noted.clear_annotations();
  EXPECT_FALSE(noted.is_annotated());
}

TEST(annotation, dates_that_are_read) {
  constexpr long long noon = 1764072000;  // 2025-11-25 12:00:00 UTC
  const struct {
    xvar date;
    long long seconds;
  } rows[] = {{datetime(noon, ruvo::times::LOCAL), noon},
              {noon, noon},
              {static_cast<double>(noon), noon},
              {L"1764072000", noon},
              {L"2025-11-25T12:00:00Z", noon},
              {L"2025-11-25T13:00:00+01:00", noon},
              {L"2025-11-25T12:00:00", noon},
              {L"25-11-2025 12:00:00", noon},
              {L"2025-11-25", noon - 43200},
              {L"", -1},
              {xvar(), 7}};
  for (const auto& row : rows) {
    annotation read(L"a", L"t", datetime(7LL));
    read = bundle{{L"date", row.date}};
    EXPECT_EQ(read.get_date().get_lapso(), row.seconds) << testing::PrintToString(row.date.to_string());
  }
  const annotation before(L"a", L"t", datetime(7LL));
  for (const xvar& wrong :
       {xvar(L"ayer"), xvar(true), xvar(list{1}), xvar(L"2025-13-01"), xvar(std::wstring(400, L'9'))}) {
    annotation read = before;
    EXPECT_THROW((read = bundle{{L"author", L"b"}, {L"date", wrong}}), ruvo::exc::BadArgument);
    EXPECT_TRUE(read == before);
  }
  thing noted;
  noted.annotate(before);
  EXPECT_THROW(noted.read_annotations({{L"annotations", list{bundle(before), 5}}}), ruvo::exc::BadArgument);
  EXPECT_EQ(noted.get_annotations().size(), 1U);
  EXPECT_EQ(before.to_string(), L"01-01-1970 00:00:07 a: t");
  EXPECT_EQ(annotation().to_string() + annotation(bundle{{L"text", L"solo"}}).to_string(), L"solo");
  EXPECT_TRUE(before < annotation(L"a", L"u", datetime(7LL)) && before < annotation(L"a", L"t"));
}

}  // namespace
