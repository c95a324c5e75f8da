// SPDX-License-Identifier: BSL-1.0
#pragma once

// Tests for parts, masks and patterns, replacing and splitting. Everything that does not name its argument
// `pattern` is literal: no character has a meaning of its own. All comparisons are case-sensitive.

#include <ruvo/api.hpp>
#include <ruvo/texto/exact_view.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace ruvo::texto {

// --- comparison

/// Whether `text` begins with `part`; true for an empty part. Case matters.
KESTA_API bool starts_with(const std::wstring& text, const std::wstring& part);
KESTA_API bool starts_with(wide_view text, wide_view part);
inline bool starts_with(wide_view text, const std::wstring& part) {
  return starts_with(text, std::wstring_view(part));
}
/// Whether `text` ends with `part`; true for an empty part. Case matters.
KESTA_API bool ends_with(const std::wstring& text, const std::wstring& part);
KESTA_API bool ends_with(wide_view text, wide_view part);
inline bool ends_with(wide_view text, const std::wstring& part) {
  return ends_with(text, std::wstring_view(part));
}
/// Whether `part` stands anywhere in `text`; true for an empty part. Case matters.
KESTA_API bool contains(const std::wstring& text, const std::wstring& part);
KESTA_API bool contains(wide_view text, wide_view part);
inline bool contains(wide_view text, const std::wstring& part) {
  return contains(text, std::wstring_view(part));
}

/// Whether the pattern matches the whole text.
///
/// A pattern is a regular expression in the ECMAScript grammar as std::regex takes it, case-sensitive; a
/// malformed one throws std::regex_error, and so does one that takes too many steps (error_complexity: more
/// than 100 for each character beyond the first million, and 4 more for each of its first 100 branches), too
/// much room or too many instructions (error_stack, error_space). Time is linear in the text for patterns
/// without back-references and look-aheads.
///
/// `\w`, `\b`, `[[:alpha:]]` and `[[:alnum:]]` hold the letters of Latin, Greek and Cyrillic (Unicode up to
/// U+052F, and U+1E00 to U+1EFF), `[[:upper:]]` and `[[:lower:]]` those of them that are one of such a pair
/// (in Latin up to U+017F and from U+1E00 on); `\s` and `[[:space:]]` also the blanks beyond ASCII, no-break
/// spaces among them; `\d` and `[[:digit:]]` are 0 to 9. Ranges like `[a-z]` hold what lies between their
/// ends.
KESTA_API bool match(const std::wstring& text, std::wstring pattern);
KESTA_API bool match(wide_view text, std::wstring pattern);

// --- masks

// '*' stands for any run of characters, the empty one too, and '?' for any one character.

/// How a mask without `*` and `?` is compared. Values that are not listed mean `busqueda_contiene`.
enum modo_busqueda : int {
  busqueda_completa = 0,  ///< The whole text.
  busqueda_comienza = 1,  ///< The text begins with the mask.
  busqueda_termina = 2,   ///< The text ends with the mask.
  busqueda_contiene = 3,  ///< The text holds the mask.
  busqueda_exacta = 4,    ///< The same as busqueda_completa.
};

/// Whether `text` holds `*` or `?`.
KESTA_API bool has_mask(const std::wstring& text);
KESTA_API bool has_mask(wide_view text);
/// Whether the mask fits the text: `*` stands for any run of characters, the empty one too, and `?` for any
/// one character. Time is at most the product of both lengths, and no more than their sum for ordinary masks.
/// @quirk A mask with `*` or `?` must fit the whole text, whatever the mode.
KESTA_API bool match_mask(const std::wstring& text, const std::wstring& mask, modo_busqueda mode);
KESTA_API bool match_mask(wide_view text, wide_view mask, modo_busqueda mode);
inline bool match_mask(wide_view text, const std::wstring& mask, modo_busqueda mode) {
  return match_mask(text, std::wstring_view(mask), mode);
}
/// For a mode that is kept as a number.
inline bool match_mask(const std::wstring& text, const std::wstring& mask, int mode) {
  return match_mask(text, mask, static_cast<modo_busqueda>(mode));
}
/// The mask for the LIKE operator of SQL: `%` for `*` and `_` for `?`.
/// @quirk A `%` or `_` of the mask is not escaped: it becomes a wildcard.
KESTA_API std::wstring mask_to_sql(const std::wstring& mask);
KESTA_API std::wstring mask_to_sql(wide_view mask);

/// What stands between the first quotation mark, single or double, and the next one on the same line. Without
/// such a pair, the text as it is: an unquoted value is its own content. `*found`, if given, becomes whether
/// there was a pair.
/// @quirk The marks need not be alike: "it's" in double quotation marks gives `it`.
[[nodiscard]] KESTA_API std::wstring content(std::wstring text, bool* found = nullptr);
[[nodiscard]] inline std::wstring content(wide_view text, bool* found = nullptr) {
  return content(std::wstring(text), found);
}

// --- replacing

/// Replaces every match of the pattern, which match() describes. In `with`, `$&` is the match, `$1` to `$99`
/// its groups, `` $` `` what stands between the previous match and this one, `$'` what stands behind it, and
/// `$$` a dollar sign. Throws std::regex_error, and then leaves the text as it was.
KESTA_API std::wstring& replace(std::wstring& text, std::wstring pattern, std::wstring with);
[[nodiscard]] KESTA_API std::wstring replace_(const std::wstring& text, std::wstring pattern,
                                              std::wstring with);
[[nodiscard]] KESTA_API std::wstring replace_(wide_view text, std::wstring pattern, std::wstring with);
/// Replaces every `from`; both are literal characters, so '.' and '*' are safe too.
KESTA_API std::wstring& replace(std::wstring& text, wchar_t from, wchar_t to);

/// Replaces every occurrence, from the left and without overlap. An empty `from` leaves the text as it is.
KESTA_API std::wstring& safe_replace(std::wstring& text, std::wstring from, std::wstring to);
KESTA_API std::wstring& safe_replace(std::wstring& text, wchar_t from, wchar_t to);
/// As safe_replace; only the first occurrence unless `all`.
KESTA_API std::wstring& std_replace(std::wstring& text, std::wstring from, std::wstring to, bool all);

/// Puts a backslash before `- [ ] { } ( ) * + ? . , ^ $ | #` and the blanks of `\s`.
/// @quirk A backslash is not escaped, so a text that holds one does not become a pattern that matches it.
KESTA_API std::wstring escape_regex_pattern(const std::wstring& text);
KESTA_API std::wstring escape_regex_pattern(wide_view text);

// --- splitting

/// The pieces between the separators, empty ones too. An empty text gives one empty piece, an empty separator
/// the whole text.
/// @quirk No piece follows a final separator: ",a,,b," gives "", "a", "", "b".
KESTA_API std::vector<std::wstring> split(const std::wstring& text, const std::wstring& separator);
KESTA_API std::vector<std::wstring> split(wide_view text, wide_view separator);
inline std::vector<std::wstring> split(wide_view text, const std::wstring& separator) {
  return split(text, std::wstring_view(separator));
}
/// Appends the pieces to `out`.
KESTA_API void split_on(std::vector<std::wstring>& out, const std::wstring& text,
                        const std::wstring& separator);
KESTA_API void split_on(std::vector<std::wstring>& out, wide_view text, wide_view separator);
inline void split_on(std::vector<std::wstring>& out, wide_view text, const std::wstring& separator) {
  split_on(out, text, std::wstring_view(separator));
}

}  // namespace ruvo::texto
