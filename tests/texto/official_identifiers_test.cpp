// SPDX-License-Identifier: BSL-1.0

// Identifiers by their official rules: what is wrong, the usual writing, control characters.

#include <ruvo/identifiers.hpp>
#include <ruvo/texto/identifiers.hpp>

#include <string>

#include <gtest/gtest.h>

#include "support/rounds.hpp"

namespace identifiers = ruvo::identifiers;
using identifiers::fault;
using identifiers::kind;

namespace {

std::wstring some_digits(dice& chance, std::size_t count) {
  std::wstring out;
  while (out.size() < count) out += chance.unit(L"0123456789");
  return out;
}

/// A text of the form that account_form() has.
std::wstring account(dice& chance, std::wstring_view form) {
  std::wstring out;
  std::size_t count = 0;
  for (const wchar_t c : form) {
    if (c >= L'0' && c <= L'9') {
      count = count * 10 + static_cast<std::size_t>(c - L'0');
      continue;
    }
    for (; count > 0; --count)
      out += chance.unit(c == L'n' ? L"0123456789" : c == L'a' ? L"ABCXYZ" : L"0123456789ABCXYZ");
  }
  return out;
}

}  // namespace

class official : public generated_inputs {};

TEST_F(official, what_is_wrong_is_said) {
  const struct {
    kind of;
    const wchar_t* text;
    fault what;
    std::size_t position;
    const wchar_t* expected;
  } rows[] = {
      {kind::dni, L"", fault::empty, 0, L""},
      {kind::dni, L" \u00A0", fault::empty, 0, L""},
      {kind::dni, L"12.345.678-z", fault::none, 0, L""},
      {kind::dni, L"12345678A", fault::control, 9, L"Z"},
      {kind::dni, L"12.345.678 - A", fault::control, 14, L"Z"},
      {kind::dni, L"1234567Z", fault::length, 0, L"9"},
      {kind::dni, L"12345678ZZ", fault::length, 10, L"9"},
      {kind::dni, L"1234567O8Z", fault::length, 10, L"9"},
      {kind::dni, L"123456O8Z", fault::character, 7, L""},
      {kind::dni, L"12345678\u00D1", fault::character, 9, L""},
      {kind::dni, L"12345--678Z", fault::character, 7, L""},
      {kind::dni, L"-12345678Z", fault::character, 1, L""},
      {kind::dni, L"12345678Z.", fault::character, 10, L""},
      {kind::nie, L"x-1234567-l", fault::none, 0, L""},
      {kind::nie, L"Y1234567L", fault::control, 9, L"X"},
      {kind::nie, L"W1234567L", fault::beginning, 1, L""},
      {kind::company, L"A58818501", fault::none, 0, L""},
      {kind::company, L"A5881850A", fault::control, 9, L"1"},  // a letter where a digit has to be
      {kind::company, L"P2807900B", fault::none, 0, L""},
      {kind::company, L"P28079002", fault::control, 9, L"B"},
      {kind::company, L"G28029007", fault::none, 0, L""},
      {kind::company, L"G2802900G", fault::none, 0, L""},
      {kind::company, L"G2802900A", fault::control, 9, L"G"},
      {kind::company, L"A0012345E", fault::none, 0, L""},  // 00, as of an entity abroad
      {kind::company, L"A00123455", fault::none, 0, L""},
      {kind::company, L"I58818501", fault::beginning, 1, L""},
      {kind::company, L"12345678Z", fault::beginning, 1, L""},
      {kind::nif, L"K1234567L", fault::none, 0, L""},
      {kind::nif, L"m1234567t", fault::control, 9, L"L"},
      {kind::nif, L"ES12345678Z", fault::length, 10, L"9"},
      {kind::ccc, L"2100 0418 45 0200051332", fault::none, 0, L""},
      {kind::ccc, L"2100 0418 54 0200051332", fault::control, 11, L"45"},
      {kind::ccc, L"2100 0418 4A 0200051332", fault::character, 12, L""},
      {kind::iban, L"es91 2100 0418 4502 0005 1332", fault::none, 0, L""},
      {kind::iban, L"ES92 2100 0418 4502 0005 1332", fault::control, 3, L"91"},
      {kind::iban, L"ES18 2100 0418 5402 0005 1332", fault::national_control, 16, L"45"},
      {kind::iban, L"ES91 2100 0418 4502 0005 133", fault::length, 0, L"24"},
      {kind::iban, L"ES91 2100 0418 4502 0005 1332 0", fault::length, 31, L"24"},
      {kind::iban, L"ES91 2100 0418 4502 0005 133A", fault::character, 29, L""},
      {kind::iban, L"ZZ91 2100 0418 4502", fault::beginning, 1, L""},
      {kind::iban, L"E", fault::length, 0, L"15-34"},
      {kind::bic, L"CAIX ES BB", fault::none, 0, L""},
      {kind::bic, L"CAIXESBBXXX", fault::none, 0, L""},
      {kind::bic, L"CAIXESBBX", fault::length, 9, L"8, 11"},
      {kind::bic, L"CAIXZZBB", fault::beginning, 5, L""},
      {kind::bic, L"CAIXE5BB", fault::character, 6, L""},
      {kind::card, L"4111-1111-1111-1111", fault::none, 0, L""},
      {kind::card, L"4111111111111112", fault::control, 16, L"1"},
      {kind::card, L"5555555555554444000", fault::length, 17, L"16"},
      {kind::card, L"400000000000", fault::length, 0, L"13-19"},
      {kind::vat, L"ES A58818502", fault::control, 12, L"1"},
      {kind::vat, L"ESA58818501", fault::none, 0, L""},
      {kind::vat, L"ESA5881850", fault::length, 0, L"11"},
      {kind::vat, L"EL094259216", fault::none, 0, L""},
      {kind::vat, L"GR094259216", fault::beginning, 1, L""},
      {kind::vat, L"IE9+12345A", fault::none, 0, L""},
      {kind::vat, L"NL123456789A01", fault::character, 12, L""},
      {kind::vat, L"NL004495445B01", fault::none, 0, L""},  // an RSIN
      {kind::vat, L"NL123456789B13", fault::none, 0, L""},  // modulo 97
      {kind::vat, L"NL123456789B14", fault::control, 13, L"13"},
      {kind::vat, L"BE 0440.966.354", fault::none, 0, L""},
      {kind::vat, L"BE0440966355", fault::control, 11, L"54"},
      {kind::vat, L"BE2440966354", fault::character, 3, L""},
      {kind::vat, L"BE440966354", fault::length, 0, L""},
      {kind::vat, L"BG12345678", fault::length, 0, L""},
      {kind::eori, L"ESA58818501", fault::none, 0, L""},
      {kind::eori, L"ESA58818502", fault::control, 11, L"1"},
      {kind::eori, L"GR094259216", fault::none, 0, L""},
      {kind::eori, L"US123", fault::beginning, 1, L""},
      {kind::postal_code, L"28013", fault::none, 0, L""},
      {kind::postal_code, L"00800", fault::beginning, 1, L""},
      {kind::postal_code, L"53001", fault::beginning, 1, L""},
      {kind::postal_code, L"8013", fault::length, 0, L"5"},
      {kind::telephone, L"(+34) 910 00 00 00", fault::none, 0, L""},
      {kind::telephone, L"0034-612-345-678", fault::none, 0, L""},
      {kind::telephone, L"+33 1 23 45 67 89", fault::beginning, 1, L""},
      {kind::telephone, L"+34 412 345 678", fault::beginning, 5, L""},
      {kind::telephone, L"34 612 345 678", fault::length, 13, L"9"},
      {kind::telephone, L"612 345 67x", fault::character, 11, L""},
  };
  for (const auto& row : rows) {
    const auto found = identifiers::check(row.of, row.text);
    EXPECT_EQ(found.what, row.what) << row.text;
    EXPECT_EQ(found.position, row.position) << row.text;
    EXPECT_STREQ(found.expected, row.expected) << row.text;
    EXPECT_EQ(identifiers::message_of(found).empty(), row.what == fault::none) << row.text;
    EXPECT_EQ(found.of, row.of);
  }
  EXPECT_EQ(identifiers::check(kind::iban, std::wstring(100'000, L'1')).what, fault::beginning);
  EXPECT_EQ(identifiers::check(kind::dni, std::wstring(100'000, L'1')).position, 10U);
  EXPECT_EQ(identifiers::message_of(identifiers::check(kind::nif, L"12345678A")),
            L"NIF: el carácter de control no es correcto; se esperaba Z (posición 9)");
}

TEST_F(official, usual_writings_and_what_they_say) {
  const struct {
    kind of;
    const wchar_t *text, *normal, *usual, *says;
  } rows[] = {
      {kind::dni, L"12.345.678-z", L"12345678Z", L"12345678-Z", L"Persona física"},
      {kind::nif, L"X1234567L", L"X1234567L", L"X-1234567-L", L"Extranjero"},
      {kind::nif, L"K1234567L", L"K1234567L", L"K-1234567-L", L"Español menor de 14 años"},
      {kind::nif, L"a/58818501", L"A58818501", L"A-58818501", L"Sociedad anónima"},
      {kind::company, L"P2807900B", L"P2807900B", L"P-2807900-B", L"Corporación local"},
      {kind::ccc, L"21000418450200051332", L"21000418450200051332", L"2100 0418 45 0200051332", L""},
      {kind::iban, L"es9121000418450200051332", L"ES9121000418450200051332", L"ES91 2100 0418 4502 0005 1332",
       L"ES"},
      {kind::bic, L"caixesbb", L"CAIXESBB", L"CAIXESBB", L"ES"},
      {kind::card, L"4111111111111111", L"4111111111111111", L"4111 1111 1111 1111", L"Visa"},
      {kind::card, L"378282246310005", L"378282246310005", L"3782 822463 10005", L"American Express"},
      {kind::card, L"2223003122003222", L"2223003122003222", L"2223 0031 2200 3222", L"Mastercard"},
      {kind::vat, L"el 094259216", L"EL094259216", L"EL094259216", L"EL"},
      {kind::eori, L"es a58818501", L"ESA58818501", L"ESA58818501", L"ES"},
      {kind::postal_code, L" 01001", L"01001", L"01001", L"Araba/Álava"},
      {kind::postal_code, L"52001", L"52001", L"52001", L"Melilla"},
      {kind::telephone, L"0034 (910) 00-00-00", L"+34910000000", L"+34 910 000 000", L"fijo"},
      {kind::telephone, L"712345678", L"+34712345678", L"712 345 678", L"móvil"},
      {kind::telephone, L"412345678", L"412345678", L"412345678", L""},  // refused
      {kind::telephone, L"1\u00A02", L"12", L"1\u00A02", L""},           // refused
  };
  for (const auto& [of, text, normal, usual, says] : rows) {
    EXPECT_EQ(identifiers::normalise(of, text), normal);
    EXPECT_EQ(identifiers::format(of, text), usual);
    EXPECT_EQ(identifiers::describe(of, text), says) << text;
  }
  EXPECT_EQ(identifiers::provinces().size(), 52U);
  EXPECT_EQ(identifiers::normalise(kind::dni, std::wstring(100, L'a')), std::wstring(100, L'A'));
}

/// Examples that the registry of IBANs has, of countries that control their accounts.
TEST_F(official, accounts_of_other_countries) {
  for (const wchar_t* const text :
       {L"FR1420041010050500013M02606", L"MC5811222000010123456789030", L"BE68539007547034",
        L"PT50000201231234567890154", L"IT60X0542811101000000123456", L"SM86U0322509800000000270100",
        L"BA391290079401028494", L"ME25505000012345678951", L"MK07250120000058984", L"RS35260005601001611379",
        L"SI56263300012039086", L"XK051212012345678906", L"TL380080012345678910157"}) {
    EXPECT_TRUE(identifiers::check(kind::iban, text)) << text;
    std::wstring other = text;  // a digit that the country controls, with the IBAN's own digits right
    other[8] = other[8] == L'9' ? L'8' : static_cast<wchar_t>(other[8] + 1);
    EXPECT_NE(identifiers::with_control(kind::iban, other), other);
    EXPECT_EQ(identifiers::with_control(kind::iban, text), text);
  }
  EXPECT_TRUE(identifiers::with_control(kind::iban, L"BE00 0000 0000 9700").ends_with(L"0000009797"));
}

TEST_F(official, control_characters_are_made_and_find_each_wrong_digit) {
  dice chance(20);
  for (unsigned round = 0; round < 400 * rounds(); ++round, ++inputs) {
    const std::wstring country = pieces(L"ES FR BE PT IT DE GB MT SC")[chance.below(9)];
    const std::wstring form = identifiers::account_form(country);
    const struct {
      kind of;
      std::wstring text;
    } rows[] = {
        {kind::dni, some_digits(chance, 8) + L"0"},
        {kind::nie, chance.unit(L"XYZ") + some_digits(chance, 7) + L"0"},
        {kind::nif, chance.unit(L"KLM") + some_digits(chance, 7) + L"0"},
        {kind::company, chance.unit(L"ABCDEFGHJNPQRSUVW") + some_digits(chance, 7) + chance.unit(L"0A")},
        {kind::card, some_digits(chance, 16)},
        {kind::iban, country + L"00" + account(chance, form)},
        {kind::vat, L"ESB" + some_digits(chance, 8)},
        {kind::vat, L"BE0" + some_digits(chance, 9)},
    };
    for (const auto& [of, text] : rows) {
      if (of == kind::card && identifiers::check(of, text).what == fault::length) continue;
      std::wstring valid = identifiers::with_control(of, text);
      ASSERT_TRUE(identifiers::check(of, valid)) << text;
      ASSERT_EQ(identifiers::normalise(of, identifiers::format(of, valid)), valid);
      const std::size_t at = chance.below(valid.size());
      if (valid[at] < L'0' || valid[at] > L'9') continue;
      std::wstring& wrong = valid;
      wrong[at] = static_cast<wchar_t>(L'0' + (wrong[at] - L'0' + 1 + chance.below(9)) % 10);
      ASSERT_FALSE(identifiers::check(of, wrong) && of != kind::card) << wrong;
      ASSERT_FALSE(of == kind::card && ruvo::texto::valida_tarjeta_credito(wrong)) << wrong;
    }
  }
  EXPECT_EQ(identifiers::control_of_dni(12345678), L'Z');
  EXPECT_EQ(identifiers::control_of_dni(100000000), L'\0');
  EXPECT_EQ(identifiers::control_of_company(L'A', 5881850), L'1');
  EXPECT_EQ(identifiers::control_of_company(L'P', 2807900), L'B');
  EXPECT_EQ(identifiers::control_of_company(L'X', 1), L'\0');
  EXPECT_EQ(identifiers::with_control(kind::dni, L"1234567Z"), L"");
  EXPECT_EQ(identifiers::with_control(kind::vat, L"NL123456789B00"), L"NL123456789B13");
  EXPECT_EQ(identifiers::with_control(kind::vat, L"NL004495445B02"), L"NL004495445B02");
  EXPECT_EQ(identifiers::account_form(L"ZZ"), L"");
}
