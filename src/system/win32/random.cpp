// SPDX-License-Identifier: BSL-1.0

// Random bytes from the system.

#include "system/random.hpp"

#include "system/win32/late.hpp"
#include "system/win32/win32.hpp"

namespace ruvo::platform {

bool fill_random(unsigned char* bytes, std::size_t count) noexcept {
  return late::security().random(bytes, static_cast<ULONG>(count)) != FALSE;
}

}  // namespace ruvo::platform
