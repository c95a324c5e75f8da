// SPDX-License-Identifier: BSL-1.0
#pragma once

// A stack that needs no memory elsewhere while it is low.

#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>

#include "memory/block_cache.hpp"

namespace ruvo::detail {

/// The first `Near` items lie inside it; more of them move into blocks of the thread.
template <class T, std::size_t Near>
class near_stack {
  static_assert(std::is_nothrow_default_constructible_v<T> && std::is_nothrow_move_constructible_v<T>);

 public:
  near_stack() noexcept : first_(inside()), end_(first_), limit_(first_ + Near) {}
  near_stack(const near_stack&) = delete;
  near_stack& operator=(const near_stack&) = delete;
  ~near_stack() {
    clear();
    give_room();
  }

  bool empty() const noexcept { return end_ == first_; }
  T& top() noexcept { return end_[-1]; }
  T* begin() noexcept { return first_; }
  T* end() noexcept { return end_; }
  const T* begin() const noexcept { return first_; }
  const T* end() const noexcept { return end_; }
  /// A new item; references to the others do not last.
  T& push() {
    if (end_ == limit_) [[unlikely]]
      grow();
    return *new (end_++) T();
  }
  void pop() noexcept { std::destroy_at(--end_); }
  void clear() noexcept {
    while (!empty()) pop();
  }

 private:
  T* inside() noexcept { return reinterpret_cast<T*>(items_); }
  std::size_t bytes() const noexcept { return static_cast<std::size_t>(limit_ - first_) * sizeof(T); }

  void grow() {
    auto* const wider = static_cast<T*>(take_block(2 * bytes()));
    T* const end = std::uninitialized_move(first_, end_, wider);
    T* const limit = wider + 2 * (limit_ - first_);
    clear();
    give_room();
    first_ = wider;
    end_ = end;
    limit_ = limit;
  }
  void give_room() noexcept {
    if (first_ != inside()) give_block(first_, bytes());
  }

  T *first_, *end_, *limit_;
  alignas(T) std::byte items_[Near * sizeof(T)];
};

}  // namespace ruvo::detail
