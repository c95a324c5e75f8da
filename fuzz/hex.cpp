// SPDX-License-Identifier: BSL-1.0

// Hexadecimal: what was encoded is decoded; a text that is decoded holds digits only.

#include <ruvo/texto/words.hpp>

#include <stdexcept>

#include "fuzz.hpp"

using namespace ruvo::texto;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes = fuzz::narrow(data, size);
  const std::wstring hex = string_to_hex(bytes);
  FUZZ_CHECK(hex == bytes_to_hexString(data, static_cast<unsigned long>(size)));
  FUZZ_CHECK(hex_to_string(hex) == std::wstring(data, data + size));
  FUZZ_CHECK(hex_to_string(to_utf_8(hex)) == bytes);
  try {
    const std::string read = hex_to_string(bytes);
    FUZZ_CHECK(string_to_hex(read) == to_lowercase_(to_utf_16(bytes.substr(0, read.size() * 2))));
  } catch (const std::invalid_argument&) {
    FUZZ_CHECK(bytes.find_first_not_of("0123456789abcdefABCDEF") != bytes.npos);
  }
  return 0;
}
