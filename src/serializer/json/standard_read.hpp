// SPDX-License-Identifier: BSL-1.0
#pragma once

// What the reader of standard JSON does for the serializer alone.

#include <ruvo/fwd.hpp>
#include <ruvo/standard_json.hpp>

#include <string_view>

namespace ruvo::serializer {

/// read_standard_json() of an object or a list; true on FAILURE.
bool read_container(xvar& out, std::wstring_view text, exception* err, const json_read_options& options);

}  // namespace ruvo::serializer
