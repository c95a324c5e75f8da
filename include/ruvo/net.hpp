// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::net, what the answers of all transports have in common.

#include <ruvo/api.hpp>
#include <ruvo/exception.hpp>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo::net {

/// An answer with a status. The library opens no connection: the application's transport fills the answer and
/// records a failure with set_exception().
///
/// @quirk A pointer to the status is what an answer turns into where a bool is wanted, so `if (answer)` is
/// always true: ask OK().
class KESTA_API iresponse {
 public:
  /// Raw code 0xEBB80000, message "OK".
  iresponse();
  iresponse(const iresponse& other) noexcept;
  iresponse& operator=(const iresponse& other) noexcept;
  virtual ~iresponse();

  /// OK() is true when the number of the status within its range is 0, whatever the range; WRONG() when not.
  bool OK() const noexcept { return status_.OK(); }
  bool WRONG() const noexcept { return !OK(); }

  /// Copies code and texts; of the class of `error` nothing is kept.
  void set_exception(const exception& error) noexcept;
  /// The status, for reading: valid as long as the answer.
  const exception& get_exception() const noexcept { return status_; }
  operator const exception&() const noexcept { return status_; }
  operator const exception*() const noexcept { return &status_; }
  /// Deleted, for otherwise the addresses of the statuses would be compared. The answers of the transports
  /// have comparisons of their own.
  bool operator==(const iresponse& other) const = delete;
  void operator<=>(const iresponse& other) const = delete;

  /// The status, for writing; never null, valid as long as the answer.
  exception* status_ptr() noexcept { return &status_; }

 private:
  exception status_;
};

}  // namespace ruvo::net

#include <ruvo/names_back.hpp>
