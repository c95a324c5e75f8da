#pragma once

// Tests for parts, masks and patterns, replacing and splitting.

#include <ruvo/api.hpp>

#include <string>

namespace ruvo::texto {

/// Whether `text` begins with, ends with or holds `part`; an empty part always does. Case-sensitive.
KESTA_API bool starts_with(const std::wstring& text, const std::wstring& part);
KESTA_API bool ends_with(const std::wstring& text, const std::wstring& part);
KESTA_API bool contains(const std::wstring& text, const std::wstring& part);

}  // namespace ruvo::texto
