// SPDX-License-Identifier: BSL-1.0

// Hexadecimal both ways: blocks by vectors, the rest digit by digit.

#include "base/hex.hpp"

#include <array>
#include <cstdint>
#include <type_traits>

#include "base/ascii.hpp"
#include "base/simd.hpp"

namespace ruvo::texto {

namespace {

constexpr unsigned char no_digit = 0xFF;

constexpr std::array<unsigned char, 128> digit_values() {
  std::array<unsigned char, 128> table{};
  for (std::size_t i = 0; i < table.size(); ++i) {
    const int value = hex_value(static_cast<wchar_t>(i));
    table[i] = value < 0 ? no_digit : static_cast<unsigned char>(value);
  }
  return table;
}

constexpr auto values = digit_values();

template <class Char>
unsigned nibble_of(Char c) noexcept {
  const auto unit = static_cast<char32_t>(c);  // a negative char is far above 127
  return unit < values.size() ? values[unit] : no_digit;
}

template <class Unit, class In>
void encode_hex(Unit* out, const In* in, std::size_t count) noexcept {
  for (std::size_t i = 0; i < count; ++i) {
    const auto byte = static_cast<unsigned char>(in[i]);
    *out++ = static_cast<Unit>(L"0123456789abcdef"[byte >> 4]);
    *out++ = static_cast<Unit>(L"0123456789abcdef"[byte & 15]);
  }
}

template <class Char>
bool decode_hex(Char* out, const Char* digits, std::size_t count) noexcept {
  unsigned seen = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const unsigned high = nibble_of(digits[2 * i]);
    const unsigned low = nibble_of(digits[2 * i + 1]);
    seen |= high | low;
    out[i] = static_cast<Char>((high << 4 | low) & 0xFF);
  }
  return seen < 16;
}

#ifdef KESTA_X64
constexpr std::size_t block = 16;  // characters in a vector

/// The digits of 16 nibbles, one in a byte.
[[maybe_unused]] __m128i hex_digits_of(__m128i nibbles) noexcept {  // where wide characters have 16 bits
  const __m128i letters = _mm_cmpgt_epi8(nibbles, _mm_set1_epi8(9));
  const __m128i offsets = _mm_and_si128(letters, _mm_set1_epi8('a' - 10 - '0'));
  return _mm_add_epi8(_mm_add_epi8(nibbles, _mm_set1_epi8('0')), offsets);
}

template <class Unit, class In>
void encode_block(Unit* out, const In* in) noexcept {
  const __m128i bytes = load_low_bytes(in);
  const __m128i low_bits = _mm_set1_epi8(15);
  const __m128i high = hex_digits_of(_mm_and_si128(_mm_srli_epi16(bytes, 4), low_bits));
  const __m128i low = hex_digits_of(_mm_and_si128(bytes, low_bits));
  store_bytes(out, _mm_unpacklo_epi8(high, low));
  store_bytes(out + block, _mm_unpackhi_epi8(high, low));
}

/// The values of 16 digits; a byte of `bad` gets its high bit where one is none.
__m128i nibbles_of(__m128i chars, __m128i& bad) noexcept {
  // Digits go to the top ten, go round and are 0 to 9 then, letters 10 to 15; all else is above 15.
  const __m128i top = _mm_subs_epu8(_mm_add_epi8(chars, _mm_set1_epi8(-1 - '9')), _mm_set1_epi8(6));
  const __m128i digits = _mm_sub_epi8(top, _mm_set1_epi8(-16));
  const __m128i capitals = _mm_and_si128(chars, _mm_set1_epi8(~0x20));
  const __m128i letters = _mm_adds_epu8(_mm_sub_epi8(capitals, _mm_set1_epi8('A')), _mm_set1_epi8(10));
  const __m128i nibbles = _mm_min_epu8(digits, letters);
  bad = _mm_or_si128(bad, _mm_adds_epu8(nibbles, _mm_set1_epi8(127 - 15)));
  return nibbles;
}

/// The bytes of eight pairs of values, one in 16 bits.
__m128i joined_nibbles(__m128i pairs) noexcept {
  const __m128i high = _mm_and_si128(_mm_slli_epi16(pairs, 4), _mm_set1_epi16(0xF0));
  return _mm_or_si128(high, _mm_srli_epi16(pairs, 8));
}

template <class Char>
bool decode_block(Char* out, const Char* digits) noexcept {
  __m128i bad = _mm_setzero_si128();
  const __m128i first = joined_nibbles(nibbles_of(load_chars(digits), bad));
  const __m128i second = joined_nibbles(nibbles_of(load_chars(digits + block), bad));
  store_bytes(out, _mm_packus_epi16(first, second));
  return _mm_movemask_epi8(bad) == 0;
}
#endif

// Where characters have 8 or 16 bits, whole blocks go through vectors; the rest one by one.

template <class Unit, class In>
void encode_all(Unit* out, const In* in, std::size_t count) noexcept {
  std::size_t done = 0;
#ifdef KESTA_X64
  if constexpr (unit_16<Unit>)
    for (; count - done >= block; done += block) encode_block(out + 2 * done, in + done);
#endif
  encode_hex(out + 2 * done, in + done, count - done);
}

template <class Char>
bool decode_all(Char* out, const Char* digits, std::size_t count) noexcept {
  std::size_t done = 0;
#ifdef KESTA_X64
  if constexpr (sizeof(Char) <= 2) {
    for (; count - done >= block; done += block)
      if (!decode_block(out + done, digits + 2 * done)) return false;
  }
#endif
  return decode_hex(out + done, digits + 2 * done, count - done);
}

}  // namespace

void hex_encode_to(wchar_t* out, const char* bytes, std::size_t count) noexcept {
  encode_all(out, bytes, count);
}
void hex_encode_to(wchar_t* out, const wchar_t* units, std::size_t count) noexcept {
  encode_all(out, units, count);
}

bool hex_decode_to(char* out, const char* digits, std::size_t count) noexcept {
  return decode_all(out, digits, count);
}
bool hex_decode_to(wchar_t* out, const wchar_t* digits, std::size_t count) noexcept {
  return decode_all(out, digits, count);
}

#ifdef KESTA_STATIC
void hex_encode_to(char16_t* out, const char* bytes, std::size_t count) noexcept {
  encode_all(out, bytes, count);
}
void hex_encode_to(char16_t* out, const char16_t* units, std::size_t count) noexcept {
  encode_all(out, units, count);
}
bool hex_decode_to(char16_t* out, const char16_t* digits, std::size_t count) noexcept {
  return decode_all(out, digits, count);
}
#endif

}  // namespace ruvo::texto
