// SPDX-License-Identifier: BSL-1.0
#pragma once

// Numbers that nobody can guess.

#include <cstddef>

namespace ruvo::platform {

/// Fills the bytes from the system's generator for secrets. False when the system has none.
bool fill_random(unsigned char* bytes, std::size_t count) noexcept;

}  // namespace ruvo::platform
