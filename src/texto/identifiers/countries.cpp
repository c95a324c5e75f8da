// SPDX-License-Identifier: BSL-1.0

// Countries, and the codes of banks, which have one.

#include <ruvo/identifiers.hpp>

#include <cstddef>
#include <string_view>

#include "texto/control_sums.hpp"
#include "texto/identifiers/kinds.hpp"

namespace ruvo::identifiers {

namespace {

/// ISO 3166-1, one behind the other, and XK, which banks use for Kosovo.
constexpr std::wstring_view all_countries =
    L"ADAEAFAGAIALAMAOAQARASATAUAWAXAZBABBBDBEBFBGBHBIBJBLBMBNBOBQBRBSBTBVBWBYBZCACCCDCFCGCHCICKCLCMCNCOCRCUC"
    L"V"
    L"CWCXCYCZDEDJDKDMDODZECEEEGEHERESETFIFJFKFMFOFRGAGBGDGEGFGGGHGIGLGMGNGPGQGRGSGTGUGWGYHKHMHNHRHTHUIDIEILI"
    L"M"
    L"INIOIQIRISITJEJMJOJPKEKGKHKIKMKNKPKRKWKYKZLALBLCLILKLRLSLTLULVLYMAMCMDMEMFMGMHMKMLMMMNMOMPMQMRMSMTMUMVM"
    L"W"
    L"MXMYMZNANCNENFNGNINLNONPNRNUNZOMPAPEPFPGPHPKPLPMPNPRPSPTPWPYQARERORSRURWSASBSCSDSESGSHSISJSKSLSMSNSOSRS"
    L"S"
    L"STSVSXSYSZTCTDTFTGTHTJTKTLTMTNTOTRTTTVTWTZUAUGUMUSUYUZVAVCVEVGVIVNVUWFWSXKYEYTZAZMZW";

/// The country's code in the list above; empty for none.
std::wstring_view find_country(std::string_view code) {
  for (std::size_t at = 0; at < all_countries.size(); at += 2) {
    if (all_countries[at] == texto::unit_of(code[0]) && all_countries[at + 1] == texto::unit_of(code[1]))
      return all_countries.substr(at, 2);
  }
  return {};
}

}  // namespace

verdict check_bic(std::string_view text) noexcept {
  constexpr std::string_view form = "####@@#####";
  if (text.size() != 8 && text.size() != form.size()) return faulty(fault::length, 8, "8, 11");
  const std::size_t at = misfit(text, form.substr(0, text.size()));
  if (at != text.npos) return faulty(fault::character, at);
  return find_country(text.substr(4, 2)).empty() ? faulty(fault::beginning, 4) : verdict{};
}

std::wstring_view describe_bic(std::string_view text) noexcept { return find_country(text.substr(4)); }

std::wstring_view describe_by_country(std::string_view text) noexcept {
  return text.starts_with("EL") ? L"EL" : text.starts_with("XI") ? L"XI" : find_country(text);
}

}  // namespace ruvo::identifiers
