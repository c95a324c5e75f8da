#include <ruvo/bundle.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/well_formed_xml.hpp>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "serializer/places.hpp"
#include "serializer/scan.hpp"
#include "serializer/xml_tree.hpp"
#include "texto/ascii.hpp"

namespace ruvo::serializer {

namespace {

// --- characters

struct range {
  char16_t first, last;
};

template <std::size_t count>
constexpr bool is_in(const range (&ranges)[count], wchar_t c) noexcept {
  const auto unit = static_cast<char16_t>(c);
  for (const range& r : ranges)
    if (unit <= r.last) return unit >= r.first;
  return false;
}

// The names of XML 1.0, section 2.3, below U+10000.
constexpr range name_starts[] = {{':', ':'},       {'A', 'Z'},       {'_', '_'},       {'a', 'z'},
                                 {0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},
                                 {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F}, {0x2C00, 0x2FEF},
                                 {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}};
constexpr range name_others[] = {{'-', '.'}, {'0', '9'}, {0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}};

constexpr bool starts_name(wchar_t c) noexcept { return texto::is_alpha(c) || is_in(name_starts, c); }
constexpr bool continues_name(wchar_t c) noexcept { return starts_name(c) || is_in(name_others, c); }

/// Whether every document may hold the character, which is no surrogate.
constexpr bool is_allowed(wchar_t c) noexcept {
  const auto unit = static_cast<char16_t>(c);
  return unit >= 0x20 ? unit < 0xFFFE : is_xml_blank(c);
}

constexpr bool stands_for_itself(wchar_t c) noexcept {
  const auto unit = static_cast<char16_t>(c);
  return unit >= 0x20 && unit < 0xD800 && c != L'<' && c != L'&';
}

constexpr std::uint32_t beyond_unicode = 0x110000;

struct entity {
  std::wstring_view name;
  wchar_t meant;
};
constexpr entity entities[] = {
    {L"amp", L'&'}, {L"lt", L'<'}, {L"gt", L'>'}, {L"apos", L'\''}, {L"quot", L'"'}};

std::wstring_view between(const wchar_t* first, const wchar_t* last) noexcept {
  return {first, static_cast<std::size_t>(last - first)};
}

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

/// xml in any case, which no processing instruction may be called.
bool is_reserved(std::wstring_view name) noexcept {
  return name.size() == 3 && texto::to_lower(name[0]) == L'x' && texto::to_lower(name[1]) == L'm' &&
         texto::to_lower(name[2]) == L'l';
}

/// Reads a document once. What is not well-formed is thrown as a kind of exc::XMLException.
class document_reader {
 public:
  explicit document_reader(std::wstring_view text) noexcept
      : begin_(text.data()), at_(text.data()), end_(text.data() + text.size()) {}

  bundle read() {
    if (next_is(static_cast<wchar_t>(0xFEFF))) ++at_;
    declaration();
    miscellany();
    if (rest().starts_with(L"<!")) {
      document_type();
      miscellany();
      if (rest().starts_with(L"<!")) comment();  // which it is not: a second declaration is refused there
    }
    expect(L"<");
    start_tag();
    while (tree_.depth() > 0) content();
    miscellany();
    if (at_ != end_) refuse(at_);
    return tree_.take_document();
  }

 private:
  // --- single characters

  std::uint64_t position(const wchar_t* where) const noexcept {
    return static_cast<std::uint64_t>(where - begin_) + 1;
  }
  [[noreturn]] void refuse(const wchar_t* where) const {
    throw exc::xmlBadFormated(position(where), tree_.depth());
  }

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
  bool skip_blanks() noexcept {
    const wchar_t* const from = at_;
    while (at_ != end_ && is_xml_blank(*at_)) ++at_;
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

  std::wstring_view name() {
    const wchar_t* const from = at_;
    while (at_ != end_) {
      if (at_ == from ? starts_name(*at_) : continues_name(*at_)) {
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

  /// A text between quotation marks or apostrophes.
  std::wstring_view literal() {
    if (!next_is(L'"') && !next_is(L'\'')) refuse(at_);
    const wchar_t* const quote = at_++;
    return skip_to({quote, 1});
  }

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

  void declaration() {
    if (!rest().starts_with(L"<?xml") || rest().size() == 5 || !is_xml_blank(at_[5])) return;
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

  void equals_sign() {
    skip_blanks();
    expect(L"=");
    skip_blanks();
  }

  void document_type() {
    expect(L"<!DOCTYPE");
    expect_blanks();
    name();
    if (skip_blanks() && (next_is(L'S') || next_is(L'P'))) external_identifier();
    if (take(L'[')) {
      internal_subset();
      skip_blanks();
    }
    expect(L">");
  }

  void external_identifier() {
    const bool is_public = next_is(L'P');
    expect(is_public ? L"PUBLIC" : L"SYSTEM");
    expect_blanks();
    literal();
    if (is_public) {
      expect_blanks();
      literal();
    }
    skip_blanks();
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
    name();
    while (!take(L'>')) {
      if (next_is(L'"') || next_is(L'\'')) {
        literal();
      } else if (next_is(L'<')) {
        refuse(at_);
      } else {
        skip_character();
      }
    }
  }

  // --- elements

  /// A tag with what follows it, up to its end.
  void start_tag() {
    tree_.open(name());
    text_.clear();
    for (;;) {
      const bool apart = skip_blanks();
      if (take(L'>')) return;
      if (take(L'/')) {
        expect(L">");
        return tree_.close(text_.text());
      }
      if (!apart) refuse(at_);
      attribute();
    }
  }

  void attribute() {
    const std::wstring_view its_name = name();
    equals_sign();
    value_.clear();
    attribute_value();
    if (!tree_.set_attribute(its_name, value_)) refuse(its_name.data());
  }

  void attribute_value() {
    if (!next_is(L'"') && !next_is(L'\'')) refuse(at_);
    const wchar_t quote = *at_++;
    while (!take(quote)) {
      value_ += plain(quote);
      if (next_is(quote)) continue;
      if (next_is(L'<')) refuse(at_);
      if (next_is(L'&')) {
        reference(value_);
      } else {
        const std::wstring_view one = character();
        value_ += is_xml_blank(one[0]) ? std::wstring_view(L" ") : one;
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
    for (const entity& e : entities)
      if (e.name == its_name) return out.push_back(e.meant);
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
    if (its_name != tree_.name()) throw exc::xmlCachePointer(position(its_name.data()), tree_.depth());
    skip_blanks();
    expect(L">");
    tree_.close(text_.text());
    text_.clear();
  }

  const wchar_t* const begin_;
  const wchar_t* at_;
  const wchar_t* const end_;
  xml_tree tree_;
  xml_text text_;       // since the last tag
  std::wstring value_;  // of the attribute that was read last
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
