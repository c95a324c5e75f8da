// SPDX-License-Identifier: BSL-1.0

// What it costs to find the application of the calling thread: kesta's registry against a map under a lock,
// which is what it replaces, and against a thread_local, which no other thread can change.

#include <ruvo/application.hpp>

#include <atomic>
#include <map>
#include <mutex>
#include <thread>

#include "support/harness.hpp"

namespace {

constexpr int look_ups = 1000;  // of one run
constexpr int other_threads = 8;

std::mutex guard;
std::map<unsigned long, void*> locked_map;
thread_local void* own_pointer = nullptr;

void* find_locked() {
  const std::lock_guard lock(guard);
  const auto found = locked_map.find(ruvo::application::threadID());
  return found == locked_map.end() ? nullptr : found->second;
}

template <class Operation>
bench::competitor repeated(const char* name, Operation operation) {
  return {name, [operation] {
            for (int i = 0; i < look_ups; ++i) bench::use(operation());
          }};
}

void look_up(bench::table& table, const char* who) {
  table.row("look up", who, {look_ups, bench::amount::operations},
            {repeated("kesta", [] { return ruvo::application::theApp(); }),
             repeated("locked map", find_locked), repeated("thread_local", [] { return own_pointer; })},
            {{"locked map", 1.0}});
}

/// The same with a thread beside it that looks up all the time, each competitor against its own kind.
void look_up_beside(bench::table& table, ruvo::application& app) {
  std::atomic<int> kind{0};
  std::atomic<bool> done{false};
  std::thread beside([&] {
    const ruvo::thread_scope scope(app);
    void* sink = nullptr;
    while (!done.load(std::memory_order_relaxed)) {
      const int what = kind.load(std::memory_order_relaxed);
      for (int i = 0; i < 100; ++i) {
        sink = what == 0 ? ruvo::application::theApp() : what == 1 ? find_locked() : own_pointer;
        bench::use(sink);
      }
    }
  });
  const auto against = [&](const char* name, int what, auto operation) {
    return bench::competitor{name, [&kind, what, operation] {
                               kind.store(what, std::memory_order_relaxed);
                               for (int i = 0; i < look_ups; ++i) bench::use(operation());
                             }};
  };
  table.row("look up", "two threads", {look_ups, bench::amount::operations},
            {against("kesta", 0, [] { return ruvo::application::theApp(); }),
             against("locked map", 1, find_locked), against("thread_local", 2, [] { return own_pointer; })},
            {{"locked map", 1.0}});
  done = true;
  beside.join();
}

}  // namespace

int main() {
  bench::table table("app");
  ruvo::kesta::app app(nullptr);
  look_up(table, "not checked in");
  for (unsigned long id = 1; id <= other_threads; ++id) {
    locked_map[id] = &app;
    app.check_in(id);
  }
  const ruvo::thread_scope scope(app);
  locked_map[ruvo::application::threadID()] = &app;
  own_pointer = &app;
  look_up(table, "checked in");
  look_up_beside(table, app);
}
