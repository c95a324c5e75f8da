// SPDX-License-Identifier: BSL-1.0

// Reading XML: at once and character by character agree in the store and in the error.

#include "fuzz.hpp"
#include "support/xml_outcome.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 4096) return 0;  // the comparison copies level by level
  const std::wstring text = fuzz::wide(data, size);
  xml_ways ways;
  const outcome at_once = ways.at_once(text);
  FUZZ_CHECK(at_once == ways.by_character(text));
  // A reader that failed reads the next text like a fresh one.
  FUZZ_CHECK(at_once == ways.at_once(text));
  return 0;
}
