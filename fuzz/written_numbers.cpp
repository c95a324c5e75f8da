// SPDX-License-Identifier: BSL-1.0

// Numbers as people write them: the plain number reads back the same, and what is right strictly is so
// leniently.

#include <ruvo/texto/written_numbers.hpp>

#include "fuzz.hpp"

namespace texto = ruvo::texto;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::wstring text = fuzz::wide(data, size);
  for (texto::number_options options : {texto::number_options{L',', L'.'}, {L'.', L','}, {L',', L' '}, {}}) {
    const texto::parsed_number strict = texto::parse_number(text, options);
    options.lenient = true;
    const texto::parsed_number lenient = texto::parse_number(text, options);
    FUZZ_CHECK(!strict || (lenient && lenient.plain == strict.plain && lenient.unit == strict.unit));
    for (const texto::parsed_number& read : {strict, lenient}) {
      FUZZ_CHECK(read.position <= text.size() && static_cast<bool>(read) == texto::message_of(read).empty());
      FUZZ_CHECK(static_cast<bool>(read) != read.plain.empty());
      if (!read) continue;
      const texto::parsed_number again = texto::parse_number(read.plain, {L'.', L'.'});
      FUZZ_CHECK(again && again.plain == read.plain && again.value == read.value);
    }
  }
  return 0;
}
