// SPDX-License-Identifier: BSL-1.0

// Patterns: the first line is the pattern, the second what replaces, the rest the text. An answer or
// std::regex_error, and a replacement by the match itself changes nothing.

#include <ruvo/texto/search.hpp>

#include <algorithm>
#include <regex>

#include "fuzz.hpp"

using namespace ruvo::texto;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::wstring all = fuzz::wide(data, size);
  const std::size_t first = std::min(all.find(L'\n'), all.size()),
                    second = std::min(all.find(L'\n', first + 1), all.size());
  const std::wstring pattern = all.substr(0, first);
  const std::wstring with = first < all.size() ? all.substr(first + 1, second - first - 1) : std::wstring();
  const std::wstring text = second < all.size() ? all.substr(second + 1) : std::wstring();
  try {
    FUZZ_CHECK(replace_(text, pattern, L"$&") == text);
    if (match(text, pattern)) FUZZ_CHECK(match(text, L"(?:" + pattern + L")"));
    static_cast<void>(replace_(text, pattern, with));
  } catch (const std::regex_error&) {
  }
  // A literal text is its own pattern once it is escaped, but for backslashes.
  if (text.find(L'\\') == text.npos && !text.empty()) {
    const std::wstring literal = escape_regex_pattern(text);
    try {
      FUZZ_CHECK(match(text, literal));
      FUZZ_CHECK(replace_(text + text, literal, L"$$") == L"$$");
    } catch (const std::regex_error& error) {
      FUZZ_CHECK(error.code() == std::regex_constants::error_space);  // too long
    }
  }
  return 0;
}
