// SPDX-License-Identifier: BSL-1.0
#pragma once

// Reads the encoded words of mail headers back, and fails where their form is not that of RFC 2047.

#include <ruvo/texto.hpp>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

/// Of "Q" words in Latin-1 or UTF-8, a line for each.
inline std::wstring decoded_words(std::string_view words) {
  std::wstring text;
  while (!words.empty()) {
    const std::string_view word = words.substr(0, words.find("\r\n "));
    words.remove_prefix(std::min(words.size(), word.size() + 3));
    EXPECT_LE(word.size(), 75u);
    const bool latin = word.starts_with("=?iso-8859-1?Q?");
    EXPECT_TRUE((latin || word.starts_with("=?UTF-8?Q?")) && word.ends_with("?=")) << word;
    std::string bytes;
    for (std::size_t at = latin ? 15 : 10; at + 2 < word.size(); ++at) {
      const char c = word[at];
      if (c == '=') {
        bytes += ruvo::texto::hex_to_string(std::string(word.substr(at + 1, 2)));
        at += 2;
      } else {
        EXPECT_TRUE(std::isalnum(static_cast<unsigned char>(c)) || std::strchr("!*+-/_", c)) << word;
        bytes.push_back(c == '_' ? ' ' : c);
      }
    }
    if (latin) {
      for (const char c : bytes) text.push_back(static_cast<unsigned char>(c));
    } else {
      text += ruvo::texto::to_utf_16(bytes);
      EXPECT_EQ(ruvo::texto::to_utf_8(ruvo::texto::to_utf_16(bytes)), bytes) << "a character is cut";
    }
  }
  return text;
}
