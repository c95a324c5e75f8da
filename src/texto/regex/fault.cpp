// SPDX-License-Identifier: BSL-1.0

// The only use of the standard library's <regex>: its error.

#include "texto/regex/fault.hpp"

#include <cstddef>
#include <regex>

namespace ruvo::texto::regex {

namespace codes = std::regex_constants;

void fail(fault what) {
  static constexpr codes::error_type of_fault[] = {
      codes::error_collate, codes::error_ctype, codes::error_escape,    codes::error_backref,
      codes::error_brack,   codes::error_paren, codes::error_brace,     codes::error_badbrace,
      codes::error_range,   codes::error_space, codes::error_badrepeat, codes::error_complexity,
      codes::error_stack};
  throw std::regex_error(of_fault[static_cast<std::size_t>(what)]);
}

}  // namespace ruvo::texto::regex
