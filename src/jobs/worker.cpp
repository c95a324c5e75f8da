// SPDX-License-Identifier: BSL-1.0

// A thread that may be joined by several threads, or let go.

#include <ruvo/sync.hpp>

#include <atomic>
#include <exception>
#include <system_error>
#include <utility>

#include "app/registry.hpp"
#include "jobs/refused.hpp"

namespace ruvo::detail {

using sync::refused;

/// What a thread shares with its worker and, once it was let go, with nobody.
///
/// A thread is never detached from the system: where one ends at that very moment, winpthreads frees its
/// record twice, and two later threads share it. It is joined when another starts or is let go after its end.
struct worker::run {
  const registry::loan from = registry::current_loan();  // of the thread that starts it
  std::atomic<bool> ended{false};
  std::thread thread;         // here once it was let go
  std::shared_ptr<run> self;  // likewise
  run* next = nullptr;

  static void let_go(std::shared_ptr<run> of) noexcept;
  static void join_ended() noexcept;

 private:
  static void put(run* one) noexcept;
  static constinit std::atomic<run*> all;
};

constinit std::atomic<worker::run*> worker::run::all{nullptr};

void worker::run::put(run* one) noexcept {
  one->next = all.load();
  while (!all.compare_exchange_weak(one->next, one)) continue;
}

void worker::run::let_go(std::shared_ptr<run> of) noexcept {
  join_ended();
  of->self = of;
  put(of.get());
}

void worker::run::join_ended() noexcept {
  if (!all.load()) return;
  run* next = all.exchange(nullptr);
  while (run* const each = next) {
    next = each->next;
    if (!each->ended || each->thread.get_id() == std::this_thread::get_id()) {
      put(each);
    } else {
      each->thread.join();
      each->self.reset();
    }
  }
}

worker::worker() = default;
worker::~worker() = default;

void worker::start(std::function<void()> body) {
  const std::lock_guard lock(guard_);
  if (id_ != std::thread::id()) std::terminate();
  run::join_ended();
  run_ = std::make_shared<run>();
  thread_ = std::thread([body = std::move(body), own = run_] {
    {
      const registry::borrowed application(own->from);
      body();
    }
    own->ended = true;
  });
  id_ = thread_.get_id();
}

bool worker::join() {
  std::unique_lock lock(guard_);
  if (id_ == std::thread::id()) return false;
  if (id_ == std::this_thread::get_id()) throw refused(std::errc::resource_deadlock_would_occur);
  if (!thread_.joinable()) {
    ended_.wait(lock, [this, before = joins_] { return joins_ != before; });
    return true;
  }
  std::thread thread = std::move(thread_);
  lock.unlock();
  try {
    thread.join();
  } catch (...) {
    lock.lock();
    thread_ = std::move(thread);
    ++joins_;
    ended_.notify_all();
    throw;
  }
  lock.lock();
  id_ = {};
  ++joins_;
  ended_.notify_all();
  return true;
}

bool worker::detach() {
  const std::lock_guard lock(guard_);
  if (id_ == std::thread::id()) return false;
  if (!thread_.joinable()) throw refused(std::errc::invalid_argument);
  run_->thread = std::move(thread_);
  run::let_go(run_);
  id_ = {};
  return true;
}

void worker::notify(const std::function<void()>& what) const {
  registry::loan from;
  {
    const std::lock_guard lock(guard_);
    if (run_) from = run_->from;
  }
  if (!from.app) return what();
  const registry::borrowed application(from);
  what();
}

bool worker::joinable() const { return get_id() != std::thread::id(); }

std::thread::id worker::get_id() const {
  const std::lock_guard lock(guard_);
  return id_;
}

}  // namespace ruvo::detail
