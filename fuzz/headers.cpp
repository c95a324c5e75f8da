// SPDX-License-Identifier: BSL-1.0

// Mail headers and lists of recipients: what is refused changes nothing, what was read and written reads
// back.

#include <ruvo/exc.hpp>
#include <ruvo/smtp.hpp>

#include "fuzz.hpp"

using ruvo::smtp::email;

namespace {

std::wstring lists_of(const email& message) {
  std::wstring to, cc, cco;
  message.serialize_recipients(to, cc, cco);
  return to + L'\n' + cc + L'\n' + cco;
}

email fresh() {
  email message(L"old@x.es", L"old");
  message[L"old@x.es"] = email::CC_;
  return message.set_uuid(L"").set_date(ruvo::datetime(0LL));
}

/// Quotes are dropped from names, and a name may look like several recipients without them.
void check_headers(const std::wstring& text, bool quotes) {
  email message = fresh();
  try {
    message.deserialize_headers(text);
  } catch (const ruvo::exc::BadArgument&) {
    FUZZ_CHECK(message.to_string() == fresh().to_string());
    return;
  }
  email again = fresh();
  again.deserialize_headers(message.to_string());
  FUZZ_CHECK(again.get_message_id() == message.get_message_id());
  FUZZ_CHECK(again.get_subject() == message.get_subject() && again.get_date() == message.get_date());
  FUZZ_CHECK(quotes || again.to_string() == message.to_string());
}

void check_lists(const std::wstring& text, bool quotes) {
  email message, again;
  const std::size_t half = text.size() / 2;
  message.deserialize_recipients(text.substr(0, half), text.substr(half), text);
  for (const auto& [recipient, role] : message) FUZZ_CHECK(recipient.check() && role >= email::TO_);
  std::wstring to, cc, cco;
  message.serialize_recipients(to, cc, cco);
  FUZZ_CHECK(again.deserialize_recipients(to, cc, cco) || quotes);
  FUZZ_CHECK(quotes || lists_of(again) == lists_of(message));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::wstring text = fuzz::wide(data, size);
  const bool quotes = text.find(L'"') != text.npos;
  check_headers(text, quotes);
  check_lists(text, quotes);
  const std::wstring post = email(L"", L"", text, text).get_hmtl_post();
  FUZZ_CHECK(post.starts_with(L"<html><head>") && post.ends_with(L"</body></html>"));
  return 0;
}
