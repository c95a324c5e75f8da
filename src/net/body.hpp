// SPDX-License-Identifier: BSL-1.0
#pragma once

// What the body of a message holds.

#include <ruvo/binary.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace ruvo::http {

struct body_data {
  std::wstring text;
  std::vector<unsigned char> bytes;
  bool has_bytes = false;                 // and no text then
  std::vector<std::wstring> set_cookies;  // of answers

  bool operator==(const body_data&) const = default;

  void set(std::wstring_view of);
  void set(const binary& of);
  /// Behind bytes as UTF-8.
  void append(std::wstring_view of);
  void append(std::string_view of);  ///< Bytes.
  /// What is sent.
  binary sent() const;
  std::wstring shown() const;
};

}  // namespace ruvo::http
