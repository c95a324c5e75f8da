// SPDX-License-Identifier: BSL-1.0
#pragma once

// Text in the system's code pages.

#include <string>
#include <string_view>

namespace ruvo::platform {

/// Conversions in a code page; an unknown page or too long a text gives an empty result.
std::wstring from_code_page(std::string_view text, unsigned int page);
std::string to_code_page(std::wstring_view text, unsigned int page);

}  // namespace ruvo::platform
