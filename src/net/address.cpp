// SPDX-License-Identifier: BSL-1.0

// A mail address with its name, and its encoded form for headers.

#include <ruvo/bundle.hpp>
#include <ruvo/smtp/address.hpp>
#include <ruvo/texto.hpp>

#include <algorithm>
#include <ostream>
#include <string_view>
#include <utility>

#include "base/ascii.hpp"
#include "net/mail_patterns.hpp"
#include "values/object.hpp"

namespace ruvo::smtp {

namespace {

std::wstring shown_form(const std::wstring& name, const std::wstring& mail) {
  std::wstring text;
  if (mail.empty()) return text;
  text.reserve(name.size() + mail.size() + 3);
  if (!name.empty()) text.append(name).push_back(L' ');
  text.append(L"<").append(mail).push_back(L'>');
  return text;
}

bool is_latin_1(wchar_t c) noexcept { return static_cast<char16_t>(c) <= 0xFF; }

/// A Latin-1 character as it may stand in an encoded word of a phrase.
void append_q(std::string& out, unsigned char c) {
  constexpr std::string_view literal = "!*+-/";
  if (c == ' ') {
    out.push_back('_');
  } else if (texto::is_alnum(static_cast<wchar_t>(c)) || literal.find(static_cast<char>(c)) != literal.npos) {
    out.push_back(static_cast<char>(c));
  } else {
    out.append({'=', "0123456789ABCDEF"[c >> 4], "0123456789ABCDEF"[c & 15]});
  }
}

/// Encoded words of Latin-1 characters, as texto::q_encoded writes those of UTF-8.
std::string latin_1_words(std::wstring_view name) {
  constexpr std::string_view begin = "=?iso-8859-1?Q?", end = "?=";
  constexpr std::size_t longest_word = 75;
  std::string out(begin);
  std::size_t word = 0;  // where the current one begins
  for (const wchar_t c : name) {
    const std::size_t before = out.size();
    append_q(out, static_cast<unsigned char>(c));
    if (out.size() - word + end.size() <= longest_word) continue;
    const std::string last = out.substr(before);
    out.erase(before);
    out.append(end).append("\r\n ");
    word = out.size();
    out.append(begin).append(last);
  }
  return out.append(end);
}

std::string encoded_words(const std::wstring& name) {
  if (std::all_of(name.begin(), name.end(), is_latin_1)) return latin_1_words(name);
  return texto::q_encoded(texto::to_utf_8(name));
}

}  // namespace

address::address() = default;
address::address(const std::wstring& name, const std::wstring& mail)
    : name_(name), mail_(mail), text_(shown_form(name, mail)) {}
address::address(const address& other) = default;
address::address(address&& other) noexcept = default;
address::~address() = default;
address::address(const bundle& fields) : address() { *this = fields; }
address::address(std::initializer_list<std::pair<std::wstring, xvar>> fields) : address(bundle(fields)) {}

address& address::operator=(const address& other) { return *this = address(other); }
address& address::operator=(address&& other) noexcept = default;

address& address::operator=(const bundle& fields) {
  return *this = address(fields.get_string(L"name", '.', name_), fields.get_string(L"email", '.', mail_));
}

address& address::operator=(const std::wstring& text) {
  static_cast<void>(deserialize(text));
  return *this;
}

address& address::take(const var& value) {
  if (const address* const held = ruvo::detail::object_in<address>(value)) *this = *held;
  return *this;
}

address& address::set_name(const std::wstring& name) { return *this = address(name, mail_); }
address& address::set_mail(const std::wstring& mail) { return *this = address(name_, mail); }

bool address::check() const { return texto::is_email(mail_); }

std::wstring address::get_domain() const { return mail_.substr(std::min(mail_.find(L'@'), mail_.size())); }

std::string address::q_encoded() const {
  std::string text = name_.empty() ? std::string() : encoded_words(name_) + ' ';
  return text.append("<").append(texto::to_utf_8(mail_)).append(">");
}

bool address::deserialize(const std::wstring& text) {
  const auto read = detail::read_address(text);
  if (!read) return false;
  *this = address(std::wstring(read->name), std::wstring(read->mail));
  return true;
}

address::operator bundle() const {
  bundle fields;
  fields[L"name"] = name_;
  fields[L"email"] = mail_;
  return fields;
}

address::operator xvar() const {
  xvar value;
  ruvo::detail::set_object(value, *this);
  return value;
}

bool address::operator<(const address& other) const noexcept { return keylowercase()(mail_, other.mail_); }

std::wostream& operator<<(std::wostream& out, const address& value) { return out << value.to_string(); }

}  // namespace ruvo::smtp
