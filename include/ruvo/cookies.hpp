// SPDX-License-Identifier: BSL-1.0
#pragma once

// Cookies (RFC 6265, with the prefixes and the care for secure ones of its revision 6265bis): one of an
// answer, a jar that keeps those of many, and the header that goes back.
//
//   ruvo::http::cookie_jar jar;
//   ruvo::exception failure;
//   jar.take(L"https://shop.example/login", answer, ruvo::datetime(), failure);
//   request["Cookie"] = jar.header_for(L"https://shop.example/orders", ruvo::datetime());

#include <ruvo/api.hpp>
#include <ruvo/datetime.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/forms.hpp>
#include <ruvo/fwd.hpp>
#include <ruvo/http.hpp>
#include <ruvo/iserializer.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo::http {

/// From which sites' pages a cookie is sent, as its server asks. The library does not know which page a
/// request comes from: who does has to look at it.
enum class same_site : std::int32_t { unsaid, lax, strict, none };

/// What one "Set-Cookie" says. Instants are seconds since 1970-01-01 00:00:00 UTC.
struct cookie {
  std::wstring name{};                 ///< Case counts.
  std::wstring value{};                ///< As it stands; quotation marks around it belong to it.
  std::wstring domain{};               ///< In lower case, without a "." before it; empty for the very host.
  std::wstring path{};                 ///< Empty where none, or none with a "/" before it, is said.
  std::optional<long long> expires{};  ///< When it ends; without it and max_age with the session.
  std::optional<long long> max_age{};  ///< In how many seconds; counts more than `expires`.
  same_site site = same_site::unsaid;  ///< Kept; whom it keeps from whom is the transport's to see.
  bool secure = false;                 ///< Over https alone.
  bool http_only = false;              ///< Not for scripts of a page.

  /// Whether all of it is the same.
  bool operator==(const cookie& other) const = default;
};

/// Reads the value of one header "Set-Cookie" as RFC 6265, 5.2, does and replaces `out`: attributes that are
/// not known or not well said are passed over, of those that come twice the last counts, and so are values of
/// more than 1,024 units. True is success; a failure leaves `out` as it was and is copied to `err`:
/// exc::BadFormat at the position of a control character, or of a text without a name and "=", or beyond
/// 4,096 bytes of name and value.
KESTA_API bool read_set_cookie(cookie& out, std::wstring_view text, exception& err);
/// Writes it for a server's answer and replaces `out`. Stricter than reading: the name is a token, the value
/// of the characters of RFC 6265, 4.1.1 (no blanks, commas, semicolons, backslashes, nothing beyond ASCII:
/// texto::web_encode() makes such a text of any), and the two take at most 4,096 bytes. True is success; a
/// failure is copied to `err`: exc::BadArgument with the cookie's name, or with "Domain", "Path" or
/// "Expires" (for an instant beyond the years 0 to 9999).
KESTA_API bool write_set_cookie(std::wstring& out, const cookie& in, exception& err);

/// The cookies of a header "Cookie" in their order, for a server; replaces `out`. What has no "=" is passed
/// over. True is success; the one failure is exc::BadFormat at a control character.
KESTA_API bool read_cookies(fields& out, std::wstring_view text, exception& err);
/// The header "Cookie" of these; exc::BadArgument with the name of one that is no token or whose value has
/// characters as above.
KESTA_API bool write_cookies(std::wstring& out, const fields& in, exception& err);

/// A cookie that is kept.
struct kept_cookie {
  cookie what{};                     ///< Its domain is the host's own where it said none.
  bool host_only = true;             ///< Whether it is sent to that very host alone.
  long long created = 0;             ///< Kept when it is replaced.
  long long used = 0;                ///< When it was last taken or sent.
  long long ends = 0;                ///< When it ends; the greatest number for the session's.
  bool is_lasting() const noexcept;  ///< Whether it outlives the session.
};

/// Keeps cookies and says which go with a request. At most 50 of a domain and 3,000 in all: those that ended
/// go first, then the one that was not used for the longest time.
///
/// There is no list of public suffixes: a server of "shop.co.uk" may set cookies for "co.uk". To addresses
/// ([2001:db8::1], and what ends in a number: 192.0.2.1, 127.1) and names without a point (localhost) cookies
/// go back from the very host alone.
///
/// Cookies are secrets: a jar has no text form, and its bundle form is to be stored as safely as a password.
/// No locks: one thread at a time.
class KESTA_API cookie_jar {
 public:
  cookie_jar();
  cookie_jar(const cookie_jar& other);
  cookie_jar(cookie_jar&& other) noexcept;
  cookie_jar& operator=(const cookie_jar& other);
  cookie_jar& operator=(cookie_jar&& other) noexcept;
  ~cookie_jar();

  /// Takes one "Set-Cookie" of an answer from this address; one that has ended already removes what it
  /// replaces. True if it was taken; otherwise the jar is unchanged, and copied to `err` is the failure of
  /// read_set_cookie(), exc::BadFormat for an address that is none or has no host, or exc::BadArgument with
  /// the name of a cookie that this server must not set: for another domain, secure without https, in place
  /// of a secure one without https, with "__Secure-" before its name and not secure, or with "__Host-" and
  /// not secure, with a domain or another path than "/".
  bool take(std::wstring_view url, const std::wstring& set_cookie, const datetime& now, exception& err);
  /// Takes all of an answer: its get_set_cookies(), then the header "Set-Cookie" of its table, if there is
  /// one. Goes on after a failure, and reports the first; true if all were taken.
  bool take(std::wstring_view url, const response& answer, const datetime& now, exception& err);

  /// The value of "Cookie" for a request to this address, longer paths and older cookies first; empty where
  /// there is none, and for an address that is none. Marks them as used.
  std::wstring header_for(std::wstring_view url, const datetime& now);

  /// Removes those that ended; how many these were.
  std::size_t expire(const datetime& now);
  /// Removes those without an end, as the end of a session does; how many these were.
  std::size_t end_session();
  /// Removes those of a domain and of the names below it; how many these were.
  std::size_t erase(const std::wstring& domain);
  void clear() noexcept;

  /// Of the cookies, those whose time has come included until expire().
  std::size_t size() const noexcept { return all_.size(); }
  bool empty() const noexcept { return all_.empty(); }  ///< Whether there are none.
  /// In the order of their creation; valid until the jar is changed or destroyed.
  const std::vector<kept_cookie>& get_cookies() const noexcept { return all_; }

  /// All cookies under the key "cookies", to be stored.
  operator bundle() const;
  /// Takes what was stored, in place of what is there. True is success; a failure leaves the jar as it was
  /// and is copied to `err`: exc::BadArgument with the key of what no jar stores.
  bool read(const bundle& stored, exception& err);

 private:
  void keep(kept_cookie made, long long now);
  void make_room(const std::wstring& domain, long long now);

  std::vector<kept_cookie> all_;
};

}  // namespace ruvo::http

namespace ruvo::serializer {

/// The header "Cookie" as a bundle, in the order and spelling in which the bundle got its keys.
class KESTA_API http_cookie : public iserializer {
 public:
  http_cookie();
  http_cookie(const http_cookie& other) noexcept;
  http_cookie& operator=(const http_cookie& other) noexcept;
  ~http_cookie() override;

  /// A list repeats the cookie. True on FAILURE: as http::write_cookies(), and exc::BadArgument with the key
  /// of a value that is no scalar. `options` has no meaning.
  bool serialize(std::wstring& out, const bundle& in, exception* err = nullptr, int options = 0) override;
  /// Adds the cookies, in place of keys that are there; a name that repeats becomes a list. True on FAILURE,
  /// as http::read_cookies(), and exc::BadArgument with the second of two names that a bundle takes for one;
  /// `out` is as it was then.
  bool deserialize(bundle& out, const std::wstring& in, exception* err, int options = 0) override;
  using iserializer::deserialize;
};

}  // namespace ruvo::serializer

#include <ruvo/names_back.hpp>
