// SPDX-License-Identifier: BSL-1.0

// Bytes and their text forms.

#include <ruvo/binary.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/memo.hpp>

#include <algorithm>
#include <cstring>
#include <ostream>
#include <sstream>
#include <string_view>

#include "base/ascii.hpp"
#include "base/base64.hpp"
#include "base/utf.hpp"

namespace ruvo {

namespace {

using bytes = std::vector<unsigned char>;

bytes bytes_of(std::string_view text) {
  const auto* const first = reinterpret_cast<const unsigned char*>(text.data());
  return bytes(first, first + text.size());
}
bytes bytes_of(std::wstring_view text) { return bytes_of(std::string_view(texto::to_utf_8(text))); }
bytes bytes_of(const char* text) { return text ? bytes_of(std::string_view(text)) : bytes(); }
bytes bytes_of(const wchar_t* text) { return text ? bytes_of(std::wstring_view(text)) : bytes(); }

bool is_text_like(unsigned char byte) { return byte >= 32 || byte == 9 || byte == 10 || byte == 13; }

/// The number of complete units whose high byte passes `test`.
template <class Test>
std::size_t count_units(const bytes& store, Test test) {
  std::size_t count = 0;
  for (std::size_t at = 1; at < store.size(); at += 2) count += test(store[at]);
  return count;
}

bool is_half_of_pair(unsigned char high_byte) { return (high_byte & 0xF8) == 0xD8; }

std::wstring units_of(const bytes& store) { return std::wstring(store.begin(), store.end()); }

// Both read into `out`, which has room for 3/4 of the text's size, and give the end of what they wrote, or
// null for a malformed text.

template <class Text>
unsigned char* read_hex(unsigned char* out, const Text& text) {
  int first = -1;
  for (const auto c : text) {
    if (texto::is_space(static_cast<wchar_t>(c))) continue;
    const int digit = texto::hex_value(static_cast<wchar_t>(c));
    if (digit < 0) return nullptr;
    if (first < 0) {
      first = digit;
    } else {
      *out++ = static_cast<unsigned char>(first << 4 | digit);
      first = -1;
    }
  }
  return first < 0 ? out : nullptr;
}

template <class Text>
unsigned char* read_base64(unsigned char* out, const Text& text) {
  return texto::base64_read(out, text);
}

/// Replaces `store` by what `read` makes of `text`.
template <class Text>
void replace_by(bytes& store, const Text& text, unsigned char* (*read)(unsigned char*, const Text&),
                exception* error) {
  bytes made(text.size() / 4 * 3 + 3);
  const unsigned char* const end = read(made.data(), text);
  if (!end) {
    store.clear();
    if (error) exc::BadFormat().copy_on(error);
    return;
  }
  made.resize(static_cast<std::size_t>(end - made.data()));
  store = std::move(made);
}

}  // namespace

binary::binary() noexcept = default;
binary::binary(const binary& other) = default;
binary::binary(binary&& other) noexcept = default;
binary::~binary() = default;
binary::binary(unsigned long long count) : store_(static_cast<size_type>(count)) {}
binary::binary(const std::vector<unsigned char>& bytes) : store_(bytes) {}
binary::binary(const std::wstring& text) : store_(bytes_of(std::wstring_view(text))) {}
binary::binary(const wchar_t* text) : store_(bytes_of(text)) {}
binary::binary(const std::string& bytes) : store_(bytes_of(std::string_view(bytes))) {}
binary::binary(const char* bytes) : store_(bytes_of(bytes)) {}
binary::binary(const std::ostringstream& stream) : store_(bytes_of(stream.view())) {}
binary::binary(const std::wostringstream& stream) : store_(bytes_of(stream.view())) {}
binary::binary(const memo& text) : binary(text.to_string()) {}

binary& binary::operator=(const binary& other) = default;
binary& binary::operator=(binary&& other) noexcept = default;
const binary& binary::operator=(unsigned long long count) { return *this = binary(count); }
const binary& binary::operator=(const std::vector<unsigned char>& bytes) { return *this = binary(bytes); }
const binary& binary::operator=(const std::wstring& text) { return *this = binary(text); }
const binary& binary::operator=(const wchar_t* text) { return *this = binary(text); }
const binary& binary::operator=(const std::string& bytes) { return *this = binary(bytes); }
const binary& binary::operator=(const char* bytes) { return *this = binary(bytes); }
const binary& binary::operator=(const std::ostringstream& stream) { return *this = binary(stream); }
const binary& binary::operator=(const std::wostringstream& stream) { return *this = binary(stream); }
const binary& binary::operator=(const memo& text) { return *this = binary(text); }

binary& binary::operator+=(const unsigned char& byte) {
  store_.push_back(byte);
  return *this;
}

binary& binary::operator+=(const wchar_t& unit) {
  store_.push_back(static_cast<unsigned char>(unit));
  return *this;
}

binary& binary::operator+=(const std::wstring& text) {
  const std::size_t before = store_.size();
  store_.resize(before + text.size());
  std::transform(text.begin(), text.end(), store_.data() + before,
                 [](wchar_t unit) { return static_cast<unsigned char>(unit); });
  return *this;
}

int binary::compare(const binary& other) const noexcept {
  const std::size_t common = std::min(size(), other.size());
  const int order = common ? std::memcmp(store_.data(), other.store_.data(), common) : 0;
  return order ? order : (size() > other.size()) - (size() < other.size());
}

std::wstring binary::to_string() const {
  if (empty() || (size() == 1 && store_[0] == 0)) return {};
  const bool text = std::all_of(store_.begin(), store_.end(), is_text_like) ||
                    (size() % 2 == 0 && count_units(store_, is_half_of_pair) == 0);
  return text ? units_of(store_) : getAsB64();
}

std::wstring binary::utf16le_to_string() const {
  std::wstring text(size() / 2, L'\0');
  for (std::size_t i = 0; i < text.size(); ++i)
    text[i] = static_cast<wchar_t>(store_[2 * i] | store_[2 * i + 1] << 8);
  return text;
}

bool binary::is_likely_utf16le() const noexcept {
  const std::size_t zeros = count_units(store_, [](unsigned char high_byte) { return high_byte == 0; });
  return zeros * 5 > size() / 2 * 4;
}

std::wstring binary::getAsHex() const {
  std::wstring text(size() * 2, L'\0');
  wchar_t* to = text.data();
  for (const unsigned char byte : store_) {
    *to++ = L"0123456789ABCDEF"[byte >> 4];
    *to++ = L"0123456789ABCDEF"[byte & 15];
  }
  return text;
}

std::wstring binary::getAsB64(bool url) const {
  std::wstring text(texto::base64_size(size()), L'\0');
  texto::base64_encode_to(text.data(), store_.data(), size(), url);
  return text;
}

binary& binary::setAsHex(const std::wstring& text, exception* error) {
  replace_by(store_, text, read_hex<std::wstring>, error);
  return *this;
}

binary& binary::setAsHex(const std::string& text, exception* error) {
  replace_by(store_, text, read_hex<std::string>, error);
  return *this;
}

binary& binary::setAsB64(const std::wstring& text, exception* error) {
  replace_by(store_, text, read_base64<std::wstring>, error);
  return *this;
}

binary& binary::setAsB64(const std::string& text, exception* error) {
  replace_by(store_, text, read_base64<std::string>, error);
  return *this;
}

void binary::pop_zeros() noexcept {
  while (!store_.empty() && store_.back() == 0) store_.pop_back();
}

std::wostream& operator<<(std::wostream& out, const binary& value) { return out << value.to_string(); }

}  // namespace ruvo
