// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::smtp::mailbox, the account on a mail server through which messages leave.

#include <ruvo/api.hpp>
#include <ruvo/fwd.hpp>

#include <concepts>
#include <iosfwd>
#include <string>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo::smtp {

/// A server, how to talk to it, and whom to log in as. The library opens no connection: this is what a
/// transport reads. Nothing but a lack of memory fails, unless stated; a call that throws changes nothing.
class KESTA_API mailbox {
 public:
  /// How the connection is secured; the value is the port that is customary for it.
  enum ENCRYPTION : unsigned { NONE = 25, SSL = 465, STARTTLS = 587, TLS = 2525 };

  mailbox();  ///< No host, NONE, no port of its own.
  mailbox(const mailbox& other);
  mailbox(mailbox&& other) noexcept;
  virtual ~mailbox();
  /// As the assignments, over an empty mailbox.
  mailbox(const bundle& fields);
  template <std::derived_from<var> V>
  explicit mailbox(const V& value) : mailbox() {
    take(value);
  }

  mailbox& operator=(const mailbox& other);
  mailbox& operator=(mailbox&& other) noexcept;
  /// Takes "host", "port", "encryption" (as stoe() reads it), "user" and "password". A missing or null entry
  /// leaves its field as it is, and so does a port that is no number of 32 bits.
  mailbox& operator=(const bundle& fields);
  /// As deserialize(): a text that is refused changes nothing.
  mailbox& operator=(const std::wstring& text);
  /// Takes the mailbox that a var or xvar holds; null changes nothing, any other kind throws std::bad_cast.
  template <std::derived_from<var> V>
  mailbox& operator=(const V& value) {
    return take(value);
  }

  /// Plain copies; check() gives whether the host is valid.
  mailbox& set_host(const std::wstring& host);  ///< A name, with ":port" if need be.
  mailbox& set_user(const std::wstring& user);
  mailbox& set_password(const std::wstring& password);  ///< Kept, and given to bundles, in clear.
  mailbox& set_encryption(ENCRYPTION encryption) noexcept;
  mailbox& set_port(unsigned port) noexcept;  ///< 0 for the customary one.

  /// What was set or read, credentials in clear.
  const std::wstring& get_host() const noexcept { return host_; }
  const std::wstring& get_user() const noexcept { return user_; }
  const std::wstring& get_password() const noexcept { return password_; }
  ENCRYPTION get_encryption() const noexcept { return encryption_; }
  /// The port that was set, otherwise the customary one.
  unsigned get_port() const noexcept { return port_ ? port_ : static_cast<unsigned>(encryption_); }
  /// Whether the mode is another than NONE.
  bool is_secure() const noexcept { return encryption_ != NONE; }

  /// "smtp://" or, when secure, "smtps://", then the host and ":port". Holds no credentials.
  /// @quirk STARTTLS is secure in this sense, although its connection begins in clear.
  /// @quirk A host that carries a port shows two, and a port of five digits, or of one, does not read back.
  std::wstring get_url() const;
  /// Whether the host is two or three labels, each with a dot, two letters a-z and perhaps ":" and digits.
  /// @quirk Names with one dot, and those under domains of three letters and more, are refused by design.
  bool check() const;

  /// "NONE", "SSL", "STARTTLS", "TLS"; empty for any other value.
  static std::wstring to_string(ENCRYPTION encryption);
  /// The mode of that name, whatever its case and the blanks around it; NONE for any other text.
  static ENCRYPTION stoe(const std::wstring& text);

  /// Reads "smtp://host", "smtps://host" or "user:password@host" with or without these schemes, where the
  /// host is as check() wants it, with a port of two to four digits if any. False when the text has another
  /// form: the mailbox stays as it was.
  ///
  /// All fields are replaced; what the text lacks becomes empty, so that no credentials go to another server.
  /// The user ends at the first ':' and the password at the last '@'; neither is decoded. "smtps://" gives
  /// the mode whose customary port the text names, otherwise SSL; "smtp://" gives NONE; without a scheme the
  /// mode is that of the customary port, or NONE for any other port.
  [[nodiscard]] bool deserialize(const std::wstring& text);

  /// "host", "port" (0 when none was set), "encryption" (as to_string() spells it), "user" and "password".
  operator bundle() const;
  /// The same without "password", for what is shown, logged or sent. What is taken from it keeps its
  /// password.
  bundle without_password() const;
  /// An xvar that holds a copy of this mailbox and prints its URL.
  operator xvar() const;
  /// get_url().
  std::wstring to_string() const { return get_url(); }

  /// Compares the host, in which A-Z and a-z are the same, get_port(), the mode, the user and the password.
  bool operator==(const mailbox& other) const noexcept { return !(*this < other) && !(other < *this); }
  /// A strict weak order by the same, in that sequence.
  bool operator<(const mailbox& other) const noexcept;

 private:
  mailbox& take(const var& value);

  std::wstring host_, user_, password_;
  ENCRYPTION encryption_ = NONE;
  unsigned port_ = 0;
};

/// Writes get_url().
KESTA_API std::wostream& operator<<(std::wostream& out, const mailbox& value);

}  // namespace ruvo::smtp

#include <ruvo/names_back.hpp>
