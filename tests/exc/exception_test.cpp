// SPDX-License-Identifier: BSL-1.0

// Exceptions: codes, messages, reports and details, and what a raised copy is.

#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <typeindex>
#include <vector>

#include <gtest/gtest.h>

#include "exc/catalogue.hpp"

namespace exc = ruvo::exc;

namespace {

std::wstring tail(const std::wstring& text, std::size_t count) {
  return text.size() > count ? text.substr(text.size() - count) : text;
}

struct row {
  const char* name;
  ruvo::exception error;
  unsigned long raw;
  const wchar_t* message;
};

std::exception_ptr held(auto thrown) { return std::make_exception_ptr(thrown); }

/// Codes and messages on the page, with the texts that the classes of the catalogue are given here.
std::map<unsigned long, std::vector<std::wstring>> page_messages() {
  std::map<unsigned long, std::vector<std::wstring>> found;
  const std::wstring given[] = {L"31", L"5", system_texts::winerror_message(5)};
  std::ifstream in(KESTA_SOURCE_DIR "/docs/ERRORS.md", std::ios::binary);
  for (std::string line; std::getline(in, line);) {
    if (!line.starts_with("| `")) continue;
    const auto columns = ruvo::texto::split(ruvo::texto::to_utf_16(line), L" | ");
    std::wstring message = columns.at(5);
    for (int n = 0; n < 3; ++n) ruvo::texto::safe_replace(message, L"%" + std::to_wstring(n + 1), given[n]);
    found[std::stoul(columns[1], nullptr, 16)].push_back(message);
  }
  for (auto& [code, messages] : found) std::ranges::sort(messages);
  return found;
}

}  // namespace

TEST(exception, every_class_of_the_catalogue_says_what_the_page_says) {
  EXPECT_EQ(catalogue_messages(), page_messages());
  EXPECT_GT(catalogue_messages().size(), 70u);
}

TEST(exception, codes_and_messages) {
  const ruvo::file path(L"C:\\datos\\año.txt");
  const std::runtime_error failure("fallo");
  struct : std::exception {
    const char* what() const noexcept override { return nullptr; }
  } const silent;
  const row rows[] = {
      {"default", ruvo::exception(), 0xEBB80000, L"OK"},
      {"correct", ruvo::exception::correct(), 0xEBB80000, L"CORRECTO"},
      {"incorrect", ruvo::exception::incorrect(), 0xEBB80001, L"Error indeterminado"},
      {"UnCatch", exc::UnCatch(&failure), 0xEBB80005, L"fallo"},
      {"UnCatch without words", exc::UnCatch(&silent), 0xEBB80005, L""},
      {"UnKnown", exc::UnKnown(&failure), 0xEBB80006, L"fallo"},
      {"UnKnown without words", exc::UnKnown(&silent), 0xEBB80006, L""},
      {"UnKnown text", exc::UnKnown("a\xC3\xB1o"), 0xEBB80006, L"año"},
      {"UnKnown empty", exc::UnKnown(std::string()), 0xEBB80006,
       L"Error desconocido. Es posible que sea ocasional. Reinicie el programa."},
      {"RunTime", exc::RunTime(L"parado"), 0xEBB8000C, L"parado"},
      {"RunTime none", exc::RunTime(std::exception_ptr()), 0xEBB8000C,
       L"Excepción en tiempo de ejecución. Notifique este problema: "},
      {"RunTime std", exc::RunTime(held(failure)), 0xEBB8000C,
       L"Excepción en tiempo de ejecución. Notifique este problema: fallo"},
      {"RunTime own", exc::RunTime(held(exc::InvalidChar())), 0xEBB8000C,
       L"Excepción en tiempo de ejecución. Notifique este problema: Caracter incorrecto"},
      {"RunTime int", exc::RunTime(held(5)), 0xEBB8000C,
       L"Excepción en tiempo de ejecución. Notifique este problema: "},
      {"RunTime pointer", exc::RunTime(held(std::exception_ptr())), 0xEBB8000C,
       L"Excepción en tiempo de ejecución. Notifique este problema: "},
      {"FileException", exc::FileException(9, L"x"), 0xEBB903F1, L"x"},
      {"fileNotFound", exc::fileNotFound(path), 0xEBB903E9,
       L"Archivo o directorio no encontrado: C:\\datos\\año.txt"},
      {"SystemException", exc::SystemException(3, L"x"), 0xEBB907D3, L"x"},
      {"systemErrorCode", exc::systemErrorCode(1359), 0xEBB907D2,
       L"Error del sistema operativo código: 1359"},
      {"applicationAlreadyRegistered", exc::applicationAlreadyRegistered(0x1A2B), 0xEBB907DA,
       L"Ya se ha registrado una aplicación en este hilo: 1A2B"},
      {"jsonUnKnowValue", exc::jsonUnKnowValue(1ull << 40, 0), 0xEBB91773,
       L"El valor recibido es desconocido cerca del carcter:1099511627776 en el nudo:0"},
  };
  for (const row& r : rows) {
    EXPECT_EQ(r.error.get_raw_code(), r.raw) << r.name;
    EXPECT_EQ(r.error.get_mensaje(), r.message) << r.name;
    EXPECT_EQ(tail(r.error, std::wcslen(r.message) + 2), r.message + std::wstring(L"\r\n")) << r.name;
  }
}

TEST(exception, families_are_bases_of_their_leaves) {
  static_assert(std::is_base_of_v<exc::JSONException, exc::jsonEmptyKey>);
  static_assert(std::is_base_of_v<ruvo::kesta::exception, exc::JSONException>);
  static_assert(std::is_base_of_v<exc::winException, exc::ShellExecuteException>);
  static_assert(!std::is_base_of_v<exc::xmlException, exc::actionNotFound>);
  static_assert(!std::is_constructible_v<exc::JSONException, unsigned long, std::wstring>);
  static_assert(std::is_nothrow_copy_constructible_v<exc::fileNotFound>);
  try {
    throw exc::applicationAlreadyRegistered(1);
  } catch (const exc::SystemException& error) {
    EXPECT_EQ(error.get_code(), 10u);
  }
}

TEST(exception, code_has_its_parts) {
  const ruvo::exception error(L"x", 42, 7, 3001);
  EXPECT_EQ(error.get_code(), 42u);
  EXPECT_EQ(error.get_rango(), 7u);
  EXPECT_EQ(error.get_facility(), 3001u);
  EXPECT_EQ(error.get_severity(), 3u);
  EXPECT_EQ(error.get_customer(), 1u);
  EXPECT_EQ(static_cast<std::uint32_t>(static_cast<long>(error)), error.get_raw_code());
  const ruvo::exception plain(0x00070005, L"x");
  EXPECT_EQ(plain.get_severity() + plain.get_customer(), 0u);
  EXPECT_EQ(plain.get_facility(), 7u);
  EXPECT_TRUE(ruvo::kesta::exception(0, L"x", 5).OK());
  EXPECT_EQ(ruvo::kesta::exception(0, L"x", 5).get_rango(), 5u);
  EXPECT_TRUE(ruvo::exception(L"x", 1000, 5, 3001).OK());  // the number runs over into the range
  EXPECT_EQ(ruvo::exception(L"x", 0, 66, 3001).get_raw_code(), 0xEBB901D0);  // 66000 cut to 16 bits
  EXPECT_TRUE(ruvo::exception::incorrect().WRONG());
}

TEST(exception, compares_by_raw_code) {
  const ruvo::exception error = ruvo::exception::incorrect();
  EXPECT_TRUE(error == 0xEBB80001);
  EXPECT_TRUE(error == 0xEBB80001UL);
  EXPECT_TRUE(error == 0xEBB80001ULL);
  EXPECT_TRUE(error == static_cast<int>(0xEBB80001));
  EXPECT_TRUE(error != 5);
  EXPECT_TRUE(error < 0xEBB80002);
  EXPECT_FALSE(error < 5);
  EXPECT_TRUE(exc::jsonEmptyKey(3, 4) == exc::jsonFalseKnot(5, 6));
  EXPECT_TRUE(exc::OkResult() < exc::ClassCast());
}

TEST(exception, report_stays_behind_a_changed_message) {
  struct open : ruvo::exception {
    using ruvo::exception::append_to_mensaje;
    using ruvo::exception::copy_what;
    using ruvo::exception::exception;
    using ruvo::exception::set_mensaje;
  };
  EXPECT_STREQ(exc::NotImplemented().what(),
               "CODE: 3\r\nRANGE: 0\r\nFACILITY: 3000\r\nCUSTOMER: 1\r\nSEVERITY: 3\r\nMESSAGE: "
               "M\xC3\xA9todo sin implementar. Posiblemente sea necesaria una actualizaci\xC3\xB3n\r\n");
  open error(L"antes", 1, 2, 3001);
  const ruvo::exception before = error;
  const std::string report = error.what();
  error.append_to_mensaje(L"!");
  EXPECT_EQ(error.get_mensaje(), L"antes!");
  EXPECT_EQ(error.what(), report);
  error.set_mensaje(L"después");
  EXPECT_EQ(error.get_mensaje(), L"después");
  EXPECT_EQ(error.what(), report);

  ruvo::exception target;
  error.copy_on(static_cast<ruvo::exception*>(nullptr));
  error.copy_on(&target);
  EXPECT_EQ(target.get_mensaje(), L"después");  // all three fields as they are
  EXPECT_EQ(target.what(), report);
  before.copy_on(target);
  EXPECT_EQ(target.get_mensaje(), L"antes");

  error.copy_what();
  EXPECT_NE(std::string(error.what()).find("MESSAGE: despu\xC3\xA9s\r\n"), std::string::npos);
  std::wostringstream out;
  out << error;
  EXPECT_EQ(out.str(), static_cast<std::wstring>(error));

  error.clear();
  EXPECT_TRUE(error.OK());
  EXPECT_EQ(error.get_mensaje(), L"OK");
  EXPECT_STREQ(error.what(), ruvo::exception().what());
}

TEST(exception, a_copy_outlives_its_source_and_a_moved_one_stays_whole) {
  ruvo::exception copy;
  {
    ruvo::exception source = exc::BadArgument(L"x");
    copy = source;
    const ruvo::exception moved = std::move(source);
    EXPECT_EQ(moved.get_mensaje(), L"Argumento incorrecto: x");
    EXPECT_EQ(source.get_mensaje(), L"Argumento incorrecto: x");
  }
  copy = *&copy;
  EXPECT_EQ(copy.get_mensaje(), L"Argumento incorrecto: x");
}

TEST(exception, raise_throws_the_class_of_a_copy) {
  const auto raised = [](const ruvo::exception& failure) -> std::type_index {
    try {
      failure.raise();
    } catch (const ruvo::exception& thrown) {
      EXPECT_EQ(thrown, failure);
      EXPECT_STREQ(thrown.what(), failure.what());
      EXPECT_EQ(thrown.get_mensaje() + thrown.get_detail(), failure.get_mensaje() + failure.get_detail());
      return typeid(thrown);
    }
  };
  for (const auto& [copy, type, prefix] : every_class()) {
    ruvo::exception assigned;
    assigned = ruvo::exception(copy);
    EXPECT_EQ(raised(assigned), type) << type.name();
  }
  struct own : exc::RunTime {
    own() : exc::RunTime(L"x") {}
  };
  const struct {
    ruvo::exception failure;
    std::type_index type;
  } rows[] = {
      {own(), typeid(exc::RunTime)},
      {exc::FileException(1, L"x"), typeid(exc::FileException)},
      {ruvo::exception(0xEBB903E9, L"x"), typeid(exc::fileNotFound)},
      {ruvo::kesta::exception(3, L"x", 14), typeid(exc::invocaError)},
      {ruvo::kesta::exception(77, L"x", 1), typeid(exc::FileException)},
      {ruvo::kesta::exception(77, L"x", 0), typeid(ruvo::kesta::exception)},
      {ruvo::exception(0xEBB91772, L"x"), typeid(exc::JSONException)},      // two classes of one family
      {ruvo::exception(0xEBB932CA, L"x"), typeid(ruvo::kesta::exception)},  // of two
      {ruvo::exception(0xEBB80077, L"x"), typeid(ruvo::exception)},
      {ruvo::exception(0x80070005, L"x"), typeid(ruvo::exception)},
  };
  for (const auto& r : rows) EXPECT_EQ(raised(r.failure), r.type) << r.failure;
  ruvo::exception cleared = exc::NullPointer();
  cleared.clear();
  EXPECT_EQ(raised(cleared), std::type_index(typeid(exc::OkResult)));
}

TEST(exception, details_stand_beside_the_message) {
  exc::NotImplemented plain;
  const std::string report = plain.what();
  EXPECT_EQ(plain.get_detail(), L"");
  plain.set_detail(L"la tabla de precios");
  const ruvo::exception copy = plain;
  plain.set_detail(L"");
  EXPECT_EQ(copy.get_detail(), L"la tabla de precios");
  EXPECT_EQ(plain.get_detail(), L"");
  EXPECT_EQ(copy.what(), report);
  EXPECT_EQ(copy, plain);

  const auto about = [](auto fails) -> std::wstring {
    try {
      fails();
    } catch (const ruvo::exception& error) {
      return error.get_detail();
    } catch (const exc::MissingElement& error) {
      return ruvo::texto::to_utf_16(error.what()) + L": " + error.get_detail();
    } catch (const exc::NullValue& null) {
      EXPECT_FALSE(null);
      return L"null: " + null.get_detail();
    }
    return L"nothing fails";
  };
  const std::wstring denied = system_texts::winerror_message(5), most = std::wstring(200, L'x');
  const ruvo::bundle b = {{L"uno", 1}};
  ruvo::exception err;
  const struct {
    const char* name;
    std::function<void()> fails;
    std::wstring detail;
  } rows[] = {
      {"path", [] { throw exc::fileNotFound(L"a\\b"); }, L"a\\b"},
      {"argument", [] { throw exc::BadArgument(L"nif"); }, L"nif"},
      {"name", [] { ruvo::context().get_enviroment_var(L"NO HAY"); }, L"NO HAY"},
      {"system", [] { throw exc::systemErrorCode(5); }, denied},
      {"family of Windows", [] { throw exc::winregRead(L"x", 5); }, denied},
      {"HRESULT", [] { throw ruvo::exception(0x80070005, L"x"); },
       system_texts::winerror_message(0x80070005)},
      {"date", [] { ruvo::date(L"31/02/2026", ruvo::times::GMT, "%Y"); },
       L"texto \"31/02/2026\", formato \"%Y\""},
      {"long text", [&] { ruvo::time(most + L"y"); }, L"texto \"" + most + L"…\", formato \"%H:%M:%S\""},
      {"parse",
       [&] {
         if (!ruvo::datetime().parse(L"x", L"%Y", err)) err.raise();
       },
       L"texto \"x\", formato \"%Y\""},
      {"no calendar", [] { ruvo::datetime(1LL << 62).to_string(); }, L"segundos 4611686018427387904"},
      {"quality", [] { ruvo::xvar(1).get_quality(L"q"); }, L"q"},
      {"qualities", [] { ruvo::xvar(1).at(L"q"); }, L"invalid map<K, T> key: clave \"q\""},
      {"key", [&] { b.at(L"Dos"); }, L"invalid map<K, T> key: clave \"Dos\""},
      {"header", [] { ruvo::http::request().at(L"Host"); }, L"invalid map<K, T> key: clave \"Host\""},
      {"recipient", [] { ruvo::smtp::email().at(L"a@b.es"); }, L"invalid map<K, T> key: clave \"a@b.es\""},
      {"index",
       [] {
         ruvo::list{1, 2}.at(7);
       },
       L"invalid vector subscript: índice 7, elementos 2"},
      {"wide index", [] { (void)ruvo::list().at(1ULL << 32); },
       L"invalid vector subscript: índice 4294967296, elementos 0"},
      {"no entry", [&] { b.get(L"uno.dos"); }, L"null: ruta \"uno.dos\""},
      {"null value", [] { (void)static_cast<long>(ruvo::var()); }, L"null: "},
      {"held", [&] { throw exc::RunTime(held(exc::BadArgument(L"nif"))); }, L"nif"},
      {"held null", [&] { throw exc::RunTime(held(exc::NullValue())); }, L"valor nulo"},
  };
  for (const auto& r : rows) EXPECT_EQ(about(r.fails), r.detail) << r.name;
}

TEST(exception, windows_errors_add_the_systems_text) {
  const exc::ShellExecuteException error(L"No se abre", 2);
  EXPECT_EQ(error.get_raw_code(), 0xEBB92EF4);
  const std::wstring message = error.get_mensaje();
  EXPECT_EQ(message.substr(0, 15), L"No se abre (2: ");
  EXPECT_GT(message.size(), 17u);
  EXPECT_EQ(message.back(), L')');
  EXPECT_GT(message[message.size() - 2], L' ');  // no blank before the bracket
  EXPECT_NE(std::string(error.what()).find("MESSAGE: No se abre\r\n"), std::string::npos);
  const exc::winregRead read(L"x", 0xFFFFFFFF);
  EXPECT_EQ(read.get_raw_code(), 0xEBB90FA6);
  EXPECT_EQ(read.get_mensaje().substr(0, 14), L"x (4294967295:");
}
