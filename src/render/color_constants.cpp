// SPDX-License-Identifier: BSL-1.0

// The constants. Numbers are initialised before any code runs.

#include <ruvo/color.hpp>

namespace ruvo {

const unsigned color::MIN_SCALE, color::MAX_SCALE, color::INT_TRASPARENT, color::INT_OPAQUE;
const float color::TRASPARENTE = 0.0f, color::OPACO = 1.0f;

const std::wstring color::RED = L"#FF0000";
const std::wstring color::BLUE = L"#0000FF";
const std::wstring color::GREEN = L"#00FF00";
const std::wstring color::WHITE = L"#FFFFFF";
const std::wstring color::BLACK = L"#000000";
const std::wstring color::YELLOW = L"#FFFF00";
const std::wstring color::MAGENTA = L"#FF00FF";
const std::wstring color::CYAN = L"#00FFFF";
const std::wstring color::SILVER = L"#C0C0C0";
const std::wstring color::GRAY = L"#808080";
const std::wstring color::TRANS = L"#00000000";
const std::wstring color::GOLD = L"#FFD700";
const std::wstring color::ORANGE = L"#FFA500";
const std::wstring color::MAROON = L"#800000";
const std::wstring color::FUCHSIA = L"#FF00FF";
const std::wstring color::PURPLE = L"#800080";
const std::wstring color::OLIVE = L"#808000";
const std::wstring color::LIME = L"#00FF00";
const std::wstring color::AQUA = L"#00FFFF";
const std::wstring color::TEAL = L"#008080";
const std::wstring color::TURQUOISE = L"#40E0D0";
const std::wstring color::NAVY = L"#000080";
const std::wstring color::INDIGO = L"#4B0082";
const std::wstring color::PURPLEREBECCA = L"#663399";
const std::wstring color::PINK = L"#FFC0CB";
const std::wstring color::MOCHA = L"#6E4B35";
const std::wstring color::SALMON = L"#FA8072";
const std::wstring color::LAVENDER = L"#E6E6FA";
const std::wstring color::BRICK = L"#8C3A3A";

// In the order of the English names above, which they copy.
const std::wstring color::ROJO = RED;
const std::wstring color::AZUL = BLUE;
const std::wstring color::VERDE = GREEN;
const std::wstring color::BLANCO = WHITE;
const std::wstring color::NEGRO = BLACK;
const std::wstring color::AMARILLO = YELLOW;
const std::wstring color::CIAN = CYAN;
const std::wstring color::ORO = GOLD;
const std::wstring color::NARANJA = ORANGE;
const std::wstring color::BURDEOS = MAROON;
const std::wstring color::FUCSIA = FUCHSIA;
const std::wstring color::PURPURA = PURPLE;
const std::wstring color::OLIVA = OLIVE;
const std::wstring color::LIMA = LIME;
const std::wstring color::TURQUESA = TEAL;
const std::wstring color::AZULMARINO = NAVY;
const std::wstring color::PURPURAREBECA = PURPLEREBECCA;
const std::wstring color::ROSA = PINK;
const std::wstring color::MOCA = MOCHA;
const std::wstring color::LAVANDA = LAVENDER;
const std::wstring color::LADRILLO = BRICK;

const std::wstring color::MALDREK_PRIMARY = L"#1D7EC2";
const std::wstring color::MALDREK_SECONDARY = L"#15A3DE";
const std::wstring color::MALDREK_ACCENT = L"#1DB6CB";
const std::wstring color::MALDREK_DARK = L"#135780";
const std::wstring color::MALDREK_FONT_PRIMARY = L"#135685";
const std::wstring color::MALDREK_FONT_SECONDARY = L"#0D668B";
const std::wstring color::MALDREK_FONT_ACCENT = L"#137885";
const std::wstring color::MALDREK_FONT_DARK = L"#0D3C58";

}  // namespace ruvo
