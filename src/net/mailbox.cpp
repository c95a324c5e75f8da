// SPDX-License-Identifier: BSL-1.0

// A mail account and its URL.

#include <ruvo/bundle.hpp>
#include <ruvo/smtp/mailbox.hpp>
#include <ruvo/texto.hpp>

#include <limits>
#include <ostream>
#include <string_view>
#include <utility>

#include "base/numbers.hpp"
#include "net/mail_patterns.hpp"
#include "values/object.hpp"

namespace ruvo::smtp {

namespace {

constexpr struct {
  std::wstring_view name;
  mailbox::ENCRYPTION value;
} modes[] = {{L"NONE", mailbox::NONE},
             {L"SSL", mailbox::SSL},
             {L"STARTTLS", mailbox::STARTTLS},
             {L"TLS", mailbox::TLS}};

/// Of up to four digits.
unsigned port_of(std::wstring_view digits) noexcept {
  unsigned port = 0;
  for (const wchar_t c : digits) port = port * 10 + static_cast<unsigned>(c - L'0');
  return port;
}

/// The secure mode whose customary port this is.
mailbox::ENCRYPTION mode_at(unsigned port, mailbox::ENCRYPTION otherwise) noexcept {
  for (const auto& mode : modes)
    if (mode.value != mailbox::NONE && static_cast<unsigned>(mode.value) == port) return mode.value;
  return otherwise;
}

mailbox::ENCRYPTION mode_of(detail::mailbox_text::scheme_of scheme, unsigned port) noexcept {
  if (scheme == detail::mailbox_text::scheme_of::smtp) return mailbox::NONE;
  return mode_at(port, scheme == detail::mailbox_text::scheme_of::smtps ? mailbox::SSL : mailbox::NONE);
}

}  // namespace

mailbox::mailbox() = default;
mailbox::mailbox(const mailbox& other) = default;
mailbox::mailbox(mailbox&& other) noexcept = default;
mailbox::~mailbox() = default;
mailbox::mailbox(const bundle& fields) : mailbox() { *this = fields; }

mailbox& mailbox::operator=(const mailbox& other) { return *this = mailbox(other); }
mailbox& mailbox::operator=(mailbox&& other) noexcept = default;

mailbox& mailbox::operator=(const bundle& fields) {
  mailbox made(*this);
  made.host_ = fields.get_string(L"host", '.', host_);
  made.user_ = fields.get_string(L"user", '.', user_);
  made.password_ = fields.get_string(L"password", '.', password_);
  const xvar* const mode = fields.get_ptr(L"encryption");
  if (mode && mode->is_not_null()) made.encryption_ = stoe(mode->to_string());
  const long long port = fields.get_xlong(L"port", '.', port_);
  if (port >= 0 && port <= std::numeric_limits<unsigned>::max()) made.port_ = static_cast<unsigned>(port);
  return *this = std::move(made);
}

mailbox& mailbox::operator=(const std::wstring& text) {
  static_cast<void>(deserialize(text));
  return *this;
}

mailbox& mailbox::take(const var& value) {
  if (const mailbox* const held = ruvo::detail::object_in<mailbox>(value)) *this = *held;
  return *this;
}

mailbox& mailbox::set_host(const std::wstring& host) {
  host_ = host;
  return *this;
}

mailbox& mailbox::set_user(const std::wstring& user) {
  user_ = user;
  return *this;
}

mailbox& mailbox::set_password(const std::wstring& password) {
  password_ = password;
  return *this;
}

mailbox& mailbox::set_encryption(ENCRYPTION encryption) noexcept {
  encryption_ = encryption;
  return *this;
}

mailbox& mailbox::set_port(unsigned port) noexcept {
  port_ = port;
  return *this;
}

std::wstring mailbox::get_url() const {
  std::wstring url = is_secure() ? L"smtps://" : L"smtp://";
  url += host_;
  if (get_port() != 0) texto::append_unsigned(url += L':', get_port());
  return url;
}

bool mailbox::check() const { return detail::is_host(host_); }

std::wstring mailbox::to_string(ENCRYPTION encryption) {
  for (const auto& mode : modes)
    if (mode.value == encryption) return std::wstring(mode.name);
  return {};
}

mailbox::ENCRYPTION mailbox::stoe(const std::wstring& text) {
  const std::wstring name = texto::trim_(texto::to_uppercase_(text));
  for (const auto& mode : modes)
    if (mode.name == name) return mode.value;
  return NONE;
}

bool mailbox::deserialize(const std::wstring& text) {
  const auto read = detail::read_mailbox(text);
  if (!read) return false;
  mailbox made;
  made.host_ = read->host;
  made.user_ = read->user;
  made.password_ = read->password;
  made.port_ = port_of(read->port);
  made.encryption_ = mode_of(read->scheme, made.port_);
  *this = std::move(made);
  return true;
}

mailbox::operator bundle() const {
  bundle fields = without_password();
  fields[L"password"] = password_;
  return fields;
}

bundle mailbox::without_password() const {
  bundle fields;
  fields[L"host"] = host_;
  fields[L"port"] = port_;
  fields[L"encryption"] = to_string(encryption_);
  fields[L"user"] = user_;
  return fields;
}

mailbox::operator xvar() const {
  xvar value;
  ruvo::detail::set_object(value, *this);
  return value;
}

bool mailbox::operator<(const mailbox& other) const noexcept {
  const keylowercase before;
  if (before(host_, other.host_)) return true;
  if (before(other.host_, host_)) return false;
  const auto rank = [](const mailbox& box) { return std::pair(box.get_port(), box.encryption_); };
  if (rank(*this) != rank(other)) return rank(*this) < rank(other);
  const int users = user_.compare(other.user_);
  return users != 0 ? users < 0 : password_ < other.password_;
}

std::wostream& operator<<(std::wostream& out, const mailbox& value) { return out << value.get_url(); }

}  // namespace ruvo::smtp
