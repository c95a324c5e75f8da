// SPDX-License-Identifier: BSL-1.0

// Base64 both ways: blocks by vectors, the rest digit by digit.

#include "base/base64.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "base/ascii.hpp"
#include "base/simd.hpp"

namespace ruvo::texto {

namespace {

constexpr char standard_digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char url_safe_digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
constexpr unsigned char no_digit = 64;
constexpr std::size_t block = 16;  // characters in a vector

constexpr std::array<unsigned char, 128> values = [] {
  std::array<unsigned char, 128> table{};
  table.fill(no_digit);
  for (unsigned char i = 0; i < 64; ++i) {
    table[static_cast<unsigned char>(standard_digits[i])] = i;
    table[static_cast<unsigned char>(url_safe_digits[i])] = i;
  }
  return table;
}();

template <class Char>
unsigned digit_value(Char c) noexcept {
  const auto unit = static_cast<char32_t>(c);  // a negative char is far above 127
  return unit < values.size() ? values[unit] : no_digit;
}

#ifdef KESTA_X64
// 12 bytes to 16 digits and back, for units of 8 or 16 bits. A vector holds 16 bytes or digits; within a
// group of three bytes or four digits the first comes first in memory and is the highest of the 24 bits.

/// The digits of 16 values below 64.
KESTA_SSSE3 __m128i base64_digits_of(__m128i sixes, __m128i offsets) noexcept {
  // Kinds: 0 for 26 to 51, 1 to 10 for the figures, 11 and 12 for the last two digits, 13 for below 26.
  const __m128i beyond = _mm_subs_epu8(sixes, _mm_set1_epi8(51));
  const __m128i below_26 = _mm_cmpgt_epi8(_mm_set1_epi8(26), sixes);
  const __m128i kinds = _mm_or_si128(beyond, _mm_and_si128(below_26, _mm_set1_epi8(13)));
  return _mm_add_epi8(sixes, _mm_shuffle_epi8(offsets, kinds));
}

/// From a value to its digit, by kind.
__m128i offsets_for(bool url_safe) noexcept {
  constexpr char figure = '0' - 52;
  const char last = static_cast<char>((url_safe ? '-' : '+') - 62);
  const char very_last = static_cast<char>((url_safe ? '_' : '/') - 63);
  return _mm_setr_epi8('a' - 26, figure, figure, figure, figure, figure, figure, figure, figure, figure,
                       figure, last, very_last, 'A', 0, 0);
}

/// The 16 values in the first 12 of the bytes.
KESTA_SSSE3 __m128i split(__m128i bytes) noexcept {
  const __m128i order = _mm_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10);
  // The values a, b, c, d of a group as bbbbcccc ccdddddd aaaaaabb bbbbcccc, the highest bits first.
  const __m128i groups = _mm_shuffle_epi8(bytes, order);
  const __m128i even = _mm_mulhi_epu16(_mm_and_si128(groups, _mm_set1_epi32(0x0FC0FC00)),
                                       _mm_set1_epi32(0x04000040));  // to the right by 10 and 6
  const __m128i odd = _mm_mullo_epi16(_mm_and_si128(groups, _mm_set1_epi32(0x003F03F0)),
                                      _mm_set1_epi32(0x01000010));  // to the left by 4 and 8
  return _mm_or_si128(even, odd);
}

/// Encodes while 16 characters are readable; gives how many were encoded.
template <class Out, class In>
KESTA_SSSE3 std::size_t encode_base64_blocks(Out* out, const In* in, std::size_t count,
                                             bool url_safe) noexcept {
  const __m128i offsets = offsets_for(url_safe);
  std::size_t done = 0;
  for (; count - done >= block; done += 12, out += 16)
    store_bytes(out, base64_digits_of(split(load_low_bytes(in + done)), offsets));
  return done;
}

/// The values of 16 digits of either alphabet; false if one is no digit.
KESTA_SSSE3 bool sixes_of(__m128i& chars) noexcept {
  const __m128i low_bits = _mm_set1_epi8(15);
  const __m128i rows = _mm_and_si128(_mm_srli_epi16(chars, 4), low_bits);
  // A bit for each row of 16 characters that has digits (two rows are alike), and the rows in which a column
  // has one.
  const __m128i row_bits = _mm_setr_epi8(0, 0, 1, 2, 4, 8, 4, 16, 0, 0, 0, 0, 0, 0, 0, 0);
  const __m128i in_columns = _mm_setr_epi8(26, 30, 30, 30, 30, 30, 30, 30, 30, 30, 28, 5, 4, 5, 4, 13);
  const __m128i columns = _mm_shuffle_epi8(in_columns, _mm_and_si128(chars, low_bits));
  const __m128i digits = _mm_and_si128(_mm_shuffle_epi8(row_bits, rows), columns);
  if (_mm_movemask_epi8(_mm_cmpeq_epi8(digits, _mm_setzero_si128()))) return false;
  // From a digit to its value, by row; the last two of each alphabet have their own.
  const __m128i offsets = _mm_setr_epi8(0, 62 - '+', 63 - '/', 52 - '0', -'A', -'A', 26 - 'a', 26 - 'a',
                                        62 - '-', 63 - '_', 0, 0, 0, 0, 0, 0);
  const auto is = [chars](char c) { return _mm_cmpeq_epi8(chars, _mm_set1_epi8(c)); };
  const auto both = [](__m128i mask, char c) { return _mm_and_si128(mask, _mm_set1_epi8(c)); };
  const __m128i moved = _mm_add_epi8(_mm_or_si128(both(is('+'), -1), both(is('-'), 6)), both(is('_'), 4));
  chars = _mm_add_epi8(chars, _mm_shuffle_epi8(offsets, _mm_add_epi8(rows, moved)));
  return true;
}

/// The 12 bytes of 16 values below 64.
KESTA_SSSE3 __m128i joined_sixes(__m128i sixes) noexcept {
  const __m128i twelves = _mm_maddubs_epi16(sixes, _mm_set1_epi32(0x01400140));
  const __m128i groups = _mm_madd_epi16(twelves, _mm_set1_epi32(0x00011000));
  return _mm_shuffle_epi8(groups, _mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1));
}

// Exactly 12 characters.

void store_12(char* out, __m128i bytes) noexcept {
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out), bytes);
  const int last = _mm_cvtsi128_si32(_mm_srli_si128(bytes, 8));
  std::memcpy(out + 8, &last, sizeof(last));
}
void store_12(unsigned char* out, __m128i bytes) noexcept { store_12(reinterpret_cast<char*>(out), bytes); }
template <unit_16 Unit>
void store_12(Unit* out, __m128i bytes) noexcept {
  const __m128i zero = _mm_setzero_si128();
  store_16(out, _mm_unpacklo_epi8(bytes, zero));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out + 8), _mm_unpackhi_epi8(bytes, zero));
}

/// Decodes while 16 characters are all digits; gives how many were decoded.
template <class Out, class In>
KESTA_SSSE3 std::size_t decode_base64_blocks(Out* out, const In* in, std::size_t count) noexcept {
  std::size_t done = 0;
  for (; count - done >= block; done += 16, out += 12) {
    __m128i sixes = load_chars(in + done);
    if (!sixes_of(sixes)) break;
    store_12(out, joined_sixes(sixes));
  }
  return done;
}
#endif

template <class Out, class In>
void encode_base64(Out* out, const In* in, std::size_t count, bool url_safe) noexcept {
  const char* const digits = url_safe ? url_safe_digits : standard_digits;
  const auto byte = [in](std::size_t at) { return static_cast<std::uint32_t>(in[at]) & 0xFF; };
  const auto put = [&out, digits](std::uint32_t bits) { *out++ = static_cast<Out>(digits[bits & 63]); };
  std::size_t at = 0;
#ifdef KESTA_X64
  if constexpr (sizeof(Out) <= 2 && sizeof(In) <= 2)
    if (has_ssse3) at = encode_base64_blocks(out, in, count, url_safe);
  out += at / 3 * 4;
#endif
  for (; count - at >= 3; at += 3) {
    const std::uint32_t group = byte(at) << 16 | byte(at + 1) << 8 | byte(at + 2);
    put(group >> 18);
    put(group >> 12);
    put(group >> 6);
    put(group);
  }
  if (at == count) return;
  const bool two = count - at == 2;
  const std::uint32_t group = byte(at) << 16 | (two ? byte(at + 1) << 8 : 0);
  put(group >> 18);
  put(group >> 12);
  if (two) put(group >> 6);
  if (!two) *out++ = static_cast<Out>('=');
  *out++ = static_cast<Out>('=');
}

/// Collects digits and writes a byte as soon as eight bits are there.
template <class Out>
class byte_writer {
 public:
  explicit byte_writer(Out* out) noexcept : out_(out) {}

  void add(unsigned digit) noexcept {
    bits_ = bits_ << 6 | digit;
    count_ = (count_ + 1) & 3;
    // After two, three and four digits of a group 4, 2 and 0 bits wait for the next byte.
    const unsigned waiting = (4 - count_) * 2 & 7;
    if (count_ != 1) *out_++ = static_cast<Out>(bits_ >> waiting & 0xFF);
  }
  /// Takes a run of whole groups; gives how many characters it took.
  template <class In>
  std::size_t add_blocks([[maybe_unused]] const In* in, [[maybe_unused]] std::size_t count) noexcept {
    std::size_t done = 0;
#ifdef KESTA_X64
    if constexpr (sizeof(Out) <= 2 && sizeof(In) <= 2)
      if (has_ssse3 && !count_) done = decode_base64_blocks(out_, in, count);
#endif
    out_ += done / 4 * 3;
    return done;
  }

  /// Digits of the group that is not complete.
  unsigned pending() const noexcept { return count_; }
  Out* end() const noexcept { return out_; }

 private:
  Out* out_;
  std::uint32_t bits_ = 0;
  unsigned count_ = 0;
};

/// Gives `writer` the digits of `text`: runs of them in blocks, and what is between through `take`, which is
/// called with a character and answers whether to go on.
template <class Out, class View, class Take>
void walk_digits(byte_writer<Out>& writer, View text, const Take& take) noexcept {
  const auto* at = text.data();
  const auto* const end = at + text.size();
  while (at != end) {
    at += writer.add_blocks(at, static_cast<std::size_t>(end - at));
    // After what broke the run off, until blocks can begin again.
    const auto* const stop = at + std::min(static_cast<std::size_t>(end - at), block);
    for (; at != end && (at < stop || writer.pending()); ++at)
      if (!take(*at)) return;
  }
}

template <class Out, class View>
Out* decode_base64(Out* out, View text) noexcept {
  byte_writer<Out> writer(out);
  walk_digits(writer, text, [&writer](auto c) {
    const unsigned digit = digit_value(c);
    if (digit != no_digit) writer.add(digit);
    return c != '=';
  });
  return writer.end();
}

template <class View>
unsigned char* read(unsigned char* out, View text) noexcept {
  byte_writer<unsigned char> writer(out);
  unsigned padding = 0;
  bool good = true;
  walk_digits(writer, text, [&](auto c) {
    const unsigned digit = digit_value(c);
    if (digit != no_digit) {
      good = !padding;
      writer.add(digit);
    } else if (c == '=') {
      ++padding;
    } else {
      good = is_space(static_cast<wchar_t>(c));
    }
    return good;
  });
  const unsigned left = writer.pending();
  if (!good || left == 1 || padding > 2 || (padding && left + padding != 4)) return nullptr;
  return writer.end();
}

}  // namespace

void base64_encode_to(char* out, const unsigned char* bytes, std::size_t count, bool url_safe) noexcept {
  encode_base64(out, bytes, count, url_safe);
}
void base64_encode_to(wchar_t* out, const unsigned char* bytes, std::size_t count, bool url_safe) noexcept {
  encode_base64(out, bytes, count, url_safe);
}
void base64_encode_to(wchar_t* out, const wchar_t* units, std::size_t count, bool url_safe) noexcept {
  encode_base64(out, units, count, url_safe);
}

char* base64_decode_to(char* out, std::string_view text) noexcept { return decode_base64(out, text); }
wchar_t* base64_decode_to(wchar_t* out, std::wstring_view text) noexcept { return decode_base64(out, text); }

unsigned char* base64_read(unsigned char* out, std::string_view text) noexcept { return read(out, text); }
unsigned char* base64_read(unsigned char* out, std::wstring_view text) noexcept { return read(out, text); }

#ifdef KESTA_STATIC
void base64_encode_to(char16_t* out, const unsigned char* bytes, std::size_t count, bool url_safe) noexcept {
  encode_base64(out, bytes, count, url_safe);
}
void base64_encode_to(char16_t* out, const char16_t* units, std::size_t count, bool url_safe) noexcept {
  encode_base64(out, units, count, url_safe);
}
char16_t* base64_decode_to(char16_t* out, std::u16string_view text) noexcept {
  return decode_base64(out, text);
}
unsigned char* base64_read(unsigned char* out, std::u16string_view text) noexcept { return read(out, text); }
#endif

}  // namespace ruvo::texto
