// SPDX-License-Identifier: BSL-1.0

// A task with its argument, as a pool runs it.

#include <ruvo/jobs.hpp>

#include <utility>

namespace ruvo::jobs {

namespace {

enum state { over, running, waiting };

constinit std::atomic<unsigned long long> living{0};

}  // namespace

job::job(task::async& task, const xvar& parameter) : task_(task), parameter_(parameter), state_(waiting) {
  ++living;
}
job::~job() { --living; }

unsigned long long job::alive() noexcept { return living; }

void job::on_run_off(std::wstring uuid) {
  state_.store(over);
  // The task may outlive the pool, and this with it.
  task_.forget_listener(this);
  fire_on_stop(std::move(uuid));
}

void job::run() {
  const std::lock_guard lock(running_);
  if (discarded_) return;
  state_.store(running);
  starter_.store(std::this_thread::get_id());
  task_.set_listener(this);
  const xvar input = once_ ? std::move(parameter_) : xvar(parameter_);
  try {
    task_.start(input);
  } catch (...) {
    task_.forget_listener(this);
    starter_.store({});
    throw;
  }
  starter_.store({});
}

bool job::is_of_this_thread() const {
  const std::thread::id here = std::this_thread::get_id();
  return starter_.load() == here || get_id() == here;
}

void job::cancel() {
  task_.cancel();
  task_.join();
}

void job::drop_parameter() noexcept { const xvar gone(std::move(parameter_)); }

void job::discard() {
  const std::lock_guard lock(running_);
  discarded_ = true;
  drop_parameter();
}

}  // namespace ruvo::jobs
