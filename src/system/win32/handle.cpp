// SPDX-License-Identifier: BSL-1.0

// What the system holds open, closed once.

#include "system/handle.hpp"

#include "system/win32/win32.hpp"

namespace ruvo::platform {

handle::handle(void* given) noexcept : held_(given == INVALID_HANDLE_VALUE ? nullptr : given) {}

bool handle::close() noexcept {
  void* const old = release();
  return !old || CloseHandle(old);
}

}  // namespace ruvo::platform
