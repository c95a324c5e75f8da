// SPDX-License-Identifier: BSL-1.0
#pragma once

// A library that is loaded and freed while the program runs, and threads that no runtime made.

#include <cstddef>
#include <functional>
#include <string>

/// Runs the function on a thread that is the system's alone, to its very end.
void run_on_bare_thread(void (*work)());

/// Calls the function when the calling thread ends, after the library has cleared what it kept for the
/// thread. Once a thread. (With mingw's compiler, the memory of a thread_local object may be gone before its
/// destructor is called.)
void at_end_of_thread(std::function<void()> act);

/// Blocks of all heaps of the process; 0 where they can't be counted.
std::size_t heap_blocks();

/// A second instance of the library that the program itself is linked with: a copy of its file under another
/// name, in the current folder, with static objects of its own. Empty where the program holds the library in
/// itself.
class module_copy {
 public:
  /// `library` as "kesta.dll".
  explicit module_copy(const std::string& library);
  module_copy(const module_copy&) = delete;
  module_copy& operator=(const module_copy&) = delete;
  ~module_copy();  ///< Frees it and removes the copy.

  bool exists() const { return !path_.empty(); }
  bool load();
  /// Frees it; true when it is gone from the process.
  bool free();
  /// An exported function by its linker name; null when there is none.
  template <class Function>
  Function* function(const char* name) const {
    return reinterpret_cast<Function*>(find(name));
  }

 private:
  void* find(const char* name) const;

  std::string path_;
  [[maybe_unused]] void* handle_ = nullptr;
};
