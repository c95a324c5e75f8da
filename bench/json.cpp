// Reading JSON into values and writing it back, text wide on both sides: a peer that works on narrow text pays
// for its conversion (with this library's converter), as its user would.

#include "support/corpora.hpp"
#include "support/harness.hpp"

#include <ruvo/ruvo.hpp>

#include <boost/json/src.hpp>
#include <nlohmann/json.hpp>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace {

using wide_document = rapidjson::GenericDocument<rapidjson::UTF16<>>;
using wide_buffer = rapidjson::GenericStringBuffer<rapidjson::UTF16<>>;

void read(const bench::corpus& c, const std::wstring& text) {
  ruvo::serializer::json json;
  const std::vector<bench::competitor> all = {
      {"kesta",
       [&] {
         ruvo::bundle document;
         json.deserialize(document, text);
         bench::use(document);
       }},
      {"nlohmann",
       [&] {
         const auto document = nlohmann::json::parse(ruvo::texto::to_utf_8(text));
         bench::use(document);
       }},
      {"RapidJSON",
       [&] {
         wide_document document;
         document.Parse(text.c_str());
         bench::use(document);
       }},
      {"Boost",
       [&] {
         const auto document = boost::json::parse(ruvo::texto::to_utf_8(text));
         bench::use(document);
       }},
  };
  const double floor = c.kind == bench::flavour::doubles ? 4.0 : 1.8;
  bench::report("read " + c.name, all, {{"nlohmann", floor}, {"Boost", 1.0}}, static_cast<double>(text.size()));
}

void write(const bench::corpus& c, const std::wstring& text) {
  ruvo::serializer::json json;
  ruvo::bundle own;
  json.deserialize(own, text);
  const std::string narrow = ruvo::texto::to_utf_8(text);
  const auto nlohmann = nlohmann::json::parse(narrow);
  const auto boost = boost::json::parse(narrow);
  wide_document rapid;
  rapid.Parse(text.c_str());
  std::wstring sized;
  json.serialize(sized, own);
  const std::vector<bench::competitor> all = {
      {"kesta",
       [&] {
         std::wstring out;
         json.serialize(out, own);
         bench::use(out);
       }},
      {"nlohmann",
       [&] {
         const std::wstring out = ruvo::texto::to_utf_16(nlohmann.dump());
         bench::use(out);
       }},
      {"RapidJSON",
       [&] {
         wide_buffer buffer;
         rapidjson::Writer<wide_buffer, rapidjson::UTF16<>, rapidjson::UTF16<>> writer(buffer);
         rapid.Accept(writer);
         const std::wstring out(buffer.GetString(), buffer.GetSize() / sizeof(wchar_t));
         bench::use(out);
       }},
      {"Boost",
       [&] {
         const std::wstring out = ruvo::texto::to_utf_16(boost::json::serialize(boost));
         bench::use(out);
       }},
  };
  const double floor = c.kind == bench::flavour::doubles ? 1.2 : 1.5;
  const double aim = c.kind == bench::flavour::small ? 0.7 : 1.0;
  bench::report("write " + c.name, all, {{"nlohmann", floor}, {"Boost", aim}}, static_cast<double>(sized.size()));
}

}  // namespace

int main(int argc, char** argv) {
  std::printf("kesta in million characters a second, then its speed as a multiple of each peer's (the target)\n");
  for (const bench::corpus& c : bench::corpora(argc, argv)) {
    const std::wstring text = ruvo::texto::to_utf_16(c.text);
    read(c, text);
    write(c, text);
  }
}
