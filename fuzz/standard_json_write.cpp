// SPDX-License-Identifier: BSL-1.0

// Writing standard JSON: the check of RFC 8259 finds nothing in it, whatever was read in whatever way and
// whatever the options, the targets agree, and what is read again is written as before.
//
// The first byte chooses the options; the others are a document of the dialect or, if it is odd, XML, whose
// attributes become qualities.

#include <ruvo/ruvo.hpp>

#include <stdexcept>
#include <string>

#include "fuzz.hpp"

using namespace ruvo::serializer;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::wstring text = fuzz::wide(data + 1, size - 1);
  const unsigned choice = data[0];
  ruvo::bundle store;
  try {
    if (choice & 1) {
      xml(true, false).deserialize(store, text, nullptr);
    } else {
      json().deserialize(store, text, nullptr);
    }
  } catch (const std::logic_error&) {  // a store that refuses
  }
  json_write_options options;
  options.indent = choice & 2 ? static_cast<int>(choice & 4) : -1;
  options.sorted = (choice & 8) != 0;
  options.folded = (choice & 16) != 0;
  options.line_separators = (choice & 32) != 0;
  options.qualities = choice & 64 ? json_qualities::members : json_qualities::left_out;
  std::wstring wide;
  std::string narrow;
  const bool failed = write_standard_json(wide, store, nullptr, options);
  FUZZ_CHECK(write_standard_json(narrow, store, nullptr, options) == failed);
  if (failed) return 0;  // twins
  FUZZ_CHECK(ruvo::texto::to_utf_8(wide) == narrow);
  for (const json_finding& found : check_json(wide, 100, true))
    FUZZ_CHECK(found.rule == json_rule::lone_surrogate);
  if (options.qualities == json_qualities::members) return 0;  // names may differ in case alone
  json_read_options all;
  all.limits.depth = size;
  ruvo::bundle again;
  FUZZ_CHECK(!read_standard_json(again, narrow, nullptr, all));
  std::string rewritten;
  FUZZ_CHECK(!write_standard_json(rewritten, again, nullptr, options));
  FUZZ_CHECK(rewritten == narrow);
  return 0;
}
