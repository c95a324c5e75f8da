// SPDX-License-Identifier: BSL-1.0
#pragma once

// A heap as a program has it that has worked for a while: its free places lie anywhere.

#include <ruvo/list.hpp>

#include <algorithm>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace bench {

/// Has `make(bytes)` make 200,000 things of 48 to 80 bytes, and destroys them in no order.
template <class Make>
void scatter(Make make) {
  constexpr std::size_t count = 200000;
  std::mt19937 random(48);
  std::vector<decltype(make(std::size_t{}))> all;
  while (all.size() < count) all.push_back(make(48 + random() % 33));
  std::shuffle(all.begin(), all.end(), random);
}

/// What all take from the system's heap, and what kesta keeps for its own values.
inline void scatter_heap() {
  scatter([](std::size_t bytes) { return std::string(bytes, ' '); });
  scatter([](std::size_t bytes) {
    ruvo::list value;
    value.push_back(std::wstring(bytes / sizeof(wchar_t), L' '));
    return value;
  });
}

}  // namespace bench
