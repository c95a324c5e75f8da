// SPDX-License-Identifier: BSL-1.0
#pragma once

// The declaration at the beginning of an XML document.

#include <algorithm>
#include <string_view>

#include "base/ascii.hpp"
#include "serializer/xml/strict_cursor.hpp"

namespace ruvo::serializer {

/// What may stand behind the words of the declaration.
inline bool is_version(std::wstring_view value) noexcept {
  return value.size() > 2 && value.starts_with(L"1.") &&
         std::all_of(value.begin() + 2, value.end(), texto::is_digit);
}
inline bool is_encoding(std::wstring_view value) noexcept {
  return !value.empty() && texto::is_alpha(value[0]) &&
         std::all_of(value.begin(), value.end(),
                     [](wchar_t c) { return texto::is_alnum(c) || c == L'.' || c == L'_' || c == L'-'; });
}
inline bool is_standalone(std::wstring_view value) noexcept { return value == L"yes" || value == L"no"; }

/// Passes over the declaration, if there is one.
class declaration_reader : protected xml_cursor {
 protected:
  using xml_cursor::xml_cursor;

  void declaration() {
    if (!rest().starts_with(L"<?xml") || rest().size() == 5 || !is_blank(at_[5])) return;
    at_ += 5;
    skip_blanks();
    declared(L"version", is_version);
    bool apart = skip_blanks();
    if (apart && next_is(L'e')) {
      encoding_ = declared(L"encoding", is_encoding);
      apart = skip_blanks();
    }
    if (apart && next_is(L's')) {
      is_standalone_ = declared(L"standalone", is_standalone) == L"yes";
      skip_blanks();
    }
    expect(L"?>");
  }

  std::wstring_view encoding_;  // its name; empty where none is declared

 private:
  std::wstring_view declared(std::wstring_view word, bool (*is_right)(std::wstring_view)) {
    expect(word);
    equals_sign();
    const std::wstring_view value = literal();
    if (!is_right(value)) refuse(value.data());
    return value;
  }
};

}  // namespace ruvo::serializer
