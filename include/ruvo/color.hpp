// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::color, one colour in three forms: components, HSL and HTML text.

#include <ruvo/api.hpp>
#include <ruvo/fences.hpp>
#include <ruvo/fwd.hpp>

#include <concepts>
#include <iosfwd>
#include <string>
#include <type_traits>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo {

/// Components of 0-255, alpha of 0.0 (transparent) to 1.0 (opaque).
struct KESTA_API RGBAColor {
  /// Stores the numbers; none is checked.
  RGBAColor(unsigned r, unsigned g, unsigned b, float a) noexcept : red(r), green(g), blue(b), alpha(a) {}

  unsigned red, green, blue;  ///< 0-255.
  float alpha;                ///< 0.0 (transparent) to 1.0 (opaque).
};

/// Hue in degrees, saturation and luminosity of 0.0 to 1.0.
struct KESTA_API HSLColor {
  /// Stores the numbers; none is checked.
  HSLColor(float h, float s, float l) noexcept : hue(h), saturation(s), luminosity(l) {}

  /// The hue in degrees, the others of 0.0 to 1.0.
  float hue, saturation, luminosity;
};

/// A colour. Whatever sets one of its forms computes the other two, in 32-bit floating point and truncating,
/// so a way there and back may end a step lower. Nothing but a lack of memory fails, unless stated.
///
/// Components and alpha are stored as given, and so are saturation and luminosity; the hue is kept in
/// [0, 360).
/// @quirk Of a component beyond 255 only the low eight bits show in the text and in HSL: 1000 is E8.
/// @quirk Whatever goes through HSL makes the colour opaque.
class KESTA_API color {
 public:
  static const unsigned MIN_SCALE = 0, MAX_SCALE = 255;        ///< Range of a component.
  static const unsigned INT_TRASPARENT = 0, INT_OPAQUE = 255;  ///< Range of an integer alpha.
  static const float TRASPARENTE, OPACO;                       ///< Range of alpha: 0.0 and 1.0.

  /// HTML texts, "#RRGGBB" (TRANS: "#00000000"): strings of the DLL, made when it is loaded. A colour is made
  /// of them as of any text.
  static const std::wstring RED, BLUE, GREEN, WHITE, BLACK, YELLOW, MAGENTA, CYAN, SILVER, GRAY, TRANS, GOLD,
      ORANGE, MAROON, FUCHSIA, PURPLE, OLIVE, LIME, AQUA, TEAL, TURQUOISE, NAVY, INDIGO, PURPLEREBECCA, PINK,
      MOCHA, SALMON, LAVENDER, BRICK;
  /// Spanish names of the same colours.
  /// @quirk TURQUESA is TEAL, not TURQUOISE: stored documents count on it.
  static const std::wstring ROJO, AZUL, VERDE, BLANCO, NEGRO, AMARILLO, CIAN, ORO, NARANJA, BURDEOS, FUCSIA,
      PURPURA, OLIVA, LIMA, TURQUESA, AZULMARINO, PURPURAREBECA, ROSA, MOCA, LAVANDA, LADRILLO;
  /// The house's palette: its colours, and those of text upon them.
  static const std::wstring MALDREK_PRIMARY, MALDREK_SECONDARY, MALDREK_ACCENT, MALDREK_DARK,
      MALDREK_FONT_PRIMARY, MALDREK_FONT_SECONDARY, MALDREK_FONT_ACCENT, MALDREK_FONT_DARK;

  color();  ///< Opaque white.
  color(const color& other);
  color(color&& other) noexcept;
  virtual ~color();
  /// As set_color() of the numbers.
  color(const RGBAColor& components);
  color(const HSLColor& hsl);
  /// As set_color() of the text, over white. Narrow text is UTF-8; null gives the empty text.
  color(const std::wstring& html);
  color(const std::string& html);
  color(const wchar_t* html);
  color(const char* html);
  /// Three integers are components of an opaque colour, three floating numbers are HSL. An alpha of 0-255 is
  /// an integer, one of 0.0-1.0 a floating number: color(1, 2, 3, 1) is all but transparent.
  color(int red, int green, int blue);
  color(unsigned red, unsigned green, unsigned blue, unsigned alpha);
  color(unsigned red, unsigned green, unsigned blue, float alpha);
  color(float hue, float saturation, float luminosity);
  /// Components for other integers, HSL for double.
  template <class T>
  requires std::is_arithmetic_v<T> color(T first, T second, T third) : color() {
    if constexpr (std::floating_point<T>)
      set_color(settled(first), settled(second), settled(third));
    else
      set_color(settled(first), settled(second), settled(third), OPACO);
  }
  /// An integer alpha is one of 0-255, a floating one of 0.0-1.0.
  template <class T>
  requires std::is_arithmetic_v<T> color(unsigned red, unsigned green, unsigned blue, T alpha)
      : color(red, green, blue, settled(alpha)) {}
  /// As the assignment.
  template <std::derived_from<var> V>
  explicit color(const V& value) : color() {
    *this = value;
  }

  color& operator=(const color& other);
  color& operator=(color&& other) noexcept;
  /// As set_color(); the step of get_amount() stays.
  color& operator=(const RGBAColor& components);
  color& operator=(const HSLColor& hsl);
  color& operator=(const std::wstring& html);
  color& operator=(const std::string& html);
  color& operator=(const wchar_t* html);
  color& operator=(const char* html);
  /// From 0xRRGGBBAA.
  color& operator=(unsigned packed);
  template <std::integral T>
  color& operator=(T packed) {
    return *this = static_cast<unsigned>(packed);
  }
  /// Takes the colour that a var or xvar holds; null changes nothing, any other kind throws std::bad_cast.
  color& operator=(const var& value);

  /// By way of the components: the other ones stay.
  color& set_red(unsigned value);
  color& set_green(unsigned value);
  color& set_blue(unsigned value);
  color& set_alpha(float value);             ///< 1.0 is opaque.
  color& set_integer_alpha(unsigned value);  ///< 255 is opaque.

  /// By way of HSL: the other two stay, and the colour becomes opaque.
  color& set_hue(float degrees);  ///< Of any turn; what is not finite is 0. The colour becomes opaque.
  color& set_saturation(float value);
  color& set_luminosity(float value);

  color& set_amount(unsigned hundredths);  ///< Step of ++ and --, in hundredths of luminosity; 10 at first.

  /// Components. An integer alpha is one of 0-255, a floating one of 0.0-1.0.
  color& set_color(unsigned red, unsigned green, unsigned blue, unsigned alpha);
  color& set_color(unsigned red, unsigned green, unsigned blue, float alpha);
  template <class T>
  requires std::is_arithmetic_v<T> color& set_color(unsigned red, unsigned green, unsigned blue, T alpha) {
    return set_color(red, green, blue, settled(alpha));
  }
  /// HSL, of any turn; the colour becomes opaque.
  color& set_color(float hue, float saturation, float luminosity);
  /// Refused: three integers would be HSL here, while the constructor takes them as components. Write
  /// `set_color(255, 0, 0, 1.0f)` or `= color(255, 0, 0)` for components, `set_color(0.f, 1.f, 0.5f)` for
  /// HSL.
  template <std::integral R, std::integral G, std::integral B>
  color& set_color(R red, G green, B blue) = delete;
  /// Stores the text. "#RRGGBB" makes the colour opaque; any text but that and "#AARRGGBB" leaves the
  /// components as they are, names of colours too.
  /// @quirk Eight digits are read alpha first, while the text made from components has alpha last: the own
  /// text of a translucent colour does not read back.
  color& set_color(const std::wstring& html);
  color& set_color(const std::string& html);
  color& set_color(const wchar_t* html);
  color& set_color(const char* html);

  /// As last set or computed; 255 for a new colour.
  unsigned get_red() const noexcept { return red_; }
  unsigned get_green() const noexcept { return green_; }
  unsigned get_blue() const noexcept { return blue_; }
  float get_alpha() const noexcept { return alpha_; }            ///< 0.0 (transparent) to 1.0 (opaque).
  unsigned get_integer_alpha() const noexcept;                   ///< Alpha x 255, truncated.
  float get_hue() const noexcept { return hue_; }                ///< Degrees in [0, 360).
  float get_saturation() const noexcept { return saturation_; }  ///< 0.0 (grey) to 1.0.
  float get_luminosity() const noexcept { return luminosity_; }  ///< 0.0 (black) to 1.0 (white).
  unsigned get_amount() const noexcept { return amount_; }       ///< Step of ++ and --, in hundredths.

  /// The HTML text in the upper case of texto::to_uppercase(): "#RRGGBB", "#RRGGBBAA" for a translucent
  /// colour, or the text that was set.
  std::wstring to_string() const;
  operator std::wstring() const { return to_string(); }
  /// What the getters give.
  operator RGBAColor() const noexcept { return {red_, green_, blue_, alpha_}; }
  operator HSLColor() const noexcept { return {hue_, saturation_, luminosity_}; }
  /// An xvar that holds a copy of this colour and prints its text.
  operator xvar() const;
  /// 0xRRGGBBAA. A component beyond 255 runs into its neighbours.
  /// @quirk AA is alpha cut to an integer, 1 or 0, while the assignment reads it as of 255.
  operator unsigned() const noexcept;

  color get_complementary() const;  ///< Opposite hue, opaque.
  color get_dull() const;           ///< Saturation 0: the grey of the same luminosity, opaque.
  color get_intense() const;        ///< Saturation 1, opaque.
  /// A very dark colour for a light one and the reverse, of the same hue and saturation, opaque.
  /// @quirk The colours for text and for what is behind it are the same operation.
  color get_suggested_forecolor() const;
  color get_suggested_backgroundcolor() const;
  /// Opaque white.
  /// @quirk The arguments do not count.
  color calculate_gradient(const color& other, float position) const;

  /// Dark is a luminosity below 0.4, light one above 0.6, medium what lies between, with both ends.
  bool is_dark() const noexcept { return luminosity_ < 0.4f; }
  bool is_light() const noexcept { return luminosity_ > 0.6f; }
  bool is_medium() const noexcept { return luminosity_ >= 0.4f && luminosity_ <= 0.6f; }

  /// ++ darkens and -- lightens by get_amount(), down to a luminosity of 0 and up to 1; opaque. Those behind
  /// the name give the colour as it was.
  /// @quirk More is darker: ++ lowers the luminosity.
  color& operator++();
  color& operator--();
  color operator++(int);
  color operator--(int);
  /// Integers are hundredths of luminosity: += darkens, -= lightens. Floating numbers are degrees by which
  /// the hue turns. Opaque.
  color& operator+=(unsigned hundredths);
  color& operator-=(unsigned hundredths);
  color& operator+=(float degrees);
  color& operator-=(float degrees);
  /// Adds the components, each up to 255; opaque.
  color& operator+=(const color& other);
  /// Subtracts the components; opaque.
  /// @quirk Components wrap below 0.
  color& operator-=(const color& other);
  /// Other integers are hundredths of luminosity, other floating numbers degrees.
  template <class T>
  requires std::is_arithmetic_v<T> color& operator+=(T step) { return *this += settled(step); }
  template <class T>
  requires std::is_arithmetic_v<T> color& operator-=(T step) { return *this -= settled(step); }

  /// Compares the stored texts.
  /// @quirk The case of a text counts: "#ff0000" is not color::RED.
  bool operator==(const color& other) const noexcept { return html_ == other.html_; }
  bool operator<(const color& other) const noexcept { return html_ < other.html_; }
  bool operator>(const color& other) const noexcept { return other < *this; }
  bool operator<=(const color& other) const noexcept { return !(other < *this); }
  bool operator>=(const color& other) const noexcept { return !(*this < other); }

 private:
  // For numbers of other types than the operations name: what an integer and a floating number stand for.
  template <class T>
  static auto settled(T value) noexcept {
    if constexpr (std::floating_point<T>)
      return static_cast<float>(value);
    else
      return static_cast<unsigned>(value);
  }

  void commit(std::wstring&& html, unsigned red, unsigned green, unsigned blue, float alpha) noexcept;

  unsigned red_ = MAX_SCALE, blue_ = MAX_SCALE, green_ = MAX_SCALE;
  float alpha_ = 1;
  std::wstring html_;
  float hue_ = 0, saturation_ = 0, luminosity_ = 1;
  unsigned amount_ = 10;
};

KESTA_API std::wostream& operator<<(std::wostream& out, const color& value);

}  // namespace ruvo

#include <ruvo/names_back.hpp>
