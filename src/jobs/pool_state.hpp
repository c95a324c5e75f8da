#pragma once

// The inside of a pool.

#include <ruvo/jobs.hpp>
#include <ruvo/memory_collector.hpp>

#include <atomic>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace ruvo::jobs {

/// A job belongs to the queue, to the running map or to the collector, and passes from one to the next under
/// the locks, so that it is in exactly one. The collector deletes with the pool only: a job may still be in
/// its run() when its task is over.
///
/// Order of locks: starting, running_guard, queue_guard. None of the guards is held while a task is started,
/// joined or told anything.
struct pool::state {
  state(pool& of, unsigned long long most) : owner(of), max_concurrency(most) {}

  /// Puts the job into a free slot, for execute(); null when there is none, and nothing is changed.
  job* enter(std::unique_ptr<job>& made);
  /// Starts what enter() or a step put into its slot. Where that throws the job is withdrawn.
  void execute(job* of);
  void add_to_queue(std::unique_ptr<job> made);
  /// For a job that was queued because no slot was free: the last of the others may have ended meanwhile, and
  /// the dispatcher with it. Where that throws the job is withdrawn.
  void wake(const job* queued);

  void start();
  void run(bool as_dispatcher);

  void release(const std::wstring& uuid);
  void collect();
  void close();

  bool is_free() const noexcept { return running_size < max_concurrency; }
  /// Pending first: a job counts as running before it ceases to count as pending.
  bool is_empty() const noexcept { return pending_size == 0 && running_size == 0; }

  /// What collect() has in mind: marked jobs it will cancel, taken ones it is about to hand over.
  enum class claim { none, marked, taken };
  struct entry {
    job* of;
    claim by_collect;
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
  std::deque<job*> queue;
  // Written under both guards:
  bool dispatching = false;  // the dispatcher is in run() or about to be
  bool closing = false;      // nothing is taken any more

 private:
  void place(job* of);
  void hand_over(job* of) noexcept;
  void withdraw(const job* of) noexcept;
  job* next();
  void step();
  bool leave(bool as_dispatcher);
  bool enlist_dispatcher();
  void dismiss_dispatcher();
  void mark_all();
  job* take_marked();
  void finish_claim(job* of);
};

}  // namespace ruvo::jobs
