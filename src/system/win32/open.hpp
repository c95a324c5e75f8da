#pragma once

// Files and folders opened by name, and bytes written to them.

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

/// Gives how many bytes were written: less than all when the system refuses to go on.
std::size_t write_all(HANDLE file, std::string_view bytes) noexcept;

}  // namespace ruvo::platform
