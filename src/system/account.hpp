// SPDX-License-Identifier: BSL-1.0
#pragma once

// Whom the process works for.

#include <string>

namespace ruvo::platform {

/// The account of the process; false when the system does not say.
bool current_account(std::wstring& user, std::wstring& domain, std::wstring& sid);

}  // namespace ruvo::platform
