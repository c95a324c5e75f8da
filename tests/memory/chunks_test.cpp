// SPDX-License-Identifier: BSL-1.0

// What is kept of the memory of a large document. What was given back to the system is zero afterwards.

#include "memory/chunks.hpp"

#include <ruvo/heap.hpp>

#include <algorithm>
#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

namespace {

using ruvo::detail::chunk;
using ruvo::detail::chunk_region;

constexpr std::size_t megabyte = (std::size_t{1} << 20) / chunk::bytes;
constexpr char mark = 1;

/// Uses so many chunks at once, and gives them back; how many had the mark that each one is left with.
std::size_t known_of(std::size_t count) {
  std::vector<chunk*> all;
  while (all.size() < count) all.push_back(chunk_region::take());
  const auto known = std::count_if(all.begin(), all.end(), [](chunk* c) { return *c->first() == mark; });
  for (chunk* const c : all) *c->first() = mark;
  for (chunk* const c : all) chunk_region::give(c);
  return static_cast<std::size_t>(known);
}

}  // namespace

TEST(chunks, large_documents_leave_memory_for_eight_others) {
  if (chunk* const first = chunk_region::take()) {
    chunk_region::give(first);
  } else {
    GTEST_SKIP() << "no addresses here";
  }
  const std::size_t large = 200 * megabyte, medium = 100 * megabyte, kept = 64 * megabyte,
                    most = 512 * megabyte;
  const auto after = [](int documents, std::size_t each) {
    for (; documents > 0; --documents) {
      chunk_region::begin_document();
      if (each) known_of(each);
    }
  };
  known_of(large);
  after(8, medium);
  EXPECT_EQ(known_of(large), large);
  after(9, medium);
  chunk_region::begin_document();
  EXPECT_EQ(known_of(large), medium);
  after(9, 0);
  EXPECT_EQ(known_of(large), kept);
  known_of(most + medium);
  EXPECT_EQ(known_of(most + medium), most);
  EXPECT_EQ(ruvo::give_back_memory(), most * chunk::bytes);
  EXPECT_EQ(known_of(large), 0u);
}
