// SPDX-License-Identifier: BSL-1.0

// Identity numbers, accounts and cards against their control sums.

#include <ruvo/texto.hpp>

#include <climits>
#include <cstdio>
#include <random>
#include <regex>

#include <gtest/gtest.h>

namespace texto = ruvo::texto;

namespace {

const std::string capitals = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
const std::string digits = "0123456789";

std::string lower(std::string text) {
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  return text;
}

std::string padded(unsigned number, int width) {
  char text[16];
  std::snprintf(text, sizeof text, "%0*u", width, number);
  return text;
}

struct check_row {
  const char* name;
  bool (*narrow)(const std::string&);
  bool (*wide)(const std::wstring&);
  /// The answer; both forms agree in it, and the case does not count.
  bool operator()(const std::string& text) const {
    const bool valid = narrow(text);
    EXPECT_EQ(wide(std::wstring(text.begin(), text.end())), valid) << text;
    EXPECT_EQ(narrow(lower(text)), valid) << text;
    return valid;
  }
};
const check_row dni{"dni", texto::valida_dni, texto::valida_dni};
const check_row nie{"nie", texto::valida_nie, texto::valida_nie};
const check_row cif{"cif", texto::valida_cif, texto::valida_cif};
const check_row nif{"nif", texto::valida_nif, texto::valida_nif};
const check_row iban{"iban", texto::valida_iban, texto::valida_iban};
const check_row iban_esp{"iban_esp", texto::valida_iban_esp, texto::valida_iban_esp};
const check_row card{"card", texto::valida_tarjeta_credito, texto::valida_tarjeta_credito};

/// The capitals that make `start` valid.
std::string valid_letters(const check_row& check, const std::string& start) {
  std::string letters;
  for (const char letter : capitals)
    if (check(start + letter)) letters += letter;
  return letters;
}

/// An IBAN with check digits made by long division of the whole decimal text.
std::string iban_of(const std::string& country, const std::string& account) {
  std::string number;
  for (const char c : account + country + "00")
    number += c <= '9' ? std::string(1, c) : std::to_string(c - 'A' + 10);
  unsigned rest = 0;
  for (const char c : number) rest = (rest * 10 + static_cast<unsigned>(c - '0')) % 97;
  return country + padded(98 - rest, 2) + account;
}

}  // namespace

TEST(identity, one_letter_controls_a_number) {
  std::mt19937 random(7);
  for (int round = 0; round < 2000; ++round) {
    const unsigned number = round < 100 ? static_cast<unsigned>(round) : random() % 100000000;
    const char expected = "TRWAGMYFPDXBNJZSQVHLCKE"[number % 23];
    ASSERT_EQ(valid_letters(dni, padded(number, 8)), std::string(1, expected)) << number;
    ASSERT_EQ(valid_letters(nif, padded(number, 8)), std::string(1, expected)) << number;
    if (number >= 30000000) continue;
    const std::string foreign = "XYZ"[number / 10000000] + padded(number % 10000000, 7);
    ASSERT_EQ(valid_letters(nie, foreign), std::string(1, expected)) << foreign;
    ASSERT_EQ(valid_letters(nif, foreign), std::string(1, expected)) << foreign;
  }
  EXPECT_TRUE(dni("12345678Z"));
  EXPECT_TRUE(nie("X1234567L"));
}

TEST(identity, cif_follows_its_weights) {
  std::mt19937 random(8);
  const std::regex form("^[A-Z]{1}[0-9]{7}[A-J]$");
  for (int round = 0; round < 2000; ++round) {
    const std::string start = capitals[random() % 26] + padded(random() % 10000000, 7);
    const auto d = [&start](std::size_t n) { return start[n] - '0'; };
    const int index =
        (start[0] + 2 * d(1) + 4 * d(2) + 8 * d(3) + 5 * d(4) + 10 * d(5) + 9 * d(6) + 7 * d(7) - 48) % 11;
    const std::string expected = index == 10 ? "" : std::string(1, "JABCDEFGHI"[index]);
    ASSERT_EQ(valid_letters(cif, start), expected) << start;
    ASSERT_FALSE(cif(start + '\0')) << start;
    if (start[0] < 'X') {
      ASSERT_EQ(valid_letters(nif, start), expected) << start;
    }
    // Only texts of the form are valid.
    std::string other = start + (expected.empty() ? "A" : expected);
    other[random() % 9] = "09AJKZ@[/: "[random() % 11];
    ASSERT_TRUE(!cif(other) || std::regex_match(other, form)) << other;
  }
}

TEST(identity, forms_that_are_refused) {
  std::vector<std::string> texts = {"",
                                    " 12345678Z",
                                    "1234567 Z",
                                    "12345678\xD1",
                                    "\xC1"
                                    "1234567A",
                                    std::string(9, '\0')};
  for (const char* const text :
       {"1234567Z", "12345678ZZ", "12345678-Z", "+1234567L", "-2345678Z", "0x123456Z", "X123456-L",
        "W1234567L", "XX234567L", "A5881850", "AA881850A", "123456789"})
    texts.push_back(text);
  for (const check_row& check : {dni, nie, cif, nif, iban, iban_esp}) {
    for (const std::string& text : texts) EXPECT_FALSE(check(text)) << check.name << " " << text;
    EXPECT_FALSE(check(std::string(5000000, '9'))) << check.name;
  }
}

TEST(identity, wide_units_do_not_become_digits) {
  const struct {
    const check_row& check;
    std::wstring text;
  } rows[] = {{dni, L"12345678Z"},
              {nie, L"X1234567L"},
              {nif, L"12345678Z"},
              {iban, L"GB82WEST12345698765432"},
              {iban_esp, L"ES9121000418450200051332"},
              {card, L"4111111111111111"}};
  for (const auto& [check, text] : rows) {
    ASSERT_TRUE(check.wide(text)) << check.name;
    for (std::size_t at = 0; at < text.size(); ++at) {
      for (const unsigned high : {0x80U, 0x100U, 0x3000U, 0xFF00U}) {
        std::wstring changed = text;
        changed[at] = static_cast<wchar_t>(changed[at] + high);
        EXPECT_FALSE(check.wide(changed)) << check.name << " " << at;
      }
    }
    EXPECT_FALSE(check.wide(text + L'\0')) << check.name;
  }
}

TEST(iban, examples_of_many_countries) {
  for (const char* text :
       {"ES9121000418450200051332", "GB82WEST12345698765432", "DE89370400440532013000", "NO9386011117947",
        "FR1420041010050500013M02606", "BE68539007547034", "MT84MALT011000012345MTLCAST001S",
        "PT50000201231234567890154", "AD1200012030200359100100", "LC55HEMM000100010012001200023015",
        "NL91ABNA0417164300", "SC18SSCB11010000000000001497USD", "CH9300762011623852957"}) {
    EXPECT_TRUE(iban(text)) << text;
    EXPECT_EQ(iban_esp(text), std::string(text).starts_with("ES")) << text;
    EXPECT_FALSE(iban(std::string(text) + "0"));
  }
  for (const char* text :
       {"ES91 2100 0418 4502 0005 1332", "ES9121000418450200051333", "21000418450200051332",
        "9121000418450200051332", "ES", "ESXX21000418450200051332", "E59121000418450200051332"}) {
    EXPECT_FALSE(iban(text)) << text;
    EXPECT_FALSE(iban_esp(text)) << text;
  }
}

TEST(iban, every_change_and_transposition_is_found) {
  const auto expect_found = [](const check_row& check, const std::string& valid, const std::string& choice) {
    for (std::size_t at = 0; at < valid.size(); ++at) {
      for (const char c : choice) {
        // A letter for a digit counts as two digits and may leave the remainder.
        if (check.name == iban.name && (valid[at] <= '9') != (c <= '9')) continue;
        std::string changed = valid;
        changed[at] = c;
        EXPECT_EQ(check(changed), changed == valid) << changed;
      }
      std::string swapped = valid;
      if (at > 0) std::swap(swapped[at], swapped[at - 1]);
      EXPECT_EQ(check(swapped), swapped == valid) << swapped;
    }
  };
  expect_found(iban, "GB82WEST12345698765432", digits + capitals + " -.@[");
  expect_found(iban, "ES9121000418450200051332", digits + capitals + " -.@[");
  expect_found(iban_esp, "ES9121000418450200051332", digits + capitals + " -.@[");
}

TEST(iban, lengths_and_check_digits) {
  std::mt19937 random(9);
  for (std::size_t size = 5; size <= 40; ++size) {
    std::string account;
    while (account.size() + 4 < size) account += digits[random() % 10];
    EXPECT_EQ(iban(iban_of("ES", account)), size == 24) << size;
    EXPECT_EQ(iban_esp(iban_of("ES", account)), size == 24) << size;
    EXPECT_EQ(iban(iban_of("NO", account)), size == 15) << size;
    EXPECT_EQ(iban(iban_of("RU", account)), size == 33) << size;
    EXPECT_EQ(iban(iban_of("ZZ", account)), size >= 15 && size <= 34) << size;
  }
  EXPECT_TRUE(iban(iban_of("ES", "A1000418450200051332")));
  EXPECT_FALSE(iban_esp(iban_of("ES", "A1000418450200051332")));
  // Of the hundred pairs of check digits one is right, also where a second has the same remainder.
  for (unsigned account = 0; account < 500; ++account) {
    int valid = 0;
    for (unsigned pair = 0; pair < 100; ++pair) valid += iban("BE" + padded(pair, 2) + padded(account, 12));
    EXPECT_EQ(valid, 1) << account;
  }
}

TEST(cards, luhn) {
  for (const char* text :
       {"4111111111111111", "5555555555554444", "378282246310005", "79927398713", "0", "18"})
    EXPECT_TRUE(card(text)) << text;
  for (const char* text : {"", "4111 1111 1111 1111", "4111111111111112", "a", "-18", "1"})
    EXPECT_FALSE(card(text)) << text;
  std::mt19937 random(10);
  for (int round = 0; round < 500; ++round) {
    std::string number;
    for (std::size_t size = random() % 30; size > 0; --size) number += digits[random() % 10];
    int valid = 0;
    for (const char last : digits) {
      if (!card(number + last)) continue;
      ++valid;
      std::string changed = number + last;
      char& digit = changed[random() % changed.size()];
      digit = digit == '9' ? '0' : static_cast<char>(digit + 1);
      EXPECT_FALSE(card(changed)) << changed;
    }
    EXPECT_EQ(valid, 1) << number;
  }
  EXPECT_TRUE(texto::valida_tarjeta_credito(std::string(5000000, '0')));
}

TEST(identifiers, cleaning) {
  EXPECT_EQ(texto::limpia_nif_(L" 12.345.678-z ñ\xFF11"), L"12345678z");
  EXPECT_EQ(texto::limpia_nif_(L""), L"");
  const struct {
    const wchar_t *text, *plain, *with_plus;
  } rows[] = {{L"+34 600 00.00-00", L"34600000000", L"+34600000000"},
              {L" (+34) 910 00", L"3491000", L"+3491000"},
              {L"0034 910 00", L"003491000", L"003491000"},
              {L"91+34", L"9134", L"9134"},
              {L"++", L"", L""},
              {L"++1", L"1", L"+1"},
              {L"tel. \xFF19\x0661 5", L"5", L"5"}};
  for (const auto& row : rows) {
    EXPECT_EQ(texto::limpia_telefono_(row.text, false), row.plain);
    EXPECT_EQ(texto::limpia_telefono_(row.text, true), row.with_plus);
  }
}

TEST(identifiers, hidden_accounts) {
  const std::wstring text = L"ES1234";
  const std::pair<int, const wchar_t*> rows[] = {{2, L"****34"},       {1, L"*****4"},      {6, L"ES1234"},
                                                 {7, L"ES1234"},       {0, L"ES1234"},      {-1, L"ES1234"},
                                                 {INT_MIN, L"ES1234"}, {INT_MAX, L"ES1234"}};
  for (const auto& [shown, expected] : rows)
    EXPECT_EQ(texto::ocultar_numeros_cuenta(text, shown, L'*'), expected) << shown;
  EXPECT_EQ(texto::ocultar_numeros_cuenta(L"", 0, L'*'), L"");
}
