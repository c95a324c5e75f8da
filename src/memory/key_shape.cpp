// SPDX-License-Identifier: BSL-1.0

// Keys that bundles share as a whole.

#include "memory/key_shape.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <string>

namespace ruvo::detail {

const key_shape* key_shape::make(const shared_key* const* keys, std::size_t size) {
  const std::size_t bytes =
      sizeof(key_shape) + words_before_keys(size) * sizeof(std::uint32_t) + size * sizeof *keys;
  auto* const made = new (::operator new(bytes)) key_shape(size);
  auto** const to = const_cast<const shared_key**>(made->keys());
  auto* const hashes = const_cast<std::uint32_t*>(made->hashes());
  auto* const ranks = const_cast<std::uint8_t*>(made->ranks(size));
  for (std::size_t n = 0; n < size; ++n) {
    ruvo::detail::retain(keys[n]);
    to[n] = keys[n];
    hashes[n] = keys[n]->hash;
    ranks[n] = static_cast<std::uint8_t>(n);
  }
  std::sort(ranks, ranks + size, [keys](std::uint8_t a, std::uint8_t b) {
    return static_cast<const std::wstring&>(*keys[a]) < *keys[b];
  });
  return made;
}

void key_shape::destroy() const noexcept {
  for (std::size_t n = 0; n < size_; ++n) ruvo::detail::release(keys()[n]);
  this->~key_shape();
  ::operator delete(const_cast<key_shape*>(this));
}

}  // namespace ruvo::detail
