// SPDX-License-Identifier: BSL-1.0
#pragma once

// Who may save a file: one at a time.

#include <ruvo/file.hpp>

#include <optional>

#include "system/file.hpp"

namespace ruvo::settings {

/// The turn to save a file, held by a file beside it. False where nobody gave it up in two seconds, or where
/// none can be made.
class save_turn {
 public:
  explicit save_turn(const file& of);
  save_turn(const save_turn&) = delete;
  save_turn& operator=(const save_turn&) = delete;
  ~save_turn();
  explicit operator bool() const noexcept { return held_.has_value(); }

 private:
  bool take();

  file path_;
  std::optional<platform::open_file> held_;
};

}  // namespace ruvo::settings
