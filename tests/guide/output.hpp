// SPDX-License-Identifier: BSL-1.0
#pragma once

// What a sample prints.

#include <cstdio>
#include <iostream>
#include <string>

#include <gtest/gtest.h>

namespace guide {

/// Catches what is printed from its making on, up to text() or to its end.
class output {
 public:
  output() { testing::internal::CaptureStdout(); }
  output(const output&) = delete;
  output& operator=(const output&) = delete;
  ~output() {
    if (!taken_) text();
  }

  /// Without carriage returns and without the last line end.
  std::string text() {
    taken_ = true;
    std::cout.flush();
    std::fflush(stdout);
    std::string all = testing::internal::GetCapturedStdout();
    std::erase(all, '\r');
    if (all.ends_with('\n')) all.pop_back();
    return all;
  }

 private:
  bool taken_ = false;
};

}  // namespace guide
