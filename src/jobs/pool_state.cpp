// SPDX-License-Identifier: BSL-1.0

// The queue, the slots and the dispatcher of a pool.

#include "jobs/pool_state.hpp"

#include <ruvo/application.hpp>
#include <ruvo/exc.hpp>

#include <algorithm>
#include <new>
#include <thread>
#include <utility>

#include "exc/detail.hpp"

namespace ruvo::jobs {

namespace {

/// Under which the collector keeps what the calling thread hands over.
unsigned long collector_key() noexcept {
  try {
    if (const application* const app = application::theApp()) return app->getThreadID();
  } catch (...) {  // any key will do
  }
  return application::threadID();
}

void tell_failure(task::async& of) noexcept {
  try {
    of.on_failure(detail::about(exc::ThreadException(), detail::in_flight));
  } catch (...) {  // nobody is left to report it to
  }
}

}  // namespace

pool::state::~state() {
  while (kept) delete std::exchange(kept, kept->next_);
}

void pool::state::dispose(void* kept) noexcept {
  const job* const of = static_cast<job*>(kept);
  if (!of->offered_) delete of;
}

// Called with running_guard held. Others may still be in the job, so it stays also where there is no memory.
void pool::state::hand_over(unsigned long key, job* of) noexcept {
  of->offered_ = true;
  try {
    collector.add(key, of, &dispose);
  } catch (const std::bad_alloc&) {
    keep(of);
  }
  of->offered_ = false;
}

// Called with running_guard held.
void pool::state::keep(job* of) noexcept { of->next_ = std::exchange(kept, of); }

// Called with running_guard held. A job over the same task is replaced.
void pool::state::place(job* of) {
  const auto [at, fresh] = running.try_emplace(of->get_uuid(), entry{of});
  of->set_listener(&owner);
  of->once_ = true;
  if (!fresh) {
    const entry before = std::exchange(at->second, entry{of});
    before.of->set_listener(nullptr);
    if (before.by_collect != claim::taken) keep(before.of);
  }
  running_size = running.size();
}

job* pool::state::enter(std::unique_ptr<job>& made) {
  const std::lock_guard lock(running_guard);
  if (closing || running.size() >= max_concurrency) return nullptr;
  place(made.get());
  return made.release();
}

void pool::state::execute(job* of) {
  if (idle) start();
  of->run();
}

void pool::state::add_to_queue(std::unique_ptr<job> made) {
  const std::lock_guard lock(queue_guard);
  if (closing) return;
  queue.push_back({nullptr, registry::current_loan()});
  queue.back().of = made.release();
  pending_size = queue.size();
}

void pool::state::wake(const job* queued) {
  if (!idle || max_concurrency == 0) return;
  try {
    start();
  } catch (...) {
    withdraw(queued);
    throw;
  }
}

void pool::state::withdraw(const job* of) noexcept {
  const std::lock_guard lock(running_guard);
  const std::lock_guard inner(queue_guard);
  const auto placed = std::find_if(running.begin(), running.end(), [of](const auto& each) {
    return each.second.of == of && each.second.by_collect != claim::taken;
  });
  if (placed != running.end()) {
    placed->second.of->drop_parameter();
    keep(placed->second.of);
    running.erase(placed);
    running_size = running.size();
  }
  const auto queued =
      std::find_if(queue.begin(), queue.end(), [of](const pending& each) { return each.of == of; });
  if (queued != queue.end()) {
    queued->of->drop_parameter();
    keep(queued->of);
    queue.erase(queued);
    pending_size = queue.size();
  }
}

/// Moves the first of the queue into a slot: at no time it is in neither.
pool::state::pending pool::state::next() {
  const std::lock_guard lock(running_guard);
  const std::lock_guard inner(queue_guard);
  if (queue.empty() || running.size() >= max_concurrency) return {};
  const pending first = queue.front();
  place(first.of);
  queue.pop_front();
  pending_size = queue.size();
  return first;
}

void pool::state::step() {
  pending taken{};
  try {
    taken = next();
  } catch (...) {  // no memory for the slot: the job stays in the queue
  }
  if (!taken.of) return;
  const registry::borrowed application(taken.from);
  try {
    execute(taken.of);
  } catch (...) {
    tell_failure(taken.of->get_taks());
    withdraw(taken.of);
  }
}

bool pool::state::leave(bool as_dispatcher) {
  if (!is_empty()) return false;
  const std::lock_guard lock(running_guard);
  const std::lock_guard inner(queue_guard);
  if (!queue.empty() || !running.empty()) return false;
  if (as_dispatcher) dispatching = false;
  idle = true;
  --loops;
  return true;
}

// Spins by design: neither sleep nor wait stands between a slot that gets free and the next task. A thread
// that is ready to run, such as the one that will free the slot, goes first.
void pool::state::run(bool as_dispatcher) {
  while (!leave(as_dispatcher)) {
    if (is_free() && pending_size != 0)
      step();
    else
      std::this_thread::yield();
  }
}

// False when there is a dispatcher in its loop, which then goes on, and when none is wanted any more.
bool pool::state::enlist_dispatcher() {
  const std::lock_guard lock(running_guard);
  const std::lock_guard inner(queue_guard);
  if (closing) return false;
  idle = false;
  if (dispatching) return false;
  dispatching = true;
  ++loops;
  return true;
}

void pool::state::dismiss_dispatcher() {
  const std::lock_guard lock(running_guard);
  const std::lock_guard inner(queue_guard);
  dispatching = false;
  idle = true;
  --loops;
}

void pool::state::start() {
  const std::lock_guard lock(starting);
  if (!enlist_dispatcher()) return;
  try {
    dispatcher.join();  // one whose loop has ended
    dispatcher.start([this] { run(true); });
  } catch (...) {
    dismiss_dispatcher();
    throw;
  }
}

void pool::state::release(const std::wstring& uuid) {
  const unsigned long key = collector_key();
  const std::lock_guard lock(running_guard);
  const auto found = running.find(uuid);
  if (found == running.end() || found->second.by_collect == claim::taken) return;
  hand_over(key, found->second.of);
  running.erase(found);
  running_size = running.size();
}

bool pool::state::is_own(const entry& of) {
  return of.by == std::this_thread::get_id() || of.of->is_of_this_thread();
}

bool pool::state::holds_this_thread() {
  const std::lock_guard lock(running_guard);
  return std::any_of(running.begin(), running.end(), [](const auto& each) { return is_own(each.second); });
}

// Drops the queue too. False when one of the calling thread's own is taken.
bool pool::state::mark_all() {
  const unsigned long key = collector_key();
  const std::lock_guard lock(running_guard);
  const std::lock_guard inner(queue_guard);
  for (const pending& each : queue) {
    each.of->drop_parameter();
    hand_over(key, each.of);
  }
  queue.clear();
  pending_size = 0;
  bool free = true;
  for (auto& [uuid, each] : running) {
    if (is_own(each)) {
      if (each.by_collect == claim::taken)
        free = false;
      else
        each = {each.of, claim::reserved, std::this_thread::get_id()};
    } else if (each.by_collect == claim::none) {
      each.by_collect = claim::marked;
    }
  }
  return free;
}

// The calling thread's own first.
job* pool::state::take_marked() {
  const std::thread::id here = std::this_thread::get_id();
  const std::lock_guard lock(running_guard);
  entry* found = nullptr;
  for (auto& [uuid, each] : running) {
    if (each.by_collect == claim::reserved && each.by == here) {
      found = &each;
      break;
    }
    if (each.by_collect == claim::marked && !found) found = &each;
  }
  if (!found) return nullptr;
  *found = {found->of, claim::taken, here};
  return found->of;
}

void pool::state::finish_claim(job* of) {
  const unsigned long key = collector_key();
  const std::lock_guard lock(running_guard);
  std::erase_if(running, [of](const auto& each) { return each.second.of == of; });
  hand_over(key, of);
  running_size = running.size();
}

// Each job stays in the map until its task is joined, for those who wait until the map is empty.
bool pool::state::collect() {
  if (!mark_all()) return false;
  while (job* const of = take_marked()) {
    of->discard();
    try {
      of->cancel();
    } catch (...) {  // on the task's own thread; on_failure() has been called
    }
    of->get_taks().forget_listener(of);
    finish_claim(of);
  }
  return true;
}

// With the locks taken at last, no other thread is in a member of the pool.
void pool::state::close() {
  {
    const std::lock_guard lock(running_guard);
    const std::lock_guard inner(queue_guard);
    closing = true;
  }
  static_cast<void>(collect());
  dispatcher.join();
  while (loops != 0) std::this_thread::yield();
  const std::lock_guard lock(running_guard);
  const std::lock_guard inner(queue_guard);
}

}  // namespace ruvo::jobs
