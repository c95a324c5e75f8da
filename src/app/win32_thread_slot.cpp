#include "app/thread_slot.hpp"
#include "app/win32.hpp"

namespace ruvo::platform {

namespace {

void WINAPI on_thread_end(void* value) {
  if (value) release_thread_pointer(value);
}

// A fiber slot rather than a C++ thread_local: its clean-up also runs for all threads when the library is
// unloaded, and it needs no thread start hook.
struct slot {
  slot() noexcept : index(FlsAlloc(on_thread_end)) {}
  ~slot() {
    const DWORD old = index;
    index = FLS_OUT_OF_INDEXES;
    if (old != FLS_OUT_OF_INDEXES) FlsFree(old);
  }
  DWORD index;
};

slot the_slot;

}  // namespace

void* thread_pointer() noexcept {
  return the_slot.index == FLS_OUT_OF_INDEXES ? nullptr : FlsGetValue(the_slot.index);
}

bool set_thread_pointer(void* value) noexcept {
  return the_slot.index != FLS_OUT_OF_INDEXES && FlsSetValue(the_slot.index, value) != 0;
}

}  // namespace ruvo::platform
