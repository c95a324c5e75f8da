// SPDX-License-Identifier: BSL-1.0
#pragma once

// Whether a text is JSON as RFC 8259 defines it. The reader (ruvo::serializer::json) passes over most of what
// is reported here. Nothing is read: the strict reader of XML in <ruvo/well_formed_xml.hpp> is another thing.
//
//   for (const auto& finding : ruvo::serializer::check_json(text))
//     std::wcerr << finding.line << L':' << finding.column << L' ' << finding.what << L'\n';

#include <ruvo/api.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ruvo::serializer {

/// What a finding departs from, with the section of RFC 8259. From lone_surrogate on they are notes: the text
/// is JSON, but not every program will understand it in the same way.
enum class json_rule : std::int32_t {
  no_value,           ///< 2: a text is one value; there is none.
  trailing_text,      ///< 2: nothing but blanks follows the value. Nothing behind it is looked at.
  blank,              ///< 2: only space, tab, line feed and carriage return are blanks.
  comment,            ///< 2: there are no comments. Those that begin with // or /* are passed over.
  unexpected,         ///< 2: a colon, comma or closing bracket where it belongs to nothing.
  literal,            ///< 3: the only words are true, false and null, in lower case.
  bad_name,           ///< 4: the name of a member is a string.
  missing_colon,      ///< 4: a colon follows the name.
  missing_value,      ///< 4, 5: a value (or member) stands behind a colon and on both sides of a comma.
  missing_comma,      ///< 4, 5: a comma separates values and members.
  trailing_comma,     ///< 4, 5: no comma stands behind the last one.
  wrong_bracket,      ///< 4, 5: an object ends with }, an array with ].
  unclosed,           ///< 4, 5: the text ends inside an object or array, in whatever depth.
  number,             ///< 6: [-] int [frac] [exp], without leading zeros.
  quotes,             ///< 7: a string stands in quotation marks, not in apostrophes.
  unclosed_string,    ///< 7: a string ends with a quotation mark.
  control_character,  ///< 7: U+0000 to U+001F are escaped inside strings.
  escape,             ///< 7: only \" \\ \/ \b \f \n \r \t and \u with four hexadecimal digits.
  byte_order_mark,    ///< 8.1: no mark at the beginning. Readers may pass over it, and json does.
  lone_surrogate,     ///< 8.2: half a pair, as it stands or escaped; a note.
  duplicate_name,     ///< 4: the names of an object should be unique; a note.
};

/// Whether a text with this finding is JSON all the same.
constexpr bool is_note(json_rule rule) noexcept { return rule >= json_rule::lone_surrogate; }

/// One departure of a text from JSON.
struct json_finding {
  json_rule rule;          ///< What it departs from.
  std::uint64_t position;  ///< Of the character, as position_of() takes it.
  std::size_t line,        ///< As position_of() gives it.
      column;              ///< As position_of() gives it.
  std::wstring what;       ///< A sentence in Spanish.
};

/// The departures of the text in the order of their positions; none when it is JSON. Checking goes on behind
/// a departure as if the text were what it was most likely meant to be, and ends when `most` are found that
/// are no notes; of the notes before that, too, the first `most` are reported, so that they hide no error.
/// Duplicate names, compared as section 8.3 says, are looked for when `duplicates` is set.
///
/// Nesting is limited by memory only. Takes linear time; with `duplicates`, the names are sorted.
KESTA_API std::vector<json_finding> check_json(std::wstring_view text, std::size_t most = 100,
                                               bool duplicates = false);

}  // namespace ruvo::serializer
