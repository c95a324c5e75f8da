// SPDX-License-Identifier: BSL-1.0
#pragma once

// Whether a program and kesta.dll may release each other's memory, as they do: texts and lists grow on one
// side and go on the other. A program with an `operator new` of its own (an allocator library, a leak
// checker) may break that without a word; docs/ABI.md has the details.
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
