// SPDX-License-Identifier: BSL-1.0

// http_transport HOST PORT: sends requests to the server of http_server.py, reads the answers into responses
// and prints them for it to check. The exit code is 0 when every answer is what this side expects.

#include <ruvo/ruvo.hpp>

#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <sstream>
#include <string>

#include "socket_transport.hpp"

namespace {

using ruvo::http::request;
using ruvo::http::response;

// --- a transport: what an application brings along

/// The text form of the message as it goes over the wire: without the line end behind the body.
std::string wire_form(const request& message) {
  const std::wstring text = message.to_string();
  return ruvo::texto::to_utf_8(text.substr(0, text.size() - 2));
}

void receive_headers(transport::connection& peer, response& answer) {
  for (std::string line; !(line = peer.receive_line()).empty();) {
    const std::size_t colon = line.find(':');
    if (colon == line.npos) throw ruvo::exc::RunTime(L"a header without colon");
    std::wstring& value = answer[line.substr(0, colon)];
    if (!value.empty()) value += L", ";
    value += ruvo::texto::trim_(ruvo::texto::to_utf_16(line.substr(colon + 1)));
  }
}

/// Anything but success becomes the answer's status.
void receive_status(transport::connection& peer, response& answer) {
  const std::string line = peer.receive_line();
  const std::size_t blank = line.find(' ');
  if (!line.starts_with("HTTP/1.") || blank == line.npos) throw ruvo::exc::RunTime(L"no status line");
  const unsigned long code = std::strtoul(line.c_str() + blank, nullptr, 10);
  if (code / 100 != 2)
    answer.set_exception(ruvo::exception(ruvo::texto::to_utf_16(line.substr(blank + 1)), code, 0, 3000));
}

void exchange(const transport::place& server, const std::string& method, const request& message,
              response& answer) {
  transport::connection peer(server);
  request sent(message);
  sent[L"Host"] = ruvo::texto::to_utf_16(server.host + ":" + std::to_string(server.port));
  sent[L"Content-Length"] = std::to_wstring(ruvo::texto::to_utf_8(message.get_body()).size());
  const std::wstring& url = message.get_url();
  const std::wstring path = url.substr(url.find(L'/', url.find(L"//") + 2));
  peer.send(method + " " + ruvo::texto::to_utf_8(path) + " HTTP/1.0\r\n" + wire_form(sent));
  answer.clear();
  receive_status(peer, answer);
  receive_headers(peer, answer);
  const auto length = answer.find("content-length");
  answer += length == answer.end() ? peer.receive_rest()
                                   : peer.receive(std::wcstoul(length->second.c_str(), nullptr, 10));
}

/// What the network fails at becomes the answer's status, too.
response fetch(const transport::place& server, const std::string& method, const request& message) {
  response answer;
  try {
    exchange(server, method, message, answer);
  } catch (const ruvo::exception& error) {
    answer.set_exception(error);
  }
  return answer;
}

// --- what is asked

bool show(const std::string& title, const response& answer, bool expected) {
  using ruvo::texto::to_utf_8;
  std::ostringstream text;
  text << "== " << title << '\n' << (answer.OK() ? "OK" : "WRONG") << '\n';
  text << "code " << answer.get_exception().get_code() << '\n';
  for (const auto& [name, value] : answer)
    text << "header " << to_utf_8(name) << '=' << to_utf_8(value) << '\n';
  text << "length " << answer.length() << "\nbody " << to_utf_8(answer.get_body()) << '\n';
  const std::string bytes = text.str();
  std::fwrite(bytes.data(), 1, bytes.size(), stdout);
  if (!expected) std::fputs("not what was expected\n", stdout);
  return expected;
}

std::wstring order() {
  ruvo::bundle value;
  value[L"cliente"] = L"Íñigo Núñez & Cía.";
  value[L"importe"] = 1250.75;
  value[L"nota"] = L"dos\r\nlíneas, 10 € y \xD83D\xDE00";
  std::wstring text;
  ruvo::serializer::json().serialize(text, value);
  return text;
}

bool run(const transport::place& server) {
  const std::wstring root = L"http://" + ruvo::texto::to_utf_16(server.host);
  bool good = true;

  request post(root + L"/pedidos?orden=7", order());
  post["content-type"] = L"application/json;charset=UTF-8";
  post[L"X-Cliente"] = L"Núñez";
  const response echo = fetch(server, "POST", post);
  ruvo::bundle back;
  good &= !ruvo::serializer::json().deserialize(back, echo.get_body());
  good &= show("post", echo,
               echo.OK() && echo.get_body() == post.get_body() && back[L"cliente"] == L"Íñigo Núñez & Cía.");

  const response plain = fetch(server, "GET", request(root + L"/", L""));
  good &= show("get", plain, plain.OK() && plain.count(L"x-repetida") == 1);

  request large(root + L"/eco", std::wstring());
  for (int i = 0; i < 40000; ++i) large.get_body() += L"ñ€\xD83D\xDE00" + std::to_wstring(i);
  const response much = fetch(server, "POST", large);
  good &= much.OK() && much.get_body() == large.get_body();
  good &= show("large", response(much).set_body(L""), much.length() == large.get_body().size());

  const response missing = fetch(server, "GET", request(root + L"/nada", L""));
  good &= show("missing", missing, missing.WRONG() && missing.get_exception().get_code() == 404);

  const response cut = fetch(server, "GET", request(root + L"/corto", L""));
  good &= show("cut", cut, cut.WRONG());

  const auto closed =
      static_cast<unsigned short>(std::wcstoul(plain.at("X-Closed-Port").c_str(), nullptr, 10));
  const response refused = fetch({server.host, closed}, "GET", request(root + L"/", L""));
  good &= show("refused", refused, refused.WRONG() && refused.length() == 0);
  return good;
}

}  // namespace

int main(int argc, char** argv) { return transport::run(argc, argv, run); }
