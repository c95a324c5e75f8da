// SPDX-License-Identifier: BSL-1.0

// A failure thrown as its own class again.

#include <ruvo/exc.hpp>
#include <ruvo/exc_table.hpp>

#include <algorithm>
#include <exception>
#include <iterator>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>

#include "exc/classes.hpp"

namespace ruvo {

namespace {

using detail::error_row;
using detail::error_shape;
using detail::errors;

/// The two bases of all, which have no rows.
constexpr std::wstring_view general = L"ruvo::exception", module = L"kesta::exception";

/// An object of the class, whatever it says.
template <class Class>
Class blank() {
  using text = std::wstring;
  if constexpr (std::is_default_constructible_v<Class>)
    return Class();
  else if constexpr (std::is_constructible_v<Class, text>)
    return Class(text());
  else if constexpr (std::is_constructible_v<Class, const file&>)
    return Class(detail::no_path());
  else if constexpr (std::is_constructible_v<Class, const std::exception*>)
    return Class(static_cast<const std::exception*>(nullptr));
  else if constexpr (std::is_constructible_v<Class, int>)
    return Class(0);
  else if constexpr (std::is_constructible_v<Class, int, int>)
    return Class(0, 0);
  else if constexpr (std::is_constructible_v<Class, text, text>)
    return Class(text(), text());
  else if constexpr (std::is_constructible_v<Class, text, int>)
    return Class(text(), 0);
  else if constexpr (std::is_constructible_v<Class, int, text>)
    return Class(0, text());
  else
    return Class(0, text(), 0);
}

template <class Class>
void raise_as(const exception& failure) {
  Class own = blank<Class>();
  static_cast<exception&>(own) = failure;
  throw own;
}

namespace classes {
using namespace exc;
using Incorrect = exception;
}  // namespace classes

using raiser = void (*)(const exception&);

/// One for each row of the catalogue.
constexpr raiser raisers[] = {
#define KESTA_ERROR(name, ...) raise_as<classes::name>,
#include <ruvo/exc_catalogue.hpp>
};

const error_row* row_of(std::wstring_view name) {
  const auto* const row = std::ranges::find(errors, name, &error_row::name);
  return row == std::end(errors) ? nullptr : row;
}

std::wstring_view base_of(std::wstring_view name) {
  const error_row* const row = row_of(name);
  return row ? row->base : general;
}

bool is_a(std::wstring_view name, std::wstring_view base) {
  while (name != base && name != general) name = base_of(name);
  return name == base;
}

/// The class that alone has the code, else what those have in common that have it.
std::wstring_view class_of(const exception& failure) {
  std::wstring_view found;
  for (const error_row& row : errors) {
    if (failure != row.code() || row.shape == error_shape::place) continue;
    if (found.empty()) found = row.name;
    while (!is_a(row.name, found)) found = base_of(found);
  }
  if (!found.empty()) return found;
  if (failure.get_raw_code() >> 16 != detail::raw_code(detail::module_facility, 0, 0) >> 16) return general;
  for (const error_row& row : errors) {
    if (row.shape == error_shape::family && row.range == failure.get_rango()) return row.name;
  }
  return module;
}

raiser raiser_of(std::wstring_view name) {
  const error_row* const row = row_of(name);
  if (row) return raisers[row - errors];
  return name == module ? raise_as<kesta::exception> : raise_as<exception>;
}

}  // namespace

void exception::raise() const {
  const raiser raise_own = class_ != 0 ? raisers[class_ - 1] : raiser_of(class_of(*this));
  try {
    raise_own(*this);
  } catch (const std::bad_alloc&) {  // no memory for an object of the class
  }
  throw exception(*this);
}

}  // namespace ruvo
