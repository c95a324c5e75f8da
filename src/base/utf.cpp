// SPDX-License-Identifier: BSL-1.0

// UTF-8 to and from UTF-16: runs of ASCII and of long characters by vectors, the rest one by one.

#include "base/utf.hpp"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>

#include "base/simd.hpp"
#include "base/utf_windows.hpp"

namespace ruvo::texto {

namespace {

constexpr char32_t replacement = 0xFFFD;

constexpr std::ptrdiff_t long_run = 64;  // bytes, or twice as many as units

// The two blocks below copy `block` characters as if all were ASCII and give a mask of those that are not;
// what they wrote in the place of these is to be overwritten.

#ifdef KESTA_X64
constexpr std::size_t block = 16;

template <class Unit>
unsigned widen_block(const char* from, Unit* to) noexcept {
  const __m128i bytes = load_16(from);
  const __m128i zero = _mm_setzero_si128();
  const __m128i low = _mm_unpacklo_epi8(bytes, zero);
  const __m128i high = _mm_unpackhi_epi8(bytes, zero);
  auto* const out = reinterpret_cast<__m128i*>(to);
  if constexpr (sizeof(Unit) == 2) {
    _mm_storeu_si128(out, low);
    _mm_storeu_si128(out + 1, high);
  } else {
    _mm_storeu_si128(out, _mm_unpacklo_epi16(low, zero));
    _mm_storeu_si128(out + 1, _mm_unpackhi_epi16(low, zero));
    _mm_storeu_si128(out + 2, _mm_unpacklo_epi16(high, zero));
    _mm_storeu_si128(out + 3, _mm_unpackhi_epi16(high, zero));
  }
  return static_cast<unsigned>(_mm_movemask_epi8(bytes));
}

/// Eight units; where they are wider than 16 bits they are narrowed with saturation, which keeps them above
/// 127.
template <class Unit>
__m128i load_units(const Unit* from) noexcept {
  const auto* const in = reinterpret_cast<const __m128i*>(from);
  if constexpr (sizeof(Unit) == 2) return _mm_loadu_si128(in);
  return _mm_packs_epi32(_mm_loadu_si128(in), _mm_loadu_si128(in + 1));
}

template <class Unit>
unsigned narrow_block(const Unit* from, char* to) noexcept {
  const __m128i low = load_units(from);
  const __m128i high = load_units(from + 8);
  store_16(to, _mm_packus_epi16(low, high));
  const __m128i zero = _mm_setzero_si128();
  const __m128i beyond = _mm_set1_epi16(static_cast<short>(0xFF80));
  const __m128i ascii = _mm_packs_epi16(_mm_cmpeq_epi16(_mm_and_si128(low, beyond), zero),
                                        _mm_cmpeq_epi16(_mm_and_si128(high, beyond), zero));
  return static_cast<unsigned>(_mm_movemask_epi8(ascii)) ^ 0xFFFF;
}

/// Whether four vectors are ASCII.
bool are_ascii(const char* from) noexcept {
  return mask_of(_mm_or_si128(_mm_or_si128(load_16(from), load_16(from + 16)),
                              _mm_or_si128(load_16(from + 32), load_16(from + 48)))) == 0;
}
template <class Unit>
bool are_ascii(const Unit* from) noexcept {
  __m128i any = load_units(from);
  for (std::size_t at = 8; at < 2 * block; at += block / 2) any = _mm_or_si128(any, load_units(from + at));
  return mask_of(without_bits(0xFF80, any)) == 0xFFFF;
}

// What the bytes or units of a vector come to: 16 times one more than the units, and eight times one less
// than the bytes.

__m128i count_utf_16(const char* from) noexcept {
  const __m128i bytes = load_16(from);
  return _mm_add_epi8(_mm_sub_epi8(continuations(bytes), from_byte(0xF0, bytes)), all_bytes(2));
}

template <class Unit>
__m128i count_utf_8(const Unit* from) noexcept {
  const __m128i units = load_units(from);
  const __m128i top = _mm_and_si128(units, all_units(0xF800));
  const __m128i surrogates = _mm_cmpeq_epi16(top, all_units(0xD800));
  const __m128i shorter =
      _mm_add_epi16(without_bits(0xFF80, units), _mm_cmpeq_epi16(top, _mm_setzero_si128()));
  return _mm_add_epi16(_mm_add_epi16(shorter, surrogates), all_units(2));
}

/// The sum over four vectors, in two halves.
template <class Char, class Count>
__m128i sum_of_four(const Char* from, std::size_t step, Count count) noexcept {
  return _mm_sad_epu8(_mm_add_epi8(_mm_add_epi8(count(from), count(from + step)),
                                   _mm_add_epi8(count(from + 2 * step), count(from + 3 * step))),
                      _mm_setzero_si128());
}

std::size_t sum_of(__m128i halves) noexcept {
  return static_cast<std::size_t>(
      _mm_cvtsi128_si64(_mm_add_epi64(halves, _mm_unpackhi_epi64(halves, halves))));
}
#else
constexpr std::size_t block = 8;

template <class Char>
bool are_ascii(const Char*) noexcept {
  return false;
}

template <class Unit>
unsigned widen_block(const char* from, Unit* to) noexcept {
  unsigned mask = 0;
  for (std::size_t i = 0; i < block; ++i) {
    const auto byte = static_cast<unsigned char>(from[i]);
    to[i] = static_cast<Unit>(byte);
    mask |= static_cast<unsigned>(byte > 127) << i;
  }
  return mask;
}

template <class Unit>
unsigned narrow_block(const Unit* from, char* to) noexcept {
  unsigned mask = 0;
  for (std::size_t i = 0; i < block; ++i) {
    const auto unit = static_cast<char16_t>(from[i]);
    to[i] = static_cast<char>(unit);
    mask |= static_cast<unsigned>(unit > 127) << i;
  }
  return mask;
}
#endif

/// One code point at `at`, or U+FFFD for the maximal malformed part there; moves `at` behind it.
char32_t read_utf_8(const char*& at, const char* end) noexcept {
  const auto lead = static_cast<unsigned char>(*at++);
  if (lead < 0x80) return lead;
  if (lead < 0xC2 || lead > 0xF4) return replacement;
  const int more = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
  // The second byte has narrower limits where the form could be overlong, a surrogate or beyond U+10FFFF.
  unsigned lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  unsigned highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  char32_t point = lead & (0x3Fu >> more);
  for (int i = 0; i < more; ++i) {
    if (at == end) return replacement;
    const auto next = static_cast<unsigned char>(*at);
    if (next < lowest || next > highest) return replacement;
    point = point << 6 | (next & 0x3F);
    lowest = 0x80;
    highest = 0xBF;
    ++at;
  }
  return point;
}

const char* behind_ascii(const char* at, const char* end) noexcept {
  for (std::uint64_t word; end - at >= 8; at += 8) {
    std::memcpy(&word, at, sizeof word);
    if (word & 0x8080808080808080) break;
  }
  while (at != end && static_cast<unsigned char>(*at) < 0x80) ++at;
  return at;
}

template <class Unit>
Unit* write_utf_16(Unit* to, char32_t point) noexcept {
  if (point < 0x10000) {
    *to++ = static_cast<Unit>(point);
  } else {
    *to++ = static_cast<Unit>(0xD7C0 + (point >> 10));
    *to++ = static_cast<Unit>(0xDC00 + (point & 0x3FF));
  }
  return to;
}

template <class Unit>
char32_t read_utf_16(const Unit*& at, const Unit* end) noexcept {
  const auto unit = static_cast<char16_t>(*at++);
  if (!is_surrogate(unit)) return unit;
  if (!is_high_surrogate(unit) || at == end || !is_low_surrogate(*at)) return replacement;
  const auto low = static_cast<char16_t>(*at++);
  return 0x10000u + ((unit & 0x3FFu) << 10) + (low & 0x3FFu);
}

/// The `count` low bytes of `bits`, first the lowest. Needs room for four.
char* put_bytes(char* to, std::uint32_t bits, int count) noexcept {
  static_assert(std::endian::native == std::endian::little);
  std::memcpy(to, &bits, sizeof(bits));
  return to + count;
}

/// A character of two to four bytes that is well formed; false, with nothing moved, for anything else. Needs
/// four readable bytes at `at`.
template <class Unit>
bool decode_long(const char*& at, Unit*& to) noexcept {
  const auto byte = [at](int i) { return static_cast<std::uint32_t>(static_cast<unsigned char>(at[i])); };
  const auto tail = [&byte](int i) { return byte(i) ^ 0x80; };  // below 64 for a continuation
  if (byte(0) < 0xE0) {
    if (byte(0) < 0xC2 || tail(1) > 63) return false;
    *to++ = static_cast<Unit>((byte(0) & 31) << 6 | tail(1));
    at += 2;
    return true;
  }
  if (byte(0) < 0xF0) {
    const std::uint32_t point = (byte(0) & 15) << 12 | tail(1) << 6 | tail(2);
    if ((tail(1) | tail(2)) > 63 || point < 0x800 || (point & 0xF800) == 0xD800) return false;
    *to++ = static_cast<Unit>(point);
    at += 3;
    return true;
  }
  const std::uint32_t point = (byte(0) & 15) << 18 | tail(1) << 12 | tail(2) << 6 | tail(3);
  if ((tail(1) | tail(2) | tail(3)) > 63 || point - 0x10000 >= 0x100000) return false;
  to = write_utf_16(to, point);
  at += 4;
  return true;
}

#ifdef KESTA_X64
__m128i all(int value) noexcept { return _mm_set1_epi32(value); }

/// Decodes characters of four bytes, two units each, up to another one, to a malformed one, to `stop`, which
/// the last ones may pass, or to where less than 16 bytes are readable. Needs room for eight units more.
template <unit_16 Unit>
KESTA_SSSE3 void decode_fours(const char*& begin, const char* stop, const char* readable,
                              Unit*& to) noexcept {
  const char* from = begin;
  int count = 4;
  while (count == 4 && from < stop && readable - from >= 16) {
    const __m128i fours = load_16(from);
    const __m128i kinds = _mm_and_si128(fours, all(static_cast<int>(0xC0C0C0F8)));
    const __m128i formed = _mm_cmpeq_epi32(kinds, all(static_cast<int>(0x808080F0)));
    const __m128i parts = _mm_maddubs_epi16(_mm_and_si128(fours, all(0x3F3F3F07)), all(0x01400140));
    const __m128i beyond = _mm_sub_epi32(_mm_madd_epi16(parts, all(0x00011000)), all(0x10000));
    const __m128i past = _mm_and_si128(beyond, all(static_cast<int>(0xFFF00000)));
    const __m128i bits =
        _mm_or_si128(_mm_srli_epi32(beyond, 10), _mm_slli_epi32(_mm_and_si128(beyond, all(0x3FF)), 16));
    store_16(to, _mm_or_si128(bits, all(static_cast<int>(0xDC00D800))));
    count = std::countr_one(mask_of(_mm_and_si128(formed, _mm_cmpeq_epi32(past, all(0))))) / 4;
    if (count == 4) {  // usual, so predicted: nothing waits for the count
      from += 16;
      to += 8;
    } else {
      from += 4 * count;
      to += 2 * count;
    }
  }
  begin = from;
}

/// What vectors can do of what begins with a character that is not ASCII; false if that is nothing.
template <class Unit>
bool decode_run(const char*& from, const char* stop, const char* readable, Unit*& to) noexcept {
  if constexpr (unit_16<Unit>) {
    if (!has_ssse3) return false;
    const char* const before = from;
    if (static_cast<unsigned char>(*from) < 0xF0) {
      decode_windows(from, stop, readable, to);
    } else {
      decode_fours(from, stop, readable, to);
    }
    return from != before;
  }
  return false;
}
#else
template <class Unit>
bool decode_run(const char*&, const char*, const char*, Unit*&) noexcept {
  return false;
}
#endif

/// Decodes characters, the first of which is not ASCII, up to an ASCII one or `stop`, or where less than four
/// bytes are readable. `end` is the text's.
template <class Unit>
Unit* decode_beyond(const char*& from, const char* stop, const char* end, const char* readable,
                    Unit* to) noexcept {
  int singly = 0;  // characters to go one by one, after one that vectors could do nothing with
  while (from < stop && readable - from >= 4 && static_cast<unsigned char>(*from) > 0x7F) {
    if (singly == 0) {
      if (decode_run(from, stop, readable, to)) continue;
      singly = 8;
    }
    --singly;
    if (!decode_long(from, to)) to = write_utf_16(to, read_utf_8(from, end));
  }
  return to;
}

/// Decodes until `from` reaches `stop`, which the last characters may pass, or where less than a block is
/// readable. What is readable behind `end` is zeros. Needs room for a block of units more than there are
/// bytes before `stop`.
template <class Unit>
Unit* decode_blocks(const char*& begin, const char* stop, const char* end, const char* readable,
                    Unit* to) noexcept {
  const char* from = begin;  // a local: the units written could alias the other
  while (from < stop && static_cast<std::size_t>(readable - from) >= block) {
    const unsigned beyond = widen_block(from, to);
    const int ascii = beyond ? std::countr_zero(beyond) : static_cast<int>(block);
    from += ascii;
    to += ascii;
    if (beyond) to = decode_beyond(from, stop, end, readable, to);
    for (; !beyond && stop - from >= long_run && are_ascii(from); from += long_run, to += long_run)
      for (int at = 0; at < long_run; at += static_cast<int>(block)) widen_block(from + at, to + at);
  }
  begin = from;
  return to;
}

/// Decodes until `from` reaches `stop`, which it may pass. Needs room for two blocks of units more than there
/// are bytes before `stop`.
template <class Unit>
Unit* decode_bytes(const char*& from, const char* stop, const char* end, Unit* to) noexcept {
  to = decode_blocks(from, stop, end, end, to);
  if (from >= stop) return to;
  // Less than a block is left: it goes on in a copy that can be read beyond its end.
  char rest[3 * block] = {};
  const char* const rest_end = std::copy(from, end, rest);
  from = end;
  const char* at = rest;
  to = decode_blocks(at, rest_end, rest_end, std::end(rest), to);
  return to - (at - rest_end);  // without the zeros behind
}

/// One character that is not ASCII. Needs room for four bytes.
template <class Unit>
char* encode_long(const Unit*& from, const Unit* end, char* to) noexcept {
  const char32_t first = static_cast<char16_t>(*from);
  const auto tail = [](char32_t bits) { return 0x80 | (bits & 0x3F); };
  if (first < 0x800) {
    ++from;
    return put_bytes(to, 0xC0 | first >> 6 | tail(first) << 8, 2);
  }
  const char32_t point = read_utf_16(from, end);
  if (point < 0x10000)
    return put_bytes(to, 0xE0 | point >> 12 | tail(point >> 6) << 8 | tail(point) << 16, 3);
  const char32_t low = tail(point >> 6) << 16 | tail(point) << 24;
  return put_bytes(to, 0xF0 | point >> 18 | tail(point >> 12) << 8 | low, 4);
}

#ifdef KESTA_X64
/// Four surrogate pairs in one go, for 16 bytes; 0 if they are not such.
template <unit_16 Unit>
int encode_fours(const Unit* from, char* to) noexcept {
  const __m128i pairs = load_16(from);
  const __m128i kinds = _mm_and_si128(pairs, all(static_cast<int>(0xFC00FC00)));
  if (_mm_movemask_epi8(_mm_cmpeq_epi32(kinds, all(static_cast<int>(0xDC00D800)))) != 0xFFFF) return 0;
  const __m128i high =
      _mm_add_epi32(_mm_and_si128(pairs, all(0x3FF)), all(0x40));  // the point's bits from 10
  const __m128i lead = _mm_srli_epi32(high, 8);
  const __m128i second = _mm_and_si128(_mm_slli_epi32(high, 6), all(0x3F00));
  const __m128i third = _mm_or_si128(_mm_slli_epi32(_mm_and_si128(high, all(3)), 20),
                                     _mm_and_si128(_mm_srli_epi32(pairs, 6), all(0xF0000)));
  const __m128i fourth = _mm_and_si128(_mm_slli_epi32(pairs, 8), all(0x3F000000));
  const __m128i tails = _mm_or_si128(_mm_or_si128(second, third), fourth);
  const __m128i made = _mm_or_si128(_mm_or_si128(lead, tails), all(static_cast<int>(0x808080F0)));
  store_16(to, made);
  return 16;
}

/// What vectors can do of what begins with a character that is not ASCII; false if that is nothing.
template <class Unit>
bool encode_run(const Unit*& from, const Unit* stop, const Unit* readable, char*& to) noexcept {
  if constexpr (unit_16<Unit>) {
    const Unit* const before = from;
    if (!is_surrogate(*from)) {
      if (has_ssse3) encode_windows(from, stop, readable, to);
    } else if (readable - from >= 8) {
      const int size = encode_fours(from, to);
      from += size / 2;
      to += size;
    }
    return from != before;
  }
  return false;
}
#else
template <class Unit>
bool encode_run(const Unit*&, const Unit*, const Unit*, char*&) noexcept {
  return false;
}
#endif

/// Encodes characters, the first of which is not ASCII, up to an ASCII one or `stop`.
template <class Unit>
char* encode_beyond(const Unit*& from, const Unit* stop, const Unit* end, const Unit* readable,
                    char* to) noexcept {
  while (from<stop&& static_cast<char16_t>(*from)> 0x7F)
    if (!encode_run(from, stop, readable, to)) to = encode_long(from, end, to);
  return to;
}

// The same for UTF-16; these need room for three bytes per unit before `stop`, and for a block or four.

template <class Unit>
char* encode_blocks(const Unit*& begin, const Unit* stop, const Unit* end, const Unit* readable,
                    char* to) noexcept {
  const Unit* from = begin;  // a local: the characters written could alias the other
  while (from < stop && static_cast<std::size_t>(readable - from) >= block) {
    const unsigned beyond = narrow_block(from, to);
    const int ascii = beyond ? std::countr_zero(beyond) : static_cast<int>(block);
    from += ascii;
    to += ascii;
    if (beyond) to = encode_beyond(from, stop, end, readable, to);
    for (; !beyond && stop - from >= long_run / 2 && are_ascii(from);
         from += long_run / 2, to += long_run / 2)
      for (int at = 0; at < long_run / 2; at += static_cast<int>(block)) narrow_block(from + at, to + at);
  }
  begin = from;
  return to;
}

template <class Unit>
char* encode_units(const Unit*& from, const Unit* stop, const Unit* end, char* to) noexcept {
  to = encode_blocks(from, stop, end, end, to);
  if (from >= stop) return to;
  Unit rest[2 * block] = {};
  const Unit* const rest_end = std::copy(from, end, rest);
  from = end;
  const Unit* at = rest;
  to = encode_blocks(at, rest_end, rest_end, std::end(rest), to);
  return to - (at - rest_end);
}

// The sizes that well-formed texts come to; malformed ones may come to more.

std::size_t utf_16_size(std::string_view text) noexcept {
  const char* from = text.data();
  const char* const end = from + text.size();
  std::size_t size = 0;
#ifdef KESTA_X64
  __m128i sums = _mm_setzero_si128();
  for (; static_cast<std::size_t>(end - from) >= 4 * block; from += 4 * block)
    sums = _mm_add_epi64(sums, sum_of_four(from, block, count_utf_16));
  size = sum_of(sums) - static_cast<std::size_t>(from - text.data());
#endif
  for (; from != end; ++from) {
    const auto byte = static_cast<unsigned char>(*from);
    size += static_cast<std::size_t>((byte & 0xC0) != 0x80) + static_cast<std::size_t>(byte >= 0xF0);
  }
  return size;
}

template <class Unit>
std::size_t bytes_of_units(std::basic_string_view<Unit> text) noexcept {
  const Unit* from = text.data();
  const Unit* const end = from + text.size();
  std::size_t size = 0;
#ifdef KESTA_X64
  __m128i sums = _mm_setzero_si128();
  for (; static_cast<std::size_t>(end - from) >= 2 * block; from += 2 * block)
    if (!are_ascii(from)) sums = _mm_add_epi64(sums, sum_of_four(from, block / 2, count_utf_8<Unit>));
  size = sum_of(sums) + static_cast<std::size_t>(from - text.data());
#endif
  for (; from != end; ++from) {
    const auto unit = static_cast<char16_t>(*from);
    size += 1 + static_cast<std::size_t>(unit > 0x7F) + static_cast<std::size_t>(unit > 0x7FF) -
            static_cast<std::size_t>(is_surrogate(unit));
  }
  return size;
}

// A result is made in pieces on the stack: to size a string beyond what it will hold, or to let it fill with
// zeros what is then overwritten, costs more than a copy from the cache.
constexpr std::size_t piece = 1024;

template <class Unit>
void append_16(std::basic_string<Unit>& out, std::string_view text) {
  Unit made[piece + 2 * block];
  const char* from = text.data();
  const char* const end = from + text.size();
  bool is_sized = text.size() <= piece;
  while (from != end) {
    if (!is_sized && out.capacity() - out.size() < piece) {
      out.reserve(out.size() + utf_16_size({from, end}));
      is_sized = true;
    }
    const char* const stop = from + std::min(piece, static_cast<std::size_t>(end - from));
    out.append(made, decode_bytes(from, stop, end, made));
  }
}

template <class Unit>
void append_8(std::string& out, std::basic_string_view<Unit> text) {
  char made[3 * piece + 4 * block];
  const Unit* from = text.data();
  const Unit* const end = from + text.size();
  bool is_sized = text.size() <= piece;
  while (from != end) {
    if (!is_sized && out.capacity() - out.size() < 3 * piece) {
      out.reserve(out.size() + bytes_of_units(std::basic_string_view<Unit>(from, end)));
      is_sized = true;
    }
    const Unit* const stop = from + std::min(piece, static_cast<std::size_t>(end - from));
    out.append(made, encode_units(from, stop, end, made));
  }
}

}  // namespace

void append_utf_16(std::wstring& out, std::string_view text) { append_16(out, text); }
void append_utf_8(std::string& out, std::wstring_view text) { append_8(out, text); }
std::size_t utf_8_size(std::wstring_view text) noexcept { return bytes_of_units(text); }

malformed_part find_malformed(std::string_view text, std::size_t from) noexcept {
  constexpr std::string_view itself = "\xEF\xBF\xBD";  // U+FFFD
  const char* at = text.data() + from;
  const char* const end = text.data() + text.size();
  while (at != end) {
    if (static_cast<unsigned char>(*at) < 0x80) {
      at = behind_ascii(at, end);
      continue;
    }
    const char* const begin = at;
    if (read_utf_8(at, end) != replacement || std::string_view(begin, at) == itself) continue;
    return {static_cast<std::size_t>(begin - text.data()), static_cast<std::size_t>(at - begin)};
  }
  return {text.npos, 0};
}

std::wstring to_utf_16(std::string_view text) {
  if (text.size() <= piece) {
    wchar_t made[piece + 2 * block];
    const char* from = text.data();
    const char* const end = from + text.size();
    return {made, decode_bytes(from, end, end, made)};
  }
  std::wstring out;
  append_utf_16(out, text);
  return out;
}

std::string to_utf_8(std::wstring_view text) {
  if (text.size() <= piece) {
    char made[3 * piece + 4 * block];
    const wchar_t* from = text.data();
    const wchar_t* const end = from + text.size();
    return {made, encode_units(from, end, end, made)};
  }
  std::string out;
  append_utf_8(out, text);
  return out;
}

#ifdef KESTA_STATIC
void append_utf_16(std::u16string& out, std::string_view text) { append_16(out, text); }
void append_utf_8(std::string& out, std::u16string_view text) { append_8(out, text); }
#endif

}  // namespace ruvo::texto
