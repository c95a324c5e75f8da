// SPDX-License-Identifier: BSL-1.0

// Lines at the end of files, lines read, and files for the time being.

#include <ruvo/exc.hpp>
#include <ruvo/files.hpp>

#include <algorithm>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "files/scratch.hpp"

using namespace std::string_literals;
namespace files = ruvo::files;
namespace texto = ruvo::texto;
using files::line_ends;
using files::line_options;
using files::line_reader;
using ruvo::file;
using state = files::line_reader::state;
using all_lines = std::vector<std::wstring>;

namespace {

using lines = scratch;

std::string in_utf_16(const std::string& ascii, bool low_first = true) {
  std::string out = low_first ? "\xFF\xFE" : "\xFE\xFF";
  for (const char c : ascii) out += low_first ? std::string{c, '\0'} : std::string{'\0', c};
  return out;
}

TEST_F(lines, are_appended) {
  const file log = path(L"a.log");
  files::append_line(log, L"uno");
  files::append_text(log, L"año ");
  files::append_bytes(log, "\xFF\0"s);
  EXPECT_EQ(get(log), "uno\r\na\xC3\xB1o \xFF\0"s);
  for (const bool low_first : {true, false}) {
    put(log, in_utf_16("a", low_first));
    files::append_text(log, L"b");
    EXPECT_EQ(get(log), in_utf_16("ab", low_first));
  }
  ruvo::exception err;
  EXPECT_FALSE(files::append_line(file(where), L"x", err));
  EXPECT_EQ(err.get_code(), 7u);
  EXPECT_THROW(files::append_text(path(L"no/hay.txt"), L"x"), ruvo::exc::fileOsStream);
}

TEST_F(lines, of_several_writers_do_not_mix) {
  constexpr int writers = 4, each = 200;
  std::vector<std::thread> threads;
  for (int who = 0; who < writers; ++who) {
    threads.emplace_back([who] {
      const std::wstring line(static_cast<std::size_t>(100 + 50 * who), static_cast<wchar_t>(L'a' + who));
      for (int i = 0; i < each; ++i) files::append_line(path(L"b.log"), line);
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::map<std::size_t, int> sizes;
  for (const std::wstring& line : line_reader(path(L"b.log"))) {
    ++sizes[line.size()];
    EXPECT_EQ(line.find_first_not_of(line[0]), line.npos);
  }
  EXPECT_EQ(sizes, (std::map<std::size_t, int>{{100, each}, {150, each}, {200, each}, {250, each}}));
}

TEST_F(lines, end_as_is_asked_for) {
  const struct {
    std::string bytes;
    all_lines lf, plain_lf, any, cr;
  } rows[] = {
      {"", {}, {}, {}, {}},
      {"\n", {L""}, {L""}, {L""}, {L"\n"}},
      {"a", {L"a"}, {L"a"}, {L"a"}, {L"a"}},
      {"a\r\nb\r\n", {L"a", L"b"}, {L"a\r", L"b\r"}, {L"a", L"b"}, {L"a", L"\nb", L"\n"}},
      {"a\rb\n\r\nc",
       {L"a\rb", L"", L"c"},
       {L"a\rb", L"\r", L"c"},
       {L"a", L"b", L"", L"c"},
       {L"a", L"b\n", L"\nc"}},
      {"a\r\r\nb\r", {L"a\r", L"b\r"}, {L"a\r\r", L"b\r"}, {L"a", L"", L"b"}, {L"a", L"", L"\nb"}},
  };
  for (const auto& r : rows) {
    const all_lines* const wanted[] = {&r.lf, &r.any, &r.plain_lf, &r.cr};
    for (const std::string& bytes : {r.bytes, in_utf_16(r.bytes), in_utf_16(r.bytes, false)}) {
      put(path(L"a.txt"), bytes);
      for (int ends = 0; ends < 4; ++ends) {
        line_reader in(path(L"a.txt"), {.ends = static_cast<line_ends>(ends)});
        EXPECT_EQ(all_lines(in.begin(), in.end()), *wanted[ends]) << testing::PrintToString(bytes) << ends;
        EXPECT_EQ(in.get_state(), state::at_end);
        EXPECT_EQ(in.position(), bytes.size());
      }
    }
  }
}

TEST_F(lines, come_in_their_encoding) {
  const struct {
    std::string bytes;
    line_options how;
    std::wstring expected;
    texto::charset what;
    unsigned replaced = 0;
  } rows[] = {
      {"\xEF\xBB\xBF"
       "a\xC3\xB1o",
       {.encoding = texto::charset::windows_1252},
       L"año",
       texto::charset::utf_8},
      {"a\xF1o", {}, L"a\xFFFDo", texto::charset::utf_8, 1},
      {"a\xF1o", {.encoding = texto::charset::windows_1252}, L"año", texto::charset::windows_1252},
      {"a\xF1o", {.guesses = true}, L"año", texto::charset::windows_1252},
      {"a\xC3\xB1o", {.guesses = true}, L"año", texto::charset::utf_8},
      {in_utf_16("abc").substr(2), {.guesses = true}, L"abc", texto::charset::utf_16_le},
      {in_utf_16("a") + "b", {}, L"a\xFFFD", texto::charset::utf_16_le, 1},
      {"\xEF", {}, L"\xFFFD", texto::charset::utf_8, 1},
  };
  for (const auto& r : rows) {
    put(path(L"a.txt"), r.bytes);
    line_reader in(path(L"a.txt"), r.how);
    std::wstring line;
    EXPECT_TRUE(in.next(line));
    EXPECT_EQ(line, r.expected) << testing::PrintToString(r.bytes);
    EXPECT_EQ(in.get_charset().what, r.what);
    EXPECT_EQ(in.count_replaced(), r.replaced);
    EXPECT_FALSE(in.next(line));
  }
}

TEST_F(lines, may_be_of_any_length) {
  std::string bytes;
  all_lines wanted;
  for (const std::size_t size : {0u, 1u, 65534u, 65535u, 65536u, 3u, 200'000u, 65533u, 1'000'000u, 5u}) {
    wanted.push_back(std::wstring(size, static_cast<wchar_t>(L'a' + wanted.size())));
    bytes += std::string(size, static_cast<char>(wanted.back()[0])) + (size % 2 ? "\r\n" : "\n");
  }
  put(path(L"a.txt"), bytes);
  line_reader in(path(L"a.txt"));
  EXPECT_EQ(all_lines(in.begin(), in.end()), wanted);
  EXPECT_EQ(in.line_number(), wanted.size());
  ruvo::exception err;
  EXPECT_FALSE(
      files::read_lines(path(L"a.txt"), [](const std::wstring&) { return true; }, err, {.longest = 65535}));
  EXPECT_EQ(err.get_code(), 5u);
  const struct {
    std::string bytes;
    std::size_t longest;
    bool guesses, is_read;
  } rows[] = {{std::string(65535, 'a') + "\r\nb", 65535, false, true},
              {"uno\r\ndos\r\ntres", 4, true, true},
              {"uno\r\ndos\r\ntres", 3, true, false},
              {"uno\r\ndos\r\ntres", 3, false, false}};
  for (const auto& r : rows) {
    put(path(L"a.txt"), r.bytes);
    const files::line_options how{.guesses = r.guesses, .longest = r.longest};
    EXPECT_EQ(files::read_lines(
                  path(L"a.txt"), [](const std::wstring&) { return true; }, err, how),
              r.is_read)
        << r.longest;
  }
  put(path(L"a.txt"), bytes);
  int seen = 0;
  EXPECT_TRUE(files::read_lines(
      path(L"a.txt"), [&seen](const std::wstring&) { return ++seen < 3; }, err));
  EXPECT_EQ(seen, 3);
  EXPECT_FALSE(files::read_lines(
      path(L"b.txt"), [](const std::wstring&) { return true; }, err));
  EXPECT_EQ(err.get_code(), 1u);
  EXPECT_THROW(line_reader{file(where)}, ruvo::exc::fileExpectedFile);
}

TEST_F(lines, of_a_file_that_grows_are_followed) {
  const file log = path(L"a.log");
  put(log, "uno\ndo");
  line_reader in(log, {.ends = line_ends::any, .follows = true});
  std::wstring line;
  const auto next = [&] {
    return in.next(line) ? line : L"(" + std::to_wstring(static_cast<int>(in.get_state())) + L")";
  };
  EXPECT_EQ(next(), L"uno");
  EXPECT_EQ(next(), L"(1)");
  files::append_bytes(log, "s\r");
  EXPECT_EQ(next(), L"dos");
  files::append_bytes(log, "\ntres\n\n");
  EXPECT_EQ(next(), L"tres");
  EXPECT_EQ(next(), L"");
  EXPECT_EQ(next(), L"(1)");
  EXPECT_EQ(in.position(), get(log).size());

  put(log, "x");
  EXPECT_EQ(next(), L"(2)");
  EXPECT_EQ(next(), L"(1)");
  files::append_bytes(log, "y\nresto");
  EXPECT_EQ(next(), L"xy");
  EXPECT_EQ(in.line_number(), 1u);
  EXPECT_EQ(next(), L"(1)");

  std::filesystem::rename(native(log), native(path(L"a.old")));
  EXPECT_EQ(next(), L"(1)");
  files::append_bytes(path(L"a.old"), "s");
  put(log, "nuevo\n");
  EXPECT_EQ(next(), L"restos");
  EXPECT_EQ(next(), L"(3)");
  EXPECT_EQ(next(), L"nuevo");
  EXPECT_EQ(next(), L"(1)");
}

TEST_F(lines, of_an_empty_file_have_the_encoding_that_comes) {
  const file log = path(L"a.log");
  put(log, "");
  line_reader in(log, {.follows = true});
  std::wstring line;
  for (const char c : in_utf_16("ab\n")) {
    EXPECT_FALSE(in.next(line));
    files::append_bytes(log, {&c, 1});
  }
  EXPECT_TRUE(in.next(line));
  EXPECT_EQ(line, L"ab");
  EXPECT_FALSE(in.next(line));
}

TEST_F(lines, and_files_for_the_time_being_go) {
  {
    files::temporary_file made(file(where), L"carta-", L".txt"), moved = std::move(made);
    const std::wstring name = moved.path().get_name();
    EXPECT_TRUE(name.starts_with(L"carta-") && name.ends_with(L".txt") && name.size() == 36) << name.c_str();
    EXPECT_EQ(moved.path().size(), 0u);
    files::write(L"hola", moved.path());
    files::temporary_folder folder{file(where)};
    ASSERT_TRUE(file(folder.path(), L"a\\b").mkdirs());
    put(file(folder.path(), L"a\\b\\c.txt"), "c");
    EXPECT_EQ(names().size(), 2u);
    EXPECT_NE(files::temporary_folder(file(where)).path(), files::temporary_folder(file(where)).path());
  }
  EXPECT_TRUE(names().empty());
  const file kept = files::temporary_file(file(where), L"", L"").keep();
  EXPECT_EQ(names().size(), 1u);
  EXPECT_EQ(kept.get_name().size(), 26u);
  EXPECT_EQ(files::temporary_file().path().get_parent().is_directory(), true);
  for (const wchar_t* const prefix : {L"..\\x", L".\\x", L"x/", L"x:"})
    EXPECT_THROW(files::temporary_file(file(where), prefix), ruvo::exc::fileUnsafePath);
  EXPECT_THROW(files::temporary_file(path(L"no")), ruvo::exc::fileOsStream);
  EXPECT_THROW(files::temporary_folder(path(L"no")), ruvo::exc::fileUnCreateFolder);
}

}  // namespace
