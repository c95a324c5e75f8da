// SPDX-License-Identifier: BSL-1.0

// Accounts of all countries that have IBANs.

#include "texto/identifiers/accounts.hpp"

#include <algorithm>
#include <iterator>

#include "texto/control_sums.hpp"

namespace ruvo::identifiers {

namespace {

using enum account_control;

// In the order of the codes.
constexpr account_country countries[] = {
    {"AD", none, L"8n12c"},        {"AE", none, L"19n"},        {"AL", none, L"8n16c"},
    {"AT", none, L"16n"},          {"AZ", none, L"4a20c"},      {"BA", modulo_97, L"16n"},
    {"BE", belgium, L"12n"},       {"BG", none, L"4a6n8c"},     {"BH", none, L"4a14c"},
    {"BI", none, L"23n"},          {"BR", none, L"23n1a1c"},    {"BY", none, L"4c4n16c"},
    {"CH", none, L"5n12c"},        {"CR", none, L"18n"},        {"CY", none, L"8n16c"},
    {"CZ", none, L"20n"},          {"DE", none, L"18n"},        {"DJ", none, L"23n"},
    {"DK", none, L"14n"},          {"DO", none, L"4c20n"},      {"EE", none, L"16n"},
    {"EG", none, L"25n"},          {"ES", spain, L"20n"},       {"FI", none, L"14n"},
    {"FK", none, L"2a12n"},        {"FO", none, L"14n"},        {"FR", france, L"5n5n11c2n"},
    {"GB", none, L"4a14n"},        {"GE", none, L"2a16n"},      {"GI", none, L"4a15c"},
    {"GL", none, L"14n"},          {"GR", none, L"7n16c"},      {"GT", none, L"4c20c"},
    {"HN", none, L"4a20n"},        {"HR", none, L"17n"},        {"HU", none, L"24n"},
    {"IE", none, L"4a14n"},        {"IL", none, L"19n"},        {"IQ", none, L"4a15n"},
    {"IS", none, L"22n"},          {"IT", italy, L"1a5n5n12c"}, {"JO", none, L"4a4n18c"},
    {"KW", none, L"4a22c"},        {"KZ", none, L"3n13c"},      {"LB", none, L"4n20c"},
    {"LC", none, L"4a24c"},        {"LI", none, L"5n12c"},      {"LT", none, L"16n"},
    {"LU", none, L"3n13c"},        {"LV", none, L"4a13c"},      {"LY", none, L"21n"},
    {"MC", france, L"5n5n11c2n"},  {"MD", none, L"2c18c"},      {"ME", modulo_97, L"18n"},
    {"MK", modulo_97, L"3n10c2n"}, {"MN", none, L"16n"},        {"MR", none, L"23n"},
    {"MT", none, L"4a5n18c"},      {"MU", none, L"4a19n3a"},    {"NI", none, L"4a20n"},
    {"NL", none, L"4a10n"},        {"NO", none, L"11n"},        {"OM", none, L"3n16c"},
    {"PK", none, L"4a16c"},        {"PL", none, L"24n"},        {"PS", none, L"4a21c"},
    {"PT", modulo_97, L"21n"},     {"QA", none, L"4a21c"},      {"RO", none, L"4a16c"},
    {"RS", modulo_97, L"18n"},     {"RU", none, L"14n15c"},     {"SA", none, L"2n18c"},
    {"SC", none, L"4a20n3a"},      {"SD", none, L"14n"},        {"SE", none, L"20n"},
    {"SI", modulo_97, L"15n"},     {"SK", none, L"20n"},        {"SM", italy, L"1a5n5n12c"},
    {"SO", none, L"19n"},          {"ST", none, L"21n"},        {"SV", none, L"4a20n"},
    {"TL", modulo_97, L"19n"},     {"TN", none, L"20n"},        {"TR", none, L"5n1n16c"},
    {"UA", none, L"6n19c"},        {"VA", none, L"18n"},        {"VG", none, L"4a16n"},
    {"XK", modulo_97, L"16n"},     {"YE", none, L"4a4n18c"},
};

/// Calls `take` with each run of the form, a length and a class, until it returns false.
template <class Take>
void for_each_run(std::wstring_view form, Take take) noexcept {
  std::size_t length = 0;
  for (const wchar_t c : form) {
    if (texto::is_digit(c)) {
      length = length * 10 + static_cast<std::size_t>(c - L'0');
    } else {
      if (!take(length, c)) return;
      length = 0;
    }
  }
}

bool has_class(char c, wchar_t of) {
  switch (of) {
    case L'n':
      return texto::is_digit_char(c);
    case L'a':
      return texto::is_alpha_char(c);
    default:
      return texto::is_digit_char(c) || texto::is_alpha_char(c);
  }
}

/// The control digit of ten digits of a Spanish account, by the powers of two modulo 11.
char spanish_digit(std::string_view ten_digits) {
  int sum = 0, weight = 1;
  for (const char digit : ten_digits) {
    sum += (digit - '0') * weight;
    weight = weight * 2 % 11;
  }
  const int control = 11 - sum % 11;
  return static_cast<char>('0' + (control == 10 ? 1 : control % 11));
}

/// The first digit controls bank and branch, filled with zeros, the second the number.
void put_spanish_control(char* account) {
  const char filled[] = {'0',        '0',        account[0], account[1], account[2],
                         account[3], account[4], account[5], account[6], account[7]};
  account[8] = spanish_digit({filled, 10});
  account[9] = spanish_digit({account + 10, 10});
}

/// Letters count by their place in rows of nine, the last of which begins with S as 2.
char french_digit(char c) {
  if (texto::is_digit_char(c)) return c;
  const int letter = c - 'A';
  return static_cast<char>('1' + (letter < 18 ? letter % 9 : letter - 17));
}

void put_french_control(char* account) {
  int remainder = 0;
  for (int i = 0; i < 21; ++i) remainder = (remainder * 10 + (french_digit(account[i]) - '0')) % 97;
  texto::put_pair(account + 21, 97 - remainder * 100 % 97);
}

/// The characters in odd places, counted from 1, count by a table, the others by their place in the alphabet
/// or as digits.
void put_italian_control(char* account) {
  constexpr int odd[] = {1,  0,  5, 7, 9, 13, 15, 17, 19, 21, 2,  4,  18,
                         20, 11, 3, 6, 8, 12, 14, 16, 10, 22, 25, 24, 23};
  int sum = 0;
  for (int i = 1; i <= 22; ++i) {
    const int value = account[i] - (texto::is_digit_char(account[i]) ? '0' : 'A');
    sum += i % 2 == 1 ? odd[value] : value;
  }
  account[0] = static_cast<char>('A' + sum % 26);
}

}  // namespace

const account_country* find_account_country(std::string_view code) noexcept {
  const auto* const row = std::lower_bound(
      std::begin(countries), std::end(countries), code,
      [](const account_country& country, std::string_view wanted) { return country.code < wanted; });
  return row != std::end(countries) && row->code == code ? row : nullptr;
}

std::size_t account_size(std::wstring_view form) noexcept {
  std::size_t size = 0;
  for_each_run(form, [&size](std::size_t length, wchar_t) {
    size += length;
    return true;
  });
  return size;
}

std::size_t account_misfit(std::string_view account, std::wstring_view form) noexcept {
  std::size_t at = 0;
  bool fits = true;
  for_each_run(form, [&](std::size_t length, wchar_t of) {
    for (; length > 0 && fits; --length) {
      fits = has_class(account[at], of);
      if (fits) ++at;
    }
    return fits;
  });
  return fits ? account.npos : at;
}

account_place control_place(account_control control, std::size_t size) noexcept {
  switch (control) {
    case none:
      return {};
    case italy:
      return {0, 1};
    case spain:
      return {8, 2};
    default:
      return {size - 2, 2};
  }
}

void put_account_control(account_control control, char* account, std::size_t size) noexcept {
  const std::string_view body(account, size - 2);
  switch (control) {
    case none:
      return;
    case belgium: {
      const int remainder = texto::remainder_97(0, body);
      return texto::put_pair(account + size - 2, remainder == 0 ? 97 : remainder);
    }
    case france:
      return put_french_control(account);
    case italy:
      return put_italian_control(account);
    case modulo_97:
      return texto::put_pair(account + size - 2,
                             98 - texto::remainder_97(texto::remainder_97(0, body), "00"));
    case spain:
      return put_spanish_control(account);
  }
}

}  // namespace ruvo::identifiers
