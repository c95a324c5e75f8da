// SPDX-License-Identifier: BSL-1.0

// Finding and reading the list of entries.

#include "zip/directory.hpp"

#include <algorithm>
#include <optional>
#include <string_view>

#include "zip/failures.hpp"

namespace ruvo::zip {

namespace {

/// So far before the archive's end its last record is looked for: behind its comment some bytes may stand
/// that are no part of it.
constexpr std::size_t end_zone = end_size + 0xFFFF + 1024;

}  // namespace

struct directory::end_record {
  std::uint64_t count = 0, size = 0, offset = 0;
  std::uint64_t ends = 0;     // the list, where the record of its end begins
  std::uint64_t comment = 0;  // where it stands
  std::size_t comment_size = 0;
  bool is_wide = false, is_alone = true;

  std::uint64_t begins() const noexcept { return ends - size; }
};

directory::directory(source& from, const limits& most) : path_(from.path()) {
  const end_record end = find_end(from);
  if (!end.is_alone) throw failure_of<exc::zipUnsupported>(path_, L"varios discos");
  if (end.size > most.directory_bytes || end.size > elsewhere)
    throw failure_of<exc::zipLimit>(path_, L"tamaño del directorio");
  begins_ = end.begins();
  shift_ = begins_ - end.offset;
  comment_ = from.read(end.comment, end.comment_size);
  bytes_ = from.read(begins_, static_cast<std::size_t>(end.size));
  read_records(end, most);
}

void directory::refuse(const wchar_t* reason) const { throw failure_of<exc::zipBadFormated>(path_, reason); }

/// The one nearest to the archive's end that knows of no bytes before the archive; where there is none, the
/// one nearest to the end. So neither a comment nor an entry that holds an archive is taken for it.
directory::end_record directory::find_end(source& from) const {
  const std::uint64_t size = from.size();
  const auto zone = static_cast<std::size_t>(std::min<std::uint64_t>(size, end_zone));
  const std::string tail = from.read(size - zone, zone);
  std::optional<end_record> found;
  for (std::size_t at = zone >= end_size ? zone - end_size + 1 : 0; at-- > 0;) {
    if (get_32(tail, at) != end_mark) continue;
    end_record candidate;
    if (!read_end(from, size - zone + at, candidate)) continue;
    if (candidate.begins() == candidate.offset) return candidate;
    if (!found) found = candidate;
  }
  if (!found) refuse(L"no termina como un archivo comprimido");
  return *found;
}

/// Whether an end stands there that fits to what is before it.
bool directory::read_end(source& from, std::uint64_t at, end_record& out) const {
  const std::string head = from.read(at, end_size);
  out.comment = at + end_size;
  out.comment_size = get_16(head, 20);
  if (from.size() - out.comment < out.comment_size) return false;
  out.is_alone = get_16(head, 4) == 0 && get_16(head, 6) == 0 && get_16(head, 8) == get_16(head, 10);
  out.count = get_16(head, 10);
  out.size = get_32(head, 12);
  out.offset = get_32(head, 16);
  out.ends = at;
  const bool may_be_wide = out.count == elsewhere_16 || out.size == elsewhere || out.offset == elsewhere;
  if (at >= locator_size && get_32(from.read(at - locator_size, 4), 0) == locator_mark) {
    if (!read_wide_end(from, at - locator_size, out) && may_be_wide) return false;
  }
  if (out.size > out.ends || out.offset > out.begins()) return false;
  return out.size < central_size ? out.size == 0 && out.count == 0
                                 : get_32(from.read(out.begins(), 4), 0) == central_mark;
}

/// Takes the numbers from the end of 64 bits to which a locator leads; false, and nothing changed, when there
/// is none or it contradicts the numbers that are there.
bool directory::read_wide_end(source& from, std::uint64_t locator, end_record& out) const {
  const std::string where = from.read(locator, locator_size);
  std::uint64_t at = get_64(where, 8);
  const auto is_there = [&] {
    return at <= locator && locator - at >= wide_end_size && get_32(from.read(at, 4), 0) == wide_end_mark;
  };
  if (!is_there()) {
    if (locator < wide_end_size) return false;
    at = locator - wide_end_size;  // something stands before the archive
    if (!is_there()) return false;
  }
  const std::string head = from.read(at, wide_end_size);
  const std::uint64_t count = get_64(head, 32), size = get_64(head, 40), offset = get_64(head, 48);
  if (get_64(head, 4) != locator - at - 12 || (out.count != elsewhere_16 && out.count != count) ||
      (out.size != elsewhere && out.size != size) || (out.offset != elsewhere && out.offset != offset))
    return false;
  out.is_alone = get_32(where, 4) == 0 && get_32(where, 16) <= 1 && get_32(head, 16) == 0 &&
                 get_32(head, 20) == 0 && get_64(head, 24) == count;
  out.count = count;
  out.size = size;
  out.offset = offset;
  out.ends = at;
  out.is_wide = true;
  return true;
}

void directory::read_records(const end_record& end, const limits& most) {
  for (std::size_t at = 0; at < bytes_.size();) {
    record next;
    if (!read_record(std::string_view(bytes_).substr(at), next)) refuse(L"el directorio está roto");
    if (next.disk != 0) throw failure_of<exc::zipUnsupported>(path_, L"varios discos");
    if (records_.size() == most.entries) throw failure_of<exc::zipLimit>(path_, L"número de entradas");
    // No sum of these goes beyond 64 bits then.
    if (next.packed > begins_ || next.offset > begins_ || begin_of(next) > begins_)
      refuse(L"una entrada no está en el archivo");
    records_.push_back(static_cast<std::uint32_t>(at));
    at += next.length();
  }
  // Older archivers count no further than 16 bits.
  const std::uint64_t counted = end.is_wide ? records_.size() : records_.size() & elsewhere_16;
  if (counted != end.count) refuse(L"el número de entradas no es el que dice");
}

record directory::get(std::size_t index) const noexcept {
  record out;
  read_record(std::string_view(bytes_).substr(records_[index]), out);
  return out;
}

void directory::sort_begins() {
  if (sorted_.size() == records_.size()) return;
  std::vector<std::pair<std::uint64_t, std::uint64_t>> parts(records_.size());
  for (std::size_t n = 0; n < parts.size(); ++n) {
    const record entry = get(n);
    const std::uint64_t begin = begin_of(entry);
    parts[n] = {begin, begin + local_size + entry.name.size() + entry.packed};
  }
  if (!std::ranges::is_sorted(parts)) std::ranges::sort(parts);
  std::uint64_t end = 0;
  sorted_.reserve(parts.size());
  for (const auto& [begins, ends] : parts) {
    overlaps_ = overlaps_ || begins < end;
    end = ends;
    sorted_.push_back(begins);
  }
  overlaps_ = overlaps_ || end > begins_;
}

bool directory::overlaps() {
  sort_begins();
  return overlaps_;
}

std::uint64_t directory::next_behind(std::uint64_t begin) {
  sort_begins();
  const auto first = std::ranges::lower_bound(sorted_, begin);
  const auto next = first == sorted_.end() ? first : first + 1;
  return next == sorted_.end() ? begins_ : *next;
}

}  // namespace ruvo::zip
