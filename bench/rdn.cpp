// SPDX-License-Identifier: BSL-1.0

// Random test data against the same fields drawn by hand with the standard library's generator and
// distributions. The peer has short lists of its own and one control letter; ours has the whole tables.

#include <ruvo/ruvo.hpp>

#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "support/harness.hpp"

namespace {

constexpr int repeats = 1000;  // records of one run

/// Ten fields.
struct record {
  std::wstring name, surname, dni, phone, mail, postal_code, account, status;
  long number = 0;  // yyyymmdd
  long long cents = 0;
};

record drawn_by_kesta(ruvo::rdn::generator& from) {
  static const ruvo::date first(20200101), last(20241231);
  static const std::vector<std::wstring> states = {L"abierto", L"cerrado", L"perdido"};
  record out;
  out.name = from.name();
  out.surname = from.surname();
  out.dni = from.dni();
  out.phone = from.phone();
  out.mail = from.mail();
  out.postal_code = from.postal_code();
  out.account = from.iban();
  out.status = from.pick(states);
  out.number = from.date(first, last);
  out.cents = from.amount(100, 99999);
  return out;
}

class by_hand {
 public:
  record operator()() {
    record out;
    out.name = one(names_);
    out.surname = one(surnames_);
    const long number = static_cast<long>(between(99000000, 99999999));
    out.dni = std::to_wstring(number) + L"TRWAGMYFPDXBNJZSQVHLCKE"[number % 23];
    out.phone = std::to_wstring(between(730000000, 739999999));
    out.mail = one(plain_names_) + L'.' + one(plain_surnames_) + std::to_wstring(between(100, 999)) +
               L"@example.com";
    out.postal_code = std::to_wstring(100000 + between(1001, 52999)).substr(1);
    out.account = L"ES00" + std::to_wstring(between(9999000000000000, 9999999999999999)) +
                  std::to_wstring(between(1000, 9999));
    out.status = one(states_);
    out.number = static_cast<long>(between(2020, 2024) * 10000 + between(1, 12) * 100 + between(1, 28));
    out.cents = between(100, 99999);
    return out;
  }

 private:
  long long between(long long from, long long to) {
    return std::uniform_int_distribution<long long>(from, to)(random_);
  }
  const std::wstring& one(const std::vector<std::wstring>& of) {
    return of[static_cast<std::size_t>(between(0, static_cast<long long>(of.size()) - 1))];
  }

  std::mt19937_64 random_{1};
  std::vector<std::wstring> names_ = {L"Ana", L"Lucía", L"Antonio", L"José Luis", L"María Pilar", L"Marta"};
  std::vector<std::wstring> plain_names_ = {L"ana",      L"lucia",      L"antonio",
                                            L"joseluis", L"mariapilar", L"marta"};
  std::vector<std::wstring> surnames_ = {L"García", L"López", L"Moreno", L"Ruiz", L"Navarro", L"Gil"};
  std::vector<std::wstring> plain_surnames_ = {L"garcia", L"lopez", L"moreno", L"ruiz", L"navarro", L"gil"};
  std::vector<std::wstring> states_ = {L"abierto", L"cerrado", L"perdido"};
};

ruvo::bundle as_bundle(const record& of) {
  ruvo::bundle out;
  out.reserve(10);
  out[L"nombre"] = of.name;
  out[L"apellido"] = of.surname;
  out[L"dni"] = of.dni;
  out[L"telefono"] = of.phone;
  out[L"correo"] = of.mail;
  out[L"codigo_postal"] = of.postal_code;
  out[L"cuenta"] = of.account;
  out[L"estado"] = of.status;
  out[L"alta"] = ruvo::date(of.number);
  out[L"importe"] = static_cast<double>(of.cents) / 100;
  return out;
}

const ruvo::bundle recipe_of_ten = {{L"nombre", L"name"},
                                    {L"apellido", L"surname"},
                                    {L"dni", L"dni"},
                                    {L"telefono", L"phone"},
                                    {L"correo", L"mail"},
                                    {L"codigo_postal", L"postal_code"},
                                    {L"cuenta", L"iban"},
                                    {L"estado", L"pick(abierto,cerrado,perdido)"},
                                    {L"alta", L"date(2020-01-01,2024-12-31)"},
                                    {L"importe", L"amount(1.00,999.99)"}};

template <class Operation>
bench::competitor repeated(const char* name, Operation operation) {
  return {name, [operation]() mutable {
            for (int i = 0; i < repeats; ++i) operation();
          }};
}

}  // namespace

// 5,000,000 records a minute are 12,000 ns each.
int main() {
  bench::table table("rdn");
  const bench::amount records{repeats, bench::amount::operations};
  ruvo::rdn::generator from(1);
  by_hand hand;
  table.row("record", "10 fields", records,
            {repeated("kesta", [&from] { bench::use(drawn_by_kesta(from)); }),
             repeated("std", [&hand] { bench::use(hand()); })},
            {{"std", 0.3}});
  const ruvo::rdn::recipe prepared(recipe_of_ten);
  table.row("bundle by recipe", "10 fields", records,
            {repeated("kesta", [&from, &prepared] { bench::use(prepared.make(from)); }),
             repeated("std", [&hand] { bench::use(as_bundle(hand())); })},
            {{"std", 0.3}});
}
