// SPDX-License-Identifier: BSL-1.0
#pragma once

// The records of archives: what stands where, in bytes of the lowest first.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ruvo::zip {

constexpr std::uint32_t local_mark = 0x04034B50, central_mark = 0x02014B50, end_mark = 0x06054B50,
                        wide_end_mark = 0x06064B50, locator_mark = 0x07064B50;
constexpr std::size_t local_size = 30, central_size = 46, end_size = 22, wide_end_size = 56,
                      locator_size = 20;

/// What stands in a field of 16 or 32 bits whose number is kept elsewhere, in 64.
constexpr std::uint32_t elsewhere_16 = 0xFFFF, elsewhere = 0xFFFFFFFF;

namespace flag {
constexpr unsigned encrypted = 1 << 0, sizes_behind = 1 << 3, patched = 1 << 5, strong = 1 << 6,
                   utf_8 = 1 << 11, masked = 1 << 13;
}
namespace attribute {
constexpr std::uint32_t read_only = 1, hidden = 2, folder = 16, archive = 32, link = 0x400;
}
/// The fields that may follow a name.
namespace extra {
constexpr unsigned wide = 1, ntfs = 0x000A, times = 0x5455, utf_8_name = 0x7075;
}
constexpr unsigned stored = 0, deflated = 8;

/// The number at a place, which has to be there.
inline unsigned get_16(std::string_view bytes, std::size_t at) noexcept {
  return static_cast<unsigned char>(bytes[at]) | unsigned{static_cast<unsigned char>(bytes[at + 1])} << 8;
}
inline std::uint32_t get_32(std::string_view bytes, std::size_t at) noexcept {
  return get_16(bytes, at) | std::uint32_t{get_16(bytes, at + 2)} << 16;
}
inline std::uint64_t get_64(std::string_view bytes, std::size_t at) noexcept {
  return get_32(bytes, at) | std::uint64_t{get_32(bytes, at + 4)} << 32;
}

inline void put(std::string& out, std::uint64_t number, unsigned count) {
  for (; count > 0; --count, number >>= 8) out.push_back(static_cast<char>(number & 0xFF));
}

/// An entry as the list at the archive's end has it; the texts lie in that list.
struct record {
  unsigned made_by = 0, flags = 0, method = 0, disk = 0;
  std::uint32_t dos_time = 0;  // the day in the upper half
  std::uint32_t crc = 0, attributes = 0;
  std::uint64_t packed = 0, size = 0, offset = 0;
  std::string_view name, extra, comment;

  std::size_t length() const noexcept { return central_size + name.size() + extra.size() + comment.size(); }
  bool is_link() const noexcept;
  /// A device or a socket. What was read from a pipe is a content as others.
  bool is_special() const noexcept;
  bool is_encrypted() const noexcept { return flags & (flag::encrypted | flag::strong | flag::masked); }
};

/// The record at the front of `bytes`; false when it is none.
bool read_record(std::string_view bytes, record& out) noexcept;

/// The field of that number; empty when there is none. A field that goes beyond the end is the last.
std::string_view find_extra(std::string_view fields, unsigned number) noexcept;

/// When the content was changed, in seconds since 1970; the beginning of 1980, local time, for a day or an
/// hour that there is not.
long long time_of(const record& from);
/// An instant as the local day and time of the format, which knows 1980 to 2107.
std::uint32_t dos_time_of(long long seconds);

}  // namespace ruvo::zip
