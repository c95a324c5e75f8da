#pragma once

// ruvo::armonia, colours that go together: each harmony turns the hue of a base colour and keeps its
// saturation and luminosity. All members come by way of HSL, the base colour's too, so they are opaque.

#include <ruvo/color.hpp>

namespace ruvo::armonia {

/// A base colour between two neighbours, equally far in hue.
class KESTA_API trio {
 public:
  const color& get_left() const noexcept { return left_; }  ///< Base hue - distance.
  const color& get_center() const noexcept { return center_; }
  const color& get_right() const noexcept { return right_; }  ///< Base hue + distance.

 protected:
  trio(const color& base, float distance);

 private:
  color left_, center_, right_;
};

/// 30 degrees apart.
class KESTA_API analogues : public trio {
 public:
  explicit analogues(const color& base);
};

/// 15 degrees apart.
class KESTA_API neutral : public trio {
 public:
  explicit neutral(const color& base);
};

/// 120 degrees apart.
class KESTA_API triadic : public trio {
 public:
  explicit triadic(const color& base);
};

/// Two pairs of opposite colours, 60 degrees apart.
class KESTA_API tetradic {
 public:
  explicit tetradic(const color& base);

  const color& get_primary() const noexcept { return primary_; }
  const color& get_primary_complementary() const noexcept { return primary_complementary_; }
  const color& get_secondary() const noexcept { return secondary_; }
  const color& get_secondary_complementary() const noexcept { return secondary_complementary_; }

 private:
  color primary_, primary_complementary_, secondary_, secondary_complementary_;
};

}  // namespace ruvo::armonia
