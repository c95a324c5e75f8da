// SPDX-License-Identifier: BSL-1.0

// A request of HTTP.

#include <ruvo/binary.hpp>
#include <ruvo/http.hpp>
#include <ruvo/xvar.hpp>

#include <ostream>
#include <string_view>
#include <utility>

#include "base/utf.hpp"
#include "net/body.hpp"
#include "values/object.hpp"

namespace ruvo::http {

request::request() : header_table(L"text/plain;charset=UTF-8") {}
request::request(const std::wstring& url, const std::wstring& body) : request() {
  set_url(url).set_body(body);
}
request::request(const std::string& url, const std::string& body) : request() {
  url_.make() = texto::to_utf_16(url);
  body_.make().text = texto::to_utf_16(body);
}
request::request(const request& other) = default;
request::request(request&& other) noexcept = default;
request::~request() = default;
request& request::operator=(const request& other) {
  return this == &other ? *this : *this = request(other);  // whole or not at all
}
request& request::operator=(request&& other) noexcept = default;

request& request::operator=(const var& value) {
  if (const request* const other = detail::object_in<request>(value)) *this = *other;
  return *this;
}

request::operator xvar() const {
  xvar value;
  detail::set_object(value, *this);
  return value;
}

request& request::set_url(const std::wstring& url) {
  url_.make() = url;
  return *this;
}
request& request::set_body(const std::wstring& body) {
  body_.make().set(std::wstring_view(body));
  return *this;
}
request& request::set_sslCertPath(const std::wstring& path) {
  certificate_.make() = path;
  return *this;
}

std::wstring& request::get_url() { return url_.make(); }
const std::wstring& request::get_url() const noexcept { return url_.get(); }
std::wstring& request::get_body() { return body_.make().text; }
const std::wstring& request::get_body() const noexcept { return body_.get().text; }
std::wstring& request::get_sslCertPath() { return certificate_.make(); }
const std::wstring& request::get_sslCertPath() const noexcept { return certificate_.get(); }

request& request::set_body_bytes(const binary& bytes) {
  body_.make().set(bytes);
  return *this;
}
bool request::has_body_bytes() const noexcept { return body_.get().has_bytes; }
binary request::get_body_bytes() const { return body_.get().sent(); }

bool request::is_secure() const noexcept {
  const std::wstring& url = url_.get();
  const std::size_t colon = url.find(L':');
  if (colon == url.npos || colon <= 2) return false;
  return url[colon - 1] == L's' || url[colon - 1] == L'S';
}

bool request::operator==(const request& other) const noexcept {
  return same_headers(other) && body_.get() == other.body_.get() && url_.get() == other.url_.get();
}

std::wstring request::to_string() const { return text_form(body_.get().shown()); }

std::wostream& operator<<(std::wostream& out, const request& message) { return out << message.to_string(); }

}  // namespace ruvo::http
