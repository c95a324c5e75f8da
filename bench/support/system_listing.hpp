// SPDX-License-Identifier: BSL-1.0
#pragma once

// Listing a tree with the system's own calls, for comparison.

#include <cstdint>
#include <string>

namespace bench {

/// What a walk has seen.
struct listed {
  std::uint64_t folders = 0, files = 0, bytes = 0;
  bool operator==(const listed&) const = default;
};

/// Takes kinds and sizes from the records that the search gives; goes down without recursion.
listed list_with_system(const std::wstring& root);

}  // namespace bench
