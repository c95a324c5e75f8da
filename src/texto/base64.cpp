#include "texto/base64.hpp"

#include <array>
#include <cstdint>

#include "texto/ascii.hpp"

namespace ruvo::texto {

namespace {

constexpr char standard_digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char url_safe_digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
constexpr unsigned char no_digit = 64;

constexpr std::array<unsigned char, 128> values = [] {
  std::array<unsigned char, 128> table{};
  table.fill(no_digit);
  for (unsigned char i = 0; i < 64; ++i) {
    table[static_cast<unsigned char>(standard_digits[i])] = i;
    table[static_cast<unsigned char>(url_safe_digits[i])] = i;
  }
  return table;
}();

template <class Char>
unsigned value_of(Char c) noexcept {
  const auto unit = static_cast<char32_t>(c);  // a negative char is far above 127
  return unit < values.size() ? values[unit] : no_digit;
}

template <class Out, class In>
void encode(Out* out, const In* in, std::size_t count, bool url_safe) noexcept {
  const char* const digits = url_safe ? url_safe_digits : standard_digits;
  const auto byte = [in](std::size_t at) { return static_cast<std::uint32_t>(in[at]) & 0xFF; };
  const auto put = [&out, digits](std::uint32_t bits) { *out++ = static_cast<Out>(digits[bits & 63]); };
  std::size_t at = 0;
  for (; count - at >= 3; at += 3) {
    const std::uint32_t group = byte(at) << 16 | byte(at + 1) << 8 | byte(at + 2);
    put(group >> 18);
    put(group >> 12);
    put(group >> 6);
    put(group);
  }
  if (at == count) return;
  const bool two = count - at == 2;
  const std::uint32_t group = byte(at) << 16 | (two ? byte(at + 1) << 8 : 0);
  put(group >> 18);
  put(group >> 12);
  if (two) put(group >> 6);
  if (!two) *out++ = static_cast<Out>('=');
  *out++ = static_cast<Out>('=');
}

/// Collects digits and writes a byte as soon as eight bits are there.
template <class Out>
class byte_writer {
 public:
  explicit byte_writer(Out* out) noexcept : out_(out) {}

  void add(unsigned digit) noexcept {
    bits_ = bits_ << 6 | digit;
    count_ = (count_ + 1) & 3;
    // After two, three and four digits of a group 4, 2 and 0 bits wait for the next byte.
    const unsigned waiting = (4 - count_) * 2 & 7;
    if (count_ != 1) *out_++ = static_cast<Out>(bits_ >> waiting & 0xFF);
  }
  /// Digits of the group that is not complete.
  unsigned pending() const noexcept { return count_; }
  Out* end() const noexcept { return out_; }

 private:
  Out* out_;
  std::uint32_t bits_ = 0;
  unsigned count_ = 0;
};

template <class Out, class View>
Out* decode(Out* out, View text) noexcept {
  byte_writer<Out> writer(out);
  for (const auto c : text) {
    if (c == '=') break;
    const unsigned digit = value_of(c);
    if (digit != no_digit) writer.add(digit);
  }
  return writer.end();
}

template <class View>
unsigned char* read(unsigned char* out, View text) noexcept {
  byte_writer<unsigned char> writer(out);
  unsigned padding = 0;
  for (const auto c : text) {
    if (is_space(static_cast<wchar_t>(c))) continue;
    const unsigned digit = value_of(c);
    if (c == '=') {
      ++padding;
    } else if (digit == no_digit || padding) {
      return nullptr;
    } else {
      writer.add(digit);
    }
  }
  if (writer.pending() == 1 || padding > 2 || (padding && writer.pending() + padding != 4)) return nullptr;
  return writer.end();
}

}  // namespace

void base64_encode_to(char* out, const unsigned char* bytes, std::size_t count, bool url_safe) noexcept {
  encode(out, bytes, count, url_safe);
}
void base64_encode_to(wchar_t* out, const unsigned char* bytes, std::size_t count, bool url_safe) noexcept {
  encode(out, bytes, count, url_safe);
}
void base64_encode_to(wchar_t* out, const wchar_t* units, std::size_t count, bool url_safe) noexcept {
  encode(out, units, count, url_safe);
}

char* base64_decode_to(char* out, std::string_view text) noexcept { return decode(out, text); }
wchar_t* base64_decode_to(wchar_t* out, std::wstring_view text) noexcept { return decode(out, text); }

unsigned char* base64_read(unsigned char* out, std::string_view text) noexcept { return read(out, text); }
unsigned char* base64_read(unsigned char* out, std::wstring_view text) noexcept { return read(out, text); }

}  // namespace ruvo::texto
