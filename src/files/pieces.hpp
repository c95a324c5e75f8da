// SPDX-License-Identifier: BSL-1.0
#pragma once

// Files read and written piece by piece, with the failures and the guarantees of <ruvo/files/whole.hpp>.

#include <ruvo/file.hpp>

#include <cstddef>
#include <functional>
#include <memory>
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
  /// Reads that many bytes at a place, whatever is left; they are to be there. Not together with read().
  void read_at(unsigned long long offset, void* to, std::size_t count);

 private:
  const file& path_;
  platform::open_file in_;
  std::size_t left_ = 0;
};

/// A new file in the manner of write(), which gets its name when it is settled, or goes away. Throws
/// exc::fileOsStream.
class file_writer {
 public:
  /// If the path's folder is held, the file is made in that one, and gets its name there, or it is a failure;
  /// whatever takes the folder's place meanwhile. The held folder is to outlive the writer.
  explicit file_writer(const file& path, const platform::held_folder* folder = nullptr);
  file_writer(file_writer&& other) noexcept;
  file_writer& operator=(file_writer&& other) noexcept;
  ~file_writer();

  void write_at(unsigned long long offset, std::string_view piece);
  /// Ends the file there.
  void cut(unsigned long long size);
  /// Takes the name. It waits until the disk has all unless the file is given `facts`, which those have that
  /// are copies of something.
  void settle(const platform::new_file_facts* facts = nullptr);

 private:
  struct body;
  std::unique_ptr<body> body_;
};

using put_piece = std::function<void(std::string_view)>;

/// Writes as write() does what `produce` gives to the function that it is called with. Where `produce`
/// throws, that leaves this function, too, and what had the name before stays.
file write_pieces(const file& path, const std::function<void(const put_piece&)>& produce,
                  bool overwrite = true);

}  // namespace ruvo::files
