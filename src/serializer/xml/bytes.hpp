// SPDX-License-Identifier: BSL-1.0
#pragma once

// The bytes of an XML document as text.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ruvo::serializer {

enum class xml_encoding : std::uint8_t { utf_8, utf_16_le, utf_16_be, ascii, latin_1, latin_9, windows_1252 };

/// A document that was decoded, up to the first bytes that are no character. A byte order mark is one.
struct xml_text_of_bytes {
  /// Of the unit at an offset, counted from 1, in bytes.
  std::uint64_t position(std::size_t offset) const noexcept;
  /// Of the unit at a position, which is at most one behind the last.
  std::size_t offset(std::uint64_t position) const noexcept;

  xml_encoding encoding;
  std::wstring text;
  bool is_cut = false;  // bytes follow that are no character
};

/// The encoding that the bytes are in as XML finds it. Throws exc::xmlUnknownEncoding for one that is not
/// understood, or that is not what it is said to be.
xml_encoding encoding_of(std::string_view bytes);

/// The encoding of the declaration of any document, as far as the first bytes show it.
xml_encoding family_of(std::string_view bytes) noexcept;

xml_text_of_bytes decoded(std::string_view bytes, xml_encoding encoding);

}  // namespace ruvo::serializer
