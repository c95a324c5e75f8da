#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace ruvo {

/// Appends numbers through a pattern in the manner of printf: "%[-0+ #][width]" with one of d i u o x X c,
/// any length modifier ignored. A conversion without a number left, or of another kind, is written as it
/// stands.
void append_pattern(std::wstring& out, std::wstring_view pattern,
                    std::initializer_list<unsigned long> numbers);

}  // namespace ruvo
