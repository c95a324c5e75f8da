// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::task, the bases of tasks, and a task made of lambdas.

#include <ruvo/bundle.hpp>
#include <ruvo/sync.hpp>
#include <ruvo/xvar.hpp>

#include <functional>

/// The bases of tasks, and a task made of a lambda.
namespace ruvo::task {

/// What receives the events of an `async`.
using ilistener = sync::async_callback<xvar, xvar>;
/// What receives the events of a task::bundle.
using ibunlistener = sync::async_callback<ruvo::bundle, ruvo::bundle>;

/// A task over xvar: derive, supply `work`, and cancel and join in the destructor.
class KESTA_API async : public sync::issueable<xvar, xvar, xvar> {
 public:
  /// The listener is not owned; null for none.
  explicit async(ilistener* listener = nullptr);

  ~async() override;

 protected:
  /// Reports the progress, also when the task is canceled. The callback gets a pointer to a copy that the
  /// task keeps.
  void set_progress(xvar& value);
  /// Ends the task: its result, as a copy that the task keeps. In a pool this frees the slot; a canceled task
  /// may call it or not.
  void set_mensaje(xvar& value);

  /// Reports the progress unless the task is canceled; false then.
  bool advance(const xvar& value);
  /// The same; throws exc::ProcessCanceled when the task is canceled.
  void advance_or_throw(const xvar& value);

 private:
  xvar progress_, mensaje_;
};

/// The same over ruvo::bundle. A pool takes only tasks over xvar.
class KESTA_API bundle : public sync::issueable<ruvo::bundle, ruvo::bundle, ruvo::bundle> {
 public:
  /// The listener is not owned; null for none.
  explicit bundle(ibunlistener* listener = nullptr);

  ~bundle() override;

 protected:
  /// As those of task::async.
  void set_progress(ruvo::bundle& value);
  void set_mensaje(ruvo::bundle& value);
  bool advance(const ruvo::bundle& value);
  void advance_or_throw(const ruvo::bundle& value);

 private:
  ruvo::bundle progress_, mensaje_;
};

class call;

/// The running task as the body of a `call` sees it; valid as long as the body runs.
class KESTA_API steps {
 public:
  /// Reports the progress; false when the task is canceled: nothing is reported then.
  bool operator()(const xvar& progress) const;
  /// The same; throws exc::ProcessCanceled, which ends the body and reaches `failure`.
  void advance(const xvar& progress) const;
  /// Whether the body should end, for bodies that report no progress.
  bool canceled() const noexcept;

 private:
  friend class call;
  explicit steps(call& of) noexcept : of_(&of) {}

  call* of_;
};

/// What a `call` calls; each may be empty. They run on the thread of the task, but for `cancel`, and for a
/// `failure` that reports a cancel() that failed, or a pool that could not start the task.
struct handlers {
  std::function<void(const xvar& result)> finish{};       ///< What the body returned.
  std::function<void(const exception& error)> failure{};  ///< The body threw, or never began.
  std::function<void(const xvar& progress)> progress{};   ///< What the body reported.
  std::function<void()> cancel{};                         ///< On the thread that cancels, after the end.
};

/// A task made of a lambda, which takes the input and gives the result:
///
///     task::call hash([](const xvar& path, task::steps) -> xvar { return digest(path); },
///                     {.finish = [](const xvar& result) { show(result); }});
///     hash.start(L"a.bin");
///     hash.join();
///
/// Exactly one of `finish` and `failure` ends a run, but where `finish` itself throws: then `failure`
/// follows. A ruvo::exception reaches `failure` as it is, another std::exception as exc::UnCatch with its
/// text, anything else as exc::ThreadException (code 1). A task that is canceled before its body began skips
/// it and fails with exc::ProcessCanceled. However it ends, its slot in a pool is free afterwards.
///
/// silence() silences the handlers, set_callback() takes their place. The destructor cancels and joins: any
/// part of the process that the body and the handlers use must outlive the task.
class KESTA_API call final : public async {
 public:
  /// What runs on the new thread; it returns the result.
  using body = std::function<xvar(const xvar& input, steps progress)>;

  /// Keeps both; start() runs the body, each time anew.
  explicit call(body work, handlers whom = {});

  ~call() override;

  /// Runs the body and reports its end.
  void work(const xvar& input) override;

 private:
  friend class steps;

  class relay final : public ilistener {
   public:
    explicit relay(handlers whom);
    ~relay() override;
    void on_start() override;
    void on_progress(xvar* progress) override;
    void on_finish(xvar* result) override;
    void on_cancel() override;
    void on_failure(const exception& error) override;

   private:
    handlers whom_;
  };

  void run(const xvar& input);
  /// Reports the exception that is being handled.
  void fail() noexcept;

  relay relay_;
  body body_;
};

}  // namespace ruvo::task
