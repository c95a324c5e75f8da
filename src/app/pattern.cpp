#include "app/pattern.hpp"

#include <algorithm>

#include "texto/ascii.hpp"

namespace ruvo {

namespace {

constexpr std::size_t widest = 256;

struct conversion {
  bool left = false, zeros = false, prefixed = false;
  std::size_t width = 0;
  wchar_t kind = 0;
};

/// Reads what follows a "%" and moves `at` behind it; a kind of 0 means that it is none.
conversion read_conversion(std::wstring_view pattern, std::size_t& at) {
  constexpr std::wstring_view flags = L"-0+ #";
  constexpr std::wstring_view lengths = L"hlLjztI";
  conversion out;
  for (; at < pattern.size() && flags.find(pattern[at]) != flags.npos; ++at) {
    out.left |= pattern[at] == L'-';
    out.zeros |= pattern[at] == L'0';
    out.prefixed |= pattern[at] == L'#';
  }
  for (; at < pattern.size() && texto::is_digit(pattern[at]); ++at)
    out.width = std::min(out.width * 10 + static_cast<std::size_t>(pattern[at] - L'0'), widest);
  while (at < pattern.size() && lengths.find(pattern[at]) != lengths.npos) ++at;
  if (at < pattern.size() && std::wstring_view(L"diuoxXc").find(pattern[at]) != std::wstring_view::npos)
    out.kind = pattern[at++];
  return out;
}

std::wstring digits(unsigned long number, wchar_t kind) {
  const unsigned long base = kind == L'o' ? 8 : kind == L'x' || kind == L'X' ? 16 : 10;
  const wchar_t* const letters = kind == L'x' ? L"0123456789abcdef" : L"0123456789ABCDEF";
  std::wstring out;
  do {
    out.insert(out.begin(), letters[number % base]);
    number /= base;
  } while (number);
  return out;
}

void append_number(std::wstring& out, const conversion& how, unsigned long number) {
  std::wstring head;
  std::wstring body =
      how.kind == L'c' ? std::wstring(1, static_cast<wchar_t>(number)) : digits(number, how.kind);
  if (how.prefixed && number && (how.kind == L'x' || how.kind == L'X')) (head = L"0") += how.kind;
  const std::size_t size = head.size() + body.size();
  const std::size_t fill = how.width > size ? how.width - size : 0;
  if (!how.left && !how.zeros) out.append(fill, L' ');
  out += head;
  if (!how.left && how.zeros) out.append(fill, L'0');
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
