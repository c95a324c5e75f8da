// SPDX-License-Identifier: BSL-1.0
#include "system/pages.hpp"

#include <cstdint>

#include <sys/mman.h>

namespace ruvo::platform {

namespace {

constexpr std::size_t step = 65536;

void unmap(std::uintptr_t from, std::uintptr_t to) noexcept {
  if (from < to) munmap(reinterpret_cast<void*>(from), to - from);
}

}  // namespace

void* reserve_addresses(std::size_t bytes) noexcept {
  void* const all =
      mmap(nullptr, bytes + step, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (all == MAP_FAILED) return nullptr;
  const auto from = reinterpret_cast<std::uintptr_t>(all);
  const std::uintptr_t first = (from + step - 1) / step * step;
  unmap(from, first);
  unmap(first + bytes, from + bytes + step);
  return reinterpret_cast<void*>(first);
}
void release_addresses(void* first, std::size_t bytes) noexcept { munmap(first, bytes); }

bool commit_pages(void* first, std::size_t bytes) noexcept {
  return mprotect(first, bytes, PROT_READ | PROT_WRITE) == 0;
}
void decommit_pages(void* first, std::size_t bytes) noexcept {
  madvise(first, bytes, MADV_DONTNEED);
  mprotect(first, bytes, PROT_NONE);
}

}  // namespace ruvo::platform
