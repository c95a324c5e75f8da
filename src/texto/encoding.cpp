#include <ruvo/texto.hpp>

#include <stdexcept>
#include <string_view>
#include <utility>

#include "texto/ascii.hpp"
#include "texto/base64.hpp"
#include "texto/utf.hpp"

namespace ruvo::texto {

namespace {

template <class Text>
std::wstring to_hex(const Text& text) {
  std::wstring hex;
  hex.reserve(text.size() * 2);
  for (const auto c : text) {
    const auto byte = static_cast<unsigned char>(c);
    hex.push_back(L"0123456789abcdef"[byte >> 4]);
    hex.push_back(L"0123456789abcdef"[byte & 15]);
  }
  return hex;
}

template <class Text>
Text from_hex(const Text& hex) {
  Text text(hex.size() / 2, typename Text::value_type());
  const auto digit = [&hex](std::size_t at) { return hex_char_to_int(static_cast<wchar_t>(hex[at])); };
  for (std::size_t i = 0; i < text.size(); ++i)
    text[i] = static_cast<typename Text::value_type>(digit(2 * i) << 4 | digit(2 * i + 1));
  return text;
}

template <class Text>
void decode(Text& out, const Text& in) {
  Text made(in.size(), typename Text::value_type());
  made.resize(static_cast<std::size_t>(base64_decode_to(made.data(), in) - made.data()));
  out = std::move(made);
}

}  // namespace

std::wstring to_utf_16(const std::string& text) { return to_utf_16(std::string_view(text)); }
std::string to_utf_8(const std::wstring& text) { return to_utf_8(std::wstring_view(text)); }

void remove_win_bom(std::string& text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
}

void base64_encode(std::wstring& out, const std::wstring& in, bool url_safe) {
  std::wstring made(base64_size(in.size()), L'\0');
  base64_encode_to(made.data(), in.data(), in.size(), url_safe);
  out = std::move(made);
}

void base64_encode(std::string& out, const std::string& in, bool url_safe) {
  std::string made(base64_size(in.size()), '\0');
  base64_encode_to(made.data(), reinterpret_cast<const unsigned char*>(in.data()), in.size(), url_safe);
  out = std::move(made);
}

void base64_decode(std::string& out, const std::string& in) { decode(out, in); }
void base64_decode(std::wstring& out, const std::wstring& in) { decode(out, in); }

std::wstring char_to_hex(char c) { return to_hex(std::string_view(&c, 1)); }
std::wstring char_to_hex(unsigned char c) { return char_to_hex(static_cast<char>(c)); }
std::wstring char_to_hex(wchar_t c) { return char_to_hex(static_cast<char>(c)); }

std::wstring string_to_hex(const std::wstring& text) { return to_hex(text); }
std::wstring string_to_hex(const std::string& text) { return to_hex(text); }
std::wstring bytes_to_hexString(const unsigned char* bytes, unsigned long count) {
  return to_hex(std::string_view(reinterpret_cast<const char*>(bytes), count));
}

std::wstring hex_to_string(const std::wstring& hex) { return from_hex(hex); }
std::string hex_to_string(const std::string& hex) { return from_hex(hex); }

int hex_char_to_int(wchar_t digit) {
  const int value = hex_value(digit);
  if (value < 0) throw std::invalid_argument("invalid hex digit");
  return value;
}

}  // namespace ruvo::texto
