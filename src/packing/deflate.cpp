// SPDX-License-Identifier: BSL-1.0

// Streams of zlib.

#include "packing/deflate.hpp"

#include <algorithm>
#include <new>

#include <zlib.h>

namespace ruvo::packing {

namespace {

constexpr int no_frame = -MAX_WBITS;  // the greatest window, without zlib's own head and tail
constexpr int usual_memory = 8;

/// zlib counts in 32 bits.
uInt counted(std::size_t size) noexcept {
  return static_cast<uInt>(std::min<std::size_t>(size, std::size_t{1} << 30));
}

// zlib does not write to what it reads, although its older interface does not say so.
Bytef* input_of(std::string_view bytes) noexcept {
  return reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
}

void offer(z_stream& stream, std::string_view in, char* out, std::size_t room) noexcept {
  stream.next_in = input_of(in);
  stream.avail_in = counted(in.size());
  stream.next_out = reinterpret_cast<Bytef*>(out);
  stream.avail_out = counted(room);
}

/// What was taken goes; gives how many bytes were written.
std::size_t settle(const z_stream& stream, std::string_view& in, std::size_t room) noexcept {
  in.remove_prefix(counted(in.size()) - stream.avail_in);
  return counted(room) - stream.avail_out;
}

void expect_memory(int result) {
  if (result == Z_MEM_ERROR) throw std::bad_alloc();
}

}  // namespace

std::uint32_t crc_32(std::uint32_t before, std::string_view bytes) noexcept {
  uLong sum = before;
  while (!bytes.empty()) {
    const uInt size = counted(bytes.size());
    sum = crc32(sum, input_of(bytes), size);
    bytes.remove_prefix(size);
  }
  return static_cast<std::uint32_t>(sum);
}

void stream_closer::operator()(z_stream_s* stream) const noexcept {
  if (packs)
    deflateEnd(stream);
  else
    inflateEnd(stream);
  delete stream;
}

packer::packer(int level) : stream_(new z_stream{}, stream_closer{true}) {
  expect_memory(deflateInit2(stream_.get(), level, Z_DEFLATED, no_frame, usual_memory, Z_DEFAULT_STRATEGY));
}

void packer::begin() noexcept {
  deflateReset(stream_.get());
  done_ = false;
}

std::size_t packer::pack(std::string_view& in, bool ends, char* out, std::size_t room) noexcept {
  offer(*stream_, in, out, room);
  const bool is_last = ends && stream_->avail_in == in.size();
  done_ = deflate(stream_.get(), is_last ? Z_FINISH : Z_NO_FLUSH) == Z_STREAM_END;
  return settle(*stream_, in, room);
}

unpacker::unpacker() : stream_(new z_stream{}, stream_closer{false}) {
  expect_memory(inflateInit2(stream_.get(), no_frame));
}

void unpacker::begin() noexcept { inflateReset(stream_.get()); }

unpacker::state unpacker::unpack(std::string_view& in, char* out, std::size_t room, std::size_t& got) {
  offer(*stream_, in, out, room);
  const int result = inflate(stream_.get(), Z_NO_FLUSH);
  got = settle(*stream_, in, room);
  expect_memory(result);
  if (result == Z_STREAM_END) return state::done;
  return result == Z_OK || result == Z_BUF_ERROR ? state::more : state::damaged;
}

}  // namespace ruvo::packing
