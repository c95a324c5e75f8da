// SPDX-License-Identifier: BSL-1.0

// What a path asks the file system, and what it changes there.

#include <ruvo/exc.hpp>
#include <ruvo/files/whole.hpp>

#include <chrono>
#include <cstdlib>
#include <functional>

#include "files/scratch.hpp"

using namespace std::string_literals;
namespace files = ruvo::files;
using ruvo::file;

namespace {

using queries = scratch;

TEST_F(queries, nothing_has_no_properties) {
  put(path(L"fichero"), "");
  for (const file& none : {file(), path(L"nada"), path(L"a\0b"s), path(L"fichero\\a"), path(L"nada\\a"),
                           path(L"fichero:a"), path(std::wstring(300, L'x'))}) {
    EXPECT_FALSE(none.exists() || none.is_file() || none.is_directory() || none.is_executable() ||
                 none.is_hidden() || none.can_be_read() || none.can_be_write() || none.is_locked());
    const std::function<void()> asked[] = {
        [&] { none.size(); },          [&] { none.get_owner(); },   [&] { none.get_owner_group(); },
        [&] { none.last_modified(); }, [&] { none.last_access(); }, [&] { none.last_status_changed(); },
        [&] { none.time_stamp(); },    [&] { none.erase(); }};
    for (const auto& one : asked) EXPECT_THROW(one(), ruvo::exc::fileNotFound) << none.c_str();
  }
}

TEST_F(queries, kinds_and_rights) {
  put(path(L"a.EXE"), "MZ");
  put(path(L"a.txt"), "x");
  ASSERT_TRUE(path(L"b.exe").mkdir());
  for (const wchar_t* const name : {L"a.EXE", L"a.com", L"a.bat", L"a.Cmd"}) {
    put(path(name), "MZ");
    EXPECT_TRUE(path(name).is_executable()) << name;
  }
  EXPECT_FALSE(path(L"a.txt").is_executable() || path(L"b.exe").is_executable());
  for (const wchar_t* const name : {L"a.txt", L"b.exe"}) {
    EXPECT_TRUE(path(name).can_be_read() && path(name).can_be_write()) << name;
    EXPECT_FALSE(path(name).is_hidden() || path(name).is_locked()) << name;
    EXPECT_NO_THROW((path(name).get_owner(), path(name).get_owner_group())) << name;
  }
  EXPECT_THROW(path(L"b.exe").size(), ruvo::exc::fileExpectedFile);
}

#ifdef _WIN32
TEST_F(queries, hidden_files_stay_hidden) {
  put(path(L"a.txt"), "viejo");
  ASSERT_EQ(std::system("attrib +h scratch\\a.txt"), 0);
  EXPECT_TRUE(path(L"a.txt").is_hidden());
  files::write(L"nuevo", path(L"a.txt"));
  EXPECT_TRUE(path(L"a.txt").is_hidden());
  put(path(L"b.txt"), "copia");
  ASSERT_EQ(std::system("attrib +r scratch\\b.txt"), 0);
  files::copy_file(path(L"b.txt"), path(L"a.txt"));
  EXPECT_TRUE(path(L"a.txt").is_hidden() && !path(L"a.txt").can_be_write());
  ASSERT_EQ(std::system("attrib -r scratch\\a.txt"), 0);
  ASSERT_EQ(std::system("attrib -r scratch\\b.txt"), 0);
}
#endif

TEST_F(queries, sizes) {
  for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{70'000}}) {
    put(path(L"a"), std::string(size, 'x'));
    EXPECT_EQ(path(L"a").size(), size);
    EXPECT_EQ(path(L"a").length(), size);
  }
  constexpr unsigned long long huge = 5ull << 30;
  std::error_code error;
  if (std::filesystem::space(where, error).available < huge) GTEST_SKIP() << "no room for a sparse file";
  std::filesystem::resize_file(native(path(L"a")), huge, error);
  if (error) GTEST_SKIP() << error.message();
  EXPECT_EQ(path(L"a").size(), huge);
}

TEST_F(queries, times_are_those_of_the_system) {
  using namespace std::chrono;
  put(path(L"a"), "x");
  const long long now = duration_cast<seconds>(system_clock::now().time_since_epoch()).count();
  for (const ruvo::datetime& time :
       {path(L"a").last_modified(), path(L"a").last_access(), path(L"a").last_status_changed()}) {
    EXPECT_LE(time.get_lapso(), now + 1);
    EXPECT_GE(time.get_lapso(), now - 60);
  }
  const auto when = sys_days(year(2024) / 2 / 29) + hours(23) + minutes(59) + seconds(58) + milliseconds(900);
  std::error_code error;
  std::filesystem::last_write_time(native(path(L"a")),
                                   time_point_cast<file_clock::duration>(file_clock::from_sys(when)), error);
  ASSERT_FALSE(error) << error.message();
  EXPECT_EQ(path(L"a").last_modified(), ruvo::datetime(2024, 2, 29, 23, 59, 58, ruvo::times::GMT));
  EXPECT_EQ(path(L"a").time_stamp(), L"29-02-2024 23:59:58");
  EXPECT_GE(path(L"a").last_status_changed().get_lapso(), now - 60);
}

/// An entry that was a folder when it was noted.
struct once_a_folder : file {
  explicit once_a_folder(const file& of) : file(of) {}
  bool is_directory() const override { return true; }
};

TEST_F(queries, folders_are_made_and_erased) {
  EXPECT_TRUE(path(L"a").mkdir());
  EXPECT_TRUE(path(L"a").mkdir());
  EXPECT_TRUE(path(L"a\\b\\c\\d").mkdirs());
  EXPECT_TRUE(path(L"a\\b\\c\\d").is_directory());
  put(path(L"f"), "");
  ruvo::exception err;
  for (const file& wrong : {file(), path(L"f"), path(L"f\\a"), path(L"a\0b"s), path(L"a:b")}) {
    err.clear();
    EXPECT_FALSE(wrong.mkdirs(&err) || wrong.mkdir());
    EXPECT_EQ(err, ruvo::exc::fileUnCreateFolder(wrong)) << wrong.c_str();
  }
  EXPECT_FALSE(path(L"x\\y").mkdir(&err));
  EXPECT_FALSE(path(L"x").exists());
  EXPECT_THROW(path(L"a").erase(), ruvo::exc::fileUnDeleted);
  for (file at = path(L"a\\b\\c\\d"); at != file(where); --at) at.erase();
  once_a_folder(path(L"f")).erase();
  EXPECT_EQ(names(), std::set<std::string>());
}

// Names below one another, together far beyond 260 characters, absolute and relative.
TEST_F(queries, long_paths) {
  const std::wstring part(90, L'p');
  file folder(std::filesystem::absolute(where).wstring());
  for (int i = 0; i < 5; ++i) folder += part;
  file relative = path(part);
  for (int i = 1; i < 5; ++i) relative += part;
  ASSERT_TRUE(folder.mkdirs());
  EXPECT_TRUE(relative.is_directory());
  const file a(folder, L"a.txt"), b(relative, L"b.txt");
  EXPECT_EQ(files::write(L"texto", a), a);
  EXPECT_EQ(files::copy_file(a, relative += L".\\..\\" + part + L"\\b.txt"), relative);
  EXPECT_TRUE(b.is_file() && b.can_be_write() && !b.is_locked());
  EXPECT_EQ(b.size(), 5u);
  std::string bytes;
  ruvo::exception err;
  EXPECT_TRUE(files::read(bytes, b, err));
  EXPECT_EQ(bytes, "texto");
  EXPECT_EQ(files::autorename(a), file(folder, L"a_01.txt"));
  a.erase();
  b.erase();
  for (; folder.get_name() == part; --folder) folder.erase();
}

// Each name is a file of its own, or none; "a" must not answer for any of them.
TEST_F(queries, names_are_taken_as_they_are) {
  put(path(L"a"), "a");
  for (const wchar_t* const name : {L"a.", L"a ", L"a...", L"nul", L"com1.txt", L"\xD800", L"x\xDC00y"}) {
    const file odd = path(name);
    EXPECT_FALSE(odd.exists()) << name;
    ruvo::exception err;
    if (!files::write(L"raro", odd, err)) {
      EXPECT_EQ(err, ruvo::exc::fileOsStream(odd)) << name;
      continue;
    }
    std::string bytes;
    EXPECT_TRUE(files::read(bytes, odd, err)) << name;
    EXPECT_EQ(bytes, "raro");
    EXPECT_EQ(names().size(), 2u) << name;
    odd.erase();
  }
  EXPECT_EQ(get(path(L"a")), "a");
  EXPECT_EQ(names(), std::set<std::string>{"a"});
}

}  // namespace
