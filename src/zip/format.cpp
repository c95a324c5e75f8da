// SPDX-License-Identifier: BSL-1.0

// Reading the records of archives, and times as they have them.

#include "zip/format.hpp"

#include <ctime>

#include "base/civil.hpp"
#include "base/services.hpp"

namespace ruvo::zip {

namespace {

/// The kind of file of Unix, which stands in the upper half of the attributes.
constexpr std::uint32_t kind_bits = 0xF0000000, kind_file = 0x80000000, kind_folder = 0x40000000,
                        kind_link = 0xA0000000, kind_pipe = 0x10000000;

/// Takes from `field` the number that was left out of a record's own, if it was.
bool fill_in(std::uint64_t& number, std::string_view& field) noexcept {
  if (number != elsewhere) return true;
  if (field.size() < 8) return false;
  number = get_64(field, 0);
  field.remove_prefix(8);
  return true;
}

/// The first moment that the format knows, for one that there is not.
std::tm fields_of(std::uint32_t dos_time) noexcept {
  const auto bits = [dos_time](unsigned from, unsigned count) {
    return static_cast<int>(dos_time >> from & ((1u << count) - 1));
  };
  std::tm out{};
  out.tm_isdst = -1;
  out.tm_year = 80;
  out.tm_mday = 1;
  const int year = 1980 + bits(25, 7), month = bits(21, 4), day = bits(16, 5);
  const int hour = bits(11, 5), minute = bits(5, 6), second = 2 * bits(0, 5);
  const bool is_day = month >= 1 && month <= 12 && day >= 1 && day <= civil::month_days(year, month);
  if (!is_day || hour > 23 || minute > 59 || second > 59) return out;
  out.tm_year = year - 1900;
  out.tm_mon = month - 1;
  out.tm_mday = day;
  out.tm_hour = hour;
  out.tm_min = minute;
  out.tm_sec = second;
  return out;
}

}  // namespace

bool record::is_link() const noexcept {
  return (attributes & kind_bits) == kind_link || (attributes & attribute::link && !(attributes >> 16));
}

bool record::is_special() const noexcept {
  const std::uint32_t kind = attributes & kind_bits;
  return kind && kind != kind_file && kind != kind_folder && kind != kind_link && kind != kind_pipe;
}

std::string_view find_extra(std::string_view fields, unsigned number) noexcept {
  while (fields.size() >= 4) {
    const std::size_t size = get_16(fields, 2);
    if (size > fields.size() - 4) break;
    if (get_16(fields, 0) == number) return fields.substr(4, size);
    fields.remove_prefix(4 + size);
  }
  return {};
}

bool read_record(std::string_view bytes, record& out) noexcept {
  if (bytes.size() < central_size || get_32(bytes, 0) != central_mark) return false;
  const std::size_t name = get_16(bytes, 28), more = get_16(bytes, 30), comment = get_16(bytes, 32);
  if (bytes.size() - central_size < name + more + comment) return false;
  out.made_by = get_16(bytes, 4) >> 8;
  out.flags = get_16(bytes, 8);
  out.method = get_16(bytes, 10);
  out.dos_time = get_32(bytes, 12);
  out.crc = get_32(bytes, 16);
  out.packed = get_32(bytes, 20);
  out.size = get_32(bytes, 24);
  out.disk = get_16(bytes, 34);
  out.attributes = get_32(bytes, 38);
  out.offset = get_32(bytes, 42);
  out.name = bytes.substr(central_size, name);
  out.extra = bytes.substr(central_size + name, more);
  out.comment = bytes.substr(central_size + name + more, comment);
  if (out.size != elsewhere && out.packed != elsewhere && out.offset != elsewhere && out.disk == 0)
    return true;
  std::string_view wide = find_extra(out.extra, extra::wide);
  if (!fill_in(out.size, wide) || !fill_in(out.packed, wide) || !fill_in(out.offset, wide)) return false;
  if (out.disk == elsewhere_16 && wide.size() >= 4) out.disk = get_32(wide, 0);
  return true;
}

long long time_of(const record& from) {
  const std::string_view times = find_extra(from.extra, extra::times);
  if (times.size() >= 5 && times[0] & 1) return static_cast<std::int32_t>(get_32(times, 1));
  const std::string_view ntfs = find_extra(from.extra, extra::ntfs);
  if (ntfs.size() >= 16 && get_16(ntfs, 4) == 1) {
    constexpr long long ticks = 10'000'000, from_1601_to_1970 = 11'644'473'600;
    return static_cast<long long>(get_64(ntfs, 8) >> 1) / (ticks / 2) - from_1601_to_1970;
  }
  std::tm fields = fields_of(from.dos_time);
  long long out = 0;
  services::build(current_context(), fields, true, out, nullptr);
  return out;
}

std::uint32_t dos_time_of(long long seconds) {
  std::tm fields{};
  constexpr std::uint32_t first = 1u << 21 | 1u << 16, last = 0xFF9FBF7D;  // the last second of 2107
  if (!services::break_down(current_context(), seconds, true, fields, nullptr)) return first;
  if (fields.tm_year < 80) return first;
  if (fields.tm_year > 80 + 127) return last;
  const auto day =
      static_cast<std::uint32_t>((fields.tm_year - 80) << 9 | (fields.tm_mon + 1) << 5 | fields.tm_mday);
  const auto time = static_cast<std::uint32_t>(fields.tm_hour << 11 | fields.tm_min << 5 | fields.tm_sec / 2);
  return day << 16 | time;
}

}  // namespace ruvo::zip
