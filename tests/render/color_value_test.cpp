#include <ruvo/ruvo.hpp>

#include <gtest/gtest.h>

namespace {

using ruvo::color;
using ruvo::var;
using ruvo::xvar;

TEST(color_value, is_held_as_a_colour) {
  const color translucent = color(10u, 20u, 300u, 0.25f).set_amount(3);
  const xvar value = translucent;
  EXPECT_TRUE(static_cast<const var&>(xvar(translucent)) == value);
  EXPECT_TRUE(value.instanceof (typeid(color)));
  EXPECT_EQ(*value.get_type(), typeid(color));
  EXPECT_EQ(value.to_string(), translucent.to_string());
  EXPECT_EQ(static_cast<std::wstring>(value), L"#0A142C3F");
  EXPECT_FALSE(value.is_primitive() || value.is_number() || value.is_charsquence() || value.is_lapse());
  EXPECT_FALSE(value.var::empty() || value.can_be_number() || value.can_be_boolean());
  EXPECT_THROW(static_cast<void>(static_cast<long>(value)), std::bad_cast);
  EXPECT_THROW(static_cast<void>(static_cast<double>(value)), std::bad_cast);
  EXPECT_THROW(static_cast<void>(static_cast<bool>(value)), std::bad_cast);
  EXPECT_THROW(static_cast<void>(static_cast<ruvo::date>(value)), std::bad_cast);
  EXPECT_EQ(static_cast<ruvo::memo>(value).to_string(), L"#0A142C3F");

  color back;
  back = value;  // all of it, which the text does not tell
  EXPECT_EQ(back.get_blue(), 300u);
  EXPECT_EQ(back.get_alpha(), 0.25f);
  EXPECT_EQ(back.get_amount(), 3u);
  EXPECT_TRUE(color(value) == translucent);
}

TEST(color_value, null_and_other_kinds) {
  color c(color::ROJO);
  c = xvar();
  EXPECT_TRUE(c == color(color::RED));
  for (const xvar& other : {xvar(L"#00FF00"), xvar(5), xvar(ruvo::memo(L"#00FF00")), xvar(ruvo::bundle())}) {
    EXPECT_THROW(c = other, std::bad_cast);
    EXPECT_THROW(color{other}, std::bad_cast);
  }
  EXPECT_TRUE(c == color(color::RED));
  EXPECT_TRUE(xvar(color(L"")).var::empty());
}

TEST(color_value, compares_by_type_and_text) {
  const xvar red = color(color::RED), same = color(255, 0, 0), blue = color(color::BLUE);
  EXPECT_TRUE(static_cast<const var&>(red) == same);
  EXPECT_FALSE(static_cast<const var&>(red) == blue);
  EXPECT_FALSE(static_cast<const var&>(red) == var(color::RED));  // a text
  EXPECT_TRUE(static_cast<const var&>(blue) < red);
}

}  // namespace
