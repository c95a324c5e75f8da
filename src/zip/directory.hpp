// SPDX-License-Identifier: BSL-1.0
#pragma once

// The list of entries at the end of an archive.

#include <ruvo/zip.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "zip/format.hpp"
#include "zip/source.hpp"

namespace ruvo::zip {

/// Keeps the list as its bytes, and of each entry where its record begins.
class directory {
 public:
  /// Throws exc::zipBadFormated, zipLimit and zipUnsupported with the archive's path, and the failures of
  /// files.
  directory(source& from, const limits& most);

  std::size_t size() const noexcept { return records_.size(); }
  record get(std::size_t index) const noexcept;
  const std::string& comment() const noexcept { return comment_; }

  /// Where the local record of an entry begins in the archive, whatever stands before it.
  std::uint64_t begin_of(const record& entry) const noexcept { return entry.offset + shift_; }
  /// Where the first byte is behind that place that belongs to something else; the place itself when another
  /// entry begins there, too.
  std::uint64_t next_behind(std::uint64_t begin);
  /// Whether entries share bytes, as far as the list knows.
  bool overlaps();

 private:
  struct end_record;
  bool read_end(source& from, std::uint64_t at, end_record& out) const;
  bool read_wide_end(source& from, std::uint64_t at, end_record& out) const;
  end_record find_end(source& from) const;
  void read_records(const end_record& end, const limits& most);
  void sort_begins();
  [[noreturn]] void refuse(const wchar_t* reason) const;

  std::wstring path_;
  std::string bytes_, comment_;
  std::vector<std::uint32_t> records_;
  std::uint64_t shift_ = 0;   // what stands before the archive
  std::uint64_t begins_ = 0;  // of the list, in the whole file
  // Where entries begin, in order; and whether two share bytes. Made when they are first asked for.
  std::vector<std::uint64_t> sorted_;
  bool overlaps_ = false;
};

}  // namespace ruvo::zip
