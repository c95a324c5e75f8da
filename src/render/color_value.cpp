// SPDX-License-Identifier: BSL-1.0

// Colours in values.

#include <ruvo/color.hpp>

#include "values/object.hpp"

namespace ruvo {

color::operator xvar() const {
  xvar value;
  detail::set_object(value, *this);
  return value;
}

color& color::operator=(const var& value) {
  if (const color* const held = detail::object_in<color>(value)) *this = *held;
  return *this;
}

}  // namespace ruvo
