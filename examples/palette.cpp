// SPDX-License-Identifier: BSL-1.0

// The named colours on a page: each with its complementary colour, the text colour that it suggests, steps to
// darker and to lighter, and its four harmonies.
//
//   palette FILE.html

#include <ruvo/ruvo.hpp>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

using ruvo::color;

struct named_color {
  const wchar_t* name;
  const std::wstring& html;
};

const named_color colors[] = {
    {L"RED, ROJO", color::RED},
    {L"BLUE, AZUL", color::BLUE},
    {L"GREEN, VERDE", color::GREEN},
    {L"WHITE, BLANCO", color::WHITE},
    {L"BLACK, NEGRO", color::BLACK},
    {L"YELLOW, AMARILLO", color::YELLOW},
    {L"MAGENTA", color::MAGENTA},
    {L"CYAN, CIAN", color::CYAN},
    {L"SILVER", color::SILVER},
    {L"GRAY", color::GRAY},
    {L"TRANS", color::TRANS},
    {L"GOLD, ORO", color::GOLD},
    {L"ORANGE, NARANJA", color::ORANGE},
    {L"MAROON, BURDEOS", color::MAROON},
    {L"FUCHSIA, FUCSIA", color::FUCHSIA},
    {L"PURPLE, PURPURA", color::PURPLE},
    {L"OLIVE, OLIVA", color::OLIVE},
    {L"LIME, LIMA", color::LIME},
    {L"AQUA", color::AQUA},
    {L"TEAL, TURQUESA", color::TEAL},
    {L"TURQUOISE", color::TURQUOISE},
    {L"NAVY, AZULMARINO", color::NAVY},
    {L"INDIGO", color::INDIGO},
    {L"PURPLEREBECCA, PURPURAREBECA", color::PURPLEREBECCA},
    {L"PINK, ROSA", color::PINK},
    {L"MOCHA, MOCA", color::MOCHA},
    {L"SALMON", color::SALMON},
    {L"LAVENDER, LAVANDA", color::LAVENDER},
    {L"BRICK, LADRILLO", color::BRICK},
    {L"MALDREK_PRIMARY", color::MALDREK_PRIMARY},
    {L"MALDREK_SECONDARY", color::MALDREK_SECONDARY},
    {L"MALDREK_ACCENT", color::MALDREK_ACCENT},
    {L"MALDREK_DARK", color::MALDREK_DARK},
    {L"MALDREK_FONT_PRIMARY", color::MALDREK_FONT_PRIMARY},
    {L"MALDREK_FONT_SECONDARY", color::MALDREK_FONT_SECONDARY},
    {L"MALDREK_FONT_ACCENT", color::MALDREK_FONT_ACCENT},
    {L"MALDREK_FONT_DARK", color::MALDREK_FONT_DARK},
};

const wchar_t head[] =
    LR"(<!DOCTYPE html>
<html lang="es">
<meta charset="utf-8">
<title>Paleta</title>
<style>
body { font: 12px sans-serif; margin: 12px; background: #f0f0f0; }
table { border-collapse: collapse; }
td, th { padding: 1px 4px; text-align: left; }
i { display: inline-block; width: 26px; height: 18px; }
b { display: inline-block; width: 70px; padding: 2px 6px; font-weight: normal; }
</style>
<table>
<tr><th>Nombre<th>Color y texto<th>Complementario<th>Más claro y más oscuro<th>Análogos<th>Neutros<th>Tríada<th>Tétrada
)";

std::wstring swatch(const color& c) {
  const std::wstring html = c.to_string();
  return L"<i style=\"background:" + html + L"\" title=\"" + html + L"\"></i>";
}

/// From the lightest to the darkest, three steps to each side.
std::wstring steps(const color& c) {
  std::wstring cell = swatch(c);
  color lighter = c, darker = c;
  for (int n = 0; n < 3; ++n) {
    cell.insert(0, swatch(--lighter));
    cell += swatch(++darker);
  }
  return cell;
}

std::wstring trio(const ruvo::armonia::trio& of) {
  return swatch(of.get_left()) + swatch(of.get_center()) + swatch(of.get_right());
}

std::wstring tetrad(const ruvo::armonia::tetradic& of) {
  return swatch(of.get_primary()) + swatch(of.get_primary_complementary()) + swatch(of.get_secondary()) +
         swatch(of.get_secondary_complementary());
}

std::wstring row(const named_color& named) {
  namespace armonia = ruvo::armonia;
  const color c(named.html);
  return std::wstring(L"<tr><td>") + named.name + L"<td><b style=\"background:" + c.to_string() + L";color:" +
         c.get_suggested_forecolor().to_string() + L"\">" + c.to_string() + L"</b><td>" +
         swatch(c.get_complementary()) + L"<td>" + steps(c) + L"<td>" + trio(armonia::analogues(c)) +
         L"<td>" + trio(armonia::neutral(c)) + L"<td>" + trio(armonia::triadic(c)) + L"<td>" +
         tetrad(armonia::tetradic(c)) + L"\n";
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  if (argc != 2) {
    std::puts("uso: palette FICHERO.html");
    return 2;
  }
  std::wstring page = head;
  for (const named_color& named : colors) page += row(named);
  page += L"</table>\n</html>\n";

  std::ofstream out(std::filesystem::path(argv[1]), std::ios::binary);
  out << ruvo::texto::to_utf_8(page);
  out.close();
  if (out.fail()) {
    std::puts("no se pudo escribir la página");
    return 1;
  }
  return 0;
}
