// SPDX-License-Identifier: BSL-1.0

// mail_transport HOST PORT OTHER [CERTIFICATE]: composes messages, sends them through the server of
// mail_server.py and prints, as one line of JSON, what was sent and how the deliveries went; then it meets
// the odd servers at the port OTHER. The exit code is 0 when what should arrive did.

#include <ruvo/ruvo.hpp>

#include <chrono>
#include <cstdio>
#include <string>

#include "program.hpp"
#include "transport/smtp_client.hpp"

namespace {

using ruvo::bundle;
using ruvo::smtp::address;
using ruvo::smtp::email;
using ruvo::smtp::mailbox;
using ruvo::smtp::response;
namespace texto = ruvo::texto;

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

/// Through the odd server that the client's name calls for; nothing should end or hang this program.
bundle meet(const place& server, const std::string& name, const std::wstring& to, mailbox::ENCRYPTION mode,
            const std::wstring& user) {
  transport::mail_options how;
  how.own_name = name + ".example";
  how.credentials_in_clear = name.find("login") != name.npos;
  how.certificate = server.more.size() > 1 ? server.more[1] : "";
  how.wait.silence = std::chrono::seconds(2);
  email message(L"jose@ruvo.es", L"Factura", L"text");
  message.set_uuid(L"ID-1").set_date(ruvo::datetime(0));
  for (const wchar_t* mail : {L"ana@ejemplo.es", L"rechazado@ejemplo.es"}) message[mail];
  if (!to.empty()) message[to];
  bundle values;
  try {
    mailbox account;
    account.set_host(L"localhost:" + texto::to_utf_16(server.more[0])).set_encryption(mode);
    transport::mail_session mails(account.set_user(user).set_password(L"contraseña"), how);
    const response outcome = mails.send(message);
    values[L"report"] = outcome.get_report();
    values[L"failure"] = outcome.OK() ? L"" : outcome.get_exception().get_mensaje();
    const response second = mails.send({address(L"", L"jose@ruvo.es"), {address(L"", L"ana@ejemplo.es")}, {}},
                                       "Subject: a\r\n\r\n.\r\n..\r\n\xC3\xB1");
    values[L"second"] = second.get_exception().get_mensaje();
    // Neither does anything, nor harms the session.
    const ruvo::smtp::envelope odd = {
        address(L"", L"jose@ruvo.es> SIZE=1"), {address(L"", L"ana@ejemplo.es")}, {}};
    values[L"odd"] = mails.send(odd, "").get_exception().get_mensaje() + L"|" +
                     mails.send({}, "a\n.\nb").get_exception().get_mensaje();
  } catch (const ruvo::exception& error) {
    values[L"thrown"] = error.get_mensaje();
  }
  return values;
}

bundle meet_all(const place& server) {
  bundle all;
  const auto add = [&](const char* name, const wchar_t* to = L"", mailbox::ENCRYPTION mode = mailbox::NONE,
                       const wchar_t* user = L"") { all[name] = meet(server, name, to, mode, user); };
  for (const char* name :
       {"piped", "slow", "helo", "late", "none", "cut", "cutdata", "rubbish", "endless", "silent"})
    add(name);
  add("piped8", L"ñandú@ejemplo.es");
  add("slow8", L"ñandú@ejemplo.es");
  add("login", L"", mailbox::NONE, L"ana");
  add("loginold", L"", mailbox::NONE, L"ana");
  add("nologin", L"", mailbox::NONE, L"ana");
  add("clear", L"", mailbox::NONE, L"ana");
  add("notls", L"", mailbox::STARTTLS);
  add("early", L"", mailbox::STARTTLS);
  if (server.more.size() > 1) add("tls", L"", mailbox::STARTTLS, L"ana");
  return all;
}

bool run(const place& server) {
  mailbox account;
  account.set_host(texto::to_utf_16(server.host)).set_port(server.port);
  transport::mail_session mails(account);
  const email message = compose();
  const response sent = mails.send(message);
  email other(L"jose@ruvo.es", L"a nadie");
  other[L"rechazado@ejemplo.es"];
  const response failed = mails.send(other);
  mails.close();

  std::wstring json;
  ruvo::serializer::json().serialize(json, bundle({{L"sent", report_of(message, sent)},
                                                   {L"failed", report_of(other, failed)},
                                                   {L"met", meet_all(server)}}));
  const std::string text = texto::to_utf_8(json);
  std::fwrite(text.data(), 1, text.size(), stdout);
  return sent.OK() && failed.WRONG();
}

}  // namespace

int main(int argc, char** argv) { return run_client(argc, argv, run); }
