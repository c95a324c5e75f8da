// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::jobs, the pool that runs a fixed number of tasks at once and queues the rest.

#include <ruvo/api.hpp>
#include <ruvo/sync.hpp>
#include <ruvo/task.hpp>

#include <atomic>
#include <iosfwd>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

/// The pool that runs a fixed number of tasks at once and queues the rest.
namespace ruvo::jobs {

/// A task with its argument, as a pool keeps it. The task is not owned and must live until the job is over.
class KESTA_API job : public sync::on_round_off, public sync::cautionary {
 public:
  /// A job that waits: the task is neither started nor gets this job as its listener yet.
  job(task::async& task, const xvar& parameter);

  job(const job&) = delete;
  job& operator=(const job&) = delete;

  /// Called by the task when its run is over; the job then notifies its own listener.
  void on_run_off(std::wstring uuid) override;
  /// Makes this the task's listener and starts the task with a copy of the parameter; in a pool with the
  /// parameter itself, which is gone from the job then. Throws what issueable::start throws.
  virtual void run();
  /// Cancels the task and joins it; throws what issueable::join throws.
  virtual void cancel();

  /// The task is left as it is.
  ~job() override;

  /// The task.
  task::async& get_taks() const noexcept { return task_; }
  /// The identifier of the task's thread, and that of the task.
  std::thread::id get_id() const { return task_.get_id(); }
  std::wstring get_uuid() const { return task_.get_uuid(); }

  /// 2 waiting, 1 running, 0 over.
  int get_state() const noexcept { return state_.load(); }
  /// How many jobs there are in the process, for those who watch pools that live long.
  static unsigned long long alive() noexcept;

  /// Whether both are over the same task.
  bool operator==(const job& other) const noexcept { return task_ == other.task_; }
  /// As the tasks: by identifiers, descending.
  /// @quirk Inverted, as that of the tasks.
  bool operator<(const job& other) const noexcept { return task_ < other.task_; }

 private:
  friend class pool;
  /// Waits for a run() that is under way; from then on run() does nothing, and there is no parameter.
  void discard();
  void drop_parameter() noexcept;
  /// Whether the calling thread is the task's, or is in run().
  bool is_of_this_thread() const;

  task::async& task_;
  xvar parameter_;
  std::atomic<int> state_;
  std::recursive_mutex running_;  // the callbacks of a starting task may cancel the pool
  bool discarded_ = false;
  bool once_ = false;                       // in a pool: run() takes the parameter along
  std::atomic<std::thread::id> starter_{};  // the thread in run()
  job* next_ = nullptr;                     // of those that a pool keeps by itself
  bool offered_ = false;                    // to a collector that has not taken it yet
};

/// Runs at most size() tasks at once, each on a thread of its own, and the rest in the order in which they
/// came. A dispatcher thread starts them; it spins while there is work, for the shortest way from a free slot
/// to the next task, and ends when all is done.
///
/// A task must live until it is over and joined, also until a cancel() of the pool that is under way returns,
/// and must be joined before it is put in again. Its slot is freed by set_mensaje(), by cancel() and by the
/// destructor of the task, by a task::call however it ends, and by the pool's cancel() and destructor; a
/// `work` that ends in no such way keeps its slot.
///
/// A task runs in the application of the thread that put it in, as issueable describes. One that exec()
/// starts runs in the application of the thread that calls exec(), if that thread is checked in.
///
/// All operations but the destructor may be called from any thread, also from callbacks. What the pool keeps
/// of a task that is over (its job, neither the task nor the parameter) is freed with the pool.
class KESTA_API pool : public sync::on_round_off {
 public:
  pool();  ///< With a slot for each hardware thread.
  /// With that many slots.
  /// @quirk With no slot at all, everything waits: exec() then returns only after cancel().
  explicit pool(unsigned long long max_concurrency);

  pool(const pool&) = delete;
  pool& operator=(const pool&) = delete;

  /// Runs the task, or queues it when no slot is free. It takes a free slot also before tasks that are
  /// queued. Throws what issueable::start throws; the task is then not in the pool.
  void execute_job(task::async& task, const xvar& parameter);
  /// Queues the task, for start(), exec() or a dispatcher that is running.
  /// @quirk A task that is queued twice, or that was not joined since it ran, ends the process when it is
  /// started again, as issueable::start() does.
  void store_job(task::async& task, const xvar& parameter);

  /// Starts the dispatcher, unless it is running. Throws std::system_error (resource_unavailable_try_again)
  /// when the system has no thread.
  void start();
  /// Runs what is queued, and returns when nothing is queued or running; while a dispatcher is running it
  /// returns at once. Throws as join() does on the thread of a task that is running, which would wait for
  /// itself.
  void exec();
  /// Drops what is queued, cancels and joins what is running, and joins the dispatcher. Throws
  /// std::system_error: invalid_argument when there is no dispatcher to join, resource_deadlock_would_occur
  /// on the dispatcher. A task on whose thread this is called, or which is just being started there, is not
  /// joined; where another cancel() is about to join it already, this one leaves the rest to the other and
  /// throws resource_deadlock_would_occur at once, and so it does in the on_cancel() that a cancel() calls.
  void cancel();

  /// Waits until nothing is queued or running, if there is a dispatcher. Throws std::system_error
  /// (resource_deadlock_would_occur) on the thread of a task that is running or being started, and in the
  /// on_cancel() that a cancel() of the pool calls.
  void join();
  /// Lets the dispatcher's thread go, which still ends before the pool does. Throws std::system_error
  /// (invalid_argument) while another thread joins it.
  void detach();
  /// Whether there is a dispatcher that was neither joined nor detached, running or not.
  bool joinable() const;
  /// The identifier of the dispatcher's thread; after joining or detaching it, that of no thread.
  std::thread::id get_id() const;

  /// The number of slots from now on. What is running goes on, also when it is more.
  void set_max_concurrency(unsigned long long n) noexcept;
  /// The number of slots. This and the other counters are taken without a lock, and are hints: they may have
  /// changed when they are looked at.
  unsigned long long size() const noexcept;
  /// The number of tasks that have a slot.
  unsigned long long running() const noexcept;
  /// The number of tasks in the queue.
  unsigned long long pendings() const noexcept;
  /// The number of free slots, a hint.
  /// @quirk size() - running() without a sign: huge while more are running than a lowered size allows.
  unsigned long long free_size() const noexcept;
  bool is_free() const noexcept;                             ///< A slot is free.
  bool empty() const noexcept;                               ///< Nothing queued and nothing running.
  unsigned long long hardware_concurrency() const noexcept;  ///< Hardware threads; 0 when it is not known.

  /// The counters in five lines.
  std::wstring to_string() const;

  /// Frees the slot of the task, from its job; an unknown one changes nothing.
  void on_run_off(std::wstring uuid) override;

  /// Drops what is queued, cancels and joins what is running, waits for the dispatcher.
  ~pool() override;

 private:
  struct state;
  std::unique_ptr<state> state_;
};

/// Writes the counters.
KESTA_API std::wostream& operator<<(std::wostream& out, const pool& of);

}  // namespace ruvo::jobs
