// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::http::url, an address (RFC 3986) taken apart and put together.
//
//   ruvo::http::url address(L"https://shop.example/orders?page=2");
//   address.set_query(ruvo::http::fields{{L"cliente", L"Añil & Cía."}});
//   ruvo::http::request request(address.to_string(), L"");

#include <ruvo/api.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/forms.hpp>

#include <string>
#include <string_view>
#include <vector>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo::http {

/// An address with a scheme, or a reference without one that is relative to another address. A new one is
/// empty.
///
/// Parts are kept as they are written, percent-encoded; those that "decode" say so. A part may be absent or
/// empty, which differ: `has_query()` is true of "http://x/?". Setters take plain text, encode it, and throw
/// exc::BadArgument with the name of the part ("scheme", "host", ...) for what it cannot be; the address is
/// then as it was.
class KESTA_API url {
 public:
  url() noexcept;
  /// Throws the failure of read().
  explicit url(std::wstring_view text);
  url(const url& other);
  url(url&& other) noexcept;
  url& operator=(const url& other);
  url& operator=(url&& other) noexcept;
  ~url();

  /// Takes the text apart. Characters beyond ASCII are percent-encoded in UTF-8 (RFC 3987, 3.1), but none
  /// may be in the host, which is not turned into Punycode. True is success; a failure leaves the address as
  /// it was and is copied to `err`: exc::BadFormat at the position (serializer::failure_position()) of what
  /// cannot stand there, such as a blank, a control character, a "%" without two digits, a port beyond 65535;
  /// and beyond 65,536 units.
  bool read(std::wstring_view text, exception& err);
  /// The whole address; what read() takes, and gives the same.
  std::wstring to_string() const;

  /// In lower case; empty in a relative reference.
  const std::wstring& get_scheme() const noexcept { return scheme_; }
  /// As written: a name, an address of IPv4, or one of IPv6 in "[]"; in lower case, not decoded.
  const std::wstring& get_host() const noexcept { return host_; }
  /// The port that is written, otherwise that of the scheme (http 80, https 443, ws 80, wss 443, ftp 21),
  /// otherwise 0.
  int get_port() const noexcept;
  /// Decoded; empty where there is none. Both throw exc::BadFormat for bytes that are no UTF-8.
  std::wstring get_user() const;
  std::wstring get_password() const;
  /// The path, query and fragment as written, without "?" and "#".
  const std::wstring& get_path() const noexcept { return path_; }
  const std::wstring& get_query() const noexcept { return query_; }
  const std::wstring& get_fragment() const noexcept { return fragment_; }
  /// The parts of the path between its "/", decoded: "/a/b%2Fc/" has L"a", L"b/c" and L"". An empty path and
  /// "/" have none. Throws as get_user().
  std::vector<std::wstring> get_segments() const;
  /// The query as a form's fields. Throws exc::BadFormat as read_form().
  fields get_query_fields() const;

  bool has_authority() const noexcept {
    return has_authority_;
  }                                                             ///< Also where the host is empty: "file:///".
  bool has_port() const noexcept { return port_ >= 0; }         ///< Whether one is written.
  bool has_query() const noexcept { return has_query_; }        ///< Also an empty one.
  bool has_fragment() const noexcept { return has_fragment_; }  ///< Also an empty one.
  /// Whether the scheme is https or wss.
  bool is_secure() const noexcept;

  /// A letter and then letters, digits and "+-."; in lower case from here on.
  url& set_scheme(const std::wstring& scheme);
  /// A name or an address; one of IPv6 with or without "[]". Empty leaves an empty host: "file:///".
  url& set_host(const std::wstring& host);
  /// 0 to 65535, or -1 for none.
  url& set_port(int port);
  /// Empty ones are left out. An address with a password shows it in every text: set it late.
  url& set_user(const std::wstring& user, const std::wstring& password = {});
  /// The parts between the "/"; "/" stands before the first.
  url& set_segments(const std::vector<std::wstring>& segments);
  /// A path as it is written, in which "%" begins an escape and other characters are encoded as need be. Must
  /// begin with "/" behind a host.
  url& set_path(const std::wstring& path);
  /// The fields of a form, or the text as it is written.
  url& set_query(const fields& query);
  url& set_query(const std::wstring& query);
  url& set_fragment(const std::wstring& fragment);
  url& erase_query() noexcept;
  url& erase_fragment() noexcept;

  /// What a reference means that stands in a document of this address (RFC 3986, 5.2): a redirection's
  /// "Location", a link.
  url resolve(const url& reference) const;
  /// Path and query as a request line has them: "/" where the path is empty.
  std::wstring request_target() const;

  /// Whether the texts are the same; nothing is normalised but the case of scheme and host.
  bool operator==(const url& other) const noexcept;

 private:
  void read_authority(std::wstring_view whole, std::wstring_view authority);

  std::wstring scheme_, user_info_, host_, path_, query_, fragment_;
  int port_ = -1;
  bool has_authority_ = false, has_user_info_ = false, has_query_ = false, has_fragment_ = false;
};

}  // namespace ruvo::http

#include <ruvo/names_back.hpp>
