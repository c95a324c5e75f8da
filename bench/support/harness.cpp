// SPDX-License-Identifier: BSL-1.0
#include "support/harness.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace bench {

namespace {

constexpr double seconds_each = 0.3;  // for each competitor
constexpr double turn = 1e6;          // nanoseconds: long beside the clock's own 100
constexpr std::size_t least_rounds = 15;

/// Nanoseconds for each of `runs` runs.
double time(const competitor& one, int runs) {
  using clock = std::chrono::steady_clock;
  const auto start = clock::now();
  for (int i = 0; i < runs; ++i) one.run();
  return std::chrono::duration<double, std::nano>(clock::now() - start).count() / runs;
}

/// The number of runs that fill a turn; the runs made to find it also warm up.
int runs_of_a_turn(const competitor& one) {
  int runs = 1;
  double each = time(one, runs);
  while (each * runs < turn / 4) {
    runs *= 2;
    each = time(one, runs);
  }
  return std::max(1, static_cast<int>(std::lround(turn / each)));
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// Nanoseconds of one run, by competitor and round.
std::vector<std::vector<double>> measure(const std::vector<competitor>& all) {
  std::vector<int> runs;
  for (const competitor& one : all) runs.push_back(runs_of_a_turn(one));
  std::vector<std::vector<double>> times(all.size());
  double left = seconds_each * 1e9 * static_cast<double>(all.size());
  while (left > 0 || times[0].size() < least_rounds) {
    for (std::size_t n = 0; n < all.size(); ++n) {
      times[n].push_back(time(all[n], runs[n]));
      left -= times[n].back() * runs[n];
    }
  }
  return times;
}

/// The median of the ratios of neighbouring turns: what slows the machine for a while cancels out.
double ratio_to(const std::vector<double>& peer, const std::vector<double>& own) {
  std::vector<double> ratios;
  for (std::size_t n = 0; n < own.size(); ++n) ratios.push_back(peer[n] / own[n]);
  return median(std::move(ratios));
}

}  // namespace

table::table(std::vector<std::string> peers) {
  std::printf("%-19s %-14s %14s", "", "", "kesta");
  for (const std::string& peer : peers) std::printf("   %-16s", ("x " + peer).c_str());
  std::printf("\n");
}

table::~table() {
  if (checked_ > 0) std::printf("%d of %d targets missed\n", missed_, checked_);
}

void table::row(const std::string& subject, const std::string& corpus, amount of_one_run,
                const std::vector<competitor>& all, const std::vector<target>& targets) {
  const std::vector<std::vector<double>> times = measure(all);
  const double own = median(times[0]);
  if (of_one_run.what == amount::characters) {
    std::printf("%-19s %-14.14s %7.0f Mchar/s", subject.c_str(), corpus.c_str(),
                of_one_run.count * 1e3 / own);
  } else {
    std::printf("%-19s %-14.14s %11.1f ns", subject.c_str(), corpus.c_str(), own / of_one_run.count);
  }
  for (std::size_t n = 1; n < all.size(); ++n) {
    const double ratio = ratio_to(times[n], times[0]);
    std::string verdict;
    for (const target& wanted : targets) {
      if (wanted.peer != all[n].name) continue;
      const bool reached = ratio >= wanted.ratio;
      char text[32];
      std::snprintf(text, sizeof text, "(%.1f %s)", wanted.ratio, reached ? "ok" : "MISS");
      verdict = text;
      ++checked_;
      if (!reached) ++missed_;
    }
    std::printf("  %5.2f %-11s", ratio, verdict.c_str());
  }
  std::printf("\n");
  std::fflush(stdout);
}

}  // namespace bench
