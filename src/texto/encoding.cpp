// SPDX-License-Identifier: BSL-1.0

// The public conversions between encodings, over those of the ground floor.

#include <ruvo/texto.hpp>

#include <algorithm>
#include <locale>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "base/ascii.hpp"
#include "base/base64.hpp"
#include "base/hex.hpp"
#include "base/utf.hpp"
#include "system/code_page.hpp"

namespace ruvo::texto {

namespace {

constexpr unsigned int system_page = 0;

template <class Char>
std::wstring to_hex(const Char* text, std::size_t count) {
  constexpr std::size_t piece = 512;  // made on the stack: zeros in a long result cost more than a copy
  wchar_t made[2 * piece];
  std::wstring hex;
  hex.reserve(2 * count);
  for (std::size_t done = 0; done < count; done += piece) {
    const std::size_t size = std::min(piece, count - done);
    hex_encode_to(made, text + done, size);
    hex.append(made, 2 * size);
  }
  return hex;
}

template <class C>
std::basic_string<C> from_hex(std::basic_string_view<C> hex) {
  std::basic_string<C> text(hex.size() / 2, C());
  if (!hex_decode_to(text.data(), hex.data(), text.size())) throw std::invalid_argument("invalid hex digit");
  return text;
}

/// Gives `out` a size, to be written over, and what `make` does of the characters that it writes. In the
/// memory that `out` has if that is enough, and if the source does not lie there.
template <class Text, class Make>
void overwrite(Text& out, std::size_t size, const void* source, const Make& make) {
  if (source == &out || out.capacity() < size) {
    Text made(size, typename Text::value_type());
    made.resize(make(made.data()));
    out = std::move(made);
  } else {
    out.resize(size);
    out.resize(make(out.data()));
  }
}

template <class Text>
void replace_by_base64(Text& out, const Text& in) {
  overwrite(out, base64_room(in.size()), &in,
            [&in](auto* made) { return static_cast<std::size_t>(base64_decode_to(made, in) - made); });
}

template <class In>
void replace_by_hex(std::wstring& out, const In& in) {
  const void* const source = &in;
  if (source == &out || out.capacity() < 2 * in.size()) {
    out = to_hex(in.data(), in.size());
  } else {
    out.resize(2 * in.size());
    hex_encode_to(out.data(), in.data(), in.size());
  }
}

template <class Text>
void replace_from_hex(Text& out, const Text& in) {
  bool good = true;
  overwrite(out, in.size() / 2, &in, [&](auto* made) {
    const std::size_t size = in.size() / 2;
    good = hex_decode_to(made, in.data(), size);
    return good ? size : 0;
  });
  if (!good) throw std::invalid_argument("invalid hex digit");
}

}  // namespace

std::wstring to_utf_16(const std::string& text) { return to_utf_16(std::string_view(text)); }
std::string to_utf_8(const std::wstring& text) { return to_utf_8(std::wstring_view(text)); }

void remove_win_bom(std::string& text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
}

std::string to_utf8(const std::string& text, const std::locale&) {
  return to_utf_8(platform::from_code_page(text, system_page));
}

std::string from_utf8(const std::string& text, const std::locale&) {
  return platform::to_code_page(to_utf_16(text), system_page);
}

std::wstring stream_to_string(const std::wostream& stream) {
  const auto* const buffer = dynamic_cast<const std::wstringbuf*>(stream.rdbuf());
  return buffer ? buffer->str() : std::wstring();
}

void base64_encode(std::wstring& out, const std::wstring& in, bool url_safe) {
  overwrite(out, base64_size(in.size()), &in, [&](wchar_t* made) {
    base64_encode_to(made, in.data(), in.size(), url_safe);
    return base64_size(in.size());
  });
}

void base64_encode(std::string& out, const std::string& in, bool url_safe) {
  overwrite(out, base64_size(in.size()), &in, [&](char* made) {
    base64_encode_to(made, reinterpret_cast<const unsigned char*>(in.data()), in.size(), url_safe);
    return base64_size(in.size());
  });
}

void base64_decode(std::string& out, const std::string& in) { replace_by_base64(out, in); }
void base64_decode(std::wstring& out, const std::wstring& in) { replace_by_base64(out, in); }

void set_binary_data(std::string& out, const std::vector<unsigned char>& bytes, long count) {
  const std::size_t size = count < 0 ? bytes.size() : std::min(bytes.size(), static_cast<std::size_t>(count));
  out.resize(base64_size(size));
  base64_encode_to(out.data(), bytes.data(), size, false);
}

void get_binary_data(std::string text, std::vector<unsigned char>& bytes) {
  base64_decode(text, text);
  bytes.assign(text.begin(), text.end());
}

std::wstring char_to_hex(char c) { return to_hex(&c, 1); }
std::wstring char_to_hex(unsigned char c) { return char_to_hex(static_cast<char>(c)); }
std::wstring char_to_hex(wchar_t c) { return to_hex(&c, 1); }

std::wstring string_to_hex(wide_view text) { return to_hex(text.data(), text.size()); }
std::wstring string_to_hex(narrow_view text) { return to_hex(text.data(), text.size()); }
std::wstring string_to_hex(const std::wstring& text) { return string_to_hex(std::wstring_view(text)); }
std::wstring string_to_hex(const std::string& text) { return string_to_hex(std::string_view(text)); }
std::wstring bytes_to_hexString(const unsigned char* bytes, unsigned long count) {
  return to_hex(reinterpret_cast<const char*>(bytes), count);
}

std::wstring hex_to_string(wide_view hex) { return from_hex<wchar_t>(hex); }
std::string hex_to_string(narrow_view hex) { return from_hex<char>(hex); }
std::wstring hex_to_string(const std::wstring& hex) { return hex_to_string(std::wstring_view(hex)); }
std::string hex_to_string(const std::string& hex) { return hex_to_string(std::string_view(hex)); }

void hex_encode(std::wstring& out, const std::wstring& in) { replace_by_hex(out, in); }
void hex_encode(std::wstring& out, const std::string& in) { replace_by_hex(out, in); }
void hex_decode(std::wstring& out, const std::wstring& in) { replace_from_hex(out, in); }
void hex_decode(std::string& out, const std::string& in) { replace_from_hex(out, in); }

int hex_char_to_int(wchar_t digit) {
  const int value = hex_value(digit);
  if (value < 0) throw std::invalid_argument("invalid hex digit");
  return value;
}

}  // namespace ruvo::texto
