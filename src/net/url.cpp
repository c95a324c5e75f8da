// SPDX-License-Identifier: BSL-1.0

// Addresses.

#include <ruvo/url.hpp>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/ascii.hpp"
#include "base/unicode.hpp"
#include "base/utf.hpp"
#include "base/wire/ascii_set.hpp"
#include "base/wire/percent.hpp"
#include "net/failures.hpp"
#include "net/host_names.hpp"

namespace ruvo::http {

namespace {

constexpr std::size_t longest_url = 65536;

// RFC 3986: what stands in each part as it is.
constexpr wire::ascii_set scheme_set = wire::alphanumeric.with("+-.");
constexpr wire::ascii_set sub_delims_set = wire::unreserved_set.with("!$&'()*+,;=");
constexpr wire::ascii_set user_set = sub_delims_set.with(":");
constexpr wire::ascii_set segment_set = sub_delims_set.with(":@");
constexpr wire::ascii_set path_set = segment_set.with("/");
constexpr wire::ascii_set query_set = path_set.with("?");

bool is_scheme(std::wstring_view text) noexcept {
  return !text.empty() && texto::is_alpha(text.front()) &&
         std::all_of(text.begin(), text.end(), [](wchar_t c) { return scheme_set.has(c); });
}

std::wstring lowered_part(std::wstring_view text) {
  std::wstring made(text);
  std::transform(made.begin(), made.end(), made.begin(), texto::to_lower);
  return made;
}

bool is_escape(std::wstring_view text) noexcept {
  return text.size() >= 3 && text[0] == L'%' && texto::hex_value(text[1]) >= 0 &&
         texto::hex_value(text[2]) >= 0;
}

/// What may stand in any part, to be encoded: no control, no blank, no half of a pair.
bool is_beyond_ascii(wchar_t c) noexcept {
  return static_cast<char16_t>(c) > 0xA0 && !texto::is_word_blank(c) && !texto::is_surrogate(c);
}

/// The first unit of a part that cannot stand there, or npos.
std::size_t first_wrong(std::wstring_view text, const wire::ascii_set& stay) noexcept {
  for (std::size_t at = 0; at < text.size(); ++at) {
    const wchar_t c = text[at];
    const bool pair =
        texto::is_high_surrogate(c) && at + 1 < text.size() && texto::is_low_surrogate(text[at + 1]);
    if (is_escape(text.substr(at)))
      at += 2;
    else if (pair)
      ++at;
    else if (!is_beyond_ascii(c) && !stay.has(c))
      return at;
  }
  return text.npos;
}

/// The part with what is beyond ASCII encoded.
std::wstring encoded_part(std::wstring_view text, const wire::ascii_set& stay) {
  std::wstring made;
  wire::append_percent(made, text, stay.with("%"));
  return made;
}

std::wstring decoded_text(std::wstring_view text) {
  std::wstring made;
  const wire::percent_faults faults = wire::percent_text(made, text);
  if (!faults.good()) refuse_at(faults.first());
  return made;
}

/// Reads an address; positions are those of its whole text.
struct url_reader {
  std::wstring_view whole;

  /// The part, encoded where it is beyond ASCII.
  std::wstring checked(std::wstring_view part, const wire::ascii_set& stay) const {
    const std::size_t wrong = first_wrong(part, stay);
    if (wrong != part.npos) refuse_at(offset(part) + wrong);
    return encoded_part(part, stay);
  }
  std::size_t offset(std::wstring_view part) const noexcept {
    return static_cast<std::size_t>(part.data() - whole.data());
  }
  /// Takes a part off the end, behind the first such mark.
  static std::optional<std::wstring_view> cut(std::wstring_view& text, wchar_t mark) noexcept {
    const std::size_t at = text.find(mark);
    if (at == text.npos) return std::nullopt;
    const std::wstring_view part = text.substr(at + 1);
    text = text.substr(0, at);
    return part;
  }
};

int read_port(const url_reader& in, std::wstring_view text) {
  constexpr int most = 65535;
  int port = text.empty() ? -1 : 0;
  for (const wchar_t& c : text) {
    if (texto::is_digit(c)) port = port * 10 + (c - L'0');
    if (!texto::is_digit(c) || port > most) refuse_at(in.offset({&c, 1}));
  }
  return port;
}

// --- RFC 3986, 5.2

/// The path without its "." and ".." (5.2.4).
std::wstring without_dots(std::wstring_view path) {
  std::wstring out;
  while (!path.empty()) {
    if (path.starts_with(L"../") || path.starts_with(L"./")) {
      path.remove_prefix(path.find(L'/') + 1);
    } else if (path == L"." || path == L"..") {
      break;
    } else if (path.starts_with(L"/./") || path == L"/.") {
      path = path.size() == 2 ? std::wstring_view(L"/") : path.substr(2);
    } else if (path.starts_with(L"/../") || path == L"/..") {
      path = path.size() == 3 ? std::wstring_view(L"/") : path.substr(3);
      const std::size_t last = out.rfind(L'/');
      out.resize(last == out.npos ? 0 : last);
    } else {
      const std::size_t end = std::min(path.find(L'/', 1), path.size());
      out += path.substr(0, end);
      path.remove_prefix(end);
    }
  }
  return out;
}

}  // namespace

url::url() noexcept = default;
url::url(std::wstring_view text) {
  exception failure;
  if (!read(text, failure)) failure.raise();
}
url::url(const url& other) = default;
url::url(url&& other) noexcept = default;
url& url::operator=(const url& other) { return *this = url(other); }
url& url::operator=(url&& other) noexcept = default;
url::~url() = default;

bool url::read(std::wstring_view text, exception& err) {
  return succeeds(err, [&] {
    if (text.size() > longest_url) refuse_at(longest_url);
    const url_reader in{text};
    url made;
    std::wstring_view rest = text;
    const auto fragment = in.cut(rest, L'#');
    const auto query = in.cut(rest, L'?');
    made.has_fragment_ = fragment.has_value();
    if (fragment) made.fragment_ = in.checked(*fragment, query_set);
    made.has_query_ = query.has_value();
    if (query) made.query_ = in.checked(*query, query_set);
    const std::size_t colon = rest.find_first_of(L":/");
    if (colon != rest.npos && rest[colon] == L':') {
      if (!is_scheme(rest.substr(0, colon))) refuse_at(0);
      made.scheme_ = lowered_part(rest.substr(0, colon));
      rest.remove_prefix(colon + 1);
    }
    if (rest.starts_with(L"//")) {
      const std::size_t end = std::min(rest.find(L'/', 2), rest.size());
      made.read_authority(text, rest.substr(2, end - 2));
      rest.remove_prefix(end);
    }
    made.path_ = in.checked(rest, path_set);
    *this = std::move(made);
  });
}

void url::read_authority(std::wstring_view whole, std::wstring_view authority) {
  const url_reader in{whole};
  has_authority_ = true;
  const std::size_t user = authority.rfind(L'@');
  if (user != authority.npos) {
    has_user_info_ = true;
    user_info_ = in.checked(authority.substr(0, user), user_set);
    authority.remove_prefix(user + 1);
  }
  const std::size_t host = authority.starts_with(L'[') ? authority.find(L']') + 1 : authority.find(L':');
  const std::wstring_view port = authority.substr(std::min(host, authority.size()));
  const std::wstring_view name = authority.substr(0, authority.size() - port.size());
  if (!port.empty() && port.front() != L':') refuse_at(in.offset(port));
  const std::size_t wrong = wrong_in_host(name);
  if (wrong != name.npos) refuse_at(in.offset(name) + wrong);
  host_ = lowered_part(name);
  if (!port.empty()) port_ = read_port(in, port.substr(1));
}

std::wstring url::to_string() const {
  std::wstring out;
  if (!scheme_.empty()) out.append(scheme_).append(L":");
  if (has_authority_) {
    out += L"//";
    if (has_user_info_) out.append(user_info_).append(L"@");
    out += host_;
    if (port_ >= 0) out.append(L":").append(std::to_wstring(port_));
  } else if (path_.starts_with(L"//")) {
    out += L"/.";  // or it would be read as a host
  } else if (scheme_.empty() && path_.substr(0, path_.find(L'/')).find(L':') != path_.npos) {
    out += L"./";  // or as a scheme
  }
  out += path_;
  if (has_query_) out.append(L"?").append(query_);
  if (has_fragment_) out.append(L"#").append(fragment_);
  return out;
}

int url::get_port() const noexcept {
  constexpr struct {
    std::wstring_view scheme;
    int port;
  } known[] = {{L"http", 80}, {L"https", 443}, {L"ws", 80}, {L"wss", 443}, {L"ftp", 21}};
  if (port_ >= 0) return port_;
  for (const auto& row : known)
    if (row.scheme == scheme_) return row.port;
  return 0;
}

std::wstring url::get_user() const { return decoded_text(user_info_.substr(0, user_info_.find(L':'))); }
std::wstring url::get_password() const {
  const std::size_t colon = user_info_.find(L':');
  return colon == user_info_.npos ? std::wstring()
                                  : decoded_text(std::wstring_view(user_info_).substr(colon + 1));
}

std::vector<std::wstring> url::get_segments() const {
  std::vector<std::wstring> segments;
  std::wstring_view rest = path_;
  if (rest.starts_with(L'/')) rest.remove_prefix(1);
  if (rest.empty()) return segments;
  for (;;) {
    const std::size_t end = std::min(rest.find(L'/'), rest.size());
    segments.push_back(decoded_text(rest.substr(0, end)));
    if (end == rest.size()) return segments;
    rest.remove_prefix(end + 1);
  }
}

fields url::get_query_fields() const {
  fields made;
  exception failure;
  if (!read_form(made, std::wstring_view(query_), failure)) failure.raise();
  return made;
}

bool url::is_secure() const noexcept { return scheme_ == L"https" || scheme_ == L"wss"; }

url& url::set_scheme(const std::wstring& scheme) {
  if (!is_scheme(scheme)) refuse(L"scheme");
  scheme_ = lowered_part(scheme);
  return *this;
}

url& url::set_host(const std::wstring& host) {
  const bool is_bare = host.find(L':') != host.npos && !host.starts_with(L'[');
  const std::wstring name = lowered_part(is_bare ? L"[" + host + L"]" : host);
  if (wrong_in_host(name) != name.npos || (!path_.empty() && path_.front() != L'/')) refuse(L"host");
  host_ = name;
  has_authority_ = true;
  return *this;
}

url& url::set_port(int port) {
  if (port < -1 || port > 65535 || !has_authority_) refuse(L"port");
  port_ = port;
  return *this;
}

url& url::set_user(const std::wstring& user, const std::wstring& password) {
  if (!has_authority_) refuse(L"user");
  std::wstring made;
  wire::append_percent(made, std::wstring_view(user), sub_delims_set);
  if (!password.empty()) made.push_back(L':');
  if (!password.empty()) wire::append_percent(made, std::wstring_view(password), sub_delims_set);
  user_info_ = std::move(made);
  has_user_info_ = !user_info_.empty();
  return *this;
}

url& url::set_segments(const std::vector<std::wstring>& segments) {
  std::wstring made;
  for (const std::wstring& each : segments) {
    if (each == L"." || each == L"..") refuse(L"path");  // no escape keeps them from being steps
    made.push_back(L'/');
    wire::append_percent(made, std::wstring_view(each), segment_set);
  }
  path_ = made.empty() && has_authority_ ? L"/" : std::move(made);
  return *this;
}

url& url::set_path(const std::wstring& path) {
  const bool is_rooted = path.empty() || path.front() == L'/';
  if (first_wrong(path, path_set) != path.npos || (has_authority_ && !is_rooted)) refuse(L"path");
  path_ = encoded_part(path, path_set);
  return *this;
}

url& url::set_query(const fields& query) {
  query_ = query.form_text();
  has_query_ = true;
  return *this;
}
url& url::set_query(const std::wstring& query) {
  if (first_wrong(query, query_set) != query.npos) refuse(L"query");
  query_ = encoded_part(query, query_set);
  has_query_ = true;
  return *this;
}
url& url::set_fragment(const std::wstring& fragment) {
  std::wstring made;
  wire::append_percent(made, std::wstring_view(fragment), query_set);
  fragment_ = std::move(made);
  has_fragment_ = true;
  return *this;
}

url& url::erase_query() noexcept {
  query_.clear();
  has_query_ = false;
  return *this;
}
url& url::erase_fragment() noexcept {
  fragment_.clear();
  has_fragment_ = false;
  return *this;
}

url url::resolve(const url& reference) const {
  url made = reference;
  if (!reference.scheme_.empty() || reference.has_authority_) {
    made.path_ = without_dots(reference.path_);
  } else {
    made = *this;
    if (!reference.path_.empty()) {
      const bool is_bare = has_authority_ && path_.empty();
      const std::wstring before = is_bare ? L"/" : path_.substr(0, path_.rfind(L'/') + 1);
      made.path_ = without_dots(reference.path_.front() == L'/' ? reference.path_ : before + reference.path_);
    }
    if (!reference.path_.empty() || reference.has_query_) {
      made.query_ = reference.query_;
      made.has_query_ = reference.has_query_;
    }
    made.fragment_ = reference.fragment_;
    made.has_fragment_ = reference.has_fragment_;
  }
  if (made.scheme_.empty()) made.scheme_ = scheme_;
  return made;
}

std::wstring url::request_target() const {
  std::wstring target = path_.empty() ? L"/" : path_;
  if (has_query_) target.append(L"?").append(query_);
  return target;
}

bool url::operator==(const url& other) const noexcept {
  return scheme_ == other.scheme_ && has_authority_ == other.has_authority_ && host_ == other.host_ &&
         port_ == other.port_ && has_user_info_ == other.has_user_info_ && user_info_ == other.user_info_ &&
         path_ == other.path_ && has_query_ == other.has_query_ && query_ == other.query_ &&
         has_fragment_ == other.has_fragment_ && fragment_ == other.fragment_;
}

}  // namespace ruvo::http
