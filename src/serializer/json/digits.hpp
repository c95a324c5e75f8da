// SPDX-License-Identifier: BSL-1.0
#pragma once

// The digits of numbers, eight at a time.

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/simd.hpp"

namespace ruvo::serializer {

template <class Unit>
inline bool is_digit_unit(Unit c) noexcept {
  return c >= Unit('0') && c <= Unit('9');
}

#ifdef KESTA_X64
/// Eight units as bytes; a unit above 255 gives no digit.
inline std::uint64_t eight_bytes(const char* at) noexcept {
  std::uint64_t bytes;
  std::memcpy(&bytes, at, sizeof bytes);
  return bytes;
}
template <texto::unit_16 Unit>
inline std::uint64_t eight_bytes(const Unit* at) noexcept {
  const __m128i units = texto::load_16(at);
  return static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_packus_epi16(units, units)));
}

/// Whether all eight are digits.
inline bool are_digits(std::uint64_t bytes) noexcept {
  constexpr std::uint64_t each = 0x0101010101010101;
  return ((bytes & 0xF0 * each) | ((bytes + 6 * each) & 0xF0 * each) >> 4) == 0x33 * each;
}
/// The number that they are, the first one in the lowest byte.
inline std::uint64_t number_of(std::uint64_t bytes) noexcept {
  bytes = (bytes & 0x0F0F0F0F0F0F0F0F) * (1 + (10 << 8)) >> 8;
  bytes = (bytes & 0x00FF00FF00FF00FF) * (1 + (100 << 16)) >> 16;
  return (bytes & 0x0000FFFF0000FFFF) * (1 + (std::uint64_t{10000} << 32)) >> 32;
}
#endif

/// Appends the digits from `at` on to the number, modulo 2^64, and returns where they end.
template <class Unit>
inline const Unit* take_digits(const Unit* at, const Unit* end, std::uint64_t& digits) noexcept {
#ifdef KESTA_X64
  if constexpr (sizeof(Unit) <= 2) {
    for (; end - at >= 8; at += 8) {
      const std::uint64_t bytes = eight_bytes(at);
      if (!are_digits(bytes)) break;
      digits = digits * 100'000'000 + number_of(bytes);
    }
  }
#endif
  for (; at != end && is_digit_unit(*at); ++at)
    digits = digits * 10 + static_cast<std::uint64_t>(*at - Unit('0'));
  return at;
}

}  // namespace ruvo::serializer
