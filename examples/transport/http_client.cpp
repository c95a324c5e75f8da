// SPDX-License-Identifier: BSL-1.0

// Requests out, answers in.

#include "http_client.hpp"

#include <ruvo/header_fields.hpp>
#include <ruvo/ruvo.hpp>

#include <exception>
#include <memory>
#include <string_view>
#include <utility>

namespace transport {

namespace {

using ruvo::http::request;
using ruvo::http::url;
using ruvo::texto::to_utf_16;
using ruvo::texto::to_utf_8;

/// What the field Host says.
std::string authority_of(const url& to) {
  std::string out = to_utf_8(to.get_host());
  if (to.has_port()) (out += ':') += std::to_string(to.get_port());
  return out;
}

void expect_web(const url& to) {
  if (to.get_scheme() != L"http" && to.get_scheme() != L"https") throw ruvo::exc::BadArgument(L"scheme");
  if (to.get_host().empty() || to.get_port() == 0) throw ruvo::exc::BadArgument(L"host");
  if (!to.get_user().empty()) throw ruvo::exc::BadArgument(L"user");  // would not be sent
}

/// What goes over the wire: the line, the fields with the transport's own in place of others, the body. A
/// field goes out as it is, or not at all: a line end in it would begin another one.
std::string wire_form(const std::string& method, const url& to, const request& message) {
  ruvo::exception failure;
  if (!ruvo::http::check(message, failure)) failure.raise();
  if (!ruvo::http::is_field_name(to_utf_16(method))) throw ruvo::exc::BadArgument(L"method");
  request sent(message);
  for (const char* name : {"Host", "Content-Length", "Transfer-Encoding", "Connection"}) sent.erase(name);
  const ruvo::binary body = message.get_body_bytes();
  std::string out = method + " " + to_utf_8(to.request_target()) + " HTTP/1.1\r\n";
  out += "Host: " + authority_of(to) + "\r\n";
  for (const auto& [name, value] : sent) out += to_utf_8(name) + ": " + to_utf_8(value) + "\r\n";
  if (!body.empty() || (method != "GET" && method != "HEAD"))
    out += "Content-Length: " + std::to_string(body.size()) + "\r\n";
  out += "Connection: close\r\n\r\n";
  return out.append(body.begin(), body.end());
}

response_parser exchange(const std::string& method, const url& to, const request& message,
                         const http_options& how) {
  const std::string bytes = wire_form(method, to, message);
  std::string host = to_utf_8(to.get_host());
  if (host.starts_with('[')) host = host.substr(1, host.size() - 2);  // an address of IPv6
  std::unique_ptr<stream> peer = connect(host, static_cast<unsigned short>(to.get_port()), how.wait);
  if (to.is_secure()) peer = secure(std::move(peer), host, how.certificate);
  peer->send(bytes);
  response_parser answer(method == "HEAD", how.most);
  std::string room(1 << 16, '\0');
  while (!answer.done()) {
    const std::size_t got = peer->receive(room.data(), room.size());
    if (got) {
      answer.take(std::string_view(room).substr(0, got));
    } else {
      answer.end();
    }
  }
  return answer;
}

bool is_same_server(const url& a, const url& b) {
  return a.get_scheme() == b.get_scheme() && a.get_host() == b.get_host() && a.get_port() == b.get_port();
}

/// Changes what the next request is, and gives whether there is one.
bool is_redirected(const http_answer& answer, int code, std::string& method, url& to, request& message) {
  const bool same_message = code == 307 || code == 308;
  const auto location = answer.message.find("Location");
  if (location == answer.message.end() || (!same_message && code != 301 && code != 302 && code != 303))
    return false;
  const url next = to.resolve(url(location->second)).erase_fragment();
  expect_web(next);
  if (to.is_secure() && !next.is_secure()) throw ruvo::exc::RunTime(L"redirected to what is not secure");
  if (!is_same_server(to, next))
    for (const char* name : {"Authorization", "Cookie"}) message.erase(name);
  if (!same_message && method != "HEAD") {
    method = "GET";
    message.set_body(L"").erase("Content-Type");
  }
  to = next;
  return true;
}

void fill(http_answer& out, const response_parser& read) {
  out.message = ruvo::http::response();
  out.message.clear();
  out.fields = {};
  for (const auto& [name, bytes] : read.fields) {
    const std::wstring value = to_utf_16(bytes);
    out.fields.add(to_utf_16(name), value);
    if (ruvo::texto::to_lowercase_(to_utf_16(name)) == L"set-cookie") {
      out.message.add_set_cookie(value);
      continue;
    }
    std::wstring& joined = out.message[name];
    if (!joined.empty()) joined += L", ";
    joined += value;
  }
  out.message.append_body_bytes(read.body);
  if (read.status / 100 != 2) {
    const std::wstring reason = std::to_wstring(read.status) + L" " + to_utf_16(read.reason);
    out.message.set_exception(ruvo::exception(reason, static_cast<unsigned long>(read.status), 0, 3000));
  }
}

}  // namespace

http_answer fetch(const std::string& method, const request& message, const http_options& how) {
  http_answer out;
  out.message.clear();
  try {
    out.url = url(message.get_url());
    expect_web(out.url);
    request sent(message);
    std::string verb = method;
    for (int left = how.redirects;; --left) {
      const response_parser read = exchange(verb, out.url, sent, how);
      fill(out, read);
      if (!is_redirected(out, read.status, verb, out.url, sent)) return out;
      if (left <= 0) throw ruvo::exc::RunTime(L"too many redirects");
    }
  } catch (const ruvo::exception& error) {
    out.message.set_exception(error);
  } catch (const std::exception& error) {
    out.message.set_exception(ruvo::exc::UnKnown(&error));
  }
  return out;
}

}  // namespace transport
