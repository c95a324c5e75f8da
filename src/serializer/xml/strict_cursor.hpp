// SPDX-License-Identifier: BSL-1.0
#pragma once

// Walking over a text that must be XML: what the document type and the elements have in common.

#include <ruvo/exc.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "base/ascii.hpp"
#include "serializer/places.hpp"
#include "serializer/xml/grammar.hpp"

namespace ruvo::serializer {

/// A place in a text. What cannot stand there is thrown as exc::xmlBadFormated.
class xml_cursor {
 public:
  explicit xml_cursor(std::wstring_view text) noexcept
      : begin_(text.data()), at_(text.data()), end_(text.data() + text.size()) {}

 protected:
  // --- single characters

  std::uint64_t position(const wchar_t* where) const noexcept {
    return static_cast<std::uint64_t>(where - begin_) + 1;
  }
  [[noreturn]] void refuse(const wchar_t* where) const { throw exc::xmlBadFormated(position(where), depth_); }

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
    while (at_ != end_) {
      if (at_ == from && !is_token ? starts_name(*at_) : continues_name(*at_)) {
        ++at_;
      } else if (at_pair() && static_cast<char16_t>(*at_) < 0xDB80) {
        at_ += 2;
      } else {
        break;
      }
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

  /// With its marks.
  void attribute_value(std::wstring& out) {
    const wchar_t quote = quotation_mark()[0];
    while (!take(quote)) {
      out += plain(quote);
      if (next_is(quote)) continue;
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
    const wchar_t* const from = at_;
    while (at_ != end_ && *at_ != stop && stands_for_itself(*at_)) ++at_;
    return between(from, at_);
  }

  /// One character; the end of a line, however it is written, is a line feed.
  std::wstring_view character() {
    const wchar_t* const from = at_;
    skip_character();
    if (*from != L'\r') return between(from, at_);
    take(L'\n');
    return L"\n";
  }

  /// The character that a reference stands for.
  void reference(std::wstring& out) {
    const wchar_t* const from = at_++;
    if (take(L'#')) return character_reference(out, from);
    const std::wstring_view its_name = name();
    expect(L";");
    for (const xml_entity& entity : xml_entities)
      if (entity.name == its_name) return out.push_back(entity.meant);
    refuse(from);
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
};

}  // namespace ruvo::serializer
