// SPDX-License-Identifier: BSL-1.0

// The cookies that are kept.

#include <ruvo/bundle.hpp>
#include <ruvo/cookies.hpp>
#include <ruvo/list.hpp>
#include <ruvo/url.hpp>
#include <ruvo/xvar.hpp>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

#include "base/ascii.hpp"
#include "base/wire/tokens.hpp"
#include "net/failures.hpp"
#include "values/cell.hpp"

namespace ruvo::http {

namespace {

constexpr std::size_t most_of_domain = 50, most_cookies = 3000;
constexpr long long session = std::numeric_limits<long long>::max();

/// Whether the system takes the host for an address: also "127.1", since no name ends in a number.
bool is_address(std::wstring_view host) noexcept {
  if (host.starts_with(L'[')) return true;
  if (host.ends_with(L'.')) host.remove_suffix(1);
  const std::wstring_view last = host.substr(host.rfind(L'.') + 1);  // npos + 1 is 0
  return last.starts_with(L"0x") || (!last.empty() && std::all_of(last.begin(), last.end(), texto::is_digit));
}

/// "localhost", and "com." too.
bool is_single_label(std::wstring_view host) noexcept { return host.find(L'.') >= host.size() - 1; }

bool is_at_or_below(std::wstring_view host, std::wstring_view domain) noexcept {
  if (host == domain) return true;
  return host.size() > domain.size() && host.ends_with(domain) &&
         host[host.size() - domain.size() - 1] == L'.' && !is_address(host);
}

/// RFC 6265, 5.1.4.
bool is_path_below(std::wstring_view path, std::wstring_view above) noexcept {
  return path.starts_with(above) &&
         (path.size() == above.size() || above.ends_with(L'/') || path[above.size()] == L'/');
}

std::wstring default_path(const std::wstring& path) {
  const std::size_t last = path.rfind(L'/');
  return last == path.npos || last == 0 ? L"/" : path.substr(0, last);
}

const std::wstring& path_of(const url& address) {
  static const std::wstring root = L"/";
  return address.get_path().empty() ? root : address.get_path();
}

bool begins_with_name(std::wstring_view name, std::wstring_view prefix) noexcept {
  return wire::is_same_name(name.substr(0, prefix.size()), prefix);
}

/// When the cookie ends, taken now.
long long end_of(const cookie& what, long long now) noexcept {
  if (!what.max_age) return what.expires ? std::min(*what.expires, session - 1) : session;
  if (*what.max_age <= 0) return std::numeric_limits<long long>::min();
  return *what.max_age >= session - 1 - std::max(now, 0LL) ? session - 1 : now + *what.max_age;
}

/// The cookie as it is kept. Refuses one that this address must not set.
kept_cookie kept(cookie what, const url& from, long long now) {
  kept_cookie made;
  const std::wstring& host = from.get_host();
  const bool said_domain = !what.domain.empty();
  const bool is_alone = is_address(host) || is_single_label(host);
  if (said_domain && what.domain != host && (is_alone || !is_at_or_below(host, what.domain)))
    refuse(what.name);
  if (said_domain && is_single_label(what.domain) && !is_alone) refuse(what.name);
  if (what.secure && !from.is_secure()) refuse(what.name);
  const bool is_host_cookie = begins_with_name(what.name, L"__Host-");
  if ((is_host_cookie || begins_with_name(what.name, L"__Secure-")) && !what.secure) refuse(what.name);
  if (is_host_cookie && (said_domain || what.path != L"/")) refuse(what.name);
  made.host_only = !said_domain || is_alone;
  if (made.host_only) what.domain = host;
  if (what.path.empty()) what.path = default_path(path_of(from));
  made.created = made.used = now;
  made.ends = end_of(what, now);
  made.what = std::move(what);
  return made;
}

bool is_same(const kept_cookie& a, const kept_cookie& b) noexcept {
  return a.what.name == b.what.name && a.what.domain == b.what.domain && a.what.path == b.what.path;
}

/// Whether a cookie from an open connection would stand before a secure one.
bool hides(const kept_cookie& made, const kept_cookie& secure) noexcept {
  return secure.what.secure && secure.what.name == made.what.name &&
         is_path_below(made.what.path, secure.what.path) &&
         (is_at_or_below(made.what.domain, secure.what.domain) ||
          is_at_or_below(secure.what.domain, made.what.domain));
}

url address_in(std::wstring_view text) {
  url address(text);
  if (address.get_host().empty()) refuse_at(0);
  return address;
}

// --- bundles

bundle stored_form(const kept_cookie& kept) {
  const cookie& what = kept.what;
  bundle made{{L"name", what.name},           {L"value", what.value},
              {L"domain", what.domain},       {L"path", what.path},
              {L"host_only", kept.host_only}, {L"secure", what.secure},
              {L"http_only", what.http_only}, {L"same_site", static_cast<int>(what.site)},
              {L"created", kept.created},     {L"used", kept.used}};
  if (kept.is_lasting()) made[L"ends"] = kept.ends;
  return made;
}

std::wstring stored_text(const bundle& in, const wchar_t* key) {
  const xvar* const value = in.get_ptr(key);
  if (!value || !value->is_charsquence()) refuse(key);
  std::wstring text = *value;
  if (!wire::is_field_value(text)) refuse(key);
  return text;
}

long long stored_number(const bundle& in, const wchar_t* key) {
  const xvar* const value = in.get_ptr(key);
  if (!value || !value->is_number()) refuse(key);
  return *value;
}

bool stored_truth(const bundle& in, const wchar_t* key) {
  const xvar* const value = in.get_ptr(key);
  if (!value || !value->instanceof (typeid(bool))) refuse(key);
  return *value;
}

kept_cookie cookie_of(const bundle& in) {
  kept_cookie made;
  cookie& what = made.what;
  what.name = stored_text(in, L"name");
  what.value = stored_text(in, L"value");
  what.domain = stored_text(in, L"domain");
  what.path = stored_text(in, L"path");
  if (what.name.empty() || what.name.find_first_of(L"=;") != what.name.npos) refuse(L"name");
  if (what.value.find(L';') != what.value.npos) refuse(L"value");
  if (what.domain.empty()) refuse(L"domain");
  if (!what.path.starts_with(L'/')) refuse(L"path");
  made.host_only = stored_truth(in, L"host_only");
  what.secure = stored_truth(in, L"secure");
  what.http_only = stored_truth(in, L"http_only");
  const long long site = stored_number(in, L"same_site");
  if (site < 0 || site > static_cast<long long>(same_site::none)) refuse(L"same_site");
  what.site = static_cast<same_site>(site);
  made.created = stored_number(in, L"created");
  made.used = stored_number(in, L"used");
  made.ends = in.has(L"ends") ? stored_number(in, L"ends") : session;
  return made;
}

}  // namespace

bool kept_cookie::is_lasting() const noexcept { return ends != session; }

cookie_jar::cookie_jar() = default;
cookie_jar::cookie_jar(const cookie_jar& other) = default;
cookie_jar::cookie_jar(cookie_jar&& other) noexcept = default;
cookie_jar& cookie_jar::operator=(const cookie_jar& other) { return *this = cookie_jar(other); }
cookie_jar& cookie_jar::operator=(cookie_jar&& other) noexcept = default;
cookie_jar::~cookie_jar() = default;

bool cookie_jar::take(std::wstring_view from, const std::wstring& set_cookie, const datetime& now,
                      exception& err) {
  return succeeds(err, [&] {
    const url address = address_in(from);
    cookie read;
    exception failure;
    if (!read_set_cookie(read, set_cookie, failure)) failure.raise();
    const long long seconds = now.get_lapso();
    kept_cookie made = kept(std::move(read), address, seconds);
    const bool is_open = !address.is_secure();
    for (const kept_cookie& each : all_)
      if (is_open && each.ends > seconds && hides(made, each)) refuse(made.what.name);
    keep(std::move(made), seconds);
  });
}

bool cookie_jar::take(std::wstring_view from, const response& answer, const datetime& now, exception& err) {
  bool all = true;
  const auto take_one = [&](const std::wstring& text) {
    exception failure;
    if (take(from, text, now, failure)) return;
    if (std::exchange(all, false)) failure.copy_on(err);
  };
  for (const std::wstring& each : answer.get_set_cookies()) take_one(each);
  const auto found = answer.find(L"Set-Cookie");
  if (found != answer.end()) take_one(found->second);
  return all;
}

void cookie_jar::keep(kept_cookie made, long long now) {
  auto old =
      std::find_if(all_.begin(), all_.end(), [&](const kept_cookie& each) { return is_same(each, made); });
  if (old != all_.end() && std::min(old->ends, made.ends) <= now) {
    all_.erase(old);  // what ended is no longer there to be replaced
    old = all_.end();
  }
  if (made.ends <= now) return;
  if (old != all_.end()) {
    made.created = old->created;
    *old = std::move(made);
  } else {
    make_room(made.what.domain, now);
    all_.push_back(std::move(made));
  }
}

void cookie_jar::make_room(const std::wstring& domain, long long now) {
  const auto is_of_domain = [&](const kept_cookie& each) { return each.what.domain == domain; };
  const auto make = [&](std::size_t most, auto counts) {
    const auto is_full = [&] {
      return static_cast<std::size_t>(std::count_if(all_.begin(), all_.end(), counts)) >= most;
    };
    if (!is_full()) return;
    std::erase_if(all_, [&](const kept_cookie& each) { return counts(each) && each.ends <= now; });
    while (is_full()) {
      auto oldest = all_.end();
      for (auto each = all_.begin(); each != all_.end(); ++each)
        if (counts(*each) && (oldest == all_.end() || each->used < oldest->used)) oldest = each;
      all_.erase(oldest);
    }
  };
  make(most_of_domain, is_of_domain);
  make(most_cookies, [](const kept_cookie&) { return true; });
}

std::wstring cookie_jar::header_for(std::wstring_view to, const datetime& now) {
  url address;
  exception none;
  if (!address.read(to, none)) return {};
  const long long seconds = now.get_lapso();
  const std::wstring& host = address.get_host();
  std::vector<kept_cookie*> found;
  for (kept_cookie& each : all_) {
    const bool is_host = each.host_only ? host == each.what.domain : is_at_or_below(host, each.what.domain);
    const bool is_fit = each.ends > seconds && (address.is_secure() || !each.what.secure);
    if (is_host && is_fit && is_path_below(path_of(address), each.what.path)) found.push_back(&each);
  }
  std::stable_sort(found.begin(), found.end(), [](const kept_cookie* a, const kept_cookie* b) {
    return a->what.path.size() > b->what.path.size();
  });
  std::wstring out;
  for (kept_cookie* each : found) {
    if (!out.empty()) out += L"; ";
    out.append(each->what.name).append(L"=").append(each->what.value);
    each->used = seconds;
  }
  return out;
}

std::size_t cookie_jar::expire(const datetime& now) {
  return std::erase_if(all_, [at = now.get_lapso()](const kept_cookie& each) { return each.ends <= at; });
}

std::size_t cookie_jar::end_session() {
  return std::erase_if(all_, [](const kept_cookie& each) { return !each.is_lasting(); });
}

std::size_t cookie_jar::erase(const std::wstring& domain) {
  return std::erase_if(
      all_, [own = domain](const kept_cookie& each) { return is_at_or_below(each.what.domain, own); });
}

void cookie_jar::clear() noexcept { all_.clear(); }

cookie_jar::operator bundle() const {
  bundle made;
  list& all = made.hack_list_on(L"cookies");
  for (const kept_cookie& each : all_) all.push_back(stored_form(each));
  return made;
}

bool cookie_jar::read(const bundle& stored, exception& err) {
  return succeeds(err, [&] {
    const xvar* const value = stored.get_ptr(L"cookies");
    if (!value || !value->instanceof (typeid(list))) refuse(L"cookies");
    const list& all = ruvo::detail::cell::as_list(*value);
    if (all.size() > most_cookies) refuse(L"cookies");
    std::vector<kept_cookie> made;
    for (const xvar& each : all) {
      if (!each.instanceof (typeid(bundle))) refuse(L"cookies");
      made.push_back(cookie_of(ruvo::detail::cell::as_bundle(each)));
    }
    all_ = std::move(made);
  });
}

}  // namespace ruvo::http
