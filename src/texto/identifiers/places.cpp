// SPDX-License-Identifier: BSL-1.0

// Postal codes and telephone numbers of Spain.

#include <ruvo/identifiers.hpp>

#include <algorithm>
#include <iterator>

#include "texto/control_sums.hpp"
#include "texto/identifiers/kinds.hpp"

namespace ruvo::identifiers {

namespace {

constexpr province all_provinces[] = {
    {L"01", L"Araba/Álava"},
    {L"02", L"Albacete"},
    {L"03", L"Alicante/Alacant"},
    {L"04", L"Almería"},
    {L"05", L"Ávila"},
    {L"06", L"Badajoz"},
    {L"07", L"Illes Balears"},
    {L"08", L"Barcelona"},
    {L"09", L"Burgos"},
    {L"10", L"Cáceres"},
    {L"11", L"Cádiz"},
    {L"12", L"Castellón/Castelló"},
    {L"13", L"Ciudad Real"},
    {L"14", L"Córdoba"},
    {L"15", L"A Coruña"},
    {L"16", L"Cuenca"},
    {L"17", L"Girona"},
    {L"18", L"Granada"},
    {L"19", L"Guadalajara"},
    {L"20", L"Gipuzkoa"},
    {L"21", L"Huelva"},
    {L"22", L"Huesca"},
    {L"23", L"Jaén"},
    {L"24", L"León"},
    {L"25", L"Lleida"},
    {L"26", L"La Rioja"},
    {L"27", L"Lugo"},
    {L"28", L"Madrid"},
    {L"29", L"Málaga"},
    {L"30", L"Murcia"},
    {L"31", L"Navarra"},
    {L"32", L"Ourense"},
    {L"33", L"Asturias"},
    {L"34", L"Palencia"},
    {L"35", L"Las Palmas"},
    {L"36", L"Pontevedra"},
    {L"37", L"Salamanca"},
    {L"38", L"Santa Cruz de Tenerife"},
    {L"39", L"Cantabria"},
    {L"40", L"Segovia"},
    {L"41", L"Sevilla"},
    {L"42", L"Soria"},
    {L"43", L"Tarragona"},
    {L"44", L"Teruel"},
    {L"45", L"Toledo"},
    {L"46", L"Valencia/València"},
    {L"47", L"Valladolid"},
    {L"48", L"Bizkaia"},
    {L"49", L"Zamora"},
    {L"50", L"Zaragoza"},
    {L"51", L"Ceuta"},
    {L"52", L"Melilla"},
};

/// The ranges of the numbering plan by the first digits, from low to high.
struct number_range {
  unsigned short low, high;  // the first three digits
  const wchar_t* name;
};
constexpr number_range number_ranges[] = {
    {510, 519, L"nómada"},
    {600, 699, L"móvil"},
    {700, 709, L"personal"},
    {710, 749, L"móvil"},
    {800, 800, L"gratuito"},
    {803, 803, L"tarificación adicional"},
    {806, 807, L"tarificación adicional"},
    {810, 889, L"fijo"},
    {900, 900, L"gratuito"},
    {901, 902, L"coste compartido"},
    {905, 905, L"llamadas masivas"},
    {907, 907, L"tarificación adicional"},
    {908, 909, L"acceso a Internet"},
    {910, 989, L"fijo"},
};

constexpr std::size_t national_size = 9;

/// What stands before the nine digits.
std::size_t prefix_size(std::string_view text) {
  for (const std::string_view prefix : {"+34", "0034"})
    if (text.starts_with(prefix)) return prefix.size();
  return 0;
}

const number_range* find_range(std::string_view national) {
  const unsigned long first = texto::number_of(national.substr(0, 3));
  const auto* const row =
      std::find_if(std::begin(number_ranges), std::end(number_ranges),
                   [first](const number_range& range) { return first >= range.low && first <= range.high; });
  return row != std::end(number_ranges) ? row : nullptr;
}

}  // namespace

std::span<const province> provinces() noexcept { return all_provinces; }

verdict check_postal_code(std::string_view text) noexcept {
  const std::size_t at = misfit(text, "99999");
  if (at != text.npos) return faulty(fault::character, at);
  return describe_postal_code(text).empty() ? faulty(fault::beginning, 0) : verdict{};
}

std::wstring_view describe_postal_code(std::string_view text) noexcept {
  const unsigned long number = texto::number_of(text.substr(0, 2));
  return number >= 1 && number <= std::size(all_provinces) ? all_provinces[number - 1].name : L"";
}

verdict check_telephone(std::string_view text) noexcept {
  const std::size_t first = prefix_size(text);
  const std::string_view national = text.substr(first);
  if (first == 0 && (text.starts_with("+") || text.starts_with("00"))) return faulty(fault::beginning, 0);
  const auto other = std::find_if_not(national.begin(), national.end(), texto::is_digit_char);
  if (other != national.end())
    return faulty(fault::character, first + static_cast<std::size_t>(other - national.begin()));
  if (national.size() != national_size) return faulty(fault::length, first + national_size, "9");
  return find_range(national) ? verdict{} : faulty(fault::beginning, first);
}

std::wstring canonical_telephone(std::wstring compact_text) {
  if (compact_text.starts_with(L"0034")) {
    compact_text.replace(0, 2, 1, L'+');
  } else if (compact_text.size() == national_size && check(kind::telephone, compact_text)) {
    compact_text.insert(0, L"+34");
  }
  return compact_text;
}

std::wstring format_telephone(std::string_view text) {
  const std::size_t first = prefix_size(text);
  return (first == 0 ? std::wstring() : std::wstring(L"+34 ")) + in_groups(text.substr(first), {3});
}

std::wstring_view describe_telephone(std::string_view text) noexcept {
  return find_range(text.substr(prefix_size(text)))->name;
}

}  // namespace ruvo::identifiers
