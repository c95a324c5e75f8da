// SPDX-License-Identifier: BSL-1.0

// A colour in its three forms, each computed from the other.

#include <ruvo/color.hpp>
#include <ruvo/texto/words.hpp>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>
#include <ostream>
#include <string_view>
#include <utility>

#include "base/ascii.hpp"
#include "base/utf.hpp"

// Results are truncated, so a different rounding on the way shows: arithmetic stays in 32 bits.
static_assert(FLT_EVAL_METHOD == 0);

namespace ruvo {

namespace {

constexpr float scale = 255.0f;

/// Truncates; NaN gives 0.
unsigned clamped(float value, float most) noexcept {
  return value > 0.0f ? static_cast<unsigned>(std::min(value, most)) : 0;
}

// --- text

void append_digits(std::wstring& out, unsigned component) {
  static constexpr wchar_t digits[] = L"0123456789ABCDEF";
  out += digits[component >> 4 & 15];
  out += digits[component & 15];
}

std::wstring html_of(unsigned red, unsigned green, unsigned blue, float alpha) {
  std::wstring html = L"#";
  append_digits(html, red);
  append_digits(html, green);
  append_digits(html, blue);
  if (alpha < color::OPACO) append_digits(html, clamped(alpha * scale, scale));
  return html;
}

/// Reads hexadecimal digits, eight at most; false at a character that is none.
bool read_digits(std::wstring_view digits, std::uint32_t& value) noexcept {
  value = 0;
  for (const wchar_t c : digits) {
    const int digit = texto::hex_value(c);
    if (digit < 0) return false;
    value = value << 4 | static_cast<std::uint32_t>(digit);
  }
  return true;
}

// --- components and HSL

HSLColor hsl_of(unsigned red, unsigned green, unsigned blue) noexcept {
  const float r = static_cast<float>(red & 255) / scale;
  const float g = static_cast<float>(green & 255) / scale;
  const float b = static_cast<float>(blue & 255) / scale;
  const float max = std::max({r, g, b}), min = std::min({r, g, b}), d = max - min;
  const float luminosity = (max + min) / 2.0f;
  if (d == 0.0f) return {0.0f, 0.0f, luminosity};
  float hue = 0.0f;
  if (max == r) {
    hue = std::fmod((g - b) / d, 6.0f) * 60.0f;
  } else if (max == g) {
    hue = ((b - r) / d + 2.0f) * 60.0f;
  } else {
    hue = ((r - g) / d + 4.0f) * 60.0f;
  }
  if (hue < 0.0f) hue += 360.0f;
  return {hue, luminosity <= 0.5f ? d / (max + min) : d / (2.0f - max - min), luminosity};
}

float normalised(float degrees) noexcept {
  if (!std::isfinite(degrees)) return 0.0f;
  float hue = std::fmod(degrees, 360.0f);
  if (hue < 0.0f) hue += 360.0f;
  return hue < 360.0f ? hue : 0.0f;  // the sum rounds up to 360 for the smallest negative turns
}

RGBAColor components_of(float hue, float saturation, float luminosity) noexcept {
  const float c = (1.0f - std::fabs(2.0f * luminosity - 1.0f)) * saturation;
  const float x = c * (1.0f - std::fabs(std::fmod(hue / 60.0f, 2.0f) - 1.0f));
  const float m = luminosity - c / 2.0f;
  const auto made = [m](float red, float green, float blue) {
    const auto component = [m](float value) { return clamped((value + m) * scale, scale); };
    return RGBAColor(component(red), component(green), component(blue), color::OPACO);
  };
  if (hue < 60.0f) return made(c, x, 0.0f);
  if (hue < 120.0f) return made(x, c, 0.0f);
  if (hue < 180.0f) return made(0.0f, c, x);
  if (hue < 240.0f) return made(0.0f, x, c);
  if (hue < 300.0f) return made(x, 0.0f, c);
  return made(c, 0.0f, x);
}

float hundredths(unsigned amount) noexcept { return static_cast<float>(amount) / 100.0f; }

unsigned limited_sum(unsigned a, unsigned b) noexcept {
  return a < color::MAX_SCALE && b < color::MAX_SCALE ? std::min(a + b, color::MAX_SCALE) : color::MAX_SCALE;
}

}  // namespace

// --- construction and assignment

color::color() : html_(L"#FFFFFF") {}
color::color(const color& other) = default;
color::color(color&& other) noexcept = default;
color::~color() = default;
color::color(const RGBAColor& components) : color() { *this = components; }
color::color(const HSLColor& hsl) : color() { *this = hsl; }
color::color(const std::wstring& html) : color() { set_color(html); }
color::color(const std::string& html) : color() { set_color(html); }
color::color(const wchar_t* html) : color() { set_color(html); }
color::color(const char* html) : color() { set_color(html); }
color::color(int red, int green, int blue) : color() {
  set_color(static_cast<unsigned>(red), static_cast<unsigned>(green), static_cast<unsigned>(blue), OPACO);
}
color::color(unsigned red, unsigned green, unsigned blue, unsigned alpha) : color() {
  set_color(red, green, blue, alpha);
}
color::color(unsigned red, unsigned green, unsigned blue, float alpha) : color() {
  set_color(red, green, blue, alpha);
}
color::color(float hue, float saturation, float luminosity) : color() {
  set_color(hue, saturation, luminosity);
}

color& color::operator=(const color& other) { return *this = color(other); }
color& color::operator=(color&& other) noexcept = default;
color& color::operator=(const RGBAColor& components) {
  return set_color(components.red, components.green, components.blue, components.alpha);
}
color& color::operator=(const HSLColor& hsl) { return set_color(hsl.hue, hsl.saturation, hsl.luminosity); }
color& color::operator=(const std::wstring& html) { return set_color(html); }
color& color::operator=(const std::string& html) { return set_color(html); }
color& color::operator=(const wchar_t* html) { return set_color(html); }
color& color::operator=(const char* html) { return set_color(html); }
color& color::operator=(unsigned packed) {
  return set_color(packed >> 24, packed >> 16 & 255, packed >> 8 & 255, packed & 255);
}

// --- setting

/// Cannot fail: the text, which can, is made before.
void color::commit(std::wstring&& html, unsigned red, unsigned green, unsigned blue, float alpha) noexcept {
  const HSLColor hsl = hsl_of(red, green, blue);
  html_ = std::move(html);
  red_ = red;
  green_ = green;
  blue_ = blue;
  alpha_ = alpha;
  hue_ = hsl.hue;
  saturation_ = hsl.saturation;
  luminosity_ = hsl.luminosity;
}

color& color::set_color(unsigned red, unsigned green, unsigned blue, float alpha) {
  commit(html_of(red, green, blue, alpha), red, green, blue, alpha);
  return *this;
}

color& color::set_color(unsigned red, unsigned green, unsigned blue, unsigned alpha) {
  return set_color(red, green, blue, static_cast<float>(alpha) / scale);
}

color& color::set_color(float hue, float saturation, float luminosity) {
  hue = normalised(hue);
  const RGBAColor made = components_of(hue, saturation, luminosity);
  set_color(made.red, made.green, made.blue, made.alpha);
  hue_ = hue;
  saturation_ = saturation;
  luminosity_ = luminosity;
  return *this;
}

color& color::set_color(const std::wstring& html) {
  std::wstring kept = html;
  std::uint32_t v = 0;
  const bool read = (html.size() == 7 || html.size() == 9) && html.front() == L'#' &&
                    read_digits(std::wstring_view(html).substr(1), v);
  if (!read) {
    html_ = std::move(kept);
    return *this;
  }
  const float alpha = html.size() == 9 ? static_cast<float>(v >> 24) / scale : OPACO;
  commit(std::move(kept), v >> 16 & 255, v >> 8 & 255, v & 255, alpha);
  return *this;
}

color& color::set_color(const std::string& html) { return set_color(texto::to_utf_16(html)); }
color& color::set_color(const wchar_t* html) { return set_color(std::wstring(html ? html : L"")); }
color& color::set_color(const char* html) { return set_color(std::string(html ? html : "")); }

color& color::set_red(unsigned value) { return set_color(value, green_, blue_, alpha_); }
color& color::set_green(unsigned value) { return set_color(red_, value, blue_, alpha_); }
color& color::set_blue(unsigned value) { return set_color(red_, green_, value, alpha_); }
color& color::set_alpha(float value) { return set_color(red_, green_, blue_, value); }
color& color::set_integer_alpha(unsigned value) { return set_color(red_, green_, blue_, value); }
color& color::set_hue(float degrees) { return set_color(degrees, saturation_, luminosity_); }
color& color::set_saturation(float value) { return set_color(hue_, value, luminosity_); }
color& color::set_luminosity(float value) { return set_color(hue_, saturation_, value); }
color& color::set_amount(unsigned amount) {
  amount_ = amount;
  return *this;
}

// --- reading

namespace {

constexpr float most_unsigned = 4294967040.0f;  // the largest float below 2^32

}  // namespace

unsigned color::get_integer_alpha() const noexcept { return clamped(alpha_ * scale, most_unsigned); }

color::operator unsigned() const noexcept {
  return red_ << 24 | green_ << 16 | blue_ << 8 | clamped(alpha_, most_unsigned);
}

std::wstring color::to_string() const { return texto::to_uppercase_(html_); }

std::wostream& operator<<(std::wostream& out, const color& value) { return out << value.to_string(); }

// --- derived colours

color color::get_complementary() const { return color(*this).set_hue(hue_ + 180.0f); }
color color::get_dull() const { return color(*this).set_saturation(0.0f); }
color color::get_intense() const { return color(*this).set_saturation(1.0f); }
color color::get_suggested_forecolor() const {
  return color(*this).set_luminosity(luminosity_ > 0.5f ? 0.05f : 0.95f);
}
color color::get_suggested_backgroundcolor() const { return get_suggested_forecolor(); }
color color::calculate_gradient(const color&, float) const { return {}; }

// --- steps

color& color::operator++() { return *this += amount_; }
color& color::operator--() { return *this -= amount_; }

color color::operator++(int) {
  color before(*this);
  ++*this;
  return before;
}

color color::operator--(int) {
  color before(*this);
  --*this;
  return before;
}

color& color::operator+=(unsigned amount) {
  return set_luminosity(std::max(luminosity_ - hundredths(amount), 0.0f));
}

color& color::operator-=(unsigned amount) {
  return set_luminosity(std::min(luminosity_ + hundredths(std::min(amount, 100u)), 1.0f));
}

color& color::operator+=(float degrees) { return set_hue(hue_ + degrees); }
color& color::operator-=(float degrees) { return set_hue(hue_ - degrees); }

color& color::operator+=(const color& other) {
  return set_color(limited_sum(red_, other.red_), limited_sum(green_, other.green_),
                   limited_sum(blue_, other.blue_), OPACO);
}

color& color::operator-=(const color& other) {
  return set_color(red_ - other.red_, green_ - other.green_, blue_ - other.blue_, OPACO);
}

}  // namespace ruvo
