// SPDX-License-Identifier: BSL-1.0

// Passing over the document type of XML.

#include "serializer/xml/dtd.hpp"

#include <algorithm>
#include <string>
#include <string_view>

namespace ruvo::serializer {

namespace {

/// Passes over a document type declaration (XML 1.0, section 2.8); nothing of it is kept. References between
/// the declarations and in the values of entities only have to be written well.
class document_type_reader : xml_cursor {
 public:
  explicit document_type_reader(const xml_cursor& from) noexcept : xml_cursor(from) {}

  const wchar_t* read() {
    expect(L"<!DOCTYPE");
    expect_blanks();
    name();
    if (skip_blanks() && !next_is(L'[') && !next_is(L'>')) {
      external_identifier(true);
      skip_blanks();
    }
    if (take(L'[')) {
      internal_subset();
      skip_blanks();
    }
    expect(L">");
    return at_;
  }

 private:
  /// With a public identifier alone, too, unless the system's `must_follow`.
  void external_identifier(bool must_follow) {
    if (expect_one_of({L"SYSTEM", L"PUBLIC"}) == L"PUBLIC") {
      expect_blanks();
      public_identifier();
      const bool apart = skip_blanks();
      if (!must_follow && !next_is(L'"') && !next_is(L'\'')) return;
      if (!apart) refuse(at_);
    } else {
      expect_blanks();
    }
    literal();
  }

  void public_identifier() {
    const wchar_t quote = quotation_mark()[0];
    while (!take(quote)) {
      if (at_ == end_ || !is_public(*at_)) refuse(at_);
      ++at_;
    }
  }

  /// Up to the closing bracket.
  void internal_subset() {
    for (;;) {
      miscellany();
      if (take(L']')) return;
      if (take(L'%')) {
        name();
        expect(L";");
      } else {
        markup_declaration();
      }
    }
  }

  void markup_declaration() {
    expect(L"<!");
    const std::wstring_view word = expect_one_of({L"ELEMENT", L"ATTLIST", L"ENTITY", L"NOTATION"});
    expect_blanks();
    const bool is_parameter = word == L"ENTITY" && take(L'%');
    if (is_parameter) expect_blanks();
    name();
    if (word == L"ATTLIST") return attributes();
    expect_blanks();
    if (word == L"ELEMENT") {
      content_model();
    } else if (word == L"ENTITY") {
      entity_definition(is_parameter);
    } else {
      external_identifier(false);
    }
    skip_blanks();
    expect(L">");
  }

  // --- elements

  void content_model() {
    if (expect_one_of({L"EMPTY", L"ANY", L"("}) != L"(") return;
    skip_blanks();
    if (take(L'#')) return mixed_content();
    children();
  }

  /// Behind the number sign.
  void mixed_content() {
    expect(L"PCDATA");
    skip_blanks();
    bool has_names = false;
    for (; take(L'|'); has_names = true) {
      skip_blanks();
      name();
      skip_blanks();
    }
    expect(has_names ? L")*" : L")");
    if (!has_names) take(L'*');
  }

  /// Behind the first parenthesis and blanks, up to the end of the last.
  void children() {
    std::wstring separators = L" ";  // of the open groups; a blank is that of a group with one member as yet
    for (;;) {
      if (take(L'(')) {
        separators += L' ';
        skip_blanks();
        continue;
      }
      name();
      repetition();
      skip_blanks();
      while (take(L')')) {
        repetition();
        separators.pop_back();
        if (separators.empty()) return;
        skip_blanks();
      }
      if (separators.back() == L' ' && (next_is(L',') || next_is(L'|'))) separators.back() = *at_;
      if (!take(separators.back())) refuse(at_);
      skip_blanks();
    }
  }

  void repetition() noexcept {
    if (next_is(L'?') || next_is(L'*') || next_is(L'+')) ++at_;
  }

  // --- attributes

  /// Up to the end of the declaration.
  void attributes() {
    for (;;) {
      const bool apart = skip_blanks();
      if (take(L'>')) return;
      if (!apart) refuse(at_);
      name();
      expect_blanks();
      attribute_kind();
      expect_blanks();
      attribute_default();
    }
  }

  void attribute_kind() {
    if (next_is(L'(')) return choice(true);
    if (expect_one_of({L"CDATA", L"ID", L"IDREF", L"IDREFS", L"ENTITY", L"ENTITIES", L"NMTOKEN", L"NMTOKENS",
                       L"NOTATION"}) != L"NOTATION")
      return;
    expect_blanks();
    choice(false);
  }

  void choice(bool of_tokens) {
    expect(L"(");
    do {
      skip_blanks();
      name(of_tokens);
      skip_blanks();
    } while (take(L'|'));
    expect(L")");
  }

  void attribute_default() {
    if (next_is(L'#')) {
      if (expect_one_of({L"#REQUIRED", L"#IMPLIED", L"#FIXED"}) != L"#FIXED") return;
      expect_blanks();
    }
    ignored_.clear();
    attribute_value(ignored_);
  }

  // --- entities

  void entity_definition(bool is_parameter) {
    if (next_is(L'"') || next_is(L'\'')) return entity_value();
    external_identifier(true);
    if (!is_parameter && skip_blanks() && next_is(L'N')) {
      expect(L"NDATA");
      expect_blanks();
      name();
    }
  }

  void entity_value() {
    const wchar_t quote = quotation_mark()[0];
    while (!take(quote)) {
      if (next_is(L'%')) refuse(at_);
      if (rest().starts_with(L"&#")) {
        ignored_.clear();
        reference(ignored_);
      } else if (take(L'&')) {
        name();
        expect(L";");
      } else {
        skip_character();
      }
    }
  }

  std::wstring ignored_;  // a value that only has to be right
};

}  // namespace

const wchar_t* behind_document_type(const xml_cursor& from) { return document_type_reader(from).read(); }

}  // namespace ruvo::serializer
