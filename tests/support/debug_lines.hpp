// SPDX-License-Identifier: BSL-1.0
#pragma once

// What the process shows to debuggers.

#include <string>
#include <vector>

/// Collects the lines of all threads while it lives; one at a time. Sees nothing where `works` is false.
class debug_lines {
 public:
  static const bool works;

  debug_lines();
  debug_lines(const debug_lines&) = delete;
  debug_lines& operator=(const debug_lines&) = delete;
  ~debug_lines();

  /// ASCII only; what has other characters is not all there.
  std::vector<std::string> lines() const;
};
