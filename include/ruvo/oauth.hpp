// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::oauth, what proves to a service on whose behalf a request comes: signatures of OAuth 1.0a (RFC 5849),
// bearer tokens (RFC 6750) and the proof of a code's owner (PKCE, RFC 7636).

#include <ruvo/api.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/fwd.hpp>
#include <ruvo/http.hpp>

#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo::oauth {

/// A key, password or token that is not to be seen: it has no text form and goes into no value, and its
/// memory is overwritten when it is no longer used. What it was made of stays the caller's.
class KESTA_API secret {
 public:
  secret() noexcept;                          ///< Empty.
  explicit secret(const std::wstring& text);  ///< Its UTF-8.
  explicit secret(std::string_view bytes);    ///< The bytes as they are.
  secret(const secret& other);
  secret(secret&& other) noexcept;
  secret& operator=(const secret& other);
  secret& operator=(secret&& other) noexcept;
  ~secret();

  /// The bytes in clear, as long as this object lives and is not assigned to. Whoever copies them has to wipe
  /// the copies.
  std::string_view reveal() const noexcept { return {bytes_.data(), bytes_.size()}; }
  bool empty() const noexcept { return bytes_.empty(); }
  /// Takes a time that depends on the lengths alone.
  bool operator==(const secret& other) const noexcept;

 private:
  std::vector<char> bytes_;
};

/// Deleted: a secret is not written.
std::ostream& operator<<(std::ostream& out, const secret& hidden) = delete;
std::wostream& operator<<(std::wostream& out, const secret& hidden) = delete;

// --- OAuth 1.0a

/// How a request is signed. PLAINTEXT sends the secrets themselves, for secure connections alone.
enum class method { hmac_sha1, hmac_sha256, plaintext };

/// What makes each signature another.
struct stamp {
  std::wstring nonce;     ///< Used once with the same time.
  long long seconds = 0;  ///< Since 1970-01-01 00:00:00 UTC.
};
/// A nonce of the identifiers of the thread's context, in 32 hexadecimal digits, and its clock's time. Throws
/// exc::BadArgument ("oauth_nonce") when the system has no identifier to give.
KESTA_API stamp new_stamp();

/// Signs requests with one pair of credentials or two, or looks whether others did.
///
/// Counted are the parameters of the URL's query, those of the body where its Content-Type is
/// application/x-www-form-urlencoded, and the signer's own; repeated ones as often as they come. The request
/// is signed as it then stands: whoever changes URL or body signs again.
///
/// Failures are exc::BadArgument (raw 0xEBB8000F) with a name and nothing else: "method" for one that is no
/// token; "url" for one that http::url does not read, that is neither http nor https, or has other characters
/// than the visible ones of ASCII; "body" for a "%" without two digits; and the names of parameters and
/// fields that are empty where they must not be, or hold control characters.
class KESTA_API signer {
 public:
  /// Nothing is checked before something is signed.
  explicit signer(const std::wstring& consumer_key, const secret& consumer_secret,
                  method how = method::hmac_sha1);
  signer(const signer& other);
  signer(signer&& other) noexcept;
  signer& operator=(const signer& other);
  signer& operator=(signer&& other) noexcept;
  ~signer();

  /// The credentials of a token, temporary ones included. Plain copies, as all that is set here.
  signer& set_token(const std::wstring& token, const secret& token_secret);
  /// A further parameter of the header, "oauth_callback" or "oauth_verifier". A second one of a name replaces
  /// the first; "" takes it out. Those that the signer writes itself fail when signing.
  signer& set_parameter(const std::wstring& name, const std::wstring& value);
  /// The realm that the header names; it is not signed. Empty for none.
  signer& set_realm(const std::wstring& realm);

  /// What is signed (RFC 5849, 3.4.1), for comparing with what a service says that it expected. There is no
  /// secret in it. False on failure, with `out` as it was.
  bool base_string(std::wstring& out, const std::wstring& verb, const http::request& message,
                   const stamp& when, exception& failure) const;
  /// The same, and throws the failure.
  std::wstring base_string(const std::wstring& verb, const http::request& message, const stamp& when) const;

  /// The value of the field "Authorization". With PLAINTEXT it holds the secrets.
  bool authorization(std::wstring& out, const std::wstring& verb, const http::request& message,
                     const stamp& when, exception& failure) const;
  std::wstring authorization(const std::wstring& verb, const http::request& message, const stamp& when) const;

  /// Sets the field with a new stamp.
  bool sign(http::request& message, const std::wstring& verb, exception& failure) const;
  void sign(http::request& message, const std::wstring& verb) const;

  /// Whether the request's own field is one that these credentials made, as the receiver asks. False with a
  /// failure that names what does not fit: "Authorization" for none that can be read or beyond 65,536 units,
  /// "oauth_consumer_key", "oauth_token", "oauth_signature_method", "oauth_version", "oauth_timestamp" or
  /// "oauth_signature". That a stamp is new and its time near is the caller's to see: `when` receives it.
  /// Signatures are compared in a time that depends on their length alone.
  bool verify(const std::wstring& verb, const http::request& message, stamp& when, exception& failure) const;

 private:
  using parameters = std::vector<std::pair<std::string, std::string>>;  // names and values, decoded

  parameters own_parameters(const stamp& when) const;
  secret signature_of(const std::wstring& verb, const http::request& message, const parameters& own) const;
  void expect_own(const parameters& read) const;

  std::wstring key_, token_, realm_;
  secret key_secret_, token_secret_;
  std::vector<std::pair<std::wstring, std::wstring>> more_;
  method how_;
};

// --- OAuth 2

/// "Bearer " and the token in clear, for the field "Authorization". Throws exc::BadArgument ("access_token")
/// for a token that RFC 6750 does not have: letters, digits, "-._~+/" and then "=" alone.
KESTA_API std::wstring bearer(const secret& token);

/// What becomes of a verifier: its SHA-256, or itself, for services that know nothing else.
enum class challenge_method { s256, plain };

/// A verifier of 43 characters made of 256 random bits, which the system gives for secrets. Throws
/// exc::RunTime when it has none.
KESTA_API secret new_verifier();
/// The "code_challenge" of a verifier. Throws exc::BadArgument ("code_verifier") for one that is not 43 to
/// 128 letters, digits and "-._~" long.
KESTA_API std::wstring challenge(const secret& verifier, challenge_method how = challenge_method::s256);

}  // namespace ruvo::oauth

#include <ruvo/names_back.hpp>
