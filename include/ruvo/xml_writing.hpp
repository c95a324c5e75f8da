// SPDX-License-Identifier: BSL-1.0
#pragma once

// Writing XML that the programs of others read: XML 1.0 (fifth edition), well-formed by construction. The
// library's own dialect, for documents that it stored, is ruvo::serializer::xml in <ruvo/xml.hpp>.
//
//   std::string bytes;
//   ruvo::exception failure;
//   ruvo::serializer::xml_write_options options;
//   options.root = L"pedido";
//   options.indent = 2;
//   if (ruvo::serializer::write_well_formed_xml(bytes, order, &failure, options))
//     std::wcerr << failure.get_mensaje() << L'\n';

#include <ruvo/api.hpp>
#include <ruvo/fwd.hpp>

#include <cstdint>
#include <string>
#include <string_view>

namespace ruvo::serializer {

/// Which elements the rows of a list become.
enum class xml_rows : std::int32_t {
  /// Where every row is a bundle of one member and has no qualities, as read_well_formed_xml() makes lists of
  /// repeated elements: those members. In all other lists as `items`.
  members,
  items,    ///< Elements with the name of items, inside the element of the list.
  repeated  ///< Elements with the name of the list, which has no element itself.
};

/// What becomes of keys that are no names.
enum class xml_names : std::int32_t {
  failure,  ///< The writing fails.
  /// As escaped_xml_name() gives them, names that look escaped too. A key with one colon inside has a prefix,
  /// which has to be declared, unless `namespaces` is off.
  escaped
};

/// What becomes of characters that XML does not have: control characters but TAB, LF and CR, lone surrogates,
/// U+FFFE and U+FFFF.
enum class xml_characters : std::int32_t {
  failure,  ///< The writing fails.
  replaced  ///< U+FFFD in texts; in names xml_names decides.
};

/// In which mode times and instants are written.
enum class xml_dates : std::int32_t {
  own,  ///< In that of the value.
  utc   ///< In UTC.
};

/// The bytes of a std::string.
enum class xml_bytes : std::int32_t {
  utf_8,
  utf_16_le,  ///< With a byte order mark, as the other one.
  utf_16_be
};

/// How a value is written.
struct xml_write_options {
  /// The name of an element around the value, taken as it is. Without it the only member is the root element.
  std::wstring root;
  std::wstring item = L"item";  ///< The name of rows that have no other one.
  xml_rows rows = xml_rows::members;
  xml_names names = xml_names::failure;
  xml_characters characters = xml_characters::failure;
  xml_dates dates = xml_dates::own;
  xml_bytes bytes = xml_bytes::utf_8;  ///< Of std::string only; the other targets have one encoding.
  int indent = -1;      ///< Blanks for each level; below 0 all on one line. Level 100 is the last to count.
  bool sorted = false;  ///< Members by key instead of in order of insertion.
  bool folded = false;  ///< Names in lower case (A-Z) instead of as they were spelled.
  bool declaration = true;  ///< `<?xml version="1.0"?>`, with the encoding where bytes are written.
  bool cdata = false;       ///< Texts of elements that hold markup as CDATA sections.
  /// Whether names keep to Namespaces in XML 1.0: at most one colon, every prefix declared by a quality
  /// `xmlns:prefix` of the element or of one around it, no two attributes with one meaning.
  bool namespaces = true;
};

/// Writes a document that is well-formed as XML 1.0 (fifth edition) says, and by default as Namespaces in XML
/// 1.0 do. The members of bundles become elements, qualities attributes in the order of their names, empty
/// values empty elements.
///
/// Texts, memos and objects (by their to_string()) are written as they are, with references for what would
/// be read as something else: markup, CR, TAB and LF in attributes, and a blank that begins or ends the text
/// of an element, which read_well_formed_xml() would take for indentation. Null is empty; bool is `true` or
/// `false`; numbers never have an exponent, and behind the point no more digits than it takes to read back
/// the same number, or they are `INF`, `-INF`, `NaN`. Dates and times are those of ISO 8601: `2024-02-29`,
/// the day in its own mode; `09:30:05Z`, in local time without the Z; `2024-02-29T09:30:05Z`, in local time
/// `2024-02-29T10:30:05+01:00`; null ones are empty. Binary is Base64. A list or bundle as a quality is its
/// to_string(). A quality `__schema__` is the prefix of its element's name; other qualities that begin and
/// end with two underscores are the library's own marks and are left out. Two members that are spelled alike,
/// which a path makes where it folds accented letters, are two elements with one name.
///
/// Rows `#text` of a list whose rows are written as members are text between the elements, as
/// read_well_formed_xml() can keep it; nothing is indented there.
///
/// `value` as an xvar holds any value and gives the root element its qualities. It needs a name for the root
/// then, unless it is a bundle without qualities; as does a bundle of none or several members, and one whose
/// only member is a list of repeated rows without qualities.
///
/// True on FAILURE, as in ruvo::iserializer; `text` is then as it was. exc::xmlBadName (7007),
/// xmlBadCharacter (7008) and xmlBadPrefix (7009) have the path of the value in the message, with the numbers
/// of rows and behind @ the name of the quality (`pedido.lineas[2].nota@autor`), and in the detail what is
/// wrong there; exc::xmlNoRoot (7010) means that there is no one root element; exc::CalendarException an
/// instant that the calendar does not have. On success `*err` stays as it is.
///
/// Nothing but std::bad_alloc leaves this function. Nesting is limited by memory only; linear time.
KESTA_API bool write_well_formed_xml(std::wstring& text, const bundle& value, exception* err,
                                     const xml_write_options& options = {});
KESTA_API bool write_well_formed_xml(std::wstring& text, const xvar& value, exception* err,
                                     const xml_write_options& options = {});
KESTA_API bool write_well_formed_xml(std::string& text, const bundle& value, exception* err,
                                     const xml_write_options& options = {});
KESTA_API bool write_well_formed_xml(std::string& text, const xvar& value, exception* err,
                                     const xml_write_options& options = {});
KESTA_API bool write_well_formed_xml(std::u8string& text, const bundle& value, exception* err,
                                     const xml_write_options& options = {});
KESTA_API bool write_well_formed_xml(std::u8string& text, const xvar& value, exception* err,
                                     const xml_write_options& options = {});
template <class Text, class Value>
[[nodiscard]] bool write_well_formed_xml(Text& text, const Value& value) {
  return write_well_formed_xml(text, value, nullptr);
}

/// The text as a name: each unit that cannot stand where it stands becomes `_xHHHH_`, its number in four
/// hexadecimal digits, and so does the underscore before an x and four such digits. With `qualified` the name
/// has at most one colon, between two names. Different texts give different names. The empty text, for which
/// there is no name, stays empty.
KESTA_API std::wstring escaped_xml_name(std::wstring_view text, bool qualified = true);
/// The text that escaped_xml_name() made a name of. Digits of either case count.
KESTA_API std::wstring unescaped_xml_name(std::wstring_view name);

}  // namespace ruvo::serializer
