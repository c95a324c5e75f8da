// SPDX-License-Identifier: BSL-1.0

// Whole files, against the system's own calls, and lines, against the standard library's streams.
//
//   bench_files

#include <ruvo/binary.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/files/lines.hpp>
#include <ruvo/files/whole.hpp>

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "support/harness.hpp"
#include "support/system_files.hpp"

using namespace std::string_literals;

namespace {

constexpr std::size_t file_size = 100'000'000;

/// Lines in a few letters, of which some are not ASCII.
std::string document(const std::string& line) {
  std::string out;
  out.reserve(file_size + line.size());
  while (out.size() < file_size) out += line;
  return out;
}

/// A file that goes away again.
class sample {
 public:
  explicit sample(const std::string& content)
      : path_(ruvo::files::write(ruvo::binary(content),
                                 ruvo::files::get_temporal_file(L"bench", L"", L"txt"))) {}
  sample(const sample&) = delete;
  sample& operator=(const sample&) = delete;
  ~sample() { path_.erase(); }
  const ruvo::file& path() const { return path_; }

 private:
  ruvo::file path_;
};

template <class Content>
void read_with_kesta(const ruvo::file& path) {
  Content content;
  ruvo::exception err;
  if (!ruvo::files::read(content, path, err)) std::printf("failed: %s\n", err.what());
  bench::use(content);
}

void compare_bytes(bench::table& results) {
  const sample file(document("\xFF\0\x7F\x80"s));
  const bench::amount amount{static_cast<double>(file.path().size()), bench::amount::characters};
  results.row("read bytes", "binary", amount,
              {{"kesta", [&] { read_with_kesta<std::string>(file.path()); }},
               {"system", [&] { bench::use(bench::read_with_system(file.path())); }}},
              {{"system", 0.95}});
}

void compare_text(bench::table& results, const char* name, const std::string& line) {
  const sample file(document(line));
  const bench::amount amount{static_cast<double>(file.path().size()), bench::amount::characters};
  results.row(
      "read wide text", name, amount,
      {{"kesta", [&] { read_with_kesta<std::wstring>(file.path()); }},
       {"system", [&] { bench::use(bench::widen_with_system(bench::read_with_system(file.path()))); }}},
      {{"system", 1.2}});
}

std::size_t bytes_by_getline(const ruvo::file& path) {
  std::ifstream in(std::filesystem::path(path.c_str()), std::ios::binary);
  std::size_t out = 0;
  for (std::string line; std::getline(in, line);) out += line.size();
  return out;
}

std::size_t units_by_getline(const ruvo::file& path) {
  std::ifstream in(std::filesystem::path(path.c_str()), std::ios::binary);
  std::size_t out = 0;
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    out += bench::widen_with_system(line).size();
  }
  return out;
}

std::size_t bytes_by_kesta(const ruvo::file& path) {
  ruvo::files::line_reader in(path, {.ends = ruvo::files::line_ends::plain_lf});
  std::size_t out = 0;
  for (std::string_view line; in.next_bytes(line);) out += line.size();
  return out;
}

std::size_t units_by_kesta(const ruvo::file& path) {
  ruvo::files::line_reader in(path);
  std::size_t out = 0;
  for (std::wstring line; in.next(line);) out += line.size();
  return out;
}

void compare_lines(bench::table& results, const char* name, const std::string& line) {
  const sample file(document(line));
  const bench::amount amount{static_cast<double>(file.path().size()), bench::amount::characters};
  if (bytes_by_kesta(file.path()) != bytes_by_getline(file.path()) ||
      units_by_kesta(file.path()) != units_by_getline(file.path()))
    std::printf("the lines differ\n");
  results.row("read lines of bytes", name, amount,
              {{"kesta", [&] { bench::use(bytes_by_kesta(file.path())); }},
               {"std::getline", [&] { bench::use(bytes_by_getline(file.path())); }}},
              {{"std::getline", 1.0}});
  results.row("read lines as wide text", name, amount,
              {{"kesta", [&] { bench::use(units_by_kesta(file.path())); }},
               {"getline, widened", [&] { bench::use(units_by_getline(file.path())); }}},
              {{"getline, widened", 1.0}});
}

void compare_reading() {
  bench::table results("files");  // the system: ReadFile, and MultiByteToWideChar for wide text
  compare_bytes(results);
  compare_text(results, "English", "In a village of La Mancha there lived not long ago a gentleman.\r\n");
  compare_text(
      results, "Spanish",
      "En un lugar de la Mancha, no há mucho tiempo que vivía un hidalgo, galgo corredor y señor.\r\n");
  compare_text(results, "Greek", "Πες μου, Μούσα, για τον πολύτροπο άντρα.\r\n");
  compare_lines(results, "English", "In a village of La Mancha there lived not long ago a gentleman.\r\n");
  compare_lines(
      results, "Spanish",
      "En un lugar de la Mancha, no há mucho tiempo que vivía un hidalgo, galgo corredor y señor.\r\n");
}

}  // namespace

int main() { compare_reading(); }
