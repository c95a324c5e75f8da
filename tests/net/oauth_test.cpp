// SPDX-License-Identifier: BSL-1.0

// Signatures of requests: published examples, what is refused, and secrets that stay where they are. Drawn
// requests are compared with another maker's in tests/net/signatures.

#include <ruvo/fake_context.hpp>
#include <ruvo/ruvo.hpp>

#include <string>
#include <type_traits>

#include <gtest/gtest.h>

namespace {

using namespace ruvo::oauth;
using ruvo::http::request;

constexpr const wchar_t* form = L"application/x-www-form-urlencoded";

request posted(const std::wstring& url, const std::wstring& body = {},
               const std::wstring& authorization = {}) {
  request message(url, body);
  if (!body.empty()) message[L"Content-Type"] = form;
  if (!authorization.empty()) message[L"Authorization"] = authorization;
  return message;
}

/// RFC 5849, 3.4.1.1 and 1.2: read and checked, as the one that wrote them left the version out.
TEST(oauth, published_requests_are_accepted) {
  const request photos = posted(
      L"http://photos.example.net/photos?file=vacation.jpg&size=original", {},
      L"OAuth realm=\"Photos\", oauth_consumer_key=\"dpf43f3p2l4k3l03\", oauth_token=\"nnch734d00sl2jdk\", "
      L"oauth_signature_method=\"HMAC-SHA1\", oauth_timestamp=\"137131202\", oauth_nonce=\"chapoH\", "
      L"oauth_signature=\"MdpQcU8iPSUjWoN%2FUDMsK2sui9I%3D\"");
  signer who(L"dpf43f3p2l4k3l03", secret(L"kd94hf93k423kf44"));
  who.set_token(L"nnch734d00sl2jdk", secret(L"pfkkdhi9sl3r4s00"));
  stamp seen;
  ruvo::exception failure;
  EXPECT_TRUE(who.verify(L"GET", photos, seen, failure)) << failure.get_mensaje();
  EXPECT_EQ(seen.nonce + std::to_wstring(seen.seconds), L"chapoH137131202");

  const request sorted = posted(
      L"http://EXAMPLE.COM:80/request?b5=%3D%253D&a3=a&c%40=&a2=r%20b#there", L"c2&a3=2+q",
      L"oauth\trealm=\"Example\",oauth_consumer_key=\"9djdj82h48djs9d2\" ,oauth_token=\"kkk9d7dh3k39sjv7\","
      L"oauth_signature_method=\"HMAC-SHA1\",oauth_timestamp=\"137131201\",oauth_nonce=\"7d8f3e4a\","
      L"oauth_signature=\"r6%2FTJjbCOr97%2F%2BUU0NsvSne7s5g%3D\"");
  signer other(L"9djdj82h48djs9d2", secret(L"j49sk3j29djd"));
  other.set_token(L"kkk9d7dh3k39sjv7", secret(L"dh893hdasih9"));
  EXPECT_TRUE(other.verify(L"post", sorted, seen, failure)) << failure.get_mensaje();
}

/// A published example of a service that wants the version.
TEST(oauth, a_published_request_is_signed) {
  signer who(L"xvz1evFS4wEEPTGEFPHBog", secret(L"kAcSOqF21Fu85e7zjz7ZN2U4ZRhfV3WpwPAoE3Z7kBw"));
  who.set_token(L"370773112-GmHxMAgYyLbNEtIKZeRNFsMKPR9EyMZeS9weJAEb",
                secret(L"LswwdoUaIvS8ltyTt5jkRh4J50vUPVVHtR2YPi5kE"));
  const request message =
      posted(L"https://api.twitter.com/1/statuses/update.json?include_entities=true",
             L"status=Hello%20Ladies%20%2B%20Gentlemen%2C%20a%20signed%20OAuth%20request%21");
  const stamp when = {L"kYjzVBB8Y0ZFabxSWbWovY3uYSQ2pTgmZeNu2VS4cg", 1318622958};
  EXPECT_TRUE(who.authorization(L"POST", message, when).ends_with(L"\"tnnArxj06cWHq44gCs1OSKk%2FjLY%3D\""));
}

TEST(oauth, a_new_stamp_is_the_contexts) {
  ruvo::fake_context fake;
  const ruvo::thread_scope scope(fake);
  fake.clock = 1709211909;
  request message = posted(L"https://example.com/");
  signer(L"key", secret()).sign(message, L"GET");
  EXPECT_EQ(message["authorization"],
            L"OAuth oauth_consumer_key=\"key\", oauth_nonce=\"00000001000000000000000000000000\", "
            L"oauth_signature_method=\"HMAC-SHA1\", oauth_timestamp=\"1709211909\", oauth_version=\"1.0\", "
            L"oauth_signature=\"" +
                message["authorization"].substr(message["authorization"].size() - 33));
}

TEST(oauth, what_cannot_be_signed_is_named) {
  const std::wstring url = L"https://example.com/", nul(1, L'\0');
  const struct {
    std::wstring verb, url, body, key, token, parameter, nonce, failure;
    long long seconds = 1;
  } rows[] = {{L"", url, L"", L"k", L"", L"", L"n", L"method"},
              {L"GET\r\n", url, L"", L"k", L"", L"", L"n", L"method"},
              {L"GET", L"ftp://example.com/", L"", L"k", L"", L"", L"n", L"url"},
              {L"GET", L"example.com", L"", L"k", L"", L"", L"n", L"url"},
              {L"GET", L"https:///a", L"", L"k", L"", L"", L"n", L"url"},
              {L"GET", L"https://[::1/", L"", L"k", L"", L"", L"n", L"url"},
              {L"GET", L"https://example.com:65536/", L"", L"k", L"", L"", L"n", L"url"},
              {L"GET", L"https://example.com:8x/", L"", L"k", L"", L"", L"n", L"url"},
              {L"GET", url + L"ñ", L"", L"k", L"", L"", L"n", L"url"},
              {L"GET", url + L"a b", L"", L"k", L"", L"", L"n", L"url"},
              {L"GET", url + nul, L"", L"k", L"", L"", L"n", L"url"},
              {L"GET", url + L"?a=%4", L"", L"k", L"", L"", L"n", L"url"},
              {L"GET", url, L"a=%G1", L"k", L"", L"", L"n", L"body"},
              {L"GET", url, L"", L"", L"", L"", L"n", L"oauth_consumer_key"},
              {L"GET", url, L"", L"k\r\nX: y", L"", L"", L"n", L"oauth_consumer_key"},
              {L"GET", url, L"", L"k", L"t" + nul, L"", L"n", L"oauth_token"},
              {L"GET", url, L"", L"k", L"", L"", L"", L"oauth_nonce"},
              {L"GET", url, L"", L"k", L"", L"", L"n\n", L"oauth_nonce"},
              {L"GET", url, L"", L"k", L"", L"", L"n", L"oauth_timestamp", -1},
              {L"GET", url, L"", L"k", L"", L"oauth_version", L"n", L"oauth_version"},
              {L"GET", url, L"", L"k", L"", L"oauth_signature", L"n", L"oauth_signature"},
              {L"GET", url, L"", L"k", L"", L"callback", L"n", L"callback"},
              {L"GET", url, L"", L"k", L"", L"oauth_a\"b", L"n", L"oauth_a\"b"}};
  for (const auto& row : rows) {
    signer who(row.key, secret(L"the secret"), method::plaintext);
    who.set_token(row.token, secret(L"the other one")).set_parameter(row.parameter, row.parameter);
    std::wstring out = L"as it was";
    ruvo::exception failure;
    EXPECT_FALSE(
        who.authorization(out, row.verb, posted(row.url, row.body), {row.nonce, row.seconds}, failure));
    EXPECT_EQ(failure.get_detail(), row.failure) << row.verb << row.url;
    EXPECT_EQ(out, L"as it was");
    EXPECT_EQ((failure.get_mensaje() + std::wstring(failure)).find(L"the "), std::wstring::npos);
  }
  ruvo::exception failure;
  request message = posted(L"https://example.com/");
  EXPECT_FALSE(signer(L"k", secret()).set_realm(L"a\r\nb").sign(message, L"GET", failure));
  EXPECT_EQ(failure.get_detail() + std::to_wstring(message.count("authorization")), L"realm0");
}

TEST(oauth, foreign_fields_are_not_accepted) {
  const std::wstring rest = L"oauth_nonce=\"n\", oauth_timestamp=\"1\", oauth_signature=\"s%26\"";
  const std::wstring plain = L"oauth_signature_method=\"PLAINTEXT\", ", key = L"oauth_consumer_key=\"k\", ";
  const struct {
    std::wstring field, failure;
  } rows[] = {
      {L"OAuth " + key + plain + rest, L""},
      {L"OAuth " + key + plain + L"oauth_signature=\"s%26\"", L""},
      {L"OAuth " + key + plain + L"oauth_version=\"1.1\", " + rest, L"oauth_version"},
      {L"OAuth " + key + plain + L"oauth_timestamp=\"+1\", oauth_signature=\"s%26\"", L"oauth_timestamp"},
      {L"OAuth " + key + plain + L"oauth_signature=\"s%26t\"", L"oauth_signature"},
      {L"OAuth " + key + plain + L"oauth_token=\"t\", " + rest, L"oauth_token"},
      {L"OAuth " + key + rest, L"oauth_signature_method"},
      {L"OAuth " + plain + rest, L"oauth_consumer_key"},
      {L"OAuth " + key + key + plain + rest, L"Authorization"},
      {L"OAuth " + key + plain + L"oauth_signature=s", L"Authorization"},
      {L"OAuth " + key + plain + L"oauth_signature=\"s%2\"", L"Authorization"},
      {L"OAuth " + key + plain + rest + L" more", L"Authorization"},
      {L"OAuth" + key + plain + rest, L"Authorization"},
      {L"Bearer " + key + plain + rest, L"Authorization"},
      {L"OAuth realm=\"" + std::wstring(65536, L'r') + L"\", " + key + plain + rest, L"Authorization"},
      {L"OAuth", L"oauth_consumer_key"},
      {L"", L"Authorization"}};
  for (const auto& row : rows) {
    stamp seen;
    ruvo::exception failure;
    const signer who(L"k", secret(L"s"), method::plaintext);
    const bool accepted = who.verify(L"GET", posted(L"https://example.com/", {}, row.field), seen, failure);
    EXPECT_EQ(accepted, row.failure.empty()) << row.field;
    EXPECT_EQ(failure.get_detail(), row.failure) << row.field;
  }
}

/// RFC 7636, appendix B, and RFC 6750.
TEST(oauth, codes_and_bearers) {
  const secret verifier(L"dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk");
  EXPECT_EQ(challenge(verifier), L"E9Melhoa2OwvFrEMTJguCHaoeK1t8URWbuGJSstw-cM");
  EXPECT_EQ(challenge(verifier, challenge_method::plain), L"dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk");
  const secret one = new_verifier(), two = new_verifier();
  EXPECT_EQ(challenge(one).size(), 43U);
  EXPECT_FALSE(one == two);
  for (const std::wstring& text : {std::wstring(42, L'a'), std::wstring(129, L'a'), std::wstring(43, L'+')})
    EXPECT_THROW(challenge(secret(text)), ruvo::exc::BadArgument) << text;

  EXPECT_EQ(bearer(secret(L"a-._~+/9==")), L"Bearer a-._~+/9==");
  for (const wchar_t* text : {L"", L"==", L"a b", L"a\r\nb", L"a=b", L"ñ"})
    EXPECT_THROW(bearer(secret(text)), ruvo::exc::BadArgument) << text;
}

TEST(oauth, secrets_are_kept) {
  secret first(L"ñ1"), second(first), none;
  EXPECT_TRUE(first == second &&
              first.reveal() ==
                  "\xC3\xB1"
                  "1" &&
              none.empty() && !(first == none));
  first = std::move(second);
  none = first;
  EXPECT_EQ(none.reveal(), first.reveal());
  static_assert(!std::is_constructible_v<ruvo::xvar, secret> && !std::is_convertible_v<secret, std::wstring>);
}

}  // namespace
