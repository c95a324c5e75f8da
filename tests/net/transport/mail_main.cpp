// mail_transport HOST PORT: composes messages, sends them through the server of mail_server.py and prints, as
// one line of JSON, what was sent and how the deliveries went. The exit code is 0 when both ended as
// expected.

#include <ruvo/ruvo.hpp>

#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <string_view>

#include "socket_transport.hpp"

namespace {

using ruvo::bundle;
using ruvo::smtp::address;
using ruvo::smtp::email;
using ruvo::smtp::response;
namespace texto = ruvo::texto;

// --- a transport: what an application brings along

/// Latin-1, with character references for what is beyond.
std::string latin_1(const std::wstring& text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    auto code = static_cast<unsigned>(static_cast<char16_t>(text[i]));
    if (code >= 0xD800 && code < 0xDC00 && i + 1 < text.size())
      code = 0x10000 + ((code - 0xD800) << 10) + (static_cast<unsigned>(text[++i]) - 0xDC00);
    if (code < 256)
      out.push_back(static_cast<char>(code));
    else
      out += "&#" + std::to_string(code) + ";";
  }
  return out;
}

/// RFC 2045, 6.7. Line ends of the text stay.
std::string quoted_printable(std::string_view text) {
  std::string out;
  std::size_t line = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text.substr(i, 2) == "\r\n") {
      out += text.substr(i++, 2);
      line = out.size();
      continue;
    }
    if (out.size() - line > 72) {
      out += "=\r\n";
      line = out.size();
    }
    const auto c = static_cast<unsigned char>(text[i]);
    const bool blank_at_end = c == ' ' && (i + 1 == text.size() || text[i + 1] == '\r');
    if (c >= ' ' && c < 127 && c != '=' && !blank_at_end) {
      out.push_back(text[i]);
    } else {
      constexpr char digits[] = "0123456789ABCDEF";
      out += {'=', digits[c >> 4], digits[c & 15]};
    }
  }
  return out;
}

std::string base64_lines(const std::string& text) {
  std::string all, out;
  texto::base64_encode(all, text, false);
  for (std::size_t at = 0; at < all.size(); at += 76) out += all.substr(at, 76) + "\r\n";
  return out;
}

/// A list of the library as RFC 5322 has it.
std::string with_commas(std::string list) {
  for (std::size_t at = 0; (at = list.find(">;", at)) != list.npos; at += 2) list.replace(at, 2, ">,\r\n ");
  return list;
}

std::string field(const std::string& name, const std::string& value) {
  return value.empty() || value == "<>" ? "" : name + ": " + value + "\r\n";
}

/// The lines of the library's block that are ready to be sent, and the others encoded. Blind recipients are
/// not told.
std::string header(const email& message) {
  std::wostringstream block;
  message.serialize_headers(block);
  std::string out, line;
  std::istringstream lines(texto::to_utf_8(block.str()));
  while (std::getline(lines, line))
    if (line.starts_with("Date:") || line.starts_with("Message-ID:")) out += line + "\n";
  std::string to, cc;
  message.q_serialize_recipients(to, cc);
  out += field("From", message.get_from().q_encoded()) + field("Sender", message.get_sender().q_encoded());
  out += field("To", with_commas(to)) + field("Cc", with_commas(cc));
  return out + field("Subject", texto::q_encoded(texto::to_utf_8(message.get_subject())));
}

std::string content(const email& message) {
  const std::string boundary = "part-" + texto::to_utf_8(message.get_uuid()), next = "\r\n--" + boundary;
  return header(message) + "MIME-Version: 1.0\r\nContent-Type: multipart/alternative; boundary=\"" +
         boundary + "\"\r\n" + next +
         "\r\nContent-Type: text/plain; charset=utf-8\r\nContent-Transfer-Encoding: base64\r\n\r\n" +
         base64_lines(texto::to_utf_8(message.get_plain_post())) + next +
         "\r\nContent-Type: text/html; charset=iso-8859-1\r\nContent-Transfer-Encoding: "
         "quoted-printable\r\n\r\n" +
         quoted_printable(latin_1(message.get_hmtl_post())) + next + "--\r\n";
}

/// RFC 5321, 4.5.2: a line that begins with a dot gets another one.
std::string dot_stuffed(const std::string& text) {
  std::string out;
  bool at_start = true;
  for (const char c : text) {
    if (at_start && c == '.') out.push_back('.');
    out.push_back(c);
    at_start = c == '\n';
  }
  return out;
}

class session {
 public:
  session(const std::string& host, unsigned short port) : peer_(host, port) {
    demand(220, receive());
    demand(250, ask("EHLO client.example"));
  }

  response send(const email& message) {
    response outcome;
    demand(250, ask("MAIL FROM:<" + texto::to_utf_8(message.get_from().get_mail()) + ">"));
    for (const auto& [recipient, role] : message)
      if (recipient.check() && role >= email::TO_) offer(recipient, outcome);
    if (outcome.get_report().get_list(L"accepted").empty()) {
      outcome.set_exception(ruvo::exc::RunTime(L"no recipient was accepted"));
      demand(250, ask("RSET"));
    } else {
      demand(354, ask("DATA"));
      demand(250, ask(dot_stuffed(content(message)) + "."));
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

bundle told(const email& message, const response& outcome) {
  bundle values;
  values[L"message"] = bundle(message);
  values[L"id"] = message.get_message_id();
  values[L"plain"] = message.get_plain_post();
  values[L"html"] = message.get_hmtl_post();
  values[L"report"] = outcome.get_report();
  values[L"ok"] = outcome.OK();
  return values;
}

bool run(const std::string& host, unsigned short port) {
  session mails(host, port);
  const email message = compose();
  const response sent = mails.send(message);
  email other(L"jose@ruvo.es", L"a nadie");
  other[L"rechazado@ejemplo.es"];
  const response failed = mails.send(other);
  mails.close();

  std::wstring json;
  ruvo::serializer::json().serialize(
      json, bundle({{L"sent", told(message, sent)}, {L"failed", told(other, failed)}}));
  const std::string text = texto::to_utf_8(json);
  std::fwrite(text.data(), 1, text.size(), stdout);
  return sent.OK() && failed.WRONG();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 1;
  try {
    return run(argv[1], static_cast<unsigned short>(std::strtoul(argv[2], nullptr, 10))) ? 0 : 1;
  } catch (const std::exception& error) {
    std::printf("failed: %s\n", error.what());
    return 1;
  }
}
