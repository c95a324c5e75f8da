// SPDX-License-Identifier: BSL-1.0

// UTF-8 and UTF-16, both ways, against a plain decoder.

#include "fuzz.hpp"
#include "support/plain_utf.hpp"

using namespace ruvo::texto;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes = fuzz::narrow(data, size);
  const std::wstring text = to_utf_16(bytes);
  FUZZ_CHECK(text == plain::utf_16<wchar_t>(bytes));
  FUZZ_CHECK(to_utf_16(to_utf_8(text)) == text);
  // Any units: once lone surrogates are replaced, nothing changes any more.
  std::wstring units;
  for (std::size_t i = 0; i + 1 < size; i += 2) units += static_cast<wchar_t>(data[i] << 8 | data[i + 1]);
  const std::string written = to_utf_8(units);
  FUZZ_CHECK(written == plain::utf_8<wchar_t>(units));
  FUZZ_CHECK(to_utf_8(to_utf_16(written)) == written);
  return 0;
}
