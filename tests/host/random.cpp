// SPDX-License-Identifier: BSL-1.0
#include "system/random.hpp"

#include <random>

namespace ruvo::platform {

bool fill_random(unsigned char* bytes, std::size_t count) noexcept {
  std::random_device device;
  for (std::size_t at = 0; at < count; ++at) bytes[at] = static_cast<unsigned char>(device());
  return true;
}

}  // namespace ruvo::platform
