// SPDX-License-Identifier: BSL-1.0
#pragma once

// Which application serves which thread.

#include <ruvo/application.hpp>

namespace ruvo::registry {

/// The application of the calling thread, or null. Takes no lock but where hundreds of threads are
/// registered.
application* find() noexcept;

/// False when the thread was checked in already.
bool add(unsigned long thread, application& app);
/// False when it was not.
bool remove(unsigned long thread) noexcept;
/// Removes every thread of an application, also those that it was lent to, and voids its loans.
void remove_all(const application& app) noexcept;

/// Makes loans of the application possible, and impossible; which also removes its threads.
void enroll(const application& app);
void strike(const application& app) noexcept;

/// An application as work remembers it that runs on another thread, later. It may be gone by then, and
/// another one may stand in its place: the number shows that.
struct loan {
  application* app = nullptr;
  unsigned long long number = 0;
};

/// The calling thread's application, to be lent to another thread until it is shut down.
loan current_loan() noexcept;

/// Lends an application to the calling thread, in place of what was lent to it before. A thread that is
/// checked in does not notice; one that is not works with the application as if it were, and may be checked
/// in meanwhile. Without memory nothing is lent.
class borrowed {
 public:
  explicit borrowed(const loan& of) noexcept;
  borrowed(const borrowed&) = delete;
  borrowed& operator=(const borrowed&) = delete;
  ~borrowed();

 private:
  loan before_;
};

}  // namespace ruvo::registry
