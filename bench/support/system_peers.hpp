// SPDX-License-Identifier: BSL-1.0
#pragma once

// The system's functions for text, called as a program with std::string and std::wstring calls them.

#include <string>

namespace bench {

/// Each asks for the size, then converts.
std::wstring system_to_utf_16(const std::string& text);
std::string system_to_utf_8(const std::wstring& text);

void system_to_lowercase(std::wstring& text);

}  // namespace bench
