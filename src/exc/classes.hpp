// SPDX-License-Identifier: BSL-1.0
#pragma once

// What the classes of errors are made with: their rows of the catalogue, and what a failure keeps beside its
// texts.

#include <ruvo/exc_table.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/fwd.hpp>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "base/numbers.hpp"

namespace ruvo::detail {

/// What only the library sees of a failure; it goes along with copies.
struct error_class {
  /// Which class the failure was made as, for raise().
  static void mark(exception& error, const error_row* row) noexcept {
    error.class_ = static_cast<std::uint32_t>(row - errors + 1);
  }
  /// The position in a text that could not be read, counted from 1; 0 for a failure without one.
  static std::uint64_t position(const exception& error) noexcept;
  /// Only for a failure that is being made, which has no copies yet.
  static void set_position(exception& error, std::uint64_t position) noexcept;
};

/// A number as text.
class decimal {
 public:
  explicit decimal(unsigned long long number) noexcept : end_(texto::print_unsigned(digits_, number)) {}
  decimal(const decimal&) = delete;
  decimal& operator=(const decimal&) = delete;
  operator std::wstring_view() const noexcept { return {digits_, static_cast<std::size_t>(end_ - digits_)}; }

 private:
  wchar_t digits_[texto::most_number_units];
  const wchar_t* end_;
};

/// The text with the arguments in place of %1, %2 and %3.
std::wstring filled(std::wstring_view text, std::initializer_list<std::wstring_view> arguments);

/// What this room asks of files, which stand above it.
const std::wstring& text_of(const file& path) noexcept;
const file& no_path();

}  // namespace ruvo::detail

/// rows::name, the row of a class.
#define KESTA_EXC_ROW(name, shape)                                                                 \
  namespace rows {                                                                                 \
  constexpr const detail::error_row* name = detail::row_of(L"" #name, detail::error_shape::shape); \
  }
