// SPDX-License-Identifier: BSL-1.0

// Reading JSON into values and writing it back, on a heap that has been in use for a while. Text is wide on
// both sides: a peer that works on narrow text pays for the conversion (made by this library's converter), as
// its user would. Rows of UTF-8 have none.
//
//   bench_json [FILE.json...]

#include <ruvo/ruvo.hpp>

#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include <boost/json/src.hpp>
#include <nlohmann/json.hpp>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "support/corpora.hpp"
#include "support/harness.hpp"
#include "support/heap.hpp"

namespace {

using bench::corpus;
using wide = rapidjson::UTF16<>;
using wide_document = rapidjson::GenericDocument<wide>;
using wide_buffer = rapidjson::GenericStringBuffer<wide>;

// The peers that read wide text.

void read_by_rapidjson(const std::wstring& text) {
  wide_document document;
  document.Parse(text.c_str());
  bench::use(document);
}

void read_by_boost(const std::wstring& text) {
  const auto document = boost::json::parse(ruvo::texto::to_utf_8(text));
  bench::use(document);
}

/// Its blocks are given back at once, with what they come from.
void read_by_boost_monotonic(const std::wstring& text) {
  boost::json::monotonic_resource memory;
  const auto document = boost::json::parse(ruvo::texto::to_utf_8(text), &memory);
  bench::use(document);
}

std::vector<bench::target> reading_targets(const corpus& c) {
  const bool numbers = c.kind == corpus::doubles;
  return {{"nlohmann", numbers ? 4.0 : 1.8},
          {"RapidJSON", numbers ? 0.85 : 1.0},
          {"Boost", 1.0},
          {"Boost monotonic", numbers ? 1.0 : 1.5}};
}

/// From text to a document, and the document's end.
void read(bench::table& table, const corpus& c, const std::wstring& text) {
  ruvo::serializer::json json;
  table.row("read", c.name, {static_cast<double>(text.size()), bench::amount::characters},
            {{"kesta",
              [&] {
                ruvo::bundle document;
                json.deserialize(document, text, nullptr);
                bench::use(document);
              }},
             {"nlohmann",
              [&] {
                const auto document = nlohmann::json::parse(ruvo::texto::to_utf_8(text));
                bench::use(document);
              }},
             {"RapidJSON", [&] { read_by_rapidjson(text); }},
             {"Boost", [&] { read_by_boost(text); }},
             {"Boost monotonic", [&] { read_by_boost_monotonic(text); }}},
            reading_targets(c));
}

/// From a document to a text of its own, in key order where the library has a choice.
void write(bench::table& table, const corpus& c, const std::wstring& text) {
  ruvo::serializer::json json;
  ruvo::bundle own;
  json.deserialize(own, text, nullptr);
  const std::string narrow = ruvo::texto::to_utf_8(text);
  const auto nlohmann = nlohmann::json::parse(narrow);
  const auto boost = boost::json::parse(narrow);
  wide_document rapid;
  rapid.Parse(text.c_str());

  std::wstring written;
  json.serialize(written, own);
  const double floor = c.kind == corpus::doubles ? 1.2 : 1.5;
  const double aim = c.kind == corpus::small_objects ? 0.7 : 1.0;
  table.row("write", c.name, {static_cast<double>(written.size()), bench::amount::characters},
            {{"kesta",
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
                rapidjson::Writer<wide_buffer, wide, wide> writer(buffer);
                rapid.Accept(writer);
                const std::wstring out(buffer.GetString(), buffer.GetSize() / sizeof(wchar_t));
                bench::use(out);
              }},
             {"Boost",
              [&] {
                const std::wstring out = ruvo::texto::to_utf_16(boost::json::serialize(boost));
                bench::use(out);
              }}},
            {{"nlohmann", floor}, {"Boost", aim}});
}

/// The same in standard JSON: from UTF-8, which all but the wide peer read directly, and from wide text.
void read_standard(bench::table& table, const corpus& c, const std::wstring& text) {
  using ruvo::serializer::read_standard_json;
  table.row("standard read, UTF-8", c.name, {static_cast<double>(c.text.size()), bench::amount::characters},
            {{"kesta",
              [&] {
                ruvo::bundle document;
                bench::use(read_standard_json(document, c.text));
                bench::use(document);
              }},
             {"nlohmann",
              [&] {
                const auto document = nlohmann::json::parse(c.text);
                bench::use(document);
              }},
             {"RapidJSON",
              [&] {
                rapidjson::Document document;
                document.Parse(c.text.c_str());
                bench::use(document);
              }},
             {"Boost",
              [&] {
                const auto document = boost::json::parse(c.text);
                bench::use(document);
              }}},
            {{"Boost", 1.0}});
  table.row("standard read, wide", c.name, {static_cast<double>(text.size()), bench::amount::characters},
            {{"kesta",
              [&] {
                ruvo::bundle document;
                bench::use(read_standard_json(document, text));
                bench::use(document);
              }},
             {"RapidJSON", [&] { read_by_rapidjson(text); }},
             {"Boost", [&] { read_by_boost(text); }},
             {"Boost monotonic", [&] { read_by_boost_monotonic(text); }}},
            reading_targets(c));
}

/// The same in standard JSON, from documents in order of insertion: into UTF-8, which all write directly, and
/// into wide text.
void write_standard(bench::table& table, const corpus& c, const std::wstring& text) {
  ruvo::bundle own;
  ruvo::serializer::json().deserialize(own, text, nullptr);
  const auto nlohmann = nlohmann::ordered_json::parse(c.text);
  const auto boost = boost::json::parse(c.text);
  rapidjson::Document rapid;
  rapid.Parse(c.text.c_str());
  wide_document wide_rapid;
  wide_rapid.Parse(text.c_str());

  std::string written;
  if (ruvo::serializer::write_standard_json(written, own)) return;
  const bench::amount size = {static_cast<double>(written.size()), bench::amount::characters};
  table.row("standard write, UTF-8", c.name, size,
            {{"kesta",
              [&] {
                std::string out;
                bench::use(ruvo::serializer::write_standard_json(out, own));
                bench::use(out);
              }},
             {"nlohmann", [&] { bench::use(nlohmann.dump()); }},
             {"RapidJSON",
              [&] {
                rapidjson::StringBuffer buffer;
                rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
                rapid.Accept(writer);
                bench::use(std::string(buffer.GetString(), buffer.GetSize()));
              }},
             {"Boost", [&] { bench::use(boost::json::serialize(boost)); }}},
            {{"Boost", 1.0}});
  table.row("standard write, wide", c.name, size,
            {{"kesta",
              [&] {
                std::wstring out;
                bench::use(ruvo::serializer::write_standard_json(out, own));
                bench::use(out);
              }},
             {"nlohmann", [&] { bench::use(ruvo::texto::to_utf_16(nlohmann.dump())); }},
             {"RapidJSON",
              [&] {
                wide_buffer buffer;
                rapidjson::Writer<wide_buffer, wide, wide> writer(buffer);
                wide_rapid.Accept(writer);
                bench::use(std::wstring(buffer.GetString(), buffer.GetSize() / sizeof(wchar_t)));
              }},
             {"Boost", [&] { bench::use(ruvo::texto::to_utf_16(boost::json::serialize(boost))); }}},
            {{"Boost", 1.0}});
}

/// Whether all can read the document: a comparison with one that gave up would be worth nothing.
bool readable(const std::wstring& text) {
  ruvo::bundle document;
  const std::string narrow = ruvo::texto::to_utf_8(text);
  boost::system::error_code refused;
  boost::json::parse(narrow, refused);
  return !ruvo::serializer::json().deserialize(document, text) && nlohmann::json::accept(narrow) &&
         !refused && !wide_document().Parse(text.c_str()).HasParseError();
}

/// Reads the documents as often as a program does that has been running for a while.
void read_before(const std::vector<corpus>& all) {
  for (int turn = 0; turn < 3; ++turn) {
    for (const corpus& c : all) {
      const std::wstring text = ruvo::texto::to_utf_16(c.text);
      ruvo::bundle document, standard;
      ruvo::serializer::json().deserialize(document, text, nullptr);
      if (!ruvo::serializer::read_standard_json(standard, text)) bench::use(standard);
      if (!readable(text)) continue;
      read_by_boost(text);
      read_by_rapidjson(text);
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<corpus> all = bench::corpora(argc, argv);
  bench::scatter_heap();
  read_before(all);
  bench::table table("json");
  for (const corpus& c : all) {
    try {
      const std::wstring text = ruvo::texto::to_utf_16(c.text);
      if (!readable(text)) {
        std::printf("%s: left out, not every library reads it\n", c.name.c_str());
        continue;
      }
      read(table, c, text);
      write(table, c, text);
      read_standard(table, c, text);
      write_standard(table, c, text);
    } catch (const std::exception& error) {
      std::printf("%s: left out: %s\n", c.name.c_str(), error.what());
    }
  }
}
