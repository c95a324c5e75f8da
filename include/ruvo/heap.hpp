// SPDX-License-Identifier: BSL-1.0
#pragma once

// What the library does with memory: whether a program and kesta.dll may release each other's, as they do,
// since texts and lists grow on one side and go on the other, and what is kept of large documents. A program
// with an `operator new` of its own (an allocator library, a leak checker) may break the first without a
// word; docs/ABI.md has the details.
//
//   if (!ruvo::abi::shares_heap()) return 1;  // early in main()

#include <ruvo/api.hpp>

#include <cstddef>
#include <new>

namespace ruvo::abi {

#if defined(KESTA_STATIC)

/// Program and library are one module.
inline bool shares_heap() noexcept { return true; }

#else

/// Whether a block of `take` may be released by the DLL, and one of the DLL by `give`: both come from the
/// same heap of the system, with the same number of bytes in front. False as well when memory fails, or where
/// the heaps can't be read. What `take` and `give` count or note beside does not matter. Walks through all
/// heaps of the process and locks each meanwhile: milliseconds, for the start of a program or its tests.
KESTA_API bool shares_heap_with(void* (*take)(std::size_t bytes), void (*give)(void* block)) noexcept;

/// shares_heap_with() for the `operator new` and `operator delete` of the calling module.
inline bool shares_heap() noexcept {
  return shares_heap_with([](std::size_t bytes) { return ::operator new(bytes); },
                          [](void* block) { ::operator delete(block); });
}

#endif

}  // namespace ruvo::abi

namespace ruvo {

/// Gives back to the system what the library keeps of documents that are gone; the number of bytes. The
/// values of documents of 32,000 characters or more lie in memory that is kept for the next ones: 64 MB of it
/// for good, and beyond that as much as was in use at once, up to 512 MB, until eight documents have needed
/// less. So a program that has read a large one and reads no more calls this. Any thread.
KESTA_API std::size_t give_back_memory() noexcept;

}  // namespace ruvo
