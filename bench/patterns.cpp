// SPDX-License-Identifier: BSL-1.0

// Compiled patterns against the standard library's and Boost's: all matches in texts, one search in short
// ones.
//
//   bench_patterns

#include <ruvo/texto/pattern.hpp>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <regex>
#include <string>

#include <boost/regex.hpp>

#include "support/harness.hpp"

namespace {

/// Lines of a list of customers and of a log.
std::wstring sample_text(std::size_t size) {
  std::wstring out;
  for (unsigned n = 1; out.size() < size; ++n) {
    out += L"2024-05-" + std::to_wstring(10 + n % 20) + L" 12:0" + std::to_wstring(n % 10) + L" factura " +
           std::to_wstring(1000 + 7 * n) + L" de García López, Ana <ana.garcia" + std::to_wstring(n % 97) +
           L"@ejemplo.example> por 1.234,50 €: pagada\r\n";
  }
  return out;
}

std::size_t count_own(const ruvo::texto::pattern& made, const std::wstring& text) {
  std::size_t out = 0;
  made.for_each(text, [&out](const ruvo::texto::pattern_match& match) { return out += match.end(), true; });
  return out;
}

template <class Iterator, class Made>
std::size_t count_of_peer(const Made& made, const std::wstring& text) {
  std::size_t out = 0;
  for (Iterator each(text.begin(), text.end(), made), end; each != end; ++each)
    out += static_cast<std::size_t>((*each)[0].second - text.begin());
  return out;
}

void compare(bench::table& results, const char* name, const std::wstring& pattern, const std::wstring& text) {
  const ruvo::texto::pattern own(pattern);
  const std::wregex standard(pattern, std::regex::ECMAScript | std::regex::optimize);
  const boost::wregex boosts(pattern);
  const auto by_own = [&] { return count_own(own, text); };
  const auto by_standard = [&] { return count_of_peer<std::wsregex_iterator>(standard, text); };
  const auto by_boost = [&] { return count_of_peer<boost::wsregex_iterator>(boosts, text); };
  if (by_own() != by_standard() || by_own() != by_boost()) {
    std::printf("%s: the results differ\n", name);
    std::exit(1);
  }
  results.row("all matches", name, {static_cast<double>(text.size()), bench::amount::characters},
              {{"kesta", [&] { bench::use(by_own()); }},
               {"std::wregex", [&] { bench::use(by_standard()); }},
               {"boost::wregex", [&] { bench::use(by_boost()); }}},
              {{"std::wregex", 3.0}});
}

void compare_all() {
  bench::table results("patterns");
  const std::wstring text = sample_text(50'000);
  compare(results, "word", L"factura", text);
  compare(results, "date", L"(\\d{4})-(\\d\\d)-(\\d\\d)", text);
  compare(results, "mail", L"[a-z0-9.]+@[a-z]+\\.[a-z]+", text);
  compare(results, "alternatives", L"pagada|pendiente|anulada", text);
  compare(results, "words", L"[a-z]+", text);
  compare(results, "lazy", L"<.*?>", text);
  compare(results, "nothing", L"[0-9]+:[a-z]+;", text);
}

}  // namespace

int main() { compare_all(); }
