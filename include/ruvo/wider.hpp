// SPDX-License-Identifier: BSL-1.0
#pragma once

// Counts and positions that the interface takes as an unsigned long, of 32 bits, where the caller has more.

#include <concepts>
#include <limits>
#include <stdexcept>

namespace ruvo::detail {

/// An integer that may hold what an unsigned long does not. The overloads that take one leave calls with
/// any other integer as they are.
template <class Count>
concept wider_than_ulong = std::integral<Count> && sizeof(Count) > sizeof(unsigned long);

/// The number; throws std::length_error when an unsigned long does not hold it.
template <wider_than_ulong Count>
unsigned long checked_ulong(Count count) {
  const auto wide = static_cast<unsigned long long>(count);
  if (wide > (std::numeric_limits<unsigned long>::max)()) throw std::length_error("count beyond 32 bits");
  return static_cast<unsigned long>(wide);
}

}  // namespace ruvo::detail
