// SPDX-License-Identifier: BSL-1.0
#pragma once

// The bytes of an archive that is written.

#include <ruvo/file.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "files/pieces.hpp"

namespace ruvo::zip {

/// A new file, of which the end is kept until there is enough of it, or memory. Throws exc::fileOsStream.
class sink {
 public:
  sink() = default;
  explicit sink(const file& path) : file_(path) {}

  /// Where the next byte will stand.
  std::uint64_t end() const noexcept { return flushed_ + kept_.size(); }
  void append(std::string_view bytes);
  /// Room for up to `count` bytes at the end, of which `used(n)` says how many were written.
  char* room(std::size_t count);
  void used(std::size_t count);
  /// Writes over what stands at a place.
  void replace(std::uint64_t at, std::string_view bytes);
  /// Forgets what was written from there on.
  void go_back(std::uint64_t to) noexcept;

  /// Gives the file its name.
  void settle();
  /// What was written to memory.
  std::vector<unsigned char> content() && { return std::move(kept_); }

 private:
  void flush();

  std::optional<files::file_writer> file_;
  std::vector<unsigned char> kept_;
  std::uint64_t flushed_ = 0;   // bytes of the file before those that are kept
  std::uint64_t farthest_ = 0;  // where the file ends
  std::size_t before_room_ = 0;
};

}  // namespace ruvo::zip
