// SPDX-License-Identifier: BSL-1.0
#include "system/code_page.hpp"

#include <cstddef>

#include "base/utf.hpp"

namespace ruvo::platform {

namespace {

constexpr unsigned int ansi = 0, dos = 850, latin = 1252, utf_8 = 65001;

/// What code page 850 has from 0x80 on.
constexpr std::wstring_view dos_extras =
    L"ÇüéâäàåçêëèïîìÄÅÉæÆôöòûùÿÖÜø£Ø×ƒáíóúñÑªº¿®¬½¼¡«»░▒▓│┤ÁÂÀ©╣║╗╝¢¥┐└┴┬├─┼ãÃ╚╔╩╦╠═╬¤ðÐÊËÈıÍÎÏ┘┌█▄¦Ì▀ÓßÔÒõÕµ"
    L"þÞÚÛÙýÝ¯´\u00AD±"
    L"‗¾¶§÷¸°¨·¹³²■\u00A0";
static_assert(dos_extras.size() == 128);

/// What code page 1252 has from 0x80 to 0x9F; 0 where it has nothing.
constexpr char16_t latin_extras[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                       0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                       0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                       0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

char to_latin(char16_t unit) {
  if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF)) return static_cast<char>(unit);
  for (int i = 0; i < 32; ++i)
    if (latin_extras[i] == unit) return static_cast<char>(0x80 + i);
  return '?';
}

wchar_t from_latin(unsigned char byte) {
  const bool is_extra = byte >= 0x80 && byte < 0xA0 && latin_extras[byte - 0x80];
  return static_cast<wchar_t>(is_extra ? latin_extras[byte - 0x80] : byte);
}

}  // namespace

std::wstring from_code_page(std::string_view text, unsigned int page) {
  if (page == utf_8) return texto::to_utf_16(text);
  std::wstring out;
  if (page != ansi && page != latin && page != dos) return out;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    out.push_back(page == dos && byte >= 0x80 ? dos_extras[std::size_t{byte} - 0x80] : from_latin(byte));
  }
  return out;
}

std::string to_code_page(std::wstring_view text, unsigned int page) {
  if (page == utf_8) return texto::to_utf_8(text);
  std::string out;
  if (page != ansi && page != latin) return out;
  for (const wchar_t c : text) out.push_back(to_latin(static_cast<char16_t>(c)));
  return out;
}

}  // namespace ruvo::platform
