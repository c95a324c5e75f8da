// SPDX-License-Identifier: BSL-1.0

// The forms of ruvo::texto for views give what those for texts give, of a view that has no end of its own.

#include <ruvo/texto.hpp>

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace texto = ruvo::texto;

namespace {

/// What each function gives, as texts.
template <class Text>
std::vector<std::wstring> all_answers(const Text& text) {
  using namespace texto;
  std::vector<std::wstring> out = split(text, L";");
  split_on(out, text, L" ");
  for (const bool answer :
       {is_number(text), is_integer(text), is_integer_positive(text), is_email(text), is_html(text),
        starts_with(text, L"a"), ends_with(text, L"a"), contains(text, L"a"), match(text, L"\\w+"),
        has_mask(text), match_mask(text, L"*a*", busqueda_completa), is_article_or_preposition(text),
        valida_dni(text), valida_nie(text), valida_cif(text), valida_nif(text), valida_iban(text),
        valida_iban_esp(text), valida_tarjeta_credito(text)})
    out.push_back(answer ? L"yes" : L"no");
  for (const std::wstring& made : {ltrim_(text),
                                   rtrim_(text),
                                   trim_(text),
                                   clear(text),
                                   to_lowercase_(text),
                                   to_uppercase_(text),
                                   to_camel_case_(text),
                                   to_snake_case_(text),
                                   to_capitalize_case_(text),
                                   to_capitalize_name_(text),
                                   corregir_nombre_municipio(text),
                                   order_name_(text),
                                   limpia_puntuacion_(text, 0),
                                   limpia_nif_(text),
                                   limpia_telefono_(text, true),
                                   ocultar_numeros_cuenta(text, 4, L'*'),
                                   mask_to_sql(text),
                                   content(text),
                                   replace_(text, L"a+", L"b"),
                                   escape_regex_pattern(text),
                                   escaped_to_sql_(text),
                                   escaped_from_sql_(text),
                                   to_html_(text),
                                   to_plain_(text),
                                   remove_html_and_body_tags_(text),
                                   print_json(text),
                                   string_to_hex(text),
                                   web_encode(text),
                                   web_decode(web_encode(text)),
                                   safe_non_empty(text, text)})
    out.push_back(made);
  out.push_back(to_utf_16(to_utf_8(text)));
  return out;
}

TEST(texto, gives_of_views_what_it_gives_of_texts) {
  for (const wchar_t* const each :
       {L"", L" a;b ", L"12", L"-1.234,5", L"ana@example.com", L"00000000T", L"ES9121000418450200051332",
        L"4111111111111111", L"<body>'Añil' & \"Cía\"</body>", L"de", L"Palmas, Las", L"*a?",
        L"{\"a\":[1]}"}) {
    const std::wstring text(each), longer = text + L"a1";
    const std::wstring_view view = std::wstring_view(longer).substr(0, text.size());
    EXPECT_EQ(all_answers(view), all_answers(text)) << texto::to_utf_8(text);
  }
  const std::string_view narrow("00000000T7A", 9), digits("4a4b4cX", 6);
  EXPECT_TRUE(texto::valida_dni(narrow) && texto::valida_nif(narrow) && !texto::valida_iban(narrow));
  EXPECT_EQ(texto::hex_to_string(digits) + texto::hex_to_dec(digits) + texto::q_encoded(narrow),
            "JKL486894000000000T");
  EXPECT_EQ(texto::to_utf_16(narrow) + texto::hex_to_string(std::wstring_view(L"4a")), L"00000000TJ");
  EXPECT_EQ(texto::string_to_hex(digits.substr(0, 1)), L"34");
}

}  // namespace
