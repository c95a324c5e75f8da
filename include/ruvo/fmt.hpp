// SPDX-License-Identifier: BSL-1.0
#pragma once

// kesta's values for {fmt} (https://fmt.dev), where a program has it; empty otherwise.
//
//   fmt::print("{:>12} {:%d/%m/%Y}\n", invoice["total"], day);
//
// Written are the types of which <ruvo/std.hpp> has a std::formatter, and in the same way, as UTF-8 to narrow
// texts: to_string(), the path of a file, the message of an exception.

#if __has_include(<fmt/format.h>)

#  include <ruvo/std.hpp>

#  include <concepts>
#  include <string_view>

#  include <fmt/format.h>
#  include <fmt/xchar.h>

#  define KESTA_FORMATTER(type)                                                                \
    template <>                                                                                \
    struct fmt::formatter<type, char>                                                          \
        : ruvo::detail::text_formatter<type, char, fmt::formatter<fmt::string_view, char>> {}; \
    template <>                                                                                \
    struct fmt::formatter<type, wchar_t>                                                       \
        : ruvo::detail::text_formatter<type, wchar_t, fmt::formatter<fmt::wstring_view, wchar_t>> {};
KESTA_FORMATTED(KESTA_FORMATTER)
#  undef KESTA_FORMATTER
template <std::derived_from<ruvo::exception> Failure>
struct fmt::formatter<Failure, char>
    : ruvo::detail::text_formatter<Failure, char, fmt::formatter<fmt::string_view, char>> {};
template <std::derived_from<ruvo::exception> Failure>
struct fmt::formatter<Failure, wchar_t>
    : ruvo::detail::text_formatter<Failure, wchar_t, fmt::formatter<fmt::wstring_view, wchar_t>> {};

#endif
