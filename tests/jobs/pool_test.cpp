// The pool: what it starts, what it queues, and that it always comes to an end.

#include <ruvo/application.hpp>
#include <ruvo/memory_collector.hpp>

#include <algorithm>
#include <atomic>
#include <memory>
#include <set>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include <gtest/gtest.h>

#include "recorder.hpp"

namespace {

using ruvo::xvar;
using ruvo::jobs::job;
using ruvo::jobs::pool;

/// Each test leaves no job behind, within its time.
class jobs : public testing::Test {
 protected:
  ~jobs() override { EXPECT_EQ(job::alive(), before_); }

 private:
  const watchdog limit_{std::chrono::seconds(60)};
  const unsigned long long before_ = job::alive();
};

/// Tasks that wait for a signal, and note in which order and how many at once they run.
struct crowd {
  explicit crowd(int count, bool at_once = true) : open(at_once) {
    for (int i = 0; i < count; ++i)
      tasks.push_back(
          std::make_unique<scripted>([this](scripted& task, const xvar& input) { run(task, input); }));
  }
  ~crowd() { open = true; }

  void run(scripted& task, const xvar& input) {
    const int now = ++inside;
    for (int seen = most; seen < now && !most.compare_exchange_weak(seen, now);) {
    }
    while (!open && !task.is_canceled()) std::this_thread::yield();
    {
      const std::lock_guard lock(guard);
      order += input.to_string() + L" ";
    }
    --inside;
    xvar result(input);
    task.set_mensaje(result);
    ++ended;
  }

  std::atomic<bool> open;
  std::atomic<int> inside{0}, most{0}, ended{0};
  std::mutex guard;
  std::wstring order;
  std::vector<std::unique_ptr<scripted>> tasks;
};

std::wstring shown(const pool& of) {
  std::wostringstream out;
  out << of;
  return out.str();
}

std::errc code_of(const std::function<void()>& thrown_by) {
  try {
    thrown_by();
  } catch (const std::system_error& error) {
    return static_cast<std::errc>(error.code().value());
  }
  return std::errc();
}

TEST_F(jobs, counters_and_their_text) {
  const std::wstring threads = std::to_wstring(std::thread::hardware_concurrency());
  pool four(4);
  const std::wstring fresh =
      L"\ton queue: 0\n\trunning: 0\n\tfree: 4\n\tstorage: 4\n\thardware concurrency: " + threads;
  EXPECT_EQ(four.to_string(), fresh);
  EXPECT_EQ(shown(four), fresh);
  EXPECT_TRUE(four.empty());
  EXPECT_TRUE(four.is_free());
  EXPECT_FALSE(four.joinable());
  EXPECT_EQ(pool().size(), std::thread::hardware_concurrency());

  crowd five(5, false);
  for (const auto& task : five.tasks) four.execute_job(*task, 1);
  EXPECT_EQ(four.running(), 4U);
  EXPECT_EQ(four.pendings(), 1U);
  EXPECT_EQ(four.free_size(), 0U);
  EXPECT_FALSE(four.is_free());
  EXPECT_FALSE(four.empty());
  EXPECT_TRUE(four.joinable());
  EXPECT_NE(four.get_id(), std::thread::id());
  EXPECT_EQ(four.to_string(),
            L"\ton queue: 1\n\trunning: 4\n\tfree: 0\n\tstorage: 4\n\thardware concurrency: " + threads);
  four.set_max_concurrency(3);
  EXPECT_EQ(four.free_size(), ~0ULL);
  five.open = true;
  four.join();
  EXPECT_TRUE(four.empty());
  EXPECT_EQ(five.order, L"1 1 1 1 1 ");
}

TEST_F(jobs, run_in_their_order_and_never_too_many_at_once) {
  for (const int slots : {1, 2, 5}) {
    for (const bool stored : {true, false}) {
      SCOPED_TRACE(slots);
      crowd all(30);
      pool workers(static_cast<unsigned>(slots));
      for (int i = 0; i < 30; ++i) {
        if (stored)
          workers.store_job(*all.tasks[static_cast<std::size_t>(i)], i);
        else
          workers.execute_job(*all.tasks[static_cast<std::size_t>(i)], i);
      }
      if (stored) {
        EXPECT_EQ(workers.pendings(), 30U);
        workers.exec();
      } else {
        workers.join();
      }
      EXPECT_TRUE(workers.empty());
      EXPECT_LE(all.most, slots);
      EXPECT_EQ(std::count(all.order.begin(), all.order.end(), L' '), 30);
      if (slots == 1) {
        EXPECT_EQ(all.order,
                  L"0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22 23 24 25 26 27 28 29 ");
      }
    }
  }
}

TEST_F(jobs, without_a_slot_wait) {
  crowd two(2);
  pool none(0);
  for (const auto& task : two.tasks) none.execute_job(*task, 1);
  EXPECT_EQ(none.pendings(), 2U);
  EXPECT_FALSE(none.joinable());
  EXPECT_EQ(code_of([&none] { none.cancel(); }), std::errc::invalid_argument);  // but the queue is dropped
  EXPECT_TRUE(none.empty());

  none.execute_job(*two.tasks[0], 1);
  std::thread waiting([&none] { none.exec(); });
  EXPECT_EQ(none.pendings(), 1U);
  none.set_max_concurrency(1);  // takes effect at once
  waiting.join();
  EXPECT_EQ(two.order, L"1 ");
}

TEST_F(jobs, come_in_bursts) {
  crowd first(8), second(8), third(8);
  pool workers(2);
  for (const auto& task : first.tasks) workers.execute_job(*task, 1);
  EXPECT_TRUE(comes_true([&workers] { return workers.empty(); }));
  // The dispatcher has ended, or is about to, and was not joined.
  for (const auto& task : second.tasks) workers.execute_job(*task, 1);
  workers.exec();  // while the dispatcher runs, or after it
  workers.join();
  for (const auto& task : third.tasks) workers.store_job(*task, 1);
  workers.start();
  workers.start();
  workers.join();
  EXPECT_TRUE(workers.empty());
  for (const crowd* each : {&first, &second, &third})
    EXPECT_EQ(std::count(each->order.begin(), each->order.end(), L' '), 8);
}

TEST_F(jobs, queued_at_the_last_moment_are_not_forgotten) {
  pool one(1);
  for (int round = 0; round < 200; ++round) {
    crowd two(2);
    one.execute_job(*two.tasks[0], 1);
    one.execute_job(*two.tasks[1], 2);  // as the first ends, and the dispatcher with it
    ASSERT_TRUE(comes_true([&two] { return two.ended == 2; })) << one.to_string();
  }
}

struct ending_pool {
  const char* name;
  std::function<void(std::unique_ptr<pool>&)> drive;
};

TEST_F(jobs, end_with_a_pool_that_is_canceled_or_destroyed_while_busy) {
  const ending_pool all[] = {
      {"canceled", [](std::unique_ptr<pool>& of) { of->cancel(); }},
      {"canceled from two threads",
       [](std::unique_ptr<pool>& of) {
         const auto cancel = [&of] {
           try {
             of->cancel();
           } catch (const std::system_error&) {  // the other has joined the dispatcher
           }
         };
         std::thread other(cancel);
         cancel();
         other.join();
       }},
      {"destroyed", [](std::unique_ptr<pool>& of) { of.reset(); }},
      {"destroyed without its dispatcher",
       [](std::unique_ptr<pool>& of) {
         of->detach();
         EXPECT_FALSE(of->joinable());
         of.reset();
       }},
  };
  for (const ending_pool& each : all)
    for (const bool obedient : {true, false}) {
      SCOPED_TRACE(each.name);
      recorder callbacks[6];
      std::vector<std::unique_ptr<scripted>> tasks;
      auto workers = std::make_unique<pool>(3);
      for (recorder& callback : callbacks) {
        tasks.push_back(std::make_unique<scripted>(
            [obedient](scripted& task, const xvar& input) {
              until_canceled(task, input);
              xvar late(L"tarde");
              if (!obedient) task.set_mensaje(late);
            },
            &callback));
        workers->execute_job(*tasks.back(), 1);
      }
      each.drive(workers);
      if (workers) {
        EXPECT_TRUE(workers->empty());
        EXPECT_FALSE(workers->joinable());
      }
      workers.reset();
      for (int i = 0; i < 6; ++i) {
        EXPECT_FALSE(tasks[static_cast<std::size_t>(i)]->joinable());
        EXPECT_EQ(callbacks[i].told(), i >= 3     ? L""
                                       : obedient ? L"start, cancel"
                                                  : L"start, finish tarde, cancel");
      }
    }
}

TEST_F(jobs, free_their_slots_however_the_task_ends) {
  const struct {
    const char* name;
    bool frees;
    scripted::script body;
    std::function<void(scripted&)> drive;
  } all[] = {
      {"silenced", true,
       [](scripted& task, const xvar& input) {
         task.silence();
         xvar result(input);
         task.set_mensaje(result);
       },
       [](scripted&) {}},
      {"canceled by itself", true, until_canceled, [](scripted& task) { task.cancel(); }},
      {"ended without a word", false, [](scripted&, const xvar&) {}, [](scripted& task) { task.join(); }},
      {"ended without a word, then canceled", true, [](scripted&, const xvar&) {},
       [](scripted& task) {
         task.join();
         task.cancel();
       }},
  };
  for (const auto& each : all) {
    SCOPED_TRACE(each.name);
    pool one(1);
    recorder callback;
    auto task = std::make_unique<scripted>(each.body, &callback);
    one.execute_job(*task, 1);
    each.drive(*task);
    if (each.frees) {
      EXPECT_TRUE(comes_true([&one] { return one.empty(); }));
    } else {
      EXPECT_EQ(one.running(), 1U);
    }
    task.reset();  // at the latest
    EXPECT_TRUE(one.empty());
  }
}

TEST_F(jobs, over_the_same_task_replace_each_other) {
  pool workers(4);
  crowd other(1, false);
  bool speaks = false;
  scripted task([&speaks](scripted& of, const xvar& input) {
    xvar result(input);
    if (speaks) of.set_mensaje(result);
  });
  workers.execute_job(*other.tasks[0], 0);
  workers.execute_job(task, 1);
  task.join();  // in its slot still
  EXPECT_EQ(workers.running(), 2U);
  workers.execute_job(task, 2);
  task.join();
  EXPECT_EQ(workers.running(), 2U);
  speaks = true;
  workers.execute_job(task, 3);
  task.join();
  EXPECT_EQ(workers.running(), 1U);
  workers.on_run_off(L"nadie");
  EXPECT_EQ(workers.running(), 1U);
}

TEST_F(jobs, that_cannot_start_are_not_in_the_pool) {
  recorder callback;
  callback.then = [](const std::wstring& what) {
    if (what == L"start") throw std::runtime_error("no");
  };
  scripted task([](scripted&, const xvar&) { ADD_FAILURE(); }, &callback);
  pool one(1);
  EXPECT_THROW(one.execute_job(task, 1), std::runtime_error);
  EXPECT_TRUE(one.empty());
  one.store_job(task, 1);
  one.start();
  one.join();  // where nobody can catch it, it is a failure
  EXPECT_EQ(callback.told(), L"start, start, failure 8/1 Error indeterminado en la Ejecución de hilos");
}

TEST_F(jobs, may_use_their_pool_in_callbacks) {
  const struct {
    const char* name;
    const wchar_t* at;
    std::function<void(std::unique_ptr<pool>&, scripted&)> act;
    const wchar_t* told;
  } all[] = {
      {"one more", L"finish 1", [](std::unique_ptr<pool>& of, scripted& next) { of->execute_job(next, 2); },
       L"start, finish 1"},
      {"cancel all", L"finish 1",
       [](std::unique_ptr<pool>& of, scripted& next) {
         of->store_job(next, 2);
         of->cancel();
       },
       L"start, finish 1, failure 8/1 Error indeterminado en la Ejecución de hilos"},
      {"cancel at the start", L"start", [](std::unique_ptr<pool>& of, scripted&) { of->cancel(); },
       L"start, cancel, finish 1"},
      {"destroy it", L"finish 1", [](std::unique_ptr<pool>& of, scripted&) { of.reset(); },
       L"start, finish 1, failure 8/1 Error indeterminado en la Ejecución de hilos"},
  };
  for (const auto& each : all) {
    SCOPED_TRACE(each.name);
    auto workers = std::make_unique<pool>(2);
    std::atomic<bool> started{false}, ended{false};
    const auto finish = [&started, &ended](scripted& task, const xvar& input) {
      while (!started) std::this_thread::yield();
      xvar result(input);
      task.set_mensaje(result);
      ended = true;
    };
    scripted next(finish);
    recorder callback;
    callback.then = [&](const std::wstring& what) {
      if (what == each.at) each.act(workers, next);
    };
    scripted task(finish, &callback);
    workers->execute_job(task, 1);
    started = true;
    EXPECT_TRUE(comes_true([&] { return ended && (!workers || workers->empty()); }));
    task.join();
    next.join();
    EXPECT_EQ(callback.told(), each.told);
  }
}

/// An application that notes under which thread jobs are kept.
class keyed_app : public ruvo::kesta::app {
 public:
  keyed_app() : app(nullptr) {}
  unsigned long getThreadID() const override {
    ++asked;
    return app::getThreadID();
  }
  mutable std::atomic<int> asked{0};
};

TEST_F(jobs, are_kept_under_the_thread_of_the_application) {
  keyed_app app;
  {
    pool one(1);
    std::vector<std::unique_ptr<scripted>> tasks;
    for (const bool registered : {true, false}) {
      tasks.push_back(std::make_unique<scripted>([&app, registered](scripted& of, const xvar& input) {
        xvar result(input);
        if (registered) {
          const ruvo::thread_scope scope(app);
          of.set_mensaje(result);
        } else {
          of.set_mensaje(result);
        }
      }));
      one.execute_job(*tasks.back(), 1);
      tasks.back()->join();
      one.join();
    }
    EXPECT_EQ(app.asked, 1);
  }
}

TEST_F(jobs, by_themselves_tell_their_listener) {
  struct noted : ruvo::sync::on_round_off {
    void on_run_off(std::wstring uuid) override { over += uuid; }
    std::wstring over;
  } listener;
  scripted task([](scripted& of, const xvar& input) {
    xvar result(input);
    of.set_mensaje(result);
  });
  job mine(task, L"p");
  EXPECT_EQ(mine.get_state(), 2);
  EXPECT_EQ(&mine.get_taks(), &task);
  mine.set_listener(&listener);
  mine.run();
  task.join();
  EXPECT_EQ(mine.get_state(), 0);
  EXPECT_EQ(listener.over, task.get_uuid());
  EXPECT_EQ(mine.get_uuid(), task.get_uuid());
  scripted stubborn(until_canceled);
  job other(stubborn, 1);
  other.run();
  EXPECT_EQ(other.get_state(), 1);
  EXPECT_EQ(other.get_id(), stubborn.get_id());
  other.cancel();
  EXPECT_FALSE(stubborn.joinable());
}

/// Counts its destructions.
struct counted {
  explicit counted(int& of) : count(of) {}
  ~counted() { ++count; }
  int& count;
};

TEST(memory_collector, keeps_an_object_once) {
  int deleted = 0;
  {
    ruvo::memory_collector collector;
    auto* const first = new counted(deleted);
    collector.add(1, first);
    collector.add(1, first);
    collector.add(2, first);
    collector.add(3, new counted(deleted));
    EXPECT_EQ(collector.size(1), 1U);
    EXPECT_EQ(collector.size(2), 0U);
    EXPECT_EQ(collector.collect(2), 0U);
    EXPECT_EQ(deleted, 0);
    EXPECT_EQ(collector.collect(1), 1U);
    EXPECT_EQ(deleted, 1);
  }
  EXPECT_EQ(deleted, 2);
}

}  // namespace
