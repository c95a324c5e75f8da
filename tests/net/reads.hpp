// SPDX-License-Identifier: BSL-1.0
#pragma once

// Values that are read from texts.

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

/// Texts that are read with the fields that they give, and texts that leave the value as it was.
template <class Value, class Fields>
void expect_reads(const Value& before, Fields fields,
                  const std::vector<std::pair<std::wstring, std::wstring>>& read,
                  const std::vector<std::wstring>& refused) {
  const auto expect = [&](const std::wstring& text, bool is_read, const std::wstring& expected) {
    Value target = before, assigned = before;
    assigned = text;
    EXPECT_EQ(target.deserialize(text), is_read) << text;
    EXPECT_EQ(fields(target), expected) << text;
    EXPECT_EQ(fields(assigned), expected) << text;
  };
  for (const auto& [text, expected] : read) expect(text, true, expected);
  for (const std::wstring& text : refused) expect(text, false, fields(before));
}
