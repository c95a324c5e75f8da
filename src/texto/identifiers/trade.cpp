// SPDX-License-Identifier: BSL-1.0

// Numbers for trade with other countries: VAT, customs.

#include <ruvo/identifiers.hpp>

#include <algorithm>
#include <iterator>

#include "texto/control_sums.hpp"
#include "texto/identifiers/kinds.hpp"

namespace ruvo::identifiers {

namespace {

/// The last two of the ten digits of an enterprise.
void put_belgian_control(char* text) noexcept {
  texto::put_pair(text + 10, 97 - static_cast<int>(texto::number_of({text + 2, 8}) % 97));
}

/// Whether the nine digits are an RSIN: weighed by 9 to 2, and the last one by -1, their sum is a multiple of
/// 11.
bool is_rsin(std::string_view nine_digits) {
  int sum = '0' - nine_digits[8];
  for (int i = 0; i < 8; ++i) sum += (9 - i) * (nine_digits[static_cast<std::size_t>(i)] - '0');
  return sum % 11 == 0 && texto::number_of(nine_digits) != 0;
}

/// Behind an RSIN stand any two digits, else those that make the whole 1 modulo 97.
void put_dutch_control(char* text) noexcept {
  if (is_rsin({text + 2, 9})) return;
  const int remainder = texto::remainder_97(texto::remainder_97(0, {text, 12}), "00");
  texto::put_pair(text + 12, 98 - remainder);
}

/// The forms of VAT numbers behind the country, as misfit() has them, with "|" between several.
struct vat_country {
  char code[3];
  const char* forms;
  /// Writes the control digits, the last two, into a number of the form, unless they are right. Null where
  /// the form is all that is looked at.
  void (*put_control)(char* text) noexcept = nullptr;
};
constexpr vat_country vat_countries[] = {
    {"AT", "U99999999"},
    {"BE", "0999999999|1999999999", put_belgian_control},
    {"BG", "999999999|9999999999"},
    {"CY", "99999999@"},
    {"CZ", "99999999|999999999|9999999999"},
    {"DE", "999999999"},
    {"DK", "99999999"},
    {"EE", "999999999"},
    {"EL", "999999999"},
    {"ES", "#9999999#"},
    {"FI", "99999999"},
    {"FR", "##999999999"},
    {"HR", "99999999999"},
    {"HU", "99999999"},
    {"IE", "9*99999@|9999999@@"},
    {"IT", "99999999999"},
    {"LT", "999999999|999999999999"},
    {"LU", "99999999"},
    {"LV", "99999999999"},
    {"MT", "99999999"},
    {"NL", "999999999B99", put_dutch_control},
    {"PL", "9999999999"},
    {"PT", "999999999"},
    {"RO", "99|999|9999|99999|999999|9999999|99999999|999999999|9999999999"},
    {"SE", "999999999999"},
    {"SI", "99999999"},
    {"SK", "9999999999"},
    {"XI", "999999999|999999999999|GD999|HA999"},
};

const vat_country* find_vat_country(std::string_view code) {
  const auto* const row = std::find_if(std::begin(vat_countries), std::end(vat_countries),
                                       [code](const vat_country& country) { return code == country.code; });
  return row != std::end(vat_countries) ? row : nullptr;
}

constexpr std::size_t country_size = 2;

/// What the form that goes farthest says of the text behind the country; a wrong length where none has its
/// length.
verdict check_forms(std::string_view text, std::string_view forms) {
  std::size_t longest = 0, farthest = 0;
  bool has_length = false;
  while (!forms.empty()) {
    const std::string_view form = forms.substr(0, forms.find('|'));
    forms.remove_prefix(std::min(form.size() + 1, forms.size()));
    longest = std::max(longest, form.size());
    if (form.size() != text.size()) continue;
    const std::size_t at = misfit(text, form);
    if (at == text.npos) return {};
    has_length = true;
    farthest = std::max(farthest, at);
  }
  return has_length ? faulty(fault::character, farthest) : faulty(fault::length, longest);
}

/// Of a number that has one of the country's forms.
verdict check_control_digits(std::string_view text, const vat_country& country) {
  char right[compact::room];
  std::copy(text.begin(), text.end(), right);
  country.put_control(right);
  const std::size_t at = text.size() - 2;
  return compared(text.substr(at), {right + at, 2}, fault::control, at);
}

verdict check_spanish(std::string_view text) {
  const verdict found = check_compact(kind::nif, text.substr(country_size));
  return found.what == fault::length ? faulty(fault::length, 11, "11") : moved(found, country_size);
}

/// Customs know Greece by its code of ISO 3166, and the United Kingdom.
bool is_customs_country(std::string_view code) {
  if (code == "EL") return false;
  return code == "GR" || code == "GB" || find_vat_country(code) != nullptr;
}

}  // namespace

verdict check_vat(std::string_view text) noexcept {
  const vat_country* const country = find_vat_country(text.substr(0, country_size));
  if (!country) return faulty(fault::beginning, 0);
  if (text.starts_with("ES")) return check_spanish(text);
  const verdict found = moved(check_forms(text.substr(country_size), country->forms), country_size);
  return found && country->put_control ? check_control_digits(text, *country) : found;
}

verdict check_eori(std::string_view text) noexcept {
  if (!is_customs_country(text.substr(0, country_size))) return faulty(fault::beginning, 0);
  return text.starts_with("ES") ? check_spanish(text) : verdict{};
}

bool complete_behind_country(char* text, std::size_t size) noexcept {
  if (!std::string_view(text, size).starts_with("ES")) return true;
  return size == country_size + rules_of(kind::nif).least &&
         complete_nif(text + country_size, size - country_size);
}

bool complete_vat(char* text, std::size_t size) noexcept {
  const std::string_view all(text, size);
  const vat_country* const country = find_vat_country(all.substr(0, country_size));
  if (!country || !country->put_control) return complete_behind_country(text, size);
  if (check_vat(all)) return true;
  std::fill_n(text + size - 2, 2, '0');
  if (check_forms(all.substr(country_size), country->forms)) country->put_control(text);
  return true;
}

}  // namespace ruvo::identifiers
