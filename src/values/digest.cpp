// SPDX-License-Identifier: BSL-1.0

// Digests in pieces, and the codes made of them.

#include <ruvo/digest.hpp>

#include <algorithm>
#include <iterator>

#include "base/hex.hpp"
#include "base/sha.hpp"
#include "base/wipe.hpp"

namespace ruvo::digest {

namespace {

constexpr std::size_t longest = 32;  // digest, in bytes

void take(algorithm kind, std::uint32_t* state, const unsigned char* blocks, std::size_t count) noexcept {
  kind == algorithm::sha1 ? detail::take_sha1(state, blocks, count)
                          : detail::take_sha256(state, blocks, count);
}

/// The most significant byte first.
template <class Number>
void write_number(unsigned char* out, Number number) noexcept {
  for (std::size_t at = sizeof number; at-- > 0; number = static_cast<Number>(number >> 8))
    out[at] = static_cast<unsigned char>(number);
}

template <class Digest>
binary value_of(const Digest& digest) {
  std::vector<unsigned char> out(size_of(digest.kind()));
  digest.write_to(out.data());
  return binary(out);
}

template <class Digest>
std::wstring hex_of(const Digest& digest) {
  unsigned char out[longest];
  digest.write_to(out);
  return hex(bytes(out, size_of(digest.kind())));
}

}  // namespace

// --- hash

hash::hash(algorithm kind) noexcept : kind_(kind) { clear(); }
hash::hash(const hash& other) noexcept = default;
hash& hash::operator=(const hash& other) noexcept = default;
hash::~hash() {
  detail::wipe(state_, sizeof state_);
  detail::wipe(open_, sizeof open_);
}

void hash::clear() noexcept {
  detail::wipe(open_, sizeof open_);
  std::fill(std::begin(state_), std::end(state_), 0U);
  if (kind_ == algorithm::sha1) {
    std::copy(std::begin(detail::sha1_start), std::end(detail::sha1_start), state_);
  } else {
    std::copy(std::begin(detail::sha256_start), std::end(detail::sha256_start), state_);
  }
  size_ = 0;
}

hash& hash::update(const bytes& piece) noexcept {
  const unsigned char* at = piece.data();
  std::size_t left = piece.size();
  const std::size_t held = size_ % sizeof open_;
  size_ += left;
  if (held) {
    const std::size_t part = std::min(left, sizeof open_ - held);
    std::copy(at, at + part, open_ + held);
    at += part;
    left -= part;
    if (held + part < sizeof open_) return *this;
    take(kind_, state_, open_, 1);
  }
  const std::size_t blocks = left / sizeof open_;
  if (blocks) take(kind_, state_, at, blocks);
  at += blocks * sizeof open_;
  std::copy(at, at + left % sizeof open_, open_);
  return *this;
}

void hash::write_to(unsigned char* out) const noexcept {
  hash last(*this);
  constexpr std::size_t end = sizeof open_ - sizeof size_;  // where the length stands
  std::size_t held = size_ % sizeof open_;
  last.open_[held++] = 0x80;
  if (held > end) {
    std::fill(last.open_ + held, std::end(last.open_), static_cast<unsigned char>(0));
    take(kind_, last.state_, last.open_, 1);
    held = 0;
  }
  std::fill(last.open_ + held, last.open_ + end, static_cast<unsigned char>(0));
  write_number(last.open_ + end, size_ * 8);
  take(kind_, last.state_, last.open_, 1);
  for (std::size_t word = 0; word < size_of(kind_) / 4; ++word)
    write_number(out + 4 * word, last.state_[word]);
}

binary hash::value() const { return value_of(*this); }
std::wstring hash::hex() const { return hex_of(*this); }

// --- hmac

hmac::hmac(algorithm kind, const bytes& key) noexcept : start_(kind), inner_(kind), outer_(kind) {
  unsigned char block[detail::sha_block] = {};
  if (key.size() > sizeof block) {
    hash(kind).update(key).write_to(block);
  } else {
    std::copy(key.data(), key.data() + key.size(), block);
  }
  for (unsigned char& byte : block) byte ^= 0x36;
  start_.update(bytes(block, sizeof block));
  for (unsigned char& byte : block) byte ^= 0x36 ^ 0x5C;
  outer_.update(bytes(block, sizeof block));
  detail::wipe(block, sizeof block);
  inner_ = start_;
}

hmac::hmac(const hmac& other) noexcept = default;
hmac& hmac::operator=(const hmac& other) noexcept = default;
hmac::~hmac() = default;

hmac& hmac::update(const bytes& piece) noexcept {
  inner_.update(piece);
  return *this;
}

void hmac::write_to(unsigned char* out) const noexcept {
  unsigned char inside[longest];
  inner_.write_to(inside);
  hash(outer_).update(bytes(inside, size_of(kind()))).write_to(out);
}

binary hmac::value() const { return value_of(*this); }
std::wstring hmac::hex() const { return hex_of(*this); }
void hmac::clear() noexcept { inner_ = start_; }

// --- in one call

binary sha1(const bytes& all) { return hash(algorithm::sha1).update(all).value(); }
binary sha256(const bytes& all) { return hash(algorithm::sha256).update(all).value(); }
binary hmac_sha1(const bytes& key, const bytes& all) {
  return hmac(algorithm::sha1, key).update(all).value();
}
binary hmac_sha256(const bytes& key, const bytes& all) {
  return hmac(algorithm::sha256, key).update(all).value();
}

std::wstring hex(const bytes& digest) {
  std::wstring out(2 * digest.size(), L'\0');
  texto::hex_encode_to(out.data(), reinterpret_cast<const char*>(digest.data()), digest.size());
  return out;
}

bool same(const bytes& a, const bytes& b) noexcept {
  return a.size() == b.size() && detail::same_bytes(a.data(), b.data(), a.size());
}

}  // namespace ruvo::digest
