// SPDX-License-Identifier: BSL-1.0

// Thousands of tasks at random: cancelled, silenced, failing, in pools that are destroyed while busy.

#include <atomic>
#include <memory>
#include <random>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "recorder.hpp"
#include "support/rounds.hpp"

namespace {

using ruvo::xvar;
using ruvo::jobs::job;
using ruvo::jobs::pool;

std::atomic<long> threads{0};  // those that have come by and not ended

/// Ends with its thread.
struct passer_by {
  passer_by() { ++threads; }
  ~passer_by() { --threads; }
};

void pass_by() {
  thread_local const passer_by once;
  static_cast<void>(&once);
}

/// The calls of the callbacks of a burst, as counts; some throw.
struct tally {
  std::atomic<long> begun{0}, results{0}, failures{0}, cancels{0};
  std::atomic<unsigned> calls{0};

  void note(std::atomic<long>& count) {
    pass_by();
    ++count;
    if (++calls % 13 == 0) throw std::runtime_error("a callback that throws");
  }
};

/// The plan of one task; numbers of a seed only.
struct plan {
  unsigned steps;
  bool fails, silenced, canceled;
};

plan draw(std::mt19937& random) {
  const auto bits = static_cast<unsigned>(random());
  return {bits % 20, bits >> 8 & 1 && bits >> 9 & 1 && bits >> 10 & 1, (bits >> 11) % 16 == 0,
          (bits >> 15) % 16 == 0};
}

std::unique_ptr<ruvo::task::call> make(const plan& of, tally& counts) {
  auto made = std::make_unique<ruvo::task::call>(
      [of, &counts](const xvar& input, ruvo::task::steps report) -> xvar {
        pass_by();
        ++counts.begun;
        for (unsigned i = 0; i < of.steps; ++i) {
          report.advance(i);
          std::this_thread::yield();
        }
        if (of.fails) throw ruvo::exc::NotImplemented();
        return input;
      },
      ruvo::task::handlers{.finish = [&counts](const xvar&) { counts.note(counts.results); },
                           .failure = [&counts](const ruvo::exception&) { counts.note(counts.failures); },
                           .cancel = [&counts] { counts.note(counts.cancels); }});
  if (of.silenced) made->silence();
  return made;
}

class stress : public generated_inputs {
 protected:
  /// A pool for one or two bursts, which ends in one of several ways.
  void round(std::mt19937& random, unsigned slots, unsigned tasks) {
    tally counts;
    std::vector<std::unique_ptr<ruvo::task::call>> all;
    auto workers = std::make_unique<pool>(slots);
    const unsigned bursts = 1 + random() % 2;
    for (unsigned burst = 0; burst < bursts; ++burst) {
      fill(random, *workers, all, counts, tasks / bursts);
      if (burst + 1 < bursts) settle(random, *workers);
    }
    switch (random() % 3) {
      case 0:
        settle(random, *workers);
        EXPECT_TRUE(workers->empty());
        break;
      case 1:
        stop(*workers);
        EXPECT_TRUE(workers->empty());
        break;
      default:  // destroyed while it is busy
        break;
    }
    workers.reset();
    all.clear();
    EXPECT_LE(counts.results, counts.begun);
  }

  void fill(std::mt19937& random, pool& of, std::vector<std::unique_ptr<ruvo::task::call>>& all,
            tally& counts, unsigned tasks) {
    for (unsigned i = 0; i < tasks; ++i, ++inputs) {
      const plan mine = draw(random);
      all.push_back(make(mine, counts));
      if (random() % 4 == 0)
        of.store_job(*all.back(), i);
      else
        of.execute_job(*all.back(), i);
      if (mine.canceled) all[random() % all.size()]->cancel();
    }
  }

  /// Until all is done.
  static void settle(std::mt19937& random, pool& of) {
    if (random() % 2) of.exec();
    while (!of.empty()) {
      of.start();
      of.join();
    }
  }

  static void stop(pool& of) {
    try {
      of.cancel();
    } catch (const std::system_error& error) {  // none of the tasks made a dispatcher
      EXPECT_EQ(error.code(), std::errc::invalid_argument);
    }
  }
};

#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr unsigned least = 2000;
#else
constexpr unsigned least = 10000;
#endif

TEST_F(stress, every_job_is_deleted_once_and_no_thread_is_left) {
  pass_by();
  const unsigned long long before = job::alive();
  for (unsigned seed = 0; seed < rounds(); ++seed) {
    std::mt19937 random(20260 + seed);
    for (unsigned slots = 1; inputs < (seed + 1ULL) * least; slots = slots % 64 + 1) {
      round(random, slots, 160);
      ASSERT_EQ(job::alive(), before) << slots;
      ASSERT_EQ(threads, 1) << slots;  // this one
    }
  }
}

TEST_F(stress, many_threads_share_a_pool) {
  const unsigned long long before = job::alive();
  std::atomic<int> ended{0};
  {
    pool workers(8);
    std::vector<std::thread> users;
    for (unsigned user = 0; user < 6; ++user) {
      users.emplace_back([&workers, &ended, user] {
        std::mt19937 random(user);
        for (int burst = 0; burst < 4; ++burst) {
          std::vector<std::unique_ptr<ruvo::task::call>> mine;
          std::atomic<int> done{0};
          for (int i = 0; i < 16; ++i) {
            mine.push_back(
                std::make_unique<ruvo::task::call>([&done](const xvar& input, ruvo::task::steps) -> xvar {
                  ++done;
                  return input;
                }));
            workers.execute_job(*mine.back(), i);
          }
          if (random() % 2) workers.exec();
          EXPECT_TRUE(comes_true([&done] { return done == 16; }));
          for (const auto& task : mine) task->join();
          ended += done;
        }
      });
    }
    for (std::thread& each : users) each.join();
    workers.join();
    EXPECT_TRUE(workers.empty());
  }
  EXPECT_EQ(ended, 6 * 4 * 16);
  EXPECT_EQ(job::alive(), before);
}

}  // namespace
