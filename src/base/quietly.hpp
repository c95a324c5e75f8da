#pragma once

namespace ruvo {

/// Runs what must not fail before the caller's eyes.
template <class Work>
void quietly(Work work) noexcept {
  try {
    work();
  } catch (...) {  // nobody to tell
  }
}

}  // namespace ruvo
