// SPDX-License-Identifier: BSL-1.0

// The strict reader of XML: declaration, elements, attributes, texts.

#include <ruvo/bundle.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/well_formed_xml.hpp>

#include <algorithm>
#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "base/ascii.hpp"
#include "serializer/xml/dtd.hpp"
#include "serializer/xml/strict_cursor.hpp"
#include "serializer/xml/tree.hpp"

namespace ruvo::serializer {

namespace {

/// What may stand behind the words of the declaration.
bool is_version(std::wstring_view value) noexcept {
  return value.size() > 2 && value.starts_with(L"1.") &&
         std::all_of(value.begin() + 2, value.end(), texto::is_digit);
}
bool is_encoding(std::wstring_view value) noexcept {
  return !value.empty() && texto::is_alpha(value[0]) &&
         std::all_of(value.begin(), value.end(),
                     [](wchar_t c) { return texto::is_alnum(c) || c == L'.' || c == L'_' || c == L'-'; });
}
bool is_standalone(std::wstring_view value) noexcept { return value == L"yes" || value == L"no"; }

/// The text of an element while it is read.
class xml_text {
 public:
  void clear() noexcept {
    text_.clear();
    solid_ = 0;
  }
  /// Blanks at the ends are lost.
  void add(std::wstring_view part) {
    const wchar_t* const end = part.data() + part.size();
    if (solid_ == 0) part = between(skip_blanks(part.data(), end), end);
    text_ += part;
    std::size_t size = part.size();
    while (size > 0 && is_blank(part[size - 1])) --size;
    if (size > 0) solid_ = text_.size() - (part.size() - size);
  }
  /// What is added here until end_verbatim() is kept as it is.
  std::wstring& verbatim() noexcept {
    verbatim_from_ = text_.size();
    return text_;
  }
  void end_verbatim() noexcept {
    if (text_.size() > verbatim_from_) solid_ = text_.size();
  }

  std::wstring_view text() const noexcept { return std::wstring_view(text_).substr(0, solid_); }

 private:
  std::wstring text_;
  std::size_t solid_ = 0;  // without the blanks at the end that may be lost
  std::size_t verbatim_from_ = 0;
};

/// Reads a document once. What is not well-formed is thrown as a kind of exc::XMLException.
class document_reader : xml_cursor {
 public:
  using xml_cursor::xml_cursor;

  bundle read() {
    if (next_is(static_cast<wchar_t>(0xFEFF))) ++at_;
    declaration();
    miscellany();
    if (rest().starts_with(L"<!")) {
      at_ = behind_document_type(*this);
      miscellany();
      if (rest().starts_with(L"<!")) comment();  // which it is not: a second declaration is refused there
    }
    expect(L"<");
    start_tag();
    while (depth_ > 0) content();
    miscellany();
    if (at_ != end_) refuse(at_);
    return std::move(document_);
  }

 private:
  void declaration() {
    if (!rest().starts_with(L"<?xml") || rest().size() == 5 || !is_blank(at_[5])) return;
    at_ += 5;
    skip_blanks();
    declared(L"version", is_version);
    bool apart = skip_blanks();
    if (apart && next_is(L'e')) {
      declared(L"encoding", is_encoding);
      apart = skip_blanks();
    }
    if (apart && next_is(L's')) {
      declared(L"standalone", is_standalone);
      skip_blanks();
    }
    expect(L"?>");
  }

  void declared(std::wstring_view word, bool (*is_right)(std::wstring_view)) {
    expect(word);
    equals_sign();
    const std::wstring_view value = literal();
    if (!is_right(value)) refuse(value.data());
  }

  // --- elements

  /// A tag with what follows it, up to its end.
  void start_tag() {
    tree_.open(document_, name());
    ++depth_;
    text_.clear();
    aliases_.clear();
    for (;;) {
      const bool apart = skip_blanks();
      if (take(L'>')) return;
      if (take(L'/')) {
        expect(L">");
        return close();
      }
      if (!apart) refuse(at_);
      attribute();
    }
  }

  void attribute() {
    const std::wstring_view its_name = name();
    equals_sign();
    value_.clear();
    attribute_value(value_);
    const auto [stored_as, is_new] = tree_.set_attribute(its_name, value_);
    if (!is_new && (stored_as == its_name || !aliases_.insert(its_name).second)) refuse(its_name.data());
  }

  void content() {
    if (!next_is(L'<')) return text();
    if (rest().starts_with(L"</")) return end_tag();
    if (rest().starts_with(L"<?")) return instruction();
    if (rest().starts_with(L"<![")) return verbatim_section();
    if (rest().starts_with(L"<!")) return comment();
    ++at_;
    start_tag();
  }

  void text() {
    text_.add(plain(L']'));
    if (next_is(L'<')) return;
    if (next_is(L'&')) {
      reference(text_.verbatim());
      text_.end_verbatim();
    } else {
      if (rest().starts_with(L"]]>")) refuse(at_);
      text_.add(character());
    }
  }

  void verbatim_section() {
    expect(L"<![CDATA[");
    std::wstring& out = text_.verbatim();
    for (;;) {
      out += plain(L']');
      if (rest().starts_with(L"]]>")) break;
      out += character();
    }
    text_.end_verbatim();
    at_ += 3;
  }

  void end_tag() {
    at_ += 2;
    const std::wstring_view its_name = name();
    if (at_ == end_) refuse(at_);
    if (its_name != tree_.name()) throw exc::xmlCachePointer(position(its_name.data()), depth_);
    skip_blanks();
    expect(L">");
    close();
    text_.clear();
  }

  void close() {
    if (tree_.leaf()) tree_.set_text(text_.text());
    tree_.close_fitted();
    --depth_;
  }

  bundle document_;
  xml_tree tree_;
  std::set<std::wstring_view> aliases_;  // attributes of the leaf that took the place of another one
  xml_text text_;                        // since the last tag
  std::wstring value_;                   // of the attribute that was read last
};

}  // namespace

bool read_well_formed_xml(bundle& out, std::wstring_view text, exception* err) {
  try {
    out = document_reader(text).read();
    return false;
  } catch (const exc::XMLException& refusal) {
    refusal.copy_on(err);
    return true;
  }
}

}  // namespace ruvo::serializer
