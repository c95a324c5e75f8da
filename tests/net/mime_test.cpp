// SPDX-License-Identifier: BSL-1.0

// Messages of several parts: made, written and read, there and back, what is refused, and hostile ones.

#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "support/dice.hpp"
#include "support/rounds.hpp"

namespace {

using ruvo::binary;
using ruvo::bundle;
using ruvo::exception;
using ruvo::file;
using ruvo::mime::part;
namespace mime = ruvo::mime;
namespace texto = ruvo::texto;

std::wstring wide(const std::string& text) { return texto::to_utf_16(text); }

/// All that a message holds, as text.
std::wstring outline(const part& from) {
  std::wstring text = from.get_type();
  for (const auto& [name, value] : from.get_headers()) text += L"|" + name + L"=" + value;
  if (!from.get_disposition().empty()) text += L"|" + from.get_disposition();
  if (!from.get_filename().empty()) text += L"<" + from.get_filename() + L">";
  if (from.is_damaged()) text += L"!";
  if (!from.is_multipart()) return text + L":" + binary(from.get_bytes()).getAsHex();
  text += L"[";
  for (const part& child : from.get_parts()) text += outline(child) + L" ";
  return text + L"]";
}

/// The same of a small message that is read, its contents as text; what is wrong in brackets.
std::wstring brief(const std::string& bytes, const mime::limits& most = {}) {
  part read;
  exception failure;
  if (!mime::read(read, bytes, failure, most))
    return L"(" + failure.get_detail() + L" " + std::to_wstring(ruvo::serializer::failure_position(failure)) +
           L")";
  std::function<std::wstring(const part&)> show = [&show](const part& each) {
    std::wstring text = each.get_type() + (each.is_damaged() ? L"!" : L"");
    if (!each.get_filename().empty()) text += L"<" + each.get_filename() + L">";
    if (!each.is_multipart()) return text + L":" + each.get_text();
    for (const part& child : each.get_parts()) text += L" {" + show(child) + L"}";
    return text;
  };
  return show(read);
}

/// What every message keeps to that was written here.
void expect_good_lines(const std::string& bytes) {
  for (std::size_t from = 0; from < bytes.size();) {
    const std::size_t end = bytes.find("\r\n", from);
    ASSERT_NE(end, bytes.npos) << bytes;
    const std::string line = bytes.substr(from, end - from);
    EXPECT_LE(line.size(), 998u);
    EXPECT_TRUE(std::all_of(line.begin(), line.end(), [](char c) {
      return (c >= ' ' && c <= '~') || c == '\t';
    })) << line;
    for (std::size_t at = line.find("=?UTF-8?"); at != line.npos; at = line.find("=?UTF-8?", at + 1)) {
      EXPECT_LE(line.find("?=", at + 10) + 2 - at, 75u) << line;
      EXPECT_LE(line.size(), 78u) << line;
    }
    from = end + 2;
  }
}

template <class Work>
std::wstring refusal(Work work) {
  try {
    work();
    return {};
  } catch (const ruvo::exc::BadArgument& failure) {
    return failure.get_detail();
  }
}

TEST(mime, writes_what_other_mailers_read) {
  part message = part::multipart();
  message.set_header(L"Subject", L"Año").add(part::text(L"-- \ny 1=1 €\n"));
  message.add(part::bytes(binary("\x01\x02"), L"application/pdf", L"añejo.pdf"));
  const std::string bytes = mime::to_bytes(message);
  const std::string boundary = bytes.substr(bytes.find("boundary=") + 9, 42);
  std::string expected =
      "Subject: =?UTF-8?Q?A=C3=B1o?=\r\nMIME-Version: 1.0\r\nContent-Type: multipart/mixed;\r\n "
      "boundary=B\r\n"
      "\r\n--B\r\nContent-Type: text/plain; charset=utf-8\r\nContent-Transfer-Encoding: quoted-printable\r\n"
      "\r\n=2D-=20\r\ny 1=3D1 =E2=82=AC\r\n"
      "\r\n--B\r\nContent-Type: application/pdf; name=\"=?UTF-8?Q?a=C3=B1ejo=2Epdf?=\"\r\n"
      "Content-Transfer-Encoding: base64\r\nContent-Disposition: attachment; "
      "filename*=UTF-8''a%C3%B1ejo.pdf\r\n"
      "\r\nAQI=\r\n--B--\r\n";
  for (std::size_t at = 0; (at = expected.find('B', at)) != expected.npos; ++at)
    if (expected[at + 1] == '\r' || expected.compare(at + 1, 2, "--") == 0) expected.replace(at, 1, boundary);
  EXPECT_EQ(bytes, expected);
}

// --- there and back

class generated_mime : public generated_inputs {};

const std::vector<std::wstring> odd_texts = {L"a",
                                             L" ",
                                             L"\t",
                                             L"\r",
                                             L"\r\n",
                                             L"\r\n-",
                                             L"\r\n.",
                                             L"=",
                                             L"ñ",
                                             L"\xD83D\xDE00",
                                             std::wstring(80, L'x'),
                                             L"--b",
                                             L"\r\n--",
                                             L"\U00000085"};

std::vector<std::wstring> odd_words() {
  auto bits = pieces(
      L"a ñ € 日本語 \" ' ( ) , ; : < > @ % %20 * = ? _ - . .. =? ?= + [ ] { } & "
      L"a_longer_word_than_all_others");
  bits.insert(bits.end(), {L" ", L"\xD83D\xDE00"});
  return bits;
}

part leaf(dice& random, const std::vector<std::wstring>& bits) {
  const std::wstring name = random.joined(bits, 30) + L"x";
  switch (random.below(4)) {
    case 0:
      return part::text(random.joined(odd_texts, 60));
    case 1:
      return part::text(random.joined(odd_texts, 60), L"html").set_filename(name);
    case 2:
      return part::bytes(binary(random.joined(odd_texts, 300)), L"text/csv", name);
    default:
      return part::bytes(binary(random.joined(bits, 300)), L"image/png", name)
          .set_disposition(L"inline")
          .set_content_id(L"a" + std::to_wstring(random.below(9)) + L"@b");
  }
}

part tree(dice& random, const std::vector<std::wstring>& bits, unsigned levels) {
  if (levels == 0 || random.one_in(3)) return leaf(random, bits);
  part made = part::multipart(random.any(pieces(L"mixed alternative related")));
  for (unsigned n = 1 + random.below(4); n > 0; --n) made.add(tree(random, bits, levels - 1));
  return made;
}

TEST_F(generated_mime, reads_back_what_it_wrote) {
  const std::vector<std::wstring> bits = odd_words();
  dice random(20240229);
  for (unsigned n = 200 * rounds(); n > 0; --n, ++inputs) {
    part made = tree(random, bits, random.below(5));
    made.set_header(L"Subject", random.joined(bits, 60, 1)).add_header(L"X-Odd", random.joined(bits, 9));
    const std::string bytes = mime::to_bytes(made);
    expect_good_lines(bytes);
    const part read = mime::read(bytes);
    ASSERT_EQ(outline(read), outline(made)) << bytes;
    ASSERT_EQ(outline(mime::read(mime::to_bytes(read))), outline(made)) << bytes;
  }
}

TEST(mime, keeps_quoted_printable_within_its_lines) {
  const struct {
    std::string text, written;
  } table[] = {
      {"", ""},
      {"a b", "a b"},
      {"a \nb\t\r\n", "a=20\r\nb=09\r\n"},
      {"a \r", "a=20=0D"},
      {"-.\n.-\nFrom", "=2D.\r\n=2E-\r\nFrom"},
      {std::string(76, 'x'), std::string(75, 'x') + "=\r\nx"},
      {std::string(70, 'x') + "\xE2\x82\xAC", std::string(70, 'x') + "=\r\n=E2=82=AC"},
  };
  for (const auto& row : table) {
    EXPECT_EQ(mime::to_quoted_printable(row.text), row.written);
    EXPECT_EQ(wide(mime::from_quoted_printable(row.written)),
              mime::read("Content-Type:text/plain\n\n" +
                         mime::from_quoted_printable(mime::to_quoted_printable(row.text)))
                  .get_text());
  }
  EXPECT_EQ(mime::from_quoted_printable("a= \r\nb=e9=Zz=4  \nc="), "ab\xE9=Zz=4\nc");
}

// --- reading

TEST(mime, decodes_words_as_mailers_write_them) {
  const std::pair<std::wstring, std::wstring> table[] = {
      {L"=?UTF-8?Q?A=C3=B1o_1?= =?utf-8?b?w7E=?= b", L"Año 1ñ b"},
      {L"=?UTF-8?Q?=C3?=\t=?UTF-8?Q?=B1?=", L"ñ"},
      {L"=?iso-8859-15?Q?=A4?= =?windows-1252?Q?=80?= =?us-ascii*en?q?a?=", L"€€a"},
      {L"a=?UTF-8?Q?b?=c \"=?UTF-8?Q?d e?=\"", L"abc \"d e\""},
      {L"=?UTF-8?Q?a?= =?koi8-r?Q?=C1?= =?UTF-8?Q?b?=", L"a =?koi8-r?Q?=C1?= b"},
      {L"=?UTF-8?Q?a=0D=0ABcc:=00?= ", L"a  Bcc:  "},
      {L"=?UTF-8?Q?a=C3?= =?UTF-8?B?w7E?", L"a\xFFFD =?UTF-8?B?w7E?"},
      {L"=?=?UTF-8?x?a?= =??Q?a?= 1=?2", L"=?=?UTF-8?x?a?= =??Q?a?= 1=?2"},
  };
  for (const auto& [text, decoded] : table) EXPECT_EQ(mime::decode_words(text), decoded) << text;
  std::wstring many;  // none of which is a word: looked through once, not once for each
  for (int n = 0; n < 200'000; ++n) many += L"x=?a?q?";
  many += L"ñ?=";
  EXPECT_TRUE(mime::decode_words(many) == many);
}

TEST(mime, reads_what_is_common_though_wrong) {
  const std::string parts = "content-type: MULTIPART/Mixed; boundary=\"b c\"\n";
  const std::pair<std::string, std::wstring> table[] = {
      {"", L"text/plain:"},
      {"Subject: a\r\n\r\nb\r\n", L"text/plain:b\r\n"},
      {"no field\nA : b\n\nc", L"text/plain!:c"},
      {"Content-Type: text\n\na", L"text/plain:a"},
      {"Content-Type: nothing/good/at all\n\na", L"text/plain!:a"},
      {"Content-Type: text/html\nContent-Type: text/csv\n\na\xC3\xB1", L"text/html:añ"},
      {"Content-Type: text/html; charset=iso-8859-1\n\na\xF1", L"text/html:añ"},
      {"\n\xF1", L"text/plain:ñ"},
      {"Content-Transfer-Encoding: BASE64\n\nYWJj\r\nZA=", L"text/plain!:abcd"},
      {"Content-Transfer-Encoding: base64\n\nYW*Jj", L"text/plain!:abc"},
      {"Content-Transfer-Encoding: quoted-printable\n\n=3D=\n=zz", L"text/plain!:==zz"},
      {"Content-Transfer-Encoding: x-uuencode\n\nabc", L"text/plain!:abc"},
      {parts + "\nfirst\n--b c\n\n1\n--b c \r\nContent-Type: text/html\n\n2\r\n\r\n--b c--\nlast",
       L"multipart/mixed {text/plain:1} {text/html:2\r\n}"},
      {parts + "\n--b c\n\n1\n--b cx\n --b c\n", L"multipart/mixed! {text/plain:1\n--b cx\n --b c\n}"},
      {parts +
           "\n--b c\nContent-Type: multipart/digest; boundary=i\n\n--i\n\nSubject: a\n\n--b c\n\n2\n--b c--",
       L"multipart/mixed {multipart/digest! {message/rfc822:Subject: a\n}} {text/plain:2}"},
      {"Content-Disposition: attachment; filename=\"C:\\\\x\\\\..\\\\a?.txt\"\n\n", L"text/plain<a?.txt>:"},
      {"Content-Type: text/plain; name=\"=?UTF-8?Q?=C3=B1?= =?UTF-8?Q?o?=\"\n\n", L"text/plain<ño>:"},
      {"Content-Disposition: attachment; filename*0*=UTF-8''%C3%B1; filename*1=o; filename=x\n\n",
       L"text/plain<ño>:"},
      {"Content-Type: multipart/mixed\n\n--\n", L"(partes sin separador 1)"},
      {parts + "\n-- b c\n", L"(falta el separador de las partes 48)"},
  };
  for (const auto& [bytes, expected] : table) EXPECT_EQ(brief(bytes), expected) << bytes;
}

TEST(mime, limits_what_it_reads) {
  part nested = part::text(L"a");
  for (int n = 0; n < 11; ++n) nested = part::multipart().add(nested);
  const std::string eleven = mime::to_bytes(nested), ten = mime::to_bytes(nested.get_parts()[0]);
  EXPECT_EQ(brief(eleven).substr(0, 30), L"(más niveles de los permitidos");
  EXPECT_EQ(brief(ten)[0], L'm');
  const std::string small = "Content-Type: multipart/mixed; boundary=b\n\n--b\n\n1\n--b\n\n2\n--b--\n";
  EXPECT_EQ(brief(small, {.parts = 3}), L"multipart/mixed {text/plain:1} {text/plain:2}");
  EXPECT_EQ(brief(small, {.parts = 2}), L"(más partes de las permitidas 55)");
  EXPECT_EQ(brief(small, {.bytes = small.size() - 1}), L"(más bytes de los permitidos 63)");
  EXPECT_EQ(brief(small, {.header_bytes = 42}), L"(cabecera más larga de lo permitido 1)");
  EXPECT_EQ(brief(small, {.header_bytes = 43})[0], L'm');
  for (int n = 0; n < 89; ++n) nested = part::multipart().add(nested);
  EXPECT_EQ(refusal([&] { part::multipart().add(nested); }), L"multipart/mixed");
  EXPECT_EQ(outline(part(nested)), outline(nested));
}

TEST(mime, a_field_without_text_stays_where_one_is_added) {
  part made;
  made.add_header(L"Comments", L"").add_header(L"Comments", L"a").add_header(L"Comments", L"b");
  ASSERT_EQ(made.get_headers().size(), 3u);
  EXPECT_EQ(made.get_headers()[2].second, L"b");
}

// --- what is refused

TEST(mime, refuses_what_would_end_a_field) {
  using setter = std::function<void(part&, const std::wstring&)>;
  const struct {
    std::wstring field;
    setter set;
  } table[] = {
      {L"Subject", [](part& p, const std::wstring& text) { p.set_header(L"Subject", text); }},
      {L"Subject", [](part& p, const std::wstring& text) { p.add_header(L"Subject", text); }},
      {L"To", [](part& p, const std::wstring& text) { p.set_field(L"To", text); }},
      {L"Content-Type",
       [](part& p, const std::wstring& text) {
         p.set_header(L"Content-Type", L"text/plain; x=\"" + text + L"\"");
       }},
      {L"Content-Disposition", [](part& p, const std::wstring& text) { p.set_disposition(text); }},
      {L"Content-ID", [](part& p, const std::wstring& text) { p.set_content_id(text); }},
      {L"filename", [](part& p, const std::wstring& text) { p.set_filename(text); }},
      {L"x", [](part& p, const std::wstring& text) { p.set_parameter(L"x", text); }},
      {L"Content-Type", [](part&, const std::wstring& text) { part::text(L"", text); }},
      {L"Content-Type", [](part&, const std::wstring& text) { part::multipart(text); }},
      {L"filename", [](part&, const std::wstring& text) { part::bytes(binary(), L"a/b", text); }},
  };
  for (const auto& row : table) {
    part target = part::text(L"a");
    row.set(target, L"good");
    const std::wstring before = outline(target);
    for (const wchar_t bad : {L'\r', L'\n', L'\0', L'\x7F', L'\x85', L'\x1B'}) {
      const std::wstring text = L"a" + std::wstring(1, bad) + L"Bcc:b";
      EXPECT_EQ(refusal([&] { row.set(target, text); }), row.field) << static_cast<int>(bad);
      EXPECT_EQ(outline(target), before);
    }
  }
  for (const wchar_t* const name :
       {L"", L"a b", L"a:b", L"añ", L"a\r\nb", L"mime-version", L"content-transfer-encoding"})
    EXPECT_EQ(refusal([&] { part().set_header(name, L"a"); }), name);
  for (const wchar_t* const type : {L"a", L"a/b/c", L"multipart/mixed", L"a/b; c", L"a/b; c=ñ", L"a/b, c"})
    EXPECT_EQ(refusal([&] { part::bytes(binary(), type); }), L"Content-Type") << type;
}

TEST(mime, writes_nothing_where_something_is_wrong) {
  const std::wstring long_word(2000, L'x');
  const std::pair<part, std::wstring> table[] = {
      {part::multipart(), L"multipart/mixed"},
      {part::multipart().add(part::multipart(L"related")), L"multipart/related"},
      {part().set_field(L"To", L"ñ@x.es"), L"To"},
      {part().set_field(L"To", long_word), L"To"},
      {part::bytes(binary("a\n"), L"message/rfc822"), L"message/rfc822"},
      {part::bytes(binary(std::string(999, 'a')), L"message/rfc822"), L"message/rfc822"},
      {part::attachment(L"none.pdf"), L"none.pdf"},
      {part().set_header(long_word, L""), long_word},
      {part().set_header(L"Content-Type", L"text/" + long_word), L"Content-Type"},
      {part().set_parameter(long_word, L"a"), L"Content-Type"},
      {part().set_disposition(long_word), L"Content-Disposition"},
  };
  for (const auto& [made, detail] : table) {
    std::string out = "before";
    exception failure;
    EXPECT_FALSE(mime::write(out, made, failure));
    EXPECT_EQ(failure.get_detail(), detail);
    EXPECT_EQ(out, "before");
    EXPECT_FALSE(mime::write(file(L"out.eml"), made, failure));
    EXPECT_FALSE(file(L"out.eml").exists());
  }
  EXPECT_NE(mime::to_bytes(table[2].first, {.utf8 = true}).find("To: \xC3\xB1@x.es\r\n"), std::string::npos);
  EXPECT_EQ(brief(mime::to_bytes(part().set_header(L"X", long_word))), L"text/plain:");
}

// --- files

TEST(mime, reads_attached_files_while_it_writes) {
  dice random(7);
  exception failure;
  for (const std::size_t size : {0u, 1u, 56u, 57u, 58u, 65536u, 200001u}) {
    std::string bytes(size, '\0');
    for (char& c : bytes) c = static_cast<char>(random.below(256));
    const part message =
        part::multipart().add(part::attachment(L"a.eml")).add(part::attachment(L"a.eml", L"añ.pdf"));
    ASSERT_TRUE(ruvo::files::write(binary(bytes), file(L"a.eml"), failure));
    std::string whole, joined;
    std::size_t longest = 0;
    const mime::piece_sink sink = [&](std::string_view piece) {
      longest = std::max(longest, piece.size());
      joined.append(piece);
      return true;
    };
    ASSERT_TRUE(mime::write(sink, message, failure) && mime::write(file(L"b.eml"), message, failure));
    ASSERT_TRUE(ruvo::files::read(whole, file(L"b.eml"), failure));
    expect_good_lines(joined);
    EXPECT_LE(longest, 200000u);
    for (const std::string& written : {whole, joined}) {
      const part read = mime::read(written);
      ASSERT_EQ(read.get_parts().size(), 2u);
      EXPECT_EQ(read.get_parts()[0].get_type() + read.get_parts()[1].get_type(),
                L"application/octet-streamapplication/pdf");
      EXPECT_EQ(read.get_parts()[1].get_filename(), L"añ.pdf");
      for (const part& each : read.get_parts()) EXPECT_TRUE(each.get_bytes() == bytes && !each.is_damaged());
    }
  }
  EXPECT_FALSE(mime::write([](std::string_view) { return false; }, part(), failure));
  EXPECT_TRUE(failure == ruvo::exc::ProcessCanceled());
}

TEST(mime, gives_names_that_are_safe_for_files) {
  const std::pair<std::wstring, std::wstring> table[] = {
      {L"a b.pdf", L"a b.pdf"},
      {L"..\\..\\a.txt", L"a.txt"},
      {L"/etc/passwd", L"passwd"},
      {L"a:b<c>|\"?*.x", L"a_b_c_____.x"},
      {L"a\tb\x1F\x85.", L"ab"},
      {L" .. ", L""},
      {L"", L""},
      {L"a/", L""},
      {L"NUL", L"_NUL"},
      {L"con .txt", L"_con .txt"},
      {L"Com\u00B9.x.y", L"_Com\u00B9.x.y"},
      {L"com", L"com"},
      {L"a\u202Egnp.exe\u2069", L"agnp.exe"},
      {L"lpt10", L"lpt10"},
      {std::wstring(300, L'a') + L".pdf", std::wstring(200, L'a') + L".pdf"},
      {std::wstring(199, L'a') + L"\xD83D\xDE00", std::wstring(199, L'a')},
      {L"a." + std::wstring(300, L'b'), L"a." + std::wstring(198, L'b')},
  };
  for (const auto& [name, safe] : table) EXPECT_EQ(mime::safe_name(name), safe) << name;
}

// --- bundles

TEST(mime, becomes_a_bundle_and_back) {
  const bundle message{
      {L"headers", bundle{{L"Subject", L"Año"}, {L"Received", ruvo::list{L"a", L"b"}}, {L"X-N", 7}}},
      {L"parts",
       ruvo::list{bundle{{L"body", L"uno\r\n"}, {L"type", L"text/html"}},
                  bundle{{L"body", binary("\x01")}, {L"filename", L"ñ.bin"}},
                  bundle{{L"parts", ruvo::list{bundle{{L"body", L"{}"}, {L"type", L"application/json"}}}}}}}};
  ruvo::serializer::mime form;
  std::wstring text;
  exception failure;
  ASSERT_FALSE(form.serialize(text, message, &failure)) << failure.get_mensaje();
  bundle read;
  ASSERT_FALSE(form.deserialize(read, text, &failure));
  EXPECT_EQ(read.get_string(L"headers.subject") + read.get_string(L"type").substr(0, 15),
            L"Añomultipart/mixed");
  EXPECT_EQ(read.get_list(L"headers.received").to_string(),
            message.get_list(L"headers.received").to_string());
  bundle parts[3], inner;
  for (std::size_t n = 0; n < 3; ++n) parts[n] = read.get_list(L"parts")[n];
  inner = parts[2].get_list(L"parts")[0];
  EXPECT_EQ(parts[0].get_string(L"type") + parts[0].get_string(L"body"), L"text/html; charset=utf-8uno\r\n");
  EXPECT_EQ(parts[1].get_string(L"filename") + parts[1].get_binary(L"body", binary()).getAsHex(), L"ñ.bin01");
  EXPECT_EQ(inner.get_binary(L"body", binary()), binary("{}"));
  std::wstring again;
  ASSERT_FALSE(form.serialize(again, read, &failure));
  EXPECT_EQ(outline(mime::read(texto::to_utf_8(again))), outline(mime::read(texto::to_utf_8(text))));

  const std::pair<bundle, std::wstring> refused[] = {
      {{{L"body", bundle()}}, L"body"},           {{{L"parts", L"a"}}, L"parts"},
      {{{L"parts", ruvo::list{L"a"}}}, L"parts"}, {{{L"headers", bundle{{L"X-A", L"a\r\nb"}}}}, L"X-A"},
      {{{L"type", L"text"}}, L"Content-Type"},
  };
  for (const auto& [in, detail] : refused) {
    EXPECT_TRUE(form.serialize(text, in, &failure));
    EXPECT_EQ(failure.get_detail(), detail);
  }
  EXPECT_TRUE(form.deserialize(read, L"Content-Type: multipart/mixed\n\n"));
}

}  // namespace
