// SPDX-License-Identifier: BSL-1.0
#pragma once

// Failures as std::error_code, for interfaces that report by these.
//
//   std::error_code code = ruvo::make_error_code(failure);
//   if (code == std::errc::no_such_file_or_directory) use_defaults();

#include <ruvo/api.hpp>
#include <ruvo/exc_table.hpp>
#include <ruvo/exception.hpp>

#include <cstdint>
#include <string_view>
#include <system_error>

namespace ruvo {

/// The category "kesta", whose values are raw codes: message() is the text of the catalogue in UTF-8, with
/// the first class of the code where several have it, and without what stands for %1, %2 and %3. Where
/// std::errc has an error that means the same, the code is equal to that. Lives as long as the library.
KESTA_API const std::error_category& error_category() noexcept;

/// The raw code of a failure in error_category(); of a success the value 0, which is no error. Neither the
/// message nor the detail goes along.
KESTA_API std::error_code make_error_code(const exception& failure) noexcept;

/// The value in error_category() of a class, by its name in the catalogue, while the program is compiled:
/// `code.value() == ruvo::error_value(L"fileNotFound")`. An unknown name does not compile.
consteval int error_value(std::wstring_view name) {
  for (const detail::error_row& row : detail::errors)
    if (row.name == name) return static_cast<std::int32_t>(row.code());
  throw "ruvo::error_value: the catalogue has no such class";  // NOLINT: it stops the compiler
}

}  // namespace ruvo
