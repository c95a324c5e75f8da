#include "jobs/pool_state.hpp"

#include <ruvo/application.hpp>
#include <ruvo/exc.hpp>

#include <algorithm>
#include <new>
#include <utility>

namespace ruvo::jobs {

namespace {

/// Under which the collector keeps what the calling thread hands over.
unsigned long collector_key() {
  const application* const app = application::theApp();
  return app ? app->getThreadID() : application::threadID();
}

void tell_failure(task::async& of) noexcept {
  try {
    of.on_failure(exc::ThreadException());
  } catch (...) {  // nobody is left to be told
  }
}

}  // namespace

// Called with running_guard held.
void pool::state::hand_over(job* of) noexcept {
  try {
    collector.add(collector_key(), of);
  } catch (const std::bad_alloc&) {  // the collector has deleted it
  }
}

// Called with running_guard held. A job over the same task is replaced.
void pool::state::place(job* of) {
  const auto [at, fresh] = running.try_emplace(of->get_uuid(), entry{of, claim::none});
  of->set_listener(&owner);
  if (!fresh) {
    const entry before = std::exchange(at->second, entry{of, claim::none});
    before.of->set_listener(nullptr);
    if (before.by_collect != claim::taken) hand_over(before.of);
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
  try {
    if (idle) start();
    of->run();
  } catch (...) {
    withdraw(of);
    throw;
  }
}

void pool::state::add_to_queue(std::unique_ptr<job> made) {
  const std::lock_guard lock(queue_guard);
  if (closing) return;
  queue.push_back(made.get());
  made.release();
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

// From wherever it is, unless it has been handed over or is about to be.
void pool::state::withdraw(const job* of) noexcept {
  const std::lock_guard lock(running_guard);
  const std::lock_guard inner(queue_guard);
  const auto placed = std::find_if(running.begin(), running.end(), [of](const auto& each) {
    return each.second.of == of && each.second.by_collect == claim::none;
  });
  if (placed != running.end()) {
    hand_over(placed->second.of);
    running.erase(placed);
    running_size = running.size();
  }
  const auto queued = std::find(queue.begin(), queue.end(), of);
  if (queued != queue.end()) {
    hand_over(*queued);
    queue.erase(queued);
    pending_size = queue.size();
  }
}

/// Moves the first of the queue into a slot: at no time it is in neither.
job* pool::state::next() {
  const std::lock_guard lock(running_guard);
  const std::lock_guard inner(queue_guard);
  if (queue.empty() || running.size() >= max_concurrency) return nullptr;
  job* const first = queue.front();
  place(first);
  queue.pop_front();
  pending_size = queue.size();
  return first;
}

void pool::state::step() {
  job* of = nullptr;
  try {
    of = next();
    if (of) execute(of);
  } catch (...) {
    if (of) tell_failure(of->get_taks());  // else there was no memory for the slot, and it waits on
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

// False when there is a dispatcher in its loop, which then goes on.
bool pool::state::enlist_dispatcher() {
  const std::lock_guard lock(running_guard);
  const std::lock_guard inner(queue_guard);
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
  const std::lock_guard lock(running_guard);
  const auto found = running.find(uuid);
  if (found == running.end() || found->second.by_collect != claim::none) return;
  hand_over(found->second.of);
  running.erase(found);
  running_size = running.size();
}

// Drops the queue too.
void pool::state::mark_all() {
  const std::lock_guard lock(running_guard);
  const std::lock_guard inner(queue_guard);
  for (auto& [uuid, each] : running)
    if (each.by_collect == claim::none) each.by_collect = claim::marked;
  for (job* const each : queue) hand_over(each);
  queue.clear();
  pending_size = 0;
}

job* pool::state::take_marked() {
  const std::lock_guard lock(running_guard);
  for (auto& [uuid, each] : running)
    if (each.by_collect == claim::marked) {
      each.by_collect = claim::taken;
      return each.of;
    }
  return nullptr;
}

void pool::state::finish_claim(job* of) {
  const std::lock_guard lock(running_guard);
  std::erase_if(running, [of](const auto& each) { return each.second.of == of; });
  hand_over(of);
  running_size = running.size();
}

// Each job stays in the map until its task is joined, for those who wait until the map is empty.
void pool::state::collect() {
  mark_all();
  while (job* const of = take_marked()) {
    of->discard();
    try {
      of->cancel();
    } catch (...) {  // on the task's own thread; on_failure() has been told
    }
    of->get_taks().forget_listener(of);
    finish_claim(of);
  }
}

// With the locks taken at last, no other thread is in a member of the pool.
void pool::state::close() {
  {
    const std::lock_guard lock(running_guard);
    const std::lock_guard inner(queue_guard);
    closing = true;
  }
  collect();
  dispatcher.join();
  while (loops != 0) std::this_thread::yield();
  const std::lock_guard lock(running_guard);
  const std::lock_guard inner(queue_guard);
}

}  // namespace ruvo::jobs
