// SPDX-License-Identifier: BSL-1.0
#pragma once

// What can be wrong with a pattern.

#include <cstdint>

namespace ruvo::texto::regex {

/// What can be wrong with a pattern, or with its match: the codes of std::regex_error by their names. The
/// stages use these, so that <regex> is compiled in one file only.
enum class fault : std::uint8_t {
  collate,
  ctype,
  escape,
  backref,
  brack,
  paren,
  brace,
  badbrace,
  range,
  space,
  badrepeat,
  complexity,
  stack,
};

/// Throws std::regex_error with the code of that name.
[[noreturn]] void fail(fault what);

}  // namespace ruvo::texto::regex
