// SPDX-License-Identifier: BSL-1.0
#pragma once

// Numbers and identifiers through patterns of printf.

#include <initializer_list>
#include <string>
#include <string_view>

#include "system/guid.hpp"

namespace ruvo {

/// Appends numbers through a pattern in the manner of printf: "%[-0+ #][width][.digits]" with one of d i u
/// o x X c, any length modifier ignored; d and i take the number's 32 bits as signed. A conversion without a
/// number left, or of another kind, is written as it stands.
void append_pattern(std::wstring& out, std::wstring_view pattern,
                    std::initializer_list<unsigned long> numbers);

/// An identifier: its three first fields through `pattern`, then each of its bytes through `byte_pattern`.
std::wstring print_guid(const platform::guid& made, std::wstring_view pattern,
                        std::wstring_view byte_pattern);

}  // namespace ruvo
