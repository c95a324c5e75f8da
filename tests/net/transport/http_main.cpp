// SPDX-License-Identifier: BSL-1.0

// http_transport HOST PORT: sends requests to the server of http_server.py, reads the answers into responses
// and prints them for it to check. The exit code is 0 when every answer is what this side expects.

#include <ruvo/header_fields.hpp>
#include <ruvo/ruvo.hpp>

#include <chrono>
#include <cstdio>
#include <sstream>
#include <string>

#include "program.hpp"
#include "transport/http_client.hpp"

namespace {

using ruvo::http::request;
using ruvo::http::response;
using ruvo::texto::to_utf_8;
using transport::http_answer;

std::wstring text_of(const http_answer& answer) {
  std::wstring text;
  ruvo::exception failure;
  return ruvo::http::body_text(text, answer.message, failure) ? text : failure.get_mensaje();
}

bool show(const std::string& title, const http_answer& answer, bool expected, bool with_body = true) {
  std::ostringstream text;
  const response& message = answer.message;
  text << "== " << title << '\n' << (message.OK() ? "OK" : "WRONG") << '\n';
  text << "code " << message.get_exception().get_code() << '\n';
  text << "reason " << to_utf_8(message.get_exception().get_mensaje()) << '\n';
  for (const auto& [name, value] : answer.fields)
    text << "field " << to_utf_8(name) << '=' << to_utf_8(value) << '\n';
  for (const std::wstring& cookie : message.get_set_cookies()) text << "cookie " << to_utf_8(cookie) << '\n';
  for (const auto& [name, value] : message)
    text << "header " << to_utf_8(name) << '=' << to_utf_8(value) << '\n';
  text << "length " << message.get_body_bytes().size() << "\nbody "
       << (with_body ? to_utf_8(text_of(answer)) : "") << '\n';
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

bool send_messages(const std::wstring& root) {
  request post(root + L"/pedidos?orden=7", order());
  post["content-type"] = L"application/json;charset=UTF-8";
  post[L"X-Cliente"] = L"Núñez";
  const http_answer echo = transport::fetch("POST", post);
  ruvo::bundle back;
  bool good = !ruvo::serializer::json().deserialize(back, text_of(echo));
  good &= show("post", echo, text_of(echo) == post.get_body() && back[L"cliente"] == L"Íñigo Núñez & Cía.");

  request large(root + L"/eco", std::wstring());
  for (int i = 0; i < 40000; ++i) large.get_body() += L"ñ€\xD83D\xDE00" + std::to_wstring(i);
  const http_answer much = transport::fetch("POST", large);
  good &= show("large", much, much.message.OK() && text_of(much) == large.get_body(), false);

  request split(root + L"/", L"");
  split["X-Split"] = L"a\r\nX-More: b";
  const http_answer refused = transport::fetch("GET", split);
  return show("split", refused, refused.message.get_exception().get_code() == 15) && good;
}

/// Paths of the server, with what becomes of each.
bool get_answers(const std::wstring& root) {
  const struct {
    const char *title, *method;
    const wchar_t* path;
    unsigned long code;
  } rows[] = {{"missing", "GET", L"/nada", 404},
              {"head", "HEAD", L"/", 0},
              {"chunks", "GET", L"/trozos", 0},
              {"to the end", "GET", L"/hasta-el-fin", 0},
              {"latin", "GET", L"/latin", 0},
              {"interim", "GET", L"/antes", 0},
              {"moved", "POST", L"/a/mover?303", 0},
              {"kept", "POST", L"/a/mover?307", 0},
              {"elsewhere", "GET", L"/a/otro", 0},
              {"circle", "GET", L"/circulo", 12},
              {"cut", "GET", L"/corto", 12},
              {"cut chunk", "GET", L"/trozo-corto", 12},
              {"cut head", "GET", L"/cabeza-corta", 12},
              {"rubbish", "GET", L"/basura", 12},
              {"two lengths", "GET", L"/dos", 12},
              {"both lengths", "GET", L"/ambos", 12},
              {"too long", "GET", L"/largo", 12},
              {"endless head", "GET", L"/cabeza", 12},
              {"silent", "GET", L"/mudo", 12}};
  bool good = true;
  for (const auto& row : rows) {
    request message(root + row.path, row.method == std::string("POST") ? L"a body" : L"");
    message["Authorization"] = L"Bearer secret";
    transport::http_options how;
    how.wait.silence = std::chrono::seconds(2);
    how.most.body = 1000;
    const http_answer answer = transport::fetch(row.method, message, how);
    good &= show(row.title, answer, answer.message.get_exception().get_code() == row.code);
  }
  return good;
}

/// With the right certificate, another one, and none that is pinned.
bool get_securely(const http_answer& plain) {
  const auto port = plain.message.find("X-Secure-Port");
  if (port == plain.message.end() || port->second.empty()) return true;
  const request message(L"https://localhost:" + port->second + L"/", L"");
  transport::http_options how;
  bool good = true;
  for (const std::string& pin :
       {to_utf_8(plain.message.at("X-Certificate")), std::string(64, '0'), std::string()}) {
    how.certificate = pin;
    const http_answer answer = transport::fetch("GET", message, how);
    good &= show("secure " + pin.substr(0, 4), answer,
                 answer.message.OK() == text_of(answer).starts_with(L"segura"));
  }
  return good;
}

bool run(const place& server) {
  const std::wstring host = L"http://" + ruvo::texto::to_utf_16(server.host) + L":";
  const std::wstring root = host + std::to_wstring(server.port);
  bool good = send_messages(root);
  const http_answer plain = transport::fetch("GET", request(root + L"/", L""));
  good &= show("get", plain, plain.message.OK() && plain.message.count(L"x-repetida") == 1);
  good &= get_answers(root) && get_securely(plain);
  const http_answer refused =
      transport::fetch("GET", request(host + plain.message.at("X-Closed-Port") + L"/", L""));
  return show("refused", refused, refused.message.WRONG() && text_of(refused).empty()) && good;
}

}  // namespace

int main(int argc, char** argv) { return run_client(argc, argv, run); }
