// SPDX-License-Identifier: BSL-1.0
#include "support/harness.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace bench {

namespace {

constexpr double seconds_each = 0.3;  // for each competitor
constexpr double turn = 1e6;          // nanoseconds: long beside the clock's own 100
constexpr std::size_t least_rounds = 15, rounds_of_slow_ones = 5;

using clock = std::chrono::steady_clock;

double since(clock::time_point start) {
  return std::chrono::duration<double, std::nano>(clock::now() - start).count();
}

/// Nanoseconds for each of `runs` runs.
double time(const competitor& one, int runs) {
  if (one.prepare) one.prepare(runs);
  const auto start = clock::now();
  for (int i = 0; i < runs; ++i) one.run();
  return since(start) / runs;
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

/// Nanoseconds of one run, by competitor and round.
std::vector<std::vector<double>> measure(const std::vector<competitor>& all) {
  std::vector<int> runs;
  for (const competitor& one : all) runs.push_back(runs_of_a_turn(one));
  std::vector<std::vector<double>> times(all.size());
  const auto start = clock::now();
  const double budget = seconds_each * 1e9 * static_cast<double>(all.size());
  const auto enough = [&] {
    const double spent = since(start) / budget;
    return spent >= 1 && times[0].size() >= (spent < 4 ? least_rounds : rounds_of_slow_ones);
  };
  while (!enough()) {
    for (std::size_t n = 0; n < all.size(); ++n) times[n].push_back(time(all[n], runs[n]));
  }
  return times;
}

/// The median of the ratios of neighbouring turns: what slows the machine for a while cancels out.
double ratio_to(const std::vector<double>& peer, const std::vector<double>& own) {
  std::vector<double> ratios;
  for (std::size_t n = 0; n < own.size(); ++n) ratios.push_back(peer[n] / own[n]);
  return median(std::move(ratios));
}

std::string shown(double figure, std::string unit) {
  if (unit == "ns" && figure >= 1e4) {
    unit = figure >= 1e6 ? "ms" : "us";
    figure /= figure >= 1e6 ? 1e6 : 1e3;
  }
  char text[32];
  std::snprintf(text, sizeof text, "%.*f ", figure < 10 ? 2 : figure < 100 ? 1 : 0, figure);
  return text + unit;
}

}  // namespace

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

table::table(std::string subject) : subject_(std::move(subject)) {}

table::~table() {
  if (checked_ > 0) std::printf("%s: %d of %d targets missed\n", subject_.c_str(), missed_, checked_);
}

void table::line(const comparison& all, const std::vector<target>& targets) {
  const bool cost = all.what == comparison::cost;
  std::string verdict = "-";
  for (const target& wanted : targets) {
    if (wanted.peer != all.peer) continue;
    const bool reached = cost ? all.ratio <= wanted.ratio : all.ratio >= wanted.ratio;
    char text[48];
    std::snprintf(text, sizeof text, "at %s %.2f: %s", cost ? "most" : "least", wanted.ratio,
                  reached ? "ok" : "MISS");
    verdict = text;
    ++checked_;
    if (!reached) ++missed_;
  }
  std::printf("%-7s | %-21s | %-18s | %13s | %-16s | %13s | %7.2f %-2s | %s\n", subject_.c_str(),
              all.row.c_str(), all.of.c_str(), shown(all.own, all.unit).c_str(), all.peer.c_str(),
              shown(all.its, all.unit).c_str(), all.ratio, cost ? "of" : "x", verdict.c_str());
  std::fflush(stdout);
}

void table::row(const std::string& row, const std::string& of, amount of_one_run,
                const std::vector<competitor>& all, const std::vector<target>& targets) {
  const std::vector<std::vector<double>> times = measure(all);
  const bool throughput = of_one_run.what == amount::characters;
  const auto figure = [&](std::size_t n) {
    const double each = median(times[n]);
    return throughput ? of_one_run.count * 1e3 / each : each / of_one_run.count;
  };
  for (std::size_t n = 1; n < all.size(); ++n) {
    line({row, of, throughput ? "Mchar/s" : "ns", all[n].name, figure(0), figure(n),
          ratio_to(times[n], times[0])},
         targets);
  }
}

}  // namespace bench
