// SPDX-License-Identifier: BSL-1.0

// Messages of several parts: whatever is read can be written, or is refused with a reason, and reads back the
// same; so do mails and bundles.

#include <ruvo/bundle.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/fake_context.hpp>
#include <ruvo/mime.hpp>
#include <ruvo/smtp.hpp>
#include <ruvo/texto.hpp>

#include <algorithm>
#include <cstddef>

#include "fuzz.hpp"

using ruvo::mime::part;
namespace mime = ruvo::mime;
namespace smtp = ruvo::smtp;

namespace {

std::wstring outline(const part& from) {
  std::wstring text = from.get_type() + L"|" + from.get_parameter(L"charset") + L"|" + from.get_filename();
  text += L"|" + from.get_header(L"Content-Disposition");
  for (const auto& [name, value] : from.get_headers())
    text.append(L"|").append(name).append(L"=").append(value);
  for (const unsigned char byte : from.get_bytes()) text.push_back(static_cast<wchar_t>(byte));
  for (const part& child : from.get_parts()) text += L"{" + outline(child) + L"}";
  return text;
}

void check_lines(const std::string& bytes) {
  for (std::size_t from = 0; from < bytes.size();) {
    const std::size_t end = bytes.find("\r\n", from);
    FUZZ_CHECK(end != bytes.npos && end - from <= 998);
    FUZZ_CHECK(std::none_of(bytes.begin() + static_cast<std::ptrdiff_t>(from),
                            bytes.begin() + static_cast<std::ptrdiff_t>(end),
                            [](char c) { return c == '\r' || c == '\n' || c == '\0'; }));
    from = end + 2;
  }
}

void check_mail(const part& message) {
  const smtp::received read = smtp::from_mime(message);
  for (const part& each : read.attachments)
    FUZZ_CHECK(mime::safe_name(each.get_filename()).find_first_of(L"\\/:") == std::wstring::npos);
  std::string bytes;
  ruvo::exception failure;
  if (!smtp::write(bytes, read.message, failure)) return;
  check_lines(bytes);
  smtp::received again;
  FUZZ_CHECK(smtp::read(again, bytes, failure));
  FUZZ_CHECK(again.message.get_subject() == read.message.get_subject());
  FUZZ_CHECK(again.message.get_from().get_mail() == read.message.get_from().get_mail());
  FUZZ_CHECK(again.message.get_from().get_name() == read.message.get_from().get_name());
}

/// What was written of a bundle once is the same ever after.
void check_bundle(const std::string& bytes) {
  static ruvo::fake_context fake;  // boundaries, which the bundle shows, follow from its numbers
  const ruvo::thread_scope scope(fake);
  ruvo::serializer::mime form;
  ruvo::bundle read, once, twice;
  std::wstring text;
  fake.next_id = 1;
  if (form.deserialize(read, ruvo::texto::to_utf_16(bytes)) || form.serialize(text, read)) return;
  fake.next_id = 1;
  FUZZ_CHECK(!form.deserialize(once, text) && !form.serialize(text, once));
  FUZZ_CHECK(!form.deserialize(twice, text) && twice == once);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes = fuzz::narrow(data, size);
  check_bundle(bytes);
  part message = part::text(L"before");
  ruvo::exception failure;
  if (!mime::read(message, bytes, failure, {.parts = 100, .levels = 5})) {
    FUZZ_CHECK(failure == ruvo::exc::BadFormat() && message.get_text() == L"before");
    return 0;
  }
  if (!message.get_field(L"From").empty()) check_mail(message);
  std::string written;
  if (!mime::write(written, message, failure, {.utf8 = true})) {
    FUZZ_CHECK(failure == ruvo::exc::BadArgument(L"") || failure == ruvo::exc::EmptyArgument(L""));
    return 0;
  }
  check_lines(written);
  // A parameter's name stands before each segment of its value, however long both are.
  FUZZ_CHECK(outline(mime::read(written, {.header_bytes = std::size_t{1} << 24})) == outline(message));
  return 0;
}
