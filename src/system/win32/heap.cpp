// SPDX-License-Identifier: BSL-1.0

// Whether two modules take their memory from one heap.

#include <ruvo/heap.hpp>

#if !defined(KESTA_STATIC)

#  include <algorithm>
#  include <iterator>

#  include "system/win32/win32.hpp"

namespace ruvo::abi {

namespace {

/// Where a block comes from: a heap of the system, and how far inside of the heap's block it begins.
struct origin {
  HANDLE heap = nullptr;
  std::ptrdiff_t offset = 0;

  bool operator==(const origin&) const = default;
};

bool find_in(HANDLE heap, const char* block, std::ptrdiff_t& offset) noexcept {
  if (!HeapLock(heap)) return false;
  bool found = false;
  PROCESS_HEAP_ENTRY each{};
  while (!found && HeapWalk(heap, &each)) {
    const auto* const first = static_cast<const char*>(each.lpData);
    found = (each.wFlags & PROCESS_HEAP_ENTRY_BUSY) && block >= first && block < first + each.cbData;
    offset = block - first;
  }
  HeapUnlock(heap);
  return found;
}

origin origin_of(const void* block) noexcept {
  HANDLE heaps[256];
  const DWORD count = GetProcessHeaps(static_cast<DWORD>(std::size(heaps)), heaps);
  for (DWORD n = 0; n < std::min<DWORD>(count, std::size(heaps)); ++n) {
    std::ptrdiff_t offset = 0;
    if (find_in(heaps[n], static_cast<const char*>(block), offset)) return {heaps[n], offset};
  }
  return {};
}

}  // namespace

bool shares_heap_with(void* (*take)(std::size_t), void (*give)(void*)) noexcept {
  constexpr std::size_t bytes = 32768;  // beyond what heaps keep in lists of small blocks
  try {
    void* const own = ::operator new(bytes);
    const origin here = origin_of(own);
    ::operator delete(own);
    void* const block = take(bytes);
    const origin there = origin_of(block);
    give(block);
    return here.heap && here == there;
  } catch (...) {
    return false;
  }
}

}  // namespace ruvo::abi

#endif
