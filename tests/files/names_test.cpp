// SPDX-License-Identifier: BSL-1.0

// Names for new files, and MIME types.

#include <ruvo/exc.hpp>
#include <ruvo/files/safe_names.hpp>
#include <ruvo/files/whole.hpp>

#include <cstdlib>
#include <string>

#include "files/scratch.hpp"

namespace files = ruvo::files;
using ruvo::file;

namespace {

using new_names = scratch;

TEST_F(new_names, are_derived_from_taken_ones) {
  EXPECT_EQ(files::append(path(L"a.txt"), L".bak"), path(L"a.txt.bak"));
  EXPECT_EQ(files::append(file(L"C:\\"), L"x"), file(L"C:\\x"));

  const struct {
    const wchar_t *taken, *prefix, *suffix, *expected;
  } rows[] = {
      {L"a.txt", L"", L"", L"a_01.txt"},
      {L"b.tar.gz", L"", L"", L"b.tar_01.gz"},
      {L"sin", L"", L"", L"sin_01"},
      {L".oculto", L"", L"", L"_01.oculto"},
      {L"a.txt", L"x-", L"-y", L"x-a-y.txt"},
      {L"libre.txt", L"", L"", L"libre.txt"},
      {L"c.d\\leeme", L"", L"", L"c.d\\leeme_01"},
      {L"c.d", L"", L"", L"c_01.d"},
  };
  ASSERT_TRUE(path(L"c.d").mkdir());
  for (const auto& r : rows) {
    const file given = path(r.taken);
    if (given.get_name() != L"libre.txt" && !given.exists()) put(given, "");
    EXPECT_EQ(files::autorename(given, r.prefix, r.suffix), path(r.expected)) << r.taken;
  }
}

TEST_F(new_names, count_on) {
  for (int i = 0; i < 100; ++i) {
    put(files::autorename(path(L"a.txt")), "");
    put(files::get_temporal_file(file(where), L"tmp", L"-b", L"dat"), "");
  }
  EXPECT_TRUE(path(L"a_09.txt").exists() && path(L"a_99.txt").exists());
  EXPECT_FALSE(path(L"a_00.txt").exists() || path(L"a_100.txt").exists());
  EXPECT_EQ(files::get_temporal_file(file(where), L"tmp", L"-b", L"dat"), path(L"tmp-b_101.dat"));
  EXPECT_EQ(files::get_temporal_file(file(where), L"", L"", L""), path(L"_01"));
  EXPECT_EQ(files::get_temporal_file(file(where), L"", L"n", L".tmp"), path(L"n_01.tmp"));
  const file temporary = files::get_temporal_file(L"kesta", L"", L"tmp");
  EXPECT_TRUE(temporary.get_parent().is_directory()) << temporary.c_str();
  EXPECT_FALSE(temporary.exists());
}

#ifdef _WIN32
TEST_F(new_names, for_temporary_files_are_not_elsewhere) {
  const std::string old = std::getenv("TMP") ? std::getenv("TMP") : "";
  _putenv_s("TMP", ("C:\\" + std::string(300, 'x')).c_str());
  try {
    EXPECT_FALSE(files::get_temporal_file(L"kesta", L"", L"tmp").get_parent().empty());
  } catch (const ruvo::exc::fileNotFound&) {
    // Where the system takes no such long name.
  }
  _putenv_s("TMP", old.c_str());
}
#endif

TEST(safe_names, of_others_stay_below_their_folder) {
  using files::name_fault;
  const struct {
    std::wstring path;
    name_fault expected;
    const wchar_t* below = L"";
  } rows[] = {
      {L"a", name_fault::none, L"a"},
      {L"a/b\\c.txt", name_fault::none, L"a\\b\\c.txt"},
      {L"./a//b/.\\c/", name_fault::none, L"a\\b\\c"},
      {L" ...a", name_fault::none, L" ...a"},
      {L"console/com/lpt10/nula.txt", name_fault::none, L"console\\com\\lpt10\\nula.txt"},
      {L"añ\xD83D\xDE00", name_fault::none, L"añ\xD83D\xDE00"},
      {std::wstring(255, L'x'), name_fault::none, nullptr},
      {L"", name_fault::empty},
      {L"./.", name_fault::empty},
      {L"..", name_fault::parent},
      {L"a/../b", name_fault::parent},
      {L"a\\..", name_fault::parent},
      {L"/a", name_fault::absolute},
      {L"\\\\server\\share\\a", name_fault::absolute},
      {L"\\\\?\\C:\\a", name_fault::absolute},
      {L"C:\\a", name_fault::drive},
      {L"c:a", name_fault::drive},
      {L"a:b", name_fault::drive},
      {L"ab:c", name_fault::stream},
      {L"x/a.txt::$DATA", name_fault::stream},
      {L"CON", name_fault::device},
      {L"x/nul.tar.gz", name_fault::device},
      {L"Aux .txt", name_fault::device},
      {L"com\u00B9", name_fault::device},
      {L"LPT0.x", name_fault::device},
      {L"conout$", name_fault::device},
      {L"a?", name_fault::character},
      {std::wstring(L"a\0b", 3), name_fault::character},
      {L"a\x85", name_fault::character},
      {L"a\x7F", name_fault::character},
      {L"a\xDE00\xD83D", name_fault::character},
      {L"a ", name_fault::ending},
      {L"a./b", name_fault::ending},
      {L"...", name_fault::ending},
      {std::wstring(256, L'x'), name_fault::too_long},
  };
  for (const auto& r : rows) {
    EXPECT_EQ(files::fault_of_path(r.path), r.expected) << r.path.c_str();
    file joined(L"before");
    ruvo::exception err;
    ASSERT_EQ(files::safe_join(joined, file(L"C:\\datos"), r.path, err), r.expected == name_fault::none);
    if (err.OK() && r.below) {
      EXPECT_EQ(joined, file(std::wstring(L"C:\\datos\\") + r.below));
    }
    if (err.OK()) continue;
    EXPECT_EQ(joined, file(L"before"));
    EXPECT_EQ(err.get_detail(), r.path);
    EXPECT_TRUE(err.get_mensaje().ends_with(files::describe(r.expected))) << err.what();
    EXPECT_THROW(static_cast<void>(files::safe_join(file(), r.path)), ruvo::exc::fileUnsafePath);
  }
  EXPECT_EQ(files::fault_of_name(L"a/b"), name_fault::character);
  EXPECT_EQ(files::fault_of_name(L"."), name_fault::parent);
}

TEST(mime, types_follow_the_extension) {
  const wchar_t* const rows[][2] = {
      {L"INFORME.PPTX", L"application/vnd.openxmlformats-officedocument.presentationml.presentation"},
      {L"sin_extension", L"application/octet-stream"},
      {L"", L"application/octet-stream"},
      {L".", L"application/octet-stream"},
      {L"a.no-such-thing", L"application/octet-stream"},
      {L"C:\\web.html\\leeme", L"application/octet-stream"},
      {L"a.manifest", L"application/x-ms-manifest"},
      {L"a.mhtml", L"message/rfc822"},
      {L"a.svgz", L"image/svg+xml"},
      {L"a.m2ts", L"video/vnd.dlna.mpeg-tts"},
      {L"a.movie", L"video/x-sgi-movie"},
      {L"a.osdx", L"application/opensearchdescription+xml"},
      {L"a.123", L"application/vnd.lotus-1-2-3"},
      {L"a.zz", L"application/zlib"},
      {L"a.tar.gz", L"application/gzip"},
      {L".html", L"text/html"},
      {L"a.Dvr-Ms", L"video/x-ms-wtv"},
  };
  for (const auto& [name, type] : rows) {
    EXPECT_EQ(files::get_mimetype(name), type) << name;
    EXPECT_EQ(file(name).get_mimetype(), type) << name;
  }
}

}  // namespace
