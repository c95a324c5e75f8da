// SPDX-License-Identifier: BSL-1.0
#pragma once

// UTF-8 to and from units of 16 bits, a window of 16 bytes or of eight units at a time whatever the lengths
// of its characters: the unit, or the bytes, of each place are made as if a character began there, and a
// table's shuffle keeps those where one does. What is malformed, and surrogates, are left to the caller.

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "base/simd.hpp"

#ifdef KESTA_X64

namespace ruvo::texto {

/// For each mask of eight bits a shuffle that closes the ranks of what is kept, and the number of that.
struct closing_table {
  std::array<std::array<unsigned char, 16>, 256> order;
  std::array<unsigned char, 256> size;

  __m128i at(unsigned mask) const noexcept { return load_16(order[mask].data()); }
};

/// What is counted has `each` bytes.
template <class Keeps>
constexpr closing_table make_closing_table(unsigned each, Keeps keeps) {
  closing_table table{};
  for (unsigned mask = 0; mask < 256; ++mask) {
    unsigned kept = 0;
    for (unsigned byte = 0; byte < 16; ++byte)
      if (keeps(mask, byte)) table.order[mask][kept++] = static_cast<unsigned char>(byte);
    for (unsigned byte = kept; byte < 16; ++byte) table.order[mask][byte] = 0x80;
    table.size[mask] = static_cast<unsigned char>(kept / each);
  }
  return table;
}

/// Eight units; a bit of the mask drops one.
inline constexpr closing_table without_units =
    make_closing_table(2, [](unsigned mask, unsigned byte) { return (mask >> byte / 2 & 1) == 0; });
/// Eight pairs of bytes; a bit keeps the second one.
inline constexpr closing_table of_pairs = make_closing_table(
    1, [](unsigned mask, unsigned byte) { return byte % 2 == 0 || (mask >> byte / 2 & 1) != 0; });
/// Four triples with an unused byte behind each. The last one is kept, a low bit keeps the middle one, a high
/// bit the first.
inline constexpr closing_table of_triples = make_closing_table(1, [](unsigned mask, unsigned byte) {
  const unsigned part = byte % 4;
  return part == 2 || (part < 2 && (mask >> (part ? 0 : 4) >> byte / 4 & 1) != 0);
});

inline unsigned mask_of(__m128i bytes) noexcept { return static_cast<unsigned>(_mm_movemask_epi8(bytes)); }
inline __m128i all_bytes(int value) noexcept { return _mm_set1_epi8(static_cast<char>(value)); }
inline __m128i all_units(int value) noexcept { return _mm_set1_epi16(static_cast<short>(value)); }
/// -1 for each byte that is not below the limit.
inline __m128i from_byte(int limit, __m128i bytes) noexcept {
  return _mm_cmpeq_epi8(_mm_max_epu8(bytes, all_bytes(limit)), bytes);
}
/// -1 for each unit that has none of the bits.
inline __m128i without_bits(int bits, __m128i units) noexcept {
  return _mm_cmpeq_epi16(_mm_and_si128(units, all_units(bits)), _mm_setzero_si128());
}
/// -1 for each byte that continues a character.
inline __m128i continuations(__m128i bytes) noexcept { return _mm_cmpgt_epi8(all_bytes(0xC0), bytes); }

// --- UTF-8 to UTF-16

/// Readable bytes that a window needs.
constexpr std::ptrdiff_t window_of_bytes = 28;

/// The units of up to eight characters of three bytes, as many as come before one of another length or a
/// malformed one; gives how many. Eight are written.
template <unit_16 Unit>
KESTA_SSSE3 int decode_eight_threes(const char* from, Unit* to) noexcept {
  const __m128i front = load_16(from), back = load_16(from + 12);
  const __m128i ends = _mm_unpacklo_epi64(
      _mm_shuffle_epi8(front, _mm_setr_epi8(2, -1, 5, -1, 8, -1, 11, -1, -1, -1, -1, -1, -1, -1, -1, -1)),
      _mm_shuffle_epi8(back, _mm_setr_epi8(2, -1, 5, -1, 8, -1, 11, -1, -1, -1, -1, -1, -1, -1, -1, -1)));
  const __m128i heads = _mm_unpacklo_epi64(
      _mm_shuffle_epi8(front, _mm_setr_epi8(1, 0, 4, 3, 7, 6, 10, 9, -1, -1, -1, -1, -1, -1, -1, -1)),
      _mm_shuffle_epi8(back, _mm_setr_epi8(1, 0, 4, 3, 7, 6, 10, 9, -1, -1, -1, -1, -1, -1, -1, -1)));
  const __m128i marks =
      _mm_or_si128(_mm_xor_si128(_mm_and_si128(heads, all_units(0xF0C0)), all_units(0xE080)),
                   _mm_xor_si128(_mm_and_si128(ends, all_units(0xC0)), all_units(0x80)));
  const __m128i formed = _mm_cmpeq_epi16(marks, _mm_setzero_si128());
  const __m128i high = _mm_maddubs_epi16(_mm_and_si128(heads, all_units(0x0F3F)), all_units(0x4001));
  const __m128i units = _mm_or_si128(_mm_slli_epi16(high, 6), _mm_and_si128(ends, all_units(0x3F)));
  store_16(to, units);
  const __m128i top = _mm_and_si128(units, all_units(0xF800));
  const __m128i bad =
      _mm_or_si128(_mm_cmpeq_epi16(top, _mm_setzero_si128()), _mm_cmpeq_epi16(top, all_units(0xD800)));
  return std::countr_one(mask_of(_mm_andnot_si128(bad, formed))) / 2;
}

/// The units of 16 bytes, as if a character began at each.
struct unit_window {
  __m128i low, high;
  unsigned continued;  // places where no character begins
  unsigned expected;   // places that have to continue one, the two behind the window too
  unsigned
      wrong;  // places that are malformed; the first is at or behind the beginning of a character that is
};

/// Where only ASCII and well-formed characters of two bytes are; false for anything else. The first `carried`
/// places continue the character before the window: 0, 1 or 3 for two of them.
KESTA_SSSE3 inline bool window_of_twos(const char* from, unsigned carried, unit_window& made) noexcept {
  const __m128i bytes = load_16(from), next = load_16(from + 1);
  const __m128i from_c2 = _mm_sub_epi8(bytes, all_bytes(0xC2));
  const __m128i leads = _mm_cmpeq_epi8(_mm_min_epu8(from_c2, all_bytes(0xDF - 0xC2)), from_c2);
  const unsigned lead = mask_of(leads);
  made.continued = mask_of(bytes) & ~lead;
  made.expected = lead << 1 | carried;
  if ((mask_of(continuations(next)) << 1 | carried) != made.expected ||
      made.continued != (made.expected & 0xFFFF))
    return false;
  const __m128i six_bits = _mm_and_si128(leads, all_bytes(0x3F));
  const __m128i times = _mm_add_epi8(six_bits, all_bytes(1));
  const __m128i first = _mm_andnot_si128(_mm_and_si128(leads, all_bytes(0xE0)), bytes);
  const __m128i tail = _mm_and_si128(six_bits, next);
  const __m128i one = all_bytes(1);
  made.low = _mm_maddubs_epi16(_mm_unpacklo_epi8(tail, first), _mm_unpacklo_epi8(one, times));
  made.high = _mm_maddubs_epi16(_mm_unpackhi_epi8(tail, first), _mm_unpackhi_epi8(one, times));
  return true;
}

KESTA_SSSE3 inline unit_window window_of_all(const char* from, unsigned carried) noexcept {
  const __m128i bytes = load_16(from), next = load_16(from + 1), second = load_16(from + 2);
  const __m128i nibbles = _mm_and_si128(_mm_srli_epi16(bytes, 4), all_bytes(15));
  const auto by_nibble = [](char ascii, char two, char three) {
    return _mm_setr_epi8(ascii, ascii, ascii, ascii, ascii, ascii, ascii, ascii, 0, 0, 0, 0, two, two, three,
                         0);
  };
  const __m128i first = _mm_and_si128(bytes, _mm_shuffle_epi8(by_nibble(0x7F, 0x1F, 0x0F), nibbles));
  const __m128i tail = _mm_and_si128(next, _mm_shuffle_epi8(by_nibble(0, 0x3F, 0x3F), nibbles));
  const __m128i last = _mm_and_si128(second, _mm_shuffle_epi8(by_nibble(0, 0, 0x3F), nibbles));
  const __m128i times = _mm_shuffle_epi8(by_nibble(1, 64, 64), nibbles);
  const __m128i again = _mm_shuffle_epi8(by_nibble(1, 1, 64), nibbles);

  unit_window made;
  made.continued = mask_of(continuations(bytes));
  made.expected = (mask_of(bytes) & ~made.continued) << 1 | mask_of(from_byte(0xE0, bytes)) << 2 | carried;
  const unsigned follow = made.continued | mask_of(continuations(second)) << 2;
  // No lead at all; overlong after E0; a surrogate after ED.
  const __m128i below_a0 = _mm_cmpgt_epi8(all_bytes(0xA0), next);
  const auto is = [](__m128i all, int value) { return _mm_cmpeq_epi8(all, all_bytes(value)); };
  const __m128i no_lead =
      _mm_or_si128(from_byte(0xF0, bytes), is(_mm_and_si128(bytes, all_bytes(0xFE)), 0xC0));
  const __m128i beyond =
      _mm_or_si128(_mm_and_si128(is(bytes, 0xE0), below_a0), _mm_andnot_si128(below_a0, is(bytes, 0xED)));
  made.wrong = ((follow ^ made.expected) & (made.expected | 0xFFFF)) | mask_of(_mm_or_si128(no_lead, beyond));

  const __m128i one = all_bytes(1), zero = _mm_setzero_si128();
  const __m128i low = _mm_maddubs_epi16(_mm_unpacklo_epi8(tail, first), _mm_unpacklo_epi8(one, times));
  const __m128i high = _mm_maddubs_epi16(_mm_unpackhi_epi8(tail, first), _mm_unpackhi_epi8(one, times));
  made.low =
      _mm_add_epi16(_mm_mullo_epi16(low, _mm_unpacklo_epi8(again, zero)), _mm_unpacklo_epi8(last, zero));
  made.high =
      _mm_add_epi16(_mm_mullo_epi16(high, _mm_unpackhi_epi8(again, zero)), _mm_unpackhi_epi8(last, zero));
  return made;
}

/// Writes the units of places where characters begin, and 16 in all; gives the end.
template <unit_16 Unit>
KESTA_SSSE3 Unit* store_window(const unit_window& window, Unit* to) noexcept {
  const unsigned low = window.continued & 0xFF, high = window.continued >> 8;
  store_16(to, _mm_shuffle_epi8(window.low, without_units.at(low)));
  to += without_units.size[low];
  store_16(to, _mm_shuffle_epi8(window.high, without_units.at(high)));
  return to + without_units.size[high];
}

/// How many places there are before the last character that begins before what is wrong: it may be malformed.
inline int places_before_wrong(const unit_window& window) noexcept {
  const unsigned leads = ~window.continued & ((1u << std::countr_zero(window.wrong)) - 1) & 0xFFFF;
  return leads ? std::bit_width(leads) - 1 : 0;
}

/// Decodes characters of one to three bytes from a place before `stop` up to `stop`, which the last ones may
/// pass, to one of four bytes or a malformed one, to a longer run of ASCII, or to where less than a window is
/// readable. Needs room for 16 units more than there are bytes before `stop`.
template <unit_16 Unit>
KESTA_SSSE3 void decode_windows(const char*& begin, const char* stop, const char* readable,
                                Unit*& out) noexcept {
  if (readable - begin < window_of_bytes) return;
  stop = std::min(stop, readable - window_of_bytes + 1);
  const char* from = begin;
  Unit* to = out;
  bool are_threes = static_cast<unsigned char>(*from) >= 0xE0;
  unsigned carried = 0;  // so that the next window's place does not wait for this one's
  for (unsigned recent = 1; (recent & 7) != 0 && from < stop;) {
    unit_window window;
    if (are_threes) {
      const int count = decode_eight_threes(from, to);
      are_threes = count == 8;
      from += are_threes ? 24 : 3 * count;
      to += are_threes ? 8 : count;
    } else if (window_of_twos(from, carried, window)) {
      to = store_window(window, to);
      from += 16;
      carried = window.expected >> 16;
      recent = recent << 1 | static_cast<unsigned>(window.continued != 0);
    } else {
      window = window_of_all(from, carried);
      Unit* const end = store_window(window, to);
      if (window.wrong) {
        const int count = places_before_wrong(window);
        for (int at = 0; at < count; ++at) to += static_cast<int>(~window.continued >> at & 1);
        from += count;
        if (count) carried = 0;
        break;
      }
      are_threes = end - to <= 6;
      to = end;
      carried = window.expected >> 16;
      from += are_threes ? 16 + (carried & 1) + (carried >> 1) : 16;
      if (are_threes) carried = 0;
      recent = 1;
    }
  }
  begin = from + (carried & 1) + (carried >> 1);
  out = to;
}

// --- UTF-16 to UTF-8

/// The bytes of eight units below 0x800; 16 may be written. Gives the end, and a bit for each unit of two
/// bytes.
KESTA_SSSE3 inline char* encode_twos(__m128i units, unsigned& longer, char* to) noexcept {
  const __m128i zero = _mm_setzero_si128();
  const __m128i ascii = without_bits(0xFF80, units);
  const __m128i tails = _mm_and_si128(_mm_slli_epi16(units, 8), all_units(0x3F00));
  const __m128i pairs = _mm_or_si128(_mm_or_si128(_mm_srli_epi16(units, 6), tails), all_units(0x80C0));
  const __m128i made = _mm_or_si128(_mm_and_si128(ascii, units), _mm_andnot_si128(ascii, pairs));
  longer = mask_of(_mm_packs_epi16(ascii, zero)) ^ 0xFF;
  store_16(to, _mm_shuffle_epi8(made, of_pairs.at(longer)));
  return to + of_pairs.size[longer];
}

/// The bytes of eight units, none of which is a surrogate; 28 may be written. Gives the end.
KESTA_SSSE3 inline char* encode_threes(__m128i units, char* to) noexcept {
  const __m128i ascii = without_bits(0xFF80, units);
  const __m128i shorter = without_bits(0xF800, units);
  const __m128i ends = _mm_or_si128(_mm_and_si128(units, all_units(0x3F)), all_units(0x80));
  const __m128i middle = _mm_and_si128(_mm_slli_epi16(units, 2), all_units(0x3F00));
  const __m128i heads = _mm_or_si128(_mm_or_si128(_mm_srli_epi16(units, 12), middle), all_units(0x80E0));
  const unsigned longer = mask_of(_mm_packs_epi16(ascii, shorter)) ^ 0xFFFF;
  if (longer == 0xFFFF) {
    const __m128i order = _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
    store_16(to, _mm_shuffle_epi8(_mm_unpacklo_epi16(heads, ends), order));
    store_16(to + 12, _mm_shuffle_epi8(_mm_unpackhi_epi16(heads, ends), order));
    return to + 24;
  }
  // Two bytes begin in the middle, with their mark; one is the last.
  const __m128i marked = _mm_or_si128(heads, _mm_and_si128(shorter, all_units(0x4000)));
  const __m128i last = _mm_or_si128(_mm_and_si128(ascii, units), _mm_andnot_si128(ascii, ends));
  // The low bits of both are those of the units of more than one byte, the high ones those of three.
  const unsigned low = (longer & 0xF) | (longer >> 4 & 0xF0);
  const unsigned high = (longer >> 4 & 0xF) | (longer >> 8 & 0xF0);
  store_16(to, _mm_shuffle_epi8(_mm_unpacklo_epi16(marked, last), of_triples.at(low)));
  to += of_triples.size[low];
  store_16(to, _mm_shuffle_epi8(_mm_unpackhi_epi16(marked, last), of_triples.at(high)));
  return to + of_triples.size[high];
}

/// Encodes units from a place before `stop` up to `stop`, which the last ones may pass, to a surrogate, to a
/// longer run of ASCII, or to where less than eight are readable. Needs room for 28 bytes more than three for
/// each unit before `stop`.
template <unit_16 Unit>
KESTA_SSSE3 void encode_windows(const Unit*& begin, const Unit* stop, const Unit* readable,
                                char*& out) noexcept {
  alignas(16) static constexpr std::int16_t lanes[16] = {-1, -1, -1, -1, -1, -1, -1, -1};
  if (readable - begin < 8) return;
  stop = std::min(stop, readable - 7);
  const Unit* from = begin;
  char* to = out;
  for (unsigned recent = 1; (recent & 31) != 0 && from < stop;) {
    const __m128i units = load_16(from);
    const __m128i top = _mm_and_si128(units, all_units(0xF800));
    if (mask_of(_mm_cmpeq_epi16(top, _mm_setzero_si128())) == 0xFFFF) {
      unsigned longer = 0;
      to = encode_twos(units, longer, to);
      from += 8;
      recent = recent << 1 | static_cast<unsigned>(longer != 0);
      continue;
    }
    const unsigned surrogates = mask_of(_mm_cmpeq_epi16(top, all_units(0xD800)));
    if (surrogates) {  // from there on zeros, a byte each, which do not count
      const int count = std::countr_zero(surrogates) / 2;
      to = encode_threes(_mm_and_si128(units, load_16(lanes + 8 - count)), to) - (8 - count);
      from += count;
      break;
    }
    to = encode_threes(units, to);
    from += 8;
    recent = 1;
  }
  begin = from;
  out = to;
}

}  // namespace ruvo::texto

#endif
