// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::sync, work on a thread of its own that reports its progress: the callbacks, the runnable base, and
// the listener for the end of a piece of work.

#include <ruvo/api.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/fwd.hpp>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace ruvo {

namespace detail {

/// A thread that several threads may join. Never reused by itself: each start makes a new thread, which works
/// with the application of the thread that starts it until it is checked in itself.
class KESTA_API worker {
 public:
  worker();
  worker(const worker&) = delete;
  worker& operator=(const worker&) = delete;
  /// Ends the process when the thread was neither joined nor detached.
  ~worker();

  /// Throws std::system_error (resource_unavailable_try_again) when the system has no thread. Ends the
  /// process when the last thread was neither joined nor detached.
  void start(std::function<void()> body);
  /// Waits for the end of the thread, also while another thread joins it; nothing when there is none. False
  /// when there was none. Throws std::system_error, resource_deadlock_would_occur on the thread itself.
  bool join();
  /// Lets the thread go on by itself. False when there was none. Throws std::system_error (invalid_argument)
  /// when the thread is being joined.
  bool detach();
  bool joinable() const;
  std::thread::id get_id() const;
  /// Calls `what` on the calling thread; if that has no application, in the application of the last start.
  void notify(const std::function<void()>& what) const;

 private:
  mutable std::mutex guard_;
  std::condition_variable ended_;
  struct run;

  std::thread thread_;  // empty while a thread joins it
  std::shared_ptr<run> run_;
  std::thread::id id_;  // until it is joined
  unsigned joins_ = 0;  // finished ones
};

}  // namespace detail

/// Work on a thread of its own that reports its progress.
namespace sync {

/// Receives the events of a piece of work: derive from it and override them. Each event comes on the thread
/// that causes it. The callback is not owned: it must live until the work is joined.
///
/// The callbacks run in the application that the work was started in, unless the thread that calls is checked
/// in itself.
template <class In, class Out>
class async_callback {
 public:
  async_callback();

  async_callback(const async_callback&);
  async_callback(async_callback&&) noexcept;
  async_callback& operator=(const async_callback&);
  async_callback& operator=(async_callback&&) noexcept;

  /// Before the work begins, on the thread that starts it. What it throws leaves `start`, and nothing is run.
  virtual void on_start() = 0;
  /// The progress, on the thread of the work. The value belongs to the work and is valid during the call.
  virtual void on_progress(Out* progress) = 0;
  /// The result, on the thread of the work. The value belongs to the work and is valid during the call.
  virtual void on_finish(Out* result) = 0;
  /// The work was canceled and joined, on the thread that canceled or destroyed it; cancel() calls this also
  /// where there was nothing to join.
  virtual void on_cancel() = 0;
  /// A failure, on the thread of the work, on that of a `cancel` that failed, or on that of a pool that could
  /// not start the work.
  virtual void on_failure(const exception& error) = 0;

  virtual ~async_callback();
};

/// Receives the end of a piece of work.
class KESTA_API on_round_off {
 public:
  on_round_off();

  on_round_off(const on_round_off&);
  on_round_off(on_round_off&&) noexcept;
  on_round_off& operator=(const on_round_off&);
  on_round_off& operator=(on_round_off&&) noexcept;

  /// The work with this identifier is over. Comes on the thread of the work, or on the one that cancels or
  /// destroys it.
  virtual void on_run_off(std::wstring uuid) = 0;

  virtual ~on_round_off();
};

/// Has a listener and reports to it that the work is over. The listener is not owned.
class KESTA_API cautionary {
 public:
  /// No listener.
  cautionary();

  /// The other one's listener.
  cautionary(const cautionary& other);
  cautionary& operator=(const cautionary& other);

 protected:
  /// Calls the listener's on_run_off(), if there is a listener.
  virtual void fire_on_stop(std::wstring uuid);

 public:
  /// Null for none. A notification that is under way on another thread may still reach the old one.
  virtual void set_listener(on_round_off* listener);

  virtual ~cautionary();

  /// Removes the listener if it is this one.
  void forget_listener(on_round_off* listener) noexcept;

 private:
  std::atomic<on_round_off*> listener_{nullptr};
};

/// A piece of work that runs on a thread of its own, one new thread for each start.
///
/// The new thread works with the application of the thread that calls start() (log, settings, services), as
/// long as that is not shut down. It is not checked in, and so no apartment of COM; a `work` that needs one,
/// or another application, checks in, and the callbacks that it calls before it checks out run there.
///
/// All operations may be called from any thread. The object must outlive its thread: join before destroying
/// it. The destructors of the library's classes cancel and join, but when they run, what a derived class adds
/// is gone, and a `work` that is still busy would use it: a derived class joins in its own destructor.
/// @quirk An exception that escapes `work` ends the process (task::call catches them).
template <class In, class Progress, class Out>
class issueable : public async_callback<In, Out>, public cautionary {
 public:
  using callback_type = async_callback<In, Out>;  ///< What receives the events of the work.

  /// The callback is not owned; null for none. The identifier comes from the application of the calling
  /// thread.
  explicit issueable(callback_type* callback = nullptr);

  issueable(const issueable&) = delete;
  issueable& operator=(const issueable&) = delete;

  /// Passes the event on to the callback, if there is one.
  void on_start() override;
  void on_progress(Progress* progress) override;
  /// Passes the event on to the callback and then, also when the callback throws, notifies the listener.
  void on_finish(Out* result) override;
  /// Passes the event on to the callback, if there is one.
  void on_cancel() override;
  void on_failure(const exception& error) override;

  /// The body, on the new thread. The input lives as long as the call.
  virtual void work(const In& input) = 0;

  /// Cancels and joins.
  ~issueable() override;

  /// on_start(), then work() with a copy of the input on a new thread. Throws what on_start() throws, and
  /// std::system_error (resource_unavailable_try_again) when the system has no thread.
  /// @quirk Ends the process when the thread of an earlier start was neither joined nor detached, as the
  /// assignment of a std::thread does.
  void start(const In& input);
  /// Asks the work to end, waits for its thread and calls on_cancel(); if the run has not reported its
  /// end, the listener is notified then. Never throws: any failure, of on_cancel() too, becomes an
  /// exc::ThreadException (code 1) that goes to on_failure().
  /// @quirk From within `work` it only sets the flag, and on_failure() comes instead of on_cancel().
  void cancel() noexcept;
  /// Once true it stays true, over later starts too.
  bool is_canceled() const noexcept;
  /// No callback gets events from now on, but for a call that is under way.
  void silence() noexcept;
  /// This one gets the events from now on; it is not owned.
  void set_callback(callback_type& callback) noexcept;

  /// Waits for the thread, if there is one. Throws std::system_error: resource_deadlock_would_occur on the
  /// thread itself, no_such_process when the system refuses.
  void join();
  /// Lets the thread go, which must end before the object does. Throws std::system_error (invalid_argument)
  /// when it cannot.
  void detach();
  /// Whether there is a thread that was neither joined nor detached, running or not.
  bool joinable() const;
  /// The identifier of the thread; after joining or detaching it, that of no thread.
  std::thread::id get_id() const;
  /// The identifier, made once for the object: 32 digits as XXXXXXXX-XXXX-XXXXXXXXXXXXXXXXXXXX.
  std::wstring get_uuid() const;

  /// By identifiers: an object is equal to itself only.
  bool operator==(const issueable& other) const noexcept;
  /// By identifiers, descending.
  /// @quirk Inverted on purpose: ordered containers hold tasks in descending order of their identifiers.
  bool operator<(const issueable& other) const noexcept;

 protected:
  /// Notifies the listener of the end of this run, once, for a `work` that ends without on_finish().
  void end_run();
  /// Cancels and joins, for destructors. Calls the callback's on_cancel() if the thread was not joined.
  void settle() noexcept;

 private:
  void end_quietly() noexcept;
  static void report(callback_type& to) noexcept;

  detail::worker worker_;
  std::atomic<callback_type*> callback_;
  std::atomic<bool> canceled_{false};
  std::atomic<bool> open_{false};  // started, and the end was not reported
  std::atomic<bool> detached_{false};
  std::atomic<bool> dying_{false};  // what derived classes add may be gone
  const std::wstring uuid_;
};

// All members are defined where these are instantiated: an inline one would be made neither here nor there,
// and found only where the compiler puts its body in place of the call.
extern template class KESTA_TEMPLATE_DECL async_callback<xvar, xvar>;
extern template class KESTA_TEMPLATE_DECL async_callback<bundle, bundle>;
extern template class KESTA_TEMPLATE_DECL issueable<xvar, xvar, xvar>;
extern template class KESTA_TEMPLATE_DECL issueable<bundle, bundle, bundle>;

}  // namespace sync

}  // namespace ruvo
