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

  virtual void lock() = 0;
  /// False when another holds it; never waits.
  virtual bool try_lock() = 0;
  virtual void unlock() = 0;
  virtual bool is_locked() const = 0;

  virtual ~ilock();
};

}  // namespace ruvo
