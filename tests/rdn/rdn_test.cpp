// SPDX-License-Identifier: BSL-1.0

// Random test data: the same for ever, right by the rules, evenly drawn; recipes.

#include <ruvo/digest.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/identifiers.hpp>
#include <ruvo/rdn.hpp>
#include <ruvo/texto.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <numeric>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

namespace identifiers = ruvo::identifiers;
namespace rdn = ruvo::rdn;
using identifiers::kind;
using rdn::generator;

const ruvo::bundle order = {
    {L"numero", L"pattern(F-##-@@)"},
    {L"serie", L"=A (fija)"},
    {L"cliente", L"person.nombre"},
    {L"nif", L"person.nif"},
    {L"alta", L"date(2020-01-01,2024-12-31)"},
    {L"estado", L"pick(abierto*3,cerrado,perdido*0)"},
    {L"version", 7},
    {L"vendedor", ruvo::bundle{{L"nombre", L"full_name(mujer)"}, {L"cif", L"cif(B)"}}},
    {L"lineas",
     ruvo::list{L"3..5", ruvo::bundle{{L"precio", L"amount(0.50,99.95)"}, {L"texto", L"words(2)"}}}}};

/// Everything that can be drawn, as text.
std::wstring all_of(generator& from) {
  std::wstring out;
  const auto add = [&out](const std::wstring& text) { (out += text) += L'\n'; };
  add(from.person().to_string());
  add(from.company().to_string());
  add(from.company(rdn::rule::official).to_string());
  add(from.full_name());
  for (const wchar_t* country : {L"ES", L"FR", L"BE", L"PT", L"IT", L"DE", L"GB"}) add(from.iban(country));
  add(from.cif(rdn::rule::official));
  add(from.card());
  add(from.mail());
  add(from.lorem(1));
  add(from.pattern(L"##-@@"));
  add(std::to_wstring(
      from.integer(std::numeric_limits<long long>::min(), std::numeric_limits<long long>::max())));
  add(std::to_wstring(from.amount(-5, 1LL << 40)));
  add(from.date(ruvo::date(19000301), ruvo::date(21000228)).to_string());
  std::vector<int> numbers(20);
  std::iota(numbers.begin(), numbers.end(), 0);
  from.shuffle(numbers);
  for (const int number : numbers) add(std::to_wstring(number));
  add(from.pick({L"a", L"b", L"c"}, {1, 2, 3}));
  add(rdn::recipe(order).make(from).to_string());
  return out;
}

// Whoever changes what is drawn raises rdn::version, and then this.
TEST(rdn, the_values_of_a_version_are_the_same_for_ever) {
  generator from(20260101);
  EXPECT_EQ(from.next(), 6332780174000220894U);  // of an implementation in another language
  ruvo::digest::hash all;
  for (int i = 0; i < 300; ++i) all.update(ruvo::texto::to_utf_8(all_of(from)));
  EXPECT_EQ(rdn::version, 1);
  EXPECT_EQ(all.hex(), L"9c9d5de55cb793bdc06ba46ac8e28a99d6f817b599a4a7504150472f853320f2");
}

TEST(rdn, a_seed_repeats_and_copies_go_on_by_themselves) {
  generator first(7), other(8);
  const std::wstring text = all_of(first);
  EXPECT_NE(text, all_of(other));
  generator copy(first);
  EXPECT_EQ(all_of(copy), all_of(first));
  other.reseed(7);
  EXPECT_EQ(text, all_of(other));
  EXPECT_NE(generator().seed(), generator().seed());

  rdn::reseed(7);
  EXPECT_EQ(rdn::person().to_string(), generator(7).person().to_string());
  std::uint64_t seed = 7;
  std::thread([&seed] { seed = rdn::mine().seed(); }).join();
  EXPECT_NE(seed, 7U);
}

// Bounds at which numbers drawn by a remainder, or by a product alone, would show which they favour.
TEST(rdn, all_numbers_are_equally_likely) {
  generator from(1);
  for (const std::uint64_t bound : {3ULL, 3ULL << 30, 3ULL << 40, 3ULL << 62}) {
    std::array<int, 3> by_remainder{}, by_third{};
    for (int i = 0; i < 30000; ++i) {
      const std::uint64_t drawn = from.below(bound);
      ASSERT_LT(drawn, bound);
      ++by_remainder[drawn % 3];
      ++by_third[drawn / (bound / 3)];
    }
    for (const int count : by_remainder) EXPECT_NEAR(count, 10000, 400) << bound;
    for (const int count : by_third) EXPECT_NEAR(count, 10000, 400) << bound;
  }
  EXPECT_EQ(from.below(0) + from.below(1), 0U);
  std::set<long long> seen;
  for (int i = 0; i < 100; ++i) seen.insert(from.integer(-1, 1));
  EXPECT_EQ(seen, (std::set<long long>{-1, 0, 1}));
  EXPECT_EQ(from.date(ruvo::date(20240229), ruvo::date(20240229)), 20240229);
  EXPECT_THROW(from.integer(2, 1), ruvo::exc::BadArgument);
  EXPECT_THROW(from.date(ruvo::date(20240302), ruvo::date(20240301)), ruvo::exc::BadArgument);
}

TEST(rdn, chooses_by_weight_and_without_repeating) {
  generator from(2);
  std::array<int, 3> counts{};
  for (int i = 0; i < 10000; ++i) ++counts[from.pick(std::vector<std::size_t>{0, 1, 2}, {1, 0, 3})];
  EXPECT_NEAR(counts[0], 2500, 200);
  EXPECT_EQ(counts[1], 0);
  EXPECT_THROW(from.pick(std::vector<int>()), ruvo::exc::BadArgument);
  EXPECT_THROW(from.pick({1, 2}, {1}), ruvo::exc::BadArgument);
  EXPECT_THROW(from.pick({1, 2}, {0, 0}), ruvo::exc::BadArgument);

  // of the 24 orders of four each comes as often
  std::array<int, 256> orders{};
  for (int i = 0; i < 24000; ++i) {
    ruvo::list four{0, 1, 2, 3};
    from.shuffle(four);
    ++orders[static_cast<std::size_t>(int(four[0]) * 64 + int(four[1]) * 16 + int(four[2]) * 4 +
                                      int(four[3]))];
  }
  EXPECT_EQ(std::count_if(orders.begin(), orders.end(), [](int n) { return n > 800 && n < 1200; }), 24);

  const auto names = from.unique([](generator& g) { return g.name(); }, 300);
  EXPECT_EQ(std::set<std::wstring>(names.begin(), names.end()).size(), 300U);
  EXPECT_EQ(from.unique(&generator::surname, 500).size(), 500U);
  EXPECT_EQ(rdn::unique([] { return rdn::integer(1, 50); }, 50).size(), 50U);
  try {
    from.unique([&from] { return from.below(10); }, 11);
    ADD_FAILURE() << "eleven of ten";
  } catch (const ruvo::exc::RunTime& error) {
    EXPECT_EQ(error.get_mensaje(), L"Se pedían 11 valores distintos y solo se han obtenido 10");
  }
}

TEST(rdn, identifiers_pass_their_checks) {
  using namespace ruvo::texto;
  const auto any = [](const std::wstring&) { return true; };
  const struct {
    const char* name;
    kind of;
    std::function<std::wstring(generator&)> draw;
    std::function<bool(const std::wstring&)> holds;
  } rows[] = {
      {"dni", kind::dni, &generator::dni, [](const std::wstring& t) { return valida_dni(t); }},
      {"nie", kind::nie, &generator::nie, [](const std::wstring& t) { return valida_nie(t); }},
      {"nif", kind::nif, &generator::nif, [](const std::wstring& t) { return valida_nif(t); }},
      {"cif", kind::company, [](generator& g) { return g.cif(); },
       [](const std::wstring& t) { return valida_cif(t) && valida_nif(t); }},
      {"official cif", kind::company, [](generator& g) { return g.cif(rdn::rule::official); }, any},
      {"company", kind::company, [](generator& g) { return g.company().get_string(L"nif"); },
       [](const std::wstring& t) { return valida_cif(t); }},
      {"ccc", kind::ccc, &generator::ccc, [](const std::wstring& t) { return t.starts_with(L"9999"); }},
      {"iban", kind::iban, [](generator& g) { return g.iban(); },
       [](const std::wstring& t) { return valida_iban_esp(t); }},
      {"iban of others", kind::iban,
       [](generator& g) {
         return g.iban(g.pick({L"FR", L"BE", L"PT", L"IT", L"MC", L"DE", L"MT"}));
       },
       [](const std::wstring& t) { return valida_iban(t); }},
      {"card", kind::card, [](generator& g) { return g.card(); },
       [](const std::wstring& t) { return valida_tarjeta_credito(t); }},
      {"postal code", kind::postal_code, &generator::postal_code, any},
      {"phone", kind::telephone, &generator::phone, any},
      {"mobile", kind::telephone, &generator::mobile, any},
  };
  generator from(3);
  for (const auto& row : rows) {
    for (int i = 0; i < 1000; ++i) {
      const std::wstring text = row.draw(from);
      const identifiers::verdict found = identifiers::check(row.of, text);
      ASSERT_TRUE(found && row.holds(text) &&
                  identifiers::normalise(row.of, text) == (row.of == kind::telephone ? L"+34" + text : text))
          << row.name << ": " << to_utf_8(text + L" " + identifiers::message_of(found));
    }
  }
  EXPECT_EQ(identifiers::describe(kind::card, from.card(rdn::brand::american_express)),
            identifiers::describe(kind::card, L"378282246310005"));
  EXPECT_EQ(from.cif(L'S', rdn::rule::both)[0], L'S');
  EXPECT_THROW(from.cif(L'B', rdn::rule::both), ruvo::exc::BadArgument);
  EXPECT_THROW(from.cif(L'X', rdn::rule::official), ruvo::exc::BadArgument);
  EXPECT_THROW(from.iban(L"XX"), ruvo::exc::BadArgument);
}

TEST(rdn, people_and_places_hang_together) {
  generator from(4);
  for (int i = 1; i <= 52; ++i) {
    const rdn::place found = from.place_in(i);
    EXPECT_EQ(found.province, identifiers::describe(kind::postal_code, found.postal_code));
    EXPECT_EQ(found.province, identifiers::provinces()[static_cast<std::size_t>(i - 1)].name);
    EXPECT_FALSE(found.municipality.empty());
  }
  EXPECT_THROW(from.place_in(0), ruvo::exc::BadArgument);
  EXPECT_THROW(from.place_in(53), ruvo::exc::BadArgument);
  for (int i = 0; i < 200; ++i) {
    const ruvo::bundle who = from.person(rdn::sex::woman);
    const std::wstring mail = who.get_string(L"correo");
    const std::size_t at = mail.find(L"@example.");
    ASSERT_NE(at, mail.npos);
    EXPECT_TRUE(std::all_of(mail.begin(), mail.begin() + static_cast<std::ptrdiff_t>(at),
                            [](wchar_t c) { return c < 128 && c != L' '; }));
    EXPECT_EQ(who.get_string(L"sexo"), L"mujer");
    EXPECT_EQ(who.get_string(L"direccion.provincia"),
              identifiers::describe(kind::postal_code, who.get_string(L"direccion.codigo_postal")));
  }
  EXPECT_EQ(from.lorem(3).substr(0, 28), L"Lorem ipsum dolor sit amet, ");
  EXPECT_EQ(from.lorem(0) + from.words(0), L"");
}

TEST(rdn, recipes_give_bundles) {
  generator from(5);
  const rdn::recipe prepared(order);
  const ruvo::list all = prepared.make(from, 200);
  std::set<std::size_t> lengths;
  for (const ruvo::xvar& each : all) {
    ruvo::bundle one;
    one = each;
    ASSERT_EQ(one.size(), order.size());
    EXPECT_EQ(one.spelling(3), L"nif");
    EXPECT_TRUE(ruvo::texto::valida_nif(one.get_string(L"nif")));
    EXPECT_EQ(one.get_string(L"serie"), L"A (fija)");
    EXPECT_EQ(one.get_long(L"version"), 7);
    EXPECT_EQ(one.get_string(L"vendedor.cif")[0], L'B');
    EXPECT_NE(one.get_string(L"estado"), L"perdido");
    const ruvo::date day(one.get(L"alta"));
    EXPECT_TRUE(day >= 20200101 && day <= 20241231);
    lengths.insert(one.get_list(L"lineas").size());
    for (const ruvo::xvar& line : one.get_list(L"lineas")) {
      ruvo::bundle item;
      item = line;
      const double price = item.get_double(L"precio");
      EXPECT_TRUE(price >= 0.5 && price <= 99.95) << price;
    }
  }
  EXPECT_EQ(lengths, (std::set<std::size_t>{3, 4, 5}));

  generator again(from);
  const ruvo::xvar price =
      *rdn::recipe(ruvo::bundle{{L"p", L"decimal(0.5, 99.95)"}}).make(from).get_ptr(L"p");
  EXPECT_EQ(price.to_string(), ruvo::decimal(again.amount(50, 9995), 2).to_string());
  std::set<std::wstring> drawn;
  for (int i = 0; i < 100; ++i) drawn.insert(from.decimal(ruvo::decimal(L"-0.1"), 0).to_string());
  EXPECT_EQ(drawn, (std::set<std::wstring>{L"-0.1", L"0.0"}));
  EXPECT_THROW(from.decimal(2, 1), ruvo::exc::BadArgument);
  EXPECT_THROW(from.decimal(0, ruvo::decimal(L"10000000000.0000000001")), ruvo::exc::decimalOverflow);

  // parts of one person, and another person in another bundle
  const ruvo::bundle parts = {{L"correo", L"person.correo"},
                              {L"nombre", L"person.nombre"},
                              {L"otro", ruvo::bundle{{L"correo", L"person.correo"}}}};
  const ruvo::bundle one = rdn::recipe(parts).make(from);
  std::wstring name = ruvo::texto::limpia_puntuacion_(one.get_string(L"nombre"), 0);
  std::erase(name, L' ');
  EXPECT_TRUE(one.get_string(L"correo").starts_with(ruvo::texto::to_lowercase_(name) + L"."));
  EXPECT_NE(one.get_string(L"correo"), one.get_string(L"otro.correo"));
}

TEST(rdn, recipes_say_where_they_are_wrong) {
  const struct {
    ruvo::xvar value;
    const wchar_t *path, *why;
  } rows[] = {
      {L"nombres", L"a", L"«nombres» no es un generador"},
      {L"", L"a", L"«» no es un generador"},
      {L"dni(1)", L"a", L"«dni(1)»: los argumentos"},
      {L"dni(", L"a", L"«dni(»: los argumentos"},
      {L"integer", L"a", L"«integer»: los"},
      {L"integer(3,2)", L"a", L"«integer(3,2)»"},
      {L"integer(1)", L"a", L"«integer(1)»"},
      {L"integer(1,9999999999999999999)", L"a", L"«integer(1,"},
      {L"amount(1.234,2)", L"a", L"«amount("},
      {L"amount(1.,2)", L"a", L"«amount("},
      {L"decimal(1,0.99)", L"a", L"«decimal("},
      {L"decimal(1.5)", L"a", L"«decimal("},
      {L"decimal(0,0.0000000000000000001)", L"a", L"«decimal("},
      {L"date(2023-02-29,2024-01-01)", L"a", L"«date("},
      {L"date(2024-01-01)", L"a", L"«date("},
      {L"iban(ZZ)", L"a", L"«iban(ZZ)»"},
      {L"cif(Z)", L"a", L"«cif(Z)»"},
      {L"card(oro)", L"a", L"«card(oro)»"},
      {L"chance(101)", L"a", L"«chance(101)»"},
      {L"pick(a*0,b*0)", L"a", L"«pick("},
      {L"person.altura", L"a", L"«person.altura» no existe"},
      {L"iban.nif", L"a", L"«iban.nif» no existe"},
      {ruvo::list{L"3..5"}, L"a", L"una lista lleva"},
      {ruvo::list{L"5..3", L"word"}, L"a", L"«5..3» no es un número"},
      {ruvo::list{3, ruvo::bundle{{L"b", L"x"}}}, L"a[1].b", L"«x» no es"},
  };
  for (const auto& row : rows) {
    try {
      rdn::recipe wrong(ruvo::bundle{{L"bien", L"word"}, {L"a", row.value}});
      ADD_FAILURE() << ruvo::texto::to_utf_8(row.value.to_string());
    } catch (const ruvo::exc::BadArgument& error) {
      const std::wstring wanted = std::wstring(L"Argumento incorrecto: ") + row.path + L": " + row.why;
      EXPECT_TRUE(error.get_mensaje().starts_with(wanted)) << error.what();
    }
  }
  ruvo::bundle deep = {{L"a", L"word"}};
  for (int i = 0; i < 101; ++i) deep = ruvo::bundle{{L"a", deep}};
  EXPECT_THROW(rdn::recipe{deep}, ruvo::exc::BadArgument);
}

}  // namespace
