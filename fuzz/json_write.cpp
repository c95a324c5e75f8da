// SPDX-License-Identifier: BSL-1.0

// Writing what was read: from the second time on, reading and writing change nothing any more.

#include <ruvo/bundle.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/serializer.hpp>

#include <stdexcept>

#include "fuzz.hpp"

using ruvo::bundle;
using ruvo::serializer::json;

namespace {

/// What the text holds, written again.
std::wstring rewritten(json& writer, const std::wstring& text) {
  bundle store;
  FUZZ_CHECK(!json().deserialize(store, text));
  std::wstring out;
  FUZZ_CHECK(!writer.serialize(out, store));
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::wstring text = fuzz::wide(data, size);
  bundle store;
  try {
    ruvo::exception error;
    json().deserialize(store, text, &error);
  } catch (const std::logic_error&) {  // a store that refuses
  }
  json plain, positional(false, false, true);
  for (json* const writer : {&plain, &positional}) {
    std::wstring written;
    FUZZ_CHECK(!writer->serialize(written, store));
    const std::wstring again = rewritten(*writer, written);
    FUZZ_CHECK(rewritten(*writer, again) == again);
  }
  return 0;
}
