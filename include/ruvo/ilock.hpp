// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::ilock, the interface of a lock.

#include <ruvo/api.hpp>

namespace ruvo {

/// A lock as the application offers it to its parts. No class of the library implements it.
class KESTA_API ilock {
 public:
  ilock();

  ilock(const ilock&);
  ilock(ilock&&) noexcept;
  ilock& operator=(const ilock&);
  ilock& operator=(ilock&&) noexcept;

  /// Waits until it is free, and takes it.
  virtual void lock() = 0;
  /// Takes it if it is free, and never waits; false when it is held.
  [[nodiscard]] virtual bool try_lock() = 0;
  /// Gives it back.
  virtual void unlock() = 0;
  /// Whether it is held, by any thread.
  virtual bool is_locked() const = 0;

  virtual ~ilock();
};

}  // namespace ruvo
