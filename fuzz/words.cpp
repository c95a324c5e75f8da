// SPDX-License-Identifier: BSL-1.0

// Words, names, identifiers and numbers: every function gives a result, and cleaning a second time changes
// nothing.

#include <ruvo/texto.hpp>

#include "fuzz.hpp"

using namespace ruvo::texto;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::wstring text = fuzz::wide(data, size);
  const auto settles = [&text](auto function) {
    const std::wstring once = function(text);
    FUZZ_CHECK(function(once) == once);
  };
  settles([](const std::wstring& t) { return trim_(t); });
  settles([](const std::wstring& t) { return to_lowercase_(t); });
  settles([](const std::wstring& t) { return to_uppercase_(t); });
  settles([](const std::wstring& t) { return to_capitalize_case_(t); });
  settles([](const std::wstring& t) { return to_capitalize_name_(t); });
  settles([](const std::wstring& t) { return limpia_puntuacion_(t, L'_'); });
  settles([](const std::wstring& t) { return limpia_telefono_(t, true); });
  settles([](const std::wstring& t) { return limpia_nif_(t); });
  settles([](std::wstring t) { return limpia_caracteres_especiales(t); });
  static_cast<void>(to_camel_case_(text));
  static_cast<void>(to_snake_case_(text));
  corregir_nombre_municipio(text);
  static_cast<void>(order_name_(text));
  static_cast<void>(web_encode(text));
  q_encoded(to_utf_8(text));

  const bool is_nif = valida_nif(text);
  FUZZ_CHECK(!is_nif || (text.size() == 9 && (valida_dni(text) || valida_nie(text) || valida_cif(text))));
  FUZZ_CHECK(!valida_iban_esp(text) || valida_iban(text));
  FUZZ_CHECK(!is_integer(text) || is_number(text));
  FUZZ_CHECK(!is_email(text) || text.find(L'@') == text.rfind(L'@'));
  valida_tarjeta_credito(text);

  double number = 0;
  for (std::size_t i = 0; i < size && i < sizeof number; ++i)
    reinterpret_cast<unsigned char*>(&number)[i] = data[i];
  const short decimals = static_cast<short>(size > sizeof number ? data[sizeof number] : 0);
  FUZZ_CHECK(!format(number, decimals).empty());
  FUZZ_CHECK(!cifras_letras(number).empty());
  return 0;
}
