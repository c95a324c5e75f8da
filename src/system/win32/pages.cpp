// SPDX-License-Identifier: BSL-1.0
#include "system/pages.hpp"

#include "system/win32/win32.hpp"

namespace ruvo::platform {

// The system reserves in steps of 64 KB.
void* reserve_addresses(std::size_t bytes) noexcept {
  return VirtualAlloc(nullptr, bytes, MEM_RESERVE, PAGE_NOACCESS);
}
void release_addresses(void* first, std::size_t) noexcept { VirtualFree(first, 0, MEM_RELEASE); }

bool commit_pages(void* first, std::size_t bytes) noexcept {
  return VirtualAlloc(first, bytes, MEM_COMMIT, PAGE_READWRITE) != nullptr;
}
void decommit_pages(void* first, std::size_t bytes) noexcept { VirtualFree(first, bytes, MEM_DECOMMIT); }

}  // namespace ruvo::platform
