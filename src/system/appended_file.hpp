// SPDX-License-Identifier: BSL-1.0
#pragma once

// Files to which several programs add lines.

#include <cstddef>
#include <string>
#include <string_view>

#include "system/handle.hpp"

namespace ruvo::platform {

/// A file to append to, made if it is missing, which others may read, write, rename and remove meanwhile.
class appended_file {
 public:
  /// None.
  appended_file() = default;
  explicit appended_file(const std::wstring& path);

  explicit operator bool() const noexcept { return static_cast<bool>(file_); }
  /// One write at the end of the file, whoever else writes. False when not all could be written; what was is
  /// taken back then, unless somebody holds the turn to write.
  bool append(std::string_view bytes) noexcept;
  /// Reads the first bytes of the file, as many as are there and have room. Gives their number.
  std::size_t read_start(char* to, std::size_t room) noexcept;
  /// Waits until the system has written all to the disk.
  void flush() noexcept;

 private:
  handle file_;
};

/// The whole of a file that others may be writing.
bool read_shared(const std::wstring& path, std::string& out);

}  // namespace ruvo::platform
