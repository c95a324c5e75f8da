// SPDX-License-Identifier: BSL-1.0

// Harmonies of three and four colours, by turns of the hue.

#include <ruvo/armonia.hpp>

namespace ruvo::armonia {

namespace {

color turned(const color& base, float degrees) { return color(base).set_hue(base.get_hue() + degrees); }

}  // namespace

trio::trio(const color& base, float distance)
    : left_(turned(base, -distance)), center_(turned(base, 0.0f)), right_(turned(base, distance)) {}

analogues::analogues(const color& base) : trio(base, 30.0f) {}
neutral::neutral(const color& base) : trio(base, 15.0f) {}
triadic::triadic(const color& base) : trio(base, 120.0f) {}

tetradic::tetradic(const color& base)
    : primary_(turned(base, 0.0f)),
      primary_complementary_(turned(base, 180.0f)),
      secondary_(turned(base, 60.0f)),
      secondary_complementary_(turned(base, 240.0f)) {}

}  // namespace ruvo::armonia
