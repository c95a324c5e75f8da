// SPDX-License-Identifier: BSL-1.0

// Cookies: what is read can mostly be written and reads back the same; a jar sends nothing that breaks the
// wire, and is stored and read without a difference.

#include <ruvo/cookies.hpp>
#include <ruvo/header_fields.hpp>
#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <string>

#include "fuzz.hpp"

using ruvo::bundle;
using ruvo::datetime;
using ruvo::exception;
namespace http = ruvo::http;

namespace {

void check_headers(const std::wstring& text) {
  http::cookie read, again;
  http::fields sent, back;
  exception failure;
  std::wstring written;
  if (http::read_set_cookie(read, text, failure) && http::write_set_cookie(written, read, failure)) {
    FUZZ_CHECK(http::is_field_value(written));
    FUZZ_CHECK(http::read_set_cookie(again, written, failure) && again == read);
  }
  if (http::read_cookies(sent, text, failure) && http::write_cookies(written, sent, failure))
    FUZZ_CHECK(http::read_cookies(back, written, failure) && back == sent);

  ruvo::serializer::http_cookie form;
  bundle values, same;
  if (form.deserialize(values, text) || form.serialize(written, values)) return;
  FUZZ_CHECK(!form.deserialize(same, written) && same == values);
}

/// Each line is an address, a blank and what its server sets, or an address alone that is asked for.
void check_jar(const std::wstring& text) {
  http::cookie_jar jar, stored;
  exception failure;
  long long now = 1'700'000'000;
  for (std::size_t from = 0; from < text.size() && now < 1'700'000'200; ++now) {
    const std::size_t end = std::min(text.find(L'\n', from), text.size());
    const std::wstring line = text.substr(from, end - from);
    const std::size_t blank = line.find(L' ');
    from = end + 1;
    if (blank != line.npos)
      jar.take(line.substr(0, blank), line.substr(blank + 1), datetime(now), failure);
    else
      FUZZ_CHECK(http::is_field_value(jar.header_for(line, datetime(now))));
  }
  FUZZ_CHECK(stored.read(bundle(jar), failure) && bundle(stored) == bundle(jar));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::wstring text = fuzz::wide(data, size);
  check_headers(text);
  check_jar(text);
  return 0;
}
