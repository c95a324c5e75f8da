// SPDX-License-Identifier: BSL-1.0

// Which encoding bytes are in, and their text with the count of what was no character.

#include "base/charset.hpp"

#include <ruvo/texto/charset.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "base/utf.hpp"

namespace ruvo::texto {

namespace {

constexpr wchar_t unknown_unit = 0xFFFD;
constexpr std::size_t most_places = 100;

struct byte_order_mark {
  charset what;
  std::string_view bytes;
};
constexpr byte_order_mark marks[] = {
    {charset::utf_8, "\xEF\xBB\xBF"}, {charset::utf_16_le, "\xFF\xFE"}, {charset::utf_16_be, "\xFE\xFF"}};

/// Where the parts that are no characters begin. Nowhere, if only their number is asked for.
class fault_places {
 public:
  fault_places(std::vector<std::size_t>* places, std::size_t offset) : places_(places), offset_(offset) {}

  void add(std::size_t at) {
    ++count_;
    if (places_ && places_->size() < most_places) places_->push_back(offset_ + at);
  }
  std::size_t count() const noexcept { return count_; }

 private:
  std::vector<std::size_t>* places_;
  std::size_t offset_;
  std::size_t count_ = 0;
};

bool is_ascii(std::string_view bytes) noexcept {
  const char* at = bytes.data();
  std::size_t left = bytes.size();
  for (std::uint64_t word; left >= sizeof word; at += sizeof word, left -= sizeof word) {
    std::memcpy(&word, at, sizeof word);
    if (word & 0x8080808080808080) return false;
  }
  return std::all_of(at, at + left, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

char16_t unit_at(std::string_view bytes, std::size_t at, charset as) noexcept {
  const auto first = static_cast<unsigned char>(bytes[at]),
             second = static_cast<unsigned char>(bytes[at + 1]);
  return static_cast<char16_t>(as == charset::utf_16_le ? second << 8 | first : first << 8 | second);
}

// --- guessing

/// Control characters that no text has.
bool is_binary(char16_t c) noexcept {
  return (c < 0x20 && (c < 8 || c > 13) && c != 0x1A && c != 0x1B) || c == 0x7F;
}

bool has_binary(std::string_view bytes) noexcept {
  return std::any_of(bytes.begin(), bytes.end(),
                     [](char c) { return is_binary(static_cast<unsigned char>(c)); });
}

/// How many bytes at the end may be the beginning of a character that is cut off.
std::size_t cut_off(std::string_view bytes) noexcept {
  for (std::size_t count = 1; count <= std::min<std::size_t>(3, bytes.size()); ++count) {
    const auto byte = static_cast<unsigned char>(bytes[bytes.size() - count]);
    if (byte < 0x80) return 0;
    if (byte < 0xC0) continue;
    const std::size_t size = byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
    return size > count ? count : 0;
  }
  return 0;
}

/// Whether all units are characters of a text.
bool is_utf_16(std::string_view bytes, charset as, bool is_whole) noexcept {
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    const char16_t unit = unit_at(bytes, at, as);
    if (is_binary(unit) || (unit >= 0x80 && unit < 0xA0) || unit >= 0xFFFE) return false;
    if (!is_surrogate(unit)) continue;
    if (!is_high_surrogate(unit)) return false;
    at += 2;
    if (at + 1 < bytes.size() ? !is_low_surrogate(unit_at(bytes, at, as)) : is_whole) return false;
  }
  return true;
}

charset_guess guess_with_nuls(std::string_view bytes, bool is_whole) noexcept {
  std::size_t nuls[2] = {};
  for (std::size_t at = 0; at < bytes.size(); ++at) nuls[at & 1] += bytes[at] == '\0';
  const charset as = nuls[1] >= nuls[0] ? charset::utf_16_le : charset::utf_16_be;
  const bool fits = (bytes.size() % 2 == 0 || !is_whole) && is_utf_16(bytes, as, is_whole);
  if (fits) return {as, certainty::likely};
  const std::size_t most = std::max(nuls[0], nuls[1]), least = std::min(nuls[0], nuls[1]);
  const bool seems_wide = most > 8 * least && most * 5 > bytes.size();
  return {seems_wide ? as : charset::utf_8, certainty::doubtful};
}

/// Counts the characters of several bytes, and the malformed parts between them.
charset_guess guess_malformed(std::string_view bytes) noexcept {
  std::size_t faults = 0, long_characters = 0, at = 0;
  for (;;) {
    const malformed_part found = find_malformed(bytes, at);
    const std::string_view good = bytes.substr(at, found.at == bytes.npos ? bytes.npos : found.at - at);
    long_characters += static_cast<std::size_t>(std::count_if(
        good.begin(), good.end(), [](char c) { return static_cast<unsigned char>(c) >= 0xC0; }));
    if (found.at == bytes.npos) break;
    ++faults;
    at = found.at + found.size;
  }
  if (long_characters > faults) return {charset::utf_8, certainty::doubtful};
  const bool fits = std::none_of(bytes.begin(), bytes.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return is_binary(byte) || (byte >= 0x80 && windows_1252_half[byte - 0x80] == 0);
  });
  return {charset::windows_1252, fits ? certainty::likely : certainty::doubtful};
}

// --- decoding

void append_utf_8_text(std::wstring& out, std::string_view bytes, fault_places& faults) {
  const std::size_t before = out.size();
  append_utf_16(out, bytes);
  if (is_ascii(bytes) || out.find(unknown_unit, before) == out.npos) return;
  for (std::size_t at = 0;;) {
    const malformed_part found = find_malformed(bytes, at);
    if (found.at == bytes.npos) return;
    faults.add(found.at);
    at = found.at + found.size;
  }
}

void append_utf_16_text(std::wstring& out, std::string_view bytes, charset as, fault_places& faults) {
  out.reserve(out.size() + (bytes.size() + 1) / 2);
  for (std::size_t at = 0; at < bytes.size(); at += 2) {
    const bool is_cut = at + 1 == bytes.size();
    const char16_t unit = is_cut ? u'\xDC00' : unit_at(bytes, at, as);
    if (!is_surrogate(unit)) {
      out.push_back(static_cast<wchar_t>(unit));
    } else if (is_high_surrogate(unit) && at + 3 < bytes.size() &&
               is_low_surrogate(unit_at(bytes, at + 2, as))) {
      out.push_back(static_cast<wchar_t>(unit));
      out.push_back(static_cast<wchar_t>(unit_at(bytes, at += 2, as)));
    } else {
      faults.add(at);
      out.push_back(unknown_unit);
    }
  }
}

void append_1252_text(std::wstring& out, std::string_view bytes, fault_places& faults) {
  const std::size_t before = out.size();
  out.resize(before + bytes.size());
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    const auto byte = static_cast<unsigned char>(bytes[at]);
    wchar_t c = static_cast<wchar_t>(byte < 0x80 ? byte : windows_1252_half[byte - 0x80]);
    if (byte >= 0x80 && c == 0) {
      faults.add(at);
      c = unknown_unit;
    }
    out[before + at] = c;
  }
}

void append_as(std::wstring& out, std::string_view bytes, charset as, fault_places& faults) {
  switch (as) {
    case charset::utf_8:
      return append_utf_8_text(out, bytes, faults);
    case charset::utf_16_le:
    case charset::utf_16_be:
      return append_utf_16_text(out, bytes, as, faults);
    case charset::windows_1252:
      return append_1252_text(out, bytes, faults);
  }
}

decoded_text decode_by(std::string_view bytes, const charset_guess& guess) {
  decoded_text made{.text = {}, .from = guess, .replaced = 0, .places = {}};
  fault_places faults(&made.places, guess.mark);
  append_as(made.text, bytes.substr(guess.mark), guess.what, faults);
  made.replaced = faults.count();
  return made;
}

}  // namespace

charset_guess guess_charset(std::string_view bytes, bool is_whole) noexcept {
  for (const byte_order_mark& each : marks)
    if (bytes.starts_with(each.bytes)) return {each.what, certainty::certain, each.bytes.size()};
  if (bytes.find('\0') != bytes.npos) return guess_with_nuls(bytes, is_whole);
  const certainty fitting = has_binary(bytes) ? certainty::doubtful : certainty::likely;
  if (is_ascii(bytes)) return {charset::utf_8, fitting == certainty::likely ? certainty::certain : fitting};
  const std::string_view whole = is_whole ? bytes : bytes.substr(0, bytes.size() - cut_off(bytes));
  if (find_malformed(whole, 0).at == whole.npos) return {charset::utf_8, fitting};
  return guess_malformed(whole);
}

decoded_text decode(std::string_view bytes) { return decode_by(bytes, guess_charset(bytes)); }

decoded_text decode(std::string_view bytes, charset as) {
  charset_guess asked{.what = as};
  for (const byte_order_mark& each : marks)
    if (each.what == as && bytes.starts_with(each.bytes)) asked.mark = each.bytes.size();
  return decode_by(bytes, asked);
}

std::size_t append_decoded(std::wstring& out, std::string_view bytes, charset as) {
  fault_places faults(nullptr, 0);
  append_as(out, bytes, as, faults);
  return faults.count();
}

std::wstring_view name_of(charset what) noexcept {
  switch (what) {
    case charset::utf_8:
      return L"UTF-8";
    case charset::utf_16_le:
      return L"UTF-16LE";
    case charset::utf_16_be:
      return L"UTF-16BE";
    case charset::windows_1252:
      break;
  }
  return L"windows-1252";
}

}  // namespace ruvo::texto
