#pragma once

// Measuring competitors side by side in one process: they take turns, so that a drift of the machine hits all
// alike, and medians are compared.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace bench {

/// Keeps the optimiser from dropping work whose result nobody reads.
inline volatile unsigned char sink;
template <class T>
void use(const T& value) {
  sink = *reinterpret_cast<const volatile unsigned char*>(&value);
}

struct competitor {
  std::string name;
  std::function<void()> run;
};

/// The median time of one run of each competitor, in nanoseconds.
inline std::vector<double> measure(const std::vector<competitor>& all, double seconds_each = 0.3) {
  using clock = std::chrono::steady_clock;
  const auto time = [](const competitor& c, int runs) {
    const auto start = clock::now();
    for (int i = 0; i < runs; ++i) c.run();
    return std::chrono::duration<double, std::nano>(clock::now() - start).count() / runs;
  };
  std::vector<int> runs;
  for (const competitor& c : all) {
    c.run();
    const double once = std::max(time(c, 1), 1.0);
    runs.push_back(static_cast<int>(std::clamp(2e6 / std::max(time(c, static_cast<int>(std::clamp(2e5 / once, 1.0, 1e4))), 1.0), 1.0, 1e6)));
  }
  std::vector<std::vector<double>> times(all.size());
  for (double spent = 0; spent < seconds_each * 1e9 * static_cast<double>(all.size()) || times[0].size() < 5;) {
    for (std::size_t n = 0; n < all.size(); ++n) {
      times[n].push_back(time(all[n], runs[n]));
      spent += times[n].back() * runs[n];
    }
  }
  std::vector<double> medians;
  for (auto& t : times) {
    std::nth_element(t.begin(), t.begin() + static_cast<std::ptrdiff_t>(t.size() / 2), t.end());
    medians.push_back(t[t.size() / 2]);
  }
  return medians;
}

/// What a ratio has to reach; 0 where nothing was set.
struct target {
  std::string peer;
  double ratio;
};

/// One line of the table: the library's own figure, then how many times as fast as each peer it is.
inline void report(const std::string& subject, const std::vector<competitor>& all, const std::vector<target>& targets,
                   double units = 0) {
  const std::vector<double> ns = measure(all);
  if (units > 0) {
    std::printf("%-34s %8.0f M/s ", subject.c_str(), units * 1e3 / ns[0]);
  } else {
    std::printf("%-34s %9.1f ns ", subject.c_str(), ns[0]);
  }
  for (std::size_t n = 1; n < all.size(); ++n) {
    const double ratio = ns[n] / ns[0];
    std::printf(" | %s %5.2fx", all[n].name.c_str(), ratio);
    for (const target& t : targets) {
      if (t.peer == all[n].name) std::printf(" (%.1f %s)", t.ratio, ratio >= t.ratio ? "ok" : "MISS");
    }
  }
  std::printf("\n");
  std::fflush(stdout);
}

}  // namespace bench
