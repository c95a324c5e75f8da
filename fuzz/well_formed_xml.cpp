// SPDX-License-Identifier: BSL-1.0

// Reading well-formed XML: what is refused is refused at the first character that can't stand there, and
// changes nothing; what is read is the same with its lines ended in another way, and in other bytes.

#include <algorithm>
#include <string>

#include "fuzz.hpp"
#include "support/well_formed_promises.hpp"
#include "support/wide_bytes.hpp"
#include "support/xml_outcome.hpp"

namespace {

using well_formed_promises::options;

/// What reading gives, in line and column where it is a failure.
template <class Text, class Place>
std::wstring outcome(const Text& text, const options& how, Place place_of) {
  ruvo::bundle out;
  ruvo::exception error;
  if (!ruvo::serializer::read_well_formed_xml(out, text, &error, how)) return xml_outcome::text_of(out);
  const ruvo::serializer::text_place at = place_of(text, ruvo::serializer::failure_position(error));
  return L'!' + std::to_wstring(error.get_code()) + L' ' + std::to_wstring(at.line) + L':' +
         std::to_wstring(at.column);
}

options expanding() {
  options how;
  how.mixed_text = how.entities = how.declared_attributes = true;
  how.limits.growth = 100000;
  return how;
}

options narrow_minded() {
  options how = expanding();
  how.limits = {3, static_cast<std::size_t>(-1), 8, 3, 2000, 40};
  return how;
}

void check(const std::string& bytes, const std::wstring& text, const options& how) {
  FUZZ_CHECK(well_formed_promises::broken(bytes, how) == nullptr);
  FUZZ_CHECK(well_formed_promises::broken(text, how) == nullptr);

  using ruvo::serializer::position_in_xml;
  const auto position_of = [](std::wstring_view of, std::uint64_t position) {
    return ruvo::serializer::position_of(of, position);
  };
  const std::wstring marked = L'\xFEFF' + text;
  const std::string marked_bytes = ruvo::texto::to_utf_8(marked);
  // Another encoding than that of the bytes (UTF-32 has a mark and U+0000) and lone surrogates are other
  // failures in bytes.
  if (text.find(L"encoding") == text.npos && !text.starts_with(L'\0') &&
      ruvo::texto::to_utf_16(marked_bytes) == marked) {
    const std::wstring wanted = outcome(marked, how, position_of);
    FUZZ_CHECK(outcome(marked_bytes, how, position_in_xml) == wanted);
    for (const bool low_first : {true, false})
      FUZZ_CHECK(outcome(wide_bytes(marked, low_first), how, position_in_xml) == wanted);
  }
  if (text.find(L'\r') != text.npos) return;
  std::wstring other = text;
  std::replace(other.begin(), other.end(), L'\n', L'\r');
  FUZZ_CHECK(outcome(other, how, position_of) == outcome(text, how, position_of));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 4096) return 0;  // the comparison copies level by level
  for (const options& how : {well_formed_promises::unlimited(), expanding(), narrow_minded()})
    check(fuzz::narrow(data, size), fuzz::wide(data, size), how);
  return 0;
}
