// SPDX-License-Identifier: BSL-1.0

// The public operations of a pool; what they do is in pool_state.cpp.

#include <ruvo/jobs.hpp>

#include <ostream>
#include <system_error>
#include <utility>

#include "base/numbers.hpp"
#include "jobs/pool_state.hpp"
#include "jobs/refused.hpp"

namespace ruvo::jobs {

using sync::refused;

pool::pool() : pool(std::thread::hardware_concurrency()) {}
pool::pool(unsigned long long max_concurrency) : state_(std::make_unique<state>(*this, max_concurrency)) {}

// What ended on any thread goes with the collector.
pool::~pool() { state_->close(); }

void pool::execute_job(task::async& task, const xvar& parameter) {
  auto made = std::make_unique<job>(task, parameter);
  if (job* const entered = state_->enter(made)) {
    try {
      state_->execute(entered);
    } catch (...) {
      state_->withdraw(entered);
      throw;
    }
    return;
  }
  const job* const queued = made.get();
  state_->add_to_queue(std::move(made));
  state_->wake(queued);
}

void pool::store_job(task::async& task, const xvar& parameter) {
  state_->add_to_queue(std::make_unique<job>(task, parameter));
}

void pool::start() { state_->start(); }

void pool::exec() {
  if (!state_->idle) {
    start();
    return;
  }
  if (state_->holds_this_thread()) throw refused(std::errc::resource_deadlock_would_occur);
  ++state_->loops;
  state_->run(false);
}

void pool::cancel() {
  if (!state_->collect()) throw refused(std::errc::resource_deadlock_would_occur);
  if (!state_->dispatcher.join()) throw refused(std::errc::invalid_argument);
}

void pool::join() {
  if (state_->holds_this_thread()) throw refused(std::errc::resource_deadlock_would_occur);
  state_->dispatcher.join();
}

void pool::detach() { state_->dispatcher.detach(); }
bool pool::joinable() const { return state_->dispatcher.joinable(); }
std::thread::id pool::get_id() const { return state_->dispatcher.get_id(); }

void pool::set_max_concurrency(unsigned long long n) noexcept { state_->max_concurrency = n; }
unsigned long long pool::size() const noexcept { return state_->max_concurrency; }
unsigned long long pool::running() const noexcept { return state_->running_size; }
unsigned long long pool::pendings() const noexcept { return state_->pending_size; }
unsigned long long pool::free_size() const noexcept { return size() - running(); }
bool pool::is_free() const noexcept { return state_->is_free(); }
bool pool::empty() const noexcept { return state_->is_empty(); }
unsigned long long pool::hardware_concurrency() const noexcept { return std::thread::hardware_concurrency(); }

std::wstring pool::to_string() const {
  std::wstring out;
  const auto line = [&out](const wchar_t* label, unsigned long long value) {
    out += label;
    texto::append_unsigned(out, value);
  };
  line(L"\ton queue: ", pendings());
  line(L"\n\trunning: ", running());
  line(L"\n\tfree: ", free_size());
  line(L"\n\tstorage: ", size());
  line(L"\n\thardware concurrency: ", hardware_concurrency());
  return out;
}

void pool::on_run_off(std::wstring uuid) { state_->release(uuid); }

std::wostream& operator<<(std::wostream& out, const pool& of) { return out << of.to_string(); }

}  // namespace ruvo::jobs
