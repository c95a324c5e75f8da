// SPDX-License-Identifier: BSL-1.0

// Hexadecimal numbers of any length in decimal.

#include <ruvo/texto.hpp>

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "base/ascii.hpp"

namespace ruvo::texto {

namespace {

constexpr std::uint64_t limb_base = 1'000'000'000;
constexpr int limb_digits = 9;
constexpr std::size_t group = 8;  // hexadecimal digits that are taken in one go: 32 bits

std::uint64_t value_of_digits(std::string_view hex) {
  std::uint64_t value = 0;
  for (const char c : hex) {
    const int digit = hex_value(static_cast<wchar_t>(c));
    if (digit < 0) throw std::invalid_argument("Carácter hexadecimal no válido");
    value = value << 4 | static_cast<unsigned>(digit);
  }
  return value;
}

/// `limbs`, the lowest first, times 2^32 plus `carry`.
void append_group(std::vector<std::uint32_t>& limbs, std::uint64_t carry) {
  for (std::uint32_t& limb : limbs) {
    carry += static_cast<std::uint64_t>(limb) << 32;
    limb = static_cast<std::uint32_t>(carry % limb_base);
    carry /= limb_base;
  }
  for (; carry; carry /= limb_base) limbs.push_back(static_cast<std::uint32_t>(carry % limb_base));
}

std::string decimal_digits(const std::vector<std::uint32_t>& limbs) {
  if (limbs.empty()) return "0";
  char digits[limb_digits + 1];
  std::string text;
  text.reserve(limbs.size() * limb_digits);
  for (auto limb = limbs.rbegin(); limb != limbs.rend(); ++limb) {
    const char* const end = std::to_chars(digits, digits + sizeof(digits), *limb).ptr;
    const auto count = static_cast<std::size_t>(end - digits);
    if (!text.empty()) text.append(limb_digits - count, '0');
    text.append(digits, count);
  }
  return text;
}

}  // namespace

std::string hex_to_dec(narrow_view hex) {
  std::vector<std::uint32_t> limbs;
  std::string_view rest = hex;
  // A short group first, so that all others are whole.
  for (std::size_t size = rest.size() % group; !rest.empty(); size = group) {
    append_group(limbs, value_of_digits(rest.substr(0, size)));
    rest.remove_prefix(size);
  }
  return decimal_digits(limbs);
}
std::string hex_to_dec(const std::string& hex) { return hex_to_dec(std::string_view(hex)); }

}  // namespace ruvo::texto
