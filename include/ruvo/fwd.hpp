// SPDX-License-Identifier: BSL-1.0
#pragma once

// Forward declarations of the public types: enough to name them in signatures; and where vectors of values
// get their memory, which has to be known before there is one.

#include <ruvo/api.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo {

class application;
class binary;
class bundle;
class color;
class context;
class date;
class datetime;
class decimal;
class exception;
class file;
class fileCallback;
class fileFilter;
class iserializer;
class lapse;
class list;
class memo;
class time;
class var;
class xvar;

namespace http {
class request;
class response;
}  // namespace http

namespace jobs {
class job;
class pool;
}  // namespace jobs

namespace net {
class iresponse;
}  // namespace net

namespace serializer {
class ireader;
class iwriter;
class json;
}  // namespace serializer

namespace smtp {
class address;
class email;
class mailbox;
class response;
}  // namespace smtp

namespace task {
class async;
class bundle;
class call;
}  // namespace task

namespace detail {

/// Memory for vectors of values, from the same blocks as that of values. Throws std::bad_alloc.
KESTA_API void* take_room(std::size_t bytes);
KESTA_API void give_room(void* room, std::size_t bytes) noexcept;

/// An allocator of such memory; not for the type while it is incomplete.
template <class T>
class room_allocator {
 public:
  using value_type = T;
  using size_type = std::size_t;
  using difference_type = std::ptrdiff_t;
  using propagate_on_container_move_assignment = std::true_type;

  constexpr room_allocator() noexcept = default;
  template <class Other>
  constexpr room_allocator(const room_allocator<Other>&) noexcept {}

  [[nodiscard]] T* allocate(std::size_t count) {
    if (count > PTRDIFF_MAX / sizeof(T)) throw std::bad_array_new_length();
    return static_cast<T*>(take_room(count * sizeof(T)));
  }
  void deallocate(T* room, std::size_t count) noexcept { give_room(room, count * sizeof(T)); }

  template <class Other>
  friend constexpr bool operator==(const room_allocator&, const room_allocator<Other>&) noexcept {
    return true;
  }
};

}  // namespace detail

}  // namespace ruvo

/// As every std::allocator.
template <>
class std::allocator<ruvo::xvar> : public ruvo::detail::room_allocator<ruvo::xvar> {
 public:
  constexpr allocator() noexcept = default;
  template <class Other>
  constexpr allocator(const allocator<Other>&) noexcept {}

  template <class Other>
  friend constexpr bool operator==(const allocator&, const allocator<Other>&) noexcept {
    return true;
  }
};

#include <ruvo/names_back.hpp>
