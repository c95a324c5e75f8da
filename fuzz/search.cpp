// SPDX-License-Identifier: BSL-1.0

// Literal search, replacement, splitting and masks, each against a plain way of doing it. The first line is
// the part or mask, the rest the text.

#include <ruvo/texto/search.hpp>

#include <algorithm>
#include <vector>

#include "fuzz.hpp"

using namespace ruvo::texto;

namespace {

std::wstring replaced(const std::wstring& text, const std::wstring& from, const std::wstring& to) {
  if (from.empty()) return text;
  std::wstring out;
  std::size_t at = 0;
  for (std::size_t hit; (hit = text.find(from, at)) != text.npos; at = hit + from.size())
    out.append(text, at, hit - at).append(to);
  return out.append(text, at);
}

/// Row by row: fits[j] is whether the mask so far fits the first j units.
bool fits(const std::wstring& text, const std::wstring& mask) {
  std::vector<char> row(text.size() + 1, 0);
  row[0] = 1;
  for (const wchar_t m : mask) {
    char diagonal = row[0];
    row[0] = m == L'*' ? row[0] : 0;
    for (std::size_t j = 1; j <= text.size(); ++j) {
      const char above = row[j];
      row[j] = m == L'*' ? row[j] | row[j - 1] : (m == L'?' || m == text[j - 1]) ? diagonal : 0;
      diagonal = above;
    }
  }
  return row.back();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::wstring all = fuzz::wide(data, size);
  const std::size_t line = std::min(all.find(L'\n'), all.size());
  const std::wstring part = all.substr(0, line);
  const std::wstring text = line < all.size() ? all.substr(line + 1) : std::wstring();

  FUZZ_CHECK(contains(text, part) == (text.find(part) != text.npos));
  for (const wchar_t* const to : {L"", L"x", L"longer than the part"}) {
    std::wstring changed = text;
    safe_replace(changed, part, to);
    FUZZ_CHECK(changed == replaced(text, part, to));
    if (part.empty()) continue;
    std::wstring every = text, first = text, expected = text;
    FUZZ_CHECK(std_replace(every, part, to, true) == changed);
    if (const std::size_t at = text.find(part); at != text.npos) expected.replace(at, part.size(), to);
    FUZZ_CHECK(std_replace(first, part, to, false) == expected);
  }
  std::wstring joined;
  const std::vector<std::wstring> pieces = split(text, part);
  for (const std::wstring& piece : pieces) joined += (&piece == pieces.data() ? L"" : part) + piece;
  FUZZ_CHECK(joined == text || joined + part == text);

  if (text.size() * part.size() < 1000000 && has_mask(part))
    for (int mode = 0; mode < 6; ++mode) FUZZ_CHECK(match_mask(text, part, mode) == fits(text, part));
  return 0;
}
