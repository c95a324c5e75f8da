// SPDX-License-Identifier: BSL-1.0

// Compiled patterns: a byte of options, the pattern up to the first line end, the text. An answer or
// pattern_error, in bounded time; what is found fits together.

#include <ruvo/texto/pattern.hpp>

#include <algorithm>
#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz.hpp"

using namespace ruvo::texto;

namespace {

void check_matches(const pattern& made, const std::wstring& text, std::wstring_view source,
                   const pattern_options& how) {
  const pattern same(L"(?:" + std::wstring(source) + L")", how),
      grouped(L"(" + std::wstring(source) + L")", how);
  FUZZ_CHECK(same.replace(text, L"[$&]") == made.replace(text, L"[$&]"));
  FUZZ_CHECK(grouped.replace(text, L"[$1]") == made.replace(text, L"[$&]"));
  std::size_t behind = 0;
  const auto check = [&](const pattern_match& match) {
    FUZZ_CHECK(match.begin() >= behind && match.end() >= match.begin());
    behind = match.end();
    for (std::size_t group = 1; group < match.size(); ++group) {
      if (!match.has(group)) continue;
      FUZZ_CHECK(match.begin(group) >= match.begin() && match.begin(group) <= match.end(group));
      FUZZ_CHECK(match.end(group) <= match.end());
    }
    const pattern_match again = made.search(text, match.begin());
    FUZZ_CHECK(again && again.begin() == match.begin());
    return true;
  };
  made.for_each(text, check);
  FUZZ_CHECK(made.matches(text) == static_cast<bool>(made.match(text)));
  if (made.matches(text)) FUZZ_CHECK(made.search(text).begin() == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const pattern_options how{.ignore_case = (data[0] & 1) != 0,
                            .ignore_accents = (data[0] & 2) != 0,
                            .multi_line = (data[0] & 4) != 0,
                            .dot_all = (data[0] & 8) != 0};
  const std::wstring all = fuzz::wide(data + 1, std::min<std::size_t>(size - 1, 2000));
  const std::size_t first = std::min(all.find(L'\n'), all.size());
  const std::wstring source = all.substr(0, first);
  const std::wstring text = first < all.size() ? all.substr(first + 1) : std::wstring();
  const auto begin = std::chrono::steady_clock::now();
  try {
    const pattern made(source, how);
    FUZZ_CHECK(made.replace(text, L"$&") == text);
    std::size_t size_of_pieces = 0, matched = 0;
    for (const std::wstring& piece : made.split(text)) size_of_pieces += piece.size();
    for (const pattern_match& match : made.search_all(text)) matched += match.end() - match.begin();
    FUZZ_CHECK(size_of_pieces + matched == text.size());
    if (made.groups() < 50) check_matches(made, text, source, how);
  } catch (const pattern_error& error) {
    FUZZ_CHECK(error.position() <= source.size() + 4);
  }
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
  FUZZ_CHECK(taken.count() < 20);
  return 0;
}
