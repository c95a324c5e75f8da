// SPDX-License-Identifier: BSL-1.0
#pragma once

// Local time by the rules of one year.

#include <ctime>

namespace ruvo::zone {

/// Every field; false when the year does not fit.
bool break_down(long long seconds, std::tm& out);
/// Fields out of their range are normalised. Of the two instants that a repeated hour names the first is
/// taken; a skipped hour is moved on by the length of the gap.
long long build(const std::tm& fields);

}  // namespace ruvo::zone
