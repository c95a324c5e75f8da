// SPDX-License-Identifier: BSL-1.0

// Mailboxes: a text is read exactly when it has the form, and what was read keeps its URL; every field comes
// back from bundles and values. The first line is the text, the others are fields.

#include <ruvo/bundle.hpp>
#include <ruvo/smtp/mailbox.hpp>
#include <ruvo/texto.hpp>

#include <sstream>

#include "fuzz.hpp"

using ruvo::bundle;
using ruvo::smtp::mailbox;

namespace {

bool has_form(const std::wstring& text) {
  const bool scheme = text.starts_with(L"smtp://") || text.starts_with(L"smtps://");
  return ruvo::texto::match(
      text, scheme ? LR"(^smtps?://((([^\s]+:[^\s]+)@)?([a-zA-Z0-9\-]+\.){2,3}[a-z]{2}(:\d{2,4})?){1}$)"
                   : LR"(^((([^\s]+:[^\s]+)@){1}([a-zA-Z0-9\-]+\.){2,3}[a-z]{2}(:\d{2,4})?){1}$)");
}

void check_text(const std::wstring& text) {
  mailbox box = mailbox().set_host(L"old").set_user(L"old");
  const mailbox before = box;
  const bool read = box.deserialize(text);
  FUZZ_CHECK(read == has_form(text));
  if (!read) {
    FUZZ_CHECK(box == before);
    return;
  }
  FUZZ_CHECK(box.check());
  const std::wstring credentials = box.get_user() + L":" + box.get_password() + L"@";
  FUZZ_CHECK(box.get_user().empty() || text.find(credentials + box.get_host()) != text.npos);
  if (box.get_port() < 10) return;  // does not read back
  mailbox again;
  FUZZ_CHECK(again.deserialize(box.get_url()));
  FUZZ_CHECK(again.get_url() == box.get_url() && again.get_host() == box.get_host());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::wistringstream lines(fuzz::wide(data, size));
  std::wstring text, host, user, password, mode;
  std::getline(lines, text);
  std::getline(lines, host);
  std::getline(lines, user);
  std::getline(lines, password);
  std::getline(lines, mode);
  check_text(text);
  mailbox box;
  box.set_host(host).set_user(user).set_password(password);
  box.set_encryption(mailbox::stoe(mode)).set_port(static_cast<unsigned>(size) * 77777);
  FUZZ_CHECK(box.check() == ruvo::texto::match(host, LR"(^([a-zA-Z0-9\-]+\.){2,3}[a-z]{2}(:\d+)?$)"));
  const mailbox by_bundle = bundle(box), by_xvar(ruvo::xvar{box});
  FUZZ_CHECK(by_bundle == box && by_xvar == box && !(box < by_bundle));
  bundle fields;
  fields[L"port"] = mode;
  fields[L"encryption"] = host;
  box = fields;
  FUZZ_CHECK(mailbox::stoe(mailbox::to_string(box.get_encryption())) == box.get_encryption());
  return 0;
}
