// SPDX-License-Identifier: BSL-1.0
#pragma once

// Objects that outlive all others.

#include <new>

namespace ruvo {

/// The one object of its type, made on first use and never destroyed: other static objects may use it while
/// they are destroyed themselves.
template <class T>
T& immortal() {
  alignas(T) static unsigned char place[sizeof(T)];
  static T& made = *new (place) T;
  return made;
}

}  // namespace ruvo
