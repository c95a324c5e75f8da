// SPDX-License-Identifier: BSL-1.0

// Zip archives in memory, against zlib called for the same contents without an archive around them; a file of
// many entries opened, against a bare loop over its list.
//
//   bench_archives

#include <ruvo/files/whole.hpp>
#include <ruvo/zip.hpp>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <zlib.h>

#include "support/corpora.hpp"
#include "support/harness.hpp"

namespace {

constexpr std::size_t whole_size = 8'000'000;

std::string noise() {
  std::mt19937 random(1);
  std::string out(whole_size, '\0');
  for (char& c : out) c = static_cast<char>(random());
  return out;
}

std::vector<std::string> cut(const std::string& whole, std::size_t size) {
  std::vector<std::string> out;
  for (std::size_t at = 0; at < whole.size(); at += size) out.push_back(whole.substr(at, size));
  return out;
}

Bytef* bytes_of(const std::string& text) { return reinterpret_cast<Bytef*>(const_cast<char*>(text.data())); }

/// Deflates at the usual level, without a frame, and takes the checksum.
std::string pack_with_zlib(const std::string& content) {
  z_stream stream{};
  deflateInit2(&stream, 6, Z_DEFLATED, -15, 8, Z_DEFAULT_STRATEGY);
  std::string out(deflateBound(&stream, static_cast<uLong>(content.size())), '\0');
  stream.next_in = bytes_of(content);
  stream.avail_in = static_cast<uInt>(content.size());
  stream.next_out = bytes_of(out);
  stream.avail_out = static_cast<uInt>(out.size());
  deflate(&stream, Z_FINISH);
  out.resize(stream.total_out);
  deflateEnd(&stream);
  bench::use(crc32(0, bytes_of(content), static_cast<uInt>(content.size())));
  return out;
}

void unpack_with_zlib(const std::string& packed, std::size_t size) {
  z_stream stream{};
  inflateInit2(&stream, -15);
  std::string out(size, '\0');
  stream.next_in = bytes_of(packed);
  stream.avail_in = static_cast<uInt>(packed.size());
  stream.next_out = bytes_of(out);
  stream.avail_out = static_cast<uInt>(out.size());
  if (inflate(&stream, Z_FINISH) != Z_STREAM_END) std::puts("failed: zlib");
  inflateEnd(&stream);
  bench::use(crc32(0, bytes_of(out), static_cast<uInt>(out.size())));
}

ruvo::binary pack_with_kesta(const std::vector<std::string>& contents) {
  ruvo::zip::writer out;
  ruvo::exception err;
  ruvo::binary archive;
  out.open_memory();
  for (std::size_t n = 0; n < contents.size(); ++n)
    if (!out.add_bytes(std::to_wstring(n), std::string_view(contents[n]), err))
      std::printf("failed: %s\n", err.what());
  if (!out.close(archive, err)) std::printf("failed: %s\n", err.what());
  return archive;
}

void unpack_with_kesta(ruvo::zip::reader& in) {
  ruvo::exception err;
  for (std::size_t n = 0; n < in.size(); ++n) {
    ruvo::binary content;
    if (!in.read(in.get(n), content, err)) std::printf("failed: %s\n", err.what());
    bench::use(content);
  }
}

void compare(bench::table& results, const char* name, const std::vector<std::string>& contents) {
  const bench::amount amount{static_cast<double>(whole_size), bench::amount::characters};
  std::vector<std::string> packed;
  for (const std::string& each : contents) packed.push_back(pack_with_zlib(each));
  results.row("pack", name, amount,
              {{"kesta", [&] { bench::use(pack_with_kesta(contents)); }},
               {"zlib",
                [&] {
                  for (const std::string& each : contents) bench::use(pack_with_zlib(each));
                }}},
              {{"zlib", 0.9}});
  ruvo::zip::reader in;
  ruvo::exception err;
  if (!in.open_bytes(pack_with_kesta(contents), err)) std::printf("failed: %s\n", err.what());
  results.row("unpack", name, amount,
              {{"kesta", [&] { unpack_with_kesta(in); }},
               {"zlib",
                [&] {
                  for (std::size_t n = 0; n < packed.size(); ++n)
                    unpack_with_zlib(packed[n], contents[n].size());
                }}},
              {{"zlib", 0.9}});
}

// --- many entries

constexpr std::size_t many = 70'000;

std::wstring name_of(std::size_t n) { return L"una carpeta/fichero " + std::to_wstring(n) + L".txt"; }

ruvo::file write_many() {
  ruvo::zip::writer out;
  ruvo::exception err;
  ruvo::binary archive;
  out.open_memory();
  out.set_level(0);
  for (std::size_t n = 0; n < many; ++n)
    if (!out.add_bytes(name_of(n), "x", err)) std::printf("failed: %s\n", err.what());
  if (!out.close(archive, err)) std::printf("failed: %s\n", err.what());
  return ruvo::files::write(archive, ruvo::files::get_temporal_file(L"bench", L"", L"zip"));
}

std::size_t number_at(const std::string& bytes, std::size_t at, unsigned count) {
  std::size_t out = 0;
  while (count-- > 0) out = out << 8 | static_cast<unsigned char>(bytes[at + count]);
  return out;
}

/// Reads the list of an archive without a comment in one piece, keeps where each record begins, and looks at
/// lengths, sizes and places.
void walk(const std::filesystem::path& path) {
  constexpr std::size_t end_size = 22, record_size = 46;
  std::ifstream in(path, std::ios::binary);
  std::string end(end_size, '\0');
  in.seekg(-static_cast<std::streamoff>(end_size), std::ios::end);
  in.read(end.data(), static_cast<std::streamsize>(end.size()));
  std::string list(number_at(end, 12, 4), '\0');
  in.seekg(static_cast<std::streamoff>(number_at(end, 16, 4)));
  in.read(list.data(), static_cast<std::streamsize>(list.size()));
  std::vector<std::uint32_t> records;
  std::size_t sum = 0;
  for (std::size_t at = 0; list.size() - at >= record_size && number_at(list, at, 4) == 0x02014B50;) {
    records.push_back(static_cast<std::uint32_t>(at));
    sum += number_at(list, at + 20, 4) + number_at(list, at + 24, 4) + number_at(list, at + 42, 4);
    at +=
        record_size + number_at(list, at + 28, 2) + number_at(list, at + 30, 2) + number_at(list, at + 32, 2);
  }
  if (records.size() != many) std::puts("failed: walk");
  bench::use(sum);
}

void compare_opening(bench::table& results) {
  const ruvo::file path = write_many();
  const std::filesystem::path native = path.unix_path();
  const auto open = [&path](bool finds) {
    ruvo::zip::reader in;
    ruvo::exception err;
    ruvo::zip::entry found;
    if (!in.open(path, err)) std::printf("failed: %s\n", err.what());
    if (in.size() != many || (finds && !in.find(name_of(many - 1), found))) std::puts("failed: entries");
  };
  const bench::amount amount{static_cast<double>(many), bench::amount::operations};
  results.row("open", "70,000 entries", amount,
              {{"kesta", [&] { open(false); }}, {"bare loop", [&] { walk(native); }}}, {{"bare loop", 0.5}});
  results.row("open, find one", "70,000 entries", amount,
              {{"kesta", [&] { open(true); }}, {"bare loop", [&] { walk(native); }}}, {});
  path.erase();
}

}  // namespace

int main() {
  bench::table results("archives");
  const std::string text = bench::catalogue(whole_size).substr(0, whole_size);
  compare(results, "JSON in one piece", {text});
  compare(results, "JSON in 800 pieces", cut(text, 10'000));
  compare(results, "noise", {noise()});
  compare_opening(results);
}
