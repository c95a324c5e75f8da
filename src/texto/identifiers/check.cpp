// SPDX-License-Identifier: BSL-1.0

// The kinds of identifiers, and what is done with all of them alike.

#include <ruvo/identifiers.hpp>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

#include "base/numbers.hpp"
#include "base/unicode.hpp"
#include "texto/control_sums.hpp"
#include "texto/identifiers/accounts.hpp"
#include "texto/identifiers/kinds.hpp"

namespace ruvo::identifiers {

namespace {

constexpr const wchar_t* no_such_country = L"el país no es conocido";

// In the order of the enumerators.
constexpr kind_rules all_rules[] = {
    {L"DNI", L"", L"", L"", 9, 9, "9", check_dni, complete_nif, format_nif, describe_nif},
    {L"NIE", L"debe empezar por X, Y o Z", L"", L"", 9, 9, "9", check_nie, complete_nif, format_nif,
     describe_nif},
    {L"NIF de entidad", L"la letra inicial no es de ningún tipo de entidad", L"", L"", 9, 9, "9",
     check_company, complete_nif, format_nif, describe_nif},
    {L"NIF", L"la letra inicial no es de ningún tipo de persona o entidad", L"", L"", 9, 9, "9", check_nif,
     complete_nif, format_nif, describe_nif},
    {L"Cuenta", L"", L"", L"", 20, 20, "20", check_ccc, complete_ccc, format_ccc, nullptr},
    {L"IBAN", no_such_country, L"", L"", 4, compact::room, "15-34", check_iban, complete_iban, format_iban,
     describe_by_country},
    {L"BIC", no_such_country, L"", L"", 8, 11, "8, 11", check_bic, nullptr, nullptr, describe_bic},
    {L"Tarjeta", L"", L"", L"", 12, 19, "12-19", check_card, complete_card, format_card, describe_card},
    {L"NIF-IVA", no_such_country, L"", L"+*", 4, 14, "", check_vat, complete_vat, nullptr,
     describe_by_country},
    {L"EORI", no_such_country, L"", L"", 3, 17, "3-17", check_eori, complete_behind_country, nullptr,
     describe_by_country},
    {L"Código postal", L"la provincia no existe", L"", L"", 5, 5, "5", check_postal_code, nullptr, nullptr,
     describe_postal_code},
    {L"Teléfono", L"el número no es de ningún rango de España", L"()", L"+", 9, 13, "9", check_telephone,
     nullptr, format_telephone, describe_telephone},
};

bool is_hyphen(wchar_t c) { return c == L'-' || (c >= L'\u2010' && c <= L'\u2013'); }
bool is_separator(wchar_t c) { return is_hyphen(c) || c == L'.' || c == L'/'; }

bool is_passed_over(wchar_t c, const kind_rules& rules) {
  return texto::is_word_blank(c) || rules.passed.find(c) != rules.passed.npos;
}

/// A separator that is not a blank stands between two characters, and alone.
compact compacted(std::wstring_view text, const kind_rules& rules) noexcept {
  compact out;
  std::size_t separator = 0;  // the place of one that nothing follows yet
  for (std::size_t i = 0; i < text.size() && out.size < compact::room; ++i) {
    const wchar_t c = text[i];
    if (is_passed_over(c, rules)) continue;
    if (is_separator(c) && out.size != 0 && separator == 0) {
      separator = i + 1;
      continue;
    }
    const bool fits = texto::is_alnum(c) || rules.kept.find(c) != rules.kept.npos;
    if (!fits && out.wrong == 0) out.wrong = i + 1;
    separator = 0;
    out.text[out.size] = fits ? static_cast<char>(texto::to_upper(c)) : '?';
    out.places[out.size++] = i + 1;
  }
  if (separator != 0 && out.wrong == 0) out.wrong = separator;
  return out;
}

const wchar_t* message_of(fault what) {
  switch (what) {
    case fault::empty:
      return L"no hay ningún dato";
    case fault::character:
      return L"hay un carácter que no puede estar ahí";
    case fault::length:
      return L"el número de caracteres no es correcto";
    case fault::control:
      return L"el carácter de control no es correcto";
    case fault::national_control:
      return L"el control del país no es correcto";
    default:
      return L"";
  }
}

}  // namespace

const kind_rules& rules_of(kind what) noexcept { return all_rules[static_cast<std::size_t>(what)]; }

verdict faulty(fault what, std::size_t index, std::string_view expected) noexcept {
  verdict out = faulty(what, index);
  const std::size_t size = std::min(expected.size(), std::size(out.expected) - 1);
  std::transform(expected.begin(), expected.begin() + static_cast<std::ptrdiff_t>(size), out.expected,
                 texto::unit_of);
  return out;
}

std::size_t misfit(std::string_view text, std::string_view pattern) noexcept {
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const char c = text[i], wanted = pattern[i];
    const bool is_digit = texto::is_digit_char(c), is_letter = texto::is_alpha_char(c);
    const bool fits = wanted == '9'   ? is_digit
                      : wanted == '@' ? is_letter
                      : wanted == '#' ? is_digit || is_letter
                      : wanted == '*' ? is_digit || is_letter || c == '+' || c == '*'
                                      : c == wanted;
    if (!fits) return i;
  }
  return text.npos;
}

std::wstring in_groups(std::string_view text, std::initializer_list<std::size_t> sizes) {
  std::wstring out;
  out.reserve(text.size() * 2);
  const std::size_t* size = sizes.begin();
  while (!text.empty()) {
    const std::string_view group = text.substr(0, *size);
    if (!out.empty()) out.push_back(L' ');
    out.append(group.begin(), group.end());
    text.remove_prefix(group.size());
    if (size + 1 != sizes.end()) ++size;
  }
  return out;
}

verdict check_compact(kind what, std::string_view text) noexcept {
  const kind_rules& rules = rules_of(what);
  const bool has_size = text.size() >= rules.least && text.size() <= rules.longest;
  return has_size ? rules.check(text) : faulty(fault::length, rules.longest, rules.sizes);
}

verdict check(kind what, std::wstring_view text) noexcept {
  const compact all = compacted(text, rules_of(what));
  verdict out;
  if (all.wrong != 0) {
    out.what = fault::character;
    out.position = all.wrong;
  } else if (all.size == 0) {
    out.what = fault::empty;
  } else {
    out = check_compact(what, all.view());
    if (out.position != 0) out.position = out.position <= all.size ? all.places[out.position - 1] : 0;
  }
  out.of = what;
  return out;
}

std::wstring message_of(const verdict& found) {
  if (found) return {};
  const kind_rules& rules = rules_of(found.of);
  std::wstring out = rules.name;
  out.append(L": ").append(found.what == fault::beginning ? rules.beginning : message_of(found.what));
  if (found.expected[0] != L'\0') out.append(L"; se esperaba ").append(found.expected);
  if (found.position != 0) {
    out.append(L" (posición ");
    texto::append_unsigned(out, found.position);
    out.push_back(L')');
  }
  return out;
}

std::wstring normalise(kind what, std::wstring_view text) {
  const kind_rules& rules = rules_of(what);
  std::wstring out;
  for (const wchar_t c : text)
    if (!is_passed_over(c, rules) && !is_separator(c)) out.push_back(texto::to_upper(c));
  return what == kind::telephone ? canonical_telephone(std::move(out)) : out;
}

std::wstring format(kind what, std::wstring_view text) {
  const kind_rules& rules = rules_of(what);
  if (!check(what, text)) return std::wstring(text);
  return rules.format ? rules.format(compacted(text, rules).view()) : normalise(what, text);
}

std::wstring describe(kind what, std::wstring_view text) {
  const kind_rules& rules = rules_of(what);
  if (!rules.describe || !check(what, text)) return {};
  return std::wstring(rules.describe(compacted(text, rules).view()));
}

std::wstring with_control(kind what, std::wstring_view text) {
  const kind_rules& rules = rules_of(what);
  compact all = compacted(text, rules);
  if (all.wrong != 0 || all.size < rules.least || all.size > rules.longest) return {};
  if (rules.complete && !rules.complete(all.text, all.size)) return {};
  const std::wstring out(all.text, all.text + all.size);
  return check(what, out) ? normalise(what, out) : std::wstring();
}

std::wstring account_form(std::wstring_view country) {
  if (country.size() != 2 || !texto::is_alnum(country[0]) || !texto::is_alnum(country[1])) return {};
  const char code[] = {static_cast<char>(country[0]), static_cast<char>(country[1])};
  const account_country* const row = find_account_country({code, 2});
  return row ? row->form : std::wstring();
}

}  // namespace ruvo::identifiers
