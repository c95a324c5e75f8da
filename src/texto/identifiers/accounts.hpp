// SPDX-License-Identifier: BSL-1.0
#pragma once

// Accounts: their form in each country of the registry of ISO 13616, and how countries control them.

#include <cstddef>
#include <string_view>

namespace ruvo::identifiers {

/// How a country controls its accounts.
enum class account_control : unsigned char { none, belgium, france, italy, modulo_97, spain };

struct account_country {
  char code[3];
  account_control control;
  const wchar_t* form;  // "4n20c": how many digits, capitals or either
};

/// Null for a country that the registry does not have; the code is two capitals.
const account_country* find_account_country(std::string_view code) noexcept;

/// The characters of an account in the form.
std::size_t account_size(std::wstring_view form) noexcept;

/// The index of the first character that the form does not have there; `npos` for none. The size is right.
std::size_t account_misfit(std::string_view account, std::wstring_view form) noexcept;

/// Where in the account its control characters stand.
struct account_place {
  std::size_t at = 0, size = 0;
};
account_place control_place(account_control control, std::size_t size) noexcept;

/// Writes the control characters in their place; the account has its country's form.
void put_account_control(account_control control, char* account, std::size_t size) noexcept;

}  // namespace ruvo::identifiers
