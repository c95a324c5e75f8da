// SPDX-License-Identifier: BSL-1.0

// Colours: any text and any number is taken; text, components and HSL go on describing one colour.

#include <ruvo/armonia.hpp>

#include <algorithm>
#include <cstring>

#include "fuzz.hpp"

namespace {

using ruvo::color;

/// Takes numbers of any bits from the input; zeros when it is used up.
class source {
 public:
  source(const std::uint8_t* data, std::size_t size) : at_(data), left_(size) {}

  template <class T>
  T number() {
    T value{};
    const std::size_t taken = std::min(left_, sizeof value);
    if (taken) std::memcpy(&value, at_, taken);
    at_ += taken;
    left_ -= taken;
    return value;
  }
  bool empty() const { return left_ == 0; }

 private:
  const std::uint8_t* at_;
  std::size_t left_;
};

color step(const color& from, source& in) {
  color c = from;
  switch (in.number<std::uint8_t>() % 12) {
    case 0:
      return c.set_red(in.number<unsigned>());
    case 1:
      return c.set_integer_alpha(in.number<unsigned>());
    case 2:
      return c.set_alpha(in.number<float>());
    case 3:
      return c.set_hue(in.number<float>());
    case 4:
      return c.set_saturation(in.number<float>());
    case 5:
      return c.set_luminosity(in.number<float>());
    case 6:
      return c += in.number<unsigned>();
    case 7:
      return c -= in.number<unsigned>();
    case 8:
      return c -= from.get_complementary();
    case 9:
      return c = in.number<unsigned>();
    case 10:
      return ruvo::armonia::tetradic(c += from).get_secondary_complementary();
    default:
      return c.set_amount(in.number<unsigned>())--;
  }
}

void check(const color& c) {
  FUZZ_CHECK(c.get_hue() >= 0 && c.get_hue() < 360);
  const std::wstring text = c.to_string();
  FUZZ_CHECK(text.size() == (c.get_alpha() < 1 ? 9 : 7));
  const color read(text.substr(0, 7));
  FUZZ_CHECK(read.get_red() == (c.get_red() & 255) && read.get_green() == (c.get_green() & 255) &&
             read.get_blue() == (c.get_blue() & 255));
}

void check_text(const std::string& text) {
  const color base(1, 2, 3), c = color(base).set_color(text);
  FUZZ_CHECK(c == color(ruvo::texto::to_utf_16(text)));
  const bool kept = c.get_red() == 1 && c.get_green() == 2 && c.get_blue() == 3;
  const bool digits = (text.size() == 7 || text.size() == 9) && text[0] == '#' &&
                      text.find_first_not_of("0123456789abcdefABCDEF", 1) == text.npos;
  FUZZ_CHECK(digits || kept);
  if (!digits) return;
  const unsigned long long value = std::stoull(text.substr(1), nullptr, 16);
  color packed;
  packed = static_cast<unsigned>(value << 8 | (text.size() == 9 ? value >> 24 : 255));
  FUZZ_CHECK(packed.get_alpha() == c.get_alpha() && packed.get_red() == c.get_red());
  FUZZ_CHECK(packed.get_green() == c.get_green() && packed.get_hue() == c.get_hue());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  check_text(fuzz::narrow(data, size));
  source in(data, size);
  for (color c; !in.empty();) check(c = step(c, in));
  return 0;
}
