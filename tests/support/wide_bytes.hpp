// SPDX-License-Identifier: BSL-1.0
#pragma once

// UTF-16 as bytes.

#include <string>
#include <string_view>

inline std::string wide_bytes(std::wstring_view text, bool low_first) {
  std::string bytes;
  for (const wchar_t c : text) {
    const auto low = static_cast<char>(c & 0xFF), high = static_cast<char>(c >> 8 & 0xFF);
    (bytes += low_first ? low : high) += low_first ? high : low;
  }
  return bytes;
}
