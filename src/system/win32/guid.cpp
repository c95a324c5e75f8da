// SPDX-License-Identifier: BSL-1.0

// Identifiers from the system.

#include "system/guid.hpp"

#include <algorithm>
#include <iterator>

#include "system/win32/late.hpp"
#include "system/win32/win32.hpp"

namespace ruvo::platform {

bool make_guid(guid& out) noexcept {
  GUID made;
  if (FAILED(late::com().make_guid(&made))) return false;
  out.data1 = made.Data1;
  out.data2 = made.Data2;
  out.data3 = made.Data3;
  std::copy(std::begin(made.Data4), std::end(made.Data4), out.data4);
  return true;
}

}  // namespace ruvo::platform
