// SPDX-License-Identifier: BSL-1.0

// Mail addresses: their text, what is read from texts and values, and their order.

#include <ruvo/ruvo.hpp>

#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "net/reads.hpp"
#include "support/dice.hpp"
#include "support/encoded_words.hpp"
#include "support/held.hpp"
#include "support/order.hpp"

namespace {

using ruvo::bundle;
using ruvo::xvar;
using ruvo::smtp::address;
namespace texto = ruvo::texto;

std::wstring fields(const address& of) { return of.get_name() + L"|" + of.get_mail(); }

TEST(address, texts) {
  const struct {
    address of;
    const wchar_t* text;
    const wchar_t* domain;
    const char* encoded;
    bool valid;
  } rows[] = {
      {address(), L"", L"", "<>", false},
      {address(L"Ana", L""), L"", L"", "=?iso-8859-1?Q?Ana?= <>", false},
      {address(L"", L"ana@a.es"), L"<ana@a.es>", L"@a.es", "<ana@a.es>", true},
      {address(L"Ana", L"ana@a.es"), L"Ana <ana@a.es>", L"@a.es", "=?iso-8859-1?Q?Ana?= <ana@a.es>", true},
      {address(L"Íñigo Ruiz, hijo", L"i+r@a-b.es"), L"Íñigo Ruiz, hijo <i+r@a-b.es>", L"@a-b.es",
       "=?iso-8859-1?Q?=CD=F1igo_Ruiz=2C_hijo?= <i+r@a-b.es>", true},
      {address(L"=?_\"", L"a@b@c"), L"=?_\" <a@b@c>", L"@b@c", "=?iso-8859-1?Q?=3D=3F=5F=22?= <a@b@c>",
       false},
      {address(L"100 €", L"a@b.es"), L"100 € <a@b.es>", L"@b.es", "=?UTF-8?Q?100_=E2=82=AC?= <a@b.es>", true},
      {address(L"ÿĀ", L"a@b.es"), L"ÿĀ <a@b.es>", L"@b.es", "=?UTF-8?Q?=C3=BF=C4=80?= <a@b.es>", true},
      {address(L"\xD83D", L"ñ@ñ.es"), L"\xD83D <ñ@ñ.es>", L"@ñ.es",
       "=?UTF-8?Q?=EF=BF=BD?= <\xC3\xB1@\xC3\xB1.es>", false},
      {address(std::wstring(L"\r\n\0", 3), L"here"), nullptr, L"", "=?iso-8859-1?Q?=0D=0A=00?= <here>",
       false}};
  for (const auto& row : rows) {
    const std::wstring text = row.text ? row.text : std::wstring(L"\r\n\0 <here>", 10);
    EXPECT_EQ(row.of.to_string(), text);
    EXPECT_STREQ(row.of.c_str(), text.c_str());
    std::wostringstream out;
    out << row.of;
    EXPECT_EQ(out.str(), text);
    EXPECT_EQ(row.of.get_domain(), row.domain) << text;
    EXPECT_EQ(row.of.q_encoded(), row.encoded) << text;
    EXPECT_EQ(row.of.check(), row.valid) << text;
    EXPECT_EQ(row.of.empty(), text.empty()) << text;
  }
}

TEST(address, text_follows_the_fields) {
  address one(L"Ana", L"ana@a.es"), other;
  EXPECT_STREQ(one.set_name(L"Eva").c_str(), L"Eva <ana@a.es>");
  EXPECT_STREQ(one.set_mail(L"eva@a.es").c_str(), L"Eva <eva@a.es>");
  EXPECT_STREQ(one.set_name(one.get_mail()).set_mail(one.get_name()).c_str(), L"eva@a.es <eva@a.es>");
  other = one;
  one.set_mail(L"");
  EXPECT_STREQ(one.c_str(), L"");
  EXPECT_STREQ(one.set_name(L"").set_mail(L"x").c_str(), L"<x>");
  const address& same = other;
  other = same;
  EXPECT_STREQ(other.c_str(), L"eva@a.es <eva@a.es>");
  const address kept(other);
  EXPECT_STREQ(address(std::move(other)).c_str(), kept.c_str());
}

TEST(address, reads_texts) {
  expect_reads(address(L"Old", L"old@a.es"), fields,
               {{L"<ana@a.es>", L"|ana@a.es"},
                {L" <ana@a.es>", L"|ana@a.es"},
                {L"Ana <ana@a.es>", L"Ana|ana@a.es"},
                {L"  Ana Ruiz \t <Ana+1@a-b.c1.com>", L"Ana Ruiz|Ana+1@a-b.c1.com"},
                {L"Ana\n<ana@a.es>", L"Ana|ana@a.es"},
                {L"\"Ruiz, Ana\" <ana@a.es>", L"Ruiz, Ana|ana@a.es"},
                {L"\"\"\" Ana \" <ana@a.es>", L"Ana|ana@a.es"},
                {L"\"\" <ana@a.es>", L"|ana@a.es"},
                {L"\" <ana@a.es>", L"|ana@a.es"},
                {L"\" \" <ana@a.es>", L"|ana@a.es"},
                {L"\"Ana <ana@a.es>", L"\"Ana|ana@a.es"},
                {L"Ana \"la jefa\" <ana@a.es>", L"Ana \"la jefa\"|ana@a.es"},
                {L"\"Ana\" y \"Eva\" <ana@a.es>", L"\"Ana\" y \"Eva\"|ana@a.es"},
                {L"Ana <eva@a.es> <ana@a.es>", L"Ana <eva@a.es>|ana@a.es"},
                {L"< <ana@a.es>", L"<|ana@a.es"},
                {L"ñ€\xD83D\xA0 <ana@a.es>", L"ñ€\xD83D|ana@a.es"},
                {L"Ana\xA0<ana@a.es>", L"Ana|ana@a.es"}},
               {L"", L" ", L"<>", L">", L"<", L"Ana", L"ana@a.es", L"Ana<ana@a.es>", L"Ana <ana@a.es> ",
                L"Ana <ana@a.es>\n", L"Ana < ana@a.es>", L"Ana <ana@a>", L"Ana <ña@a.es>",
                L"Ana <<ana@a.es>>", L"A\rna <ana@a.es>", L"Ana\r\n <ana@a.es>", L"Ana\x2028 <ana@a.es>"});
  address read;
  EXPECT_TRUE(read.deserialize(std::wstring(L"A\0 <ana@a.es>", 13)));
  EXPECT_EQ(read.get_name(), std::wstring(L"A\0", 2));
  EXPECT_FALSE(read.deserialize(std::wstring(L"A <ana@a.es\0>", 13)));
}

TEST(address, encoded_names_read_back) {
  dice random(822);
  const std::vector<std::wstring> parts = {L"a",
                                           L"Eva",
                                           L" ",
                                           L"ñ",
                                           L"ÿ",
                                           L"\"",
                                           L"€",
                                           L"=?",
                                           L"_",
                                           L"\xD83D\xDE00",
                                           L"\xDE00",
                                           L"\r\n",
                                           L"<",
                                           std::wstring(1, L'\0'),
                                           L"María del Carmen de la Peña y Muñoz"};
  for (int n = 0; n < 3'000; ++n) {
    const std::wstring name = n < 300 ? std::wstring(static_cast<std::size_t>(n) + 1, n % 2 ? L'a' : L'ñ')
                                      : random.joined(parts, 8);
    if (name.empty()) continue;
    const std::string encoded = address(name, L"a@b.es").q_encoded();
    ASSERT_TRUE(encoded.ends_with(" <a@b.es>"));
    const std::wstring good = texto::to_utf_16(texto::to_utf_8(name));  // without lone surrogates
    ASSERT_EQ(decoded_words(std::string_view(encoded).substr(0, encoded.size() - 9)), good) << encoded;
  }
}

TEST(address_value, of_bundles_and_values) {
  const address ana(L"Ana", L"ana@a.es");
  EXPECT_EQ(bundle(ana).to_string(), LR"({"email":"ana@a.es", "name":"Ana"})");
  const struct {
    bundle given;
    const wchar_t* fields;
  } rows[] = {{{}, L"Ana|ana@a.es"},
              {{{L"NAME", L"Eva"}, {L"email", xvar()}}, L"Eva|ana@a.es"},
              {{{L"email", 5}, {L"mail", L"x"}}, L"Ana|5"},
              {{{L"name", L""}, {L"email", L""}}, L"|"}};
  for (const auto& row : rows) {
    address of = ana;
    of = row.given;
    EXPECT_EQ(fields(of), row.fields);
  }

  const address listed{{L"name", L"Ana"}, {L"email", L"ana@a.es"}};
  EXPECT_EQ(fields(listed), fields(ana));
  EXPECT_EQ(fields(address{L"Ana", L"ana@a.es"}), fields(ana));

  expect_held(ana, fields);
}

TEST(address_value, order) {
  expect_order<address>({{address(), address(L"Ana", L"")},
                         {address(L"", L"a@b.es"), address(L"Ana", L"A@B.es"), address(L"Z", L"a@B.ES")},
                         {address(L"", L"a@b.es ")},
                         {address(L"", L"a_@b.es")},
                         {address(L"", L"aa@b.es"), address(L"", L"aA@b.es")},
                         {address(L"", L"Ñ@b.es")},
                         {address(L"", L"ñ@b.es")},
                         {address(L"", L"\xD83D@b.es")}});
}

/// Read in a pass or a few: with a step for each pair of characters these would not end.
TEST(address, long_texts_have_an_answer) {
  for (const std::size_t many : {100'000u, 1'000'000u}) {
    const std::wstring letters(many, L'a');
    address of;
    for (const wchar_t c :
         {L' ', L'"', L'<', L'@', L'.', L'a', L'ñ', L'€', L'\0', static_cast<wchar_t>(0xD83D)}) {
      const std::wstring run(many, c);
      EXPECT_TRUE(of.deserialize(run + L" <" + letters + L"@b." + letters + L">"));
      EXPECT_EQ(of.get_name().size(), c == L' ' || c == L'"' ? 0 : many);
      EXPECT_TRUE(of.deserialize(of.to_string()));
      EXPECT_GT(of.q_encoded().size(), of.get_name().size() + 2 * many);
      EXPECT_TRUE(of.deserialize(L"\"" + run + L"x\"" + run + L" <a@b.es>"));
      EXPECT_FALSE(of.deserialize(run));
      EXPECT_FALSE(of.deserialize(run + L"<a@b.es>") && c != L' ');
      EXPECT_FALSE(of.deserialize(L"<a@" + run + L">"));
      EXPECT_FALSE(of.deserialize(run + L"\r\n <a@b.es>"));
      EXPECT_FALSE(address(run, run).check());
      EXPECT_EQ(address(run, run).get_domain().size(), c == L'@' ? many : 0);
      EXPECT_TRUE(address(run, run) == address(L"", run));
    }
  }
}

}  // namespace
