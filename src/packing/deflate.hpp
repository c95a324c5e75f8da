// SPDX-License-Identifier: BSL-1.0
#pragma once

// The deflate format without a frame (RFC 1951), packed and unpacked piece by piece, and CRC-32, by zlib,
// which nothing else in the library knows of.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

struct z_stream_s;  // zlib's

namespace ruvo::packing {

/// The checksum of what had the checksum `before`, 0 of nothing, with the bytes behind it.
std::uint32_t crc_32(std::uint32_t before, std::string_view bytes) noexcept;

/// No more than so many bytes come out of one.
constexpr unsigned long long most_ratio = 1032;

struct stream_closer {
  bool packs;
  void operator()(z_stream_s* stream) const noexcept;
};

/// Packs one stream after the other. Throws std::bad_alloc.
class packer {
 public:
  /// From 1, quick, to 9, small.
  explicit packer(int level);

  /// Forgets the stream that was begun.
  void begin() noexcept;
  /// Packs from the front of `in`, which becomes what is left, and gives how many bytes it wrote to `out`.
  /// When `ends`, nothing follows `in`. Stops at the end of the room or of `in`.
  std::size_t pack(std::string_view& in, bool ends, char* out, std::size_t room) noexcept;
  /// Whether the stream has ended.
  bool is_done() const noexcept { return done_; }

 private:
  std::unique_ptr<z_stream_s, stream_closer> stream_;
  bool done_ = false;
};

/// Unpacks one stream after the other. Throws std::bad_alloc.
class unpacker {
 public:
  enum class state : std::uint8_t { more, done, damaged };

  unpacker();

  /// Forgets the stream that was begun.
  void begin() noexcept;
  /// Unpacks from the front of `in`, which becomes what is left, and writes `got` bytes to `out`. Stops at
  /// the end of the room, of `in` or of the stream.
  state unpack(std::string_view& in, char* out, std::size_t room, std::size_t& got);

 private:
  std::unique_ptr<z_stream_s, stream_closer> stream_;
};

}  // namespace ruvo::packing
