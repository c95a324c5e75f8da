// SPDX-License-Identifier: BSL-1.0

// Colours against the conversions once more: ways in, harmonies, steps, values and names.

#include <ruvo/ruvo.hpp>

#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/dice.hpp"
#include "support/held.hpp"

namespace {

using ruvo::color;
using ruvo::var;
using ruvo::xvar;
namespace armonia = ruvo::armonia;

// --- the conversions once more, around a table of the six sectors of the hue

struct rgb {
  unsigned channel[3];
  bool operator==(const rgb&) const = default;
};
struct hsl {
  float hue, saturation, luminosity;
};

constexpr struct {
  int full, part, none;  // channels: 0 red, 1 green, 2 blue
} sectors[] = {{0, 1, 2}, {1, 0, 2}, {1, 2, 0}, {2, 1, 0}, {2, 0, 1}, {0, 2, 1}};

rgb to_rgb(hsl in) {
  const float chroma = in.saturation * (1.0f - std::abs(in.luminosity * 2.0f - 1.0f));
  float within = in.hue / 60.0f;  // 0 to 2: up in even sectors, down in odd ones
  const auto sector = static_cast<std::size_t>(within);
  while (within >= 2.0f) within -= 2.0f;
  const float part = chroma * (1.0f - std::abs(within - 1.0f)), base = in.luminosity - 0.5f * chroma;
  const auto finish = [base](float value) {
    const float scaled = (value + base) * 255.0f;
    return scaled <= 0 ? 0u : scaled >= 255 ? 255u : static_cast<unsigned>(std::trunc(scaled));
  };
  rgb out{};
  out.channel[sectors[sector].full] = finish(chroma);
  out.channel[sectors[sector].part] = finish(part);
  out.channel[sectors[sector].none] = finish(0.0f);
  return out;
}

hsl to_hsl(rgb in) {
  float part[3];
  for (int n = 0; n < 3; ++n) part[n] = static_cast<float>(in.channel[n]) / 255.0f;
  int top = 0;
  float low = part[0];
  for (int n = 1; n < 3; ++n) {
    if (part[n] > part[top]) top = n;
    if (part[n] < low) low = part[n];
  }
  const float spread = part[top] - low, sum = part[top] + low, half = sum * 0.5f;
  if (in.channel[0] == in.channel[1] && in.channel[1] == in.channel[2]) return {0, 0, half};
  float hue = ((part[(top + 1) % 3] - part[(top + 2) % 3]) / spread + static_cast<float>(2 * top)) * 60.0f;
  if (hue < 0) hue = hue + 360.0f;
  return {hue, spread / (half > 0.5f ? 2.0f - part[top] - low : sum), half};
}

rgb channels(const color& c) { return {{c.get_red(), c.get_green(), c.get_blue()}}; }
hsl hsl_of(const color& c) { return {c.get_hue(), c.get_saturation(), c.get_luminosity()}; }

std::wstring text_of(rgb in, const char* tail = "") {
  char text[16];
  std::snprintf(text, sizeof text, "#%02X%02X%02X%s", in.channel[0], in.channel[1], in.channel[2], tail);
  return std::wstring(text, text + std::char_traits<char>::length(text));
}

/// Whether all forms of an opaque colour agree with its components.
void expect_opaque(const color& c, rgb components, hsl forms) {
  const std::wstring name = text_of(components);
  const std::string shown(name.begin(), name.end());
  EXPECT_EQ(c.to_string(), name);
  EXPECT_EQ(channels(c), components) << shown;
  EXPECT_EQ(c.get_alpha(), 1.0f) << shown;
  EXPECT_EQ(c.get_hue(), forms.hue) << shown;
  EXPECT_EQ(c.get_saturation(), forms.saturation) << shown;
  EXPECT_EQ(c.get_luminosity(), forms.luminosity) << shown;
}

void expect_from_hsl(const color& c, hsl forms) {
  if (forms.hue >= 360) forms.hue -= 360;
  if (forms.hue < 0) forms.hue += 360;
  if (forms.hue == 360) forms.hue = 0;  // the sum was rounded up
  expect_opaque(c, to_rgb(forms), forms);
}

template <class Use>
void for_each_rgb(unsigned step, Use use) {
  for (unsigned r = 0; r <= 255; r += step) {
    for (unsigned g = 0; g <= 255; g += step)
      for (unsigned b = 0; b <= 255; b += step) use(rgb{{r, g, b}});
  }
}

// --- sweeps

TEST(color, every_way_in_gives_the_same_forms) {
  for_each_rgb(15, [](rgb in) {
    const auto [r, g, b] = in.channel;
    const hsl forms = to_hsl(in);
    const std::wstring text = text_of(in);
    expect_opaque(color(static_cast<int>(r), static_cast<int>(g), static_cast<int>(b)), in, forms);
    expect_opaque(color(text), in, forms);
    expect_opaque(color(std::string(text.begin(), text.end())), in, forms);
    expect_opaque(color(ruvo::RGBAColor(r, g, b, 1.0f)), in, forms);
    color packed;
    packed = r << 24 | g << 16 | b << 8 | 255u;
    expect_opaque(packed, in, forms);
    EXPECT_EQ(static_cast<unsigned>(packed), r << 24 | g << 16 | b << 8 | 1u);
    expect_opaque(color(color::ORO).set_blue(b).set_red(r).set_green(g), in, forms);
  });
}

TEST(color, derived_colours_and_harmonies) {
  for_each_rgb(17, [](rgb in) {
    const color c(in.channel[0], in.channel[1], in.channel[2], 0.5f);
    const auto [h, s, l] = to_hsl(in);
    const auto turned = [h = h, s = s, l = l](float degrees) { return hsl{h + degrees, s, l}; };
    expect_from_hsl(c.get_complementary(), turned(180));
    expect_from_hsl(c.get_dull(), {h, 0, l});
    expect_from_hsl(c.get_intense(), {h, 1, l});
    const hsl contrast{h, s, l > 0.5f ? 0.05f : 0.95f};
    expect_from_hsl(c.get_suggested_forecolor(), contrast);
    expect_from_hsl(c.get_suggested_backgroundcolor(), contrast);

    const auto expect_trio = [&turned](const auto& three, float degrees) {
      expect_from_hsl(three.get_left(), turned(-degrees));
      expect_from_hsl(three.get_center(), turned(0));
      expect_from_hsl(three.get_right(), turned(degrees));
    };
    expect_trio(armonia::analogues(c), 30);
    expect_trio(armonia::neutral(c), 15);
    expect_trio(armonia::triadic(c), 120);
    const armonia::tetradic four(c);
    expect_from_hsl(four.get_primary(), turned(0));
    expect_from_hsl(four.get_primary_complementary(), turned(180));
    expect_from_hsl(four.get_secondary(), turned(60));
    expect_from_hsl(four.get_secondary_complementary(), turned(240));
  });
}

TEST(color, every_hue) {
  for (int tenth = -7200; tenth <= 7200; ++tenth) {
    const float degrees = static_cast<float>(tenth) / 10.0f;
    hsl in{static_cast<float>(std::fmod(degrees, 360.0f)), 0.75f, 0.4f};
    if (in.hue < 0) in.hue += 360.0f;
    expect_from_hsl(color(degrees, 0.75f, 0.4f), in);
    color turned = color(0.0f, 0.75f, 0.4f) += degrees;
    expect_from_hsl(turned, in);
  }
}

TEST(color, saturation_and_luminosity) {
  for (float s = 0; s <= 1; s += 0.0625f) {
    for (float l = 0; l <= 1; l += 0.03125f) {
      for (float h = 0; h < 360; h += 7.5f) {
        expect_from_hsl(color(ruvo::HSLColor(h, s, l)), {h, s, l});
        expect_from_hsl(color().set_hue(h).set_saturation(s).set_luminosity(l), {h, s, l});
      }
    }
  }
}

// Complementary colours that come out otherwise when a step is computed in 64 bits; from another program.
TEST(color, arithmetic_of_32_bits) {
  const struct {
    const std::wstring& html;
    rgb complementary;
  } rows[] = {{color::GOLD, {{0, 40, 255}}},
              {color::ORANGE, {{0, 89, 255}}},
              {color::TURQUOISE, {{223, 64, 80}}},
              {color::INDIGO, {{54, 130, 0}}},
              {color::PURPLEREBECCA, {{102, 153, 50}}},
              {color::PINK, {{191, 255, 243}}},
              {color::SALMON, {{114, 236, 250}}},
              {color::MALDREK_PRIMARY, {{194, 97, 28}}},
              {color::MALDREK_ACCENT, {{203, 50, 28}}},
              {color::MALDREK_FONT_ACCENT, {{133, 31, 18}}}};
  for (const auto& row : rows) EXPECT_EQ(channels(color(row.html).get_complementary()), row.complementary);
}

// --- texts, packed numbers, alpha

TEST(color, texts) {
  const color red(L"#80FF0000");
  EXPECT_EQ(channels(red), (rgb{{255, 0, 0}}));
  EXPECT_EQ(red.get_alpha(), 128 / 255.0f);
  EXPECT_EQ(red.get_integer_alpha(), 128u);
  EXPECT_EQ(red.to_string(), L"#80FF0000");

  const color lower(L"#a0b0c0");
  EXPECT_EQ(lower.to_string(), L"#A0B0C0");
  EXPECT_FALSE(lower == color(0xA0, 0xB0, 0xC0));  // the stored texts differ
  EXPECT_TRUE(color(0xA0, 0xB0, 0xC0) < lower);
  EXPECT_TRUE(color(color::TURQUESA) == color(color::TEAL));
  EXPECT_EQ(color(L"#10203040").set_color(L"#102030").get_alpha(), 1.0f);
  std::wostringstream out;
  out << lower << std::wstring(color(1, 2, 3));
  EXPECT_EQ(out.str(), L"#A0B0C0#010203");
}

TEST(color, bad_texts_are_stored_and_change_nothing_else) {
  std::vector<std::wstring> bad = pieces(
      L"# #FFF FF0000 FF00000 #GG0000 #12345 #1234567 #-12345 #0x1234 ROJO #１２３４５６ #12345\xD83D "
      L"\uFEFF#12345");
  for (const std::wstring& other : {std::wstring(), std::wstring(L"#12 456"), std::wstring(L"#12345678 "),
                                    std::wstring(7, L'\0'), std::wstring(1000000, L'#')})
    bad.push_back(other);
  for (const std::wstring& text : bad) {
    color c = color(10u, 20u, 30u, 0.5f).set_amount(7);
    const hsl before = hsl_of(c);
    c = text;
    EXPECT_EQ(channels(c), (rgb{{10, 20, 30}}));
    EXPECT_EQ(c.get_alpha(), 0.5f);
    EXPECT_EQ(c.get_hue(), before.hue);
    EXPECT_EQ(c.get_amount(), 7u);
    EXPECT_EQ(c.to_string().size(), text.size());
    EXPECT_TRUE(c == color(text));
  }
  EXPECT_EQ(color(static_cast<const char*>(nullptr)).to_string(), L"");
  EXPECT_EQ(color("#12345\xC3").to_string(), L"#12345\uFFFD");  // seven characters
  EXPECT_EQ(color(L"azul añil").to_string(), L"AZUL AÑIL");
}

TEST(color, alpha_and_packed_numbers) {
  EXPECT_EQ(static_cast<unsigned>(color(255, 0, 0, 0.5f)), 0xFF000000u);
  EXPECT_EQ(static_cast<unsigned>(color(color::RED)), 0xFF000001u);
  color packed;
  packed = 0x11223380;
  EXPECT_EQ(packed.to_string(), L"#11223380");
  EXPECT_EQ(packed.get_alpha(), 128 / 255.0f);
  for (unsigned alpha = 0; alpha <= 255; ++alpha) {
    char digits[4];
    const float exact = static_cast<float>(alpha) / 255.0f;
    const color c = color(1u, 2u, 3u, 1.0f).set_integer_alpha(alpha);
    EXPECT_EQ(c.get_alpha(), exact);
    EXPECT_EQ(c.get_integer_alpha(), static_cast<unsigned>(exact * 255.0f));
    EXPECT_TRUE(c == color(1, 2, 3, alpha) && c == color(1, 2, 3, exact));
    std::snprintf(digits, sizeof digits, "%02X", c.get_integer_alpha());
    EXPECT_EQ(c.to_string(), text_of({{1, 2, 3}}, alpha < 255 ? digits : ""));
    EXPECT_EQ(color(c).set_luminosity(0.5f).get_alpha(), 1.0f);
  }
}

// --- the questions and steps

TEST(color, default_colour) {
  const color c;
  expect_opaque(c, {{255, 255, 255}}, {0, 0, 1});
  EXPECT_EQ(c.get_amount(), 10u);
  EXPECT_TRUE(color(color::ROJO).calculate_gradient(color(color::AZUL), 0.5f) == c);
}

TEST(color, dark_medium_light) {
  const struct {
    float luminosity;
    bool dark, medium, light;
  } rows[] = {{0.0f, true, false, false}, {std::nextafter(0.4f, 0.0f), true, false, false},
              {0.4f, false, true, false}, {0.6f, false, true, false},
              {1.0f, false, false, true}, {std::nextafter(0.6f, 1.0f), false, false, true}};
  for (const auto& row : rows) {
    const color c(0.0f, 0.0f, row.luminosity);
    EXPECT_EQ(c.is_dark(), row.dark) << row.luminosity;
    EXPECT_EQ(c.is_medium(), row.medium) << row.luminosity;
    EXPECT_EQ(c.is_light(), row.light) << row.luminosity;
  }
}

TEST(color, steps) {
  for (const float luminosity : {-2.0f, 0.0f, 0.05f, 0.1f, 0.5f, 0.95f, 1.0f}) {
    for (const unsigned amount : {0u, 1u, 10u, 99u, 100u, 101u, 4294967295u}) {
      const color start = color(200.0f, 0.5f, luminosity).set_amount(amount);
      const float step = static_cast<float>(amount) / 100.0f;
      const float darker = luminosity > step ? luminosity - step : 0.0f;
      const float limited = luminosity + (amount < 100 ? step : 1.0f),
                  lighter = limited < 1.0f ? limited : 1.0f;
      color c = start;
      EXPECT_TRUE(c++ == start);
      expect_from_hsl(c, {200, 0.5f, darker});
      expect_from_hsl(++color(start), {200, 0.5f, darker});
      expect_from_hsl(color(start) += amount, {200, 0.5f, darker});
      c = start;
      EXPECT_TRUE(c-- == start);
      expect_from_hsl(c, {200, 0.5f, lighter});
      expect_from_hsl(--color(start), {200, 0.5f, lighter});
      expect_from_hsl(color(start) -= amount, {200, 0.5f, lighter});
      EXPECT_EQ(c.get_amount(), amount);
    }
  }
  expect_from_hsl(color(200.0f, 0.5f, 0.5f) += 10, {200, 0.5f, 0.5f - 0.1f});  // an int is an amount
  expect_from_hsl(color(200.0f, 0.5f, 0.5f) -= 210.0, {350, 0.5f, 0.5f});      // a double is an angle
}

TEST(color, sums_and_differences) {
  color c(200u, 100u, 0u, 0.25f);
  c += color(100, 100, 0);
  expect_opaque(c, {{255, 200, 0}}, to_hsl({{255, 200, 0}}));
  c -= color(255u, 250u, 1u, 0.25f);
  EXPECT_EQ(channels(c), (rgb{{0, 0u - 50, 0u - 1}}));
  EXPECT_EQ(c.to_string(), L"#00CEFF");  // the low eight bits
  EXPECT_EQ(c.get_hue(), to_hsl({{0, 0xCE, 0xFF}}).hue);
  c += color(1, 1, 1);  // what wrapped is beyond the limit
  EXPECT_EQ(channels(c), (rgb{{1, 255, 255}}));
}

TEST(color, any_number_is_taken) {
  constexpr float inf = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();
  std::mt19937 random(20);
  std::vector<float> odd = {inf,    -inf,    nan,      -0.0f, 1e-30f, -1e-30f,   1e30f,
                            -1e30f, 3.4e38f, -3.4e38f, 2.0f,  -1.0f,  359.99999f};
  for (int n = 0; n < 20; ++n) odd.push_back(std::uniform_real_distribution<float>(-1000, 1000)(random));
  for (const float a : odd) {
    for (const float b : odd) {
      for (const float c : odd) {
        const color made(a, b, c);
        EXPECT_TRUE(made.get_hue() >= 0 && made.get_hue() < 360) << a;
        EXPECT_LE(made.get_red() | made.get_green() | made.get_blue(), 255u);
        EXPECT_TRUE(std::isnan(b) || made.get_saturation() == b);
        EXPECT_EQ(made.to_string(), text_of(channels(made)));
      }
    }
    const color translucent(300u, 0u, 0u, a);
    EXPECT_EQ(translucent.get_red(), 300u);
    EXPECT_EQ(translucent.get_luminosity(), color(44, 0, 0).get_luminosity());
    EXPECT_EQ(translucent.to_string().size(), a < 1.0f ? 9u : 7u) << a;
    EXPECT_TRUE(a > 0 || translucent.get_integer_alpha() == 0) << a;
  }
  EXPECT_EQ(color(0u, 0u, 0u, 2.0f).get_integer_alpha(), 510u);
  EXPECT_EQ(color(0u, 0u, 0u, -1.0f).to_string(), L"#00000000");
}

// --- colours in values

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

  expect_held(translucent, [](const color& c) {  // all of it, which the text does not say
    std::wostringstream out;
    out << c << L' ' << c.get_blue() << L' ' << c.get_alpha() << L' ' << c.get_amount();
    return out.str();
  });
  EXPECT_TRUE(xvar(color(L"")).var::empty());
}

TEST(color_value, compares_by_type_and_text) {
  const xvar red = color(color::RED), same = color(255, 0, 0), blue = color(color::BLUE);
  EXPECT_TRUE(static_cast<const var&>(red) == same);
  EXPECT_FALSE(static_cast<const var&>(red) == blue);
  EXPECT_FALSE(static_cast<const var&>(red) == var(color::RED));  // a text
  EXPECT_TRUE(static_cast<const var&>(blue) < red);
}

// --- names

TEST(color, names) {
  const struct {
    const wchar_t* value;
    std::vector<const std::wstring*> names;
  } rows[] = {{L"#FF0000", {&color::RED, &color::ROJO}},
              {L"#0000FF", {&color::BLUE, &color::AZUL}},
              {L"#00FF00", {&color::GREEN, &color::VERDE, &color::LIME, &color::LIMA}},
              {L"#FFFFFF", {&color::WHITE, &color::BLANCO}},
              {L"#000000", {&color::BLACK, &color::NEGRO}},
              {L"#FFFF00", {&color::YELLOW, &color::AMARILLO}},
              {L"#FF00FF", {&color::MAGENTA, &color::FUCHSIA, &color::FUCSIA}},
              {L"#00FFFF", {&color::CYAN, &color::CIAN, &color::AQUA}},
              {L"#C0C0C0", {&color::SILVER}},
              {L"#808080", {&color::GRAY}},
              {L"#00000000", {&color::TRANS}},
              {L"#FFD700", {&color::GOLD, &color::ORO}},
              {L"#FFA500", {&color::ORANGE, &color::NARANJA}},
              {L"#800000", {&color::MAROON, &color::BURDEOS}},
              {L"#800080", {&color::PURPLE, &color::PURPURA}},
              {L"#808000", {&color::OLIVE, &color::OLIVA}},
              {L"#008080", {&color::TEAL, &color::TURQUESA}},
              {L"#40E0D0", {&color::TURQUOISE}},
              {L"#000080", {&color::NAVY, &color::AZULMARINO}},
              {L"#4B0082", {&color::INDIGO}},
              {L"#663399", {&color::PURPLEREBECCA, &color::PURPURAREBECA}},
              {L"#FFC0CB", {&color::PINK, &color::ROSA}},
              {L"#6E4B35", {&color::MOCHA, &color::MOCA}},
              {L"#FA8072", {&color::SALMON}},
              {L"#E6E6FA", {&color::LAVENDER, &color::LAVANDA}},
              {L"#8C3A3A", {&color::BRICK, &color::LADRILLO}},
              {L"#1D7EC2", {&color::MALDREK_PRIMARY}},
              {L"#15A3DE", {&color::MALDREK_SECONDARY}},
              {L"#1DB6CB", {&color::MALDREK_ACCENT}},
              {L"#135780", {&color::MALDREK_DARK}},
              {L"#135685", {&color::MALDREK_FONT_PRIMARY}},
              {L"#0D668B", {&color::MALDREK_FONT_SECONDARY}},
              {L"#137885", {&color::MALDREK_FONT_ACCENT}},
              {L"#0D3C58", {&color::MALDREK_FONT_DARK}}};
  for (const auto& row : rows)
    for (const std::wstring* name : row.names) EXPECT_EQ(*name, row.value);
  EXPECT_EQ(color(color::TRANS).get_alpha(), color::TRASPARENTE);
  EXPECT_EQ(color(color::MAX_SCALE, color::MIN_SCALE, 0u, color::INT_OPAQUE).to_string(), L"#FF0000");
  EXPECT_EQ(color(0u, 0u, 0u, color::INT_TRASPARENT).get_alpha() + color::OPACO, 1.0f);
}

}  // namespace
