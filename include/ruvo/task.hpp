#pragma once

// ruvo::task, the bases of tasks, and a task made of lambdas.

#include <ruvo/bundle.hpp>
#include <ruvo/sync.hpp>
#include <ruvo/xvar.hpp>

#include <functional>

/// The bases of tasks, and a task made of a lambda.
namespace ruvo::task {

/// Whom an `async` tells.
using ilistener = sync::async_callback<xvar, xvar>;
/// Whom a task::bundle tells.
using ibunlistener = sync::async_callback<ruvo::bundle, ruvo::bundle>;

/// A task over xvar: derive, supply `work`, and cancel and join in the destructor.
class KESTA_API async : public sync::issueable<xvar, xvar, xvar> {
 public:
  /// The listener is not owned; null tells nobody.
  explicit async(ilistener* listener = nullptr);

  /// Cancels and joins.
  ~async() override;

 protected:
  /// Tells the progress, also when the task is canceled. The callback gets a pointer to a copy that the task
  /// keeps.
  void set_progress(xvar& value);
  /// Ends the task: its result, as a copy that the task keeps. In a pool this frees the slot; a canceled task
  /// may call it or not.
  void set_mensaje(xvar& value);

  /// Tells the progress unless the task is canceled; false then.
  bool advance(const xvar& value);
  /// The same; throws exc::ProcessCanceled when the task is canceled.
  void advance_or_throw(const xvar& value);

 private:
  xvar progress_, mensaje_;
};

/// The same over ruvo::bundle. A pool takes only tasks over xvar.
class KESTA_API bundle : public sync::issueable<ruvo::bundle, ruvo::bundle, ruvo::bundle> {
 public:
  /// The listener is not owned; null tells nobody.
  explicit bundle(ibunlistener* listener = nullptr);

  /// Cancels and joins.
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
  /// Tells the progress; false when the task is canceled, which then tells nothing.
  bool operator()(const xvar& progress) const;
  /// The same; throws exc::ProcessCanceled, which ends the body and reaches `failure`.
  void advance(const xvar& progress) const;
  /// Whether the body should end, for bodies that tell no progress.
  bool canceled() const noexcept;

 private:
  friend class call;
  explicit steps(call& of) noexcept : of_(&of) {}

  call* of_;
};

/// Whom a `call` tells; each may be empty. They are called on the thread of the task, but for `cancel`, and
/// for a `failure` that tells of a cancel() that failed, or of a pool that could not start the task.
struct handlers {
  std::function<void(const xvar& result)> finish{};       ///< The body gave this.
  std::function<void(const exception& error)> failure{};  ///< The body threw, or never began.
  std::function<void(const xvar& progress)> progress{};   ///< The body told this.
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
  /// What runs on the new thread; the result is what it gives.
  using body = std::function<xvar(const xvar& input, steps tell)>;

  /// Keeps both; start() runs the body, each time anew.
  explicit call(body work, handlers whom = {});

  /// Cancels and joins.
  ~call() override;

  /// Runs the body and tells of its end.
  void work(const xvar& input) override;

 private:
  friend class steps;

  class told final : public ilistener {
   public:
    explicit told(handlers whom);
    ~told() override;
    void on_start() override;
    void on_progress(xvar* progress) override;
    void on_finish(xvar* result) override;
    void on_cancel() override;
    void on_failure(const exception& error) override;

   private:
    handlers whom_;
  };

  void run(const xvar& input);
  /// Tells of the exception that is being handled.
  void fail() noexcept;

  told told_;
  body body_;
};

}  // namespace ruvo::task
