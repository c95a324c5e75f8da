// SPDX-License-Identifier: BSL-1.0
#pragma once

// Identifiers that no other has.

namespace ruvo::platform {

struct guid {
  unsigned long data1;
  unsigned short data2;
  unsigned short data3;
  unsigned char data4[8];
};
/// False when the system cannot make one.
bool make_guid(guid& out) noexcept;

}  // namespace ruvo::platform
