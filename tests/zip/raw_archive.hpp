// SPDX-License-Identifier: BSL-1.0
#pragma once

// Archives made byte by byte, so that they can lie.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace raw {

inline std::string number(std::uint64_t value, unsigned bytes) {
  std::string out;
  for (; bytes > 0; --bytes, value >>= 8) out += static_cast<char>(value & 0xFF);
  return out;
}

/// Bit by bit.
inline std::uint32_t crc_of(std::string_view bytes) {
  std::uint32_t crc = 0xFFFFFFFF;
  for (const char c : bytes) {
    crc ^= static_cast<unsigned char>(c);
    for (int n = 0; n < 8; ++n) crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320 : 0);
  }
  return ~crc;
}

/// An entry that is stored, unless a method and what was packed are given.
struct entry {
  std::string name, content;
  unsigned flags = 0;
  std::uint32_t attributes = 0;
  std::string extra = {};
  unsigned method = 0;
  std::string packed = {};
  std::uint64_t size = 0;  // that is promised, if it is not that of the content
  bool is_wide = false;    // its numbers stand in fields of 64 bits
  std::uint32_t time = 0x58215A32;
};

inline std::uint64_t packed_size(const entry& of) { return (of.method ? of.packed : of.content).size(); }
inline std::uint64_t promised_size(const entry& of) { return of.size ? of.size : of.content.size(); }

/// What both records of an entry have, from the flags to the lengths.
inline std::string common(const entry& of) {
  constexpr std::uint64_t elsewhere = 0xFFFFFFFF;
  return number(of.flags, 2) + number(of.method, 2) + number(of.time, 4) + number(crc_of(of.content), 4) +
         number(of.is_wide ? elsewhere : packed_size(of), 4) +
         number(of.is_wide ? elsewhere : promised_size(of), 4) + number(of.name.size(), 2);
}

inline std::string wide_field(const entry& of, const std::string& place) {
  if (!of.is_wide) return {};
  return number(1, 2) + number(16 + place.size(), 2) + number(promised_size(of), 8) +
         number(packed_size(of), 8) + place;
}

inline std::string local(const entry& of) {
  const std::string fields = wide_field(of, {});
  return "PK\3\4" + number(20, 2) + common(of) + number(fields.size(), 2) + of.name + fields +
         (of.method ? of.packed : of.content);
}

inline std::string central(const entry& of, std::size_t offset) {
  const std::string fields = wide_field(of, number(offset, 8)) + of.extra;
  return "PK\1\2" + number(20, 2) + number(20, 2) + common(of) + number(fields.size(), 2) + number(0, 6) +
         number(of.attributes, 4) + number(of.is_wide ? 0xFFFFFFFF : offset, 4) + of.name + fields;
}

inline std::string end(std::size_t count, std::size_t size, std::size_t offset,
                       const std::string& comment = {}) {
  return "PK\5\6" + number(0, 4) + number(count, 2) + number(count, 2) + number(size, 4) + number(offset, 4) +
         number(comment.size(), 2) + comment;
}

inline std::string archive(const std::vector<entry>& entries, const std::string& comment = {}) {
  std::string out, list;
  for (const entry& each : entries) {
    list += central(each, out.size());
    out += local(each);
  }
  return out + list + end(entries.size(), list.size(), out.size(), comment);
}

}  // namespace raw
