// SPDX-License-Identifier: BSL-1.0

// Numbers for trade with other countries: VAT, customs.

#include <ruvo/identifiers.hpp>

#include <algorithm>
#include <iterator>

#include "texto/control_sums.hpp"
#include "texto/identifiers/kinds.hpp"

namespace ruvo::identifiers {

namespace {

/// The forms of VAT numbers behind the country, as misfit() has them, with "|" between several.
struct vat_country {
  char code[3];
  const char* forms;
};
constexpr vat_country vat_countries[] = {
    {"AT", "U99999999"},
    {"BE", "9999999999"},
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
    {"NL", "999999999B99"},
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
  return moved(check_forms(text.substr(country_size), country->forms), country_size);
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

}  // namespace ruvo::identifiers
