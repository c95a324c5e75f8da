// SPDX-License-Identifier: BSL-1.0

// Whole files, against the system's own calls.
//
//   bench_files

#include <ruvo/binary.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/files/whole.hpp>

#include <cstdio>
#include <string>

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

void compare_reading() {
  bench::table results("files");  // the peer: ReadFile, and MultiByteToWideChar for wide text
  compare_bytes(results);
  compare_text(results, "English", "In a village of La Mancha there lived not long ago a gentleman.\r\n");
  compare_text(
      results, "Spanish",
      "En un lugar de la Mancha, no há mucho tiempo que vivía un hidalgo, galgo corredor y señor.\r\n");
  compare_text(results, "Greek", "Πες μου, Μούσα, για τον πολύτροπο άντρα.\r\n");
}

}  // namespace

int main() { compare_reading(); }
