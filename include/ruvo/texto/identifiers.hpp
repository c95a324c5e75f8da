// SPDX-License-Identifier: BSL-1.0
#pragma once

// Spanish identity numbers, bank accounts and payment cards: cleaning and check digits.

#include <ruvo/api.hpp>
#include <ruvo/texto/exact_view.hpp>

#include <string>

namespace ruvo::texto {

// --- cleaning

/// The letters (A-Z, a-z) and digits of an identity number, in their case.
[[nodiscard]] KESTA_API std::wstring limpia_nif_(const std::wstring& text);
[[nodiscard]] KESTA_API std::wstring limpia_nif_(wide_view text);

/// The digits of a telephone number. With `keeps_plus` a '+' that stands before the first digit is kept in
/// front of them, as the sign of an international number; "00" in its place are digits like all others.
[[nodiscard]] KESTA_API std::wstring limpia_telefono_(const std::wstring& text, bool keeps_plus);
[[nodiscard]] KESTA_API std::wstring limpia_telefono_(wide_view text, bool keeps_plus);

/// `text` with all but its last `n` characters replaced by `c`; unchanged when `n` is below 1 or above the
/// length.
KESTA_API std::wstring ocultar_numeros_cuenta(const std::wstring& text, int n, wchar_t c);
KESTA_API std::wstring ocultar_numeros_cuenta(wide_view text, int n, wchar_t c);

// --- checks

// Letters may be small; blanks and separators make a number invalid (limpia_nif_() removes them), and
// so does every character above 127. None throws.

/// Whether it is a DNI: eight digits and their control letter.
KESTA_API bool valida_dni(const std::string& text);
KESTA_API bool valida_dni(const std::wstring& text);
KESTA_API bool valida_dni(narrow_view text);
KESTA_API bool valida_dni(wide_view text);

/// Whether it is an NIE: X, Y or Z, seven digits and the control letter of the DNI that has 0, 1 or 2 first.
KESTA_API bool valida_nie(const std::string& text);
KESTA_API bool valida_nie(const std::wstring& text);
KESTA_API bool valida_nie(narrow_view text);
KESTA_API bool valida_nie(wide_view text);

/// Whether it is a CIF: a letter, seven digits and a control letter from A to J.
/// @quirk The control letter comes from a sum of its own, modulo 11, in which the first letter counts with
/// its character code. Other schemes for these numbers do not hold here: with a control digit, or with
/// the usual control letter, a number is refused.
KESTA_API bool valida_cif(const std::string& text);
KESTA_API bool valida_cif(const std::wstring& text);
KESTA_API bool valida_cif(narrow_view text);
KESTA_API bool valida_cif(wide_view text);

/// Whether it is any of them, in nine characters: an NIE when X, Y or Z comes first, a CIF (by the rule of
/// valida_cif) with any other letter, else a DNI.
KESTA_API bool valida_nif(const std::string& text);
KESTA_API bool valida_nif(const std::wstring& text);
KESTA_API bool valida_nif(narrow_view text);
KESTA_API bool valida_nif(wide_view text);

/// Whether it is an IBAN, ISO 13616: two letters for the country, two check digits (02 to 98), letters and
/// digits; modulo 97 gives 1. The length is the country's; for a country that is not in the registry 15 to 34
/// characters.
KESTA_API bool valida_iban(const std::string& text);
KESTA_API bool valida_iban(const std::wstring& text);
KESTA_API bool valida_iban(narrow_view text);
KESTA_API bool valida_iban(wide_view text);

/// Whether it is the IBAN of a Spanish account: "ES" and 22 digits that pass valida_iban(). An account number
/// of 20 digits without country and check digits has nothing that this check could verify: false.
KESTA_API bool valida_iban_esp(const std::string& text);
KESTA_API bool valida_iban_esp(const std::wstring& text);
KESTA_API bool valida_iban_esp(narrow_view text);
KESTA_API bool valida_iban_esp(wide_view text);

/// Whether it can be the number of a payment card: digits only, of any number but none, with a sum by Luhn
/// that is a multiple of 10 (ISO/IEC 7812-1).
KESTA_API bool valida_tarjeta_credito(const std::string& text);
KESTA_API bool valida_tarjeta_credito(const std::wstring& text);
KESTA_API bool valida_tarjeta_credito(narrow_view text);
KESTA_API bool valida_tarjeta_credito(wide_view text);

}  // namespace ruvo::texto
