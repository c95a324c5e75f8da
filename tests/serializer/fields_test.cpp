// SPDX-License-Identifier: BSL-1.0

// Structs to and from bundles and the formats, and the one report of what is wrong.

#include <ruvo/fake_context.hpp>
#include <ruvo/ruvo.hpp>

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

using ruvo::bundle;
using ruvo::xvar;

namespace shop {

enum class estado { nuevo, pagado, anulado };
KESTA_NAMES(estado, nuevo, pagado, anulado)

struct linea {
  std::wstring sku;
  double precio = 0;
  std::uint8_t unidades = 0;
  bool operator==(const linea&) const = default;
};
KESTA_FIELDS(linea, sku, precio, unidades)

struct ajustes {
  int plazo = 30;
  std::wstring moneda = L"EUR";
  std::vector<int> avisos{7, 1};
  std::optional<int> tope{5};
  bool operator==(const ajustes&) const = default;
};
KESTA_FIELDS_OR_DEFAULT(ajustes, plazo, moneda, avisos, tope)

struct nodo {
  std::wstring n;
  std::vector<nodo> hijos;
  std::unique_ptr<nodo> otro;
};
KESTA_FIELDS(nodo, n, hijos, otro)

/// Each kind of member.
struct todo {
  bool si = false;
  short corto = 0;
  unsigned char byte = 0;
  unsigned long long largo = 0;
  float simple = 0;
  double doble = 0;
  ruvo::decimal importe;
  wchar_t letra = L'x';
  std::wstring texto;
  std::string utf_8;
  ruvo::memo nota;
  ruvo::binary bytes;
  ruvo::date dia{2000, 1, 1};
  ruvo::time hora{0};
  ruvo::datetime cuando{0LL};
  shop::estado estado = estado::nuevo;
  linea suelta;
  ajustes con;
  std::optional<int> quiza, nunca;
  std::optional<std::wstring> vacio;
  std::unique_ptr<linea> puntero;
  std::vector<linea> lineas, una, ninguna;
  std::vector<std::vector<int>> tabla;
  std::array<int, 3> tres{};
  std::map<std::wstring, std::vector<bool>> por_nombre;
};
constexpr auto kesta_fields(ruvo::fields_of<todo>) {
  return std::tuple_cat(
      std::make_tuple(ruvo::field(L"Si", &todo::si), ruvo::field(L"otro_Nombre", &todo::corto)),
      std::make_tuple(KESTA_EACH(KESTA_FIELD_ROW, todo, byte, largo, simple, doble, importe, letra, texto,
                                 utf_8, nota, bytes, dia, hora, cuando, estado, suelta, con, quiza, nunca,
                                 vacio, puntero, lineas, una, ninguna, tabla, tres, por_nombre)));
}

todo full() {
  todo made;
  made.si = true;
  made.corto = -32768;
  made.byte = 255;
  made.largo = 9223372036854775807ULL;
  made.simple = 0.5F;
  made.doble = 1234.0625;
  made.importe = ruvo::decimal(L"-12345678901234567890.1234567890");
  made.letra = L'ñ';
  made.texto = L"Añil & <Cía>";
  made.utf_8 = "\xE2\x82\xAC";
  made.nota = L"una nota";
  made.bytes = std::string("\0\xFF", 2);
  made.dia = ruvo::date(2024, 2, 29, ruvo::times::GMT);
  made.hora = ruvo::time(93005, ruvo::times::GMT);
  made.cuando = ruvo::datetime(1709199005LL);
  made.estado = estado::pagado;
  made.suelta = {L"A", 0.25, 1};
  made.con = {60, L"USD", {3}, 9};
  made.quiza = -7;
  made.vacio = L"";
  made.puntero = std::make_unique<linea>(linea{L"P", 2, 3});
  made.lineas = {{L"B", 1.5, 2}, {L"C", 2.5, 3}};
  made.una = {{L"D", 3.5, 4}};
  made.tabla = {{1, 2}, {}, {3}};
  made.tres = {4, 5, 6};
  made.por_nombre[L"clave"] = {true, false};
  return made;
}

void expect_full(const todo& read) {
  const todo made = full();
  const auto is_same = [&](auto member) { EXPECT_TRUE(read.*member == made.*member); };
  const auto same = [&](auto... member) { (is_same(member), ...); };
  same(&todo::si, &todo::corto, &todo::byte, &todo::largo, &todo::simple, &todo::doble, &todo::importe,
       &todo::letra, &todo::texto, &todo::utf_8, &todo::nota, &todo::bytes, &todo::dia, &todo::hora,
       &todo::cuando, &todo::estado);
  same(&todo::suelta, &todo::con, &todo::quiza, &todo::nunca, &todo::vacio, &todo::lineas, &todo::una,
       &todo::ninguna, &todo::tabla, &todo::tres, &todo::por_nombre);
  ASSERT_TRUE(read.puntero);
  EXPECT_EQ(*read.puntero, *made.puntero);
}

struct sede {
  bool abierta = false;
  float peso = 0;
  ruvo::datetime desde{0LL};
  ruvo::binary clave;
  wchar_t letra = L'x';
  shop::estado fase = estado::nuevo;
  bool operator==(const sede&) const = default;
};
KESTA_FIELDS(sede, abierta, peso, desde, clave, letra, fase)

struct tienda {
  std::vector<double> recargos;
  ajustes con;
  shop::sede sede;
};
KESTA_FIELDS(tienda, recargos, con, sede)

struct porcentaje {
  double parte = 0;
};
struct tipo {
  porcentaje iva;
};
KESTA_FIELDS(tipo, iva)

struct ancha {
  int a1{}, a2{}, a3{}, a4{}, a5{}, a6{}, a7{}, a8{};
};
// Each member eight times, to reach the most names that a macro takes.
constexpr std::size_t counted = std::tuple_size_v<decltype(std::make_tuple(
    KESTA_EACH(KESTA_FIELD_ROW, ancha, a1, a2, a3, a4, a5, a6, a7, a8, a1, a2, a3, a4, a5, a6, a7, a8, a1, a2,
               a3, a4, a5, a6, a7, a8, a1, a2, a3, a4, a5, a6, a7, a8, a1, a2, a3, a4, a5, a6, a7, a8, a1, a2,
               a3, a4, a5, a6, a7, a8, a1, a2, a3, a4, a5, a6, a7, a8, a1, a2, a3, a4, a5, a6, a7, a8)))>;
static_assert(counted == 64);

}  // namespace shop

/// A type of a program's own.
template <>
struct ruvo::value_form<shop::porcentaje> {
  static bool read(shop::porcentaje& out, const var& value) {
    const auto number = value_as<double>(value);
    out.parte = number.value_or(0) / 100;
    return number.has_value();
  }
  static void write(xvar& out, const shop::porcentaje& value) { out = value.parte * 100; }
  static std::wstring expected() { return L"porcentaje"; }
};

namespace {

using shop::linea;
using shop::nodo;
using shop::todo;

/// The problems, a line each.
template <class Struct>
std::wstring problems(const bundle& from, const ruvo::field_options& options = {}) {
  Struct out;
  ruvo::field_report report;
  const bool done = ruvo::read_fields(out, from, report, options);
  EXPECT_EQ(done, report.ok());
  return to_string(report);
}

bundle json(const wchar_t* text) {
  bundle out;
  EXPECT_FALSE(ruvo::serializer::read_standard_json(out, std::wstring_view(text)));
  return out;
}

TEST(fields, come_back_from_each_format) {
  const bundle document = ruvo::to_bundle(shop::full());
  EXPECT_EQ(document.spelling(1), L"otro_Nombre");
  EXPECT_FALSE(document.has(L"nunca"));
  EXPECT_EQ(document.get_ptr(L"dia")->get_type(), xvar(ruvo::date(0)).get_type());
  expect_full(ruvo::from_bundle<todo>(document));

  ruvo::serializer::json own(false, true, true);
  ruvo::serializer::standard_json standard({.decimals = true});
  for (ruvo::iserializer* const format :
       {static_cast<ruvo::iserializer*>(&own), static_cast<ruvo::iserializer*>(&standard)}) {
    std::wstring text;
    ruvo::exception failure;
    ASSERT_TRUE(ruvo::write_fields(text, *format, shop::full(), failure))
        << ruvo::texto::to_utf_8(failure.get_mensaje());
    todo read;
    ruvo::field_report report;
    EXPECT_TRUE(ruvo::read_fields(read, *format, text, report)) << ruvo::texto::to_utf_8(to_string(report));
    expect_full(read);
  }
  std::wstring text;
  ruvo::exception failure;
  ASSERT_TRUE(ruvo::write_xml_fields(text, L"todo", shop::full(), failure));
  todo read;
  ruvo::field_report report;
  EXPECT_TRUE(ruvo::read_xml_fields(read, text, report)) << ruvo::texto::to_utf_8(to_string(report));
  expect_full(read);
}

TEST(fields, come_back_from_forms) {
  ruvo::serializer::http_forms forms;
  for (const shop::ajustes& made :
       {shop::ajustes{1, L"a&b=ñ", {2}, 3}, shop::ajustes{1, L"", {2, 3}, std::nullopt}}) {
    std::wstring text;
    ruvo::exception failure;
    ASSERT_TRUE(ruvo::write_fields(text, forms, made, failure));
    shop::ajustes read{.tope = std::nullopt};
    ruvo::field_report report;
    EXPECT_TRUE(ruvo::read_fields(read, forms, text, report));
    EXPECT_EQ(read, made);
  }
  std::wstring text;
  ruvo::exception failure;
  EXPECT_FALSE(ruvo::write_fields(text, forms, shop::full(), failure));
  EXPECT_EQ(failure.get_detail(), L"bytes") << "the first value without a form";
}

TEST(fields, come_back_from_ini) {
  ruvo::ini_dialect all_values;
  all_values.duplicates = ruvo::ini_duplicates::list;
  ruvo::serializer::ini ini(all_values), usual;
  shop::tienda made;
  made.recargos = {0.1 + 0.2, 1e-7, -1e21, 5e-324};
  made.con = {60, L"# = [no] ", {}, std::nullopt};
  made.sede = {true,
               0.1F,
               ruvo::datetime(1709199005LL, ruvo::times::LOCAL),
               std::string("\0\xFF", 2),
               L';',
               shop::estado::pagado};
  std::wstring text;
  ruvo::exception failure;
  ruvo::fake_context fake;
  fake.zone_offset = 3600;
  const ruvo::thread_scope scope(fake);
  ASSERT_TRUE(ruvo::write_fields(text, ini, made, failure)) << ruvo::texto::to_utf_8(failure.get_detail());
  shop::tienda read;
  ruvo::field_report report;
  EXPECT_TRUE(ruvo::read_fields(read, ini, text, report)) << ruvo::texto::to_utf_8(to_string(report));
  EXPECT_EQ(read.recargos, made.recargos);
  EXPECT_EQ(read.con.moneda, made.con.moneda);
  EXPECT_EQ(read.con.plazo, 60);
  EXPECT_TRUE(read.sede == made.sede) << ruvo::texto::to_utf_8(text);

  EXPECT_FALSE(ruvo::write_fields(text, usual, made, failure));
  EXPECT_TRUE(failure.get_mensaje().ends_with(L" recargos")) << "several values of one key";
  EXPECT_FALSE(ruvo::write_fields(text, ini, shop::full(), failure));
  EXPECT_TRUE(failure.get_mensaje().ends_with(L" lineas")) << "structs in a list";
  EXPECT_FALSE(
      ruvo::read_fields(read, ini, L"recargos=1\n[sede]\nabierta=2\npeso=1\n[con]\nplazo=x", report));
  EXPECT_TRUE(
      to_string(report).starts_with(L"con.plazo: se espera entero de -2147483648 a 2147483647 y hay un"
                                    " texto «x»\nsede.abierta: "));
  EXPECT_EQ(report.problems.size(), 6U);
}

TEST(fields, report_all_that_is_missing_or_wrong_at_once) {
  const bundle document = json(
      LR"({"si": 2, "OTRO_nombre": 32768, "byte": "doce", "largo": -1, "simple": 1e39,
    "doble": null, "importe": 12.345678901234567, "letra": "ab", "texto": 4.5, "nota": [], "bytes": "*", "dia": "2023-02-29", "hora": "24:00:00",
    "cuando": "ayer", "estado": "Pagado", "suelta": {"sku": 7, "unidades": 256}, "con": 1, "quiza": "x",
    "puntero": {}, "lineas": [{"sku": "a", "precio": 1, "unidades": 1}, {"sku": "b", "precio": "1,5", "unidades": 1}, 3],
    "una": "x", "tabla": [[1], [true]], "tres": [1, 2], "por_nombre": {"A": ["si", "puede"]}})");
  EXPECT_EQ(problems<todo>(document),
            LR"(Si: se espera valor lógico y hay un número entero «2»
otro_Nombre: se espera entero de -32768 a 32767 y hay un número entero «32768»
byte: se espera entero de 0 a 255 y hay un texto «doce»
largo: se espera entero de 0 a 18446744073709551615 y hay un número entero «-1»
simple: se espera número y hay un número decimal «999999999999999939709166371603178586112.000000»
doble: se espera número y hay nulo
importe: se espera número decimal exacto y hay un número decimal «12.345679»
letra: se espera carácter y hay un texto «ab»
texto: se espera texto y hay un número decimal «4.500000»
utf_8: falta; se espera texto
nota: se espera texto y hay una lista
bytes: se espera binario, o texto en Base64 y hay un texto «*»
dia: se espera fecha y hay un texto «2023-02-29»
hora: se espera hora y hay un texto «24:00:00»
cuando: se espera fecha con hora y hay un texto «ayer»
estado: se espera uno de: nuevo, pagado, anulado y hay un texto «Pagado»
suelta.precio: falta; se espera número
suelta.unidades: se espera entero de 0 a 255 y hay un número entero «256»
con: se espera bundle y hay un número entero «1»
quiza: se espera entero de -2147483648 a 2147483647 y hay un texto «x»
puntero.sku: falta; se espera texto
puntero.precio: falta; se espera número
puntero.unidades: falta; se espera entero de 0 a 255
lineas[1].precio: se espera número y hay un texto «1,5»
lineas[2]: se espera bundle y hay un número entero «3»
una[0]: se espera bundle y hay un texto «x»
tabla[1][0]: se espera entero de -2147483648 a 2147483647 y hay un valor lógico «1»
tres: se espera lista de 3 elementos y hay una lista
por_nombre.A[1]: se espera valor lógico y hay un texto «puede»
)");
  EXPECT_EQ(problems<linea>(document, {.most = 1}), L"sku: falta; se espera texto\ny 2 más\n");
  try {
    ruvo::from_bundle<linea>(bundle{{L"sku", L"a"}, {L"precio", 1}});
    FAIL();
  } catch (const ruvo::exc::BadFormat& failure) {
    EXPECT_EQ(failure.get_detail(), L"unidades: falta; se espera entero de 0 a 255\n");
  }
}

TEST(fields, may_be_of_types_of_a_program) {
  EXPECT_EQ(ruvo::from_bundle<shop::tipo>(bundle{{L"iva", L"50"}}).iva.parte, 0.5);
  EXPECT_EQ(ruvo::to_bundle(shop::tipo{{0.25}}).get_double(L"iva"), 25.0);
  EXPECT_EQ(problems<shop::tipo>(bundle()), L"iva: falta; se espera porcentaje\n");
}

TEST(fields, keep_what_they_have_where_that_is_said) {
  const bundle rows[] = {bundle(), json(LR"({"plazo": null, "avisos": null, "tope": ""})")};
  for (const bundle& from : rows) EXPECT_EQ(ruvo::from_bundle<shop::ajustes>(from), shop::ajustes());
  EXPECT_EQ(problems<shop::ajustes>(json(LR"({"plazo": "x"})")),
            L"plazo: se espera entero de -2147483648 a 2147483647 y hay un texto «x»\n");
}

TEST(fields, may_refuse_entries_that_they_do_not_have) {
  const bundle from = json(LR"({"SKU": "a", "Precio": 1, "unidades": 1, "Iva": 21, "x": {}})");
  EXPECT_EQ(problems<linea>(from), L"");
  EXPECT_EQ(problems<linea>(from, {.refuse_unknown = true}),
            L"Iva: se espera ningún valor con este nombre y hay un número entero «21»\n"
            L"x: se espera ningún valor con este nombre y hay un bundle\n");
}

/// A tree of so many levels, each a bundle in a list.
bundle nested(int levels) {
  bundle made{{L"n", L"fin"}};
  for (int i = 1; i < levels; ++i) {
    bundle above{{L"n", L""}};
    above.hack_list_on(L"hijos").push_back(std::move(made));
    made = std::move(above);
  }
  return made;
}

TEST(fields, of_structs_inside_themselves_have_a_depth) {
  EXPECT_EQ(problems<nodo>(nested(100)), L"");
  const std::wstring said = problems<nodo>(nested(5000));
  EXPECT_NE(said.find(L"hijos[0]: se espera no más de 200 niveles y hay más\n"), said.npos)
      << ruvo::texto::to_utf_8(said);
}

TEST(fields, are_read_from_xml_of_others) {
  const wchar_t* const text =
      LR"(<?xml version="1.0"?><pedido sku="S1"><precio>2.5</precio><unidades>3</unidades></pedido>)";
  linea read;
  ruvo::field_report report;
  EXPECT_TRUE(ruvo::read_xml_fields(read, text, report)) << ruvo::texto::to_utf_8(to_string(report));
  EXPECT_EQ(read, (linea{L"S1", 2.5, 3}));

  nodo tree;  // elements that repeat, without one around them
  EXPECT_TRUE(ruvo::read_xml_fields(
      tree, L"<r><hijos><n>1</n></hijos><n>0</n><hijos><n>2</n><hijos><n>3</n></hijos></hijos></r>", report));
  ASSERT_EQ(tree.hijos.size(), 2U);
  EXPECT_EQ(tree.n + tree.hijos[0].n + tree.hijos[1].n + tree.hijos[1].hijos.at(0).n, L"0123");

  EXPECT_FALSE(ruvo::read_xml_fields(tree, L"<r><n>1</n><n>2</n></r>", report));
  EXPECT_EQ(to_string(report), L"n: se espera texto y hay una lista\n");
  EXPECT_FALSE(ruvo::read_xml_fields(tree, L"<r>", report));
  EXPECT_TRUE(report.problems.empty() && report.failure.WRONG());
  ruvo::serializer::standard_json standard;
  EXPECT_FALSE(ruvo::read_fields(tree, standard, L"{", report));
  EXPECT_TRUE(report.failure == ruvo::exc::jsonBadFormated(2));
}

TEST(fields, refuse_to_write_what_would_be_lost) {
  todo made = shop::full();
  made.por_nombre[L"cLAVe"] = {};
  EXPECT_THROW(static_cast<void>(ruvo::to_bundle(made)), ruvo::exc::BadArgument);
  made = shop::full();
  made.estado = static_cast<shop::estado>(7);
  EXPECT_THROW(static_cast<void>(ruvo::to_bundle(made)), ruvo::exc::BadArgument);
}

}  // namespace
