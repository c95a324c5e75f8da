// SPDX-License-Identifier: BSL-1.0

// What is signed of a request, and the field that says who signed.

#include "net/signed_request.hpp"

#include <ruvo/binary.hpp>
#include <ruvo/exc.hpp>

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

std::string lowered(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = static_cast<char>(texto::to_lower(texto::unit_of(c)));
  return out;
}

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

/// Adds ":8080", or nothing for the port that is the scheme's own.
void add_port(std::string& out, std::string_view scheme, std::string_view digits) {
  if (digits.empty()) return;
  unsigned port = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
  if (error != std::errc() || end != digits.data() + digits.size() || port > 65535) refuse("url");
  if (port != (scheme == "http" ? 80U : 443U)) (out += ':') += std::to_string(port);
}

/// Scheme, host and port (RFC 5849, 3.4.1.2); what comes before an "@" is for no server to see.
std::string authority_text(std::string_view scheme, std::string_view authority) {
  authority.remove_prefix(authority.rfind('@') + 1);  // npos + 1 is 0
  const std::size_t host_end = authority.starts_with('[') ? authority.find(']') : 0;
  if (host_end == authority.npos) refuse("url");
  const std::size_t colon = std::min(authority.find(':', host_end), authority.size());
  const std::string host = lowered(authority.substr(0, colon));
  if (host.empty()) refuse("url");
  std::string out(scheme);
  (out += "://") += host;
  add_port(out, scheme, authority.substr(std::min(colon + 1, authority.size())));
  return out;
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
  const std::string all = texto::to_utf_8(message.get_url());
  if (!std::all_of(all.begin(), all.end(), [](char c) { return c > ' ' && c < '\x7F'; })) refuse("url");
  const std::string_view url = std::string_view(all).substr(0, all.find('#'));
  const std::size_t scheme_end = url.find("://");
  const std::string scheme = lowered(url.substr(0, std::min(scheme_end, url.size())));
  if (scheme_end == url.npos || (scheme != "http" && scheme != "https")) refuse("url");
  const std::string_view rest = url.substr(scheme_end + 3);
  const std::size_t query = std::min(rest.find('?'), rest.size()), path = std::min(rest.find('/'), query);

  parameter_list counted = own;
  add_form(counted, rest.substr(std::min(query + 1, rest.size())), "url");
  if (has_form_body(message)) {
    const binary body = message.get_body_bytes();
    add_form(counted, {reinterpret_cast<const char*>(body.get_store().data()), body.size()}, "body");
  }

  std::string out;
  for (const wchar_t c : verb) out += static_cast<char>(texto::to_upper(c));
  const std::string address = authority_text(scheme, rest.substr(0, path)) +
                              (path == query ? "/" : std::string(rest.substr(path, query - path)));
  return out + '&' + percent_encoded(address) + '&' + percent_encoded(normalized(std::move(counted)));
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
