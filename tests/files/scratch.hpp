// SPDX-License-Identifier: BSL-1.0
#pragma once

// A folder for one test, which goes away with all that is in it.

#include <ruvo/file.hpp>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include <gtest/gtest.h>

class scratch : public testing::Test {
 protected:
  scratch() {
    std::filesystem::remove_all(where);
    std::filesystem::create_directory(where);
  }
  ~scratch() override {
    std::error_code error;
    std::filesystem::remove_all(where, error);
    EXPECT_FALSE(std::filesystem::exists(where)) << "something is left open";
  }

  static ruvo::file path(const std::wstring& name) { return ruvo::file(ruvo::file(where), name); }
  static std::filesystem::path native(const ruvo::file& file) { return file.unix_path(); }

  /// By way of the standard library.
  static void put(const ruvo::file& file, const std::string& bytes) {
    std::ofstream(native(file), std::ios::binary) << bytes;
  }
  static std::string get(const ruvo::file& file) {
    std::ifstream in(native(file), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  static std::set<std::string> names() {
    std::set<std::string> out;
    for (const auto& entry : std::filesystem::directory_iterator(where))
      out.insert(entry.path().filename().string());
    return out;
  }

  static constexpr const char* where = "scratch";
};
