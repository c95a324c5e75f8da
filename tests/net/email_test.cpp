// SPDX-License-Identifier: BSL-1.0

// Mail messages: recipients, header lines and bodies, there and back, and hostile ones.

#include <ruvo/ruvo.hpp>

#include <limits>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/dice.hpp"
#include "support/rounds.hpp"

namespace {

using ruvo::bundle;
using ruvo::datetime;
using ruvo::xvar;
using ruvo::smtp::address;
using ruvo::smtp::email;
namespace texto = ruvo::texto;

/// All that a message holds, as text. Names too, which comparisons of addresses leave out.
std::wstring all_of(const email& message) {
  std::wostringstream out;
  const auto put = [&out](const std::wstring& part) { out << part.size() << L':' << part << L'|'; };
  for (const auto& part :
       {message.get_uuid(), message.get_subject(), message.get_body(), message.get_signature()})
    put(part);
  for (const address* who : {&message.get_from(), &message.get_sender()}) {
    put(who->get_name());
    put(who->get_mail());
  }
  for (const auto& [recipient, role] : message) {
    put(recipient.get_name());
    put(recipient.get_mail());
    out << role << L'|';
  }
  for (const ruvo::file& attached : message.get_attach()) put(attached);
  out << message.get_date().get_lapso();
  return out.str();
}

email sample() {
  email message(address(L"José Núñez", L"jose@ruvo.es"), L"Año nuevo", L"Hola", L"Pepe");
  message.set_uuid(L"ID-1").set_date(datetime(2024, 2, 29, 23, 5, 9)).set_sender(L"web@ruvo.es");
  message[address(L"Ana", L"ana@x.es")] = email::TO_;
  message[L"eva@x.es"] = email::TO_;
  message[address(L"García, Luis", L"luis@x.es")] = email::CC_;
  message[L"ojo@x.es"] = email::CCO_;
  message[L"nadie"] = email::TO_;
  message[L"de@x.es"] = email::FROM;
  return message;
}

constexpr const wchar_t* sample_header =
    L"Date: Thu, 29 Feb 2024 23:05:09 +0000\r\nTo: Ana <ana@x.es>;<eva@x.es>\r\n"
    L"From: José Núñez <jose@ruvo.es>\r\nSender: <web@ruvo.es>\r\nCc: García, Luis <luis@x.es>\r\n"
    L"Cco: <ojo@x.es>\r\nMessage-ID: <ID-1@ruvo.es>\r\n";

TEST(email, new_messages) {
  const datetime before;
  const email one(L"a@x.es", L"subject", L"body", L"signature"), other(address(L"Ana", L"a@x.es"));
  const datetime after;
  EXPECT_TRUE(std::regex_match(one.get_uuid(), std::wregex(L"[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{20}")));
  EXPECT_FALSE(one == other);
  EXPECT_NE(one < other, other < one);
  EXPECT_TRUE(before <= one.get_date() && one.get_date() <= after);
  EXPECT_EQ(one.get_from().to_string(), L"<a@x.es>");
  EXPECT_EQ(one.get_subject() + one.get_body() + one.get_signature(), L"subjectbodysignature");
  EXPECT_TRUE(one.empty() && one.get_sender().empty() && one.get_attach().empty());
  EXPECT_EQ(other.get_from().get_name(), L"Ana");

  email copy(one);
  EXPECT_EQ(all_of(copy), all_of(one));
  copy[L"b@x.es"];
  EXPECT_TRUE(copy == one && one.empty());
  copy.set_uuid(L"x");
  EXPECT_FALSE(copy == one);
}

TEST(email, recipients) {
  email message;
  EXPECT_EQ(message[L"b@x.es"], email::TO_);
  message[address(L"Ana", L"A@x.es")] = email::CC_;
  EXPECT_EQ(message[L"a@X.es"], email::CC_);
  const bundle luis = address(L"Luis", L"luis@x.es");
  message[luis] = email::CCO_;
  EXPECT_EQ(message.size(), 3u);
  EXPECT_EQ(message.begin()->first.get_name(), L"Ana");
  EXPECT_EQ(message.at(L"luis@x.es"), email::CCO_);
  EXPECT_EQ(std::as_const(message).find(L"b@x.es")->second, email::TO_);
  EXPECT_TRUE(message.find(L"c@x.es") == message.end());
  EXPECT_EQ(message.count(address(L"", L"b@x.es")) + message.count(L"c@x.es"), 1u);
  EXPECT_THROW(static_cast<void>(std::as_const(message).at(L"c@x.es")), std::out_of_range);
  EXPECT_EQ(message.erase(L"b@x.es") + message.erase(L"b@x.es"), 1u);
  message.clear();
  EXPECT_TRUE(message.empty());
}

TEST(email, recipients_in_values) {
  const address ana(L"Ana", L"ana@x.es");
  for (const xvar& value : {xvar(ana), xvar(bundle(ana)), xvar(L"ana@x.es")}) {
    const std::wstring kind = value.to_string();
    email message;
    message[value] = email::CC_;
    message[value];
    EXPECT_EQ(message.count(ana) * 10 + message.size(), 11u) << kind;
    EXPECT_EQ(message.set_from(value).get_from().get_mail(), L"ana@x.es") << kind;
    EXPECT_EQ(message.set_sender(value).get_sender().get_mail(), L"ana@x.es") << kind;
    const email& constant = message;
    EXPECT_EQ(message.at(value) + constant.at(value), 2 * email::CC_) << kind;
    EXPECT_TRUE(message.find(value) == message.begin() && constant.find(value) == constant.begin()) << kind;
    EXPECT_EQ(message.count(value) * 10 + message.erase(value), 11u) << kind;
    EXPECT_THROW(static_cast<void>(constant.at(value)), std::out_of_range) << kind;
  }
}

TEST(email, roles) {
  const wchar_t* const names[] = {L"FROM", L"SENDER", L"TO", L"CC", L"BCC", L""};
  for (int role = 0; role <= 5; ++role)
    EXPECT_EQ(email::to_string(static_cast<email::RCTP>(role)), names[role]);
  for (const wchar_t* text : {L"to", L" TO\r\n", L"To"}) EXPECT_EQ(email::stor(text), email::CC_) << text;
  for (const wchar_t* text : {L"cc", L"BCC", L"FROM", L"", L"T O"}) EXPECT_EQ(email::stor(text), email::TO_);
}

TEST(email, attached_files) {
  email message;
  message.push(ruvo::file(L"C:/a.txt")).push(ruvo::file(L"b")).push(ruvo::file(L"c"));
  message.discharge(1);
  EXPECT_EQ(std::wstring(message.attached(0)) + std::wstring(message.attached(1)), L"C:\\a.txtc");
  EXPECT_THROW(static_cast<void>(message.attached(2)), std::out_of_range);
  EXPECT_THROW(message.discharge(2), std::out_of_range);
  message.discharge();
  EXPECT_TRUE(message.get_attach().empty());
}

TEST(email, header_text) {
  const email message = sample();
  std::wostringstream block, whole;
  message.serialize_headers(block);
  EXPECT_EQ(block.str(), sample_header);
  whole << message;
  EXPECT_EQ(whole.str(), block.str() + L"Subject: Año nuevo");
  EXPECT_EQ(message.to_string(), whole.str());

  std::string to, cc = "<first@x.es>", cco;
  message.q_serialize_recipients(to, cc, cco);
  EXPECT_EQ(to, "=?iso-8859-1?Q?Ana?= <ana@x.es>;<eva@x.es>");
  EXPECT_EQ(cc, "<first@x.es>;=?iso-8859-1?Q?Garc=EDa=2C_Luis?= <luis@x.es>");
  EXPECT_EQ(cco, "<ojo@x.es>");
  std::wstring wide_to, wide_cc;
  message.serialize_recipients(wide_to, wide_cc);
  EXPECT_EQ(wide_to + wide_cc, L"Ana <ana@x.es>;<eva@x.es>García, Luis <luis@x.es>");

  email changed(message);
  EXPECT_EQ(changed.set_uuid(L"").get_message_id(), L"");
  EXPECT_EQ(changed.set_uuid(L"a@other.es").get_message_id(), L"<a@other.es>");
  EXPECT_EQ(changed.set_uuid(L"a").set_from(L"").get_message_id(), L"<a>");
  changed.set_date(datetime(std::numeric_limits<long long>::max()));
  std::wostringstream nothing;
  EXPECT_THROW(changed.serialize_headers(nothing), ruvo::exc::CalendarException);
  EXPECT_EQ(nothing.str(), L"");
}

TEST(email, recipient_lists) {
  const struct {
    const wchar_t* list;
    const wchar_t* read;  // written again, in the order of the mails
    bool all;
  } rows[] = {{L"", L"", true},
              {L" ; ,;", L"", true},
              {L"<b@x.es>;Ana <a@x.es>", L"Ana <a@x.es>;<b@x.es>", true},
              {L"b@x.es, a@x.es;", L"<a@x.es>;<b@x.es>", true},
              {L"Ruiz, Ana; hija <a@x.es>, \"Sanz, Eva\" <e@x.es>",
               L"Ruiz, Ana; hija <a@x.es>;Sanz, Eva <e@x.es>", true},
              {L"malo;peor;a@x.es;Eva <e@x.es>", L"<a@x.es>;Eva <e@x.es>", false},
              {L"Ana <a@x.es>;<no>;b@x.es;<", L"Ana <a@x.es>;<b@x.es>", false},
              {L"Ana <A@x.es>;Eva <a@x.es>", L"Eva <a@x.es>", true}};
  for (const auto& row : rows) {
    email message;
    message[L"otro@x.es"] = email::CC_;
    EXPECT_EQ(message.deserialize_recipients(row.list), row.all) << row.list;
    std::wstring to, cc;
    message.serialize_recipients(to, cc);
    EXPECT_EQ(to, row.read) << row.list;
    EXPECT_EQ(cc, L"<otro@x.es>");
  }
  email message;
  EXPECT_TRUE(message.deserialize_recipients(L"a@x.es;b@x.es", L"b@x.es;c@x.es", L"c@x.es"));
  // The list may be the text of a recipient that is replaced meanwhile.
  email own;
  own[address(L"ana@x.es; " + std::wstring(40, L'y'), L"ana@x.es")] = email::CC_;
  email other(own);
  const std::wstring list = own.begin()->first.to_string();
  EXPECT_EQ(own.deserialize_recipients(own.begin()->first.to_string()), other.deserialize_recipients(list));
  EXPECT_EQ(own.to_string(), other.to_string());
  EXPECT_EQ(message.at(L"a@x.es"), email::TO_);
  EXPECT_EQ(message.at(L"b@x.es"), email::CC_);
  EXPECT_EQ(message.at(L"c@x.es"), email::CCO_);
}

TEST(email, headers_read) {
  email read(L"old@x.es", L"old", L"body", L"signature");
  read[L"old@x.es"] = email::TO_;
  read[L"old-from@x.es"] = email::FROM;
  std::wistringstream in(sample().to_string() + L"\r\n\r\nTo: the body");
  read.deserialize_headers(in);
  std::wstring rest;
  EXPECT_TRUE(std::getline(in, rest) && rest == L"To: the body");
  EXPECT_EQ(read.to_string(), sample().to_string());
  EXPECT_TRUE(read == sample() && read.count(L"old@x.es") == 0 && read.count(L"old-from@x.es") == 1);
  EXPECT_EQ(read.get_body(), L"body");

  read.deserialize_headers(
      L"MIME-Version: 1.0\nsubject : a:\r\n\tb\r\nTO: Ana\r\n <ana@x.es>\r\nto:\teva@x.es\r\n"
      L"bcc:\r\nFrom: ana@x.es\r\nMESSAGE-id: <1@other.es>\r\nDate:\r\nSender:");
  EXPECT_EQ(read.to_string(),
            L"Date: Thu, 29 Feb 2024 23:05:09 +0000\r\nTo: Ana <ana@x.es>;<eva@x.es>\r\nFrom: <ana@x.es>\r\n"
            L"Sender: \r\nCc: García, Luis <luis@x.es>\r\nCco: \r\nMessage-ID: <1@other.es>\r\n"
            L"Subject: a:\tb");
  read.deserialize_headers(L"\r\nSubject: after the end");
  EXPECT_EQ(read.get_subject(), L"a:\tb");
}

TEST(email, senders_need_no_valid_mail) {
  for (const address& who :
       {address(L"", L"root@localhost"), address(L"Raíz", L"root"), address(L"Ana", L"")}) {
    email read;
    read.deserialize_headers(email(who).set_sender(who).to_string());
    EXPECT_EQ(read.get_from().to_string() + read.get_sender().to_string(), who.to_string() + who.to_string());
  }
}

TEST(email, dates_of_other_writers) {
  for (const wchar_t* text :
       {L"Mon, 1 Jan 2024 10:00:00 GMT", L"1 Jan 2024 10:00:00 +0000", L"01 Jan 2024 10:00:00 UT",
        L"1 Jan 2024 10:00:00 GMT", L"Mon, 01 Jan 2024 12:00:00 +0200", L"1 Jan 2024 09:00:00 -0100",
        L"Mon, 1 Jan 24 05:00 (\\) morning (here)) EST", L"1 Jan 2024 10:00:00 -0000 (CET)"}) {
    email read;
    EXPECT_NO_THROW(read.deserialize_headers(std::wstring(L"Date: ") + text)) << text;
    EXPECT_EQ(read.get_date().get_lapso(), 1704103200) << text;
  }
}

TEST(email, headers_refused) {
  email message = sample();
  const std::wstring before = all_of(message);
  for (const wchar_t* bad : {L"no colon", L": no name", L" folded: first", L"Date: yesterday",
                             L"Date: Wed, 30 Feb 2024 23:05:09 +0000", L"From: Ana", L"Sender: ana@",
                             L"Date: 1 Jan 2024 10:00:00 XYZ", L"From: <ana@x.es> (Ana)"}) {
    const bool folded = *bad == L' ';
    try {
      message.deserialize_headers((folded ? L"" : L"Subject: new\r\nTo: new@x.es\r\n") + std::wstring(bad));
      ADD_FAILURE() << bad;
    } catch (const ruvo::exc::BadArgument& error) {
      EXPECT_EQ(error.get_raw_code(), 0xEBB8000Fu);
      EXPECT_EQ(error.get_mensaje(), std::wstring(L"Argumento incorrecto: ") + bad);
      EXPECT_EQ(all_of(message), before);
    }
  }
}

TEST(email, bodies) {
  const std::wstring head =
                         L"<html><head><meta http-equiv=\"Content-Type\" content=\"text/html;\" "
                         L"charset=\"iso-8859-1\"></head>"
                         L"<body>",
                     foot = L"</body></html>";
  const struct {
    const wchar_t *body, *signature, *plain, *html;
  } rows[] = {
      {L"", L"", L"", L""},
      {L"uno\r\ndos\n€ año", L"", L"uno\r\ndos\n€ año", L"uno<br/>dos<br/>€ a&ntilde;o"},
      {L"a < b & c", L"Eva", L"a < b & c\r\n--\r\nEva", L"a < b & c<p>--</p><div>Eva</div>"},
      {L"x", L"Eva\nÍñiguez", L"x\r\n--\r\nEva\nÍñiguez",
       L"x<p>--</p><div>Eva<br/>&Iacute;&ntilde;iguez</div>"},
      {L"<b>s&iacute;</b><br/>ñ", L"<i>Eva</i>", L"sí\r\nñ\r\n--\r\nEva",
       L"<b>s&iacute;</b><br/>ñ<p>--</p><div><i>Eva</i></div>"},
      {L"<HTML><Head>t</HEAD><BODY>x</bOdY></html>", L"", L"tx", L"x"},
      {L"<head>a</head>b<head/>c<head>d</head>e", L"", L"abcde", L"e"},
      {L"<head></head>x<HEAD/>y", L"", L"xy", L"<head></head>xy"},
      {L"<head>a<p>b", L"", L"ab", L"<head>a<p>b"},
      {L"</head>a<head>b", L"", L"ab", L"</head>a<head>b"},
      {L"<body class=\"c\">x</body>", L"<html><head>h</head><body>Eva</body></html>", L"x\r\n--\r\nhEva",
       L"<body class=\"c\">x<p>--</p><div>Eva</div>"},
  };
  for (const auto& row : rows) {
    const email message(L"", L"", row.body, row.signature);
    EXPECT_EQ(message.get_plain_post(), row.plain) << row.body;
    EXPECT_EQ(message.get_hmtl_post(), head + row.html + foot) << row.body;
  }
}

class email_rounds : public generated_inputs {
 protected:
  /// Texts of any kind, or such as a header line keeps: `tame` ones hold no line ends, no blanks at their
  /// ends and nothing that ends an address.
  std::wstring text(bool tame) {
    static const std::vector<std::wstring> mild = {L"a",  L"Ñ",  L"€", L"\xD83D\xDE00",
                                                   L" ",  L"; ", L",", L":",
                                                   L"=?", L".",  L"-", L"8"},
                                           wild = {L"\r\n",  L"\n", L"\t", L"<",
                                                   L">",     L"\"", L"@",  std::wstring(1, L'\0'),
                                                   L"\xD83D"};
    if (tame || random.one_in(2)) return texto::trim_(random.joined(mild, 9));
    return random.joined(mild, 3) + random.joined(wild, 5) + random.joined(mild, 3);
  }

  address who(bool tame) {
    const std::wstring mail =
        L"x" + random.joined(pieces(L"a B _ - 7 +"), 2) + L"@y" + std::to_wstring(random.below(20)) + L".es";
    std::wstring name = text(tame);
    if (tame) name.erase(0, name.find_first_not_of(L";, "));
    return address(name, tame || !random.one_in(4) ? mail : text(false));
  }

  email message(bool tame) {
    email made(who(tame), text(tame), text(tame), text(tame));
    if (random.one_in(2)) made.set_sender(who(tame));
    for (unsigned n = random.below(6); n > 0; --n)
      made[who(tame)] = static_cast<email::RCTP>(tame ? 2 + random.below(3) : random.below(5));
    for (unsigned n = random.below(3); n > 0; --n) made.push(ruvo::file(text(false)));
    const auto mode = random.one_in(2) ? ruvo::times::LOCAL : ruvo::times::GMT;
    return made.set_date(datetime(static_cast<long long>(random.number() >> 32) - (1ll << 31), mode));
  }

  dice random{20260};
};

TEST_F(email_rounds, there_and_back) {
  for (unsigned n = 500 * rounds(); n > 0; --n, ++inputs) {
    const email one = message(false);
    const bundle values = one;
    email other = message(false), third = other;
    other = values;
    EXPECT_EQ(all_of(other), all_of(one));
    EXPECT_EQ(bundle(other), values);
    EXPECT_EQ(other.get_date().get_huso_horario(), one.get_date().get_huso_horario());
    third = xvar(one);
    EXPECT_EQ(all_of(third), all_of(one));
  }
}

TEST_F(email_rounds, header_text_there_and_back) {
  for (unsigned n = 500 * rounds(); n > 0; --n, ++inputs) {
    const email one = message(true);
    email other = message(true);
    other.deserialize_headers(one.to_string());
    other.set_body(one.get_body()).set_signature(one.get_signature()).discharge();
    for (const ruvo::file& attached : one.get_attach()) other.push(attached);
    ASSERT_EQ(all_of(other), all_of(one)) << texto::to_utf_8(one.to_string());
  }
}

TEST_F(email_rounds, heads_go_as_by_the_pattern) {
  static const std::vector<std::wstring> parts = {L"<head>", L"<HeAd>", L"</head>", L"</HEAD>", L"<head/>",
                                                  L"<",      L"x",      L"\n",      L"head>",   L"/"};
  const std::wregex head(L"<(H|h)(E|e)(A|a)(D|d)>[\\w\\W]+</(H|h)(E|e)(A|a)(D|d)>|<(H|h)(E|e)(A|a)(D|d)/>");
  const std::wstring empty = email().get_hmtl_post();
  const std::size_t before = empty.find(L"</body>");
  for (unsigned n = 3000 * rounds(); n > 0; --n, ++inputs) {
    const std::wstring body = random.joined(parts, 8) + L"<p>";
    const std::wstring post = email(L"", L"", body).get_hmtl_post();
    ASSERT_EQ(post.substr(before, post.size() - empty.size()), std::regex_replace(body, head, L""))
        << texto::to_utf_8(body);
  }
}

TEST(email, bundles_of_all_kinds) {
  email message = sample();
  const std::wstring before = all_of(message);
  bundle odd = {{L"date", L"yesterday"},  {L"from", 5},       {L"sender", xvar()}, {L"to", L"a@x.es"},
                {L"cc", bundle(message)}, {L"attach", xvar()}};
  message = odd;
  message = bundle();
  EXPECT_EQ(all_of(message), before);
  for (const xvar& date :
       {xvar(L"x"), xvar(), xvar(L"999999999999999999999999"), xvar(bundle()), xvar(1e17), xvar(-1e300),
        xvar(std::numeric_limits<double>::infinity()), xvar(std::numeric_limits<double>::quiet_NaN()),
        xvar(std::numeric_limits<long long>::max())}) {
    odd[L"date"] = date;
    message = odd;
    EXPECT_EQ(all_of(message), before);
  }

  std::wstring json;
  static_cast<void>(ruvo::serializer::json().serialize(json, message));
  bundle values;
  EXPECT_FALSE(ruvo::serializer::json().deserialize(values, json));
  EXPECT_EQ(all_of(email(values)), before);

  message = bundle({{L"subject", 12}, {L"cc", xvar(ruvo::list())}, {L"from", bundle({{L"name", L"Eva"}})}});
  EXPECT_EQ(message.get_subject(), L"12");
  EXPECT_EQ(message.get_from().to_string(), L"Eva <jose@ruvo.es>");
  EXPECT_TRUE(message.empty());

  ruvo::list odd_to, odd_files;
  for (const xvar& entry :
       {xvar(), xvar(5), xvar(bundle()), xvar(bundle({{L"name", L"Eva"}})), xvar(L"nobody"), xvar(L"q@b.es"),
        xvar(L"Luis <luis@x.es>"), xvar(bundle(address(L"Ana", L"ana@x.es"))), xvar(address(L"", L"z@x.es"))})
    odd_to.push_back(entry);
  for (const xvar& entry : {xvar(), xvar(5), xvar(bundle()), xvar(L"a.txt")}) odd_files.push_back(entry);
  message = bundle({{L"from", L"ana@x.es"},
                    {L"sender", L"Eva <eva@x.es>"},
                    {L"to", xvar(odd_to)},
                    {L"attach", xvar(odd_files)}});
  EXPECT_EQ(message.get_from().to_string() + message.get_sender().to_string(), L"<ana@x.es>Eva <eva@x.es>");
  std::wstring to;
  message.serialize_recipients(to);
  EXPECT_EQ(to, L"Ana <ana@x.es>;Luis <luis@x.es>;<q@b.es>;<z@x.es>");
  EXPECT_EQ(message.size(), 4u);
  ASSERT_EQ(message.get_attach().size(), 1u);
  EXPECT_EQ(std::wstring(message.attached(0)), L"a.txt");

  message = xvar();
  EXPECT_EQ(message.get_subject(), L"12");
  EXPECT_THROW(message = xvar(address(L"", L"a@x.es")), std::bad_cast);
  const xvar held = message;
  EXPECT_TRUE(held.instanceof (typeid(email)));
  EXPECT_EQ(held.to_string(), message.to_string());
}

TEST(email_hostile, long_texts) {
  for (const wchar_t* part : {L"<",        L"<head>", L"</head>", L"<head/>", L"<body>x", L"<p", L">",
                              L"\n",       L"&",      L";",       L",",       L"a@",      L"a;", L"<a@b.es>;",
                              L"<a@b.es>", L"\"",     L" ",       L".",       L"a\r\n b", L":",  L"\xD83D"}) {
    std::wstring text;
    while (text.size() < 1 << 20) text += part;
    const email large(L"", L"", text, L"<" + text);
    EXPECT_GE(large.get_plain_post().size(), 6u) << part;
    EXPECT_GT(large.get_hmtl_post().size(), 100u) << part;

    text.resize(1 << 18);
    text.push_back(L'\0');
    email message;
    message.deserialize_recipients(text, L"x" + text, text);
    for (const wchar_t* name : {L"To: ", L"From: ", L"Date: ", L"Message-ID: ", L""}) {
      const std::wstring before = message.to_string();
      try {
        message.deserialize_headers(name + text);
      } catch (const ruvo::exc::BadArgument& error) {
        EXPECT_LT(error.get_mensaje().size(), 200u);
        EXPECT_EQ(message.to_string(), before);
      }
    }
  }
}

TEST(email_hostile, many_recipients) {
  std::wstring list;
  for (int n = 0; n < 100000; ++n)
    list += L"N " + std::to_wstring(n) + L" <u" + std::to_wstring(n) + L"@x.es>;";
  list.pop_back();
  email message;
  message.deserialize_headers(L"To: " + list);
  EXPECT_EQ(message.size(), 100000u);
  std::wstring to;
  message.serialize_recipients(to);
  EXPECT_EQ(to.size(), list.size());
  email copy{bundle(message)};
  EXPECT_EQ(copy.to_string(), message.to_string());
}

TEST(email_hostile, line_ends_are_the_callers_duty) {
  email message(L"a@x.es", L"one\r\nSender: thief@x.es");
  email read;
  read.deserialize_headers(message.to_string());
  EXPECT_EQ(read.get_subject(), L"one");
  EXPECT_EQ(read.get_sender().get_mail(), L"thief@x.es");
}

TEST(email_hostile, controls_of_read_fields_are_not_written_again) {
  email read;
  read.deserialize_headers(
      L"Subject: one\rBcc: thief@x.es\x85\r\nMessage-ID: <1\r2@x.es>\nFrom: \"A\rB\" <a@x.es>\nTo: \"C\x01\" "
      L"<c@x.es>");
  std::wstring text = read.to_string();
  EXPECT_EQ(read.get_subject(), L"one Bcc: thief@x.es");
  EXPECT_NE(text.find(L"<1 2@x.es>"), text.npos);
  while (text.find(L"\r\n") != text.npos) text.erase(text.find(L"\r\n"), 2);
  EXPECT_EQ(text.find_first_of(L"\r\x01\x85"), text.npos);
}

template <class T>
constexpr bool is_ordered = requires(const T& a) {
  a < a;
};

TEST(smtp_response, report) {
  ruvo::smtp::response sent;
  EXPECT_TRUE(sent.OK());
  EXPECT_EQ(sent.to_string(), L"{\"accepted\":[], \"refused\":[]}");
  const address ana(L"Ana", L"ana@x.es"), eva(L"", L"eva@x.es");
  const ruvo::exception error(0xE0AB0226, L"no hay buzón");
  sent.push(ana).push(eva, error).push(eva);
  const ruvo::list &accepted = sent.get_report().get_list(L"accepted"),
                   &refused = sent.get_report().get_list(L"refused");
  ASSERT_EQ(accepted.size() * 10 + refused.size(), 21u);
  bundle entry;
  entry = accepted[0];
  EXPECT_EQ(entry, bundle(ana));
  entry = refused[0];
  EXPECT_EQ(entry.get_bundle(L"address"), bundle(eva));
  EXPECT_EQ(entry.get_ulong(L"code"), 0xE0AB0226u);
  EXPECT_EQ(entry.get_string(L"message"), L"no hay buzón");
  EXPECT_TRUE(sent.OK());

  sent.set_exception(error);
  const xvar value = sent;
  ruvo::smtp::response back, copy(sent);
  back = value;
  EXPECT_TRUE(back.WRONG() && back.get_exception() == error);
  EXPECT_EQ(back.to_string(), sent.to_string());
  EXPECT_EQ(value.to_string(), sent.to_string());
  back = xvar();
  EXPECT_THROW(back = xvar(5), std::bad_cast);
  copy.push(ana);
  EXPECT_EQ(back.get_report(), sent.get_report());
  EXPECT_FALSE(copy.get_report() == sent.get_report());

  EXPECT_TRUE(back == sent);
  EXPECT_FALSE(copy == sent);
  back.set_exception(ruvo::exception());
  EXPECT_FALSE(back == sent);
  EXPECT_FALSE(is_ordered<ruvo::smtp::response>);
}

}  // namespace
