// SPDX-License-Identifier: BSL-1.0

// A thread's pointer in a fiber slot.

#include "system/thread_slot.hpp"

#include "system/win32/win32.hpp"

namespace ruvo::platform {

namespace {

// A fiber slot rather than a C++ thread_local: its clean-up also runs for all threads when the library is
// unloaded, and it needs no thread start hook. A fiber slot can be set again after its clean-up, which does
// not come back; that it ran stands in a plain thread slot, whose values stay to the very end. Before and
// after the slots' life no thread has a pointer.
constinit DWORD pointers = FLS_OUT_OF_INDEXES;
constinit DWORD ended = TLS_OUT_OF_INDEXES;

void WINAPI on_thread_end(void* value) {
  if (!value) return;
  const void* const own = thread_pointer();
  const bool of_other_fiber = own && own != value;  // one that is deleted while the thread goes on
  if (ended != TLS_OUT_OF_INDEXES && !of_other_fiber) TlsSetValue(ended, &ended);
  release_thread_pointer(value);
}

struct slots {
  slots() noexcept {
    ended = TlsAlloc();
    if (ended != TLS_OUT_OF_INDEXES) pointers = FlsAlloc(on_thread_end);
  }
  slots(const slots&) = delete;
  slots& operator=(const slots&) = delete;
  ~slots() {
    const DWORD old = pointers, old_ended = ended;
    pointers = FLS_OUT_OF_INDEXES;
    ended = TLS_OUT_OF_INDEXES;
    if (old != FLS_OUT_OF_INDEXES) FlsFree(old);
    if (old_ended != TLS_OUT_OF_INDEXES) TlsFree(old_ended);
  }
};

const slots the_slots;

}  // namespace

void* thread_pointer() noexcept { return pointers == FLS_OUT_OF_INDEXES ? nullptr : FlsGetValue(pointers); }

bool keeps_thread_pointer() noexcept { return pointers != FLS_OUT_OF_INDEXES && !TlsGetValue(ended); }

bool set_thread_pointer(void* value) noexcept {
  return pointers != FLS_OUT_OF_INDEXES && FlsSetValue(pointers, value) != 0;
}

}  // namespace ruvo::platform
