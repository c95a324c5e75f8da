#include "texto/numbers.hpp"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "texto/ascii.hpp"

namespace ruvo::texto {

namespace {

constexpr std::size_t max_digits = 20;  // of an unsigned 64-bit number

constexpr char pairs[] =
    "00010203040506070809101112131415161718192021222324252627282930313233343536373839404142434445464748495051"
    "525"
    "354555657585960616263646566676869707172737475767778798081828384858687888990919293949596979899";

/// Writes `value` so that it ends before `end`; returns its first character.
wchar_t* write_backwards(wchar_t* end, std::uint64_t value) {
  while (value >= 100) {
    const std::uint64_t rest = value / 100;
    const char* pair = pairs + 2 * (value - rest * 100);
    *--end = static_cast<wchar_t>(pair[1]);
    *--end = static_cast<wchar_t>(pair[0]);
    value = rest;
  }
  if (value >= 10) {
    *--end = static_cast<wchar_t>(pairs[2 * value + 1]);
    value /= 10;
    *--end = static_cast<wchar_t>(L'0' + value);
    return end;
  }
  *--end = static_cast<wchar_t>(L'0' + value);
  return end;
}

void append_narrow(std::wstring& out, const char* first, const char* last) {
  for (; first != last; ++first) out.push_back(static_cast<wchar_t>(static_cast<unsigned char>(*first)));
}

/// The general case: any magnitude, NaN and infinities.
void append_fixed_slow(std::wstring& out, double value) {
  char text[360];  // sign, 309 digits, point, six digits
  const auto [end, error] = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 6);
  append_narrow(out, text, error == std::errc() ? end : text);
}

struct fixed_parts {
  std::uint64_t whole;
  std::uint32_t millionths;
};

/// Splits `magnitude` exactly into its whole part and rounded millionths (ties to even). Possible when all
/// its bits fit into 64 bits on each side of the point; false otherwise.
bool split_fixed(double magnitude, fixed_parts& parts) {
  constexpr double smallest = 1.0 / 2048, largest = 9007199254740992.0;  // lowest bit at or above 2^-64, 2^53
  if (!(magnitude < largest) || (magnitude < smallest && magnitude != 0)) return false;
  parts.whole = static_cast<std::uint64_t>(magnitude);
  const double rest = magnitude - static_cast<double>(parts.whole);
  const auto bits = static_cast<std::uint64_t>(rest * 18446744073709551616.0);  // 2^64, exact
  const std::uint64_t low = (bits & 0xFFFFFFFF) * 1000000;
  const std::uint64_t high = (bits >> 32) * 1000000 + (low >> 32);
  parts.millionths = static_cast<std::uint32_t>(high >> 32);
  const std::uint64_t fraction = (high << 32) | (low & 0xFFFFFFFF), half = std::uint64_t{1} << 63;
  if (fraction > half || (fraction == half && parts.millionths % 2 == 1)) ++parts.millionths;
  if (parts.millionths == 1000000) {
    parts.millionths = 0;
    ++parts.whole;
  }
  return true;
}

/// The longest prefix that is a number in fixed notation, as narrow text.
struct narrow_number {
  explicit narrow_number(std::wstring_view text) {
    std::size_t at = 0;
    while (at < text.size() && is_space(text[at])) ++at;
    if (at < text.size() && (text[at] == L'+' || text[at] == L'-')) {
      if (text[at] == L'-') push('-');
      ++at;
    }
    bool point = false;
    for (; at < text.size(); ++at) {
      if (is_digit(text[at])) {
        has_digit = true;
      } else if (text[at] != L'.' || point) {
        break;
      } else {
        point = true;
      }
      push(static_cast<char>(text[at]));
    }
  }

  void push(char c) {
    if (size < sizeof small) {
      small[size++] = c;
      return;
    }
    if (large.empty()) large.assign(small, size);
    large.push_back(c);
  }
  const char* begin() const { return large.empty() ? small : large.data(); }
  const char* end() const { return large.empty() ? small + size : large.data() + large.size(); }

  char small[64];
  std::size_t size = 0;
  std::string large;
  bool has_digit = false;
};

}  // namespace

void append_unsigned(std::wstring& out, unsigned long long value) {
  wchar_t text[max_digits];
  wchar_t* const end = text + max_digits;
  wchar_t* const first = write_backwards(end, value);
  out.append(first, static_cast<std::size_t>(end - first));
}

void append_integer(std::wstring& out, long long value) {
  wchar_t text[max_digits + 1];
  wchar_t* const end = text + max_digits + 1;
  const auto magnitude =
      value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
  wchar_t* first = write_backwards(end, magnitude);
  if (value < 0) *--first = L'-';
  out.append(first, static_cast<std::size_t>(end - first));
}

void append_fixed(std::wstring& out, double value) {
  fixed_parts parts{};
  if (!split_fixed(std::fabs(value), parts)) return append_fixed_slow(out, value);
  wchar_t text[max_digits + 8];
  wchar_t* const end = text + sizeof text / sizeof *text;
  wchar_t* at = end;
  std::uint32_t rest = parts.millionths;
  for (int i = 0; i < 3; ++i) {
    const char* pair = pairs + 2 * (rest % 100);
    rest /= 100;
    *--at = static_cast<wchar_t>(pair[1]);
    *--at = static_cast<wchar_t>(pair[0]);
  }
  *--at = L'.';
  at = write_backwards(at, parts.whole);
  if (std::signbit(value)) *--at = L'-';
  out.append(at, static_cast<std::size_t>(end - at));
}

long long read_integer(std::wstring_view text) {
  std::size_t at = 0;
  while (at < text.size() && is_space(text[at])) ++at;
  const bool negative = at < text.size() && text[at] == L'-';
  if (at < text.size() && (negative || text[at] == L'+')) ++at;
  if (at == text.size() || !is_digit(text[at])) throw std::invalid_argument("invalid stoll argument");
  const std::uint64_t limit = std::uint64_t{1} << 63;
  std::uint64_t value = 0;
  for (; at < text.size() && is_digit(text[at]); ++at) {
    const auto digit = static_cast<std::uint64_t>(text[at] - L'0');
    if (value > (limit - digit) / 10) throw std::out_of_range("stoll argument out of range");
    value = value * 10 + digit;
  }
  if (value == limit && !negative) throw std::out_of_range("stoll argument out of range");
  return static_cast<long long>(negative ? 0 - value : value);
}

double read_double(std::wstring_view text) {
  const narrow_number number(text);
  if (!number.has_digit) throw std::invalid_argument("invalid stod argument");
  double value = 0;
  const auto [end, error] = std::from_chars(number.begin(), number.end(), value, std::chars_format::fixed);
  if (error != std::errc::result_out_of_range) return value;
  // Too large is refused; too small is the nearest value there is.
  const bool negative = *number.begin() == '-';
  const char* digit = number.begin() + (negative ? 1 : 0);
  while (digit != number.end() && *digit == '0') ++digit;
  if (digit != number.end() && *digit != '.') throw std::out_of_range("stod argument out of range");
  return negative ? -0.0 : 0.0;
}

bool is_plain_number(std::wstring_view text) {
  std::size_t at = 0;
  if (!text.empty() && (text[0] == L'+' || text[0] == L'-')) ++at;
  const std::size_t first = at;
  while (at < text.size() && is_digit(text[at])) ++at;
  if (at == first) return false;
  if (at < text.size() && text[at] == L'.') ++at;
  while (at < text.size() && is_digit(text[at])) ++at;
  return at == text.size();
}

bool is_plain_integer(std::wstring_view text) {
  std::size_t at = !text.empty() && text[0] == L'-' ? 1 : 0;
  if (at == text.size()) return false;
  while (at < text.size() && is_digit(text[at])) ++at;
  return at == text.size();
}

std::wstring_view trimmed(std::wstring_view text) {
  while (!text.empty() && is_space(text.back())) text.remove_suffix(1);
  while (!text.empty() && is_space(text.front())) text.remove_prefix(1);
  return text;
}

}  // namespace ruvo::texto
