// SPDX-License-Identifier: BSL-1.0

// The pool of jobs against bare threads of the standard library: many short tasks from start to finish, and
// how long a free slot waits for the next job.
//
//   bench_jobs

#include <ruvo/jobs.hpp>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <deque>
#include <string>
#include <thread>
#include <vector>

#include "support/harness.hpp"

namespace {

constexpr int tasks = 700;  // in a turn; a row takes fifteen turns or more, so beyond 10,000
std::atomic<int> work_done{0};

/// Tasks are made with their identifiers, run and joined.
void run_in_a_pool(unsigned slots) {
  std::deque<ruvo::task::call> all;
  ruvo::jobs::pool pool(slots);
  for (int n = 0; n < tasks; ++n) {
    ruvo::task::call& made =
        all.emplace_back([](const ruvo::xvar& input, ruvo::task::steps) { return ++work_done, input; });
    pool.store_job(made, n);
  }
  pool.start();
  pool.join();
}

/// As many threads alive at once as there are slots: the oldest is joined, and a new one takes its place.
void run_in_threads(unsigned slots) {
  std::vector<std::thread> alive(slots);
  for (std::size_t n = 0; n < tasks; ++n) {
    std::thread& next = alive[n % slots];
    if (next.joinable()) next.join();
    next = std::thread([] { ++work_done; });
  }
  for (std::thread& last : alive) last.join();
}

void compare_short_tasks(bench::table& results, unsigned slots) {
  results.row("short tasks", std::to_string(slots) + " slots", {tasks, bench::amount::operations},
              {{"kesta", [=] { run_in_a_pool(slots); }}, {"threads", [=] { run_in_threads(slots); }}},
              {{"threads", 0.95}});
}

// --- from a slot's release to the next start

using clock_type = std::chrono::steady_clock;

constexpr std::size_t chain = 200, turns = 25;

/// Notes when it began, when its start was asked for, and when it gave its slot back.
class noting : public ruvo::task::async {
 public:
  ~noting() override { join(); }
  void on_start() override { asked = clock_type::now(); }
  void work(const ruvo::xvar&) override {
    begun = clock_type::now();
    ruvo::xvar result(1);
    released = clock_type::now();
    set_mensaje(result);
  }

  clock_type::time_point asked, begun, released;
};

double nanoseconds(clock_type::duration time) {
  return std::chrono::duration<double, std::nano>(time).count();
}

struct gap {
  double until_begun, until_asked;
};

/// One task after the other, in a pool with one slot.
gap start_in_a_pool() {
  std::array<noting, chain> all;
  ruvo::jobs::pool pool(1);
  for (noting& one : all) pool.store_job(one, ruvo::xvar());
  pool.start();
  pool.join();
  std::vector<double> begun, asked;
  for (std::size_t n = 1; n < chain; ++n) {
    begun.push_back(nanoseconds(all[n].begun - all[n - 1].released));
    asked.push_back(nanoseconds(all[n].asked - all[n - 1].released));
  }
  return {bench::median(begun), bench::median(asked)};
}

/// Bare threads in the same place: each starts the next one as its last act.
class relay {
 public:
  double run() {
    start(0);
    finished_.wait(false);
    for (std::thread& one : threads_) one.join();  // whose end shows the next one
    return bench::median(took_);
  }

 private:
  void start(std::size_t n) {
    asked_ = clock_type::now();
    threads_[n] = std::thread([this, n] {
      took_.push_back(nanoseconds(clock_type::now() - asked_));
      if (n + 1 < chain) return start(n + 1);
      finished_ = true;
      finished_.notify_one();
    });
  }

  std::array<std::thread, chain> threads_;
  clock_type::time_point asked_;
  std::vector<double> took_;
  std::atomic<bool> finished_{false};
};

/// Bare threads with nothing around them: one is started and joined, then the next.
double start_alone() {
  std::vector<double> took;
  for (std::size_t n = 0; n < chain; ++n) {
    clock_type::time_point begun;
    const auto asked = clock_type::now();
    std::thread([&begun] { begun = clock_type::now(); }).join();
    took.push_back(nanoseconds(begun - asked));
  }
  return bench::median(std::move(took));
}

/// As the rows of a table: medians, and medians of the ratios of neighbouring turns.
void compare_next_start(bench::table& results) {
  std::vector<double> own, asked, by_one_that_ends, alone, to_relay, to_alone, of_which;
  for (std::size_t turn = 0; turn < turns; ++turn) {
    const gap pool = start_in_a_pool();
    own.push_back(pool.until_begun);
    asked.push_back(pool.until_asked);
    by_one_that_ends.push_back(relay().run());
    alone.push_back(start_alone());
    to_relay.push_back(own.back() / by_one_that_ends.back());
    to_alone.push_back(own.back() / alone.back());
    of_which.push_back(asked.back() / own.back());
  }
  const auto line = [&](const char* row, const std::vector<double>& first, const char* peer,
                        const std::vector<double>& its, const std::vector<double>& ratios) {
    results.line({row, "1 slot", "ns", peer, bench::median(first), bench::median(its), bench::median(ratios),
                  bench::comparison::cost},
                 {{"thread that ends", 1.1}});
  };
  line("release to next start", own, "thread that ends", by_one_that_ends, to_relay);
  line("release to next start", own, "thread alone", alone, to_alone);
  line("until it is asked for", asked, "until it begins", own, of_which);
}

}  // namespace

int main() {
  bench::table results("jobs");
  compare_short_tasks(results, std::max(1U, std::thread::hardware_concurrency()));
  compare_short_tasks(results, 8);
  compare_next_start(results);
}
