// SPDX-License-Identifier: BSL-1.0

// What is signed of a request, and the field that says who signed.

#include "net/signed_request.hpp"

#include <ruvo/binary.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/url.hpp>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <system_error>

#include "base/ascii.hpp"
#include "base/utf.hpp"
#include "base/wire/ascii_set.hpp"
#include "base/wire/percent.hpp"
#include "base/wire/tokens.hpp"

namespace ruvo::oauth {

namespace {

constexpr std::wstring_view form_type = L"application/x-www-form-urlencoded";

std::string percent_encoded(std::string_view bytes) {
  std::string out;
  wire::append_percent(out, bytes, wire::unreserved_set);
  return out;
}

/// Adds the fields of a form; `name` is that of the argument which they come from.
void add_form(parameter_list& out, std::string_view form, std::string_view name) {
  const auto decoded = [name](std::string_view text) {
    std::string bytes;
    if (!wire::percent_bytes(bytes, text, wire::plus_sign::blank).good()) refuse(name);
    return bytes;
  };
  while (!form.empty()) {
    const std::string_view field = form.substr(0, form.find('&'));
    form.remove_prefix(std::min(field.size() + 1, form.size()));
    const std::size_t sign = std::min(field.find('='), field.size());
    if (!field.empty())
      out.emplace_back(decoded(field.substr(0, sign)),
                       decoded(field.substr(std::min(sign + 1, field.size()))));
  }
}

bool has_form_body(const http::request& message) {
  const auto field = message.find(L"content-type");
  if (field == message.end()) return false;
  const std::wstring_view type = field->second;
  return wire::is_same_name(wire::trimmed_value(type.substr(0, type.find(L';'))), form_type);
}

/// Names and values in their encoded form, sorted (RFC 5849, 3.4.1.3.2).
std::string normalized(parameter_list all) {
  std::erase_if(all, [](const auto& each) { return each.first == "oauth_signature"; });
  for (auto& [name, value] : all) {
    name = percent_encoded(name);
    value = percent_encoded(value);
  }
  std::sort(all.begin(), all.end());
  std::string out;
  for (const auto& [name, value] : all) {
    if (!out.empty()) out += '&';
    ((out += name) += '=') += value;
  }
  return out;
}

/// The address of a request, which is one of HTTP.
http::url address_of(const http::request& message) {
  const std::wstring& text = message.get_url();
  const bool is_ascii = std::all_of(text.begin(), text.end(), [](wchar_t c) { return c > L' ' && c < 0x7F; });
  http::url address;
  exception failure;
  if (!is_ascii || !address.read(text, failure) || address.get_host().empty()) refuse("url");
  if (address.get_scheme() != L"http" && address.get_scheme() != L"https") refuse("url");
  return address;
}

/// Scheme, host, port and path (RFC 5849, 3.4.1.2). Users and passwords are for no server to see, and the
/// port that is the scheme's own is left out.
std::string base_address(const http::url& address) {
  std::wstring out = address.get_scheme() + L"://" + address.get_host();
  if (address.get_port() != (address.is_secure() ? 443 : 80))
    out.append(L":").append(std::to_wstring(address.get_port()));
  return texto::to_utf_8(out.append(address.get_path().empty() ? L"/" : address.get_path()));
}

}  // namespace

void refuse(std::string_view name) { throw exc::BadArgument(texto::to_utf_16(name)); }

std::string value_in(const parameter_list& all, std::string_view name) {
  const auto found =
      std::find_if(all.begin(), all.end(), [name](const auto& each) { return each.first == name; });
  return found == all.end() ? std::string() : found->second;
}

std::string base_string_of(const std::wstring& verb, const http::request& message,
                           const parameter_list& own) {
  if (!wire::is_token(verb)) refuse("method");
  const http::url address = address_of(message);
  parameter_list counted = own;
  add_form(counted, texto::to_utf_8(address.get_query()), "url");
  if (has_form_body(message)) {
    const binary body = message.get_body_bytes();
    add_form(counted, {reinterpret_cast<const char*>(body.get_store().data()), body.size()}, "body");
  }

  std::string out;
  for (const wchar_t c : verb) out += static_cast<char>(texto::to_upper(c));
  out.append("&").append(percent_encoded(base_address(address))).append("&");
  return out.append(percent_encoded(normalized(std::move(counted))));
}

parameter_list read_authorization(const http::request& message) {
  constexpr std::wstring_view scheme = L"OAuth";
  constexpr std::string_view field = "Authorization";
  const auto found = message.find(L"authorization");
  if (found == message.end()) refuse(field);
  const std::wstring_view text = wire::trimmed_value(found->second);
  constexpr std::size_t longest_field = 65536;
  if (text.size() > longest_field) refuse(field);
  if (!wire::is_same_name(text.substr(0, scheme.size()), scheme)) refuse(field);
  parameter_list out;
  const auto skip = [text](std::size_t at) {
    return std::min(text.find_first_not_of(L" \t", at), text.size());
  };
  for (std::size_t at = scheme.size(); at < text.size(); ++at) {
    const std::size_t name_start = skip(at), sign = text.find(L'=', name_start);
    std::string name, value;
    std::wstring quoted;
    if (name_start == at && at == scheme.size()) refuse(field);  // no blank behind the scheme
    if (sign == text.npos || !wire::is_token(text.substr(name_start, sign - name_start))) refuse(field);
    at = sign + 1;
    if (!wire::read_quoted(quoted, text, at)) refuse(field);
    name = texto::to_utf_8(text.substr(name_start, sign - name_start));
    if (name != "realm") {
      if (!wire::percent_bytes(value, quoted).good()) refuse(field);
      const bool twin =
          std::any_of(out.begin(), out.end(), [&](const auto& each) { return each.first == name; });
      if (twin) refuse(field);
      out.emplace_back(name, value);
    }
    at = skip(at);
    if (at < text.size() && text[at] != L',') refuse(field);
  }
  return out;
}

std::optional<long long> read_seconds(std::string_view text) {
  const bool digits = std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
  if (!digits || text.empty() || text.size() > 18) return std::nullopt;
  long long seconds = 0;
  std::from_chars(text.data(), text.data() + text.size(), seconds);
  return seconds;
}

}  // namespace ruvo::oauth
