// SPDX-License-Identifier: BSL-1.0

// Bytes of any kind as text, and back without a difference.

#include "settings/text_encoding.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "base/charset.hpp"
#include "base/utf.hpp"
#include "system/code_page.hpp"

namespace ruvo::settings {

namespace {

constexpr std::string_view utf_8_mark = "\xEF\xBB\xBF", little_mark = "\xFF\xFE", big_mark = "\xFE\xFF";
constexpr char16_t first_escape = 0xDC80, last_escape = 0xDCFF;  // of bytes that are no UTF-8
constexpr wchar_t byte_order_mark = 0xFEFF;
constexpr std::size_t npos = std::wstring_view::npos;
constexpr std::size_t room_to_grow = 4096;  // so that the first change does not move all

constexpr char16_t unit_at(std::wstring_view text, std::size_t at) noexcept {
  return static_cast<char16_t>(text[at]);
}

constexpr char16_t number_of(char c) noexcept { return static_cast<unsigned char>(c); }

// --- one byte a character

/// Windows-1252, where the bytes that it leaves free are the control characters of the same number.
texto::upper_half full_windows_1252() {
  texto::upper_half made = texto::windows_1252_half;
  for (std::size_t n = 0; n < made.size(); ++n)
    if (!made[n]) made[n] = static_cast<char16_t>(128 + n);
  return made;
}

/// The system's own page, if each byte is a character of its own.
texto::upper_half make_ansi() {
  constexpr unsigned int system_page = 0;
  constexpr char16_t replacement = 0xFFFD;
  texto::upper_half made{};
  for (std::size_t n = 0; n < made.size(); ++n) {
    const char byte = static_cast<char>(128 + n);
    const std::wstring text = platform::from_code_page({&byte, 1}, system_page);
    const char16_t unit = text.size() == 1 ? unit_at(text, 0) : replacement;
    const bool is_taken = std::find(made.begin(), made.end(), unit) != made.end();
    if (unit < 128 || unit == replacement || texto::is_surrogate(unit) || is_taken)
      return full_windows_1252();
    made[n] = unit;
  }
  return made;
}

const texto::upper_half& ansi_half() {
  static const texto::upper_half made = make_ansi();
  return made;
}

/// The byte, or -1.
int ansi_byte(char16_t unit) noexcept {
  if (unit < 128) return unit;
  const texto::upper_half& all = ansi_half();
  const auto* const found = std::find(all.data(), all.data() + all.size(), unit);
  return found == all.data() + all.size() ? -1 : static_cast<int>(128 + (found - all.data()));
}

// --- UTF-8 in which some bytes are none

/// How many bytes the character at the start has; 0 where there is none.
std::size_t character_bytes(std::string_view text) {
  const char16_t first = number_of(text[0]);
  const std::size_t count = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  const std::string_view part = text.substr(0, count);
  return count == 1 || texto::to_utf_8(texto::to_utf_16(part)) == part ? part.size() : 0;
}

std::wstring from_damaged(std::string_view bytes) {
  std::wstring out;
  while (!bytes.empty()) {
    const std::size_t count = character_bytes(bytes);
    if (count)
      texto::append_utf_16(out, bytes.substr(0, count));
    else
      out.push_back(static_cast<wchar_t>(first_escape - 0x80 + number_of(bytes[0])));
    bytes.remove_prefix(std::max<std::size_t>(count, 1));
  }
  return out;
}

std::string to_damaged(std::wstring_view text) {
  std::string out;
  std::size_t from = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char16_t unit = unit_at(text, at);
    const bool is_escape = unit >= first_escape && unit <= last_escape;
    if (!is_escape || (at > 0 && texto::is_high_surrogate(text[at - 1]))) continue;
    texto::append_utf_8(out, text.substr(from, at - from));
    out.push_back(static_cast<char>(unit - first_escape + 0x80));
    from = at + 1;
  }
  texto::append_utf_8(out, text.substr(from));
  return out;
}

// --- UTF-16

std::wstring from_utf_16(std::string_view bytes, bool is_big) {
  std::wstring out(bytes.size() / 2, L'\0');
  for (std::size_t n = 0; n < out.size(); ++n) {
    const char16_t first = number_of(bytes[2 * n]), second = number_of(bytes[2 * n + 1]);
    out[n] = static_cast<wchar_t>(is_big ? first << 8 | second : second << 8 | first);
  }
  return out;
}

void append_utf_16_bytes(std::string& out, std::wstring_view text, bool is_big) {
  out.reserve(out.size() + 2 * text.size() + 1);
  for (std::size_t n = 0; n < text.size(); ++n) {
    const char low = static_cast<char>(unit_at(text, n) & 0xFF),
               high = static_cast<char>(unit_at(text, n) >> 8);
    out.push_back(is_big ? high : low);
    out.push_back(is_big ? low : high);
  }
}

}  // namespace

std::wstring text_encoding::decode(std::string_view bytes, text_encoding& how) {
  how = {};
  const bool is_big = bytes.starts_with(big_mark);
  if (is_big || bytes.starts_with(little_mark)) {
    how.kind = is_big ? ini_encoding::utf_16_be : ini_encoding::utf_16_le;
    how.has_mark = true;
    bytes.remove_prefix(little_mark.size());
    if (bytes.size() % 2 != 0) how.tail_ = bytes.back();
    return from_utf_16(bytes, is_big);
  }
  how.has_mark = bytes.starts_with(utf_8_mark);
  if (how.has_mark) bytes.remove_prefix(utf_8_mark.size());
  std::wstring out;
  if (texto::find_malformed(bytes, 0).at == npos) {
    out.reserve(bytes.size() + room_to_grow);
    texto::append_utf_16(out, bytes);
    return out;
  }
  if (how.has_mark) {
    how.is_damaged_ = true;
    return from_damaged(bytes);
  }
  how.kind = ini_encoding::ansi;
  texto::decode_single_bytes(out, bytes, ansi_half());
  return out;
}

bool text_encoding::encode(std::string& out, const std::vector<std::wstring_view>& parts) const {
  std::size_t units = 0;
  for (const std::wstring_view each : parts) units += each.size();
  out.clear();
  out.reserve(units + units / 8 + room_to_grow);
  if (kind == ini_encoding::ansi) return encode_ansi(out, parts);
  if (kind == ini_encoding::utf_8) {
    // Without a mark before it, what looks like one would be taken for it.
    if (has_mark || (!parts.empty() && parts[0].starts_with(byte_order_mark))) out += utf_8_mark;
    return std::all_of(parts.begin(), parts.end(),
                       [&](std::wstring_view each) { return encode_utf_8(out, each); });
  }
  const bool is_big = kind == ini_encoding::utf_16_be;
  out += is_big ? big_mark : little_mark;
  for (const std::wstring_view each : parts) append_utf_16_bytes(out, each, is_big);
  out += tail_;
  return true;
}

/// False where half a surrogate pair is left alone.
bool text_encoding::encode_utf_8(std::string& out, std::wstring_view part) const {
  if (is_damaged_) {
    out += to_damaged(part);
    return true;
  }
  const std::size_t begin = out.size();
  texto::append_utf_8(out, part);
  const bool is_ascii = out.size() - begin == part.size();
  return is_ascii || unwritable(part) == npos;
}

bool text_encoding::encode_ansi(std::string& out, const std::vector<std::wstring_view>& parts) const {
  bool is_ascii = true;
  for (const std::wstring_view part : parts) {
    for (std::size_t n = 0; n < part.size(); ++n) {
      is_ascii = is_ascii && unit_at(part, n) < 128;
      out.push_back(static_cast<char>(ansi_byte(unit_at(part, n))));
    }
  }
  if (is_ascii) return true;
  text_encoding seen;
  decode(out, seen);
  return seen.kind == kind;
}

std::size_t text_encoding::unwritable(std::wstring_view text) const noexcept {
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char16_t unit = unit_at(text, at);
    if (kind == ini_encoding::ansi) {
      if (ansi_byte(unit) < 0) return at;
      continue;
    }
    if (!texto::is_surrogate(unit)) continue;
    const bool is_pair =
        texto::is_high_surrogate(unit) && at + 1 < text.size() && texto::is_low_surrogate(text[at + 1]);
    if (!is_pair) return at;
    ++at;
  }
  return npos;
}

std::wstring code_point_name(std::wstring_view text, std::size_t at) {
  constexpr wchar_t digits[] = L"0123456789ABCDEF";
  unsigned int code = unit_at(text, at);
  if (texto::is_high_surrogate(text[at]) && at + 1 < text.size() && texto::is_low_surrogate(text[at + 1]))
    code = 0x10000 + ((code & 0x3FF) << 10 | (unit_at(text, at + 1) & 0x3FFu));
  std::wstring out = L"U+";
  for (int shift = code > 0xFFFFF ? 20 : code > 0xFFFF ? 16 : 12; shift >= 0; shift -= 4)
    out.push_back(digits[code >> shift & 0xF]);
  return out;
}

}  // namespace ruvo::settings
