// SPDX-License-Identifier: BSL-1.0
#pragma once

// An SMTP client (RFC 5321): a session with a mail server, through which messages leave.

#include <ruvo/smtp.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "stream.hpp"

namespace transport {

struct mail_options {
  patience wait;
  std::string certificate;             ///< As `pin` of secure().
  std::string own_name = "localhost";  ///< How the client calls itself.
  bool credentials_in_clear =
      false;  ///< Whether to log in without TLS, which shows the password to all on the way.
};

class mail_session {
 public:
  /// Connects, secures the connection and logs in, as the mailbox says: TLS from the start with SSL, by
  /// STARTTLS with the two other modes, and never less than that; a login if there is a user, by PLAIN or
  /// LOGIN. Throws ruvo::exc::RunTime, and for what the server refused ruvo::exception with the number of its
  /// reply.
  explicit mail_session(const ruvo::smtp::mailbox& account, const mail_options& how = {});
  mail_session(const mail_session&) = delete;
  mail_session& operator=(const mail_session&) = delete;
  ~mail_session();

  /// Sends the message to all recipients that the server takes. Never throws what the server does: refused
  /// recipients are in the report, each with its reply, and so are those without a mail. The status is a
  /// failure when nobody got the message; after a failure on the way the session cannot be used any more.
  /// Recipients and fields beyond ASCII need a server with SMTPUTF8.
  ruvo::smtp::response send(const ruvo::smtp::email& message);
  /// Sends bytes that are a message already, as they are: lines that end with CRLF. Bytes beyond ASCII need a
  /// server with 8BITMIME.
  ruvo::smtp::response send(const ruvo::smtp::envelope& to, std::string_view message);

  /// Takes leave; a session that ends without just hangs up.
  void close();

 private:
  struct reply {
    unsigned long code = 0;
    std::vector<std::string> lines;
  };

  void greet();
  void start_tls(const std::string& host);
  void log_in(const ruvo::smtp::mailbox& account);
  bool offers(const std::string& extension) const { return extensions_.count(extension) != 0; }
  reply receive();
  reply ask(const std::string& command);
  std::vector<reply> ask_all(const std::vector<std::string>& commands);
  static void demand(unsigned long expected, const reply& got);
  static ruvo::exception failure_of(const reply& got);
  /// What goes out behind DATA: the parameters of MAIL, and what writes it.
  struct content {
    std::string parameters;
    std::function<bool(const ruvo::mime::piece_sink& to, ruvo::exception& failure)> write;
  };
  template <class Work>
  ruvo::smtp::response guarded(Work work);
  void deliver(const ruvo::smtp::envelope& to, const content& what, ruvo::smtp::response& outcome);
  bool send_content(const content& what, reply& last);

  mail_options how_;
  std::unique_ptr<stream> stream_;
  std::optional<reader> in_;
  std::set<std::string> extensions_;  // "PIPELINING", "AUTH PLAIN", in capitals
  bool is_secure_ = false, broken_ = false;
};

}  // namespace transport
