// SPDX-License-Identifier: BSL-1.0

// Cookies: their headers, and the jar.

#include <ruvo/cookies.hpp>
#include <ruvo/ruvo.hpp>

#include <string>

#include <gtest/gtest.h>

#include "net/failures.hpp"

using ruvo::bundle;
using ruvo::datetime;
using ruvo::exception;
using ruvo::http::cookie;
using ruvo::http::cookie_jar;

namespace {

constexpr long long now = 1'700'000'000;

std::wstring shown_cookie(const std::wstring& text) {
  cookie read;
  exception failure;
  if (!ruvo::http::read_set_cookie(read, text, failure)) return shown_failure(failure);
  std::wstring out = read.name + L"=" + read.value + L"|" + read.domain + L"|" + read.path + L"|";
  if (read.expires) out += std::to_wstring(*read.expires);
  out += L"|";
  if (read.max_age) out += std::to_wstring(*read.max_age);
  return out + L"|" + std::to_wstring(static_cast<int>(read.site)) + (read.secure ? L"s" : L"") +
         (read.http_only ? L"h" : L"");
}

/// What the jar says to one of these: empty for success.
std::wstring taken(cookie_jar& jar, const wchar_t* url, const std::wstring& text, long long at = now) {
  exception failure;
  return jar.take(url, text, datetime(at), failure) ? L"" : shown_failure(failure);
}

std::wstring sent(cookie_jar& jar, const wchar_t* url, long long at = now) {
  return jar.header_for(url, datetime(at));
}

}  // namespace

TEST(cookies, set_cookie_read) {
  const struct {
    const wchar_t *text, *expected;
  } rows[] = {
      // RFC 6265, 3.1
      {L"SID=31d4d96e407aad42; Path=/; Domain=example.com", L"SID=31d4d96e407aad42|example.com|/|||0"},
      {L"lang=en-US; Expires=Wed, 09 Jun 2021 10:18:14 GMT", L"lang=en-US|||1623233894||0"},
      {L"a=b; Path=/; x", L"a=b||/|||0"},
      {L" a = \"b c\" ;SECURE;httponly=1; samesite=strict", L"a=\"b c\"|||||2sh"},
      {L"ñ=1; SameSite=Lax; SameSite=?", L"ñ=1|||||0"},
      {L"a=b=c; Domain=.Example.COM; Path=x; Path=/y; Max-Age=-1; Max-Age=1.5",
       L"a=b=c|example.com|/y||-1|0"},
      {L"a=; Max-Age=99999999999999999999", L"a=||||9223372036854775807|0"},
      {L"a=1; Expires=Sunday, 06-Nov-94 08:49:37 GMT", L"a=1|||784111777||0"},
      {L"a=1; Expires=Sun Nov  6 08:49:37 1994", L"a=1|||784111777||0"},
      {L"a=1; Expires=8:49:37 nov/6 69x", L"a=1|||3150953377||0"},
      {L"a=1; Expires=31 Feb 2020 01:01:01", L"a=1|||||0"},
      {L"a=1; Expires=1 Jan 1600 00:00:00", L"a=1|||||0"},
      {L"", L"BadFormat 1"},
      {L"=a", L"BadFormat 1"},
      {L"a; b=c", L"BadFormat 1"},
      {L"a=b\r\nc", L"BadFormat 4"},
  };
  for (const auto& [text, expected] : rows) EXPECT_EQ(shown_cookie(text), expected) << text;
  EXPECT_EQ(shown_cookie(L"a=" + std::wstring(4096, L'b')), L"BadFormat 4097");
  EXPECT_EQ(shown_cookie(L"a=b; path=/" + std::wstring(1024, L'b')), L"a=b|||||0");
}

TEST(cookies, set_cookie_written) {
  cookie made{.name = L"a", .value = L"\"b\"", .domain = L"example.com", .path = L"/x"};
  made.expires = 784111777;
  made.max_age = 5;
  made.site = ruvo::http::same_site::none;
  made.secure = made.http_only = true;
  std::wstring text;
  exception failure;
  ASSERT_TRUE(ruvo::http::write_set_cookie(text, made, failure));
  EXPECT_EQ(text,
            L"a=\"b\"; Domain=example.com; Path=/x; Expires=Sun, 06 Nov 1994 08:49:37 GMT; Max-Age=5; "
            L"SameSite=None; Secure; HttpOnly");
  cookie back;
  EXPECT_TRUE(ruvo::http::read_set_cookie(back, text, failure) && back == made);
  const std::pair<const wchar_t*, cookie> refused[] = {
      {L"a b", {.name = L"a b"}},
      {L"a", {.name = L"a", .value = L"b;c"}},
      {L"a", {.name = L"a", .value = L"ñ"}},
      {L"a", {.name = L"a", .value = L"b\r\n"}},
      {L"Domain", {.name = L"a", .domain = L"x;y"}},
      {L"Domain", {.name = L"a", .domain = L".x.es"}},
      {L"Path", {.name = L"a", .path = L"x"}},
      {L"Path", {.name = L"a", .path = L"/\n"}},
      {L"Expires", {.name = L"a", .expires = 1LL << 60}},
  };
  for (const auto& [what, bad] : refused) {
    EXPECT_FALSE(ruvo::http::write_set_cookie(text, bad, failure));
    EXPECT_EQ(shown_failure(failure), L"BadArgument " + std::wstring(what));
  }
}

TEST(cookies, cookie_header) {
  ruvo::http::fields read;
  exception failure;
  EXPECT_TRUE(ruvo::http::read_cookies(read, L"a=1; A=\"2\";; b; a=x=y", failure));
  EXPECT_EQ(read, (ruvo::http::fields{{L"a", L"1"}, {L"A", L"\"2\""}, {L"a", L"x=y"}}));
  std::wstring text;
  EXPECT_TRUE(ruvo::http::write_cookies(text, read, failure));
  EXPECT_EQ(text, L"a=1; A=\"2\"; a=x=y");
  EXPECT_FALSE(ruvo::http::read_cookies(read, L"a=1\n", failure));
  ruvo::serializer::http_cookie cookies;
  bundle values;
  EXPECT_FALSE(cookies.deserialize(values, L"SID=1; t=a; t=b", &failure));
  EXPECT_FALSE(cookies.serialize(text, values, &failure));
  EXPECT_EQ(text, L"SID=1; t=a; t=b");
  EXPECT_TRUE(cookies.serialize(text, {{L"a", L"b c"}}, &failure));
  EXPECT_EQ(shown_failure(failure), L"BadArgument a");
}

TEST(cookie_jar, takes_what_a_server_may_set) {
  const struct {
    const wchar_t *url, *text, *other;  // another address that gets it, "" for none
    bool is_taken;
  } rows[] = {
      {L"http://a.x.es/", L"a=1", L"", true},
      {L"http://a.x.es/", L"a=1; Domain=x.es", L"http://b.x.es/", true},
      {L"http://a.x.es/", L"a=1; Domain=.A.x.es", L"http://c.a.x.es/", true},
      {L"http://a.x.es/", L"a=1; Domain=b.x.es", L"", false},
      {L"http://ax.es/", L"a=1; Domain=x.es", L"", false},
      {L"http://x.es/", L"a=1; Domain=a.x.es", L"", false},
      {L"http://x.es/", L"a=1; Domain=es", L"", false},
      {L"http://localhost/", L"a=1; Domain=localhost", L"", true},
      {L"http://192.0.2.1/", L"a=1; Domain=192.0.2.1", L"", true},
      {L"http://192.0.2.1/", L"a=1; Domain=2.1", L"", false},
      {L"http://192.0.513/", L"a=1; Domain=0.513", L"", false},
      {L"http://a.es./", L"a=1; Domain=es.", L"", false},
      {L"http://[2001:db8::1]:80/", L"a=1", L"", true},
      {L"https://x.es/", L"a=1; Secure", L"", true},
      {L"http://x.es/", L"a=1; Secure", L"", false},
      {L"https://x.es/", L"__Secure-a=1; Secure", L"", true},
      {L"https://x.es/", L"__secure-a=1", L"", false},
      {L"https://x.es/", L"__Host-a=1; Secure; Path=/", L"", true},
      {L"https://x.es/", L"__Host-a=1; Secure", L"", false},
      {L"https://x.es/", L"__Host-a=1; Secure; Path=/; Domain=x.es", L"", false},
      {L"https://x.es/", L"__Host-a=1; Path=/", L"", false},
      {L"file:///x", L"a=1", L"", false},
      {L"no address", L"a=1", L"", false},
  };
  for (const auto& [url, text, other, is_taken] : rows) {
    cookie_jar jar;
    EXPECT_EQ(taken(jar, url, text).empty(), is_taken) << url << L" " << text;
    EXPECT_EQ(sent(jar, url).empty(), !is_taken) << url << L" " << text;
    for (const wchar_t* foreign :
         {L"http://b.x.es/", L"http://c.a.x.es/", L"http://y.es/", L"http://192.0.2.12/"}) {
      const bool may = std::wstring(other) == foreign;
      EXPECT_TRUE(may ? !sent(jar, foreign).empty()
                      : std::wstring(text).find(L"=x.es") != std::wstring::npos || sent(jar, foreign).empty())
          << text << foreign;
    }
  }
}

TEST(cookie_jar, paths_order_and_ends) {
  cookie_jar jar;
  taken(jar, L"http://x.es/a/b?c", L"p=1");  // of "/a"
  taken(jar, L"http://x.es/", L"q=2; Max-Age=10");
  taken(jar, L"http://x.es/", L"r=3; Path=/a/b/; Expires=Tue, 14 Nov 2023 22:13:25 GMT");  // in 5 seconds
  EXPECT_EQ(sent(jar, L"http://x.es/a/b/c"), L"r=3; p=1; q=2");
  EXPECT_EQ(sent(jar, L"http://x.es/a"), L"p=1; q=2");
  EXPECT_EQ(sent(jar, L"http://x.es/ab"), L"q=2");
  EXPECT_EQ(sent(jar, L"http://x.es/a/b/", now + 5), L"p=1; q=2");
  EXPECT_EQ(taken(jar, L"http://x.es/", L"q=new; Max-Age=100", now + 9), L"");
  EXPECT_EQ(sent(jar, L"http://x.es/", now + 108), L"q=new");
  EXPECT_EQ(taken(jar, L"http://x.es/", L"t=4", now + 109), L"");
  EXPECT_EQ(taken(jar, L"http://x.es/", L"q=again; Max-Age=1", now + 110), L"");  // the other one has ended
  EXPECT_EQ(sent(jar, L"http://x.es/", now + 110), L"t=4; q=again");
  EXPECT_EQ(jar.expire(datetime(now + 111)), 2u);
  EXPECT_EQ(jar.end_session(), 2u);
  EXPECT_EQ(taken(jar, L"http://x.es/", L"q=; Max-Age=0"), L"");
  EXPECT_TRUE(jar.empty());
}

TEST(cookie_jar, secure_ones_stay_with_https) {
  cookie_jar jar;
  EXPECT_EQ(taken(jar, L"https://a.x.es/login/", L"s=1; Secure; Domain=x.es; Path=/login"), L"");
  EXPECT_EQ(sent(jar, L"http://a.x.es/login"), L"");
  for (const wchar_t* text :
       {L"s=2; Domain=x.es; Path=/login", L"s=2; Path=/login/x", L"s=2; Max-Age=0; Path=/login"})
    EXPECT_EQ(taken(jar, L"http://a.x.es/", text), L"BadArgument s") << text;
  EXPECT_EQ(taken(jar, L"http://a.x.es/", L"s=2; Path=/"), L"");
  EXPECT_EQ(sent(jar, L"https://a.x.es/login"), L"s=1; s=2");
}

TEST(cookie_jar, takes_each_of_an_answer) {
  ruvo::http::response answer;
  answer.add_set_cookie(L"a=1; Expires=Wed, 09 Jun 2032 10:18:14 GMT")
      .add_set_cookie(L"bad")
      .add_set_cookie(L"b=2");
  answer["set-cookie"] = L"c=3";
  cookie_jar jar;
  exception failure;
  EXPECT_FALSE(jar.take(L"https://x.es/", answer, datetime(now), failure));
  EXPECT_EQ(shown_failure(failure), L"BadFormat 1");
  EXPECT_EQ(sent(jar, L"https://x.es/"), L"a=1; b=2; c=3");
  EXPECT_EQ(answer.to_string().find(L"a=1"), std::wstring::npos);
  answer.clear_set_cookies();
  EXPECT_TRUE(jar.take(L"https://x.es/", answer, datetime(now), failure));
}

TEST(cookie_jar, has_limits) {
  cookie_jar jar;
  for (int n = 0; n < 51; ++n) {
    taken(jar, L"http://x.es/", L"c" + std::to_wstring(n) + L"=1", now + n);
    if (n == 49) {
      EXPECT_EQ(sent(jar, L"http://x.es/", now + 49).substr(0, 5), L"c0=1;");
    }
    if (n == 49) taken(jar, L"http://x.es/", L"c0=2", now + 50);  // used last
  }
  EXPECT_EQ(jar.size(), 50u);
  EXPECT_EQ(sent(jar, L"http://x.es/").substr(0, 11), L"c0=2; c2=1;");
  for (int n = 0; n < 3100; ++n)
    taken(jar, (L"http://h" + std::to_wstring(n) + L".es/").c_str(), L"a=1", now + 100 + n);
  EXPECT_EQ(jar.size(), 3000u);
  EXPECT_EQ(sent(jar, L"http://h99.es/") + sent(jar, L"http://h100.es/"), L"a=1");
}

TEST(cookie_jar, is_stored_as_a_bundle) {
  cookie_jar jar, other;
  exception failure;
  taken(jar, L"https://x.es/a/", L"s=\"ñ\"; Secure; HttpOnly; SameSite=None; Max-Age=9");
  taken(jar, L"http://a.x.es/", L"t=1; Domain=x.es");
  const bundle stored = jar;
  std::wstring text;
  bundle again;
  EXPECT_FALSE(ruvo::serializer::write_standard_json(text, stored, &failure));
  EXPECT_FALSE(ruvo::serializer::read_standard_json(again, text, &failure));
  ASSERT_TRUE(other.read(again, failure)) << shown_failure(failure);
  EXPECT_EQ(bundle(other), stored);
  EXPECT_EQ(sent(other, L"https://x.es/a/b"), L"s=\"ñ\"; t=1");
  for (const wchar_t* key : {L"name", L"value", L"domain", L"path", L"same_site", L"ends", L"secure"}) {
    bundle bad = stored;
    bad.get_list(L"cookies");
    ruvo::list all;
    all = bad[L"cookies"];
    bundle one;
    one = all[0];
    one[key] = L"\r\n";
    bad[L"cookies"] = ruvo::list{one};
    EXPECT_FALSE(other.read(bad, failure)) << key;
    EXPECT_EQ(shown_failure(failure), L"BadArgument " + std::wstring(key));
  }
  EXPECT_FALSE(other.read(bundle(), failure));
  EXPECT_EQ(bundle(other), stored);
}
