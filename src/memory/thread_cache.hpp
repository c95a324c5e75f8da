// SPDX-License-Identifier: BSL-1.0
#pragma once

// What a thread keeps to make values cheap.

#include "memory/block_cache.hpp"
#include "memory/name_tree.hpp"
#include "memory/shared_key.hpp"
#include "system/thread_slot.hpp"

namespace ruvo::detail {

struct thread_cache {
  /// The calling thread's, or null when it can have none: the library is being unloaded, or the thread has
  /// ended but for what the program does at its end.
  static thread_cache* local() noexcept {
    if (void* known = platform::thread_pointer()) return static_cast<thread_cache*>(known);
    return made_local();
  }

  block_cache blocks;
  key_cache keys;
  name_tree narrow_names, wide_names;  // as UTF-8 and as UTF-16 write them
  name_tree plain_names;               // in UTF-16, where a backslash means itself

 private:
  static thread_cache* made_local() noexcept;
};

}  // namespace ruvo::detail
