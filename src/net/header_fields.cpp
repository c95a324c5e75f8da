// SPDX-License-Identifier: BSL-1.0

// Values of header fields, and the check of messages.

#include <ruvo/binary.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/header_fields.hpp>
#include <ruvo/xvar.hpp>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/ascii.hpp"
#include "base/charset.hpp"
#include "base/wire/ascii_set.hpp"
#include "base/wire/parameters.hpp"
#include "base/wire/percent.hpp"
#include "base/wire/tokens.hpp"
#include "net/failures.hpp"
#include "net/field_bundle.hpp"

namespace ruvo::http {

bool is_field_name(std::wstring_view name) noexcept { return wire::is_field_name(name); }
bool is_field_value(std::wstring_view value) noexcept { return wire::is_field_value(value); }

std::wstring header_value::get(const std::wstring& name, const std::wstring& fallback) const {
  const auto found = std::find_if(parameters.begin(), parameters.end(),
                                  [&](const field& each) { return wire::is_same_name(each.name, name); });
  return found == parameters.end() ? fallback : found->value;
}

namespace {

constexpr std::size_t longest_value = 65536;
constexpr std::wstring_view value_key = L"__value__";

// --- writing

/// Moves `at` to where a value ends: at ";" or "," outside of quoted strings, or at the end. False at what no
/// value has.
bool pass_value(std::wstring_view text, std::size_t& at, bool is_list) {
  std::wstring unused;
  while (at < text.size() && text[at] != L';' && !(is_list && text[at] == L',')) {
    if (text[at] == L'"') {
      if (!wire::read_quoted(unused, text, at)) return false;
    } else {
      if (!wire::is_field_unit(text[at])) return false;
      ++at;
    }
  }
  return true;
}

bool is_header_value(std::wstring_view value, bool is_list) {
  if (value.empty() || wire::trimmed_value(value) != value || !wire::is_field_value(value)) return false;
  const auto is_ascii = [](wchar_t c) { return static_cast<char16_t>(c) < 128; };
  if (!std::all_of(value.begin(), value.end(), is_ascii)) return false;
  std::size_t at = 0;
  return pass_value(value, at, is_list) && at == value.size();
}

void append_header(std::wstring& out, const header_value& in, bool is_list) {
  if (!is_header_value(in.value, is_list)) refuse(in.value);
  out += in.value;
  for (auto each = in.parameters.begin(); each != in.parameters.end(); ++each) {
    const bool twice = std::any_of(in.parameters.begin(), each, [&](const field& other) {
      return wire::is_same_name(other.name, each->name);
    });
    if (twice || !wire::append_parameter(out, each->name, each->value, wire::parameter_form::http))
      refuse(each->name);
  }
}

// --- reading

/// Takes a value and its parameters; `at` is then at the end or, in a list, at a ",".
header_value take_header(std::wstring_view text, std::size_t& at, bool is_list) {
  header_value made;
  const std::size_t begin = at;
  if (!pass_value(text, at, is_list)) refuse_at(at);
  made.value = wire::trimmed_value(text.substr(begin, at - begin));
  if (made.value.empty()) refuse_at(begin);
  wire::parameters parameters;
  const bool is_good = wire::read_parameters(parameters, text, at);
  if (!is_good || (at < text.size() && !(is_list && text[at] == L','))) refuse_at(at);
  for (const wire::parameter& each : parameters) made.parameters.add(each.name, each.value);
  return made;
}

header_value header_in(std::wstring_view text) {
  if (text.size() > longest_value) refuse_at(longest_value);
  std::size_t at = 0;
  return take_header(text, at, false);
}

std::vector<header_value> headers_in(std::wstring_view text) {
  if (text.size() > longest_value) refuse_at(longest_value);
  std::vector<header_value> made;
  for (std::size_t at = 0; at < text.size(); ++at) {
    at = std::min(text.find_first_not_of(L" \t", at), text.size());
    if (at < text.size() && text[at] != L',') made.push_back(take_header(text, at, true));
  }
  return made;
}

// --- Content-Disposition

/// A name for programs that know `filename` alone; with what they take for an escape as "_".
std::wstring plain_name(std::wstring_view name) {
  std::wstring made(name);
  for (std::size_t at = 0; at < made.size(); ++at) {
    const bool escape = made[at] == L'%' && made.size() - at > 2 && texto::hex_value(made[at + 1]) >= 0 &&
                        texto::hex_value(made[at + 2]) >= 0;
    if (escape || static_cast<char16_t>(made[at]) > 127 || made[at] == L'"' || made[at] == L'\\')
      made[at] = L'_';
  }
  return made;
}

void append_filename(std::wstring& out, const std::wstring& filename) {
  const std::wstring plain = plain_name(filename);
  out += L"; filename=";
  wire::append_word(out, plain);
  if (plain == filename) return;
  out += L"; filename*=UTF-8''";
  wire::append_percent(out, std::wstring_view(filename), wire::attribute_set);
}

// --- checking

void check_headers(const header_table& headers) {
  for (const auto& [name, value] : headers)
    if (!wire::is_field_name(name) || !wire::is_field_value(value)) refuse(name);
}

}  // namespace

bool write_header(std::wstring& out, const header_value& in, exception& err) {
  return succeeds(err, [&] {
    std::wstring made;
    append_header(made, in, false);
    out = std::move(made);
  });
}

bool write_header_list(std::wstring& out, const std::vector<header_value>& in, exception& err) {
  return succeeds(err, [&] {
    std::wstring made;
    for (const header_value& each : in) {
      if (!made.empty()) made += L", ";
      append_header(made, each, true);
    }
    out = std::move(made);
  });
}

bool read_header(header_value& out, std::wstring_view text, exception& err) {
  return succeeds(err, [&] { out = header_in(text); });
}
bool read_header_list(std::vector<header_value>& out, std::wstring_view text, exception& err) {
  return succeeds(err, [&] { out = headers_in(text); });
}

bool write_content_disposition(std::wstring& out, const std::wstring& type, const std::wstring& filename,
                               exception& err) {
  return succeeds(err, [&] {
    if (!wire::is_token(type)) refuse(type);
    if (!wire::is_field_value(filename)) refuse(L"filename");
    std::wstring made = type;
    if (!filename.empty()) append_filename(made, filename);
    out = std::move(made);
  });
}

bool read_content_disposition(std::wstring& type, std::wstring& filename, std::wstring_view text,
                              exception& err) {
  return succeeds(err, [&] {
    std::size_t at = std::min(text.find(L';'), text.size());
    const std::wstring_view word = wire::trimmed_value(text.substr(0, at));
    if (!wire::is_token(word)) refuse_at(0);
    wire::parameters all;
    wire::read_parameters(all, text, at, wire::parameter_reading::lenient);
    const wire::parameter* const said = wire::find_parameter(all, L"filename");
    std::wstring name = said ? said->value.substr(said->value.find_last_of(L"/\\") + 1) : std::wstring();
    type = word;
    filename = std::move(name);
  });
}

bool check(const request& message, exception& err) {
  return succeeds(err, [&] {
    const auto is_wrong = [](wchar_t c) {
      return static_cast<char16_t>(c) <= 32 || static_cast<char16_t>(c) > 126;
    };
    const std::wstring& url = message.get_url();
    if (std::any_of(url.begin(), url.end(), is_wrong)) refuse(L"URL");
    check_headers(message);
  });
}

bool check(const response& message, exception& err) {
  return succeeds(err, [&] {
    check_headers(message);
    for (const std::wstring& each : message.get_set_cookies())
      if (!wire::is_field_value(each)) refuse(L"Set-Cookie");
  });
}

bool body_text(std::wstring& out, const response& message, exception& err) {
  return succeeds(err, [&] {
    if (!message.has_body_bytes()) {
      out = message.get_body();
      return;
    }
    const auto type = message.find(L"Content-Type");
    std::wstring charset = L"utf-8", made;
    std::size_t at = 0;
    wire::parameters all;
    if (type != message.end()) {
      at = std::min(type->second.find(L';'), type->second.size());
      wire::read_parameters(all, type->second, at, wire::parameter_reading::lenient);
    }
    if (const wire::parameter* const said = wire::find_parameter(all, L"charset")) charset = said->value;
    const binary bytes = message.get_body_bytes();
    const std::string_view view(reinterpret_cast<const char*>(bytes.get_store().data()), bytes.size());
    const texto::charset_result result = texto::decode_charset(made, view, charset);
    if (result == texto::charset_result::unknown) refuse(charset);
    if (result == texto::charset_result::malformed) throw exc::BadFormat();
    out = std::move(made);
  });
}

}  // namespace ruvo::http

namespace ruvo::serializer {

http_headers::http_headers() = default;
http_headers::http_headers(const http_headers& other) noexcept = default;
http_headers& http_headers::operator=(const http_headers& other) noexcept = default;
http_headers::~http_headers() = default;

bool http_headers::serialize(std::wstring& out, const bundle& in, exception* err, int) {
  return http::fails(err, [&] {
    http::header_value made;
    for (std::size_t n = 0; n < in.size(); ++n) {
      const bundle::entry& each = *in[n];
      const std::wstring text = http::text_of_scalar(each.spelling(), each.second);
      if (each.first == http::value_key)
        made.value = text;
      else
        made.parameters.add(each.spelling(), text);
    }
    std::wstring written;
    http::append_header(written, made, false);
    out = std::move(written);
  });
}

bool http_headers::deserialize(bundle& out, const std::wstring& in, exception* err, int) {
  return http::fails(err, [&] {
    const http::header_value read = http::header_in(in);
    http::fields all{{std::wstring(http::value_key), read.value}};
    for (const http::field& each : read.parameters) {
      if (wire::is_same_name(each.name, http::value_key)) http::refuse(each.name);
      all.add(each.name, each.value);
    }
    http::put_fields(out, all);
  });
}

}  // namespace ruvo::serializer
