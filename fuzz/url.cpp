// SPDX-License-Identifier: BSL-1.0

// Addresses: what is read is written as it was read, and so is what references mean.

#include <ruvo/exc.hpp>
#include <ruvo/ruvo.hpp>
#include <ruvo/url.hpp>

#include <string>

#include "fuzz.hpp"

using ruvo::exception;
using ruvo::http::url;

namespace {

void check_stable(const url& address) {
  const std::wstring text = address.to_string();
  url again;
  exception failure;
  FUZZ_CHECK(again.read(text, failure) && again.to_string() == text);
  for (const wchar_t c : text) FUZZ_CHECK(c > L' ' && c < 0x7F);
  FUZZ_CHECK(again.get_scheme() == address.get_scheme() && again.get_host() == address.get_host());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::wstring text = fuzz::wide(data, size);
  url address, reference;
  exception failure;
  const std::size_t half = text.find(L'\n');
  if (address.read(text, failure))
    check_stable(address);
  else
    FUZZ_CHECK(ruvo::serializer::failure_position(failure) - 1 <= text.size());
  if (half == text.npos || text.size() > 20'000) return 0;
  if (!address.read(text.substr(0, half), failure) || !reference.read(text.substr(half + 1), failure))
    return 0;
  if (address.get_scheme().empty()) return 0;
  const url meant = address.resolve(reference);
  check_stable(meant);
  FUZZ_CHECK(!meant.get_scheme().empty());
  try {
    url made = meant;
    const auto segments = meant.get_segments();
    if (meant.has_authority() && !segments.empty())
      FUZZ_CHECK(made.set_segments(segments).get_segments() == segments);
  } catch (const ruvo::exc::BadFormat&) {    // bytes that are no UTF-8
  } catch (const ruvo::exc::BadArgument&) {  // "%2E%2E" means ".."
  }
  return 0;
}
