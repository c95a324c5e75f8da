// SPDX-License-Identifier: BSL-1.0
#pragma once

// The system's functions for text, called as a program with std::string and std::wstring calls them.

#include <string>
#include <string_view>

namespace bench {

/// Each asks for the size, then converts.
std::wstring system_to_utf_16(const std::string& text);
std::string system_to_utf_8(const std::wstring& text);

/// Into a buffer that is kept, by one call: it is made as large as the result can be, and never smaller.
std::wstring_view system_to_utf_16(std::wstring& buffer, const std::string& text);
std::string_view system_to_utf_8(std::string& buffer, const std::wstring& text);

void system_to_lowercase(std::wstring& text);

}  // namespace bench
