// SPDX-License-Identifier: BSL-1.0
#pragma once

// Parameters of fields, `; name=value`: as tokens, quoted strings, extended values (RFC 8187) and in segments
// (RFC 2231).

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ruvo::wire {

/// Names ignore the case of A-Z and have no "*" behind them; values are decoded.
struct parameter {
  std::wstring name;
  std::wstring value;

  bool operator==(const parameter&) const = default;
};
using parameters = std::vector<parameter>;

/// The first parameter of that name, or null.
const parameter* find_parameter(const parameters& all, std::wstring_view name) noexcept;

/// Which of the forms a value takes that is no text of ASCII.
enum class parameter_form : std::uint8_t {
  http,  ///< RFC 8187: `name*=UTF-8''...`, whatever its length.
  mail   ///< RFC 2231: the same, and in segments what takes more than 76 characters, also in ASCII.
};

/// Adds to `pieces` what is written for a parameter, each without a ";" and at most 76 characters long in
/// mail, for lines to be folded between them; segments end between characters. False, and nothing is added,
/// if the name is no token or has one of `*'%`, or the value is no field value (base/wire/tokens.hpp).
bool add_parameter(std::vector<std::wstring>& pieces, std::wstring_view name, std::wstring_view value,
                   parameter_form form);
/// The same as text, "; " before each piece.
bool append_parameter(std::wstring& out, std::wstring_view name, std::wstring_view value,
                      parameter_form form);

/// What becomes of parameters that the grammar does not have.
enum class parameter_reading : std::uint8_t {
  strict,  ///< Reading fails at the first fault.
  /// Mail: what is wrong is read as it was probably meant. A value without quotes goes up to the next ";", a
  /// quoted one without an end up to the text's; what stands behind a quoted one and what has no "=" is left
  /// out. Of two parameters or segments of one name the first counts. Segments count up to the first that
  /// is missing. An extended value whose encoding is unknown, or that is otherwise no such value, is left out
  /// if the same name has a plain one, and else taken as it stands; bytes that are no character of theirs
  /// become U+FFFD.
  lenient
};

/// Appends the parameters that follow at `at` of unfolded text, `*( OWS ";" OWS [ parameter ] )`, in the
/// order in which their names first come, and moves `at` behind them: to the end, or to what cannot go on,
/// such as the
/// "," of a list. With lenient reading that is always the end.
///
/// An extended value counts more than segments, and these more than a plain value of the same name, in
/// whichever order they stand (RFC 8187, 3.2; RFC 6266, 4.3); the segments' order does not count either.
/// Extended values are in one of the encodings of base/charset.hpp; their language is left out.
///
/// False at a fault, where `at` then is, and `out` is as it was: a name that is no token or comes twice, a
/// value that is neither token nor quoted string, a segment that is missing or comes twice, an extended value
/// without its two "'" or with an unknown encoding, with "%" without two digits or with bytes that are no
/// character, and anything that decodes to no field value. The last holds for lenient reading, too, where
/// such characters become blanks.
bool read_parameters(parameters& out, std::wstring_view text, std::size_t& at,
                     parameter_reading reading = parameter_reading::strict);

/// Decodes `charset'language'...` of RFC 8187 and replaces `out`. False as above.
bool read_extended_value(std::wstring& out, std::wstring_view text);

}  // namespace ruvo::wire
