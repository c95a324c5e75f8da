// SPDX-License-Identifier: BSL-1.0

// The encoding of an XML document that comes as bytes, and its text.

#include "serializer/xml/bytes.hpp"

#include <ruvo/exc.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

#include "base/charset.hpp"
#include "base/utf.hpp"
#include "base/wire/tokens.hpp"
#include "serializer/scan.hpp"
#include "serializer/xml/declaration.hpp"

namespace ruvo::serializer {

namespace {

using namespace std::string_view_literals;

// --- finding the encoding

constexpr bool is_utf_16(xml_encoding encoding) noexcept {
  return encoding == xml_encoding::utf_16_le || encoding == xml_encoding::utf_16_be;
}

/// What a declaration may call an encoding.
constexpr struct {
  std::wstring_view name;
  xml_encoding encoding;
} encoding_names[] = {
    {L"utf-8", xml_encoding::utf_8},
    {L"utf8", xml_encoding::utf_8},
    {L"utf-16", xml_encoding::utf_16_le},
    {L"utf-16", xml_encoding::utf_16_be},
    {L"utf-16le", xml_encoding::utf_16_le},
    {L"utf-16be", xml_encoding::utf_16_be},
    {L"iso-10646-ucs-2", xml_encoding::utf_16_le},
    {L"iso-10646-ucs-2", xml_encoding::utf_16_be},
    {L"us-ascii", xml_encoding::ascii},
    {L"ascii", xml_encoding::ascii},
    {L"iso-8859-1", xml_encoding::latin_1},
    {L"iso_8859-1", xml_encoding::latin_1},
    {L"latin1", xml_encoding::latin_1},
    {L"iso-8859-15", xml_encoding::latin_9},
    {L"iso_8859-15", xml_encoding::latin_9},
    {L"latin-9", xml_encoding::latin_9},
    {L"latin9", xml_encoding::latin_9},
    {L"windows-1252", xml_encoding::windows_1252},
    {L"cp1252", xml_encoding::windows_1252},
};

/// What the first bytes say about all others.
struct beginning {
  enum class trust : std::uint8_t {
    none,      // an encoding that is not understood
    marked,    // the declaration has to agree, if there is one
    declared,  // the declaration has to agree
    ascii      // below 128 at least; the declaration decides
  };
  std::string_view bytes;
  trust how;
  xml_encoding encoding;
};

constexpr beginning beginnings[] = {
    {"\0\0\xFE\xFF"sv, beginning::trust::none, xml_encoding::latin_1},
    {"\xFF\xFE\0\0"sv, beginning::trust::none, xml_encoding::latin_1},
    {"\0\0\0<"sv, beginning::trust::none, xml_encoding::latin_1},
    {"<\0\0\0"sv, beginning::trust::none, xml_encoding::latin_1},
    {"\x4C\x6F\xA7\x94"sv, beginning::trust::none, xml_encoding::latin_1},  // EBCDIC
    {"\xEF\xBB\xBF"sv, beginning::trust::marked, xml_encoding::utf_8},
    {"\xFF\xFE"sv, beginning::trust::marked, xml_encoding::utf_16_le},
    {"\xFE\xFF"sv, beginning::trust::marked, xml_encoding::utf_16_be},
    {"<\0?\0"sv, beginning::trust::declared, xml_encoding::utf_16_le},
    {"\0<\0?"sv, beginning::trust::declared, xml_encoding::utf_16_be},
    {"<\0"sv, beginning::trust::none, xml_encoding::latin_1},
    {"\0<"sv, beginning::trust::none, xml_encoding::latin_1},
    {"", beginning::trust::ascii, xml_encoding::latin_1},
};

const beginning& beginning_of(std::string_view bytes) noexcept {
  return *std::find_if(std::begin(beginnings), std::end(beginnings),
                       [&](const beginning& b) { return bytes.starts_with(b.bytes); });
}

/// Reads nothing but the name of the encoding.
class head_reader : declaration_reader {
 public:
  explicit head_reader(std::wstring_view head) noexcept
      : declaration_reader(head, nullptr, {}, document_type_) {}

  /// Empty where none is declared; false where the declaration is wrong.
  bool read(std::wstring_view& name) {
    try {
      byte_order_mark();
      declaration();
      name = encoding_;
      return true;
    } catch (const exc::XMLException&) {
      return false;
    }
  }

 private:
  xml_document_type document_type_;  // none
};

// --- decoding

void decode_single(xml_text_of_bytes& out, std::string_view bytes, const texto::upper_half& upper) {
  out.is_cut = texto::decode_single_bytes(out.text, bytes, upper) != bytes.size();
}

/// The first of two bytes is the high one or the low one.
void decode_utf_16(xml_text_of_bytes& out, std::string_view bytes, bool high_first) {
  out.text.resize(bytes.size() / 2);
  const auto* at = reinterpret_cast<const unsigned char*>(bytes.data());
  for (wchar_t& unit : out.text) {
    unit = static_cast<wchar_t>(high_first ? at[0] << 8 | at[1] : at[1] << 8 | at[0]);
    at += 2;
  }
  out.is_cut = bytes.size() % 2 != 0;
}

/// Of UTF-8. The bytes of a surrogate pair count for its first unit.
constexpr std::size_t bytes_for(wchar_t unit) noexcept {
  const auto code = static_cast<char16_t>(unit);
  if (code < 0x800) return code < 0x80 ? 1 : 2;
  if (texto::is_surrogate(unit)) return texto::is_high_surrogate(unit) ? 4 : 0;
  return 3;
}

/// What is malformed becomes U+FFFD, and is found by not being that character.
void decode_utf_8(xml_text_of_bytes& out, std::string_view bytes) {
  constexpr wchar_t replacement = 0xFFFD;
  out.text.reserve(bytes.size());
  texto::append_utf_16(out.text, bytes);
  const wchar_t* at = out.text.data();
  const wchar_t* const end = at + out.text.size();
  for (std::size_t behind = 0;; behind += bytes_for(*at++)) {
    const wchar_t* const found = find_either(at, end, replacement, replacement);
    if (found == end) return;
    for (; at != found; ++at) behind += bytes_for(*at);
    if (bytes.substr(behind, 3) == "\xEF\xBF\xBD") continue;
    out.is_cut = true;
    return out.text.resize(static_cast<std::size_t>(at - out.text.data()));
  }
}

}  // namespace

std::uint64_t xml_text_of_bytes::position(std::size_t offset) const noexcept {
  std::uint64_t before = is_utf_16(encoding) ? 2 * std::uint64_t{offset} : offset;
  if (encoding == xml_encoding::utf_8) {
    before = 0;
    for (std::size_t n = 0; n < offset; ++n) before += bytes_for(text[n]);
  }
  return before + 1;
}

std::size_t xml_text_of_bytes::offset(std::uint64_t position) const noexcept {
  std::uint64_t left = position == 0 ? 0 : position - 1;
  if (is_utf_16(encoding)) left /= 2;
  std::size_t found = 0;
  if (encoding != xml_encoding::utf_8) {
    found = static_cast<std::size_t>(std::min<std::uint64_t>(left, text.size()));
  } else {
    for (; found < text.size() && bytes_for(text[found]) <= left; ++found) left -= bytes_for(text[found]);
  }
  return found;
}

xml_encoding encoding_of(std::string_view bytes) {
  const beginning& known = beginning_of(bytes);
  if (known.how == beginning::trust::none) throw exc::xmlUnknownEncoding(1, 0);
  const std::size_t head_end = std::min(bytes.size(), std::min(bytes.find('>'), bytes.size()) + 2);
  const xml_text_of_bytes head = decoded(bytes.substr(0, head_end), known.encoding);
  const bool is_ascii = known.how == beginning::trust::ascii;
  std::wstring_view name;
  const bool is_right = head_reader(head.text).read(name);  // if not, who reads the document finds it, too
  if (name.empty()) {
    if (is_right && known.how == beginning::trust::declared) throw exc::xmlUnknownEncoding(1, 0);
    return is_ascii ? xml_encoding::utf_8 : known.encoding;
  }
  for (const auto& row : encoding_names) {
    const bool may_be = is_ascii ? !is_utf_16(row.encoding) : row.encoding == known.encoding;
    if (may_be && wire::is_same_name(name, row.name)) return row.encoding;
  }
  throw exc::xmlUnknownEncoding(head.position(static_cast<std::size_t>(name.data() - head.text.data())), 0);
}

xml_encoding family_of(std::string_view bytes) noexcept { return beginning_of(bytes).encoding; }

xml_text_of_bytes decoded(std::string_view bytes, xml_encoding encoding) {
  xml_text_of_bytes out{encoding, {}};
  switch (encoding) {
    case xml_encoding::utf_8:
      decode_utf_8(out, bytes);
      break;
    case xml_encoding::utf_16_le:
      decode_utf_16(out, bytes, false);
      break;
    case xml_encoding::utf_16_be:
      decode_utf_16(out, bytes, true);
      break;
    case xml_encoding::ascii:
      decode_single(out, bytes, texto::ascii_half);
      break;
    case xml_encoding::latin_1:
      decode_single(out, bytes, texto::latin_1_half);
      break;
    case xml_encoding::latin_9:
      decode_single(out, bytes, texto::latin_9_half);
      break;
    case xml_encoding::windows_1252:
      decode_single(out, bytes, texto::windows_1252_half);
      break;
  }
  return out;
}

}  // namespace ruvo::serializer
