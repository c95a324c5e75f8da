// SPDX-License-Identifier: BSL-1.0

// Encodings of one byte a character, and UTF-8, by their names.

#include "base/charset.hpp"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

#include "base/utf.hpp"
#include "base/wire/tokens.hpp"

namespace ruvo::texto {

namespace {

constexpr upper_half make_latin_1() {
  upper_half made{};
  for (std::size_t n = 0; n < made.size(); ++n) made[n] = static_cast<char16_t>(128 + n);
  return made;
}
constexpr upper_half make_latin_9() {
  upper_half made = make_latin_1();
  made[0xA4 - 128] = 0x20AC;
  made[0xA6 - 128] = 0x0160;
  made[0xA8 - 128] = 0x0161;
  made[0xB4 - 128] = 0x017D;
  made[0xB8 - 128] = 0x017E;
  made[0xBC - 128] = 0x0152;
  made[0xBD - 128] = 0x0153;
  made[0xBE - 128] = 0x0178;
  return made;
}
constexpr upper_half make_windows_1252() {
  constexpr char16_t first[] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};
  upper_half made = make_latin_1();
  std::copy(std::begin(first), std::end(first), made.begin());
  return made;
}

/// Without a table it is UTF-8.
constexpr struct {
  std::wstring_view name;
  const upper_half* upper;
} charset_names[] = {{L"utf-8", nullptr},
                     {L"utf8", nullptr},
                     {L"us-ascii", &ascii_half},
                     {L"ascii", &ascii_half},
                     {L"iso-8859-1", &windows_1252_half},
                     {L"iso_8859-1", &windows_1252_half},
                     {L"latin1", &windows_1252_half},
                     {L"windows-1252", &windows_1252_half},
                     {L"cp1252", &windows_1252_half},
                     {L"iso-8859-15", &latin_9_half},
                     {L"iso_8859-15", &latin_9_half},
                     {L"latin-9", &latin_9_half},
                     {L"latin9", &latin_9_half}};

}  // namespace

constinit const upper_half ascii_half{}, latin_1_half = make_latin_1(), latin_9_half = make_latin_9(),
                                         windows_1252_half = make_windows_1252();

std::size_t decode_single_bytes(std::wstring& out, std::string_view bytes, const upper_half& upper) {
  out.resize(bytes.size());
  for (std::size_t n = 0; n < bytes.size(); ++n) {
    const auto byte = static_cast<unsigned char>(bytes[n]);
    out[n] = static_cast<wchar_t>(byte < 128 ? byte : upper[byte - 128]);
    if (byte < 128 || out[n] != 0) continue;
    out.resize(n);
    return n;
  }
  return bytes.size();
}

charset_result decode_charset(std::wstring& out, std::string_view bytes, std::wstring_view name) {
  constexpr wchar_t replacement = 0xFFFD;
  const auto* const known = std::find_if(std::begin(charset_names), std::end(charset_names),
                                         [&](const auto& row) { return wire::is_same_name(name, row.name); });
  if (known == std::end(charset_names)) return charset_result::unknown;
  out.clear();
  if (!known->upper) {
    append_utf_16(out, bytes);
    const bool may_be_bad = out.find(replacement) != out.npos;
    return may_be_bad && to_utf_8(std::wstring_view(out)) != bytes ? charset_result::malformed
                                                                   : charset_result::good;
  }
  charset_result result = charset_result::good;
  std::wstring part;
  for (;;) {
    bytes.remove_prefix(decode_single_bytes(part, bytes, *known->upper));
    out += part;
    if (bytes.empty()) return result;
    out.push_back(replacement);
    bytes.remove_prefix(1);
    result = charset_result::malformed;
  }
}

}  // namespace ruvo::texto
