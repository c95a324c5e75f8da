// SPDX-License-Identifier: BSL-1.0
#pragma once

// The fields of a calendar value, for callers that cannot go on without them.

#include <ruvo/fwd.hpp>

#include <ctime>

namespace ruvo::calendar {

/// lapse::get_model(), but for a failure, which is thrown as its own class.
std::tm fields_of(const lapse& value);

}  // namespace ruvo::calendar
