// SPDX-License-Identifier: BSL-1.0

// Documents so large that their values lie in chunks: what outlives its document, its thread or another
// document read meanwhile keeps its value.

#include <ruvo/bundle.hpp>
#include <ruvo/list.hpp>
#include <ruvo/standard_json.hpp>
#include <ruvo/xvar.hpp>

#include <algorithm>
#include <cstddef>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using ruvo::bundle;
using ruvo::list;
using ruvo::xvar;

constexpr int records = 1500;

/// A record whose values have sizes of their own, up to some that lie in no chunk.
std::wstring record(unsigned seed, int n) {
  std::wstring text = std::to_wstring(seed) + L"," + std::to_wstring(n) + L" ";
  const auto length = static_cast<std::size_t>(n % 300 == 299 ? 20000 : n * 7 % 61);
  text.append(length, static_cast<wchar_t>(L'a' + n % 26));
  std::wstring numbers;
  for (int i = 0; i < n % 40; ++i) numbers += (i > 0 ? L"," : L"") + std::to_wstring(i * n);
  return L"{\"texto\":\"" + text + L"\",\"numeros\":[" + numbers + L"],\"n\":" + std::to_wstring(n) + L"}";
}

bundle document(unsigned seed) {
  std::wstring text = L"{\"r\":[";
  for (int n = 0; n < records; ++n) text += (n > 0 ? L"," : L"") + record(seed, n);
  bundle out;
  EXPECT_FALSE(ruvo::serializer::read_standard_json(out, text + L"]}", nullptr));
  return out;
}

list& records_of(bundle& in) { return in.hack_list_on(L"r"); }

void expect_record(const xvar& value, unsigned seed, int n) {
  std::wstring out;
  EXPECT_FALSE(ruvo::serializer::write_standard_json(out, value, nullptr));
  EXPECT_EQ(out, record(seed, n));
}

TEST(large_documents, values_outlive_them) {
  std::mt19937 random(7);
  std::vector<std::pair<xvar, std::pair<unsigned, int>>> kept;
  for (unsigned seed = 0; seed < 12; ++seed) {
    bundle read = document(seed);
    for (int i = 0; i < 40; ++i) {
      const int n = static_cast<int>(random() % records);
      xvar& from = records_of(read)[static_cast<unsigned>(n)];
      if (from.is_null()) continue;
      kept.emplace_back(i % 4 == 0 ? from : xvar(std::move(from)), std::pair(seed, n));
    }
    if (seed % 3 == 2) {  // some go, in any order, so that chunks are used again
      std::shuffle(kept.begin(), kept.end(), random);
      kept.resize(kept.size() / 2);
    }
    const bundle copy = read;
    EXPECT_TRUE(copy == read);
  }
  for (const auto& [value, from] : kept) expect_record(value, from.first, from.second);
}

TEST(large_documents, change_as_others) {
  bundle read = document(1);
  list& all = records_of(read);
  for (int n = 0; n < records; n += 3) {
    bundle holder;
    holder[L"uno"].swap(all[static_cast<unsigned>(n)]);
    bundle& one = holder.hack_bundle_on(L"uno");
    one.erase(L"texto");
    list& numbers = one.hack_list_on(L"numeros");
    for (int i = 0; i < 50; ++i) numbers.push_back(L"un texto bastante largo " + std::to_wstring(i));
    numbers.erase(numbers.begin(), numbers.begin() + n % 40);
    one[L"texto"] = record(1, n);
    EXPECT_EQ(numbers.size(), 50u);
    EXPECT_EQ(one.at(L"texto").to_string(), record(1, n));
  }
  for (int n = 1; n < records; n += 3) expect_record(all[static_cast<unsigned>(n)], 1, n);
}

TEST(large_documents, belong_to_no_thread) {
  std::vector<list> parts(4);
  std::vector<std::thread> threads;
  for (int round = 0; round < 3; ++round) {
    for (unsigned t = 0; t < 4; ++t) {
      threads.emplace_back([&parts, t] {
        bundle read = document(t);
        parts[t] = std::move(records_of(read));
      });
    }
    for (std::thread& each : threads) each.join();
    threads.clear();
    // Two threads take what a third one made; this one looks at what is left when they are at work.
    for (unsigned t = 0; t < 2; ++t) {
      threads.emplace_back([&parts, t] {
        for (unsigned from = 0; from < 4; ++from) {
          for (unsigned n = t; n < records; n += 3) parts[from][n] = xvar();
        }
      });
    }
    for (unsigned t = 0; t < 4; ++t) {
      for (int n = 2; n < records; n += 300) expect_record(parts[t][static_cast<unsigned>(n)], t, n);
    }
    for (std::thread& each : threads) each.join();
    threads.clear();
  }
}

}  // namespace
