// SPDX-License-Identifier: BSL-1.0
#pragma once

// The greatest sizes that the library's own arithmetic is made for. What goes beyond throws
// std::length_error, if nothing else is said. KESTA_TINY_LIMITS lowers them, so that a test can reach every
// one.

#include <cstddef>
#include <cstdint>

namespace ruvo::detail {

struct limits {
#ifdef KESTA_TINY_LIMITS
  static constexpr std::size_t entries = 300;             // of a bundle
  static constexpr std::size_t block = 20000;             // bytes, of what one value takes at a time
  static constexpr std::uint32_t pattern_positions = 50;  // in a text that a pattern looks at
  static constexpr std::uint64_t archive_field = 100000;  // from there on the number has 64 bits
#else
  static constexpr std::size_t entries = 0xFFFFFFFF;
  static constexpr std::size_t block = PTRDIFF_MAX;
  static constexpr std::uint32_t pattern_positions = 0xFFFFFFFF;
  static constexpr std::uint64_t archive_field = 0xFFFFFFFF;
#endif
};

}  // namespace ruvo::detail
