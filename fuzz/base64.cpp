// SPDX-License-Identifier: BSL-1.0

// Base64: what was encoded is decoded, in both alphabets and widths; any text decodes alike in both widths.

#include "fuzz.hpp"

using namespace ruvo::texto;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes = fuzz::narrow(data, size);
  const std::wstring units(data, data + size);
  for (const bool url_safe : {false, true}) {
    std::string narrow;
    base64_encode(narrow, bytes, url_safe);
    std::wstring wide;
    base64_encode(wide, units, url_safe);
    FUZZ_CHECK(narrow.size() == (size + 2) / 3 * 4);
    FUZZ_CHECK(std::wstring(narrow.begin(), narrow.end()) == wide);
    base64_decode(narrow, narrow);
    FUZZ_CHECK(narrow == bytes);
    base64_decode(wide, wide);
    FUZZ_CHECK(wide == units);
  }
  std::string narrow;
  base64_decode(narrow, bytes);
  std::wstring wide;
  base64_decode(wide, units);
  FUZZ_CHECK(narrow.size() <= size / 4 * 3 + 2);
  FUZZ_CHECK(std::wstring(reinterpret_cast<const unsigned char*>(narrow.data()),
                          reinterpret_cast<const unsigned char*>(narrow.data()) + narrow.size()) == wide);
  return 0;
}
