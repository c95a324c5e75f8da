// SPDX-License-Identifier: BSL-1.0
#pragma once

// How what goes over the wire fails: by the name of what cannot be sent, or by the place in what was read.

#include <ruvo/exception.hpp>

#include <cstddef>
#include <string_view>

#include "exc/detail.hpp"

namespace ruvo::http {

/// Throws exc::BadArgument with the name, a long one cut.
[[noreturn]] void refuse(std::wstring_view name);

/// Throws exc::BadFormat with the position of what stands at the offset.
[[noreturn]] void refuse_at(std::size_t offset);

using ruvo::detail::succeeds;

/// Runs the body and copies its failure to `err`, which may be null. True is failure, as serializers have it.
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
