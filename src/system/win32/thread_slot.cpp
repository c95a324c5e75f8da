// SPDX-License-Identifier: BSL-1.0

// A thread's pointer in a fiber slot, and where it is at hand.

#include "system/thread_slot.hpp"

#include <cstddef>
#include <cstdint>

#include "system/process.hpp"
#include "system/win32/win32.hpp"

namespace ruvo::platform {

namespace {

// A fiber slot rather than a C++ thread_local: its clean-up also runs for all threads when the library is
// unloaded, and it needs no thread start hook. A fiber slot can be set again after its clean-up, which does
// not come back; that it ran stands in a plain thread slot, whose values stay to the very end. Before and
// after the slots' life no thread has a pointer.
constinit DWORD pointers = FLS_OUT_OF_INDEXES;
constinit DWORD ended = TLS_OUT_OF_INDEXES;

// To ask for a fiber slot takes longer than to take a block. So a thread that is no fiber has its pointer in
// a plain slot, too, most of which lie at a known place behind the thread's own register. The pointer in the
// fiber slot is marked then: should the thread become a fiber and go on as one of another thread, it belongs
// to the thread that it came from.
constinit DWORD at_hand = TLS_OUT_OF_INDEXES;
constexpr std::uintptr_t is_at_hand = 1;

static_assert(offsetof(TEB, TlsSlots) == 0x1480);  // as documented, and the same in every version for x86-64
constexpr DWORD near_slots = sizeof(TEB::TlsSlots) / sizeof(void*);

void* pointer_at_hand() noexcept {
  if (at_hand < near_slots) return NtCurrentTeb()->TlsSlots[at_hand];
  return at_hand == TLS_OUT_OF_INDEXES ? nullptr : TlsGetValue(at_hand);
}

std::uintptr_t fiber_pointer() noexcept {
  return pointers == FLS_OUT_OF_INDEXES ? 0 : reinterpret_cast<std::uintptr_t>(FlsGetValue(pointers));
}

void WINAPI on_thread_end(void* value) {
  const auto marked = reinterpret_cast<std::uintptr_t>(value);
  if (marked == 0 || is_process_ending()) return;
  void* const mine = reinterpret_cast<void*>(marked & ~is_at_hand);
  const void* const own = thread_pointer();
  const bool of_other_fiber = own && own != mine;  // one that is deleted while the thread goes on
  if (ended != TLS_OUT_OF_INDEXES && !of_other_fiber) TlsSetValue(ended, &ended);
  const bool is_unloaded = pointers == FLS_OUT_OF_INDEXES;
  if (pointer_at_hand() == mine) {
    TlsSetValue(at_hand, nullptr);
  } else if ((marked & is_at_hand) && !is_unloaded) {
    return;  // another thread has it at hand, and it has to stay
  }
  release_thread_pointer(mine);
}

struct slots {
  slots() noexcept {
    ended = TlsAlloc();
    if (ended == TLS_OUT_OF_INDEXES) return;
    at_hand = TlsAlloc();
    pointers = FlsAlloc(on_thread_end);
  }
  slots(const slots&) = delete;
  slots& operator=(const slots&) = delete;
  // Where the process ends, its other threads were stopped wherever they were, also in the midst of taking a
  // block: what they have left goes with the process, and nobody looks into it.
  ~slots() {
    if (is_process_ending()) return;
    const DWORD old = pointers, old_ended = ended, old_at_hand = at_hand;
    pointers = FLS_OUT_OF_INDEXES;
    ended = TLS_OUT_OF_INDEXES;
    at_hand = TLS_OUT_OF_INDEXES;
    if (old != FLS_OUT_OF_INDEXES) FlsFree(old);
    if (old_ended != TLS_OUT_OF_INDEXES) TlsFree(old_ended);
    if (old_at_hand != TLS_OUT_OF_INDEXES) TlsFree(old_at_hand);
  }
};

const slots the_slots;

}  // namespace

void* thread_pointer() noexcept {
  if (void* const known = pointer_at_hand()) return known;
  const std::uintptr_t marked = fiber_pointer();
  return marked & is_at_hand ? nullptr : reinterpret_cast<void*>(marked);
}

bool keeps_thread_pointer() noexcept {
  return pointers != FLS_OUT_OF_INDEXES && !TlsGetValue(ended) && !(fiber_pointer() & is_at_hand);
}

bool set_thread_pointer(void* value) noexcept {
  if (pointers == FLS_OUT_OF_INDEXES) return false;
  const bool plain = at_hand != TLS_OUT_OF_INDEXES && !IsThreadAFiber();
  const auto marked = reinterpret_cast<std::uintptr_t>(value) + (plain ? is_at_hand : 0);
  if (!FlsSetValue(pointers, reinterpret_cast<void*>(marked))) return false;
  if (plain) TlsSetValue(at_hand, value);  // which can't fail for a slot that there is, or memory would do
  return true;
}

}  // namespace ruvo::platform
