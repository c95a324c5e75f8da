// SPDX-License-Identifier: BSL-1.0
#include "system/handle.hpp"

#include <unistd.h>

#include "names.hpp"

namespace ruvo::platform {

handle::handle(void* given) noexcept : held_(given) {}

bool handle::close() noexcept {
  void* const old = release();
  return !old || ::close(descriptor_of(old)) == 0;
}

}  // namespace ruvo::platform
