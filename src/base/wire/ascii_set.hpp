// SPDX-License-Identifier: BSL-1.0
#pragma once

// Sets of ASCII characters, by name, as the grammars of mail and of the web have them.

#include <cstdint>
#include <string_view>
#include <type_traits>

namespace ruvo::wire {

/// Characters of ASCII; a unit from 128 on is in none.
class ascii_set {
 public:
  constexpr explicit ascii_set(std::string_view members) noexcept {
    for (const char c : members) add(static_cast<unsigned char>(c));
  }

  /// Of bytes and of UTF-16 units.
  template <class Unit>
  constexpr bool has(Unit unit) const noexcept {
    const std::uint32_t code = static_cast<std::make_unsigned_t<Unit>>(unit);
    return code < 128 && (bits_[code / 64] >> code % 64 & 1) != 0;
  }

  constexpr ascii_set with(std::string_view members) const noexcept {
    ascii_set made = *this;
    for (const char c : members) made.add(static_cast<unsigned char>(c));
    return made;
  }

 private:
  constexpr void add(unsigned code) noexcept { bits_[code / 64] |= std::uint64_t{1} << code % 64; }

  std::uint64_t bits_[2] = {};
};

inline constexpr ascii_set alphanumeric("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789");
/// RFC 9110, 5.6.2: of tokens.
inline constexpr ascii_set token_set = alphanumeric.with("!#$%&'*+-.^_`|~");
/// RFC 8187, 3.2.1: what stays in an extended value. RFC 2231 has more of them.
inline constexpr ascii_set attribute_set = alphanumeric.with("!#$&+-.^_`|~");
/// RFC 3986, 2.3: what is never encoded in an address.
inline constexpr ascii_set unreserved_set = alphanumeric.with("-._~");
/// What stays in a form's names and values; a blank becomes "+" there.
inline constexpr ascii_set form_set = alphanumeric.with("*-._");

}  // namespace ruvo::wire
