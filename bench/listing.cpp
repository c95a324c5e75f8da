// SPDX-License-Identifier: BSL-1.0

// What it takes to list a tree of 20,000 files with their kinds and sizes, against the bare system calls and
// against the standard library.

#include <ruvo/application.hpp>
#include <ruvo/files.hpp>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "support/harness.hpp"
#include "support/system_listing.hpp"

namespace {

namespace fs = std::filesystem;

constexpr int wide = 10, files_each = 200;  // 10 folders of 10 folders of 200 files

using sum = bench::listed;

void make_tree(const fs::path& root) {
  const std::string content(100, 'x');
  for (int outer = 0; outer < wide; ++outer) {
    for (int inner = 0; inner < wide; ++inner) {
      const fs::path folder = root / ("carpeta " + std::to_string(outer)) / ("mes " + std::to_string(inner));
      fs::create_directories(folder);
      for (int n = 0; n < files_each; ++n) {
        std::ofstream out(folder / ("documento " + std::to_string(n) + ".txt"), std::ios::binary);
        out.write(content.data(), n % 100);
      }
    }
  }
}

sum list_with_kesta(const fs::path& root) {
  struct counter : ruvo::fileCallback {
    void onRead(const ruvo::file& entry) override {
      if (entry.is_directory()) {
        ++seen.folders;
      } else {
        ++seen.files;
        seen.bytes += entry.size();
      }
    }
    sum seen;
  } out;
  ruvo::files::RecursiveCallBack recursive(out);
  ruvo::exception err;
  ruvo::files::directory_list(root.wstring(), err, recursive);
  return out.seen;
}

sum list_with_the_library(const fs::path& root) {
  sum out;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root)) {
    if (entry.is_directory()) {
      ++out.folders;
    } else {
      ++out.files;
      out.bytes += entry.file_size();
    }
  }
  return out;
}

int compare(const fs::path& root) {
  make_tree(root);
  const sum expected = bench::list_with_system(root.wstring());
  if (list_with_kesta(root) != expected || list_with_the_library(root) != expected ||
      expected.files != wide * wide * files_each) {
    std::printf("the walks do not agree\n");
    return 1;
  }
  bench::table table("listing");
  const auto entries = static_cast<double>(expected.files + expected.folders);
  table.row("list", "20,000 files", {entries, bench::amount::operations},
            {{"kesta", [&] { bench::use(list_with_kesta(root)); }},
             {"FindFirstFileEx", [&] { bench::use(bench::list_with_system(root.wstring())); }},
             {"std::filesystem", [&] { bench::use(list_with_the_library(root)); }}},
            {{"FindFirstFileEx", 0.95}, {"std::filesystem", 2.5}});
  return 0;
}

}  // namespace

int main() {
  const fs::path root =
      fs::temp_directory_path() / ("kesta listing " + std::to_string(ruvo::application::processID()));
  const int result = compare(root);
  ruvo::exception err;
  if (ruvo::files::erase(root.wstring(), err)) return result;
  std::printf("%ls: not erased\n", root.c_str());
  return 1;
}
