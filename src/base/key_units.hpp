// SPDX-License-Identifier: BSL-1.0
#pragma once

// Keys eight bytes at a time, on units of any width: folded, hashed, compared.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "base/ascii.hpp"

namespace ruvo::detail {

/// All foldings agree on ASCII.
template <wchar_t (*fold)(wchar_t), class Unit>
inline Unit fold_unit(Unit c) noexcept {
  const auto wide = static_cast<wchar_t>(c);
  return static_cast<Unit>(static_cast<char16_t>(c) < 0x80 ? texto::to_lower(wide) : fold(wide));
}

/// Writes the text folded by `fold` unit for unit: four ASCII units at a time, the others one by one. Whether
/// that changed any.
template <wchar_t (*fold)(wchar_t), class Unit>
inline bool fold_units(Unit* to, std::basic_string_view<Unit> text) noexcept {
  std::size_t at = 0;
  std::uint64_t changes = 0;
  const auto fold_one = [&] {
    to[at] = fold_unit<fold>(text[at]);
    changes |= static_cast<std::uint64_t>(to[at] ^ text[at]);
    ++at;
  };
  if constexpr (sizeof(Unit) == 2) {
    constexpr std::uint64_t lanes = 0x0001000100010001;
    while (at + 4 <= text.size()) {
      std::uint64_t word;
      std::memcpy(&word, text.data() + at, sizeof word);
      if ((word & 0xFF80 * lanes) != 0) {
        for (int n = 0; n < 4; ++n) fold_one();
        continue;
      }
      const std::uint64_t from_a = word + (0x80 - 'A') * lanes, beyond_z = word + (0x80 - 'Z' - 1) * lanes;
      const std::uint64_t capitals = (from_a & ~beyond_z & 0x80 * lanes) >> 2;
      changes |= capitals;
      word |= capitals;
      std::memcpy(to + at, &word, sizeof word);
      at += 4;
    }
  }
  while (at < text.size()) fold_one();
  return changes != 0;
}

/// A number whose bits are spread out, for hashing.
template <class Unit>
inline std::uint32_t hash_units(std::basic_string_view<Unit> text) noexcept {
  constexpr std::uint64_t spread = 0x9E3779B97F4A7C15;
  const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data());
  const std::size_t size = text.size() * sizeof(Unit);
  std::uint64_t state = size;
  std::uint64_t word = 0;
  // The products don't wait for one another.
  for (std::size_t at = 0; at + 8 <= size; at += 8) {
    std::memcpy(&word, bytes + at, 8);
    state = std::rotl(state, 23) + word * spread;
  }
  if (size % 8 != 0) {
    word = 0;
    for (const Unit unit : text.substr(size / 8 * 8 / sizeof(Unit)))
      word = word << 16 | static_cast<char16_t>(unit);
    state = std::rotl(state, 23) + word * spread;
  }
  return static_cast<std::uint32_t>(((state ^ (state >> 32)) * spread) >> 32);
}

/// Equality without a call for what is mostly a few words.
template <class Unit>
inline bool same_units(std::basic_string_view<Unit> a, std::basic_string_view<Unit> b) noexcept {
  const std::size_t bytes = b.size() * sizeof(Unit);
  if (a.size() != b.size()) return false;
  const auto* const x = reinterpret_cast<const unsigned char*>(a.data());
  const auto* const y = reinterpret_cast<const unsigned char*>(b.data());
  const auto word = [](const unsigned char* at) {
    std::uint64_t value;
    std::memcpy(&value, at, sizeof value);
    return value;
  };
  std::size_t at = 0;
  for (; at + 8 <= bytes; at += 8) {
    if (word(x + at) != word(y + at)) return false;
  }
  // Unit by unit: a key that was folded just now was written in the same pieces.
  for (std::size_t unit = at / sizeof(Unit); unit < b.size(); ++unit) {
    if (a[unit] != b[unit]) return false;
  }
  return true;
}

}  // namespace ruvo::detail
