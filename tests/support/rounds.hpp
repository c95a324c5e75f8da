// SPDX-License-Identifier: BSL-1.0
#pragma once

// For tests over generated input: how many inputs they tried.

#include <string>

#include <gtest/gtest.h>

#include "support/dice.hpp"

/// A test whose report carries the number of `inputs` that it tried.
class generated_inputs : public testing::Test {
 protected:
  void TearDown() override { RecordProperty("inputs", std::to_string(inputs)); }

  unsigned long long inputs = 0;
};
