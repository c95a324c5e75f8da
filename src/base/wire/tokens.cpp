// SPDX-License-Identifier: BSL-1.0

// Quoted strings, and names that are compared.

#include "base/wire/tokens.hpp"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "base/ascii.hpp"

namespace ruvo::wire {

bool is_same_name(std::wstring_view a, std::wstring_view b) noexcept {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](wchar_t x, wchar_t y) { return texto::to_lower(x) == texto::to_lower(y); });
}

bool append_quoted(std::wstring& out, std::wstring_view text) {
  if (!is_field_value(text)) return false;
  out.push_back(L'"');
  for (const wchar_t c : text) {
    if (c == L'"' || c == L'\\') out.push_back(L'\\');
    out.push_back(c);
  }
  out.push_back(L'"');
  return true;
}

bool append_word(std::wstring& out, std::wstring_view text) {
  if (!is_token(text)) return append_quoted(out, text);
  out += text;
  return true;
}

bool read_quoted(std::wstring& out, std::wstring_view text, std::size_t& at) {
  out.clear();
  if (at >= text.size() || text[at] != L'"') return false;
  for (++at; at < text.size(); ++at) {
    if (text[at] == L'"') {
      ++at;
      return true;
    }
    if (text[at] == L'\\' && at + 1 < text.size()) ++at;
    if (!is_field_unit(text[at])) return false;
    out.push_back(text[at]);
  }
  return false;
}

}  // namespace ruvo::wire
