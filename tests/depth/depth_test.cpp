// SPDX-License-Identifier: BSL-1.0

// 100,000 levels on a stack of 1 MiB: whatever walks over nested values must not recurse.

#include <ruvo/ruvo.hpp>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

using ruvo::bundle;
using ruvo::list;
using ruvo::xvar;
using ruvo::serializer::json;
using ruvo::serializer::xml;

namespace {

constexpr int levels = 100000;

std::wstring repeated(const wchar_t* piece, int count) {
  std::wstring out;
  for (int i = 0; i < count; ++i) out += piece;
  return out;
}

struct shape {
  const char* name;
  std::wstring text;
};

class nesting : public testing::TestWithParam<int> {
 protected:
  static shape of(int which) {
    switch (which) {
      case 0:
        return {"arrays", repeated(L"[", levels) + repeated(L"]", levels)};
      case 1:
        return {"objects", repeated(L"{\"k\":", levels) + L"1" + repeated(L"}", levels)};
      default:
        return {"both", repeated(L"{\"k\":[1,", levels / 2) + L"2" + repeated(L"]}", levels / 2)};
    }
  }
};

TEST_P(nesting, costs_no_stack) {
  const shape s = of(GetParam());
  SCOPED_TRACE(s.name);
  bundle b;
  ASSERT_FALSE(json().deserialize(b, s.text));
  bundle copy(b);
  EXPECT_TRUE(copy == b);
  EXPECT_FALSE(copy < b);
  for (const bool ordered : {true, false}) {
    std::wstring text;
    ASSERT_FALSE(json(ordered, false, true).serialize(text, b));
    EXPECT_TRUE(text == s.text);
  }
  std::string standard;
  ASSERT_FALSE(ruvo::serializer::write_standard_json(standard, b));
  EXPECT_GE(standard.size(), s.text.size());
  const xvar held = copy;
  xvar other;
  other = held;
  EXPECT_TRUE(other == held);
  const list moved{held, held};
  EXPECT_EQ(moved.to_string().size(), 2 * held.to_string().size() + 3);
  copy = bundle();
}

INSTANTIATE_TEST_SUITE_P(shapes, nesting, testing::Range(0, 3));

TEST(nesting_of_elements, costs_no_stack) {
  for (const int attributed : {0, 1}) {
    const std::wstring text =
        repeated(attributed ? L"<k a=\"1\">" : L"<k>", levels) + L"t" + repeated(L"</k>", levels);
    const std::wstring declaration = L"<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
    bundle at_once, by_character;
    ASSERT_FALSE(xml(true, false).deserialize(at_once, text));
    ruvo::serializer::xml_reader reader;
    ruvo::exception error;
    reader.set_store(by_character);
    for (const wchar_t c : text) reader.next_character(c, error);
    EXPECT_TRUE(at_once == by_character);
    for (const bool ordered : {true, false}) {
      std::wstring out;
      ASSERT_FALSE(xml(ordered, false).serialize(out, by_character));
      EXPECT_TRUE(out == declaration + text);
    }
    std::string bytes;
    ASSERT_FALSE(ruvo::serializer::write_well_formed_xml(bytes, at_once));
    EXPECT_TRUE(ruvo::texto::to_utf_16(bytes) == declaration + text);
    list nested;
    for (int i = 0; i < levels; ++i) {
      list outer;
      outer.push_back(std::move(nested));
      nested = std::move(outer);
    }
    std::wstring out;
    ASSERT_FALSE(xml(true, false).serialize(out, {{L"k", std::move(nested)}}));
    EXPECT_EQ(out.size(), declaration.size() + 7 + std::size_t{levels} * 13);
    list wrong;
    wrong.push_back(L'\1');
    for (int i = 0; i < levels; ++i) wrong.push_back(std::exchange(wrong, list()));
    ASSERT_TRUE(ruvo::serializer::write_well_formed_xml(bytes, {{L"k", std::move(wrong)}}, &error));
    EXPECT_TRUE(error.get_mensaje().ends_with(L"[0][0][0]"));
    EXPECT_LT(error.get_mensaje().size(), 400U);
  }
}

TEST(nested_xml, well_formed_with_all_options) {
  constexpr auto none = static_cast<std::size_t>(-1);
  ruvo::serializer::xml_read_options all;
  all.limits = {none, none, none, none, none, none};
  all.mixed_text = all.entities = all.declared_attributes = true;
  std::string bytes = "<!DOCTYPE k [<!ATTLIST k a CDATA '1'><!ENTITY e0 't'>";
  for (int n = 1; n < levels; ++n)
    bytes += "<!ENTITY e" + std::to_string(n) + " '&e" + std::to_string(n - 1) + ";'>";
  bytes += "]>";
  for (int n = 0; n < levels; ++n) bytes += "<k>x ";
  bytes += "&e" + std::to_string(levels - 1) + ";";
  for (int n = 0; n < levels; ++n) bytes += "</k>";
  bundle out;
  ASSERT_FALSE(ruvo::serializer::read_well_formed_xml(out, bytes, nullptr, all));
  const std::wstring text = out.to_string();
  EXPECT_NE(text.find(L"{\"k\":\"x t\"}"), text.npos);
}

/// A million levels when the limit allows them; four million brackets cost nothing when it does not.
TEST(nesting_of_standard_json, costs_no_stack) {
  using namespace ruvo::serializer;
  constexpr int most = 1000000;
  json_read_options options;
  options.limits.depth = most;
  std::string lists(most, '['), objects;
  lists.append(most, ']');
  for (int n = 0; n < most; ++n) objects += "{\"a\":";
  objects += "1" + std::string(most, '}');
  for (const std::string& text : {lists, objects}) {
    xvar out;
    ASSERT_FALSE(read_standard_json(out, text, nullptr, options));
    json_values values(options);
    ASSERT_FALSE(values.feed(text));
    ASSERT_TRUE(values.next(out));
  }
  xvar out;
  ruvo::exception failure;
  EXPECT_TRUE(read_standard_json(out, std::string(4 << 20, '['), &failure));
  EXPECT_EQ(failure_position(failure), 513u);
}

/// Merged with and without a filter, in layers, as an element of a set.
TEST(nested_settings, cost_no_stack) {
  std::wstring path = repeated(L"k.", levels - 1) + L"k";
  bundle deep, empty, changed;
  deep.putOn(path, 1);
  changed.putOn(path, 2);
  ruvo::bundles::keep_existing keep;
  ruvo::bundles::only_keys only({L"none", L"K.k"});
  ruvo::bundles::merge(empty, deep, &only);
  EXPECT_TRUE(empty == deep);
  ruvo::bundles::merge(empty, changed, &keep);
  EXPECT_EQ(empty.get_long(path), 1);
  ruvo::bundles::merge(empty, changed);
  EXPECT_EQ(empty.get_long(path), 2);

  ruvo::layered_settings settings;
  std::vector<std::size_t> seen;
  settings.observe([&seen](const std::wstring& where) { seen.push_back(where.size()); });
  settings.set_layer(L"below", deep);
  settings.set_layer(L"above", changed);
  settings.put(L"above", path, 3);
  EXPECT_EQ(settings.layer_of(path), L"above");
  EXPECT_TRUE(settings.explain(path).starts_with(L"Lo da la capa «above». Queda oculto lo de «below»."));
  EXPECT_TRUE(settings.erase(L"above", path));
  EXPECT_EQ(settings->get_long(path), 1);
  EXPECT_TRUE(settings.remove_layer(L"below"));
  EXPECT_EQ(seen, (std::vector<std::size_t>{129, 129, path.size(), path.size(), 129}));

  ruvo::set all{deep, changed};
  EXPECT_TRUE(all.contains(empty) && !all.contains(*settings));
}

TEST(nesting_by_hand, through_qualities) {
  list outer;
  for (int i = 0; i < levels; ++i) {
    xvar v = 1;
    v[L"q"] = static_cast<ruvo::var>(xvar(std::move(outer)));
    outer = list();
    outer.push_back(std::move(v));
  }
  const list copy(outer);
  EXPECT_TRUE(copy == outer);
}

}  // namespace
