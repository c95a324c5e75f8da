// SPDX-License-Identifier: BSL-1.0
#pragma once

// Trimming, case, word forms, names and the cleaning of characters.

#include <ruvo/api.hpp>
#include <ruvo/texto/exact_view.hpp>

#include <string>

namespace ruvo::texto {

// --- trimming and blanks

/// Removes the blanks at the start: blank, TAB, LF, VT, FF and CR.
KESTA_API std::wstring& ltrim(std::wstring& text);
[[nodiscard]] KESTA_API std::wstring ltrim_(const std::wstring& text);
[[nodiscard]] KESTA_API std::wstring ltrim_(wide_view text);
/// Removes the blanks at the end.
KESTA_API std::wstring& rtrim(std::wstring& text);
[[nodiscard]] KESTA_API std::wstring rtrim_(const std::wstring& text);
[[nodiscard]] KESTA_API std::wstring rtrim_(wide_view text);
/// Removes the blanks at both ends.
KESTA_API std::wstring& trim(std::wstring& text);
[[nodiscard]] KESTA_API std::wstring trim_(const std::wstring& text);
[[nodiscard]] KESTA_API std::wstring trim_(wide_view text);

/// The text without TAB, LF and CR, wherever they stand.
[[nodiscard]] KESTA_API std::wstring clear(std::wstring text);
[[nodiscard]] inline std::wstring clear(wide_view text) { return clear(std::wstring(text)); }

/// `a` unless it is empty, else `b`. The narrow form converts from UTF-8.
KESTA_API std::wstring safe_non_empty(const std::wstring& a, const std::wstring& b);
KESTA_API std::wstring safe_non_empty(const std::string& a, const std::string& b);
inline std::wstring safe_non_empty(wide_view a, wide_view b) { return std::wstring(a.empty() ? b : a); }

// --- case

/// Small letters for A-Z and for the accented capitals U+00C0 to U+00DD (without U+00D7); all else stays.
KESTA_API wchar_t to_lowercase(wchar_t c);
KESTA_API std::wstring& to_lowercase(std::wstring& text);
[[nodiscard]] KESTA_API std::wstring to_lowercase_(const std::wstring& text);
[[nodiscard]] KESTA_API std::wstring to_lowercase_(wide_view text);
/// Capitals for a-z and for the accented small letters U+00E0 to U+00FD (without U+00F7); all else stays.
KESTA_API wchar_t to_uppercase(wchar_t c);
KESTA_API std::wstring& to_uppercase(std::wstring& text);
[[nodiscard]] KESTA_API std::wstring to_uppercase_(const std::wstring& text);
[[nodiscard]] KESTA_API std::wstring to_uppercase_(wide_view text);

// --- word forms

// Words are separated by blanks of any kind, no-break spaces and others beyond ASCII too, unlike
// the ends that trim() cuts.

/// "hola mundo" gives "HolaMundo": letters lose their accents, all but letters and digits is dropped and
/// starts a new word, which begins with a capital and goes on in small letters.
KESTA_API std::wstring& to_camel_case(std::wstring& text);
[[nodiscard]] KESTA_API std::wstring to_camel_case_(const std::wstring& text);
[[nodiscard]] KESTA_API std::wstring to_camel_case_(wide_view text);

/// "HolaMundo" gives "hola_mundo": letters lose their accents, all but letters and digits is dropped, and an
/// underscore stands before what was a capital, but not at the start.
/// @quirk A blank separates nothing: "hola mundo" gives "holamundo"; only capitals do.
KESTA_API std::wstring& to_snake_case(std::wstring& text);
[[nodiscard]] KESTA_API std::wstring to_snake_case_(const std::wstring& text);
[[nodiscard]] KESTA_API std::wstring to_snake_case_(wide_view text);

/// Words with one blank between them, each with a capital first and small letters after it: "JUAN  perez"
/// gives "Juan Perez".
/// @quirk A first letter outside A-Z and a-z stays as it is: "árbol" and "Árbol" keep theirs.
KESTA_API std::wstring& to_capitalize_case(std::wstring& text);
[[nodiscard]] KESTA_API std::wstring to_capitalize_case_(const std::wstring& text);
[[nodiscard]] KESTA_API std::wstring to_capitalize_case_(wide_view text);

// --- names

/// A person's name with a capital first and small letters after it in each part of a word (at a hyphen, an
/// apostrophe, a point ...), accented letters too, and one blank between words. "MARÍA DE LA O
/// GARCÍA-LÓPEZ" gives "María de la O García-López", "J.M. O'DONNELL" gives "J.M. O'Donnell".
/// The words of is_article_or_preposition(), "d'" and "l'" are small, but not at the start of the name:
/// "Eugeni d'Ors", "De la Fuente". A single letter after an apostrophe at the end of a word stays small.
/// Roman numerals from II to XXXIX are large, but not at the start; "I" only as the last word ("Juan
/// Carlos I", "Puig i Cadafalch").
[[nodiscard]] KESTA_API std::wstring to_capitalize_name_(const std::wstring& name);
[[nodiscard]] KESTA_API std::wstring to_capitalize_name_(wide_view name);

/// Whether `word`, in capitals or small letters, is one of: de del dels; el la los las; els les; da das do
/// dos; y e i; di du van von der den zu.
KESTA_API bool is_article_or_preposition(const std::wstring& word);
KESTA_API bool is_article_or_preposition(wide_view word);

/// The name of a municipality as it is written in running text, in capitals and small letters like a
/// person's name. An article at the end, after a comma or in brackets, goes to the front: "PALMAS DE GRAN
/// CANARIA, LAS" gives "Las Palmas de Gran Canaria", "CORUÑA (A)" gives "A Coruña", "Hospitalet (L')" gives
/// "L'Hospitalet"; it is dropped when it stands in front, too ("EL MOLAR, EL"). The names on both sides of a
/// '/' are treated one by one, and the '/' loses the blanks around it. Small are, but not at the start, the
/// words el la los las de del dels y na i els les ses sa, and d' l' s' n' before a word.
/// @quirk Other particles ("do", "dos", "es") get a capital inside a name: the pattern that lists the small
/// ones does not have them. It is compared with whole words, although some of its parts name no word limit;
/// only "dels" is what its "del" begins.
KESTA_API std::wstring corregir_nombre_municipio(const std::wstring& name);
KESTA_API std::wstring corregir_nombre_municipio(wide_view name);

/// "García López, Juan" gives "Juan García López": what stands before the first comma goes to the end.
/// Further commas only separate ("López, Ana, María" gives "Ana María López"); the parts are trimmed, empty
/// ones are dropped and one blank joins them. Without a comma the trimmed text.
[[nodiscard]] KESTA_API std::wstring order_name_(const std::wstring& name);
[[nodiscard]] KESTA_API std::wstring order_name_(wide_view name);

// --- cleaning

/// The plain letter of an accented one (U+00C0 to U+00FD without × ÷ Ø ø Þ þ ß; Æ gives A); a plain letter or
/// a digit itself; for any other character `r`, or the character when `r` is 0.
KESTA_API wchar_t limpia_puntuacion(wchar_t c, wchar_t r);
/// Accented letters become plain ones.
/// @quirk `r` is ignored: unlike the form for one character, every other character stays.
KESTA_API std::wstring& limpia_puntuacion(std::wstring& text, wchar_t r);
[[nodiscard]] KESTA_API std::wstring limpia_puntuacion_(const std::wstring& text, wchar_t r);
[[nodiscard]] KESTA_API std::wstring limpia_puntuacion_(wide_view text, wchar_t r);

/// Replaces typographic characters by those of a keyboard, in place: quotes of any kind, guillemets and
/// primes by " or ', dashes and the minus sign by -, the ellipsis by three points, spaces of any width by a
/// blank, line and paragraph separators by LF. Soft hyphens, marks of byte order and direction and invisible
/// spaces are removed. Letters keep their accents; joiners (U+200C, U+200D) stay, for they change what is
/// read.
KESTA_API std::wstring& limpia_caracteres_especiales(std::wstring& text);

}  // namespace ruvo::texto
