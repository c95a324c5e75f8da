// SPDX-License-Identifier: BSL-1.0
#pragma once

// Chance for tests: the same seed gives the same inputs.

#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

/// How often generated tests go on with other inputs: the environment's KESTA_ROUNDS; 1 without it.
inline unsigned rounds() {
  const char* const text = std::getenv("KESTA_ROUNDS");
  const long given = text ? std::strtol(text, nullptr, 10) : 1;
  return given > 1 ? static_cast<unsigned>(given) : 1;
}

/// What stands between the blanks of a text.
inline std::vector<std::wstring> pieces(const std::wstring& text) {
  std::wistringstream in(text);
  return {std::istream_iterator<std::wstring, wchar_t>(in), {}};
}

class dice {
 public:
  explicit dice(unsigned seed) : random_(seed) {}

  unsigned long long number() { return random_(); }
  unsigned below(std::size_t limit) { return static_cast<unsigned>(random_() % limit); }
  bool one_in(unsigned n) { return below(n) == 0; }
  template <class All>
  const auto& any(const All& of) {
    return of[below(std::size(of))];
  }
  wchar_t unit(std::wstring_view of) { return of[below(of.size())]; }
  /// From `least` to `most` of the parts in a row.
  std::wstring joined(const std::vector<std::wstring>& parts, unsigned most, unsigned least = 0) {
    std::wstring text;
    for (unsigned n = least + below(most - least + 1); n > 0; --n) text += any(parts);
    return text;
  }

 private:
  std::mt19937_64 random_;
};
