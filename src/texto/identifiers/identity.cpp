// SPDX-License-Identifier: BSL-1.0

// Numbers of people and of companies.

#include <ruvo/identifiers.hpp>

#include <algorithm>
#include <iterator>

#include "texto/control_sums.hpp"
#include "texto/identifiers/kinds.hpp"

namespace ruvo::identifiers {

namespace {

constexpr std::size_t control_at = 8;
constexpr std::string_view foreign_letters = "XYZ", other_people = "KLM";
constexpr std::string_view company_letters = "JABCDEFGHI";

enum class control_sort : unsigned char { digit, letter, either };

struct legal_form {
  char letter;
  control_sort control;
  const wchar_t* name;
};
constexpr legal_form legal_forms[] = {
    {'A', control_sort::digit, L"Sociedad anónima"},
    {'B', control_sort::digit, L"Sociedad limitada"},
    {'C', control_sort::either, L"Sociedad colectiva"},
    {'D', control_sort::either, L"Sociedad comanditaria"},
    {'E', control_sort::digit, L"Comunidad de bienes o herencia yacente"},
    {'F', control_sort::either, L"Sociedad cooperativa"},
    {'G', control_sort::either, L"Asociación"},
    {'H', control_sort::digit, L"Comunidad de propietarios"},
    {'J', control_sort::either, L"Sociedad civil"},
    {'N', control_sort::letter, L"Entidad extranjera"},
    {'P', control_sort::letter, L"Corporación local"},
    {'Q', control_sort::letter, L"Organismo público"},
    {'R', control_sort::letter, L"Congregación o institución religiosa"},
    {'S', control_sort::letter, L"Órgano de la Administración"},
    {'U', control_sort::either, L"Unión temporal de empresas"},
    {'V', control_sort::either, L"Otro tipo de entidad"},
    {'W', control_sort::letter, L"Establecimiento permanente de entidad no residente"},
};

const legal_form* find_form(char letter) {
  const auto* const row = std::find_if(std::begin(legal_forms), std::end(legal_forms),
                                       [letter](const legal_form& form) { return form.letter == letter; });
  return row != std::end(legal_forms) ? row : nullptr;
}

/// What the control character of seven digits is, 0 to 9: odd places, counted from 1, count twice by the sum
/// of their digits.
std::size_t company_control(std::string_view seven_digits) {
  int sum = 0;
  for (std::size_t i = 0; i < seven_digits.size(); ++i) {
    const int digit = seven_digits[i] - '0', twice = digit * 2;
    sum += i % 2 == 1 ? digit : twice / 10 + twice % 10;
  }
  return static_cast<std::size_t>((10 - sum % 10) % 10);
}

/// The right control character: of the two that may stand, the one of the sort that `given` is.
char right_company_control(const legal_form& form, std::string_view seven_digits, char given) {
  const std::size_t control = company_control(seven_digits);
  const bool may_be_letter = form.control != control_sort::digit || seven_digits.starts_with("00");
  const bool is_letter =
      form.control == control_sort::letter || (may_be_letter && texto::is_alpha_char(given));
  return is_letter ? company_letters[control] : static_cast<char>('0' + control);
}

verdict check_control(std::string_view text, char right) {
  if (text[control_at] == right) return {};
  return faulty(fault::control, control_at, {&right, 1});
}

/// K, L or M before seven digits.
verdict check_other_person(std::string_view text) {
  const std::size_t at = misfit(text, "@9999999@");
  if (at != text.npos) return faulty(fault::character, at);
  return check_control(text, texto::dni_letter(texto::number_of(text.substr(1, 7))));
}

bool begins_with_one_of(std::string_view text, std::string_view letters) {
  return letters.find(text[0]) != letters.npos;
}

}  // namespace

verdict check_dni(std::string_view text) noexcept {
  const std::size_t at = misfit(text, "99999999@");
  if (at != text.npos) return faulty(fault::character, at);
  return check_control(text, texto::dni_letter(texto::number_of(text.substr(0, control_at))));
}

verdict check_nie(std::string_view text) noexcept {
  const std::size_t first = foreign_letters.find(text[0]);
  if (first == foreign_letters.npos) return faulty(fault::beginning, 0);
  const std::size_t at = misfit(text, "@9999999@");
  if (at != text.npos) return faulty(fault::character, at);
  const auto high = static_cast<unsigned long>(first) * 10000000;
  return check_control(text, texto::dni_letter(high + texto::number_of(text.substr(1, 7))));
}

verdict check_company(std::string_view text) noexcept {
  const legal_form* const form = find_form(text[0]);
  if (!form) return faulty(fault::beginning, 0);
  const std::size_t at = misfit(text, "@9999999#");
  if (at != text.npos) return faulty(fault::character, at);
  return check_control(text, right_company_control(*form, text.substr(1, 7), text[control_at]));
}

verdict check_nif(std::string_view text) noexcept {
  if (texto::is_digit_char(text[0])) return check_dni(text);
  if (begins_with_one_of(text, foreign_letters)) return check_nie(text);
  return begins_with_one_of(text, other_people) ? check_other_person(text) : check_company(text);
}

bool complete_nif(char* text, std::size_t size) noexcept {
  const verdict found = check_nif({text, size});
  if (found.what == fault::character && found.position == control_at + 1) {
    text[control_at] = 'A';  // a digit where a letter has to be
    return complete_nif(text, size);
  }
  if (found.what == fault::control) text[control_at] = static_cast<char>(found.expected[0]);
  return found || found.what == fault::control;
}

std::wstring format_nif(std::string_view text) {
  std::wstring out(text.begin(), text.end());
  if (texto::is_alpha_char(text[control_at])) out.insert(control_at, 1, L'-');
  if (texto::is_alpha_char(text[0])) out.insert(1, 1, L'-');
  return out;
}

std::wstring_view describe_nif(std::string_view text) noexcept {
  if (texto::is_digit_char(text[0])) return L"Persona física";
  if (begins_with_one_of(text, foreign_letters)) return L"Extranjero";
  switch (text[0]) {
    case 'K':
      return L"Español menor de 14 años";
    case 'L':
      return L"Español residente en el extranjero";
    case 'M':
      return L"Extranjero sin NIE";
    default:
      return find_form(text[0])->name;
  }
}

wchar_t control_of_dni(unsigned long number) noexcept {
  return number <= 99999999 ? texto::unit_of(texto::dni_letter(number)) : L'\0';
}

wchar_t control_of_company(wchar_t letter, unsigned long number) noexcept {
  const legal_form* const form =
      static_cast<char16_t>(letter) < 128 ? find_form(static_cast<char>(letter)) : nullptr;
  if (!form || number > 9999999) return L'\0';
  char digits[7];
  for (char* at = std::end(digits); at != digits; number /= 10) *--at = static_cast<char>('0' + number % 10);
  return texto::unit_of(right_company_control(*form, {digits, 7}, '0'));
}

}  // namespace ruvo::identifiers
