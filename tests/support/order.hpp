// SPDX-License-Identifier: BSL-1.0
#pragma once

// The order of values.

#include <vector>

#include <gtest/gtest.h>

/// Each row is before the next; within a row all are equal.
template <class Value>
void expect_order(const std::vector<std::vector<Value>>& rows) {
  for (std::size_t i = 0; i < rows.size(); ++i) {
    for (std::size_t j = 0; j < rows.size(); ++j) {
      for (const Value& a : rows[i]) {
        for (const Value& b : rows[j]) {
          EXPECT_EQ(a < b, i < j) << i << ' ' << j;
          EXPECT_EQ(a == b, i == j) << i << ' ' << j;
        }
      }
    }
  }
}
