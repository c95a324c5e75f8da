// SPDX-License-Identifier: BSL-1.0

// How what goes over the wire fails.

#include "net/failures.hpp"

#include <ruvo/exc.hpp>

#include <cstddef>
#include <string>
#include <string_view>

#include "exc/classes.hpp"

namespace ruvo::http {

void refuse(std::wstring_view name) {
  constexpr std::size_t most_shown = 80;
  throw exc::BadArgument(std::wstring(name.substr(0, most_shown)));
}

void refuse_at(std::size_t offset) {
  exc::BadFormat failure;
  ruvo::detail::error_class::set_position(failure, offset + 1);
  throw failure;
}

}  // namespace ruvo::http
