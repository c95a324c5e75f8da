// SPDX-License-Identifier: BSL-1.0

// Base64 in lines.

#include "base/wire/base64_lines.hpp"

#include <algorithm>
#include <cstring>

#include "base/base64.hpp"

namespace ruvo::wire {

namespace {

constexpr std::string_view line_end = "\r\n";
constexpr std::size_t line_size = 76;

const unsigned char* bytes_at(const char* at) noexcept { return reinterpret_cast<const unsigned char*>(at); }

}  // namespace

void base64_line_writer::put(std::string& out, std::string_view bytes) {
  if (count_ != 0) {
    const std::size_t taken = std::min(line_bytes - count_, bytes.size());
    bytes.copy(kept_ + count_, taken);
    bytes.remove_prefix(taken);
    count_ += taken;
    if (count_ < line_bytes) return;
    put_lines(out, kept_, 1);
  }
  if (const std::size_t lines = bytes.size() / line_bytes) put_lines(out, bytes.data(), lines);
  count_ = bytes.size() % line_bytes;
  bytes.copy(kept_, count_, bytes.size() - count_);
}

void base64_line_writer::begin_line(std::string& out) {
  if (has_lines_) out.append(line_end);
  has_lines_ = true;
}

/// Encodes all lines in one run at the end of their room, since that is quicker than line by line, and moves
/// each to its place.
void base64_line_writer::put_lines(std::string& out, const char* bytes, std::size_t lines) {
  constexpr std::size_t step = line_size + line_end.size();
  begin_line(out);
  const std::size_t begin = out.size(), gaps = (lines - 1) * line_end.size();
  out.resize(begin + lines * line_size + gaps);
  char* const first = out.data() + begin;
  texto::base64_encode_to(first + gaps, bytes_at(bytes), lines * line_bytes, false);
  for (std::size_t n = 0; n + 1 < lines; ++n) {
    std::memmove(first + n * step, first + gaps + n * line_size, line_size);
    line_end.copy(first + n * step + line_size, line_end.size());
  }
}

void base64_line_writer::finish(std::string& out) {
  if (count_ == 0) return;
  begin_line(out);
  const std::size_t begin = out.size();
  out.resize(begin + texto::base64_size(count_));
  texto::base64_encode_to(out.data() + begin, bytes_at(kept_), count_, false);
}

}  // namespace ruvo::wire
