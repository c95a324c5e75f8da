// SPDX-License-Identifier: BSL-1.0

// Reading well-formed XML: what is refused is refused at the first character that can't stand there, and
// changes nothing; what is read is the same with its lines ended in another way.

#include <algorithm>

#include "fuzz.hpp"
#include "support/well_formed_promises.hpp"
#include "support/xml_outcome.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 4096) return 0;  // the comparison copies level by level
  const std::wstring text = fuzz::wide(data, size);
  FUZZ_CHECK(well_formed_promises::broken(text) == nullptr);
  if (text.find(L'\r') != text.npos) return 0;
  std::wstring other = text;
  std::replace(other.begin(), other.end(), L'\n', L'\r');
  ruvo::bundle as_given, with_returns;
  const bool refused = ruvo::serializer::read_well_formed_xml(as_given, text);
  FUZZ_CHECK(ruvo::serializer::read_well_formed_xml(with_returns, other) == refused);
  FUZZ_CHECK(xml_outcome::text_of(as_given) == xml_outcome::text_of(with_returns));
  return 0;
}
