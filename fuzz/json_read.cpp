// SPDX-License-Identifier: BSL-1.0

// Reading JSON: at once and character by character agree in the store and in the error.

#include "fuzz.hpp"
#include "support/json_outcome.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::wstring text = fuzz::wide(data, size);
  json_ways ways;
  const outcome at_once = ways.at_once(text);
  FUZZ_CHECK(at_once == ways.by_character(text));
  // A reader that failed reads the next text like a fresh one.
  FUZZ_CHECK(at_once == ways.at_once(text));
  return 0;
}
