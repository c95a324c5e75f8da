// SPDX-License-Identifier: BSL-1.0
#pragma once

// Memory that held a secret.

#include <cstddef>

namespace ruvo::detail {

/// Overwrites the bytes, which no compiler leaves out, although nobody reads them any more.
void wipe(void* bytes, std::size_t count) noexcept;

/// Wipes a text or another block of characters with all of its room; it is empty then.
template <class Characters>
void wipe_all(Characters& characters) noexcept {
  characters.resize(characters.capacity());  // makes no new block
  wipe(characters.data(), characters.size() * sizeof characters[0]);
  characters.clear();
}

/// Whether two blocks are equal, found in a time that depends on their length alone.
bool same_bytes(const void* a, const void* b, std::size_t count) noexcept;

}  // namespace ruvo::detail
