// SPDX-License-Identifier: BSL-1.0
#pragma once

// Strings of standard JSON: where they end, and what they say in UTF-16.

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>

#include "base/ascii.hpp"
#include "base/simd.hpp"
#include "base/utf.hpp"
#include "memory/block_cache.hpp"
#include "serializer/json/grammar.hpp"

namespace ruvo::serializer {

using texto::is_surrogate;

/// UTF-16 units that are being collected, with room that is asked for ahead.
class unit_buffer {
 public:
  unit_buffer() noexcept : first_(near_), end_(near_), limit_(near_ + sizeof near_ / sizeof *near_) {}
  unit_buffer(const unit_buffer&) = delete;
  unit_buffer& operator=(const unit_buffer&) = delete;
  ~unit_buffer() { give_room(); }

  void clear() noexcept { end_ = first_; }
  std::size_t size() const noexcept { return static_cast<std::size_t>(end_ - first_); }
  std::wstring_view view() const noexcept { return {first_, size()}; }

  /// Where at least `units` may be written; to be followed by advance().
  wchar_t* room(std::size_t units) {
    if (static_cast<std::size_t>(limit_ - end_) < units) [[unlikely]]
      grow(units);
    return end_;
  }
  void advance(wchar_t* written_to) noexcept { end_ = written_to; }
  void put(wchar_t c) {
    *room(1) = c;
    ++end_;
  }

 private:
  std::size_t bytes() const noexcept { return static_cast<std::size_t>(limit_ - first_) * sizeof(wchar_t); }
  void give_room() noexcept {
    if (first_ != near_) detail::give_block(first_, bytes());
  }
  void grow(std::size_t units) {
    const std::size_t used = size(), wanted = std::max(2 * bytes() / sizeof(wchar_t), used + units);
    auto* const wider = static_cast<wchar_t*>(detail::take_block(wanted * sizeof(wchar_t)));
    std::memcpy(wider, first_, used * sizeof(wchar_t));
    give_room();
    first_ = wider;
    end_ = wider + used;
    limit_ = wider + wanted;
  }

  wchar_t *first_, *end_, *limit_;
  wchar_t near_[256];
};

// --- what both readers ask of single units

/// U+FEFF at the beginning of a text.
template <class Unit>
constexpr std::basic_string_view<Unit> mark_of() noexcept {
  if constexpr (sizeof(Unit) == 1) {
    return "\xEF\xBB\xBF";
  } else {
    return L"\xFEFF";
  }
}

template <class Unit>
constexpr bool begins_value(Unit c) noexcept {
  return c == Unit('{') || c == Unit('[') || c == Unit('"') || c == Unit('-') || c == Unit('t') ||
         c == Unit('f') || c == Unit('n') || (c >= Unit('0') && c <= Unit('9'));
}

template <class Unit>
inline const Unit* skip_blanks(const Unit* at, const Unit* end) noexcept {
  while (at != end && (*at == Unit(' ') || (*at <= Unit('\r') && is_blank(static_cast<wchar_t>(*at))))) ++at;
  return at;
}

// --- units that stand for themselves

/// Whether a unit inside a string means itself, whatever stands beside it: not the quotation mark, a
/// backslash, a control character, a byte of a longer character or half a surrogate pair.
constexpr bool is_plain(char c) noexcept {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 0x20 && byte < 0x80 && c != '"' && c != '\\';
}
constexpr bool is_plain(wchar_t c) noexcept {
  return static_cast<std::uint32_t>(c) >= 0x20 && c != L'"' && c != L'\\' && !is_surrogate(c);
}

#ifdef KESTA_X64
/// Of 16 bytes those that are not plain, as bits.
inline std::uint32_t marked(__m128i bytes) noexcept {
  const __m128i marks =
      _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('"')), _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\\')));
  const __m128i beyond = _mm_cmplt_epi8(bytes, _mm_set1_epi8(0x20));  // with sign: from 0x80 on, too
  return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_or_si128(marks, beyond)));
}

/// 16 bytes as units.
inline void widen_16(wchar_t* to, const char* from) noexcept {
  if constexpr (sizeof(wchar_t) == 2) {
    texto::store_bytes(reinterpret_cast<char16_t*>(to), texto::load_16(from));
  } else {
    for (int n = 0; n < 16; ++n) to[n] = texto::unit_of(from[n]);
  }
}
inline void widen_8(wchar_t* to, const char* from) noexcept {
  if constexpr (sizeof(wchar_t) == 2) {
    const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from));
    texto::store_16(to, _mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
  } else {
    for (int n = 0; n < 8; ++n) to[n] = texto::unit_of(from[n]);
  }
}
#endif

/// The first unit of [at, end) that is not plain, or end.
inline const char* skip_plain(const char* at, const char* end) noexcept {
#ifdef KESTA_X64
  for (; end - at >= 16; at += 16) {
    if (const std::uint32_t mask = marked(texto::load_16(at))) return at + std::countr_zero(mask);
  }
#endif
  while (at != end && is_plain(*at)) ++at;
  return at;
}
template <class Unit>
inline const Unit* skip_plain(const Unit* at, const Unit* end) noexcept {
#ifdef KESTA_X64
  if constexpr (texto::unit_16<Unit>) {
    const __m128i quote = _mm_set1_epi16('"'), backslash = _mm_set1_epi16('\\'), zero = _mm_setzero_si128();
    const __m128i last_control = _mm_set1_epi16(31), top = _mm_set1_epi16(static_cast<short>(0xF800)),
                  surrogate = _mm_set1_epi16(static_cast<short>(0xD800));
    const auto hits = [=](__m128i units) {
      const __m128i controls = _mm_cmpeq_epi16(_mm_subs_epu16(units, last_control), zero);
      const __m128i marks = _mm_or_si128(_mm_cmpeq_epi16(units, quote), _mm_cmpeq_epi16(units, backslash));
      const __m128i halves = _mm_cmpeq_epi16(_mm_and_si128(units, top), surrogate);
      return _mm_or_si128(_mm_or_si128(controls, marks), halves);
    };
    if (find_in_eights(at, end, hits)) return at;
  }
#endif
  while (at != end && is_plain(*at)) ++at;
  return at;
}

/// Writes ASCII as units, in steps of 16 or 8, the last of which overlaps the one before it.
inline void widen(wchar_t* to, const char* from, std::size_t count) noexcept {
#ifdef KESTA_X64
  if (count >= 16) {
    for (std::size_t at = 0; at + 16 < count; at += 16) widen_16(to + at, from + at);
    return widen_16(to + count - 16, from + count - 16);
  }
  if (count >= 8) {
    widen_8(to, from);
    return widen_8(to + count - 8, from + count - 8);
  }
#endif
  for (std::size_t at = 0; at < count; ++at) to[at] = texto::unit_of(from[at]);
}

// --- the others

/// Why a string was not read on.
enum class string_end {
  quote,   // it is complete
  cut,     // the text ends inside it, perhaps inside an escape or a character, which is left
  wrong,   // a unit that cannot stand there
  broken,  // bytes that are not UTF-8, of which this is the first
};

constexpr auto meanings_of_escapes = [] {
  std::array<wchar_t, 128> of{};
  for (const wchar_t letter : escape_letters)
    of[static_cast<std::size_t>(letter)] = meaning_of_escape(letter);
  return of;
}();

/// One escape, at whose backslash `at` is; `quote` when it is taken.
template <class Unit>
string_end take_escape(const Unit*& at, const Unit* end, unit_buffer& out) {
  if (end - at < 2) return string_end::cut;
  const std::uint32_t letter = static_cast<std::make_unsigned_t<Unit>>(at[1]);
  if (letter != 'u') {
    const wchar_t meant = letter < meanings_of_escapes.size() ? meanings_of_escapes[letter] : L'\0';
    at += meant ? 2 : 1;
    if (meant) out.put(meant);
    return meant ? string_end::quote : string_end::wrong;
  }
  int unit = 0;
  for (int n = 2; n < 6; ++n) {
    if (end - at == n) return string_end::cut;
    const int value = texto::hex_value(static_cast<wchar_t>(at[n]));
    if (value < 0) {
      at += n;
      return string_end::wrong;
    }
    unit = unit * 16 + value;
  }
  out.put(static_cast<wchar_t>(unit));
  at += 6;
  return string_end::quote;
}

/// One character beyond ASCII, or a control character, which is wrong; `quote` when it is taken.
inline string_end take_character(const char*& at, const char* end, unit_buffer& out) {
  const auto byte = [&at](int n) { return static_cast<std::uint32_t>(static_cast<unsigned char>(at[n])); };
  const std::uint32_t lead = byte(0);
  if (lead < 0x80) return string_end::wrong;
  if (lead < 0xC2 || lead > 0xF4) return string_end::broken;
  const int more = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
  // The second byte has narrower limits where the form could be overlong, a surrogate or beyond U+10FFFF.
  std::uint32_t lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  std::uint32_t highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  std::uint32_t point = lead & (0x3Fu >> more);
  for (int n = 1; n <= more; ++n) {
    if (end - at == n) return string_end::cut;
    if (byte(n) < lowest || byte(n) > highest) return string_end::broken;
    point = point << 6 | (byte(n) & 0x3F);
    lowest = 0x80;
    highest = 0xBF;
  }
  at += more + 1;
  if (point < 0x10000) {
    out.put(static_cast<wchar_t>(point));
  } else {
    out.put(static_cast<wchar_t>(0xD7C0 + (point >> 10)));
    out.put(static_cast<wchar_t>(0xDC00 + (point & 0x3FF)));
  }
  return string_end::quote;
}

/// The same of UTF-16: a surrogate pair.
template <class Unit>
string_end take_character(const Unit*& at, const Unit* end, unit_buffer& out) {
  if (!texto::is_high_surrogate(*at)) return string_end::wrong;
  if (end - at < 2) return string_end::cut;
  if (!texto::is_low_surrogate(at[1])) return string_end::wrong;
  out.put(static_cast<wchar_t>(at[0]));
  out.put(static_cast<wchar_t>(at[1]));
  at += 2;
  return string_end::quote;
}

/// The plain units at `at`, which moves behind them.
inline void take_plain(const char*& at, const char* end, unit_buffer& out) {
#ifdef KESTA_X64
  while (end - at >= 16) {
    wchar_t* const to = out.room(16);
    widen_16(to, at);
    const std::uint32_t mask = marked(texto::load_16(at));
    const int count = mask ? std::countr_zero(mask) : 16;
    at += count;
    out.advance(to + count);
    if (mask) return;
  }
#endif
  while (at != end && is_plain(*at)) out.put(texto::unit_of(*at++));
}
template <class Unit>
void take_plain(const Unit*& at, const Unit* end, unit_buffer& out) {
  const Unit* const last = skip_plain(at, end);
  const auto count = static_cast<std::size_t>(last - at);
  wchar_t* const to = out.room(count);
  if (count > 0) std::memcpy(to, at, count * sizeof(Unit));
  out.advance(to + count);
  at = last;
}

/// Appends what the string says from `at` on, up to its quotation mark, where `at` is then, or to what ends
/// it before.
template <class Unit>
string_end take_string(const Unit*& at, const Unit* end, unit_buffer& out) {
  for (;;) {
    take_plain(at, end, out);
    while (at != end && !is_plain(*at)) {
      if (*at == Unit('"')) return string_end::quote;
      const string_end outcome = *at == Unit('\\') ? take_escape(at, end, out) : take_character(at, end, out);
      if (outcome != string_end::quote) return outcome;
    }
    if (at == end) return string_end::cut;
  }
}

}  // namespace ruvo::serializer
