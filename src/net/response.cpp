// SPDX-License-Identifier: BSL-1.0

// An answer of HTTP.

#include <ruvo/binary.hpp>
#include <ruvo/http.hpp>
#include <ruvo/xvar.hpp>

#include <istream>
#include <iterator>
#include <ostream>
#include <streambuf>
#include <string_view>
#include <utility>

#include "base/utf.hpp"
#include "net/body.hpp"
#include "values/object.hpp"

namespace ruvo::http {

namespace {

void append_decoded(body_data& body, std::string_view text) {
  if (body.has_bytes)
    body.append(text);
  else
    texto::append_utf_16(body.text, text);
}

}  // namespace

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
  body_.make().set(std::wstring_view(body));
  return *this;
}
std::wstring response::get_body() const { return body_.get().text; }
std::size_t response::length() const noexcept { return body_.get().text.size(); }

response& response::set_body_bytes(const binary& bytes) {
  body_.make().set(bytes);
  return *this;
}
response& response::append_body_bytes(std::string_view bytes) {
  body_.make().append(bytes);
  return *this;
}
bool response::has_body_bytes() const noexcept { return body_.get().has_bytes; }
binary response::get_body_bytes() const { return body_.get().sent(); }

response& response::add_set_cookie(const std::wstring& value) {
  body_.make().set_cookies.push_back(value);
  return *this;
}
const std::vector<std::wstring>& response::get_set_cookies() const noexcept {
  return body_.get().set_cookies;
}
void response::clear_set_cookies() noexcept {
  if (!get_set_cookies().empty())
    body_.reach().set_cookies.clear();  // the shared empty body is never written
}

response& response::operator+=(const wchar_t* text) {
  if (text) body_.make().append(std::wstring_view(text));
  return *this;
}
response& response::operator+=(const std::wstring& text) {
  body_.make().append(std::wstring_view(text));
  return *this;
}
response& response::operator+=(const char* text) {
  if (text) append_decoded(body_.make(), text);
  return *this;
}
response& response::operator+=(const std::string& text) {
  append_decoded(body_.make(), text);
  return *this;
}

const std::wstring& response::get_content_type() { return (*this)[L"Content-Type"]; }

bool response::operator==(const response& other) const noexcept {
  return same_headers(other) && body_.get() == other.body_.get();
}

std::wstring response::to_string() const { return text_form(body_.get().shown()); }

std::wostream& operator<<(std::wostream& out, const response& message) { return out << message.to_string(); }

std::wistream& operator>>(std::wistream& in, response& message) {
  const std::wistream::sentry ready(in, true);
  if (!ready) return in;
  body_data& body = message.body_.make();
  wchar_t part[2048];
  for (std::streamsize n; (n = in.rdbuf()->sgetn(part, std::ssize(part))) > 0;)
    body.append(std::wstring_view(part, static_cast<std::size_t>(n)));
  in.setstate(std::ios_base::eofbit);
  return in;
}

}  // namespace ruvo::http
