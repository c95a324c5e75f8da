// SPDX-License-Identifier: BSL-1.0
#pragma once

// Bytes of any kind as text, and back without a difference.

#include <ruvo/ini.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace ruvo::settings {

/// How a text is written in bytes. Whatever decode() was given, encode() gives back.
class text_encoding {
 public:
  ini_encoding kind = ini_encoding::utf_8;
  bool has_mark = false;

  /// The text of the bytes, and how they were written.
  static std::wstring decode(std::string_view bytes, text_encoding& how);
  /// The bytes of the lines that the parts consist of. False where they would be decoded in another way, or a
  /// character has none.
  bool encode(std::string& out, const std::vector<std::wstring_view>& parts) const;
  /// Where the first character stands that has no bytes; npos where all have.
  std::size_t unwritable(std::wstring_view text) const noexcept;
  /// Whether no odd byte is left over.
  bool is_whole() const noexcept { return tail_.empty(); }

 private:
  bool encode_utf_8(std::string& out, std::wstring_view part) const;
  bool encode_ansi(std::string& out, const std::vector<std::wstring_view>& parts) const;

  bool is_damaged_ = false;  // behind the mark of UTF-8 stood bytes that are none: units from U+DC80 on
  std::string tail_;         // the odd byte behind UTF-16
};

/// "U+20AC", of the character at the place.
std::wstring code_point_name(std::wstring_view text, std::size_t at);

}  // namespace ruvo::settings
