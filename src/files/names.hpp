// SPDX-License-Identifier: BSL-1.0
#pragma once

// Names for files that do not exist yet.

#include <ruvo/file.hpp>

#include <string>

namespace ruvo::files {

/// Another name in the folder of `path`.
file sibling(const file& path, const std::wstring& name);

}  // namespace ruvo::files
