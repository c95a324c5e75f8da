// SPDX-License-Identifier: BSL-1.0
#pragma once

// What one reading gave, and the tables of docs/XML.md.

#include <ruvo/bundle.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/texto.hpp>

#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

struct reading_outcome {
  ruvo::bundle store;
  ruvo::exception error = ruvo::exc::NotImplemented();  // a success leaves it alone
  bool failed;
};

inline std::wstring qualities_of(const ruvo::xvar& value) {
  std::wstring shown;
  for (const auto& [key, quality] : value.get_qualities())
    shown += (shown.empty() ? L"" : L"; ") + key + L'=' + quality.to_string();
  return shown;
}

struct page_row {
  std::wstring given, result;
};

/// The rows of a section of docs/XML.md: what stands in the first two columns.
inline std::vector<page_row> page_rows(const std::wstring& section) {
  std::ifstream in(KESTA_SOURCE_DIR "/docs/XML.md", std::ios::binary);
  std::vector<page_row> found;
  bool inside = false;
  for (std::string line; std::getline(in, line);) {
    const std::wstring wide = ruvo::texto::to_utf_16(line);
    if (wide.starts_with(L"## ")) inside = wide == L"## " + section;
    if (!inside || !wide.starts_with(L"| `")) continue;
    const std::size_t first_end = wide.find(L"` | `"), second_end = wide.find(L"` | ", first_end + 5);
    EXPECT_NE(second_end, wide.npos) << testing::PrintToString(wide);
    found.push_back({wide.substr(3, first_end - 3), wide.substr(first_end + 5, second_end - first_end - 5)});
  }
  EXPECT_GE(found.size(), 3U) << testing::PrintToString(section);
  return found;
}
