// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::rdn, random data for tests: people, companies, places, identifiers that pass their checks, texts, and
// bundles of all these by a recipe.

#include <ruvo/api.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/date.hpp>
#include <ruvo/decimal.hpp>
#include <ruvo/list.hpp>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <ranges>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

// Macros of others.
#include <ruvo/names_aside.hpp>

/// Random data for tests. A generator of one seed gives the same values in the same order with every compiler
/// and on every system, as long as the version is the same. They are good for tests and for nothing secret:
/// who has seen some values can calculate the next ones.
///
/// People, companies and addresses are made of parts that are drawn alone, so a real one can come out by
/// chance. Numbers come from ranges that are, as far as is known, nobody's; each function says how far that
/// is. None of these ranges is promised to stay free by who assigns them: write to nobody, call nobody and
/// charge nobody with what is drawn here. The mail domains alone are reserved for such use (RFC 2606).
namespace ruvo::rdn {

/// Changes whenever a seed gives other values than before; tests that keep values may compare it.
inline constexpr int version = 1;

/// Of a person.
enum class sex { woman, man };

/// By which rule the NIF of a company is right. `both` passes texto::valida_cif(), too, which has a rule of
/// its own: one in eleven of those that carry a control letter. Those of A, B, E and H, among them all of
/// "S.A." and "S.L.", carry a digit, and never do.
enum class rule { both, official };

/// Of payment cards.
enum class brand { visa, mastercard, american_express, diners_club, discover, jcb };

/// A municipality, the official name of its province, and a postal code whose first two digits are the
/// province's; whether the other three are in use is not looked at. Names by the list of municipalities of
/// the Instituto Nacional de Estadística (INE).
struct place {
  /// What its name says.
  std::wstring municipality, province, postal_code;
};

/// Draws. One thread uses it; copies go on by themselves, with the same values. Limits are included
/// everywhere, and a lower one above the upper one throws exc::BadArgument. Each draw belongs into a
/// statement of its own: which operand of `a.dni() + a.mail()` comes first, each compiler decides for itself.
class KESTA_API generator {
 public:
  /// With a seed from the system's random numbers; seed() gives it, to have the same values again.
  generator();
  /// With the seed; any will do, near ones give values that have nothing in common.
  explicit generator(std::uint64_t seed) noexcept;
  generator(const generator& other) noexcept;
  generator& operator=(const generator& other) noexcept;
  ~generator() = default;

  /// Starts again, as a new generator with the seed.
  void reseed(std::uint64_t seed) noexcept;
  /// What the generator was last started with.
  std::uint64_t seed() const noexcept { return seed_; }

  // --- numbers and choices

  /// The next 64 bits (xoshiro256**, seeded by splitmix64).
  std::uint64_t next() noexcept;
  /// A number from 0 to `bound` - 1, all equally likely; 0 for a bound of 0.
  std::uint64_t below(std::uint64_t bound) noexcept;
  /// A number, all equally likely.
  long long integer(long long from, long long to);
  /// An amount of money in cents: they go from hand to hand without being rounded.
  long long amount(long long from_cents, long long to_cents) { return integer(from_cents, to_cents); }
  /// A number with as many decimals as the limit that has more of them, all equally likely: from 0.50 to 100
  /// one of 0.50, 0.51, ... 100.00. Throws exc::decimalOverflow for limits whose digits, with these decimals
  /// and without the point, are no `long long`.
  ruvo::decimal decimal(const ruvo::decimal& from, const ruvo::decimal& to);
  /// True `percent` times in a hundred.
  bool chance(unsigned percent) noexcept { return below(100) < percent; }
  /// A day, in the default mode.
  ruvo::date date(const ruvo::date& from, const ruvo::date& to);

  /// One of the elements, a copy; throws exc::BadArgument where there are none.
  template <std::ranges::random_access_range All>
  std::ranges::range_value_t<All> pick(const All& all) {
    return at(all, index_below(std::ranges::size(all)));
  }
  template <class T>
  T pick(std::initializer_list<T> all) {
    return at(all, index_below(all.size()));
  }
  /// The same, each as often as its weight says beside the others'. Throws exc::BadArgument where there are
  /// not as many weights as elements, and where all are 0. Linear.
  template <std::ranges::random_access_range All>
  std::ranges::range_value_t<All> pick(const All& all, const std::vector<unsigned>& weights) {
    return at(all, index_by(weights, std::ranges::size(all)));
  }
  template <class T>
  T pick(std::initializer_list<T> all, const std::vector<unsigned>& weights) {
    return at(all, index_by(weights, all.size()));
  }
  /// Puts the elements into another order, all orders being equally likely.
  template <std::ranges::random_access_range All>
  void shuffle(All& all) {
    using std::swap;
    for (std::size_t left = std::ranges::size(all); left > 1; --left) {
      const auto other = static_cast<std::ranges::range_difference_t<All>>(below(left));
      const auto last = static_cast<std::ranges::range_difference_t<All>>(left - 1);
      if (other != last) swap(std::ranges::begin(all)[last], std::ranges::begin(all)[other]);
    }
  }
  /// `count` values of `draw`, each another one, in the order in which they came. `draw` is called with this
  /// generator or with nothing; a member function will do (`unique(&generator::dni, 1000)`). Values are
  /// compared by `<`. Throws exc::RunTime that says how many there are when 1000 + 20 x `count` calls in a
  /// row gave nothing new.
  template <class Draw>
  auto unique(Draw draw, std::size_t count) {
    using value = std::decay_t<decltype(drawn(draw))>;
    std::set<value> seen;
    std::vector<value> out;
    std::size_t in_vain = 0;
    while (out.size() < count) {
      value each = drawn(draw);
      if (seen.insert(each).second) {
        out.push_back(std::move(each));
        in_vain = 0;
      } else if (++in_vain == 1000 + 20 * count) {
        refuse_more(out.size(), count);
      }
    }
    return out;
  }

  // --- people

  /// A given name, more than 150 of each sex; a surname, one of some 500. How often each comes follows INE's
  /// statistics of names roughly: what is the n-th most frequent there comes as often as 1 / (n + 7) of the
  /// sum, and of surnames 1 / (n + 3).
  std::wstring name();
  std::wstring name(sex of);
  std::wstring surname();
  /// A given name and two surnames.
  std::wstring full_name();
  std::wstring full_name(sex of);
  /// An adult: "nombre", "apellido1", "apellido2", "sexo" ("mujer" or "hombre"), "nacimiento" (a date from
  /// 1940 to 2005), "nif", "telefono", "correo" (of the name) and "direccion" (see address()).
  bundle person();
  bundle person(sex of);
  /// "razon_social", "nif" of that legal form, "actividad", "telefono", "correo" and "direccion". With
  /// rule::both it is a cooperative, a civil, collective or limited partnership: see there.
  bundle company(rule which = rule::both);

  // --- places

  /// Anywhere in Spain, each province as often as its population says (INE, 2022, in thousands).
  place any_place();
  /// In a province, "01" to "52" as a number; else throws exc::BadArgument.
  place place_in(int province);
  /// One part of any_place().
  std::wstring municipality();
  std::wstring province();
  std::wstring postal_code();
  /// Street and number, at times with floor and door: "Calle Mayor, 12, 3.º B".
  std::wstring street();
  /// "via" (see street()), "codigo_postal", "municipio" and "provincia".
  bundle address();

  // --- identifiers, in the form of identifiers::normalise(), but telephone numbers without prefix

  /// A DNI from 99000000 on, far above what is given out as far as is known; not proved. Some of this range
  /// stand on test certificates (99999999R).
  std::wstring dni();
  /// An NIE of Z from Z9000000 on, which is not reached yet; not proved.
  std::wstring nie();
  /// The NIF of a natural person: nine in ten are DNI, the others NIE.
  std::wstring nif();
  /// The NIF of a company, whose number begins with 69 or 89: these two stood for no province while the
  /// first two digits did; that they were not given out since is not proved.
  std::wstring cif(rule which = rule::both);
  /// The same with the letter of a legal form, a capital. Throws exc::BadArgument for another one, and with
  /// rule::both for those of A, B, E and H.
  std::wstring cif(wchar_t letter, rule which);
  /// An IBAN with right check digits, also those inside of the account for the countries that
  /// identifiers::kind::iban names; throws exc::BadArgument for a country that is not in the registry. The
  /// first four digits of the account are nines: such banks are not known; not proved.
  std::wstring iban(std::wstring_view country = L"ES");
  /// The 20 digits of a Spanish account, as in iban().
  std::wstring ccc();
  /// A card whose first six digits are those of a number that payment services publish for tests. That no
  /// real card begins so is not proved.
  std::wstring card();
  std::wstring card(brand of);
  /// A mobile number that begins with 73, or, one in five, a landline number with 85 or 86. Spain has no
  /// range for fiction that we know of. Of the 40 million numbers from 71 to 74 less than two were assigned
  /// in 2018 (CNMC), of landline numbers nearly all begin with 9: most of these are nobody's, and some are
  /// somebody's.
  std::wstring phone();
  std::wstring mobile();
  /// An address under example.com, example.net or example.org, which reach nobody (RFC 2606).
  std::wstring mail();

  // --- texts

  /// Words of the dummy text that printers use ("lorem ipsum").
  std::wstring word();
  /// So many words, with a blank between.
  std::wstring words(std::size_t count);
  /// Four to fourteen words with a capital and a point, at times with a comma.
  std::wstring sentence();
  /// Three to seven sentences.
  std::wstring paragraph();
  /// So many paragraphs, each in a line; the first begins with "Lorem ipsum dolor sit amet, ".
  std::wstring lorem(std::size_t paragraphs);
  /// The text with a digit for each '#' and a letter A-Z for each '@'.
  std::wstring pattern(std::wstring_view form);

 private:
  template <class All>
  static auto at(const All& all, std::size_t index) {
    return std::ranges::range_value_t<const All>(
        std::ranges::begin(all)[static_cast<std::ranges::range_difference_t<const All>>(index)]);
  }
  template <class Draw>
  auto drawn(Draw& draw) {
    if constexpr (std::invocable<Draw&, generator&>) {
      return std::invoke(draw, *this);
    } else {
      return std::invoke(draw);
    }
  }
  std::size_t index_below(std::size_t count);
  std::size_t index_by(const std::vector<unsigned>& weights, std::size_t count);
  [[noreturn]] static void refuse_more(std::size_t found, std::size_t wanted);

  std::uint64_t state_[4];
  std::uint64_t seed_;
};

namespace detail {
struct recipe_step;
}  // namespace detail

/// How bundles are drawn: a bundle that has for each key what its value is to be.
///
/// - A text is the name of a drawing operation of generator, with what it is called with in brackets: "dni",
///   "iban(FR)", "cif(B)", "card(visa)", "integer(1,10)", "decimal(0.50,99.95)",
///   "date(2020-01-01,2024-12-31)", "words(3)", "pattern(FAC-####)", "chance(20)", "name(mujer)". A decimal
///   is exact; "amount(0.50,99.95)" draws the same as a double, the nearest to its cents. Limits of both have
///   up to 18 digits.
/// - "pick(blanco,negro)" is one of the texts, "pick(alta*9,baja)" with weights.
/// - "person", "company" and "address" are whole bundles. "person.nif" is a part of one; all parts in one
///   bundle of the recipe are of one person, company and address.
/// - A text that begins with "=" is what follows it.
/// - A bundle is a recipe by itself. A list of two, how many ("3..5" or a number) and what each is to be,
///   gives a list.
/// - Anything else, a number or a date, is copied as it is.
///
/// It is read once and may then be used by several threads, each with a generator of its own. Copies share
/// what was read.
class KESTA_API recipe {
 public:
  /// Throws exc::BadArgument with the path of what is wrong and why ("lineas[1].precio: ..."); so does a
  /// recipe of more than 100 levels.
  explicit recipe(const bundle& form);
  recipe(const recipe& other) noexcept;
  recipe& operator=(const recipe& other) noexcept;
  ~recipe();

  /// A bundle, its entries in the order of the recipe's.
  bundle make(generator& from) const;
  /// So many of them.
  list make(generator& from, std::size_t count) const;

 private:
  std::shared_ptr<const rdn::detail::recipe_step> root_;
};

// --- without a generator of one's own

/// The calling thread's generator, which has a seed of the system's random numbers until it gets another.
/// It lives as long as the thread.
KESTA_API generator& mine();
/// Starts the calling thread's generator again: what follows is the same each time.
inline void reseed(std::uint64_t seed) { mine().reseed(seed); }

/// As the operations of generator, with the calling thread's.
inline std::uint64_t below(std::uint64_t bound) { return mine().below(bound); }
inline long long integer(long long from, long long to) { return mine().integer(from, to); }
inline long long amount(long long from_cents, long long to_cents) {
  return mine().amount(from_cents, to_cents);
}
inline ruvo::decimal decimal(const ruvo::decimal& from, const ruvo::decimal& to) {
  return mine().decimal(from, to);
}
inline bool chance(unsigned percent) { return mine().chance(percent); }
inline ruvo::date date(const ruvo::date& from, const ruvo::date& to) { return mine().date(from, to); }
inline std::wstring name() { return mine().name(); }
inline std::wstring name(sex of) { return mine().name(of); }
inline std::wstring surname() { return mine().surname(); }
inline std::wstring full_name() { return mine().full_name(); }
inline std::wstring full_name(sex of) { return mine().full_name(of); }
inline bundle person() { return mine().person(); }
inline bundle person(sex of) { return mine().person(of); }
inline bundle company(rule which = rule::both) { return mine().company(which); }
inline place any_place() { return mine().any_place(); }
inline place place_in(int province) { return mine().place_in(province); }
inline std::wstring municipality() { return mine().municipality(); }
inline std::wstring province() { return mine().province(); }
inline std::wstring postal_code() { return mine().postal_code(); }
inline std::wstring street() { return mine().street(); }
inline bundle address() { return mine().address(); }
inline std::wstring dni() { return mine().dni(); }
inline std::wstring nie() { return mine().nie(); }
inline std::wstring nif() { return mine().nif(); }
inline std::wstring cif(rule which = rule::both) { return mine().cif(which); }
inline std::wstring cif(wchar_t letter, rule which) { return mine().cif(letter, which); }
inline std::wstring iban(std::wstring_view country = L"ES") { return mine().iban(country); }
inline std::wstring ccc() { return mine().ccc(); }
inline std::wstring card() { return mine().card(); }
inline std::wstring card(brand of) { return mine().card(of); }
inline std::wstring phone() { return mine().phone(); }
inline std::wstring mobile() { return mine().mobile(); }
inline std::wstring mail() { return mine().mail(); }
inline std::wstring word() { return mine().word(); }
inline std::wstring words(std::size_t count) { return mine().words(count); }
inline std::wstring sentence() { return mine().sentence(); }
inline std::wstring paragraph() { return mine().paragraph(); }
inline std::wstring lorem(std::size_t paragraphs) { return mine().lorem(paragraphs); }
inline std::wstring pattern(std::wstring_view form) { return mine().pattern(form); }

/// As pick(), shuffle() and unique() of generator, with the calling thread's.
template <std::ranges::random_access_range All>
std::ranges::range_value_t<All> pick(const All& all) {
  return mine().pick(all);
}
template <class T>
T pick(std::initializer_list<T> all) {
  return mine().pick(all);
}
template <std::ranges::random_access_range All>
std::ranges::range_value_t<All> pick(const All& all, const std::vector<unsigned>& weights) {
  return mine().pick(all, weights);
}
template <class T>
T pick(std::initializer_list<T> all, const std::vector<unsigned>& weights) {
  return mine().pick(all, weights);
}
template <std::ranges::random_access_range All>
void shuffle(All& all) {
  mine().shuffle(all);
}
template <class Draw>
auto unique(Draw draw, std::size_t count) {
  return mine().unique(draw, count);
}

}  // namespace ruvo::rdn

#include <ruvo/names_back.hpp>
