// SPDX-License-Identifier: BSL-1.0

// The strict reader of XML: elements, attributes, texts.

#include <ruvo/bundle.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/well_formed_xml.hpp>

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/key_units.hpp"
#include "memory/block_cache.hpp"
#include "serializer/xml/bytes.hpp"
#include "serializer/xml/declaration.hpp"
#include "serializer/xml/dtd.hpp"
#include "serializer/xml/strict_cursor.hpp"
#include "serializer/xml/tree.hpp"
#include "values/cell.hpp"

namespace ruvo::serializer {

namespace {

/// For who asks for no limits, and gets the document as ever.
constexpr xml_read_options no_options = [] {
  xml_read_options made;
  xml_limits& limits = made.limits;
  limits.depth = limits.units = limits.elements = limits.attributes = limits.bytes = limits.growth =
      static_cast<std::size_t>(-1);
  return made;
}();

// What values take of memory, about: an element, an attribute, and a text that does not lie inside a cell.
constexpr std::size_t element_bytes = 192, attribute_bytes = 128;
constexpr std::size_t bytes_of_text(std::wstring_view text) noexcept {
  return text.size() <= detail::cell::small_length ? 0 : 16 + text.size() * sizeof(wchar_t);
}

/// The text of an element while it is read.
class xml_text {
 public:
  /// Whether whole() is asked for.
  explicit xml_text(bool keeps_blanks) noexcept : keeps_blanks_(keeps_blanks) {}

  void clear() noexcept {
    text_.clear();
    first_ = solid_ = 0;
  }
  /// Blanks at the ends are lost in text().
  void add(std::wstring_view part) {
    const wchar_t* const end = part.data() + part.size();
    if (solid_ == 0) {
      const wchar_t* const begin = skip_blanks(part.data(), end);
      if (keeps_blanks_) text_ += between(part.data(), begin);
      part = between(begin, end);
      first_ = text_.size();
    }
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

  std::wstring_view text() const noexcept {
    return solid_ == 0 ? std::wstring_view() : std::wstring_view(text_).substr(first_, solid_ - first_);
  }
  std::wstring_view whole() const noexcept { return text_; }
  bool is_solid() const noexcept { return solid_ > 0; }

 private:
  bool keeps_blanks_;
  std::wstring text_;
  std::size_t first_ = 0, solid_ = 0;  // between them, what is left without the blanks that may be lost
  std::size_t verbatim_from_ = 0;
};

/// Reads a document once. What is not well-formed is thrown as a kind of exc::XMLException.
class document_reader : declaration_reader {
 public:
  document_reader(std::wstring_view text, const xml_text_of_bytes* bytes, const xml_read_options& options)
      : declaration_reader(text, bytes, options.limits, document_type_),
        options_(options),
        tree_(options.mixed_text),
        text_(options.mixed_text) {}

  bundle read() {
    if (!bytes_ && rest().size() > options_.limits.units) exceed(L"tamaño", begin_ + options_.limits.units);
    byte_order_mark();
    declaration();
    miscellany();
    if (rest().starts_with(L"<!")) {
      static_cast<xml_cursor&>(*this) = behind_document_type(*this, options_);
      miscellany();
      if (rest().starts_with(L"<!")) comment();  // which it is not: a second declaration is refused there
    }
    expect(L"<");
    start_tag();
    while (depth_ > 0) content();
    miscellany();
    if (at_ != end_ || (bytes_ && bytes_->is_cut)) refuse(at_);
    return std::move(document_);
  }

 private:
  // --- elements

  /// A tag with what follows it, up to its end.
  void start_tag() {
    const wchar_t* const from = at_ - 1;
    open(name(), from);
    bool is_empty = false;
    while (!take(L'>')) {
      const bool apart = skip_blanks();
      if (take(L'>')) break;
      is_empty = take(L'/');
      if (is_empty) {
        expect(L">");
        break;
      }
      if (!apart) refuse(at_);
      attribute();
    }
    if (declared_) default_attributes(from);
    if (is_empty) close(from);
  }

  void open(std::wstring_view its_name, const wchar_t* from) {
    if (depth_ == options_.limits.depth) exceed(L"profundidad", from);
    if (depth_ > 0) text_between(from);
    count_element(element_bytes, from);
    tree_.open(document_, its_name);
    ++depth_;
    text_.clear();
    attributes_ = 0;
    aliases_.clear();
    declared_ = nullptr;
    if (document_type_.attributes.empty()) return;
    const auto declared = document_type_.attributes.find(its_name);
    if (declared != document_type_.attributes.end()) declared_ = &declared->second;
  }

  void count_element(std::size_t bytes, const wchar_t* where) {
    if (!meter_.takes_element()) exceed(L"elementos", where);
    count_bytes(bytes, where);
  }
  void count_bytes(std::size_t bytes, const wchar_t* where) {
    if (!meter_.takes_bytes(bytes)) exceed(L"memoria", where);
  }

  void attribute() {
    const std::wstring_view its_name = name();
    equals_sign();
    value_.clear();
    attribute_value(value_);
    if (declared_) {
      const auto declared = declared_->are_tokens.find(its_name);
      if (declared != declared_->are_tokens.end() && declared->second) join_tokens(value_);
    }
    count_attribute(its_name, value_, its_name.data());
    const auto [stored_as, is_new] = tree_.set_attribute(its_name, value_);
    if (!is_new && (stored_as == its_name || !aliases_.insert(its_name).second)) refuse(its_name.data());
  }

  void count_attribute(std::wstring_view its_name, std::wstring_view value, const wchar_t* where) {
    if (++attributes_ > options_.limits.attributes) exceed(L"atributos", where);
    count_bytes(attribute_bytes + bytes_of_text(its_name) + bytes_of_text(value), where);
  }

  /// Of the element whose tag is complete.
  void default_attributes(const wchar_t* where) {
    for (const auto& [its_name, value] : declared_->defaults) {
      if (tree_.has_attribute(its_name)) continue;
      if (!meter_.grows(its_name.size() + value.size())) exceed(L"crecimiento", where);
      count_attribute(its_name, value, where);
      tree_.set_attribute(its_name, value);
    }
  }

  void content() {
    if (!next_is(L'<')) return text();
    switch (end_ - at_ < 2 ? L'\0' : at_[1]) {
      case L'/':
        return end_tag();
      case L'?':
        return instruction();
      case L'!':
        return rest().starts_with(L"<![") ? verbatim_section() : comment();
      default:
        ++at_;
        return start_tag();
    }
  }

  void text() {
    text_.add(plain(L']'));
    if (next_is(L'<') || leave_entity()) return;
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
    if (in_entity() && entity_depth() == depth_) refuse(at_);
    const wchar_t* const from = at_;
    at_ += 2;
    const std::wstring_view its_name = name();
    if (at_ == end_) refuse(at_);
    if (!ruvo::detail::same_units<wchar_t>(its_name, tree_.name()))
      throw exc::xmlCachePointer(position(its_name.data()), depth_);
    skip_blanks();
    expect(L">");
    if (!tree_.leaf()) text_between(from);
    close(from);
    text_.clear();
  }

  /// What an element with elements inside has before one of them, and behind the last, where `where` is.
  void text_between(const wchar_t* where) {
    if (!options_.mixed_text || text_.whole().empty()) return;
    const bool is_mixed = !mixed_.empty() && mixed_.back() == depth_;
    if (!is_mixed && !text_.is_solid()) {
      blanks_.push_back({depth_, tree_.children(), std::wstring(text_.whole())});
      return;
    }
    if (!is_mixed) mix(where);
    count_element(element_bytes + bytes_of_text(text_.whole()), where);
    tree_.add_text(text_.whole());
  }

  /// With the blanks that were put aside until it was known that the element is mixed.
  void mix(const wchar_t* where) {
    std::size_t first = blanks_.size();
    for (; first > 0 && blanks_[first - 1].depth == depth_; --first)
      count_element(element_bytes + bytes_of_text(blanks_[first - 1].text), where);
    tree_.mix(blanks_.data() + first, blanks_.data() + blanks_.size());
    blanks_.resize(first);
    mixed_.push_back(depth_);
  }

  void close(const wchar_t* where) {
    if (tree_.leaf()) {
      count_bytes(bytes_of_text(text_.text()), where);
      tree_.set_text(text_.text());
    }
    tree_.close_fitted();
    while (!blanks_.empty() && blanks_.back().depth == depth_) blanks_.pop_back();
    if (!mixed_.empty() && mixed_.back() == depth_) mixed_.pop_back();
    --depth_;
  }

  const xml_read_options& options_;
  xml_document_type document_type_;
  bundle document_;
  xml_tree tree_;
  const xml_declared_attributes* declared_ = nullptr;  // of the leaf
  std::size_t attributes_ = 0;                         // of the leaf
  std::set<std::wstring_view> aliases_;   // attributes of the leaf that took the place of another one
  std::vector<std::size_t> mixed_;        // depths of the open elements that are known to be mixed
  std::vector<xml_text_between> blanks_;  // between the children of open elements that are not
  xml_text text_;                         // since the last tag
  std::wstring value_;                    // of the attribute that was read last
};

/// Reads a text that `bytes` were made into, or that was given.
void read_into(bundle& out, std::wstring_view text, const xml_text_of_bytes* bytes,
               const xml_read_options& options) {
  const detail::document_blocks blocks(text.size());
  out = document_reader(text, bytes, options).read();
}

/// Calls `read`; true when it throws a kind of exc::XMLException, which is copied to `*err`.
template <class Read>
bool is_refused(exception* err, Read read) {
  try {
    read();
    return false;
  } catch (const exc::XMLException& refusal) {
    refusal.copy_on(err);
    return true;
  }
}

/// Reads bytes in the encoding that `find` gives.
template <class Find>
bool read_bytes(bundle& out, std::string_view bytes, exception* err, const xml_read_options& options,
                Find find) {
  return is_refused(err, [&] {
    const std::uint64_t most = options.limits.units;
    if (bytes.size() > most) throw exc::xmlBeyondLimit(most + 1, L"tamaño");
    const xml_text_of_bytes text = decoded(bytes, find(bytes));
    read_into(out, text.text, &text, options);
  });
}

}  // namespace

bool read_well_formed_xml(bundle& out, std::wstring_view text, exception* err) {
  return read_well_formed_xml(out, text, err, no_options);
}

bool read_well_formed_xml(bundle& out, std::wstring_view text, exception* err,
                          const xml_read_options& options) {
  return is_refused(err, [&] { read_into(out, text, nullptr, options); });
}

bool read_well_formed_xml(bundle& out, std::string_view bytes, exception* err,
                          const xml_read_options& options) {
  return read_bytes(out, bytes, err, options, encoding_of);
}

bool read_well_formed_xml(bundle& out, std::u8string_view text, exception* err,
                          const xml_read_options& options) {
  const std::string_view bytes(reinterpret_cast<const char*>(text.data()), text.size());
  return read_bytes(out, bytes, err, options, [](std::string_view) { return xml_encoding::utf_8; });
}

text_place position_in_xml(std::string_view bytes, std::uint64_t position) {
  const xml_encoding encoding = [&] {
    try {
      return encoding_of(bytes);
    } catch (const exc::XMLException&) {  // where none is understood, positions are in the declaration
      return family_of(bytes);
    }
  }();
  const xml_text_of_bytes text = decoded(bytes, encoding);
  return position_of(text.text, text.offset(position) + std::uint64_t{1});
}

}  // namespace ruvo::serializer
