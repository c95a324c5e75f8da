// SPDX-License-Identifier: BSL-1.0

// Mails as messages that travel: written, handed over, read back.

#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using ruvo::binary;
using ruvo::exception;
using ruvo::file;
using ruvo::smtp::address;
using ruvo::smtp::email;
using ruvo::smtp::envelope;
using ruvo::smtp::received;
namespace mime = ruvo::mime;
namespace smtp = ruvo::smtp;

email letter() {
  email message(address(L"Núñez, José", L"jose@ruvo.es"), L"Año nuevo", L"Hola", L"Pepe");
  message.set_uuid(L"ID-1").set_date(ruvo::datetime(2024L, 2L, 29L, 23L, 5L, 9L, ruvo::times::GMT));
  message.set_sender(L"web@ruvo.es");
  message[address(L"Ana", L"ana@x.es")] = email::TO_;
  message[L"eva@x.es"] = email::TO_;
  message[address(L"Smith, J.", L"luis@x.es")] = email::CC_;
  message[address(L"Oculta", L"ojo@x.es")] = email::CCO_;
  message[L"nadie"] = email::TO_;
  message[L"de@x.es"] = email::FROM;
  return message;
}

std::wstring mails_of(const std::vector<address>& all) {
  std::wstring text;
  for (const address& each : all) text += each.get_mail() + L" ";
  return text;
}

std::string written(const email& message) {
  std::string bytes;
  exception failure;
  EXPECT_TRUE(smtp::write(bytes, message, failure)) << failure.get_mensaje();
  return bytes;
}

TEST(wire, has_the_fields_of_a_mail_but_no_blind_recipients) {
  const std::string bytes = written(letter());
  EXPECT_EQ(
      bytes.substr(0, bytes.find("Content-Type")),
      "Date: Thu, 29 Feb 2024 23:05:09 +0000\r\nFrom: =?UTF-8?B?TsO6w7FleiwgSm9zw6k=?= <jose@ruvo.es>\r\n"
      "Sender: web@ruvo.es\r\nTo: Ana <ana@x.es>, eva@x.es\r\nCc: \"Smith, J.\" <luis@x.es>\r\n"
      "Subject: =?UTF-8?Q?A=C3=B1o_nuevo?=\r\nMessage-ID: <ID-1@ruvo.es>\r\nMIME-Version: 1.0\r\n");
  EXPECT_EQ(bytes.find("culta"), bytes.npos);
  EXPECT_EQ(bytes.find("ojo@"), bytes.npos);
  envelope sealed;
  exception failure;
  ASSERT_TRUE(smtp::seal(sealed, letter(), failure));
  EXPECT_EQ(sealed.sender.get_mail(), L"web@ruvo.es");
  EXPECT_EQ(mails_of(sealed.recipients), L"ana@x.es eva@x.es luis@x.es ojo@x.es ");
  EXPECT_EQ(mails_of(sealed.left_out), L"nadie ");
}

TEST(wire, refuses_with_the_name_what_cannot_be_sent) {
  using change = std::function<void(email&, const std::wstring&)>;
  const std::pair<std::wstring, change> texts[] = {
      {L"Subject", [](email& m, const std::wstring& text) { m.set_subject(text); }},
      {L"From", [](email& m, const std::wstring& text) { m.set_from(address(text, L"a@x.es")); }},
      {L"From", [](email& m, const std::wstring& text) { m.set_from(L"a@x.es" + text).set_sender(L""); }},
      {L"Sender", [](email& m, const std::wstring& text) { m.set_sender(L"a@x.es" + text); }},
      {L"To", [](email& m, const std::wstring& text) { m[address(text, L"a@x.es")] = email::TO_; }},
      {L"Cc", [](email& m, const std::wstring& text) { m[L"a@x.es" + text] = email::CC_; }},
      {L"Message-ID", [](email& m, const std::wstring& text) { m.set_uuid(text); }},
  };
  exception failure;
  for (const auto& [field, set] : texts) {
    for (const wchar_t bad : {L'\r', L'\n', L'\0', L'\x7F', L'\x85'}) {
      email message = letter();
      set(message, std::wstring(1, bad) + L"RCPT");
      std::string out;
      EXPECT_FALSE(smtp::write(out, message, failure)) << field << static_cast<int>(bad);
      EXPECT_EQ(failure.get_detail(), field);
      EXPECT_EQ(out, "");
    }
  }
  const std::pair<std::wstring, change> mails[] = {
      {L"From: ", [](email& m, const std::wstring& mail) { m.set_from(mail).set_sender(L""); }},
      {L"To: ", [](email& m, const std::wstring& mail) { m[mail] = email::TO_; }},
      {L"Bcc: ", [](email& m, const std::wstring& mail) { m[mail] = email::BCC; }},
  };
  for (const auto& [field, set] : mails) {
    const std::wstring mail = L"peña@x.es";
    email message = letter();
    set(message, mail);
    envelope sealed;
    EXPECT_FALSE(smtp::seal(sealed, message, failure));
    EXPECT_EQ(failure.get_detail(), field + mail);
    EXPECT_TRUE(smtp::seal(sealed, message, failure, {.utf8 = true}));
    mime::part made;
    EXPECT_TRUE(smtp::to_mime(made, message, failure, {.utf8 = true}));
  }
  for (const wchar_t* const mail : {L"", L"nadie", L"a b@x.es", L"a@x.es>", L"@x.es", L"a@b@c.es"}) {
    envelope sealed;
    EXPECT_FALSE(smtp::seal(sealed, email(mail), failure)) << mail;
  }
  EXPECT_FALSE(smtp::write(file(L"never.eml"), letter().push(L"missing.pdf"), failure));
  EXPECT_TRUE(failure == ruvo::exc::fileNotFound(L"")) << failure.get_mensaje();
  EXPECT_FALSE(file(L"never.eml").exists());
}

/// The types of all parts, as they nest.
std::wstring types_of(const mime::part& from) {
  std::wstring text = from.get_type().substr(from.get_type().find(L'/') + 1);
  if (!from.get_disposition().empty()) text += L"=" + from.get_disposition();
  if (!from.is_multipart()) return text;
  text += L"(";
  for (const mime::part& each : from.get_parts()) text += types_of(each) + L" ";
  return text + L")";
}

TEST(wire, joins_texts_pictures_and_files) {
  const struct {
    std::wstring body;
    std::vector<std::wstring> files;
    std::wstring types;
  } table[] = {
      {L"Hola", {}, L"alternative(plain html )"},
      {L"Hola cid:a.png", {L"a.png"}, L"mixed(alternative(plain html ) png=attachment )"},
      {L"<p>a <img src=\"cid:a.png\"></p>", {L"a.png"}, L"alternative(plain related(html png=inline ) )"},
      {L"<p>cid:a.pngx cid:a.pn</p>", {L"a.png"}, L"mixed(alternative(plain html ) png=attachment )"},
      {L"<p>cid:b.png, cid:a.png.</p>",
       {L"b.png", L"a.pdf"},
       L"mixed(alternative(plain related(html png=inline ) ) pdf=attachment )"},
  };
  exception failure;
  for (const auto& row : table) {
    email message = letter();
    message.set_body(row.body);
    for (const std::wstring& name : row.files) {
      ASSERT_TRUE(ruvo::files::write(binary(name), file(name), failure));
      message.push(name);
    }
    const mime::part made = mime::read(written(message));
    EXPECT_EQ(types_of(made), row.types);
    const received read = smtp::from_mime(made);
    EXPECT_EQ(read.plain, message.get_plain_post());
    EXPECT_EQ(read.message.get_body(), message.get_hmtl_post());
    ASSERT_EQ(read.attachments.size(), row.files.size());
    for (const mime::part& each : read.attachments)
      EXPECT_EQ(each.get_content(), binary(each.get_filename()));
  }
}

TEST(wire, reads_a_mail_that_came_in) {
  received read;
  exception failure;
  ASSERT_TRUE(smtp::read(read, written(letter()), failure));
  EXPECT_TRUE(read.message == letter() && read.message.get_date() == letter().get_date());
  EXPECT_EQ(read.message.get_subject() + read.message.get_from().get_name(), L"Año nuevoNúñez, José");
  EXPECT_EQ(read.message.get_sender().get_mail(), L"web@ruvo.es");
  EXPECT_EQ(read.message.size(), 3u);
  EXPECT_EQ(read.message.at(L"luis@x.es"), email::CC_);

  const std::string other =
      "From: (a\\)b (c)) \"Ana \\\"B\\\"\" <@r,@s:ana@x.es>\r\nTo: Amigos: Eva\r\n "
      "=?utf-8?Q?N=C3=BA=C3=B1ez,_A=3C=3E?= <eva@x.es>,"
      " luis@x.es (Luis);, \"x, y\" <z@x.es>; undisclosed:;\r\nCc: eva@x.es\r\nDate: 29 Feb 24 23:05 GMT\r\n"
      "Message-Id: <7@else>\r\nContent-Type: multipart/mixed; boundary=b\r\n\r\n"
      "--b\r\nContent-Type: text/plain; charset=koi8-r\r\n\r\n\xC1\r\n--b\r\nContent-Type: text/plain; "
      "charset=iso-8859-1\r\n\r\n\xF1\r\n"
      "--b\r\nContent-Disposition: attachment; filename=\"../con\"\r\n\r\n1\r\n--b\r\nContent-Disposition: "
      "attachment; filename=con\r\n\r\n2\r\n"
      "--b\r\nContent-Type: a/b\r\n\r\n3\r\n--b--\r\n";
  ASSERT_TRUE(smtp::read(read, other, failure));
  std::wstring people = read.message.get_from().to_string();
  for (const auto& [who, role] : read.message) people += L"|" + who.to_string() + std::to_wstring(role);
  EXPECT_EQ(people, L"Ana \"B\" <ana@x.es>|Eva Núñez, A<> <eva@x.es>2|Luis <luis@x.es>2|x, y <z@x.es>2");
  EXPECT_EQ(read.message.get_uuid() + read.plain + read.message.get_body(), L"7@elseññ");
  EXPECT_EQ(read.message.get_date(), ruvo::datetime(2024L, 2L, 29L, 23L, 5L, 0L, ruvo::times::GMT));

  const file folder(L"saved");
  ruvo::files::erase(folder, failure);
  std::vector<file> saved;
  ASSERT_TRUE(smtp::save_attachments(saved, read, folder, failure)) << failure.get_mensaje();
  std::wstring all;
  for (const file& each : saved) all += each.get_name() + L":" + ruvo::files::read(each).to_string() + L" ";
  EXPECT_EQ(all, L"adjunto.bin:\u00C1 _con:1 _con_01:2 adjunto_01.bin:3 ");
  EXPECT_FALSE(smtp::save_attachments(saved, read, saved[0], failure));
  EXPECT_FALSE(smtp::read(read, "Content-Type: multipart/mixed\n\n", failure));
  EXPECT_EQ(read.attachments.size(), 4u);
}

}  // namespace
