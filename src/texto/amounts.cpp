// SPDX-License-Identifier: BSL-1.0

// Amounts in Spanish words.

#include <ruvo/texto.hpp>

#include <cmath>

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

std::wstring cifras_letras(double amount) {
  constexpr double limit = 1e15;
  if (!(std::fabs(amount) < limit)) return unsupported_number;
  std::wstring figures;
  append_fixed(figures, std::fabs(amount), 2);
  const auto whole = static_cast<unsigned long long>(read_integer(figures));
  const auto cents =
      static_cast<unsigned int>(read_integer(std::wstring_view(figures).substr(figures.size() - 2)));
  if (whole == 0 && cents == 0) return L"Cero";

  constexpr unsigned long long million = 1000000;
  std::wstring out = amount < 0 ? L"Menos" : L"";
  if (whole == 0) append_word(out, L"Cero");
  add_counted(out, static_cast<unsigned int>(whole / million / million), L"Billón", L"Billones");
  add_counted(out, static_cast<unsigned int>(whole / million % million), L"Millón", L"Millones");
  add_below_million(out, static_cast<unsigned int>(whole % million), place::alone);
  if (cents) append_word(out, L"con");
  add_counted(out, cents, L"Céntimo", L"Céntimos");
  return out;
}

}  // namespace ruvo::texto
