// SPDX-License-Identifier: BSL-1.0

// Listing, copying, comparing and erasing folders, against a model of what is in them.

#include <ruvo/exc.hpp>
#include <ruvo/fake_context.hpp>
#include <ruvo/files.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/links.hpp"
#include "support/rounds.hpp"

namespace {

namespace fs = std::filesystem;
namespace files = ruvo::files;
using ruvo::exception;
using ruvo::file;

constexpr long long a_folder = -1;

/// Paths below a folder, with the size of what is a file.
using tree = std::map<std::wstring, long long>;

file below(const file& folder, const std::wstring& place) { return file(folder, place); }

long long nature(const file& entry) {
  return entry.is_directory() ? a_folder : static_cast<long long>(entry.size());
}

/// Whether a path is the place, or lies below it.
bool is_at(const std::wstring& path, const std::wstring& place) {
  return path.starts_with(place) && (path.size() == place.size() || path[place.size()] == L'\\');
}

/// Keeps what is reported to it, in order.
struct recorder : ruvo::fileCallback {
  explicit recorder(file folder = {}) : base(std::move(folder)) {}
  void onRead(const file& entry) override {
    ASSERT_EQ(finished, 0);
    ASSERT_FALSE(can_stop());
    order.push_back(entry.crop(base));
    if (does) does(entry);
    if (order.size() == stops_at) terminate();
  }
  void onFinish() override { ++finished; }
  void onFailure(const exception& error) override {
    ASSERT_EQ(finished, 0);
    failures.push_back(error.get_mensaje());
  }
  std::set<std::wstring> seen() const { return {order.begin(), order.end()}; }

  file base;
  std::vector<std::wstring> order, failures;
  std::function<void(const file&)> does;
  std::size_t stops_at = 0;
  int finished = 0;
};

struct refusing : ruvo::fileFilter {
  explicit refusing(std::set<std::wstring> which) : names(std::move(which)) {}
  bool accept(const file& entry) override { return !names.contains(entry.get_name()); }
  std::set<std::wstring> names;
};

/// What the filter leaves of a tree.
tree without(const tree& all, const std::set<std::wstring>& names) {
  tree out;
  for (const auto& [place, kind] : all) {
    bool refused = false;
    for (file at(place); !at.empty(); --at) refused = refused || names.contains(at.get_name());
    if (!refused) out.emplace(place, kind);
  }
  return out;
}

std::set<std::wstring> places(const tree& all) {
  std::set<std::wstring> out;
  for (const auto& [place, kind] : all) out.insert(place);
  return out;
}

/// What is really below a folder.
tree read_tree(const file& folder) {
  tree out;
  recorder record(folder);
  record.does = [&](const file& entry) { out[entry.crop(folder)] = nature(entry); };
  files::RecursiveCallBack recursive(record);
  exception err;
  EXPECT_TRUE(files::directory_list(folder, err, recursive)) << err.what();
  EXPECT_TRUE(record.failures.empty());
  EXPECT_EQ(record.finished, 1);
  EXPECT_EQ(out.size(), record.order.size());
  return out;
}

/// A tree in a folder of its own, and a second folder for copies.
class trees : public generated_inputs {
 protected:
  trees() {
    fs::remove_all("arbol");
    fs::create_directory("arbol");
    write(L"testigo.txt", 3);
    root = file(base, L"origen");
    other = file(base, L"destino");
    EXPECT_TRUE(root.mkdirs(nullptr));
  }
  ~trees() override {
    EXPECT_TRUE(file(base, L"testigo.txt").is_file());
    exception err;
    EXPECT_TRUE(files::erase(base, err)) << err.what();
    EXPECT_FALSE(base.exists());
  }

  void write(const std::wstring& place, std::size_t size) {
    exception err;
    EXPECT_TRUE(files::write(std::wstring(size, L'x'), file(base, place), err)) << err.what();
  }

  /// Makes up to `count` entries below `root`; what the system does not take is left out.
  tree grow(unsigned seed, std::size_t count) {
    static const std::wstring names[] = {
        // clang-format off
        L"a", L"b.txt", L"punto.", L"blanco ", L"...", L"nul", L"año", L"%41[1]", L"\xD83D\xDE00.tar", L"~",
        L"-rf x", L"..oculto", L"\xFFFF", std::wstring(150, L'l'), L"x.y.z",
#ifdef _WIN32
        L"\xD800x", L"y\xDC00",
#endif
        // clang-format on
    };
    std::mt19937 random(seed);
    tree out;
    std::vector<std::wstring> folders{L""};
    for (std::size_t tries = 0; tries < 2 * count && out.size() < count; ++tries) {
      std::wstring place = folders[random() % folders.size()];
      if (!place.empty()) place += L'\\';
      place += names[random() % std::size(names)];
      if (out.contains(place) || place.size() > 600) continue;
      const bool made = add(out, place, random() % 3 ? static_cast<long long>(random() % 40) : a_folder);
      if (made && out[place] == a_folder) folders.push_back(place);
    }
    ++inputs;
    return out;
  }
  bool add(tree& out, const std::wstring& place, long long kind) {
    exception err;
    const file path = below(root, place);
    const bool made = kind == a_folder
                          ? path.mkdir(&err)
                          : files::write(std::wstring(static_cast<std::size_t>(kind), L'x'), path, err);
    if (made) out[place] = kind;
    const bool has_lone_surrogate = place.find_first_of(L"\xD800\xDC00") != place.npos;  // Wine takes none
    EXPECT_TRUE(made || has_lone_surrogate) << err.what();
    return made;
  }
  void clear() {
    for (const file& one : {root, other}) {
      exception err;
      if (one.exists()) {
        EXPECT_TRUE(files::erase(one, err)) << err.what();
      }
    }
    root.mkdir(nullptr);
  }

  const file base{L"arbol"};
  file root, other;
};

TEST_F(trees, are_listed_copied_compared_and_erased) {
  for (unsigned seed = 1; seed <= 6 * rounds(); ++seed) {
    const tree model = grow(seed, seed * 4);
    EXPECT_EQ(read_tree(root), model) << seed;

    exception err;
    std::vector<file> copied;
    EXPECT_TRUE(files::copy_folder(root, other, err, copied)) << err.what();
    EXPECT_EQ(copied.size(), model.size());
    EXPECT_EQ(read_tree(other), model) << seed;
    recorder compared(root);
    EXPECT_TRUE(files::verify(root, other, err, compared)) << err.what();
    EXPECT_EQ(compared.seen(), places(model));

    recorder erased(other);
    EXPECT_TRUE(files::erase(other, err, erased)) << err.what();
    std::set<std::wstring> expected = places(model);
    expected.insert(L"");
    EXPECT_EQ(erased.seen(), expected);
    EXPECT_EQ(erased.order.back(), L"");
    EXPECT_TRUE(!other.exists() && root.exists());
    clear();
  }
}

TEST_F(trees, come_folder_by_folder_from_the_top) {
  const tree model = grow(7, 60);
  std::vector<file> all, top;
  exception err;
  files::RecursiveCallBack recursive(all);
  EXPECT_TRUE(files::directory_list(root, err, recursive));
  EXPECT_TRUE(files::directory_list(root, err, top));
  ASSERT_LT(top.size(), all.size());
  EXPECT_TRUE(std::equal(top.begin(), top.end(), all.begin()));
  const std::set<std::wstring> first{top.front().get_name()};
  refusing filter(first);
  std::vector<file> others;
  EXPECT_TRUE(files::directory_list(root, err, filter, others));
  EXPECT_EQ(others, std::vector<file>(top.begin() + 1, top.end()));
  recorder one;
  one.stops_at = 1;
  files::directory_list(root, err, one);
  EXPECT_EQ(one.order.size(), 1U);
  std::set<std::wstring> left, now;  // folders whose entries are past, and come
  for (const file& entry : all) {
    const std::wstring folder = entry.get_parent();
    EXPECT_FALSE(left.contains(folder)) << folder;
    if (now.insert(folder).second) {
      left.insert(now.begin(), now.end());
      left.erase(folder);
    }
    EXPECT_EQ(left.contains(entry), false);
  }
}

TEST_F(trees, are_taken_without_what_a_filter_refuses) {
  const std::set<std::wstring> sets[] = {{}, {L"a"}, {L"b.txt", L"..."}, {L"año", L"nul", L"punto.", L"~"}};
  for (unsigned seed = 100; seed < 100 + 2 * rounds(); ++seed) {
    for (const std::set<std::wstring>& names : sets) {
      const tree model = grow(seed, 40), taken = without(model, names);
      refusing filter(names);
      exception err;
      std::vector<file> listed;
      files::RecursiveCallBack recursive(listed, filter);
      EXPECT_TRUE(files::directory_list(root, err, recursive));
      EXPECT_EQ(listed.size(), taken.size());
      recorder copied(root);
      EXPECT_TRUE(files::copy_folder(root, other, err, filter, copied)) << err.what();
      EXPECT_EQ(read_tree(other), taken);
      EXPECT_EQ(copied.seen(), places(taken));
      recorder compared(root);
      EXPECT_TRUE(files::verify(root, other, err, compared, &filter)) << err.what();

      // What was refused stays, and so do the folders around it.
      EXPECT_TRUE(files::erase(root, err, filter)) << err.what();
      tree kept;
      for (const auto& [place, kind] : model) {
        for (const auto& [refused, unused] : model) {
          if (!taken.contains(refused) && (is_at(place, refused) || is_at(refused, place)))
            kept.emplace(place, kind);
        }
      }
      EXPECT_EQ(root.exists(), !kept.empty());
      if (root.exists()) {
        EXPECT_EQ(read_tree(root), kept);
      }
      clear();
    }
  }
}

TEST_F(trees, differences_are_reported) {
  for (const auto& [place, kind] : tree{
           {L"a", a_folder}, {L"a\\1", 5}, {L"a\\2", 5}, {L"b", a_folder}, {L"c", 0}, {L"d", 9}, {L"e", 1}}) {
    kind == a_folder ? void(below(root, place).mkdir(nullptr))
                     : write(L"origen\\" + place, static_cast<std::size_t>(kind));
  }
  exception err;
  EXPECT_TRUE(files::copy_folder(root, other, err));
  write(L"destino\\a\\2", 6);
  below(other, L"b").erase();
  write(L"destino\\b", 0);
  below(other, L"c").erase();
  below(other, L"c").mkdir(nullptr);
  below(other, L"d").erase();
  write(L"destino\\a\\de más", 1);
  recorder record(root);
  EXPECT_FALSE(files::verify(root, other, err, record));
  const std::set<std::wstring> expected{
      ruvo::exc::fileStrageFileSize(below(other, L"a\\2")).get_mensaje(),
      ruvo::exc::fileExpectedFolder(below(other, L"b")).get_mensaje(),
      ruvo::exc::fileExpectedFile(below(other, L"c")).get_mensaje(),
      ruvo::exc::fileNotFound(below(other, L"d")).get_mensaje(),
  };
  EXPECT_EQ(std::set(record.failures.begin(), record.failures.end()), expected);
  EXPECT_EQ(record.failures.front(), err.get_mensaje());
  EXPECT_EQ(record.seen(), (std::set<std::wstring>{L"a", L"a\\1", L"e"}));

  // A copy goes on where it can.
  recorder copied(root);
  EXPECT_FALSE(files::copy_folder(root, other, err, copied));
  std::ranges::sort(copied.failures);
  EXPECT_EQ(copied.failures, (std::vector{ruvo::exc::fileExpectedFolder(below(other, L"b")).get_mensaje(),
                                          ruvo::exc::fileExpectedFile(below(other, L"c")).get_mensaje()}));
  EXPECT_EQ(read_tree(other), (tree{{L"a", a_folder},
                                    {L"a\\1", 5},
                                    {L"a\\2", 5},
                                    {L"a\\de más", 1},
                                    {L"b", 0},
                                    {L"c", a_folder},
                                    {L"d", 9},
                                    {L"e", 1}}));
}

/// Each operation, on `root` and from there to `other`.
struct operation {
  const char* name;
  bool (*run)(const file& root, const file& other, exception& err, recorder& record);
};
const operation operations[] = {
    {"list",
     [](const file& root, const file&, exception& err, recorder& record) {
       files::RecursiveCallBack recursive(record);
       return files::directory_list(root, err, recursive);
     }},
    {"copy", [](const file& root, const file& other, exception& err,
                recorder& record) { return files::copy_folder(root, other, err, record); }},
    {"verify", [](const file& root, const file& other, exception& err,
                  recorder& record) { return files::verify(root, other, err, record); }},
    {"erase", [](const file& root, const file&, exception& err,
                 recorder& record) { return files::erase(root, err, record); }},
};

TEST_F(trees, operations_stop_when_they_are_asked_to) {
  for (const operation& one : operations) {
    const std::string name(one.name);
    std::size_t n = 1;
    for (std::size_t entries = 1; n <= entries; ++n) {
      const tree model = grow(5, 9);
      entries = model.size();
      exception err;
      if (name == "verify") {
        EXPECT_TRUE(files::copy_folder(root, other, err));
      }
      recorder record(root);
      record.stops_at = n;
      EXPECT_TRUE(one.run(root, other, err, record)) << name << n;
      EXPECT_EQ(record.order.size(), n) << name;
      EXPECT_EQ(record.finished, 1) << name << n;
      EXPECT_TRUE(record.failures.empty()) << name << n;
      // What was reported was done, and nothing else.
      const std::set<std::wstring> done = record.seen();
      if (name == "copy") {
        EXPECT_EQ(places(read_tree(other)), done);
      }
      if (name == "erase") {
        std::set<std::wstring> left = places(model);
        for (const std::wstring& place : done) EXPECT_EQ(left.erase(place), 1u);
        EXPECT_EQ(places(read_tree(root)), left);
      }
      recorder again(root);
      again.stops_at = 1;
      again.onRead(root);
      EXPECT_TRUE(one.run(root, other, err, again)) << name;
      EXPECT_EQ(again.order.size(), 1u) << name << " goes on after it was stopped";
      clear();
    }
  }
}

TEST_F(trees, what_a_callback_throws_comes_through) {
  for (const operation& one : operations) {
    for (std::size_t n = 1; n <= 4; ++n) {
      grow(6, 8);
      exception err;
      if (one.name == std::string("verify")) {
        EXPECT_TRUE(files::copy_folder(root, other, err));
      }
      recorder record(root);
      record.does = [&](const file&) {
        if (record.order.size() == n) throw ruvo::exc::BadArgument(L"n");
      };
      EXPECT_THROW(one.run(root, other, err, record), ruvo::exc::BadArgument) << one.name << n;
      EXPECT_TRUE(record.order.size() == n && !record.finished && record.failures.empty()) << one.name << n;
      clear();  // would fail if a folder were still being read
    }
  }
}

TEST_F(trees, a_folder_may_vanish_while_they_are_walked) {
  tree model = grow(8, 30);
  for (const wchar_t* const place : {L"se va", L"se va\\dentro", L"se queda", L"se queda\\se va"})
    add(model, place, a_folder);
  recorder record(root);
  std::set<std::wstring> gone;
  record.does = [&](const file& entry) {
    if (entry.get_name() != L"se va") return;
    exception err;
    EXPECT_TRUE(files::erase(entry, err)) << err.what();
    gone.insert(ruvo::exc::fileNotFound(entry).get_mensaje());
  };
  files::RecursiveCallBack recursive(record);
  exception err;
  EXPECT_FALSE(files::directory_list(root, err, recursive));
  EXPECT_EQ(err.get_mensaje(), record.failures.front());
  EXPECT_EQ(gone.size(), 2u);
  EXPECT_EQ(std::set(record.failures.begin(), record.failures.end()), gone);
  EXPECT_EQ(recursive.get_failure().get_mensaje(), record.failures.front());
  model.erase(L"se va\\dentro");
  EXPECT_EQ(record.seen(), places(model));
}

TEST_F(trees, failures) {
  write(L"origen\\f", 1);
  const file missing = below(base, L"no está"), a_file = below(root, L"f");
  using ruvo::exc::fileInvalidFolder, ruvo::exc::fileNotFound, ruvo::exc::fileUnCreateFolder;
  struct row {
    const char* operation;
    file from, to;
    exception expected;
  };
  const file nul(static_cast<std::wstring>(root) + std::wstring(L"\0x", 2));
  const row rows[] = {
      {"list", missing, {}, fileNotFound(missing)},
      {"list", a_file, {}, fileInvalidFolder(a_file)},
      {"list", file(), {}, fileNotFound(file())},
      {"list", nul, {}, fileNotFound(nul)},
      {"list", below(a_file, L"x"), {}, fileNotFound(below(a_file, L"x"))},
      {"copy", missing, other, fileNotFound(missing)},
      {"copy", a_file, other, fileInvalidFolder(a_file)},
      {"copy", root, file(), fileUnCreateFolder(file())},
      {"copy", root, a_file, fileUnCreateFolder(a_file)},
      {"copy", root, root, fileUnCreateFolder(root)},
      {"copy", root, below(root, L"x\\y"), fileUnCreateFolder(below(root, L"x\\y"))},
      {"copy", root, L"arbol/otro/../origen/x", fileUnCreateFolder(L"arbol/otro/../origen/x")},
      {"verify", missing, root, fileNotFound(missing)},
      {"verify", root, missing, fileNotFound(missing)},
      {"verify", root, a_file, ruvo::exc::fileExpectedFolder(a_file)},
      {"erase", missing, {}, fileNotFound(missing)},
      {"erase", file(), {}, fileNotFound(file())},
      {"erase", nul, {}, fileNotFound(nul)},
  };
  for (const row& r : rows) {
    const auto found = std::ranges::find(operations, std::string(r.operation), &operation::name);
    recorder record;
    exception err;
    EXPECT_FALSE(found->run(r.from, r.to, err, record)) << r.operation << r.from.c_str();
    EXPECT_EQ(err.get_mensaje(), r.expected.get_mensaje());
    EXPECT_EQ(err, r.expected);
    EXPECT_EQ(record.failures, std::vector{r.expected.get_mensaje()});
    EXPECT_TRUE(record.order.empty() && record.finished == 1);
  }
  EXPECT_FALSE(other.exists() || missing.exists());
  EXPECT_EQ(read_tree(root), (tree{{L"f", 1}}));
}

TEST_F(trees, an_erasure_by_hand_reports_what_stays) {
  EXPECT_TRUE(file(root, L"a").mkdirs(nullptr));
  write(L"origen\\a\\fichero", 1);
  recorder record(base);
  files::DeleteCallBack eraser(record);
  for (const wchar_t* const place : {L"origen\\b", L"origen\\a", L"origen"}) eraser.onRead(file(base, place));
  eraser.onFinish();  // the top of the tree first
  EXPECT_EQ(record.failures.size(), 3U);
  EXPECT_TRUE(record.order.empty());
  EXPECT_TRUE(file(root, L"a\\fichero").is_file());
}

TEST_F(trees, other_names_of_a_folder) {
  grow(9, 20);
  const tree model = read_tree(root);
  exception err;
  fs::current_path("arbol/origen");
  for (const wchar_t* const here : {L".", L"..\\origen", L"..\\..\\arbol\\.\\origen"}) {
    EXPECT_TRUE(files::copy_folder(here, L"..\\destino", err)) << err.what();
    recorder record;
    EXPECT_TRUE(files::verify(here, L"..\\destino", err, record)) << err.what();
    EXPECT_EQ(record.order.size(), model.size()) << here;
    EXPECT_FALSE(files::copy_folder(here, L"nuevo", err));
  }
  // A folder that keeps something is no failure, by whatever name.
  EXPECT_TRUE(files::write(L"x", L"se queda", err));
  refusing filter({L"se queda"});
  for (const wchar_t* const here : {L".", L"..\\origen"}) {
    recorder record;
    EXPECT_TRUE(files::erase(here, err, filter, record)) << err.what();
    EXPECT_TRUE(record.failures.empty()) << here;
  }
  EXPECT_EQ(read_tree(L"."), (tree{{L"se queda", 1}}));
  fs::current_path("../..");
  EXPECT_EQ(read_tree(other), model);
}

TEST_F(trees, are_as_deep_as_you_like) {
  const int levels = rounds() > 1 ? 1000 : 150;  // Wine takes minutes for the former
  file deepest = root;
  tree model;
  for (int level = 0; level < levels; ++level) {
    deepest += L"d";
    model.emplace(deepest.crop(root), a_folder);
  }
  EXPECT_TRUE(deepest.mkdirs(nullptr));
  EXPECT_EQ(read_tree(root), model);
  exception err;
  recorder compared(root);
  EXPECT_TRUE(files::copy_folder(root, other, err)) << err.what();
  EXPECT_TRUE(files::verify(root, other, err, compared)) << err.what();
  EXPECT_EQ(compared.seen(), places(model));
}

TEST_F(trees, what_is_read_only_is_erased_and_what_is_held_stays) {
  grow(10, 30);
  write(L"origen\\protegido", 1);
  write(L"origen\\zona", 1);
  fs::permissions("arbol/origen/protegido",
                  fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                  fs::perm_options::remove);
  EXPECT_FALSE(below(root, L"protegido").can_be_write());
#ifdef _WIN32
  {
    const std::ifstream held("arbol/origen/zona");
    recorder record(root);
    exception err;
    EXPECT_FALSE(files::erase(root, err, record));
    EXPECT_EQ(err.get_mensaje(), ruvo::exc::fileUnDeleted(below(root, L"zona")).get_mensaje());
    EXPECT_EQ(record.failures, std::vector{err.get_mensaje()});
    EXPECT_EQ(read_tree(root), (tree{{L"zona", 1}}));
  }
#endif
  exception err;
  EXPECT_TRUE(files::erase(root, err)) << err.what();
  EXPECT_FALSE(root.exists());
}

// Only the host build and Windows prove that of a link the link is erased: Wine would remove what it leads
// to, so there it is reported as a failure. Only Windows proves that nobody can swap a folder as long as it
// is held, and that the rename which ends a copy stays in the folder that is held.
class linked_trees : public trees {
 protected:
  linked_trees() {
    fs::create_directories("arbol/fuera/dentro");
    for (const std::wstring& name : names()) write(L"fuera\\" + name, 4);
    outside = read_tree(file(base, L"fuera"));
  }
  ~linked_trees() override {
    for (const char* const name : {"origen/enlace", "origen/carpeta", "destino/carpeta"})
      links::drop(std::string("arbol/") + name);
    EXPECT_EQ(read_tree(file(base, L"fuera")), outside);
  }

  static std::vector<std::wstring> names() {
    std::vector<std::wstring> out;
    for (wchar_t i = 0; i < 31; ++i) out.push_back(std::wstring(L"f") + static_cast<wchar_t>(L'A' + i));
    return out;
  }
  void fill(const std::wstring& folder) {
    below(root, folder).mkdirs(nullptr);
    for (const std::wstring& name : names()) write(L"origen\\" + folder + L'\\' + name, 2);
  }

  tree outside;
};

TEST_F(linked_trees, links_are_not_followed) {
  if (!links::make("../fuera", "arbol/origen/enlace")) GTEST_SKIP() << "no links here";
  EXPECT_EQ(read_tree(root), (tree{{L"enlace", a_folder}}));
  exception err;
  recorder record(root);
  EXPECT_FALSE(files::copy_folder(root, other, err, record));
  EXPECT_EQ(record.failures, std::vector{ruvo::exc::fileOsStream(below(other, L"enlace")).get_mensaje()});
  const bool is_erased = files::erase(root, err);
  EXPECT_EQ(is_erased, !root.exists());
  if (!is_erased) {  // Wine would remove what the link leads to
    EXPECT_EQ(err, ruvo::exc::fileUnDeleted(below(root, L"enlace")));
    EXPECT_TRUE(links::can_ask());
  }
}

TEST_F(linked_trees, links_to_files_are_left) {
  if (!links::make("../testigo.txt", "arbol/origen/enlace")) GTEST_SKIP() << "no links here";
  exception err;
  EXPECT_FALSE(files::copy_folder(root, other, err));
  EXPECT_EQ(err, ruvo::exc::fileOsStream(below(other, L"enlace")));
  EXPECT_FALSE(below(other, L"enlace").exists());
  EXPECT_EQ(files::erase(root, err), !links::can_ask());
}

TEST_F(linked_trees, links_in_the_target_of_a_copy_are_refused) {
  fill(L"carpeta\\dentro");
  other.mkdir(nullptr);
  if (!links::make("../fuera", "arbol/destino/carpeta")) GTEST_SKIP() << "no links here";
  exception err;
  recorder record(root);
  EXPECT_FALSE(files::copy_folder(root, other, err, record));
  EXPECT_EQ(err, ruvo::exc::fileExpectedFolder(below(other, L"carpeta")));
  EXPECT_EQ(record.failures.size(), 2 + names().size());
  // A target that the caller names is followed.
  EXPECT_TRUE(
      files::copy_folder(below(root, L"carpeta\\dentro"), below(base, L"destino\\carpeta\\dentro"), err));
  exception erased;
  EXPECT_TRUE(files::erase(below(base, L"fuera\\dentro"), erased) &&
              below(base, L"fuera\\dentro").mkdir(nullptr));
}

// The folder is swapped when some of its entries are done.
TEST_F(linked_trees, a_folder_that_a_link_replaces_is_left) {
  for (const operation& one : operations) {
    const std::string name(one.name);
    for (const std::size_t when : {1, 4}) {
      fill(L"carpeta");
      other.mkdir(nullptr);
      if (name == "verify") {
        exception err;
        EXPECT_TRUE(files::copy_folder(root, other, err)) << err.what();
      }
      recorder record(root);
      bool is_swapped = false;
      record.does = [&](const file&) {
        if (record.order.size() == when) is_swapped = links::swap("../fuera", "arbol/origen/carpeta");
      };
      exception err;
      const bool done = one.run(root, other, err, record);
      if (!is_swapped) GTEST_SKIP() << "no links here";
      // What is listed already is no longer the link's.
      EXPECT_EQ(done, when == 4 && (name == "list" || name == "verify")) << name << when;
      EXPECT_EQ(record.failures.empty(), done) << name << when;
      EXPECT_EQ(read_tree(below(base, L"fuera")), outside) << name << when;
      for (const auto& [place, kind] : other.exists() ? read_tree(other) : tree())
        EXPECT_NE(kind, 4) << place.c_str();
      links::drop("arbol/origen/carpeta");
      clear();
    }
  }
}

/// A link takes the place of a folder that is held, just before it is listed.
struct swapping : ruvo::fake_context {
  bool directory_list(const ruvo::file& folder, exception& err, ruvo::fileFilter* filter,
                      ruvo::fileCallback* callback, std::vector<ruvo::file>* out) const override {
    if (folder.get_name() == L"carpeta") is_swapped = links::swap("../fuera", "arbol/origen/carpeta");
    return context::directory_list(folder, err, filter, callback, out);
  }
  mutable bool is_swapped = false;
};

TEST_F(linked_trees, what_is_held_is_listed) {
  fill(L"carpeta");
  swapping service;
  const ruvo::thread_scope scope(service);
  recorder record(root);
  files::RecursiveCallBack recursive(record);
  exception err;
  EXPECT_TRUE(files::directory_list(root, err, recursive)) << err.what();
  if (!service.is_swapped) GTEST_SKIP() << "no links here";
  EXPECT_EQ(record.order.size(), 1 + names().size());
  EXPECT_FALSE(record.seen().contains(L"carpeta\\dentro"));
}

/// A service whose entries are of its own, and know what they are.
struct invented : ruvo::fake_context {
  struct entry : ruvo::file {
    entry(const ruvo::file& path, bool folder) : ruvo::file(path), is_folder(folder) {}
    bool is_directory() const override { return is_folder; }
    bool is_file() const override { return !is_folder; }
    unsigned long long size() const override { return 7; }
    bool is_folder;
  };
  bool directory_list(const ruvo::file& folder, exception&, ruvo::fileFilter* filter,
                      ruvo::fileCallback* callback, std::vector<ruvo::file>* out) const override {
    const bool is_top = folder.get_name() == L"nube";
    for (const entry& one :
         {entry(ruvo::file(folder, L"a"), is_top), entry(ruvo::file(folder, L"b"), false)}) {
      if (filter && !filter->accept(one)) continue;
      if (out) out->push_back(one);
      if (callback) callback->onRead(one);
    }
    if (callback) callback->onFinish();
    return true;
  }
};

TEST_F(trees, a_listing_of_ones_own_has_folders) {
  invented service;
  const ruvo::thread_scope scope(service);
  const file cloud(L"V:\\nube");
  recorder record(cloud);
  files::RecursiveCallBack recursive(record);
  exception err;
  EXPECT_TRUE(files::directory_list(cloud, err, recursive)) << err.what();
  EXPECT_EQ(record.order, (std::vector<std::wstring>{L"a", L"b", L"a\\a", L"a\\b"}));
}

TEST_F(trees, files_being_written_are_left_out) {
  for (const wchar_t* const name : {L"a", L"~99_1.tmp", L"~99_2.tmp", L"~99_x.tmp"})
    write(std::wstring(L"origen\\") + name, 1);
  std::set<std::wstring> expected{L"a", L"~99_1.tmp", L"~99_x.tmp"};
#ifdef _WIN32
  const std::ofstream held("arbol/origen/~99_1.tmp");
  expected.erase(L"~99_1.tmp");
#endif
  for (const bool vanishes : {true, false}) {
    for (const operation& one : operations) {
      const std::string name(one.name);
      if (name != "copy" && name != "verify") continue;
      recorder record(root);
      record.does = [&](const file&) {
        if (vanishes && name == "copy") fs::remove("arbol/origen/~99_2.tmp");
      };
      exception err;
      EXPECT_TRUE(one.run(root, other, err, record)) << name << err.what();
      std::set<std::wstring> seen = record.seen();
      seen.erase(L"~99_2.tmp");  // which the system may list first
      EXPECT_EQ(seen, expected) << name;
    }
  }
  std::vector<file> listed;
  exception err;
  EXPECT_TRUE(files::directory_list(root, err, listed));
  EXPECT_EQ(listed.size(), 3u);
}

/// Lists no folder of one name, and says so to its caller alone.
struct secretive : ruvo::fake_context {
  bool directory_list(const ruvo::file& folder, exception& err, ruvo::fileFilter* filter,
                      ruvo::fileCallback* callback, std::vector<ruvo::file>* out) const override {
    if (folder.get_name() != refused) return context::directory_list(folder, err, filter, callback, out);
    if (explains) ruvo::exc::fileInvalidFolder(folder).copy_on(err);
    return false;
  }
  std::wstring refused = L"origen";
  bool explains = true;
};

TEST_F(trees, a_listing_that_reports_nothing_is_a_failure) {
  tree model;
  for (const wchar_t* const place : {L"a", L"a\\b", L"c"}) add(model, place, a_folder);
  add(model, L"a\\b\\f", 1);
  secretive service;
  const ruvo::thread_scope scope(service);
  struct row {
    const wchar_t* refused;
    bool explains;
    file folder;
  };
  const row rows[] = {{L"origen", true, root}, {L"origen", false, root}, {L"b", true, below(root, L"a\\b")}};
  for (const row& r : rows) {
    service.refused = r.refused;
    service.explains = r.explains;
    const exception expected =
        r.explains ? exception(ruvo::exc::fileInvalidFolder(r.folder)) : exception::incorrect();
    for (const operation& one : operations) {
      const std::string name(one.name);
      if (name == "list" && r.folder == root) continue;  // the caller knows
      if (name == "verify") other.mkdirs(nullptr);
      recorder record(root);
      exception err;
      const bool done = one.run(root, other, err, record);
      EXPECT_FALSE(done) << name;
      EXPECT_EQ(err, expected) << name;
      ASSERT_FALSE(record.failures.empty()) << name;
      EXPECT_EQ(record.failures.front(), expected.get_mensaje()) << name;
      EXPECT_EQ(record.finished, 1) << name;
      EXPECT_TRUE(below(root, L"a\\b\\f").is_file()) << name;
    }
    // A failure is reported once.
    recorder record(root);
    exception err;
    EXPECT_FALSE(files::copy_folder(below(base, L"nada"), other, err, record));
    EXPECT_EQ(record.failures.size(), 1u);
    service.refused.clear();
    EXPECT_TRUE(files::erase(other, err) && below(root, L"c").mkdir());
  }
}

}  // namespace
