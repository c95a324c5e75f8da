#pragma once

// Numbers as text: formatting, tests of form, amounts in words.

#include <ruvo/api.hpp>

#include <string>

namespace ruvo::texto {

/// Whole text: an optional '-' and digits, as many as there are.
KESTA_API bool is_integer(const std::wstring& text);
/// Whole text: digits only.
KESTA_API bool is_integer_positive(const std::wstring& text);

}  // namespace ruvo::texto
