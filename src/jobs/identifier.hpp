// SPDX-License-Identifier: BSL-1.0
#pragma once

// Identifiers for tasks.

#include <string>

namespace ruvo::jobs {

/// An identifier for a task, from the calling thread's context; where that has none to give, one that is
/// unique in the process.
std::wstring new_identifier();

}  // namespace ruvo::jobs
