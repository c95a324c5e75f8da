// SPDX-License-Identifier: BSL-1.0
#pragma once

// Where in a text something stands, and all the failures of a reading; the readers themselves are in
// <ruvo/serializer.hpp>.
//
//   ruvo::serializer::json_reader reader;
//   ruvo::bundle document;
//   for (const auto& failure : ruvo::serializer::read_all(reader, document, text))
//     std::wcerr << failure.line << L':' << failure.column << L' ' << failure.error.get_mensaje() << L'\n';

#include <ruvo/api.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/fwd.hpp>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace ruvo::serializer {

/// A line and a column, both counted from 1.
struct text_place {
  std::size_t line = 1,  ///< Ends with CR, LF or CRLF.
      column = 1;        ///< In characters: a surrogate pair is one.
  /// Whether both are the same place.
  bool operator==(const text_place&) const = default;
};

/// The place of the character that has `position`, counted from 1 in UTF-16 units as the readers and their
/// messages count; 0 is taken as 1, and a position behind the text gives the place where it ends.
///
/// CR, LF and CRLF each end a line and belong to it. A surrogate pair is one column, and so is CRLF; tabs,
/// combining marks and a byte order mark are one column each. Takes time linear in `position`.
KESTA_API text_place position_of(std::wstring_view text, std::uint64_t position) noexcept;
/// The same of UTF-8, where positions count bytes and columns characters still: a byte of a character has its
/// place, and so has a byte that continues none, of what stands before it.
KESTA_API text_place position_of(std::string_view utf8, std::uint64_t position) noexcept;

/// The position of a failure of json or xml, which its message shows too; 0 for a failure without one. It
/// goes along with copies and into an exc::RunTime, exc::UnCatch or exc::UnKnown that is made of the failure,
/// but not with the message as a text.
KESTA_API std::uint64_t failure_position(const exception& failure);

/// A failure and the character at which it was found.
struct reading_failure {
  exception error;         ///< Of the classes that the reader names, or exc::RunTime.
  std::uint64_t position;  ///< Counted from 1, as position_of() takes it.
  std::size_t line,        ///< As position_of() gives it.
      column;              ///< As position_of() gives it.
};

/// Reads the text into `out` as deserialize() does, and gives the failures in the order of their positions:
/// the first `most` of them. Failures of the same code at characters that follow each other count once.
///
/// An exception of the reader (JSON: a number that can't be converted) ends the reading there; it is the last
/// failure, an exc::RunTime with its text, and counts even beyond `most`. std::bad_alloc leaves this
/// function. The reader is reset before and after. `text` may be a part of what `out` holds.
KESTA_API std::vector<reading_failure> read_all(ireader& reader, bundle& out, std::wstring_view text,
                                                std::size_t most = 100);

}  // namespace ruvo::serializer
