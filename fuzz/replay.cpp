// SPDX-License-Identifier: BSL-1.0

// Runs a fuzz target without libFuzzer: on each file that the arguments name, or that lies in a folder among
// them, and on inputs made of these: cut, damaged, and in pieces with the entries of the dictionary
// (-dict=FILE).

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz.hpp"
#include "support/dice.hpp"

namespace {

std::string input;  // the one that is tried
unsigned inputs = 0;

void run(std::string bytes) {
  input = std::move(bytes);
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
  ++inputs;
}

void show_input(int) {
  std::fputs("the input: ", stderr);
  for (const char c : input) std::fprintf(stderr, "\\x%02x", static_cast<unsigned char>(c));
  std::fputs("\n", stderr);
  std::_Exit(3);
}

std::string content(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) fuzz::fail("the file can be read", path.string().c_str(), 0);
  return {std::istreambuf_iterator<char>(in), {}};
}

/// The entries in the form that libFuzzer reads: "..." with \\, \" and \xNN.
std::vector<std::string> entries(const std::filesystem::path& dictionary) {
  std::vector<std::string> out;
  std::ifstream in(dictionary);
  for (std::string line; std::getline(in, line);) {
    if (!line.starts_with('"')) continue;
    std::string& entry = out.emplace_back();
    for (std::size_t at = 1; at < line.rfind('"'); ++at) {
      const bool escaped = line[at] == '\\' && ++at, by_number = escaped && line[at] == 'x';
      entry += by_number ? static_cast<char>(std::stoi(line.substr(at + 1, 2), nullptr, 16)) : line[at];
      if (by_number) at += 2;
    }
  }
  return out;
}

/// Makes inputs of the kept ones and of the dictionary.
class maker : public dice {
 public:
  maker(std::vector<std::string> kept, std::vector<std::string> words)
      : dice(20261122), kept_(std::move(kept)), words_(std::move(words)) {}

  std::string input() {
    if (one_in(2)) return damaged(part_of(any(kept_), 600));
    std::string row = one_in(2) ? part_of(any(kept_), 60) : "";
    for (unsigned n = below(20); n > 0; --n) row += piece();
    return row;
  }

 private:
  std::string part_of(const std::string& whole, std::size_t most) {
    return whole.substr(whole.size() > most ? below(whole.size()) : 0, most);
  }
  std::string piece() {
    return words_.empty() || one_in(4) ? part_of(any(kept_), 1 + below(8)) : any(words_);
  }
  std::string damaged(std::string text) {
    for (unsigned n = 1 + below(4); n > 0 && !text.empty(); --n) {
      const std::size_t at = below(text.size());
      switch (below(5)) {
        case 0:
          text.erase(at, 1 + below(5));
          break;
        case 1:
          text[at] = piece().append(1, '\0')[0];
          break;
        case 2:
          text.insert(at, text.substr(below(text.size()), below(30)));
          break;
        case 3:
          text.resize(at);
          break;
        default:
          text.insert(at, piece());
      }
    }
    return text;
  }

  std::vector<std::string> kept_, words_;
};

}  // namespace

int main(int argc, char** argv) {
  std::signal(SIGABRT, show_input);
  std::vector<std::string> kept, words;
  for (int n = 1; n < argc; ++n) {
    const std::string argument = argv[n];
    if (argument.starts_with("-dict=")) {
      words = entries(argument.substr(6));
    } else if (std::filesystem::is_directory(argument)) {
      for (const auto& entry : std::filesystem::directory_iterator(argument)) kept.push_back(content(entry));
    } else {
      kept.push_back(content(argument));
    }
  }
  if (kept.empty()) return 1;
  for (const std::string& each : kept) run(each);
  maker make(std::move(kept), std::move(words));
  for (unsigned n = 5000 * rounds(); n > 0; --n) run(make.input());
  std::printf("%s: %u inputs\n", argv[0], inputs);
}
