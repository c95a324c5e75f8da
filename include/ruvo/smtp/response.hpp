// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::smtp::response, how the delivery of a message went, recipient by recipient.

#include <ruvo/api.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/fwd.hpp>
#include <ruvo/net.hpp>

#include <concepts>
#include <string>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo::smtp {

/// The transport records each recipient with push(), and a failure of the whole with set_exception().
class KESTA_API response : public net::iresponse {
 public:
  /// With the status "OK" and two empty lists.
  response();
  response(const response& other);
  ~response() override;
  response& operator=(const response& other);
  /// Takes the response that a var or xvar holds; null changes nothing, any other kind throws std::bad_cast.
  template <std::derived_from<var> V>
  response& operator=(const V& value) {
    return take(value);
  }

  /// Appends to "accepted" the bundle form of the address.
  response& push(const address& accepted);
  /// Appends to "refused" a bundle of "address" (the bundle form of the address), "code" (the raw code, an
  /// unsigned long) and "message" (that of the error).
  response& push(const address& refused, const exception& error);

  /// The lists "accepted" and "refused", both always there.
  const bundle& get_report() const noexcept { return report_; }
  /// Compares raw codes and reports.
  bool operator==(const response& other) const;
  /// The report as text.
  std::wstring to_string() const;
  /// An xvar that holds a copy of this response, status and report, and prints the report.
  operator xvar() const;

 private:
  response& take(const var& value);

  bundle report_;
};

}  // namespace ruvo::smtp

#include <ruvo/names_back.hpp>
