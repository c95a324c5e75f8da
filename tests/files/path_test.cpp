// SPDX-License-Identifier: BSL-1.0

// The path value.

#include <ruvo/file.hpp>

#include <string>

#include <gtest/gtest.h>

using ruvo::file;

namespace {

std::wstring text(const file& path) { return path; }

TEST(path, is_kept_in_one_form) {
  const wchar_t* const rows[][2] = {
      {L"", L""},
      {L"a/b\\c", L"a\\b\\c"},
      {L"C:/datos/", L"C:\\datos"},
      {L"C:/datos/./", L"C:\\datos"},
      {L"C:/datos/.\\.\\", L"C:\\datos"},
      {L"C:\\", L"C:\\"},
      {L"C:\\.", L"C:\\"},
      {L"C:\\.\\", L"C:\\"},
      {L"C:", L"C:"},
      {L"c:x", L"c:x"},
      {L"\\", L"\\"},
      {L"/", L"\\"},
      {L"\\..\\..\\a", L"\\a"},
      {L"C:\\..\\a\\..\\b", L"C:\\a\\..\\b"},
      {L"C:\\..", L"C:\\"},
      {L"C:..\\a", L"C:..\\a"},
      {L"..\\a", L"..\\a"},
      {L"..", L".."},
      {L".\\a", L"a"},
      {L".", L"."},
      {L"//", L"\\"},
      {L"///a/b", L"\\a\\b"},
      {L"//server//", L"\\\\server"},
      {L"./", L"."},
      {L".//", L"."},
      {L".//a", L"a"},
      {L"C:.//a", L"C:a"},
      {L"a.", L"a."},
      {L"//server/share/", L"\\\\server\\share"},
      {L"//server/share/../x/", L"\\\\server\\share\\x"},
      {L"\\\\?\\C:\\a\\", L"\\\\?\\C:\\a"},
      {L"\\\\?\\C:\\", L"\\\\?\\C:\\"},
  };
  for (const auto& [given, kept] : rows) {
    EXPECT_EQ(text(file(given)), kept) << given;
    EXPECT_EQ(text(file(kept)), kept) << kept;
  }
  EXPECT_EQ(text(file("C:/a\xC3\xB1o")), L"C:\\año");
  for (const file& none : {file(nullptr), file(static_cast<const char*>(nullptr))}) EXPECT_TRUE(none.empty());
}

TEST(path, is_taken_apart) {
  const struct {
    const wchar_t *path, *parent, *root, *name, *simple_name, *extension;
  } rows[] = {
      {L"C:\\datos\\carta.txt", L"C:\\datos", L"C:\\", L"carta.txt", L"carta", L"txt"},
      {L"C:\\carta.tar.gz", L"C:\\", L"C:\\", L"carta.tar.gz", L"carta.tar", L"gz"},
      {L"Q:\\datos.v1\\leeme", L"Q:\\datos.v1", L"Q:\\", L"leeme", L"leeme", L"v1\\leeme"},
      {L"leeme", L"", L"", L"leeme", L"leeme", L"leeme"},
      {L"a\\b", L"a", L"", L"b", L"b", L"a\\b"},
      {L"\\a", L"\\", L"\\", L"a", L"a", L"\\a"},
      {L"Q:x.y", L"Q:", L"Q:", L"x.y", L"x", L"y"},
      {L"\\\\server\\share\\a.b", L"\\\\server\\share", L"\\\\server\\share", L"a.b", L"a", L"b"},
      {L"\\\\?\\Q:\\a.b", L"\\\\?\\Q:\\", L"\\\\?\\Q:\\", L"a.b", L"a", L"b"},
      {L"\\\\?\\UNC\\s\\t\\a.b", L"\\\\?\\UNC\\s\\t", L"\\\\?\\UNC\\s\\t", L"a.b", L"a", L"b"},
  };
  for (const auto& r : rows) {
    const file path(r.path);
    EXPECT_EQ(text(path.get_parent()), r.parent) << r.path;
    EXPECT_EQ(text(path.get_root()), r.root) << r.path;
    EXPECT_EQ(path.get_name(), r.name) << r.path;
    EXPECT_EQ(path.get_simple_name(), r.simple_name) << r.path;
    EXPECT_EQ(path.get_extension(), r.extension) << r.path;
    EXPECT_FALSE(path.is_root()) << r.path;
    EXPECT_EQ(file(path.get_parent(), path.get_name()), path) << r.path;
  }
}

TEST(path, parents_keep_the_form) {
  for (const wchar_t* const path : {L"Q:/a//b", L"Q:/a/.\\b", L"Q:/a/././/b"})
    EXPECT_EQ(text(file(path).get_parent()), L"Q:\\a") << path;
  EXPECT_EQ(text(file(L"a//b").get_parent()), L"a");
  EXPECT_EQ(text(file(L"..//b").get_parent()), L"..");
}

TEST(path, roots) {
  for (const wchar_t* const root : {L"C:\\", L"C:", L"\\", L"\\\\server\\share", L"\\\\?\\C:\\"}) {
    EXPECT_TRUE(file(root).is_root()) << root;
    EXPECT_EQ(text(file(root).get_parent()), root);
    EXPECT_EQ(file(root).get_name(), L"") << root;
  }
  for (const wchar_t* const path : {L"", L"a", L"C:\\a", L".."}) EXPECT_FALSE(file(path).is_root()) << path;
}

TEST(path, is_put_together) {
  file path(L"C:\\");
  path += "datos";
  path += std::wstring(L"/a/b.txt");
  EXPECT_EQ(text(path), L"C:\\datos\\a\\b.txt");
  path += L"";
  EXPECT_EQ(path.unix_path(), L"C:/datos/a/b.txt");
  EXPECT_EQ(text(path.change_extension(L"md")), L"C:\\datos\\a\\b.md");
  EXPECT_EQ(text(file(L"Q:\\sin").change_extension(L"md")), L"Q:\\sin.md");
  EXPECT_EQ(text(file(L"Q:carta.doc").change_extension(L"pdf")), L"Q:carta.pdf");
  EXPECT_EQ(text(--path), L"C:\\datos\\a");
  EXPECT_EQ(text(file(file(), L"a")), L"a");
  EXPECT_EQ(text(file(L"Q:", L"\\a")), L"Q:a");
  EXPECT_EQ(text(file(L"Q:") += L"a"), L"Q:\\a");  // always with a separator
}

TEST(path, is_cut_below_a_folder) {
  const wchar_t* const rows[][3] = {
      {L"C:\\a\\b\\c", L"C:\\a", L"b\\c"}, {L"C:\\A\\b", L"c:\\a", L"b"},
      {L"C:\\a", L"C:\\", L"a"},           {L"C:\\a", L"C:\\a", L""},
      {L"C:\\ab", L"C:\\a", L"C:\\ab"},    {L"C:\\a", L"", L"C:\\a"},
      {L"C:\\a", L"C:\\a\\b", L"C:\\a"},   {L"a//b", L"a", L"b"},
      {L"C:/a/.//b", L"C:/a", L"b"},
  };
  for (const auto& [path, base, expected] : rows) EXPECT_EQ(text(file(path).crop(base)), expected) << path;
}

TEST(path, asks_the_file_system) {
  const file folder(KESTA_DATA_DIR);
  EXPECT_TRUE(folder.exists() && folder.is_directory() && !folder.is_file());
  EXPECT_EQ(folder.get_extension(), L"");
  file document = folder;
  document += "pedido.json";
  EXPECT_TRUE(document.is_file() && !document.is_directory());
  const file missing(L"C:\\no hay tal cosa.txt");
  EXPECT_FALSE(missing.exists() || missing.is_directory() || missing.is_file());
  EXPECT_FALSE(file(static_cast<std::wstring>(folder) + std::wstring(L"\0x", 2)).exists());
  EXPECT_FALSE(file().exists());
}

}  // namespace
