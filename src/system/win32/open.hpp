// SPDX-License-Identifier: BSL-1.0
#pragma once

// Files and folders opened by name, bytes written to them, and what stands in the way.

#include <cstddef>
#include <string>
#include <string_view>

#include "system/handle.hpp"
#include "system/win32/win32.hpp"

namespace ruvo::platform {

constexpr DWORD shared_with_all = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr std::size_t most_at_once = 1u << 30;  // bytes

/// Flags for a name of the system's. Outside of drives it may be that of a pipe, whose server must not act
/// for the user. On drives the same bit would keep files from being fetched that are stored in a cloud.
DWORD guard_for(const std::wstring& name) noexcept;

/// Opens what has a name of the system's, a file or a folder; nothing for an empty one.
handle open_existing(const std::wstring& name, DWORD access, DWORD sharing = shared_with_all,
                     DWORD flags = 0) noexcept;

/// The number of the failure of a call that has just returned; ERROR_SUCCESS only if it was done.
inline DWORD error_of(bool done) noexcept {
  if (done) return ERROR_SUCCESS;
  const DWORD error = GetLastError();
  return error == ERROR_SUCCESS ? ERROR_GEN_FAILURE : error;
}

/// Makes an attempt, which gives an error number, and some more within 31 milliseconds while the error is one
/// that may pass: somebody else looks at a file for a moment. Gives the last error.
template <class Attempt, class MayPass>
DWORD insist(Attempt attempt, MayPass may_pass) {
  DWORD error = attempt();
  for (DWORD wait = 1; wait <= 16 && may_pass(error); wait *= 2) {
    Sleep(wait);
    error = attempt();
  }
  return error;
}

/// Gives how many bytes were written: less than all when the system refuses to go on.
std::size_t write_all(HANDLE file, std::string_view bytes) noexcept;

}  // namespace ruvo::platform
