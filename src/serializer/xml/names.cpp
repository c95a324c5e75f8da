// SPDX-License-Identifier: BSL-1.0

// Texts as names, and back.

#include "serializer/xml/names.hpp"

#include <ruvo/xml_writing.hpp>

#include <string>

#include "base/ascii.hpp"

namespace ruvo::serializer {

namespace {

constexpr std::size_t escape_size = 7;  // _xHHHH_

/// The number that the text begins with as _xHHHH, or -1.
int escape_at(std::wstring_view text) noexcept {
  if (text.size() < escape_size - 1 || text[0] != L'_' || texto::to_lower(text[1]) != L'x') return -1;
  int number = 0;
  for (const wchar_t c : text.substr(2, 4)) {
    const int digit = texto::hex_value(c);
    if (digit < 0) return -1;
    number = number * 16 + digit;
  }
  return number;
}

void put_escape(std::wstring& out, wchar_t c) {
  const auto unit = static_cast<char16_t>(c);
  out += L"_x";
  for (int shift = 12; shift >= 0; shift -= 4) out += L"0123456789ABCDEF"[unit >> shift & 15];
  out += L'_';
}

}  // namespace

std::wstring escaped_xml_name(std::wstring_view text, bool qualified) {
  std::wstring out;
  for (name_walk walk(text, qualified); !walk.at_end();) {
    const std::wstring_view rest = text.substr(walk.at());
    std::size_t units = walk.right();
    if (units == 0 || escape_at(rest) >= 0) {
      put_escape(out, rest[0]);
      walk.pass(1, false);
    } else {
      out += rest.substr(0, units);
      walk.pass(units, true);
    }
  }
  return out;
}

std::wstring unescaped_xml_name(std::wstring_view name) {
  std::wstring out;
  while (!name.empty()) {
    const int unit = escape_at(name);
    const bool is_escape = unit >= 0 && name.size() >= escape_size && name[escape_size - 1] == L'_';
    out += is_escape ? static_cast<wchar_t>(unit) : name[0];
    name.remove_prefix(is_escape ? escape_size : 1);
  }
  return out;
}

}  // namespace ruvo::serializer
