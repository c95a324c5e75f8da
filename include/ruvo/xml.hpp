// SPDX-License-Identifier: BSL-1.0
#pragma once

// XML.
//
//   ruvo::serializer::xml xml(true, false);
//   ruvo::bundle document;
//   xml.deserialize(document, L"<pedido numero=\"7\"><cliente>Ana</cliente></pedido>");
//   document.get_string(L"pedido.cliente");         // L"Ana"
//   document[L"pedido"].get_quality(L"numero");     // L"7"
//
// An element becomes an entry with its name, its text a text, its attributes the qualities of the value.
// Elements that repeat inside another make that one a list of bundles with one entry each. docs/XML.md says
// what is read, what is lost and what is refused.

#include <ruvo/serializer.hpp>

#include <iosfwd>
#include <memory>
#include <string>

namespace ruvo::serializer {

/// What the XML writers share: tags, lists and the text of values. Derived writers that override raw_value,
/// raw_key or raw_bundle are asked for every value; each level then takes its part of the stack, and some
/// hundreds of levels exhaust it. The library's own take any number.
///
/// The text is a declaration and one element for each member. @quirk No element encloses them.
/// @quirk Keys become names as they stand, those of qualities too: one with a blank makes text that is not
/// XML.
class KESTA_API xml_writer : public iwriter {
 public:
  xml_writer();
  ~xml_writer() override;

  /// Texts, memos and binaries without the blanks at their ends, escaped; all else as it prints.
  /// @quirk `&` becomes `&&amp;` and the quotation mark `&qout;`, which only this library's reader
  /// understands.
  std::wstring raw_value(const xvar& value) override;
  /// The key as it stands.
  std::wstring& raw_key(std::wstring& key) override;
  /// Never fails, but for lack of memory.
  /// @quirk When tabulated, the second text of the same writer is indented by one tab.
  bool write(std::wstring& out, const bundle& in, exception* err, int options) override;
  /// Writes an element for each member. True when `result` now carries a failure.
  virtual bool raw_bundle(std::wostringstream& out, const bundle& in, exception& result) = 0;

 protected:
  /// The qualities become attributes, but for those whose key begins with "__".
  /// @quirk The quality "__schema__" is written before the name, with a colon, and only in the opening tag,
  /// so that what is written that way is not read back. One that holds what cannot stand in a name is left
  /// out.
  void create_open_tag(std::wostringstream& out, const std::wstring& name,
                       const xvar::qualities_map& qualities);
  /// The closing tag; when tabulated, a line feed behind it.
  void create_close_tag(std::wostringstream& out, const std::wstring& name);
  /// The text as an attribute holds it.
  std::wstring raw_attribute(std::wstring text);
  /// Writes the elements of the list. True when `result` now carries a failure.
  /// @quirk A bundle in the list is written without an element of its own, its qualities are lost; any other
  /// value becomes an element "item".
  bool raw_list(std::wostringstream& out, const list& in, exception& result);
};

/// Members in key order.
class KESTA_API xml_ordered_writer : public xml_writer {
 public:
  xml_ordered_writer();
  ~xml_ordered_writer() override;
  bool raw_bundle(std::wostringstream& out, const bundle& in, exception& result) override;
};

/// Members in the order in which the bundle got them.
class KESTA_API xml_unordered_writer : public xml_writer {
 public:
  xml_unordered_writer();
  ~xml_unordered_writer() override;
  bool raw_bundle(std::wostringstream& out, const bundle& in, exception& result) override;
};

/// Reads XML text; lenient, and in many places not as an XML processor would. Every value is a text. The open
/// elements are the caller's; nothing is owned.
///
/// Failures: exc::xmlCachePointer (7002) for an end tag that is not that of the element whose text is being
/// read, exc::xmlEmptyKey (7003) for an element whose name raw_key() makes empty, exc::xmlFalseKnot (7004)
/// for an element inside a start tag that was not ended. Whatever else is malformed is passed over.
///
/// @quirk Inside a tag a blank must be followed by a whole attribute: `<a />`, `<a >` and `</a >` swallow
/// what comes after them. Comments, CDATA sections and declarations end at the first `-->`, `]]>` or `>`, and
/// a `[` makes a comment a CDATA section. The content of CDATA sections is dropped. Attributes are taken as
/// they stand, without their backslashes. Of the entities only `&lt;`, `&gt;`, `&apos;` and the writer's own
/// `&qout;` and `&&amp;` are understood.
class KESTA_API xml_reader : public ireader {
 public:
  xml_reader();
  ~xml_reader() override;
  bool on_char(wchar_t c, exception& result) override;
  /// For a text, the text without the blanks at its ends and with its entities resolved.
  std::wstring raw_value(const xvar& value) override;
  /// The key as it stands.
  std::wstring& raw_key(std::wstring& key) override;
  void reset() override;

 private:
  friend class xml;
  class machine;

  /// Takes as much as it can at once, with the outcome of on_char for each character, and returns the first
  /// character that it leaves to on_char.
  const wchar_t* take_tokens(const wchar_t* at, const wchar_t* end);

  std::unique_ptr<machine> machine_;
};

/// Reads and writes XML. An object is used by one thread at a time and may be used again and again.
class KESTA_API xml : public iserializer {
 public:
  /// Writes members in key order or in the order in which the bundle got them, in one line or with a line and
  /// tabs for each element.
  ///
  /// Tabs grow with the square of the nesting: text from elsewhere is written with limit_indentation().
  xml(bool ordered, bool tabulated);
  ~xml() override;
  xml(const xml&) = delete;
  xml& operator=(const xml&) = delete;

  /// `options` is ignored.
  bool serialize(std::wstring& out, const bundle& in, exception* err = nullptr, int options = 0) override;
  /// Reads to the end whatever the text holds; of several failures the last one is reported and everything
  /// else is kept. @quirk Of several outermost elements with one name only the last one stays.
  bool deserialize(bundle& out, const std::wstring& in, exception* err, int options = 0) override;
  using iserializer::deserialize;

  /// As iwriter::limit_indentation(), for the texts from now on.
  void limit_indentation(unsigned long levels) noexcept;

 private:
  std::unique_ptr<xml_reader> reader_;
  std::unique_ptr<xml_writer> writer_;
};

}  // namespace ruvo::serializer
