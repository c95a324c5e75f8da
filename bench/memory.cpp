// SPDX-License-Identifier: BSL-1.0

// What a document costs in memory: the bytes and the blocks that live after it was read, for each of its
// values.
//
// Counted are the bytes that are asked of operator new, which this program replaces (RapidJSON asks an
// allocator of its own that counts too); what the heap adds to each block is not seen. A value is an object,
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

#include <boost/json/src.hpp>
#include <nlohmann/json.hpp>
#include <rapidjson/document.h>

#include "support/corpora.hpp"

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
/// serve this one.
usage measure(const std::function<std::shared_ptr<void>()>& read) {
  std::shared_ptr<void> document;
  const usage before = now();
  std::thread([&] { document = read(); }).join();
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

void print(const char* library, const usage& document, long long values, bool limited) {
  const auto count = static_cast<double>(values);
  const double bytes = static_cast<double>(document.bytes) / count;
  const double blocks = static_cast<double>(document.blocks) / count;
  std::printf("  %-10s %7.1f bytes %6.2f blocks", library, bytes, blocks);
  if (limited)
    std::printf("   (120 %s, 1.10 %s)", bytes <= 120 ? "ok" : "MISS", blocks <= 1.1 ? "ok" : "MISS");
  std::printf("\n");
}

void compare(const bench::corpus& c) {
  const std::wstring text = ruvo::texto::to_utf_16(c.text);
  const long long values = values_in(boost::json::parse(c.text));
  std::printf("%s: %lld values; for each of them\n", c.name.c_str(), values);
  // The limit was set for records; where small objects prevail their own cost does.
  print("kesta", measure([&] {
          auto document = std::make_shared<ruvo::bundle>();
          ruvo::serializer::json().deserialize(*document, text, nullptr);
          return document;
        }),
        values, c.kind == bench::corpus::records);
  print("nlohmann", measure([&] { return std::make_shared<nlohmann::json>(nlohmann::json::parse(c.text)); }),
        values, false);
  print("RapidJSON", measure([&] {
          auto document = std::make_shared<wide_document>();
          document->Parse(text.c_str());
          return document;
        }),
        values, false);
  print("Boost", measure([&] { return std::make_shared<boost::json::value>(boost::json::parse(c.text)); }),
        values, false);
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

  for (const bench::corpus& c : bench::corpora(argc, argv)) {
    try {
      compare(c);
    } catch (const std::exception& error) {
      std::printf("%s: left out: %s\n", c.name.c_str(), error.what());
    }
  }
}
