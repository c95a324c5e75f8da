// SPDX-License-Identifier: BSL-1.0

// Commands out, replies in.

#include "smtp_client.hpp"

#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <charconv>
#include <exception>
#include <sstream>
#include <system_error>

namespace transport {

namespace {

using ruvo::smtp::address;
using ruvo::smtp::email;
using ruvo::smtp::mailbox;
using ruvo::smtp::response;
using ruvo::texto::to_utf_16;
using ruvo::texto::to_utf_8;

constexpr std::size_t longest_line = 4096, most_lines = 200;
/// Commands that are sent before their replies are read: as many as have room on the way.
constexpr std::size_t most_commands = 50;

[[noreturn]] void fail(const wchar_t* what) { throw ruvo::exc::RunTime(what); }

std::string in_capitals(std::string text) {
  for (char& c : text)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
  return text;
}

std::string in_base64(const std::string& text) { return to_utf_8(ruvo::binary(text).getAsB64()); }

/// "mail.example.es" of a host, which may carry a port.
std::string host_of(const mailbox& account) {
  const std::string host = to_utf_8(account.get_host());
  return host.substr(0, host.find(':'));
}

unsigned short port_of(const mailbox& account) {
  const std::string host = to_utf_8(account.get_host());
  const std::size_t colon = host.find(':');
  if (colon == host.npos) return static_cast<unsigned short>(account.get_port());
  unsigned short port = 0;
  const char* const end = host.data() + host.size();
  const auto read = std::from_chars(host.data() + colon + 1, end, port);
  if (read.ec != std::errc() || read.ptr != end || port == 0) fail(L"no port behind the host");
  return port;
}

/// What stands between "<>": nothing that could end it, and beyond ASCII only with SMTPUTF8.
std::string path_of(const address& who, bool utf8) {
  const std::string mail = to_utf_8(who.get_mail());
  const auto fits = [utf8](char c) {
    const auto code = static_cast<unsigned char>(c);
    return code > ' ' && c != '<' && c != '>' && code != 127 && (utf8 || code < 128);
  };
  if (!std::all_of(mail.begin(), mail.end(), fits)) throw ruvo::exc::BadArgument(who.get_mail());
  return "<" + mail + ">";
}

/// Whether each CR has its LF, and each LF its CR: what some servers take for the end of a line, others do
/// not.
bool has_whole_lines(std::string_view message) {
  for (std::size_t at = 0; (at = message.find_first_of("\r\n", at)) != message.npos; at += 2)
    if (message.substr(at, 2) != "\r\n") return false;
  return true;
}

/// Ends lines that begin with "." as the other side expects it, across pieces.
class dot_stuffing {
 public:
  std::string operator()(std::string_view piece) {
    std::string out;
    for (const char c : piece) {
      if (c == '.' && at_start_) out += '.';
      out += c;
      at_start_ = c == '\n';
    }
    return out;
  }
  /// What ends the content.
  const char* end() const { return at_start_ ? ".\r\n" : "\r\n.\r\n"; }

 private:
  bool at_start_ = true;
};

}  // namespace

mail_session::mail_session(const mailbox& account, const mail_options& how) : how_(how) {
  const std::string host = host_of(account);
  stream_ = connect(host, port_of(account), how.wait);
  if (account.get_encryption() == mailbox::SSL) {
    stream_ = secure(std::move(stream_), host, how.certificate);
    is_secure_ = true;
  }
  in_.emplace(*stream_);
  demand(220, receive());
  greet();
  if (account.is_secure() && !is_secure_) start_tls(host);
  if (!account.get_user().empty()) log_in(account);
}

mail_session::~mail_session() = default;

void mail_session::greet() {
  extensions_.clear();
  const reply hello = ask("EHLO " + how_.own_name);
  if (hello.code != 250) return demand(250, ask("HELO " + how_.own_name));
  for (std::size_t n = 1; n < hello.lines.size(); ++n) {
    std::istringstream words(in_capitals(hello.lines[n]));
    std::string name, word;
    words >> name;
    extensions_.insert(name);
    while (words >> word) extensions_.insert(std::string(name).append(" ").append(word));
  }
}

void mail_session::start_tls(const std::string& host) {
  if (!offers("STARTTLS")) fail(L"the server offers no TLS");
  demand(220, ask("STARTTLS"));
  if (in_->has_more()) fail(L"something came before TLS");  // from whom, nobody knows
  stream_ = secure(std::move(stream_), host, how_.certificate);
  in_.emplace(*stream_);
  is_secure_ = true;
  greet();  // what was offered in clear counts for nothing
}

void mail_session::log_in(const mailbox& account) {
  if (!is_secure_ && !how_.credentials_in_clear) fail(L"no login without TLS");
  const std::string user = to_utf_8(account.get_user()), password = to_utf_8(account.get_password());
  if (offers("AUTH PLAIN")) {
    demand(235, ask("AUTH PLAIN " + in_base64(std::string(1, '\0') + user + '\0' + password)));
  } else if (offers("AUTH LOGIN")) {
    demand(334, ask("AUTH LOGIN"));
    demand(334, ask(in_base64(user)));
    demand(235, ask(in_base64(password)));
  } else {
    fail(L"the server offers no login that is known here");
  }
}

/// Until the work has read all of its replies, the session is broken.
template <class Work>
response mail_session::guarded(Work work) {
  response outcome;
  try {
    if (broken_) fail(L"the session broke before");
    work(outcome);
  } catch (const ruvo::exception& error) {
    outcome.set_exception(error);
  } catch (const std::exception& error) {
    outcome.set_exception(ruvo::exc::UnKnown(&error));
  }
  return outcome;
}

response mail_session::send(const email& message) {
  return guarded([&](response& outcome) {
    ruvo::smtp::envelope envelope;
    ruvo::exception failure;
    ruvo::mime::write_options options;
    content what;
    if (!ruvo::smtp::seal(envelope, message, failure)) {
      options.utf8 = offers("SMTPUTF8") && offers("8BITMIME");
      if (!options.utf8 || !ruvo::smtp::seal(envelope, message, failure, options)) failure.raise();
      what.parameters = " BODY=8BITMIME SMTPUTF8";
    }
    what.write = [&](const ruvo::mime::piece_sink& to, ruvo::exception& error) {
      return ruvo::smtp::write(to, message, error, options);
    };
    deliver(envelope, what, outcome);
  });
}

response mail_session::send(const ruvo::smtp::envelope& to, std::string_view message) {
  return guarded([&](response& outcome) {
    content what;
    if (!has_whole_lines(message)) fail(L"a line of the message does not end with CRLF");
    if (std::any_of(message.begin(), message.end(),
                    [](char c) { return static_cast<unsigned char>(c) > 127; })) {
      if (!offers("8BITMIME")) fail(L"the server takes ASCII only");
      what.parameters = " BODY=8BITMIME";
    }
    what.write = [&](const ruvo::mime::piece_sink& sink, ruvo::exception&) { return sink(message); };
    deliver(to, what, outcome);
  });
}

void mail_session::deliver(const ruvo::smtp::envelope& to, const content& what, response& outcome) {
  const bool utf8 = what.parameters.ends_with("SMTPUTF8");
  std::vector<std::string> commands = {"MAIL FROM:" + path_of(to.sender, utf8) + what.parameters};
  for (const address& each : to.recipients) commands.push_back("RCPT TO:" + path_of(each, utf8));
  for (const address& each : to.left_out) outcome.push(each, ruvo::exc::BadArgument(each.get_mail()));
  broken_ = true;
  const std::vector<reply> replies = ask_all(commands);

  std::vector<address> accepted;
  for (std::size_t n = 0; n < to.recipients.size(); ++n) {
    const reply& got = replies[0].code == 250 ? replies[n + 1] : replies[0];
    if (got.code == 250 || got.code == 251) {
      accepted.push_back(to.recipients[n]);
    } else {
      outcome.push(to.recipients[n], failure_of(got));
    }
  }
  if (accepted.empty()) {
    outcome.set_exception(ruvo::exc::RunTime(L"no recipient was accepted"));
    demand(250, ask("RSET"));
  } else {
    reply last;
    const bool taken = send_content(what, last);
    for (const address& each : accepted) taken ? outcome.push(each) : outcome.push(each, failure_of(last));
    if (!taken) {
      outcome.set_exception(failure_of(last));
      demand(250, ask("RSET"));
    }
  }
  broken_ = false;
}

/// The content goes out while it is written. If writing fails in between, for an attached file that is gone,
/// there is no way to take back what was sent but to hang up.
bool mail_session::send_content(const content& what, reply& last) {
  last = ask("DATA");
  if (last.code != 354) return false;
  dot_stuffing stuffed;
  ruvo::exception failure;
  const auto send = [&](std::string_view piece) {
    stream_->send(stuffed(piece));
    return true;
  };
  if (!what.write(send, failure)) {
    stream_.reset();
    failure.raise();
  }
  stream_->send(stuffed.end());
  last = receive();
  return last.code == 250;
}

void mail_session::close() {
  if (!broken_) demand(221, ask("QUIT"));
}

// --- commands and replies

mail_session::reply mail_session::receive() {
  reply got;
  for (bool more = true; more;) {
    const std::string line = in_->line(longest_line);
    const bool number =
        line.size() >= 3 && line[0] >= '2' && line[0] <= '5' &&
        std::all_of(line.begin(), line.begin() + 3, [](char c) { return c >= '0' && c <= '9'; });
    more = line.size() > 3 && line[3] == '-';
    if (!number || (line.size() > 3 && !more && line[3] != ' ') || got.lines.size() == most_lines)
      fail(L"that is no mail server");
    got.code = std::stoul(line.substr(0, 3));
    got.lines.push_back(line.size() > 4 ? line.substr(4) : "");
  }
  return got;
}

mail_session::reply mail_session::ask(const std::string& command) { return ask_all({command})[0]; }

std::vector<mail_session::reply> mail_session::ask_all(const std::vector<std::string>& commands) {
  std::vector<reply> replies;
  const std::size_t step = offers("PIPELINING") ? most_commands : 1;
  while (replies.size() < commands.size()) {
    const std::size_t end = std::min(commands.size(), replies.size() + step);
    std::string lines;
    for (std::size_t n = replies.size(); n < end; ++n) {
      if (commands[n].find_first_of(std::string("\r\n\0", 3)) != std::string::npos)
        fail(L"no command of one line");
      lines += commands[n] + "\r\n";
    }
    stream_->send(lines);
    while (replies.size() < end) replies.push_back(receive());
  }
  return replies;
}

void mail_session::demand(unsigned long expected, const reply& got) {
  if (got.code != expected) failure_of(got).raise();
}

ruvo::exception mail_session::failure_of(const reply& got) {
  return ruvo::exception(to_utf_16(got.lines.back()), got.code, 0, 3000);
}

}  // namespace transport
