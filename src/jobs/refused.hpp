// SPDX-License-Identifier: BSL-1.0
#pragma once

// The exception of threads that cannot be joined or let go.

#include <system_error>

namespace ruvo::sync {

inline std::system_error refused(std::errc why) { return std::system_error(std::make_error_code(why)); }

}  // namespace ruvo::sync
