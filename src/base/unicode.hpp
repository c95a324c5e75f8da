// SPDX-License-Identifier: BSL-1.0
#pragma once

// Letters, signs and blanks beyond ASCII. Letters are those of Latin, Greek and Cyrillic; capitals and small
// letters are distinguished where they alternate or lie in blocks of their own.

#include <cstddef>
#include <string_view>

#include "base/ascii.hpp"

namespace ruvo::texto {

struct unit_range {
  char16_t first, last;
};

constexpr unit_range wide_blanks[] = {{0xA0, 0xA0},     {0x1680, 0x1680}, {0x2000, 0x200A}, {0x2028, 0x2029},
                                      {0x202F, 0x202F}, {0x205F, 0x205F}, {0x3000, 0x3000}};
constexpr unit_range wide_letters[] = {
    {0xAA, 0xAA},   {0xB5, 0xB5},   {0xBA, 0xBA},   {0xC0, 0xD6},   {0xD8, 0xF6},   {0xF8, 0x24F},
    {0x370, 0x373}, {0x376, 0x377}, {0x37B, 0x37D}, {0x37F, 0x37F}, {0x386, 0x386}, {0x388, 0x38A},
    {0x38C, 0x38C}, {0x38E, 0x3A1}, {0x3A3, 0x3F5}, {0x3F7, 0x481}, {0x48A, 0x52F}, {0x1E00, 0x1EFF}};
/// With no letters and no blanks among them.
constexpr unit_range wide_punctuation[] = {{0xA1, 0xA9}, {0xAB, 0xB4}, {0xB6, 0xB9},     {0xBB, 0xBF},
                                           {0xD7, 0xD7}, {0xF7, 0xF7}, {0x2010, 0x2027}, {0x2030, 0x205E}};
constexpr unit_range wide_capitals[] = {{0xC0, 0xD6},   {0xD8, 0xDE},   {0x178, 0x178}, {0x386, 0x386},
                                        {0x388, 0x38A}, {0x38C, 0x38C}, {0x38E, 0x38F}, {0x391, 0x3A1},
                                        {0x3A3, 0x3AB}, {0x400, 0x42F}, {0x4C0, 0x4C0}, {0x1E9E, 0x1E9E}};
constexpr unit_range wide_small_letters[] = {
    {0xDF, 0xF6},   {0xF8, 0xFF},   {0x138, 0x138}, {0x149, 0x149},   {0x17F, 0x17F},  {0x390, 0x390},
    {0x3AC, 0x3CE}, {0x430, 0x45F}, {0x4CF, 0x4CF}, {0x1E96, 0x1E9D}, {0x1E9F, 0x1E9F}};
/// Where each capital is followed by its small letter.
constexpr unit_range wide_pairs[] = {{0x100, 0x137},   {0x139, 0x148},  {0x14A, 0x177}, {0x179, 0x17E},
                                     {0x460, 0x481},   {0x48A, 0x4BF},  {0x4C1, 0x4CE}, {0x4D0, 0x52F},
                                     {0x1E00, 0x1E95}, {0x1EA0, 0x1EFF}};

template <std::size_t Size>
constexpr bool is_in(const unit_range (&ranges)[Size], wchar_t c) noexcept {
  const auto unit = static_cast<char16_t>(c);
  for (const auto& [first, last] : ranges)
    if (unit <= last) return unit >= first;
  return false;
}

constexpr bool is_wide(wchar_t c) noexcept { return static_cast<char16_t>(c) >= 128; }

/// What separates words, in ASCII or beyond: no-break spaces too.
constexpr bool is_word_blank(wchar_t c) noexcept { return is_wide(c) ? is_in(wide_blanks, c) : is_space(c); }
/// Letters and digits.
constexpr bool is_word_letter(wchar_t c) noexcept {
  return is_wide(c) ? is_in(wide_letters, c) : is_alnum(c);
}

/// The text without the blanks at its ends, those beyond ASCII too.
constexpr std::wstring_view without_blanks(std::wstring_view text) noexcept {
  while (!text.empty() && is_word_blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_word_blank(text.back())) text.remove_suffix(1);
  return text;
}

}  // namespace ruvo::texto
