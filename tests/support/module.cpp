// SPDX-License-Identifier: BSL-1.0
#include "support/module.hpp"

#include <functional>
#include <memory>
#include <utility>

#ifdef _WIN32

#  ifndef NOMINMAX
#    define NOMINMAX
#  endif
#  include <windows.h>

module_copy::module_copy(const std::string& library) {
  const HMODULE original = GetModuleHandleA(library.c_str());
  char path[4096];
  const DWORD length = original ? GetModuleFileNameA(original, path, sizeof path) : 0;
  if (!length || length >= sizeof path) return;
  const std::string copy = "copy_of_" + library;
  if (CopyFileA(path, copy.c_str(), FALSE)) path_ = copy;
}

module_copy::~module_copy() {
  if (handle_) FreeLibrary(static_cast<HMODULE>(handle_));
  if (exists()) DeleteFileA(path_.c_str());
}

bool module_copy::load() {
  handle_ = LoadLibraryA((".\\" + path_).c_str());
  return handle_ != nullptr;
}

bool module_copy::free() {
  const bool freed = FreeLibrary(static_cast<HMODULE>(handle_)) != 0;
  handle_ = nullptr;
  return freed && !GetModuleHandleA(path_.c_str());
}

void* module_copy::find(const char* name) const {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

void run_on_bare_thread(void (*work)()) {
  const auto start = [](void* function) -> DWORD {
    reinterpret_cast<void (*)()>(function)();
    return 0;
  };
  const HANDLE thread = CreateThread(nullptr, 0, start, reinterpret_cast<void*>(work), 0, nullptr);
  WaitForSingleObject(thread, INFINITE);
  CloseHandle(thread);
}

void at_end_of_thread(std::function<void()> act) {
  using held = std::function<void()>;
  // The slots are cleared in the order in which they were made.
  static const DWORD slot =
      FlsAlloc([](void* value) { (*std::unique_ptr<held>(static_cast<held*>(value)))(); });
  FlsSetValue(slot, new held(std::move(act)));
}

std::size_t heap_blocks() {
  HANDLE heaps[64];
  const DWORD all = GetProcessHeaps(64, heaps);
  std::size_t count = 0;
  for (DWORD n = 0; n < all && n < 64; ++n) {
    PROCESS_HEAP_ENTRY each{};
    HeapLock(heaps[n]);
    while (HeapWalk(heaps[n], &each)) count += (each.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0;
    HeapUnlock(heaps[n]);
  }
  return count;
}

#else

#  include <thread>

void run_on_bare_thread(void (*work)()) { std::thread(work).join(); }
void at_end_of_thread(std::function<void()> act) {
  struct caller {
    std::function<void()> act;
    ~caller() { act(); }
  };
  thread_local const caller kept{std::move(act)};
}
std::size_t heap_blocks() { return 0; }

module_copy::module_copy(const std::string&) {}
module_copy::~module_copy() = default;
bool module_copy::load() { return false; }
bool module_copy::free() { return false; }
void* module_copy::find(const char*) const { return nullptr; }

#endif
