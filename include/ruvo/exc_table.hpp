// SPDX-License-Identifier: BSL-1.0
#pragma once

// The catalogue of errors as a table, for what shows errors rather than catches them.

#include <cstdint>
#include <string_view>

namespace ruvo::detail {

/// What the objects of a class are made with, and so what stands for %1, %2 and %3 in its text.
enum class error_shape : std::uint8_t {
  plain,    ///< Nothing.
  path,     ///< A file: %1 is its path.
  named,    ///< A name: %1.
  knot,     ///< A position, %1, and a number of open nodes, %2.
  message,  ///< The message, which stands in the text behind the name of the class.
  windows,  ///< The same, and the number of a Windows error, %2, whose text is %3.
  family,   ///< A number of its range and a message: the base of the errors of that range.
  own,      ///< Something else.
  place     ///< A code for which there is no class: another one is thrown with it, at one place.
};

/// Of the general errors, and of those of the library's modules.
inline constexpr unsigned long general_facility = 3000, module_facility = 3001;

/// As an HRESULT: severity 3, the customer bit, the facility. The parts are not checked.
constexpr std::uint32_t raw_code(unsigned long facility, unsigned long range, unsigned long number) noexcept {
  return static_cast<std::uint32_t>(0xE0000000 | facility << 16 | ((range * 1000 + number) & 0xFFFF));
}

struct error_row {
  std::wstring_view name, base;  ///< As they are written in namespace ruvo::exc.
  unsigned long range, number;
  error_shape shape;
  std::wstring_view text;

  constexpr bool is_general() const noexcept { return base == L"ruvo::exception"; }
  constexpr std::uint32_t code() const noexcept {
    return raw_code(is_general() ? general_facility : module_facility, range, number);
  }
};

/// All rows, in the order of their codes.
inline constexpr error_row errors[] = {
#define KESTA_ERROR(name, base, range, number, shape, text) \
  {L"" #name, L"" #base, range, number, error_shape::shape, text},
#include <ruvo/exc_catalogue.hpp>
};

/// The first row of the class that has the shape.
consteval const error_row* row_of(std::wstring_view name, error_shape shape) {
  const error_row* row = errors;
  while (row->name != name || row->shape != shape) ++row;  // beyond the last one the compiler stops
  return row;
}

}  // namespace ruvo::detail
