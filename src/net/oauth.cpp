// SPDX-License-Identifier: BSL-1.0

// Signatures of requests, and the proofs of OAuth 2.

#include <ruvo/digest.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/oauth.hpp>

#include <algorithm>
#include <cstddef>
#include <optional>

#include "base/base64.hpp"
#include "base/services.hpp"
#include "base/utf.hpp"
#include "base/wipe.hpp"
#include "base/wire/ascii_set.hpp"
#include "base/wire/percent.hpp"
#include "base/wire/tokens.hpp"
#include "net/failures.hpp"
#include "net/signed_request.hpp"
#include "system/random.hpp"

namespace ruvo::oauth {

namespace {

constexpr std::wstring_view method_names[] = {L"HMAC-SHA1", L"HMAC-SHA256", L"PLAINTEXT"};
constexpr long long ticks_per_second = 10000000;

/// The bytes of a parameter that goes into a field.
std::string checked(std::string_view name, std::wstring_view value) {
  if (value.empty() || !wire::is_field_value(value)) refuse(name);
  return texto::to_utf_8(value);
}

/// Room for secrets that never moves, and is wiped at its end.
class wiped_room {
 public:
  explicit wiped_room(std::size_t size) { text_.reserve(size); }
  wiped_room(const wiped_room&) = delete;
  wiped_room& operator=(const wiped_room&) = delete;
  ~wiped_room() { detail::wipe_all(text_); }

  std::string& operator*() noexcept { return text_; }

 private:
  std::string text_;
};

secret base64_of(const binary& code) {
  std::string text(texto::base64_size(code.size()), '=');
  texto::base64_encode_to(text.data(), code.get_store().data(), code.size(), false);
  return secret(text);
}

}  // namespace

// --- secret

secret::secret() noexcept = default;
secret::secret(const std::wstring& text) {
  wiped_room room(texto::utf_8_size(text));
  texto::append_utf_8(*room, text);
  bytes_.assign((*room).begin(), (*room).end());
}
secret::secret(std::string_view bytes) : bytes_(bytes.begin(), bytes.end()) {}
secret::secret(const secret& other) = default;
secret::secret(secret&& other) noexcept = default;
secret& secret::operator=(const secret& other) { return *this = secret(other); }
secret& secret::operator=(secret&& other) noexcept {
  bytes_.swap(other.bytes_);
  return *this;
}
secret::~secret() { detail::wipe_all(bytes_); }

bool secret::operator==(const secret& other) const noexcept { return digest::same(reveal(), other.reveal()); }

// --- signer

signer::signer(const std::wstring& consumer_key, const secret& consumer_secret, method how)
    : key_(consumer_key), key_secret_(consumer_secret), how_(how) {}
signer::signer(const signer& other) = default;
signer::signer(signer&& other) noexcept = default;
signer& signer::operator=(const signer& other) { return *this = signer(other); }
signer& signer::operator=(signer&& other) noexcept = default;
signer::~signer() = default;

signer& signer::set_token(const std::wstring& token, const secret& token_secret) {
  secret kept(token_secret);  // what may fail comes first
  token_ = token;
  token_secret_ = std::move(kept);
  return *this;
}

signer& signer::set_parameter(const std::wstring& name, const std::wstring& value) {
  std::pair<std::wstring, std::wstring> made(name, value);  // both may be parts of what is erased
  std::erase_if(more_, [&](const auto& each) { return each.first == made.first; });
  if (!made.second.empty()) more_.push_back(std::move(made));
  return *this;
}

signer& signer::set_realm(const std::wstring& realm) {
  realm_ = realm;
  return *this;
}

signer::parameters signer::own_parameters(const stamp& when) const {
  parameters own;
  const auto add = [&own](std::string_view name, std::wstring_view value) {
    own.emplace_back(name, checked(name, value));
  };
  add("oauth_consumer_key", key_);
  add("oauth_nonce", when.nonce);
  add("oauth_signature_method", method_names[static_cast<int>(how_)]);
  add("oauth_timestamp", when.seconds < 0 ? std::wstring() : std::to_wstring(when.seconds));
  if (!token_.empty()) add("oauth_token", token_);
  add("oauth_version", L"1.0");
  const std::size_t written = own.size();
  for (const auto& [wide_name, value] : more_) {
    const std::string name = texto::to_utf_8(wide_name);
    const bool twin = name == "oauth_signature" || name == "oauth_token" ||
                      std::any_of(own.begin(), own.begin() + static_cast<std::ptrdiff_t>(written),
                                  [&](const auto& each) { return each.first == name; });
    if (twin || !name.starts_with("oauth_") || !wire::is_token(wide_name)) refuse(name);
    add(name, value);
  }
  return own;
}

secret signer::signature_of(const std::wstring& verb, const http::request& message,
                            const parameters& own) const {
  const std::string base = base_string_of(verb, message, own);  // with PLAINTEXT for its failures alone
  const std::string_view parts[] = {key_secret_.reveal(), token_secret_.reveal()};
  wiped_room room(3 * (parts[0].size() + parts[1].size()) + 1);
  std::string& key = *room;
  wire::append_percent(key, parts[0], wire::unreserved_set);
  key += '&';
  wire::append_percent(key, parts[1], wire::unreserved_set);
  switch (how_) {
    case method::hmac_sha1:
      return base64_of(digest::hmac_sha1(key, base));
    case method::hmac_sha256:
      return base64_of(digest::hmac_sha256(key, base));
    case method::plaintext:
      break;
  }
  return secret(key);
}

bool signer::base_string(std::wstring& out, const std::wstring& verb, const http::request& message,
                         const stamp& when, exception& failure) const {
  return http::succeeds(failure, [&] { out = base_string(verb, message, when); });
}

std::wstring signer::base_string(const std::wstring& verb, const http::request& message,
                                 const stamp& when) const {
  return texto::to_utf_16(base_string_of(verb, message, own_parameters(when)));
}

bool signer::authorization(std::wstring& out, const std::wstring& verb, const http::request& message,
                           const stamp& when, exception& failure) const {
  return http::succeeds(failure, [&] { out = authorization(verb, message, when); });
}

std::wstring signer::authorization(const std::wstring& verb, const http::request& message,
                                   const stamp& when) const {
  const parameters own = own_parameters(when);
  const secret signature = signature_of(verb, message, own);
  std::wstring out = L"OAuth ";
  if (!realm_.empty()) {
    out += L"realm=";
    if (!wire::append_quoted(out, realm_)) refuse("realm");
    out += L", ";
  }
  const auto add = [&out](std::string_view name, std::string_view value) {
    texto::append_utf_16(out, name);
    wire::append_percent(out += L"=\"", value, wire::unreserved_set);
    out += L"\", ";
  };
  for (const auto& [name, value] : own) add(name, value);
  add("oauth_signature", signature.reveal());
  out.resize(out.size() - 2);
  return out;
}

bool signer::sign(http::request& message, const std::wstring& verb, exception& failure) const {
  return http::succeeds(failure, [&] { sign(message, verb); });
}

void signer::sign(http::request& message, const std::wstring& verb) const {
  message[L"Authorization"] = authorization(verb, message, new_stamp());
}

/// Fails with the first name whose value is none of this signer's.
void signer::expect_own(const parameters& read) const {
  const auto expect = [&read](std::string_view name, std::wstring_view value) {
    if (value_in(read, name) != texto::to_utf_8(value)) refuse(name);
  };
  expect("oauth_consumer_key", key_);
  expect("oauth_token", token_);
  expect("oauth_signature_method", method_names[static_cast<int>(how_)]);
  const std::string version = value_in(read, "oauth_version");
  if (!version.empty() && version != "1.0") refuse("oauth_version");
}

bool signer::verify(const std::wstring& verb, const http::request& message, stamp& when,
                    exception& failure) const {
  return http::succeeds(failure, [&] {
    parameters read = read_authorization(message);
    expect_own(read);
    const std::string time = value_in(read, "oauth_timestamp");
    const auto seconds = read_seconds(time);
    if (!seconds && (how_ != method::plaintext || !time.empty())) refuse("oauth_timestamp");
    const secret given(value_in(read, "oauth_signature"));
    std::erase_if(read, [](const auto& each) { return each.first == "oauth_signature"; });
    if (!(signature_of(verb, message, read) == given)) refuse("oauth_signature");
    when = {texto::to_utf_16(value_in(read, "oauth_nonce")), seconds.value_or(0)};
  });
}

stamp new_stamp() {
  stamp made;
  made.nonce = services::new_uuid();
  std::erase(made.nonce, L'-');
  if (made.nonce.empty()) refuse("oauth_nonce");
  made.seconds = services::ticks(current_context()) / ticks_per_second;
  return made;
}

// --- OAuth 2

std::wstring bearer(const secret& token) {
  constexpr wire::ascii_set characters = wire::alphanumeric.with("-._~+/");
  std::string_view body = token.reveal();
  while (body.ends_with('=')) body.remove_suffix(1);
  const bool fits = std::all_of(body.begin(), body.end(), [&](char c) { return characters.has(c); });
  if (body.empty() || !fits) refuse("access_token");
  std::wstring out = L"Bearer ";
  texto::append_utf_16(out, token.reveal());
  return out;
}

secret new_verifier() {
  unsigned char random[32];
  if (!platform::fill_random(random, sizeof random))
    throw exc::RunTime(L"El sistema no proporciona números aleatorios");
  char text[texto::base64_size(sizeof random)];
  texto::base64_encode_to(text, random, sizeof random, true);
  secret made(std::string_view(text, sizeof text - 1));  // without the '='
  detail::wipe(random, sizeof random);
  detail::wipe(text, sizeof text);
  return made;
}

std::wstring challenge(const secret& verifier, challenge_method how) {
  const std::string_view text = verifier.reveal();
  const bool fits = std::all_of(text.begin(), text.end(), [](char c) { return wire::unreserved_set.has(c); });
  if (text.size() < 43 || text.size() > 128 || !fits) refuse("code_verifier");
  if (how == challenge_method::plain) return texto::to_utf_16(text);
  std::wstring out = digest::sha256(text).getAsB64(true);
  while (out.ends_with(L'=')) out.pop_back();
  return out;
}

}  // namespace ruvo::oauth
