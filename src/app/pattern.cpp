// SPDX-License-Identifier: BSL-1.0

// Numbers through a pattern of printf, for identifiers and elapsed times.

#include "app/pattern.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "base/ascii.hpp"

namespace ruvo {

namespace {

constexpr std::size_t widest = 256;

struct conversion {
  bool left = false, zeros = false, prefixed = false;
  wchar_t plus = 0;  // what stands for the sign of what is not negative
  std::size_t width = 0;
  std::optional<std::size_t> digits;  // at least so many
  wchar_t kind = 0;
};

std::size_t read_size(std::wstring_view pattern, std::size_t& at) {
  std::size_t out = 0;
  for (; at < pattern.size() && texto::is_digit(pattern[at]); ++at)
    out = std::min(out * 10 + static_cast<std::size_t>(pattern[at] - L'0'), widest);
  return out;
}

/// Reads what follows a "%" and moves `at` behind it; a kind of 0 means that it is none.
conversion read_conversion(std::wstring_view pattern, std::size_t& at) {
  constexpr std::wstring_view flags = L"-0+ #";
  constexpr std::wstring_view lengths = L"hlLjztI";
  conversion out;
  for (; at < pattern.size() && flags.find(pattern[at]) != flags.npos; ++at) {
    out.left |= pattern[at] == L'-';
    out.zeros |= pattern[at] == L'0';
    out.prefixed |= pattern[at] == L'#';
    if (pattern[at] == L'+' || (pattern[at] == L' ' && !out.plus)) out.plus = pattern[at];
  }
  out.width = read_size(pattern, at);
  if (at < pattern.size() && pattern[at] == L'.') out.digits = read_size(pattern, ++at);
  while (at < pattern.size() && lengths.find(pattern[at]) != lengths.npos) ++at;
  if (at < pattern.size() && std::wstring_view(L"diuoxXc").find(pattern[at]) != std::wstring_view::npos)
    out.kind = pattern[at++];
  return out;
}

std::wstring digits(unsigned long number, const conversion& how) {
  const unsigned long base = how.kind == L'o' ? 8 : how.kind == L'x' || how.kind == L'X' ? 16 : 10;
  const wchar_t* const letters = how.kind == L'x' ? L"0123456789abcdef" : L"0123456789ABCDEF";
  std::wstring out;
  for (; number; number /= base) out.insert(out.begin(), letters[number % base]);
  const std::size_t least = how.digits.value_or(1);
  if (out.size() < least) out.insert(0, least - out.size(), L'0');
  if (how.prefixed && how.kind == L'o' && !out.starts_with(L'0')) out.insert(out.begin(), L'0');
  return out;
}

/// What stands before the digits. A number with a sign loses it.
std::wstring head_of(const conversion& how, unsigned long& number) {
  if (how.kind == L'd' || how.kind == L'i') {
    const long long value = static_cast<std::int32_t>(static_cast<std::uint32_t>(number));
    number = static_cast<unsigned long>(value < 0 ? -value : value);
    if (value < 0) return L"-";
    return how.plus ? std::wstring(1, how.plus) : std::wstring();
  }
  const bool is_hexadecimal = how.kind == L'x' || how.kind == L'X';
  return how.prefixed && number && is_hexadecimal ? std::wstring(L"0") + how.kind : std::wstring();
}

void append_number(std::wstring& out, const conversion& how, unsigned long number) {
  const std::wstring head = head_of(how, number);
  const std::wstring body =
      how.kind == L'c' ? std::wstring(1, static_cast<wchar_t>(number)) : digits(number, how);
  const std::size_t size = head.size() + body.size();
  const std::size_t fill = how.width > size ? how.width - size : 0;
  const bool zeros = how.zeros && !how.digits;
  if (!how.left && !zeros) out.append(fill, L' ');
  out += head;
  if (!how.left && zeros) out.append(fill, L'0');
  out += body;
  if (how.left) out.append(fill, L' ');
}

}  // namespace

void append_pattern(std::wstring& out, std::wstring_view pattern,
                    std::initializer_list<unsigned long> numbers) {
  auto next = numbers.begin();
  for (std::size_t at = 0; at < pattern.size();) {
    const std::size_t start = at++;
    if (pattern[start] != L'%') {
      out += pattern[start];
    } else if (at < pattern.size() && pattern[at] == L'%') {
      out += pattern[at++];
    } else {
      const conversion how = read_conversion(pattern, at);
      if (how.kind && next != numbers.end())
        append_number(out, how, *next++);
      else
        out += pattern.substr(start, at - start);
    }
  }
}

std::wstring print_guid(const platform::guid& made, std::wstring_view pattern,
                        std::wstring_view byte_pattern) {
  std::wstring out;
  append_pattern(out, pattern, {made.data1, made.data2, made.data3});
  for (const unsigned char byte : made.data4) append_pattern(out, byte_pattern, {byte});
  return out;
}

}  // namespace ruvo
