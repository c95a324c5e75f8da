#pragma once

// For tests over generated input: how often they go on with other seeds, and how many inputs they tried.

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

/// A test whose report carries the number of `inputs` that it tried.
class generated_inputs : public testing::Test {
 protected:
  /// The environment's KESTA_ROUNDS; 1 without it.
  static unsigned rounds() {
    const char* const text = std::getenv("KESTA_ROUNDS");
    const long given = text ? std::strtol(text, nullptr, 10) : 1;
    return given > 1 ? static_cast<unsigned>(given) : 1;
  }
  void TearDown() override { RecordProperty("inputs", std::to_string(inputs)); }

  unsigned long long inputs = 0;
};
