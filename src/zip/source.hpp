// SPDX-License-Identifier: BSL-1.0
#pragma once

// The bytes of an archive that is read.

#include <ruvo/binary.hpp>
#include <ruvo/file.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "files/pieces.hpp"

namespace ruvo::zip {

/// A file, of which a window is kept, or bytes in memory. What reads throws the failures of files.
class source {
 public:
  /// More than a local record takes, with its longest name and fields.
  static constexpr std::size_t window_size = std::size_t{1} << 18;

  explicit source(const file& path) : path_(path), in_(path_), size_(in_->left()) {}
  explicit source(binary bytes) : bytes_(std::move(bytes)), size_(bytes_.size()) {}
  source(const source&) = delete;
  source& operator=(const source&) = delete;

  /// Empty for bytes in memory.
  const file& path() const noexcept { return path_; }
  std::uint64_t size() const noexcept { return size_; }

  /// The bytes from a place on, at least `least` unless the archive ends before, and at most as many as the
  /// window holds; valid until the next call.
  std::string_view at(std::uint64_t offset, std::size_t least = 1);
  /// That many bytes, which have to be there.
  std::string read(std::uint64_t offset, std::size_t count);

 private:
  file path_;
  std::optional<files::file_reader> in_;
  binary bytes_;
  std::uint64_t size_;
  std::string window_;
  std::uint64_t begins_ = 0;  // the window
};

}  // namespace ruvo::zip
