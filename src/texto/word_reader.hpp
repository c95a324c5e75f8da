// SPDX-License-Identifier: BSL-1.0
#pragma once

// The words of a text, as an input stream reads them: blanks of any kind separate them.

#include <algorithm>
#include <string_view>

#include "base/unicode.hpp"

namespace ruvo::texto {

class word_reader {
 public:
  explicit word_reader(std::wstring_view text) : rest_(text) {}

  /// The next word; empty after the last.
  std::wstring_view next() {
    const auto first = std::find_if_not(rest_.begin(), rest_.end(), is_word_blank);
    const auto last = std::find_if(first, rest_.end(), is_word_blank);
    const std::wstring_view word(first, last);
    rest_ = std::wstring_view(last, rest_.end());
    return word;
  }

 private:
  std::wstring_view rest_;
};

}  // namespace ruvo::texto
