// SPDX-License-Identifier: BSL-1.0
#pragma once

// Base64 in lines of 76 characters, as mail has it (RFC 2045, 6.8), written piece by piece.

#include <cstddef>
#include <string>
#include <string_view>

namespace ruvo::wire {

/// Turns bytes into lines that CRLF stands between; the last one has none behind it.
class base64_line_writer {
 public:
  /// Appends the lines that the bytes complete.
  void put(std::string& out, std::string_view bytes);
  /// Appends what is left. Nothing is to follow.
  void finish(std::string& out);

 private:
  static constexpr std::size_t line_bytes = 57;

  void begin_line(std::string& out);
  void put_lines(std::string& out, const char* bytes, std::size_t lines);

  char kept_[line_bytes] = {};  // of a line that is not complete
  std::size_t count_ = 0;
  bool has_lines_ = false;
};

}  // namespace ruvo::wire
