// SPDX-License-Identifier: BSL-1.0

// The pool: what it starts, what it queues, and that it always comes to an end.

#include <ruvo/application.hpp>

#include <algorithm>
#include <atomic>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include <gtest/gtest.h>

#include "recorder.hpp"

namespace {

using ruvo::xvar;
using ruvo::jobs::job;
using ruvo::jobs::pool;

/// Each test leaves no job behind.
class jobs : public testing::Test {
 protected:
  ~jobs() override { EXPECT_EQ(job::alive(), before_); }

 private:
  const unsigned long long before_ = job::alive();
};

/// Tasks that wait for a signal, and note in which order and how many at once they run.
struct crowd {
  explicit crowd(int count, bool at_once = true) : open(at_once) {
    for (int i = 0; i < count; ++i) {
      tasks.push_back(
          std::make_unique<scripted>([this](scripted& task, const xvar& input) { run(task, input); }));
    }
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
    finish(task, input);
    ++ended;
  }

  std::atomic<bool> open;
  std::atomic<int> inside{0}, most{0}, ended{0};
  std::mutex guard;
  std::wstring order;
  std::vector<std::unique_ptr<scripted>> tasks;
};

std::errc code_of(const std::function<void()>& thrown_by) {
  try {
    thrown_by();
  } catch (const std::system_error& error) {
    return static_cast<std::errc>(error.code().value());
  }
  return std::errc();
}

TEST_F(jobs, counters_and_their_text) {
  const std::wstring rest =
      L"\n\tstorage: 4\n\thardware concurrency: " + std::to_wstring(std::thread::hardware_concurrency());
  pool four(4);
  EXPECT_EQ(four.to_string(), L"\ton queue: 0\n\trunning: 0\n\tfree: 4" + rest);
  std::wostringstream out;
  out << four;
  EXPECT_EQ(out.str(), four.to_string());
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
  EXPECT_EQ(four.to_string(), L"\ton queue: 1\n\trunning: 4\n\tfree: 0" + rest);
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
      int next = 0;
      for (const auto& task : all.tasks)
        stored ? workers.store_job(*task, next++) : workers.execute_job(*task, next++);
      if (stored) {
        EXPECT_EQ(workers.pendings(), 30U);
        workers.exec();
      } else {
        workers.join();
      }
      EXPECT_TRUE(workers.empty());
      EXPECT_LE(all.most, slots);
      EXPECT_EQ(std::count(all.order.begin(), all.order.end(), L' '), 30);
      if (slots == 1 && stored) {  // execute_job() may find the slot free before the queue does
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

TEST_F(jobs, queued_at_the_last_moment_are_not_forgotten) {
  pool one(1);
  for (int round = 0; round < 200; ++round) {
    crowd two(2);
    one.execute_job(*two.tasks[0], 1);
    one.execute_job(*two.tasks[1], 2);  // as the first ends, and the dispatcher with it
    ASSERT_TRUE(comes_true([&two] { return two.ended == 2; })) << one.to_string();
  }
}

TEST_F(jobs, end_with_a_pool_that_is_canceled_or_destroyed_while_busy) {
  const struct {
    const char* name;
    std::function<void(std::unique_ptr<pool>&)> drive;
  } all[] = {
      {"canceled", [](std::unique_ptr<pool>& of) { of->cancel(); }},
      {"canceled from two threads",
       [](std::unique_ptr<pool>& of) {
         // The other may have joined the dispatcher.
         const auto cancel = [&of] { static_cast<void>(code_of([&of] { of->cancel(); })); };
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
  for (const auto& each : all) {
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
        EXPECT_EQ(callbacks[i].noted(), i >= 3     ? L""
                                        : obedient ? L"start, cancel"
                                                   : L"start, finish tarde, cancel");
      }
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
         finish(task, input);
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
    if (speaks) finish(of, input);
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
  pool one(1);
  callback.then = [&one](const std::wstring& what) {
    if (what == L"start") throw std::runtime_error("no");
    EXPECT_EQ(one.running(), 1U);  // who waits for the pool finds the failure noted
  };
  scripted task([](scripted&, const xvar&) { ADD_FAILURE(); }, &callback);
  EXPECT_THROW(one.execute_job(task, 1), std::runtime_error);
  EXPECT_TRUE(one.empty());
  one.store_job(task, 1);
  one.start();
  one.join();  // where nobody can catch it, it is a failure
  EXPECT_EQ(callback.noted(), L"start, start, failure 8/1 Error indeterminado en la Ejecución de hilos");
}

TEST_F(jobs, may_use_their_pool_in_callbacks) {
  const struct {
    const char* name;
    const wchar_t* at;
    std::function<void(std::unique_ptr<pool>&, scripted&)> act;
    const wchar_t* noted;
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
    const auto body = [&started, &ended](scripted& task, const xvar& input) {
      while (!started) std::this_thread::yield();
      finish(task, input);
      ended = true;
    };
    scripted next(body);
    recorder callback;
    callback.then = [&](const std::wstring& what) {
      if (what == each.at) each.act(workers, next);
    };
    scripted task(body, &callback);
    workers->execute_job(task, 1);
    started = true;
    EXPECT_TRUE(comes_true([&] { return ended && (!workers || workers->empty()); }));
    task.join();
    next.join();
    EXPECT_EQ(callback.noted(), each.noted);
  }
}

TEST_F(jobs, refuse_to_wait_for_themselves) {
  const struct {
    const char* name;
    const wchar_t* at;
    std::function<void(pool&)> wait;
  } all[] = {
      {"join when it starts", L"start", [](pool& of) { of.join(); }},
      {"join when it finishes", L"finish 1", [](pool& of) { of.join(); }},
      {"cancel while it is being joined", L"finish 1", [](pool& of) { of.cancel(); }},
      {"cancel when it is being canceled", L"cancel", [](pool& of) { of.cancel(); }},
      {"join when it is being canceled", L"cancel", [](pool& of) { of.join(); }},
  };
  for (const auto& each : all) {
    SCOPED_TRACE(each.name);
    pool workers(2);
    std::errc refusal{};
    recorder callback;
    callback.then = [&](const std::wstring& what) {
      if (what == each.at) refusal = code_of([&] { each.wait(workers); });
    };
    scripted task(
        [](scripted& of, const xvar& input) {
          until_canceled(of, input);
          finish(of, input);
        },
        &callback);
    workers.execute_job(task, 1);
    workers.cancel();
    EXPECT_EQ(refusal, std::errc::resource_deadlock_would_occur);
    EXPECT_EQ(callback.noted(), L"start, finish 1, cancel");
    EXPECT_TRUE(workers.empty());
  }
}

TEST_F(jobs, may_cancel_their_pool_two_at_once) {
  for (int round = 0; round < 30; ++round) {
    pool workers(3);
    std::atomic<int> inside{0};
    recorder callback;
    callback.then = [&](const std::wstring& what) {
      if (what != L"finish 1") return;
      ++inside;
      while (inside < 2) std::this_thread::yield();
      static_cast<void>(code_of([&workers] { workers.cancel(); }));  // one may find all in the other's hands
    };
    crowd third(1, false);
    scripted first(finish, &callback), second(finish, &callback);
    for (scripted* each : {third.tasks[0].get(), &first, &second}) workers.execute_job(*each, 1);
    EXPECT_TRUE(comes_true([&] { return workers.empty(); }));
    first.join();
    second.join();
    EXPECT_FALSE(third.tasks[0]->joinable());
  }
}

TEST_F(jobs, canceled_in_the_queue_free_their_slots) {
  pool one(1);
  crowd first(1, false);
  scripted second(until_canceled);
  one.execute_job(*first.tasks[0], 1);
  one.execute_job(second, 2);
  second.cancel();
  first.open = true;
  one.join();
  EXPECT_TRUE(one.empty());
  second.join();
}

TEST_F(jobs, put_in_again_when_canceled_keep_their_slots) {
  for (const bool mute : {true, false}) {
    SCOPED_TRACE(mute);
    pool two(2);
    std::atomic<bool> again{false}, open{false};
    recorder callback;
    scripted task(
        [&](scripted& of, const xvar& input) {
          while (!(again ? open.load() : mute || of.is_canceled())) std::this_thread::yield();
          if (again) finish(of, input);
        },
        &callback);
    callback.then = [&](const std::wstring& what) {
      if (what != L"cancel" || again.exchange(true)) return;
      two.execute_job(task, 2);
    };
    two.execute_job(task, 1);
    if (mute) task.join();
    task.cancel();
    EXPECT_EQ(two.running(), 1U);
    open = true;
    two.join();
    task.join();
    EXPECT_EQ(callback.noted(), L"start, cancel, start, finish 2");
  }
}

TEST_F(jobs, over_and_gone_are_left_alone_by_a_cancel_under_way) {
  pool two(2);
  std::atomic<bool> slow_may_end{false}, quick_may_end{false};
  const scripted* slow = nullptr;
  const auto body = [&](scripted& task, const xvar& input) {
    while (!(&task == slow ? slow_may_end : quick_may_end)) std::this_thread::yield();
    finish(task, input);
  };
  recorder callback;
  std::unique_ptr<scripted> tasks[] = {std::make_unique<scripted>(body, &callback),
                                       std::make_unique<scripted>(body, &callback)};
  // A cancel begins with the smaller identifier.
  if (tasks[1]->get_uuid() < tasks[0]->get_uuid()) tasks[0].swap(tasks[1]);
  slow = tasks[0].get();
  for (const auto& each : tasks) two.execute_job(*each, 1);
  std::thread canceling([&two] { two.cancel(); });
  EXPECT_TRUE(comes_true([&tasks] { return tasks[0]->is_canceled(); }));
  quick_may_end = true;
  tasks[1]->join();
  tasks[1].reset();
  EXPECT_EQ(two.running(), 1U);
  slow_may_end = true;
  canceling.join();
  EXPECT_EQ(callback.noted(), L"start, start, finish 1, finish 1, cancel");
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
        const std::optional<ruvo::thread_scope> scope =
            registered ? std::optional<ruvo::thread_scope>(std::in_place, app) : std::nullopt;
        finish(of, input);
      }));
      one.execute_job(*tasks.back(), 1);
      tasks.back()->join();
      one.join();
    }
    EXPECT_EQ(app.asked, 1);
  }
}

TEST_F(jobs, by_themselves_call_their_listener) {
  listener over;
  scripted task(finish);
  job mine(task, L"p");
  EXPECT_EQ(mine.get_state(), 2);
  EXPECT_EQ(&mine.get_taks(), &task);
  mine.set_listener(&over);
  mine.run();
  task.join();
  EXPECT_EQ(mine.get_state(), 0);
  EXPECT_EQ(over.last, task.get_uuid());
  EXPECT_EQ(over.count, 1);
  EXPECT_EQ(mine.get_uuid(), task.get_uuid());
  scripted stubborn(until_canceled);
  job other(stubborn, 1);
  other.run();
  EXPECT_EQ(other.get_state(), 1);
  EXPECT_EQ(other.get_id(), stubborn.get_id());
  other.cancel();
  EXPECT_FALSE(stubborn.joinable());
}

}  // namespace
