#include <ruvo/exc.hpp>
#include <ruvo/file.hpp>
#include <ruvo/texto.hpp>

#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>
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

/// Codes and messages on the page, with the texts that the classes of the catalogue are told here.
std::map<unsigned long, std::vector<std::wstring>> page_messages() {
  std::map<unsigned long, std::vector<std::wstring>> found;
  const std::wstring told[] = {L"31", L"5", system_texts::winerror_message(5)};
  std::ifstream in(KESTA_SOURCE_DIR "/docs/ERRORS.md", std::ios::binary);
  for (std::string line; std::getline(in, line);) {
    if (!line.starts_with("| `")) continue;
    const auto columns = ruvo::texto::split(ruvo::texto::to_utf_16(line), L" | ");
    std::wstring message = columns.at(5);
    for (int n = 0; n < 3; ++n) ruvo::texto::safe_replace(message, L"%" + std::to_wstring(n + 1), told[n]);
    found[std::stoul(columns[1], nullptr, 16)].push_back(message);
  }
  for (auto& [code, messages] : found) std::ranges::sort(messages);
  return found;
}

}  // namespace

TEST(Exception, EveryClassOfTheCatalogueSaysWhatThePageSays) {
  EXPECT_EQ(catalogue_messages(), page_messages());
  EXPECT_GT(catalogue_messages().size(), 70u);
}

TEST(Exception, CodesAndMessages) {
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

TEST(Exception, FamiliesAreBasesOfTheirLeaves) {
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

TEST(Exception, CodeTellsItsParts) {
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

TEST(Exception, ComparesByRawCode) {
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

TEST(Exception, ReportStaysBehindAChangedMessage) {
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

TEST(Exception, ACopyOutlivesItsSourceAndAMovedOneStaysWhole) {
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

TEST(Exception, WindowsErrorsAddTheSystemsText) {
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
