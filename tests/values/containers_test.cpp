// SPDX-License-Identifier: BSL-1.0

// Qualities, lists and bundles.

#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <limits>
#include <map>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

using ruvo::bundle;
using ruvo::list;
using ruvo::xvar;

namespace {

// --- xvar

TEST(xvar, qualities_ignore_case_and_keep_their_spelling) {
  xvar x = 5;
  x[L"Name"] = 1;
  x["NAME"] = 2;
  x[L"\u00C9"] = 3;
  x[L"\u00E9"] = 4;
  EXPECT_EQ(x.size(), 3U);
  EXPECT_EQ(x.begin()->first, L"Name");
  EXPECT_EQ(static_cast<int>(x.at("name")), 2);
  EXPECT_EQ(x.count(L"nAME"), 1U);
  EXPECT_THROW((void)x.get_quality(L"missing"), ruvo::exc::OutOfRange);
  EXPECT_THROW((void)x.at(L"missing"), std::out_of_range);
  EXPECT_EQ(x.erase(L"name"), 1U);
  EXPECT_EQ(x.erase(L"name"), 0U);
  x.clear();
  EXPECT_EQ(static_cast<int>(x), 5);
  EXPECT_TRUE(x.empty());
  EXPECT_TRUE(x.find(L"name") == x.end());
}

TEST(xvar, assignment_merges_qualities) {
  xvar x = 1, y = 2;
  x[L"a"] = 1;
  x[L"b"] = 1;
  y[L"B"] = 2;
  y[L"c"] = 2;
  x = y;
  const list shown{x};
  EXPECT_EQ(shown.to_string(), L"[2{\"atributos\":\"a\":1\"b\":2\"c\":2}]");
  x = ruvo::var(7);
  EXPECT_EQ(x.size(), 3U);
  xvar z;
  z[L"d"] = 4;
  z = std::move(x);
  EXPECT_EQ(z.size(), 4U);
  EXPECT_EQ(static_cast<int>(z), 7);
}

// --- list

TEST(list, text_forms) {
  xvar qualified = 5;
  qualified[L"a"] = 1;
  qualified[L"b"];
  struct {
    const char* name;
    list value;
    const wchar_t *text, *sql_text, *sql_numbers;
  } const rows[] = {
      {"empty", list(), L"[]", L"", L""},
      {"mixed", list{1, L"say \"hi\"", xvar()}, L"[1,\"say \\\"hi\\\"\",]", L"'1','say \"hi\"',''", L"1,,"},
      {"quotes", list{L"O'Hara"}, L"[\"O'Hara\"]", L"'O'Hara'", L""},
      {"trimmed", list{1, L" a "}, L"[1,\" a \"]", L"'1','a'", L"1,"},
      {"gap", list{1, L"x", 2}, L"[1,\"x\",2]", L"'1','x','2'", L"1,,2"},
      {"leading gap", list{L"x", 1}, L"[\"x\",1]", L"'x','1'", L"1"},
      {"qualities", list{qualified, 2}, L"[5{\"atributos\":\"a\":1\"b\":\"\"},2]", L"'5','2'", L"5,2"},
      {"nested", list{xvar(list{1.5, true}), xvar(bundle{{L"K\"", L"v"}})}, L"[[1.500000,1],{\"k\"\":\"v\"}]",
       L"'[1.500000,1]','{\"k\"\":\"v\"}'", L""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(row.value.to_string(), row.text);
    EXPECT_EQ(row.value.to_texto_sql(), row.sql_text);
    EXPECT_EQ(row.value.to_numeric_sql(), row.sql_numbers);
  }
}

TEST(list, appends_and_removes) {
  list l;
  --l;
  ++l;
  EXPECT_TRUE(l.back().is_null());
  l.on_back_list().push_back(1);
  l.on_back_bundle()[L"k"] = 2;
  l.on_back_string() = L"a text that grows beyond the cell";
  l.on_back_memo() = L"memo";
  l.on_back_binary() += static_cast<unsigned char>('b');
  l += 3;
  EXPECT_EQ(l.to_string(), L"[,[1],{\"k\":2},\"a text that grows beyond the cell\",memo,b,3]");
  l[1][L"old"] = 1;
  l[2][L"new"] = 2;
  l.remove(1);
  EXPECT_TRUE(l[1].has_quality(L"old"));  // the element that moved down keeps what it replaced
  EXPECT_TRUE(l[1].has_quality(L"new"));
  EXPECT_THROW((void)l.at(6), std::out_of_range);
  list copy;
  copy = static_cast<xvar>(l);
  EXPECT_TRUE(copy == l);
  copy = xvar(1);
  EXPECT_TRUE(copy.empty());
  l = {};
  EXPECT_TRUE(l.empty());
  EXPECT_TRUE(list{10} < list{9});
  EXPECT_FALSE(list({1, 2}) == list({L"1", 2}));
  EXPECT_TRUE(list({1, 2}) == list({true, 2LL}));  // the text counts, not the kind
  EXPECT_TRUE(bundle({{L"a", 1}}) == bundle({{L"a", 1LL}}));
}

/// A list with values that repeat and a quality of its own for each element, and the same as pairs.
struct tagged {
  list elements;
  std::vector<std::pair<std::wstring, int>> model;

  tagged(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    for (std::size_t i = 0; i < count; ++i) {
      elements.push_back(std::to_wstring(random() % 9));
      if (random() % 4 != 0) elements.back()[std::to_wstring(i)] = 1;
      model.emplace_back(elements.back().to_string(),
                         elements.back().is_qualified() ? static_cast<int>(i) : -1);
    }
  }
  std::vector<std::pair<std::wstring, int>> now() const {
    std::vector<std::pair<std::wstring, int>> found;
    for (const xvar& e : elements)
      found.emplace_back(e.to_string(), e.is_qualified() ? std::stoi(e.begin()->first) : -1);
    return found;
  }
};

TEST(list, whole_elements_move_as_the_algorithms_of_the_standard_library_move_them) {
  const auto by_value = [](const auto& a, const auto& b) { return a.first < b.first; };
  for (unsigned seed = 0; seed < 60; ++seed) {
    SCOPED_TRACE(seed);
    tagged t(seed, seed);
    const std::ptrdiff_t first = seed == 0 ? 0 : static_cast<std::ptrdiff_t>(seed * 7 % (seed + 1));
    const auto was_first = t.elements.rotate(t.elements.begin() + first) - t.elements.begin();
    EXPECT_EQ(was_first,
              std::rotate(t.model.begin(), t.model.begin() + first, t.model.end()) - t.model.begin());
    EXPECT_EQ(t.now(), t.model);
    EXPECT_EQ(t.elements.remove_if([](const xvar& v) { return v == L"3"; }),
              std::erase_if(t.model, [](const auto& p) { return p.first == L"3"; }));
    EXPECT_EQ(t.now(), t.model);
    t.elements.sort([](const xvar& a, const xvar& b) { return b < a; });
    std::stable_sort(t.model.begin(), t.model.end(),
                     [&](const auto& a, const auto& b) { return by_value(b, a); });
    EXPECT_EQ(t.now(), t.model);
    t.elements.sort();
    std::stable_sort(t.model.begin(), t.model.end(), by_value);
    EXPECT_EQ(t.now(), t.model);
    const auto end = std::unique(t.model.begin(), t.model.end(),
                                 [](const auto& a, const auto& b) { return a.first == b.first; });
    EXPECT_EQ(t.elements.unique(), static_cast<std::size_t>(t.model.end() - end));
    t.model.erase(end, t.model.end());
    EXPECT_EQ(t.now(), t.model);
  }
}

TEST(list, rules_that_throw_change_nothing_and_orders_that_contradict_themselves_lose_nothing) {
  tagged t(50, 1);
  int calls = 0;
  const auto fails = [&](const auto&...) { return ++calls == 40 ? throw std::runtime_error("40") : true; };
  EXPECT_THROW(t.elements.sort(fails), std::runtime_error);
  calls = 0;
  EXPECT_THROW(t.elements.remove_if(fails), std::runtime_error);
  calls = 0;
  EXPECT_THROW(t.elements.unique(fails), std::runtime_error);
  EXPECT_EQ(t.now(), t.model);
  std::mt19937 random(3);
  t.elements.sort([&](const xvar&, const xvar&) { return random() % 2 == 0; });
  auto mixed = t.now();
  std::sort(mixed.begin(), mixed.end());
  std::sort(t.model.begin(), t.model.end());
  EXPECT_EQ(mixed, t.model);
}

/// A wider number must not lose its upper half on its way into an unsigned long.
TEST(sizes, that_are_impossible_are_refused) {
  list l{1, 2};
  bundle b = {{L"a", 1}};
  EXPECT_EQ(static_cast<int>(l.at(0)), 1);
  EXPECT_EQ(static_cast<int>(l.at(1LL)), 2);
  EXPECT_THROW((void)l.at(0x100000001ULL), std::out_of_range);
  EXPECT_THROW((void)l.at(-1LL), std::out_of_range);
  l.reserve(std::size_t{20});
  EXPECT_GE(l.capacity(), 20U);
  for (const unsigned long long count : {~0ULL, 1ULL << 63, (1ULL << 60) + 16}) {
    EXPECT_THROW(l.reserve(count), std::length_error);
    EXPECT_THROW(l.resize(count), std::length_error);
    EXPECT_THROW(b.reserve(static_cast<std::size_t>(count)), std::length_error);
    EXPECT_THROW(bundle().reserve(static_cast<std::size_t>(count)), std::length_error);
    EXPECT_THROW(b.reserve(static_cast<std::size_t>(~0ULL / 40 + 2)), std::length_error);
  }
  if constexpr (sizeof(unsigned long) == 4) {
    EXPECT_THROW(l.reserve(0x100000010ULL), std::length_error);
  }
  EXPECT_EQ(l.to_string() + b.to_string(), L"[1,2]{\"a\":1}");
  std::string out;
  const std::vector<unsigned char> bytes(5, 'a');
  ruvo::texto::set_binary_data(out, bytes, 0x100000001ULL);
  EXPECT_EQ(out, "YWFhYWE=");
  ruvo::texto::set_binary_data(out, bytes, std::size_t{3});
  EXPECT_EQ(out, "YWFh");
}

// --- bundle

TEST(bundle, keys_fold_and_remember_their_order) {
  bundle b;
  b[L"Zeta"] = 1;
  b["alpha"] = 2;
  b[L"ZETA"] = 3;
  b[L"\u00C9"] = 4;  // direct access folds A-Z only, paths fold accents too
  EXPECT_EQ(b.to_string(), L"{\"alpha\":2, \"zeta\":3, \"\u00C9\":4}");
  EXPECT_EQ(b[0]->first, L"zeta");
  EXPECT_EQ(b[1ULL]->first, L"alpha");
  EXPECT_TRUE(b[3] == b.end());
  EXPECT_FALSE(b.has(L"\u00C9", '.'));
  EXPECT_TRUE(b.has(L"ALPHA", '.'));
  const bundle& read = b;
  EXPECT_THROW((void)read[L"none"], std::out_of_range);
  b.erase(L"zeta");
  EXPECT_EQ(b[0]->first, L"alpha");
  b[L"zeta"] = 5;
  EXPECT_EQ(b[2]->first, L"zeta");
}

TEST(bundle, remembers_how_a_key_was_spelled_when_it_came_in) {
  const std::wstring long_name(70, L'X');
  bundle b;
  b[L"nombre"] = 1;
  b[L"NOMBRE"] = 2;
  b[L"userName"] = 3;
  b[L"USERNAME"] = 4;
  b.putOn(L"Cliente.Dirección.ÑU", 5);
  b["codigoPostal"] = 6;
  b[long_name] = 7;
  const auto spellings = [](const bundle& of) {
    std::wstring all;
    for (std::size_t n = 0; n < of.size(); ++n) {
      EXPECT_EQ(of.spelling(n), of[n]->spelling());
      all += of.spelling(n) + L' ';
    }
    return all;
  };
  const std::wstring expected = L"nombre userName Cliente codigoPostal " + long_name + L' ';
  EXPECT_EQ(spellings(b), expected);
  EXPECT_EQ(b.find(L"username")->first, L"username");
  EXPECT_EQ(spellings(b.get_bundle("cliente")), L"Dirección ");
  EXPECT_EQ(b.get_bundle("cliente.dirección").spelling(0), L"ÑU");
  EXPECT_EQ(b.get_bundle("cliente.dirección")[0]->first, L"ñu");
  EXPECT_THROW(b.spelling(5), std::out_of_range);

  bundle copy(b), large;
  copy.erase(L"userName");
  copy[L"UserName"] = 8;
  EXPECT_EQ(spellings(copy), L"nombre Cliente codigoPostal " + long_name + L" UserName ");
  EXPECT_EQ(spellings(b), expected);
  for (int n = 0; n < 300; ++n) large[L"Nº" + std::to_wstring(n)] = n;
  EXPECT_EQ(large.spelling(299), L"Nº299");
  EXPECT_EQ(bundle(large).find(L"nº7")->spelling(), L"Nº7");

  // What is written goes away while the way is made.
  bundle way;
  way[L"Old"] = L"Old.New";
  way.hack(way.hack_string_on(L"old"));
  EXPECT_EQ(spellings(way.get_bundle(L"old")), L"New ");
}

TEST(bundle, paths) {
  bundle b;
  b.hack(L"Cliente.Direccion.Calle") = L"Mayor";
  b.hack("cliente/edad", '/') = 40;
  EXPECT_EQ(b.to_string(), L"{\"cliente\":{\"direccion\":{\"calle\":\"Mayor\"}, \"edad\":40}}");
  EXPECT_EQ(b.get_string(L"CLIENTE.DIRECCION.calle"), L"Mayor");
  EXPECT_FALSE(b.has(L"cliente.edad.x"));
  EXPECT_FALSE(b.has(L"cliente."));
  EXPECT_FALSE(bundle().has(L""));
  EXPECT_EQ(b.get_ptr(L"nada.de"), nullptr);
  EXPECT_THROW((void)b.get(L"nada", '.'), std::exception_ptr);
  b.hack(L"cliente.edad.exacta") = 40.5;  // a number on the way gives place
  EXPECT_EQ(b.get_double(L"cliente.edad.exacta"), 40.5);
  b.putOn(L"cliente.edad", b.get(L"cliente.edad.exacta"));
  EXPECT_EQ(b.get_double(L"cliente.edad"), 40.5);
  const wchar_t section = 0xA7;
  b[L"x.y"] = 1;  // a key that holds the separator
  EXPECT_FALSE(b.has(L"x.y"));
  EXPECT_TRUE(b.has(L"x.y", '/'));
  b.hack(std::wstring(L"p") + section + L"q", static_cast<char>(0xA7)) = 1;
  EXPECT_TRUE(b.has(L"p.q"));
}

TEST(bundle, typed_getters) {
  const bundle b = {{L"zero", 0},
                    {L"num", L" 12.75 "},
                    {L"word", L"hola"},
                    {L"yes", L"SI"},
                    {L"null", xvar()},
                    {L"empty", L""},
                    {L"one", L'1'},
                    {L"huge", L"99999999999999999999"},
                    {L"bytes", ruvo::binary(L"12")},
                    {L"big", 18446744073709551615ULL},
                    {L"none and a point", 0.0},
                    {L"empty bundle", bundle()},
                    {L"far", ruvo::datetime(std::numeric_limits<long long>::max())},
                    {L"list", list{1}},
                    {L"none", list()}};
  EXPECT_EQ(b.get_long(L"zero", '.', 7), 0);
  EXPECT_EQ(b.get_nc_long(L"zero", 7, '.'), 7);
  for (const wchar_t* path : {L"zero", L"none and a point", L"missing"}) {
    EXPECT_EQ(b.get_nc_ulong(path, 7), 7U);
    EXPECT_EQ(b.get_nc_xlong(path, 7) + b.get_nc_uxlong(path, 7), 14);
    EXPECT_EQ(b.get_nc_double(path, 0.5) + b.get_nc_float(path, 0.5F), 1.0);
  }
  EXPECT_EQ(b.get_float(L"none and a point", '.', 7), 0.0F);
  EXPECT_EQ(b.get_long(L"num"), 12);
  EXPECT_EQ(b.get_double("NUM"), 12.75);
  for (const wchar_t* path :
       {L"word", L"null", L"empty", L"missing", L"huge", L"bytes", L"list", L"word.x", L"far"}) {
    EXPECT_EQ(b.get_long(path, '.', 7), 7) << path;
    EXPECT_EQ(b.get_nc_short(path, 8), 8) << path;
  }
  EXPECT_EQ(b.get_double(L"huge", '.', 7), 99999999999999999999.0);
  EXPECT_EQ(b.get_double(L"bytes", '.', 7), 7.0);
  EXPECT_EQ(b.get_uxlong(L"big"), -1);
  EXPECT_TRUE(b.get_boolean(L"yes", false));
  EXPECT_FALSE(b.get_boolean(L"zero", true));
  EXPECT_TRUE(b.get_boolean(L"one", true));
  EXPECT_TRUE(b.get_boolean(L"empty", true));
  EXPECT_TRUE(b.get_boolean(L"far", true));
  EXPECT_EQ(b.get_nc_string(L"far"), L"9223372036854775807");
  EXPECT_EQ(b.get_string(L"empty", '.', L"x"), L"");
  EXPECT_EQ(b.get_nc_string(L"empty", L"x"), L"x");
  EXPECT_EQ(b.get_string(L"null", '.', L"x"), L"x");
  EXPECT_EQ(b.get_string("zero"), L"0");
  EXPECT_EQ(b.get_list(L"list").size(), 1U);
  EXPECT_EQ(&b.get_list(L"word"), &bundle().get_list(L"word"));  // one shared empty list
  const list fallback{1, 2};
  EXPECT_EQ(&b.get_nc_list(L"none", fallback), &fallback);
  EXPECT_TRUE(b.get_bundle(L"missing").empty());
  EXPECT_EQ(&b.get_nc_bundle(L"empty bundle", b), &b);
  EXPECT_EQ(b.get_binary(L"bytes", ruvo::binary()).size(), 2U);
  const ruvo::binary no_bytes;
  const ruvo::memo no_memo;
  EXPECT_EQ(&b.get_binary(L"list/bytes", '/', no_bytes), &no_bytes);  // either order
  EXPECT_EQ(&b.get_binary("bytes", '.', no_bytes), &b.get_binary(L"bytes", no_bytes));
  EXPECT_EQ(&b.get_memo("bytes", '.', no_memo), &no_memo);
  const std::map<std::wstring, xvar> pairs(b.begin(), b.end());
  EXPECT_EQ(pairs.size(), b.size());
  EXPECT_EQ(pairs.at(L"word").to_string(), L"hola");
}

TEST(bundle, objects_on_paths) {
  bundle b;
  b.hack_string_on(L"s") = L"uno";
  b.hack_string_on(L"s") += L" y dos";
  b.hack_list_on(L"a.l").push_back(1);
  b.hack_list_on(L"a.l").push_back(2);
  b.hack_memo_on(L"a.m") = L"memo";
  b.hack_nc_binary_on(L"a.b", ruvo::binary(L"x"));
  EXPECT_EQ(b.hack_nc_binary_on(L"a.b", ruvo::binary(L"y")).to_string(), L"x");
  b.hack(L"a.b")[L"q"] = 1;
  b.hack_bundle_on(L"a.b");
  EXPECT_EQ(b.to_string(), L"{\"a\":{\"b\":{}, \"l\":[1,2], \"m\":memo}, \"s\":\"uno y dos\"}");
  EXPECT_TRUE(b.get(L"a.b").has_quality(L"q"));
}

/// What a bundle promises, done by a map and a vector.
struct model {
  std::map<std::wstring, int> entries;
  std::vector<std::wstring> order;

  void put(const std::wstring& key, int value) {
    if (entries.count(key) == 0) order.push_back(key);
    entries[key] = value;
  }
  void erase(const std::wstring& key) {
    entries.erase(key);
    order.erase(std::remove(order.begin(), order.end(), key), order.end());
  }
};

void expect_same(bundle& b, const model& m) {
  ASSERT_EQ(b.size(), m.entries.size());
  auto it = b.begin();
  for (const auto& [key, value] : m.entries) {
    ASSERT_EQ(it->first, key);
    ASSERT_EQ(static_cast<int>(it->second), value);
    ++it;
  }
  ASSERT_TRUE(it == b.end());
  for (auto back = m.entries.rbegin(); back != m.entries.rend(); ++back)
    ASSERT_EQ((--it)->first, back->first);
  ASSERT_TRUE(it == b.begin());
  for (std::size_t n = 0; n < m.order.size(); ++n) ASSERT_EQ(b[n]->first, m.order[n]);
}

/// As a reader makes it, with keys that others have, too.
bundle read_bundle(int keys) {
  std::wstring text;
  for (int n = 0; n < keys; ++n)
    text += (n > 0 ? L",\"k" : L"\"k") + std::to_wstring(n) + L"\":" + std::to_wstring(n);
  bundle out;
  EXPECT_FALSE(ruvo::serializer::read_standard_json(out, L"{" + text + L"}"));
  return out;
}

TEST(bundle, behaves_like_a_map_with_a_memory_of_positions) {
  std::mt19937 random(7);
  for (const auto& [keys, read] : std::vector<std::pair<int, int>>{
           {3, 0}, {20, 0}, {129, 0}, {300, 0}, {3000, 0}, {3, 3}, {20, 7}, {150, 127}, {150, 128}}) {
    bundle b = read_bundle(read);
    model m;
    for (int n = 0; n < read; ++n) m.put(L"k" + std::to_wstring(n), n);
    bundle before(b);
    expect_same(before, m);
    const int steps = keys * 6;
    for (int step = 0; step < steps; ++step) {
      const std::wstring key = L"k" + std::to_wstring(random() % static_cast<unsigned>(keys));
      if (random() % 4 != 0) {
        std::wstring spelled = key;
        if (random() % 2 != 0) spelled[0] = L'K';
        xvar* const held = b.get_ptr(key) ? &b[key] : nullptr;
        b[spelled] = step;
        if (held) {
          ASSERT_EQ(held, &b[key]);  // entries never move
        }
        m.put(key, step);
      } else {
        ASSERT_EQ(b.erase(key), m.entries.count(key));
        m.erase(key);
      }
    }
    expect_same(b, m);
    EXPECT_TRUE(before == read_bundle(read));
    bundle copy(b);
    expect_same(copy, m);
    const xvar* const first = b.empty() ? nullptr : &b[0]->second;
    bundle moved(std::move(b));
    ASSERT_TRUE(b.empty());
    ASSERT_EQ(first, moved.empty() ? nullptr : &moved[0]->second);
    while (!moved.empty()) {
      m.erase(moved.begin()->first);
      moved.erase(moved.begin());
    }
    ASSERT_TRUE(m.entries.empty());
    ASSERT_TRUE(moved.begin() == moved.end());
    moved[L"again"] = 1;
    ASSERT_EQ(moved.begin()->first, L"again");
    expect_same(copy, [&] {
      model again;
      for (std::size_t n = 0; n < copy.size(); ++n)
        again.put(copy[n]->first, static_cast<int>(copy[n]->second));
      return again;
    }());
  }
}

TEST(bundle, may_be_made_and_destroyed_by_different_threads) {
  std::vector<bundle> made(8);
  bundle shared = {{L"a shared key", L"a text that takes a block"}, {L"list", list{1, 2, 3}}};
  shared[L"read"] = read_bundle(5);
  for (int round = 0; round < 20; ++round) {
    std::vector<std::thread> threads;
    for (std::size_t n = 0; n < made.size(); ++n) {
      threads.emplace_back([&made, &shared, n] {
        made[n] = shared;
        made[n][L"own"] = read_bundle(static_cast<int>(n));
        made[n].hack_bundle_on(L"read").erase(L"k1");
        for (int i = 0; i < 100; ++i)
          made[n][L"key number " + std::to_wstring(i)] = L"another text that takes a block";
      });
    }
    for (std::thread& thread : threads) thread.join();
    std::rotate(made.begin(), made.begin() + 1, made.end());  // the next round frees what another thread made
    for (const bundle& b : made) ASSERT_EQ(b.size(), 104U);
  }
  EXPECT_EQ(made[0].get_string(L"a shared key"), L"a text that takes a block");
}

TEST(bundle, iterators_survive_changes_around_them) {
  bundle b;
  for (int i = 0; i < 100; ++i) b[L"k" + std::to_wstring(100 + 2 * i)] = i;
  auto it = b.find(L"k200");
  for (int i = 0; i < 100; ++i) b[L"k" + std::to_wstring(101 + 2 * i)] = i;
  b.erase(L"k100");
  EXPECT_EQ((++it)->first, L"k201");
  EXPECT_EQ((--it)->first, L"k200");
  EXPECT_EQ(b.erase(it)->first, L"k201");
}

}  // namespace
