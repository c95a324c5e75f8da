// SPDX-License-Identifier: BSL-1.0

// docs/texto.md has an example of every function of the headers. That the examples hold is a test of the
// guide.

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

namespace {

std::string read(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

TEST(texto_page, names_every_function) {
  const std::string page = read(KESTA_SOURCE_DIR "/docs/texto.md");
  int functions = 0;
  for (const auto& header : std::filesystem::directory_iterator(KESTA_SOURCE_DIR "/include/ruvo/texto")) {
    const std::string text = read(header.path());
    for (std::size_t at = 0; (at = text.find("KESTA_API ", at)) != text.npos; ++at) {
      if (text.compare(at - 6, 6, "class ") == 0) continue;
      const std::size_t end = text.find('(', at), begin = text.find_last_of(" *&\n", end) + 1;
      const std::string name = text.substr(begin, end - begin);
      EXPECT_TRUE(page.find("texto::" + name + "(") != page.npos ||
                  page.find("texto::" + name + "_(") != page.npos)
          << name;
      ++functions;
    }
  }
  EXPECT_GT(functions, 100);
}

}  // namespace
