// SPDX-License-Identifier: BSL-1.0

// Checking JSON: findings lie inside the text and in its order, and what has none is read without a failure,
// but for what the reader is known to take in another way.

#include <ruvo/bundle.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/json_check.hpp>
#include <ruvo/reading.hpp>
#include <ruvo/serializer.hpp>

#include <algorithm>
#include <vector>

#include "fuzz.hpp"

using namespace ruvo::serializer;

namespace {

void check_places(const std::wstring& text, const std::vector<json_finding>& findings) {
  std::uint64_t last = 1;
  for (const json_finding& finding : findings) {
    FUZZ_CHECK(finding.position >= last && finding.position <= text.size() + 1);
    FUZZ_CHECK(!finding.what.empty());
    const text_place place = position_of(text, finding.position);
    FUZZ_CHECK(place.line == finding.line && place.column == finding.column);
    last = finding.position;
  }
}

/// Whether the reader promises to read this JSON: an object or array, no name that is empty or holds a colon
/// or a quote, and numbers without exponent that fit.
bool is_promised(const std::wstring& text) {
  bool container = false;
  for (std::size_t at = 0; at < text.size();) {
    if (text[at] != L'"') {
      const std::size_t end = std::min(text.find_first_of(L",:{}[]\" \t\r\n", at), text.size());
      const bool number = text[at] == L'-' || (text[at] >= L'0' && text[at] <= L'9');
      if (number && (end - at > 15 || text.find_first_of(L"eE", at) < end)) return false;
      container |= text[at] == L'{' || text[at] == L'[';
      at = std::max(end, at + 1);
      continue;
    }
    std::size_t end = at + 1;
    while (text[end] != L'"') end += text[end] == L'\\' ? 2 : 1;
    const std::wstring inside = text.substr(at + 1, end - at - 1);
    const std::size_t next = text.find_first_not_of(L" \t\r\n", end + 1);
    const bool name = next != std::wstring::npos && text[next] == L':';
    if (name && (inside.empty() || inside.find_first_of(L":\"") != std::wstring::npos)) return false;
    at = end + 1;
  }
  return container;
}

void check_reading(const std::wstring& text) {
  ruvo::bundle store;
  ruvo::exception error;
  FUZZ_CHECK(!json().deserialize(store, text, &error));
  json_reader reader;
  ruvo::bundle again;
  FUZZ_CHECK(read_all(reader, again, text).empty());
  FUZZ_CHECK(again.to_string() == store.to_string());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::wstring text = fuzz::wide(data, size);
  const std::vector<json_finding> all = check_json(text, text.size() + 2, true);
  check_places(text, all);
  const bool clean = std::all_of(all.begin(), all.end(), [](const auto& f) { return is_note(f.rule); });
  const std::vector<json_finding> few = check_json(text, 1, true);
  FUZZ_CHECK(few.size() <= 2);
  FUZZ_CHECK(clean == std::all_of(few.begin(), few.end(), [](const auto& f) { return is_note(f.rule); }));
  if (clean && is_promised(text)) check_reading(text);
  // A blank at either end changes nothing.
  const std::vector<json_finding> wider = check_json(L" " + text + L" ", text.size() + 4, true);
  if (clean) FUZZ_CHECK(wider.size() == all.size());
  return 0;
}
