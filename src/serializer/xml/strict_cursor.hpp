// SPDX-License-Identifier: BSL-1.0
#pragma once

// Walking over a text that must be XML: what the document type and the elements have in common.

#include <ruvo/exc.hpp>
#include <ruvo/well_formed_xml.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/ascii.hpp"
#include "serializer/places.hpp"
#include "serializer/xml/bytes.hpp"
#include "serializer/xml/grammar.hpp"

namespace ruvo::serializer {

/// An entity that the document type declares.
struct xml_declared_entity {
  std::wstring text;  // what it is replaced by
  bool is_internal = false, is_open = false;
  bool is_parameter = false, in_parameter = false;  // itself, and where it is declared
};
using xml_declared_entities = std::map<std::wstring_view, xml_declared_entity>;

/// What an element's attributes are declared to be. As qualities ignore case, so do default values: of names
/// that differ in nothing else the first one's counts.
struct xml_declared_attributes {
  struct in_lower_case {
    bool operator()(std::wstring_view a, std::wstring_view b) const noexcept {
      return texto::before_in_lower_case(a, b);
    }
  };
  std::map<std::wstring_view, bool> are_tokens;  // of another kind than CDATA
  std::map<std::wstring_view, std::wstring, in_lower_case> defaults;
};

/// What the document type declares, as far as it has an effect. Names are those in the document, or in the
/// texts of parameter entities.
struct xml_document_type {
  xml_declared_entities entities, parameters;
  std::map<std::wstring_view, xml_declared_attributes> attributes;  // by element
};

/// Leaves no space at the ends of a value, and one where several follow each other.
inline void join_tokens(std::wstring& value) {
  std::size_t kept = 0;
  for (const wchar_t c : value)
    if (c != L' ' || (kept > 0 && value[kept - 1] != L' ')) value[kept++] = c;
  if (kept > 0 && value[kept - 1] == L' ') --kept;
  value.resize(kept);
}

/// Counts what has a limit.
class xml_meter {
 public:
  explicit xml_meter(const xml_limits& limits) noexcept : limits_(limits) {}

  const xml_limits& limits() const noexcept { return limits_; }
  bool takes_element() noexcept { return ++elements_ <= limits_.elements; }
  /// Of the values, about.
  bool takes_bytes(std::size_t count) noexcept { return is_within(bytes_, count, limits_.bytes); }
  bool grows(std::size_t units) noexcept { return is_within(growth_, units, limits_.growth); }

 private:
  static bool is_within(std::size_t& total, std::size_t more, std::size_t most) noexcept {
    if (more > most - total) return false;
    total += more;
    return true;
  }

  xml_limits limits_;
  std::size_t elements_ = 0, bytes_ = 0, growth_ = 0;
};

/// A place in a text. What cannot stand there is thrown as exc::xmlBadFormated. Where the text is that of an
/// entity, the place is the reference in the document.
class xml_cursor {
 public:
  /// Positions are those in `bytes`, of which `text` was made, if they are given.
  xml_cursor(std::wstring_view text, const xml_text_of_bytes* bytes, const xml_limits& limits,
             xml_document_type& type) noexcept
      : begin_(text.data()),
        at_(text.data()),
        end_(text.data() + text.size()),
        bytes_(bytes),
        meter_(limits),
        type_(&type) {}

 protected:
  // --- failures

  std::uint64_t position(const wchar_t* where) const noexcept {
    const auto offset = static_cast<std::size_t>((included_.empty() ? where : included_[0].from) - begin_);
    return bytes_ ? bytes_->position(offset) : std::uint64_t{offset} + 1;
  }
  [[noreturn]] void refuse(const wchar_t* where) const { throw exc::xmlBadFormated(position(where), depth_); }
  [[noreturn]] void exceed(const wchar_t* limit, const wchar_t* where) const {
    throw exc::xmlBeyondLimit(position(where), limit);
  }

  // --- single characters

  std::wstring_view rest() const noexcept { return between(at_, end_); }
  bool next_is(wchar_t c) const noexcept { return at_ != end_ && *at_ == c; }
  bool take(wchar_t c) noexcept {
    const bool there = next_is(c);
    if (there) ++at_;
    return there;
  }
  void expect(std::wstring_view mark) {
    for (const wchar_t c : mark)
      if (!take(c)) refuse(at_);
  }
  /// The longest of the words that comes next.
  std::wstring_view expect_one_of(std::initializer_list<std::wstring_view> words) {
    const wchar_t* const from = at_;
    const auto goes_on = [&](std::wstring_view word) { return word.starts_with(between(from, at_ + 1)); };
    while (at_ != end_ && std::any_of(words.begin(), words.end(), goes_on)) ++at_;
    if (std::find(words.begin(), words.end(), between(from, at_)) == words.end()) refuse(at_);
    return between(from, at_);
  }
  bool skip_blanks() noexcept {
    const wchar_t* const from = std::exchange(at_, serializer::skip_blanks(at_, end_));
    return at_ != from;
  }
  void expect_blanks() {
    if (!skip_blanks()) refuse(at_);
  }

  /// Whether a pair of surrogates comes next.
  bool at_pair() const noexcept {
    return end_ - at_ >= 2 && is_high_surrogate(at_[0]) && is_low_surrogate(at_[1]);
  }
  /// Passes over one character.
  void skip_character() {
    if (at_ == end_) refuse(at_);
    if (is_surrogate(*at_) ? !at_pair() : !is_allowed(*at_)) refuse(at_);
    at_ += is_surrogate(*at_) ? 2 : 1;
  }
  /// Passes over characters up to `mark` and over the mark; what comes before it.
  std::wstring_view skip_to(std::wstring_view mark) {
    const wchar_t* const from = at_;
    while (!rest().starts_with(mark)) skip_character();
    at_ += mark.size();
    return between(from, at_ - mark.size());
  }

  /// A token may begin with what else only continues a name.
  std::wstring_view name(bool is_token = false) {
    const wchar_t* const from = at_;
    if (at_ != end_ && (is_token ? continues_name(*at_) : starts_name(*at_))) ++at_;
    while (at_ != from || at_pair()) {
      while (at_ != end_ && continues_name(*at_)) ++at_;
      if (!at_pair() || static_cast<char16_t>(*at_) >= 0xDB80) break;
      at_ += 2;
    }
    if (at_ == from) refuse(at_);
    return between(from, at_);
  }

  /// The mark that begins a text, and ends it.
  std::wstring_view quotation_mark() {
    if (!next_is(L'"') && !next_is(L'\'')) refuse(at_);
    return {at_++, 1};
  }
  /// A text between quotation marks or apostrophes.
  std::wstring_view literal() { return skip_to(quotation_mark()); }

  void byte_order_mark() noexcept { take(static_cast<wchar_t>(0xFEFF)); }

  // --- what is passed over

  /// Comments, processing instructions and blanks.
  void miscellany() {
    for (;;) {
      skip_blanks();
      if (rest().starts_with(L"<!-")) {
        comment();
      } else if (rest().starts_with(L"<?")) {
        instruction();
      } else {
        return;
      }
    }
  }

  void comment() {
    expect(L"<!--");
    skip_to(L"--");
    expect(L">");
  }

  void instruction() {
    expect(L"<?");
    const std::wstring_view target = name();
    if (at_ == end_) refuse(at_);
    if (is_reserved(target)) refuse(target.data());
    if (!rest().starts_with(L"?")) {
      expect_blanks();
      skip_to(L"?>");
    } else {
      expect(L"?>");
    }
  }

  void equals_sign() {
    skip_blanks();
    expect(L"=");
    skip_blanks();
  }

  // --- entities

  /// Goes on in the text of an entity that the document declares; `from` is where the reference begins.
  void include(xml_declared_entities& declared, std::wstring_view its_name, const wchar_t* from) {
    const auto found = declared.find(its_name);
    if (found == declared.end() || !found->second.is_internal || found->second.is_open) refuse(from);
    xml_declared_entity& entity = found->second;
    if (is_standalone_ && entity.in_parameter && !entity.is_parameter && !in_parameter()) refuse(from);
    if (!meter_.grows(entity.text.size())) exceed(L"crecimiento", from);
    included_.push_back({from, at_, end_, &entity, depth_});
    entity.is_open = true;
    at_ = entity.text.data();
    end_ = at_ + entity.text.size();
  }
  /// Whether an entity ends here; behind it, then. What began in it ends in it.
  bool leave_entity() {
    if (at_ != end_ || included_.empty()) return false;
    const inclusion& last = included_.back();
    if (last.depth != depth_) refuse(at_);
    last.entity->is_open = false;
    at_ = last.back_to;
    end_ = last.end;
    included_.pop_back();
    return true;
  }
  bool in_entity() const noexcept { return !included_.empty(); }
  bool in_parameter() const noexcept { return in_entity() && included_[0].entity->is_parameter; }
  /// The depth that the entity found.
  std::size_t entity_depth() const noexcept { return included_.back().depth; }

  // --- values

  /// With its marks.
  void attribute_value(std::wstring& out) {
    const wchar_t quote = quotation_mark()[0];
    const std::size_t outside = included_.size();
    for (;;) {
      const bool is_own = included_.size() == outside;
      out += plain(is_own ? quote : L'<');
      if (is_own && take(quote)) return;
      if (!is_own && leave_entity()) continue;
      if (next_is(L'<')) refuse(at_);
      if (next_is(L'&')) {
        reference(out);
      } else {
        const std::wstring_view one = character();
        out += is_blank(one[0]) ? std::wstring_view(L" ") : one;
      }
    }
  }

  /// What comes next and stands for itself, up to `stop`.
  std::wstring_view plain(wchar_t stop) noexcept {
    const wchar_t* const from = std::exchange(at_, find_special(at_, end_, stop));
    return between(from, at_);
  }

  /// One character; the end of a line, however it is written, is a line feed. An entity has line feeds
  /// already, and a return that is meant.
  std::wstring_view character() {
    const wchar_t* const from = at_;
    skip_character();
    if (*from != L'\r' || in_entity()) return between(from, at_);
    take(L'\n');
    return L"\n";
  }

  /// The character that a reference stands for; behind a reference to an entity that the document declares
  /// goes on in its text.
  void reference(std::wstring& out) {
    const wchar_t* const from = at_++;
    if (take(L'#')) return character_reference(out, from);
    const std::wstring_view its_name = name();
    expect(L";");
    for (const xml_entity& entity : xml_entities)
      if (entity.name == its_name) return out.push_back(entity.meant);
    include(type_->entities, its_name, from);
  }

  void character_reference(std::wstring& out, const wchar_t* from) {
    const std::uint32_t base = take(L'x') ? 16 : 10;
    const wchar_t* const first = at_;
    std::uint32_t code = 0;
    for (; at_ != end_; ++at_) {
      const int digit = texto::hex_value(*at_);
      if (digit < 0 || digit >= static_cast<int>(base)) break;
      code = std::min(code * base + static_cast<std::uint32_t>(digit), beyond_unicode);
    }
    if (at_ == first) refuse(at_);
    expect(L";");
    if (code >= beyond_unicode) refuse(from);
    if (code >= 0x10000) {
      out += static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10));
      out += static_cast<wchar_t>(0xDC00 + (code & 0x3FF));
    } else {
      const auto unit = static_cast<wchar_t>(code);
      if (is_surrogate(unit) || !is_allowed(unit)) refuse(from);
      out += unit;
    }
  }

  const wchar_t* begin_;
  const wchar_t* at_;
  const wchar_t* end_;
  std::size_t depth_ = 0;  // how many elements are open
  const xml_text_of_bytes* bytes_;
  xml_meter meter_;
  xml_document_type* type_;
  bool is_standalone_ = false;

 private:
  struct inclusion {
    const wchar_t *from, *back_to, *end;  // the reference, and where what it stands in goes on and ends
    xml_declared_entity* entity;
    std::size_t depth;
  };
  std::vector<inclusion> included_;  // the outermost first
};

}  // namespace ruvo::serializer
