// SPDX-License-Identifier: BSL-1.0

// The headers "Set-Cookie" and "Cookie".

#include <ruvo/cookies.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/ascii.hpp"
#include "base/utf.hpp"
#include "base/wire/dates.hpp"
#include "base/wire/tokens.hpp"
#include "net/failures.hpp"
#include "net/field_bundle.hpp"

namespace ruvo::http {

namespace {

constexpr std::size_t most_bytes = 4096;  // of name and value
constexpr std::size_t longest_attribute = 1024;
constexpr long long never = std::numeric_limits<long long>::max();

// --- dates, RFC 6265, 5.1.1

constexpr bool is_date_delimiter(wchar_t c) noexcept {
  return c == L'\t' || (c >= 0x20 && c <= 0x2F) || (c >= 0x3B && c <= 0x40) || (c >= 0x5B && c <= 0x60) ||
         (c >= 0x7B && c <= 0x7E);
}

/// The number at the beginning, of so many digits, that no further digit follows; its size in `size`.
std::optional<int> leading_number(std::wstring_view token, std::size_t least, std::size_t most,
                                  std::size_t& size) {
  int number = 0;
  for (size = 0; size < token.size() && texto::is_digit(token[size]); ++size) {
    if (size == most) return std::nullopt;
    number = number * 10 + (token[size] - L'0');
  }
  return size >= least ? std::optional(number) : std::nullopt;
}

/// What the tokens of a date say, each kind once.
struct cookie_date {
  std::array<int, 3> clock{};
  int day = 0, month = 0, year = 0;
  bool has_clock = false, has_day = false, has_month = false, has_year = false;

  bool take_clock(std::wstring_view token) {
    std::array<int, 3> read{};
    for (std::size_t n = 0, size = 0; n < read.size(); ++n) {
      if (n > 0 && (token.empty() || token.front() != L':')) return false;
      if (n > 0) token.remove_prefix(1);
      const std::optional<int> number = leading_number(token, 1, 2, size);
      if (!number) return false;
      read[n] = *number;
      token.remove_prefix(size);
    }
    clock = read;
    return has_clock = true;
  }
  void take(std::wstring_view token) {
    std::size_t size;
    if (!has_clock && take_clock(token)) return;
    if (const auto number = leading_number(token, 1, 2, size); !has_day && number) {
      day = *number;
      has_day = true;
    } else if (const int named = wire::month_number(token); !has_month && named != 0) {
      month = named;
      has_month = true;
    } else if (const auto found = leading_number(token, 2, 4, size); !has_year && found) {
      year = *found < 70 ? *found + 2000 : *found < 100 ? *found + 1900 : *found;
      has_year = true;
    }
  }
};

std::optional<long long> read_cookie_date(std::wstring_view text) {
  constexpr int first_year = 1601;
  cookie_date made;
  for (std::size_t at = 0; at < text.size();) {
    const auto begin =
        std::find_if_not(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(), is_date_delimiter);
    const auto end = std::find_if(begin, text.end(), is_date_delimiter);
    if (begin != end) made.take(std::wstring_view(&*begin, static_cast<std::size_t>(end - begin)));
    at = static_cast<std::size_t>(end - text.begin());
  }
  if (!made.has_clock || !made.has_day || !made.has_month || !made.has_year) return std::nullopt;
  if (made.year < first_year || made.clock[2] > 59) return std::nullopt;
  return wire::seconds_of(made.year, made.month, made.day, made.clock[0], made.clock[1], made.clock[2]);
}

// --- attributes

/// A number of seconds, or the nearest that fits; nothing for another text.
std::optional<long long> read_max_age(std::wstring_view text) {
  const bool negative = text.starts_with(L'-');
  if (negative) text.remove_prefix(1);
  if (text.empty() || !std::all_of(text.begin(), text.end(), texto::is_digit)) return std::nullopt;
  long long number = 0;
  for (const wchar_t c : text) number = number > never / 10 - 1 ? never : number * 10 + (c - L'0');
  return negative ? -number : number;
}

same_site read_site(std::wstring_view text) noexcept {
  if (wire::is_same_name(text, L"strict")) return same_site::strict;
  if (wire::is_same_name(text, L"lax")) return same_site::lax;
  return wire::is_same_name(text, L"none") ? same_site::none : same_site::unsaid;
}

void take_attribute(cookie& out, std::wstring_view name, std::wstring_view value) {
  if (value.size() > longest_attribute) return;
  if (wire::is_same_name(name, L"Expires")) {
    if (const auto when = read_cookie_date(value)) out.expires = when;
  } else if (wire::is_same_name(name, L"Max-Age")) {
    if (const auto age = read_max_age(value)) out.max_age = age;
  } else if (wire::is_same_name(name, L"Domain")) {
    if (value.starts_with(L'.')) value.remove_prefix(1);
    out.domain = value;
    std::transform(out.domain.begin(), out.domain.end(), out.domain.begin(), texto::to_lower);
  } else if (wire::is_same_name(name, L"Path")) {
    out.path = value.starts_with(L'/') ? value : std::wstring_view();
  } else if (wire::is_same_name(name, L"SameSite")) {
    out.site = read_site(value);
  } else if (wire::is_same_name(name, L"Secure")) {
    out.secure = true;
  } else if (wire::is_same_name(name, L"HttpOnly")) {
    out.http_only = true;
  }
}

/// Takes what stands before the next ";".
std::wstring_view next_pair(std::wstring_view& text) noexcept {
  const std::size_t end = std::min(text.find(L';'), text.size());
  const std::wstring_view pair = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return pair;
}

/// What stands before the "=" and behind it; without one it is a name.
std::pair<std::wstring_view, std::wstring_view> split_pair(std::wstring_view pair) noexcept {
  const std::size_t equals = std::min(pair.find(L'='), pair.size());
  return {wire::trimmed_value(pair.substr(0, equals)),
          wire::trimmed_value(pair.substr(std::min(equals + 1, pair.size())))};
}

void refuse_controls(std::wstring_view text) {
  const auto wrong =
      std::find_if_not(text.begin(), text.end(), [](wchar_t c) { return wire::is_field_unit(c); });
  if (wrong != text.end()) refuse_at(static_cast<std::size_t>(wrong - text.begin()));
}

cookie cookie_in(std::wstring_view text) {
  refuse_controls(text);
  std::wstring_view rest = text;
  const std::wstring_view pair = next_pair(rest);
  const auto [name, value] = split_pair(pair);
  if (name.empty() || pair.find(L'=') == pair.npos) refuse_at(0);
  if (texto::utf_8_size(name) + texto::utf_8_size(value) > most_bytes) refuse_at(most_bytes);
  cookie made;
  made.name = name;
  made.value = value;
  while (!rest.empty()) {
    const auto [attribute, said] = split_pair(next_pair(rest));
    take_attribute(made, attribute, said);
  }
  return made;
}

// --- writing

/// RFC 6265, 4.1.1, also between quotation marks.
bool is_cookie_value(std::wstring_view value) noexcept {
  if (value.size() >= 2 && value.front() == L'"' && value.back() == L'"')
    value = value.substr(1, value.size() - 2);
  return std::all_of(value.begin(), value.end(), [](wchar_t c) {
    const auto code = static_cast<char16_t>(c);
    return code > 0x20 && code < 0x7F && c != L'"' && c != L',' && c != L';' && c != L'\\';
  });
}

void append_cookie(std::wstring& out, const std::wstring& name, const std::wstring& value) {
  if (!wire::is_token(name) || !is_cookie_value(value) || name.size() + value.size() > most_bytes)
    refuse(name);
  out.append(name).append(L"=").append(value);
}

/// "; Name=value", unless that is empty.
void append_attribute(std::wstring& out, std::wstring_view name, std::wstring_view value) {
  const bool is_good = std::all_of(value.begin(), value.end(), [](wchar_t c) {
    return static_cast<char16_t>(c) >= 0x20 && static_cast<char16_t>(c) < 0x7F && c != L';';
  });
  if (!is_good || value != wire::trimmed_value(value)) refuse(name);
  if (!value.empty()) out.append(L"; ").append(name).append(L"=").append(value);
}

std::wstring set_cookie_of(const cookie& in) {
  std::wstring out;
  append_cookie(out, in.name, in.value);
  if (in.domain.starts_with(L'.')) refuse(L"Domain");  // readers take one off
  append_attribute(out, L"Domain", in.domain);
  if (!in.path.empty() && in.path.front() != L'/') refuse(L"Path");
  append_attribute(out, L"Path", in.path);
  if (in.expires) {
    const std::wstring when = wire::http_date(*in.expires);
    if (when.empty()) refuse(L"Expires");
    append_attribute(out, L"Expires", when);
  }
  if (in.max_age) append_attribute(out, L"Max-Age", std::to_wstring(*in.max_age));
  constexpr std::wstring_view sites[] = {L"", L"Lax", L"Strict", L"None"};
  append_attribute(out, L"SameSite", sites[static_cast<std::size_t>(in.site) % std::size(sites)]);
  if (in.secure) out += L"; Secure";
  if (in.http_only) out += L"; HttpOnly";
  return out;
}

fields cookies_in(std::wstring_view text) {
  refuse_controls(text);
  fields made;
  while (!text.empty()) {
    const std::wstring_view pair = next_pair(text);
    const auto [name, value] = split_pair(pair);
    if (!name.empty() && pair.find(L'=') != pair.npos) made.add(std::wstring(name), std::wstring(value));
  }
  return made;
}

std::wstring cookies_of(const fields& in) {
  std::wstring out;
  for (const field& each : in) {
    if (!out.empty()) out += L"; ";
    append_cookie(out, each.name, each.value);
  }
  return out;
}

}  // namespace

bool read_set_cookie(cookie& out, std::wstring_view text, exception& err) {
  return succeeds(err, [&] { out = cookie_in(text); });
}
bool write_set_cookie(std::wstring& out, const cookie& in, exception& err) {
  return succeeds(err, [&] { out = set_cookie_of(in); });
}
bool read_cookies(fields& out, std::wstring_view text, exception& err) {
  return succeeds(err, [&] { out = cookies_in(text); });
}
bool write_cookies(std::wstring& out, const fields& in, exception& err) {
  return succeeds(err, [&] { out = cookies_of(in); });
}

}  // namespace ruvo::http

namespace ruvo::serializer {

http_cookie::http_cookie() = default;
http_cookie::http_cookie(const http_cookie& other) noexcept = default;
http_cookie& http_cookie::operator=(const http_cookie& other) noexcept = default;
http_cookie::~http_cookie() = default;

bool http_cookie::serialize(std::wstring& out, const bundle& in, exception* err, int) {
  return http::fails(err, [&] { out = http::cookies_of(http::fields_of(in)); });
}

bool http_cookie::deserialize(bundle& out, const std::wstring& in, exception* err, int) {
  return http::fails(err, [&] { http::put_fields(out, http::cookies_in(in)); });
}

}  // namespace ruvo::serializer
