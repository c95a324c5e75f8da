// SPDX-License-Identifier: BSL-1.0

// Spanish identity numbers, bank accounts and payment cards.

#include <ruvo/texto.hpp>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

#include "base/ascii.hpp"
#include "texto/control_sums.hpp"
#include "texto/identifiers/accounts.hpp"

namespace ruvo::texto {

namespace {

/// One byte per unit. Units above 127 become a character that no number may hold.
std::string narrowed(std::wstring_view text) {
  std::string bytes(text.size(), '?');
  std::transform(text.begin(), text.end(), bytes.begin(),
                 [](wchar_t c) { return static_cast<char16_t>(c) < 128 ? static_cast<char>(c) : '?'; });
  return bytes;
}

constexpr std::size_t nif_size = 9;
constexpr std::string_view nie_letters = "XYZ";

/// Whether `letter` controls the number of seven digits `digits` with `first` before them.
bool controls(int first, std::string_view digits, char letter) {
  if (!are_digits(digits)) return false;
  return upper(letter) == dni_letter(static_cast<unsigned long>(first) * 10000000 + number_of(digits));
}

constexpr std::size_t shortest_iban = 15, longest_iban = 34;

bool is_iban_size(char first, char second, std::size_t size) {
  const char code[] = {upper(first), upper(second)};
  const auto* const country = identifiers::find_account_country({code, 2});
  return country ? size == 4 + identifiers::account_size(country->form)
                 : size >= shortest_iban && size <= longest_iban;
}

}  // namespace

std::wstring limpia_nif_(wide_view text) {
  std::wstring out;
  std::copy_if(text.begin(), text.end(), std::back_inserter(out), is_alnum);
  return out;
}
std::wstring limpia_nif_(const std::wstring& text) { return limpia_nif_(std::wstring_view(text)); }

std::wstring limpia_telefono_(wide_view text, bool keeps_plus) {
  std::wstring out;
  std::copy_if(text.begin(), text.end(), std::back_inserter(out), is_digit);
  const auto first = std::find_if(text.begin(), text.end(), is_digit);
  if (keeps_plus && !out.empty() && std::find(text.begin(), first, L'+') != first) out.insert(0, 1, L'+');
  return out;
}
std::wstring limpia_telefono_(const std::wstring& text, bool keeps_plus) {
  return limpia_telefono_(std::wstring_view(text), keeps_plus);
}

std::wstring ocultar_numeros_cuenta(wide_view text, int n, wchar_t c) {
  if (n < 1 || static_cast<std::size_t>(n) > text.size()) return std::wstring(text);
  const std::size_t hidden = text.size() - static_cast<std::size_t>(n);
  return std::wstring(hidden, c).append(text, hidden);
}
std::wstring ocultar_numeros_cuenta(const std::wstring& text, int n, wchar_t c) {
  return ocultar_numeros_cuenta(std::wstring_view(text), n, c);
}

// The forms of a check for all texts but views of bytes.
#define KESTA_TEXTS_OF_CHECK(check)                                              \
  bool check(wide_view text) { return check(std::string_view(narrowed(text))); } \
  bool check(const std::string& text) { return check(std::string_view(text)); }  \
  bool check(const std::wstring& text) { return check(std::wstring_view(text)); }

bool valida_dni(narrow_view text) {
  return text.size() == nif_size && is_digit_char(text[0]) &&
         controls(text[0] - '0', text.substr(1, 7), text[8]);
}
KESTA_TEXTS_OF_CHECK(valida_dni)

bool valida_nie(narrow_view text) {
  if (text.size() != nif_size) return false;
  const std::size_t first = nie_letters.find(upper(text[0]));
  return first != nie_letters.npos && controls(static_cast<int>(first), text.substr(1, 7), text[8]);
}
KESTA_TEXTS_OF_CHECK(valida_nie)

bool valida_cif(narrow_view text) {
  static constexpr int weights[] = {2, 4, 8, 5, 10, 9, 7};
  if (text.size() != nif_size || !is_alpha_char(text[0])) return false;
  const std::string_view digits = text.substr(1, 7);
  if (!are_digits(digits)) return false;
  int sum = upper(text[0]) - 48;
  for (std::size_t i = 0; i < digits.size(); ++i) sum += weights[i] * (digits[i] - '0');
  const std::size_t index = static_cast<std::size_t>(sum % 11);
  return index < 10 && upper(text[8]) == "JABCDEFGHI"[index];
}
KESTA_TEXTS_OF_CHECK(valida_cif)

bool valida_nif(narrow_view text) {
  if (text.size() != nif_size) return false;
  if (!is_alpha_char(text[0])) return valida_dni(text);
  return nie_letters.find(upper(text[0])) != nie_letters.npos ? valida_nie(text) : valida_cif(text);
}
KESTA_TEXTS_OF_CHECK(valida_nif)

bool valida_iban(narrow_view text) {
  const bool has_form = text.size() >= shortest_iban && is_alpha_char(text[0]) && is_alpha_char(text[1]) &&
                        is_iban_size(text[0], text[1], text.size()) &&
                        std::all_of(text.begin(), text.end(), [](char c) { return is_alnum(unit_of(c)); });
  if (!has_form) return false;
  const std::string_view check = text.substr(2, 2);
  if (!are_digits(check) || check < "02" || check > "98") return false;
  return remainder_97(remainder_97(0, text.substr(4)), text.substr(0, 4)) == 1;
}
KESTA_TEXTS_OF_CHECK(valida_iban)

bool valida_iban_esp(narrow_view text) {
  return text.size() == 24 && upper(text[0]) == 'E' && upper(text[1]) == 'S' && are_digits(text.substr(2)) &&
         valida_iban(text);
}
KESTA_TEXTS_OF_CHECK(valida_iban_esp)

bool valida_tarjeta_credito(narrow_view text) {
  return !text.empty() && are_digits(text) && luhn_remainder(text) == 0;
}
KESTA_TEXTS_OF_CHECK(valida_tarjeta_credito)

}  // namespace ruvo::texto
