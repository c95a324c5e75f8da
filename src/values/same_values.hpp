// SPDX-License-Identifier: BSL-1.0
#pragma once

// Whether two values are the same, exactly: var::operator== takes decimals for equal that print alike.

#include <ruvo/xvar.hpp>

namespace ruvo::detail {

/// Whether values and qualities are the same. Integers are by their number, whatever their kind; other values
/// have to be of one kind. Takes no stack for what is nested.
bool are_same(const xvar& a, const xvar& b);
/// Of the qualities alone.
bool have_same_qualities(const xvar& a, const xvar& b);

}  // namespace ruvo::detail
