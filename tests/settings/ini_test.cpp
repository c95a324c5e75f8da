// SPDX-License-Identifier: BSL-1.0

// Settings in texts and files.

#include <ruvo/ini.hpp>
#include <ruvo/ruvo.hpp>

#include <filesystem>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "files/scratch.hpp"
#include "net/failures.hpp"

using ruvo::bundle;
using ruvo::exception;
using ruvo::ini_dialect;
using ruvo::ini_file;

namespace {

ini_dialect joining(ini_dialect made) {
  made.continuation = ruvo::ini_continuation::backslash;
  return made;
}

ini_dialect listing() {
  ini_dialect made;
  made.duplicates = ruvo::ini_duplicates::list;
  return made;
}

/// All that a text says: "[section]key=value;..."
std::wstring shown(const ini_file& file) {
  std::vector<std::wstring> sections = file.sections();
  sections.insert(sections.begin(), L"");
  std::wstring out;
  for (const std::wstring& section : sections) {
    if (!section.empty()) out += L"[" + section + L"]";
    for (const std::wstring& key : file.keys(section))
      for (const std::wstring& value : file.get_all(section, key)) out += key + L"=" + value + L"|";
  }
  return out;
}

/// A document of the text, which may stand in any dialect that reads it.
ini_file parsed(const ini_dialect& dialect, const std::wstring& text) {
  ini_file out(dialect);
  exception failure;
  EXPECT_TRUE(out.parse(std::wstring_view(text), failure)) << text;
  EXPECT_EQ(out.text(), text);
  return out;
}

std::wstring set(const ini_dialect& dialect, const wchar_t* text, const wchar_t* key, const wchar_t* value) {
  ini_file made = parsed(dialect, text);
  exception failure;
  const bool is_done = made.set(dialect.has_sections ? L"s" : L"", key, value, failure);
  return is_done ? made.text() : shown_failure(failure);
}

class ini_on_disk : public scratch {};

}  // namespace

TEST(ini_file, is_read_in_its_dialect) {
  ini_dialect strict;
  strict.duplicates = ruvo::ini_duplicates::error;
  const struct {
    ini_dialect dialect;
    const wchar_t *text, *expected;
  } rows[] = {
      {{}, L"a = 1 \r\n;c\r\n[ s ] x\rA=\"2 \"\nb=x;y #z\njunk\na=3", L"a=1|[s]A=3|b=x;y #z|"},
      {{}, L"a=1\n[]\nb=2\n[s]\n[S]\nc=\"\n", L"a=1|b=2|[s]c=\"|"},
      {ini_dialect::windows(), L"[s]\na=1\nA=2\n#b='x'\n[t\nd=\"'e'\"\n[S]\nc=3", L"[s]a=1|#b=x|d='e'|"},
      {ini_dialect::python(), L"[s]\na: 1\n  2 \n # no\n\n  b=3\nc =\n\td\n[S]\nA=\n",
       L"[s]a=1\n2\n\nb=3|c=\nd|[S]A=|"},
      {ini_dialect::python(), L"[s]\n  a=1\n  b=2\n c=3\n  [t]\n", L"[s]a=1|b=2|c=3\n[t]|"},
      {ini_dialect::dotenv(),
       L"export a=1 #c\nb=\"x\\n#\\\"\" # c\nc='\\n'\nd=a#b\ne= #\nexport=2\nA=\"p\r\nq\"\nf=\"",
       L"a=1|b=x\n#\"|c=\\n|d=a#b|e=|export=2|A=p\nq|f=\"|"},
      {ini_dialect::properties(), L"a b= c \\\n  d \n!x\nk\\ \\u00F1\\=:\\tv\\\\\ns\n  t\\\n  u:=1\nz=\\",
       L"a=b= c d |k ñ==\tv\\|s=|tu==1|z=|"},
      {joining({}), L"a=x \\\n  y\\\\\nb \\\r\n c=\"p\\\nq\"\nd=C:\\x\ne=\\",
       L"a=x y\\\\|b c=pq|d=C:\\x|e=\\|"},
      {joining(ini_dialect::dotenv()), L"a=\"p\\\nq\\\\\"\nb=1", L"a=pq\\|b=1|"},
      {listing(), L"a=1\nb=2\nA=3\n[s]\nx=1\n[t]\n[S]\nx=2", L"a=1|a=3|b=2|[s]x=1|x=2|[t]"},
      {strict, L"a=1\n[s]\na=2\n", L"a=1|[s]a=2|"},
  };
  for (const auto& [dialect, text, expected] : rows)
    EXPECT_EQ(shown(parsed(dialect, text)), expected) << text;
  exception failure;
  for (const wchar_t* const text : {L"[s]\n[t]\n [S]", L"a=1\nb=1\n A=2"}) {
    EXPECT_FALSE(ini_file(strict).parse(std::wstring_view(text), failure));
    EXPECT_EQ(shown_failure(failure), L"BadFormat 10") << text;
  }
}

TEST(ini_file, looks_up_names_without_case_where_the_dialect_says_so) {
  const ini_file file = parsed({}, L"[Árbol]\nÑu=1\n");
  EXPECT_EQ(file.get(L"áRBOL", L"ñU"), L"1");
  EXPECT_TRUE(file.has(L"árbol") && file.has(L"") && !file.has(L"", L"ñu") && !file.has(L"x"));
  EXPECT_EQ(file.get(L"x", L"ñu", L"?"), L"?");
  EXPECT_EQ(parsed(ini_dialect::python(), L"[a]\nK=1").get(L"A", L"k", L"?"), L"?");
  EXPECT_EQ(parsed(ini_dialect::properties(), L"K=1").get(L"", L"k", L"?"), L"?");
}

TEST(ini_file, changes_nothing_but_the_value) {
  const ini_dialect windows = ini_dialect::windows(), python = ini_dialect::python(),
                    dotenv = ini_dialect::dotenv(), properties = ini_dialect::properties();
  const struct {
    ini_dialect dialect;
    const wchar_t *text, *key, *value, *expected;
  } rows[] = {
      {{}, L"[s]\r\n ;c\r\n  A =\t1 \r\n[t]", L"a", L"x y", L"[s]\r\n ;c\r\n  A =\tx y \r\n[t]"},
      {{}, L"[s]\na=\"1\"\n", L"a", L"2", L"[s]\na=\"2\"\n"},
      {{}, L"[s]\na=1\nb=2\na=3", L"a", L"4", L"[s]\na=1\nb=2\na=4"},
      {windows, L"[s]\na=1\na=3\n[s]\na=5", L"a", L"4", L"[s]\na=4\na=3\n[s]\na=5"},
      {{}, L"[s]\na=1", L"a", L" 2", L"[s]\na=\" 2\""},
      {{}, L"[s]\na=1", L"a", L"\"2\"", L"[s]\na=\"\"2\"\""},
      {{}, L"[s]\na=1", L"a", L"1\n[t]", L"BadArgument a"},
      {{}, L"[s]\na=1", L"a", L"1\x01", L"BadArgument a"},
      {{}, L"[s]\na=1", L"b=", L"1", L"BadArgument b="},
      {{}, L"[s]\na=1", L"[b", L"1", L"BadArgument [b"},
      {{}, L"[s]\na=1", L";b", L"1", L"BadArgument ;b"},
      {{}, L"[s]\na=1", L"b\r", L"1", L"BadArgument b\r"},
      {{}, L"[s]\na=1", L"", L"1", L"BadArgument "},
      {windows, L"[s]\n[a=1", L"[a", L"x]", L"BadArgument [a"},
      {listing(), L"[s]\na=1\nb=2\na=3\n", L"a", L"4", L"[s]\na=4\nb=2\n"},
      // new keys and sections
      {{},
       L"[s]\r\n  a  = 1\r\n\r\n;c\r\n[t]\r\nb=2",
       L"n",
       L"3",
       L"[s]\r\n  a  = 1\r\n  n = 3\r\n\r\n;c\r\n[t]\r\nb=2"},
      {{}, L"[r]\na: = 1", L"n", L"3", L"[r]\na: = 1\n\n[s]\nn = 3\n"},
      {{}, L"", L"n", L"3", L"[s]\r\nn=3\r\n"},
      {{}, L"[s]", L"n", L"3", L"[s]\r\nn=3\r\n"},
      // python
      {python, L"[s]\na=1\n  2\n # c\n  3\nb=2\n", L"a", L"4", L"[s]\na=4\n # c\nb=2\n"},
      {python, L"[s]\na=1\nb=2", L"a", L"3\n\n4", L"[s]\na=3\n\n\t4\nb=2"},
      {python, L"[s]\na=1", L"a", L"3\n#4", L"BadArgument a"},
      {python, L"[s]\na=1", L"a", L" 3", L"BadArgument a"},
      {python, L"[s]\n  [t]\n", L"a", L"3", L"BadArgument a"},
      // dotenv
      {dotenv, L"a=1 # c\nexport b='2' # d\n", L"b", L"x'\n\"", L"a=1 # c\nexport b=\"x'\\n\\\"\" # d\n"},
      {dotenv, L"a=#c", L"a", L"1 #2", L"a=\"1 #2\""},
      {dotenv, L"a= #c", L"a", L"1", L"a= 1 #c"},
      {dotenv, L"a=\"p\nq\"\nb=1", L"a", L"r", L"a=\"r\"\nb=1"},
      {dotenv, L"a=\"p\nb=1", L"b", L"x\"", L"BadArgument b"},
      // properties
      {properties, L"a : 1\nb", L"b", L" ñ\n€\\", L"a : 1\nb=\\ \\u00F1\\n\\u20AC\\\\"},
      {joining(windows), L"[s]\na=1\\", L"b", L"2", L"BadArgument a"},
      {joining(windows), L"[s]\na=1\\", L"a", L"2", L"[s]\na=2"},
      {properties, L"a=1\\", L"k =#:!", L"v", L"a=1\\\n\nk\\ \\=\\#\\:\\!=v\n"},
  };
  for (const auto& [dialect, text, key, value, expected] : rows)
    EXPECT_EQ(set(dialect, text, key, value), expected) << text << L" " << value;
}

TEST(ini_file, takes_values_of_any_kind) {
  ini_file file(listing());
  exception failure;
  EXPECT_TRUE(file.set(L"", L"n", 7, failure) && file.set(L"", L"empty", ruvo::xvar(), failure));
  EXPECT_TRUE(file.set(L"", L"l", ruvo::list{1, L"dos", 3}, failure) && file.set(L"", L"m", L"x", failure));
  EXPECT_TRUE(file.set(L"", L"l", ruvo::list{L"a", L"b", L"c", L"d"}, failure));
  EXPECT_EQ(file.text(), L"n=7\r\nempty=\r\nl=a\r\nl=b\r\nl=c\r\nl=d\r\nm=x\r\n");
  EXPECT_TRUE(file.set(L"", L"l", ruvo::list{L"a"}, failure) && file.set(L"", L"n", ruvo::list(), failure));
  EXPECT_EQ(file.text(), L"empty=\r\nl=a\r\nm=x\r\n");
  for (const ruvo::xvar& wrong : {ruvo::xvar(bundle()), ruvo::xvar(ruvo::list{1, ruvo::list()})})
    EXPECT_FALSE(file.set(L"", L"n", wrong, failure));
  EXPECT_FALSE(ini_file().set(L"", L"n", ruvo::list{1}, failure));
  EXPECT_EQ(shown_failure(failure), L"BadArgument n");
}

TEST(ini_file, erases_renames_and_comments) {
  ini_file file = parsed({}, L"; of a\n[a]\nx=1\ny=2\nX=3\n\n;of b\n;  more\n[b]\nz=1\n[A]\nw=4\n;end");
  exception failure;
  EXPECT_EQ(file.comment(L"b") + file.comment(L"a") + file.comment(L"a", L"y"),
            L"of b\n more"
            L"of a");
  EXPECT_TRUE(file.erase(L"a", L"x", failure) && file.erase(L"a", L"none", failure));
  EXPECT_TRUE(file.rename(L"a", L"y", L"Y2", failure) && file.rename(L"A", L"c", failure));
  EXPECT_TRUE(file.set_comment(L"b", L"", L"uno\r\n\r\ndos", failure));
  EXPECT_TRUE(file.set_comment(L"b", L"z", L"[no]", failure));
  EXPECT_EQ(file.text(), L"; of a\n[c]\nY2=2\n\n; uno\n;\n; dos\n[b]\n; [no]\nz=1\n[c]\nw=4\n;end");
  EXPECT_TRUE(file.set_comment(L"b", L"", L"", failure) && file.erase(L"c", failure));
  EXPECT_EQ(file.text(), L"; of a\n[b]\n; [no]\nz=1\n");
  const auto refused = [&](bool done) { return done ? L"done" : shown_failure(failure); };
  file = parsed({}, L"[a]\nx=1\ny=2\n[b]");
  EXPECT_EQ(refused(file.rename(L"a", L"x", L"Y", failure)), L"BadArgument Y");
  EXPECT_EQ(refused(file.rename(L"a", L"x", L"=", failure)), L"BadArgument =");
  EXPECT_EQ(refused(file.rename(L"a", L"n", L"m", failure)), L"BadArgument n");
  EXPECT_EQ(refused(file.rename(L"a", L"b", failure)), L"BadArgument b");
  EXPECT_EQ(refused(file.rename(L"a", L"]", failure)), L"BadArgument ]");
  EXPECT_EQ(refused(file.rename(L"", L"x", failure)), L"BadArgument ");
  EXPECT_EQ(refused(file.set_comment(L"a", L"x", L"a\fb", failure)), L"BadArgument x");
  EXPECT_EQ(refused(file.set_comment(L"", L"", L"a", failure)), L"BadArgument ");
  EXPECT_EQ(file.text(), L"[a]\nx=1\ny=2\n[b]");
}

TEST(ini_file, keeps_all_bytes) {
  using namespace std::string_literals;
  exception failure;
  const struct {
    std::string bytes;
    ruvo::ini_encoding encoding;
    const wchar_t* value;  // of a
    std::string changed;   // with a = "€"
  } rows[] = {
      {"a=\xC3\xB1\r\rb\n\0"s, ruvo::ini_encoding::utf_8, L"ñ", "a=\xE2\x82\xAC\r\rb\n\0"s},
      {"\xEF\xBB\xBF[]\na=1\xFF", ruvo::ini_encoding::utf_8, L"1\xDCFF", "\xEF\xBB\xBF[]\na=\xE2\x82\xAC"},
      {"\xEF\xBB\xBF\xEF\xBB\xBF\na=1\xF0\x9F\x98\x80\x80", ruvo::ini_encoding::utf_8, L"1\xD83D\xDE00\xDC80",
       "\xEF\xBB\xBF\xEF\xBB\xBF\na=\xE2\x82\xAC"},
      {"a=\xF1\n;\xF1", ruvo::ini_encoding::ansi, L"ñ", "a=\x80\n;\xF1"},
      {"a=1\n;\x81\x8D", ruvo::ini_encoding::ansi, L"1", "a=\x80\n;\x81\x8D"},
      {"\xFF\xFE"
       "a\0=\0\xF1\0\n\0\0\xD8\r"s,
       ruvo::ini_encoding::utf_16_le, L"ñ",
       "\xFF\xFE"
       "a\0=\0\xAC\x20\n\0\0\xD8\r"s},
      {"\xFE\xFF\0a\0=\0\xF1"s, ruvo::ini_encoding::utf_16_be, L"ñ", "\xFE\xFF\0a\0=\x20\xAC"s},
      {"", ruvo::ini_encoding::utf_8, L"", "a=\xE2\x82\xAC\r\n"},
  };
  for (const auto& [bytes, encoding, value, changed] : rows) {
    ini_file file;
    std::string saved;
    ASSERT_TRUE(file.parse(std::string_view(bytes), failure) && file.bytes(saved, failure));
    EXPECT_EQ(saved, bytes);
    EXPECT_EQ(file.encoding(), encoding);
    EXPECT_EQ(file.get(L"", L"A"), value);
    EXPECT_TRUE(file.set(L"", L"a", L"€", failure) && file.bytes(saved, failure));
    EXPECT_EQ(saved, changed);
    EXPECT_EQ(file.set(L"", L"a", L"\x4E2D", failure), encoding != ruvo::ini_encoding::ansi);
    EXPECT_FALSE(file.set(L"", L"a", L"\xD83D", failure));
    EXPECT_EQ(failure.get_detail().substr(0, 6), L"U+D83D");
  }
}

TEST(ini_file, does_not_save_what_would_be_read_in_another_encoding) {
  ini_file file;
  exception failure;
  std::string bytes;
  ASSERT_TRUE(file.parse(std::wstring_view(L"a=\xD800x"), failure));
  EXPECT_FALSE(file.bytes(bytes, failure));
  ASSERT_TRUE(file.parse(std::string_view("a=\xF1\nb=\xC3\xB1\n"), failure));
  EXPECT_EQ(file.get(L"", L"b"), L"Ã±");
  EXPECT_TRUE(file.set(L"", L"a", L"n", failure));
  EXPECT_FALSE(file.bytes(bytes, failure));
  EXPECT_TRUE(file.set_encoding(ruvo::ini_encoding::utf_16_le, false, failure) && file.bytes(bytes, failure));
  EXPECT_TRUE(bytes.starts_with("\xFF\xFE"
                                "a") &&
              file.has_mark());
  EXPECT_TRUE(file.set(L"", L"a", L"\x4E2D", failure));
  EXPECT_FALSE(file.set_encoding(ruvo::ini_encoding::ansi, false, failure));
  EXPECT_EQ(shown_failure(failure), L"BadArgument U+4E2D");
}

TEST(ini_file, holds_many_names_and_changes) {
  constexpr int count = 3000;
  ini_file file;
  exception failure;
  for (int n = 0; n < count; ++n) {
    const std::wstring key = L"k" + std::to_wstring(n % 1000), section = std::to_wstring(n % 7);
    ASSERT_TRUE(file.set(section, key, std::wstring(50, L'x') + std::to_wstring(n), failure));
    if (n % 5 == 0) file.erase(section, key, failure);
  }
  EXPECT_EQ(shown(parsed({}, file.text())), shown(file));
  EXPECT_EQ(file.get(L"1", L"K1").substr(50), L"1");
  EXPECT_FALSE(file.has(L"0", L"k0"));
}

TEST(ini_file, is_read_by_several_threads) {
  constexpr int threads = 4, sections = 50;
  std::wstring text;
  for (int n = 0; n < sections; ++n) text += L"[" + std::to_wstring(n) + L"]\r\na=1\r\nb=2\r\nA=3\r\n";
  const ini_file file = parsed(listing(), text);
  std::vector<std::wstring> seen(threads);
  std::vector<std::thread> all;
  for (std::wstring& each : seen) all.emplace_back([&] { each = shown(ini_file(file)) + shown(file); });
  for (std::thread& thread : all) thread.join();
  const std::wstring once = shown(file);
  EXPECT_TRUE(once.starts_with(L"[0]a=1|a=3|b=2|[1]"));
  for (const std::wstring& each : seen) EXPECT_EQ(each, once + once);
}

TEST_F(ini_on_disk, saves_and_notices_others) {
  const ruvo::file place = path(L"tienda.ini");
  exception failure;
  ini_file first, second;
  EXPECT_FALSE(first.read(place, failure) || first.save(failure));
  std::error_code refused;  // where the system makes no links
  std::filesystem::create_symlink("loop", native(path(L"loop")), refused);
  if (!refused) {
    const ruvo::file beyond = path(L"loop\\x.ini");  // which nobody can look for
    EXPECT_FALSE(first.open(beyond, failure));
    EXPECT_EQ(failure, ruvo::exc::fileOsStream(beyond));
    std::filesystem::remove(native(path(L"loop")));
  }
  EXPECT_TRUE(first.open(place, failure) && second.open(place, failure));
  EXPECT_TRUE(first.set(L"s", L"a", 1, failure) && first.save_if_unchanged(failure));
  EXPECT_EQ(get(place), "[s]\r\na=1\r\n");
  EXPECT_TRUE(second.set(L"s", L"a", 2, failure));
  EXPECT_FALSE(second.save_if_unchanged(failure));
  EXPECT_EQ(failure, ruvo::exc::fileChanged(place));
  EXPECT_TRUE(second.read(place, failure) && second.set(L"s", L"a", 2, failure));
  EXPECT_TRUE(second.save_if_unchanged(failure));
  EXPECT_FALSE(first.save_if_unchanged(failure));  // as large as what it saved
  put(place, "[s]\r\na=2\r\n");
  EXPECT_TRUE(second.set(L"s", L"a", 3, failure) && second.save_if_unchanged(failure));
  place.erase();
  EXPECT_FALSE(second.save_if_unchanged(failure));
  EXPECT_TRUE(second.save(failure) && second.save_as(path(L"copia.ini"), failure));
  EXPECT_EQ(second.path(), path(L"copia.ini"));
  EXPECT_EQ(names(), (std::set<std::string>{"tienda.ini", "copia.ini"}));
}

TEST_F(ini_on_disk, loses_no_change_among_savers_at_once) {
  constexpr int threads = 4, each = 8;
  const ruvo::file place = path(L"cuenta.ini");
  const auto count = [&] {
    for (int n = 0; n < each;) {
      ini_file file;
      exception failure;
      const bool is_read = file.open(place, failure);
      const int old = std::stoi(file.get(L"", L"n", L"0"));
      if (is_read && file.set(L"", L"n", old + 1, failure) && file.save_if_unchanged(failure)) ++n;
    }
  };
  std::vector<std::thread> all;
  for (int n = 0; n < threads; ++n) all.emplace_back(count);
  for (std::thread& thread : all) thread.join();
  EXPECT_EQ(get(place), "n=" + std::to_string(threads * each) + "\r\n");
  EXPECT_EQ(names().size(), 1u);
}

TEST(ini_serializer, bundles_both_ways) {
  ruvo::serializer::ini ini(listing());
  bundle all;
  exception failure;
  std::wstring text;
  all[L"net"] = bundle{{L"host", L"viejo"}, {L"port", L"1"}};
  EXPECT_FALSE(ini.deserialize(all, L"a=1\n[Net]\nHost=x\nip=1\nIP=2\n[empty]\n", &failure));
  EXPECT_EQ(all.to_string(),
            L"{\"a\":\"1\", \"empty\":{}, \"net\":{\"host\":\"x\", \"ip\":[\"1\",\"2\"], \"port\":\"1\"}}");
  EXPECT_FALSE(ini.serialize(text, all, &failure));
  EXPECT_EQ(text, L"a=1\r\n\r\n[net]\r\nport=1\r\nHost=x\r\nip=1\r\nip=2\r\n\r\n[empty]\r\n");
  const std::wstring before = all.to_string();
  EXPECT_TRUE(ini.deserialize(all, L"a=2\njunk", &failure));
  EXPECT_EQ(shown_failure(failure), L"BadFormat 5");
  EXPECT_TRUE(ini.deserialize(all, L"net=2\n[net]", &failure));
  EXPECT_EQ(shown_failure(failure), L"BadArgument net");
  EXPECT_EQ(all.to_string(), before);
  EXPECT_TRUE(ini.serialize(text, {{L"s", bundle{{L"t", bundle()}}}}, &failure));
  EXPECT_EQ(shown_failure(failure), L"BadArgument t");

  ruvo::serializer::key_value variables;
  EXPECT_FALSE(variables.serialize(text, {{L"A", L"x y"}, {L"B", L"#\n"}, {L"C", 1.5}}, &failure));
  EXPECT_EQ(text, L"A=x y\nB=\"#\\n\"\nC=1.5\n");
  EXPECT_TRUE(variables.serialize(text, {{L"s", bundle()}}, &failure));
}
