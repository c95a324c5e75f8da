// SPDX-License-Identifier: BSL-1.0
#pragma once

// Work whose failures are dropped.

namespace ruvo {

/// Runs a body whose failures must not reach the caller: they are dropped.
template <class Work>
void quietly(Work work) noexcept {
  try {
    work();
  } catch (...) {  // nobody to report it to
  }
}

}  // namespace ruvo
