// SPDX-License-Identifier: BSL-1.0

// Numbers for people to read: separators, sizes of files, Roman numerals.

#include <ruvo/texto.hpp>

#include <algorithm>
#include <cmath>
#include <string_view>

#include "base/ascii.hpp"
#include "base/numbers.hpp"
#include "base/services.hpp"
#include "texto/amounts.hpp"

namespace ruvo::texto {

namespace {

constexpr struct {
  unsigned int value;
  wchar_t symbol;
} roman[] = {{1000000, L'M'}, {500000, L'D'}, {100000, L'C'}, {50000, L'L'}, {10000, L'X'},
             {5000, L'V'},    {1000, L'M'},   {500, L'D'},    {100, L'C'},   {50, L'L'},
             {10, L'X'},      {5, L'V'},      {1, L'I'}};

}  // namespace

std::wstring punctuated(std::wstring_view plain) {
  const services::separators marks = services::of_this_thread();
  const auto first = std::find_if(plain.begin(), plain.end(), is_digit);  // none in "nan" and "inf"
  const auto point = std::find(first, plain.end(), L'.');
  auto at = first + (point - first) % 3;
  std::wstring out;
  out.reserve(plain.size() + static_cast<std::size_t>(point - first) / 3);
  out.assign(plain.begin(), at);
  for (; at != point; at += 3) {
    if (at != first) out.push_back(marks.thousands);
    out.append(at, at + 3);
  }
  if (point == plain.end()) return out;
  out.push_back(marks.decimal);
  out.append(point + 1, plain.end());
  return out;
}

std::wstring format(double value, short decimals) {
  if (std::isnan(value)) return L"nan";  // whatever its sign bit
  const int count = std::max<int>(decimals, 0);
  wchar_t text[most_number_units];
  if (const wchar_t* const end = print_fixed(text, value, count)) return punctuated({text, end});
  std::wstring plain;
  append_fixed(plain, value, count);
  return punctuated(plain);
}

std::wstring format(long value) {
  wchar_t text[most_number_units];
  return punctuated({text, print_integer(text, value)});
}

int calculate_length_number(int number) {
  int length = 1;
  for (; number <= -10 || number >= 10; number /= 10) ++length;
  return length;
}

std::wstring fill_number(int width, int number, wchar_t fill) {
  wchar_t text[most_number_units];
  const std::wstring_view digits(text, print_integer(text, number));
  const auto field = static_cast<std::size_t>(std::max(width, calculate_length_number(number)));
  std::wstring out(field - std::min(field, digits.size()), fill);
  out.append(digits);
  return out;
}

std::wstring format_file_size(unsigned long long bytes) {
  constexpr std::wstring_view prefixes = L"kMGTPE";
  std::size_t steps = 0;
  while (steps < prefixes.size() && bytes >> 10 * (steps + 1) != 0) ++steps;
  std::wstring out;
  append_fixed(out, static_cast<double>(bytes) / static_cast<double>(1ULL << 10 * steps), 3);
  out.push_back(L' ');
  if (steps > 0) out.push_back(prefixes[steps - 1]);
  out.push_back(L'b');
  return out;
}

std::wstring to_roman(unsigned int number) {
  if (number >= roman[0].value) return unsupported_number;
  std::wstring out;
  for (const auto& [value, symbol] : roman) {
    out.append(number / value, symbol);
    number %= value;
  }
  return out;
}

}  // namespace ruvo::texto
