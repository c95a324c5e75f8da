// SPDX-License-Identifier: BSL-1.0

// What the library adds to the start and end of a program: one that uses nothing of it and one that reads 1
// KB, against a program in C++ with the same runtime that does nothing.

#include <chrono>
#include <string>
#include <vector>

#include "support/harness.hpp"
#include "support/system_programs.hpp"

namespace {

constexpr int turns = 41;

/// Nanoseconds.
double time_of(const std::string& program) {
  using clock = std::chrono::steady_clock;
  const auto start = clock::now();
  bench::output_of(program);
  return std::chrono::duration<double, std::nano>(clock::now() - start).count();
}

void compare(bench::table& table, const char* what, const char* program) {
  time_of(program), time_of("start_bare");  // their files are read once
  std::vector<double> own, bare, ratios;
  for (int turn = 0; turn < turns; ++turn) {
    own.push_back(time_of(program));
    bare.push_back(time_of("start_bare"));
    ratios.push_back(own.back() / bare.back());
  }
  table.line({"start and end", what, "ns", "C++ program", bench::median(own), bench::median(bare),
              bench::median(ratios), bench::comparison::cost},
             {{"C++ program", 1.25}});
}

}  // namespace

int main() {
  bench::table table("start");
  compare(table, "uses nothing", "start_linked");
  compare(table, "reads 1 KB", "start_reads");
}
