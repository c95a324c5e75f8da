// SPDX-License-Identifier: BSL-1.0

// What a document costs in memory: the bytes and the blocks that live after it was read, for each of its
// values, or of its elements and attributes.
//
// Counted are the bytes that are asked of operator new, which this program replaces (RapidJSON and
// pugixml ask functions that count too); what the heap adds to each block is not seen. A value is an object,
// an array, a text, a number, a truth value or a null; keys are not counted as values.
//
//   bench_memory [FILE.json...]

#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include <boost/json/src.hpp>
#include <nlohmann/json.hpp>
#include <rapidjson/document.h>
#include <rapidxml/rapidxml.hpp>

#define PUGIXML_HEADER_ONLY
#define PUGIXML_WCHAR_MODE
#include <pugixml/pugixml.hpp>

#include "support/corpora.hpp"
#include "support/harness.hpp"
#include "support/xml_catalogue.hpp"

namespace {

struct usage {
  long long bytes = 0, blocks = 0;

  usage operator-(const usage& other) const { return {bytes - other.bytes, blocks - other.blocks}; }
};

std::atomic<long long> live_bytes, live_blocks;

usage now() { return {live_bytes, live_blocks}; }

// Each block is preceded by its size.
constexpr std::size_t header = alignof(std::max_align_t);
static_assert(header >= sizeof(std::size_t));

void* counted_take(std::size_t size) noexcept {
  void* const block = std::malloc(header + size);
  if (!block) return nullptr;
  *static_cast<std::size_t*>(block) = size;
  live_bytes += static_cast<long long>(size);
  ++live_blocks;
  return static_cast<std::byte*>(block) + header;
}

void counted_give(void* memory) noexcept {
  if (!memory) return;
  void* const block = static_cast<std::byte*>(memory) - header;
  live_bytes -= static_cast<long long>(*static_cast<std::size_t*>(block));
  --live_blocks;
  std::free(block);
}

/// RapidJSON's base allocator, in its words.
// NOLINTBEGIN(readability-identifier-naming)
struct counted_allocator {
  static constexpr bool kNeedFree = true;

  void* Malloc(std::size_t size) { return size > 0 ? counted_take(size) : nullptr; }
  void* Realloc(void* old, std::size_t old_size, std::size_t size) {
    void* const made = Malloc(size);
    if (made && old) std::memcpy(made, old, std::min(old_size, size));
    counted_give(old);
    return made;
  }
  static void Free(void* memory) noexcept { counted_give(memory); }
};
// NOLINTEND(readability-identifier-naming)

using wide_document =
    rapidjson::GenericDocument<rapidjson::UTF16<>, rapidjson::MemoryPoolAllocator<counted_allocator>,
                               counted_allocator>;

/// `read` makes a document and hands over whatever keeps it alive. It works on a thread of its own, which has
/// ended when the counting is done: what a thread keeps for its next document is not counted, nor can it
/// serve this one, or the first of as many as are asked for.
usage measure(const std::function<std::shared_ptr<void>()>& read, std::size_t times = 1) {
  std::vector<std::shared_ptr<void>> documents(times);
  const usage before = now();
  std::thread([&] { std::generate(documents.begin(), documents.end(), read); }).join();
  return now() - before;
}

long long values_in(const boost::json::value& value) {
  long long count = 1;
  if (const auto* array = value.if_array()) {
    for (const auto& element : *array) count += values_in(element);
  } else if (const auto* object = value.if_object()) {
    for (const auto& member : *object) count += values_in(member.value());
  }
  return count;
}

/// A library's document, or what it is not to exceed.
struct contender {
  std::string name;
  usage document;
  bool pool = false;  // takes a few large blocks, whose number says nothing
};

/// `all` begins with kesta.
void print(bench::table& table, const std::string& of, const std::string& each, long long count,
           const std::vector<contender>& all, const std::vector<bench::target>& bytes_targets) {
  const auto line = [&](const char* unit, const contender& peer, long long usage::*part,
                        const std::vector<bench::target>& targets) {
    const auto own = static_cast<double>(all[0].document.*part);
    const auto its = static_cast<double>(peer.document.*part);
    const auto pieces = static_cast<double>(count);
    table.line({unit + (" a " + each), of, unit, peer.name, own / pieces, its / pieces, own / its,
                bench::comparison::cost},
               targets);
  };
  for (std::size_t n = 1; n < all.size(); ++n) {
    line("bytes", all[n], &usage::bytes, bytes_targets);
    if (!all[n].pool) line("blocks", all[n], &usage::blocks, {{"limit", 1.0}});
  }
}

/// Of a document, or of as many that live at a time.
void compare(bench::table& table, const bench::corpus& c, std::size_t times = 1) {
  const std::wstring text = ruvo::texto::to_utf_16(c.text);
  const long long values = values_in(boost::json::parse(c.text)) * static_cast<long long>(times);
  const auto measure = [times](const auto& read) { return ::measure(read, times); };
  std::vector<contender> all = {
      {"kesta", measure([&] {
         auto document = std::make_shared<ruvo::bundle>();
         ruvo::serializer::json().deserialize(*document, text, nullptr);
         return document;
       })},
      {"nlohmann", measure([&] { return std::make_shared<nlohmann::json>(nlohmann::json::parse(c.text)); })},
      {"RapidJSON", measure([&] {
         auto document = std::make_shared<wide_document>();
         document->Parse(text.c_str());
         return document;
       }),
       true},
      {"Boost", measure([&] { return std::make_shared<boost::json::value>(boost::json::parse(c.text)); })}};
  // The limit was set for records; where small objects prevail their own cost does.
  if (c.kind == bench::corpus::records) all.push_back({"limit", {values * 120, values * 11 / 10}});
  print(table, times > 1 ? std::to_string(times) + " of " + c.name : c.name, "value", values, all,
        {{"Boost", c.kind == bench::corpus::doubles ? 1.65 : 1.2}, {"limit", 1.0}});
}

// --- XML

long long pieces_in(const pugi::xml_node& node) {
  long long count = 0;
  for (const pugi::xml_node& child : node.children()) {
    if (child.type() == pugi::node_element) count += 1 + pieces_in(child);
    for ([[maybe_unused]] const pugi::xml_attribute& attribute : child.attributes()) ++count;
  }
  return count;
}

/// The text lives as long as the document that points into it.
struct rapidxml_document {
  explicit rapidxml_document(const std::wstring& from) : text(from) { nodes.parse<0>(text.data()); }

  std::wstring text;
  rapidxml::xml_document<wchar_t> nodes;
};

void compare_xml(bench::table& table, const char* name, const std::wstring& text) {
  long long pieces = 0;
  const std::vector<contender> all = {
      {"kesta", measure([&] {
         auto document = std::make_shared<ruvo::bundle>();
         ruvo::serializer::xml(true, false).deserialize(*document, text, nullptr);
         return document;
       })},
      {"RapidXML", measure([&] { return std::make_shared<rapidxml_document>(text); }), true},
      {"pugixml", measure([&] {
         auto document = std::make_shared<pugi::xml_document>();
         document->load_string(text.c_str());
         pieces = pieces_in(*document);
         return document;
       }),
       true}};
  print(table, name, "node", pieces, all, {{"pugixml", 0.9}});
}

}  // namespace

void* operator new(std::size_t size) {
  if (void* const memory = counted_take(size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { counted_give(memory); }
void operator delete(void* memory, std::size_t) noexcept { counted_give(memory); }

int main(int argc, char** argv) {
  // What the libraries set up once is no part of any document.
  ruvo::bundle first;
  ruvo::serializer::json().deserialize(first, L"{\"a\":[1]}", nullptr);
  std::thread([] {}).join();

  const std::vector<bench::corpus> all = bench::corpora(argc, argv);
  bench::table table("memory");
  for (const bench::corpus& c : all) {
    try {
      compare(table, c);
      if (c.text.size() < 2000) compare(table, c, 64);  // as a service has them: they share their keys
    } catch (const std::exception& error) {
      std::printf("%s: left out: %s\n", c.name.c_str(), error.what());
    }
  }
  pugi::set_memory_management_functions(counted_take, counted_give);
  compare_xml(table, "XML catalogue", bench::xml_catalogue(1000000));
  compare_xml(table, "XML rows", bench::xml_rows(1000000));
}
