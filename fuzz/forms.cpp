// SPDX-License-Identifier: BSL-1.0

// Forms: what is read can be written and reads back the same; strict and lenient reading agree.

#include <ruvo/forms.hpp>
#include <ruvo/ruvo.hpp>

#include <string>
#include <string_view>
#include <vector>

#include "fuzz.hpp"

using ruvo::exception;
namespace http = ruvo::http;

namespace {

void check_text(const std::wstring& text, const std::string& bytes) {
  http::fields strict, lenient, again;
  exception failure;
  FUZZ_CHECK(http::read_form(lenient, std::wstring_view(text), failure, {.lenient = true}));
  const bool is_good = http::read_form(strict, std::wstring_view(text), failure);
  FUZZ_CHECK(is_good || ruvo::serializer::failure_position(failure) - 1 < text.size());
  FUZZ_CHECK(!is_good || strict == lenient);
  const std::wstring written = lenient.form_text();
  FUZZ_CHECK(written.find_first_of(L"\r\n") == written.npos && written.find(L'\0') == written.npos);
  FUZZ_CHECK(http::read_form(again, std::wstring_view(written), failure) && again == lenient);
  FUZZ_CHECK(http::read_form(again, std::string_view(bytes), failure, {.lenient = true}));

  ruvo::serializer::http_forms forms;
  ruvo::bundle values, back;
  std::wstring of_bundle;
  if (forms.deserialize(values, text)) return;
  FUZZ_CHECK(is_good && !forms.serialize(of_bundle, values));
  FUZZ_CHECK(!forms.deserialize(back, of_bundle) && back == values);
}

void check_multipart(const std::string& body) {
  std::vector<http::form_part> parts, again;
  exception failure;
  if (!http::read_multipart(parts, L"multipart/form-data; boundary=b", body, failure)) {
    FUZZ_CHECK(ruvo::serializer::failure_position(failure) - 1 <= body.size());
    return;
  }
  std::string written;
  std::wstring type;
  FUZZ_CHECK(http::write_multipart(written, type, parts, failure));
  FUZZ_CHECK(http::read_multipart(again, type, written, failure));
  for (std::size_t n = 0; n < parts.size(); ++n) {
    FUZZ_CHECK(again[n].content == parts[n].content);
    // Quotation marks come back as they were written.
    if ((parts[n].name + parts[n].filename).find(L'"') != std::wstring::npos) continue;
    if (parts[n].is_file && parts[n].content_type.empty()) parts[n].content_type = again[n].content_type;
    FUZZ_CHECK(again[n] == parts[n]);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes = fuzz::narrow(data, size);
  check_text(fuzz::wide(data, size), bytes);
  check_multipart(bytes);
  return 0;
}
