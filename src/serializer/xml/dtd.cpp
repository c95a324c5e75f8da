// SPDX-License-Identifier: BSL-1.0

// The document type of XML: whether it is well-formed, and what it declares.

#include "serializer/xml/dtd.hpp"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace ruvo::serializer {

namespace {

/// Reads a document type declaration (XML 1.0, section 2.8). What has no effect only has to be written well,
/// and so do references in the values of entities.
class document_type_reader : xml_cursor {
 public:
  document_type_reader(const xml_cursor& from, const xml_read_options& options) noexcept
      : xml_cursor(from), options_(options) {}

  xml_cursor read() {
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
    return *this;
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

  /// Up to the closing bracket, which no entity brings.
  void internal_subset() {
    for (;;) {
      miscellany();
      if (leave_entity()) continue;
      if (!in_entity() && take(L']')) return;
      if (next_is(L'%')) {
        parameter_reference();
      } else {
        markup_declaration();
      }
    }
  }

  /// Declarations behind one that brings what is not read count for a standalone document only (section 5.1).
  void parameter_reference() {
    const wchar_t* const from = at_++;
    const std::wstring_view its_name = name();
    expect(L";");
    const auto found = type_->parameters.find(its_name);
    if (found != type_->parameters.end() && found->second.is_internal) {
      include(type_->parameters, its_name, from);
    } else if (!is_standalone_) {
      counts_ = false;
    }
  }

  void markup_declaration() {
    expect(L"<!");
    const std::wstring_view word = expect_one_of({L"ELEMENT", L"ATTLIST", L"ENTITY", L"NOTATION"});
    expect_blanks();
    const bool is_parameter = word == L"ENTITY" && take(L'%');
    if (is_parameter) expect_blanks();
    const std::wstring_view its_name = name();
    if (word == L"ATTLIST") return attributes(its_name);
    expect_blanks();
    if (word == L"ELEMENT") {
      content_model();
    } else if (word == L"ENTITY") {
      entity_definition(its_name, is_parameter);
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
  void attributes(std::wstring_view element) {
    for (;;) {
      const bool apart = skip_blanks();
      if (take(L'>')) return;
      if (!apart) refuse(at_);
      const std::wstring_view its_name = name();
      expect_blanks();
      const bool is_tokens = attribute_kind();
      expect_blanks();
      const bool has_default = attribute_default();
      if (!counts_ || !options_.declared_attributes) continue;
      xml_declared_attributes& declared = type_->attributes[element];
      const bool is_first = declared.are_tokens.try_emplace(its_name, is_tokens).second;
      if (!is_first || !has_default) continue;  // only the first declaration counts
      if (is_tokens) join_tokens(value_);
      declared.defaults.try_emplace(its_name, value_);
    }
  }

  /// Whether it is another kind than CDATA.
  bool attribute_kind() {
    if (next_is(L'(')) {
      choice(true);
      return true;
    }
    const std::wstring_view kind = expect_one_of(
        {L"CDATA", L"ID", L"IDREF", L"IDREFS", L"ENTITY", L"ENTITIES", L"NMTOKEN", L"NMTOKENS", L"NOTATION"});
    if (kind == L"NOTATION") {
      expect_blanks();
      choice(false);
    }
    return kind != L"CDATA";
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

  /// Whether there is one, which is then in value_.
  bool attribute_default() {
    if (next_is(L'#')) {
      if (expect_one_of({L"#REQUIRED", L"#IMPLIED", L"#FIXED"}) != L"#FIXED") return false;
      expect_blanks();
    }
    value_.clear();
    attribute_value(value_);
    return true;
  }

  // --- entities

  void entity_definition(std::wstring_view its_name, bool is_parameter) {
    xml_declared_entity made;
    made.is_parameter = is_parameter;
    made.in_parameter = in_parameter();
    made.is_internal = next_is(L'"') || next_is(L'\'');
    if (made.is_internal) {
      entity_value();
      made.text = value_;
    } else {
      external_identifier(true);
      if (!is_parameter && skip_blanks() && next_is(L'N')) {
        expect(L"NDATA");
        expect_blanks();
        name();
      }
    }
    if (!counts_ || !options_.entities) return;
    xml_declared_entities& declared = is_parameter ? type_->parameters : type_->entities;
    declared.try_emplace(its_name, std::move(made));  // the first one counts
  }

  /// What takes the place of a reference to the entity, into value_: references to characters are resolved,
  /// those to entities are not (section 4.4).
  void entity_value() {
    const wchar_t quote = quotation_mark()[0];
    value_.clear();
    while (!take(quote)) {
      if (next_is(L'%')) refuse(at_);
      const wchar_t* const from = at_;
      if (rest().starts_with(L"&#")) {
        reference(value_);
      } else if (take(L'&')) {
        name();
        expect(L";");
        value_ += between(from, at_);
      } else {
        value_ += character();
      }
    }
  }

  const xml_read_options& options_;
  bool counts_ = true;  // what is declared from here on
  std::wstring value_;  // that was read last
};

}  // namespace

xml_cursor behind_document_type(const xml_cursor& from, const xml_read_options& options) {
  return document_type_reader(from, options).read();
}

}  // namespace ruvo::serializer
