// SPDX-License-Identifier: BSL-1.0

// Tasks by themselves: which calls come in which order, and how tasks end.

#include <ruvo/application.hpp>

#include <atomic>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include <gtest/gtest.h>

#include "recorder.hpp"

namespace {

using ruvo::xvar;
using namespace std::string_literals;

constexpr wchar_t thread_failure[] = L"failure 8/1 Error indeterminado en la Ejecución de hilos";

struct course {
  const char* name;
  scripted::script body;
  std::function<void(scripted&)> drive;
  std::wstring noted;
  int over;  // how often the listener is called
};

const course courses[] = {
    {"to the end",
     [](scripted& task, const xvar& input) {
       xvar half(1);
       task.set_progress(half);
       EXPECT_TRUE(task.advance(L"dos"));
       task.advance_or_throw(3);
       finish(task, input);
     },
     [](scripted& task) {
       task.start(L"fin");
       task.join();
     },
     L"start, progress 1, progress dos, progress 3, finish fin", 1},
    {"canceled while it works", until_canceled,
     [](scripted& task) {
       task.start(0);
       task.cancel();
     },
     L"start, cancel", 1},
    {"canceled, and finishes all the same",
     [](scripted& task, const xvar& input) {
       until_canceled(task, input);
       EXPECT_FALSE(task.advance(1));
       EXPECT_THROW(task.advance_or_throw(1), ruvo::exc::ProcessCanceled);
       finish(task, input);
     },
     [](scripted& task) {
       task.start(7);
       task.cancel();
     },
     L"start, finish 7, cancel", 1},
    {"canceled before any start", finish, [](scripted& task) { task.cancel(); }, L"cancel", 0},
    {"canceled after the end", finish,
     [](scripted& task) {
       task.start(1);
       task.join();
       task.cancel();
       EXPECT_TRUE(task.is_canceled());
     },
     L"start, finish 1, cancel", 1},
    {"cancels itself",
     [](scripted& task, const xvar& input) {
       task.cancel();
       EXPECT_TRUE(task.is_canceled());
       EXPECT_TRUE(task.joinable());
       finish(task, input);
     },
     [](scripted& task) {
       task.start(1);
       task.join();
     },
     L"start, "s + thread_failure + L", finish 1", 1},
    {"joins itself",
     [](scripted& task, const xvar& input) {
       try {
         task.join();
         ADD_FAILURE();
       } catch (const std::system_error& error) {
         EXPECT_EQ(error.code(), std::errc::resource_deadlock_would_occur);
       }
       finish(task, input);
     },
     [](scripted& task) {
       task.start(1);
       task.join();
       task.join();  // nothing to wait for
     },
     L"start, finish 1", 1},
    {"silenced before the end",
     [](scripted& task, const xvar& input) {
       task.silence();
       xvar value(1);
       task.set_progress(value);
       finish(task, input);
     },
     [](scripted& task) {
       task.start(1);
       task.join();
       task.cancel();
     },
     L"start", 1},
    {"ends without a word", [](scripted&, const xvar&) {},
     [](scripted& task) {
       task.start(1);
       task.join();
       EXPECT_FALSE(task.joinable());
       EXPECT_EQ(task.get_id(), std::thread::id());
     },
     L"start", 0},
    {"runs again", finish,
     [](scripted& task) {
       for (int i = 1; i <= 3; ++i) {
         task.start(i);
         task.join();
       }
     },
     L"start, finish 1, start, finish 2, start, finish 3", 3},
};

TEST(task_alone, calls_its_callback_and_its_listener) {
  for (const course& each : courses) {
    SCOPED_TRACE(each.name);
    recorder callback;
    listener over;
    scripted task(each.body, &callback);
    task.set_listener(&over);
    each.drive(task);
    EXPECT_EQ(callback.noted(), each.noted);
    EXPECT_EQ(over.count, each.over);
    if (each.over > 0) {
      EXPECT_EQ(over.last, task.get_uuid());
    }
    task.set_listener(nullptr);
  }
}

TEST(task_alone, a_callback_that_throws_becomes_a_failure) {
  recorder callback;
  callback.then = [](const std::wstring& what) {
    if (what != L"start") throw 1;
  };
  scripted task(until_canceled, &callback);
  task.cancel();  // on_cancel throws, and on_failure after it
  EXPECT_EQ(callback.noted(), L"cancel, "s + thread_failure);
  {
    recorder mine;
    scripted running(until_canceled, &callback);
    running.set_callback(mine);
    running.start(1);
    running.set_callback(callback);
  }
  EXPECT_EQ(callback.noted(), L"cancel, "s + thread_failure + L", cancel, " + thread_failure);
}

TEST(task_alone, the_listener_is_called_even_when_the_callback_throws) {
  recorder callback;
  listener over;
  callback.then = [](const std::wstring& what) {
    if (what == L"finish 1") throw std::runtime_error("no");
  };
  bool thrown = false;
  scripted task(
      [&thrown](scripted& of, const xvar& input) {
        try {
          finish(of, input);
        } catch (const std::runtime_error&) {
          thrown = true;
        }
      },
      &callback);
  task.set_listener(&over);
  task.start(1);
  task.join();
  EXPECT_TRUE(thrown);
  EXPECT_EQ(over.count, 1);
}

TEST(task_alone, a_start_that_throws_leaves_nothing_running) {
  recorder callback;
  listener over;
  callback.then = [](const std::wstring&) { throw std::runtime_error("no"); };
  scripted task(finish, &callback);
  task.set_listener(&over);
  EXPECT_THROW(task.start(1), std::runtime_error);
  EXPECT_FALSE(task.joinable());
  EXPECT_EQ(over.count, 0);
}

TEST(task_alone, works_on_a_copy_of_its_input_and_keeps_copies_of_its_values) {
  std::atomic<bool> gone{false};
  recorder callback;
  const xvar* result = nullptr;
  bool qualified = true;
  scripted task(
      [&](scripted& of, const xvar& input) {
        while (!gone) std::this_thread::yield();
        xvar first(1);
        first[L"unidad"] = L"s";
        of.set_progress(first);
        xvar second(2);
        of.set_progress(second);
        result = &input;
        qualified = input.is_qualified();
        finish(of, input);
      },
      &callback);
  {
    auto input = std::make_unique<xvar>(L"texto");
    task.start(*input);
    *input = L"otro";
  }
  gone = true;
  task.join();
  EXPECT_EQ(callback.noted(), L"start, progress 1*, progress 2, finish texto");
  EXPECT_FALSE(qualified);
  EXPECT_NE(result, nullptr);
}

TEST(task_alone, many_threads_may_join_and_cancel) {
  for (int round = 0; round < 20; ++round) {
    std::atomic<bool> ended{false};
    std::atomic<int> early{0};
    scripted task([&ended](scripted& of, const xvar& input) {
      until_canceled(of, input);
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
      ended = true;
    });
    task.start(1);
    std::vector<std::thread> others;
    for (int i = 0; i < 4; ++i) {
      others.emplace_back([&, i] {
        if (i == 0) task.cancel();
        task.join();
        if (!ended) ++early;
      });
    }
    for (std::thread& each : others) each.join();
    EXPECT_EQ(early, 0);
    EXPECT_FALSE(task.joinable());
  }
}

TEST(task_alone, a_detached_thread_is_not_waited_for) {
  // Nothing shows when such a thread has left the task for good, so these outlive the test.
  static std::atomic<bool> go{false};
  static listener over;
  static scripted task([](scripted& of, const xvar& input) {
    while (!go) std::this_thread::yield();
    finish(of, input);
  });
  task.set_listener(&over);
  task.start(1);
  task.detach();
  EXPECT_FALSE(task.joinable());
  task.cancel();
  EXPECT_EQ(over.count, 0);  // it still works
  go = true;
  EXPECT_TRUE(comes_true([] { return over.count == 1; }));
}

// Threads that are detached as they end have ended the process here, in the runtime's own code.
TEST(task_alone, a_thread_may_be_let_go_as_it_ends) {
  static std::atomic<int> ended{0};
  ruvo::detail::worker worker;
  for (int round = 0; round < 500; ++round) {
    worker.start([] { ++ended; });
    while (ended <= round) std::this_thread::yield();
    for (std::atomic<int> looks{0}; looks < round % 50 * 200;) ++looks;
    EXPECT_TRUE(worker.detach());
    EXPECT_FALSE(worker.detach());
  }
  // What has ended is joined when another thread starts: nothing is left for a checker to find.
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  worker.start([] {});
  EXPECT_TRUE(worker.join());
}

TEST(task_alone, orders_downwards_by_its_identifier) {
  std::vector<std::unique_ptr<scripted>> tasks;
  for (int i = 0; i < 30; ++i) tasks.push_back(std::make_unique<scripted>(finish));
  for (const auto& a : tasks) {
    EXPECT_EQ(a->get_uuid().size(), 34U);  // 8-4-4 and eight bytes
    for (const auto& b : tasks) {
      EXPECT_EQ(*a < *b, b->get_uuid() < a->get_uuid());
      EXPECT_EQ(*a == *b, a == b);
      const ruvo::jobs::job one(*a, 0), two(*b, 0);
      EXPECT_EQ(one < two, *a < *b);
      EXPECT_EQ(one == two, *a == *b);
    }
  }
}

/// Has no identifiers to give.
class poor_app : public ruvo::kesta::app {
 public:
  poor_app() : app(nullptr) {}
  std::wstring uuid_gen(const std::wstring& pattern, const std::wstring& bytes) const override {
    asked = pattern + L" " + bytes;
    return {};
  }
  mutable std::wstring asked;
};

TEST(task_alone, has_a_name_even_where_the_application_has_no_identifiers) {
  poor_app app;
  const ruvo::thread_scope scope(app);
  const scripted a(finish), b(finish);
  EXPECT_EQ(app.asked, L"%08X-%04X-%04X %02X");
  EXPECT_EQ(a.get_uuid().size(), 34U);
  EXPECT_FALSE(a == b);
}

/// Joins first, as it must.
class bundled : public ruvo::task::bundle {
 public:
  using bundle::bundle;
  ~bundled() override { join(); }
  void work(const ruvo::bundle& input) override {
    ruvo::bundle value(input);
    set_progress(value);
    EXPECT_TRUE(advance(value));
    value["b"] = 2;
    set_mensaje(value);
  }
};

struct bundle_sizes : ruvo::task::ibunlistener {
  void on_start() override {}
  void on_progress(ruvo::bundle* value) override { sizes.push_back(value->size()); }
  void on_finish(ruvo::bundle* value) override { sizes.push_back(value->size()); }
  void on_cancel() override {}
  void on_failure(const ruvo::exception&) override {}
  std::vector<std::size_t> sizes;
};

TEST(task_alone, takes_bundles) {
  bundle_sizes noted;
  {
    bundled task(&noted);
    ruvo::bundle input;
    input["a"] = 1;
    task.start(input);
  }
  EXPECT_EQ(noted.sizes, (std::vector<std::size_t>{1, 1, 2}));
}

// --- tasks made of lambdas

struct ending {
  const char* name;
  std::function<xvar(const xvar&)> body;
  std::wstring noted;
};

TEST(call_alone, ends_in_a_result_or_in_a_failure) {
  const std::vector<ending> all = {
      {"result", [](const xvar& input) { return input; }, L"finish entrada"},
      {"own exception", [](const xvar&) -> xvar { throw ruvo::exc::OutOfRange(); },
       L"failure " + ruvo::exc::OutOfRange().get_mensaje()},
      {"standard exception", [](const xvar&) -> xvar { throw std::runtime_error("mal\xC3\xADsimo"); },
       L"failure " +
           [] {
             const std::runtime_error error("mal\xC3\xADsimo");
             return ruvo::exc::UnCatch(&error).get_mensaje();
           }()},
      {"anything", [](const xvar&) -> xvar { throw 5; },
       L"failure Error indeterminado en la Ejecución de hilos"},
  };
  for (const ending& each : all) {
    SCOPED_TRACE(each.name);
    std::wstring noted;
    listener over;
    ruvo::task::call task(
        [&each](const xvar& input, ruvo::task::steps) { return each.body(input); },
        {.finish = [&noted](const xvar& result) { noted += L"finish " + result.to_string(); },
         .failure = [&noted](const ruvo::exception& error) { noted += L"failure " + error.get_mensaje(); }});
    task.set_listener(&over);
    task.start(L"entrada");
    task.join();
    EXPECT_EQ(noted, each.noted);
    EXPECT_EQ(over.count, 1);
  }
}

TEST(call_alone, that_is_canceled_says_so) {
  for (const bool throwing : {true, false}) {
    std::wstring noted;
    std::atomic<int> steps{0};
    listener over;
    {
      ruvo::task::call task(
          [&steps, throwing](const xvar&, ruvo::task::steps report) -> xvar {
            for (;; ++steps) {
              if (throwing)
                report.advance(steps.load());
              else if (!report(steps.load()))
                return report.canceled();
            }
          },
          {.finish = [&noted](const xvar& result) { noted += L"finish " + result.to_string(); },
           .failure = [&noted](const ruvo::exception& error) { noted += error.get_mensaje(); },
           .progress = nullptr,
           .cancel = [&noted] { noted += L", cancel"; }});
      task.set_listener(&over);
      task.start(0);
      EXPECT_TRUE(comes_true([&steps] { return steps > 2; }));
    }  // the destructor cancels and joins
    EXPECT_EQ(noted,
              (throwing ? ruvo::exc::ProcessCanceled().get_mensaje() : L"finish " + xvar(true).to_string()) +
                  L", cancel");
    EXPECT_EQ(over.count, 1);
  }
}

TEST(call_alone, canceled_before_its_start_skips_the_body) {
  bool ran = false;
  int failures = 0;
  ruvo::task::call task(
      [&ran](const xvar&, ruvo::task::steps) -> xvar {
        ran = true;
        return 1;
      },
      {.failure = [&failures](const ruvo::exception& error) {
        failures += dynamic_cast<const ruvo::exc::ProcessCanceled*>(&error) != nullptr;
      }});
  task.cancel();
  task.start(1);
  task.join();
  EXPECT_FALSE(ran);
  EXPECT_EQ(failures, 1);
}

TEST(call_alone, destroyed_at_once_still_reports_its_end) {
  for (int round = 0; round < 100; ++round) {
    std::atomic<int> finished{0}, failed{0};
    {
      ruvo::task::call task([](const xvar& input, ruvo::task::steps) { return input; },
                            {.finish = [&finished](const xvar&) { ++finished; },
                             .failure = [&failed](const ruvo::exception&) { ++failed; }});
      task.start(1);
    }
    ASSERT_EQ(finished + failed, 1) << finished;
  }
}

TEST(call_alone, survives_handlers_that_throw_and_none_at_all) {
  listener over;
  int failures = 0;
  const auto one = [](const xvar&, ruvo::task::steps) -> xvar { return 1; };
  ruvo::task::call throwing(one, {.finish = [](const xvar&) { throw 1; },
                                  .failure =
                                      [&failures](const ruvo::exception&) {
                                        ++failures;
                                        throw 2;
                                      },
                                  .cancel = [] { throw 3; }});
  ruvo::task::call silent([](const xvar&, ruvo::task::steps) -> xvar { throw 1; });
  ruvo::task::call empty(nullptr, {.failure = [&failures](const ruvo::exception&) { ++failures; }});
  for (ruvo::task::call* const task : {&throwing, &silent, &empty}) {
    task->set_listener(&over);
    task->start(1);
    task->cancel();
  }
  EXPECT_EQ(over.count, 3);
  EXPECT_EQ(failures, 3);  // the end of the first, its cancellation, the empty body
}

TEST(call_alone, silence_silences_its_handlers) {
  int noted = 0;
  ruvo::task::call task([](const xvar&, ruvo::task::steps) -> xvar { return 1; },
                        {.finish = [&noted](const xvar&) { ++noted; }});
  task.silence();
  task.start(1);
  task.join();
  EXPECT_EQ(noted, 0);
  recorder callback;
  task.set_callback(callback);
  task.start(1);
  task.join();
  EXPECT_EQ(callback.noted(), L"start, finish 1");
}

/// Where a run of a task was seen: one letter for each step of it, in capitals within the application.
class whereabouts {
 public:
  explicit whereabouts(const ruvo::application& app) : app_(app) {}
  void note(char step) {
    const std::lock_guard lock(guard_);
    seen_ += static_cast<char>(ruvo::application::theApp() == &app_ ? step - 'a' + 'A' : step);
  }
  std::string taken() {
    const std::lock_guard lock(guard_);
    return std::exchange(seen_, {});
  }
  ruvo::task::handlers handlers() {
    return {.finish = [this](const xvar&) { note('f'); },
            .failure = [this](const ruvo::exception&) { note('x'); },
            .progress = [this](const xvar&) { note('p'); },
            .cancel = [this] { note('c'); }};
  }

 private:
  const ruvo::application& app_;
  std::mutex guard_;
  std::string seen_;
};

// Body, progress, finish or failure (x), cancel (on a thread that belongs to nobody).
TEST(call_alone, runs_in_the_application_that_it_was_started_in) {
  auto app = std::make_unique<ruvo::kesta::app>();
  ruvo::kesta::app other;
  whereabouts seen(*app);
  std::atomic<bool> go{true};
  const auto body = [&](const xvar& input, ruvo::task::steps report) -> xvar {
    while (!go) std::this_thread::yield();
    seen.note('b');
    if (input.is_charsquence()) throw ruvo::exc::OutOfRange();
    if (input.is_null()) {
      const ruvo::thread_scope scope(other);
      EXPECT_TRUE(scope.checked_in());
      EXPECT_EQ(ruvo::application::theApp(), &other);
      EXPECT_FALSE(app->check_in(ruvo::application::threadID()));
    }
    report(1);
    return 1;
  };
  ruvo::task::call task(body, seen.handlers());
  const auto run = [&](const xvar& input) {
    task.start(input);
    task.join();
    return seen.taken();
  };
  EXPECT_EQ(run(1), "bpf");
  {
    const ruvo::thread_scope scope(*app);
    EXPECT_EQ(run(1), "BPF");
    EXPECT_EQ(run(L"fails"), "BX");
    EXPECT_EQ(run(xvar()), "BPF");  // was checked in elsewhere meanwhile, not while it reported
    ruvo::jobs::pool one(1);
    ruvo::task::call first(body, seen.handlers()), second(body, seen.handlers());
    go = false;
    one.execute_job(first, 1);
    one.execute_job(second, 1);  // started by the pool's own thread
    go = true;
    one.join();
    first.join();
    second.join();
    EXPECT_EQ(seen.taken(), "BPFBPF");
    task.start(1);
  }
  std::thread([&task] { task.cancel(); }).join();
  EXPECT_EQ(seen.taken().back(), 'C');
  EXPECT_EQ(ruvo::application::theApp(), nullptr);

  ruvo::task::call late(body, seen.handlers());
  go = false;
  {
    const ruvo::thread_scope scope(*app);
    late.start(1);
  }
  app.reset();  // and another one in its place, perhaps
  const auto next = std::make_unique<ruvo::kesta::app>();
  go = true;
  late.join();
  EXPECT_EQ(seen.taken(), "bpf");
}

}  // namespace
