// SPDX-License-Identifier: BSL-1.0
#pragma once

// Files read and written piece by piece, with the failures and the guarantees of <ruvo/files/whole.hpp>.

#include <ruvo/file.hpp>

#include <cstddef>
#include <functional>
#include <string_view>

#include "system/file.hpp"

namespace ruvo::files {

/// Opens a file to be read. Throws the failures of whole files.
platform::open_file open_to_read(const file& path);

/// A file of a size known from the start, read from its first byte to its last. Throws the failures of whole
/// files; the path is to outlive it.
class file_reader {
 public:
  explicit file_reader(const file& path);

  std::size_t left() const noexcept { return left_; }
  /// Reads that many bytes; not more than are left.
  void read(void* to, std::size_t count);

 private:
  const file& path_;
  platform::open_file in_;
  std::size_t left_ = 0;
};

using put_piece = std::function<void(std::string_view)>;

/// Writes as write() does what `produce` gives to the function that it is called with. Where `produce`
/// throws, that leaves this function, too, and what had the name before stays.
file write_pieces(const file& path, const std::function<void(const put_piece&)>& produce,
                  bool overwrite = true);

}  // namespace ruvo::files
