// SPDX-License-Identifier: BSL-1.0

// Reading XML into values and writing it back, against a parser that works inside the text itself. Its copy
// of the text counts, as its user would need one.

#include <ruvo/ruvo.hpp>

#include <iterator>
#include <random>
#include <string>

#include <rapidxml/rapidxml.hpp>
#include <rapidxml/rapidxml_print.hpp>

#include "support/harness.hpp"

namespace {

using rapid_document = rapidxml::xml_document<wchar_t>;

/// A catalogue of articles with attributes, and with entities in every fifth text or so.
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

int main() {
  bench::table table("xml");
  const std::wstring text = catalogue().text(5000000);
  ruvo::serializer::xml xml(true, false);
  const bench::amount read{static_cast<double>(text.size()), bench::amount::characters};
  table.row("read", "catalogue", read,
            {{"kesta",
              [&] {
                ruvo::bundle document;
                xml.deserialize(document, text, nullptr);
                bench::use(document);
              }},
             {"RapidXML",
              [&] {
                std::wstring copy = text;
                rapid_document document;
                document.parse<0>(copy.data());
                bench::use(document);
              }}},
            {{"RapidXML", 0.3}});
  const std::string bytes = ruvo::texto::to_utf_8(text);
  const auto strictly = [](const auto& given) {
    ruvo::bundle document;
    if (!ruvo::serializer::read_well_formed_xml(document, given)) bench::use(document);
  };
  const auto rapidly = []<class Unit>(std::basic_string<Unit> given) {
    rapidxml::xml_document<Unit> document;
    document.template parse<0>(given.data());
    bench::use(document);
  };
  table.row("read", "well-formed", read,
            {{"kesta", [&] { strictly(text); }}, {"RapidXML", [&] { rapidly(text); }}}, {});
  table.row("read", "well-formed, UTF-8", read,
            {{"kesta", [&] { strictly(bytes); }}, {"RapidXML", [&] { rapidly(bytes); }}}, {});

  ruvo::bundle own;
  xml.deserialize(own, text, nullptr);
  std::wstring copy = text, written;
  rapid_document rapid;
  rapid.parse<0>(copy.data());
  xml.serialize(written, own);
  const bench::amount write{static_cast<double>(written.size()), bench::amount::characters};
  table.row("write", "catalogue", write,
            {{"kesta",
              [&] {
                std::wstring out;
                xml.serialize(out, own);
                bench::use(out);
              }},
             {"RapidXML",
              [&] {
                std::wstring out;
                rapidxml::print(std::back_inserter(out), rapid, rapidxml::print_no_indenting);
                bench::use(out);
              }}},
            {{"RapidXML", 0.8}});

  // For others: in wide text, and in the bytes that are sent.
  ruvo::bundle strict;
  std::string message;
  if (ruvo::serializer::read_well_formed_xml(strict, text)) return 1;
  if (ruvo::serializer::write_well_formed_xml(message, strict)) return 1;
  const bench::amount sent{static_cast<double>(ruvo::texto::to_utf_16(message).size()),
                           bench::amount::characters};
  const auto by_dialect = [&] {
    std::wstring out;
    xml.serialize(out, strict);
    bench::use(out);
  };
  const auto as = [&]<class Text>(Text out) {
    if (!ruvo::serializer::write_well_formed_xml(out, strict)) bench::use(out);
  };
  table.row("write", "well-formed", sent, {{"kesta", [&] { as(std::wstring()); }}, {"dialect", by_dialect}},
            {{"dialect", 1.0}});
  table.row("write", "well-formed, UTF-8", sent,
            {{"kesta", [&] { as(std::string()); }}, {"dialect", by_dialect}}, {{"dialect", 1.0}});
}
