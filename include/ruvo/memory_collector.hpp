// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::memory_collector, objects that are deleted later.

#include <ruvo/api.hpp>

#include <cstddef>
#include <memory>
#include <string>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo {

/// Owns objects of any type until the thread they are kept for is collected; the rest go with the collector.
/// May be used from any thread, also by the destructors of the objects.
class KESTA_API memory_collector {
 public:
  using deleter = void (*)(void*);  ///< Releases the object it is given; must not throw.

  /// Keeps nothing.
  memory_collector();

  memory_collector(const memory_collector&) = delete;
  memory_collector& operator=(const memory_collector&) = delete;
  /// Releases all that is kept, thread by thread in the order of their ids.
  ~memory_collector();

  /// Takes over an object made by `new`; null is ignored, and so is an object that is kept already, whatever
  /// the thread. Where there is no memory to keep it, the object is deleted and std::bad_alloc thrown.
  template <class T>
  void add(unsigned long thread_id, T* object) {
    static_assert(sizeof(T) > 0, "the type must be complete, so that it can be deleted");
    add(thread_id, object, [](void* kept) { delete static_cast<T*>(kept); });
  }
  /// The same for anything that `release` can release.
  void add(unsigned long thread_id, void* object, deleter release);

  /// Deletes the objects kept for the thread, in the order in which they came; how many there were.
  std::size_t collect(unsigned long thread_id) noexcept;
  /// How many objects are kept for the thread.
  std::size_t size(unsigned long thread_id) const;

  /// A line for each thread with objects, "thread: number of objects", ended by CRLF.
  operator std::wstring() const;

 private:
  struct state;
  std::unique_ptr<state> state_;
};

}  // namespace ruvo

#include <ruvo/names_back.hpp>
