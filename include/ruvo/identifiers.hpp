// SPDX-License-Identifier: BSL-1.0
#pragma once

// Official identifiers by their published rules: what is wrong with one, its usual writing, its compact form.
// The tests of <ruvo/texto/identifiers.hpp> answer yes or no, some of them by rules of their own.
//
//   namespace identifiers = ruvo::identifiers;
//   const auto found = identifiers::check(identifiers::kind::nif, typed);
//   if (!found) show(identifiers::message_of(found), found.position);

#include <ruvo/api.hpp>

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

/// Official identifiers, each by the rule that is published for it.
///
/// Every function takes an identifier as people write it: in capitals or small letters, with blanks of any
/// kind between its characters, and single hyphens, points and slashes. None throws but for lack of memory,
/// and those that are `noexcept` need none.
namespace ruvo::identifiers {

/// What a text is to be.
enum class kind {
  /// Spanish identity card: eight digits and a control letter, modulo 23, as the Ministry of the Interior
  /// publishes it.
  dni,
  /// Foreigners' number: X, Y or Z (which stand for 0, 1 and 2), seven digits and the letter of the DNI
  /// (Orden
  /// INT/2058/2008).
  nie,
  /// NIF of a company or another entity (Orden EHA/451/2008): the letter of its legal form, seven digits and
  /// a control character: of A, B, E and H a digit, of N, P, Q, R, S and W a letter, of C, D, F, G, J, U and
  /// V either; and of all of them a letter where the digits begin with 00, as those of entities abroad did.
  company,
  /// NIF of anybody (Real Decreto 1065/2007): a DNI, an NIE, that of an entity, or K, L or M (minors,
  /// Spaniards abroad, foreigners without NIE), seven digits and the letter of the DNI for these.
  nif,
  /// Spanish account of 20 digits: bank, branch, two control digits (modulo 11), number.
  ccc,
  /// International account (ISO 13616): country, two check digits (modulo 97), and the account in the form
  /// that the registry has for the country. Unknown countries are refused. Where it is certain how a country
  /// controls its accounts, that is checked too: in Spain, France, Monaco, Belgium, Portugal, Italy, San
  /// Marino, Bosnia and Herzegovina, Montenegro, North Macedonia, Serbia, Slovenia, Kosovo and Timor-Leste.
  iban,
  /// SWIFT code (ISO 9362): four letters or digits, a country (ISO 3166-1, and XK), two and possibly three
  /// more letters or digits.
  bic,
  /// Payment card (ISO/IEC 7812-1): 12 to 19 digits with a sum by Luhn, as many as cards of the brand have
  /// where that is known.
  card,
  /// VAT number of the European Union and Northern Ireland, with its country, "EL" being Greece: "ES" and a
  /// NIF, which is checked as such; "BE" and the number of an enterprise, ten digits, the first 0 or 1, of
  /// which the last two are 97 less the others modulo 97 (Belgian royal decree of 24 June 2003); "NL", nine
  /// digits, B and two digits, where either the nine are an RSIN (weighted sum modulo 11) or, as of 2020, the
  /// whole is 1 modulo 97 (Belastingdienst); of other countries the form alone, as VIES describes it.
  vat,
  /// Number for customs (Regulation (EU) 2015/2446, annex 12-01): "ES" and a NIF, which is checked as such;
  /// another country of the Union, Northern Ireland or the United Kingdom and up to 15 letters or digits.
  eori,
  /// Spanish postal code: five digits, the first two being a province's in the numbering of the INE.
  postal_code,
  /// Spanish telephone number of nine digits in a range that the numbering plan attributes (Real Decreto
  /// 2296/2004), with "+34" or "0034" before it or not. Brackets may stand in it.
  telephone,
};

/// What is wrong with a text.
enum class fault {
  none,              ///< Nothing.
  empty,             ///< There is nothing but blanks.
  character,         ///< A character that cannot stand in its place.
  length,            ///< Too few characters, or too many.
  beginning,         ///< The first characters are of no known legal form, country, province, range.
  control,           ///< The control characters do not fit the rest.
  national_control,  ///< Those of the country inside an IBAN do not, though those of the IBAN do.
};

/// What check() found.
struct verdict {
  identifiers::kind of = kind::dni;  ///< What was checked.
  fault what = fault::none;          ///< The first thing that is wrong.
  /// The first character that is wrong, counted from 1 in units of the text; 0 where none is: of a text that
  /// is empty or too short, and of a right one.
  std::size_t position = 0;
  /// The control characters that would be right; of a wrong length how many characters there should be ("9",
  /// "12-19"). Ends with a null; empty where there is nothing to say.
  wchar_t expected[8] = {};

  /// Whether nothing is wrong.
  explicit operator bool() const noexcept { return what == fault::none; }
};

/// Looks at a text. Takes time linear in it, and no memory.
KESTA_API verdict check(kind what, std::wstring_view text) noexcept;

/// What is wrong, in Spanish, for people: "NIF: el carácter de control no es correcto; se esperaba Z
/// (posición 9)". Empty when nothing is.
KESTA_API std::wstring message_of(const verdict& found);

/// In capitals and without separators, as programs store it: "12345678Z", "ES9121000418450200051332". A
/// telephone number gets the form of ITU-T E.164 in all cases, "+34910000000", whether it is written with
/// "+34", "0034" or neither; it is the same number. What check() refuses is cleaned likewise, but for
/// characters that no identifier of the kind has, which stay.
KESTA_API std::wstring normalise(kind what, std::wstring_view text);

/// As people write it: "12345678-Z", "B-12345674", "2100 0418 45 0200051332", "910 000 000", an IBAN and a
/// card in groups; a telephone number with "+34" if it is written with the prefix, else without. What check()
/// refuses is given back as it is.
KESTA_API std::wstring format(kind what, std::wstring_view text);

/// What an identifier says of itself: of a NIF the legal form ("Sociedad limitada", "Persona física",
/// "Extranjero"), of a card the brand, of a postal code the province, of a telephone number its sort
/// ("móvil", "fijo", ...), of an IBAN, BIC, VAT number or EORI the country's code. Empty for what is not
/// known and for what check() refuses.
KESTA_API std::wstring describe(kind what, std::wstring_view text);

// --- making them

/// The control letter of a DNI; of an NIE with 0, 1 or 2 before its digits in place of the letter. Null for a
/// number above 99999999.
KESTA_API wchar_t control_of_dni(unsigned long number) noexcept;
/// The control character of an entity's NIF, a digit where either may stand: of its letter, a capital, and
/// the number of its seven digits. Null for another letter and for a number above 9999999.
KESTA_API wchar_t control_of_company(wchar_t letter, unsigned long number) noexcept;

/// The identifier in its compact form with the right control characters in place of those that it has, which
/// may be any letters or digits: ES00 2100 0418 00 0200051332 becomes ES9121000418450200051332. Empty where
/// anything else is wrong with it.
KESTA_API std::wstring with_control(kind what, std::wstring_view text);

/// The form of a country's accounts, which stand behind the check digits of the IBAN: "20n" of Spain,
/// "4a14n" of the United Kingdom, how many digits, capitals (a) and of either (c) follow each other. Empty
/// for a country that is not in the registry; its code is two capitals.
KESTA_API std::wstring account_form(std::wstring_view country);

/// A province, or one of the two autonomous cities.
struct province {
  const wchar_t* code;  ///< Two digits, "01" to "52".
  const wchar_t* name;  ///< The official one: "Araba/Álava".
};
/// All of them in the order of their codes.
KESTA_API std::span<const province> provinces() noexcept;

}  // namespace ruvo::identifiers
