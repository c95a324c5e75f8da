// SPDX-License-Identifier: BSL-1.0

// The library loaded, used by threads, freed and loaded again.

#include "support/module.hpp"

#include <ruvo/bundle.hpp>
#include <ruvo/heap.hpp>
#include <ruvo/xvar.hpp>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

// The names that the linker of the mingw-w64 compilers gives to what the test calls.
constexpr const char* short_id = "_ZN4ruvo11application17create_uuid_shortB5cxx11Ei";
constexpr const char* the_app = "_ZN4ruvo11application6theAppEv";
constexpr const char* make_bundle = "_ZN4ruvo6bundleC1Ev";
constexpr const char* end_bundle = "_ZN4ruvo6bundleD1Ev";
constexpr const char* entry_of_bundle =
    "_ZN4ruvo6bundleixERKNSt7__cxx1112basic_stringIwSt11char_traitsIwESaIwEEE";

void use(const module_copy& library, std::atomic<int>& good) {
  const auto id = library.function<std::wstring(int)>(short_id);
  const auto app = library.function<void*()>(the_app);
  const auto make = library.function<void(void*)>(make_bundle);
  const auto entry = library.function<ruvo::xvar&(void*, const std::wstring&)>(entry_of_bundle);
  const auto end = library.function<void(void*)>(end_bundle);
  if (!id || !app || !make || !entry || !end) return;
  alignas(ruvo::bundle) unsigned char place[sizeof(ruvo::bundle)];
  make(place);
  for (int n = 0; n < 200; ++n) entry(place, L"clave" + std::to_wstring(n));  // leaves blocks with the thread
  end(place);
  if (id(32).size() == 32 && !app()) ++good;
}

TEST(module, may_be_loaded_again) {
  module_copy library("kesta.dll");
  if (!library.exists()) GTEST_SKIP() << "the library is no file of its own here";
  constexpr int threads = 4, times = 3;
  for (int time = 0; time < times; ++time) {
    ASSERT_TRUE(library.load());
    std::atomic<int> good{0}, ready{0};
    std::atomic<bool> freed{false};
    std::vector<std::thread> all;
    // Half of the threads end before the library goes, the others outlive it.
    for (int t = 0; t < threads; ++t) {
      all.emplace_back([&, t] {
        use(library, good);
        ++ready;
        while (t % 2 && !freed) std::this_thread::yield();
      });
    }
    while (ready < threads) std::this_thread::yield();
    for (int t = 0; t < threads; t += 2) all[static_cast<std::size_t>(t)].join();
    use(library, good);
    EXPECT_TRUE(library.free());
    freed = true;
    for (int t = 1; t < threads; t += 2) all[static_cast<std::size_t>(t)].join();
    EXPECT_EQ(good, threads + 1);
  }
}

/// What a program destroys when a thread ends may come behind the library's own clean-up of the thread.
TEST(module, leaves_nothing_with_values_that_outlive_their_thread) {
  const auto run = [](int threads) {
    for (int n = 0; n < threads; ++n) {
      run_on_bare_thread([] {
        const auto kept = std::make_shared<ruvo::bundle>();
        for (int i = 0; i < 20; ++i) (*kept)[L"clave " + std::to_wstring(i)] = L"un texto que no cabe";
        at_end_of_thread([kept] { kept->clear(); });
      });
    }
    return heap_blocks();
  };
  const std::size_t before = run(20);
  EXPECT_LT(run(100), before + 50);
}

#if !defined(KESTA_STATIC)
TEST(heap, is_shared_where_blocks_come_from_one_place) {
  static char own[32768];
  constexpr std::size_t note = 16;
  const struct {
    const char* name;
    bool shared;
    void* (*take)(std::size_t);
    void (*give)(void*);
  } rows[] = {
      {"malloc", true, std::malloc, std::free},
      {"a note in front", false,
       [](std::size_t bytes) -> void* { return static_cast<char*>(std::malloc(bytes + note)) + note; },
       [](void* block) { std::free(static_cast<char*>(block) - note); }},
      {"a heap of its own", false, [](std::size_t) -> void* { return own; }, [](void*) {}},
      {"no memory", false, [](std::size_t) -> void* { throw std::bad_alloc(); }, [](void*) {}},
  };
  EXPECT_TRUE(ruvo::abi::shares_heap());
  for (const auto& row : rows)
    EXPECT_EQ(ruvo::abi::shares_heap_with(row.take, row.give), row.shared) << row.name;
}
#endif

}  // namespace
