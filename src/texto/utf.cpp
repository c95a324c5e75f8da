#include "texto/utf.hpp"

#include <algorithm>
#include <bit>
#include <cstddef>

#if defined(__SSE2__) || defined(_M_X64)
#  define KESTA_SSE2
#  include <emmintrin.h>
#endif

namespace ruvo::texto {

namespace {

constexpr wchar_t replacement = L'\xFFFD';

// The two blocks below copy `block` characters as if all were ASCII and give a mask of those that are not;
// what they wrote in the place of these is to be overwritten.

#ifdef KESTA_SSE2
constexpr std::size_t block = 16;

unsigned widen_block(const char* from, wchar_t* to) noexcept {
  const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
  const __m128i zero = _mm_setzero_si128();
  const __m128i low = _mm_unpacklo_epi8(bytes, zero);
  const __m128i high = _mm_unpackhi_epi8(bytes, zero);
  auto* const out = reinterpret_cast<__m128i*>(to);
  if constexpr (sizeof(wchar_t) == 2) {
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
__m128i load_units(const wchar_t* from) noexcept {
  const auto* const in = reinterpret_cast<const __m128i*>(from);
  if constexpr (sizeof(wchar_t) == 2) return _mm_loadu_si128(in);
  return _mm_packs_epi32(_mm_loadu_si128(in), _mm_loadu_si128(in + 1));
}

unsigned narrow_block(const wchar_t* from, char* to) noexcept {
  const __m128i low = load_units(from);
  const __m128i high = load_units(from + 8);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_packus_epi16(low, high));
  const __m128i zero = _mm_setzero_si128();
  const __m128i beyond = _mm_set1_epi16(static_cast<short>(0xFF80));
  const __m128i ascii = _mm_packs_epi16(_mm_cmpeq_epi16(_mm_and_si128(low, beyond), zero),
                                        _mm_cmpeq_epi16(_mm_and_si128(high, beyond), zero));
  return static_cast<unsigned>(_mm_movemask_epi8(ascii)) ^ 0xFFFF;
}
#else
constexpr std::size_t block = 8;

unsigned widen_block(const char* from, wchar_t* to) noexcept {
  unsigned mask = 0;
  for (std::size_t i = 0; i < block; ++i) {
    const auto byte = static_cast<unsigned char>(from[i]);
    to[i] = static_cast<wchar_t>(byte);
    mask |= static_cast<unsigned>(byte > 127) << i;
  }
  return mask;
}

unsigned narrow_block(const wchar_t* from, char* to) noexcept {
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

wchar_t* write_utf_16(wchar_t* to, char32_t point) noexcept {
  if (point < 0x10000) {
    *to++ = static_cast<wchar_t>(point);
  } else {
    *to++ = static_cast<wchar_t>(0xD7C0 + (point >> 10));
    *to++ = static_cast<wchar_t>(0xDC00 + (point & 0x3FF));
  }
  return to;
}

bool is_high(char16_t unit) noexcept { return (unit & 0xFC00) == 0xD800; }
bool is_low(char16_t unit) noexcept { return (unit & 0xFC00) == 0xDC00; }

char32_t read_utf_16(const wchar_t*& at, const wchar_t* end) noexcept {
  const auto unit = static_cast<char16_t>(*at++);
  if ((unit & 0xF800) != 0xD800) return unit;
  if (!is_high(unit) || at == end || !is_low(static_cast<char16_t>(*at))) return replacement;
  const auto low = static_cast<char16_t>(*at++);
  return 0x10000u + ((unit & 0x3FFu) << 10) + (low & 0x3FFu);
}

char* write_utf_8(char* to, char32_t point) noexcept {
  const auto tail = [point](int shift) { return static_cast<char>(0x80 | (point >> shift & 0x3F)); };
  if (point < 0x80) {
    *to++ = static_cast<char>(point);
  } else if (point < 0x800) {
    *to++ = static_cast<char>(0xC0 | point >> 6);
    *to++ = tail(0);
  } else if (point < 0x10000) {
    *to++ = static_cast<char>(0xE0 | point >> 12);
    *to++ = tail(6);
    *to++ = tail(0);
  } else {
    *to++ = static_cast<char>(0xF0 | point >> 18);
    *to++ = tail(12);
    *to++ = tail(6);
    *to++ = tail(0);
  }
  return to;
}

/// Needs room for as many units as there are bytes; gives the end of what it wrote.
wchar_t* decode(const char* from, const char* end, wchar_t* to) noexcept {
  while (static_cast<std::size_t>(end - from) >= block) {
    const unsigned beyond = widen_block(from, to);
    const int ascii = beyond ? std::countr_zero(beyond) : static_cast<int>(block);
    from += ascii;
    to += ascii;
    if (!beyond) continue;
    do to = write_utf_16(to, read_utf_8(from, end));
    while (from != end && static_cast<unsigned char>(*from) > 127);
  }
  while (from != end) to = write_utf_16(to, read_utf_8(from, end));
  return to;
}

/// Needs room for utf_8_size() bytes.
void encode(const wchar_t* from, const wchar_t* end, char* to) noexcept {
  while (static_cast<std::size_t>(end - from) >= block) {
    const unsigned beyond = narrow_block(from, to);
    const int ascii = beyond ? std::countr_zero(beyond) : static_cast<int>(block);
    from += ascii;
    to += ascii;
    if (!beyond) continue;
    do to = write_utf_8(to, read_utf_16(from, end));
    while (from != end && static_cast<char16_t>(*from) > 127);
  }
  while (from != end) to = write_utf_8(to, read_utf_16(from, end));
}

/// Counted unit by unit, without a branch: a unit above 0x7FF takes three bytes, and so would both of a pair.
std::size_t utf_8_size(const wchar_t* from, const wchar_t* end) noexcept {
  char unused[block];
  std::size_t size = static_cast<std::size_t>(end - from);
  bool after_high = false;
  while (from != end) {
    const std::size_t count = std::min(block, static_cast<std::size_t>(end - from));
    if (count == block && !narrow_block(from, unused)) {
      from += block;
      after_high = false;
      continue;
    }
    for (const wchar_t* const stop = from + count; from != stop; ++from) {
      const auto unit = static_cast<char16_t>(*from);
      size += static_cast<std::size_t>(unit > 0x7F) + static_cast<std::size_t>(unit > 0x7FF);
      size -= 2 * static_cast<std::size_t>(after_high & is_low(unit));
      after_high = is_high(unit);
    }
  }
  return size;
}

}  // namespace

void append_utf_16(std::wstring& out, std::string_view text) {
  const std::size_t before = out.size();
  out.resize(before + text.size());
  wchar_t* const end = decode(text.data(), text.data() + text.size(), out.data() + before);
  out.resize(static_cast<std::size_t>(end - out.data()));
}

void append_utf_8(std::string& out, std::wstring_view text) {
  const wchar_t* const end = text.data() + text.size();
  const std::size_t before = out.size();
  out.resize(before + utf_8_size(text.data(), end));
  encode(text.data(), end, out.data() + before);
}

std::wstring to_utf_16(std::string_view text) {
  std::wstring out;
  append_utf_16(out, text);
  return out;
}

std::string to_utf_8(std::wstring_view text) {
  std::string out;
  append_utf_8(out, text);
  return out;
}

}  // namespace ruvo::texto
