// SPDX-License-Identifier: BSL-1.0

// Handles of bundles, merged bundles, and layers of settings.

#include <ruvo/ruvo.hpp>

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/rounds.hpp"

namespace {

using ruvo::bundle;
using ruvo::layered_settings;
using ruvo::list;
using ruvo::smart_bundle;
using ruvo::xvar;
namespace bundles = ruvo::bundles;

/// With the order and the spelling of the keys, and with qualities.
std::wstring whole_text(const bundle& value) {
  std::wstring names, qualities;
  static_cast<void>(ruvo::serializer::write_standard_json(names, value));
  ruvo::serializer::xml(true, false).serialize(qualities, value);
  return names + qualities;
}

// --- handles

TEST(smart_bundle, is_used_as_the_bundle) {
  bundle theirs{{L"a", 1}};
  smart_bundle refers(&theirs), holds(bundle{{L"b", 2}}), copy = holds, own = holds.clone();
  refers[L"c"] = 3;
  copy["d"] = 4;
  EXPECT_EQ(theirs.to_string(), L"{\"a\":1, \"c\":3}");
  EXPECT_EQ(holds.to_string(), L"{\"b\":2, \"d\":4}");
  EXPECT_EQ(own.to_string(), L"{\"b\":2}");
  EXPECT_TRUE(copy == holds && !(own == holds) && refers == smart_bundle(theirs) && refers == theirs);

  const smart_bundle fixed = refers;
  static_assert(std::is_same_v<decltype(*fixed), const bundle&>);
  EXPECT_THROW((void)fixed[L"x"], std::out_of_range);
  EXPECT_EQ(fixed[0]->first, L"a");
  std::wstring keys;
  for (const auto& [key, value] : fixed) keys += key;
  for (auto& [key, value] : refers) value = key;
  EXPECT_EQ(keys, L"ac");

  bundle assigned, made = refers, direct(fixed);
  assigned = refers;
  xvar value(fixed), other;
  other = refers;
  assigned[L"n"] = fixed;
  const auto size = [](const bundle& of) { return of.size(); };
  EXPECT_EQ(made.get_string(L"a") + direct.get_string(L"c"), L"ac");
  EXPECT_EQ(value.to_string() + other.to_string(), theirs.to_string() + theirs.to_string());
  EXPECT_EQ(assigned.get_string(L"n.a"), L"a");
  EXPECT_EQ(size(refers) + size(fixed), 4U);

  // A handle inside of what it held alone is not used when that is gone.
  struct holder : bundle {
    smart_bundle inner;
  };
  auto outer = std::make_shared<holder>();
  outer->inner = smart_bundle(bundle{{L"in", 1}});
  smart_bundle handle((std::shared_ptr<bundle>(outer)));
  const smart_bundle& inner = outer->inner;
  outer.reset();
  handle = inner;
  EXPECT_EQ(handle->get_long(L"in"), 1);
}

TEST(smart_bundle, without_a_bundle) {
  smart_bundle none, from_null(static_cast<bundle*>(nullptr)), moved(bundle{});
  const smart_bundle& fixed = none;
  smart_bundle taken = std::move(moved);
  for (const smart_bundle* each : {&none, &from_null, &moved}) {
    EXPECT_TRUE(each->is_null() && !*each && each->to_string().empty() && !each->get() && *each == none);
    EXPECT_TRUE(each->clone().is_null());
  }
  EXPECT_FALSE(taken.is_null() || none == taken);
  EXPECT_THROW(none[L"a"] = 1, ruvo::exc::NullPointer);
  EXPECT_THROW((void)fixed["a"], ruvo::exc::NullPointer);
  EXPECT_THROW(none->clear(), ruvo::exc::NullPointer);
  EXPECT_THROW((void)fixed.begin(), ruvo::exc::NullPointer);
  EXPECT_THROW((void)none.end(), ruvo::exc::NullPointer);
  EXPECT_THROW((void)static_cast<const bundle&>(fixed), ruvo::exc::NullPointer);
  EXPECT_THROW((void)xvar(none), ruvo::exc::NullPointer);
}

// --- merging

/// The contract of a merge, by plain recursion.
void plain_merge(bundle& target, const bundle& source, bundles::imerged_filter* filter,
                 const std::wstring& above = {}) {
  for (std::size_t n = 0; n < source.size(); ++n) {
    const bundle::entry& from = *source[n];
    const std::wstring& key = from.spelling();
    const std::wstring path = above + from.first;
    const bool is_there = target.count(key) > 0;
    xvar value = is_there ? target[key] : xvar();
    const bool takes = !filter || filter->on_merge(path, value, from.second);
    bundle inner, of_source;
    inner = value;
    of_source = from.second;
    if (takes && from.second.instanceof (typeid(bundle))) {
      const bool had = is_there && value.instanceof (typeid(bundle));
      plain_merge(inner, of_source, filter, path + L'.');
      if (had || !filter || !inner.empty() || of_source.empty()) {
        static_cast<ruvo::var&>(value) = xvar(inner);
        value.add_qualities(from.second.get_qualities());
      } else if (!is_there) {
        continue;
      }
    } else if (takes) {
      value.add_qualities(from.second.get_qualities());
      if (!from.second.is_null()) static_cast<ruvo::var&>(value) = from.second;
    } else if (!is_there && value.is_null()) {
      continue;
    }
    target[key] = value;
  }
}

bundle any_bundle(dice& chance, unsigned depth) {
  static const std::vector<std::wstring> keys = {L"a", L"B", L"ca", L"d", L"Ñu", L"e", L"", L"F.g"};
  bundle out;
  for (unsigned n = chance.below(6); n > 0; --n) {
    xvar& value = out[chance.any(keys)];
    switch (chance.below(depth > 0 ? 8 : 4)) {
      case 0:
        break;
      case 1:
        value = L"un texto que no cabe " + std::to_wstring(chance.below(5));
        break;
      case 2:
        value = list{chance.below(5), L"x"};
        break;
      case 3:
        value = static_cast<int>(chance.below(5));
        break;
      default:
        value = any_bundle(chance, depth - 1);
    }
    if (chance.one_in(5)) value[chance.one_in(2) ? L"q" : L"R"] = static_cast<int>(chance.below(9));
  }
  return out;
}

class merging : public generated_inputs {};

TEST_F(merging, does_what_plain_recursion_does) {
  dice chance(5);
  bundles::keep_existing keep;
  bundles::replace_existing replace;
  bundles::append_lists append;
  bundles::only_keys only({L"A", L"b.ca", L"d.ñu"}), only_new({L"a", L"b.e"}, &keep);
  bundles::imerged_filter* const filters[] = {nullptr, &keep, &replace, &append, &only, &only_new};
  for (; inputs < 3000ULL * rounds(); ++inputs) {
    bundles::imerged_filter* const filter = chance.any(filters);
    bundle target = any_bundle(chance, 4);
    const bundle source = any_bundle(chance, 4);
    bundle wanted = target, moved = target;
    plain_merge(wanted, source, filter);
    bundles::merge(target, source, filter);
    ASSERT_EQ(whole_text(target), whole_text(wanted));
    bundle taken = source;
    bundles::merge(moved, std::move(taken), filter);
    ASSERT_EQ(whole_text(moved), whole_text(wanted));
    for (const int which : {0, 1, 2}) {  // the source is the target, is inside of it, has it inside
      bundle whole = target;
      bundle& part = whole.hack_bundle_on(L"a.e");
      bundle& to = which == 2 ? part : whole;
      const bundle& from = which == 1 ? part : whole;
      const bundle copy = from;
      wanted = to;
      plain_merge(wanted, copy, filter);
      bundles::merge(to, from, filter);
      ASSERT_EQ(whole_text(to), whole_text(wanted)) << which;
    }
  }
}

TEST(merge, filters) {
  const bundle before{{L"n", 1}, {L"l", list{1}}, {L"b", bundle{{L"x", 1}}}, {L"null", xvar()}, {L"s", L"t"}};
  const bundle source{{L"N", 2},
                      {L"l", list{2}},
                      {L"b", bundle{{L"X", 2}, {L"y", 3}}},
                      {L"null", 4},
                      {L"new", 5},
                      {L"s", bundle{{L"z", 6}}},
                      {L"M", xvar()},
                      {L"b2", bundle{{L"w", bundle{{L"v", 7}}}}}};
  bundles::keep_existing keep;
  bundles::append_lists append;
  bundles::only_keys only({L"B.Y", L"new", L"s.none", L"b2.w.none", L"L"}), none({}), all({L""});
  const struct {
    const char* name;
    bundles::imerged_filter* filter;
    const wchar_t* result;
  } rows[] = {
      {"none", nullptr,
       L"{\"b\":{\"x\":2, \"y\":3}, \"b2\":{\"w\":{\"v\":7}}, \"l\":[2], \"m\":\"\", \"n\":2, \"new\":5, "
       L"\"null\":4, \"s\":{\"z\":6}}"},
      {"keep", &keep,
       L"{\"b\":{\"x\":1, \"y\":3}, \"b2\":{\"w\":{\"v\":7}}, \"l\":[1], \"m\":\"\", \"n\":1, \"new\":5, "
       L"\"null\":4, \"s\":\"t\"}"},
      {"append", &append,
       L"{\"b\":{\"x\":2, \"y\":3}, \"b2\":{\"w\":{\"v\":7}}, \"l\":[1,2], \"m\":\"\", \"n\":2, \"new\":5, "
       L"\"null\":4, \"s\":{\"z\":6}}"},
      {"only", &only,
       L"{\"b\":{\"x\":1, \"y\":3}, \"l\":[2], \"n\":1, \"new\":5, \"null\":\"\", \"s\":\"t\"}"},
      {"nothing", &none, L"{\"b\":{\"x\":1}, \"l\":[1], \"n\":1, \"null\":\"\", \"s\":\"t\"}"},
      {"all", &all,
       L"{\"b\":{\"x\":2, \"y\":3}, \"b2\":{\"w\":{\"v\":7}}, \"l\":[2], \"m\":\"\", \"n\":2, \"new\":5, "
       L"\"null\":4, \"s\":{\"z\":6}}"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    bundle target = before;
    bundles::merge(target, source, row.filter);
    EXPECT_EQ(target.to_string(), row.result);
  }
}

TEST(merge, a_filter_changes_the_target_and_throws) {
  struct counting : bundles::imerged_filter {
    std::wstring paths;
    bool on_merge(const std::wstring& path, xvar& target, const xvar& source) override {
      paths += path + L';';
      if (source == 3) throw std::runtime_error("three");
      if (source.is_number()) target = static_cast<int>(source) * 10;
      return source.instanceof (typeid(bundle));
    }
  } filter;
  bundle target{{L"b", 7}};
  const bundle source{
      {L"A", 1}, {L"b", bundle{{L"c", 2}, {L"d", L"no"}}}, {L"e", bundle{{L"f", 4}, {L"g", 3}}}};
  EXPECT_THROW(bundles::merge(target, source, &filter, '/'), std::runtime_error);
  EXPECT_EQ(filter.paths, L"a;b;b/c;b/d;e;e/f;e/g;");
  EXPECT_EQ(target.to_string(), L"{\"a\":10, \"b\":{\"c\":20}}");
}

TEST(arguments, become_a_bundle) {
  bundle out{{L"old", 1}};
  std::vector<std::wstring> rest{L"old"};
  ruvo::exception failure;
  for (const wchar_t* const wrong : {L"--=1", L"--.a=1", L"--a.=1", L"--a..b", L"--a..b=x"}) {
    failure.clear();
    EXPECT_FALSE(bundles::read_arguments(out, rest, {L"--good=1", wrong}, failure)) << wrong;
    EXPECT_EQ(failure.get_raw_code(), 0xEBB8000FU);
    EXPECT_EQ(out.size() + rest.size(), 2U);
  }
  EXPECT_TRUE(bundles::read_arguments(out, rest,
                                      {L"x", L"--Server.Port=80", L"--a", L"-v", L"--t=a=b", L"--e=",
                                       L"--server.port=81", L"--", L"--z", L""},
                                      failure));
  EXPECT_EQ(out.to_string(), L"{\"a\":1, \"e\":\"\", \"server\":{\"port\":\"81\"}, \"t\":\"a=b\"}");
  EXPECT_EQ(rest, (std::vector<std::wstring>{L"x", L"-v", L"--z", L""}));
}

// --- layers

/// The values that are neither null nor inside of another value, by their paths.
void flatten(std::map<std::wstring, std::wstring>& out, const bundle& in, const std::wstring& above = {}) {
  for (const auto& [key, value] : in) {
    const std::wstring path = above + key;
    if (value.is_null()) continue;
    bundle inner;
    inner = value;
    if (inner.empty()) out[path] = list{value}.to_string();
    flatten(out, inner, path + L'/');
  }
}

/// Whether there are values below the path.
bool has_below(const std::map<std::wstring, std::wstring>& in, const std::wstring& path) {
  const auto at = in.lower_bound(path + L'/');
  return at != in.end() && at->first.starts_with(path + L'/');
}

std::set<std::wstring> changes(const std::map<std::wstring, std::wstring>& before,
                               const std::map<std::wstring, std::wstring>& now) {
  std::set<std::wstring> out;
  for (const auto& [left, right] : {std::pair(&before, &now), std::pair(&now, &before)}) {
    for (const auto& [path, text] : *left) {
      const auto other = right->find(path);
      const bool stays_bundle = text == L"[{}]" && has_below(*right, path);
      if ((other == right->end() || other->second != text) && !stays_bundle) out.insert(path);
    }
  }
  return out;
}

/// Without qualities, null values and the key that paths do not reach.
bundle plain_bundle(dice& chance, unsigned depth) {
  bundle out;
  for (unsigned n = chance.below(4); n > 0; --n) {
    xvar& value = out[std::wstring(1, chance.unit(L"abC"))];
    if (depth > 0 && !chance.one_in(3))
      value = plain_bundle(chance, depth - 1);
    else if (!chance.one_in(4))
      value = static_cast<int>(chance.below(3));
  }
  return out;
}

/// The bundle with a text in place of every value.
bundle named(const bundle& in, const std::wstring& name) {
  bundle out;
  for (const auto& [key, value] : in) {
    bundle inner;
    inner = value;
    if (value.instanceof (typeid(bundle)))
      out[key] = named(inner, name);
    else if (!value.is_null())
      out[key] = name;
  }
  return out;
}

TEST_F(merging, layers_agree_with_what_is_merged_anew) {
  dice chance(7);
  const std::vector<std::wstring> names = {L"programa", L"equipo", L"usuario", L"argumentos"};
  const std::vector<std::wstring> steps = {L"a", L"B", L"c"};
  while (inputs < 150ULL * rounds()) {
    layered_settings settings('/');
    bundle shared = plain_bundle(chance, 3);
    for (const std::wstring& name : names) settings.set_layer(name, plain_bundle(chance, 3));
    settings.share_layer(L"usuario", smart_bundle(&shared));
    std::multiset<std::wstring> seen;
    settings.observe([&seen](const std::wstring& path) { seen.insert(path); });
    for (int n = 0; n < 30; ++n, ++inputs) {
      std::map<std::wstring, std::wstring> before, now;
      flatten(before, *settings);
      seen.clear();
      std::wstring path = chance.any(steps);
      while (!chance.one_in(3)) path += L'/' + chance.any(steps);
      const std::wstring& name = chance.any(names);
      switch (chance.below(5)) {
        case 0:
          settings.erase(name, path);
          break;
        case 1:
          settings.put(name, path, plain_bundle(chance, 2));
          break;
        case 2:
          if (name != L"usuario") settings.set_layer(name, plain_bundle(chance, 3));
          break;
        default:
          settings.put(name, path, static_cast<int>(chance.below(3)));
      }
      bundle whole, origins;
      for (const std::wstring& each : names) {
        bundles::merge(whole, settings.get_layer(each));
        bundles::merge(origins, named(settings.get_layer(each), each));
      }
      ASSERT_EQ(settings->to_string(), whole.to_string());
      flatten(now, whole);
      const std::set<std::wstring> changed = changes(before, now);
      ASSERT_EQ(seen, std::multiset<std::wstring>(changed.begin(), changed.end()));
      const xvar* const origin = origins.get_ptr(path, '/');
      if (!origin || !origin->instanceof (typeid(bundle))) {
        ASSERT_EQ(settings.layer_of(path), origins.get_string(path, '/')) << testing::PrintToString(path);
      }
    }
    ASSERT_EQ(settings.get_layer(L"usuario").to_string(), shared.to_string());
  }
}

TEST(layered_settings, refuse_what_there_is_not) {
  layered_settings settings;
  settings.set_layer(L"a", {{L"n", 1}});
  EXPECT_THROW(settings.share_layer(L"b", smart_bundle()), ruvo::exc::NullPointer);
  EXPECT_THROW(settings.observe(nullptr), ruvo::exc::NullPointer);
  EXPECT_THROW(settings.put(L"A", L"n", 2), ruvo::exc::BadArgument);
  EXPECT_THROW(settings.erase(L"", L"n"), ruvo::exc::BadArgument);
  EXPECT_THROW((void)settings.get_layer(L"b"), ruvo::exc::BadArgument);
  EXPECT_FALSE(settings.remove_layer(L"b"));
  EXPECT_FALSE(settings.stop_observing(1));
  EXPECT_FALSE(settings.erase(L"a", L"n.m"));
  EXPECT_EQ(settings.get_layers(), std::vector<std::wstring>{L"a"});
  EXPECT_TRUE(settings.remove_layer(L"a"));
  EXPECT_TRUE(settings->empty() && settings.layer_of(L"n").empty());
}

TEST(layered_settings, changes_are_exact) {
  layered_settings settings;
  bundle held{{L"d", 0.5},  {L"i", 5}, {L"l", list{1.5, 2}},
              {L"t", L"x"}, {L"q", 1}, {L"m", ruvo::decimal(5)}};
  settings.share_layer(L"a", smart_bundle(&held));
  std::wstring seen;
  settings.observe([&](const std::wstring& path) { seen += path; });
  held = {{L"d", 0.5000000001}, {L"i", 5LL}, {L"l", list{1.5000000001, 2}},
          {L"t", L"x"},         {L"q", 1},   {L"m", ruvo::decimal(5)}};
  held[L"q"][L"unit"] = L"m";
  settings.refresh();
  EXPECT_EQ(seen, L"dlq");
  settings.refresh();
  EXPECT_EQ(seen, L"dlq");
}

TEST(layered_settings, observers_that_change_what_they_observe) {
  layered_settings settings;
  settings.set_layer(L"a", {{L"n", 0}, {L"other", ruvo::bundle{{L"x", 1}}}});
  std::wstring seen;
  std::uint64_t first = 0, second = 0;
  first = settings.observe(
      [&](const std::wstring& path) {
        const long n = settings->get_long(L"n");
        seen += path + std::to_wstring(n) + L' ';
        if (n < 3) settings.put(L"a", L"n", n + 1);  // is seen later, not within
        if (n == 2) settings.stop_observing(first);
        if (n == 1) settings.stop_observing(second);
        if (n == 1) throw std::runtime_error("one");
      },
      L"N");
  second = settings.observe([&](const std::wstring& path) { seen += L'2' + path + L' '; });
  settings.observe([&](const std::wstring&) { throw std::logic_error("later"); }, L"n");
  EXPECT_THROW(settings.put(L"a", L"n", 1), std::runtime_error);
  EXPECT_EQ(seen, L"n1 n2 ");
  EXPECT_EQ(settings->get_long(L"n"), 3);
  settings.put(L"a", L"other.x", 2);  // of nobody who is left
  EXPECT_THROW(settings.erase(L"a", L"n"), std::logic_error);
  EXPECT_EQ(seen, L"n1 n2 ");
}

}  // namespace
