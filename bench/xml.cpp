// SPDX-License-Identifier: BSL-1.0

// Reading XML into values and writing it back, on a heap that has been in use for a while, against parsers
// that work inside the text itself. Their copy of the text counts, as their user would need one.

#include <ruvo/ruvo.hpp>

#include <cstddef>
#include <iterator>
#include <string>

#include <rapidxml/rapidxml.hpp>
#include <rapidxml/rapidxml_print.hpp>

#define PUGIXML_HEADER_ONLY
#define PUGIXML_WCHAR_MODE
#include <pugixml/pugixml.hpp>

#include "support/harness.hpp"
#include "support/heap.hpp"
#include "support/xml_catalogue.hpp"

namespace {

using rapid_document = rapidxml::xml_document<wchar_t>;

// --- reading

template <class Unit>
void read_by_rapidxml(std::basic_string<Unit> copy) {
  rapidxml::xml_document<Unit> document;
  document.template parse<0>(copy.data());
  bench::use(document);
}

/// It makes its own copy. Its nodes are wide, so bytes are converted on the way.
void read_by_pugixml(const std::wstring& text) {
  pugi::xml_document document;
  document.load_string(text.c_str());
  bench::use(document);
}
void read_by_pugixml(const std::string& bytes) {
  pugi::xml_document document;
  document.load_buffer(bytes.data(), bytes.size(), pugi::parse_default, pugi::encoding_utf8);
  bench::use(document);
}

template <class Text, class Own>
void read(bench::table& table, const char* what, double characters, const Text& text, Own own) {
  table.row("read", what, {characters, bench::amount::characters},
            {{"kesta", own},
             {"RapidXML", [&] { read_by_rapidxml(text); }},
             {"pugixml", [&] { read_by_pugixml(text); }}},
            {{"RapidXML", 0.6}, {"pugixml", 0.5}});
}

void read_all(bench::table& table, const std::wstring& text) {
  const std::string bytes = ruvo::texto::to_utf_8(text);
  const auto characters = static_cast<double>(text.size());
  ruvo::serializer::xml xml(true, false);
  read(table, "catalogue", characters, text, [&] {
    ruvo::bundle document;
    xml.deserialize(document, text, nullptr);
    bench::use(document);
  });
  const auto strictly = [](const auto& given) {
    ruvo::bundle document;
    if (!ruvo::serializer::read_well_formed_xml(document, given)) bench::use(document);
  };
  read(table, "well-formed", characters, text, [&] { strictly(text); });
  read(table, "well-formed, UTF-8", characters, bytes, [&] { strictly(bytes); });
}

// --- writing

/// Collects what pugixml writes.
struct wide_text : pugi::xml_writer {
  void write(const void* data, std::size_t size) override {
    out.append(static_cast<const wchar_t*>(data), size / sizeof(wchar_t));
  }
  std::wstring out;
};

void write(bench::table& table, const std::wstring& text) {
  ruvo::serializer::xml xml(true, false);
  ruvo::bundle own;
  xml.deserialize(own, text, nullptr);
  std::wstring copy = text, written;
  rapid_document rapid;
  rapid.parse<0>(copy.data());
  pugi::xml_document pugi;
  pugi.load_string(text.c_str());
  xml.serialize(written, own);
  table.row("write", "catalogue", {static_cast<double>(written.size()), bench::amount::characters},
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
              }},
             {"pugixml",
              [&] {
                wide_text to;
                pugi.save(to, L"", pugi::format_raw, pugi::encoding_wchar);
                bench::use(to.out);
              }}},
            {{"RapidXML", 1.0}});
}

/// For others: in wide text, and in the bytes that are sent. False where they cannot be written.
bool write_well_formed(bench::table& table, const std::wstring& text) {
  ruvo::serializer::xml xml(true, false);
  ruvo::bundle strict;
  std::string message;
  if (ruvo::serializer::read_well_formed_xml(strict, text)) return false;
  if (ruvo::serializer::write_well_formed_xml(message, strict)) return false;
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
  return true;
}

}  // namespace

int main() {
  const std::wstring text = bench::xml_catalogue(5000000);
  bench::scatter_heap();
  bench::table table("xml");
  read_all(table, text);
  write(table, text);
  return write_well_formed(table, text) ? 0 : 1;
}
