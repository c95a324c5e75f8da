// SPDX-License-Identifier: BSL-1.0

// Amounts in Spanish words.

#include "texto/amounts.hpp"

#include <ruvo/texto.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "base/numbers.hpp"

namespace ruvo::texto {

namespace {

using row = const wchar_t* const[10];

constexpr row units = {L"",      L"Uno",  L"Dos",   L"Tres", L"Cuatro",
                       L"Cinco", L"Seis", L"Siete", L"Ocho", L"Nueve"};
constexpr row teens = {L"",       L"Once",      L"Doce",       L"Trece",     L"Catorce",
                       L"Quince", L"Dieciséis", L"Diecisiete", L"Dieciocho", L"Diecinueve"};
constexpr row twenties = {L"Veinte",      L"Veintiuno",  L"Veintidós",   L"Veintitrés", L"Veinticuatro",
                          L"Veinticinco", L"Veintiséis", L"Veintisiete", L"Veintiocho", L"Veintinueve"};
constexpr row tens = {L"",          L"Diez",    L"Veinte",  L"Treinta", L"Cuarenta",
                      L"Cincuenta", L"Sesenta", L"Setenta", L"Ochenta", L"Noventa"};
constexpr row hundreds = {L"",           L"Ciento",      L"Doscientos",  L"Trescientos", L"Cuatrocientos",
                          L"Quinientos", L"Seiscientos", L"Setecientos", L"Ochocientos", L"Novecientos"};

/// Of the powers of a million.
constexpr const wchar_t* ones[] = {L"Millón",     L"Billón",     L"Trillón",
                                   L"Cuatrillón", L"Quintillón", L"Sextillón"};
constexpr const wchar_t* millions[] = {L"Millones",     L"Billones",     L"Trillones",
                                       L"Cuatrillones", L"Quintillones", L"Sextillones"};

/// Whether a number stands alone or before a noun, where a final "uno" is shortened.
enum class place { alone, before_noun };

void append_word(std::wstring& out, const wchar_t* word) {
  if (!out.empty()) out.push_back(L' ');
  out.append(word);
}

/// 1 to 99.
void add_below_hundred(std::wstring& out, unsigned int n, place where) {
  const unsigned int ten = n / 10, unit = n % 10;
  const bool shorten = unit == 1 && where == place::before_noun;
  if (ten == 2) return append_word(out, shorten ? L"Veintiún" : twenties[unit]);
  if (ten == 1) return append_word(out, unit ? teens[unit] : tens[1]);
  if (ten) append_word(out, tens[ten]);
  if (ten && unit) append_word(out, L"y");
  if (unit) append_word(out, shorten ? L"Un" : units[unit]);
}

/// 0 to 999; nothing for 0.
void add_group(std::wstring& out, unsigned int n, place where) {
  if (n == 100) return append_word(out, L"Cien");
  if (n >= 100) append_word(out, hundreds[n / 100]);
  if (n % 100) add_below_hundred(out, n % 100, where);
}

/// 0 to 999999; nothing for 0.
void add_below_million(std::wstring& out, unsigned int n, place where) {
  if (n >= 2000) add_group(out, n / 1000, place::before_noun);
  if (n >= 1000) append_word(out, L"Mil");
  add_group(out, n % 1000, where);
}

/// A number of something, itself below a million; nothing for 0.
void add_counted(std::wstring& out, unsigned int n, const wchar_t* one, const wchar_t* many) {
  add_below_million(out, n, place::before_noun);
  if (n) append_word(out, n == 1 ? one : many);
}

}  // namespace

std::wstring amount_in_words(bool is_negative, std::wstring_view whole, unsigned int cents) {
  whole.remove_prefix(std::min(whole.find_first_not_of(L'0'), whole.size()));
  if (whole.empty() && cents == 0) return L"Cero";
  std::wstring out = is_negative ? L"Menos" : L"";
  if (whole.empty()) append_word(out, L"Cero");
  while (!whole.empty()) {
    constexpr std::size_t group = 6;
    const std::size_t behind = (whole.size() - 1) / group, digits = whole.size() - behind * group;
    const auto count = static_cast<unsigned int>(read_integer(whole.substr(0, digits)));
    if (behind == 0) {
      add_below_million(out, count, place::alone);
    } else {
      add_counted(out, count, ones[behind - 1], millions[behind - 1]);
    }
    whole.remove_prefix(digits);
  }
  if (cents) append_word(out, L"con");
  add_counted(out, cents, L"Céntimo", L"Céntimos");
  return out;
}

std::wstring cifras_letras(double amount) {
  constexpr double limit = 1e15;
  if (!(std::fabs(amount) < limit)) return unsupported_number;
  std::wstring figures;
  append_fixed(figures, std::fabs(amount), 2);
  const std::wstring_view digits = figures;
  const auto cents = static_cast<unsigned int>(read_integer(digits.substr(digits.size() - 2)));
  return amount_in_words(amount < 0, digits.substr(0, digits.size() - 3), cents);
}

}  // namespace ruvo::texto
