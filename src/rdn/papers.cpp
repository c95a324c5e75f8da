// SPDX-License-Identifier: BSL-1.0

// Identifiers: numbers of ranges that are nobody's as far as is known, with right control characters.

#include <ruvo/exc.hpp>
#include <ruvo/identifiers.hpp>
#include <ruvo/rdn.hpp>
#include <ruvo/texto.hpp>

#include <algorithm>
#include <iterator>

#include "base/ascii.hpp"
#include "rdn/tables.hpp"
#include "texto/identifiers/accounts.hpp"
#include "texto/identifiers/kinds.hpp"

namespace ruvo::rdn {

namespace {

/// The digits of a number, with zeros before them.
void append_number(std::wstring& out, std::uint64_t number, std::size_t digits) {
  out.append(digits, L'0');
  for (auto at = out.rbegin(); number > 0; ++at, number /= 10) *at = static_cast<wchar_t>(L'0' + number % 10);
}

// Which control a legal form has: a digit, a letter, or either.
constexpr std::wstring_view with_digit = L"ABEH", with_letter = L"NPQRSW", with_either = L"CDFGJUV";

/// A number of seven digits that no province had.
unsigned long company_number(generator& from) {
  const unsigned long first = from.below(2) == 0 ? 6900000 : 8900000;
  return first + static_cast<unsigned long>(from.below(100000));
}

/// The control letter, also where the form would take a digit: that of a form that takes letters alone.
wchar_t letter_of_company(unsigned long number) { return identifiers::control_of_company(L'P', number); }

/// Writes digits and letters in the form of a country's accounts, the first four digits nines, and gives
/// their end.
char* draw_account(char* to, generator& from, std::wstring_view form) {
  std::size_t count = 0, nines = 4;
  for (const wchar_t c : form) {
    if (texto::is_digit(c)) {
      count = count * 10 + static_cast<std::size_t>(c - L'0');
      continue;
    }
    for (; count > 0; --count) {
      const auto drawn = static_cast<char>(from.below(c == L'n' ? 10 : c == L'a' ? 26 : 36));
      if (c == L'n' && nines > 0) {
        *to++ = '9';
        --nines;
      } else {
        const bool is_letter = c == L'a' || drawn > 9;
        *to++ = static_cast<char>(!is_letter ? '0' + drawn : c == L'a' ? 'A' + drawn : 'A' + drawn - 10);
      }
    }
  }
  return to;
}

const identifiers::account_country* find_country(std::wstring_view code) {
  if (code.size() != 2 || !texto::is_upper(code[0]) || !texto::is_upper(code[1])) return nullptr;
  const char narrow[] = {static_cast<char>(code[0]), static_cast<char>(code[1])};
  return identifiers::find_account_country({narrow, 2});
}

/// Of the numbers that payment services publish for tests: their first six digits.
struct card_row {
  brand of;
  const wchar_t* first;
  std::size_t digits;
};
constexpr card_row cards[] = {{brand::visa, L"411111", 16},
                              {brand::mastercard, L"555555", 16},
                              {brand::american_express, L"378282", 15},
                              {brand::diners_club, L"305693", 14},
                              {brand::discover, L"601111", 16},
                              {brand::jcb, L"353011", 16}};

std::wstring card_of(generator& from, const card_row& row) {
  std::wstring out = row.first;
  append_digits(out, from, row.digits - out.size() - 1);
  return identifiers::with_control(identifiers::kind::card, out + L'0');
}

}  // namespace

std::wstring generator::dni() {
  const auto number = static_cast<unsigned long>(99000000 + below(1000000));
  std::wstring out;
  append_number(out, number, 8);
  return out += identifiers::control_of_dni(number);
}

std::wstring generator::nie() {
  const auto number = static_cast<unsigned long>(9000000 + below(1000000));
  std::wstring out = L"Z";
  append_number(out, number, 7);
  return out += identifiers::control_of_dni(20000000 + number);
}

std::wstring generator::nif() { return chance(90) ? dni() : nie(); }

std::wstring generator::cif(rule which) {
  static constexpr std::wstring_view all = L"ABEHCDFGJUVNPQRSW";
  const std::wstring_view letters = which == rule::both ? all.substr(with_digit.size()) : all;
  return cif(letters[below(letters.size())], which);
}

std::wstring generator::cif(wchar_t letter, rule which) {
  const bool is_form = (with_either.find(letter) != with_either.npos) ||
                       (with_letter.find(letter) != with_letter.npos) ||
                       (which == rule::official && with_digit.find(letter) != with_digit.npos);
  if (!is_form) throw exc::BadArgument(std::wstring(L"cif: ") + letter);
  for (;;) {
    const unsigned long number = company_number(*this);
    std::wstring out(1, letter);
    append_number(out, number, 7);
    out += which == rule::both ? letter_of_company(number) : identifiers::control_of_company(letter, number);
    if (which == rule::official || texto::valida_cif(out)) return out;
  }
}

std::wstring generator::iban(std::wstring_view country) {
  const identifiers::account_country* const row = find_country(country);
  if (!row) throw exc::BadArgument(L"iban: " + std::wstring(country));
  char text[identifiers::compact::room] = {row->code[0], row->code[1], '0', '0'};
  char* const end = draw_account(text + 4, *this, row->form);
  identifiers::complete_iban(text, static_cast<std::size_t>(end - text));
  return {text, end};
}

std::wstring generator::ccc() { return iban().substr(4); }

std::wstring generator::card() { return card_of(*this, draw_row(*this, cards)); }
std::wstring generator::card(brand of) {
  const auto row =
      std::find_if(std::begin(cards), std::end(cards), [of](const card_row& each) { return each.of == of; });
  if (row == std::end(cards)) throw exc::BadArgument(L"card");
  return card_of(*this, *row);
}

std::wstring generator::phone() {
  if (!chance(20)) return mobile();
  std::wstring out = below(2) == 0 ? L"85" : L"86";
  append_digits(out, *this, 7);
  return out;
}

std::wstring generator::mobile() {
  std::wstring out = L"73";
  append_digits(out, *this, 7);
  return out;
}

}  // namespace ruvo::rdn
