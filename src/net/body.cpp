// SPDX-License-Identifier: BSL-1.0

// Bodies of text or of bytes.

#include "net/body.hpp"

#include <ruvo/binary.hpp>

#include <string>
#include <string_view>

#include "base/utf.hpp"

namespace ruvo::http {

void body_data::set(std::wstring_view of) {
  text = of;
  bytes.clear();
  has_bytes = false;
}

void body_data::set(const binary& of) {
  bytes = of.get_store();
  text.clear();
  has_bytes = true;
}

void body_data::append(std::wstring_view of) {
  if (has_bytes)
    append(texto::to_utf_8(of));
  else
    text += of;
}

void body_data::append(std::string_view of) {
  if (!has_bytes) {
    const std::string before = texto::to_utf_8(std::wstring_view(text));
    bytes.assign(before.begin(), before.end());
    text.clear();
    has_bytes = true;
  }
  bytes.insert(bytes.end(), of.begin(), of.end());
}

binary body_data::sent() const {
  return has_bytes ? binary(bytes) : binary(texto::to_utf_8(std::wstring_view(text)));
}

std::wstring body_data::shown() const {
  if (!has_bytes) return text;
  return texto::to_utf_16(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

}  // namespace ruvo::http
