// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <string>

namespace bench {

/// A catalogue of articles with attributes, and with entities in every fifth text or so; always the same.
std::wstring xml_catalogue(std::size_t characters);
/// Rows with as many attributes as elements and little text.
std::wstring xml_rows(std::size_t characters);

}  // namespace bench
