// SPDX-License-Identifier: BSL-1.0

// Entries packed one behind the other, each of its sizes known before the list at the end is written.

#include "zip/new_archive.hpp"

#include <algorithm>
#include <utility>

#include "base/limits.hpp"
#include "base/utf.hpp"
#include "zip/failures.hpp"
#include "zip/names.hpp"

namespace ruvo::zip {

namespace {

constexpr std::size_t packed_room = std::size_t{1} << 16;
constexpr unsigned plain_version = 20, wide_version = 45;
constexpr std::uint64_t first_wide = detail::limits::archive_field;

/// The name as the archive has it.
std::string written_name(const std::wstring& name) {
  constexpr std::size_t most_levels = 256;
  if (const wchar_t* const reason = refusal_of(name, most_levels))
    throw failure_of<exc::zipUnsafeName>(name, reason);
  std::string out = texto::to_utf_8(name);
  if (texto::to_utf_16(out) != name) throw failure_of<exc::zipUnsafeName>(name, L"no es un texto");
  if (out.size() > elsewhere_16) throw failure_of<exc::zipUnsafeName>(name, L"es demasiado largo");
  return out;
}

std::uint32_t in_32(std::uint64_t number) {
  return number < first_wide ? static_cast<std::uint32_t>(number) : elsewhere;
}

}  // namespace

/// What the two records of an entry have in common.
struct new_archive::entry_head {
  std::string name;
  unsigned method = stored;
  long long modified = 0;
  std::uint32_t dos_time = 0, attributes = 0, crc = 0;
  std::uint64_t size = 0, packed = 0, offset = 0;
  bool is_wide = false;  // the entry's own record has room for sizes of 64 bits

  std::string local() const {
    std::string fields;
    if (is_wide) {
      put(fields, extra::wide, 2);
      put(fields, 16, 2);
      put(fields, size, 8);
      put(fields, packed, 8);
    }
    append_time(fields);
    std::string bytes;
    put(bytes, local_mark, 4);
    append_common(bytes, is_wide, is_wide ? elsewhere : in_32(packed), is_wide ? elsewhere : in_32(size));
    put(bytes, fields.size(), 2);
    return bytes + name + fields;
  }

  std::string central() const {
    std::string numbers;
    for (const std::uint64_t number : {size, packed, offset})
      if (number >= first_wide) put(numbers, number, 8);
    std::string fields;
    if (!numbers.empty()) {
      put(fields, extra::wide, 2);
      put(fields, numbers.size(), 2);
      fields += numbers;
    }
    append_time(fields);
    const bool needs_wide = is_wide || !numbers.empty();
    std::string bytes;
    put(bytes, central_mark, 4);
    put(bytes, needs_wide ? wide_version : plain_version,
        2);  // made on DOS: attributes, and no rights of Unix
    append_common(bytes, needs_wide, in_32(packed), in_32(size));
    put(bytes, fields.size(), 2);
    put(bytes, 0, 6);  // no comment, the first disk, nothing known of the content
    put(bytes, attributes, 4);
    put(bytes, in_32(offset), 4);
    return bytes + name + fields;
  }

 private:
  void append_common(std::string& bytes, bool needs_wide, std::uint32_t packed_32,
                     std::uint32_t size_32) const {
    put(bytes, needs_wide ? wide_version : plain_version, 2);
    put(bytes, is_ascii(name) ? 0 : flag::utf_8, 2);
    put(bytes, method, 2);
    put(bytes, dos_time, 4);
    put(bytes, crc, 4);
    put(bytes, packed_32, 4);
    put(bytes, size_32, 4);
    put(bytes, name.size(), 2);
  }
  /// In seconds of UTC, where these have 32 bits.
  void append_time(std::string& fields) const {
    if (modified != static_cast<std::int32_t>(modified)) return;
    put(fields, extra::times, 2);
    put(fields, 5, 2);
    put(fields, 1, 1);
    put(fields, static_cast<std::uint64_t>(modified), 4);
  }
};

template <class Work>
void new_archive::writing(Work work) {
  try {
    work();
  } catch (const exception&) {
    broken =
        detail::about(exc::zipCreateOpenError(), [this] { return static_cast<const std::wstring&>(path); });
    expect_whole();
  }
}

void new_archive::expect_whole() const {
  if (broken.WRONG()) broken.raise();
}

void new_archive::add(const std::wstring& given, const packed_facts& facts, const next_piece& next) {
  expect_whole();
  std::wstring name = given;
  use_slashes(name);
  entry_head head;
  head.name = written_name(name);
  const bool is_folder = is_folder_name(name);
  if (is_folder && !(facts.attributes & attribute::folder))
    throw failure_of<exc::zipUnsafeName>(name, L"es el nombre de un directorio");
  if (is_folder) name.pop_back();
  const auto [place, is_new] = names_.try_emplace(twin_key(name), is_folder);
  if (!is_new && place->second && is_folder) return;
  if (!is_new) throw failure_of<exc::zipUnsafeName>(name, L"otra entrada tiene el mismo nombre");
  head.method = level && facts.size ? deflated : stored;
  head.modified = facts.modified;
  head.dos_time = dos_time_of(facts.modified);
  head.attributes = facts.attributes;
  head.offset = out.end();
  head.is_wide = facts.size + facts.size / 1000 + packed_room >= first_wide;  // packing may add a little
  const std::size_t listed = directory_.size();
  try {
    write_entry(head, next);
    directory_ += head.central();
  } catch (...) {
    out.go_back(head.offset);
    directory_.resize(listed);
    names_.erase(place);
    throw;
  }
  ++count_;
}

void new_archive::add_folder(std::wstring name, long long modified) {
  if (!name.ends_with(L'/') && !name.ends_with(L'\\')) name += L'/';
  add(name, {modified, attribute::folder, 0}, [] { return std::string_view(); });
}

void new_archive::write_entry(entry_head& head, const next_piece& next) {
  writing([&] { out.append(head.local()); });
  const std::uint64_t begin = out.end();
  if (head.method == stored)
    store(head, next);
  else
    deflate(head, next);
  head.packed = out.end() - begin;
  writing([&] { out.replace(head.offset, head.local()); });
}

void new_archive::store(entry_head& head, const next_piece& next) {
  for (std::string_view piece = next(); !piece.empty(); piece = next()) {
    head.crc = packing::crc_32(head.crc, piece);
    head.size += piece.size();
    writing([&] { out.append(piece); });
  }
}

void new_archive::deflate(entry_head& head, const next_piece& next) {
  if (!packer_ || packer_level_ != level) packer_ = std::make_unique<packing::packer>(level);
  packer_level_ = level;
  packer_->begin();
  for (bool ends = false; !ends;) {
    std::string_view piece = next();
    ends = piece.empty();
    head.crc = packing::crc_32(head.crc, piece);
    head.size += piece.size();
    while (ends ? !packer_->is_done() : !piece.empty()) {
      const std::size_t size = std::min(packed_room, std::max<std::size_t>(piece.size(), 256));
      const std::size_t count = packer_->pack(piece, ends, out.room(size), size);
      writing([&] { out.used(count); });
    }
  }
}

void new_archive::finish() {
  expect_whole();
  const std::uint64_t offset = out.end(), size = directory_.size();
  std::string end;
  if (count_ >= elsewhere_16 || offset >= first_wide || size >= first_wide) {
    put(end, wide_end_mark, 4);
    put(end, wide_end_size - 12, 8);
    put(end, wide_version, 2);
    put(end, wide_version, 2);
    put(end, 0, 8);  // the only disk
    for (const std::uint64_t number : {count_, count_, size, offset}) put(end, number, 8);
    put(end, locator_mark, 4);
    put(end, 0, 4);
    put(end, offset + size, 8);
    put(end, 1, 4);
  }
  const std::uint64_t counted = count_ < elsewhere_16 ? count_ : elsewhere_16;
  put(end, end_mark, 4);
  put(end, 0, 4);
  put(end, counted, 2);
  put(end, counted, 2);
  put(end, in_32(size), 4);
  put(end, in_32(offset), 4);
  put(end, comment.size(), 2);
  writing([&] {
    out.append(directory_);
    out.append(end);
    out.append(comment);
    if (!path.empty()) out.settle();
  });
}

}  // namespace ruvo::zip
