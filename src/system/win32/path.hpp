// SPDX-License-Identifier: BSL-1.0
#pragma once

// Names for the system.

#include <string>
#include <string_view>

namespace ruvo::platform {

/// The name under which the system knows a path: absolute, without "." and "..", and behind the prefix
/// "\\?\", which lifts the limit of 260 characters and takes each component as it is ("a." is not "a", "nul"
/// is a file). Empty for a path that names nothing: an empty one, or one that holds a NUL, or ":" behind its
/// drive, which would be another stream of the file before it.
std::wstring system_path(std::wstring_view path);

}  // namespace ruvo::platform
