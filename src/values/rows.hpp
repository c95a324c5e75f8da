// SPDX-License-Identifier: BSL-1.0
#pragma once

// Rows of lists, as XML shows them: bundles with one member, which has the name of the row.

#include <ruvo/bundle.hpp>
#include <ruvo/xvar.hpp>

#include <string_view>

#include "values/cell.hpp"

namespace ruvo::detail {

/// The name of rows that have no other one.
inline constexpr wchar_t item_row[] = L"item";

inline bool is_row(const xvar& value, std::wstring_view name) {
  if (cell::kind_of(value) != kind::bundle) return false;
  const bundle& members = cell::as_bundle(value);
  return members.size() == 1 && members.begin()->first == name;
}

/// What a row stands for; any other value stands for itself.
inline const xvar& row_value(const xvar& value, std::wstring_view name) {
  return is_row(value, name) ? cell::as_bundle(value).begin()->second : value;
}

}  // namespace ruvo::detail
