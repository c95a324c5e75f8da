// SPDX-License-Identifier: BSL-1.0
#pragma once

// An archive that is open, and the content of its entries.

#include <ruvo/zip.hpp>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "files/pieces.hpp"
#include "packing/deflate.hpp"
#include "zip/directory.hpp"
#include "zip/format.hpp"
#include "zip/names.hpp"
#include "zip/source.hpp"

namespace ruvo::zip {

/// Where the content of an entry goes.
class outlet {
 public:
  virtual ~outlet() = default;
  /// Room for the next bytes, of which `size` becomes how many.
  virtual char* room(std::size_t& size) = 0;
  /// So many of them were written; false to stop.
  virtual bool take(std::size_t count) = 0;
};

/// Passes on what is done within an entry. What the callback throws is kept, since it is no failure of the
/// entry.
class progress {
 public:
  explicit progress(fileCallback* to) : to_(to), within_(dynamic_cast<progress_callback*>(to)) {}
  /// False to stop.
  bool report(const file& entry, std::uint64_t done, std::uint64_t size);
  void rethrow() const {
    if (thrown_) std::rethrow_exception(thrown_);
  }

 private:
  fileCallback* to_;
  progress_callback* within_;
  std::exception_ptr thrown_;
};

/// What no window needs to be larger than.
constexpr std::size_t piece_size = source::window_size;

/// To a buffer that is kept for all entries, and from there to a file, or to nothing.
class buffered_outlet : public outlet {
 public:
  buffered_outlet(progress& report) : report_(report) {}

  /// The next entry, whose file may be null.
  void begin(const file& entry, std::uint64_t size, files::file_writer* to) {
    entry_ = entry;
    size_ = size;
    done_ = 0;
    to_ = to;
  }
  /// No more than what is promised and one byte, so that what is beyond shows.
  char* room(std::size_t& size) override {
    size = static_cast<std::size_t>(std::min<std::uint64_t>(piece_size, size_ - done_ + 1));
    if (buffer_.size() < size) buffer_ = std::vector<char>(std::bit_ceil(size));
    return buffer_.data();
  }
  bool take(std::size_t count) override;

 private:
  progress& report_;
  std::vector<char> buffer_;
  file entry_;
  std::uint64_t size_ = 0, done_ = 0;
  files::file_writer* to_ = nullptr;
};

struct open_archive {
  template <class From>
  open_archive(From&& from, const limits& allowed, unsigned page)
      : bytes(std::forward<From>(from)), list(bytes, allowed), most(allowed), code_page(page) {}

  std::wstring name(const record& of) const { return name_of(of, code_page); }
  entry describe(std::size_t index) const;
  /// Throws what forbids to read it: links and what is not known, of a content beyond the limits.
  void expect_readable(const record& which, const std::wstring& name) const;
  /// Gives the content to `to`; false when that stopped. Throws exc::zipBadFormated and zipBadData, and the
  /// failures of files.
  bool unpack(const record& which, const std::wstring& name, outlet& to);
  /// How many bytes came out of contents, whole ones or not.
  std::uint64_t unpacked() const noexcept { return unpacked_; }

  source bytes;
  directory list;
  limits most;
  unsigned code_page;
  std::vector<std::uint32_t> buckets, in_buckets;  // entries by their names, made for the first find()

 private:
  std::uint64_t locate(const record& which, const std::wstring& name);
  bool inflate(const record& which, const std::wstring& name, std::uint64_t begin, outlet& to);
  bool copy(const record& which, const std::wstring& name, std::uint64_t begin, outlet& to);

  std::unique_ptr<packing::unpacker> unpacker_;
  std::uint64_t unpacked_ = 0;
};

}  // namespace ruvo::zip
