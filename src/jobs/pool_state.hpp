// SPDX-License-Identifier: BSL-1.0
#pragma once

// What jobs::pool hides: its queue, its slots and its dispatcher.

#include <ruvo/jobs.hpp>
#include <ruvo/memory_collector.hpp>

#include <atomic>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "app/registry.hpp"

namespace ruvo::jobs {

/// A job belongs to the queue, to the running map or to the collector, and passes from one to the next under
/// the locks, so that it is in exactly one. The collector deletes with the pool only: a job may still be in
/// its run() when its task is over.
///
/// Order of locks: starting, running_guard, queue_guard. None of the guards is held while a task is started,
/// joined or notified.
struct pool::state {
  state(pool& of, unsigned long long most) : owner(of), max_concurrency(most) {}
  state(const state&) = delete;
  state& operator=(const state&) = delete;
  ~state();

  /// Puts the job into a free slot, for execute(); null when there is none, and nothing is changed.
  job* enter(std::unique_ptr<job>& made);
  /// Starts what enter() or a step put into its slot. Where that throws the caller withdraws it.
  void execute(job* of);
  void add_to_queue(std::unique_ptr<job> made);
  /// For a job that was queued because no slot was free: the last of the others may have ended meanwhile, and
  /// the dispatcher with it. Where that throws the job is withdrawn.
  void wake(const job* queued);

  /// Takes the job out of the queue or its slot, unless it has been handed over or is about to be.
  void withdraw(const job* of) noexcept;

  void start();
  void run(bool as_dispatcher);

  void release(const std::wstring& uuid);
  /// False when another call, which goes on, is about to join the task on whose thread this is called.
  [[nodiscard]] bool collect();
  void close();

  bool is_free() const noexcept { return running_size < max_concurrency; }
  /// Pending first: a job counts as running before it ceases to count as pending.
  bool is_empty() const noexcept { return pending_size == 0 && running_size == 0; }

  /// Whether a wait for the end of all would be a wait of the calling thread for itself.
  bool holds_this_thread();

  /// What collect() intends: marked jobs any call may cancel, reserved ones the call on their own thread,
  /// taken ones are being canceled and handed over. Nobody joins a thread that waits in collect() or after
  /// it, as it has reserved what is its own.
  enum class claim { none, marked, reserved, taken };
  struct entry {
    job* of;
    claim by_collect = claim::none;
    std::thread::id by{};  // the thread that reserved or took it
  };

  pool& owner;
  memory_collector collector;
  detail::worker dispatcher;
  std::mutex starting;
  std::atomic<unsigned long long> max_concurrency;
  std::atomic<unsigned long long> pending_size{0},
      running_size{0};             // of the containers, to read without a lock
  std::atomic<bool> idle{true};    // false from start() until a loop ends
  std::atomic<unsigned> loops{0};  // threads in run()

  std::mutex running_guard;
  std::map<std::wstring, entry> running;
  std::mutex queue_guard;
  struct pending {
    job* of;
    registry::loan from;  // of the thread that queued it, whose application the task will run in
  };
  std::deque<pending> queue;
  // Written under both guards:
  bool dispatching = false;  // the dispatcher is in run() or about to be
  bool closing = false;      // nothing is taken any more
  job* kept = nullptr;       // what the collector did not take

 private:
  void place(job* of);
  static bool is_own(const entry& of);
  static void dispose(void* kept) noexcept;
  void hand_over(unsigned long key, job* of) noexcept;
  void keep(job* of) noexcept;
  pending next();
  void step();
  bool leave(bool as_dispatcher);
  bool enlist_dispatcher();
  void dismiss_dispatcher();
  bool mark_all();
  job* take_marked();
  void finish_claim(job* of);
};

}  // namespace ruvo::jobs
