// SPDX-License-Identifier: BSL-1.0
#pragma once

// What holds for every class of values that an xvar can hold.

#include <ruvo/ruvo.hpp>

#include <type_traits>
#include <typeinfo>

#include <gtest/gtest.h>

/// An xvar holds the value as one of its class, inside of containers too. Null leaves a value as it is, and
/// any other kind is refused. `shown` gives all of a value as text.
template <class Value, class Shown>
void expect_held(const Value& value, Shown shown) {
  const ruvo::xvar held = value;
  EXPECT_TRUE(held.instanceof (typeid(Value)));
  EXPECT_EQ(held.to_string(), value.to_string());
  ruvo::bundle document;
  document[L"k"] = ruvo::list{held};
  Value back;
  back = ruvo::bundle(document).get_list(L"k")[0];
  EXPECT_EQ(shown(back), shown(value));
  back = ruvo::xvar();
  for (const ruvo::xvar& other : {ruvo::xvar(L"#00FF00"), ruvo::xvar(5), ruvo::xvar(ruvo::memo(L"x")),
                                  ruvo::xvar(document), ruvo::xvar(ruvo::date())}) {
    EXPECT_THROW(back = other, std::bad_cast);
    if constexpr (std::is_constructible_v<Value, const ruvo::xvar&>) {
      EXPECT_THROW(Value{other}, std::bad_cast);
    }
  }
  EXPECT_EQ(shown(back), shown(value));
}
