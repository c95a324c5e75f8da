// The examples of docs/texto.md: each is computed, and stands on the page as it stands here; no function of
// the headers lacks one.

#include <ruvo/binary.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/texto.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <locale>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace texto = ruvo::texto;

namespace {

std::string read(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(in), {}};
  std::erase(text, '\r');
  return text;
}

class texto_page : public testing::Test {
 protected:
  void SetUp() override {
    page_ = read(KESTA_SOURCE_DIR "/docs/texto.md");
    ASSERT_FALSE(page_.empty());
  }
  void expect_row(const std::string& expression, const std::string& result) {
    EXPECT_NE(page_.find("\n| `" + expression + "` | `" + result + "` | "), page_.npos) << expression;
    ++rows_;
  }

  std::string page_;
  std::ptrdiff_t rows_ = 0;
};

#define EXAMPLE(result, ...)           \
  do {                                 \
    EXPECT_EQ((__VA_ARGS__), result);  \
    expect_row(#__VA_ARGS__, #result); \
  } while (false)

TEST_F(texto_page, examples_hold) {
  // Trimming, case, words and cleaning
  EXAMPLE(L"a b  ", texto::ltrim_(L"  a b  "));
  EXAMPLE(L"  a b", texto::rtrim_(L"  a b  "));
  EXAMPLE(L"a b", texto::trim_(L"  a b  "));
  EXAMPLE(L"abc", texto::clear(L"a\tb\r\nc"));
  EXAMPLE(L"b", texto::safe_non_empty(std::wstring(L""), std::wstring(L"b")));
  EXAMPLE(L'é', texto::to_lowercase(L'É'));
  EXAMPLE(L"ñandú 1", texto::to_lowercase_(L"ÑANDÚ 1"));
  EXAMPLE(L'Ñ', texto::to_uppercase(L'ñ'));
  EXAMPLE(L"ÑANDÚ 1", texto::to_uppercase_(L"ñandú 1"));
  EXAMPLE(L"HolaMundo", texto::to_camel_case_(L"hola mundo"));
  EXAMPLE(L"hola_mundo", texto::to_snake_case_(L"HolaMundo"));
  EXAMPLE(L"Juan Perez", texto::to_capitalize_case_(L"JUAN  perez"));
  EXAMPLE(L"María de la O García-López", texto::to_capitalize_name_(L"MARÍA DE LA O GARCÍA-LÓPEZ"));
  EXAMPLE(true, texto::is_article_or_preposition(L"DEL"));
  EXAMPLE(L"Las Palmas de Gran Canaria", texto::corregir_nombre_municipio(L"PALMAS DE GRAN CANARIA, LAS"));
  EXAMPLE(L"Juan García López", texto::order_name_(L"García López, Juan"));
  EXAMPLE(L'_', texto::limpia_puntuacion(L'?', L'_'));
  EXAMPLE(L"¿Que?", texto::limpia_puntuacion_(L"¿Qué?", L'_'));
  EXAMPLE(L"\"a\" - b...", [] {
    std::wstring t = L"“a” – b…";
    return texto::limpia_caracteres_especiales(t);
  }());
  // Search, masks and splitting
  EXAMPLE(true, texto::starts_with(L"informe.txt", L"inf"));
  EXAMPLE(true, texto::ends_with(L"informe.txt", L".txt"));
  EXAMPLE(true, texto::contains(L"informe.txt", L"rme"));
  EXAMPLE(true, texto::has_mask(L"*.txt"));
  EXAMPLE(true, texto::match_mask(L"informe.txt", L"inf*.t?t", texto::busqueda_completa));
  EXAMPLE(true, texto::match_mask(L"informe.txt", L"forme", texto::busqueda_contiene));
  EXAMPLE(L"inf%.t_t", texto::mask_to_sql(L"inf*.t?t"));
  EXAMPLE(L"a b", texto::content(L"name=\"a b\""));
  EXAMPLE(L"1 234 567", [] {
    std::wstring t = L"1.234.567";
    texto::replace(t, L'.', L' ');
    return t;
  }());
  EXAMPLE(L"1.5$2", [] {
    std::wstring t = L"1.5 * 2";
    texto::safe_replace(t, L" * ", L"$");
    return t;
  }());
  EXAMPLE(L"a-b-c", [] {
    std::wstring t = L"a*b*c";
    texto::safe_replace(t, L'*', L'-');
    return t;
  }());
  EXAMPLE(L"a/b, c", [] {
    std::wstring t = L"a, b, c";
    texto::std_replace(t, L", ", L"/", false);
    return t;
  }());
  EXAMPLE(L"1\\.5\\ \\(a\\)", texto::escape_regex_pattern(L"1.5 (a)"));
  EXAMPLE((std::vector<std::wstring>{L"", L"a", L"", L"b"}), texto::split(L",a,,b,", L","));
  EXAMPLE((std::vector<std::wstring>{L"x", L"a", L"b"}), [] {
    std::vector<std::wstring> v{L"x"};
    texto::split_on(v, L"a--b", L"--");
    return v;
  }());
  // Patterns
  EXAMPLE(true, texto::match(L"2024-05-17", L"\\d{4}-\\d\\d-\\d\\d"));
  EXAMPLE(L"2 + 1", [] {
    std::wstring s = L"1 + 2";
    return texto::replace(s, L"(\\d) \\+ (\\d)", L"$2 + $1");
  }());
  EXAMPLE(L"a<1>b<22>", texto::replace_(L"a1b22", L"\\d+", L"<$&>"));
  // Encodings
  EXAMPLE(L"año", texto::to_utf_16("a\xC3\xB1o"));
  EXAMPLE("a\xC3\xB1o", texto::to_utf_8(L"año"));
  EXAMPLE("hola", [] {
    std::string s = "\xEF\xBB\xBFhola";
    texto::remove_win_bom(s);
    return s;
  }());
  EXAMPLE("hola", texto::to_utf8("hola", std::locale()));
  EXAMPLE("hola", texto::from_utf8("hola", std::locale()));
  EXAMPLE(L"n = 12", [] {
    std::wostringstream s;
    s << L"n = " << 12;
    return texto::stream_to_string(s);
  }());
  EXAMPLE("YWI=", [] {
    std::string s;
    texto::base64_encode(s, std::string("ab"), false);
    return s;
  }());
  EXAMPLE("ab", [] {
    std::string s;
    texto::base64_decode(s, std::string("YWI"));
    return s;
  }());
  EXAMPLE("YWI=", [] {
    std::string s;
    texto::set_binary_data(s, {97, 98, 99}, 2);
    return s;
  }());
  EXAMPLE(std::vector<unsigned char>({97, 98}), [] {
    std::vector<unsigned char> v;
    texto::get_binary_data("YWI=", v);
    return v;
  }());
  EXAMPLE(L"7a", texto::char_to_hex(L'z'));
  EXAMPLE(L"686f6c61", texto::string_to_hex(L"hola"));
  EXAMPLE(L"686f6c61", texto::bytes_to_hexString(reinterpret_cast<const unsigned char*>("hola"), 4));
  EXAMPLE(L"hola", texto::hex_to_string(L"686F6c61"));
  EXAMPLE(15, texto::hex_char_to_int(L'F'));
  EXAMPLE("4722366482869645213695", texto::hex_to_dec("FFFFFFFFFFFFFFFFFF"));
  EXAMPLE(L"a%C3%B1o%2050%25", texto::web_encode(L"año 50%"));
  EXAMPLE("=?UTF-8?Q?Se=C3=B1or_P=C3=A9rez?=", texto::q_encoded("Se\xC3\xB1or P\xC3\xA9rez"));
  // SQL, HTML, JSON and memos
  EXAMPLE(L"O''Donnell", texto::escaped_to_sql_(L"O'Donnell"));
  EXAMPLE(L"l''u", [] {
    std::wstring t = L"l'u";
    texto::escaped_to_sql(t);
    return t;
  }());
  EXAMPLE(L"O'Donnell", texto::escaped_from_sql_(L"O''Donnell"));
  EXAMPLE(L"l'u", [] {
    std::wstring t = L"l''u";
    texto::escaped_from_sql(t);
    return t;
  }());
  EXAMPLE(L"Espa&ntilde;a & m&aacute;s", [] {
    std::wstring t = L"España & más";
    texto::escaped_to_html(t);
    return t;
  }());
  EXAMPLE(L"España", [] {
    std::wstring t = L"Espa&ntilde;a";
    texto::escaped_from_html(t);
    return t;
  }());
  EXAMPLE(L"uno<br/>d&oacute;s", texto::to_html_(L"uno\r\ndós"));
  EXAMPLE(L"a<br/>b", [] {
    std::wstring t = L"a\nb";
    texto::to_html(t);
    return t;
  }());
  EXAMPLE(L"dós\r\ntres", texto::to_plain_(L"<b>d&oacute;s</b><br/>tres"));
  EXAMPLE(L"a", [] {
    std::wstring t = L"<i>a</i>";
    texto::to_plain(t);
    return t;
  }());
  EXAMPLE(false, texto::is_html(L"1 < 2"));
  EXAMPLE(L"hola", texto::remove_html_and_body_tags_(L"<HTML><body>hola</body></HTML>"));
  EXAMPLE(6ull, [] {
    std::wstring t = L"<html><body>hola";
    return texto::remove_html_and_body_tags(t);
  }());
  EXAMPLE(L"a\\tb\\n", [] {
    std::wstring t = L"a\tb\n";
    texto::escaped_to_json(t);
    return t;
  }());
  EXAMPLE(L"a\\tb", [] {
    ruvo::bundle b{{L"k", L"a\tb"}};
    texto::escaped_to_json(b, true);
    return b.get_string(L"k");
  }());
  EXAMPLE(L"{\n  \"a\": [\n    1,\n    2\n  ]\n}", texto::print_json(L"{\"a\":[1,2]}"));
  EXAMPLE(L"hola", [] {
    ruvo::binary b;
    texto::decodifica_memo(b, L"aG9sYQ==");
    return b.to_string();
  }());
  EXAMPLE(L"{\"a\":1}", [] {
    ruvo::bundle b;
    texto::decodifica_memo(b, L"eyJhIjoxfQ==");
    return b.to_string();
  }());
  // Numbers
  EXAMPLE(L"-1.234.567,89", texto::format(-1234567.891, 2));
  EXAMPLE(L"1.234.567", texto::format(1234567L));
  EXAMPLE(4, texto::calculate_length_number(-1207));
  EXAMPLE(L"00042", texto::fill_number(5, 42, L'0'));
  EXAMPLE(L"1.500 kb", texto::format_file_size(1536));
  EXAMPLE(L"MDCCCCLXXXXVIIII", texto::to_roman(1999));
  EXAMPLE(L"Veintiún Mil Treinta y Uno con Cincuenta Céntimos", texto::cifras_letras(21031.5));
  EXAMPLE(true, texto::is_number(L"1.234,5"));
  EXAMPLE(true, texto::is_integer(L"-1207"));
  EXAMPLE(false, texto::is_integer_positive(L"-1207"));
  EXAMPLE(true, texto::is_email(L"ana+1@correo.es"));
  // Identifiers
  EXAMPLE(L"12345678Z", texto::limpia_nif_(L"12.345.678-Z"));
  EXAMPLE(L"+34910000000", texto::limpia_telefono_(L"+34 910 00 00 00", true));
  EXAMPLE(L"****34", texto::ocultar_numeros_cuenta(L"ES1234", 2, L'*'));
  EXAMPLE(true, texto::valida_dni(L"12345678Z"));
  EXAMPLE(true, texto::valida_nie(L"X1234567L"));
  EXAMPLE(true, texto::valida_cif(L"A1234567D"));
  EXAMPLE(true, texto::valida_nif(L"X1234567L"));
  EXAMPLE(true, texto::valida_iban(L"GB82WEST12345698765432"));
  EXAMPLE(true, texto::valida_iban_esp(L"ES9121000418450200051332"));
  EXAMPLE(true, texto::valida_tarjeta_credito(L"4111111111111111"));

  std::ptrdiff_t on_page = 0;
  for (std::size_t at = 0; (at = page_.find("\n| `", at)) != page_.npos; ++at) ++on_page;
  EXPECT_EQ(on_page, rows_) << "lines of the page that are no example here";
}

TEST_F(texto_page, names_every_function) {
  int functions = 0;
  for (const auto& header : std::filesystem::directory_iterator(KESTA_SOURCE_DIR "/include/ruvo/texto")) {
    const std::string text = read(header.path());
    for (std::size_t at = 0; (at = text.find("KESTA_API ", at)) != text.npos; ++at) {
      const std::size_t end = text.find('(', at), begin = text.find_last_of(" *&\n", end) + 1;
      const std::string name = text.substr(begin, end - begin);
      EXPECT_TRUE(page_.find("texto::" + name + "(") != page_.npos ||
                  page_.find("texto::" + name + "_(") != page_.npos)
          << name;
      ++functions;
    }
  }
  EXPECT_GT(functions, 100);
}

}  // namespace
