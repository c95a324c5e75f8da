// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::armonia, colours that go together: each harmony turns the hue of a base colour and keeps its
// saturation and luminosity. All members are computed through HSL, the base colour too, so they are opaque.

#include <ruvo/color.hpp>

namespace ruvo::armonia {

/// A base colour between two neighbours, equally far in hue. Saturation and luminosity are those of the base;
/// all three are opaque.
class KESTA_API trio {
 public:
  const color& get_left() const noexcept { return left_; }      ///< Base hue - distance.
  const color& get_center() const noexcept { return center_; }  ///< The base's hue.
  const color& get_right() const noexcept { return right_; }    ///< Base hue + distance.

 protected:
  /// The distance in degrees.
  trio(const color& base, float distance);

 private:
  color left_, center_, right_;
};

/// 30 degrees apart.
class KESTA_API analogues : public trio {
 public:
  /// Keeps nothing of `base` but copies.
  explicit analogues(const color& base);
};

/// 15 degrees apart.
class KESTA_API neutral : public trio {
 public:
  /// Keeps nothing of `base` but copies.
  explicit neutral(const color& base);
};

/// 120 degrees apart.
class KESTA_API triadic : public trio {
 public:
  /// Keeps nothing of `base` but copies.
  explicit triadic(const color& base);
};

/// Two pairs of opposite colours, 60 degrees apart. Saturation and luminosity are those of the base; all four
/// are opaque.
class KESTA_API tetradic {
 public:
  /// Keeps nothing of `base` but copies.
  explicit tetradic(const color& base);

  /// The base's hue.
  const color& get_primary() const noexcept { return primary_; }
  /// Base hue + 180.
  const color& get_primary_complementary() const noexcept { return primary_complementary_; }
  /// Base hue + 60.
  const color& get_secondary() const noexcept { return secondary_; }
  /// Base hue + 240.
  const color& get_secondary_complementary() const noexcept { return secondary_complementary_; }

 private:
  color primary_, primary_complementary_, secondary_, secondary_complementary_;
};

}  // namespace ruvo::armonia
