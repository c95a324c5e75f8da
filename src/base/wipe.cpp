// SPDX-License-Identifier: BSL-1.0

// Wiping, and comparing without a word about where the difference is.

#include "base/wipe.hpp"

#include <cstring>

namespace ruvo::detail {

void wipe(void* bytes, std::size_t count) noexcept {
  // What the pointer leads to is not known before the call, so the call has to be made.
  static void* (*const volatile fill)(void*, int, std::size_t) = std::memset;
  if (count) fill(bytes, 0, count);
}

bool same_bytes(const void* a, const void* b, std::size_t count) noexcept {
  const auto* const left = static_cast<const volatile unsigned char*>(a);
  const auto* const right = static_cast<const volatile unsigned char*>(b);
  unsigned different = 0;
  for (std::size_t at = 0; at < count; ++at) different |= static_cast<unsigned>(left[at] ^ right[at]);
  return different == 0;
}

}  // namespace ruvo::detail
