// SPDX-License-Identifier: BSL-1.0
#pragma once

// Numbers as every format writes them.

#include <ruvo/var.hpp>

#include "base/numbers.hpp"
#include "memory/text_sink.hpp"
#include "values/cell.hpp"
#include "values/kinds.hpp"

namespace ruvo::serializer {

using detail::text_sink;

/// What var::to_string gives for a number, without the string.
inline void put_number(text_sink& out, const var& value) {
  using detail::cell;
  using detail::family;
  const family in = detail::family_of(value);
  if (in == family::exact) return out.put(value.to_string());
  wchar_t* const to = out.room(texto::most_number_units);
  wchar_t* end = nullptr;
  if (in == family::real) {
    end = texto::print_fixed(to, cell::real(value));
    if (!end) end = texto::print_any_fixed(out.room(texto::most_fixed_units), cell::real(value));
  } else if (cell::kind_of(value) == detail::kind::uxlong) {
    end = texto::print_unsigned(to, static_cast<unsigned long long>(cell::integer(value)));
  } else {
    end = texto::print_integer(to, cell::integer(value));
  }
  out.advance(end);
}

}  // namespace ruvo::serializer
