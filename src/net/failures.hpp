// SPDX-License-Identifier: BSL-1.0
#pragma once

// How what goes over the wire fails: by the name of what cannot be sent, or by the place in what was read.

#include <ruvo/exception.hpp>

#include <cstddef>
#include <string_view>

namespace ruvo::http {

/// Throws exc::BadArgument with the name, a long one cut.
[[noreturn]] void refuse(std::wstring_view name);

/// Throws exc::BadFormat with the position of what stands at the offset.
[[noreturn]] void refuse_at(std::size_t offset);

/// Runs the body and copies its failure to `err`; true is success.
template <class Body>
bool succeeds(exception& err, const Body& body) {
  try {
    body();
    return true;
  } catch (const exception& failure) {
    failure.copy_on(&err);
    return false;
  }
}

/// The same with the sense of serializers: true is failure. `err` may be null.
template <class Body>
bool fails(exception* err, const Body& body) {
  try {
    body();
    return false;
  } catch (const exception& failure) {
    failure.copy_on(err);
    return true;
  }
}

}  // namespace ruvo::http
