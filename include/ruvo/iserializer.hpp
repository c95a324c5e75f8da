// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::iserializer, the two operations that every text format of the library offers. The formats themselves
// are in <ruvo/serializer.hpp>.

#include <ruvo/api.hpp>
#include <ruvo/fwd.hpp>

#include <string>

namespace ruvo {

/// Turns bundles into text and text into bundles. Both operations return true on FAILURE; the failure is then
/// copied into `*err` unless `err` is null. On success `*err` stays as it is. What `options` means is the
/// format's matter.
/// @quirk True is failure, as in lapse::add() and lapse::set(), while most of the library gives true for
/// success.
class KESTA_API iserializer {
 public:
  /// Replaces `out` by the text of `in`.
  virtual bool serialize(std::wstring& out, const bundle& in, exception* err = nullptr, int options = 0) = 0;
  /// Adds what `in` says to `out`. The formats of the library take any text for `in`, a part of `out` too,
  /// which they copy.
  virtual bool deserialize(bundle& out, const std::wstring& in, exception* err, int options = 0) = 0;
  /// The same where the result alone reports a failure.
  [[nodiscard]] bool deserialize(bundle& out, const std::wstring& in) {
    return deserialize(out, in, nullptr);
  }
  virtual ~iserializer();

 protected:
  /// Copies and moves carry nothing over.
  iserializer() noexcept;
  iserializer(const iserializer&) noexcept;
  iserializer& operator=(const iserializer&) noexcept;
};

}  // namespace ruvo
