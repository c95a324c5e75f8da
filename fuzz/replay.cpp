// Runs a fuzz target once on each file named by the arguments, and on each file of the folders among them.

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz.hpp"

namespace {

int inputs = 0;

void replay(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) fuzz::fail("the file can be read", path.string().c_str(), 0);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  ++inputs;
}

}  // namespace

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    if (!std::filesystem::is_directory(argv[i])) {
      replay(argv[i]);
      continue;
    }
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) replay(entry.path());
  }
  std::printf("%s: %d inputs replayed\n", argv[0], inputs);
  return inputs > 0 ? 0 : 1;
}
