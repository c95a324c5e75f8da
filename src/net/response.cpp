// SPDX-License-Identifier: BSL-1.0

// An answer of HTTP.

#include <ruvo/http.hpp>
#include <ruvo/xvar.hpp>

#include <istream>
#include <iterator>
#include <ostream>
#include <streambuf>
#include <utility>

#include "base/utf.hpp"
#include "values/object.hpp"

namespace ruvo::http {

response::response() : header_table(L"text/plain") {}
response::response(const response& other) = default;
response::response(response&& other) noexcept = default;
response::~response() = default;
response& response::operator=(const response& other) {
  return this == &other ? *this : *this = response(other);  // whole or not at all
}
response& response::operator=(response&& other) noexcept = default;

response& response::operator=(const var& value) {
  if (const response* const other = detail::object_in<response>(value)) *this = *other;
  return *this;
}

response::operator xvar() const {
  xvar value;
  detail::set_object(value, *this);
  return value;
}

response& response::set_body(const std::wstring& body) {
  body_.make() = body;
  return *this;
}
std::wstring response::get_body() const { return body_.get(); }
std::size_t response::length() const noexcept { return body_.get().size(); }

response& response::operator+=(const wchar_t* text) {
  if (text) body_.make() += text;
  return *this;
}
response& response::operator+=(const std::wstring& text) {
  body_.make() += text;
  return *this;
}
response& response::operator+=(const char* text) {
  if (text) texto::append_utf_16(body_.make(), text);
  return *this;
}
response& response::operator+=(const std::string& text) {
  texto::append_utf_16(body_.make(), text);
  return *this;
}

const std::wstring& response::get_content_type() { return (*this)[L"Content-Type"]; }

bool response::operator==(const response& other) const noexcept {
  return same_headers(other) && body_.get() == other.body_.get();
}

std::wstring response::to_string() const { return text_form(body_.get()); }

std::wostream& operator<<(std::wostream& out, const response& message) { return out << message.to_string(); }

std::wistream& operator>>(std::wistream& in, response& message) {
  const std::wistream::sentry ready(in, true);
  if (!ready) return in;
  std::wstring& body = message.body_.make();
  wchar_t part[2048];
  for (std::streamsize n; (n = in.rdbuf()->sgetn(part, std::ssize(part))) > 0;)
    body.append(part, static_cast<std::size_t>(n));
  in.setstate(std::ios_base::eofbit);
  return in;
}

}  // namespace ruvo::http
