// SPDX-License-Identifier: BSL-1.0

// Words in camel case, snake case and capitals.

#include <ruvo/texto.hpp>

#include <string>
#include <utility>

#include "base/ascii.hpp"
#include "texto/word_reader.hpp"

namespace ruvo::texto {

std::wstring to_camel_case_(wide_view text) {
  std::wstring out;
  out.reserve(text.size());
  bool start = true;
  for (const wchar_t unit : text) {
    const wchar_t c = limpia_puntuacion(unit, 0);
    if (is_alnum(c)) out.push_back(start ? to_upper(c) : to_lower(c));
    start = !is_alnum(c);
  }
  return out;
}
std::wstring to_camel_case_(const std::wstring& text) { return to_camel_case_(std::wstring_view(text)); }
std::wstring& to_camel_case(std::wstring& text) { return text = to_camel_case_(text); }

std::wstring to_snake_case_(wide_view text) {
  std::wstring out;
  out.reserve(text.size());
  for (const wchar_t unit : text) {
    const wchar_t c = limpia_puntuacion(unit, 0);
    if (is_upper(c) && !out.empty()) out.push_back(L'_');
    if (is_alnum(c)) out.push_back(to_lower(c));
  }
  return out;
}
std::wstring to_snake_case_(const std::wstring& text) { return to_snake_case_(std::wstring_view(text)); }
std::wstring& to_snake_case(std::wstring& text) { return text = to_snake_case_(text); }

std::wstring to_capitalize_case_(wide_view text) {
  std::wstring out;
  out.reserve(text.size());
  word_reader words(text);
  for (std::wstring_view word = words.next(); !word.empty(); word = words.next()) {
    if (!out.empty()) out.push_back(L' ');
    out.push_back(to_upper(word[0]));
    for (const wchar_t c : word.substr(1)) out.push_back(to_lowercase(c));
  }
  return out;
}
std::wstring to_capitalize_case_(const std::wstring& text) {
  return to_capitalize_case_(std::wstring_view(text));
}
std::wstring& to_capitalize_case(std::wstring& text) { return text = to_capitalize_case_(text); }

}  // namespace ruvo::texto
