// SPDX-License-Identifier: BSL-1.0

// Accounts and payment cards.

#include <ruvo/identifiers.hpp>

#include <algorithm>
#include <iterator>

#include "texto/control_sums.hpp"
#include "texto/identifiers/accounts.hpp"
#include "texto/identifiers/kinds.hpp"

namespace ruvo::identifiers {

namespace {

constexpr std::size_t account_at = 4;  // in an IBAN

/// The first six digits of a brand's cards and how many they have. The first row that fits counts.
struct card_brand {
  const wchar_t* name;
  unsigned long low, high;
  unsigned char least, most;
};
constexpr card_brand card_brands[] = {
    {L"Visa", 400000, 499999, 13, 19},
    {L"Mastercard", 510000, 559999, 16, 16},
    {L"Mastercard", 222100, 272099, 16, 16},
    {L"American Express", 340000, 349999, 15, 15},
    {L"American Express", 370000, 379999, 15, 15},
    {L"Diners Club", 300000, 305999, 14, 19},
    {L"Diners Club", 309500, 309599, 14, 19},
    {L"Diners Club", 360000, 369999, 14, 19},
    {L"Diners Club", 380000, 399999, 14, 19},
    {L"JCB", 352800, 358999, 16, 19},
    {L"Discover", 601100, 601199, 16, 19},
    {L"Discover", 644000, 659999, 16, 19},
    {L"UnionPay", 620000, 629999, 16, 19},
    {L"Maestro", 500000, 509999, 12, 19},
    {L"Maestro", 560000, 589999, 12, 19},
    {L"Maestro", 600000, 699999, 12, 19},
};

const card_brand* find_brand(std::string_view text) {
  const unsigned long first = texto::number_of(text.substr(0, 6));
  const auto* const row =
      std::find_if(std::begin(card_brands), std::end(card_brands),
                   [first](const card_brand& brand) { return first >= brand.low && first <= brand.high; });
  return row != std::end(card_brands) ? row : nullptr;
}

/// The control characters that the account should have.
verdict check_account(account_control control, std::string_view account, fault bad) {
  char right[compact::room];
  std::copy(account.begin(), account.end(), right);
  put_account_control(control, right, account.size());
  const auto [at, size] = control_place(control, account.size());
  return compared(account.substr(at, size), {right + at, size}, bad, at);
}

void put_iban_control(char* text, std::size_t size) {
  const std::string_view all(text, size);
  int remainder = texto::remainder_97(0, all.substr(account_at));
  remainder = texto::remainder_97(texto::remainder_97(remainder, all.substr(0, 2)), "00");
  texto::put_pair(text + 2, 98 - remainder);
}

/// The country, the length and the characters.
verdict check_iban_form(std::string_view text, const account_country* country) {
  if (!country) return faulty(fault::beginning, 0);
  const std::size_t size = account_at + account_size(country->form);
  if (text.size() != size) {
    const char digits[] = {static_cast<char>('0' + size / 10), static_cast<char>('0' + size % 10)};
    return faulty(fault::length, size, {digits, 2});
  }
  std::size_t at = misfit(text.substr(0, account_at), "@@99");
  if (at != text.npos) return faulty(fault::character, at);
  at = account_misfit(text.substr(account_at), country->form);
  return at == text.npos ? verdict{} : faulty(fault::character, account_at + at);
}

verdict check_digits(std::string_view text) {
  const auto other = std::find_if_not(text.begin(), text.end(), texto::is_digit_char);
  if (other == text.end()) return {};
  return faulty(fault::character, static_cast<std::size_t>(other - text.begin()));
}

}  // namespace

verdict check_ccc(std::string_view text) noexcept {
  const verdict found = check_digits(text);
  return found ? check_account(account_control::spain, text, fault::control) : found;
}

bool complete_ccc(char* text, std::size_t size) noexcept {
  text[8] = text[9] = '0';
  if (!check_digits({text, size})) return false;
  put_account_control(account_control::spain, text, size);
  return true;
}

std::wstring format_ccc(std::string_view text) { return in_groups(text, {4, 4, 2, 10}); }

verdict check_iban(std::string_view text) noexcept {
  const account_country* const country = find_account_country(text.substr(0, 2));
  verdict found = check_iban_form(text, country);
  if (!found) return found;
  char right[compact::room];
  std::copy(text.begin(), text.end(), right);
  put_iban_control(right, text.size());
  found = compared(text.substr(2, 2), {right + 2, 2}, fault::control, 2);
  if (!found) return found;
  return moved(check_account(country->control, text.substr(account_at), fault::national_control), account_at);
}

bool complete_iban(char* text, std::size_t size) noexcept {
  const account_country* const country = find_account_country({text, 2});
  if (!country || size != account_at + account_size(country->form)) return false;
  text[2] = text[3] = '0';
  char* const account = text + account_at;
  const auto [at, length] = control_place(country->control, size - account_at);
  std::fill_n(account + at, length, country->control == account_control::italy ? 'A' : '0');
  if (!check_iban_form({text, size}, country)) return false;
  put_account_control(country->control, account, size - account_at);
  put_iban_control(text, size);
  return true;
}

std::wstring format_iban(std::string_view text) { return in_groups(text, {4}); }

verdict check_card(std::string_view text) noexcept {
  const verdict found = check_digits(text);
  if (!found) return found;
  const card_brand* const brand = find_brand(text);
  if (brand && (text.size() < brand->least || text.size() > brand->most)) {
    const char range[] = {'1', static_cast<char>('0' + brand->least % 10), '-', '1',
                          static_cast<char>('0' + brand->most % 10)};
    return faulty(fault::length, brand->most, {range, brand->least == brand->most ? 2U : 5U});
  }
  const unsigned surplus = texto::luhn_remainder(text);
  if (surplus == 0) return {};
  const auto last = static_cast<unsigned>(text.back() - '0');
  const char right = static_cast<char>('0' + (last + 10 - surplus) % 10);
  return faulty(fault::control, text.size() - 1, {&right, 1});
}

bool complete_card(char* text, std::size_t size) noexcept {
  text[size - 1] = '0';
  const verdict found = check_card({text, size});
  if (found.what == fault::control) text[size - 1] = static_cast<char>(found.expected[0]);
  return found || found.what == fault::control;
}

std::wstring format_card(std::string_view text) {
  const bool is_short = text.size() == 14 || text.size() == 15;
  return is_short ? in_groups(text, {4, 6, 5}) : in_groups(text, {4});
}

std::wstring_view describe_card(std::string_view text) noexcept {
  const card_brand* const brand = find_brand(text);
  return brand ? brand->name : std::wstring_view();
}

}  // namespace ruvo::identifiers
