// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::smtp::email, a message: what it says, from whom, to whom, and the texts that a transport sends.

#include <ruvo/api.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/datetime.hpp>
#include <ruvo/file.hpp>
#include <ruvo/fwd.hpp>
#include <ruvo/smtp/address.hpp>

#include <concepts>
#include <cstddef>
#include <iosfwd>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo::smtp {

/// A message with its recipients, each with a role, in the order of their addresses. A mail text is the bare
/// mail of an address ("ana@example.es"). Texts may be of any length: nothing here takes more than linear
/// time, but for the logarithm that the order of the recipients costs.
///
/// Texts and addresses are written as they are. A CR or LF in a subject, a name, a mail or an identifier ends
/// its header line, and what follows is read as further headers; a name that holds mails or ">;" is read as
/// several recipients. Who takes such texts from strangers cleans them first.
class KESTA_API email {
 public:
  /// The role of an address.
  enum RCTP { FROM = 0, SENDER = 1, TO = 2, CC = 3, BCC = 4 };
  /// The roles of those that receive the message; recipients of the other two are in no list but the
  /// bundle's.
  static const RCTP TO_ = TO, CC_ = CC, CCO_ = BCC;
  /// "%a, %d %b %Y %H:%M:%S %z", the date of RFC 5322 (always with English names).
  static const std::string date_pattern;

  using map_type = std::map<address, RCTP>;
  using value_type = map_type::value_type;
  using size_type = map_type::size_type;
  using iterator = map_type::iterator;
  using const_iterator = map_type::const_iterator;

  /// `from` and the texts as the setters take them. New messages have an identifier from the services of the
  /// calling thread's context (empty when the system has none to give), in the form
  /// 01234567-89AB-CDEF0123456789ABCDEF, and the current moment as their date.
  explicit email(const address& from, const std::wstring& subject = {}, const std::wstring& body = {},
                 const std::wstring& signature = {});
  explicit email(const std::wstring& from = {}, const std::wstring& subject = {},
                 const std::wstring& body = {}, const std::wstring& signature = {});
  /// As the assignments, over a new message.
  explicit email(const bundle& values);
  template <std::derived_from<var> V>
  explicit email(const V& value) : email() {
    take(value);
  }
  email(const email& other);
  email(email&& other);
  virtual ~email();
  email& operator=(const email& other);
  email& operator=(email&& other);
  /// Takes the fields that the bundle form has: missing and null entries, and those that cannot be read,
  /// leave their field as it is. The lists, one or several, replace all recipients, and "attach" the files.
  /// Addresses may also be texts ("Ana <ana@example.es>" or a bare mail); in the lists, entries without a
  /// mail are skipped, and so are attached files that are no texts. A date without a calendar form cannot be
  /// read.
  email& operator=(const bundle& values);
  /// Takes the message that a var or xvar holds; null changes nothing, any other kind throws std::bad_cast.
  template <std::derived_from<var> V>
  email& operator=(const V& value) {
    return take(value);
  }

  /// The bundle form: "date" (datetime), "Message-ID" (get_uuid()), "from" and "sender" (bundles of
  /// addresses), "to", "cc" and "cco" (lists of them), "subject", "body", "signature" (texts) and "attach" (a
  /// list of paths); recipients of the roles FROM and SENDER are in the lists "to_from" and "to_sender".
  operator bundle() const;
  /// An xvar that holds a copy of this message and prints to_string(), which throws without a calendar date.
  operator xvar() const;

  /// What was set or read; valid until the message is changed, moved from or destroyed.
  const std::wstring& get_uuid() const noexcept { return uuid_; }
  const std::wstring& get_subject() const noexcept { return subject_; }
  const std::wstring& get_body() const noexcept { return body_; }
  const std::wstring& get_signature() const noexcept { return signature_; }
  const datetime& get_date() const noexcept { return date_; }
  const address& get_from() const noexcept { return from_; }
  const address& get_sender() const noexcept { return sender_; }
  const std::vector<file>& get_attach() const noexcept { return attach_; }
  /// Plain copies; a text is the bare mail of an address without a name. A var or xvar counts as the address,
  /// the bundle form of one or the text that it holds.
  email& set_uuid(const std::wstring& uuid);
  email& set_subject(const std::wstring& subject);
  email& set_body(const std::wstring& body);  ///< Plain text, or HTML if texto::is_html() says so.
  email& set_signature(const std::wstring& signature);
  email& set_date(const datetime& date);
  email& set_from(const address& from);
  email& set_from(const std::wstring& mail);
  template <std::derived_from<var> V>
  email& set_from(const V& value) {
    return set_from(address_in(value));
  }
  email& set_sender(const address& sender);
  email& set_sender(const std::wstring& mail);
  template <std::derived_from<var> V>
  email& set_sender(const V& value) {
    return set_sender(address_in(value));
  }

  /// Attaches a path behind the others; nothing is opened or read.
  email& push(const file& attachment);
  /// An attached file, from 0 on. An index beyond the last throws std::out_of_range ("invalid vector
  /// subscript").
  const file& attached(std::size_t index) const;
  /// Removes one of the attached files, as attached() counts them, or all.
  void discharge(std::size_t index);
  void discharge() noexcept;

  /// The role of the recipient, inserted as TO_ when absent. As everywhere below, a recipient is named by an
  /// address, a mail text or the bundle form of an address, and a var or xvar counts as what it holds of
  /// these. The name is stored at the insertion only.
  RCTP& operator[](const address& recipient);
  RCTP& operator[](const std::wstring& mail);
  RCTP& operator[](const bundle& recipient);
  template <std::derived_from<var> V>
  RCTP& operator[](const V& recipient) {
    return (*this)[address_in(recipient)];
  }
  /// An absent recipient throws std::out_of_range ("invalid map<K, T> key").
  RCTP& at(const address& recipient);
  RCTP& at(const std::wstring& mail);
  const RCTP& at(const address& recipient) const;
  const RCTP& at(const std::wstring& mail) const;
  template <std::derived_from<var> V>
  RCTP& at(const V& recipient) {
    return at(address_in(recipient));
  }
  template <std::derived_from<var> V>
  const RCTP& at(const V& recipient) const {
    return at(address_in(recipient));
  }
  /// The recipient of that mail, or end().
  iterator find(const address& recipient) { return recipients_.find(recipient); }
  iterator find(const std::wstring& mail);
  const_iterator find(const address& recipient) const { return recipients_.find(recipient); }
  const_iterator find(const std::wstring& mail) const;
  template <std::derived_from<var> V>
  iterator find(const V& recipient) {
    return find(address_in(recipient));
  }
  template <std::derived_from<var> V>
  const_iterator find(const V& recipient) const {
    return find(address_in(recipient));
  }
  /// 0 or 1.
  size_type count(const address& recipient) const { return recipients_.count(recipient); }
  size_type count(const std::wstring& mail) const;
  template <std::derived_from<var> V>
  size_type count(const V& recipient) const {
    return count(address_in(recipient));
  }
  /// The number of recipients removed, 0 or 1.
  size_type erase(const address& recipient);
  size_type erase(const std::wstring& mail);
  template <std::derived_from<var> V>
  size_type erase(const V& recipient) {
    return erase(address_in(recipient));
  }
  /// Removes the recipient and gives the next one.
  iterator erase(const_iterator recipient) { return recipients_.erase(recipient); }
  /// The recipients, in the order of their mails, folded.
  iterator begin() noexcept { return recipients_.begin(); }
  iterator end() noexcept { return recipients_.end(); }
  const_iterator begin() const noexcept { return recipients_.begin(); }
  const_iterator end() const noexcept { return recipients_.end(); }
  const_iterator cbegin() const noexcept { return recipients_.begin(); }
  const_iterator cend() const noexcept { return recipients_.end(); }
  /// Of the recipients alone, whatever else the message holds.
  size_type size() const noexcept { return recipients_.size(); }
  size_type max_size() const noexcept { return recipients_.max_size(); }
  bool empty() const noexcept { return recipients_.empty(); }
  /// Removes the recipients and leaves all else.
  void clear() noexcept { recipients_.clear(); }

  /// "FROM", "SENDER", "TO", "CC", "BCC"; empty for any other value.
  /// @quirk "BCC" is the role of CCO_, which headers and bundles call "Cco" and "cco".
  static std::wstring to_string(RCTP role);
  /// The role that a text stands for, without regard to case and blanks around it.
  /// @quirk CC for "TO" and TO for every other text: programs count on it.
  static RCTP stor(const std::wstring& text);

  /// Append to the lists of TO_, CC_ and CCO_ the to_string() of the recipients of each role, separated by
  /// ";". Whose mail fails texto::is_email() is left out.
  void serialize_recipients(std::wstring& to) const;
  void serialize_recipients(std::wstring& to, std::wstring& cc) const;
  void serialize_recipients(std::wstring& to, std::wstring& cc, std::wstring& cco) const;
  /// The same with address::q_encoded().
  void q_serialize_recipients(std::string& to) const;
  void q_serialize_recipients(std::string& to, std::string& cc) const;
  void q_serialize_recipients(std::string& to, std::string& cc, std::string& cco) const;
  /// Adds the recipients of such lists, each with the role of its list (the last one that names it). Bare
  /// mails are read as well, and "," separates as ";" does, but only next to ">" or a bare mail: names may
  /// hold both, if they begin with neither. What is no address is left out; false if there was any.
  bool deserialize_recipients(const std::wstring& to, const std::wstring& cc = {},
                              const std::wstring& cco = {});

  /// Writes the lines "Date: ", "To: ", "From: ", "Sender: ", "Cc: ", "Cco: " and "Message-ID: ", each ended
  /// by CRLF; the last holds get_message_id(). Throws exc::CalendarException for a date that has no calendar
  /// form; nothing is written then.
  /// @quirk "Cco: " names the blind recipients: a transport that sends the block takes that line out.
  void serialize_headers(std::wostringstream& out) const;
  /// Reads such a block, "Subject: " and the message's own fields in any order and case of their names; other
  /// fields are skipped, folded lines (RFC 5322) unfolded, and control characters but TAB, a lone CR among
  /// them, become blanks. A date may have the obsolete forms of RFC 5322 (years of two digits, comments,
  /// "GMT", "EST"), but no zone whose name says nothing. What stands in "<>" in "From:" and "Sender:" need be
  /// no valid mail. It ends behind the first empty line. A list replaces the recipients of its role; fields
  /// that are missing or empty stay as they are, but for empty lists, "From:", "Sender:" and "Subject:".
  /// Throws exc::BadArgument (raw 0xEBB8000F) with the line that is no field, or whose date or address cannot
  /// be read; the message is unchanged then.
  void deserialize_headers(const std::wstring& block);
  /// The same; the stream is left behind the empty line, where the body begins.
  void deserialize_headers(std::wistream& in);
  /// "<uuid@domain>" (RFC 5322) with the domain of `from`. An identifier that holds "@" stands alone, and an
  /// empty one gives an empty text.
  std::wstring get_message_id() const;

  /// The body as plain text and, when there is one, CRLF "--" CRLF and the signature as plain text. HTML goes
  /// through texto::to_plain().
  std::wstring get_plain_post() const;
  /// The body as an HTML document with, when there is one, "<p>--</p>" and the signature in a "<div>". Plain
  /// texts go through texto::to_html(); HTML loses its head and its html and body tags.
  /// @quirk The name is spelled so, and the document says that it is in iso-8859-1: a transport sends it so,
  /// or states another encoding in its Content-Type.
  std::wstring get_hmtl_post() const;

  /// The header block of serialize_headers(), "Subject: " and the subject. Throws as that does.
  std::wstring to_string() const;

  /// Compares the identifiers.
  bool operator==(const email& other) const noexcept { return uuid_ == other.uuid_; }
  bool operator<(const email& other) const noexcept { return uuid_ < other.uuid_; }

 private:
  struct headers_read;

  email& take(const var& value);
  /// The address that a var holds, as itself, in its bundle form or as a mail text.
  static address address_in(const var& value);
  std::wstring header_block() const;
  bool take_field(std::wstring_view name, const std::wstring& value, headers_read& read);
  void put(const address& recipient, RCTP role);
  void drop(RCTP role);
  void put_bundles(const list* recipients, RCTP role);
  bool put_list(const std::wstring& text, RCTP role);

  std::wstring uuid_;
  address from_, sender_;
  map_type recipients_;
  std::wstring subject_, body_, signature_;
  datetime date_;
  std::vector<file> attach_;
};

/// Writes to_string().
/// @quirk No line end follows the subject.
KESTA_API std::wostream& operator<<(std::wostream& out, const email& value);

}  // namespace ruvo::smtp

#include <ruvo/names_back.hpp>
