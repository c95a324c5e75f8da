// SPDX-License-Identifier: BSL-1.0
#include "system/thread_slot.hpp"

namespace ruvo::platform {

namespace {

struct slot {
  ~slot() {
    void* const old = value;
    value = nullptr;
    ended = true;
    if (old) release_thread_pointer(old);
  }
  void* value = nullptr;
  bool ended = false;
};
thread_local slot the_slot;

}  // namespace

void* thread_pointer() noexcept { return the_slot.value; }
bool keeps_thread_pointer() noexcept { return !the_slot.ended; }

bool set_thread_pointer(void* value) noexcept {
  if (the_slot.ended) return false;
  the_slot.value = value;
  return true;
}

}  // namespace ruvo::platform
