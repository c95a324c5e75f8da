// SPDX-License-Identifier: BSL-1.0
#pragma once

// Escaping for SQL, HTML and JSON, the tags of HTML, and stored memos.

#include <ruvo/api.hpp>
#include <ruvo/fwd.hpp>
#include <ruvo/texto/exact_view.hpp>

#include <string>

namespace ruvo::texto {

// --- SQL

/// Doubles each ', as a text literal needs it.
KESTA_API std::wstring& escaped_to_sql(std::wstring& text);
[[nodiscard]] KESTA_API std::wstring escaped_to_sql_(const std::wstring& text);
[[nodiscard]] KESTA_API std::wstring escaped_to_sql_(wide_view text);
/// Halves each pair of '.
KESTA_API std::wstring& escaped_from_sql(std::wstring& text);
[[nodiscard]] KESTA_API std::wstring escaped_from_sql_(const std::wstring& text);
[[nodiscard]] KESTA_API std::wstring escaped_from_sql_(wide_view text);

// --- HTML

/// Writes á é í ó ú, ñ, ü and ç of both cases as their entities (`&aacute;` ...).
/// @quirk Nothing else is escaped, and `&`, `<` and `>` least of all, so that a text with tags can be passed.
KESTA_API std::wstring& escaped_to_html(std::wstring& text);
/// Puts the letters in the place of those entities.
KESTA_API std::wstring& escaped_from_html(std::wstring& text);

/// Line ends, CR LF or LF alone, to `<br/>`, then escaped_to_html. A CR alone stays.
KESTA_API std::wstring& to_html(std::wstring& text);
[[nodiscard]] KESTA_API std::wstring to_html_(const std::wstring& text);
[[nodiscard]] KESTA_API std::wstring to_html_(wide_view text);
/// escaped_from_html, then `<br/>` and `</br>` to CR LF, then every tag is removed. A `<` without a `>`
/// behind it stays.
KESTA_API std::wstring& to_plain(std::wstring& text);
[[nodiscard]] KESTA_API std::wstring to_plain_(const std::wstring& text);
[[nodiscard]] KESTA_API std::wstring to_plain_(wide_view text);

/// Whether there is a tag in the text: a `<`, anything but `>`, and a `>`.
KESTA_API bool is_html(const std::wstring& text);
KESTA_API bool is_html(wide_view text);

/// Removes `<html>`, `</html>`, `<html/>` and `</html/>` in any case, then the same of body; a tag with
/// attributes stays. Gives the position of the first `<body>`, in lower case, in the text as it was, or
/// std::wstring::npos.
KESTA_API unsigned long long remove_html_and_body_tags(std::wstring& text);
/// The same; the position goes to `*body`, if given.
[[nodiscard]] KESTA_API std::wstring remove_html_and_body_tags_(const std::wstring& text,
                                                                unsigned long long* body = nullptr);
[[nodiscard]] KESTA_API std::wstring remove_html_and_body_tags_(wide_view text,
                                                                unsigned long long* body = nullptr);

// --- JSON

/// TAB, CR and LF to `\t`, `\r` and `\n`.
/// @quirk Quotes and backslashes stay as they are.
KESTA_API std::wstring& escaped_to_json(std::wstring& text);
/// The same for every text and memo in the bundle; when `nested`, also in the bundles and lists inside it, to
/// any depth. Qualities stay as they are.
KESTA_API void escaped_to_json(bundle& values, bool nested);

/// JSON text with two blanks a level, for reading: a line for each member, element and outermost value, empty
/// containers on one line, ": " behind a key. Strings stay as they are, blanks between tokens are replaced.
/// Works on any text. Levels below the 20th are not indented further, so that deep nesting takes no more than
/// a line each.
KESTA_API std::wstring print_json(std::wstring text);
inline std::wstring print_json(wide_view text) { return print_json(std::wstring(text)); }

// --- stored memos: bytes in a memo as Base64, in either alphabet, with or without padding and blanks

/// Replaces `out` by the bytes of the memo; none if it is not Base64.
KESTA_API void decodifica_memo(binary& out, std::wstring memo);
/// Replaces `out` by the JSON document that the memo holds, as UTF-8 under the Base64 or as it stands; a mark
/// of byte order before it does not count. Empty if it holds none, or one that serializer::json reports as
/// wrong.
KESTA_API void decodifica_memo(bundle& out, std::wstring memo);

}  // namespace ruvo::texto
