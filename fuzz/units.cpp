// SPDX-License-Identifier: BSL-1.0

// Text of 16-bit units through the vectors that the target's wide characters take, each against a plain way;
// and digests by the processor's instructions against those by plain arithmetic.
//
// The first byte says how units are made of the bytes behind it, the second how long the part to be found is,
// and whether all comes many times; then come its last bytes, one more each time. No unit stands before or
// behind the texts in memory.

#include <ruvo/digest.hpp>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

#include "base/base64.hpp"
#include "base/find.hpp"
#include "base/hex.hpp"
#include "base/key_units.hpp"
#include "base/simd.hpp"
#include "base/utf.hpp"
#include "fuzz.hpp"
#include "memory/text_sink.hpp"
#include "serializer/json/grammar.hpp"
#include "serializer/json/standard_text.hpp"
#include "serializer/xml/grammar.hpp"
#include "support/plain_utf.hpp"
#include "texto/case_units.hpp"

using namespace ruvo;

namespace {

/// Room for so many characters, or a copy of a text, in a block of memory that is no larger.
template <class Char>
class block {
 public:
  using view_type = std::basic_string_view<Char>;

  explicit block(std::size_t size) : size_(size), chars_(new Char[size]()) {}
  explicit block(view_type text) : block(text.size()) {
    for (std::size_t at = 0; at < size_; ++at) chars_[at] = text[at];
  }

  Char* data() const { return chars_.get(); }
  view_type view() const { return {data(), size_}; }
  view_type up_to(const Char* end) const { return {data(), static_cast<std::size_t>(end - data())}; }

 private:
  std::size_t size_;
  std::unique_ptr<Char[]> chars_;
};

using bytes_view = std::basic_string_view<unsigned char>;

void utf(std::string_view bytes, std::u16string_view units) {
  std::u16string wide;
  texto::append_utf_16(wide, bytes);
  FUZZ_CHECK(wide == plain::utf_16<char16_t>(bytes));
  std::string narrow;
  texto::append_utf_8(narrow, units);
  FUZZ_CHECK(narrow == plain::utf_8(units));
}

constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/-_";

/// Its value, or one above 63.
std::size_t digit_of(char16_t unit) {
  const std::size_t at = unit < 128 ? digits.find(static_cast<char>(unit)) : digits.npos;
  return at < 64 ? at : at < digits.size() ? at - 2 : digits.npos;
}

template <class Char>
std::u16string in_base64(std::basic_string_view<Char> in, bool url_safe) {
  std::u16string out;
  for (std::size_t at = 0; at < in.size(); at += 3) {
    std::uint32_t group = 0;
    for (std::size_t i = at; i < at + 3; ++i) group = group << 8 | (i < in.size() ? in[i] & 0xFFu : 0);
    for (int shift = 18; shift >= 0; shift -= 6) {
      const std::uint32_t value = group >> shift & 63;
      out += static_cast<char16_t>(digits[value + (url_safe && value > 61 ? 2 : 0)]);
    }
  }
  const std::size_t padding = (3 - in.size() % 3) % 3;
  return out.replace(out.size() - padding, padding, padding, u'=');
}

std::u16string out_of_base64(std::u16string_view text) {
  std::u16string out;
  std::uint32_t bits = 0;
  int count = 0;
  for (const char16_t unit : text.substr(0, text.find(u'='))) {
    const std::size_t digit = digit_of(unit);
    if (digit > 63) continue;
    bits = bits << 6 | static_cast<std::uint32_t>(digit);
    count += 6;
    if (count < 8) continue;
    count -= 8;
    out += static_cast<char16_t>(bits >> count & 0xFF);
  }
  return out;
}

/// Whether blanks apart the text is digits and then what '=' completes a group.
bool is_base64(std::u16string_view text) {
  std::size_t found = 0, padding = 0;
  for (const char16_t unit : text) {
    if (unit == u' ' || (unit >= u'\t' && unit <= u'\r')) continue;
    if (unit != u'=' && (padding || digit_of(unit) > 63)) return false;
    ++(unit == u'=' ? padding : found);
  }
  return padding ? padding <= 2 && found % 4 != 1 && (found + padding) % 4 == 0 : found % 4 != 1;
}

void base64(bytes_view bytes, std::u16string_view units) {
  for (const bool url_safe : {false, true}) {
    const block<char16_t> of_bytes(texto::base64_size(bytes.size()));
    texto::base64_encode_to(of_bytes.data(), bytes.data(), bytes.size(), url_safe);
    FUZZ_CHECK(of_bytes.view() == in_base64(bytes, url_safe));
    const block<char16_t> of_units(texto::base64_size(units.size()));
    texto::base64_encode_to(of_units.data(), units.data(), units.size(), url_safe);
    FUZZ_CHECK(of_units.view() == in_base64(units, url_safe));
  }
  const block<char16_t> decoded(texto::base64_room(units.size()));
  const std::u16string plain = out_of_base64(units);
  FUZZ_CHECK(decoded.up_to(texto::base64_decode_to(decoded.data(), units)) == plain);
  const block<unsigned char> read(texto::base64_room(units.size()));
  const unsigned char* const end = texto::base64_read(read.data(), units);
  FUZZ_CHECK((end != nullptr) == is_base64(units));
  if (end) FUZZ_CHECK(std::ranges::equal(read.up_to(end), plain));
}

template <class Char>
std::u16string in_hex(std::basic_string_view<Char> in) {
  std::u16string out;
  for (const Char c : in) (out += u"0123456789abcdef"[c >> 4 & 15]) += u"0123456789abcdef"[c & 15];
  return out;
}

void hex(std::string_view bytes, std::u16string_view units) {
  const block<char16_t> of_bytes(2 * bytes.size()), of_units(2 * units.size());
  texto::hex_encode_to(of_bytes.data(), bytes.data(), bytes.size());
  FUZZ_CHECK(of_bytes.view() == in_hex(bytes));
  texto::hex_encode_to(of_units.data(), units.data(), units.size());
  FUZZ_CHECK(of_units.view() == in_hex(units));

  const block<char16_t> pairs(units.substr(0, units.size() / 2 * 2)), decoded(units.size() / 2);
  const bool good = texto::hex_decode_to(decoded.data(), pairs.data(), units.size() / 2);
  FUZZ_CHECK(good == (pairs.view().find_first_not_of(u"0123456789abcdefABCDEF") == units.npos));
  std::u16string lower(pairs.view());
  for (char16_t& unit : lower) unit = unit < u'A' || unit > u'F' ? unit : static_cast<char16_t>(unit + 32);
  if (good) FUZZ_CHECK(in_hex(decoded.view()) == lower);
}

void find(std::u16string_view text, std::u16string_view part) {
  texto::basic_finder<char16_t> finder(part);
  for (std::size_t at = 0; at <= text.size(); at += part.size()) {
    const std::size_t plain = text.find(part, at);
    at = finder.find(text, at);
    FUZZ_CHECK(at == plain);
    if (at == text.npos) break;
  }
}

/// From each place where `scan` stops it goes on behind that; it stops where `stops` says so and nowhere
/// else.
template <class Scan, class Stops>
void scan(std::u16string_view text, const Scan& scan, const Stops& stops) {
  const char16_t* const end = text.data() + text.size();
  for (const char16_t* at = text.data();; ++at) {
    const char16_t* const plain = std::find_if(at, end, stops);
    at = scan(at, end);
    FUZZ_CHECK(at == plain);
    if (at == end) return;
  }
}

void scans(std::u16string_view text, char16_t a, char16_t b) {
  scan(
      text, [=](auto at, auto end) { return serializer::find_either(at, end, a, b); },
      [=](char16_t unit) { return unit == a || unit == b; });
  scan(text, serializer::find_escaped<char16_t>,
       [](char16_t unit) { return unit < 32 || unit == 127 || unit == u'"' || unit == u'\\'; });
  scan(text, serializer::find_markup<char16_t>, [](char16_t unit) {
    return unit == u'&' || unit == u'\'' || unit == u'<' || unit == u'>' || unit == u'"';
  });
}

/// `done` changed each unit of the text as `map` does.
void check_mapped(std::u16string_view text, std::u16string_view done, wchar_t (*map)(wchar_t)) {
  FUZZ_CHECK(std::ranges::equal(text, done, [map](char16_t from, char16_t to) {
    return static_cast<char16_t>(map(static_cast<wchar_t>(from))) == to;
  }));
}

void cases(std::u16string_view text) {
  const block<char16_t> lower(text), upper(text), key(text.size()), path(text.size());
  texto::letter_case::map_units<texto::letter_case::to_small>(lower.data(), text.size());
  check_mapped(text, lower.view(), texto::to_lowercase);
  texto::letter_case::map_units<texto::letter_case::to_capital>(upper.data(), text.size());
  check_mapped(text, upper.view(), texto::to_uppercase);
  FUZZ_CHECK(detail::fold_units<texto::to_lower>(key.data(), text) == (key.view() != text));
  check_mapped(text, key.view(), texto::to_lower);
  FUZZ_CHECK(detail::fold_units<texto::to_lowercase>(path.data(), text) == (path.view() != text));
  check_mapped(text, path.view(), texto::to_lowercase);
}

void copies(std::u16string_view text, std::size_t place) {
  const block<char16_t> copy(text.size());
  detail::basic_text_sink<char16_t>::copy(copy.data(), text.data(), text.size());
  FUZZ_CHECK(copy.view() == text);
  FUZZ_CHECK(detail::same_units(copy.view(), text));
  FUZZ_CHECK(detail::hash_units(copy.view()) == detail::hash_units(text));
  if (text.empty()) return;
  copy.data()[place % text.size()] ^= 0x100;
  FUZZ_CHECK(!detail::same_units(copy.view(), text));
  FUZZ_CHECK(detail::hash_units(copy.view()) != detail::hash_units(text));
  FUZZ_CHECK(!detail::same_units(copy.view().substr(1), text));
}

template <class Out, class Unit>
std::basic_string<Out> escaped(std::basic_string_view<Unit> text, bool separators) {
  const block<Out> room(serializer::most_escaped_units * text.size() + 8);
  const Unit* at = text.data();
  const Unit* const end = at + text.size();
  return {room.data(), serializer::escaped_text<Out, Unit>::put(room.data(), at, end, end, separators)};
}

/// Where wide characters have 32 bits, they are taken one by one.
void escapes(std::u16string_view text) {
  const std::wstring wide(text.begin(), text.end());
  for (const bool separators : {false, true}) {
    FUZZ_CHECK(escaped<char>(text, separators) == escaped<char>(std::wstring_view(wide), separators));
    FUZZ_CHECK(std::ranges::equal(escaped<char16_t>(text, separators),
                                  escaped<wchar_t>(std::wstring_view(wide), separators),
                                  [](char16_t a, wchar_t b) { return a == static_cast<char16_t>(b); }));
  }
}

std::u16string units_of(std::string_view bytes, unsigned form) {
  if (form % 3 == 1) return plain::utf_16<char16_t>(bytes);
  std::u16string units;
  if (form % 3 == 0) {
    for (const char byte : bytes) units += static_cast<unsigned char>(byte);
    return units;
  }
  units.resize(bytes.size() / 2);
  if (!units.empty()) std::memcpy(units.data(), bytes.data(), 2 * units.size());
  return units;
}

/// Converters by the vectors that the processor has, and without those that it may lack.
void convert(std::string_view bytes, bytes_view numbers, std::u16string_view units) {
  utf(bytes, units);
  base64(numbers, units);
  hex(bytes, units);
#ifdef KESTA_X64
  const bool has_ssse3 = std::exchange(texto::has_ssse3, false);
  utf(bytes, units);
  base64(numbers, units);
  texto::has_ssse3 = has_ssse3;
#endif
}

void digests([[maybe_unused]] std::string_view bytes) {
#ifdef KESTA_X64
  const binary found = digest::sha256(bytes);
  const bool has_sha = std::exchange(texto::has_sha, false);
  FUZZ_CHECK(digest::sha256(bytes) == found);
  texto::has_sha = has_sha;
#endif
}

/// `bytes` and the units made of them; `choice` is the number in the second byte.
void check(std::string_view in, unsigned form, unsigned choice) {
  const block<char> bytes(in);
  const block<unsigned char> numbers(in.size());
  std::copy(in.begin(), in.end(), numbers.data());
  const block<char16_t> units(units_of(in, form));

  convert(bytes.view(), numbers.view(), units.view());
  digests(bytes.view());
  cases(units.view());
  copies(units.view(), choice);
  escapes(units.view());
  if (units.view().empty()) return;
  const block<char16_t> part(units.view().substr(0, 1 + choice % 32));
  const block<char16_t> text(units.view().substr(part.view().size()));
  find(text.view(), part.view());
  scans(text.view(), part.view().front(), part.view().back());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::string once = fuzz::narrow(data + 2, size - 2);
  std::string many;
  for (int times = data[1] > 127 ? 9 : 1; times > 0; --times) many += once;
  check(many, data[0], data[1]);
  // The ends of it, of all sizes about those of the vectors.
  for (std::size_t shorter = 0; shorter < many.size() && shorter <= 40; ++shorter)
    check(std::string_view(many).substr(many.size() - shorter), data[0], data[1] % 8);
  return 0;
}
