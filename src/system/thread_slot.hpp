// SPDX-License-Identifier: BSL-1.0
#pragma once

// One pointer for each thread, with a clean-up when the thread ends.

namespace ruvo::platform {

/// The calling thread's pointer; null until it is set, and after the library's own clean-up began.
void* thread_pointer() noexcept;

/// Whether a pointer that the calling thread is given will be cleaned up: there is a place for pointers, and
/// the thread's clean-up has not run. Code of the program may run after it, the destructor of a thread_local
/// of its own.
bool keeps_thread_pointer() noexcept;

/// Sets the calling thread's pointer; false when there is no place for it. The pointer is given to
/// `release_thread_pointer` when the thread ends or the library is unloaded.
bool set_thread_pointer(void* value) noexcept;

/// Called with the pointer of a thread that ends. Defined by the owner of what the pointer stands for.
void release_thread_pointer(void* value) noexcept;

}  // namespace ruvo::platform
