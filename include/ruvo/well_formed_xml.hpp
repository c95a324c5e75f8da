// SPDX-License-Identifier: BSL-1.0
#pragma once

// Reading XML of other origin, strictly, into the shape that ruvo::serializer::xml gives. It stops at the
// first fault. JSON has a check instead, which reads nothing and reports all faults: <ruvo/json_check.hpp>.
//
//   std::string bytes;  // as they are in the file, in whatever encoding
//   ruvo::bundle document;
//   ruvo::exception failure;
//   if (!ruvo::files::read(bytes, L"factura.xml", failure)) return 1;
//   if (ruvo::serializer::read_well_formed_xml(document, bytes, &failure)) {
//     const auto position = ruvo::serializer::failure_position(failure);
//     const auto place = ruvo::serializer::position_in_xml(bytes, position);
//     std::wcerr << place.line << L':' << place.column << L' ' << failure.get_mensaje() << L'\n';
//   }

#include <ruvo/api.hpp>
#include <ruvo/fwd.hpp>
#include <ruvo/reading.hpp>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ruvo::serializer {

/// What a reading takes at most. What goes beyond is an exc::xmlBeyondLimit (7006) at the place where it
/// does. A limit of std::size_t(-1) is none.
struct xml_limits {
  std::size_t depth = 512;                   ///< Of open elements.
  std::size_t units = std::size_t{1} << 30;  ///< Of the text: bytes, or UTF-16 units.
  /// In all; with `mixed_text` each text beside elements is one, too.
  std::size_t elements = std::size_t{1} << 26;
  std::size_t attributes = 10000;            ///< Of one element.
  std::size_t bytes = std::size_t{4} << 30;  ///< Of memory that the values take, about.
  /// UTF-16 units that entities and default attributes add to the document in all. An entity counts each
  /// time that it is expanded, one inside another, too, so that the time is bounded by the length of the
  /// text and this limit.
  std::size_t growth = std::size_t{1} << 20;
};

/// How a document is read.
struct xml_read_options {
  xml_limits limits{};  ///< What it may have at most.
  /// Whether text beside elements is kept. An element that has both is then a list: one bundle with one entry
  /// for each element and for each text between two tags, in the order of the document. A text has the key
  /// `#text`, which no element can have, and is kept whole, with the blanks at its ends, also where it is
  /// nothing but blanks. Texts that are nothing but blanks make no element mixed, unless a blank stands in a
  /// CDATA section or is written as a character reference: where all are such they are lost, as indentation.
  ///
  /// The rows of all other lists, too, are then in the order of the document. Elements without elements
  /// inside have their text as ever. So a writer gives back a row `#text` as its text, escaped, and nothing
  /// between the rows; where no row of the list has a text with another character than a blank, it writes one
  /// blank as a reference. The reader never gives an empty `#text`, two of them in a row, or one alone.
  bool mixed_text = false;
  /// Whether the internal entities that the document declares are expanded, in content, in attributes and in
  /// their default values. Parameter entities are so between the declarations of the internal subset, which
  /// is where XML takes them there. References to other entities are failures: to external ones, to
  /// undeclared ones, and to those that are declared behind a reference to a parameter entity that is
  /// external or undeclared, unless the document is `standalone`; that may refer to none that a parameter
  /// entity declares.
  bool entities = false;
  /// Whether attributes are as the document type declares them: default values count where an element has no
  /// such attribute, and in attributes of other kinds than CDATA blanks at the ends are lost and those inside
  /// become one. What parameter entities bring is declared with `entities` only.
  bool declared_attributes = false;
};

/// Reads a document that is well-formed as XML 1.0 (fifth edition) says. `out` then holds one member and
/// nothing else: the root element. Elements become members, texts and attributes as in <ruvo/xml.hpp>, where
/// repeated siblings make a list, keys and names of qualities ignore case, and text beside elements is lost.
/// Names keep their spelling: bundle::spelling(), and the names of qualities.
///
/// CDATA sections and comments divide no text. Blanks at the ends of a text are lost, but for those that
/// stand in a CDATA section or are written as character references. Names are kept with their prefixes; no
/// namespace is resolved. A byte order mark, the declaration (whatever encoding it names), processing
/// instructions, comments and the document type declaration are passed over. What the latter declares must be
/// well-formed and has no effect unless `options` says so: there are the five entities of XML and no others,
/// in default values neither; no default attributes; and nothing is fetched, ever. References to parameter
/// entities may stand between the declarations; what they would bring is not looked at.
///
/// True on FAILURE, as in ruvo::iserializer; `out` is then as it was. The first character that can't stand
/// where it stands is the position in the message, and the number of open elements the knot; a reference to
/// what is not there counts at its &, the text's end behind its last unit. What is wrong with what an entity
/// brings counts at the & (or %) of the reference in the document. exc::xmlCachePointer (7002) means an end
/// tag whose name is not that of the innermost element, exc::xmlBeyondLimit (7006) what goes beyond a limit,
/// exc::xmlBadFormated (7001) all else. On success `*err` stays as it is.
///
/// Nothing but std::bad_alloc leaves this function. Without options there are no limits but memory, in
/// nesting neither; takes linear time, but for the sorting of attributes and keys.
KESTA_API bool read_well_formed_xml(bundle& out, std::wstring_view text, exception* err);
KESTA_API bool read_well_formed_xml(bundle& out, std::wstring_view text, exception* err,
                                    const xml_read_options& options);
[[nodiscard]] inline bool read_well_formed_xml(bundle& out, std::wstring_view text) {
  return read_well_formed_xml(out, text, nullptr);
}

/// The same for the bytes of a document, as files::read() gives them, with the limits of `options` always.
/// Their encoding is found as XML says: a byte order mark shows UTF-8 or UTF-16; without one the declaration
/// names it, in ASCII or, for UTF-16, in UTF-16; without either it is UTF-8. These are the encodings, and
/// their names in any case: UTF-8, UTF8; UTF-16, UTF-16LE, UTF-16BE, ISO-10646-UCS-2; US-ASCII, ASCII;
/// ISO-8859-1, ISO_8859-1, LATIN1; ISO-8859-15, ISO_8859-15, LATIN-9, LATIN9; WINDOWS-1252, CP1252.
///
/// Positions are in bytes, counted from 1, as position_in_xml() takes them. Another encoding, one that is not
/// that of the bytes, and UTF-16 without a mark or a name are an exc::xmlUnknownEncoding (7005) at the name,
/// or at 1 where there is none. Bytes that are no character of the encoding can't stand anywhere: 7001, at
/// the first byte of the sequence.
KESTA_API bool read_well_formed_xml(bundle& out, std::string_view bytes, exception* err,
                                    const xml_read_options& options = {});
/// The same for what is UTF-8 by its type, whatever encoding the declaration names.
KESTA_API bool read_well_formed_xml(bundle& out, std::u8string_view text, exception* err,
                                    const xml_read_options& options = {});
[[nodiscard]] inline bool read_well_formed_xml(bundle& out, std::string_view bytes) {
  return read_well_formed_xml(out, bytes, nullptr);
}
[[nodiscard]] inline bool read_well_formed_xml(bundle& out, std::u8string_view text) {
  return read_well_formed_xml(out, text, nullptr);
}

/// As position_of(), for the bytes of a document: the place of the character that has `position`, counted
/// from 1 in bytes of the encoding that read_well_formed_xml() finds. Of bytes that are no character the
/// place where the first of them stand; what follows these is not counted. Throws std::bad_alloc, since it
/// decodes the document; takes linear time.
KESTA_API text_place position_in_xml(std::string_view bytes, std::uint64_t position);

}  // namespace ruvo::serializer
