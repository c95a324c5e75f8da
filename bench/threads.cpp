// SPDX-License-Identifier: BSL-1.0

// The same work done by two threads, half each, against one thread that does all of it: twice as fast where
// they do not stand in each other's way. Rows with another library, with blocks of memory alone and with a
// loop that needs none show what the machine and the system's heap allow.
//
//   bench_threads [FILE.json...]

#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <boost/json/src.hpp>
#include <rapidjson/document.h>

#include "support/corpora.hpp"
#include "support/harness.hpp"
#include "support/heap.hpp"

namespace {

using part = std::function<void(int)>;  // does the work so many times

/// Both start threads, so that their beginning and end count alike.
void on_one(const part& work, int times) {
  std::thread([&] { work(times); }).join();
}

void on_two(const part& work, int times) {
  std::thread first([&] { work(times / 2); }), second([&] { work(times / 2); });
  first.join();
  second.join();
}

/// So often that starting threads costs next to nothing, on a busy machine too.
int enough(const part& work) {
  using clock = std::chrono::steady_clock;
  for (int times = 2;; times *= 2) {
    auto fastest = clock::duration::max();
    for (int turn = 0; turn < 3; ++turn) {
      const auto start = clock::now();
      on_one(work, times);
      fastest = std::min(fastest, clock::now() - start);
    }
    if (fastest >= std::chrono::milliseconds(20)) return times;
  }
}

/// `once` is what is done in one time.
void compare(bench::table& table, const std::string& row, const std::string& of, bench::amount once,
             const part& work, const std::vector<bench::target>& targets) {
  const int times = enough(work);
  table.row(row, of, {once.count * times, once.what},
            {{"two threads", [&, times] { on_two(work, times); }},
             {"one thread", [&, times] { on_one(work, times); }}},
            targets);
}

/// What a reader asks of the heap at worst: a small block for each value, all given back at the end.
void only_allocate(int times) {
  constexpr std::size_t blocks = 1000, size = 48;
  void* all[blocks];
  for (; times > 0; --times) {
    for (void*& block : all) block = std::malloc(size);
    bench::use(all);
    for (void* const block : all) std::free(block);
  }
}

void only_compute(int times) {
  unsigned state = 1;
  for (; times > 0; --times) {
    for (int n = 0; n < 1000; ++n) state = state * 1664525 + 1013904223;
    bench::use(state);
  }
}

void read(bench::table& table, const bench::corpus& c) {
  const std::wstring text = ruvo::texto::to_utf_16(c.text);
  const bench::amount all{static_cast<double>(text.size()), bench::amount::characters};
  const auto repeated = [](auto once) {
    return [once](int times) {
      for (; times > 0; --times) once();
    };
  };
  compare(table, "read", c.name, all, repeated([&] {
            ruvo::bundle document;
            ruvo::serializer::json().deserialize(document, text, nullptr);
            bench::use(document);
          }),
          {{"one thread", 1.8}});
  compare(table, "standard read", c.name, all, repeated([&] {
            ruvo::bundle document;
            if (!ruvo::serializer::read_standard_json(document, text)) bench::use(document);
          }),
          {{"one thread", 1.8}});
  compare(table, "read by Boost", c.name, all, repeated([&] { bench::use(boost::json::parse(c.text)); }), {});
  compare(table, "read by RapidJSON", c.name, all, repeated([&] {
            rapidjson::GenericDocument<rapidjson::UTF16<>> document;
            document.Parse(text.c_str());
            bench::use(document);
          }),
          {});
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<bench::corpus> all = bench::corpora(argc, argv);
  bench::scatter_heap();
  bench::table table("threads");
  constexpr bench::amount thousand{1000, bench::amount::operations};
  compare(table, "compute only", "steps", thousand, only_compute, {});
  compare(table, "allocate only", "blocks", thousand, only_allocate, {});
  for (const bench::corpus& c : all) read(table, c);
}
