// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::digest, digests of bytes (FIPS 180-4) and codes that prove who made them (HMAC, RFC 2104).

#include <ruvo/api.hpp>
#include <ruvo/binary.hpp>
#include <ruvo/fwd.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Macros of others.
#include <ruvo/names_aside.hpp>

/// Digests of bytes. Wide text has none before it is decided which bytes it is: texto::to_utf_8() gives them.
namespace ruvo::digest {

/// Which digest. SHA-1 is for the protocols that prescribe it: whoever may choose both of two texts can make
/// them have one SHA-1. In an HMAC that is of no use to them.
enum class algorithm { sha1, sha256 };

/// The length of a digest in bytes: 20 and 32.
constexpr std::size_t size_of(algorithm kind) noexcept { return kind == algorithm::sha1 ? 20 : 32; }

/// Bytes on their way in, as long as what they were made of lives: text of narrow characters as it is, zero
/// bytes included, vectors and `binary`. A null pointer of characters gives none.
class KESTA_API bytes {
 public:
  /// Implicit, so that all of these are bytes.
  bytes(std::string_view text) noexcept : data_(text.data()), size_(text.size()) {}
  bytes(const std::string& text) noexcept : data_(text.data()), size_(text.size()) {}
  bytes(const char* text) noexcept : bytes(text ? std::string_view(text) : std::string_view()) {}
  bytes(const std::vector<unsigned char>& block) noexcept : data_(block.data()), size_(block.size()) {}
  bytes(const binary& block) noexcept : bytes(block.get_store()) {}
  bytes(const void* data, std::size_t size) noexcept : data_(data), size_(size) {}
  /// Deleted, for wide text is no bytes yet.
  bytes(const std::wstring&) = delete;
  bytes(const wchar_t*) = delete;

  /// The bytes, not ended by a zero, and how many they are.
  const unsigned char* data() const noexcept { return static_cast<const unsigned char*>(data_); }
  std::size_t size() const noexcept { return size_; }

 private:
  const void* data_;
  std::size_t size_;
};

/// A digest under way: takes bytes in pieces of any size, and gives the digest of all so far. Copies go on by
/// themselves. What it keeps of the bytes is wiped at its end.
class KESTA_API hash {
 public:
  /// Of no bytes yet.
  explicit hash(algorithm kind = algorithm::sha256) noexcept;
  hash(const hash& other) noexcept;
  hash& operator=(const hash& other) noexcept;
  ~hash();

  /// Takes further bytes, up to 2^61 - 1 in all. Gives this object.
  hash& update(const bytes& piece) noexcept;
  /// Writes size_of(kind()) bytes; further updates go on from before.
  void write_to(unsigned char* out) const noexcept;
  /// The digest of all bytes so far.
  binary value() const;
  std::wstring hex() const;  ///< The same in lower-case hexadecimal digits.
  /// Back to no bytes.
  void clear() noexcept;
  /// Which digest this is.
  algorithm kind() const noexcept { return kind_; }

 private:
  std::uint32_t state_[8];
  unsigned char open_[64];  // the block that is not full yet
  std::uint64_t size_ = 0;  // of all bytes so far
  algorithm kind_;
};

/// An HMAC under way, as hash. The key may have any length; it is not kept, and what was made of it is wiped.
class KESTA_API hmac {
 public:
  /// Of no bytes yet.
  hmac(algorithm kind, const bytes& key) noexcept;
  hmac(const hmac& other) noexcept;
  hmac& operator=(const hmac& other) noexcept;
  ~hmac();

  /// As those of hash; clear() keeps the key.
  hmac& update(const bytes& piece) noexcept;
  void write_to(unsigned char* out) const noexcept;
  binary value() const;
  std::wstring hex() const;
  void clear() noexcept;
  algorithm kind() const noexcept { return inner_.kind(); }

 private:
  hash start_, inner_, outer_;
};

/// The digest of the bytes in one call.
KESTA_API binary sha1(const bytes& all);
KESTA_API binary sha256(const bytes& all);
KESTA_API binary hmac_sha1(const bytes& key, const bytes& all);
KESTA_API binary hmac_sha256(const bytes& key, const bytes& all);

/// Lower-case hexadecimal digits, two a byte.
KESTA_API std::wstring hex(const bytes& digest);

/// Whether both are of one length and equal. How long that takes depends on the length alone, so that nobody
/// finds a code by measuring: for codes and signatures that came from outside.
KESTA_API bool same(const bytes& a, const bytes& b) noexcept;

}  // namespace ruvo::digest

#include <ruvo/names_back.hpp>
