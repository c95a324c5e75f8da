// SPDX-License-Identifier: BSL-1.0
#pragma once

// Reading files with the system's own calls, for comparison.

#include <string>

namespace bench {

/// The whole file; empty when it cannot be read.
std::string read_with_system(const std::wstring& path);
/// Wide text from UTF-8.
std::wstring widen_with_system(const std::string& text);
/// A value of an INI file, which the system reads anew.
std::wstring setting_with_system(const std::wstring& path, const std::wstring& section,
                                 const std::wstring& key);

}  // namespace bench
