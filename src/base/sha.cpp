// SPDX-License-Identifier: BSL-1.0

// SHA-1 and SHA-256 block by block.

#include "base/sha.hpp"

#include <bit>
#include <utility>

#include "base/simd.hpp"
#include "base/wipe.hpp"

#ifdef KESTA_X64
#  include <immintrin.h>
#endif

namespace ruvo::detail {

namespace {

alignas(16) constexpr std::uint32_t factors[] = {
    0x428A2F98, 0x71374491, 0xB5C0FBCF, 0xE9B5DBA5, 0x3956C25B, 0x59F111F1, 0x923F82A4, 0xAB1C5ED5,
    0xD807AA98, 0x12835B01, 0x243185BE, 0x550C7DC3, 0x72BE5D74, 0x80DEB1FE, 0x9BDC06A7, 0xC19BF174,
    0xE49B69C1, 0xEFBE4786, 0x0FC19DC6, 0x240CA1CC, 0x2DE92C6F, 0x4A7484AA, 0x5CB0A9DC, 0x76F988DA,
    0x983E5152, 0xA831C66D, 0xB00327C8, 0xBF597FC7, 0xC6E00BF3, 0xD5A79147, 0x06CA6351, 0x14292967,
    0x27B70A85, 0x2E1B2138, 0x4D2C6DFC, 0x53380D13, 0x650A7354, 0x766A0ABB, 0x81C2C92E, 0x92722C85,
    0xA2BFE8A1, 0xA81A664B, 0xC24B8B70, 0xC76C51A3, 0xD192E819, 0xD6990624, 0xF40E3585, 0x106AA070,
    0x19A4C116, 0x1E376C08, 0x2748774C, 0x34B0BCB5, 0x391C0CB3, 0x4ED8AA4A, 0x5B9CCA4F, 0x682E6FF3,
    0x748F82EE, 0x78A5636F, 0x84C87814, 0x8CC70208, 0x90BEFFFA, 0xA4506CEB, 0xBEF9A3F7, 0xC67178F2};

std::uint32_t choice(std::uint32_t b, std::uint32_t c, std::uint32_t d) noexcept { return d ^ (b & (c ^ d)); }
std::uint32_t parity(std::uint32_t b, std::uint32_t c, std::uint32_t d) noexcept { return b ^ c ^ d; }
std::uint32_t majority(std::uint32_t b, std::uint32_t c, std::uint32_t d) noexcept {
  return (b & c) | (d & (b | c));
}

/// The last 16 words of those that a block becomes. Indices are known when this is compiled.
class schedule {
 public:
  explicit schedule(const unsigned char* block) noexcept {
    for (unsigned at = 0; at < 16; ++at, block += 4) {
      words_[at] = std::uint32_t{block[0]} << 24 | std::uint32_t{block[1]} << 16 |
                   std::uint32_t{block[2]} << 8 | block[3];
    }
  }
  schedule(const schedule&) = delete;
  schedule& operator=(const schedule&) = delete;
  ~schedule() { wipe(words_, sizeof words_); }

  std::uint32_t operator[](unsigned at) const noexcept { return words_[at & 15]; }
  std::uint32_t next_of_sha1(unsigned at) noexcept {
    const schedule& w = *this;
    return words_[at & 15] = std::rotl(w[at + 13] ^ w[at + 8] ^ w[at + 2] ^ w[at], 1);
  }
  std::uint32_t next_of_sha256(unsigned at) noexcept {
    const schedule& w = *this;
    const std::uint32_t early = w[at + 1], late = w[at + 14];
    return words_[at & 15] += (std::rotr(early, 7) ^ std::rotr(early, 18) ^ early >> 3) + w[at + 9] +
                              (std::rotr(late, 17) ^ std::rotr(late, 19) ^ late >> 10);
  }

 private:
  std::uint32_t words_[16];
};

// The state in a turn: what stands at a name moves on to the next one, so the caller moves the names instead.

struct sha256_words {
  std::uint32_t s[8];

  template <unsigned At>
  void turn(std::uint32_t word) noexcept {
    const auto at = [this](unsigned name) -> std::uint32_t& { return s[(name - At) & 7]; };
    const std::uint32_t a = at(0), e = at(4);
    const std::uint32_t mixed =
        at(7) + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) + choice(e, at(5), at(6)) + word;
    at(3) += mixed;
    at(7) = mixed + (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) + majority(a, at(1), at(2));
  }
};

template <unsigned... At>
void take_sha256_turns(sha256_words& now, schedule& words, std::integer_sequence<unsigned, At...>) noexcept {
  (now.turn<At & 7>((At < 16 ? words[At] : words.next_of_sha256(At)) + factors[At]), ...);
}

void take_sha256_block(std::uint32_t* state, const unsigned char* block) noexcept {
  schedule words(block);
  sha256_words now;
  for (int at = 0; at < 8; ++at) now.s[at] = state[at];
  take_sha256_turns(now, words, std::make_integer_sequence<unsigned, 64>());
  for (int at = 0; at < 8; ++at) state[at] += now.s[at];
}

struct sha1_words {
  std::uint32_t s[5];

  template <unsigned At>
  void turn(std::uint32_t word) noexcept {
    const auto at = [this](unsigned name) -> std::uint32_t& { return s[(name + 80 - At) % 5]; };
    const std::uint32_t b = at(1), c = at(2), d = at(3);
    if constexpr (At < 20) {
      word += 0x5A827999 + choice(b, c, d);
    } else if constexpr (At < 40) {
      word += 0x6ED9EBA1 + parity(b, c, d);
    } else if constexpr (At < 60) {
      word += 0x8F1BBCDC + majority(b, c, d);
    } else {
      word += 0xCA62C1D6 + parity(b, c, d);
    }
    at(4) += std::rotl(at(0), 5) + word;
    at(1) = std::rotl(b, 30);
  }
};

template <unsigned... At>
void take_sha1_turns(sha1_words& now, schedule& words, std::integer_sequence<unsigned, At...>) noexcept {
  (now.turn<At>(At < 16 ? words[At] : words.next_of_sha1(At)), ...);
}

void take_sha1_block(std::uint32_t* state, const unsigned char* block) noexcept {
  schedule words(block);
  sha1_words now;
  for (int at = 0; at < 5; ++at) now.s[at] = state[at];
  take_sha1_turns(now, words, std::make_integer_sequence<unsigned, 80>());
  for (int at = 0; at < 5; ++at) state[at] += now.s[at];
}

#ifdef KESTA_X64

/// The next four words of the schedule, of the 16 before them.
KESTA_SHA inline __m128i next_words(__m128i w0, __m128i w1, __m128i w2, __m128i w3) noexcept {
  return _mm_sha256msg2_epu32(_mm_add_epi32(_mm_sha256msg1_epu32(w0, w1), _mm_alignr_epi8(w3, w2, 4)), w3);
}

/// The state as the instructions have it: words 0, 1, 4, 5 and words 2, 3, 6, 7, each from the last on.
struct sha256_halves {
  __m128i abef, cdgh;
};

KESTA_SHA inline void four_turns(sha256_halves& s, __m128i words, const std::uint32_t* of) noexcept {
  const __m128i sum = _mm_add_epi32(words, _mm_load_si128(reinterpret_cast<const __m128i*>(of)));
  s.cdgh = _mm_sha256rnds2_epu32(s.cdgh, s.abef, sum);
  s.abef = _mm_sha256rnds2_epu32(s.abef, s.cdgh, _mm_shuffle_epi32(sum, 0x0E));
}

KESTA_SHA inline __m128i four_words(const unsigned char* bytes) noexcept {
  const __m128i turned = _mm_set_epi8(12, 13, 14, 15, 8, 9, 10, 11, 4, 5, 6, 7, 0, 1, 2, 3);
  return _mm_shuffle_epi8(texto::load_16(bytes), turned);
}

KESTA_SHA inline void take_block_by_instructions(sha256_halves& s, const unsigned char* block) noexcept {
  const sha256_halves before = s;
  __m128i w0 = four_words(block), w1 = four_words(block + 16);
  __m128i w2 = four_words(block + 32), w3 = four_words(block + 48);
  for (const std::uint32_t* of = factors;; of += 16) {
    four_turns(s, w0, of);
    four_turns(s, w1, of + 4);
    four_turns(s, w2, of + 8);
    four_turns(s, w3, of + 12);
    if (of == factors + 48) break;
    w0 = next_words(w0, w1, w2, w3);
    w1 = next_words(w1, w2, w3, w0);
    w2 = next_words(w2, w3, w0, w1);
    w3 = next_words(w3, w0, w1, w2);
  }
  s.abef = _mm_add_epi32(s.abef, before.abef);
  s.cdgh = _mm_add_epi32(s.cdgh, before.cdgh);
}

KESTA_SHA void take_by_instructions(std::uint32_t* state, const unsigned char* bytes,
                                    std::size_t blocks) noexcept {
  const __m128i badc = _mm_shuffle_epi32(texto::load_16(state), 0xB1);
  const __m128i efgh = _mm_shuffle_epi32(texto::load_16(state + 4), 0x1B);
  sha256_halves s = {_mm_alignr_epi8(badc, efgh, 8), _mm_blend_epi16(efgh, badc, 0xF0)};
  for (; blocks; --blocks, bytes += sha_block) take_block_by_instructions(s, bytes);
  const __m128i feba = _mm_shuffle_epi32(s.abef, 0x1B), dchg = _mm_shuffle_epi32(s.cdgh, 0xB1);
  texto::store_16(state, _mm_blend_epi16(feba, dchg, 0xF0));
  texto::store_16(state + 4, _mm_alignr_epi8(dchg, feba, 8));
}

#endif

}  // namespace

void take_sha1(std::uint32_t* state, const unsigned char* bytes, std::size_t blocks) noexcept {
  for (; blocks; --blocks, bytes += sha_block) take_sha1_block(state, bytes);
}

void take_sha256(std::uint32_t* state, const unsigned char* bytes, std::size_t blocks) noexcept {
#ifdef KESTA_X64
  if (texto::has_sha) return take_by_instructions(state, bytes, blocks);
#endif
  for (; blocks; --blocks, bytes += sha_block) take_sha256_block(state, bytes);
}

}  // namespace ruvo::detail
