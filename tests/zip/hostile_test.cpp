// SPDX-License-Identifier: BSL-1.0

// Archives that lie, lead elsewhere or hold too much.

#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <chrono>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "files/scratch.hpp"
#include "zip/raw_archive.hpp"

using namespace std::string_literals;
namespace zip = ruvo::zip;
namespace exc = ruvo::exc;
using ruvo::binary;
using ruvo::exception;
using ruvo::file;

namespace {

template <class Class>
unsigned long code() {
  return Class(L"").get_raw_code();
}
const unsigned long bad_format = code<exc::zipBadFormated>(), bad_name = code<exc::zipUnsafeName>(),
                    limit = code<exc::zipLimit>(), unsupported = code<exc::zipUnsupported>(),
                    bad_data = code<exc::zipBadData>();

/// What was unpacked and what failed.
struct outcome {
  std::vector<std::wstring> read;
  std::vector<unsigned long> failures;
};
struct outcome_recorder : ruvo::fileCallback {
  void onRead(const file& entry) override { seen.read.push_back(entry.unix_path()); }
  void onFailure(const exception& error) override { seen.failures.push_back(error.get_raw_code()); }
  outcome seen;
};

/// The first failure of opening, or of checking everything; 0 when there is none.
unsigned long verdict(const std::string& bytes, const zip::limits& most = {}) {
  zip::reader in;
  exception err;
  const bool fine = in.open_bytes(binary(bytes), err, most) && in.verify_all(err);
  return fine ? 0 : err.get_raw_code();
}

struct hostile : scratch {
  /// Unpacks into a folder of the scratch folder.
  static outcome unpack(const std::string& bytes) {
    outcome_recorder out;
    zip::reader in;
    exception err;
    EXPECT_TRUE(in.open_bytes(binary(bytes), err)) << err.what();
    const bool done = in.extract_all(path(L"destino"), err, nullptr, &out);
    EXPECT_EQ(done, out.seen.failures.empty());
    return out.seen;
  }
};

TEST_F(hostile, names_that_lead_elsewhere_are_refused_and_the_rest_is_unpacked) {
  const std::string hostile_names[] = {"",
                                       "/",
                                       "/raiz",
                                       "../fuera",
                                       "..",
                                       "dentro/../../fuera",
                                       "./yo",
                                       "a//b",
                                       "a/./b",
                                       "//host/c/x",
                                       "C:/x",
                                       "C:x",
                                       "x:datos",
                                       "a/b:c/d",
                                       "nul",
                                       "a/aux",
                                       "com1.txt",
                                       "LPT9/x",
                                       "COM\xC2\xB9",
                                       "conin$",
                                       "nul .txt",
                                       "punto.",
                                       "blanco ",
                                       "a./b",
                                       "a\0b"s,
                                       "a\nb",
                                       "a|b",
                                       "<a>",
                                       "a*?",
                                       "a\x7F",
                                       "..../x",
                                       std::string(256, 'a')};
  put(path(L"fuera"), "antes");
  for (const char* const separator : {"/", "\\", "\\/"}) {
    for (const std::string& name : hostile_names) {
      std::string written;
      for (const char c : name) written += c == '/' ? separator : std::string(1, c);
      const outcome found = unpack(raw::archive({{written, "x"}, {"a..b/..c", "bueno"}}));
      EXPECT_EQ(found.failures, std::vector{bad_name}) << written;
      EXPECT_EQ(found.read, std::vector<std::wstring>{L"scratch/destino/a..b/..c"}) << written;
    }
  }
  EXPECT_EQ(get(path(L"fuera")), "antes");
  EXPECT_EQ(names(), (std::set<std::string>{"fuera", "destino"}));
}

TEST_F(hostile, what_is_no_plain_entry_is_reported_and_left_out) {
  struct row {
    const char* what;
    raw::entry entry;
    unsigned long expected;
  };
  const row rows[] = {
      {"a link of Unix", {"enlace", "/etc", 0, 0xA1FF0000}, unsupported},
      {"a device of Unix", {"disco", "", 0, 0x61FF0000}, unsupported},
      {"a link of Windows", {"enlace", "x", 0, 0x420}, unsupported},
      {"encrypted", {"secreto", "xxxxxxxxxxxxxxxx", 1}, unsupported},
      {"bzip2", {"otro", "x", 0, 0, "", 12, "BZh"}, unsupported},
      {"a folder with content", {"carpeta/", "x"}, bad_format},
      {"a folder by its other name",
       {"\xA4", "x", 0, 0, "\x75\x70\x0D\0\1"s + raw::number(raw::crc_of("\xA4"), 4) + "carpeta/"},
       bad_format},
      {"a twin by case", {"BUENO.TXT", "y"}, bad_name},
      {"a twin by composition", {"N\xCC\x83", "y", 0x800}, bad_name},
      {"a twin by case in another script", {"\xD0\xAF", "y", 0x800}, bad_name},
      {"deflated rubbish", {"roto", "xxxx", 0, 0, "", 8, "\xFF\xFF\xFF\xFF"}, bad_data},
      {"deflated and cut", {"roto", "xxxx", 0, 0, "", 8, "\x4B"}, bad_data},
      {"more than a byte can give", {"bomba", "", 0, 0, "", 8, "\3\0"s, 5000}, bad_data},
      {"less than promised", {"poco", "", 0, 0, "", 8, "\3\0"s, 500}, bad_data},
      {"more than promised", {"mucho", "aaaa", 0, 0, "", 8, "\x4B\x4C\x4C\4\0"s, 2}, bad_data},
      {"a size beyond the limits", {"enorme", "x", 0, 0, "", 0, "", 1ULL << 40, true}, limit},
      {"a size beyond 32 bits", {"enorme", "x", 0, 0, "", 0, "", 1ULL << 33, true}, bad_format},
      {"bytes behind the end", {"sobra", "", 0, 0, "", 8, "\3\0zz"s}, bad_data},
  };
  for (const row& r : rows) {
    const outcome found = unpack(raw::archive(
        {{"bueno.txt", "1"}, {"\xC3\xB1", "2", 0x800}, {"\xD1\x8F", "2", 0x800}, r.entry, {"fin", "3"}}));
    EXPECT_EQ(found.failures, std::vector{r.expected}) << r.what;
    EXPECT_EQ(found.read.size(), 4u) << r.what;
    EXPECT_EQ(get(path(L"destino\\bueno.txt")), "1") << r.what;
  }
}

// An archive of one entry of 10 bytes, in which single bytes are changed.
TEST_F(hostile, records_that_disagree_are_refused) {
  const std::string good = raw::archive({{"a.txt", "0123456789"}});
  constexpr std::size_t list = 45, last = 96;
  ASSERT_EQ(good.substr(list, 4) + good.substr(last, 4), "PK\1\2PK\5\6");
  ASSERT_EQ(verdict(good), 0u);
  struct row {
    const char* what;
    std::vector<std::size_t> places;
    unsigned long expected;
  };
  const row rows[] = {
      {"mark of the entry", {0}, bad_format},
      {"encryption of the entry", {6}, bad_format},
      {"method of the entry", {8}, bad_format},
      {"checksum of the entry", {14}, bad_format},
      {"packed size of the entry", {18}, bad_format},
      {"size of the entry", {22}, bad_format},
      {"length of its name", {26}, bad_format},
      {"length of its fields", {28}, bad_format},
      {"name of the entry", {30}, bad_format},
      {"content", {40}, bad_data},
      {"checksums of both", {14, list + 16}, bad_data},
      {"sizes of both", {22, list + 24}, bad_format},
      {"mark of the list", {list}, bad_format},
      {"name in the list", {list + 46}, bad_format},
      {"length of a name in the list", {list + 28}, bad_format},
      {"disk of an entry", {list + 34}, unsupported},
      {"place of an entry", {list + 42}, bad_format},
      {"place of an entry far away", {list + 45}, bad_format},
      {"disk", {last + 4}, unsupported},
      {"number of entries", {last + 8, last + 10}, bad_format},
      {"size of the list", {last + 12}, bad_format},
      {"place of the list", {last + 16}, bad_format},
      {"length of the comment", {last + 20}, bad_format},
  };
  for (const row& r : rows) {
    std::string bytes = good;
    for (const std::size_t place : r.places) bytes[place] = static_cast<char>(bytes[place] ^ 1);
    EXPECT_EQ(verdict(bytes), r.expected) << r.what;
  }
  for (std::size_t size = 0; size < good.size(); ++size)
    EXPECT_EQ(verdict(good.substr(0, size)), bad_format) << size;
}

TEST_F(hostile, what_stands_around_an_archive_does_not_count) {
  const std::string good = raw::archive({{"a.txt", "0123456789"}}), inner = raw::archive({{"b", "x"}});
  const auto first_name = [](const std::string& bytes) {
    zip::reader in;
    exception err;
    return in.open_bytes(binary(bytes), err) && in.size() ? in.get(0).name : L"-";
  };
  EXPECT_EQ(first_name("MZ programa" + good), L"a.txt");
  EXPECT_EQ(first_name(good + std::string(16, '\0')), L"a.txt");
  EXPECT_EQ(first_name(raw::archive({{"a.txt", "x"}}, inner)), L"a.txt") << "an archive in the comment";
  EXPECT_EQ(first_name(raw::archive({{"a.txt", "x"}}, raw::end(0, 0, 0))), L"a.txt")
      << "an end in the comment";
  EXPECT_EQ(first_name(raw::archive({{"a.zip", inner}})), L"a.zip");
  EXPECT_EQ(first_name(raw::end(0, 0, 0)), L"-");
  EXPECT_EQ(verdict("MZ" + good), 0u);
  EXPECT_EQ(verdict(raw::end(0, 0, 0)), 0u);
}

TEST_F(hostile, entries_that_share_bytes_are_refused_before_anything_is_unpacked) {
  const raw::entry one{"uno", "xxxxxxxx"}, two{"dos", "yy"};
  const std::string first = raw::local(one), both = first + raw::local(two);
  const auto with_list = [](const std::string& entries, const std::string& list) {
    return entries + list + raw::end(2, list.size(), entries.size());
  };
  ASSERT_EQ(verdict(with_list(both, raw::central(one, 0) + raw::central(two, first.size()))), 0u);
  // The second one lies in the content of the first; both are one.
  const raw::entry around{"uno", first.substr(0, 3) + raw::local(two)};
  const std::string hostile_ones[] = {
      with_list(raw::local(around), raw::central(around, 0) + raw::central(two, 36)),
      with_list(both, raw::central(one, 0) + raw::central(one, 0)),
      with_list(both, raw::central(two, first.size()) + raw::central(two, first.size())),
  };
  for (const std::string& bytes : hostile_ones) {
    EXPECT_EQ(verdict(bytes), bad_format);
    const outcome found = unpack(bytes);
    EXPECT_EQ(found.failures, std::vector{bad_format});
    EXPECT_TRUE(found.read.empty());
  }
}

TEST_F(hostile, limits_hold) {
  const std::string two = raw::archive({{"a/b/c", std::string(600, 'a')}, {"d", std::string(500, 'b')}});
  const auto with = [&](const std::function<void(zip::limits&)>& change) {
    zip::limits most;
    change(most);
    return verdict(two, most);
  };
  EXPECT_EQ(with([](zip::limits& most) { most.entries = 2; }), 0u);
  EXPECT_EQ(with([](zip::limits& most) { most.entries = 1; }), limit);
  EXPECT_EQ(with([](zip::limits& most) { most.directory_bytes = 90; }), limit);
  EXPECT_EQ(with([](zip::limits& most) { most.entry_bytes = 600; }), 0u);
  EXPECT_EQ(with([](zip::limits& most) { most.entry_bytes = 599; }), limit);
  EXPECT_EQ(with([](zip::limits& most) { most.total_bytes = 1100; }), 0u);
  EXPECT_EQ(with([](zip::limits& most) { most.total_bytes = 1099; }), limit);
  // What failed counts, too.
  zip::limits few;
  few.total_bytes = 750;
  exception failure;
  for (const raw::entry& broken : {raw::entry{"sobra", "aaa", 0, 0, "", 8, "\x4B\x4C\x4C\4\0z"s},
                                   raw::entry{"largo", "aaa", 0, 0, "", 8, "\x4B\x4C\x4C\4\0"s, 2},
                                   raw::entry{"roto", "aaa", 0, 0, "", 8, "\x4A\x4C\x4C\4\x18"s}}) {
    std::vector<raw::entry> many(300, broken);
    for (raw::entry& each : many) each.name += std::to_string(&each - many.data());
    outcome_recorder all;
    zip::reader bombs;
    ASSERT_TRUE(bombs.open_bytes(binary(raw::archive(many)), failure, few));
    EXPECT_FALSE(bombs.verify_all(failure, nullptr, &all));
    EXPECT_EQ(std::ranges::count(all.seen.failures, bad_data), 250) << broken.name;
    EXPECT_EQ(std::ranges::count(all.seen.failures, limit), 50) << broken.name;
  }
  EXPECT_EQ(with([](zip::limits& most) { most.levels = 2; }), 0u);
  EXPECT_EQ(with([](zip::limits& most) { most.levels = 1; }), bad_name);
  zip::reader in;
  exception err;
  binary out;
  zip::limits most;
  most.memory_bytes = 599;
  ASSERT_TRUE(in.open_bytes(binary(two), err, most));
  EXPECT_FALSE(in.read(L"a/b/c", out, err));
  EXPECT_EQ(err, limit);
  EXPECT_TRUE(in.read(L"d", out, err));
}

/// Names whose FNV-1a of 64 bits, its halves put together, ends with twelve zeros.
std::vector<std::wstring> colliding_names(std::size_t count) {
  const auto added = [](std::uint64_t sum, wchar_t unit) {
    return (sum ^ static_cast<char16_t>(unit)) * 0x100000001B3;
  };
  std::vector<std::wstring> out;
  for (unsigned number = 0; out.size() < count; ++number) {
    std::uint64_t begun = 0xCBF29CE484222325;
    for (const wchar_t digit : std::to_wstring(number)) begun = added(begun, digit);
    for (wchar_t last = 0x4E00; last < 0xA000; ++last) {
      const std::uint64_t sum = added(begun, last);
      if (((sum ^ sum >> 32) & 0xFFF) == 0) out.push_back(std::to_wstring(number) + last);
    }
  }
  out.resize(count);
  return out;
}

/// The least of three turns.
double seconds_to_find(const std::vector<std::wstring>& names) {
  std::vector<raw::entry> entries;
  for (const std::wstring& name : names) entries.push_back({ruvo::texto::to_utf_8(name), "", 0x800});
  zip::reader in;
  exception err;
  zip::entry found;
  EXPECT_TRUE(in.open_bytes(binary(raw::archive(entries)), err)) << err.what();
  double least = 1e9;
  for (int turn = 0; turn < 3; ++turn) {
    const auto begin = std::chrono::steady_clock::now();
    for (std::size_t n = 0; n < names.size(); ++n)
      EXPECT_TRUE(in.find(names[n], found) && found.index == n) << n;
    least = std::min(least, std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
  }
  return least;
}

TEST_F(hostile, names_that_were_made_to_collide_are_found_as_fast_as_others) {
  std::vector<std::wstring> others;
  for (std::size_t n = 0; n < 2000; ++n) others.push_back(std::to_wstring(n) + L'\x4E00');
  EXPECT_LT(seconds_to_find(colliding_names(2000)), 20 * seconds_to_find(others));
}

#ifndef _WIN32
// Where the system lets somebody do it.
TEST_F(hostile, a_folder_that_is_replaced_meanwhile_gets_nothing) {
  struct replacing : zip::progress_callback {
    void onRead(const file&) override {
      if (!within) replace();
    }
    void on_progress(const file&, unsigned long long, unsigned long long) override {
      if (within) replace();
    }
    void onFailure(const exception& error) override { failures.push_back(error.get_raw_code()); }
    void replace() {
      if (std::filesystem::exists("scratch/otra")) return;
      std::filesystem::rename("scratch/destino/sub", "scratch/otra");
      std::filesystem::create_directory_symlink("../fuera", "scratch/destino/sub");
    }
    bool within = false;
    std::vector<unsigned long> failures;
  };
  std::filesystem::create_directory("scratch/fuera");
  for (const bool within : {false, true}) {
    replacing callback;
    callback.within = within;
    zip::reader in;
    exception err;
    ASSERT_TRUE(in.open_bytes(binary(raw::archive({{"sub/uno", "1"}, {"sub/dos", "2"}})), err));
    EXPECT_FALSE(in.extract_all(path(L"destino"), err, nullptr, &callback));
    EXPECT_EQ(callback.failures, std::vector(within ? 2 : 1, exc::fileOsStream(file()).get_raw_code()));
    EXPECT_TRUE(std::filesystem::is_empty("scratch/fuera"));
    EXPECT_EQ(std::filesystem::exists("scratch/otra/uno"), !within);
    EXPECT_EQ(std::filesystem::is_empty("scratch/otra"), within);
    for (const char* const each : {"scratch/destino", "scratch/otra"}) std::filesystem::remove_all(each);
  }
}

TEST_F(hostile, links_on_the_way_down_are_not_followed) {
  std::filesystem::create_directories("scratch/destino");
  std::filesystem::create_directory("scratch/fuera");
  std::filesystem::create_directory_symlink("../fuera", "scratch/destino/enlace");
  std::filesystem::create_symlink("../fuera/b", "scratch/destino/b");
  const outcome found = unpack(raw::archive({{"enlace/x", "malo"}, {"b", "nuevo"}}));
  EXPECT_EQ(found.failures.size(), 1u);
  EXPECT_TRUE(std::filesystem::is_empty("scratch/fuera"));
  EXPECT_EQ(get(path(L"destino\\b")), "nuevo");
}
#endif

}  // namespace
