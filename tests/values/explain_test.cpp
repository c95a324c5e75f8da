// SPDX-License-Identifier: BSL-1.0

// What a bundle says of a path, and that it agrees with the getters.

#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/rounds.hpp"

using ruvo::bundle;
using ruvo::list;
using ruvo::xvar;

namespace {

TEST(explain, where_the_path_ends) {
  bundle b;
  b.putOn(L"a.b.text", L"x");
  b.putOn(L"a.none", xvar());
  b.putOn(L"a.list", list{1, 2});
  b.putOn(L"a/list.0", 1, '/');
  b[L"a.b.flat"] = 1;
  b[L"Ñu"] = 1;
  b[L""] = 7;
  const wchar_t* const rows[][2] = {
      {L"z", L"«z» (parte 1 de la ruta) no existe."},
      {L"A.Z.text", L"«Z» (parte 2 de la ruta) no existe."},
      {L"a.b.", L"«» (parte 3 de la ruta) no existe."},
      {L"a.none.x", L"«none» (parte 2 de la ruta) es nulo: la ruta sólo sigue por un bundle."},
      {L"a.list.1", L"«list» (parte 2 de la ruta) es una lista: la ruta sólo sigue por un bundle."},
      {L"a.b.text.len", L"«text» (parte 3 de la ruta) es un texto: la ruta sólo sigue por un bundle."},
      {L"a.none", L"«none» (parte 2 de la ruta) es nulo."},
      {L"a.list", L"«list» (parte 2 de la ruta) es una lista."},
      {L"ñU", L"«ñU» (parte 1 de la ruta) no existe."},
      {L"Ñu",
       L"«Ñu» (parte 1 de la ruta) no existe. Sí hay una clave «Ñu», a la que sólo llega el operador []."},
      {L"A.B.flat.x.y",
       L"«flat» (parte 3 de la ruta) no existe. Sí hay una clave «A.B.flat», a la que sólo llega el operador "
       L"[]."},
      {L"a.list.0.x",
       L"«list» (parte 2 de la ruta) es una lista: la ruta sólo sigue por un bundle. Sí hay una clave "
       L"«list.0», "
       L"a la que sólo llega el operador []."},
      {L"a.lis", L"«lis» (parte 2 de la ruta) no existe."},
      {L"",
       L"«» (parte 1 de la ruta) es un número entero. Se lee como entero, decimal. No se lee como valor "
       L"lógico."},
  };
  for (const auto& [path, expected] : rows) {
    EXPECT_EQ(b.explain(path), expected);
    EXPECT_EQ(b.explain(std::wstring(path), '.'), expected);
  }
  EXPECT_EQ(b.explain(L"a/list/1", '/'), b.explain(L"a.list.1"));
  bundle flat;
  flat[L"x.Y"] = 1;
  EXPECT_EQ(
      flat.explain(L"X.y"),
      L"«X» (parte 1 de la ruta) no existe. Sí hay una clave «X.y», a la que sólo llega el operador [].");
  EXPECT_EQ(flat.explain(std::string("\xC3\xB1")), L"«ñ» (parte 1 de la ruta) no existe.");
  EXPECT_EQ(flat.explain(std::wstring(100, L'k')),
            L"«" + std::wstring(60, L'k') + L"…» (parte 1 de la ruta) no existe.");
}

TEST(explain, what_is_there) {
  const std::vector<std::pair<xvar, std::wstring>> rows = {
      {true, L"un valor lógico. Se lee como entero, decimal, valor lógico."},
      {L'x', L"un carácter. No se lee como entero, decimal, valor lógico."},
      {5, L"un número entero. Se lee como entero, decimal. No se lee como valor lógico."},
      {0.25,
       L"un número decimal. Se lee como entero, decimal. No se lee como valor lógico. Como entero vale 0."},
      {0, L"un número entero. Se lee como entero, decimal, valor lógico. Vale 0."},
      {70000,
       L"un número entero. Se lee como entero, decimal. No se lee como valor lógico. No cabe en short (da "
       L"4464)."},
      {1e-300,
       L"un número decimal. Se lee como entero, decimal. No se lee como valor lógico. Como entero vale 0. No "
       L"cabe "
       L"en float (da 0)."},
      {L"", L"un texto. Está vacío. No se lee como entero, decimal, valor lógico."},
      {L"12a", L"un texto. No se lee como entero, decimal, valor lógico."},
      {L" -3 ", L"un texto. Se lee como entero, decimal. No se lee como valor lógico."},
      {L"no", L"un texto. Se lee como valor lógico. No se lee como entero, decimal."},
      {L"99999999999999999999", L"un texto. Se lee como decimal. No se lee como entero, valor lógico."},
      {list(), L"una lista. Está vacío."},
      {bundle{{L"k", 1}}, L"un bundle."},
      {ruvo::memo(), L"un memo. Está vacío. No se lee como entero, decimal, valor lógico."},
  };
  for (const auto& [value, expected] : rows) {
    bundle b;
    b[L"v"] = value;
    EXPECT_EQ(b.explain(L"v"), L"«v» (parte 1 de la ruta) es " + expected);
  }
  for (const xvar& value : {xvar(ruvo::binary()), xvar(ruvo::date()), xvar(ruvo::time()),
                            xvar(ruvo::datetime()), xvar(ruvo::color())}) {
    bundle b;
    b[L"v"] = value;
    EXPECT_TRUE(b.explain(L"v").find(L" es un") != std::wstring::npos)
        << testing::PrintToString(b.explain(L"v"));
  }
}

/// A getter that gives another value than get_xlong or get_double is named, with what it gives.
TEST(explain, narrow_getters) {
  for (const xvar& value :
       {xvar(32767), xvar(32768), xvar(-32769), xvar(65536), xvar(3000000000LL), xvar(4294967296LL),
        xvar(~0ULL), xvar(9223372036854775807LL), xvar(1e10), xvar(1e19), xvar(-1e300), xvar(1e39),
        xvar(L"4294967296"), xvar(L"70000"), xvar(2.5), xvar(L"x")}) {
    bundle b;
    b[L"v"] = value;
    const std::wstring text = b.explain(L"v");
    const auto says = [&text](const std::wstring& part) { return text.find(part) != std::wstring::npos; };
    const long long whole = b.get_xlong(L"v");
    for (const auto& [type, given] :
         {std::pair<std::wstring, long long>(L" en long (", b.get_long(L"v")),
          std::pair<std::wstring, long long>(L" en short (", b.get_short(L"v"))}) {
      EXPECT_EQ(says(type), given != whole) << testing::PrintToString(text);
      EXPECT_EQ(says(type + L"da " + std::to_wstring(given) + L")"), given != whole)
          << testing::PrintToString(text);
    }
    const double real = b.get_double(L"v");
    EXPECT_EQ(says(L" en long long ("), real > 9.3e18 || real < -9.3e18) << testing::PrintToString(text);
    EXPECT_EQ(says(L" en float (da infinito)"), real == 1e39);
    EXPECT_EQ(says(L" en float (da -infinito)"), real == -1e300);
  }
}

class explain_generated : public generated_inputs {};

/// "no existe" and "sólo sigue" exactly where has() is false; the readings are those of the getters.
TEST_F(explain_generated, agrees_with_the_getters) {
  std::mt19937 random(20261125);
  const std::vector<xvar> values = {xvar(), 0, 1, 2.5, L"", L"7", L"sí", L"si", L"x", list{1}, true, L'1'};
  const wchar_t keys[] = {L'a', L'B', L'Ñ', L'x'};
  for (unsigned round = 0; round < 2000 * rounds() && !HasFailure(); ++round) {
    bundle b;
    const auto any_path = [&] {
      std::wstring path;
      for (unsigned n = random() % 3; n > 0; --n) path += {keys[random() % 4], L'X'};
      return path + keys[random() % 4];
    };
    for (int n = 0; n < 6; ++n) b.putOn(any_path(), values[random() % values.size()], 'x');
    const char separator = random() % 4 ? 'x' : 'X';  // paths are folded, separators are not
    const std::wstring path = any_path(), text = b.explain(path, separator);
    const auto says = [&text](const wchar_t* part) { return text.find(part) != std::wstring::npos; };
    ++inputs;
    EXPECT_EQ(says(L"no existe") || says(L"sólo sigue"), !b.has(path, separator))
        << testing::PrintToString(text);
    EXPECT_EQ(says(L" es nulo."), b.has(path, separator) && b.get(path, separator).is_null());
    const std::size_t denied = std::min(text.find(L"No se lee"), text.size());
    const auto reads = [&](const wchar_t* as) { return text.find(as) < denied; };
    EXPECT_EQ(reads(L"entero,") || reads(L"entero."),
              b.get_long(path, separator, 8) != 8 || b.get_long(path, separator, 9) != 9)
        << testing::PrintToString(text);
    EXPECT_EQ(reads(L", valor lógico") || reads(L"como valor lógico"),
              b.get_boolean(path, true, separator) == b.get_boolean(path, false, separator));
  }
}

TEST(explain, any_depth) {
  bundle b;
  std::wstring path = L"a";
  for (int n = 0; n < 20000; ++n) path += L".a";
  b.putOn(path, 0);
  EXPECT_TRUE(b.explain(path).starts_with(L"«a» (parte 20001 de la ruta) es un número entero."));
  EXPECT_EQ(b.explain(path + L".b"),
            L"«a» (parte 20001 de la ruta) es un número entero: la ruta sólo sigue por un bundle.");
}

}  // namespace
