// SPDX-License-Identifier: BSL-1.0
#include "system/guid.hpp"

#include <random>

#include "system/process.hpp"

namespace ruvo::platform {

bool make_guid(guid& out) noexcept {
  thread_local std::mt19937 random{static_cast<unsigned>(thread_id())};
  out.data1 = static_cast<unsigned long>(random());
  out.data2 = static_cast<unsigned short>(random());
  out.data3 = static_cast<unsigned short>(random());
  for (unsigned char& byte : out.data4) byte = static_cast<unsigned char>(random());
  return true;
}

}  // namespace ruvo::platform
