// SPDX-License-Identifier: BSL-1.0
#pragma once

// Reading XML of other origin, strictly, into the shape that ruvo::serializer::xml gives. It stops at the
// first fault. JSON has a check instead, which reads nothing and reports all faults: <ruvo/json_check.hpp>.
//
//   ruvo::bundle document;
//   ruvo::exception failure;
//   if (ruvo::serializer::read_well_formed_xml(document, text, &failure)) {
//     const auto place = ruvo::serializer::position_of(text, ruvo::serializer::failure_position(failure));
//     std::wcerr << place.line << L':' << place.column << L' ' << failure.get_mensaje() << L'\n';
//   }

#include <ruvo/api.hpp>
#include <ruvo/fwd.hpp>

#include <string_view>

namespace ruvo::serializer {

/// Reads a document that is well-formed as XML 1.0 (fifth edition) says. `out` then holds one member and
/// nothing else: the root element. Elements become members, texts and attributes as in <ruvo/xml.hpp>, where
/// repeated siblings make a list, keys and names of qualities ignore case, and text beside elements is lost.
///
/// CDATA sections and comments divide no text. Blanks at the ends of a text are lost, but for those that
/// stand in a CDATA section or are written as character references. Names are kept with their prefixes; no
/// namespace is resolved. A byte order mark, the declaration (whatever encoding it names), processing
/// instructions, comments and the document type declaration are passed over. What the latter declares must be
/// well-formed and has no effect: there are the five entities of XML and no others, in default values
/// neither; no default attributes; and nothing is fetched. References to parameter entities may stand between
/// the declarations; what they would bring is not looked at.
///
/// True on FAILURE, as in ruvo::iserializer; `out` is then as it was. The first character that can't stand
/// where it stands is the position in the message, and the number of open elements the knot; a reference to
/// what is not there counts at its &, the text's end behind its last unit. exc::xmlCachePointer (7002) means
/// an end tag whose name is not that of the innermost element, exc::xmlBadFormated (7001) of all else. On
/// success `*err` stays as it is.
///
/// Nothing but std::bad_alloc leaves this function. Nesting is limited by memory only; takes linear time, but
/// for the sorting of attributes and keys.
KESTA_API bool read_well_formed_xml(bundle& out, std::wstring_view text, exception* err);
[[nodiscard]] inline bool read_well_formed_xml(bundle& out, std::wstring_view text) {
  return read_well_formed_xml(out, text, nullptr);
}

}  // namespace ruvo::serializer
