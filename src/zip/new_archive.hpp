// SPDX-License-Identifier: BSL-1.0
#pragma once

// An archive that is written.

#include <ruvo/exception.hpp>
#include <ruvo/file.hpp>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "packing/deflate.hpp"
#include "zip/format.hpp"
#include "zip/sink.hpp"

namespace ruvo::zip {

/// What a record says of an entry beside its name.
struct packed_facts {
  long long modified = 0;
  std::uint32_t attributes = 0;
  std::uint64_t size = 0;
};

/// Gives the next piece of a content, empty at its end; valid until the next call.
using next_piece = std::function<std::string_view()>;

struct new_archive {
  new_archive() = default;
  explicit new_archive(const file& to) : path(to), out(to) {}

  /// Adds an entry with a name as callers give it; nothing for a folder that is there. What `next` throws
  /// leaves the archive as it was; what the archive's own file throws breaks it, as exc::zipCreateOpenError.
  void add(const std::wstring& name, const packed_facts& facts, const next_piece& next);
  void add_folder(std::wstring name, long long modified);
  /// Writes the list of entries.
  void finish();
  /// Throws what broke it.
  void expect_whole() const;

  file path;
  sink out;
  int level = 6;
  std::string comment;  // UTF-8
  exception broken;     // the failure; OK() without one

 private:
  struct entry_head;
  void write_entry(entry_head& head, const next_piece& next);
  void store(entry_head& head, const next_piece& next);
  void deflate(entry_head& head, const next_piece& next);
  /// Keeps a failure of the file, and throws it.
  template <class Work>
  void writing(Work work);

  std::unique_ptr<packing::packer> packer_;
  int packer_level_ = -1;
  std::string directory_;
  std::uint64_t count_ = 0;
  std::unordered_map<std::uint64_t, bool> names_;  // and whether they are folders
};

}  // namespace ruvo::zip
