// SPDX-License-Identifier: BSL-1.0

// A thread's cache hangs on the system's slot for it, which clears up when the thread ends.

#include "memory/thread_cache.hpp"

#include <memory>
#include <new>

namespace ruvo::detail {

thread_cache* thread_cache::made_local() noexcept {
  if (!platform::keeps_thread_pointer()) return nullptr;
  std::unique_ptr<thread_cache> made(new (std::nothrow) thread_cache);
  if (!made || !platform::set_thread_pointer(made.get())) return nullptr;
  return made.release();
}

}  // namespace ruvo::detail

void ruvo::platform::release_thread_pointer(void* value) noexcept {
  delete static_cast<ruvo::detail::thread_cache*>(value);
}
