// SPDX-License-Identifier: BSL-1.0

// Values of header fields: what is read and written reads back the same, and nothing that is written breaks
// the wire.

#include <ruvo/header_fields.hpp>
#include <ruvo/oauth.hpp>
#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <string>
#include <vector>

#include "fuzz.hpp"

using ruvo::exception;
namespace http = ruvo::http;

namespace {

/// Whether it has no half of a surrogate pair, which extended values replace.
bool is_whole(const std::wstring& text) {
  return text == ruvo::texto::to_utf_16(ruvo::texto::to_utf_8(text));
}

void check_value(const std::wstring& text) {
  http::header_value value, again;
  exception failure;
  if (!http::read_header(value, text, failure)) {
    FUZZ_CHECK(ruvo::serializer::failure_position(failure) - 1 <= text.size());
    return;
  }
  std::wstring written;
  if (!http::write_header(written, value, failure)) return;  // beyond ASCII, or an odd name
  FUZZ_CHECK(http::is_field_value(written));
  FUZZ_CHECK(http::read_header(again, written, failure) && (again == value || !is_whole(text)));

  ruvo::serializer::http_headers form;
  ruvo::bundle values, back;
  if (form.deserialize(values, written)) return;  // names that are one key
  FUZZ_CHECK(!form.serialize(written, values) && !form.deserialize(back, written) && back == values);
}

void check_list(const std::wstring& text) {
  std::vector<http::header_value> values, again;
  exception failure;
  std::wstring written;
  if (!http::read_header_list(values, text, failure)) return;
  if (!http::write_header_list(written, values, failure)) return;
  FUZZ_CHECK(http::read_header_list(again, written, failure) && (again == values || !is_whole(text)));
}

void check_disposition(const std::wstring& text) {
  std::wstring type, name, written, other;
  exception failure;
  if (http::read_content_disposition(type, name, text, failure)) {
    FUZZ_CHECK(name.find_first_of(L"/\\\r\n") == name.npos && http::is_field_value(name));
    FUZZ_CHECK(http::write_content_disposition(written, type, name, failure));
    FUZZ_CHECK(http::read_content_disposition(type, other, written, failure));
    FUZZ_CHECK(other == ruvo::texto::to_utf_16(ruvo::texto::to_utf_8(name)));  // half a pair is U+FFFD
  }
  if (http::write_content_disposition(written, L"a", text, failure))
    FUZZ_CHECK(http::is_field_value(written));
}

/// The field of a signed request is accepted, or refused by name.
void check_signed(const std::wstring& text) {
  http::request message(L"http://a.es/", L"");
  message[L"Authorization"] = L"OAuth " + text;
  const ruvo::oauth::signer who(L"k", ruvo::oauth::secret(L"s"), ruvo::oauth::method::plaintext);
  ruvo::oauth::stamp seen;
  exception failure;
  FUZZ_CHECK(who.verify(L"GET", message, seen, failure) || !failure.get_detail().empty());
}

void check_message(const std::wstring& text) {
  const std::size_t half = text.size() / 2;
  http::request message(L"/", L"");
  message[text.substr(0, half)] = text.substr(half);
  exception failure;
  if (!http::check(message, failure)) return;
  const std::wstring printed = message.to_string();
  for (std::size_t at = printed.find(L'\n'); at != printed.npos; at = printed.find(L'\n', at + 1))
    FUZZ_CHECK(printed[at - 1] == L'\r');
  FUZZ_CHECK(static_cast<std::size_t>(std::count(printed.begin(), printed.end(), L'\r')) ==
             message.size() + 2);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::wstring text = fuzz::wide(data, size);
  check_value(text);
  check_list(text);
  check_disposition(text);
  check_signed(text);
  check_message(text);
  return 0;
}
