// SPDX-License-Identifier: BSL-1.0
#pragma once

// Address space, and memory for parts of it.

#include <cstddef>

namespace ruvo::platform {

/// Addresses that nothing else in the process gets, without memory; null when there are not so many. The
/// first is a multiple of 64 KB.
void* reserve_addresses(std::size_t bytes) noexcept;
void release_addresses(void* first, std::size_t bytes) noexcept;

/// Puts memory, all zero, behind reserved addresses, which begin and end at a multiple of 64 KB; false when
/// the system has none left.
bool commit_pages(void* first, std::size_t bytes) noexcept;
/// Gives that memory back; the addresses stay reserved.
void decommit_pages(void* first, std::size_t bytes) noexcept;

}  // namespace ruvo::platform
