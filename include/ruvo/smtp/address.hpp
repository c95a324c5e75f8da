// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::smtp::address, who sends or receives a message.

#include <ruvo/api.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/fwd.hpp>

#include <concepts>
#include <initializer_list>
#include <iosfwd>
#include <string>
#include <utility>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo::smtp {

/// A mail address, perhaps with a name to show. Texts are kept as given: whoever writes them into a header
/// sees to it that they hold no line ends. Nothing but a lack of memory fails, unless stated; a call that
/// throws changes nothing.
class KESTA_API address {
 public:
  address();  ///< Empty.
  /// The bare mail ("ana@example.es"), and a name that may be empty.
  address(const std::wstring& name, const std::wstring& mail);
  address(const address& other);
  address(address&& other) noexcept;
  virtual ~address();
  /// As the assignments, over an empty address. A list of pairs is such a bundle.
  address(const bundle& fields);
  address(std::initializer_list<std::pair<std::wstring, xvar>> fields);
  template <std::derived_from<var> V>
  explicit address(const V& value) : address() {
    take(value);
  }

  address& operator=(const address& other);
  address& operator=(address&& other) noexcept;
  /// Takes "name" and "email"; a missing or null entry leaves its field as it is.
  address& operator=(const bundle& fields);
  /// As deserialize(): a text that is refused changes nothing.
  address& operator=(const std::wstring& text);
  /// Takes the address that a var or xvar holds; null changes nothing, any other kind throws std::bad_cast.
  template <std::derived_from<var> V>
  address& operator=(const V& value) {
    return take(value);
  }

  /// Plain copies; check() gives whether the mail is valid.
  address& set_name(const std::wstring& name);
  address& set_mail(const std::wstring& mail);
  /// What was set; valid until this address is changed, moved from or destroyed.
  const std::wstring& get_name() const noexcept { return name_; }
  const std::wstring& get_mail() const noexcept { return mail_; }

  /// Whether the mail address is valid by texto::is_email().
  bool check() const;
  /// Whether there is no mail address, whatever the name.
  bool empty() const noexcept { return mail_.empty(); }

  /// "name <mail>", or "<mail>" without a name; empty when the address is.
  const std::wstring& to_string() const noexcept { return text_; }
  /// The same; valid until this address is changed, moved from or destroyed.
  const wchar_t* c_str() const noexcept { return text_.c_str(); }
  /// The mail address from its first '@' on, with it; empty without one.
  std::wstring get_domain() const;
  /// The name and the mail address for a mail header, RFC 2047: the name, ASCII too, as
  /// "=?iso-8859-1?Q?...?=", or in UTF-8 when it holds characters beyond Latin-1; in several words when it is
  /// long, each of at most 75 characters, joined by CRLF and a blank. The mail address is in UTF-8.
  /// @quirk An empty address gives "<>" here, while to_string() gives nothing.
  std::string q_encoded() const;

  /// Reads "name <mail>" or "<mail>", where check() holds for the mail and the name has no line ends. False
  /// when the text has another form, a bare mail address too: this address stays as it was.
  ///
  /// Blanks around the name are dropped, and so are quotes around a name that has none inside.
  [[nodiscard]] bool deserialize(const std::wstring& text);

  /// "name" and "email", as the assignment reads them.
  operator bundle() const;
  /// An xvar that holds a copy of this address and prints its text.
  operator xvar() const;

  /// Whether both have the same mail address, in which A-Z and a-z are the same. Names do not count, so that
  /// nobody gets a message twice.
  bool operator==(const address& other) const noexcept { return !(*this < other) && !(other < *this); }
  /// A strict weak order by the same.
  bool operator<(const address& other) const noexcept;

 private:
  address& take(const var& value);

  std::wstring name_, mail_;
  std::wstring text_;  // what to_string() gives
};

KESTA_API std::wostream& operator<<(std::wostream& out, const address& value);

}  // namespace ruvo::smtp

#include <ruvo/names_back.hpp>
