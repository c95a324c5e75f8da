// SPDX-License-Identifier: BSL-1.0
#pragma once

// What may be wrong with the name of a file, whoever gives it.

#include <algorithm>
#include <string_view>

#include "base/ascii.hpp"

namespace ruvo::texto {

/// Whether the system takes a name for a device, whatever stands behind its first point.
inline bool is_device_name(std::wstring_view name) noexcept {
  std::wstring_view stem = name.substr(0, name.find_first_of(L".:"));
  while (stem.ends_with(L' ')) stem.remove_suffix(1);
  constexpr std::wstring_view words[] = {L"con", L"prn", L"aux", L"nul", L"conin$", L"conout$", L"clock$"};
  const auto is_stem = [&stem](std::wstring_view word) {
    return std::ranges::equal(stem, word, {}, to_lower);
  };
  if (std::ranges::any_of(words, is_stem)) return true;
  constexpr std::wstring_view digits = L"0123456789\u00B9\u00B2\u00B3";
  if (stem.size() != 4 || digits.find(stem[3]) == digits.npos) return false;
  stem.remove_suffix(1);
  return is_stem(L"com") || is_stem(L"lpt");
}

/// What is not seen in a name but turns or breaks what is: it makes "gnp.exe" look like "exe.png".
constexpr bool is_direction_mark(wchar_t c) noexcept {
  const auto code = static_cast<char16_t>(c);
  return code == 0x061C || code == 0x200E || code == 0x200F || (code >= 0x2028 && code <= 0x202E) ||
         (code >= 0x2066 && code <= 0x2069);
}

}  // namespace ruvo::texto
