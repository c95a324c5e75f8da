// SPDX-License-Identifier: BSL-1.0
#pragma once

// Drawing from tables: texts divided by commas at compile time, and chosen by weights.

#include <ruvo/rdn.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ruvo::rdn {

constexpr std::size_t parts_in(std::wstring_view text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), L',')) + 1;
}

/// What stands between the commas.
template <std::size_t Count>
constexpr std::array<std::wstring_view, Count> parts_of(std::wstring_view text) {
  std::array<std::wstring_view, Count> out;
  for (std::wstring_view& each : out) {
    each = text.substr(0, text.find(L','));
    text.remove_prefix(std::min(each.size() + 1, text.size()));
  }
  return out;
}

/// Sums of weights, each that of a row and of all before it.
template <std::size_t Count>
using weight_sums = std::array<std::uint32_t, Count>;

/// Weights that fall with the rank, which counts from 1: `first` / (rank + `offset`).
template <std::size_t Count>
constexpr weight_sums<Count> sums_by_rank(std::uint32_t first, std::uint32_t offset) {
  weight_sums<Count> out{};
  std::uint32_t sum = 0, rank = 0;
  for (std::uint32_t& each : out) each = sum += first / (++rank + offset);
  return out;
}

/// The index of a row.
template <std::size_t Count>
std::size_t draw_index(generator& from, const weight_sums<Count>& sums) {
  const auto chosen = static_cast<std::uint32_t>(from.below(sums.back()));
  return static_cast<std::size_t>(std::upper_bound(sums.begin(), sums.end(), chosen) - sums.begin());
}

/// One of the rows, all equally likely.
template <class Row, std::size_t Count>
const Row& draw_row(generator& from, const Row (&rows)[Count]) {
  return rows[from.below(Count)];
}
template <std::size_t Count>
std::wstring_view draw_row(generator& from, const std::array<std::wstring_view, Count>& rows) {
  return rows[from.below(Count)];
}

inline wchar_t draw_digit(generator& from) { return static_cast<wchar_t>(L'0' + from.below(10)); }
inline void append_digits(std::wstring& out, generator& from, std::size_t count) {
  for (; count > 0; --count) out += draw_digit(from);
}

/// Days since 1970-01-01, and back, in the default mode.
long long days_of(const ruvo::date& day);
ruvo::date date_of(long long days);

/// A mail address of the name, in small letters without accents.
std::wstring mail_of(generator& from, std::wstring_view first, std::wstring_view second);

}  // namespace ruvo::rdn
