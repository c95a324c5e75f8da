// SPDX-License-Identifier: BSL-1.0

// mail_transport HOST PORT: composes messages, sends them through the server of mail_server.py and prints, as
// one line of JSON, what was sent and how the deliveries went. The exit code is 0 when both ended as
// expected.

#include <ruvo/ruvo.hpp>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "socket_transport.hpp"

namespace {

using ruvo::bundle;
using ruvo::smtp::address;
using ruvo::smtp::email;
using ruvo::smtp::response;
namespace texto = ruvo::texto;

// --- a transport: what an application brings along

class session {
 public:
  explicit session(const transport::place& server) : peer_(server) {
    demand(220, receive());
    demand(250, ask("EHLO client.example"));
  }

  response send(const email& message) {
    response outcome;
    ruvo::exception error;
    ruvo::smtp::envelope envelope;
    std::string content;
    if (!ruvo::smtp::seal(envelope, message, error) || !ruvo::smtp::write(content, message, error))
      error.raise();
    demand(250, ask("MAIL FROM:<" + texto::to_utf_8(envelope.sender.get_mail()) + ">"));
    for (const address& recipient : envelope.recipients) offer(recipient, outcome);
    if (outcome.get_report().get_list(L"accepted").empty()) {
      outcome.set_exception(ruvo::exc::RunTime(L"no recipient was accepted"));
      demand(250, ask("RSET"));
    } else {
      demand(354, ask("DATA"));
      demand(250, ask(content + "."));
    }
    return outcome;
  }

  void close() { demand(221, ask("QUIT")); }

 private:
  struct reply {
    unsigned long code;
    std::string text;
  };

  reply receive() {
    std::string line;
    do {
      line = peer_.receive_line();
    } while (line.size() > 3 && line[3] == '-');
    return {std::strtoul(line.c_str(), nullptr, 10), line.size() > 4 ? line.substr(4) : ""};
  }

  reply ask(const std::string& command) {
    peer_.send(command + "\r\n");
    return receive();
  }

  static ruvo::exception failure(const reply& got) { return {texto::to_utf_16(got.text), got.code, 0, 3000}; }

  static void demand(unsigned long code, const reply& got) {
    if (got.code != code) throw failure(got);
  }

  void offer(const address& recipient, response& outcome) {
    const reply got = ask("RCPT TO:<" + texto::to_utf_8(recipient.get_mail()) + ">");
    if (got.code / 100 == 2)
      outcome.push(recipient);
    else
      outcome.push(recipient, failure(got));
  }

  transport::connection peer_;
};

// --- what is sent

email compose() {
  std::wstring body =
      L"<html><head><title>Factura</title></head><body><h1>Factura nº 7 de José</h1>\r\n"
      L".una línea que empieza por un punto\r\n..y otra por dos\r\n.\r\n<p>Importe: 10 € "
      L"\xD83D\xDE00</p>\r\n<p>";
  for (int i = 0; i < 500; ++i) body += L"línea muy larga ";
  email message(address(L"José Núñez", L"jose@ruvo.es"), L"Factura de año nuevo: 10 €, nº 7",
                body + L"</p></body></html>", L"José Núñez\r\nAtención al cliente");
  message.set_sender(address(L"Tienda «Ruvo»", L"tienda@ruvo.es"));
  message[address(L"Ana Íñiguez, hija", L"ana@ejemplo.es")] = email::TO_;
  message[address(L"山田 太郎", L"taro@ejemplo.es")] = email::TO_;
  message[L"sin-nombre@ejemplo.es"] = email::CC_;
  message[address(L"Rechazado", L"rechazado@ejemplo.es")] = email::CC_;
  message[address(L"Oculta", L"oculta@ejemplo.es")] = email::CCO_;
  message[L"esto no es un correo"] = email::TO_;
  return message;
}

bundle report_of(const email& message, const response& outcome) {
  bundle values;
  values[L"message"] = bundle(message);
  values[L"id"] = message.get_message_id();
  values[L"plain"] = message.get_plain_post();
  values[L"html"] = message.get_hmtl_post();
  values[L"report"] = outcome.get_report();
  values[L"ok"] = outcome.OK();
  return values;
}

bool run(const transport::place& server) {
  session mails(server);
  const email message = compose();
  const response sent = mails.send(message);
  email other(L"jose@ruvo.es", L"a nadie");
  other[L"rechazado@ejemplo.es"];
  const response failed = mails.send(other);
  mails.close();

  std::wstring json;
  ruvo::serializer::json().serialize(
      json, bundle({{L"sent", report_of(message, sent)}, {L"failed", report_of(other, failed)}}));
  const std::string text = texto::to_utf_8(json);
  std::fwrite(text.data(), 1, text.size(), stdout);
  return sent.OK() && failed.WRONG();
}

}  // namespace

int main(int argc, char** argv) { return transport::run(argc, argv, run); }
