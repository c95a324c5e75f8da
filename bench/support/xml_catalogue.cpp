// SPDX-License-Identifier: BSL-1.0
#include "support/xml_catalogue.hpp"

#include <random>

namespace bench {

namespace {

class catalogue {
 public:
  std::wstring text(std::size_t characters) {
    out_ = L"<?xml version=\"1.0\" encoding=\"UTF-8\"?><catalogo fecha=\"21-11-2026\">";
    while (out_.size() < characters) article();
    return out_ + L"</catalogo>";
  }

 private:
  unsigned below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }
  std::wstring number(unsigned limit) { return std::to_wstring(below(limit)); }
  std::wstring words(unsigned count) {
    static const wchar_t* const all[] = {L"tornillo", L"de",       L"cabeza", L"hexagonal",  L"acero",
                                         L"tuerca",   L"arandela", L"para",   L"estantería", L"ñandú",
                                         L"métrica",  L"larga",    L"y",      L"caja",       L"con"};
    std::wstring out;
    for (; count > 0; --count) {
      if (!out.empty()) out += L' ';
      out += all[below(15)];
    }
    if (below(5) == 0) out += L" &lt; 5 &gt; d&apos;A &amp; B";
    return out;
  }
  void element(const wchar_t* name, const std::wstring& value) {
    out_ += L'<';
    ((out_ += name) += L'>') += value;
    ((out_ += L"</") += name) += L'>';
  }
  void article() {
    out_ += L"<articulo id=\"" + number(1000000) + L"\" familia=\"" + words(1) + L"\">";
    element(L"nombre", words(3));
    element(L"descripcion", words(8 + below(12)));
    element(L"precio", number(1000) + L"." + number(100));
    element(L"unidades", number(500));
    out_ += L"<medidas unidad=\"mm\">";
    for (const wchar_t* const name : {L"ancho", L"alto", L"fondo"}) element(name, number(2000));
    out_ += L"</medidas><etiquetas>";
    for (unsigned n = 1 + below(3); n > 0; --n) element(L"etiqueta", words(1));
    out_ += L"</etiquetas></articulo>";
  }

  std::mt19937 random_{20261121};
  std::wstring out_;
};

}  // namespace

std::wstring xml_catalogue(std::size_t characters) { return catalogue().text(characters); }

std::wstring xml_rows(std::size_t characters) {
  std::mt19937 random(20261122);
  std::wstring out = L"<filas>";
  while (out.size() < characters) {
    const auto number = [&] { return std::to_wstring(random() % 100000); };
    out += L"<fila id=\"" + number() + L"\" grupo=\"" + number() + L"\"><nombre>tornillo</nombre></fila>";
  }
  return out + L"</filas>";
}

}  // namespace bench
