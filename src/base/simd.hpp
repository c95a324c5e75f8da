// SPDX-License-Identifier: BSL-1.0
#pragma once

// Vectors of 16 bytes, where the processor has them. SSE2 is part of every x86-64; a function that uses SSSE3
// is marked KESTA_SSSE3 and called only if has_ssse3, one that uses the instructions for SHA is marked
// KESTA_SHA and called only if has_sha. Wider vectors are left out: the mingw compilers do not align the
// stack for them.

#if defined(__x86_64__) || defined(_M_X64)
#  define KESTA_X64
#  include <tmmintrin.h>
#  if defined(__GNUC__)
#    define KESTA_SSSE3 [[gnu::target("ssse3")]]
#    define KESTA_SHA [[gnu::target("sha,sse4.1")]]
#  else
#    define KESTA_SSSE3
#    define KESTA_SHA
#  endif

#  include <cstddef>

namespace ruvo::texto {

/// False until the module's variables are made: what runs before takes the portable way. Only fuzzers change
/// it, so that they go that way too.
extern bool has_ssse3;
/// As has_ssse3: the instructions for SHA, with SSE4.1.
extern bool has_sha;

// 16 characters as bytes and back: char, or units of 16 bits.

template <class Unit>
concept unit_16 = sizeof(Unit) == 2;

inline __m128i load_16(const void* from) noexcept {
  return _mm_loadu_si128(static_cast<const __m128i*>(from));
}
inline void store_16(void* to, __m128i bytes) noexcept { _mm_storeu_si128(static_cast<__m128i*>(to), bytes); }

inline __m128i load_low_bytes(const char* from) noexcept { return load_16(from); }
inline __m128i load_low_bytes(const unsigned char* from) noexcept { return load_16(from); }
template <unit_16 Unit>
inline __m128i load_low_bytes(const Unit* from) noexcept {
  const __m128i low = _mm_set1_epi16(0xFF);
  return _mm_packus_epi16(_mm_and_si128(load_16(from), low), _mm_and_si128(load_16(from + 8), low));
}

/// A unit above 255 becomes 0 or 255.
inline __m128i load_chars(const char* from) noexcept { return load_16(from); }
template <unit_16 Unit>
inline __m128i load_chars(const Unit* from) noexcept {
  return _mm_packus_epi16(load_16(from), load_16(from + 8));
}

inline void store_bytes(char* to, __m128i bytes) noexcept { store_16(to, bytes); }
template <unit_16 Unit>
inline void store_bytes(Unit* to, __m128i bytes) noexcept {
  store_16(to, _mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
  store_16(to + 8, _mm_unpackhi_epi8(bytes, _mm_setzero_si128()));
}

}  // namespace ruvo::texto

#endif

namespace ruvo::detail {

/// Begins to fetch the memory at an address, valid or not, that will be used soon.
inline void expect_use([[maybe_unused]] const void* address) noexcept {
#ifdef KESTA_X64
  _mm_prefetch(static_cast<const char*>(address), _MM_HINT_T0);
#endif
}

}  // namespace ruvo::detail
