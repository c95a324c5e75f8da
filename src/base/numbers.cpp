// SPDX-License-Identifier: BSL-1.0

// Numbers to and from text by exact arithmetic, with the C library for the rare cases.

#include "base/numbers.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <system_error>

#include "base/ascii.hpp"

namespace ruvo::texto {

namespace {

/// The two digits of each number below 100.
constexpr auto pairs = [] {
  std::array<wchar_t, 200> digits{};
  for (std::size_t n = 0; n != digits.size(); ++n)
    digits[n] = static_cast<wchar_t>(L'0' + (n % 2 == 0 ? n / 20 : n / 2 % 10));
  return digits;
}();

void put_pair(wchar_t* to, std::uint32_t value) noexcept {
  std::memcpy(to, &pairs[std::size_t{2} * value], 2 * sizeof *to);
}

int count_digits(std::uint64_t value) noexcept {
  int digits = 1;
  for (; value >= 10000; value /= 10000) digits += 4;
  if (value >= 1000) return digits + 3;
  if (value >= 100) return digits + 2;
  return value >= 10 ? digits + 1 : digits;
}

/// Writes exactly `count` digits, with zeros in front.
void put_digits(wchar_t* to, std::uint32_t value, int count) noexcept {
  wchar_t* at = to + count;
  for (; at - to >= 2; value /= 100) put_pair(at -= 2, value % 100);
  if (at != to) *to = static_cast<wchar_t>(L'0' + value);
}

/// Writes nine digits.
void put_nine_digits(wchar_t* to, std::uint32_t value) noexcept {
  const std::uint32_t five = value / 10000, last = value % 10000, middle = five % 10000;
  *to = static_cast<wchar_t>(L'0' + five / 10000);
  put_pair(to + 1, middle / 100);
  put_pair(to + 3, middle % 100);
  put_pair(to + 5, last / 100);
  put_pair(to + 7, last % 100);
}

constexpr std::uint32_t powers_of_ten[most_short_decimals + 1] = {
    1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000};

/// Writes the digits of a number from 1 to below 10^9, and zeros behind them where they are less than nine.
wchar_t* put_first_digits(wchar_t* to, std::uint32_t value) noexcept {
  const auto bits = static_cast<unsigned>(std::bit_width(value));
  const unsigned least = bits * 1233 >> 12;  // bits / log2(10): as many digits, or one more
  const unsigned count = least + static_cast<unsigned>(value >= powers_of_ten[least]);
  put_nine_digits(to, value * powers_of_ten[9 - count]);
  return to + count;
}

constexpr int most_large_units = 96;  // that print_large touches with few decimals

/// From 2^63 on every double is a whole number. Below 2^256 its digits are made here, nine at a time; null
/// for all others. What decides where this goes is how many bits the number has, and hardly its digits, which
/// nobody could foretell.
wchar_t* print_large(wchar_t* to, double value, int decimals) noexcept {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  const int shift = static_cast<int>(bits >> 52 & 0x7FF) - 1075;  // of a significand of 53 bits
  if (shift < 11 || shift > 256 - 53 || decimals > most_short_decimals) return nullptr;
  const std::uint64_t significand = (bits & 0xFFFFFFFFFFFFF) | std::uint64_t{1} << 52;
  std::uint32_t words[9] = {};  // the lowest first
  words[shift / 32] = static_cast<std::uint32_t>(significand << shift % 32);
  const std::uint64_t above = significand >> (32 - shift % 32);
  words[shift / 32 + 1] = static_cast<std::uint32_t>(above);
  words[shift / 32 + 2] = static_cast<std::uint32_t>(above >> 32);
  std::uint32_t nines[9];
  int parts = 0;
  // Each division takes 29.9 bits away, and leaves less than 10^9 when there are no more than these.
  int left = shift + 53;
  do {
    std::uint64_t rest = 0;
    for (int at = (left + 31) / 32; at-- > 0;) {
      rest = rest << 32 | words[at];
      words[at] = static_cast<std::uint32_t>(rest / 1000000000);
      rest %= 1000000000;
    }
    nines[parts++] = static_cast<std::uint32_t>(rest);
    left -= 29;
  } while (left > 0);
  while (parts > 1 && nines[parts - 1] == 0) --parts;
  if (std::signbit(value)) *to++ = L'-';
  to = put_first_digits(to, nines[--parts]);
  for (; parts > 0; to += 9) put_nine_digits(to, nines[--parts]);
  if (decimals == 0) return to;
  constexpr wchar_t no_decimals[] = L".000000000";
  std::memcpy(to, no_decimals, sizeof no_decimals - sizeof *to);
  return to + 1 + decimals;
}

/// The general case: any magnitude, any number of decimals, NaN and infinities.
void append_fixed_slow(std::wstring& out, double value, int decimals) {
  wchar_t whole[most_large_units];
  if (const wchar_t* const end = print_large(whole, value, decimals)) {
    out.append(whole, static_cast<std::size_t>(end - whole));
    return;
  }
  constexpr int most_other_units = 311;  // sign, 309 digits, point
  char small[512];
  std::string large;
  char* first = small;
  std::size_t room = sizeof small;
  if (decimals > static_cast<int>(sizeof small) - most_other_units) {
    large.resize(room = static_cast<std::size_t>(decimals) + most_other_units);
    first = large.data();
  }
  const auto [end, error] = std::to_chars(first, first + room, value, std::chars_format::fixed, decimals);
  if (error != std::errc()) return;
  const std::size_t before = out.size();
  out.resize(before + static_cast<std::size_t>(end - first));
  std::copy(first, end, out.data() + before);
}

struct fixed_parts {
  std::uint64_t whole;
  std::uint32_t decimals;
};

/// The rounded decimals of a magnitude below 1/1024, from its significand and exponent. It cannot lie
/// half-way: with nine decimals or less the least number that does is 2^-10.
std::uint32_t small_decimals(double magnitude, std::uint32_t scale) {
  const auto bits = std::bit_cast<std::uint64_t>(magnitude);
  constexpr std::uint64_t hidden = std::uint64_t{1} << 52;
  const std::uint64_t significand = (bits & (hidden - 1)) | hidden;
  const std::uint64_t low = (significand & 0xFFFFFFFF) * scale;
  const std::uint64_t high = (significand >> 32) * scale + (low >> 32);
  const int shift = 1075 - static_cast<int>(bits >> 52) - 32;  // from `high` to units
  if (shift >= 64) return 0;                                   // subnormal numbers too
  const std::uint64_t half = std::uint64_t{1} << (shift - 1);
  return static_cast<std::uint32_t>((high + half) >> shift);
}

/// Splits `magnitude` exactly into its whole part and its decimals, `scale` to the unit, rounded (ties to
/// even). False from 2^63 on, and for NaN.
bool split_fixed(double magnitude, std::uint32_t scale, fixed_parts& parts) {
  constexpr double smallest = 1.0 / 1024;
  if (!(magnitude < two_to_63)) return false;
  if (magnitude < smallest && magnitude != 0) {
    parts = {0, small_decimals(magnitude, scale)};
    return true;
  }
  const auto whole = static_cast<std::int64_t>(magnitude);
  const double rest = magnitude - static_cast<double>(whole);  // its lowest bit is at or above 2^-63
  parts.whole = static_cast<std::uint64_t>(whole);
  const std::uint64_t bits = static_cast<std::uint64_t>(static_cast<std::int64_t>(rest * two_to_63)) * 2;
  const std::uint64_t low = (bits & 0xFFFFFFFF) * scale;
  const std::uint64_t high = (bits >> 32) * scale + (low >> 32);
  parts.decimals = static_cast<std::uint32_t>(high >> 32);
  const std::uint64_t fraction = (high << 32) | (low & 0xFFFFFFFF), half = std::uint64_t{1} << 63;
  const std::uint64_t last = scale == 1 ? parts.whole : parts.decimals;
  if (fraction > half || (fraction == half && last % 2 == 1)) ++parts.decimals;
  if (parts.decimals == scale) {
    parts.decimals = 0;
    ++parts.whole;
  }
  return true;
}

// --- the shortest text

constexpr std::size_t most_digits = 24;  // and a sign, a point and an exponent

/// The digits of a decimal number, without zeros at their end, and the power of ten of the first.
struct decimal_digits {
  char text[3 * most_digits] = {};  // can be read a while beyond the digits
  const char* digits = text;
  int count = 0, exponent = 0;

  void take(std::uint64_t number, int decimals) noexcept {
    const auto strip = [&](std::uint32_t zeros, int places) {
      if (number % zeros != 0) return;
      number /= zeros;
      decimals -= places;
    };
    strip(100000000, 8);
    strip(10000, 4);
    strip(100, 2);
    strip(10, 1);
    count = static_cast<int>(std::to_chars(text, text + most_digits, number).ptr - text);
    exponent = count - 1 - decimals;
  }
  /// From "d.dddde-dd" in the text.
  void take_text(const char* end) noexcept {
    const char* const mark = end[-4] == 'e' ? end - 4 : end - 5;
    for (const char* at = mark + 2; at != end; ++at) exponent = exponent * 10 + (*at - '0');
    if (mark[1] == '-') exponent = -exponent;
    if (mark - text > 2) text[1] = text[0];
    digits = mark - text > 2 ? text + 1 : text;
    count = static_cast<int>(mark - digits);
  }
};

/// The powers of ten that a double holds exactly.
constexpr double powers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                             1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

/// Most numbers are decimal ones of up to 15 digits. No two of these have the same nearest double, so one
/// that reads back is the shortest text there is. False for others.
bool take_few_digits(decimal_digits& out, double magnitude) noexcept {
  if (!(magnitude >= 1e-4 && magnitude < 1e15)) return false;
  int decimals = 15;
  if (magnitude >= 1) {
    decimals -= count_digits(static_cast<std::uint64_t>(magnitude));
  } else {
    while (magnitude * powers[decimals] < 1e14) ++decimals;
  }
  // The product is off by less than a quarter, and so rounds to the digits, if these are they; the quotient
  // of two exact numbers is the double that they read as.
  constexpr double half = 0.5;
  const auto number = static_cast<std::int64_t>(magnitude * powers[decimals] + half);
  if (static_cast<double>(number) / powers[decimals] != magnitude) return false;
  out.take(static_cast<std::uint64_t>(number), decimals);
  return true;
}

// These write a whole number of words, beyond the end of what they give.

char* put_chars(char* to, const char* digits, int count) noexcept {
  std::memcpy(to, digits, most_digits);
  return to + count;
}
char* put_zeros(char* to, int count) noexcept {
  std::memset(to, '0', most_digits);
  return to + count;
}

char* put_fixed(char* to, const decimal_digits& number) noexcept {
  const int whole = number.exponent + 1;
  if (whole <= 0) {
    *to++ = '0';
    *to++ = '.';
    return put_chars(put_zeros(to, -whole), number.digits, number.count);
  }
  if (whole >= number.count) {
    to = put_zeros(put_chars(to, number.digits, number.count), whole - number.count);
    *to++ = '.';
    *to++ = '0';
    return to;
  }
  to = put_chars(to, number.digits, whole);
  *to++ = '.';
  return put_chars(to, number.digits + whole, number.count - whole);
}

char* put_with_exponent(char* to, const decimal_digits& number) noexcept {
  *to++ = number.digits[0];
  if (number.count > 1) {
    *to++ = '.';
    to = put_chars(to, number.digits + 1, number.count - 1);
  }
  *to++ = 'e';
  return std::to_chars(to, to + 8, number.exponent).ptr;
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

/// 1/5^n as a fraction of 64 bits, the first of which is set, cut off behind; to be divided by 2^shift.
struct reciprocal {
  std::uint64_t bits;
  int shift;
};

constexpr reciprocal reciprocal_of(std::uint64_t power_of_five) noexcept {
  const int width = static_cast<int>(std::bit_width(power_of_five));
  std::uint64_t bits = 0, rest = std::bit_floor(power_of_five);  // a division of 2^(63 + width), bit by bit
  for (int n = 0; n < 64; ++n) {
    rest <<= 1;
    bits <<= 1;
    if (rest < power_of_five) continue;
    rest -= power_of_five;
    ++bits;
  }
  return {bits, 63 + width};
}

constexpr auto reciprocals = [] {
  std::array<reciprocal, most_quotient_decimals + 1> of{};
  std::uint64_t power = 1;
  for (reciprocal& each : of) {
    each = reciprocal_of(power);
    power *= 5;
  }
  return of;
}();

/// The higher half of the product.
constexpr std::uint64_t high_product(std::uint64_t a, std::uint64_t b) noexcept {
  const std::uint64_t a_low = a & 0xFFFFFFFF, a_high = a >> 32, b_low = b & 0xFFFFFFFF, b_high = b >> 32;
  const std::uint64_t one = a_high * b_low + (a_low * b_low >> 32);
  const std::uint64_t other = a_low * b_high + (one & 0xFFFFFFFF);
  return a_high * b_high + (one >> 32) + (other >> 32);
}

/// quotient() for the rare cases.
double uncommon_quotient(std::uint64_t digits, int decimals) noexcept {
  char text[48];
  char* end = std::to_chars(text, text + 24, digits).ptr;
  *end++ = 'e';
  end = std::to_chars(end, text + sizeof text, -decimals).ptr;
  double value = 0;
  std::from_chars(text, end, value);
  return value;
}

}  // namespace

long long truncated(double value) noexcept {
  if (std::isnan(value)) return 0;
  if (value >= two_to_63) return std::numeric_limits<long long>::max();
  if (value < -two_to_63) return std::numeric_limits<long long>::min();
  return static_cast<long long>(value);
}

wchar_t* print_unsigned(wchar_t* to, unsigned long long value) noexcept {
  wchar_t* const end = to + count_digits(value);
  wchar_t* at = end;
  for (; value >= 100; value /= 100) put_pair(at -= 2, static_cast<std::uint32_t>(value % 100));
  if (value >= 10) {
    put_pair(at - 2, static_cast<std::uint32_t>(value));
  } else {
    at[-1] = static_cast<wchar_t>(L'0' + value);
  }
  return end;
}

wchar_t* print_integer(wchar_t* to, long long value) noexcept {
  const auto bits = static_cast<unsigned long long>(value);
  if (value >= 0) return print_unsigned(to, bits);
  *to = L'-';
  return print_unsigned(to + 1, 0 - bits);
}

wchar_t* print_fixed(wchar_t* to, double value, int decimals) noexcept {
  if (decimals > most_short_decimals) return nullptr;
  fixed_parts parts{};
  if (!split_fixed(std::fabs(value), powers_of_ten[decimals], parts)) return nullptr;
  if (std::signbit(value)) *to++ = L'-';
  to = print_unsigned(to, parts.whole);
  if (decimals == 0) return to;
  *to++ = L'.';
  put_digits(to, parts.decimals, decimals);
  return to + decimals;
}

wchar_t* print_any_fixed(wchar_t* to, double value) noexcept {
  if (wchar_t* const end = print_large(to, value, 6)) return end;
  char text[most_fixed_units];
  return std::copy(text, std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 6).ptr, to);
}

char* print_shortest(char* to, double value) noexcept {
  if (std::signbit(value)) *to++ = '-';
  const double magnitude = std::fabs(value);
  constexpr double two_to_53 = 9007199254740992.0;
  if (magnitude < two_to_53) {
    const auto whole = static_cast<std::int64_t>(magnitude);
    if (static_cast<double>(whole) == magnitude) {
      to = std::to_chars(to, to + most_shortest_units - 3, whole).ptr;
      *to++ = '.';
      *to++ = '0';
      return to;
    }
  }
  decimal_digits number;
  if (!take_few_digits(number, magnitude)) {
    constexpr auto form = std::chars_format::scientific;
    number.take_text(std::to_chars(number.text, number.text + most_digits, magnitude, form).ptr);
  }
  const bool fixed = number.exponent >= -4 && number.exponent < 16;
  return fixed ? put_fixed(to, number) : put_with_exponent(to, number);
}

void append_unsigned(std::wstring& out, unsigned long long value) {
  wchar_t text[most_number_units];
  out.append(text, print_unsigned(text, value));
}

char* print_exact(char* to, double value) noexcept {
  return std::to_chars(to, to + most_exact_units, value, std::chars_format::fixed).ptr;
}
char* print_exact(char* to, float value) noexcept {
  return std::to_chars(to, to + most_exact_units, value, std::chars_format::fixed).ptr;
}

void append_integer(std::wstring& out, long long value) {
  wchar_t text[most_number_units];
  out.append(text, print_integer(text, value));
}

void append_fixed(std::wstring& out, double value, int decimals) {
  wchar_t text[most_number_units];
  if (wchar_t* const end = print_fixed(text, value, decimals)) {
    out.append(text, end);
  } else {
    append_fixed_slow(out, value, decimals);
  }
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

double quotient(unsigned long long digits, int decimals) noexcept {
  // Two exact numbers: one division rounds correctly.
  if (digits < std::uint64_t{1} << 53)
    return static_cast<double>(static_cast<long long>(digits)) / powers[decimals];
  // The first 54 bits of the quotient and whether there is something behind them say how to round. The
  // product with the reciprocal is less than 2 too small in its higher half, since the reciprocal is cut off,
  // and this goes no further than into the bits behind the 54 unless all of these are set. They are, too,
  // where nothing is behind the 54, as the product is always too small.
  if (decimals > 0) {
    const auto [bits, shift] = reciprocals[static_cast<std::size_t>(decimals)];
    const int zeros = std::countl_zero(std::uint64_t{digits});
    const std::uint64_t product = high_product(std::uint64_t{digits} << zeros, bits);
    const int behind = 9 + static_cast<int>(product >> 63);
    const std::uint64_t rest = (std::uint64_t{1} << behind) - 1;
    if ((product & rest) != rest) {
      const std::uint64_t mantissa = ((product >> behind) + 1) >> 1;  // 2^52 to 2^53
      const int exponent = behind + 65 - zeros - shift - decimals;
      return std::bit_cast<double>((static_cast<std::uint64_t>(exponent + 52 + 1022) << 52) + mantissa);
    }
  }
  return uncommon_quotient(digits, decimals);
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
