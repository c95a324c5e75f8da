// SPDX-License-Identifier: BSL-1.0

// Lines and columns, and all the failures of a reading.

#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "support/dice.hpp"
#include "support/rounds.hpp"

using ruvo::bundle;
using ruvo::exception;
using ruvo::serializer::failure_position;
using ruvo::serializer::json_reader;
using ruvo::serializer::position_of;
using ruvo::serializer::read_all;
using ruvo::serializer::reading_failure;
using ruvo::serializer::text_place;
using ruvo::serializer::xml_reader;

namespace {

class reading : public generated_inputs {};

/// The places of all positions of a text, the end included.
std::vector<text_place> places_of(std::wstring_view text) {
  std::vector<text_place> out;
  for (std::size_t n = 1; n <= text.size() + 1; ++n) out.push_back(position_of(text, n));
  return out;
}

TEST(position_of, breaks_pairs_and_ends) {
  using places = std::vector<text_place>;
  EXPECT_EQ(places_of(L""), (places{{1, 1}}));
  EXPECT_EQ(places_of(L"a\tb"), (places{{1, 1}, {1, 2}, {1, 3}, {1, 4}}));
  EXPECT_EQ(places_of(L"a\nb"), (places{{1, 1}, {1, 2}, {2, 1}, {2, 2}}));
  EXPECT_EQ(places_of(L"\r\r\n\n\r"), (places{{1, 1}, {2, 1}, {2, 1}, {3, 1}, {4, 1}, {5, 1}}));
  EXPECT_EQ(places_of(L"\xD83D\xDE00x"), (places{{1, 1}, {1, 1}, {1, 2}, {1, 3}}));
  EXPECT_EQ(places_of(L"\xDE00\xD83D"), (places{{1, 1}, {1, 2}, {1, 3}}));
  EXPECT_EQ(position_of(L"a\nb", 0), (text_place{1, 1}));
  EXPECT_EQ(position_of(L"a\nb", ~0ULL), (text_place{2, 2}));
}

/// Against lines that are cut out of the text.
TEST_F(reading, positions_agree_with_lines_cut_out) {
  std::mt19937 random(7);
  for (unsigned round = 0; round < 2000 * rounds(); ++round) {
    std::wstring text;
    while (random() % 12) text += L"ab\r\n\xD83D\xDE00"[random() % 6];
    std::wstring plain;  // one unit for each character, one for each end of a line
    std::vector<std::size_t> unit_to_plain;
    for (std::size_t at = 0; at < text.size(); ++at) {
      const bool second =
          at > 0 && unit_to_plain.size() == at &&
          ((text[at - 1] == L'\r' && text[at] == L'\n') ||
           (static_cast<char16_t>(text[at - 1]) == 0xD83D && static_cast<char16_t>(text[at]) == 0xDE00));
      if (!second) plain += text[at] == L'\r' ? L'\n' : text[at];
      unit_to_plain.push_back(plain.size() - 1);
    }
    unit_to_plain.push_back(plain.size());
    for (std::size_t at = 0; at <= text.size(); ++at) {
      const std::wstring before = plain.substr(0, unit_to_plain[at]);
      const std::size_t last = before.rfind(L'\n');
      const auto line = static_cast<std::size_t>(std::count(before.begin(), before.end(), L'\n')) + 1;
      const std::size_t column = last == std::wstring::npos ? before.size() + 1 : before.size() - last;
      ++inputs;
      ASSERT_EQ(position_of(text, at + 1), (text_place{line, column})) << testing::PrintToString(text);
    }
  }
}

struct finding {
  unsigned long code;
  std::uint64_t position;
  std::size_t line, column;
  bool operator==(const finding&) const = default;
};

std::ostream& operator<<(std::ostream& out, const finding& t) {
  return out << t.code << '@' << t.position << '=' << t.line << ':' << t.column;
}

std::vector<finding> short_form(const std::vector<reading_failure>& failures) {
  std::vector<finding> out;
  for (const reading_failure& f : failures) {
    const unsigned long code = f.error.get_rango() * 1000 + f.error.get_code();
    out.push_back({code, f.position, f.line, f.column});
  }
  return out;
}

template <class Reader>
std::vector<finding> failures_of(std::wstring_view text, std::size_t most = 100) {
  Reader reader;
  bundle out;
  return short_form(read_all(reader, out, text, most));
}

TEST_F(reading, json_reports_every_failure_once) {
  using list = std::vector<finding>;
  EXPECT_EQ(failures_of<json_reader>(L"{\"a\":1}"), list{});
  EXPECT_EQ(failures_of<json_reader>(L"{\"o\":{\"\":\"x\",\n\"b\":{\"\":true}}}"),
            (list{{6002, 12, 1, 12}, {6002, 26, 2, 12}}));
  EXPECT_EQ(failures_of<json_reader>(L"{\"o\":{\"\":\"x\",\n\"b\":{\"\":true}}}", 1),
            (list{{6002, 12, 1, 12}}));
  EXPECT_EQ(failures_of<json_reader>(L"{\"o\":{\"\":\"x\"}}", 0), list{});
  // A word that went wrong stays wrong to the end of the text.
  EXPECT_EQ(failures_of<json_reader>(L"{\"a\":trie,\r\n \"\":1}"), (list{{6003, 8, 1, 8}}));
}

TEST_F(reading, an_exception_of_the_reader_is_the_last_failure) {
  json_reader reader;
  bundle out;
  const auto failures = read_all(reader, out, L"{\"o\":{\"\":2,\"n\":\n99999999999999999999,\"b\":1}", 1);
  EXPECT_EQ(short_form(failures), (std::vector<finding>{{6002, 11, 1, 11}, {12, 37, 2, 21}}));
  EXPECT_EQ(reader.position(), 0U);
  EXPECT_FALSE(out.has(L"b"));
}

TEST_F(reading, xml_reports_every_failure) {
  const std::wstring text = L"<a>\r\n<b>1</c><d>2</e></a>";
  EXPECT_EQ(failures_of<xml_reader>(text), (std::vector<finding>{{7002, 13, 2, 8}, {7002, 21, 2, 16}}));
}

/// What is read and the last failure are those of deserialize().
template <class Reader, class Format>
void expect_same(Format& format, const std::wstring& text) {
  bundle at_once, all;
  exception error;
  bool failed = false, thrown = false;
  try {
    failed = format.deserialize(at_once, text, &error);
  } catch (const std::logic_error&) {
    thrown = true;
  }
  Reader reader;
  const std::vector<reading_failure> failures = read_all(reader, all, text, text.size());
  ASSERT_EQ(all.to_string(), at_once.to_string()) << testing::PrintToString(text);
  ASSERT_EQ(failures.empty(), !failed && !thrown) << testing::PrintToString(text);
  for (const reading_failure& f : failures) {
    const bool by_exception = thrown && &f == &failures.back();
    EXPECT_EQ(failure_position(f.error), by_exception ? 0 : f.position) << testing::PrintToString(text);
    EXPECT_EQ(position_of(text, f.position), (text_place{f.line, f.column}));
  }
  if (failed) {
    EXPECT_EQ(failures.back().error.get_raw_code(), error.get_raw_code());
  }
}

TEST_F(reading, agrees_with_deserialize) {
  ruvo::serializer::json json;
  ruvo::serializer::xml xml(true, false);
  dice random(20261124);
  std::vector<std::wstring> json_parts = pieces(
                                LR"({ } [ ] "a": "": "x" , 12 true trx null 1.5.5- 99999999999999999999)"),
                            xml_parts = pieces(LR"(<a> </a> </b> <c > t </> <> <d/> <e< &lt;)");
  json_parts.push_back(L"\n");
  for (const wchar_t* const part : {L"<b x=\"1\">", L"\r\n"}) xml_parts.push_back(part);
  for (unsigned round = 0; round < 4000 * rounds() && !HasFailure(); ++round) {
    expect_same<json_reader>(json, L"{" + random.joined(json_parts, 14, 14));
    expect_same<xml_reader>(xml, random.joined(xml_parts, 14, 14));
    inputs += 2;
  }
}

/// Feeds the text by character, and expects the entry at the path to stay where it was first seen.
template <class Reader>
void expect_stays(std::wstring_view text, const std::wstring& path) {
  bundle out;
  exception error;
  Reader reader;
  reader.reset();
  reader.set_store(out);
  const ruvo::xvar* seen = nullptr;
  for (const wchar_t c : text) {
    reader.next_character(c, error);
    if (!seen) seen = out.get_ptr(path);
  }
  EXPECT_TRUE(seen && seen == out.get_ptr(path)) << path;
}

TEST(readers, leave_entries_where_they_are_seen) {
  expect_stays<json_reader>(L"{\"a\":{\"b\":\"x\",\"c\":2},\"d\":3}", L"a.b");
  expect_stays<xml_reader>(L"<a><b>x</b><c>2</c></a><d/>", L"a.b");
}

TEST(failure_position, goes_along_with_copies_and_causes) {
  const ruvo::exc::xmlFalseKnot failure(~0ULL, 2);
  exception copy = failure;
  copy.set_detail(L"x");
  EXPECT_EQ(failure_position(copy), ~0ULL);
  EXPECT_EQ(failure_position(ruvo::exc::RunTime(std::make_exception_ptr(failure))), ~0ULL);
  EXPECT_EQ(failure_position(ruvo::exc::UnCatch(&copy)), ~0ULL);
  EXPECT_EQ(failure_position(ruvo::exc::jsonBadFormated(7)), 7U);
  EXPECT_EQ(failure_position(exception()), 0U);
  EXPECT_EQ(failure_position(exception(failure.get_raw_code(), failure.get_mensaje())), 0U);
}

}  // namespace
