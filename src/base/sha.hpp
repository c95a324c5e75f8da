// SPDX-License-Identifier: BSL-1.0
#pragma once

// The inner functions of SHA-1 and SHA-256 (FIPS 180-4): a state takes blocks.

#include <cstddef>
#include <cstdint>

namespace ruvo::detail {

constexpr std::size_t sha_block = 64;  // bytes

constexpr std::uint32_t sha1_start[] = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
constexpr std::uint32_t sha256_start[] = {0x6A09E667, 0xBB67AE85, 0x3C6EF372, 0xA54FF53A,
                                          0x510E527F, 0x9B05688C, 0x1F83D9AB, 0x5BE0CD19};

/// Five words, and so many blocks.
void take_sha1(std::uint32_t* state, const unsigned char* bytes, std::size_t blocks) noexcept;
/// Eight words; by the processor's own instructions, if has_sha.
void take_sha256(std::uint32_t* state, const unsigned char* bytes, std::size_t blocks) noexcept;

}  // namespace ruvo::detail
