// SPDX-License-Identifier: BSL-1.0
#pragma once

// What the system's records say of a file or a folder.

#include <vector>

#include "system/entry.hpp"
#include "system/win32/win32.hpp"

namespace ruvo::platform {

constexpr unsigned long long joined(DWORD high, DWORD low) noexcept {
  return static_cast<unsigned long long>(high) << 32 | low;
}
/// As the system counts it: 100 nanoseconds since 1601.
constexpr long long ticks_of(const FILETIME& time) noexcept {
  return static_cast<long long>(joined(time.dwHighDateTime, time.dwLowDateTime));
}

/// The same of seconds since 1970.
long long ticks_from(long long seconds_since_1970) noexcept;

/// A record of whatever shape; times in ticks.
struct entry_record {
  DWORD attributes = 0;
  DWORD tag = 0;  // of a reparse point
  unsigned long long size = 0;
  long long accessed = 0, written = 0;
  long long changed = 0;  // 0 when the system does not know it
};
entry_facts facts_of(const entry_record& record) noexcept;

/// What an open file or folder is; something that leads elsewhere if the system does not say.
entry_kind kind_of(HANDLE opened) noexcept;
bool read_identity(HANDLE opened, entry_identity& out) noexcept;
/// Parts of its security descriptor; empty when the system does not give them.
std::vector<unsigned char> security_of(HANDLE opened, SECURITY_INFORMATION wanted);

}  // namespace ruvo::platform
