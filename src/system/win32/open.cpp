// SPDX-License-Identifier: BSL-1.0

// Files and folders opened by name, and bytes written whole.

#include "system/win32/open.hpp"

#include <algorithm>

namespace ruvo::platform {

DWORD guard_for(const std::wstring& name) noexcept {
  const bool is_on_drive = name.size() > 5 && name[5] == L':';  // behind "\\?\"
  return is_on_drive ? 0 : SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION;
}

handle open_existing(const std::wstring& name, DWORD access, DWORD sharing, DWORD flags) noexcept {
  return handle(CreateFileW(name.c_str(), access, sharing, nullptr, OPEN_EXISTING,
                            FILE_FLAG_BACKUP_SEMANTICS | guard_for(name) | flags, nullptr));
}

std::size_t write_all(HANDLE file, std::string_view bytes) noexcept {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const auto size = static_cast<DWORD>(std::min(bytes.size() - done, most_at_once));
    DWORD written = 0;
    if (!WriteFile(file, bytes.data() + done, size, &written, nullptr) || !written) break;
    done += written;
  }
  return done;
}

}  // namespace ruvo::platform
