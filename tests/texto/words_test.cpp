// SPDX-License-Identifier: BSL-1.0

// Words, names of persons and places, and cleaning.

#include <ruvo/texto.hpp>

#include <algorithm>
#include <cstdint>
#include <random>
#include <regex>
#include <sstream>

#include <gtest/gtest.h>

namespace texto = ruvo::texto;

namespace {

using example = std::pair<std::wstring, std::wstring>;
using made_by = std::wstring (*)(const std::wstring&);
using changed_by = std::wstring& (*)(std::wstring&);

std::wstring changed(changed_by change, std::wstring text) {
  EXPECT_EQ(&change(text), &text);
  return text;
}

/// What the function makes of each text, and its twin that changes its argument.
void check(const std::vector<example>& rows, made_by make, changed_by change = nullptr) {
  for (const auto& [text, expected] : rows) {
    EXPECT_EQ(make(text), expected) << texto::to_utf_8(text) << " gives " << texto::to_utf_8(make(text));
    if (change) {
      EXPECT_EQ(changed(change, text), expected) << texto::to_utf_8(text);
    }
  }
}

std::wstring text_of(std::mt19937& random, std::wstring_view alphabet, std::size_t most) {
  std::wstring text(random() % (most + 1), L' ');
  for (wchar_t& c : text) c = alphabet[random() % alphabet.size()];
  return text;
}

/// All units in a row, with 'x' around each.
std::wstring all_units() {
  std::wstring text;
  for (std::uint32_t unit = 0; unit < 0x10000; ++unit) text += {L'x', static_cast<wchar_t>(unit)};
  return text + L'x';
}

}  // namespace

TEST(words, camel_and_snake) {
  check({{L"", L""},
         {L"HOLA MUNDO", L"HolaMundo"},
         {L"  año-nuevo_2025 ya", L"AnoNuevo2025Ya"},
         {L"2x3 ÁRBOL", L"2x3Arbol"},
         {L"straße", L"StraE"},
         {L"¿...?", L""}},
        texto::to_camel_case_, texto::to_camel_case);
  check({{L"", L""},
         {L"Hola Mundo", L"hola_mundo"},
         {L"hola mundo", L"holamundo"},
         {L" ¡Árbol Único!", L"arbol_unico"},
         {L"URL", L"u_r_l"},
         {L"hola_mundo 1B", L"holamundo1_b"}},
        texto::to_snake_case_, texto::to_snake_case);
}

TEST(words, capitalised) {
  check({{L"", L""},
         {L" \t\n ", L""},
         {L"JUAN  PEREZ\r\nlopez ", L"Juan Perez Lopez"},
         {L"árbol Árbol ÁRBOL", L"árbol Árbol Árbol"},
         {L"3abc -x ÑANDÚ", L"3abc -x Ñandú"},
         {L"JUAN\x00A0PEREZ\x2003\x3000LOPEZ\x1680", L"Juan Perez Lopez"}},
        texto::to_capitalize_case_, texto::to_capitalize_case);
}

TEST(words, read_as_a_stream_reads_them) {
  std::mt19937 random(20250101);
  for (int round = 0; round < 3000; ++round) {
    const std::wstring text = text_of(random, L" \t\v\nabYZ'-,1ñÑ", 20);
    std::wistringstream stream(text);
    std::wstring expected;
    for (std::wstring word; stream >> word; expected += word) {
      std::transform(word.begin() + 1, word.end(), word.begin() + 1,
                     [](wchar_t c) { return texto::to_lowercase(c); });
      if (word[0] != L'ñ') word[0] = texto::to_uppercase(word[0]);
      if (!expected.empty()) expected += L' ';
    }
    ASSERT_EQ(texto::to_capitalize_case_(text), expected) << texto::to_utf_8(text);
    std::wstring name = texto::to_capitalize_name_(text);
    ASSERT_EQ(texto::to_uppercase(name), texto::to_uppercase_(expected)) << texto::to_utf_8(text);
  }
}

TEST(names, of_persons) {
  check({{L"", L""},
         {L"  ángel   DEL RÍO y pérez ", L"Ángel del Río y Pérez"},
         {L"JUAN\x00A0PEREZ\x202F", L"Juan Perez"},
         {L"de la fuente", L"De la Fuente"},
         {L"EUGENI D'ORS", L"Eugeni d'Ors"},
         {L"D'ORS", L"D'Ors"},
         {L"leopoldo o'donnell", L"Leopoldo O'Donnell"},
         {L"LEOPOLDO O’DONNELL", L"Leopoldo O’Donnell"},
         {L"JOAN'S", L"Joan's"},
         {L"J.M. AZNAR", L"J.M. Aznar"},
         {L"JUAN E. PEREZ", L"Juan E. Perez"},
         {L"MªJOSÉ LEÓN (la chata)", L"MªJosé León (La Chata)"},
         {L"RUIZ-DE-LA-PRADA", L"Ruiz-de-la-Prada"},
         {L"josep puig i cadafalch", L"Josep Puig i Cadafalch"},
         {L"juan carlos i", L"Juan Carlos I"},
         {L"ALFONSO XIII DE BORBÓN", L"Alfonso XIII de Borbón"},
         {L"vi IIII xl xxxx xxxix", L"Vi Iiii Xl Xxxx XXXIX"},
         {L"LUDWIG VAN DER ROHE, VON", L"Ludwig van der Rohe, von"},
         {L"ÿves ŁUKASZ", L"ÿves Łukasz"}},
        texto::to_capitalize_name_);
}

TEST(names, particles) {
  for (const wchar_t* word : {L"de", L"DEL", L"La", L"los", L"LAS", L"el", L"y", L"e", L"I", L"da", L"das",
                              L"do", L"dos", L"di", L"van", L"VON", L"der"})
    EXPECT_TRUE(texto::is_article_or_preposition(word)) << texto::to_utf_8(word);
  for (const wchar_t* word : {L"", L"o", L"d", L" de", L"delta", L"ana", L"s", L"de la", L"san"})
    EXPECT_FALSE(texto::is_article_or_preposition(word)) << texto::to_utf_8(word);
}

TEST(names, of_municipalities) {
  const std::vector<example> rows = {{L"", L""},
                                     {L"CORUÑA (A)", L"A Coruña"},
                                     {L" Coruña ,A ", L"A Coruña"},
                                     {L"l'hospitalet de llobregat", L"L'Hospitalet de Llobregat"},
                                     {L"HOSPITALET DE LLOBREGAT ( L' )", L"L'Hospitalet de Llobregat"},
                                     {L"ALCÚDIA, L’", L"L’Alcúdia"},
                                     {L"la seu d'urgell", L"La Seu d'Urgell"},
                                     {L"CASTELLÓN  DE LA PLANA", L"Castellón de la Plana"},
                                     {L"delicias del río y barcelona", L"Delicias del Río y Barcelona"},
                                     {L"VITORIA-GASTEIZ", L"Vitoria-Gasteiz"},
                                     {L"VILA JOIOSA, LA / VILLAJOYOSA", L"La Vila Joiosa/Villajoyosa"},
                                     {L"ses salines", L"Ses Salines"},
                                     {L"sant joan ses figueres", L"Sant Joan ses Figueres"},
                                     {L"ÁVILA", L"Ávila"},
                                     {L"\x00A0MOLAR\x00A0,\x2009"
                                      L"EL\x3000",
                                      L"El Molar"},
                                     {L"EL MOLAR, EL", L"El Molar"},
                                     {L"L'ESCALA (L')", L"L'Escala"},
                                     {L"ELCHE, EL", L"El Elche"},
                                     {L"LA, LA", L"La"},
                                     {L"SANT VICENÇ DELS HORTS", L"Sant Vicenç dels Horts"},
                                     {L"Mieres (Asturias)", L"Mieres (Asturias)"},
                                     {L", LAS", L", Las"},
                                     {L"(A)", L"(A)"},
                                     {L"x)", L"X)"},
                                     {L"/", L"/"}};
  check(rows, texto::corregir_nombre_municipio);
  for (const example& row : rows) EXPECT_EQ(texto::corregir_nombre_municipio(row.second), row.second);
}

// And "dels": the pattern finds the beginning of it.
TEST(names, small_in_municipalities_are_the_words_of_the_pattern) {
  const std::wregex pattern(
      L"(\\bel\\b|\\bla\\b|\\blos\\b|\\blas\\b|\\bde\\b|\\bdel|y\\b|na\\b|i\\b|els\\b|les\\b|ses\\b|sa\\b)");
  const auto verify = [&pattern](const std::wstring& word) {
    const bool is_small = texto::corregir_nombre_municipio(L"x " + word + L" x") == L"X " + word + L" X";
    ASSERT_EQ(is_small, std::regex_match(word, pattern) || word == L"dels") << texto::to_utf_8(word);
  };
  const std::wstring letters = L"abdeilnosxy";
  for (const wchar_t a : letters) {
    verify({a});
    for (const wchar_t b : letters) {
      verify({a, b});
      for (const wchar_t c : letters) {
        verify({a, b, c});
        for (const wchar_t d : letters) verify({a, b, c, d});
      }
    }
  }
}

TEST(names, order) {
  check({{L"  Juan  García ", L"Juan  García"},
         {L"López , Ana,, María ", L"Ana María López"},
         {L"López,", L"López"},
         {L", Juan", L"Juan"},
         {L"", L""},
         {L" , ,\t", L""}},
        texto::order_name_);
}

TEST(cleaning, every_unit_follows_the_tables) {
  const std::wstring accented =
      L"0123456789AÀÁÂÃÄÅÆBCÇDÐEÈÉÊËFGHIÌÍÎÏJKLMNÑOÒÓÔÕÖPQRSTUÙÚÛÜVWXYÝZ"
      L"aàáâãäåæbcçdðeèéêëfghiìíîïjklmnñoòóôõöpqrstuùúûüvwxyýz";
  const std::wstring plain =
      L"0123456789AAAAAAAABCCDDEEEEEFGHIIIIIJKLMNNOOOOOOPQRSTUUUUUVWXYYZ"
      L"aaaaaaaabccddeeeeefghiiiiijklmnnoooooopqrstuuuuuvwxyyz";
  ASSERT_EQ(accented.size(), 118U);
  ASSERT_EQ(plain.size(), 118U);
  const std::wstring all = all_units();
  std::wstring expected = all;
  for (wchar_t& c : expected) {
    const std::size_t at = accented.find(c);
    ASSERT_EQ(texto::limpia_puntuacion(c, L'_'), at == accented.npos ? L'_' : plain[at]);
    if (at != accented.npos) c = plain[at];
    ASSERT_EQ(texto::limpia_puntuacion(all[static_cast<std::size_t>(&c - expected.data())], 0), c);
  }
  EXPECT_TRUE(texto::limpia_puntuacion_(all, L'_') == expected);
  std::wstring text = L"¿Qué? ÿßØ";
  EXPECT_EQ(&texto::limpia_puntuacion(text, L'_'), &text);
  EXPECT_EQ(text, L"¿Que? ÿßØ");
}

TEST(cleaning, special_characters) {
  const auto clean = [](const std::wstring& text) {
    return changed(texto::limpia_caracteres_especiales, text);
  };
  check({{L"", L""},
         {L"plain text", L"plain text"},
         {L"“Año” «ñ» ‘a’ D´Ors", L"\"Año\" \"ñ\" 'a' D'Ors"},
         {L"‐1–2—3−4…―", L"-1-2-3-4...-"},
         {L"a\x00A0"
          L"b\x2009"
          L"c\x3000"
          L"d\x2028"
          L"e",
          L"a b c d\ne"},
         {L"\xFEFF"
          L"so\x00ADlo\x200B\x200E",
          L"solo"},
         {L"á€ª\x200D\xD83D\xDE00", L"á€ª\x200D\xD83D\xDE00"}},
        clean);
  // What was replaced is clean; other units stay.
  const std::wstring all = all_units();
  const std::wstring once = clean(all);
  EXPECT_TRUE(clean(once) == once);
  EXPECT_TRUE(once.starts_with(all.substr(0, 2 * 0xA0)));
  for (std::uint32_t unit = 0xC0; unit < 0x2BC; ++unit)
    ASSERT_NE(once.find(static_cast<wchar_t>(unit)), once.npos) << unit;
}

TEST(words, long_and_strange_texts) {
  const std::wstring all = all_units();
  for (const std::wstring& text :
       {all, std::wstring(5000000, L'/'), std::wstring(5000000, L','), std::wstring(5000000, L'd'),
        std::wstring(5000000, L'\''), std::wstring(5000000, L' '), std::wstring(2, L'\xD800')}) {
    EXPECT_LE(texto::to_capitalize_case_(text).size(), text.size());
    EXPECT_LE(texto::to_capitalize_name_(text).size(), text.size());
    EXPECT_LE(texto::corregir_nombre_municipio(text).size(), text.size());
    EXPECT_LE(texto::order_name_(text).size(), text.size());
    EXPECT_LE(texto::to_camel_case_(text).size(), text.size());
    EXPECT_LE(texto::to_snake_case_(text).size(), 2 * text.size());
    EXPECT_FALSE(texto::is_article_or_preposition(text));
  }
}
