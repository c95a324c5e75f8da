// UTF-8 and UTF-16, both ways, against a plain decoder.

#include "fuzz.hpp"

using namespace ruvo::texto;

namespace {

/// One code point or U+FFFD for a maximal malformed part, by the table of well-formed sequences.
char32_t next_point(const std::string& text, std::size_t& at) {
  const auto byte = [&](std::size_t i) -> unsigned {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
  };
  const unsigned lead = byte(at);
  ++at;
  if (lead < 0x80) return lead;
  struct form {
    unsigned first, last, low, high;
    int tail;
  };
  static constexpr form forms[] = {
      {0xC2, 0xDF, 0x80, 0xBF, 1}, {0xE0, 0xE0, 0xA0, 0xBF, 2}, {0xE1, 0xEC, 0x80, 0xBF, 2},
      {0xED, 0xED, 0x80, 0x9F, 2}, {0xEE, 0xEF, 0x80, 0xBF, 2}, {0xF0, 0xF0, 0x90, 0xBF, 3},
      {0xF1, 0xF3, 0x80, 0xBF, 3}, {0xF4, 0xF4, 0x80, 0x8F, 3},
  };
  for (const form& f : forms) {
    if (lead < f.first || lead > f.last) continue;
    char32_t point = lead & (0x3Fu >> f.tail);
    for (int i = 0; i < f.tail; ++i) {
      const unsigned low = i ? 0x80 : f.low, high = i ? 0xBF : f.high;
      if (byte(at) < low || byte(at) > high) return 0xFFFD;
      point = point << 6 | (byte(at++) & 0x3F);
    }
    return point;
  }
  return 0xFFFD;
}

std::wstring decoded(const std::string& text) {
  std::wstring out;
  for (std::size_t at = 0; at < text.size();) {
    const char32_t point = next_point(text, at);
    if (point < 0x10000) {
      out += static_cast<wchar_t>(point);
    } else {
      out += static_cast<wchar_t>(0xD800 + ((point - 0x10000) >> 10));
      out += static_cast<wchar_t>(0xDC00 + ((point - 0x10000) & 0x3FF));
    }
  }
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes = fuzz::narrow(data, size);
  const std::wstring text = to_utf_16(bytes);
  FUZZ_CHECK(text == decoded(bytes));
  FUZZ_CHECK(to_utf_16(to_utf_8(text)) == text);
  // Any units: once lone surrogates are replaced, nothing changes any more.
  std::wstring units;
  for (std::size_t i = 0; i + 1 < size; i += 2) units += static_cast<wchar_t>(data[i] << 8 | data[i + 1]);
  const std::string written = to_utf_8(units);
  FUZZ_CHECK(to_utf_16(written).size() == units.size());
  FUZZ_CHECK(to_utf_8(to_utf_16(written)) == written);
  return 0;
}
