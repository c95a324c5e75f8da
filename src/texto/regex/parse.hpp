// SPDX-License-Identifier: BSL-1.0
#pragma once

// The first stage of the engine: from a pattern to its tree.

#include <string_view>

#include "texto/regex/ast.hpp"

namespace ruvo::texto::regex {

/// Parses without recursion. Throws std::regex_error.
ast parse(std::wstring_view pattern);

}  // namespace ruvo::texto::regex
