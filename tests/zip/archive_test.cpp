// SPDX-License-Identifier: BSL-1.0

// What is packed comes out again: contents, names, times, folders.

#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "files/scratch.hpp"
#include "support/dice.hpp"
#include "zip/raw_archive.hpp"

using namespace std::string_literals;
namespace zip = ruvo::zip;
namespace exc = ruvo::exc;
using ruvo::binary;
using ruvo::exception;
using ruvo::file;
using names_type = std::set<std::string>;

namespace {

struct archives : scratch {
  static std::string bytes_of(zip::reader& in, const std::wstring& name) {
    binary out;
    exception err;
    EXPECT_TRUE(in.read(name, out, err)) << err.what();
    return {out.begin(), out.end()};
  }
  static std::wstring name_in(const std::string& bytes, unsigned page = zip::western_dos) {
    zip::reader in;
    exception err;
    EXPECT_TRUE(in.open_bytes(binary(bytes), err, {}, page)) << err.what();
    return in.get(0).name;
  }
  /// A small tree, and what is in it.
  static std::map<std::string, std::string> grow() {
    std::map<std::string, std::string> all = {{"a.txt", "hola"},
                                              {"vac\xC3\xADo", ""},
                                              {"sub/b.bin", std::string(700'000, '\x7F')},
                                              {"sub/mas/c", "c"}};
    std::filesystem::create_directories("scratch/origen/sub/mas");
    std::filesystem::create_directories("scratch/origen/nada");
    for (const auto& [name, content] : all)
      ruvo::files::write(binary(content), path(L"origen\\" + ruvo::texto::to_utf_16(name)));
    return all;
  }
  static std::string content_of(const file& path) {
    const binary bytes = ruvo::files::read(path);
    return {bytes.begin(), bytes.end()};
  }
  static std::string in_utf_8(const std::filesystem::path& path) {
    const auto text = path.generic_u8string();
    return {text.begin(), text.end()};
  }
  static std::map<std::string, std::string> read_tree(const std::string& folder) {
    std::map<std::string, std::string> out;
    const auto top = std::filesystem::path(where) / folder;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(top))
      if (entry.is_regular_file())
        out[in_utf_8(entry.path().lexically_relative(top))] = content_of(in_utf_8(entry.path()));
    return out;
  }
};

struct recorder : zip::progress_callback {
  void onRead(const file& entry) override {
    read.insert(entry.get_name());
    if (read.size() == stops_after) terminate();
  }
  void onFailure(const exception& error) override { failures.push_back(error.get_raw_code()); }
  void onFinish() override { ++finished; }
  void on_progress(const file&, unsigned long long done, unsigned long long size) override {
    EXPECT_LE(done, size);
    ++pieces;
    if (stops_within && size > 300'000) terminate();
  }
  std::set<std::wstring> read;
  std::vector<unsigned long> failures;
  std::size_t stops_after = 0;
  bool stops_within = false;
  int finished = 0, pieces = 0;
};

struct without : ruvo::fileFilter {
  explicit without(std::wstring which) : name(std::move(which)) {}
  bool accept(const file& entry) override { return entry.get_name() != name; }
  std::wstring name;
};

TEST_F(archives, contents_come_back_at_every_level_from_memory_and_from_files) {
  dice random(5);
  std::string noise;
  for (int n = 0; n < 400'000; ++n) noise += static_cast<char>(random.number());
  const std::map<std::wstring, std::string> all = {
      {L"vacío", ""},         {L"a/b.txt", "x"},
      {L"ruido", noise},      {L"ceros", std::string(1'000'000, '\0')},
      {L"\x20AC", "\x80\0"s}, {L"nota.txt", std::string(70'000, 'n')}};
  const ruvo::datetime when(1'700'000'000LL);
  for (const int level : {0, 1, 9}) {
    zip::writer memory, disk;
    exception err;
    memory.open_memory();
    ASSERT_TRUE(disk.open(path(L"a.zip"), err)) << err.what();
    for (zip::writer* const out : {&memory, &disk}) {
      out->set_level(level);
      EXPECT_TRUE(out->set_comment(L"comentario ñ", err));
      for (const auto& [name, content] : all)
        EXPECT_TRUE(out->add_bytes(name, content, err, when)) << err.what();
      EXPECT_TRUE(out->add_empty_folder(L"carpeta\\nueva", err, when));
    }
    EXPECT_EQ(names().count("a.zip"), 0u);
    binary bytes;
    EXPECT_TRUE(memory.close(bytes, err));
    EXPECT_TRUE(disk.close(err)) << err.what();
    EXPECT_EQ(binary(get(path(L"a.zip"))), bytes);
    zip::reader from_file, from_memory;
    ASSERT_TRUE(from_file.open(path(L"a.zip"), err)) << err.what();
    ASSERT_TRUE(from_memory.open_bytes(bytes, err)) << err.what();
    for (zip::reader* const in : {&from_file, &from_memory}) {
      EXPECT_EQ(in->comment(), L"comentario ñ");
      EXPECT_EQ(in->size(), all.size() + 1);
      for (const auto& [name, content] : all) EXPECT_EQ(bytes_of(*in, name), content) << level;
      EXPECT_TRUE(in->verify_all(err)) << err.what();
      const zip::entry last = in->get(all.size());
      EXPECT_TRUE(last.is_directory && last.name == L"carpeta/nueva/");
    }
    from_file.close();
    path(L"a.zip").erase();
  }
}

TEST_F(archives, names_are_read_in_the_encoding_they_are_in) {
  struct row {
    raw::entry entry;
    unsigned page;
    const wchar_t* name;
  };
  const auto field = [](const std::string& of, const std::string& name) {
    const std::string body = "\1" + raw::number(raw::crc_of(of), 4) + name;
    return "\x75\x70" + raw::number(body.size(), 2) + body;
  };
  const row rows[] = {
      {{"CAMI\xE0N \xE9LTIMO", ""}, 850, L"CAMIÓN ÚLTIMO"},  // as Explorer writes it
      {{"a\xF1o", ""}, 1252, L"año"},
      {{"a\xC3\xB1o", "", 0x800}, 850, L"año"},
      {{"a\xC3\xB1o", ""}, 850, L"año"},  // does not say so, but is
      {{"a\xA4o", "", 0, 0, field("a\xA4o", "a\xC3\xB1o+")}, 850, L"año+"},
      {{"a\xA4o", "", 0, 0, field("other", "otro")}, 850, L"año"},
      {{"a\\b.txt", ""}, 850, L"a/b.txt"},
  };
  for (const row& r : rows) EXPECT_EQ(name_in(raw::archive({r.entry}), r.page), r.name);
  zip::reader in;
  exception err;
  EXPECT_FALSE(in.open_bytes(binary(raw::archive({{"a", ""}})), err, {}, 12345));
  EXPECT_EQ(err, exc::BadArgument(L"").get_raw_code());
}

TEST_F(archives, times_and_attributes_are_kept) {
  const ruvo::datetime when(2024L, 2L, 29L, 13L, 30L, 41L, ruvo::times::GMT);
  zip::writer out;
  exception err;
  binary bytes;
  out.open_memory();
  EXPECT_TRUE(out.add_bytes(L"a", "x", err, when));
  put(path(L"fijo"), "y");
  std::filesystem::permissions("scratch/fijo", std::filesystem::perms::owner_read);
  EXPECT_TRUE(out.add_file(L"fijo", path(L"fijo"), err)) << err.what();
  EXPECT_TRUE(out.close(bytes, err));
  zip::reader in;
  ASSERT_TRUE(in.open_bytes(bytes, err));
  EXPECT_EQ(in.get(0).time, when);
  EXPECT_FALSE(in.get(0).is_read_only);
  EXPECT_TRUE(in.get(1).is_read_only);
  EXPECT_EQ(in.get(1).time, path(L"fijo").last_modified());
  EXPECT_TRUE(in.extract_all(path(L"destino"), err)) << err.what();
  EXPECT_EQ(path(L"destino\\a").last_modified(), when);
  EXPECT_TRUE(path(L"destino\\a").can_be_write());
  EXPECT_FALSE(path(L"destino\\fijo").can_be_write());
  for (const char* const name : {"scratch/fijo", "scratch/destino/fijo"})
    std::filesystem::permissions(name, std::filesystem::perms::owner_all);
}

// Without the field of UTC there is the local time of DOS, which may be none.
TEST_F(archives, times_of_dos_are_local_and_impossible_ones_are_the_first) {
  const auto local = [](long year, long month, long day, long hour, long minute, long second) {
    return ruvo::datetime(year, month, day, hour, minute, second, ruvo::times::LOCAL);
  };
  const ruvo::datetime first = local(1980, 1, 1, 0, 0, 0);
  const struct {
    const char* what;
    std::uint32_t time;
    ruvo::datetime expected;
  } rows[] = {
      {"any", 0x58215A32, local(2024, 1, 1, 11, 17, 36)},
      {"a leap day", 0x585DBF7D, local(2024, 2, 29, 23, 59, 58)},
      {"the last", 0xFF9FBF7D, local(2107, 12, 31, 23, 59, 58)},
      {"none", 0, first},
      {"month 0", 0x58015A32, first},
      {"month 13", 0x59A15A32, first},
      {"day 0", 0x58205A32, first},
      {"30 February", 0x585E5A32, first},
      {"hour 24", 0x5821C000, first},
      {"minute 60", 0x58210780, first},
      {"second 60", 0x5821001E, first},
  };
  for (const auto& r : rows) {
    zip::reader in;
    exception err;
    raw::entry of{"a", ""};
    of.time = r.time;
    ASSERT_TRUE(in.open_bytes(binary(raw::archive({of})), err));
    EXPECT_EQ(in.get(0).time, r.expected) << r.what;
  }
}

TEST_F(archives, numbers_of_64_bits_are_read) {
  raw::entry wide{"ancho", "0123456789"};
  wide.is_wide = true;
  std::string bytes = raw::archive({{"a", "x"}, wide, {"z", "y"}});
  zip::reader in;
  exception err;
  ASSERT_TRUE(in.open_bytes(binary(bytes), err)) << err.what();
  EXPECT_EQ(bytes_of(in, L"ancho"), "0123456789");
  EXPECT_EQ(bytes_of(in, L"z"), "y");
  EXPECT_TRUE(in.verify_all(err)) << err.what();
  bytes.replace(bytes.rfind("\1\0\x18\0"s), 4, "\1\0\x17\0"s);
  EXPECT_FALSE(in.open_bytes(binary(bytes), err)) << "without the whole place";
}

TEST_F(archives, folders_are_packed_and_unpacked_with_filter_and_callback) {
  const auto all = grow();
  exception err;
  recorder packed, unpacked, checked;
  ASSERT_TRUE(zip::compress(path(L"origen"), path(L"origen\\a.zip"), err, nullptr, &packed)) << err.what();
  ASSERT_TRUE(zip::compress(path(L"origen"), path(L"origen\\a.zip"), err)) << "it leaves itself out";
  ASSERT_TRUE(zip::extract(path(L"origen\\a.zip"), path(L"destino"), err, nullptr, &unpacked)) << err.what();
  ASSERT_TRUE(zip::verify(path(L"origen\\a.zip"), err, &checked)) << err.what();
  EXPECT_EQ(read_tree("destino"), all);
  EXPECT_TRUE(path(L"destino\\nada").is_directory());
  EXPECT_EQ(packed.read.size(), all.size() + 3);
  EXPECT_TRUE(packed.read == unpacked.read && packed.read == checked.read);
  EXPECT_EQ(packed.finished + unpacked.finished + checked.finished, 3);
  EXPECT_EQ(packed.pieces, 5);
  EXPECT_EQ(unpacked.pieces, checked.pieces);

  without no_sub(L"sub");
  EXPECT_TRUE(zip::extract(path(L"origen\\a.zip"), path(L"parte"), err, &no_sub));
  EXPECT_EQ(read_tree("parte").size(), 2u);
  EXPECT_FALSE(path(L"parte\\sub").exists());
  EXPECT_TRUE(zip::compress(path(L"origen"), path(L"b.zip"), err, &no_sub));
  zip::reader in;
  zip::entry found;
  ASSERT_TRUE(in.open(path(L"b.zip"), err));
  EXPECT_TRUE(in.find(L"nada\\", found) && !in.find(L"sub/", found) && !in.find(L"A.TXT", found));

  in.close();  // what is open is not replaced
  EXPECT_TRUE(zip::compress(path(L"origen\\sub\\b.bin"), path(L"b.zip"), err)) << "one file";
  ASSERT_TRUE(in.open(path(L"b.zip"), err));
  EXPECT_EQ(in.size(), 1u);
  EXPECT_TRUE(in.extract(in.get(0), path(L"solo"), err));
  EXPECT_TRUE(get(path(L"solo")) == all.at("sub/b.bin"));
}

TEST_F(archives, stopping_leaves_nothing_half) {
  grow();
  exception err;
  ASSERT_TRUE(zip::compress(path(L"origen"), path(L"a.zip"), err));
  const std::string before = get(path(L"a.zip"));
  for (const bool within : {false, true}) {
    recorder packing, unpacking;
    packing.stops_after = unpacking.stops_after = within ? 0 : 2;
    packing.stops_within = unpacking.stops_within = within;
    EXPECT_FALSE(zip::compress(path(L"origen"), path(L"a.zip"), err, nullptr, &packing));
    EXPECT_EQ(err, exc::ProcessCanceled().get_raw_code());
    EXPECT_EQ(get(path(L"a.zip")), before);
    EXPECT_TRUE(zip::extract(path(L"a.zip"), path(L"destino"), err, nullptr, &unpacking)) << err.what();
    EXPECT_FALSE(path(L"destino\\sub\\b.bin").exists());
    EXPECT_EQ(packing.finished + unpacking.finished, 2);
  }
  EXPECT_EQ(names(), (names_type{"a.zip", "destino", "origen"}));
  struct throwing : zip::progress_callback {
    void on_progress(const file&, unsigned long long, unsigned long long) override {
      throw exc::OutOfRange();
    }
  } broken;
  EXPECT_THROW(zip::verify(path(L"a.zip"), err, &broken), exc::OutOfRange);
  EXPECT_THROW(zip::compress(path(L"origen"), path(L"a.zip"), err, nullptr, &broken), exc::OutOfRange);
  EXPECT_EQ(get(path(L"a.zip")), before);
}

TEST_F(archives, failures_name_their_reason) {
  exception err;
  binary out;
  put(path(L"a.txt"), "no es un archivo");
  grow();
  const auto failed = [&err](bool done) { return done ? 0 : err.get_raw_code(); };
  const auto origin = exc::zipNoOrigen(L"").get_raw_code(), target = exc::zipNoDestino(L"").get_raw_code();
  EXPECT_EQ(failed(zip::compress(path(L"falta"), path(L"a.zip"), err)), origin);
  EXPECT_EQ(err.get_detail(), L"scratch\\falta");
  EXPECT_EQ(failed(zip::compress(path(L"a.txt"), path(L"falta\\a.zip"), err)), target);
  EXPECT_EQ(failed(zip::compress(path(L"a.txt"), path(L"origen"), err)), target);
  EXPECT_EQ(failed(zip::extract(path(L"falta.zip"), path(L"destino"), err)), origin);
  EXPECT_EQ(failed(zip::extract(path(L"a.txt"), path(L"destino"), err)),
            exc::zipBadFormated(L"").get_raw_code());
  EXPECT_FALSE(path(L"destino").exists());
  ASSERT_TRUE(zip::compress(path(L"a.txt"), path(L"a.zip"), err));
  EXPECT_EQ(failed(zip::extract(path(L"a.zip"), path(L"a.txt"), err)), target) << "a file as the folder";
  zip::reader in;
  ASSERT_TRUE(in.open(path(L"a.zip"), err));
  EXPECT_EQ(failed(in.read(L"falta", out, err)), origin);
  zip::entry stranger = in.get(0);
  stranger.name = L"otro";
  EXPECT_EQ(failed(in.read(stranger, out, err)), exc::BadArgument(L"").get_raw_code());
  EXPECT_THROW(in.get(1), std::out_of_range);

  zip::writer writer;
  const auto name = exc::zipUnsafeName(L"").get_raw_code(), argument = exc::BadArgument(L"").get_raw_code();
  EXPECT_EQ(failed(writer.add_bytes(L"a", "x", err)), argument);
  writer.open_memory();
  EXPECT_TRUE(writer.add_bytes(L"año", "x", err));
  for (const wchar_t* const bad : {L"../a", L"AÑO", L"an\x303o", L"a:b", L"", L"a\xD800", L"b/"})
    EXPECT_EQ(failed(writer.add_bytes(bad, "x", err)), name) << ruvo::texto::to_utf_8(bad);
  EXPECT_EQ(failed(writer.add_file(L"b", path(L"falta"), err)), exc::fileNotFound(file()).get_raw_code());
  EXPECT_EQ(failed(writer.close(err)), argument) << "it has no file";
}

// A folder in which something cannot be read is packed without it.
TEST_F(archives, what_fails_is_left_out_and_reported) {
  grow();
#ifndef _WIN32
  std::filesystem::create_symlink("a.txt", "scratch/origen/enlace");
  recorder packed;
  exception err;
  EXPECT_FALSE(zip::compress(path(L"origen"), path(L"a.zip"), err, nullptr, &packed));
  EXPECT_EQ(err, exc::zipUnsupported(L"").get_raw_code());
  EXPECT_EQ(packed.failures.size(), 1u);
  EXPECT_EQ(packed.read.size(), 7u);
  EXPECT_TRUE(zip::verify(path(L"a.zip"), err = exception()));

  // The system's services of this build refuse the file operation that the variable counts down to.
  std::filesystem::remove("scratch/origen/enlace");
  put(path(L"a.zip"), "viejo");
  unsigned failures = 0;
  for (unsigned step = 1;; ++step) {
    setenv("KESTA_FAIL_FILE_STEP", std::to_string(step).c_str(), 1);
    const bool done = zip::compress(path(L"origen"), path(L"a.zip"), err);
    unsetenv("KESTA_FAIL_FILE_STEP");
    EXPECT_EQ(names(), (names_type{"a.zip", "origen"})) << step;
    if (done) break;
    EXPECT_EQ(err, exc::zipCreateOpenError().get_raw_code()) << step;
    EXPECT_EQ(get(path(L"a.zip")), "viejo") << step;
    ++failures;
  }
  EXPECT_GE(failures, 5u);
  EXPECT_TRUE(zip::verify(path(L"a.zip"), err)) << err.what();
#endif
}

TEST_F(archives, more_entries_than_16_bits_count) {
  constexpr std::size_t count = 70'000;
  zip::writer out;
  exception err;
  binary bytes;
  out.open_memory();
  const ruvo::datetime when(1'700'000'000LL);
  for (std::size_t n = 0; n < count; ++n)
    ASSERT_TRUE(out.add_bytes(L"carpeta/fichero " + std::to_wstring(n), "x", err, when));
  ASSERT_TRUE(out.close(bytes, err));
  zip::reader in;
  ASSERT_TRUE(in.open_bytes(std::move(bytes), err)) << err.what();
  ASSERT_EQ(in.size(), count);
  zip::entry found;
  for (std::size_t n = 0; n < count; n += 997) {
    ASSERT_TRUE(in.find(L"carpeta\\fichero " + std::to_wstring(n), found));
    EXPECT_EQ(found.index, n);
  }
  EXPECT_TRUE(in.verify_all(err)) << err.what();
}

}  // namespace
